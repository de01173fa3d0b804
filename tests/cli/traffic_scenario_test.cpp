// Traffic in a replayed flight: the flight script places targets in the
// simulator's traffic tables, the recording carries them, and the whole
// instructor calls them out as the pilot would hear it.
#include <gtest/gtest.h>

#include <algorithm>

#include "support/scenario.h"

namespace vantoro {
namespace {

constexpr const char* kDeparture = R"(clock 2026-06-14T09:30:00
position 51.82978359 -1.31962215
heading 10
engine start
taxi speed 8 for 20
)";

testing::ScenarioOptions Instant() {
  testing::ScenarioOptions options;
  options.instant = true;
  return options;
}

TEST(TrafficScenario, AirTrafficIsDescribedAndWarnedOf) {
  const std::string script = std::string(kDeparture) + R"(takeoff speed 55
rotate pitch 8 vs 600
climb to 1500 vs 700 speed 80
traffic air 1 at 5 4000 high 500 vs 900 state 139 ident B738 214
level for 10
traffic air 1 at 3 800 ident B738 214
level for 10
)";
  const testing::Scenario flight = testing::FlyScript(script, Instant());
  // The new target: five o'clock, high, a Boeing 737, climbing.
  const std::vector<std::string> spoken = flight.Spoken();
  const auto at = std::find(spoken.begin(), spoken.end(), "5.wav");
  ASSERT_NE(at, spoken.end());
  const std::vector<std::string> described(at, std::min(at + 5, spoken.end()));
  EXPECT_EQ(described, (std::vector<std::string>{"5.wav", "OClock.wav", "High.wav", "737.wav",
                                                 "IsClimbing.wav"}));
  // Then close abeam on the right: it is to pass us.
  EXPECT_TRUE(flight.Said("TrafficAirDangerLetItPassUs.wav"));
  EXPECT_FALSE(flight.Said("TrafficGroundDangerClose.wav"));
}

// The ground calls share the sound gap of a minute and a half, counted from
// the start: the taxi goes on long enough for it.
TEST(TrafficScenario, TheAircraftAheadOnTheTaxiway) {
  const std::string script = std::string(kDeparture) + R"(taxi speed 8 for 30
traffic ground 1 at 12 120 speed 5 state 136
taxi speed 5 for 4
traffic ground 1 at 12 60 speed 5 state 136
taxi speed 5 for 4
)";
  const testing::Scenario flight = testing::FlyScript(script, Instant());
  EXPECT_TRUE(flight.Said("TrafficGroundMoreSpacing.wav"));
  EXPECT_TRUE(flight.Said("TrafficGroundDangerClose.wav"));
}

}  // namespace
}  // namespace vantoro
