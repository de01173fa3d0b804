// The flight's score: the problem counters of the flight turned into points,
// lines of praise and criticism and the sounds that say them, then the
// bonuses, the penalties and the report text. Pure functions: the caller
// plays the sounds and keeps the texts.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "records/flight_stats.h"

namespace vantoro {

// What the evaluation needs to know beside the flight's record.
struct FlightEvaluationInputs {
  bool HasFlaps = false;         // the profile has flaps (first flap angle above 0)
  bool RetractableGear = false;  // the profile's retractable-gear box
  bool FloatPlane = false;       // the profile's float-plane box
  double WeightClass = 0;        // zero-fuel weight in 256-pound units
  int32_t StallLanding = 0;      // knots
  double RouteBonus = 0;         // the route's bonus (WayPointFinalAnalysis)
};

struct FlightEvaluation {
  int32_t Problems = 0;             // FlightPPScore
  double Score = 0;                 // FlightScore
  std::vector<std::string> Sounds;  // in the order they are spoken (PlayAlways)
  std::string GoodList;             // worded: "Flight commended in ..." or "An awful flight."
  std::string BadList;              // worded: "Flight included ..." or "A smooth flight!"
  std::string Summary;              // the report with its markup, score line first
};

// Autopilot and simulation-rate limits of every score, in ticks.
inline constexpr int32_t kAutoPilotScoreTicks = 40;
inline constexpr double kAutoPilotFactor = 0.66;
inline constexpr int32_t kSimRateScoreTicks = 20;
// Bonuses are given to scores of at least this, to aircraft heavier than the class floor.
inline constexpr double kBonusScoreFloor = 60;
inline constexpr double kClassBonusWeightFloor = 10;

// The aircraft class bonus: the base of the band of the weight class plus
// StallLanding / 20. Only for weight classes above 10.
double AircraftClassBonus(double weightClass, int32_t stallLanding);
// Int(score x 100) / 100.
double TruncateScore(double score);

// The flight's score and report, from the closed flight's record.
FlightEvaluation EvaluateFlight(const FlightStats& flight, const FlightEvaluationInputs& in);

}  // namespace vantoro
