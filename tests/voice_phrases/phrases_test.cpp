// What the pilot hears when the instructor composes a sentence: the exact
// files queued, in order, as the sound ring receives them.
#include "voice/phrases.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>

#include "base/failure.h"
#include "link/image_link.h"

namespace vantoro {
namespace {

using Files = std::vector<std::string>;

class Phrases : public ::testing::Test {
 protected:
  void SetUp() override {
    s.Instructor = "Anna";
    int result = 0;
    link.Open(0, result);
  }
  Voice V() { return Voice{s, {nullptr, nullptr}, &link, log, 7}; }
  // The files queued by one sentence on an empty ring, as the caller named them.
  Files Said(const std::function<void(Voice&)>& sentence) {
    s.Channels = SoundState{}.Channels;
    log.events.clear();
    Voice v = V();
    sentence(v);
    Files out;
    for (const Event& e : log.OfType("queued")) out.push_back(e.Text("file"));
    return out;
  }

  SoundState s;
  OffsetImage image;
  ImageLink link{image};
  EventLog log;
};

TEST_F(Phrases, NumbersAreSaidFileForFile) {
  const struct {
    double n;
    Files files;
  } cases[] = {
      {0, {"0.WAV"}},
      {-3.5, {"minus.WAV", "3.wav", "Point.WAV", "5.wav", "0.wav"}},
      {13, {"13.WAV"}},
      {20, {"20.WAV"}},
      {21, {"20.WAV", "1.wav"}},
      {0.5, {"Point.WAV", "5.wav", "0.wav"}},
      {100, {"100.WAV"}},
      {101, {"100And.WAV", "1.wav"}},
      {199, {"100And.WAV", "90.WAV", "9.wav"}},
      // 200 and above fall through every branch after "100And".
      {200, {"100And.WAV"}},
      // A landing score truncated to two decimals keeps both of them.
      {72.29, {"70.WAV", "2.wav", "Point.WAV", "2.wav", "9.wav"}},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(Said([&](Voice& v) { SpeakThisNumberAlways(v, c.n); }), c.files) << c.n;
  }
}

TEST_F(Phrases, LargeValuesAreSpeltDigitByDigit) {
  EXPECT_EQ(Said([](Voice& v) { SpeakAsANumberAlways(v, 199); }),
            (Files{"100And.WAV", "90.WAV", "9.wav"}));
  EXPECT_EQ(Said([](Voice& v) { SpeakAsANumberAlways(v, 200); }),
            (Files{"2.wav", "0.wav", "0.wav"}));
}

TEST_F(Phrases, DurationsSayHoursOnlyWhenThereAreAny) {
  const struct {
    double minutes;
    Files files;
  } cases[] = {
      {0, {"0.WAV", "Minutes.wav"}},
      {1, {"1.wav", "Minute.wav"}},
      {61, {"1.wav", "Hour.wav", "1.wav", "Minute.wav"}},
      {120, {"2.wav", "Hours.wav", "0.WAV", "Minutes.wav"}},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(Said([&](Voice& v) { SayAlwaysHoursAndMinutes(v, c.minutes); }), c.files)
        << c.minutes;
  }
}

TEST_F(Phrases, RunwayDesignatorsAreTrimmedAndCutToThreeCharacters) {
  const struct {
    const char* name;
    Files files;
  } cases[] = {
      {" 07L ", {"0.wav", "7.wav", "left.wav"}}, {"07", {"0.wav", "7.wav"}},
      {"27r", {"2.wav", "7.wav", "right.wav"}},  {"36C", {"3.wav", "6.wav", "centre.wav"}},
      {"RW09L", {"0.wav", "9.wav", "left.wav"}}, {"   ", {}},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(Said([&](Voice& v) { SayRunwayNumbersAlways(v, c.name); }), c.files) << c.name;
  }
  EXPECT_EQ(Said([](Voice& v) { SayRunwayNameAlways(v, "25R"); }),
            (Files{"runway.wav", "2.wav", "5.wav", "right.wav"}));
}

TEST_F(Phrases, RunwayLengthAndSurface) {
  const struct {
    int32_t feet;
    const char* surface;
    Files files;
  } cases[] = {
      {800, "", {"RunwayLengthIs.wav", "8.wav", "Hundred.wav", "Feet.wav"}},
      // Names are matched exactly: a lower-case name has no recording of its own.
      {3050,
       " grass ",
       {"RunwayLengthIs.wav", "3.wav", "Thousand.wav", "Feet.wav", "SurfaceIs.wav"}},
      {2999,
       "WATER",
       {"RunwayLengthIs.wav", "2.wav", "Thousand.wav", "9.wav", "Hundred.wav", "Feet.wav",
        "SurfaceIs.wav", "SWATER.wav"}},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(Said([&](Voice& v) { RunwayLengthIs(v, c.feet, c.surface); }), c.files) << c.feet;
  }
}

TEST_F(Phrases, TheLandingRunwayItsHeadingAndTheWeather) {
  Runway rwy;
  rwy.Number = "07L";
  rwy.Elevation = 1234;
  rwy.Heading = 0;
  EXPECT_EQ(Said([&](Voice& v) { WeAreLandingAtRunway(v, rwy); }),
            (Files{"WeAreLandingAtRunway.wav", "0.wav", "7.wav", "left.wav", "ElevationIs.wav",
                   "1.wav", "2.wav", "3.wav", "4.wav", "Feet.wav"}));
  EXPECT_EQ(Said([&](Voice& v) { RunwayHeading(v, rwy); }),
            (Files{"RunwayHeading.wav", "3.wav", "6.wav", "0.wav", "Degrees.wav"}));
  rwy.Heading = 75;
  EXPECT_EQ(Said([&](Voice& v) { RunwayHeading(v, rwy); }),
            (Files{"RunwayHeading.wav", "0.wav", "7.wav", "5.wav", "Degrees.wav"}));

  FSData now;
  now.Visibility = 10.7;
  EXPECT_EQ(Said([&](Voice& v) { SayVisibility(v, now); }),
            (Files{"VisibilityIs.wav", "1.wav", "0.wav", "Miles.wav"}));
  now.Visibility = 0;
  EXPECT_EQ(Said([&](Voice& v) { SayVisibility(v, now); }),
            (Files{"VisibilityIs.wav", "VeryBad.wav"}));
}

TEST_F(Phrases, CloudIsReportedForTheFirstLayerWithCover) {
  const struct {
    CloudLayer first, second;
    Files files;
  } cases[] = {
      {{0, 0, 0}, {0, 0, 0}, {"NoSignificantCloud.wav"}},
      {{0, 2540, 2}, {0, 9000, 8}, {"FewClouds.wav", "20.WAV", "5.wav", "hundred.wav", "feet.wav"}},
      {{0, 0, 0}, {0, 4960, 8}, {"Overcast.wav", "5.wav", "thousand.wav", "feet.wav"}},
      {{0, 3000, 4}, {}, {"ScatteredClouds.wav", "3.wav", "thousand.wav", "feet.wav"}},
      {{0, 12040, 6},
       {},
       {"BrokenCloud.wav", "1.wav", "2.wav", "0.wav", "0.wav", "0.wav", "feet.wav"}},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(Said([&](Voice& v) { SayCloudCoverage(v, c.first, c.second); }), c.files)
        << c.first.UpperFeet;
  }
}

TEST_F(Phrases, ClockPositionsRoundHalfToEven) {
  const struct {
    int32_t degrees, clock;
  } cases[] = {{359, 12}, {15, 12}, {45, 2}, {75, 2}, {105, 4}, {345, 12}, {-90, 9}, {-15, 12}};
  for (const auto& c : cases) EXPECT_EQ(OClock(c.degrees), c.clock) << c.degrees;
}

TEST_F(Phrases, TheDestinationIsToldByClockAndDistance) {
  FSData now;
  now.Latitude = 51;
  now.Longitude = 0;
  now.TrueHeading = 90;
  // Ten miles due north of an aircraft heading east: nine o'clock.
  const double north = 51 + 10.5 / 60;
  EXPECT_EQ(OClockOfLatLongToMe(now, north, 0), 9);
  EXPECT_EQ(Said([&](Voice& v) { SayWhereIsTheAirport(v, "EGLL", north, 0, now); }),
            (Files{"E.wav", "G.wav", "L.wav", "L.wav", "9.wav", "oclock.wav", "1.wav", "0.wav",
                   "miles.wav"}));
  // Behind the right wing: 150 degrees off the nose is five o'clock.
  now.TrueHeading = 30;
  EXPECT_EQ(OClockOfLatLongToMe(now, 51 - 10.0 / 60, 0), 5);
  EXPECT_TRUE(Said([&](Voice& v) { SayWhereIsTheAirport(v, "", 52, 0, now); }).empty());
}

TEST_F(Phrases, TheApproachIsAnnouncedOnceWithinAQuarterOfAnHour) {
  Runway rwy;
  rwy.ICAO = "KSEA";
  rwy.Latitude = 47;
  rwy.Longitude = -122;
  rwy.Length = 11900;
  rwy.Surface = "CONCRETE";
  rwy.ATIS = "118.30";
  FSData before, now;
  before.Latitude = now.Latitude = 47;
  before.Longitude = -122 + 31.0 / 60 / std::cos(47 * 3.14159265358979 / 180);  // ~31 nm east
  now.Longitude = -122 + 29.0 / 60 / std::cos(47 * 3.14159265358979 / 180);     // ~29 nm east
  const double approachSpeed = 119;  // 120 knots: a quarter of an hour is 30 nm

  const Files length = {"RunwayLengthIs.wav", "11.WAV",   "Thousand.wav",  "9.wav",
                        "Hundred.wav",        "Feet.wav", "SurfaceIs.wav", "SCONCRETE.wav"};
  Files spoken = length;
  for (const char* f :
       {"ATISFrequencyIs.wav", "1.wav", "1.wav", "8.wav", "Decimal.wav", "3.wav", "0.wav"})
    spoken.push_back(f);
  auto approach = [&](const FSData& from, bool tune) {
    return Said([&](Voice& v) { SpeakRunwayAndATIS(v, now, from, rwy, approachSpeed, tune); });
  };
  EXPECT_EQ(approach(before, false), spoken);
  EXPECT_TRUE(link.writes.empty());
  // Already inside: nothing more.
  EXPECT_TRUE(approach(now, false).empty());

  // With automatic tuning the frequency goes to COM2 standby twice, then COM2 is swapped.
  Files tuned = length;
  for (const char* f :
       {"TuningCOM2ToATIS.wav", "1.wav", "1.wav", "8.wav", "Decimal.wav", "3.wav", "0.wav"})
    tuned.push_back(f);
  EXPECT_EQ(approach(before, true), tuned);
  std::vector<std::pair<uint32_t, std::vector<uint8_t>>> writes;
  for (const LinkWrite& w : link.writes) writes.push_back({w.offset, w.bytes});
  const std::vector<std::pair<uint32_t, std::vector<uint8_t>>> expected = {
      {0x311C, {0x30}}, {0x311D, {0x18}}, {0x311C, {0x30}}, {0x311D, {0x18}}, {0x3123, {4}}};
  EXPECT_EQ(writes, expected);
  EXPECT_EQ(log.OfType("write").size(), 5u);

  // No ATIS with the runway data: the length alone.
  rwy.ATIS = "0";
  EXPECT_EQ(approach(before, true), length);
}

TEST_F(Phrases, NearestAirportAndRunwayByClock) {
  Runway rwy;
  rwy.ICAO = " EGKA ";
  rwy.Latitude = 50 + 12.5 / 60;  // 12 nm due north
  rwy.Longitude = 0;
  rwy.Elevation = 7;
  rwy.Length = 3000;
  rwy.Surface = "GRASS";
  FSData now;
  now.Latitude = 50;
  now.TrueHeading = 270;
  const Files length = {"RunwayLengthIs.wav", "3.wav",         "Thousand.wav",
                        "Feet.wav",           "SurfaceIs.wav", "SGRASS.wav"};
  Files nearest = {"E.wav", "G.wav",       "K.wav", "A.wav", "Bearing.wav", "9.wav",
                   "0.wav", "Degrees.wav", "1.wav", "2.wav", "Miles.wav"};
  nearest.insert(nearest.end(), length.begin(), length.end());
  auto say = [&](auto sentence, const Runway* r) {
    return Said([&](Voice& v) { sentence(v, r, now); });
  };
  EXPECT_EQ(say(SayNearestAirport, &rwy), nearest);
  EXPECT_EQ(say(SayNearestAirport, nullptr), Files{"negative.wav"});

  std::string last;
  EXPECT_EQ(Said([&](Voice& v) { SayNearestAirportAutomatically(v, &rwy, now, last); }), nearest);
  EXPECT_TRUE(Said([&](Voice& v) { SayNearestAirportAutomatically(v, &rwy, now, last); }).empty());
  EXPECT_TRUE(
      Said([&](Voice& v) { SayNearestAirportAutomatically(v, nullptr, now, last); }).empty());

  Files atClock = {"E.wav", "G.wav",     "K.wav",           "A.wav", "1.wav",
                   "2.wav", "Miles.wav", "ElevationIs.wav", "7.wav", "Feet.wav"};
  atClock.insert(atClock.end(), length.begin(), length.end());
  EXPECT_EQ(say(SpeakRunwayAtOClock, &rwy), atClock);
  EXPECT_EQ(say(SpeakRunwayAtOClock, nullptr), Files{"negative.wav"});
}

TEST_F(Phrases, DescentRateToTheDestination) {
  FSData now;
  now.Latitude = 50;
  now.Altitude = 6150;
  now.GS = 120;                       // two miles a minute
  const double lat = 50 + 20.0 / 60;  // 20 nm: ten minutes
  auto descent = [&](const char* icao) {
    return Said([&](Voice& v) { SayDescentRateToDesintation(v, icao, 100, lat, 0, now); });
  };
  EXPECT_EQ(descent("EGHH"), (Files{"E.wav", "G.wav", "H.wav", "H.wav", "6.wav", "Hundred.wav",
                                    "FeetPerMinute.wav"}));
  now.Altitude = 905;  // 805 ft in ten minutes: 80 fpm
  EXPECT_EQ(descent("EGHH"),
            (Files{"E.wav", "G.wav", "H.wav", "H.wav", "8.wav", "0.wav", "FeetPerMinute.wav"}));
  EXPECT_TRUE(descent("").empty());
  now.Altitude = 100;  // not above the destination
  EXPECT_TRUE(descent("EGHH").empty());

  now.Altitude = 6100;
  now.GS = 0;
  try {
    descent("EGHH");
    FAIL() << "a ground speed of 0 must end in the failure report";
  } catch (const FailureReport& f) {
    EXPECT_EQ(f.location(), "SayDescentRateToDesintation");
  }
}

TEST_F(Phrases, SpellingGoesStraightToTheRing) {
  EXPECT_EQ(Said([](Voice& v) { PlayStringPhoneticallyAlways(v, "K7."); }),
            (Files{"K.wav", "7.wav", "..wav"}));
  for (const Event& e : log.OfType("queued")) {
    EXPECT_EQ(e.Text("by"), "PlaySound");
    EXPECT_EQ(e.Int("valid"), 120);
  }
  EXPECT_EQ(s.Channels[0].Entries[0].Path, "Sound\\Anna\\K.wav");
}

TEST_F(Phrases, FlightPlanRemainderAndTimeRemaining) {
  FlightPlan plan;
  for (double lat : {50.0, 50.5, 51.0, 51.5}) {
    Waypoint w;
    w.Latitude = lat;
    plan.Waypoints.push_back(w);
  }
  plan.NextWaypoint = 2;
  FSData now;
  now.Latitude = 50.75;  // 15 nm before point 2, then a 30 nm leg
  std::vector<double> legs;
  EXPECT_NEAR(FlightplanRemainder(plan, now, &legs), 45, 0.01);
  ASSERT_EQ(legs.size(), 4u);
  EXPECT_NEAR(legs[3], 30, 0.01);
  now.GS = 90;
  EXPECT_NEAR(ETR(plan, now), 45.0 / 90.001 * 60 + 1, 1e-6);
  now.GS = 0;  // no division by zero: a very long time
  EXPECT_GT(ETR(plan, now), 1e6);
  plan.NextWaypoint = 4;
  EXPECT_EQ(FlightplanRemainder(plan, now), 0);
}

TEST_F(Phrases, NextFlapLimitFollowsTheFlapPosition) {
  AircraftValues a;
  // Positions of 10, 20 and 30 degrees (x 256 + 10), repeated to the ninth.
  const int32_t angles[] = {0, 2570, 5130, 7690, 7690, 7690, 7690, 7690, 7690, 7690};
  const int32_t speeds[] = {0, 110, 85, 80, 80, 80, 80, 80, 80, 80};
  for (int i = 0; i <= 9; ++i) {
    a.FlapAngleLimit[i] = angles[i];
    a.FlapSpeedLimit[i] = speeds[i];
  }
  const struct {
    int32_t flaps, knots;
  } cases[] = {{255, 110}, {256, 85}, {5375, 85}, {5376, 80}, {7935, 80}, {7936, 0}};
  for (const auto& c : cases) EXPECT_EQ(MoreFlapsAt(c.flaps, a), c.knots) << c.flaps;
}

}  // namespace
}  // namespace vantoro
