// The approach rules, one by one in the order of the tick: lined up or not,
// above or below the glide path with the throttle advice that goes with it,
// descent and pitch limits, crosswind, flaps, speed, and gear.
#include <cstdlib>
#include <string>

#include "base/numbers.h"
#include "engine/approach.h"
#include "engine/tick_rules.h"
#include "link/snapshot.h"
#include "voice/phrases.h"

namespace vantoro {

namespace {

constexpr size_t kFailEngineIndex = 0x0B6B - kFailFlagsOffset;

// Feet AGL and feet per tick.
constexpr double kRulesAbove = 100;
constexpr double kSinking = 5;  // AGL more than this below the tick before

// Lining up by the destination's bearing: within 2 nm, 2 to 18 degrees off.
// Beyond 18 the pilot is taken to be still turning in.
constexpr double kLineUpWithinMiles = 2;
constexpr int32_t kLineUpLeast = 2;
constexpr int32_t kLineUpMost = 18;
// Lining up by the localiser needle (-127..127).
constexpr int32_t kLocaliserLeast = 20;
constexpr int32_t kLocaliserMost = 110;

// The glide path without an ILS: within 4 nm, 75 feet per mile either side.
constexpr double kGlidePathWithinMiles = 4;
constexpr int32_t kGlidePathBandPerMile = 75;
// With an ILS: a quarter of the needle's full deflection.
constexpr int32_t kGlideslopeNeedleQuarter = 32;
constexpr int32_t kThrottleAdvice = 2200;

// Descent too fast between 70 and 700 feet, feet per minute.
constexpr double kDescentBandLow = 70;
constexpr double kDescentBandHigh = 700;
constexpr int32_t kDescentRed = -1200;
constexpr int32_t kDescentAmber = -1000;

// Pitch limits, degrees.
constexpr double kTailStrikeBelow = 30;
constexpr int32_t kTailStrikePitchHeavy = 15;
constexpr int32_t kTailStrikePitch = 25;
constexpr int32_t kNoseHigh = 20;
constexpr int32_t kNoseHighHeavy = 35;
constexpr int32_t kNoseLow = -14;
constexpr int32_t kNoseLowNotLanding = -7;

// Crosswind announcements.
constexpr double kObsCrosswindHeight = 600;
constexpr double kObsCrosswindAbove = 602;
constexpr double kCrosswindCallHeight = 450;
constexpr int32_t kCalmWind = 4;  // knots
constexpr int32_t kCrosswindLeast = 20;
constexpr int32_t kCrosswindMost = 160;

constexpr double kApproachFlagHeight = 650;

// Too fast low down.
constexpr double kTooFastBandLow = 80;
constexpr double kTooFastBandHigh = 140;
constexpr double kTooFastFactor = 1.6;
constexpr double kLowInCruiseLow = 40;
constexpr double kLowInCruiseHigh = 800;
constexpr double kLowInCruiseAmberHigh = 900;

// Glideslope overshot and off course.
constexpr double kOvershotLow = 130;
constexpr double kOvershotHigh = 210;
constexpr int32_t kOvershotLocaliser = 22;
constexpr int32_t kOvershotGlideslope = 75;
constexpr double kOffCourseLow = 100;
constexpr double kOffCourseHigh = 250;
constexpr double kOffCourseRatio = 4;

// Gear.

// Flaps for landing: the red rule below the amber one. Between them no flap
// at all is excused only by a strong crosswind.
constexpr double kNeedFlapsLow = 100;
constexpr double kNeedFlapsHigh = 500;
constexpr double kAmberFlapsHigh = 1000;
constexpr double kFlapSentenceAbove = 200;
constexpr int32_t kFlapsOut = 256;

bool EngineFailed(const FSData& now) {
  return now.FailFlags[kFailEngineIndex];
}

// One of two recordings of the same words, at even chance.
std::string_view EitherOf(Cockpit& c, std::string_view first, std::string_view second) {
  return c.random.Uniform() < 0.5 ? first : second;
}

void AboveGlidePath(Cockpit& c) {
  GiveAdvice(c, EitherOf(c, "AboveGlideSlope.wav", "AboveGlideSlope2.wav"), 49, 30, 4, 0);
  const FSData& now = c.link.Now();
  if (!EngineFailed(now) && now.IAS > c.aircraft.StallLandingPlus10 &&
      now.Eng1Throttle > kThrottleAdvice) {
    GiveAdvice(c, EitherOf(c, "ReduceThrottle.wav", "ReduceThrottle2.wav"), 50, 30, 4, 0);
  }
}

void BelowGlidePath(Cockpit& c) {
  GiveAdvice(c, "BelowGlideSlope.wav", 51, 30, 4, 0);
  const FSData& now = c.link.Now();
  if (!EngineFailed(now) && now.IAS < c.aircraft.StallLandingPlus10 &&
      now.Eng1Throttle < kThrottleAdvice) {
    GiveAdvice(c, EitherOf(c, "IncreaseThrottle.wav", "IncreaseThrottle2.wav"), 52, 30, 4, 0);
  }
}

// A red rule: the advice, and the occasion counted.
void Fault(Cockpit& c, std::string_view file, int id, int gap, FlightCounter counter) {
  GiveAdvice(c, file, id, gap, 4, kRed, counter);
}

// No flap out, and no strong crosswind to excuse it.
bool FlapsWanted(const Cockpit& c) {
  const FSData& now = c.link.Now();
  const int32_t wind = std::abs(now.WindRelativeToOBS);
  const bool crosswind = wind > kCrosswindLeast && wind < kCrosswindMost;
  return c.flight.Modes.Landing && c.aircraft.HasFlaps() && now.FlapsLeft < kFlapsOut &&
         (now.WindSpeed <= kCalmWind || !crosswind);
}

// The first flap stage and its speed, in the type's own words.
struct FlapSentence {
  AircraftType type;
  const char* first;
  const char* second;  // only the Caravan says both stages
};
constexpr FlapSentence kFlapSentences[] = {
    {AircraftType::C172, "c172\\FlapsSpeed1.wav", nullptr},
    {AircraftType::C152, "c152\\FlapsSpeed1.wav", nullptr},
    {AircraftType::Mooney, "Mooney\\zPro_FlapsSpeed1.wav", nullptr},
    {AircraftType::Baron, "BaronB58\\zPro_FlapsSpeed1.wav", nullptr},
    {AircraftType::C208B, "c208B\\zPro_FlapsSpeed1.wav", "c208B\\zPro_FlapsSpeed2.wav"},
    {AircraftType::C182, "c182\\zPro_FlapsSpeed1.wav", nullptr},
    {AircraftType::KingAir350, "BeechKingAir350\\zPro_FlapsSpeed1.wav", nullptr},
    {AircraftType::DC3, "DC3\\zPro_FlapsSpeed1.wav", nullptr},
    {AircraftType::B757, "b757\\FlapsSpeed1.wav", nullptr},
    {AircraftType::CRJ700, "CRJ700\\FlapsSpeed1.wav", nullptr},
    {AircraftType::TwinOtter, "TwinOtter\\FlapsSpeed1.wav", nullptr},
};

void SayFlapSpeed(Cockpit& c) {
  Voice v = c.voice();
  for (const FlapSentence& s : kFlapSentences) {
    if (!c.aircraft.WantType(s.type)) continue;
    PlayPerhaps(v, s.first, 42, 60, 12);
    if (s.second != nullptr) PlayAlways(v, s.second);
    return;
  }
}

// The crosswind on the runway as NAV1's OBS points it: side, angle, degrees.
void ObsCrosswind(Cockpit& c, std::string_view side, int32_t angle) {
  Voice v = c.voice();
  PlayAlways(v, side);
  PlayStringPhoneticallyAlways(v, FormatDigits(std::abs(angle), 3));
  PlayAlways(v, "Degrees.wav");
}

}  // namespace

void AmberFlapsForLanding(Cockpit& c) {
  const double agl = c.link.Now().AGL;
  if (FlapsWanted(c) && agl >= kNeedFlapsHigh && agl < kAmberFlapsHigh) {
    GiveAdvice(c, "AMBERNeedFlapsForLanding.wav", 56, 30, 4, 1);
  }
}

void NeedFlapsForLanding(Cockpit& c) {
  const double agl = c.link.Now().AGL;
  if (!FlapsWanted(c) || agl <= kNeedFlapsLow || agl >= kNeedFlapsHigh) return;
  if (!GiveAdvice(c, "NeedFlapsForLanding.wav", 56, 30, 4, kRed, &FlightStats::NotFlapsForLanding))
    return;
  if (agl > kFlapSentenceAbove) SayFlapSpeed(c);
}

void ApproachRules(Cockpit& c) {
  const FSData& now = c.link.Now();
  const FSData& before = c.link.Before();
  const ApproachState& a = c.flight.approach;
  const AircraftValues& ac = c.aircraft;
  const bool landing = c.flight.Modes.Landing;
  const bool cruise = c.flight.Modes.Cruise;
  const bool heavy = c.link.HeavyAircraft;
  const double agl = now.AGL;
  const bool sinking = agl < before.AGL - kSinking;
  const int32_t loc = now.Nav1Localiser;
  const int32_t gs = now.Nav1Glideslope;
  const double d = DistanceAirportWithoutILSCheck(a, now);
  const bool known = d != kNoDestinationDistance;

  // 1, 2: lined up with the destination's runway by the bearing to it.
  if (landing && known && d < kLineUpWithinMiles && agl > kRulesAbove && sinking) {
    const int32_t off = RelativeBearing(now.Nav1OBS, BearingAirportWithoutILSCheck(a, now));
    if (off > kLineUpLeast && off < kLineUpMost) {
      GiveAdvice(c, "LineUpWithTheCentreLine.wav", 47, 30, 4, 0);
    }
    if (off < -kLineUpLeast && off > -kLineUpMost) {
      GiveAdvice(c, "GetLinedUpWithTheRunway.wav", 48, 30, 4, 0);
    }
  }

  // 3, 4: lined up by the localiser.
  if (landing && agl > kRulesAbove) {
    if (loc > kLocaliserLeast && loc < kLocaliserMost) {
      GiveAdvice(c, "LineUpWithTheCentreLine.wav", 47, 30, 4, 0);
    }
    if (loc < -kLocaliserLeast && loc > -kLocaliserMost) {
      GiveAdvice(c, "GetLinedUpWithTheRunway.wav", 48, 30, 4, 0);
    }
  }

  // 5 to 8: the glide path without a glideslope signal.
  if (!now.Nav1GlideslopeAlive && landing && agl > kRulesAbove && known &&
      d < kGlidePathWithinMiles) {
    const double height = now.IndicatedAltitude - a.DestinationElevation;
    if (height > (a.GlidePathFeetPerMile + kGlidePathBandPerMile) * d) AboveGlidePath(c);
    if (height < (a.GlidePathFeetPerMile - kGlidePathBandPerMile) * d) BelowGlidePath(c);
  }

  // 9, 10: the glideslope needle.
  if (now.Nav1GlideslopeAlive && landing && agl > kRulesAbove && std::abs(loc) < kLocaliserMost) {
    if (gs > kGlideslopeNeedleQuarter) AboveGlidePath(c);
    if (gs < -kGlideslopeNeedleQuarter) BelowGlidePath(c);
  }

  // 11, 12: descent too fast.
  if (agl > kDescentBandLow && agl < kDescentBandHigh) {
    if (now.VS < kDescentRed) {
      Fault(c, "DescentTooFastDontLandGoAround.wav", 53, 30, &FlightStats::DescentTooFast);
    }
    if (now.VS < kDescentAmber)
      GiveAdvice(c, "AMBERDescentTooFastDontLandGoAround.wav", 53, 30, 4, 1);
  }

  // 13 to 15: pitch.
  if (agl > 0 && agl < kTailStrikeBelow &&
      now.Pitch > (heavy ? kTailStrikePitchHeavy : kTailStrikePitch)) {
    Fault(c, "LowerTheNoseTailStrike.wav", 54, 30, &FlightStats::LowerTheNoseTailStrike);
  }
  if (agl >= kTailStrikeBelow && now.Pitch > (heavy ? kNoseHighHeavy : kNoseHigh)) {
    Fault(c, "LowerTheNose.wav", 54, 30, &FlightStats::LowerTheNose);
  }
  if (agl > 0 && (now.Pitch < kNoseLow || (now.Pitch < kNoseLowNotLanding && !landing &&
                                           now.IAS > ac.StallLandingPlus10))) {
    Fault(c, "RaiseTheNose.wav", 55, 30, &FlightStats::RaiseTheNose);
  }

  // 16, 17: the crosswind on the runway, said once on the way down through 600 feet.
  if (!ac.WantType(AircraftType::DC3) && landing && agl <= kObsCrosswindHeight &&
      before.AGL > kObsCrosswindAbove && now.WindSpeed > kCalmWind) {
    const int32_t w = now.WindRelativeToOBS;
    if (w > -kCrosswindMost && w < -kCrosswindLeast) {
      ObsCrosswind(c, "NAV1OBSCrosswindIsLeft.wav", w);
    }
    if (w > kCrosswindLeast && w < kCrosswindMost) {
      ObsCrosswind(c, "NAV1OBSCrosswindIsRight.wav", w);
    }
  }

  // 18: flaps, the early warning; the fault itself follows.
  AmberFlapsForLanding(c);
  NeedFlapsForLanding(c);

  // 19: the simulator's approach flag is cleared on the way down through 650 feet.
  if (landing && agl <= kApproachFlagHeight && before.AGL > kApproachFlagHeight) {
    const uint8_t zero = 0;
    WriteToSim(c.sim, c.events, c.flight.TickCount, kApproachFlagOffset, &zero, 1);
  }

  // 20: a significant crosswind, said on the way down through 450 feet.
  if (agl <= kCrosswindCallHeight && before.AGL > kCrosswindCallHeight &&
      now.WindSpeed > kCalmWind && std::abs(now.WindRelativeToHeading) > kCrosswindLeast &&
      std::abs(now.WindRelativeToHeading) < kCrosswindMost) {
    GiveAdvice(c,
               now.WindRelativeToHeading < 0 ? "YouHaveASignificantLeftCrosswind.wav"
                                             : "YouHaveASignificantRightCrosswind.wav",
               75, 30, 4, 0);
  }

  // 21: the flap speed rules run here above 100 feet (aircraft procedures).

  // 22 to 25: too fast, or low in Cruise.
  const bool tooFastLow = agl > kTooFastBandLow && agl < kTooFastBandHigh &&
                          now.IAS > kTooFastFactor * ac.StallLandingPlus20;
  if (landing && tooFastLow) {
    Fault(c, "TooFastToLandSoAbort.wav", 58, 30, &FlightStats::TooFastToLand);
  }
  if (!landing && cruise && tooFastLow &&
      GiveAdvice(c, "TooFastLowNotLanding.wav", 58, 30, 4, kRed,
                 &FlightStats::TooFastLowNotLanding))
    ShowMessage(c, "Are you LANDING?", 5);
  const bool lowInCruise = cruise && agl > kLowInCruiseLow && agl < kLowInCruiseHigh;
  if (lowInCruise && GiveAdvice(c, "TooFastLowNotLanding.wav", 58, 60, 4, kRed,
                                &FlightStats::TooFastLowNotLanding))
    ShowMessage(c, "Are you LANDING?", 5);
  if (cruise && !lowInCruise && agl > kLowInCruiseLow && agl < kLowInCruiseAmberHigh) {
    GiveAdvice(c, "AMBERTooFastLowNotLanding.wav", 58, 60, 4, 1);
  }

  // 26: the further speed advice runs here (AmberLandingSpeed,
  // SpeedAdviceVPSpeeds: aircraft procedures).

  // 27, 28: glideslope overshot, or off course low down.
  if (landing && agl > kOvershotLow && agl < kOvershotHigh && sinking &&
      std::abs(loc) < kOvershotLocaliser && gs > kOvershotGlideslope) {
    GiveAdvice(c, "OvershotTheGlideslopeAbort.wav", 59, 30, 4, 0);
  }
  if (landing && agl > kOffCourseLow && agl < kOffCourseHigh && sinking && loc != 0 &&
      agl / std::abs(loc) < kOffCourseRatio) {
    GiveAdvice(c, "OffCourseGoAround.wav", 60, 30, 4, 0);
  }

  // 29, 30: the gear rules of the cruise (LowerGearAdvice) follow at once.
}

}  // namespace vantoro
