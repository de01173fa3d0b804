#include "link/recording.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <limits>
#include <optional>

#include "base/files.h"
#include "base/gzip.h"
#include "link/snapshot.h"

namespace vantoro {

namespace {

// A recording larger than this, as stored or inflated, is refused rather than
// read: a day of flying at two ticks a second is some tens of megabytes.
constexpr size_t kMaxRecordingBytes = size_t{256} << 20;
// Changed bytes closer than this are written on one "set" line.
constexpr uint32_t kMergeGap = 4;
constexpr uint32_t kMaxSetBytes = 64;

bool IsSpace(char c) {
  return c == ' ' || c == '\t';
}

std::string_view TrimView(std::string_view s) {
  while (!s.empty() && (IsSpace(s.front()) || s.front() == '\r')) s.remove_prefix(1);
  while (!s.empty() && (IsSpace(s.back()) || s.back() == '\r')) s.remove_suffix(1);
  return s;
}

// Splits off the first word; `rest` keeps what follows its separating blanks.
std::string_view NextWord(std::string_view& rest) {
  size_t i = 0;
  while (i < rest.size() && !IsSpace(rest[i])) ++i;
  std::string_view word = rest.substr(0, i);
  while (i < rest.size() && IsSpace(rest[i])) ++i;
  rest.remove_prefix(i);
  return word;
}

// Text of a user's token for an error message: printable, not too long.
std::string Shown(std::string_view s) {
  std::string out;
  for (char c : s.substr(0, 40)) {
    const auto u = static_cast<unsigned char>(c);
    if (u < 0x20 || u == 0x7F) {
      char b[8];
      std::snprintf(b, sizeof b, "\\x%02X", u);
      out += b;
    } else {
      out += c;
    }
  }
  if (s.size() > 40) out += "...";
  return out;
}

int HexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

struct TypeInfo {
  std::string_view name;
  uint32_t size;
  bool isFloat;
  bool isSigned;
};

constexpr TypeInfo kTypes[] = {
    {"u8", 1, false, false},  {"u16", 2, false, false}, {"u32", 4, false, false},
    {"u64", 8, false, false}, {"i8", 1, false, true},   {"i16", 2, false, true},
    {"i32", 4, false, true},  {"i64", 8, false, true},  {"f32", 4, true, true},
    {"f64", 8, true, true},
};

const TypeInfo* FindType(std::string_view name) {
  for (const TypeInfo& t : kTypes)
    if (t.name == name) return &t;
  return nullptr;
}

void PutLittleEndian(uint64_t v, uint32_t size, std::vector<uint8_t>& out) {
  for (uint32_t i = 0; i < size; ++i) out.push_back(static_cast<uint8_t>(v >> (8 * i)));
}

class Parser {
 public:
  Parser(std::string_view name, Recording& out) : name_(name), out_(out) {}

  bool Run(std::string_view text, std::string& error);

 private:
  bool Fail(std::string what) {
    error_ = name_ + ":" + std::to_string(line_) + ": " + what;
    return false;
  }
  bool Line(std::string_view text);
  bool Offset(std::string_view word, uint32_t& offset);
  bool Typed(const TypeInfo& type, std::string_view rest, RecordingStep& step);
  bool Bytes(std::string_view rest, RecordingStep& step);
  bool InRange(const RecordingStep& step);
  bool NoMore(std::string_view rest) {
    if (rest.empty()) return true;
    return Fail("unexpected '" + Shown(rest) + "' at the end of the line");
  }

  std::string name_;
  Recording& out_;
  int line_ = 0;
  std::string error_;
};

bool Parser::Run(std::string_view text, std::string& error) {
  // A byte-order mark some editors put first is not part of the first line.
  if (text.substr(0, 3) == "\xEF\xBB\xBF") text.remove_prefix(3);
  // Room for a step a line, made at once: a long recording is not moved step
  // by step as it grows.
  out_.steps.reserve(out_.steps.size() +
                     static_cast<size_t>(std::count(text.begin(), text.end(), '\n')) + 1);
  bool first = true;
  while (first || !text.empty()) {
    ++line_;
    const size_t end = text.find('\n');
    std::string_view line = text.substr(0, end);
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    if (first) {
      first = false;
      std::string_view head = TrimView(line);
      if (head == kRecordingFirstLine) continue;
      std::string_view rest = head;
      if (NextWord(rest) == "vantoro-recording") {
        Fail("recording version '" + Shown(rest) + "' is not one this program reads (" +
             std::string(kRecordingFirstLine) + ")");
      } else {
        Fail("not a recording: the first line must be \"" + std::string(kRecordingFirstLine) +
             "\"");
      }
      error = error_;
      return false;
    }
    if (!Line(line)) {
      error = error_;
      out_.steps.clear();
      return false;
    }
  }
  return true;
}

bool Parser::Offset(std::string_view word, uint32_t& offset) {
  if (word.empty()) return Fail("an offset is missing");
  if (word.size() > 2 && word[0] == '0' && (word[1] == 'x' || word[1] == 'X'))
    return Fail("offset '" + Shown(word) + "' must be written without \"0x\"");
  uint64_t v = 0;
  for (char c : word) {
    const int d = HexDigit(c);
    if (d < 0 || v > 0xFFFFFFFull) return Fail("malformed offset '" + Shown(word) + "'");
    v = v * 16 + static_cast<uint64_t>(d);
  }
  offset = static_cast<uint32_t>(v);
  return true;
}

bool Parser::InRange(const RecordingStep& step) {
  const auto size = static_cast<uint32_t>(step.bytes.size());
  if (OffsetImage::InBlocks(step.offset, size)) return true;
  char where[64];
  std::snprintf(where, sizeof where, "%u byte%s at %04X", size, size == 1 ? "" : "s", step.offset);
  return Fail(std::string("a write of ") + where +
              " lies outside the offset blocks (0020-401F, 6000-61FF, B800-C7FF, E020-1001F)");
}

bool Parser::Typed(const TypeInfo& type, std::string_view rest, RecordingStep& step) {
  std::string_view word = NextWord(rest);
  if (!Offset(word, step.offset)) return false;
  std::string_view number = NextWord(rest);
  if (number.empty()) return Fail("a value is missing after the offset");
  if (!NoMore(rest)) return false;
  const std::string what = std::string(type.name);
  std::string_view digits = number;
  if (digits.size() > 1 && digits[0] == '+') digits.remove_prefix(1);
  const char* first = digits.data();
  const char* last = digits.data() + digits.size();
  if (type.isFloat) {
    double v = 0;
    auto [p, ec] = std::from_chars(first, last, v);
    if (ec != std::errc() || p != last || !std::isfinite(v))
      return Fail("malformed number '" + Shown(number) + "' for " + what);
    if (type.size == 4) {
      if (std::fabs(v) > std::numeric_limits<float>::max())
        return Fail("value " + Shown(number) + " is out of range for f32");
      const auto f = static_cast<float>(v);
      uint32_t bits;
      std::memcpy(&bits, &f, 4);
      PutLittleEndian(bits, 4, step.bytes);
    } else {
      uint64_t bits;
      std::memcpy(&bits, &v, 8);
      PutLittleEndian(bits, 8, step.bytes);
    }
    return InRange(step);
  }
  if (type.isSigned) {
    int64_t v = 0;
    auto [p, ec] = std::from_chars(first, last, v);
    if (ec == std::errc::result_out_of_range)
      return Fail("value " + Shown(number) + " is out of range for " + what);
    if (ec != std::errc() || p != last)
      return Fail("malformed number '" + Shown(number) + "' for " + what);
    const int bits = static_cast<int>(type.size) * 8;
    if (bits < 64) {
      const int64_t low = -(int64_t{1} << (bits - 1));
      const int64_t high = (int64_t{1} << (bits - 1)) - 1;
      if (v < low || v > high)
        return Fail("value " + Shown(number) + " is out of range for " + what + " (" +
                    std::to_string(low) + ".." + std::to_string(high) + ")");
    }
    PutLittleEndian(static_cast<uint64_t>(v), type.size, step.bytes);
    return InRange(step);
  }
  if (!digits.empty() && digits[0] == '-')
    return Fail("value " + Shown(number) + " is out of range for " + what + " (no sign)");
  uint64_t v = 0;
  auto [p, ec] = std::from_chars(first, last, v);
  if (ec == std::errc::result_out_of_range)
    return Fail("value " + Shown(number) + " is out of range for " + what);
  if (ec != std::errc() || p != last)
    return Fail("malformed number '" + Shown(number) + "' for " + what);
  if (type.size < 8 && v >> (type.size * 8) != 0)
    return Fail("value " + Shown(number) + " is out of range for " + what + " (0.." +
                std::to_string((uint64_t{1} << (type.size * 8)) - 1) + ")");
  PutLittleEndian(v, type.size, step.bytes);
  return InRange(step);
}

bool Parser::Bytes(std::string_view rest, RecordingStep& step) {
  if (!Offset(NextWord(rest), step.offset)) return false;
  if (rest.empty()) return Fail("set needs bytes after the offset (hex pairs)");
  while (!rest.empty()) {
    std::string_view word = NextWord(rest);
    if (word.size() % 2 != 0) return Fail("bytes '" + Shown(word) + "' are not whole hex pairs");
    for (size_t i = 0; i < word.size(); i += 2) {
      const int hi = HexDigit(word[i]);
      const int lo = HexDigit(word[i + 1]);
      if (hi < 0 || lo < 0) return Fail("malformed byte '" + Shown(word.substr(i, 2)) + "'");
      step.bytes.push_back(static_cast<uint8_t>(hi * 16 + lo));
    }
  }
  return InRange(step);
}

bool Parser::Line(std::string_view text) {
  std::string_view rest = TrimView(text);
  if (rest.empty() || rest.front() == '#') return true;
  // The text of "str" and "say" keeps its inner blanks; the trailing ones go.
  const std::string_view directive = NextWord(rest);
  RecordingStep step;
  step.line = line_;

  if (const TypeInfo* type = FindType(directive)) {
    step.kind = RecordingStep::Kind::Write;
    if (!Typed(*type, rest, step)) return false;
  } else if (directive == "set") {
    step.kind = RecordingStep::Kind::Write;
    if (!Bytes(rest, step)) return false;
  } else if (directive == "str") {
    step.kind = RecordingStep::Kind::Write;
    if (!Offset(NextWord(rest), step.offset)) return false;
    step.bytes.assign(rest.begin(), rest.end());
    step.bytes.push_back(0);
    if (!InRange(step)) return false;
  } else if (directive == "clock") {
    step.kind = RecordingStep::Kind::Clock;
    const std::string_view when = NextWord(rest);
    if (when.empty()) return Fail("clock needs a date and time (2026-11-21T14:05:00)");
    if (!ParseIsoTime(when, step.clock))
      return Fail("malformed date and time '" + Shown(when) + "' (2026-11-21T14:05:00)");
    if (!NoMore(rest)) return false;
  } else if (directive == "key") {
    step.kind = RecordingStep::Kind::Key;
    const std::string_view word = NextWord(rest);
    int v = 0;
    auto [p, ec] = std::from_chars(word.data(), word.data() + word.size(), v);
    if (word.empty() || ec != std::errc() || p != word.data() + word.size() ||
        v < kRecordingKeyFirst || v > kRecordingKeyLast)
      return Fail("key needs a hot key slot from 1 to 15, not '" + Shown(word) + "'");
    step.key = v;
    if (!NoMore(rest)) return false;
  } else if (directive == "say") {
    step.kind = RecordingStep::Kind::Say;
    if (rest.empty()) return Fail("say needs the phrase the pilot speaks");
    step.phrase = std::string(rest);
  } else if (directive == "tick") {
    step.kind = RecordingStep::Kind::Tick;
    const std::string_view word = NextWord(rest);
    if (!word.empty()) {
      int64_t v = 0;
      auto [p, ec] = std::from_chars(word.data(), word.data() + word.size(), v);
      if (ec != std::errc() || p != word.data() + word.size())
        return Fail("malformed tick count '" + Shown(word) + "'");
      if (v < 1 || v > kRecordingMaxTicksPerLine)
        return Fail("tick count " + Shown(word) + " is out of range (1.." +
                    std::to_string(kRecordingMaxTicksPerLine) + ")");
      step.ticks = static_cast<int32_t>(v);
    }
    if (!NoMore(rest)) return false;
  } else {
    return Fail("unknown directive '" + Shown(directive) + "'");
  }
  out_.steps.push_back(std::move(step));
  return true;
}

bool IsLeap(int y) {
  return (y % 4 == 0 && y % 100 != 0) || y % 400 == 0;
}

int DaysIn(int y, int m) {
  static const int kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  return m == 2 && IsLeap(y) ? 29 : kDays[m - 1];
}

// Reads exactly `width` digits.
bool Digits(std::string_view s, size_t at, size_t width, int& v) {
  if (at + width > s.size()) return false;
  v = 0;
  for (size_t i = at; i < at + width; ++i) {
    if (s[i] < '0' || s[i] > '9') return false;
    v = v * 10 + (s[i] - '0');
  }
  return true;
}

}  // namespace

int64_t Recording::TotalTicks() const {
  int64_t n = 0;
  for (const RecordingStep& s : steps)
    if (s.kind == RecordingStep::Kind::Tick) n += s.ticks;
  return n;
}

bool ParseRecording(std::string_view name, std::string_view text, Recording& out,
                    std::string& error) {
  out = Recording{};
  out.name = std::string(name);
  Parser parser(name, out);
  if (parser.Run(text, error)) return true;
  out.steps.clear();
  return false;
}

bool LoadRecording(const std::string& path, Recording& out, std::string& error) {
  out = Recording{};
  std::error_code ec;
  if (!std::filesystem::is_regular_file(path, ec)) {
    error = path + ": no such recording";
    return false;
  }
  InflateLimits limits;
  limits.MaxBytes = kMaxRecordingBytes;
  if (std::filesystem::file_size(path, ec) > limits.MaxBytes) {
    error = path + ": too large for a recording";
    return false;
  }
  const std::optional<std::string> raw = TryReadFile(path);
  if (!raw) {
    error = path + ": cannot be read";
    return false;
  }
  std::string text;
  if (InflateResult r = InflateLimited(*raw, text, limits); r != InflateResult::Ok) {
    error = path + ": " + std::string(InflateProblem(r));
    return false;
  }
  return ParseRecording(path, text, out, error);
}

void ApplyWrite(OffsetImage& image, const RecordingStep& step) {
  image.SetBytes(step.offset, step.bytes.data(), static_cast<uint32_t>(step.bytes.size()));
}

StepEffect ApplyStep(const RecordingStep& step, OffsetImage& image, FixedClock& clock) {
  StepEffect effect;
  switch (step.kind) {
    case RecordingStep::Kind::Write:
      ApplyWrite(image, step);
      break;
    case RecordingStep::Kind::Clock:
      clock.Set(step.clock);
      break;
    case RecordingStep::Kind::Key:
      effect.key = step.key;
      break;
    case RecordingStep::Kind::Say:
      effect.phrase = &step.phrase;
      break;
    case RecordingStep::Kind::Tick:
      break;
  }
  return effect;
}

bool ParseIsoTime(std::string_view s, WallTime& out) {
  WallTime t;
  if (s.size() < 19 || s[4] != '-' || s[7] != '-' || (s[10] != 'T' && s[10] != 't') ||
      s[13] != ':' || s[16] != ':')
    return false;
  int second = 0;
  if (!Digits(s, 0, 4, t.year) || !Digits(s, 5, 2, t.month) || !Digits(s, 8, 2, t.day) ||
      !Digits(s, 11, 2, t.hour) || !Digits(s, 14, 2, t.minute) || !Digits(s, 17, 2, second))
    return false;
  double fraction = 0;
  if (s.size() > 19) {
    if (s[19] != '.' || s.size() == 20) return false;
    double scale = 0.1;
    for (size_t i = 20; i < s.size(); ++i, scale /= 10) {
      if (s[i] < '0' || s[i] > '9') return false;
      fraction += (s[i] - '0') * scale;
    }
  }
  if (t.year < 1 || t.month < 1 || t.month > 12 || t.day < 1 || t.day > DaysIn(t.year, t.month) ||
      t.hour > 23 || t.minute > 59 || second > 59)
    return false;
  t.second = second + fraction;
  out = t;
  return true;
}

std::string FormatIsoTime(const WallTime& t) {
  char b[40];
  std::snprintf(b, sizeof b, "%04d-%02d-%02dT%02d:%02d:%02d", t.year, t.month, t.day, t.hour,
                t.minute, static_cast<int>(std::floor(t.second)));
  return b;
}

RecordingWriter::RecordingWriter()
    : main_(kMainBlockSize),
      gps_(kGpsBlockSize),
      metar_(kMetarBlockSize),
      traffic_(kTrafficBlockSize) {
  text_ = std::string(kRecordingFirstLine) + "\n";
}

void RecordingWriter::Clock(const WallTime& t) {
  text_ += "clock " + FormatIsoTime(t) + "\n";
}

void RecordingWriter::Comment(std::string_view text) {
  text_ += "# ";
  for (char c : text) text_ += (c == '\n' || c == '\r') ? ' ' : c;
  text_ += "\n";
}

void RecordingWriter::Key(int slot) {
  text_ += "key " + std::to_string(slot) + "\n";
}

void RecordingWriter::Diff(uint32_t first, const uint8_t* now, uint8_t* before, uint32_t size) {
  uint32_t i = 0;
  while (i < size) {
    if (now[i] == before[i]) {
      ++i;
      continue;
    }
    // A run of changed bytes, taking in short unchanged stretches between them.
    uint32_t end = i + 1;
    uint32_t lastChanged = i;
    while (end < size && end - i < kMaxSetBytes && end - lastChanged <= kMergeGap) {
      if (now[end] != before[end]) lastChanged = end;
      ++end;
    }
    char head[24];
    std::snprintf(head, sizeof head, "set %04X ", first + i);
    text_ += head;
    for (uint32_t k = i; k <= lastChanged; ++k) {
      char b[3];
      std::snprintf(b, sizeof b, "%02X", now[k]);
      text_ += b;
      before[k] = now[k];
    }
    text_ += "\n";
    i = lastChanged + 1;
  }
}

void RecordingWriter::SampleImage(const OffsetImage& image) {
  std::vector<uint8_t> now;
  auto block = [&](uint32_t first, std::vector<uint8_t>& before) {
    now.resize(before.size());
    image.GetBytes(first, now.data(), static_cast<uint32_t>(now.size()));
    Diff(first, now.data(), before.data(), static_cast<uint32_t>(now.size()));
  };
  block(kMainBlockOffset, main_);
  block(kGpsBlockOffset, gps_);
  block(kMetarBlockOffset, metar_);
  block(kTrafficBlockOffset, traffic_);
  text_ += "tick\n";
}

bool RecordingWriter::Sample(SimLink& link, int& result) {
  std::vector<uint8_t> main(kMainBlockSize), gps(kGpsBlockSize), metar(kMetarBlockSize),
      traffic(kTrafficBlockSize);
  const bool queued = link.Read(kMainBlockOffset, kMainBlockSize, main.data(), result) &&
                      link.Read(kGpsBlockOffset, kGpsBlockSize, gps.data(), result) &&
                      link.Read(kMetarBlockOffset, kMetarBlockSize, metar.data(), result) &&
                      link.Read(kTrafficBlockOffset, kTrafficBlockSize, traffic.data(), result);
  if (!queued) {
    // Send what was queued so that no read is left pointing at these buffers.
    int ignored = kLinkOk;
    link.Process(ignored);
    return false;
  }
  if (!link.Process(result)) return false;
  Diff(kMainBlockOffset, main.data(), main_.data(), kMainBlockSize);
  Diff(kGpsBlockOffset, gps.data(), gps_.data(), kGpsBlockSize);
  Diff(kMetarBlockOffset, metar.data(), metar_.data(), kMetarBlockSize);
  Diff(kTrafficBlockOffset, traffic.data(), traffic_.data(), kTrafficBlockSize);
  text_ += "tick\n";
  return true;
}

}  // namespace vantoro
