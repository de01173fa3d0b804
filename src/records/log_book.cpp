#include "records/log_book.h"

#include "base/failure.h"
#include "base/files.h"
#include "base/text.h"

namespace vantoro {

namespace {
constexpr std::string_view kBr = "\r\n";
constexpr std::string_view kClosing = "</body></html>";
constexpr std::string_view kEntrySeparator = "<br><br><hr><br>";
}  // namespace

std::string ExtendLogBook(std::string_view existing, std::string_view entryHtml) {
  const std::string entry(entryHtml);
  const std::string br(kBr);
  if (Trim(existing).empty()) {
    return "<html><head>" + br + "  <title>Vantoro Pilot's Log Book</title>" + br +
           "  <style>body { font-family: Arial; }</style>" + br + "</head>" + br + "<body>" + br +
           entry + br + std::string(kClosing);
  }
  const std::string added = std::string(kEntrySeparator) + br + entry + br + std::string(kClosing);
  std::string book(existing);
  const size_t closing = book.rfind(kClosing);
  if (closing != std::string::npos) {
    book.replace(closing, kClosing.size(), added);
  } else {
    // A book that lost its closing tags keeps everything and gains the entry.
    book += added;
  }
  return book;
}

FileWrite LogBookUpdate(std::string_view path, std::string_view entryHtml,
                        std::string_view location) {
  std::string why;
  const std::optional<std::string> existing = TryReadFile(path, &why);
  if (!why.empty()) throw FileFailure(why, location);
  return FileWrite{std::string(path), ExtendLogBook(existing.value_or(""), entryHtml)};
}

}  // namespace vantoro
