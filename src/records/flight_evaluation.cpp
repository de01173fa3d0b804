#include "records/flight_evaluation.h"

#include <array>

#include "base/numbers.h"
#include "records/markup.h"

namespace vantoro {

namespace {

// Upper limits of the weight classes and the base bonus of each.
struct ClassBand {
  double upTo;
  double base;
};
constexpr ClassBand kClassBands[] = {{20, 7},   {50, 15},   {100, 24}, {250, 30},
                                     {500, 37}, {1000, 45}, {1500, 53}};
constexpr double kHeaviestClassBase = 60;
constexpr double kStallAllowanceDivisor = 20;
constexpr double kSecondsPerDurationPoint = 1000;

using F = FlightStats;

// When an item's good line is said: a pilot is not praised for flaps the
// aircraft does not have, or for a take-off he did not make.
enum class Praise { Always, HasFlaps, RetractableGear, TookOff, Never };

// One scored item of the flight report: the counters it sums, the sound and
// the line when any of them is above 0, else the good line and the points.
// A sound or a line may be empty: then none is given.
struct ScoredItem {
  std::array<FlightCounter, 2> counters;
  const char* sound;
  const char* badLine;
  const char* goodLine;
  Praise praise;
  double points;
  const char* floatPlaneBadLine = nullptr;  // the float plane's own wording
};

// The items in the order the report lists them.
const ScoredItem kScoredItems[] = {
    {{&F::ExceedBankChange},
     "RoughTurns.wav",
     "* Rough turns - your passengers spilt their drinks and have a pain in their necks.",
     "* Smooth turns.",
     Praise::Always,
     2},
    {{&F::ExceedBankLeft, &F::ExceedBankRight},
     "ExcessiveBanking.wav",
     "* Steep banking - save your aerobatic flying for some other time.",
     "* Nice banking.",
     Praise::Always,
     2},
    {{&F::ExceedFlaps},
     "ExceedingFlapSpeeds.wav",
     "* Exceeding flap speeds - your flaps may be damaged: have them checked.",
     "* Correct matching of flaps to speeds.",
     Praise::HasFlaps,
     5},
    {{&F::ExceedGearDown},
     "ExceedGearDown.wav",
     "* Exceeding gear speed - your landing gear may be damaged: have it checked.",
     "* Gear deployment at safe speed.",
     Praise::RetractableGear,
     5},
    {{&F::ExceedGsNegative, &F::ExceedGsPositive},
     "ExceedGsNegative.wav",
     "* Sickening G forces - your passengers feel rather unwell.",
     "* Comfortable G forces.",
     Praise::Always,
     3},
    {{&F::ExceedPitchChange},
     "ExceedPitchChange.wav",
     "* Rough pitch control - that flight felt like a rollercoaster.",
     "* Smooth pitch control.",
     Praise::Always,
     2},
    {{&F::ExceedVNE},
     "ExceedVNE.wav",
     "* Dangerous speed - you may have damaged the aircraft.",
     "* Flown within aircraft's maximum speed limit.",
     Praise::Always,
     3},
    {{&F::RoughTurnsOnGround},
     nullptr,
     "* Dangerous taxiing turns - these cause discomfort and stress.",
     "* Gentle taxi turns.",
     Praise::Always,
     3},
    {{&F::BrakeDuringTakeOff},
     nullptr,
     "* Braking during takeoff - watch those feet.",
     nullptr,
     Praise::Never,
     3},
    {{&F::PoorTakeOffSteering},
     nullptr,
     "* Poor steering during takeoff - stay in the centre of the runway.",
     "* Good take off steering.",
     Praise::TookOff,
     3,
     "* Poor steering during takeoff - maintain a constant heading."},
    {{&F::LateRotation},
     nullptr,
     "* Late rotation - when Vr is reached - take off.",
     "* Rotation was not late.",
     Praise::TookOff,
     3},
    // Flaps left down while taxiing cost points without a word.
    {{&F::FlapsNotUpDuringTaxi}, nullptr, nullptr, nullptr, Praise::Never, 3},
    {{&F::NotTaxiInWindWithElevatorDown, &F::NotTaxiInWindWithElevatorUp},
     nullptr,
     "* Poor elevator control during taxi in wind - danger of flipping.",
     nullptr,
     Praise::Never,
     3},
    {{&F::NotTaxiInWindWithLeftAileronUp, &F::NotTaxiInWindWithRightAileronUp},
     nullptr,
     "* Poor aileron control during taxi in wind - danger of flipping.",
     nullptr,
     Praise::Never,
     3},
    {{&F::TaxiTooFast},
     nullptr,
     "* Poor attention to taxi speed - dangerous to yourself and others.",
     "* Safe taxi speed.",
     Praise::Always,
     3},
    {{&F::TaxiWithThrottleAndBrakes},
     nullptr,
     "* Throttle and brakes during taxi - bad for many systems.",
     nullptr,
     Praise::Never,
     3},
    {{&F::RideBrakes},
     nullptr,
     "* Harsh braking - taxi gently and brake smoothly.",
     "* Smooth braking during taxi.",
     Praise::Always,
     3},
    {{&F::TakeOffDescent},
     nullptr,
     "* Loss of altitude during takeoff - climb smoothly.",
     "* Smooth climb during takeoff.",
     Praise::TookOff,
     3},
    {{&F::NotLevelWings},
     nullptr,
     "* Wings not level near ground - danger of clipping a wing.",
     "* Wings level near ground.",
     Praise::Always,
     3},
    {{&F::NotRudderToCoordinateTurns},
     nullptr,
     "* Poorly coordinated turns - use your rudder correctly.",
     "* Well coordinated turns.",
     Praise::Always,
     3},
    {{&F::ExceedStall},
     "ExceedStall.wav",
     "* Dangerous stalls - don't let that happen again.",
     "* No stalls.",
     Praise::Always,
     6},
    // After a stall, flying close to it is not mentioned: its points are
    // lost too (see EvaluateFlight).
    {{&F::NearStall},
     nullptr,
     "* Airspeed too low - you are risking stalls.",
     "* No flying dangerously close to stall speed.",
     Praise::Always,
     5},
    {{&F::DescentTooFast},
     nullptr,
     "* Rapid descent - dangerous and uncomfortable.",
     "* Smooth comfortable descent rate.",
     Praise::Always,
     3},
    {{&F::LowerTheNoseTailStrike},
     nullptr,
     "* Narrowly missed tail strike - watch your pitch: this could have been bad.",
     nullptr,
     Praise::Never,
     3},
    {{&F::LowerTheNose},
     nullptr,
     "* Nose held too high - spilt drinks and worried expressions.",
     "* Pitch not too high.",
     Praise::Always,
     2},
    {{&F::RaiseTheNose},
     nullptr,
     "* Nose held too low - we're not in combat.",
     "* Pitch not too low.",
     Praise::Always,
     3},
    {{&F::NotFlapsForLanding},
     nullptr,
     "* Flaps not down on time - plan your landing next time.",
     "* Flaps down on time.",
     Praise::HasFlaps,
     2},
    {{&F::TooFastToLand},
     nullptr,
     "* Excessive speed during approach - reduce speed earlier.",
     "* Approach speed not too fast.",
     Praise::Always,
     3},
    {{&F::TooFastLowNotLanding},
     nullptr,
     "* Excessive speed at low altitude - several complaints have been filed.",
     "* Low altitude speeds not too fast.",
     Praise::Always,
     3},
    {{&F::FlewTooLowOverObstacle},
     nullptr,
     "* Narrowly missed obstacles - plan your safety altitudes.",
     "* Good clearance of obstacles.",
     Praise::Always,
     3},
    // Trimming counts ticks; each tenth is one fault, as in the pilot errors.
    {{&F::NotUseTrimmers},
     nullptr,
     "* Poorly trimmed aircraft - trimmers are there to help: use them.",
     nullptr,
     Praise::Never,
     3},
};

// The faults an item's counters hold, by their shares in the pilot errors.
int32_t Faults(const FlightStats& f, const ScoredItem& item) {
  int32_t faults = 0;
  for (FlightCounter c : item.counters) {
    if (c == nullptr) continue;
    int32_t share = 1;
    for (const CounterColumn& column : CounterColumns())
      if (column.field == c && column.errorShare > 1) share = column.errorShare;
    faults += f.*c / share;
  }
  return faults;
}

bool Praised(Praise praise, const FlightStats& f, const FlightEvaluationInputs& in) {
  switch (praise) {
    case Praise::Always:
      return true;
    case Praise::HasFlaps:
      return in.HasFlaps;
    case Praise::RetractableGear:
      return in.RetractableGear;
    case Praise::TookOff:
      return f.TookOff;
    case Praise::Never:
      break;
  }
  return false;
}

std::string Worded(const std::string& list, const char* heading, const char* tail,
                   const char* none) {
  if (list.empty()) return none;
  return std::string(heading) + "[LIST]" + std::string(kLineBreak) + list + "[/LIST]" + tail;
}

}  // namespace

double AircraftClassBonus(double weightClass, int32_t stallLanding) {
  double base = kHeaviestClassBase;
  for (const ClassBand& band : kClassBands) {
    if (weightClass <= band.upTo) {
      base = band.base;
      break;
    }
  }
  return base + stallLanding / kStallAllowanceDivisor;
}

double TruncateScore(double score) {
  return Int(score * 100) / 100;
}

FlightEvaluation EvaluateFlight(const FlightStats& f, const FlightEvaluationInputs& in) {
  FlightEvaluation e;
  e.Problems = FlightPPScore(f);
  e.Sounds.emplace_back(e.Problems <= 0 ? "GoodFlight.wav" : "YouNeedToImprove.wav");

  double itemScore = 0;
  std::string good, bad;
  for (const ScoredItem& item : kScoredItems) {
    if (item.counters[0] == &F::NearStall && f.ExceedStall > 0) continue;
    if (Faults(f, item) > 0) {
      if (item.sound != nullptr) e.Sounds.emplace_back(item.sound);
      const char* line = in.FloatPlane && item.floatPlaneBadLine != nullptr ? item.floatPlaneBadLine
                                                                            : item.badLine;
      if (line != nullptr) bad += line + std::string(kLineBreak);
      continue;
    }
    if (item.goodLine != nullptr && Praised(item.praise, f, in))
      good += item.goodLine + std::string(kLineBreak);
    itemScore += item.points;
  }

  double score = itemScore;
  if (e.Problems > 0) {
    e.Sounds.emplace_back("ProblemsYouNeedToWorkOn.wav");
  } else if (f.TookOff) {
    score = 100;  // a flawless flight is not left at the items' 97
  }

  if (score >= kBonusScoreFloor && in.WeightClass > kClassBonusWeightFloor)
    score += AircraftClassBonus(in.WeightClass, in.StallLanding);
  score += f.FlightDuration / kSecondsPerDurationPoint;
  score += in.RouteBonus;

  if (f.AutoPilotTicks >= kAutoPilotScoreTicks) score *= kAutoPilotFactor;
  score = TruncateScore(score);
  if (f.AbnormalSimRateTicks >= kSimRateScoreTicks) score = 0;
  if (score < 0) score = 0;
  if (!f.TookOff) score = 0;
  if (f.FlightCrashed) score = 0;
  e.Score = score;

  e.BadList =
      Worded(bad, "Flight included the following problems:", "Definite room for improvement...",
             "A smooth flight!");
  e.GoodList = Worded(good, "Flight commended in the following areas:", "   ", "An awful flight.");
  std::string notes;
  if (f.AutoPilotTicks >= kAutoPilotScoreTicks) notes = "Autopilot used." + std::string(kLineBreak);
  if (f.AbnormalSimRateTicks >= kSimRateScoreTicks)
    notes = "Abnormal simulation rate during flight." + std::string(kLineBreak) + notes;

  const std::string br(kLineBreak);
  e.Summary = br + br + "[SCORE]Flight Score:" + FormatFixed(score, 2) +
              (f.TookOff ? "" : " (Flight did not include take off...)") + "[/SCORE]" + br + notes +
              br + e.GoodList + br + e.BadList;
  return e;
}

}  // namespace vantoro
