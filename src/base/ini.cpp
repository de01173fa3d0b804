#include "base/ini.h"

#include <charconv>

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

std::vector<INIEntry> Parse(std::string_view text, const std::string* wanted, bool commaIsComment,
                            std::vector<int>* passedOver = nullptr) {
  std::vector<INIEntry> entries;
  std::string section;
  int lineNo = 0;
  size_t start = 0;
  while (start < text.size()) {
    // A line ends at CRLF, LF or a lone CR: files edited on different
    // systems mix them.
    size_t end = text.find_first_of("\r\n", start);
    if (end == std::string_view::npos) end = text.size();
    ++lineNo;
    const std::string line = RemoveINIComments(text.substr(start, end - start), commaIsComment);
    start = end + 1;
    if (end < text.size() && text[end] == '\r' && start < text.size() && text[start] == '\n')
      ++start;
    if (line.empty()) continue;
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
    } else if (passedOver != nullptr) {
      passedOver->push_back(lineNo);
    }
  }
  return entries;
}

}  // namespace

std::vector<INIEntry> ParseINIText(std::string_view text, bool commaIsComment) {
  return Parse(text, nullptr, commaIsComment);
}

std::vector<int> INILinesPassedOver(std::string_view text, bool commaIsComment) {
  std::vector<int> lines;
  Parse(text, nullptr, commaIsComment, &lines);
  return lines;
}

void NoteLinesPassedOver(std::string_view file, std::string_view text, bool commaIsComment,
                         Notices& notices) {
  const std::vector<int> lines = INILinesPassedOver(text, commaIsComment);
  if (lines.empty()) return;
  const std::string count = lines.size() == 1 ? "a line" : std::to_string(lines.size()) + " lines";
  notices.push_back(Notice{std::string(file), lines.front(),
                           count + " neither a [section] nor KEY=VALUE, passed over"});
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

bool WriteINIFile(std::string_view file, std::string_view text) {
  return WriteFileAtomic(file, text);
}

std::optional<double> INIValueNumber(std::string_view value) {
  std::string t = Trim(value);
  size_t i = 0;
  if (!t.empty() && (t[0] == '-' || t[0] == '+')) i = 1;
  bool digit = false, separator = false;
  for (size_t j = i; j < t.size(); ++j) {
    char& c = t[j];
    if (c >= '0' && c <= '9') {
      digit = true;
    } else if ((c == '.' || c == ',') && !separator) {
      separator = true;
      c = '.';
    } else {
      return std::nullopt;
    }
  }
  if (!digit) return std::nullopt;
  // from_chars takes no "+" and ignores the locale, unlike strtod.
  const char* first = t.data() + (t[0] == '+' ? 1 : 0);
  double x = 0;
  auto [ptr, ec] = std::from_chars(first, t.data() + t.size(), x);
  if (ec != std::errc() || ptr != t.data() + t.size()) return std::nullopt;
  return x;
}

std::string QuoteINIValue(std::string_view value) {
  std::string v;
  for (char c : value)
    if (c != '"') v += c;
  if (v.find_first_of(";,") != std::string::npos || v.find("//") != std::string::npos)
    return "\"" + v + "\"";
  return v;
}

namespace {

// The lines of a flat file, without their line ends.
std::vector<std::string> FlatLines(std::string_view text) {
  std::vector<std::string> lines;
  size_t start = 0;
  while (start < text.size()) {
    size_t end = text.find_first_of("\r\n", start);
    if (end == std::string_view::npos) end = text.size();
    lines.emplace_back(text.substr(start, end - start));
    start = end + 1;
    if (end < text.size() && text[end] == '\r' && start < text.size() && text[start] == '\n')
      ++start;
  }
  return lines;
}

bool LineHasKey(std::string_view line, std::string_view upperKeyEq) {
  return line.size() >= upperKeyEq.size() && Upper(line.substr(0, upperKeyEq.size())) == upperKeyEq;
}

}  // namespace

std::string LoadAircraftSelection(std::string_view file, std::string_view key,
                                  std::string_view missing) {
  const std::string keyEq = Upper(key) + "=";
  for (const std::string& line : FlatLines(ReadFile(file))) {
    if (!LineHasKey(line, keyEq)) continue;
    std::string value = Trim(std::string_view(line).substr(keyEq.size()));
    if (!INIValueNumber(value)) return std::string(missing);
    return value;
  }
  return std::string(missing);
}

bool SaveAircraftSelection(std::string_view file, std::string_view key, std::string_view value) {
  const std::string keyEq = Upper(key) + "=";
  const std::string newLine = std::string(key) + "=" + std::string(value);
  std::vector<std::string> lines = FlatLines(ReadFile(file));
  bool replaced = false;
  for (std::string& line : lines) {
    if (LineHasKey(line, keyEq)) {
      line = newLine;
      replaced = true;
      break;
    }
  }
  if (!replaced) lines.push_back(newLine);
  std::string text;
  for (const std::string& line : lines) text += line + "\r\n";
  return WriteFileAtomic(file, text);
}

}  // namespace vantoro
