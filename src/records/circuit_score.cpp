#include "records/circuit_score.h"

#include <cmath>
#include <cstdlib>
#include <string>
#include <string_view>

#include "base/numbers.h"
#include "records/markup.h"
#include "world/geo.h"

namespace vantoro {

namespace {

struct CircuitItem {
  FlightCounter counter;
  int32_t limit;  // ticks of error tolerated
  const char* bad;
  const char* good;
  double points;
};

// The items sum to 100. The wiring of the timing counters is one leg late on
// purpose: the late turn from Upwind counts on CircuitBadTimingCrossWind, and
// CircuitBadTimingUpWind is never raised, so its line always reads as good.
const std::array<CircuitItem, 13> kItems = {{
    {&FlightStats::CircuitBadHeadingUpWind, 10, "* Poor Upwind heading - maintain runway heading.",
     "* Good Upwind heading.", 7},
    {&FlightStats::CircuitBadAltitudeUpWind, 10,
     "* Poor Upwind altitude - climb smartly to 500 feet AAL.", "* Good Upwind altitude.", 7},
    {&FlightStats::CircuitBadTimingUpWind, 0,
     "* Late turn onto Crosswind leg - turn Crosswind on reaching 500 feet AAL.",
     "* Good turn onto Crosswind leg.", 7},
    {&FlightStats::CircuitBadHeadingCrossWind, 10,
     "* Poor Crosswind heading - fly at 90 degrees to the runway.", "* Good Crosswind heading.", 7},
    {&FlightStats::CircuitBadAltitudeCrossWind, 10,
     "* Poor Crosswind altitude - climb smartly to 1000 feet AAL.", "* Good Crosswind altitude.",
     7},
    {&FlightStats::CircuitBadTimingCrossWind, 0,
     "* Late turn onto Downwind leg - turn Downwind on reaching 1000 feet AAL.",
     "* Good turn onto Downwind leg.", 7},
    {&FlightStats::CircuitBadHeadingDownWind, 10,
     "* Poor Downwind heading - fly parallel to the runway.", "* Good Downwind heading.", 7},
    {&FlightStats::CircuitBadAltitudeDownWind, 10,
     "* Poor Downwind altitude - maintain 1000 feet AAL.", "* Good Downwind altitude.", 7},
    {&FlightStats::CircuitBadTimingDownWind, 0,
     "* Late turn onto Base - turn when circuit reference point is 45 degrees behind you.",
     "* Good turn onto Base.", 7},
    {&FlightStats::CircuitBadHeadingBase, 10,
     "* Poor Base heading - fly at 90 degrees to the runway.", "* Good Base heading.", 10},
    {&FlightStats::CircuitBadAltitudeBase, 10,
     "* Poor Base altitude - descend so you enter final at 500 - 600 feet AAL.",
     "* Good Base altitude.", 7},
    {&FlightStats::CircuitBadTimingBase, 0, "* Late on Final - get onto final sooner next time.",
     "* Good timing onto Final.", 10},
    {&FlightStats::CircuitBadBankAngle, 0,
     "* Excessively steep banking - only up to 30 degrees and mostly less.",
     "* Banking not too steep.", 10},
}};

// Bonuses and caps, as the landing has them.
constexpr double kBonusFromScore = 60;
constexpr int32_t kCrosswindFrom = 21;
constexpr int32_t kCrosswindTo = 159;
constexpr int32_t kCrosswindAbove = 4;  // knots
constexpr double kPoorVisibility = 1;   // statute miles
constexpr double kZeroVisibilityBonus = 80;
constexpr double kDurationDivisor = 1000;  // seconds of flight per point
constexpr int32_t kAutoPilotTicks = 40;
constexpr double kAutoPilotFactor = 0.66;
constexpr double kStopBonus = 3;  // less a hundredth of the ground speed
constexpr double kStopSpeedDivisor = 100;
constexpr int32_t kSimRateTicks = 20;
constexpr double kBinaryNoise = 1e-7;        // a sum of tenths lies a hair below itself
constexpr double kFeetPerMileFactor = 5280;  // the distance line's factor
constexpr double kPoorLandingBelow = 50;

const std::array<const char*, 5> kTooLongLines = {
    "* Upwind circuit leg too long [", "* CrossWind circuit leg too long [",
    "* DownWind circuit leg too long [", "* Base circuit leg too long [",
    "* Final circuit leg too long ["};

}  // namespace

void BuildCircuitScore(const CircuitInputs& in, const FlightStats& flight, ScoreState& scores) {
  const std::string lb(kLineBreak);
  const FSData& second = in.Second;
  double& score = scores.CircuitScore;
  std::string& text = scores.CircuitText;
  score = 0;
  auto line = [&](std::string_view words) { text += std::string(words) + lb; };

  for (const CircuitItem& item : kItems) {
    if (flight.*item.counter > item.limit) {
      line(item.bad);
    } else {
      line(item.good);
      score += item.points;
    }
  }

  const int32_t wind = std::abs(second.WindRelativeToHeading);
  if (score >= kBonusFromScore && wind >= kCrosswindFrom && wind <= kCrosswindTo &&
      second.WindSpeed > kCrosswindAbove) {
    score += 2.0 * second.WindSpeed;
    line("* Nice handling of that crosswind - tricky during a circuit.");
  }
  if (score >= kBonusFromScore && second.Visibility < kPoorVisibility) {
    if (second.Visibility > 0) {
      line("* Well done - circuits are tough in low visibility.");
      score += Int(5 / second.Visibility);
    } else {
      line("* Great job - visibility about zero.");
      score += kZeroVisibilityBonus;
    }
  }
  score += flight.FlightDuration / kDurationDivisor;
  if (flight.AutoPilotTicks >= kAutoPilotTicks) score *= kAutoPilotFactor;
  score += kStopBonus - second.GS / kStopSpeedDivisor;
  score = Int(score * 100 + kBinaryNoise) / 100;
  if (flight.AbnormalSimRateTicks >= kSimRateTicks) score = 0;

  // Validity: landed at the reference point, each leg flown and none too long.
  const double distance =
      CalcDistance(in.ReferenceLatitude, in.ReferenceLongitude, second.Latitude, second.Longitude);
  const std::array<int32_t, 5> ticks = {
      flight.CircuitDurationUpWind, flight.CircuitDurationCrossWind, flight.CircuitDurationDownWind,
      flight.CircuitDurationBase, flight.CircuitDurationFinal};
  bool tooLong = false;
  bool tooShort = false;
  for (size_t i = 0; i < ticks.size(); ++i) {
    tooLong = tooLong || ticks[i] >= kCircuitLegTooLongTicks;
    tooShort = tooShort || ticks[i] <= kCircuitLegShortestTicks[i];
  }
  const bool near = distance < kCircuitLandingWithin;
  if (!near || !in.CircuitMode || tooLong || tooShort) {
    for (size_t i = 0; i < ticks.size(); ++i)
      if (ticks[i] >= kCircuitLegTooLongTicks)
        line(kTooLongLines[i] + std::to_string(static_cast<int64_t>(Int(ticks[i] / 2.0))) +
             "] secs.");
    if (tooShort) line("* Circuit legs too short or missing.");
    if (!near) line("* Landing too far from Circuit reference point.");
    score = 0;
  }
  line("* Landing distance from Circuit reference point:" +
       std::to_string(static_cast<int64_t>(Int(distance * kFeetPerMileFactor))) + " feet.");
}

void CompleteCircuitText(const FlightStats& flight, ScoreState& scores) {
  const std::string lb(kLineBreak);
  double& score = scores.CircuitScore;
  std::string& text = scores.CircuitText;
  if (score < 0) score = 0;
  if (text.empty())
    text = "A first class circuit!";
  else
    text = "Circuit included the following:" + lb + text + "Definite room for improvement...";
  if (scores.LandingScore < kPoorLandingBelow) {
    score = 0;
    text += lb + "Circuit Score reset to zero due to poor Landing Score (under 50 points).";
  }
  if (flight.AutoPilotTicks >= kAutoPilotTicks) text = "Autopilot used." + lb + text;
  if (flight.AbnormalSimRateTicks >= kSimRateTicks)
    text = "Abnormal simulation rate during flight." + lb + text;
  text = lb + lb + "[SCORE]Circuit Score:" + FormatFixed(score, 2) + "[/SCORE]" + lb + lb + text;
}

}  // namespace vantoro
