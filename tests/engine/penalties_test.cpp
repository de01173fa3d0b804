#include <gtest/gtest.h>

#include <functional>

#include "engine/flight_rig.h"

namespace vantoro {
namespace {

using Strings = std::vector<std::string>;

const std::string kRateQuestion = "Do you *want* an abnormal simulation rate?";
const std::string kRateZero = "Score will be zero due to abnormal simulation rate.";
const std::string kAutoPilotQuestion = "Do you *want* AutoPilot on?";
const std::string kAutoPilotThird = "Score loses 33% due to AutoPilot.";

int Count(const FlightRig& rig, const std::string& name) {
  int value = -1;
  for (const Event& e : rig.Since("count"))
    if (e.Text("name") == name) value = static_cast<int>(e.Int("value"));
  return value;
}

TEST(Penalties, AnAbnormalSimulationRateZeroesTheScoreAtTwentyTicks) {
  FlightRig rig;
  rig.ReadyOnTheRunway();
  rig.Mark();
  rig.SimRate(512);
  rig.Tick();
  EXPECT_EQ(rig.Messages(), Strings{kRateQuestion});
  EXPECT_EQ(rig.MessageSeconds(kRateQuestion), 4);
  EXPECT_EQ(rig.Queued(), Strings{"SimulationRateIsWrong.wav"});
  EXPECT_EQ(rig.Since("queued")[0].Int("valid"), 8);
  EXPECT_EQ(rig.Remarks(), Strings{"SimulationRateIsWrong.wav"});
  EXPECT_EQ(rig.Since("remark")[0].Int("level"), 1);
  EXPECT_EQ(Count(rig, "SimulationRateNotNormal"), 1);

  rig.Mark();
  rig.Tick(18);
  EXPECT_EQ(Count(rig, "SimulationRateNotNormal"), 19);
  EXPECT_TRUE(rig.Messages().empty());
  rig.Tick();
  EXPECT_EQ(rig.Messages(), Strings{kRateZero});
  EXPECT_EQ(rig.MessageSeconds(kRateZero), 8);

  // From twenty on the warning has no more point: the score is gone.
  rig.Mark();
  rig.Tick(40);
  EXPECT_TRUE(rig.Queued().empty());
  EXPECT_TRUE(rig.Messages().empty());
  EXPECT_EQ(Count(rig, "SimulationRateNotNormal"), 60);

  // Back to normal, the count stands for the whole flight.
  rig.SimRate(256);
  rig.Mark();
  rig.Tick(5);
  EXPECT_TRUE(rig.Since("count").empty());
  EXPECT_EQ(rig.stats().AbnormalSimRateTicks, 60);
}

TEST(Penalties, EachAbnormalPeriodAsksAgainAndTheCountGoesOn) {
  FlightRig rig;
  rig.ReadyOnTheRunway();
  rig.SimRate(128);
  rig.Tick(5);
  rig.SimRate(256);
  rig.Tick();
  rig.Mark();
  rig.SimRate(1024);
  rig.Tick();
  EXPECT_EQ(rig.Messages(), Strings{kRateQuestion});
  EXPECT_EQ(Count(rig, "SimulationRateNotNormal"), 6);
}

void Taxiing(FlightRig& r) {
  r.ReadyOnTheRunway();
}
void TakeOffAt(FlightRig& r, double agl) {
  r.ReadyOnTheRunway();
  r.Airborne(agl);
}
void CruiseAt(FlightRig& r, double agl) {
  TakeOffAt(r, 3000);
  r.Key(7);
  r.Tick();
  r.AGL(agl);
  r.Tick();
}
void LandingAt(FlightRig& r, double agl) {
  CruiseAt(r, 3000);
  r.Key(7);
  r.Tick();
  r.AGL(agl);
  r.Tick();
}

TEST(Penalties, TheAutopilotIsWatchedOutsideItsBands) {
  struct Row {
    const char* what;
    bool heavy;
    std::function<void(FlightRig&)> reach;
    bool watched;
  };
  using namespace std::placeholders;
  const std::vector<Row> rows = {
      {"taxiing", false, Taxiing, true},
      {"light cruise above 950 feet", false, std::bind(CruiseAt, _1, 961), false},
      {"light cruise below 950 feet", false, std::bind(CruiseAt, _1, 941), true},
      {"heavy cruise at 100 feet", true, std::bind(CruiseAt, _1, 100), false},
      {"heavy take-off above 600 feet", true, std::bind(TakeOffAt, _1, 610), false},
      {"light take-off at 3000 feet", false, std::bind(TakeOffAt, _1, 3000), true},
      {"heavy landing above 900 feet", true, std::bind(LandingAt, _1, 909), false},
      {"heavy landing below 900 feet", true, std::bind(LandingAt, _1, 889), true},
      {"light landing at 3000 feet", false, std::bind(LandingAt, _1, 3000), true},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.what);
    FlightRig rig;
    rig.Heavy(row.heavy);
    row.reach(rig);
    rig.Mark();
    rig.Autopilot(true);
    rig.Tick();
    EXPECT_EQ(Count(rig, "APOn"), row.watched ? 1 : -1);
    EXPECT_EQ(rig.Showed(kAutoPilotQuestion), row.watched);
  }
}

TEST(Penalties, FortyTicksOfAutopilotCostAThird) {
  FlightRig rig;
  rig.ReadyOnTheRunway();
  rig.Mark();
  rig.Autopilot(true);
  rig.Tick(39);
  EXPECT_EQ(rig.Messages(), Strings{kAutoPilotQuestion});
  EXPECT_EQ(rig.MessageSeconds(kAutoPilotQuestion), 4);
  rig.Mark();
  rig.Tick();
  EXPECT_EQ(rig.Messages(), Strings{kAutoPilotThird});
  EXPECT_EQ(rig.MessageSeconds(kAutoPilotThird), 8);
  rig.Mark();
  rig.Tick(10);
  EXPECT_TRUE(rig.Messages().empty());
  EXPECT_EQ(rig.stats().AutoPilotTicks, 50);
}

}  // namespace
}  // namespace vantoro
