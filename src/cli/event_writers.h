// The two ways vantoro-cli tells what the instructor did during a replay:
// JSON lines for programs (JsonLinesWriter, shared with the live program in
// shell/event_json.h) and a transcript for people (virtual time, what was
// said, shown and scored).
#pragma once

#include <cstdint>
#include <ostream>
#include <string>
#include <string_view>

#include "base/events.h"
#include "shell/event_json.h"

namespace vantoro {

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
