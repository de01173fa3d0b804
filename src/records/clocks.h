// The flight clock and the block clock, both read from the simulator's own
// clock (day of year, hour, minute, second), so that simulation rate and
// pauses count as the simulator counts them.
#pragma once

#include <cstdint>

#include "link/fsdata.h"

namespace vantoro {

struct SimClockStart {
  int32_t Day = 0;  // 0: never started
  int32_t Hour = 0;
  int32_t Minute = 0;
  int32_t Second = 0;
};

struct Clocks {
  SimClockStart Flight;
  SimClockStart Block;
};

// Stores the simulator's time as the start, only when it reports a day above 0.
void StartTimer(SimClockStart& start, const FSData& now);
// Seconds since the start: -2 when never started, -1 when the simulator
// reports day 0. A day change counts 86400 seconds; across the year end the
// year has 365 days; a midnight passed before the day changed is mended.
int32_t ElapsedSeconds(const SimClockStart& start, const FSData& now);

inline void StartFlightTimer(Clocks& c, const FSData& now) {
  StartTimer(c.Flight, now);
}
inline void StartBlockTimer(Clocks& c, const FSData& now) {
  StartTimer(c.Block, now);
}
inline int32_t GetFlightTime(const Clocks& c, const FSData& now) {
  return ElapsedSeconds(c.Flight, now);
}
inline int32_t GetBlockTime(const Clocks& c, const FSData& now) {
  return ElapsedSeconds(c.Block, now);
}

}  // namespace vantoro
