// The pilot's HTML log book (".htm" beside the pilot's file): every scored
// flight's reports, one after the other, as the log display shows them.
#pragma once

#include <string>
#include <string_view>

namespace vantoro {

// The log book with one more entry (HTML): a new document when `existing` is
// empty after trimming, otherwise the entry goes before the closing tags,
// after a rule.
std::string ExtendLogBook(std::string_view existing, std::string_view entryHtml);

// Reads the log book at `path`, adds the entry and writes it back whole
// (temporary file and rename). False when it cannot be written.
bool WriteLogBook(std::string_view path, std::string_view entryHtml);

}  // namespace vantoro
