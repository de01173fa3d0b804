#include "records/flight_evaluation.h"

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
constexpr int32_t kTrimTicksPerProblem = 10;

// The lists as the items build them, line by line, and the score so far.
struct Items {
  double score = 0;
  std::string good;
  std::string bad;
  std::vector<std::string>& sounds;

  // A scored item: with its counter above 0 the bad line (after its sound),
  // otherwise the good line and the points. An empty line is none.
  void Score(int32_t counter, const char* sound, const std::string& badLine,
             const std::string& goodLine, double points) {
    if (counter > 0) {
      if (sound != nullptr) sounds.emplace_back(sound);
      if (!badLine.empty()) bad += badLine + std::string(kLineBreak);
      return;
    }
    if (!goodLine.empty()) good += goodLine + std::string(kLineBreak);
    score += points;
  }
};

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

  Items it{0, {}, {}, e.Sounds};
  const auto when = [](bool holds, const char* line) { return holds ? line : ""; };

  it.Score(f.ExceedBankChange, "RoughTurns.wav",
           "* Rough turns - your passengers spilt their drinks and have a pain in their necks.",
           "* Smooth turns.", 2);
  it.Score(f.ExceedBankLeft + f.ExceedBankRight, "ExcessiveBanking.wav",
           "* Steep banking - save your aerobatic flying for some other time.", "* Nice banking.",
           2);
  it.Score(f.ExceedFlaps, "ExceedingFlapSpeeds.wav",
           "* Exceeding flap speeds - your flaps may be damaged: have them checked.",
           when(in.HasFlaps, "* Correct matching of flaps to speeds."), 5);
  it.Score(f.ExceedGearDown, "ExceedGearDown.wav",
           "* Exceeding gear speed - your landing gear may be damaged: have it checked.",
           when(in.RetractableGear, "* Gear deployment at safe speed."), 5);
  it.Score(f.ExceedGsNegative + f.ExceedGsPositive, "ExceedGsNegative.wav",
           "* Sickening G forces - your passengers feel rather unwell.", "* Comfortable G forces.",
           3);
  it.Score(f.ExceedPitchChange, "ExceedPitchChange.wav",
           "* Rough pitch control - that flight felt like a rollercoaster.",
           "* Smooth pitch control.", 2);
  it.Score(f.ExceedVNE, "ExceedVNE.wav", "* Dangerous speed - you may have damaged the aircraft.",
           "* Flown within aircraft's maximum speed limit.", 3);
  it.Score(f.RoughTurnsOnGround, nullptr,
           "* Dangerous taxiing turns - these cause discomfort and stress.", "* Gentle taxi turns.",
           3);
  it.Score(f.BrakeDuringTakeOff, nullptr, "* Braking during takeoff - watch those feet.", "", 3);
  it.Score(f.PoorTakeOffSteering, nullptr,
           in.FloatPlane ? "* Poor steering during takeoff - maintain a constant heading."
                         : "* Poor steering during takeoff - stay in the centre of the runway.",
           when(f.TookOff, "* Good take off steering."), 3);
  it.Score(f.LateRotation, nullptr, "* Late rotation - when Vr is reached - take off.",
           when(f.TookOff, "* Rotation was not late."), 3);
  // Flaps left down while taxiing cost points without a word.
  it.Score(f.FlapsNotUpDuringTaxi, nullptr, "", "", 3);
  it.Score(f.NotTaxiInWindWithElevatorDown + f.NotTaxiInWindWithElevatorUp, nullptr,
           "* Poor elevator control during taxi in wind - danger of flipping.", "", 3);
  it.Score(f.NotTaxiInWindWithLeftAileronUp + f.NotTaxiInWindWithRightAileronUp, nullptr,
           "* Poor aileron control during taxi in wind - danger of flipping.", "", 3);
  it.Score(f.TaxiTooFast, nullptr,
           "* Poor attention to taxi speed - dangerous to yourself and others.",
           "* Safe taxi speed.", 3);
  it.Score(f.TaxiWithThrottleAndBrakes, nullptr,
           "* Throttle and brakes during taxi - bad for many systems.", "", 3);
  it.Score(f.RideBrakes, nullptr, "* Harsh braking - taxi gently and brake smoothly.",
           "* Smooth braking during taxi.", 3);
  it.Score(f.TakeOffDescent, nullptr, "* Loss of altitude during takeoff - climb smoothly.",
           when(f.TookOff, "* Smooth climb during takeoff."), 3);
  it.Score(f.NotLevelWings, nullptr, "* Wings not level near ground - danger of clipping a wing.",
           "* Wings level near ground.", 3);
  it.Score(f.NotRudderToCoordinateTurns, nullptr,
           "* Poorly coordinated turns - use your rudder correctly.", "* Well coordinated turns.",
           3);
  it.Score(f.ExceedStall, "ExceedStall.wav", "* Dangerous stalls - don't let that happen again.",
           "* No stalls.", 6);
  // After a stall, flying close to it is not mentioned: its points are lost too.
  if (f.ExceedStall <= 0) {
    it.Score(f.NearStall, nullptr, "* Airspeed too low - you are risking stalls.",
             "* No flying dangerously close to stall speed.", 5);
  }
  it.Score(f.DescentTooFast, nullptr, "* Rapid descent - dangerous and uncomfortable.",
           "* Smooth comfortable descent rate.", 3);
  it.Score(f.LowerTheNoseTailStrike, nullptr,
           "* Narrowly missed tail strike - watch your pitch: this could have been bad.", "", 3);
  it.Score(f.LowerTheNose, nullptr, "* Nose held too high - spilt drinks and worried expressions.",
           "* Pitch not too high.", 2);
  it.Score(f.RaiseTheNose, nullptr, "* Nose held too low - we're not in combat.",
           "* Pitch not too low.", 3);
  it.Score(f.NotFlapsForLanding, nullptr, "* Flaps not down on time - plan your landing next time.",
           when(in.HasFlaps, "* Flaps down on time."), 2);
  it.Score(f.TooFastToLand, nullptr, "* Excessive speed during approach - reduce speed earlier.",
           "* Approach speed not too fast.", 3);
  it.Score(f.TooFastLowNotLanding, nullptr,
           "* Excessive speed at low altitude - several complaints have been filed.",
           "* Low altitude speeds not too fast.", 3);
  it.Score(f.FlewTooLowOverObstacle, nullptr,
           "* Narrowly missed obstacles - plan your safety altitudes.",
           "* Good clearance of obstacles.", 3);
  it.Score(static_cast<int32_t>(Int(f.NotUseTrimmers / static_cast<double>(kTrimTicksPerProblem))),
           nullptr, "* Poorly trimmed aircraft - trimmers are there to help: use them.", "", 3);

  double score = it.score;
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
      Worded(it.bad, "Flight included the following problems:", "Definite room for improvement...",
             "A smooth flight!");
  e.GoodList =
      Worded(it.good, "Flight commended in the following areas:", "   ", "An awful flight.");
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
