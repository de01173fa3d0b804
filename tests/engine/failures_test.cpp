#include "engine/failures.h"

#include <functional>

#include "engine/rule_bench.h"
#include "engine/voice_actions.h"

namespace vantoro {
namespace {

// The failure rules on the bench: connected on FSX, random failures wanted
// at reliability 10, the instructor noticing them, a twin in the cruise at
// 3000 feet.
struct Bench : RuleBench {
  Bench() {
    flight().SimulatorName = "FSX";
    flight().Modes = {.Cruise = true};
    options().WantRandomFailures = true;
    options().FailureSlider = 10;
    options().InstructorNoticesFailures = true;
    for (FSData* d : {&now(), &before()}) {
      d->AGL = 3000;
      d->IAS = 120;
      d->Engines = 2;
      d->Eng1Combustion = d->Eng2Combustion = true;
    }
  }
  void TakeOffRun(double agl, int ias) {
    flight().Modes = {.TakeOff = true};
    now().AGL = agl;
    now().IAS = ias;
  }
};

void Check(const std::vector<RuleCase<Bench>>& rows, const std::function<void(Cockpit&)>& rules) {
  CheckRules(rows, rules);
}

using B = Bench&;
constexpr double kV(int v) {
  return v / 500.0;
}  // the draw giving v at reliability 10

// clang-format off
TEST(Failures, TheInFlightDrawAtReliabilityTen) {
  Check({
      {"reliability 100 never draws", [](B b) { b.options().FailureSlider = 100; b.random.draws = {0}; }, "", 1},
      {"failures not wanted", [](B b) { b.options().WantRandomFailures = false; b.random.draws = {0}; }, "", 1},
      {"v 13 of 0..500 does nothing", [](B b) { b.random.draws = {kV(13)}; }, ""},
      {"v 500 does nothing", [](B b) { b.random.draws = {0.9999}; }, ""},
      {"v 0, an instrument: 15 is the vacuum", [](B b) { b.random.draws = {0, 0.5, 0.99}; },
       "0x0B73=01 'VACUUM FAILURE!'"},
      {"instrument 0.49 rounds to the ADF", [](B b) { b.random.draws = {0, 0.5, 0.49 / 15}; },
       "0x0B64=01 'ADF FAILURE!'"},
      {"instrument 0.51 rounds to the ASI", [](B b) { b.random.draws = {0, 0.5, 0.51 / 15}; },
       "0x0B65=01 'ASI FAILURE!'"},
      {"instrument 1.5 rounds to even: the altimeter", [](B b) { b.random.draws = {0, 0.5, 0.1}; },
       "0x0B66=01 'ALTIMETER FAILURE!'"},
      {"the engines, one time in ten: N+1 is held to N", [](B b) { b.random.draws = {0, 0.5, 7.0 / 15, 0.05, 0.99}; },
       "0x32F8=02 '2 ENGINE FAILURE!'"},
      {"the engines drawn, nine times in ten nothing", [](B b) { b.random.draws = {0, 0.5, 7.0 / 15, 0.5}; }, ""},
      {"v 0 above 650 feet, one time in five: an engine", [](B b) { b.random.draws = {0, 0.1, 0.6}; }, "0x32F8=02"},
      {"v 0 at 600 feet: an instrument instead", [](B b) { b.now().AGL = 600; b.random.draws = {0, 0.1, 0.99}; },
       "0x0B73=01 'VACUUM FAILURE!'"},
      {"v 1, a loose wire mends", [](B b) { b.options().WantLooseWireFailures = true; b.random.draws = {kV(1), 0.99}; },
       "0x0B73=00 'VACUUM is now functioning!'"},
      {"v 1 without loose wires", [](B b) { b.random.draws = {kV(1)}; }, ""},
      {"v 2 pitot heat flips on", [](B b) { b.random.draws = {kV(2), 0.05}; }, "0x029C=01 FAIL_PITOT_HEAT.wav"},
      {"v 2 nine times in ten nothing", [](B b) { b.random.draws = {kV(2), 0.1}; }, ""},
      {"v 3 battery goes off", [](B b) { b.now().MasterBattery = true; b.random.draws = {kV(3), 0.05}; },
       "0x281C=00 FAIL_MASTER_BATTERY.wav"},
      {"v 3 battery already off: no draw", [](B b) { b.random.draws = {kV(3), 0.05}; }, "", 1},
      {"v 4 avionics", [](B b) { b.now().MasterAvionics = 1; b.random.draws = {kV(4), 0.05}; },
       "0x2E80=00 FAIL_MASTER_AVIONICS.wav"},
      {"v 5 autopilot", [](B b) { b.now().AutopilotOn = true; b.random.draws = {kV(5), 0.05}; },
       "0x07BC=00 FAIL_MASTER_AP.wav"},
      {"v 5 not noticed when not wanted", [](B b) {
         b.options().InstructorNoticesFailures = false; b.now().AutopilotOn = true; b.random.draws = {kV(5), 0.05};
       }, "0x07BC=00"},
      {"v 5 quiet on the approach below 300 feet", [](B b) {
         b.flight().Modes = {.Landing = true}; b.now().AGL = 250; b.now().AutopilotOn = true; b.random.draws = {kV(5), 0.05};
       }, "0x07BC=00"},
      {"v 6 NAV/GPS switch flips off", [](B b) { b.now().GpsDrivesNav = true; b.random.draws = {kV(6), 0.05}; },
       "0x132C=00 NAV_GPS_SWITCH.wav"},
      {"v 7 auto throttle", [](B b) { b.now().AutoThrottleArm = 1; b.random.draws = {kV(7), 0.05}; },
       "0x0810=00 AutoThrottleArm.wav"},
      {"v 8 airspeed hold", [](B b) { b.now().APAirspeedHold = 1; b.random.draws = {kV(8), 0.05}; },
       "0x07DC=00 AutopilotAirspeedHold.wav"},
      {"v 9 heading hold", [](B b) { b.now().APHeadingHold = 1; b.random.draws = {kV(9), 0.05}; },
       "0x07C8=00 AutopilotHeadingHold.wav"},
      {"v 10 Mach hold", [](B b) { b.now().APMachHold = 1; b.random.draws = {kV(10), 0.05}; },
       "0x07E4=00 AutopilotMachHold.wav"},
      {"v 11 altitude hold", [](B b) { b.now().APAltitudeHold = 1; b.random.draws = {kV(11), 0.05}; },
       "0x07D0=00 AutopilotAltitudeHold.wav"},
      {"v 12 flight director", [](B b) { b.now().FlightDirector = 1; b.random.draws = {kV(12), 0.05}; },
       "0x2EE0=00 FlightDirectorActive.wav"},
  }, RandomFailures);
  // "Birds ahead of us": the pilot's word sets off the same bird strike at
  // once, at any reliability, and names the engine.
  Check({
      {"birds ahead: engine 2 of 2", [](B b) { b.options().FailureSlider = 100; b.random.draws = {0.7}; },
       "0x32F8=02 '2 ENGINE FAILURE!'"},
      {"an engine failed before stays failed", [](B b) { b.rig.instructor.failures.EngineFailBits = 2; b.random.draws = {0.2}; },
       "0x32F8=03 '1 ENGINE FAILURE!'"},
      {"no engine to strike", [](B b) { b.now().Engines = 0; }, "negative.wav"},
  }, [](Cockpit& c) { c.flight.VoiceAction = 128; VoiceHotKeyAction(c); });
}

TEST(Failures, TheTakeOffFire) {
  Check({
      {"one in 400 at reliability 10: engine 2 of 2", [](B b) { b.TakeOffRun(500, 80); b.random.draws = {0.0024, 0.7}; },
       "0x3366=12"},
      {"the engine already burning is kept", [](B b) { b.TakeOffRun(500, 80); b.now().Eng1OnFire = true; b.random.draws = {0, 0.7}; },
       "0x3366=13"},
      {"the draw of 1 of 400 does nothing", [](B b) { b.TakeOffRun(500, 80); b.random.draws = {0.0025}; }, ""},
      {"at reliability 30 one in 900", [](B b) { b.TakeOffRun(500, 80); b.options().FailureSlider = 30; b.random.draws = {0.0011, 0}; },
       "0x3366=11"},
      {"an engine without combustion does not burn", [](B b) { b.TakeOffRun(500, 80); b.now().Eng2Combustion = false; b.random.draws = {0, 0.7}; }, ""},
      {"not on FS2004", [](B b) { b.TakeOffRun(500, 80); b.flight().SimulatorName = "FS2004"; b.random.draws = {0}; }, "", 1},
      {"not at reliability 100", [](B b) { b.TakeOffRun(500, 80); b.options().FailureSlider = 100; b.random.draws = {0}; }, "", 1},
      {"not at 1000 feet", [](B b) { b.TakeOffRun(1000, 80); b.random.draws = {0}; }, "", 1},
      {"not at 50 knots", [](B b) { b.TakeOffRun(500, 50); b.random.draws = {0}; }, "", 1},
      {"not in the cruise", [](B b) { b.now().AGL = 500; b.random.draws = {0}; }, "", 1},
  }, RandomEngineFire);
}

TEST(Failures, WhatIsNoticedAndAnnounced) {
  Check({
      {"the ASI fails", [](B b) { b.now().FailFlags[1] = true; }, "FS_FAIL_ASI.wav"},
      {"the ASI was failed already", [](B b) { b.now().FailFlags[1] = b.before().FailFlags[1] = true; }, ""},
      {"the vacuum and the NAV1 together", [](B b) { b.now().FailFlags[15] = b.now().FailFlags[12] = true; },
       "FS_FAIL_NAV1.wav FS_FAIL_VACUUM.wav"},
      {"the engine flag has no notice", [](B b) { b.now().FailFlags[7] = true; }, ""},
      {"not noticed when not wanted", [](B b) { b.options().InstructorNoticesFailures = false; b.now().FailFlags[1] = true; }, ""},
  }, AnnounceIFInstructorNoticesFailures);
  Check({
      {"one engine of two stops", [](B b) { b.now().Eng2Combustion = false; }, "WeHaveLostAnEngine.wav"},
      {"both stop on a Baron", [](B b) {
         b.Type(AircraftType::Baron);
         b.now().Eng1Combustion = b.now().Eng2Combustion = false;
       }, "WeHaveLostAllEngines.wav BaronB58\\zPro_BestGlideSpeed.wav"},
      {"the single's engine stops", [](B b) { b.now().Engines = b.before().Engines = 1; b.now().Eng1Combustion = false; },
       "WeHaveLostTheEngine.wav"},
      {"a C152 without carb heat", [](B b) {
         b.Type(AircraftType::C152);
         b.now().Engines = b.before().Engines = 1; b.now().Eng1Combustion = false;
       }, "WeHaveLostTheEngine.wav c152\\BestGlideSpeed.wav c152\\CarbHeatOn.wav"},
      {"a C152 on fire needs no carb heat", [](B b) {
         b.Type(AircraftType::C152);
         b.now().Engines = b.before().Engines = 1; b.now().Eng1Combustion = false; b.now().Eng1OnFire = true;
       }, "WeHaveLostTheEngine.wav c152\\BestGlideSpeed.wav"},
      {"shut down on the ground", [](B b) { b.now().OnGround = 1; b.now().Eng2Combustion = false; }, ""},
  }, AnnounceEngineLossAirborne);
}
// clang-format on

TEST(Failures, TheEventListAndTheFailureTimers) {
  Bench b;
  b.now().ZuluHour = 9;
  b.now().ZuluMinute = 5;
  b.now().Second = 7;
  b.before().FailFlags[15] = true;  // the vacuum comes back
  b.now().FailFlags[1] = true;      // the ASI fails
  b.now().FailFlags[6] = true;      // the electrics, with the battery off
  Cockpit c = b.c();
  BuildFailureEventList(c);
  CountFailureSeconds(c);
  EXPECT_EQ(b.rig.instructor.scores.FailureEventsText,
            "Failure: Z09:05:07 ASI\r\nFailure: Z09:05:07 Electrical System\r\n"
            "Working: Z09:05:07 Vacuum System\r\n");
  EXPECT_TRUE(b.rig.instructor.scores.FailureEvents);
  const auto& seconds = b.rig.stats().FailureSeconds;
  EXPECT_EQ(seconds[1], 1);
  EXPECT_EQ(seconds[6], 0);  // the electrics count only with the battery on
  b.now().MasterBattery = true;
  CountFailureSeconds(c);
  EXPECT_EQ(seconds[1], 2);
  EXPECT_EQ(seconds[6], 1);
}

// The ASI fails in the simulator's own menu half-way through a flight of a
// minute and stays failed to the landing: it is noticed, listed with its
// time, timed, and earns its bonus.
TEST(Failures, AFailureFlownToTheLandingEarnsItsBonus) {
  FlightRig rig;
  rig.Ready();
  rig.Follow({{.gs = 35}, {.onGround = 0, .agl = 20, .gs = 70, .ticks = 40}});
  rig.Mark();
  rig.image.SetU8(0x0B65, 1);
  rig.Follow({{.ticks = 40}, {.onGround = 1, .agl = 0, .gs = 60, .vs = -200, .ticks = 2}});
  EXPECT_NE(rig.Queued().find("FS_FAIL_ASI.wav"), std::string::npos);
  rig.Fly({.gs = 19});
  ASSERT_EQ(rig.Since("landing").size(), 1u);
  const std::string report = rig.Since("landing")[0].Text("report");
  // Failed for the last 42 ticks of the air and roll-out, and on the
  // evaluating tick: 43 ticks, 21.5 seconds.
  EXPECT_NE(report.find("Failure(s): \r\nASI inop for 21.5 secs, still inop\r\n"),
            std::string::npos)
      << report;
  EXPECT_NE(report.find("Failure Event(s) (Zulu Time): \r\nFailure: Z12:"), std::string::npos)
      << report;
  EXPECT_NE(report.find(" ASI\r\n"), std::string::npos) << report;
  // 21.5 of the flight's seconds at weight 20, and 15 for the ASI still
  // failed, halved.
  EXPECT_NE(report.find("Failure Bonus:12%"), std::string::npos) << report;
}

// With the same seed a flight fails the same things at the same moments.
TEST(Failures, TheSameSeedFailsTheSameThings) {
  const auto fly = [](uint64_t seed) {
    FlightRig rig;
    rig.random = SeededRandom(seed);
    rig.instructor.options.WantRandomFailures = true;
    rig.instructor.options.FailureSlider = 1;  // v = round(Rnd x 5): 0 or 1 two ticks in ten
    rig.Ready();
    rig.Mark();
    rig.Follow({{.gs = 35}, {.onGround = 0, .agl = 2000, .gs = 90, .ticks = 60}});
    return rig.Texts("write", "offset") + "/" + rig.Messages();
  };
  const std::string first = fly(7);
  EXPECT_EQ(fly(7), first);
  EXPECT_NE(first.find("FAILURE!"), std::string::npos) << first;
  EXPECT_NE(fly(8), first);
}

}  // namespace
}  // namespace vantoro
