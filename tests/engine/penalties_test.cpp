#include "engine/flight_rig.h"

namespace vantoro {
namespace {

const std::string kRateQuestion = "Do you *want* an abnormal simulation rate?";
const std::string kAutoPilotQuestion = "Do you *want* AutoPilot on?";

TEST(Penalties, AnAbnormalSimulationRateZeroesTheScoreAtTwentyTicks) {
  FlightRig rig;
  rig.Ready();
  rig.Mark();
  rig.SimRate(512);
  rig.Tick(19);
  EXPECT_EQ(rig.Messages(), kRateQuestion);
  EXPECT_EQ(rig.Queued(), "SimulationRateIsWrong.wav");  // its gap is 30 ticks
  EXPECT_EQ(rig.Since("remark").at(0).Int("level"), 1);
  rig.Mark();
  rig.Tick();
  EXPECT_EQ(rig.Messages(), "Score will be zero due to abnormal simulation rate.");
  EXPECT_EQ(rig.Since("message").at(0).Int("seconds"), 8);
  rig.Mark();
  rig.Tick(40);  // past twenty the warning has no more point
  EXPECT_EQ(rig.Queued() + rig.Messages(), "");
  rig.SimRate(256);
  rig.Tick(5);
  rig.SimRate(128);
  rig.Tick();  // a new abnormal period asks again, and the count goes on
  EXPECT_EQ(rig.Messages(), kRateQuestion);
  EXPECT_EQ(rig.stats().AbnormalSimRateTicks, 61);
  EXPECT_EQ(rig.Since("count").back().Text("name"), "SimulationRateNotNormal");
}

TEST(Penalties, FortyTicksOfAutopilotCostAThird) {
  FlightRig rig;
  rig.Ready();
  rig.Mark();
  rig.Autopilot(true);
  rig.Tick(39);
  EXPECT_EQ(rig.Messages(), kAutoPilotQuestion);
  rig.Mark();
  rig.Tick(11);
  EXPECT_EQ(rig.Messages(), "Score loses 33% due to AutoPilot.");
  EXPECT_EQ(rig.Since("message").at(0).Int("seconds"), 8);
  EXPECT_EQ(rig.stats().AutoPilotTicks, 50);
}

TEST(Penalties, TheAutopilotIsWatchedOutsideItsBands) {
  struct Row {
    bool heavy;
    std::vector<Leg> reach;
    bool watched;
  };
  // clang-format off
  const std::vector<Row> rows = {
      {false, {}, true},  // taxiing
      {false, CruiseAt(961), false}, {false, CruiseAt(941), true}, {true, CruiseAt(100), false},
      {true, Climb(610), false},     {false, Climb(3000), true},
      {true, LandingAt(909), false}, {true, LandingAt(889), true}, {false, LandingAt(3000), true},
  };
  // clang-format on
  for (const Row& row : rows) {
    FlightRig rig;
    rig.Heavy(row.heavy);
    rig.Ready();
    rig.Follow(row.reach);
    rig.Mark();
    rig.Autopilot(true);
    rig.Tick();
    SCOPED_TRACE(rig.instructor.sound.Status.Mode);
    EXPECT_EQ(rig.stats().AutoPilotTicks, row.watched ? 1 : 0);
    EXPECT_EQ(rig.Messages(), row.watched ? kAutoPilotQuestion : "");
  }
}

}  // namespace
}  // namespace vantoro
