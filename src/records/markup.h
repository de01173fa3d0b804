// The markup of the reports: one text with tags gives both the plain display
// of the log box and the HTML of the pilot's log book.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace vantoro {

// The line break of every report text.
inline constexpr std::string_view kLineBreak = "\r\n";

// What the tags that stand for values are replaced by in HTML.
struct MarkupValues {
  std::string Version;        // the program's version caption
  std::string SimulatorName;  // the running simulator ("FSX")
  double Visibility = 0;      // statute miles
  int32_t WindSpeed = 0;      // knots
  std::string PilotImage;     // path of the pilot's picture, or empty
};

// The report for the log box: every tag removed.
std::string RemoveMarkup(std::string_view text);
// The report as HTML for the log book.
std::string ApplyMarkup(std::string_view text, const MarkupValues& values);

}  // namespace vantoro
