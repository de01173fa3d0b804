// Whether the flight is still a valid one: a crash, a change of aircraft, a
// jump of position, height or speed (a slew shows itself as one of these), or
// a jump of the simulator's clock ends the connection.
#include <cmath>
#include <cstdlib>

#include "base/numbers.h"
#include "engine/end_flight.h"
#include "engine/tick_rules.h"
#include "records/clocks.h"
#include "records/flight_stats.h"
#include "world/profiles.h"

namespace vantoro {

namespace {

constexpr int32_t kWaterSurface = 2;

// Largest changes from one tick to the next that a flying aircraft can make.
// The degrees are compared after taking the integer part, so that any change
// below one whole degree passes.
constexpr double kJumpDegrees = 0.5;
constexpr int32_t kJumpAltitude = 1200;
constexpr int32_t kJumpGS = 100;

constexpr std::string_view kJumpLines =
    "Sudden change in altitude OR\n"
    "Sudden change in ground speed OR\n"
    "Slewing mode engaged OR\n"
    "Sudden change in latitude OR\n"
    "Sudden change in longitude";

bool DegreesSteady(double now, double before) {
  return Int(std::fabs(std::fabs(now) - std::fabs(before))) < kJumpDegrees;
}

}  // namespace

bool DeclareCrash(Cockpit& c, std::string_view sound) {
  FlightState& f = c.flight;
  f.Crashed = true;
  Voice v = c.voice();
  PlayAndPurge(v,
               c.link.Now().SurfaceType == kWaterSurface
                   ? "LooksLikeYouveCrashedThePlaneInWater.wav"
                   : sound,
               0, 0);
  f.Flight().FlightCrashed = true;
  if (!f.FlightStarted) return false;
  AutoDisconnect(c, "Crash");
  WriteCrashReport(c);
  return true;
}

bool AbnormalSituationTests(Cockpit& c) {
  FlightState& f = c.flight;
  const FSData& now = c.link.Now();
  const FSData& before = c.link.Before();
  if (f.Crashed || f.TickCount <= f.FlightStartTick + kAbnormalGraceTicks) return false;

  if (now.Crashed) return DeclareCrash(c, "YouCrashedThePlane1.WAV");

  if (f.FlightStarted && now.AirFile != before.AirFile) {
    AutoDisconnect(c, "Aircraft changed by pilot");
    return true;
  }

  const bool steady = DegreesSteady(now.Latitude, before.Latitude) &&
                      DegreesSteady(now.Longitude, before.Longitude) &&
                      std::abs(now.Altitude - before.Altitude) <= kJumpAltitude &&
                      std::abs(now.GS - before.GS) <= kJumpGS;
  // Until the decoder has warmed up the aircraft may still be placed at its
  // starting position, which is no slew.
  if (!steady && f.FlightStarted && c.link.WarmUpTicks >= kWarmUpBeforeJumps) {
    AutoDisconnect(c, kJumpLines);
    return true;
  }
  return false;
}

bool CrashFlagTest(Cockpit& c) {
  if (!c.link.Now().Crashed) return false;
  return DeclareCrash(c, "YouCrashedThePlane1.WAV");
}

void UnknownAircraftNotice(Cockpit& c) {
  FlightState& f = c.flight;
  if (f.UnknownAircraftShown) return;
  if (!WantEstimatingNotice(c.aircraft, GetFlightTime(f.clocks, c.link.Now()), f.FlightStarted))
    return;
  ShowMessage(c, kUnknownAircraftNotice, kUnknownAircraftNoticeSeconds);
  f.UnknownAircraftShown = true;
}

bool ClockJumpTest(Cockpit& c) {
  FlightState& f = c.flight;
  const int32_t last = f.LastFlightTime;
  const int32_t flightTime = GetFlightTime(f.clocks, c.link.Now());
  f.LastFlightTime = flightTime;
  // A flight placed on its approach with its own start time may jump the clock.
  if (!f.FlightStarted || (c.options.StartingPosition && c.options.ApproachStartTime)) return false;
  // The flight clock counts on across midnight; a clock set back reads as
  // nearly a day ahead, so one test forward catches both.
  if (last < 0 || flightTime < 0 || flightTime - last <= kClockJumpSeconds) return false;
  AutoDisconnect(c, "Time of day or date changed");
  return true;
}

}  // namespace vantoro
