// Small text helpers shared by every subsystem.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace vantoro {

std::string Trim(std::string_view s);
std::string Upper(std::string_view s);
std::string Lower(std::string_view s);
bool StartsWith(std::string_view s, std::string_view prefix);
bool EndsWith(std::string_view s, std::string_view suffix);
bool EqualsNoCase(std::string_view a, std::string_view b);
std::vector<std::string> Split(std::string_view s, char sep);
// True when the text is a number as the settings files write them
// (optional sign, digits, at most one point).
bool IsNumeric(std::string_view s);
// Last n characters (all of s when shorter).
std::string Right(std::string_view s, size_t n);

}  // namespace vantoro
