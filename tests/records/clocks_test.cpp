#include "records/clocks.h"

#include <gtest/gtest.h>

namespace vantoro {
namespace {

FSData At(int day, int h, int m, int s) {
  FSData d;
  d.DayOfYear = day;
  d.ZuluHour = h;
  d.ZuluMinute = m;
  d.Second = s;
  return d;
}

TEST(Clocks, FlightTimeAcrossMidnightAndYearEnd) {
  struct Case {
    const char* what;
    FSData start, now;
    int32_t want;
  };
  const Case cases[] = {
      {"same day", At(100, 10, 0, 0), At(100, 10, 5, 30), 330},
      {"next day", At(100, 23, 59, 0), At(101, 0, 1, 0), 120},
      {"midnight before day changes", At(100, 23, 59, 0), At(100, 0, 1, 0), 120},
      {"year end counts 365 days", At(365, 23, 0, 0), At(1, 1, 0, 0), 7200},
      {"day 0 now", At(100, 10, 0, 0), At(0, 10, 0, 0), -1},
  };
  for (const Case& c : cases) {
    Clocks clocks;
    StartFlightTimer(clocks, c.start);
    EXPECT_EQ(GetFlightTime(clocks, c.now), c.want) << c.what;
  }
}

TEST(Clocks, NeverStartedOrStartedOnDayZero) {
  Clocks clocks;
  EXPECT_EQ(GetBlockTime(clocks, At(5, 1, 0, 0)), -2);
  StartBlockTimer(clocks, At(0, 1, 0, 0));  // the simulator reports no day: not started
  EXPECT_EQ(GetBlockTime(clocks, At(5, 1, 0, 0)), -2);
}

}  // namespace
}  // namespace vantoro
