// Circuit training. Legs are judged in their order in one pass, so a leg that
// ends on a tick lets the next one run on that same tick. Advice speaks only
// in the air; the counters run on every tick the monitors run.
#include "engine/circuit.h"

#include <cmath>
#include <cstdlib>
#include <string>

#include "base/files.h"
#include "base/numbers.h"
#include "engine/tick_rules.h"
#include "records/clocks.h"
#include "records/crash_report.h"
#include "world/geo.h"

namespace vantoro {

namespace {

constexpr int kCircuitOffSeconds = 3;
constexpr int kCircuitOnSeconds = 5;
constexpr int kCircuitNoticeSeconds = 5;

constexpr int kGap = 30;
constexpr int kLongGap = 60;
constexpr int kExpiry = 8;

// Within this many degrees a leg's track or the aircraft's track counts as on
// the heading.
constexpr int32_t kOffHeading = 10;
constexpr int32_t kOnHeading = 10;

// Heights above the take-off altitude, feet.
constexpr int32_t kUpwindClimbTo = 500;
constexpr int32_t kCrosswindNiceFrom = 600, kCrosswindNiceTo = 800;
constexpr int32_t kCrosswindClimbTo = 980;
constexpr int32_t kDownwindNiceFrom = 980, kDownwindNiceTo = 1100;
constexpr int32_t kDownwindLow = 900, kDownwindHigh = 1100;
constexpr int32_t kDownwindHeadingFrom = 840;
constexpr int32_t kBaseNiceFrom = 600, kBaseNiceTo = 800;
constexpr int32_t kBaseHeadingFrom = 550;
constexpr int32_t kFinalNiceFrom = 500, kFinalNiceTo = 600;

// Seconds of flight after which a leg is late.
constexpr int32_t kClimbTo500After = 50;
constexpr int32_t kLateForCrosswindAfter = 80;
constexpr int32_t kClimbTo1000After = 140;
constexpr int32_t kLateForDownwindAfter = 150;

// The reference point's bearing from the runway's true heading: beyond 175
// the pilot has flown past the runway's line, beyond 140 it is more than 45
// degrees behind (with a small allowance).
constexpr int32_t kPastTheRunwayLine = 175;
constexpr int32_t kReferenceBehind = 140;
// A left bank this steep is already the turn asked for.
constexpr int32_t kTurningLeftBank = -14;
// The localiser needle coming alive on Downwind; lined up on Base.
constexpr int32_t kNeedleAliveFrom = 1, kNeedleAliveTo = 9;
constexpr int32_t kNeedleLinedUp = 10;

int32_t Deg360(int32_t degrees) {
  return degrees < 0 ? degrees + 360 : degrees;
}

bool Between(int32_t x, int32_t from, int32_t to) {
  return x > from && x < to;
}

bool LegStarted(const CircuitState& s) {
  return s.UpWind || s.CrossWind || s.DownWind || s.Base || s.Final;
}

// What one tick of the legs reads.
struct LegView {
  int32_t aal;            // feet above the take-off altitude
  int32_t legTrack;       // magnetic bearing from the leg's start to the aircraft
  int32_t actualTrack;    // magnetic track over the last four ticks
  int32_t fromReference;  // |bearing from the reference point - runway true heading|
  int32_t needle;         // |NAV1 localiser|
  int32_t flightTime;     // seconds since take-off
  int32_t bank;
  bool speak;  // in the air
};

bool OffHeading(int32_t heading, const LegView& v) {
  return std::abs(RelativeBearing(v.legTrack, heading)) > kOffHeading;
}
bool OnNewHeading(int32_t heading, const LegView& v) {
  return std::abs(RelativeBearing(v.actualTrack, heading)) < kOnHeading;
}

class Legs {
 public:
  Legs(Cockpit& c, const LegView& v) : c_(c), s_(c.circuit), v_(v) {}

  void Run() {
    if (s_.UpWind) Upwind();
    if (s_.CrossWind) Crosswind();
    if (s_.DownWind) Downwind();
    if (s_.Base) Base();
    if (s_.Final) CountTick(c_, &FlightStats::CircuitDurationFinal);
  }

 private:
  // Advice in the air; the counter on every tick the fault lasts.
  void Fault(std::string_view file, int id, int gap, FlightCounter counter) {
    if (v_.speak) GiveAdvice(c_, file, id, gap, kExpiry, kRed);
    CountTick(c_, counter);
  }
  void Say(std::string_view file, int id) {
    if (v_.speak) GiveAdvice(c_, file, id, kGap, kExpiry, kNoRemark);
  }
  void NewLeg(bool& from, bool& to) {
    from = false;
    to = true;
    const FSData& now = c_.link.Now();
    s_.LegStartLatitude = now.Latitude;
    s_.LegStartLongitude = now.Longitude;
  }

  void Upwind() {
    CountTick(c_, &FlightStats::CircuitDurationUpWind);
    if (v_.aal < kUpwindClimbTo) {
      if (OffHeading(s_.UpwindHeading, v_))
        Fault("CircuitHoldRunwayHeading.wav", 91, kGap, &FlightStats::CircuitBadHeadingUpWind);
      if (v_.flightTime > kClimbTo500After)
        Fault("CircuitClimbTo500.wav", 103, kGap, &FlightStats::CircuitBadAltitudeUpWind);
    }
    if (OnNewHeading(s_.CrosswindHeading, v_)) {
      NewLeg(s_.UpWind, s_.CrossWind);
      Say(Between(v_.aal, kCrosswindNiceFrom, kCrosswindNiceTo) ? "CircuitCrosswindNiceAAL.wav"
                                                                : "CircuitCrosswind.wav",
          77);
    } else if (v_.flightTime > kLateForCrosswindAfter) {
      Fault("CircuitLateForCrosswind.wav", 104, kGap, &FlightStats::CircuitBadTimingCrossWind);
    }
  }

  void Crosswind() {
    CountTick(c_, &FlightStats::CircuitDurationCrossWind);
    if (v_.aal < kCrosswindClimbTo) {
      if (OffHeading(s_.CrosswindHeading, v_))
        Fault("CircuitHoldCrossWindHeading.wav", 92, kGap,
              &FlightStats::CircuitBadHeadingCrossWind);
      if (v_.flightTime > kClimbTo1000After)
        Fault("CircuitClimbTo1000.wav", 105, kGap, &FlightStats::CircuitBadAltitudeCrossWind);
    }
    if (OnNewHeading(s_.DownwindHeading, v_)) {
      NewLeg(s_.CrossWind, s_.DownWind);
      Say(Between(v_.aal, kDownwindNiceFrom, kDownwindNiceTo) ? "CircuitDownwindNiceAAL.wav"
                                                              : "CircuitDownwind.wav",
          78);
    } else if (v_.flightTime > kLateForDownwindAfter) {
      Fault("CircuitLateForDownwind.wav", 104, kGap, &FlightStats::CircuitBadTimingDownWind);
    }
  }

  void Downwind() {
    CountTick(c_, &FlightStats::CircuitDurationDownWind);
    const bool turningLeft = v_.bank <= kTurningLeftBank;
    if (OnNewHeading(s_.BaseHeading, v_)) {
      NewLeg(s_.DownWind, s_.Base);
      Say(Between(v_.aal, kBaseNiceFrom, kBaseNiceTo) ? "CircuitBaseNiceAAL.wav"
                                                      : "CircuitBase.wav",
          79);
    } else if (v_.fromReference > kPastTheRunwayLine) {
      if (!turningLeft)
        Fault("CircuitBaseTurnToFinal.wav", 96, kLongGap, &FlightStats::CircuitBadTimingDownWind);
      NewLeg(s_.DownWind, s_.Base);
    } else if (v_.needle >= kNeedleAliveFrom && v_.needle <= kNeedleAliveTo) {
      // The localiser comes alive: the runway's centre line is near, so the
      // pilot is on Base whether he turned or not.
      Fault("CircuitBaseTurnToFinalNAV.wav", 96, kLongGap, &FlightStats::CircuitBadTimingDownWind);
      NewLeg(s_.DownWind, s_.Base);
    } else if (v_.fromReference > kReferenceBehind) {
      if (!turningLeft)
        Fault("TurnOntoBase.wav", 110, kLongGap, &FlightStats::CircuitBadTimingDownWind);
    } else {
      if (v_.aal <= kDownwindLow || v_.aal >= kDownwindHigh)
        Fault("CircuitDownwindAdjustAAL.wav", 95, kGap, &FlightStats::CircuitBadAltitudeDownWind);
      if (v_.aal > kDownwindHeadingFrom && OffHeading(s_.DownwindHeading, v_))
        Fault("CircuitHoldDownWindHeading.wav", 93, kGap, &FlightStats::CircuitBadHeadingDownWind);
    }
  }

  void Base() {
    CountTick(c_, &FlightStats::CircuitDurationBase);
    const bool turningLeft = v_.bank <= kTurningLeftBank;
    if (OnNewHeading(s_.FinalHeading, v_)) {
      NewLeg(s_.Base, s_.Final);
      Say(v_.needle < kNeedleLinedUp ? "CircuitFinalNiceTurn.wav" : "CircuitFinal.wav", 80);
      if (Between(v_.aal, kFinalNiceFrom, kFinalNiceTo)) Say("CircuitFinalNiceAAL.wav", 95);
    } else if (v_.fromReference > kPastTheRunwayLine) {
      if (!turningLeft)
        Fault("CircuitBaseTurnToFinal.wav", 96, kLongGap, &FlightStats::CircuitBadTimingBase);
    } else if (v_.needle < kNeedleLinedUp) {
      if (!turningLeft)
        Fault("CircuitBaseTurnToFinalNAV.wav", 96, kLongGap, &FlightStats::CircuitBadTimingBase);
    } else if (v_.aal > kBaseHeadingFrom && OffHeading(s_.BaseHeading, v_)) {
      Fault("CircuitHoldBaseHeading.wav", 94, kGap, &FlightStats::CircuitBadHeadingBase);
    }
  }

  Cockpit& c_;
  CircuitState& s_;
  const LegView& v_;
};

}  // namespace

void CircuitHotKey(Cockpit& c) {
  FlightState& f = c.flight;
  const std::string& folder = c.scores.MarkerFolder;
  const bool landingMarker =
      !folder.empty() && FileExists(folder + std::string(kLandingMarkerFile));
  const bool flightMarker = !folder.empty() && FileExists(folder + std::string(kFlightMarkerFile));
  if (!landingMarker && !flightMarker) {
    ShowMessage(c, kCircuitsNeedBothScores, kCircuitNoticeSeconds);
    return;
  }
  if (!flightMarker) {
    ShowMessage(c, kCircuitsNeedLandingScore, kCircuitNoticeSeconds);
    return;
  }
  if (!landingMarker) return;

  const FSData& now = c.link.Now();
  if (f.CircuitsWanted) {
    ShowMessage(c, kCircuitsOff, kCircuitOffSeconds);
    f.CircuitsWanted = false;
  } else if (now.OnGround == 0) {
    ShowMessage(c, kCircuitsStartOnGround, kCircuitNoticeSeconds);
  } else if (f.Modes.TakeOff || f.Modes.Taxiing) {
    ShowMessage(c, kCircuitsOn, kCircuitOnSeconds);
    f.CircuitsWanted = true;
    CircuitState& s = c.circuit;
    s.ReferenceLatitude = s.LegStartLatitude = now.Latitude;
    s.ReferenceLongitude = s.LegStartLongitude = now.Longitude;
  }
  c.sound.Status.CircuitTraining = f.CircuitsWanted;
  c.sound.Status.CircuitLeg = CircuitLegText(c.circuit);
}

void TakeCircuitReference(Cockpit& c) {
  const FSData& now = c.link.Now();
  CircuitState& s = c.circuit;
  const int32_t h = now.Nav1OBS;
  s.UpWind = true;
  s.UpwindHeading = s.FinalHeading = h;
  s.CrosswindHeading = Deg360(h - 90);
  s.DownwindHeading = Deg360(h - 180);
  s.BaseHeading = Deg360(h - 270);
  s.UpwindTrueHeading = h + now.MagVar >= 360 ? h + now.MagVar - 360 : h + now.MagVar;
  s.TakeOffAltitude = now.Altitude;
  c.sound.Status.CircuitLeg = CircuitLegText(s);
}

void CircuitMonitors(Cockpit& c) {
  if (!c.flight.CircuitsWanted || !LegStarted(c.circuit)) return;
  const FSData& now = c.link.Now();
  const CircuitState& s = c.circuit;
  const int32_t legTrack =
      Deg360(CLng(CalcAngle(s.LegStartLatitude, s.LegStartLongitude, now.Latitude, now.Longitude)) -
             now.MagVar);
  const int32_t fromReference =
      CLng(CalcAngle(s.ReferenceLatitude, s.ReferenceLongitude, now.Latitude, now.Longitude));
  const LegView v{now.Altitude - s.TakeOffAltitude,
                  legTrack,
                  c.flight.MagneticTrack,
                  std::abs(RelativeBearing(fromReference, s.UpwindTrueHeading)),
                  std::abs(now.Nav1Localiser),
                  GetFlightTime(c.flight.clocks, now),
                  now.Bank,
                  now.AGL > 0};
  Legs(c, v).Run();
  c.sound.Status.CircuitLeg = CircuitLegText(s);
}

const char* CircuitLegText(const CircuitState& s) {
  if (s.Base) return "Base  ";
  if (s.CrossWind) return "Crosswind  ";
  if (s.DownWind) return "Downwind  ";
  if (s.Final) return "Final  ";
  if (s.UpWind) return "Upwind  ";
  return "";
}

}  // namespace vantoro
