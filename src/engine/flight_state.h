// The state of the polling tick: connection, flight modes, latches and the
// counters of the automatic transitions.
#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "engine/approach_state.h"
#include "engine/ground_state.h"
#include "engine/route_state.h"
#include "engine/runway_choice.h"
#include "engine/stats_view.h"
#include "link/fsdata.h"
#include "records/clocks.h"
#include "records/flight_stats.h"

namespace vantoro {

inline constexpr int32_t kCruiseTargetNotSet = -20000;
inline constexpr int kHotKeySlots = 15;

struct HotKey {
  int16_t KeyCode = 0;   // low byte the virtual key, high byte the shift state
  int32_t Offset = 0;    // offset of its entry in the simulator, 0 when not registered
  int16_t Toggle = -1;   // -1 until registered
  bool Pressed = false;  // pressed for this tick
};

// The sixteen bytes of flags that begin with the modes, as copied each tick.
struct ModeFlags {
  bool Taxiing = false;
  bool TakeOff = false;
  bool Cruise = false;
  bool Landing = false;

  bool Any() const { return Taxiing || TakeOff || Cruise || Landing; }
};

struct FlightState {
  // Connection.
  bool Connected = false;      // the link is open
  bool UserConnected = false;  // the Connect button was pressed ("Disconnect" caption)
  int32_t ReadErrors = 0;
  int32_t TickCount = 0;
  std::string Status;         // the status line
  std::string SimulatorName;  // "FSX", ...
  StatsView Stats;            // what the main window shows of the link and the aircraft

  // The flight.
  bool FlightStarted = false;
  int32_t FlightStartTick = 0;
  bool Crashed = false;
  bool CrashOnLanding = false;
  ModeFlags Modes;
  ModeFlags PreviousModes;
  bool HasTouchedDown = false;
  int32_t GroundLatch = 0;
  int32_t TouchdownArmed = 0;
  bool TouchAndGoInProgress = false;  // the flight is being closed by a touch-and-go
  bool GoAroundEndFlight = false;
  bool PreviousGoAroundEndFlight = false;
  int32_t LevelFlightTicks = 0;
  int32_t DescentTicks = 0;
  int32_t LandingModeEntryTime = 0;
  int32_t CruiseTargetAltitude = kCruiseTargetNotSet;
  int32_t CruiseTargetAltitudeTwo = kCruiseTargetNotSet;
  int32_t FlightTimeAtLanding = 0;
  int32_t TouchdownTick = 0;
  int32_t LandingFlareState = 0;
  int32_t LastFlightTime = -2;  // GetFlightTime of the tick before, for the clock-jump test
  bool UnknownAircraftShown = false;
  double InitialFuelGallons = 0;
  double InitialFuelWeight = 0;
  bool CircuitsWanted = false;
  bool ExtraSpeechWanted = false;
  bool MicEnabled = false;
  // The aircraft's resting pitch on its wheels, degrees: a touchdown with the
  // nose further down than 8 degrees below it is a crash.
  int32_t PitchTrim = 0;

  // Track every fourth tick.
  double TrackLatitude = 0;
  double TrackLongitude = 0;
  int32_t GroundTrack = 0;
  int32_t MagneticTrack = 0;

  // The touchdown records: [1] the first tick on the ground, [0] the tick after.
  std::array<FSData, 2> LandingData{};

  // Hot keys 1..15 (slot 0 unused) and the waiting voice or key action.
  std::array<HotKey, kHotKeySlots + 1> HotKeys{};
  int32_t VoiceAction = 0;

  // The flights of this connection.
  std::array<FlightStats, kFlightTableSize> Flights{};
  int32_t CurrentFlight = 1;
  FlightStats& Flight() { return Flights[static_cast<size_t>(CurrentFlight)]; }
  const FlightStats& Flight() const { return Flights[static_cast<size_t>(CurrentFlight)]; }

  Clocks clocks;

  // The nearest and the landing runway of the world data.
  RunwayChoice Runways;
  ApproachState approach;  // the approach monitors
  GroundState Ground;      // the ground rules' memory
};

}  // namespace vantoro
