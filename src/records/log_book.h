// The pilot's HTML log book (".htm" beside the pilot's file): every scored
// flight's reports, one after the other, as the log display shows them.
#pragma once

#include <string>
#include <string_view>

#include "base/files.h"

namespace vantoro {

// The log book with one more entry (HTML): a new document when `existing` is
// empty after trimming, otherwise the entry goes before the closing tags,
// after a rule.
std::string ExtendLogBook(std::string_view existing, std::string_view entryHtml);

// The log book at `path` with the entry added, ready to be written together
// with the flight's log row. A book that is there but cannot be read is never
// replaced: that ends the program with the failure report of `location`,
// naming the file and the reason.
FileWrite LogBookUpdate(std::string_view path, std::string_view entryHtml,
                        std::string_view location);

}  // namespace vantoro
