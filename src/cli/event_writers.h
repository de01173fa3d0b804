// The two ways vantoro-cli tells what the instructor did during a replay:
// JSON lines for programs (one object per event, "tick" and "type" first,
// then the event's fields in order) and a transcript for people (virtual time,
// what was said, shown and scored).
#pragma once

#include <cstdint>
#include <ostream>
#include <string>
#include <string_view>

#include "base/events.h"

namespace vantoro {

// A JSON string literal, quotes included. Bytes that are not valid UTF-8
// (aircraft titles in a Windows code page) are read as Latin-1, so the line
// stays valid JSON.
std::string JsonString(std::string_view text);
// One event as one JSON object, without the line break.
std::string EventJson(const Event& event);

class JsonLinesWriter final : public Events {
 public:
  explicit JsonLinesWriter(std::ostream& out) : out_(out) {}
  void Emit(const Event& event) override;
  using Events::Emit;

 private:
  std::ostream& out_;
};

// Virtual time as the transcript shows it: "mm:ss.s" (minutes grow past 99).
std::string FormatVirtualTime(int64_t milliseconds);

// The human-readable transcript. The replay owns the virtual time and the
// transcript reads it when an event arrives.
class Transcript final : public Events {
 public:
  Transcript(std::ostream& out, const int64_t& virtualMilliseconds)
      : out_(out), now_(virtualMilliseconds) {}
  void Emit(const Event& event) override;
  using Events::Emit;

 private:
  void Line(std::string_view label, std::string_view text);
  // Lines under the last one; `first` when the label is already written.
  void Continue(std::string_view text, bool first);

  std::ostream& out_;
  const int64_t& now_;
};

}  // namespace vantoro
