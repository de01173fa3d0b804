// Rules of several types at once: the general ground and final rules of
// every aircraft, carburettor heat, cowl flaps, the propeller and mixture for
// the landing, and the cruise power on levelling off.
#include <algorithm>
#include <cstdlib>

#include "engine/procedures/procedure_rules.h"

namespace vantoro {

namespace procedures {

namespace {

constexpr int32_t kHeavyTakeOffFlaps = 767;  // below: no take-off flap set
constexpr int32_t kBrakeWhilstMovingGS = 3;
constexpr int32_t kTakeOffPower = 12000;  // throttle lever, of 16384
constexpr int32_t kAccelerateFromGS = 10;
constexpr int32_t kTrimExcessive = 8000;     // elevator trim either way off neutral
constexpr int32_t kTakeOffDelayTicks = 240;  // two minutes standing on the runway
constexpr int32_t kTailWindFrom = 90;        // degrees off the nose
constexpr int32_t kTailWindKnots = 10;
constexpr int32_t kLandMuchSlowerBelow = 650;

// Carburettor heat: the engine anti-ice switch of a piston (0x08B2).
bool CarbHeat(const FSData& d) {
  return d.Eng1Primer;
}

// The "Monitor Carb. Heat" boxes of the C182 and King Air frames.
constexpr int kCarbHeatBoxes[] = {15, 16};

struct CarbHeatPhrases {
  AircraftType type;
  const char* on;
  const char* off;
};
constexpr CarbHeatPhrases kCarbHeatPhrases[] = {
    {AircraftType::C182, "c182\\zPro_CarbHeatOn.wav", "c182\\zPro_CarbHeatOff.wav"},
    {AircraftType::DC3, "DC3\\zPro_CarbHeatOn.wav", "DC3\\zPro_CarbHeatOff.wav"},
};

struct LandingLevers {
  AircraftType type;
  const char* prop;
  const char* mixture;
  int32_t mixtureFull;
};
constexpr LandingLevers kLandingLevers[] = {
    {AircraftType::C208B, "c208b\\zPro_PropLeverLanding.wav",
     "c208b\\zPro_MixtureFullForLanding.wav", 12000},
    {AircraftType::Baron, "BaronB58\\zPro_PropLeverLanding.wav",
     "BaronB58\\zPro_MixtureFullForLanding.wav", 12000},
    {AircraftType::KingAir350, "BeechKingAir350\\zPro_PropLeverLanding.wav",
     "BeechKingAir350\\zPro_MixtureFullForLanding.wav", 12000},
    {AircraftType::DC3, "DC3\\zPro_PropLeverLanding.wav", "DC3\\zPro_MixtureFullForLanding.wav",
     12000},
    {AircraftType::TwinOtter, "TwinOtter\\PropLeverLanding.wav",
     "TwinOtter\\MixtureFullForLanding.wav", 7000},
};

struct CruisePhrases {
  AircraftType type;
  const char* low;   // levelling off below kHighCruiseFrom, or at any height
  const char* high;  // above it; nullptr: the same as low
};
constexpr CruisePhrases kCruisePhrases[] = {
    {AircraftType::C172, "c172\\BeginCruise.wav", nullptr},
    {AircraftType::C152, "c152\\BeginCruise.wav", nullptr},
    {AircraftType::C182, "c182\\zPro_BeginCruise.wav", nullptr},
    {AircraftType::Mooney, "Mooney\\zPro_BeginCruise.wav", nullptr},
    {AircraftType::C208B, "c208B\\zPro_BeginCruise.wav", nullptr},
    {AircraftType::DC3, "DC3\\zPro_BeginCruise.wav", nullptr},
    {AircraftType::Baron, "BaronB58\\zPro_LowCruise.wav", "BaronB58\\zPro_HighCruise.wav"},
    {AircraftType::KingAir350, "BeechKingAir350\\zPro_LowCruise.wav",
     "BeechKingAir350\\zPro_HighCruise.wav"},
};
constexpr int32_t kHighCruiseFrom = 5000;  // feet above sea level

const CruisePhrases* ActiveCruise(const Cockpit& c) {
  for (const CruisePhrases& p : kCruisePhrases)
    if (c.aircraft.WantType(p.type)) return &p;
  return nullptr;
}

const char* CruiseAt(const CruisePhrases& p, int32_t altitude) {
  return p.high != nullptr && altitude > kHighCruiseFrom ? p.high : p.low;
}

}  // namespace

void CheckGeneralGroundAndFinal(Cockpit& c) {
  const FSData& now = c.link.Now();
  const FlightState& f = c.flight;
  ProceduresState& p = c.procedures;
  const bool heavy = c.link.HeavyAircraft;
  const bool onGround = now.OnGround != 0;
  const bool rolling = onGround && f.Modes.TakeOff;
  if (rolling && heavy && now.FlapsLeft < kHeavyTakeOffFlaps && now.GS < 2)
    Say(c, "TakeOffFlapsPerhaps.wav", 89, 60, 8);
  // Parked after the flight with the engines stopped: the brake holds it.
  if (TaxiingInMode(c) && now.GS == 0 && EnginesFiring(now) == 0 && !now.ParkingBrake)
    Say(c, "ParkingBrakeOn.wav", 66, 60, 8);
  if (onGround && now.ParkingBrake && now.GS > kBrakeWhilstMovingGS)
    Advise(c, Delivery::AtOnce, "ParkingBrakeSetWhilstMoving.wav", 67, 30, 0, kNoRemark);
  if (onGround && now.AutopilotOn && now.GS > kBrakeWhilstMovingGS) Say(c, "APOff.wav", 47, 30, 4);
  if (rolling && now.ParkingBrake && EnginesFiring(now) > 0 && now.Eng1Throttle > kTakeOffPower)
    Say(c, "ParkingBrakeOff.wav", 39, 30, 8);
  if (f.Modes.Landing && !onGround && now.AGL < kLandMuchSlowerBelow &&
      c.aircraft.StallLanding > 0 && now.IAS > 2 * c.aircraft.StallLanding)
    Teach(c, "LandMuchSlowerOrFlyMissedApproach.wav", 85, 30, 8);
  if (rolling && now.GS < 2 && now.SurfaceWindSpeed > kTailWindKnots &&
      std::abs(now.WindRelativeToHeading) > kTailWindFrom)
    Teach(c, "NotFacingIntoWind.wav", 84, 60, 8);
  if (rolling && !heavy && now.GS >= kAccelerateFromGS && now.GS < c.aircraft.StallCruise &&
      now.Eng1Throttle < kTakeOffPower)
    Say(c, "AccelerateFaster.wav", 83, 30, 4);
  if (rolling && !c.aircraft.WantJet() && now.GS < 2 && std::abs(now.ElevatorTrim) > kTrimExcessive)
    Teach(c, "TrimExcessiveForTakeOff.wav", 91, 30, 8);
  p.TakeOffHoldTicks = rolling && now.GS < 2 ? p.TakeOffHoldTicks + 1 : 0;
  if (p.TakeOffHoldTicks > kTakeOffDelayTicks) Say(c, "DelayExcessiveForTakeOff.wav", 82, 120, 8);
}

void CheckCarbHeat(Cockpit& c) {
  const AircraftValues& a = c.aircraft;
  bool wanted = a.WantType(AircraftType::C152);
  for (int box : kCarbHeatBoxes) wanted = wanted || a.Monitoring.Boeing[static_cast<size_t>(box)];
  if (!wanted) return;
  const char* on = "c152\\CarbHeatOn.wav";
  const char* off = "c152\\CarbHeatOff.wav";
  for (const CarbHeatPhrases& p : kCarbHeatPhrases) {
    if (a.WantType(p.type)) {
      on = p.on;
      off = p.off;
    }
  }
  const FSData& now = c.link.Now();
  const FlightState& f = c.flight;
  // On the approach: in the air, descending towards the field.
  const bool approach = f.Modes.Landing && Airborne(c) && Within(now.AGL, 200, 2000);
  if (!f.Modes.Landing && CarbHeat(now)) Say(c, off, 31, 60, 8);
  if (approach && !CarbHeat(now) && EnginesFiring(now) > 0) Say(c, on, 31, 60, 8);
}

void CheckCowlFlaps(Cockpit& c) {
  const AircraftValues& a = c.aircraft;
  const bool baron = a.WantType(AircraftType::Baron);
  const bool dc3 = a.WantType(AircraftType::DC3);
  if (!baron && !dc3) return;
  const FSData& now = c.link.Now();
  const FlightState& f = c.flight;
  const double lowest = std::min(now.Eng1CowlFlaps, now.Eng2CowlFlaps);
  const double highest = std::max(now.Eng1CowlFlaps, now.Eng2CowlFlaps);
  if (now.OnGround != 0 && f.Modes.Taxiing && now.GS < 5 && lowest < 0.9)
    Say(c, baron ? "BaronB58\\zPro_CowlFlapsFullOpen.wav" : "DC3\\zPro_CowlFlapsFullOpen.wav", 65,
        30, 8);
  if (baron && Airborne(c) && !f.Modes.TakeOff && highest > 0.1)
    Say(c, "BaronB58\\zPro_CowlFlapsFullClosed.wav", 40, 30, 8);
  if (dc3 && Airborne(c) && now.AGL > 1000 && !Within(now.Eng1CowlFlaps, 0.2, 0.8))
    Say(c, "DC3\\zPro_CowlFlapsHalfOpen.wav", 40, 30, 8);
}

void CheckPropsForLanding(Cockpit& c) {
  const FSData& now = c.link.Now();
  if (!c.flight.Modes.Landing || !Airborne(c) || !Within(now.AGL, 400, 3000)) return;
  for (const LandingLevers& l : kLandingLevers) {
    if (!c.aircraft.WantType(l.type)) continue;
    if (now.Eng1PropLever < 12000) Say(c, l.prop, 25, 30, 4);
    if (now.Eng1MixtureLever < l.mixtureFull && now.Altitude < 3000) Say(c, l.mixture, 35, 30, 4);
    return;
  }
}

// In the cruise, the twins' power changes with the height: crossing 5,000
// feet calls the other cruise setting.
void CheckBeginCruise(Cockpit& c) {
  const CruisePhrases* p = ActiveCruise(c);
  if (p == nullptr || p->high == nullptr || !c.flight.Modes.Cruise) return;
  const FSData& now = c.link.Now();
  const FSData& before = c.link.Before();
  const bool up = CrossedUp(before.Altitude, now.Altitude, kHighCruiseFrom + 1);
  const bool down = before.Altitude > kHighCruiseFrom && now.Altitude <= kHighCruiseFrom;
  if (up || down) Say(c, CruiseAt(*p, now.Altitude), 62, 30, 8);
}

}  // namespace procedures

void BeginCruiseAdvice(Cockpit& c) {
  const procedures::CruisePhrases* p = procedures::ActiveCruise(c);
  if (p == nullptr) return;
  procedures::Say(c, procedures::CruiseAt(*p, c.link.Now().Altitude), 62, 30, 8);
}

}  // namespace vantoro
