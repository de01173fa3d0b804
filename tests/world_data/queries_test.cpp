#include <gtest/gtest.h>

#include <cmath>
#include <optional>

#include "base/numbers.h"
#include "world/geo.h"
#include "world/runway_queries.h"
#include "world_fixture.h"

namespace vantoro {
namespace {

using testing::Lines;
using testing::RunwayAt;
using testing::ScratchFolder;

TEST(Geo, DistancesAndCourses) {
  struct Case {
    double lat1, lon1, lat2, lon2;
    double miles, course;
  };
  // The same point has no distance and bearing 0; the date line is crossed
  // both ways.
  const Case cases[] = {
      {0, 0, 1, 0, 60, 0},
      {0, 0, -1, 0, 60, 180},
      {0, 0, 0, -1, 60, 270},
      {10, 20, 10, 20, 0, 0},
      {0, 179.5, 0, -179.5, 60, 90},
      {0, -179.5, 0, 179.5, 60, 270},
      {42.3656, -71.0096, 40.6398, -73.7789, 161.871, 231.160},  // Boston to Kennedy
      {51.47, -0.4543, 40.6398, -73.7789, 2989.436, 287.942},    // Heathrow to Kennedy
  };
  for (const Case& c : cases) {
    EXPECT_NEAR(CalcDistance(c.lat1, c.lon1, c.lat2, c.lon2), c.miles, 0.001) << c.lat2 << c.lon2;
    EXPECT_NEAR(CalcAngle(c.lat1, c.lon1, c.lat2, c.lon2), c.course, 0.001) << c.lat2 << c.lon2;
  }
  // The arc cosine's own short pi shows at the far side of the earth.
  EXPECT_DOUBLE_EQ(ACos(-1), 3.141592654);
  const std::pair<int, int> wraps[] = {{179, 179}, {180, -180}, {181, -179}, {-181, 179}};
  for (const auto& [in, out] : wraps) EXPECT_EQ(WrapLongLat(in), out) << in;
}

TEST(Queries, AngleWithinHeadingRange) {
  struct Case {
    double angle, heading;
    bool within;
  };
  const Case cases[] = {
      {3, 355, true}, {345, 355, true}, {344, 355, false}, {6, 355, false},
      {15, 5, true},  {354, 5, false},  {101, 90, false},  {0, 360, true},
  };
  // The range argument is not used: 10 degrees stand whatever is passed.
  for (const Case& c : cases)
    for (double range : {10, 45})
      EXPECT_EQ(IsAngleWithinHeadingRange(c.angle, c.heading, range), c.within) << c.angle;
}

// Runways round an aircraft at 10 N, 20 E, in file order.
class QueriesAround : public ::testing::Test {
 protected:
  void SetUp() override {
    LoadRunwayFile(world_,
                   dir_.Write("r.txt", Lines({
                                           RunwayAt("ZZAA", "09", 10.0, 20.02, 90),  // east, 1.2 nm
                                           RunwayAt("ZZAA", "27", 10.0, 20.05, 270),  // east, 3 nm
                                           RunwayAt("ZZBB", "36", 10.03, 20.0, 360),  // north
                                           RunwayAt("ZZCC", "04", 9.99, 19.99, 45),   // south-west
                                           RunwayAt("ZZCC", "22", 9.99, 19.99, 225),  // same place
                                           RunwayAt("ZZDD", "09", 11.6, 20.0, 90),    // outside
                                       })));
    FillCloseRunways(world_, kLat, kLon);
  }
  std::string Found(const Runway* r) const { return r ? r->ICAO + " " + r->Number : "none"; }

  static constexpr double kLat = 10, kLon = 20;
  ScratchFolder dir_;
  WorldState world_;
};

TEST_F(QueriesAround, ClosestRunwayWithItsFilters) {
  struct Case {
    double heading, maxMiles;
    bool checkBearing;
    const char* found;
  };
  // Unfiltered, the tie at the nearest place keeps the earlier; on 270 with
  // the bearing checked, ZZAA 27 lies behind.
  const Case cases[] = {
      {kNoLimit, kNoLimit, false, "ZZCC 04"}, {270, kNoLimit, false, "ZZAA 27"},
      {270, kNoLimit, true, "none"},          {95, kNoLimit, true, "ZZAA 09"},
      {355, kNoLimit, true, "ZZBB 36"},       {5, kNoLimit, true, "ZZBB 36"},
      {220, kNoLimit, true, "ZZCC 22"},       {kNoLimit, 1.0, false, "ZZCC 04"},
      {kNoLimit, 0.5, false, "none"},         {90, 1.0, false, "none"},
      {180, kNoLimit, false, "none"},
  };
  for (const Case& c : cases) {
    std::string why;  // asking for the reasoning changes nothing
    const Runway* r = FindClosestRunway(world_, kLat, kLon, c.heading, c.maxMiles, c.checkBearing);
    EXPECT_EQ(Found(r), c.found) << c.heading << " " << c.maxMiles << " " << c.checkBearing;
    EXPECT_EQ(r,
              FindClosestRunway(world_, kLat, kLon, c.heading, c.maxMiles, c.checkBearing, &why));
  }
}

TEST_F(QueriesAround, ReasoningOfTheSearch) {
  std::string why;
  FindClosestRunway(world_, kLat, kLon, 90, kNoLimit, true, &why);
  EXPECT_EQ(why,
            "Aircraft Heading: 90\n"
            "ZZAA 09  Heading: 90  Angle: 90.0  Distance: 1.18 - OK\n"
            "ZZAA 27  Heading: 270  Angle: 90.0  Distance: 2.95 - Not within 10 degrees\n"
            "ZZBB 36  Heading: 360  Angle: 0.0  Distance: 1.80 - Not within 10 degrees\n"
            "ZZCC 04  Heading: 45  Angle: 224.6  Distance: 0.84 - Not within 10 degrees\n"
            "ZZCC 22  Heading: 225  Angle: 224.6  Distance: 0.84 - Not within 10 degrees\n"
            "Closest Runway: ZZAA 09");
  FindClosestRunway(world_, kLat, kLon, 90, 1, true, &why);
  EXPECT_NE(why.find("ZZAA 09  Heading: 90  Angle: 90.0  Distance: 1.18 - Not within 1 miles\n"),
            std::string::npos);
  EXPECT_TRUE(why.ends_with("No closest runway")) << why;
}

TEST_F(QueriesAround, OtherSearches) {
  // The working set holds the nine cells round the aircraft only.
  EXPECT_EQ(world_.CloseRunways.size(), 5u);

  RunwayWithinFeet within = FindClosestRunwayWithinFeet(world_, kLat, kLon);
  EXPECT_EQ(Found(within.Found), "ZZCC 04");
  EXPECT_DOUBLE_EQ(within.Feet, CalcDistance(kLat, kLon, 9.99, 19.99) * 6076.11549);

  // Clock positions straight from the true bearing for the test.
  auto oClock = [](double latitude, double longitude) {
    int clock = CLng(CalcAngle(kLat, kLon, latitude, longitude) / 30);
    return clock < 1 ? 12 : clock;
  };
  for (auto [position, found] :
       {std::pair(3, "ZZAA 09"), {12, "ZZBB 36"}, {7, "ZZCC 04"}, {6, "none"}})
    EXPECT_EQ(Found(FindClosestRunwayOClock(world_, kLat, kLon, position, oClock)), found);
  EXPECT_EQ(Found(FindClosestRunwayOClock(world_, kLat, kLon, 3, oClock, 1.0)), "none");
}

// At 179.6 east the cells 179, -180 and -179 are searched, from either side.
TEST(Queries, AcrossTheDateLine) {
  ScratchFolder dir;
  WorldState world;
  LoadRunwayFile(
      world,
      dir.Write("r.txt",
                Lines({RunwayAt("ZW79", "09", 0, 179.2), RunwayAt("ZE80", "09", 0, 179.7),
                       RunwayAt("ZW80", "09", 0, -179.6), RunwayAt("ZW79", "27", 0, -179.4),
                       RunwayAt("ZW78", "09", 0, -178.4), RunwayAt("ZE78", "09", 0, 178.4)})));
  for (double longitude : {179.6, -179.6}) {
    FillCloseRunways(world, 0.2, longitude);
    std::vector<std::string> codes;
    for (const Runway* r : world.CloseRunways) codes.push_back(r->ICAO + "." + r->Number);
    std::sort(codes.begin(), codes.end());
    EXPECT_EQ(codes, (std::vector<std::string>{"ZE80.09", "ZW79.09", "ZW79.27", "ZW80.09"}));
  }
  // The nearest of them is found from the west side.
  const Runway* r = FindClosestRunway(world, 0, -179.42, kNoLimit, kNoLimit, false);
  EXPECT_EQ(r ? r->ICAO + r->Number : "none", "ZW7927");
}

// The quick cosine test of the search never changes its answer: over a
// crowded grid of runways, the search agrees with measuring every runway.
TEST(Queries, QuickTestAgreesWithMeasuringEveryRunway) {
  ScratchFolder dir;
  std::vector<std::string> lines;
  uint32_t seed = 12345;
  auto next = [&seed] {
    seed = seed * 1103515245u + 12345u;
    return static_cast<double>((seed >> 8) & 0xFFFF) / 65536.0;
  };
  for (int i = 0; i < 600; ++i) {
    // Pairs of runway ends at the same place make ties.
    const double lat = 40 + next() * 2, lon = -74 + next() * 2;
    lines.push_back(RunwayAt("Z" + std::to_string(i), "09", lat, lon));
    if (i % 5 == 0) lines.push_back(RunwayAt("Z" + std::to_string(i), "27", lat, lon, 270));
  }
  WorldState world;
  LoadRunwayFile(world, dir.Write("r.txt", Lines(lines)));
  for (int q = 0; q < 300; ++q) {
    const double lat = 40 + next() * 2, lon = -74 + next() * 2;
    const double maxMiles = q % 3 == 0 ? kNoLimit : next() * 20;
    FillCloseRunways(world, lat, lon);
    const Runway* expected = nullptr;
    double best = 1;
    for (const Runway* r : world.CloseRunways) {
      const double miles = CalcDistance(lat, lon, r->Latitude, r->Longitude);
      if (maxMiles != kNoLimit && miles > maxMiles) continue;
      if (expected == nullptr || miles < best) {
        expected = r;
        best = miles;
      }
    }
    ASSERT_EQ(FindClosestRunway(world, lat, lon, kNoLimit, maxMiles, false), expected)
        << lat << " " << lon << " " << maxMiles;
  }
}

}  // namespace
}  // namespace vantoro
