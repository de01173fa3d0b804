// A recording flown in real time through the live program, the demo without
// a simulator: its bytes go into an offset image that an image link serves,
// one recording tick before each polling tick, so the loop's own timer sets
// the pace. Hot keys and the wall clock of the recording act as in replay.
#pragma once

#include <cstdint>

#include "base/seams.h"
#include "link/image_link.h"
#include "link/recording.h"

namespace vantoro {

class Instructor;

class RecordingFeed {
 public:
  explicit RecordingFeed(Recording recording);
  RecordingFeed(const RecordingFeed&) = delete;
  RecordingFeed& operator=(const RecordingFeed&) = delete;

  SimLink& link() { return link_; }
  // The recording's wall clock: it stands still but for half a second a tick.
  const Clock& clock() const { return clock_; }

  // Before a polling tick: the recording's lines up to its next tick take
  // effect. False when the recording has no tick left (nothing changes).
  bool BeforeTick(Instructor& instructor);
  // After the polling tick: the clock moves on half a second.
  void AfterTick();

  int64_t TicksServed() const { return served_; }
  bool Finished() const { return index_ >= recording_.steps.size() && ticksLeft_ == 0; }

 private:
  Recording recording_;
  OffsetImage image_;
  ImageLink link_;
  FixedClock clock_;
  size_t index_ = 0;
  int32_t ticksLeft_ = 0;  // of the "tick N" line last reached
  int64_t served_ = 0;
};

}  // namespace vantoro
