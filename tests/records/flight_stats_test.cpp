#include "records/flight_stats.h"

#include <gtest/gtest.h>

#include <set>

namespace vantoro {
namespace {

TEST(FlightStats, CountsReachTheLogColumnNames) {
  FlightStats f;
  EventLog log;
  Count(f, &FlightStats::AbnormalSimRateTicks, log, 12);
  Count(f, &FlightStats::AutoPilotTicks, log, 13);
  Count(f, &FlightStats::TaxiTooFast, log, 14);
  SetCount(f, &FlightStats::TaxiTooFast, 1, log, 15);  // unchanged: no event
  ASSERT_EQ(log.events.size(), 3u);
  EXPECT_EQ(log.events[0].Text("name"), "SimulationRateNotNormal");
  EXPECT_EQ(log.events[1].Text("name"), "APOn");
  EXPECT_EQ(log.events[2].Text("name"), "TaxiTooFast");
  EXPECT_EQ(log.events[2].Int("value"), 1);
  EXPECT_EQ(log.events[2].tick, 14);
}

TEST(FlightStats, PilotErrorsLeaveOutTheUncountedAndTakeATenthOfTrimming) {
  FlightStats f;
  f.ExceedYawChange = 3;  // not a pilot error
  f.Scrapes = 2;
  f.Ballooning = 1;
  f.PoorGroundSteeringAfterLanding = 1;
  f.NotUseTrimmers = 9;
  EXPECT_EQ(FlightPPScore(f), 0);
  f.NotUseTrimmers = 10;
  EXPECT_EQ(FlightPPScore(f), 1);
  f.ExceedStall = 1;
  f.NearStall = 2;
  EXPECT_EQ(FlightPPScore(f), 4);
}

TEST(FlightStats, EveryCounterHasItsOwnColumn) {
  std::set<std::string_view> names;
  for (const CounterColumn& c : CounterColumns()) {
    EXPECT_NE(std::string_view(c.column), "");
    EXPECT_TRUE(names.insert(c.column).second) << c.column;
  }
}

}  // namespace
}  // namespace vantoro
