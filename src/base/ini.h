// The one small parser behind every INI-style file of the system: settings,
// pilot records, aircraft profiles, captions. A parse never fails: what it
// cannot read it skips.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/notices.h"

namespace vantoro {

struct INIEntry {
  std::string Section;  // the section line as it stands, brackets included, upper case
  std::string Key;      // text before the first "=", trimmed, upper case
  std::string Value;    // text after the first "=", trimmed, case kept
  bool IsList = false;  // the value holds a comma
  int Line = 0;         // line number in the file, for error messages
};

// Cleans one line: ";" ends it, "//" ends it, "," ends it when commaIsComment;
// double quotes protect what they enclose and are dropped.
std::string RemoveINIComments(std::string_view line, bool commaIsComment);

// Every entry of the text, in file order.
std::vector<INIEntry> ParseINIText(std::string_view text, bool commaIsComment);
// The numbers of the lines that are neither blank, a comment, a section nor
// "KEY=VALUE": what a tolerant read passes over in a damaged file.
std::vector<int> INILinesPassedOver(std::string_view text, bool commaIsComment);
// One notice naming `file` and the first such line, when there are any.
void NoteLinesPassedOver(std::string_view file, std::string_view text, bool commaIsComment,
                         Notices& notices);
// Only the entries of one section; `section` is given with its brackets and
// compared without case.
std::vector<INIEntry> ParseINISectionText(std::string_view text, std::string_view section,
                                          bool commaIsComment);

// The same over a file; a missing file gives no entries.
std::vector<INIEntry> ParseINIFile(std::string_view file, bool commaIsComment);
std::vector<INIEntry> ParseINIFileSection(std::string_view file, std::string_view section,
                                          bool commaIsComment);

// The first entry with this section (with or without brackets, any case) and
// key (any case), or an empty entry.
INIEntry GetValueFromINI(const std::vector<INIEntry>& entries, std::string_view section,
                         std::string_view key);

// Replaces the file with exactly this text (no line ends added). The text goes
// to a temporary file that is renamed over the old one, so a failed write
// leaves the old file whole. False when the file cannot be written.
bool WriteINIFile(std::string_view file, std::string_view text);

// The number a value holds, or nullopt when it is not numeric: an optional
// sign, digits and at most one decimal separator, "." or ",". The computer's
// own decimal separator plays no part, so a file reads alike everywhere.
std::optional<double> INIValueNumber(std::string_view value);

// A text value as it must be written so that the parser gives it back whole:
// in double quotes when it holds a ";", a "," or a "//". A double quote
// itself can never come back, since the parser drops every one, so it is left
// out; blanks at either end are trimmed by the parser whatever is written.
std::string QuoteINIValue(std::string_view value);

// Flat "key=value" files without sections (Aircraft.dat). The value after the
// first line that begins with key and "=" (compared without case), or
// `missing` when the file or the key is absent or the value is not numeric.
std::string LoadAircraftSelection(std::string_view file, std::string_view key,
                                  std::string_view missing = "-1");
// Rewrites the file whole with "key=value": the first line of that key is
// replaced, or the line is appended at the end. Lines end in CRLF. False when
// the file cannot be written.
bool SaveAircraftSelection(std::string_view file, std::string_view key, std::string_view value);

}  // namespace vantoro
