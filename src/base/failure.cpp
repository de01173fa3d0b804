#include "base/failure.h"

namespace vantoro {

namespace {

std::string Compose(long number, const std::string& text, const std::string& location,
                    const std::string& extra) {
  std::string out = "Error: " + std::to_string(number) + " - " + text;
  if (text.find("access error") != std::string::npos)
    out += "\nPlease run the program as an Administrator.";
  if (!extra.empty()) out += extra;
  out += "\nLocation: " + location;
  return out;
}

}  // namespace

FailureReport::FailureReport(long number, std::string text, std::string location, std::string extra)
    : std::runtime_error(Compose(number, text, location, extra)),
      number_(number),
      text_(std::move(text)),
      location_(std::move(location)),
      extra_(std::move(extra)) {}

std::string FailureReport::Report() const {
  return what();
}

FailureReport FileFailure(std::string_view problem, std::string_view location) {
  return FailureReport(kErrPathAccess, "Path/File access error", std::string(location),
                       "\n" + std::string(problem));
}

}  // namespace vantoro
