#include "records/flight_evaluation.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

namespace vantoro {
namespace {

std::string Joined(const std::vector<std::string>& v) {
  std::string out;
  for (const std::string& s : v) out += (out.empty() ? "" : "|") + s;
  return out;
}

// A light single that took off and flew ten minutes without a fault.
FlightStats CleanFlight() {
  FlightStats f;
  f.TookOff = true;
  f.FlightDuration = 600;
  return f;
}

TEST(FlightEvaluation, ScoresSoundsAndLinesOfFlightsAPilotWouldRecognise) {
  struct Case {
    const char* what;
    std::function<void(FlightStats&, FlightEvaluationInputs&)> fly;
    double score;
    const char* sounds;
    std::vector<std::string> seen;    // in the report
    std::vector<std::string> unseen;  // nowhere in it
  };
  const std::vector<Case> cases = {
      {"flawless with take-off: 100 and the duration bonus, not 97",
       [](FlightStats&, FlightEvaluationInputs&) {},
       100.6,
       "GoodFlight.wav",
       {"[SCORE]Flight Score:100.60[/SCORE]", "A smooth flight!", "* Smooth turns.",
        "* Good take off steering.", "* Correct matching of flaps to speeds."},
       {"did not include take off"}},
      {"flawless but began in the air: 0, good lines stand",
       [](FlightStats& f, FlightEvaluationInputs&) { f.TookOff = false; },
       0,
       "GoodFlight.wav",
       {"Flight Score:0.00 (Flight did not include take off...)[/SCORE]", "* Smooth turns."},
       {"* Good take off steering.", "* Rotation was not late."}},
      {"a stall hides the near-stall line and loses both 6 and 5",
       [](FlightStats& f, FlightEvaluationInputs&) { f.ExceedStall = 1, f.NearStall = 4; },
       86.6,
       "YouNeedToImprove.wav|ExceedStall.wav|ProblemsYouNeedToWorkOn.wav",
       {"* Dangerous stalls - don't let that happen again.", "Definite room for improvement..."},
       {"* Airspeed too low", "* No flying dangerously close to stall speed.", "* No stalls."}},
      {"near stall alone loses 5 with its line",
       [](FlightStats& f, FlightEvaluationInputs&) { f.NearStall = 1; },
       92.6,
       "YouNeedToImprove.wav|ProblemsYouNeedToWorkOn.wav",
       {"* Airspeed too low - you are risking stalls.", "* No stalls."},
       {}},
      {"9 ticks untrimmed is no problem at all",
       [](FlightStats& f, FlightEvaluationInputs&) { f.NotUseTrimmers = 9; },
       100.6,
       "GoodFlight.wav",
       {},
       {"* Poorly trimmed aircraft"}},
      {"10 ticks untrimmed is one",
       [](FlightStats& f, FlightEvaluationInputs&) { f.NotUseTrimmers = 10; },
       94.6,
       "YouNeedToImprove.wav|ProblemsYouNeedToWorkOn.wav",
       {"* Poorly trimmed aircraft - trimmers are there to help: use them."},
       {}},
      {"flaps down while taxiing cost 3 points without a word",
       [](FlightStats& f, FlightEvaluationInputs&) { f.FlapsNotUpDuringTaxi = 2; },
       94.6,
       "YouNeedToImprove.wav|ProblemsYouNeedToWorkOn.wav",
       {"A smooth flight!"},
       {"Flight included"}},
      {"a crash scores 0 after everything was built",
       [](FlightStats& f, FlightEvaluationInputs& in) {
         f.FlightCrashed = true;
         in.WeightClass = 200;
       },
       0,
       "GoodFlight.wav",
       {"[SCORE]Flight Score:0.00[/SCORE]", "* Smooth turns."},
       {}},
      {"rough turns and banking are said and written",
       [](FlightStats& f, FlightEvaluationInputs&) {
         f.ExceedBankChange = 1, f.ExceedBankRight = 2;
       },
       93.6,
       "YouNeedToImprove.wav|RoughTurns.wav|ExcessiveBanking.wav|ProblemsYouNeedToWorkOn.wav",
       {"Flight included the following problems:[LIST]\r\n* Rough turns - your passengers spilt "
        "their drinks and have a pain in their necks.\r\n* Steep banking - save your aerobatic "
        "flying for some other time.\r\n[/LIST]Definite room for improvement..."},
       {"* Smooth turns.", "* Nice banking."}},
      {"a float plane is told to hold its heading",
       [](FlightStats& f, FlightEvaluationInputs& in) {
         f.PoorTakeOffSteering = 1;
         in.FloatPlane = true;
       },
       94.6,
       "YouNeedToImprove.wav|ProblemsYouNeedToWorkOn.wav",
       {"* Poor steering during takeoff - maintain a constant heading."},
       {"centre of the runway"}},
      {"no flaps and fixed gear: no praise for them, the points all the same",
       [](FlightStats& f, FlightEvaluationInputs& in) {
         f.TaxiTooFast = 1;
         in.HasFlaps = false;
         in.RetractableGear = false;
       },
       94.6,
       "YouNeedToImprove.wav|ProblemsYouNeedToWorkOn.wav",
       {},
       {"* Correct matching of flaps to speeds.", "* Gear deployment at safe speed.",
        "* Flaps down on time."}},
      {"weight class 11 earns 7 plus the stall allowance",
       [](FlightStats&, FlightEvaluationInputs& in) { in.WeightClass = 11; },
       110.6,
       "GoodFlight.wav",
       {},
       {}},
      {"weight class 10 earns nothing",
       [](FlightStats&, FlightEvaluationInputs& in) { in.WeightClass = 10; },
       100.6,
       "GoodFlight.wav",
       {},
       {}},
      {"a heavy jet of class 2000 earns 60 plus its allowance",
       [](FlightStats&, FlightEvaluationInputs& in) { in.WeightClass = 2000; },
       163.6,
       "GoodFlight.wav",
       {},
       {}},
      {"under 60 no class bonus",
       [](FlightStats& f, FlightEvaluationInputs& in) {
         in.WeightClass = 300;
         f.ExceedFlaps = f.ExceedGearDown = f.ExceedVNE = f.ExceedStall = f.RoughTurnsOnGround =
             f.TaxiTooFast = f.RideBrakes = f.DescentTooFast = f.TooFastToLand = 1;
       },
       58.6,
       nullptr,
       {},
       {}},
      {"40 ticks of autopilot take a third, truncated after",
       [](FlightStats& f, FlightEvaluationInputs&) { f.AutoPilotTicks = 40; },
       66.39,
       "GoodFlight.wav",
       {"Autopilot used.\r\n"},
       {}},
      {"39 ticks of autopilot cost nothing",
       [](FlightStats& f, FlightEvaluationInputs&) { f.AutoPilotTicks = 39; },
       100.6,
       "GoodFlight.wav",
       {},
       {"Autopilot used."}},
      {"an abnormal simulation rate zeroes the score, its note first",
       [](FlightStats& f, FlightEvaluationInputs&) {
         f.AbnormalSimRateTicks = 20, f.AutoPilotTicks = 50;
       },
       0,
       "GoodFlight.wav",
       {"[/SCORE]\r\nAbnormal simulation rate during flight.\r\nAutopilot used.\r\n\r\n"},
       {}},
      {"the route bonus adds to the score",
       [](FlightStats&, FlightEvaluationInputs& in) { in.RouteBonus = 5; },
       105.6,
       "GoodFlight.wav",
       {},
       {}},
  };
  for (const Case& c : cases) {
    FlightStats f = CleanFlight();
    FlightEvaluationInputs in{true, true, false, 5, 60, 0};
    c.fly(f, in);
    const FlightEvaluation e = EvaluateFlight(f, in);
    EXPECT_NEAR(e.Score, c.score, 1e-9) << c.what;
    if (c.sounds != nullptr) {
      EXPECT_EQ(Joined(e.Sounds), c.sounds) << c.what;
    }
    for (const std::string& s : c.seen)
      EXPECT_NE(e.Summary.find(s), std::string::npos) << c.what << ": " << s;
    for (const std::string& s : c.unseen)
      EXPECT_EQ(e.Summary.find(s), std::string::npos) << c.what << ": " << s;
  }
}

TEST(FlightEvaluation, ClassBandsAtTheirEdges) {
  struct Case {
    double weightClass;
    double bonus;
  };
  const Case cases[] = {{11, 7},   {20, 7},   {20.5, 15}, {50, 15},   {100, 24},
                        {250, 30}, {500, 37}, {1000, 45}, {1500, 53}, {1501, 60}};
  for (const Case& c : cases)
    EXPECT_DOUBLE_EQ(AircraftClassBonus(c.weightClass, 40), c.bonus + 2) << c.weightClass;
}

}  // namespace
}  // namespace vantoro
