// The standard failure report: "Error: ", number, " - ", text, a line break,
// "Location: " and the procedure's name. The desktop program shows it and
// quits; vantoro-cli prints it to stderr and exits with status 70.
#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

namespace vantoro {

class FailureReport : public std::runtime_error {
 public:
  FailureReport(long number, std::string text, std::string location, std::string extra = {});

  long number() const { return number_; }
  const std::string& text() const { return text_; }
  const std::string& location() const { return location_; }
  // The whole report as the pilot reads it.
  std::string Report() const;

 private:
  long number_;
  std::string text_;
  std::string location_;
  std::string extra_;
};

// Run-time failure numbers of the reports.
inline constexpr long kErrInvalidCall = 5;    // an invalid argument (a negative length)
inline constexpr long kErrOutOfRange = 9;     // subscript out of range
inline constexpr long kErrFileNotFound = 53;  // a file the program needs is missing
inline constexpr long kErrPathAccess = 75;    // a file or folder cannot be written

// The failure report of a file that cannot be read or written: the access
// error, then a line naming the file and the system's reason.
FailureReport FileFailure(std::string_view problem, std::string_view location);

}  // namespace vantoro
