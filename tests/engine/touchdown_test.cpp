#include <gtest/gtest.h>

#include <functional>

#include "engine/flight_rig.h"

namespace vantoro {
namespace {

using Strings = std::vector<std::string>;

// A flight on its way down, long enough in the air for the touchdown sound.
void OnFinal(FlightRig& rig) {
  rig.ReadyOnTheRunway();
  rig.Airborne(500);
  rig.Key(7);
  rig.Tick(25);
  rig.Key(7);
  rig.Tick();
  ASSERT_TRUE(rig.flight().Modes.Landing);
}

void TouchDown(FlightRig& rig) {
  rig.OnGround(true);
  rig.AGL(0);
  rig.GS(60);
  rig.VS(-200);
}

TEST(Touchdown, TheLandingIsJudgedOnTheSecondTickOnTheGround) {
  struct Row {
    const char* what;
    std::function<void(FlightRig&)> state;
    bool crash;
    std::string sound;
  };
  const std::vector<Row> rows = {
      {"wings level", [](FlightRig&) {}, false, "Touchdown.WAV"},
      {"sinking at 700 feet a minute", [](FlightRig& r) { r.VS(-700); }, false,
       "EffectHardLanding.WAV"},
      {"right bank 31", [](FlightRig& r) { r.Bank(31); }, true,
       "LooksLikeYouveCrashedThePlane.WAV"},
      {"left bank 31 passes as a strange touchdown", [](FlightRig& r) { r.Bank(-31); }, false,
       "WhatDidYouJustHit.WAV"},
      {"right bank 3 at a standstill",
       [](FlightRig& r) {
         r.Bank(3);
         r.GS(0);
       },
       true, "LooksLikeYouveCrashedThePlane.WAV"},
      {"right bank 3 at a standstill in a float plane",
       [](FlightRig& r) {
         r.instructor.aircraft.FloatPlane = true;
         r.Bank(3);
         r.GS(0);
       },
       false, "Touchdown.WAV"},
      {"gear up on land", [](FlightRig& r) { r.Gear(false); }, true,
       "LooksLikeYouveCrashedThePlane.WAV"},
      {"gear up on water in a float plane",
       [](FlightRig& r) {
         r.instructor.aircraft.FloatPlane = true;
         r.Gear(false);
         r.Water(true);
       },
       false, "Touchdown.WAV"},
      {"on water in a land plane", [](FlightRig& r) { r.Water(true); }, true,
       "LooksLikeYouveCrashedThePlaneInWater.wav"},
      {"nose 9 degrees down", [](FlightRig& r) { r.Pitch(-9); }, true,
       "LooksLikeYouveCrashedThePlane.WAV"},
      {"electrics failing as the wheels touch",
       [](FlightRig& r) {
         r.Tick();  // the first tick on the ground, electrics still fine
         r.ElectricsFailed(true);
       },
       true, "LooksLikeYouveCrashedThePlane.WAV"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.what);
    FlightRig rig;
    OnFinal(rig);
    rig.Mark();
    TouchDown(rig);
    row.state(rig);
    rig.Tick(2);
    EXPECT_EQ(rig.Queued().empty() ? "" : rig.Queued().front(), row.sound);
    EXPECT_EQ(rig.Since("queued").empty() ? "" : rig.Since("queued")[0].Text("by"), "PlayAndPurge");
    EXPECT_EQ(rig.flight().CrashOnLanding, row.crash);
    EXPECT_EQ(rig.stats().FlightCrashed, row.crash);
    EXPECT_EQ(rig.Disconnects(), row.crash ? Strings{"Crash"} : Strings{});
    EXPECT_TRUE(rig.flight().HasTouchedDown);
  }
}

TEST(Touchdown, AStrangeTouchdownIsCountedAndShownRed) {
  FlightRig rig;
  OnFinal(rig);
  rig.Mark();
  TouchDown(rig);
  rig.Pitch(26);
  rig.Tick(2);
  EXPECT_EQ(rig.Remarks(), Strings{"WhatDidYouJustHit.WAV"});
  EXPECT_EQ(rig.Since("remark")[0].Int("level"), 2);
  ASSERT_EQ(rig.Since("count").size(), 1u);
  EXPECT_EQ(rig.Since("count")[0].Text("name"), "StrangeTouchdowns");
  EXPECT_EQ(rig.stats().StrangeTouchdowns, 1);
}

TEST(Touchdown, ABounceArmsTheTestAgain) {
  FlightRig rig;
  OnFinal(rig);
  rig.Mark();
  TouchDown(rig);
  rig.Tick(2);
  rig.OnGround(false);  // back in the air for a tick
  rig.AGL(5);
  rig.Tick();
  EXPECT_EQ(rig.flight().TouchdownArmed, 1);
  EXPECT_FALSE(rig.flight().HasTouchedDown);
  TouchDown(rig);
  rig.GS(54);
  rig.Tick(2);
  EXPECT_EQ(rig.Queued(), (Strings{"Touchdown.WAV", "Touchdown.WAV"}));
  EXPECT_EQ(rig.flight().LandingData[0].GS, 54);
  EXPECT_TRUE(rig.flight().HasTouchedDown);
  EXPECT_EQ(rig.flight().GroundLatch, 1);
}

TEST(Touchdown, TheRollOutBringsTheLandingToItsEvaluation) {
  FlightRig rig;
  OnFinal(rig);
  TouchDown(rig);
  rig.Tick(2);
  rig.Key(1);  // the pilot is already taxiing when the aircraft slows down
  rig.Tick();
  rig.Mark();
  rig.GS(19);
  rig.Tick();
  // Slow enough: Landing once more, shown for two seconds, and the flight
  // time stored for the evaluation.
  EXPECT_EQ(rig.Modes(), (Strings{"Landing"}));
  EXPECT_EQ(rig.MessageSeconds("Landing..."), 2);
  EXPECT_GT(rig.stats().FlightDuration, 10);
  EXPECT_TRUE(rig.stats().LandingHasReachedEvaluationStage);
  rig.Mark();
  rig.GS(14);
  rig.Tick(3);
  EXPECT_EQ(rig.Modes(), (Strings{"Taxiing"}));
}

}  // namespace
}  // namespace vantoro
