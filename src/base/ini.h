// The one small parser behind every INI-style file of the system: settings,
// pilot records, aircraft profiles, captions. A parse never fails: what it
// cannot read it skips.
#pragma once

#include <string>
#include <string_view>
#include <vector>

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

}  // namespace vantoro
