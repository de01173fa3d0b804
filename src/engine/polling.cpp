// The polling tick, twice a second: read the simulator, decode, test that the
// flight is still a valid one, act on the hot keys, move the flight mode, run
// the monitors of the phase in their fixed order and swap the records. It
// reads top to bottom in the order of a tick; the rules themselves live in
// the files of their subjects.
#include "engine/polling.h"

#include "base/numbers.h"
#include "engine/approach.h"
#include "engine/checklists.h"
#include "engine/circuit.h"
#include "engine/cruise.h"
#include "engine/failures.h"
#include "engine/ground.h"
#include "engine/navigation.h"
#include "engine/procedures.h"
#include "engine/tick_rules.h"
#include "engine/traffic.h"
#include "engine/voice_actions.h"
#include "world/geo.h"

namespace vantoro {

namespace {

// The traffic tables are asked to hold five kinds of traffic.
constexpr uint32_t kTrafficControlOffsets[] = {0xE06A, 0xF06A, 0xF068};
constexpr uint8_t kTrafficControlValue = 5;

// The four blocks in one exchange; false (and one more read error) when the
// link failed.
bool ReadSimulator(Cockpit& c) {
  LinkState& l = c.link;
  int result = kLinkOk;
  const bool queued =
      c.sim.Read(kMainBlockOffset, kMainBlockSize, l.ByteBuffer.data(), result) &&
      c.sim.Read(kGpsBlockOffset, kGpsBlockSize, l.GpsBuffer.data(), result) &&
      c.sim.Read(kTrafficBlockOffset, kTrafficBlockSize, l.TrafficBuffer.data(), result) &&
      c.sim.Read(kMetarBlockOffset, kMetarBlockSize, l.MetarBuffer.data(), result);
  if (!queued) {
    LinkFailure(c, "Failed Read - ", result);
    return false;
  }
  if (!c.sim.Process(result)) {
    LinkFailure(c, "Failed Process - ", result);
    return false;
  }
  return true;
}

// Queued with the reads of the next exchange; the observers are not told.
void QueueTrafficControls(Cockpit& c) {
  for (uint32_t offset : kTrafficControlOffsets) {
    int result = kLinkOk;
    c.sim.Write(offset, 1, &kTrafficControlValue, result);
  }
}

// The ground track over the last four ticks, true and magnetic.
void UpdateTrack(Cockpit& c) {
  FlightState& f = c.flight;
  const FSData& now = c.link.Now();
  const double angle = CalcAngle(f.TrackLatitude, f.TrackLongitude, now.Latitude, now.Longitude);
  f.GroundTrack = CLng(angle);
  f.MagneticTrack = f.GroundTrack - now.MagVar;
  if (f.MagneticTrack < 0) f.MagneticTrack += 360;
  f.TrackLatitude = now.Latitude;
  f.TrackLongitude = now.Longitude;
}

bool AtTheGate(const FlightState& f, const FSData& now) {
  return now.InstantReplay || f.Crashed || now.Paused || f.CrashOnLanding || now.InMenu > 0 ||
         now.ReadyToFly > 0;
}

// One tick whose reads succeeded. Returning goes to the swap of the records.
void ProcessTick(Cockpit& c) {
  FlightState& f = c.flight;
  LinkState& link = c.link;

  f.TickCount += 1;

  ScanHotKeys(c);

  QueueTrafficControls(c);

  ProcessFSData(link,
                DecodeInputs{f.TickCount, c.aircraft.WantType(AircraftType::Lear45),
                             c.aircraft.IsType(AircraftType::C152), c.options.StartingPosition});
  // On the tick the decoder has warmed up, the aircraft is placed at its chosen
  // starting position here (SetInitialPosition).
  const FSData& now = link.Now();
  c.sound.Status.Nav1OBS = now.Nav1OBS;

  LoadSimulatorPlanOnConnect(c);

  SetAircraftTypeOptions(c.aircraft, IdentityOf(c));

  // A disconnection ends the tick: no flight may begin or be judged after it.
  if (AbnormalSituationTests(c)) return;

  if (f.TickCount % kTrackEveryTicks == 0) UpdateTrack(c);

  SpokenSwitchTips(c);
  AnnounceNearestAirport(c);

  UpdateStats(f, now);

  FindCloseRunways(c);

  f.PreviousModes = f.Modes;

  HotKeysAct(c);
  UpdateNextCheckList(c);

  // With a runway database the landing runway is picked again below 500 feet,
  // and the runway's relative bearing refreshed.
  PickLandingRunway(c);

  // The gate: replay, crash, pause, menus and loading freeze the monitors.
  if (AtTheGate(f, now)) return;

  if (!f.FlightStarted) BeginFlight(c);

  // The failure timers.
  CountFailureSeconds(c);
  AnnounceIFInstructorNoticesFailures(c);
  BuildFailureEventList(c);

  if (CrashFlagTest(c)) return;

  UnknownAircraftNotice(c);
  if (ClockJumpTest(c)) return;

  // The monitors, in their order.
  VoiceHotKeyAction(c);
  // The NAV1 retune announcement, transponder messages and instrument advice
  // on taxi run here; then the aircraft's own procedures; the fuel, door,
  // pump, lights and COM1-emergency rules follow them.
  AircraftProcedures(c);
  FlightPlanHelp(c);
  CruisingWithFlaps(c);
  // Navigation advice runs here.
  AnnounceEngineLossAirborne(c);
  // Chatter and the piston mixture rules run here.
  AutoDetectCruise(c);
  AutoDetectLanding(c);
  if (now.OnGround != 0) {
    if (c.options.MonGT) ProcessTCASGround(c);
  } else if (c.options.MonAT) {
    ProcessTCASAir(c);
  }
  GoodSoFarRemarks(c);
  RandomEngineFire(c);
  SimulationRatePenalty(c);
  AutoPilotPenalty(c);
  LiftOffTest(c);

  if (now.OnGround > 0 && f.GroundLatch == 1) {
    LandingOnGround(c);
    LeaveLanding(c);
    EndFlightAsChosen(c);
    EntryIntoTakeOff(c);
    SteeringAfterTouchdown(c);
    EntryIntoTaxi(c);
    GroundRules(c);
    TaxiRules(c);
  } else if (f.GroundLatch != 1) {
    RandomFailures(c);
    // The fuel leak runs here, then the waypoints.
    WayPointCheck(c);
    NextWayPointCheck(c);
    SuggestNavAid(c);
    TuneNavAid(c);
    GlideslopeCapture(c);
    VORTeaching(c);
    AnnounceMarkers(c);
    AutoTuneILS(c);
    LandingModeArrival(c);
    CircuitMonitors(c);
    AttitudeAndLoadLimits(c);
    StallWarnings(c);
    ApproachMonitors(c);
    // The gear rules stand below the approach rules; the first of them is also
    // the approach's last (lower the gear, or slow down to lower it).
    LowerGearAdvice(c);
    GearAndNeverExceedSpeeds(c);
    CheckFlapSpeeds(c);
    CheckVno(c);
    ClimbOutRules(c);
    TooLowSetsLanding(c);
    if (link.Before().OnGround > 0 && now.OnGround > 0) TouchdownTest(c);
  }
}

}  // namespace

void FSPolling(Cockpit& c) {
  FlightState& f = c.flight;

  if (!f.Connected) {
    c.sim.Close();
    FSConnect(c);
    return;
  }

  if (f.UserConnected && ReadSimulator(c)) {
    ProcessTick(c);
    c.link.Swap();
    ClearPressedKeys(f);
  }

  // Ten failed reads drop the link; the next tick opens it again.
  if (f.ReadErrors >= kReadErrorLimit) {
    f.Connected = false;
    f.ReadErrors = 0;
    f.Stats.ReadErrors = 0;
  }
}

}  // namespace vantoro
