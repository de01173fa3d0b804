#include "engine/flight_rig.h"

namespace vantoro {
namespace {

// A leg and what the instructor does in it, exactly: mode changes, sounds
// queued, messages shown (each joined by "|"), and the last message's time.
struct Step {
  const char* what;
  Leg leg;
  std::string modes, sounds, messages;
  int seconds = 0;
};

void FlyAndCheck(FlightRig& rig, const std::vector<Step>& steps) {
  for (const Step& s : steps) {
    SCOPED_TRACE(s.what);
    rig.Mark();
    rig.Fly(s.leg);
    EXPECT_EQ(rig.Modes(), s.modes);
    EXPECT_EQ(rig.Queued(), s.sounds);
    EXPECT_EQ(rig.Messages(), s.messages);
    if (s.seconds > 0) {
      EXPECT_EQ(rig.Since("message").back().Int("seconds"), s.seconds);
    }
  }
}

// The approach opens with the runway heading by NAV1's OBS (no runway known).
const std::string kApproachOpens =
    "Landing.wav|BasedOnNav1OBSRunwayHeadingIs.wav|3.wav|6.wav|0.wav";

// clang-format off
TEST(FlightModes, ACircuitByHotKeys) {
  FlightRig rig;
  rig.instructor.options.EndFlightWhen = kEndFlightWhenBrakeSet;
  rig.Ready();
  FlyAndCheck(rig, {
      {"key 7 on the runway", {.key = 7}, "TakeOff",
       "TakeOff.wav|TeachLightTakeOffPower.wav|VisibilityIs.wav|VeryBad.wav|Wind.wav|Calm.wav",
       "Take Off...", 3},
      {"lift-off in TakeOff", {.onGround = 0, .agl = 300, .gs = 70}, "", "", ""},
      {"key 1 in the climb", {.key = 1, .agl = 3000, .ticks = 30}, "Cruise",
       "Cruise.wav|FlightGoodSoFar.wav", "Cruise...", 3},
      {"key 7 in the cruise", {.key = 7}, "Landing", kApproachOpens + "|GlideslopeNotAlive.wav",
       "Landing...", 3},
      {"touchdown", {.onGround = 1, .agl = 0, .gs = 60, .ticks = 2}, "", "Touchdown.WAV", ""},
      {"key 1 on the roll-out", {.key = 1}, "Taxiing", "Taxiing.wav", "Taxiing...", 3},
  });
  EXPECT_TRUE(rig.stats().TookOff);
  EXPECT_EQ(rig.instructor.sound.Status.Mode, "Taxiing  ");
}

TEST(FlightModes, ACircuitWithoutKeys) {
  FlightRig rig;
  rig.instructor.options.EndFlightWhen = kEndFlightWhenBrakeSet;
  rig.Ready();
  FlyAndCheck(rig, {
      {"take-off roll at 35 knots", {.gs = 35}, "TakeOff", "AmberTaxiSlower.wav", "Take Off...",
       6},
      {"lift-off", {.onGround = 0, .agl = 20, .gs = 70}, "", "", ""},
      {"a minute level at 1000 feet", {.agl = 1000, .ticks = 130}, "Cruise",
       "Cruise.wav|FlightGoodSoFar.wav", "Cruise...", 7},
      {"twenty seconds of descent", {.vs = -500, .ticks = 42}, "Landing",
       kApproachOpens + "|GlideslopeNotAlive.wav", "Landing...", 7},
      {"touchdown", {.onGround = 1, .agl = 0, .gs = 60, .vs = -200, .ticks = 2}, "",
       "Touchdown.WAV", ""},
      // Nothing gathered on the approach, no profile: the rescued 21 points.
      {"roll-out at 19 knots", {.gs = 19}, "",
       "IRateYourLandingAt.WAV|20.WAV|1.wav|Points.WAV|ApproachWas.wav|0.WAV|Percent.WAV|"
       "ForTheGlideSlopeAnd.wav|0.WAV|Percent.WAV|ForTheLocalizer.wav", ""},
      {"below 15 knots", {.gs = 14}, "Taxiing", "Taxiing.wav", ""},
  });
  EXPECT_TRUE(rig.stats().LandingHasReachedEvaluationStage);
}

TEST(FlightModes, TheRollOutEvaluatesAFlightOfMoreThanThirtySeconds) {
  const struct {
    const char* what;
    int airborneTicks;
    int bankAtRollOut;
    int32_t duration;
    bool spoken;
    std::string disconnect;
  } rows[] = {
      {"30 seconds is a hop", 57, 0, 30, false, ""},
      {"31 seconds is a flight", 59, 0, 31, true, ""},
      {"rolled over on the roll-out", 59, 35, 31, false, "Crash"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.what);
    FlightRig rig;
    rig.Ready();
    rig.Follow({{.gs = 35},
                {.onGround = 0, .agl = 20, .gs = 70, .ticks = row.airborneTicks},
                {.onGround = 1, .agl = 0, .gs = 60, .vs = -200, .ticks = 2}});
    rig.instructor.approach.ILSGlideslopeSum = 40;
    rig.instructor.approach.ILSGlideslopeSamples = 4;
    rig.Bank(row.bankAtRollOut);
    rig.Mark();
    rig.Fly({.gs = 19});
    // A crash closes its flight at once: the evaluated flight is the first.
    EXPECT_EQ(rig.instructor.flight.Flights[1].FlightDuration, row.duration);
    EXPECT_EQ(rig.Queued().find("IRateYourLandingAt.WAV") != std::string::npos, row.spoken);
    EXPECT_EQ(rig.Since("landing").size(), row.spoken ? 1u : 0u);
    EXPECT_EQ(rig.Disconnects(), row.disconnect);
    EXPECT_EQ(rig.flight().CrashOnLanding, !row.disconnect.empty());
    if (!row.disconnect.empty()) {
      // The findings of the crash follow the reason of the disconnection.
      EXPECT_TRUE(rig.instructor.scores.LogBookText.starts_with(
          "AUTO-Disconnection due to:\r\nCrash\r\n piloting Cessna Skyhawk ended"));
      EXPECT_NE(rig.instructor.scores.LogBookText.find("AIRCRAFT CRASHED"), std::string::npos);
    }
    // Evaluated or not, the approach gathers afresh for the next one.
    EXPECT_EQ(rig.instructor.approach.ILSGlideslopeSum, kNothingGathered);
    EXPECT_EQ(rig.instructor.approach.ILSGlideslopeSamples, 0);
  }
}

TEST(FlightModes, HotKeysMoveTheModeOrSayWhyNot) {
  struct Row { std::vector<Leg> reach; bool engine; int key; std::string mode, message, sounds = ""; };
  const std::vector<Row> rows = {
      {{}, false, 1, "", ""},  // no engine: a remark instead
      {{}, true, 2, "", "Cannot back-up flight mode."},
      {kTakeOffOnGround, true, 7, "", "Cannot advance flight mode."},
      {kTakeOffOnGround, true, 8, "Taxiing", "Taxiing...", "Taxiing.wav"},
      {CruiseAt(3000), true, 8, "TakeOff", "Take Off..."},
      {LandingAt(3000), true, 2, "Cruise", "Cruise..."},
      {LandingAt(3000), true, 1, "", "Cannot advance flight mode."},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.message);
    FlightRig rig;
    rig.Engine(row.engine);
    rig.Ready();
    rig.Follow(row.reach);
    rig.Mark();
    rig.Fly({.key = row.key});
    EXPECT_EQ(rig.Modes(), row.mode);
    EXPECT_EQ(rig.Messages(), row.message);
    const std::string remark = row.engine ? "" : "TakeOffWithNoEngineRunning.wav";
    EXPECT_EQ(rig.Texts("remark", "file"), remark);
    EXPECT_EQ(rig.Queued(), remark + row.sounds);
  }
}

TEST(FlightModes, TheFlightBeginsInTheModeOfTheAircraft) {
  const std::string kChanged = "Aircraft changed! Using |";
  // Heights come in whole metres: 304 m is 997.4 feet, 305 m is 1000.7 feet.
  const std::vector<Step> rows = {
      {"on the ground", {.onGround = 1}, "Taxiing", "", kChanged + "Taxiing...", 3},
      {"above 1000 feet", {.onGround = 0, .agl = 1000.7, .gs = 90}, "Cruise", "",
       kChanged + "Cruise...", 3},
      {"at 1000 feet or below", {.onGround = 0, .agl = 997.4, .gs = 90}, "Landing", kApproachOpens,
       kChanged + "Landing...", 7},
  };
  for (const Step& row : rows) {
    FlightRig rig;
    rig.instructor.Connect();
    FlyAndCheck(rig, {row});
  }
}

// clang-format on

}  // namespace
}  // namespace vantoro
