// The flight modes: the start of a flight, the hot-key changes, the
// automatic changes of the climb, the cruise, the descent and the roll-out,
// and the lift-off test that opens every flight in the air.
#include <cstdlib>

#include "engine/approach.h"
#include "engine/circuit.h"
#include "engine/end_flight.h"
#include "engine/navigation.h"
#include "engine/procedures.h"
#include "engine/tick_rules.h"
#include "records/clocks.h"
#include "records/flight_stats.h"
#include "records/landing.h"
#include "world/profiles.h"

namespace vantoro {

namespace {

// Message times where a change does not give its own.
constexpr int kModeMessageSeconds = 3;
constexpr int kDetectedModeSeconds = 7;  // an automatic change to Cruise or Landing
constexpr int kStartLandingSeconds = 7;  // a flight that begins low in the air
constexpr int kVor1MessageSeconds = 7;
constexpr int kLandingDetectedSeconds = 2;
constexpr int kTaxiTakeOffSeconds = 6;

// A flight that begins in the air above this height begins in Cruise.
constexpr double kStartInCruiseAbove = 1000;

// Auto-detect of Cruise: level flight for ten seconds after the climb.
constexpr int32_t kLevelVSBand = 50;  // feet per minute, tick to tick
constexpr int32_t kLevelTicksNeeded = 20;
constexpr int32_t kLevelVS = 100;
constexpr double kCruiseHeightLight = 900;
constexpr int32_t kCruiseFlightTimeLight = 60;
constexpr double kCruiseHeightAny = 3000;
constexpr int32_t kCruiseFlightTimeAny = 120;

// Auto-detect of Landing: twenty seconds of steady descent.
constexpr int32_t kDescentVS = -100;
constexpr int32_t kDescentTicksNeeded = 40;
constexpr double kDescentHeightLight = 5000;
constexpr int32_t kDescentVSLight = -300;
constexpr double kDescentHeightAny = 10000;
constexpr int32_t kDescentVSAny = -600;

// The "good so far" remarks at 2000 feet, climbing and descending.
constexpr double kGoodSoFarHeight = 2000;
constexpr double kGoodSoFarClimbFrom = 1900;
constexpr double kGoodSoFarDescendFrom = 2100;

// The roll-out and the taxi.
constexpr int32_t kLandingDetectedGS = 20;
constexpr int32_t kLeaveLandingGS = 15;
constexpr int32_t kLeaveLandingGSHeavy = 25;
constexpr int32_t kTakeOffByTaxiSpeed = 35;

// A take-off sinking back: below this height, more than this a tick by both
// altimeters.
constexpr double kTooLowHeight = 20;
constexpr double kTooLowSinkPerTick = 3;

// The mode as the simulator's message line shows it.
const char* ModeStatusText(FlightMode mode) {
  switch (mode) {
    case FlightMode::Taxiing:
      return "Taxiing  ";
    case FlightMode::TakeOff:
      return "Taking Off  ";
    case FlightMode::Cruise:
      return "Cruising  ";
    case FlightMode::Landing:
      return "Landing  ";
    case FlightMode::None:
      break;
  }
  return "Parked  ";
}

// Cruise with its sounds, from a hot key or the auto-detect.
void EnterCruise(Cockpit& c, int seconds) {
  SetFlightMode(c, FlightMode::Cruise);
  ShowMessage(c, "Cruise...", seconds);
  Voice v = c.voice();
  PlayPerhaps(v, "Cruise.wav", 6, 30, 4);
  if (FlightPPScore(c.flight.Flight()) == 0) PlayPerhaps(v, "FlightGoodSoFar.wav", 97, 30, 12);
  BeginCruiseAdvice(c);
}

// The landing's score, report and verdict. A touchdown that turns out to be
// a crash ends the flight as every crash does, without a score.
void EvaluateLanding(Cockpit& c) {
  FlightState& f = c.flight;
  const LandingContext in{
      .Touchdown = f.LandingData,
      .Now = c.link.Now(),
      .Aircraft = c.aircraft,
      .HeavyAircraft = c.link.HeavyAircraft,
      .Approach = c.approach,
      .PilotName = c.options.PilotName,
      // The runway chosen for the landing is named here (approach monitors).
      .VisualAirport = {},
      .VisualRunway = {},
      .CircuitMode = f.CircuitsWanted,
      .CircuitReferenceLatitude = c.circuit.ReferenceLatitude,
      .CircuitReferenceLongitude = c.circuit.ReferenceLongitude,
      .Ended = c.clock.Now(),
  };
  Voice v = c.voice();
  const LandingVerdict verdict = LandingComputeAndSpeak(in, f.Flight(), c.plan, c.scores, v);
  c.approach.GlideslopeHeldAtFlare = false;
  c.approach.VisualGlideslopeHeldAtFlare = false;
  if (verdict != LandingVerdict::Crashed) return;
  f.Crashed = true;
  f.CrashOnLanding = true;
  if (!f.FlightStarted) return;
  AutoDisconnect(c, "Crash");
  c.scores.LogBookText = std::string(kAutoDisconnection) + "\r\n" + "Crash";
  WriteCrashReport(c);
}

}  // namespace

const char* FlightModeName(FlightMode mode) {
  switch (mode) {
    case FlightMode::Taxiing:
      return "Taxiing";
    case FlightMode::TakeOff:
      return "TakeOff";
    case FlightMode::Cruise:
      return "Cruise";
    case FlightMode::Landing:
      return "Landing";
    case FlightMode::None:
      break;
  }
  return "none";
}

FlightMode CurrentMode(const ModeFlags& m) {
  if (m.Taxiing) return FlightMode::Taxiing;
  if (m.TakeOff) return FlightMode::TakeOff;
  if (m.Cruise) return FlightMode::Cruise;
  if (m.Landing) return FlightMode::Landing;
  return FlightMode::None;
}

void SetFlightMode(Cockpit& c, FlightMode mode) {
  FlightState& f = c.flight;
  c.sound.Status.Mode = ModeStatusText(mode);
  if (CurrentMode(f.Modes) == mode) return;
  f.Modes = ModeFlags{};
  f.Modes.Taxiing = mode == FlightMode::Taxiing;
  f.Modes.TakeOff = mode == FlightMode::TakeOff;
  f.Modes.Cruise = mode == FlightMode::Cruise;
  f.Modes.Landing = mode == FlightMode::Landing;
  f.CruiseTargetAltitude = kCruiseTargetNotSet;
  f.CruiseTargetAltitudeTwo = kCruiseTargetNotSet;
  if (mode == FlightMode::Landing) f.LandingModeEntryTime = GetFlightTime(f.clocks, c.link.Now());
  c.events.Emit(f.TickCount, "mode", {{"mode", FlightModeName(mode)}});
}

AircraftIdentity IdentityOf(const Cockpit& c) {
  const FSData& now = c.link.Now();
  const std::string& sim = c.flight.SimulatorName;
  return AircraftIdentity{now.AirFile, now.AircraftTitle, now.AtcType,
                          sim == "FSX" || sim == "P3D"};
}

int32_t EnginesFiring(const FSData& now) {
  return int32_t{now.Eng1Combustion} + int32_t{now.Eng2Combustion} + int32_t{now.Eng3Combustion} +
         int32_t{now.Eng4Combustion};
}

void RestartFlightTimer(Cockpit& c) {
  FlightState& f = c.flight;
  StartFlightTimer(f.clocks, c.link.Now());
  f.LastFlightTime = GetFlightTime(f.clocks, c.link.Now());
}

void BeginFlight(Cockpit& c) {
  FlightState& f = c.flight;
  const FSData& now = c.link.Now();
  const FSData& before = c.link.Before();

  f.FlightStarted = true;
  f.FlightStartTick = f.TickCount;
  const AircraftContext context{c.root,
                                f.SimulatorName,
                                static_cast<int>(c.sim.FsId() & 0xFFFF),
                                c.options.FS2002Folder,
                                c.options.FS2004Folder,
                                c.options.FSXFolder,
                                IdentityOf(c),
                                c.link.HeavyAircraft};
  ShowMessage(c, AircraftChanged(c.aircraft, context, c.sound.InstructorVolume),
              kAircraftChangedNoticeSeconds);
  c.sound.Status.DataSource = DataSourceStatus(c.aircraft);
  f.Crashed = false;
  // The crash graph starts here (SetCrashGraph).
  RestartFlightTimer(c);
  StartBlockTimer(f.clocks, now);

  // The plan the pilot chose is read again, so that its route starts afresh;
  // the fuel leak of the failures starts at 100 percent here.
  Notices planNotices;
  const std::vector<std::string> planDisplay = AnnounceProcessFlightPlan(c.plan, &planNotices);
  for (const Notice& n : planNotices)
    c.events.Emit(f.TickCount, "notice", {{"text", NoticeText(n)}});
  if (FlightPlanCount(c.plan) > 0) {
    std::string shown;
    for (const std::string& line : planDisplay) shown += (shown.empty() ? "" : "\n") + line;
    c.events.Emit(f.TickCount, "flightplan",
                  {{"file", c.plan.File}, {"points", FlightPlanCount(c.plan)}, {"display", shown}});
  }
  if (now.AircraftTitle.empty() || now.AircraftTitle == "Unknown") f.Stats.CurrentAircraft.clear();

  c.sound.LastPlayed.fill(0);

  f.InitialFuelGallons = now.TotalFuelGallons;
  f.InitialFuelWeight = now.FuelGallonsWeight;

  if (!now.Vor1Ident.empty() && now.Vor1Ident != before.Vor1Ident && f.UserConnected) {
    ShowMessage(c, "VOR1:" + now.Vor1Ident + " " + now.Vor1Name, kVor1MessageSeconds);
    Voice v = c.voice();
    Nav1IsTunedTo(v, now);
  }

  if (now.OnGround > 0) {
    SetFlightMode(c, FlightMode::Taxiing);
    ShowMessage(c, "Taxiing...", kModeMessageSeconds);
  } else if (now.AGL > kStartInCruiseAbove) {
    SetFlightMode(c, FlightMode::Cruise);
    ShowMessage(c, "Cruise...", kModeMessageSeconds);
  } else {
    SetFlightMode(c, FlightMode::Landing);
    ShowMessage(c, "Landing...", kStartLandingSeconds);
  }
}

void AdvanceFlightMode(Cockpit& c) {
  const ModeFlags m = c.flight.Modes;
  const FSData& now = c.link.Now();
  const bool onGround = now.OnGround > 0;
  if (m.Cruise && !onGround) {
    SetFlightMode(c, FlightMode::Landing);
    ShowMessage(c, "Landing...", kModeMessageSeconds);
  } else if (m.Landing && onGround) {
    SetFlightMode(c, FlightMode::Taxiing);
    ShowMessage(c, "Taxiing...", kModeMessageSeconds);
  } else if (m.Taxiing && onGround && EnginesFiring(now) > 0) {
    SetFlightMode(c, FlightMode::TakeOff);
    ShowMessage(c, "Take Off...", kModeMessageSeconds);
  } else if (m.Taxiing && onGround) {
    GiveAdvice(c, "TakeOffWithNoEngineRunning.wav", 6, 30, 4, 1);
  } else if (m.TakeOff && !onGround) {
    EnterCruise(c, kModeMessageSeconds);
  } else {
    ShowMessage(c, "Cannot advance flight mode.", kModeMessageSeconds);
  }
}

void BackUpFlightMode(Cockpit& c) {
  FlightState& f = c.flight;
  const ModeFlags m = f.Modes;
  const bool onGround = c.link.Now().OnGround > 0;
  if (m.Cruise && !onGround) {
    SetFlightMode(c, FlightMode::TakeOff);
    f.LevelFlightTicks = 0;
    ShowMessage(c, "Take Off...", kModeMessageSeconds);
  } else if (m.Landing && !onGround) {
    SetFlightMode(c, FlightMode::Cruise);
    f.DescentTicks = 0;
    ShowMessage(c, "Cruise...", kModeMessageSeconds);
  } else if (m.TakeOff && onGround) {
    SetFlightMode(c, FlightMode::Taxiing);
    ShowMessage(c, "Taxiing...", kModeMessageSeconds);
  } else {
    ShowMessage(c, "Cannot back-up flight mode.", kModeMessageSeconds);
  }
}

void AutoDetectCruise(Cockpit& c) {
  if (!c.options.AutoDetectModeCruise) return;
  FlightState& f = c.flight;
  const FSData& now = c.link.Now();
  const FSData& before = c.link.Before();

  const bool level = now.VS <= before.VS + kLevelVSBand && now.VS >= before.VS - kLevelVSBand;
  f.LevelFlightTicks = level ? f.LevelFlightTicks + 1 : 0;

  if (!f.Modes.TakeOff || f.LevelFlightTicks <= kLevelTicksNeeded || std::abs(now.VS) >= kLevelVS)
    return;
  const int32_t flightTime = GetFlightTime(f.clocks, now);
  const bool light =
      !c.link.HeavyAircraft && now.AGL > kCruiseHeightLight && flightTime > kCruiseFlightTimeLight;
  const bool high = now.AGL > kCruiseHeightAny && flightTime > kCruiseFlightTimeAny;
  if (light || high) {
    EnterCruise(c, kDetectedModeSeconds);
    f.LevelFlightTicks = 0;
  }
}

void AutoDetectLanding(Cockpit& c) {
  if (!c.options.AutoDetectModeLanding) return;
  FlightState& f = c.flight;
  const FSData& now = c.link.Now();

  f.DescentTicks = now.VS < kDescentVS ? f.DescentTicks + 1 : 0;

  if (!(f.Modes.TakeOff || f.Modes.Cruise) || f.DescentTicks <= kDescentTicksNeeded) return;
  const bool light =
      now.AGL < kDescentHeightLight && now.VS < kDescentVSLight && !c.link.HeavyAircraft;
  const bool any = now.AGL < kDescentHeightAny && now.VS < kDescentVSAny;
  if (light || any) {
    SetFlightMode(c, FlightMode::Landing);
    ShowMessage(c, "Landing...", kDetectedModeSeconds);
    f.DescentTicks = 0;
  }
}

void GoodSoFarRemarks(Cockpit& c) {
  const FlightState& f = c.flight;
  if (FlightPPScore(f.Flight()) != 0) return;
  const double now = c.link.Now().AGL;
  const double before = c.link.Before().AGL;
  Voice v = c.voice();
  if (f.Modes.TakeOff && now > kGoodSoFarHeight && before > kGoodSoFarClimbFrom &&
      before <= kGoodSoFarHeight) {
    PlayPerhaps(v, "FlightGoodSoFar2.wav", 98, 120, 4);
  }
  if (f.Modes.Landing && now < kGoodSoFarHeight && before < kGoodSoFarDescendFrom &&
      before >= kGoodSoFarHeight) {
    PlayPerhaps(v, "FlightGoodSoFar3.wav", 98, 120, 4);
  }
}

void LiftOffTest(Cockpit& c) {
  FlightState& f = c.flight;
  const FSData& now = c.link.Now();
  if (now.OnGround != 0) return;

  f.PreviousGoAroundEndFlight = f.GoAroundEndFlight;
  f.GoAroundEndFlight = false;
  f.GroundLatch = 0;
  f.HasTouchedDown = false;
  f.TouchdownArmed = 1;

  const ModeFlags m = f.Modes;
  if (c.link.Before().OnGround != 1 || !(f.PreviousGoAroundEndFlight || m.Taxiing || m.TakeOff))
    return;
  RestartFlightTimer(c);
  SetFlightMode(c, FlightMode::TakeOff);
  if (!m.TakeOff) ShowMessage(c, "Take Off...", kModeMessageSeconds);
  f.Flight().TookOff = true;

  if (!c.link.HeavyAircraft && f.CircuitsWanted) {
    Voice v = c.voice();
    PlayPerhaps(v, "CircuitStarts.wav", 90, 30, 4);
  }
  TakeCircuitReference(c);
}

void LandingOnGround(Cockpit& c) {
  FlightState& f = c.flight;
  const FSData& now = c.link.Now();
  FlightStats& flight = f.Flight();
  if (flight.LandingHasReachedEvaluationStage || !f.HasTouchedDown || now.GS > kLandingDetectedGS)
    return;
  flight.LandingHasReachedEvaluationStage = true;
  if (!f.Modes.Landing) {
    SetFlightMode(c, FlightMode::Landing);
    ShowMessage(c, "Landing...", kLandingDetectedSeconds);
  }
  f.FlightTimeAtLanding = GetFlightTime(f.clocks, now);
  SetCount(flight, &FlightStats::FlightDuration, f.FlightTimeAtLanding, c.events, f.TickCount);
  if (f.FlightTimeAtLanding > kShortestEvaluatedFlight) EvaluateLanding(c);
  // What the approach gathered, and its errors and best distances, start
  // afresh whether the landing was evaluated or not.
  ResetApproachErrors(f.approach);
  c.approach.ResetGathered();
  c.approach.VisualApproachActive = false;
}

void LeaveLanding(Cockpit& c) {
  const FSData& now = c.link.Now();
  const int32_t slowEnough = c.link.HeavyAircraft ? kLeaveLandingGSHeavy : kLeaveLandingGS;
  if (c.flight.Modes.Landing && now.OnGround > 0 && now.GS < slowEnough)
    SetFlightMode(c, FlightMode::Taxiing);
}

void TaxiSpeedTakeOff(Cockpit& c) {
  const FlightState& f = c.flight;
  if (f.Modes.Taxiing && !f.HasTouchedDown && c.link.Now().GS >= kTakeOffByTaxiSpeed) {
    SetFlightMode(c, FlightMode::TakeOff);
    ShowMessage(c, "Take Off...", kTaxiTakeOffSeconds);
  }
}

void TooLowSetsLanding(Cockpit& c) {
  const FSData& now = c.link.Now();
  const FSData& before = c.link.Before();
  if (c.flight.Modes.TakeOff && now.OnGround == 0 && now.AGL < kTooLowHeight &&
      before.Altitude - now.Altitude > kTooLowSinkPerTick &&
      before.AGL - now.AGL > kTooLowSinkPerTick) {
    SetFlightMode(c, FlightMode::Landing);
  }
}

void EnterCruiseByRequest(Cockpit& c, int seconds) {
  EnterCruise(c, seconds);
}

}  // namespace vantoro
