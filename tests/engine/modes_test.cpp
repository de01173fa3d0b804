#include <gtest/gtest.h>

#include <functional>

#include "engine/flight_rig.h"

namespace vantoro {
namespace {

using Strings = std::vector<std::string>;

// One leg of a flight: what the pilot and the aircraft do, for how many
// ticks, and what the instructor must do meanwhile (modes and sounds exactly,
// messages at least).
struct Leg {
  const char* what;
  std::function<void(FlightRig&)> act;
  int ticks;
  Strings modes;
  Strings messages;
  Strings sounds;
};

void Fly(FlightRig& rig, const std::vector<Leg>& legs) {
  for (const Leg& leg : legs) {
    SCOPED_TRACE(leg.what);
    rig.Mark();
    leg.act(rig);
    rig.Tick(leg.ticks);
    EXPECT_EQ(rig.Modes(), leg.modes);
    for (const std::string& m : leg.messages) EXPECT_TRUE(rig.Showed(m)) << m;
    EXPECT_EQ(rig.Queued(), leg.sounds);
  }
}

TEST(FlightModes, ACircuitByHotKeys) {
  FlightRig rig;
  Fly(rig, {
               {"connect on the runway",
                [](FlightRig& r) { r.Connect(); },
                130,
                {"Taxiing"},
                {"Taxiing..."},
                {"VantoroInitialization.wav", "TeachVNTRConnecting.wav"}},
               {"key 7 on the runway",
                [](FlightRig& r) { r.Key(7); },
                1,
                {"TakeOff"},
                {"Take Off..."},
                {}},
               {"lift-off in TakeOff says nothing more",
                [](FlightRig& r) {
                  r.OnGround(false);
                  r.GS(70);
                  r.AGL(300);
                },
                1,
                {},
                {},
                {}},
               {"key 1 in the climb",
                [](FlightRig& r) {
                  r.Key(1);
                  r.AGL(3000);
                },
                30,
                {"Cruise"},
                {"Cruise..."},
                {"Cruise.wav", "FlightGoodSoFar.wav"}},
               {"key 7 in the cruise",
                [](FlightRig& r) { r.Key(7); },
                1,
                {"Landing"},
                {"Landing..."},
                {}},
               {"touchdown",
                [](FlightRig& r) {
                  r.OnGround(true);
                  r.AGL(0);
                  r.GS(60);
                },
                2,
                {},
                {},
                {"Touchdown.WAV"}},
               {"key 1 on the roll-out",
                [](FlightRig& r) { r.Key(1); },
                1,
                {"Taxiing"},
                {"Taxiing..."},
                {}},
           });
  EXPECT_TRUE(rig.stats().TookOff);
  EXPECT_EQ(rig.instructor.sound.Status.Mode, "Taxiing  ");
}

TEST(FlightModes, ACircuitFlownWithoutKeys) {
  FlightRig rig;
  Fly(rig,
      {
          {"connect on the runway",
           [](FlightRig& r) { r.Connect(); },
           130,
           {"Taxiing"},
           {"Taxiing..."},
           {"VantoroInitialization.wav", "TeachVNTRConnecting.wav"}},
          {"take-off roll reaches 35 knots",
           [](FlightRig& r) { r.GS(35); },
           1,
           {"TakeOff"},
           {"Take Off..."},
           {}},
          {"climb, then a minute level at 1000 feet",
           [](FlightRig& r) {
             r.OnGround(false);
             r.GS(70);
             r.AGL(1000);
           },
           130,
           {"Cruise"},
           {"Cruise..."},
           {"Cruise.wav", "FlightGoodSoFar.wav"}},
          {"twenty seconds of steady descent",
           [](FlightRig& r) { r.VS(-500); },
           42,
           {"Landing"},
           {"Landing..."},
           {}},
          {"touchdown",
           [](FlightRig& r) {
             r.VS(-200);
             r.OnGround(true);
             r.AGL(0);
             r.GS(60);
           },
           2,
           {},
           {},
           {"Touchdown.WAV"}},
          {"roll-out at 19 knots stays in Landing", [](FlightRig& r) { r.GS(19); }, 1, {}, {}, {}},
          {"below 15 knots the taxi begins",
           [](FlightRig& r) { r.GS(14); },
           1,
           {"Taxiing"},
           {},
           {}},
      });
  EXPECT_TRUE(rig.stats().LandingHasReachedEvaluationStage);
}

TEST(FlightModes, AutomaticChangesShowTheirMessagesLonger) {
  FlightRig rig;
  rig.ReadyOnTheRunway();
  rig.Mark();
  rig.GS(35);
  rig.Tick();
  EXPECT_EQ(rig.MessageSeconds("Take Off..."), 6);
  rig.OnGround(false);
  rig.AGL(1000);
  rig.Tick(130);
  EXPECT_EQ(rig.MessageSeconds("Cruise..."), 7);
  rig.VS(-500);
  rig.Tick(42);
  EXPECT_EQ(rig.MessageSeconds("Landing..."), 7);
}

// Reaches a mode the way a pilot does.
void Taxiing(FlightRig& r) {
  r.ReadyOnTheRunway();
}
void TakeOffOnTheGround(FlightRig& r) {
  r.ReadyOnTheRunway();
  r.Key(7);
  r.Tick();
}
void ClimbingOut(FlightRig& r) {
  r.ReadyOnTheRunway();
  r.Airborne(1500);
}
void Cruising(FlightRig& r) {
  r.ReadyOnTheRunway();
  r.Airborne(3000);
  r.Key(7);
  r.Tick();
}
void LandingInTheAir(FlightRig& r) {
  Cruising(r);
  r.Key(7);
  r.Tick();
}

TEST(FlightModes, HotKeysMoveTheModeOrSayWhyNot) {
  struct Row {
    const char* what;
    std::function<void(FlightRig&)> reach;
    int key;
    Strings modes;
    std::string message;
    std::string remark;
  };
  const std::vector<Row> rows = {
      {"advance without an engine running",
       [](FlightRig& r) {
         r.Engine(false);
         Taxiing(r);
       },
       1,
       {},
       "",
       "TakeOffWithNoEngineRunning.wav"},
      {"back up from Taxiing", Taxiing, 2, {}, "Cannot back-up flight mode.", ""},
      {"advance from TakeOff on the ground",
       TakeOffOnTheGround,
       7,
       {},
       "Cannot advance flight mode.",
       ""},
      {"back up from TakeOff on the ground", TakeOffOnTheGround, 8, {"Taxiing"}, "Taxiing...", ""},
      {"back up from Cruise", Cruising, 8, {"TakeOff"}, "Take Off...", ""},
      {"back up from Landing in the air", LandingInTheAir, 2, {"Cruise"}, "Cruise...", ""},
      {"advance from Landing in the air",
       LandingInTheAir,
       1,
       {},
       "Cannot advance flight mode.",
       ""},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.what);
    FlightRig rig;
    row.reach(rig);
    rig.Mark();
    rig.Key(row.key);
    rig.Tick();
    EXPECT_EQ(rig.Modes(), row.modes);
    if (row.message.empty()) {
      EXPECT_TRUE(rig.Messages().empty());
    } else {
      EXPECT_EQ(rig.Messages(), Strings{row.message});
    }
    if (row.remark.empty()) {
      EXPECT_TRUE(rig.Remarks().empty());
    } else {
      EXPECT_EQ(rig.Remarks(), Strings{row.remark});
      EXPECT_EQ(rig.Since("remark")[0].Int("level"), 1);
      EXPECT_TRUE(rig.Said(row.remark));
    }
  }
}

TEST(FlightModes, AKeyActsOnceAndShowsInTheWindow) {
  FlightRig rig;
  rig.ReadyOnTheRunway();
  rig.Mark();
  rig.Key(7);
  rig.Tick();
  EXPECT_EQ(rig.flight().Stats.PressedKeys, "F7");
  rig.Tick(3);
  EXPECT_EQ(rig.Modes(), Strings{"TakeOff"});
  EXPECT_EQ(rig.flight().Stats.PressedKeys, "");
  EXPECT_EQ(rig.flight().Stats.CurrentAircraft, "Cessna Skyhawk");
  EXPECT_EQ(rig.flight().Stats.Clock, "12:01");
}

TEST(FlightModes, TheStartingModeFollowsTheAircraft) {
  struct Row {
    const char* what;
    bool onGround;
    double agl;
    std::string mode;
    std::string message;
    int seconds;
  };
  // Heights come in whole metres: 304 m is 997.4 feet, 305 m is 1000.7 feet.
  const std::vector<Row> rows = {
      {"on the ground", true, 0, "Taxiing", "Taxiing...", 3},
      {"just above 1000 feet", false, 1000.7, "Cruise", "Cruise...", 3},
      {"at or below 1000 feet", false, 997.4, "Landing", "Landing...", 7},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.what);
    FlightRig rig;
    rig.OnGround(row.onGround);
    rig.AGL(row.agl);
    rig.GS(row.onGround ? 0 : 90);
    rig.Connect();
    rig.Mark();
    rig.Tick();
    EXPECT_EQ(rig.Modes(), Strings{row.mode});
    EXPECT_EQ(rig.MessageSeconds(row.message), row.seconds);
    EXPECT_TRUE(rig.flight().FlightStarted);
  }
}

TEST(FlightModes, GoodSoFarAtTwoThousandFeetOnlyWithoutFaults) {
  struct Row {
    const char* what;
    std::function<void(FlightRig&)> reach;
    double before;
    double now;
    bool fault;
    Strings sounds;
  };
  const std::vector<Row> rows = {
      {"climbing through in TakeOff", ClimbingOut, 1950, 2050, false, {"FlightGoodSoFar2.wav"}},
      {"climbing through with a fault", ClimbingOut, 1950, 2050, true, {}},
      {"climbing from too far below", ClimbingOut, 1850, 2050, false, {}},
      {"descending through in Landing",
       LandingInTheAir,
       2050,
       1950,
       false,
       {"FlightGoodSoFar3.wav"}},
      {"descending through in Cruise", Cruising, 2050, 1950, false, {}},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.what);
    FlightRig rig;
    row.reach(rig);
    if (row.fault) rig.stats().ExceedBankLeft = 1;
    rig.AGL(row.before);
    rig.Tick();
    rig.Mark();
    rig.AGL(row.now);
    rig.Tick();
    EXPECT_EQ(rig.Queued(), row.sounds);
  }
}

TEST(FlightModes, ASinkBackAfterLiftOffBecomesALandingSilently) {
  FlightRig rig;
  rig.ReadyOnTheRunway();
  rig.Airborne(18);
  rig.Altitude(30);
  rig.Tick();
  rig.Mark();
  rig.Altitude(20);
  rig.AGL(10);
  rig.Tick();
  EXPECT_EQ(rig.Modes(), Strings{"Landing"});
  EXPECT_TRUE(rig.Messages().empty());
  EXPECT_TRUE(rig.Queued().empty());
}

}  // namespace
}  // namespace vantoro
