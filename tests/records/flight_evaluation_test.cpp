#include "records/flight_evaluation.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

namespace vantoro {
namespace {

using Fly = std::function<void(FlightStats&, FlightEvaluationInputs&)>;

TEST(FlightEvaluation, ScoresSoundsAndLinesOfFlightsAPilotWouldRecognise) {
  struct Case {
    const char* what;
    Fly fly;
    double score;
    std::string sounds;
    std::vector<std::string> seen;    // in the report
    std::vector<std::string> unseen;  // nowhere in it
  };
  const std::string kImprove = "YouNeedToImprove.wav|";
  const std::string kWorkOn = "|ProblemsYouNeedToWorkOn.wav";
  const std::string kImproveOnly = "YouNeedToImprove.wav" + kWorkOn;
  const std::vector<Case> cases = {
      {"flawless with take-off: 100 and the duration bonus, not 97",
       [](FlightStats&, FlightEvaluationInputs&) {},
       100.6,
       "GoodFlight.wav",
       {"[SCORE]Flight Score:100.60[/SCORE]", "A smooth flight!", "* Good take off steering."},
       {"did not include take off"}},
      {"flawless but began in the air: 0, the good lines stand",
       [](FlightStats& f, FlightEvaluationInputs&) { f.TookOff = false; },
       0,
       "GoodFlight.wav",
       {"Flight Score:0.00 (Flight did not include take off...)[/SCORE]", "* Smooth turns."},
       {"* Good take off steering.", "* Rotation was not late."}},
      {"a stall hides the near-stall line and loses both 6 and 5",
       [](FlightStats& f, FlightEvaluationInputs&) { f.ExceedStall = 1, f.NearStall = 4; },
       86.6,
       kImprove + "ExceedStall.wav" + kWorkOn,
       {"Flight included the following problems:[LIST]\r\n* Dangerous stalls - don't let that "
        "happen again.\r\n[/LIST]Definite room for improvement..."},
       {"* Airspeed too low", "* No flying dangerously close to stall speed."}},
      {"9 ticks untrimmed are no problem",
       [](FlightStats& f, FlightEvaluationInputs&) { f.NotUseTrimmers = 9; },
       100.6,
       "GoodFlight.wav",
       {},
       {"* Poorly trimmed aircraft"}},
      {"10 ticks untrimmed are one",
       [](FlightStats& f, FlightEvaluationInputs&) { f.NotUseTrimmers = 10; },
       94.6,
       kImproveOnly,
       {"* Poorly trimmed aircraft - trimmers"},
       {}},
      {"flaps down while taxiing cost 3 points without a word",
       [](FlightStats& f, FlightEvaluationInputs&) { f.FlapsNotUpDuringTaxi = 2; },
       94.6,
       kImproveOnly,
       {"A smooth flight!"},
       {"Flight included"}},
      {"a crash scores 0 after everything was built",
       [](FlightStats& f, FlightEvaluationInputs& in) {
         f.FlightCrashed = true, in.WeightClass = 200;
       },
       0,
       "GoodFlight.wav",
       {"[SCORE]Flight Score:0.00[/SCORE]", "* Smooth turns."},
       {}},
      {"weight class 11 earns 7 plus the stall allowance",
       [](FlightStats&, FlightEvaluationInputs& in) { in.WeightClass = 11; },
       110.6,
       "GoodFlight.wav",
       {},
       {}},
      {"40 ticks of autopilot take a third, truncated after",
       [](FlightStats& f, FlightEvaluationInputs&) { f.AutoPilotTicks = 40; },
       66.39,
       "GoodFlight.wav",
       {"Autopilot used.\r\n"},
       {}},
      {"an abnormal simulation rate zeroes the score, its note first",
       [](FlightStats& f, FlightEvaluationInputs&) {
         f.AbnormalSimRateTicks = 20, f.AutoPilotTicks = 50;
       },
       0,
       "GoodFlight.wav",
       {"[/SCORE]\r\nAbnormal simulation rate during flight.\r\nAutopilot used.\r\n\r\n"},
       {}},
  };
  for (const Case& c : cases) {
    FlightStats f;
    f.TookOff = true;
    f.FlightDuration = 600;
    FlightEvaluationInputs in{true, true, false, 5, 60, 0};
    c.fly(f, in);
    const FlightEvaluation e = EvaluateFlight(f, in);
    EXPECT_NEAR(e.Score, c.score, 1e-9) << c.what;
    std::string sounds;
    for (const std::string& s : e.Sounds) sounds += (sounds.empty() ? "" : "|") + s;
    EXPECT_EQ(sounds, c.sounds) << c.what;
    for (const std::string& s : c.seen) EXPECT_NE(e.Summary.find(s), std::string::npos) << c.what;
    for (const std::string& s : c.unseen) EXPECT_EQ(e.Summary.find(s), std::string::npos) << c.what;
  }
}

}  // namespace
}  // namespace vantoro
