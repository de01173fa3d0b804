// The runways the tick picks from the world data: the nearest runway end,
// looked for every 32nd tick, and the landing runway, picked again when the
// aircraft comes down through 500 feet above the ground. The approach rules
// and the spoken phrases read them from here.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "world/runway.h"

namespace vantoro {

struct Cockpit;
struct WorldState;

inline constexpr int32_t kCloseRunwaysEveryTicks = 32;
// Coming down through this height above the ground picks the landing runway.
inline constexpr double kLandingRunwayPickAGL = 500;
// The nearest airport is announced only above this height, airborne.
inline constexpr double kAnnounceAirportAboveAGL = 800;
// The switch tips and the airport announcement wait for this many ticks.
inline constexpr int32_t kAnnounceAirportAfterTicks = 10;

// Why a landing runway was chosen; the event stream says it.
enum class LandingRunwayReason { ILS, Plan, Ahead, Wind, Nearest };
// "ils", "plan", "ahead", "wind", "nearest".
const char* LandingRunwayReasonName(LandingRunwayReason reason);

// What the landing runway is chosen from, besides the working set.
struct LandingRunwayQuestion {
  double Latitude = 0;
  double Longitude = 0;
  double Nav1Freq = 0;  // MHz
  int32_t Track = 0;    // true ground track, degrees
  int32_t SurfaceWindDirection = 0;
  bool FloatPlane = false;
  std::string_view PlanDestination;  // the flight plan's destination airfield; "" without one
};

struct LandingRunwayPick {
  const Runway* Found = nullptr;  // points into the runway database
  LandingRunwayReason Reason = LandingRunwayReason::Nearest;
};

// The runway a pilot on this approach means to land on, the first of:
//  1. a runway whose ILS NAV1 is tuned to, within 15 nm (one facing the track
//     before one behind it);
//  2. a runway of the flight plan's destination within 15 nm, the one most
//     into the wind;
//  3. the nearest runway ahead within 15 nm: its heading and the bearing to it
//     within 10 degrees of the track;
//  4. the runway most into the wind of the nearest airfield within 3 nm (the
//     circuit being flown there);
//  5. the nearest runway within 15 nm.
// Only runways the aircraft can land on count (LandableRunway). Found is
// nullptr when none is near.
LandingRunwayPick ChooseLandingRunway(const WorldState& world, const LandingRunwayQuestion& q);

// The question as the aircraft asks it now, with the flight plan's destination.
LandingRunwayQuestion LandingRunwayQuestionOf(const Cockpit& c);

// Makes the pick the destination of the approach and tells the observers
// which runway and why ("runway" event).
void TakeLandingRunway(Cockpit& c, const LandingRunwayPick& pick);

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
// With a runway database: coming down through 500 feet AGL picks the landing
// runway again (ChooseLandingRunway); the bearing to the landing runway is
// refreshed on every tick.
void PickLandingRunway(Cockpit& c);
// With the option on, above 800 feet AGL and airborne: the nearest airport
// is said when it is not the one said last.
void AnnounceNearestAirport(Cockpit& c);

}  // namespace vantoro
