#include "cli/event_writers.h"

#include <cmath>
#include <cstdio>

namespace vantoro {

namespace {

std::string ValueText(const EventValue* v) {
  if (v == nullptr) return {};
  if (const auto* i = std::get_if<int64_t>(v)) return std::to_string(*i);
  if (const auto* d = std::get_if<double>(v)) {
    char b[32];
    std::snprintf(b, sizeof b, "%.2f", *d);
    std::string s = b;
    while (s.find('.') != std::string::npos && (s.back() == '0' || s.back() == '.')) {
      const bool point = s.back() == '.';
      s.pop_back();
      if (point) break;
    }
    return s;
  }
  if (const auto* b = std::get_if<bool>(v)) return *b ? "yes" : "no";
  return std::get<std::string>(*v);
}

constexpr size_t kLabelWidth = 11;
constexpr std::string_view kIndent = "                    ";  // time and label columns

}  // namespace

std::string FormatVirtualTime(int64_t ms) {
  if (ms < 0) ms = 0;
  const int64_t tenths = ms / 100;
  char b[32];
  std::snprintf(b, sizeof b, "%02lld:%02lld.%lld", static_cast<long long>(tenths / 600),
                static_cast<long long>(tenths / 10 % 60), static_cast<long long>(tenths % 10));
  return b;
}

void Transcript::Line(std::string_view label, std::string_view text) {
  out_ << FormatVirtualTime(now_) << "  ";
  out_ << label;
  for (size_t i = label.size(); i < kLabelWidth; ++i) out_ << ' ';
  Continue(text, true);
}

void Transcript::Continue(std::string_view text, bool first) {
  // Texts of several lines (status, reports) continue under the first.
  size_t start = 0;
  while (true) {
    const size_t end = text.find('\n', start);
    std::string_view part =
        text.substr(start, end == std::string_view::npos ? text.npos : end - start);
    if (!part.empty() && part.back() == '\r') part.remove_suffix(1);
    if (!first) out_ << kIndent;
    out_ << part << '\n';
    first = false;
    if (end == std::string_view::npos) break;
    start = end + 1;
  }
}

void Transcript::Emit(const Event& e) {
  const std::string& type = e.type;
  if (type == "spoken") {
    std::string caption = e.Text("caption");
    const std::string file = e.Text("file");
    if (caption.empty()) caption = "(" + file + ")";
    if (e.Int("missing") != 0) caption += "  [no file " + file + "]";
    Line("says", caption);
  } else if (type == "message") {
    Line("message", e.Text("text"));
  } else if (type == "mode") {
    Line("mode", e.Text("mode"));
  } else if (type == "status") {
    Line("status", e.Text("text"));
  } else if (type == "remark") {
    Line("remark", std::string(e.Int("level") >= 2 ? "red " : "amber ") + e.Text("file"));
  } else if (type == "disconnect") {
    Line("disconnect", ValueText(e.Find("reason")));
  } else if (type == "landing") {
    std::string head = "score " + ValueText(e.Find("score"));
    const std::string rating = ValueText(e.Find("rating"));
    if (!rating.empty()) head += ", " + rating;
    Line("landing", head);
    const std::string report = e.Text("report");
    if (!report.empty()) Continue(report, false);
  } else if (type == "flight") {
    Line("flight", "flight " + ValueText(e.Find("index")) + ": score " +
                       ValueText(e.Find("score")) + ", landing " + ValueText(e.Find("landing")) +
                       ", circuit " + ValueText(e.Find("circuit")) + ", duration " +
                       ValueText(e.Find("duration")));
    const std::string report = e.Text("report");
    if (!report.empty()) Continue(report, false);
  } else if (type == "log") {
    Line("log", "row written to " + e.Text("file"));
  } else if (type == "error") {
    Line("error", e.Text("text"));
  } else if (type == "end") {
    Line("end", "recording finished after " + ValueText(e.Find("ticks")) + " ticks");
  }
  // Queued and dropped sounds, counters and raw writes are for the JSON lines.
}

}  // namespace vantoro
