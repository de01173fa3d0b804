#include "records/markup.h"

#include "base/numbers.h"

namespace vantoro {

namespace {

void ReplaceAll(std::string& text, std::string_view from, std::string_view to) {
  if (from.empty()) return;
  size_t pos = 0;
  while ((pos = text.find(from, pos)) != std::string::npos) {
    text.replace(pos, from.size(), to);
    pos += to.size();
  }
}

constexpr std::string_view kValueTags[] = {"[VERSION]", "[SIM_VERSION]", "[VISIBILITY]",
                                           "[WINDSPEED]"};
constexpr std::string_view kPairTags[] = {"[HEADER]", "[/HEADER]", "[SCORE]", "[/SCORE]",
                                          "[LIST]",   "[/LIST]",   "[STATS]", "[/STATS]"};

// A point of a list: "* " at the start of a line.
void ListPoints(std::string& text) {
  if (text.rfind("* ", 0) == 0) text.replace(0, 2, "<li>");
  const std::string from = std::string(kLineBreak) + "* ";
  const std::string to = std::string(kLineBreak) + "<li>";
  ReplaceAll(text, from, to);
}

}  // namespace

std::string RemoveMarkup(std::string_view text) {
  std::string out(text);
  for (std::string_view tag : kPairTags) ReplaceAll(out, tag, "");
  for (std::string_view tag : kValueTags) ReplaceAll(out, tag, "");
  return out;
}

std::string ApplyMarkup(std::string_view text, const MarkupValues& v) {
  std::string out(text);
  ReplaceAll(out, "[HEADER]", "<font size='5'><b>");
  ReplaceAll(out, "[/HEADER]", "</b></font>");
  ReplaceAll(out, "[SCORE]", "<b>");
  ReplaceAll(out, "[/SCORE]", "</b>");
  // The line break before a list goes with it: no empty line above the list.
  ReplaceAll(out, std::string(kLineBreak) + "[LIST]", "<ul>");
  ReplaceAll(out, "[LIST]", "<ul>");
  ReplaceAll(out, "[/LIST]", "</ul>");
  ListPoints(out);
  ReplaceAll(out, kLineBreak, "<br>\r\n");
  ReplaceAll(out, "[VERSION]", v.Version + "<br>");
  ReplaceAll(out, "[SIM_VERSION]", "Using: " + v.SimulatorName + "<br>");
  ReplaceAll(out, "[VISIBILITY]",
             "Visibility: " + FormatFixed(v.Visibility, 2) + " Miles &nbsp;&nbsp;&nbsp;&nbsp;");
  ReplaceAll(out, "[WINDSPEED]", "Wind: " + std::to_string(v.WindSpeed) + " Knots<br>");
  if (v.PilotImage.empty()) {
    ReplaceAll(out, "[STATS]", "");
    ReplaceAll(out, "[/STATS]", "");
  } else {
    ReplaceAll(
        out, "[STATS]",
        "<table border=0><tr><td align=center width=90><img src='" + v.PilotImage + "'></td><td>");
    ReplaceAll(out, "[/STATS]", "</td></tr></table>");
  }
  return out;
}

}  // namespace vantoro
