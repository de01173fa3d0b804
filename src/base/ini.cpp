#include "base/ini.h"

#include "base/files.h"
#include "base/text.h"

namespace vantoro {

std::string RemoveINIComments(std::string_view line, bool commaIsComment) {
  const std::string in = Trim(line);
  std::string out;
  out.reserve(in.size());
  bool inQuotes = false;
  char previous = '\0';
  for (char c : in) {
    if (c == '"') {
      inQuotes = !inQuotes;
    } else if (inQuotes) {
      out += c;
    } else if (c == ';') {
      break;
    } else if (c == ',' && commaIsComment) {
      break;
    } else if (c == '/' && previous == '/') {
      if (!out.empty()) out.pop_back();
      break;
    } else {
      out += c;
    }
    previous = c;
  }
  return Trim(out);
}

namespace {

std::vector<INIEntry> Parse(std::string_view text, const std::string* wanted, bool commaIsComment) {
  std::vector<INIEntry> entries;
  std::string section;
  int lineNo = 0;
  size_t start = 0;
  while (start <= text.size()) {
    size_t end = text.find('\n', start);
    if (end == std::string_view::npos) end = text.size();
    ++lineNo;
    const std::string line = RemoveINIComments(text.substr(start, end - start), commaIsComment);
    start = end + 1;
    if (line.empty()) {
      if (end == text.size()) break;
      continue;
    }
    if (line[0] == '[') {
      section = Upper(line);
    } else if (size_t eq = line.find('='); eq != std::string::npos) {
      if (wanted == nullptr || section == *wanted) {
        INIEntry e;
        e.Section = section;
        e.Key = Upper(Trim(line.substr(0, eq)));
        e.Value = Trim(line.substr(eq + 1));
        e.IsList = e.Value.find(',') != std::string::npos;
        e.Line = lineNo;
        entries.push_back(std::move(e));
      }
    }
    if (end == text.size()) break;
  }
  return entries;
}

}  // namespace

std::vector<INIEntry> ParseINIText(std::string_view text, bool commaIsComment) {
  return Parse(text, nullptr, commaIsComment);
}

std::vector<INIEntry> ParseINISectionText(std::string_view text, std::string_view section,
                                          bool commaIsComment) {
  const std::string wanted = Upper(section);
  return Parse(text, &wanted, commaIsComment);
}

std::vector<INIEntry> ParseINIFile(std::string_view file, bool commaIsComment) {
  return ParseINIText(ReadFile(file), commaIsComment);
}

std::vector<INIEntry> ParseINIFileSection(std::string_view file, std::string_view section,
                                          bool commaIsComment) {
  return ParseINISectionText(ReadFile(file), section, commaIsComment);
}

INIEntry GetValueFromINI(const std::vector<INIEntry>& entries, std::string_view section,
                         std::string_view key) {
  std::string s = Upper(Trim(section));
  if (s.empty() || s[0] != '[') s = "[" + s + "]";
  const std::string k = Upper(Trim(key));
  for (const INIEntry& e : entries)
    if (e.Section == s && e.Key == k) return e;
  return {};
}

}  // namespace vantoro
