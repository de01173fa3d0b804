// What the traffic monitors keep between ticks: the nearest target of each
// table as found on this sample and on the one before, so that a target
// closing in is told by its distance crossing a mark, and a new nearest
// target is described once.
#pragma once

#include <cstdint>

namespace vantoro {

// The index of "no target"; slots run 1..95.
inline constexpr int32_t kNoTarget = 999;
// The distance before any target was found, feet.
inline constexpr double kNoTargetDistance = 1e12;

struct TrafficState {
  int32_t NearestGroundIndex = kNoTarget;
  double NearestGroundDistance = kNoTargetDistance;  // feet
  int32_t NearestAirIndex = kNoTarget;
  double NearestAirDistance = kNoTargetDistance;  // feet
  // The air target of the sample before, and its distance.
  int32_t PreviousAirIndex = kNoTarget;
  double PreviousAirDistance = kNoTargetDistance;
  // The clock position of the last target looked at.
  int32_t OClock = 12;

  bool operator==(const TrafficState&) const = default;
};

}  // namespace vantoro
