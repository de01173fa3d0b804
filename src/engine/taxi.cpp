// The taxi rules: the checks completed while taxiing (the main exit, the
// control check when stopped), then, when moving, flaps, the controls held
// against the wind, taxi speed and the brakes.
#include <cstdlib>

#include "engine/checklists.h"
#include "engine/ground.h"
#include "engine/tick_rules.h"
#include "records/flight_stats.h"

namespace vantoro {

namespace {

constexpr size_t kFailEngine = 0x0B6B - kFailFlagsOffset;

// The control check runs while stopped, below this ground speed.
constexpr int32_t kStoppedBelowGS = 1;

// Flaps out: the indicator above this.
constexpr int32_t kFlapsOut = 255;

// The ends of each control's travel.
constexpr int32_t kElevatorUpEnd = 9800;
constexpr int32_t kElevatorDownEnd = -12000;
constexpr int32_t kAileronEnd = 12000;
constexpr int32_t kRudderEnd = 8000;

// Flaps up for the taxi: between these speeds, red above the middle one.
constexpr int32_t kFlapsTaxiFromGS = 1;
constexpr int32_t kFlapsTaxiBelowGS = 10;
constexpr int32_t kFlapsTaxiRedAboveGS = 5;

// Taxiing in wind.
constexpr int32_t kWindAdviceAboveKnots = 4;
constexpr int32_t kWindAdviceAboveGS = 2;
constexpr int32_t kElevatorHeld = 6000;      // either way off neutral
constexpr int32_t kWindBehindDegrees = 100;  // further off the nose than this
constexpr int32_t kWindAheadDegrees = 80;    // within this of the nose
constexpr int32_t kCrossWindFrom = 20;       // crosswind quarters, degrees off the nose
constexpr int32_t kCrossWindBeam = 90;
constexpr int32_t kCrossWindTo = 160;

// Taxi speed: amber, red, and a take-off from here on.
constexpr int32_t kAmberTaxiGS = 22;
constexpr int32_t kTaxiTooFastGS = 25;
constexpr int32_t kTakeOffGS = 35;

// Throttle against the brakes.
constexpr int32_t kThrottleAndBrakesGS = 21;
constexpr int32_t kThrottleOpen = 1100;

// Riding the brakes: slowing by more than these a tick.
constexpr int32_t kRideBrakesGS = 7;
constexpr int32_t kAmberRideBrakesGS = 4;

bool Within(int32_t value, int32_t low, int32_t high) {
  return value >= low && value <= high;
}

// Both ends reached: the completion is told and the check starts again.
bool CompleteCheck(Cockpit& c, ControlEnds& ends, std::string_view file, int id) {
  if (!ends.One || !ends.Two || !GiveAdvice(c, file, id, 30, 4, 0)) return false;
  ends = ControlEnds{};
  return true;
}

// Each end of a control's travel, in either order.
void ControlCheck(Cockpit& c) {
  FlightState& f = c.flight;
  GroundState& g = f.Ground;
  const FSData& now = c.link.Now();
  const FSData& before = c.link.Before();

  if (now.FlapsLeft > kFlapsOut && before.FlapsLeft < kFlapsOut) g.Flaps.One = true;
  if (now.FlapsLeft <= kFlapsOut && before.FlapsLeft > kFlapsOut) g.Flaps.Two = true;
  if (g.Flaps.One && g.Flaps.Two && g.FlapsCheckToldFlight != f.CurrentFlight) {
    if (GiveAdvice(c, "FlapsCheckComplete.wav", 100, 30, 4, 0)) {
      g.FlapsCheckToldFlight = f.CurrentFlight;
      DisplayVoiceIfWanted("Flaps check complete.", 5);
    }
  }

  if (now.Elevator > kElevatorUpEnd) g.Elevator.One = true;
  if (now.Elevator < kElevatorDownEnd) g.Elevator.Two = true;
  if (CompleteCheck(c, g.Elevator, "ElevatorCheckComplete.wav", 86))
    DisplayVoiceIfWanted("Elevator check complete.", 5);

  if (now.Aileron > kAileronEnd) g.Aileron.One = true;
  if (now.Aileron < -kAileronEnd) g.Aileron.Two = true;
  CompleteCheck(c, g.Aileron, "AileronCheckComplete.wav", 87);

  if (c.options.RudderController) {
    if (now.Rudder > kRudderEnd) g.Rudder.One = true;
    if (now.Rudder < -kRudderEnd) g.Rudder.Two = true;
    CompleteCheck(c, g.Rudder, "RudderCheckComplete.wav", 88);
  }
}

// 9 and 10: flaps up while taxiing.
void FlapsUpForTaxi(Cockpit& c) {
  const FSData& now = c.link.Now();
  const AircraftValues& a = c.aircraft;
  const bool taxiFlapsWanted = !a.Raw.FlapsDownDuringTaxi;
  const bool applies = a.IsJet() ? !c.link.HeavyAircraft : taxiFlapsWanted;
  if (!applies || now.GS <= kFlapsTaxiFromGS || now.GS >= kFlapsTaxiBelowGS ||
      now.FlapsLeft <= kFlapsOut)
    return;
  if (now.GS > kFlapsTaxiRedAboveGS) {
    GiveAdvice(c, "FlapsUpDuringTaxi.wav", 9, 30, 4, 2, &FlightStats::FlapsNotUpDuringTaxi);
  } else {
    GiveAdvice(c, "AMBERFlapsUpDuringTaxi.wav", 109, 30, 4, 1);
  }
}

// 11 to 17: the elevator and the ailerons held against the wind.
void TaxiInWind(Cockpit& c) {
  const FSData& now = c.link.Now();
  if (!c.options.WantTaxiInWindAdvice || c.link.HeavyAircraft ||
      now.WindSpeed <= kWindAdviceAboveKnots || now.GS <= kWindAdviceAboveGS)
    return;
  const int32_t wind = now.WindRelativeToHeading;
  const bool behind = wind < -kWindBehindDegrees || wind > kWindBehindDegrees;
  const bool ahead = Within(wind, -kWindAheadDegrees, kWindAheadDegrees);

  if (now.Elevator < kElevatorHeld && behind) {
    GiveAdvice(c, "TaxiInWindWithElevatorDown.wav", 86, 30, 4, 2,
               &FlightStats::NotTaxiInWindWithElevatorDown);
  }
  if (now.TailDragger && now.Elevator > -kElevatorHeld && ahead) {
    GiveAdvice(c, "TaxiInWindWithElevatorUp.wav", 86, 30, 4, 2,
               &FlightStats::NotTaxiInWindWithElevatorUp);
  }
  // The nose wheel's fault counts with the tail wheel's.
  if (!now.TailDragger && (now.Elevator < -kElevatorHeld || now.Elevator > kElevatorHeld) &&
      ahead) {
    GiveAdvice(c, "TaxiInWindWithElevatorNeutral.wav", 86, 30, 4, 2,
               &FlightStats::NotTaxiInWindWithElevatorUp);
  }
  if (Within(wind, -kCrossWindBeam, -kCrossWindFrom) && now.Aileron < kAileronEnd) {
    GiveAdvice(c, "TaxiInWindWithLeftAileronUp.wav", 87, 30, 4, 2,
               &FlightStats::NotTaxiInWindWithLeftAileronUp);
  }
  if (Within(wind, -kCrossWindTo, -kCrossWindBeam) && now.Aileron > -kAileronEnd) {
    GiveAdvice(c, "TaxiInWindWithRightAileronUp.wav", 88, 30, 4, 2,
               &FlightStats::NotTaxiInWindWithRightAileronUp);
  }
  if (Within(wind, kCrossWindFrom, kCrossWindBeam) && now.Aileron > -kAileronEnd) {
    GiveAdvice(c, "TaxiInWindWithRightAileronUp.wav", 88, 30, 4, 2,
               &FlightStats::NotTaxiInWindWithRightAileronUp);
  }
  if (Within(wind, kCrossWindBeam, kCrossWindTo) && now.Aileron < kAileronEnd) {
    GiveAdvice(c, "TaxiInWindWithLeftAileronUp.wav", 87, 30, 4, 2,
               &FlightStats::NotTaxiInWindWithLeftAileronUp);
  }
}

// 18: taxi speed before the first touchdown; the warning comes first, and at
// take-off speed the taxi becomes a take-off without a fault.
void TaxiSpeed(Cockpit& c) {
  const FSData& now = c.link.Now();
  if (c.flight.HasTouchedDown) return;
  if (now.GS > kAmberTaxiGS) GiveAdvice(c, "AmberTaxiSlower.wav", 13, 30, 4, 1);
  if (now.GS <= kTaxiTooFastGS) return;
  if (now.GS >= kTakeOffGS) {
    TaxiSpeedTakeOff(c);
  } else {
    GiveAdvice(c, "TaxiSlower.wav", 10, 30, 4, 2, &FlightStats::TaxiTooFast);
  }
}

// 19 and 20: the brakes.
void Brakes(Cockpit& c) {
  const FSData& now = c.link.Now();
  const FSData& before = c.link.Before();
  if (!now.FailFlags[kFailEngine] && now.Brake && now.GS > kThrottleAndBrakesGS &&
      now.Eng1Throttle > kThrottleOpen) {
    GiveAdvice(c, "DontTaxiWithThrottleAndBrakes.wav", 11, 30, 4, 2,
               &FlightStats::TaxiWithThrottleAndBrakes);
  }
  if (!now.Brake) return;
  const int32_t slowing = before.GS - now.GS;
  if (slowing > kRideBrakesGS) {
    GiveAdvice(c, "ShouldntHaveToRideTheBreaks.wav", 12, 30, 4, 2, &FlightStats::RideBrakes);
  } else if (slowing > kAmberRideBrakesGS) {
    GiveAdvice(c, "AmberShouldntHaveToRideTheBreaks.wav", 12, 30, 4, 1);
  }
}

}  // namespace

void TaxiRules(Cockpit& c) {
  FlightState& f = c.flight;
  if (!f.Modes.Taxiing) return;
  const FSData& now = c.link.Now();
  const FSData& before = c.link.Before();

  // Background chatter runs here first, when the pilot wants it (chatter).
  if (before.DoorOpen && !now.DoorOpen && f.Ground.DoorClosedToldFlight != f.CurrentFlight) {
    if (GiveAdvice(c, "MainExitClosedandCheckComplete.wav", 106, 30, 16, 0))
      f.Ground.DoorClosedToldFlight = f.CurrentFlight;
  }
  CheckIfRunUpComplete(c);

  if (now.GS < kStoppedBelowGS) {
    ControlCheck(c);
    return;
  }
  FlapsUpForTaxi(c);
  TaxiInWind(c);
  TaxiSpeed(c);
  Brakes(c);
}

}  // namespace vantoro
