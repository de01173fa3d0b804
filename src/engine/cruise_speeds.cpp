// Speed rules in the air: the stall warning and the near-stall advice, the
// gear and never-exceed speeds, flaps left out in the cruise, and the climb
// after take-off. The aircraft's own calls come from its type folder.
#include <cstdlib>

#include "engine/cruise.h"
#include "engine/tick_rules.h"
#include "records/flight_stats.h"

namespace vantoro {

namespace {

constexpr int kGap = 30;
constexpr int kExpiry = 4;

// The stall warning sounds above this height.
constexpr double kStallWarningAbove = 20;
// Near stall: above this height by the clean or the flaps-out stall speed,
// below it (down to the lower height) by the flaps-out one only.
constexpr double kNearStallAbove = 100;
constexpr double kNearStallLowAbove = 50;
// The airspeed is believed only when it did not jump more than this between
// two ticks and both readings show the aircraft moving.
constexpr int32_t kAirspeedJump = 35;
constexpr int32_t kAirspeedMoving = 5;
constexpr size_t kFailAirspeed = 0x0B65 - kFailFlagsOffset;
constexpr int kTypeCallFamily = 63;
constexpr int kNeverExceedCallExpiry = 12;

// Flap positions up to this are flaps up.
constexpr int32_t kFlapsUp = 255;

// Lowering the gear: descending more than this a tick between the heights.
constexpr double kLowerGearBelow = 500;
constexpr double kLowerGearAbove = 20;
constexpr double kLowerGearSink = 5;

constexpr double kRaiseGearAbove = 200;

// Never-exceed speed: the warning this far below the barber pole, the fault
// this far below it.
constexpr int32_t kNeverExceedAmberMargin = 12;
constexpr int32_t kNeverExceedMargin = 2;

// Cruising with flaps is said every thirty seconds.
constexpr int kCruisingWithFlapsGap = 60;
constexpr int kCruisingWithFlapsExpiry = 8;

// Positive rate of the heavy aircraft: climbing by both altimeters between
// the heights.
constexpr double kPositiveRateAbove = 50;
constexpr double kPositiveRateBelow = 700;
constexpr double kPositiveRateClimb = 10;
constexpr int kPositiveRateGap = 60;

// Sinking after take-off, feet in one tick.
constexpr double kTakeOffDescentAbove = 150;
constexpr double kTakeOffSink = 5;
constexpr double kTakeOffSinkAltitudeOnly = 18;
constexpr double kTakeOffSinkAmber = 3;
constexpr double kTakeOffSinkAmberEither = 12;
constexpr int kCruisingQuestionSeconds = 5;

struct TypeCalls {
  AircraftType type;
  std::string_view clean;
  std::string_view flapsOut;
};

constexpr TypeCalls kStallCalls[] = {
    {AircraftType::C172, "c172\\vs.wav", "c172\\vso.wav"},
    {AircraftType::C152, "c152\\vs.wav", "c152\\vso.wav"},
    {AircraftType::Mooney, "Mooney\\zPro_vs.wav", "Mooney\\zPro_vso.wav"},
    {AircraftType::C208B, "c208B\\zPro_vs.wav", "c208b\\zPro_vso.wav"},
    {AircraftType::KingAir350, "BeechKingAir350\\zPro_vs.wav", "BeechKingAir350\\zPro_vso.wav"},
    {AircraftType::DC3, "DC3\\zPro_vs.wav", "DC3\\zPro_vso.wav"},
    {AircraftType::Lear45, "Lear45\\vs.wav", "Lear45\\vso.wav"},
    {AircraftType::C182, "c182\\zPro_vs.wav", "c182\\zPro_vso.wav"},
};

struct TypeCall {
  AircraftType type;
  std::string_view file;
};

constexpr TypeCall kNeverExceedCalls[] = {
    {AircraftType::C172, "c172\\vne.wav"},
    {AircraftType::C152, "c152\\vne.wav"},
    {AircraftType::Mooney, "Mooney\\zPro_vne.wav"},
    {AircraftType::C208B, "c208B\\zPro_vne.wav"},
    {AircraftType::C182, "c182\\zPro_vne.wav"},
    {AircraftType::Baron, "BaronB58\\zPro_vne.wav"},
    {AircraftType::KingAir350, "BeechKingAir350\\zPro_vne.wav"},
    {AircraftType::DC3, "DC3\\zPro_vne.wav"},
    {AircraftType::B737, "b737\\vne.wav"},
    {AircraftType::B757, "b757\\vne.wav"},
    {AircraftType::Lear45, "Lear45\\vne.wav"},
    {AircraftType::CRJ700, "CRJ700\\vne.wav"},
    {AircraftType::TwinOtter, "TwinOtter\\vne.wav"},
};

// The type's call, through its own gate; nothing for a type without one.
void TypeCallPerhaps(Cockpit& c, std::string_view file, int expiry) {
  if (file.empty()) return;
  Voice v = c.voice();
  PlayPerhaps(v, file, kTypeCallFamily, kGap, expiry);
}

// The stall itself: said at once, ahead of everything queued.
void StallWarning(Cockpit& c, const FSData& now) {
  if (!(now.AGL > kStallWarningAbove) || !now.StallWarning) return;
  Advise(c, Delivery::AtOnce, "StallProcedure.wav", 45, kGap, 0, kRed, &FlightStats::ExceedStall);
}

void NearStall(Cockpit& c, const FSData& now, const FSData& before) {
  if (now.StallWarning || std::abs(now.IAS - before.IAS) > kAirspeedJump ||
      now.FailFlags[kFailAirspeed] || now.IAS <= kAirspeedMoving || before.IAS <= kAirspeedMoving)
    return;
  const AircraftValues& a = c.aircraft;
  const bool flapsOut = now.FlapsLeft > kFlapsUp;
  if (now.AGL > kNearStallAbove) {
    if (now.IAS >= (flapsOut ? a.StallLanding : a.StallCruise)) return;
    const std::string_view advice = c.random.Uniform() < 0.5 ? "SpeedUp.wav" : "DontStall.wav";
    GiveAdvice(c, advice, 46, kGap, kExpiry, kRed, &FlightStats::NearStall);
    TypeCallPerhaps(c, StallCall(a, flapsOut), kExpiry);
  } else if (now.AGL > kNearStallLowAbove && now.IAS < a.StallLanding) {
    GiveAdvice(c, "DontStall.wav", 46, kGap, kExpiry, kRed, &FlightStats::NearStall);
  }
}

// The Learjet and the CRJ watch their never-exceed speed with rules of their own.
bool OwnNeverExceedRule(const AircraftValues& a) {
  return a.WantType(AircraftType::Lear45) || a.WantType(AircraftType::CRJ700);
}

}  // namespace

std::string_view StallCall(const AircraftValues& a, bool flapsOut) {
  for (const TypeCalls& calls : kStallCalls)
    if (a.IsType(calls.type)) return flapsOut ? calls.flapsOut : calls.clean;
  return {};
}

std::string_view NeverExceedCall(const AircraftValues& a) {
  for (const TypeCall& call : kNeverExceedCalls)
    if (a.IsType(call.type)) return call.file;
  return {};
}

void StallWarnings(Cockpit& c) {
  const FSData& now = c.link.Now();
  StallWarning(c, now);
  NearStall(c, now, c.link.Before());
}

void LowerGearAdvice(Cockpit& c) {
  const FSData& now = c.link.Now();
  if (c.aircraft.Raw.FloatPlane || now.GearDown) return;
  if (!(now.AGL < kLowerGearBelow) || !(now.AGL > kLowerGearAbove)) return;
  if (!(c.link.Before().AGL - now.AGL > kLowerGearSink)) return;
  if (now.IAS < c.aircraft.GearSpeedLimit)
    GiveAdvice(c, "LowerGear.wav", 73, kGap, kExpiry, kAmber);
  else
    GiveAdvice(c, "SlowDownSoYouCanLowerGear.wav", 108, kGap, kExpiry, kAmber);
}

void GearAndNeverExceedSpeeds(Cockpit& c) {
  const FSData& now = c.link.Now();
  const AircraftValues& a = c.aircraft;
  // Gear out in the air above the circuit's lowest heights on a retractable
  // aircraft: a fault beyond its speed, otherwise a reminder outside Landing.
  if (now.AGL > kRaiseGearAbove && now.GearDown && now.GearLeftPosition && a.Raw.RetractableGear) {
    if (now.IAS > a.GearSpeedLimit) {
      GiveAdvice(c, "RaiseGear.wav", 89, kGap, kExpiry, kRed, &FlightStats::ExceedGearDown);
    } else if (!c.flight.Modes.Landing) {
      GiveAdvice(c, "RaiseGear.wav", 89, kGap, kExpiry, kAmber);
    }
  }

  // A simulator that gives no never-exceed speed leaves nothing to judge by.
  if (OwnNeverExceedRule(a) || now.BarberPole <= 0) return;
  if (now.IAS > now.BarberPole - kNeverExceedMargin) {
    GiveAdvice(c, "SlowDown.wav", 61, kGap, kExpiry, kRed, &FlightStats::ExceedVNE);
    TypeCallPerhaps(c, NeverExceedCall(a), kNeverExceedCallExpiry);
  } else if (now.IAS > now.BarberPole - kNeverExceedAmberMargin) {
    GiveAdvice(c, "AmberSlowDown.wav", 62, kGap, kExpiry, kAmber);
  }
}

void CruisingWithFlaps(Cockpit& c) {
  if (c.flight.Modes.Cruise && c.link.Now().FlapsLeft > kFlapsUp)
    GiveAdvice(c, "CruisingWithFlaps.wav", 81, kCruisingWithFlapsGap, kCruisingWithFlapsExpiry,
               kAmber);
}

void ClimbOutRules(Cockpit& c) {
  if (!c.flight.Modes.TakeOff) return;
  const FSData& now = c.link.Now();
  const FSData& before = c.link.Before();
  const double climb = now.Altitude - before.Altitude;  // feet this tick, up positive
  const double rise = now.AGL - before.AGL;

  if (c.link.HeavyAircraft && climb > kPositiveRateClimb && rise > kPositiveRateClimb &&
      now.AGL > kPositiveRateAbove && now.AGL < kPositiveRateBelow && now.GearDown)
    GiveAdvice(c, "PositiveRateGearUP.wav", 102, kPositiveRateGap, kExpiry, 0);

  if (c.link.HeavyAircraft || !(now.AGL > kTakeOffDescentAbove)) return;
  const double sink = -climb;
  const double drop = -rise;
  if ((sink > kTakeOffSink && drop > kTakeOffSink) || sink > kTakeOffSinkAltitudeOnly) {
    if (GiveAdvice(c, "TakeOffDescent.wav", 33, kGap, kExpiry, kRed, &FlightStats::TakeOffDescent))
      ShowMessage(c, "Are you CRUISING?", kCruisingQuestionSeconds);
  } else if ((sink > kTakeOffSinkAmber && drop > kTakeOffSinkAmber) ||
             sink > kTakeOffSinkAmberEither || drop > kTakeOffSinkAmberEither) {
    GiveAdvice(c, "AmberTakeOffDescent.wav", 33, kGap, kExpiry, kAmber);
  }
}

}  // namespace vantoro
