#include "cli/event_writers.h"

#include <charconv>
#include <cmath>
#include <cstdio>

namespace vantoro {

namespace {

// Length of the valid UTF-8 sequence at s[i], or 0 when it is not one.
size_t Utf8Length(std::string_view s, size_t i) {
  const auto c = static_cast<unsigned char>(s[i]);
  size_t n = 0;
  uint32_t cp = 0;
  if (c < 0x80) return 1;
  if ((c & 0xE0) == 0xC0) {
    n = 2;
    cp = c & 0x1F;
  } else if ((c & 0xF0) == 0xE0) {
    n = 3;
    cp = c & 0x0F;
  } else if ((c & 0xF8) == 0xF0) {
    n = 4;
    cp = c & 0x07;
  } else {
    return 0;
  }
  if (i + n > s.size()) return 0;
  for (size_t k = 1; k < n; ++k) {
    const auto b = static_cast<unsigned char>(s[i + k]);
    if ((b & 0xC0) != 0x80) return 0;
    cp = (cp << 6) | (b & 0x3F);
  }
  // Overlong forms, surrogates and values past the last code point are not text.
  static const uint32_t kLeast[] = {0, 0, 0x80, 0x800, 0x10000};
  if (cp < kLeast[n] || cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF)) return 0;
  return n;
}

void AppendEscape(std::string& out, unsigned code) {
  char b[8];
  std::snprintf(b, sizeof b, "\\u%04X", code);
  out += b;
}

std::string NumberJson(double v) {
  // JSON has no NaN or infinity.
  if (!std::isfinite(v)) return "null";
  char b[32];
  auto [p, ec] = std::to_chars(b, b + sizeof b, v);
  if (ec != std::errc()) return "null";
  return std::string(b, p);
}

std::string ValueJson(const EventValue& v) {
  if (const auto* i = std::get_if<int64_t>(&v)) return std::to_string(*i);
  if (const auto* d = std::get_if<double>(&v)) return NumberJson(*d);
  if (const auto* b = std::get_if<bool>(&v)) return *b ? "true" : "false";
  return JsonString(std::get<std::string>(v));
}

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

std::string JsonString(std::string_view text) {
  std::string out = "\"";
  for (size_t i = 0; i < text.size();) {
    const auto c = static_cast<unsigned char>(text[i]);
    switch (c) {
      case '"':
        out += "\\\"";
        break;
      case '\\':
        out += "\\\\";
        break;
      case '\n':
        out += "\\n";
        break;
      case '\r':
        out += "\\r";
        break;
      case '\t':
        out += "\\t";
        break;
      case '\b':
        out += "\\b";
        break;
      case '\f':
        out += "\\f";
        break;
      default:
        if (c < 0x20 || c == 0x7F) {
          AppendEscape(out, c);
        } else if (c < 0x80) {
          out += static_cast<char>(c);
        } else if (const size_t n = Utf8Length(text, i)) {
          out.append(text.substr(i, n));
          i += n;
          continue;
        } else {
          AppendEscape(out, c);  // a Latin-1 byte
        }
    }
    ++i;
  }
  out += '"';
  return out;
}

std::string EventJson(const Event& event) {
  std::string out =
      "{\"tick\":" + std::to_string(event.tick) + ",\"type\":" + JsonString(event.type);
  for (const EventField& f : event.fields) {
    out += ',';
    out += JsonString(f.name);
    out += ':';
    out += ValueJson(f.value);
  }
  out += '}';
  return out;
}

void JsonLinesWriter::Emit(const Event& event) {
  out_ << EventJson(event) << '\n';
}

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
