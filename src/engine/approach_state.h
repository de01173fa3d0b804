// What the approach monitors keep between ticks: the destination they coach
// the pilot to, the mode of the tick before, and the marks of this approach.
#pragma once

#include <cstdint>
#include <string>

#include "world/runway.h"

namespace vantoro {

inline constexpr double kNoBestDistance = -55555;

// What the approach monitors know of the destination and of this approach.
struct ApproachState {
  // The destination: target height gain per nautical mile (glide slope in
  // degrees x 96), runway elevation in feet (0 until known), the ILS
  // frequency as six characters ("110.50", empty without one), the airport's
  // code (empty when none is chosen) and the runway's magnetic heading.
  int32_t GlidePathFeetPerMile = 0;
  int32_t DestinationElevation = 0;
  std::string DestinationILSFrequency;
  std::string DestinationICAO;
  int32_t DestinationRunwayHeading = 0;
  DestinationRunway Destination;

  // Landing one tick earlier: a difference means that the mode has just changed.
  bool PreviousLanding = false;

  // TickCount when the aircraft came down through 500 feet; 0 before.
  int32_t LastFiveHundredFeetTick = 0;
  // The closest the aircraft came to the threshold (nautical miles) and to
  // the centre line (degrees off the runway's heading) on this approach;
  // kNoBestDistance until measured.
  double BestDistanceToThreshold = kNoBestDistance;
  double BestDistanceToCentreLine = kNoBestDistance;
};

// The sentinels of the destination queries when no destination is known.
inline constexpr double kNoDestinationDistance = -999.99;
inline constexpr int32_t kNoDestinationBearing = -99999;

}  // namespace vantoro
