#include "engine/flight_rig.h"

namespace vantoro {
namespace {

// On final in Landing, long enough in the air for the touchdown sound.
void OnFinal(FlightRig& rig) {
  rig.Ready();
  rig.Follow(Climb(500));
  rig.Fly({.key = 7, .ticks = 25});
  rig.Fly({.key = 7});
}

struct Touchdown {
  int bank = 0, pitch = 0;
  double gs = 60, vs = -200;
  bool gearUp = false, water = false, floatPlane = false, electricsFail = false;
  std::string sound = "Touchdown.WAV";
  bool crash = false;
};

// clang-format off
TEST(Touchdown, TheLandingIsJudgedOnTheSecondTickOnTheGround) {
  const std::string kCrash = "LooksLikeYouveCrashedThePlane.WAV";
  const std::string kStrange = "WhatDidYouJustHit.WAV";
  const std::vector<Touchdown> rows = {
      {},
      {.vs = -700, .sound = "EffectHardLanding.WAV"},
      {.bank = 31, .sound = kCrash, .crash = true},
      {.bank = -31, .sound = kStrange},  // a left bank is never a crash
      {.pitch = 26, .sound = kStrange},
      {.bank = 3, .gs = 0, .sound = kCrash, .crash = true},
      {.bank = 3, .gs = 0, .floatPlane = true},
      {.pitch = -9, .sound = kCrash, .crash = true},
      {.gearUp = true, .sound = kCrash, .crash = true},
      {.gearUp = true, .water = true, .floatPlane = true},
      {.water = true, .sound = "LooksLikeYouveCrashedThePlaneInWater.wav", .crash = true},
      {.electricsFail = true, .sound = kCrash, .crash = true},
  };
  for (const Touchdown& row : rows) {
    SCOPED_TRACE(&row - rows.data());
    FlightRig rig;
    // A failure is noticed aloud ahead of the touchdown test; here only the
    // touchdown's own sound is looked at.
    rig.instructor.options.InstructorNoticesFailures = false;
    OnFinal(rig);
    rig.Mark();
    rig.Bank(row.bank);
    rig.Pitch(row.pitch);
    rig.Gear(!row.gearUp);
    rig.Water(row.water);
    rig.instructor.aircraft.Raw.FloatPlane = row.floatPlane;
    rig.Fly({.onGround = 1, .agl = 0, .gs = row.gs, .vs = row.vs});
    rig.ElectricsFailed(row.electricsFail);  // between the first and the second tick
    rig.Tick();
    // The disconnection cannot purge the crash sound; a crash closes the
    // flight, whose verdict follows it.
    const std::string queued = rig.Queued();
    EXPECT_TRUE(queued.starts_with(row.sound)) << queued;
    EXPECT_EQ(queued.ends_with("|StartingANewFlight.wav"), row.crash) << queued;
    EXPECT_TRUE(rig.Texts("queued", "by").starts_with("PlayAndPurge"));
    EXPECT_EQ(rig.flight().CrashOnLanding, row.crash);
    EXPECT_EQ(rig.Disconnects(), row.crash ? "Crash" : "");
    EXPECT_EQ(rig.Texts("remark", "file"), row.sound == kStrange ? kStrange : "");
    EXPECT_EQ(rig.stats().StrangeTouchdowns, row.sound == kStrange ? 1 : 0);
  }
}
// clang-format on

TEST(Touchdown, ABounceArmsTheTestAgain) {
  FlightRig rig;
  OnFinal(rig);
  rig.Mark();
  rig.Fly({.onGround = 1, .agl = 0, .gs = 60, .ticks = 2});
  rig.Fly({.onGround = 0, .agl = 5});
  rig.Fly({.onGround = 1, .agl = 0, .gs = 54, .ticks = 2});
  EXPECT_EQ(rig.Queued(), "Touchdown.WAV|Touchdown.WAV");
  EXPECT_EQ(rig.flight().LandingData[0].GS, 54);
}

}  // namespace
}  // namespace vantoro
