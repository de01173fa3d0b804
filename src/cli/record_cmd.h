// vantoro-cli record: a live simulator's offsets into a recording, tick by
// tick, kept on disk as it grows so that an interrupted recording still
// holds every tick taken.
#pragma once

#include <cstdint>
#include <functional>
#include <ostream>
#include <string>

#include "base/seams.h"
#include "link/simlink.h"

namespace vantoro {

// Failed samples in a row that mean the simulator has gone.
inline constexpr int kRecordFailuresGone = 10;

struct RecordPacing {
  // Called before each sample: waits for the next half second and returns
  // false when the pilot has asked to stop (Ctrl+C).
  std::function<bool()> nextTick;
  int64_t maxTicks = 0;  // 0: until stopped or the simulator goes
};

// Opens the link and records into `out` (".gz": compressed at the end):
// the computer's clock, then per tick the bytes that changed. The ticks go to
// "OUT.part" beside it, flushed after each one; the end renames it to `out`.
// Returns the exit status: 0, or 2 when the link would not open or the file
// could not be written (told on `err`).
int RecordLive(SimLink& link, const Clock& clock, const std::string& out,
               const RecordPacing& pacing, std::ostream& err);

}  // namespace vantoro
