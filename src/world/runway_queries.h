// Questions asked of the runway database during a flight. Searching the whole
// world on each question would be far too slow for the polling tick, so the
// nine one-degree cells round the aircraft are gathered into a small working
// set (CloseRunways) and every query walks only that set.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "world/runways.h"

namespace vantoro {

// The value of a heading or distance limit that is not to apply.
inline constexpr double kNoLimit = -999;
// Runway heading and bearing must lie this close to the aircraft's track.
inline constexpr double kHeadingTolerance = 10;
inline constexpr double kFeetPerNauticalMile = 6076.11549;

// Rebuilds CloseRunways from the nine cells round the position (latitude
// rounded minus 1 to plus 1, longitude likewise, across the date line), so the
// set reaches at least half a degree out in every direction.
void FillCloseRunways(WorldState& world, double latitude, double longitude);

// Rebuilds AirportRunways from those of CloseRunways whose trimmed ICAO code
// equals the airport.
void FillThisAirportRunways(WorldState& world, std::string_view airport);

// The nearest runway of the working set, or nullptr. With a heading (not
// kNoLimit) the runway's heading must lie within 10 degrees of it and, with
// checkBearing, so must the bearing from the aircraft to the runway. With
// maxMiles (not kNoLimit) a runway farther away is passed over. On equal
// distances the earlier runway stays. With a heading, the search writes its
// reasoning into `reasoning` when one is given (the debug text box).
const Runway* FindClosestRunway(const WorldState& world, double latitude, double longitude,
                                double heading, double maxMiles, bool checkBearing,
                                std::string* reasoning = nullptr);

// Clock position (1..12) of a point seen from the aircraft, as the voice
// works it out from the aircraft's heading and the magnetic variation.
using OClockOfPoint = std::function<int(double latitude, double longitude)>;

// The same search with a clock position as a further filter: only runways
// that lie at `position` o'clock count.
const Runway* FindClosestRunwayOClock(const WorldState& world, double latitude, double longitude,
                                      int position, const OClockOfPoint& oClockOf,
                                      double maxMiles = kNoLimit);

// The nearest runway of the working set with no filter, and its distance in
// feet; runway nullptr when the set is empty.
struct RunwayWithinFeet {
  const Runway* Found = nullptr;
  double Feet = 0;
};
RunwayWithinFeet FindClosestRunwayWithinFeet(const WorldState& world, double latitude,
                                             double longitude);

// A runway an aircraft can be sent to land on: a water runway only for a
// float plane; never a helipad or a runway the data marks closed (its
// designator does not begin with a digit or holds an "H" or "X", or its
// airfield's name begins "[X]").
bool LandableRunway(const Runway& r, bool floatPlane);

// The nearest runway of the working set that `passes`, within maxMiles (or
// kNoLimit); on equal distances the earlier stays.
using RunwayFilter = std::function<bool(const Runway&)>;
const Runway* FindClosestRunwayWhere(const WorldState& world, double latitude, double longitude,
                                     double maxMiles, const RunwayFilter& passes);

// True when angle lies within 10 degrees either side of heading, across
// north. The range argument is not used: every caller passes 10, and the
// fixed 10 stands by design.
bool IsAngleWithinHeadingRange(double angle, double heading, double range);

}  // namespace vantoro
