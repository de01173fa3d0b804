#include "flightgen/flightgen.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>

#include "base/files.h"
#include "link/snapshot.h"
#include "support/scenario.h"
#include "world/geo.h"

namespace vantoro {
namespace {

using testing::DecodeImage;
using testing::ForEachTick;
using testing::GenerateScript;

TEST(FlightScript, ErrorsNameTheFileAndLine) {
  struct Case {
    const char* script;
    const char* error;
  };
  const Case cases[] = {
      {"# start\nfly to 1000\n", "s.flight:2: unknown step 'fly'"},
      {"engine warm\n", "s.flight:1: unknown step 'engine warm'"},
      {"engine start\ntaxi speed 10\n", "s.flight:2: taxi needs 'for SECONDS'"},
      {"climb vs 500\n", "s.flight:1: climb needs 'to'"},
      {"engine start\nclimb to 1000\n",
       "s.flight:2: climb needs the aircraft in the air (rotate first)"},
      {"slew up 500\ntaxi for 10\n", "s.flight:2: taxi needs the aircraft on the ground"},
      {"wind 370 10\n", "s.flight:1: wind direction 370 is out of range (0..360)"},
      {"position 51.8\n", "s.flight:1: position needs more numbers"},
      {"position north -1.3\n", "s.flight:1: latitude needs a number, not 'north'"},
      {"taxi for ten\n", "s.flight:1: for needs a number, not 'ten'"},
      {"taxi speed 700 for 5\n", "s.flight:1: speed 700 is out of range (0..600)"},
      {"turn to 90 bank 70\n", "s.flight:1: bank 70 is out of range (1..60)"},
      {"turn to 90 gear\n", "s.flight:1: 'gear' needs a value"},
      {"set brake maybe\n", "s.flight:1: brake is on or off, not 'maybe'"},
      {"set lights nav+disco\n",
       "s.flight:1: unknown light 'disco' (nav, beacon, landing, taxi, strobe, or off)"},
      {"position 1 2 for 3\n", "s.flight:1: position does not take 'for'"},
      {"rotate bank 10\n", "s.flight:1: rotate does not take 'bank'"},
      {"wait for 1 sideways\n", "s.flight:1: 'sideways' needs a value"},
      {"raw u16 0366\n", "s.flight:1: raw: a value is missing after the offset"},
      {"raw u8 5000 1\n",
       "s.flight:1: raw: a write of 1 byte at 5000 lies outside the offset blocks (0020-401F, "
       "6000-61FF, B800-C7FF, E020-1001F)"},
      {"traffic sky 1 at 3 800\n", "s.flight:1: traffic needs: air|ground SLOT at CLOCK FEET"},
      {"traffic air 96 at 3 800\n", "s.flight:1: traffic slot 96 is out of range (1..95)"},
      {"traffic air 1 at 13 800\n", "s.flight:1: clock position 13 is out of range (1..12)"},
      {"traffic air 1 at 3 800 fast 3\n", "s.flight:1: traffic does not take 'fast'"},
      {"traffic air 1 at 3 800 high\n", "s.flight:1: traffic 'high' needs a number"},
      {"clock tomorrow\n", "s.flight:1: malformed date and time 'tomorrow' (2026-06-14T09:30:00)"},
      {"aircraft title\n", "s.flight:1: aircraft title needs its text"},
      {"key 3.5\n", "s.flight:1: key needs a whole number"},
      {"simrate 0.3\n", "s.flight:1: simulation rate 0.3 is not a multiple of 1/256"},
      {"fuel 30 30 capacity 20\n", "s.flight:1: more fuel than the tanks hold"},
      // A stationary aircraft never comes round: the script is at fault.
      {"\n\nturn to 90\n", "s.flight:3: turn has not ended after four hours; check its target"},
  };
  for (const Case& c : cases) {
    std::string recording, error;
    EXPECT_FALSE(GenerateFlight("s.flight", c.script, recording, error)) << c.script;
    EXPECT_EQ(error, c.error) << c.script;
    EXPECT_TRUE(recording.empty());
  }
}

// Every tick of a generated flight, decoded as the instructor decodes it.
std::vector<FSData> Decoded(std::string_view script) {
  std::vector<FSData> out;
  LinkState link;
  ForEachTick(GenerateScript(script), [&](const OffsetImage& image, int64_t tick) {
    out.push_back(DecodeImage(image, link, static_cast<int32_t>(tick)));
  });
  return out;
}

int SimSecond(const FSData& d) {
  return ((d.DayOfYear * 24 + d.ZuluHour) * 60 + d.ZuluMinute) * 60 + d.Second;
}

TEST(FlightGenerator, AClimbDecodesToTheIntendedValues) {
  const auto ticks = Decoded(
      "clock 2026-06-14T09:30:00\n"
      "field elevation 500\n"
      "position 51.5 -1.0\n"
      "magvar -2\n"
      "heading 90\n"
      "wind 090 10\n"
      "engine start\n"
      "takeoff speed 55\n"
      "rotate\n"
      "climb to 2000 vs 700 speed 74\n"
      "level for 20\n");
  // The steady part of the climb: full climb rate at the climb speed.
  int steady = 0;
  for (size_t i = 20; i < ticks.size(); ++i) {
    const FSData& d = ticks[i];
    const FSData& tenBefore = ticks[i - 20];
    if (d.VS != 699 || tenBefore.VS != 699 || d.IAS != 74) continue;
    ++steady;
    EXPECT_EQ(d.OnGround, 0);
    EXPECT_EQ(d.TrueHeading, 88);
    EXPECT_EQ(d.Heading, 90);
    EXPECT_GT(d.Pitch, 3);
    EXPECT_EQ(d.Bank, 0);
    EXPECT_NEAR(d.Altitude - d.GroundAltitude, d.AGL, 7);
    // Ten seconds at 700 feet a minute.
    EXPECT_NEAR(d.Altitude - tenBefore.Altitude, 116.7, 7);
    EXPECT_EQ(SimSecond(d) - SimSecond(tenBefore), 10);
    // Into ten knots of wind, a little faster through the thinner air.
    EXPECT_NEAR(d.GS, 74 * (1 + 0.02 * d.Altitude / 1000.0) - 10, 2.5);
  }
  EXPECT_GT(steady, 100);

  const FSData& last = ticks.back();
  EXPECT_EQ(last.VS, 0);
  // Heights reach the instructor in whole metres.
  EXPECT_NEAR(last.Altitude, 2500, 3.3);
  EXPECT_NEAR(last.AGL, 2000, 3.3);
  EXPECT_EQ(last.GroundAltitude, 499);
  EXPECT_EQ(last.DayOfYear, 165);
  EXPECT_EQ(last.ZuluHour, 9);
  EXPECT_TRUE(last.Eng1Combustion);
  EXPECT_EQ(last.SimRate, 256);
  EXPECT_EQ(last.AircraftTitle, "Cessna Skyhawk 172SP");
}

TEST(FlightGenerator, PositionFollowsHeadingAndGroundSpeed) {
  const auto ticks = Decoded(
      "position 10 20\n"
      "heading 45\n"
      "engine start\n"
      "taxi speed 10 for 60\n"
      "stop\n"
      "slew north 30 east 0\n");
  const FSData& start = ticks.front();
  const FSData& stopped = ticks[ticks.size() - 2];
  // Sixty seconds at ten knots, less the first seconds of getting going.
  EXPECT_NEAR(CalcDistance(start.Latitude, start.Longitude, stopped.Latitude, stopped.Longitude),
              10.0 * 57.5 / 3600 + 0.004, 0.004);
  EXPECT_NEAR(CalcAngle(start.Latitude, start.Longitude, stopped.Latitude, stopped.Longitude), 45,
              0.5);
  // Thirty miles north is half a degree of latitude, at once.
  EXPECT_NEAR(ticks.back().Latitude - stopped.Latitude, 0.5, 1e-6);
  EXPECT_NEAR(ticks.back().Longitude, stopped.Longitude, 1e-9);
}

TEST(FlightGenerator, SimulatorClockPauseAndRate) {
  struct Case {
    const char* script;
    std::function<void(const std::vector<FSData>&)> check;
  };
  const Case cases[] = {
      {"clock 2026-12-31T23:59:50\nwait for 20\n",
       [](const std::vector<FSData>& t) {
         EXPECT_EQ(t.back().DayOfYear, 1);
         EXPECT_EQ(t.back().ZuluHour, 0);
         EXPECT_EQ(t.back().ZuluMinute, 0);
         EXPECT_EQ(t.back().Second, 10);
       }},
      {"clock 2028-02-28T23:59:59\nwait for 1\n",
       [](const std::vector<FSData>& t) { EXPECT_EQ(t.back().DayOfYear, 60); }},
      {"clock 2026-06-14T09:30:00\nengine start\ntaxi for 10\npause for 10\ntaxi for 1\n",
       [](const std::vector<FSData>& t) {
         const FSData& before = t[8 + 20 - 1];
         const FSData& paused = t[8 + 20 + 19];
         EXPECT_TRUE(paused.Paused);
         EXPECT_EQ(SimSecond(paused), SimSecond(before));
         EXPECT_EQ(paused.Latitude, before.Latitude);
         EXPECT_EQ(paused.Longitude, before.Longitude);
         EXPECT_FALSE(t.back().Paused);
       }},
      {"clock 2026-06-14T09:30:00\nsimrate 2 for 10\nsimrate 1\nwait for 10\n",
       [](const std::vector<FSData>& t) {
         EXPECT_EQ(t[19].SimRate, 512);
         EXPECT_EQ(SimSecond(t[19]), 9 * 3600 + 30 * 60 + 165 * 86400 + 20);
         EXPECT_EQ(t.back().SimRate, 256);
         EXPECT_EQ(SimSecond(t.back()), SimSecond(t[19]) + 10);
       }},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.script);
    c.check(Decoded(c.script));
  }
}

TEST(FlightGenerator, TouchdownBounceAndCrash) {
  const auto ticks = Decoded(
      "position 51.8 -1.3\n"
      "engine start\n"
      "takeoff speed 55\n"
      "rotate\n"
      "climb to 300 vs 600 speed 70\n"
      "approach to 20 vs 400\n"
      "flare\n"
      "touchdown\n"
      "bounce to 6\n"
      "rollout speed 10\n"
      "crash\n");
  // The first tick on the ground still shows the sink the wheels met.
  std::vector<size_t> contacts;
  for (size_t i = 1; i < ticks.size(); ++i)
    if (ticks[i].OnGround == 1 && ticks[i - 1].OnGround == 0) contacts.push_back(i);
  ASSERT_EQ(contacts.size(), 2u);  // the landing and the bounce
  for (size_t i : contacts) {
    EXPECT_LT(ticks[i].VS, -50);
    EXPECT_EQ(ticks[i].AGL, 0);
  }
  EXPECT_EQ(ticks[contacts[0] + 1].OnGround, 0);  // straight back up
  EXPECT_EQ(ticks[contacts[1] + 1].VS, 0);
  EXPECT_LE(ticks[ticks.size() - 2].GS, 10);
  EXPECT_FALSE(ticks[ticks.size() - 2].Crashed);
  EXPECT_TRUE(ticks.back().Crashed);
}

TEST(FlightGenerator, TheDemoRecordingIsWhatItsScriptMakes) {
  const std::string folder = testing::DataRoot() + "/Recordings/";
  const std::string script = ReadFile(folder + "demo-c172-circuit.flight");
  ASSERT_FALSE(script.empty());
  std::string recording, error;
  ASSERT_TRUE(GenerateFlight(folder + "demo-c172-circuit.flight", script, recording, error))
      << error;
  EXPECT_TRUE(recording == ReadFile(folder + "demo-c172-circuit.vrec"))
      << "regenerate data/Recordings/demo-c172-circuit.vrec from its script";
}

}  // namespace
}  // namespace vantoro
