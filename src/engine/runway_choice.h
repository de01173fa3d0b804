// The runways the tick picks from the world data: the nearest runway end,
// looked for every 32nd tick, and the landing runway, picked again when the
// aircraft comes down through 500 feet above the ground. The approach rules
// and the spoken phrases read them from here.
#pragma once

#include <cstdint>
#include <string>

#include "world/runway.h"

namespace vantoro {

struct Cockpit;

inline constexpr int32_t kCloseRunwaysEveryTicks = 32;
// Coming down through this height above the ground picks the landing runway.
inline constexpr double kLandingRunwayPickAGL = 500;
// The nearest airport is announced only above this height, airborne.
inline constexpr double kAnnounceAirportAboveAGL = 800;
// The switch tips and the airport announcement wait for this many ticks.
inline constexpr int32_t kAnnounceAirportAfterTicks = 10;

struct RunwayChoice {
  // Both point into the runway database, which lives until the program ends.
  const Runway* NearestRunway = nullptr;  // nearest runway end, every 32nd tick
  const Runway* LandingRunway = nullptr;  // the runway ahead when coming down through 500 feet
  // Bearing from the aircraft to the landing runway less the aircraft's true
  // heading, -180..180 (negative: to the left); 0 without a landing runway.
  int32_t RunwayHeadingRelative = 0;
  // The airport code the automatic announcement spoke last.
  std::string LastAnnouncedAirport;
};

// Every 32nd tick: the working set round the aircraft is rebuilt and, when it
// holds any runway, the nearest one is found with no filter.
void FindCloseRunways(Cockpit& c);
// With a runway database: coming down through 500 feet AGL picks the nearest
// runway lying ahead and aligned within 10 degrees of the ground track; the
// bearing to the landing runway is refreshed on every tick.
void PickLandingRunway(Cockpit& c);
// With the option on, above 800 feet AGL and airborne: the nearest airport
// is said when it is not the one said last.
void AnnounceNearestAirport(Cockpit& c);

}  // namespace vantoro
