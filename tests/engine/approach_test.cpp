#include "engine/approach.h"

#include <functional>

#include "base/files.h"
#include "base/numbers.h"
#include "engine/rule_bench.h"
#include "world/runway_queries.h"
#include "world/runways.h"

namespace vantoro {
namespace {

// ZZAA 09 at 10 N 20 E: 148 feet wide, 8000 long, threshold 0 feet in,
// elevation 500, ILS 110.30, glide slope 3 degrees.
Runway Alder() {
  Runway r;
  r.Number = "09";
  r.ICAO = "ZZAA";
  r.Latitude = 10;
  r.Longitude = 20;
  r.Heading = 90;
  r.GlideSlope = 3;
  r.Elevation = 500;
  r.Width = 148;
  r.Length = 8000;
  r.ILSFrequency = "110.30";
  return r;
}

// A point `miles` east of the runway's threshold (negative: on final) and
// `feetNorth` off its centre line.
struct Place {
  double lat, lon;
};
Place OnRunwayAxis(double miles, double feetNorth = 0) {
  return {10 + feetNorth / kFeetPerNauticalMile / 60, 20 + miles / 60 / std::cos(10 * M_PI / 180)};
}

// The approach monitors on the bench, called one by one on records the test
// writes: connected, tick 1001, in Landing at 1500 feet with gear and flaps
// down, a light single with stall 50 knots in landing configuration.
struct Bench : RuleBench {
  Bench() {
    flight().Modes = {.Landing = true};
    approach().PreviousLanding = true;
    AircraftValues& a = rig.instructor.aircraft;
    a.StallLandingPlus10 = 60;
    a.StallLandingPlus20 = 70;
    a.GearSpeedLimit = 140;
    a.FlapAngleLimit[1] = 10 * 256;
    for (FSData* d : {&now(), &before()}) {
      d->AGL = 1500;
      d->IAS = 70;
      d->GearDown = true;
      d->FlapsLeft = 1000;
      d->Nav1OBS = 90;
    }
    rig.Mark();
  }
  ApproachState& approach() { return rig.instructor.flight.approach; }
  ApproachRatings& ratings() { return rig.instructor.approach; }
  AircraftValues& aircraft() { return rig.instructor.aircraft; }
  void Descend(double from, double to, int vs = 0) {
    before().AGL = from;
    now().AGL = to;
    now().VS = vs;
  }
  void Heavy() { rig.instructor.link.HeavyAircraft = true; }
  void Destination(Place p = OnRunwayAxis(-3), int feetHigh = 0) {
    SetDestinationRunway(approach(), ratings(), Alder(), 0);
    now().Latitude = p.lat;
    now().Longitude = p.lon;
    now().IndicatedAltitude =
        500 + CLng(DistanceAirportWithoutILSCheck(approach(), now()) * 288) + feetHigh;
  }
  // Auto-tuning on, the destination's ILS not yet tuned.
  void Tune(double agl) {
    Destination();
    rig.instructor.options.AutoTuneILS = true;
    Descend(agl, agl);
    now().Nav1Freq = 113.9;
  }
  // What the pilot got, in order: files queued, remarks ([1] amber, [2] red),
  // counters raised (+name), simulator writes and messages ('text').
  std::string Outcome() const {
    std::string out;
    for (size_t i = mark; i < rig.events.events.size(); ++i) {
      const Event& e = rig.events.events[i];
      std::string item;
      if (e.type == "queued") item = e.Text("file");
      if (e.type == "remark") item = "[" + std::to_string(e.Int("level")) + "]";
      if (e.type == "count") item = "+" + e.Text("name");
      if (e.type == "write") item = e.Text("offset") + "=" + e.Text("bytes");
      if (e.type == "message") item = "'" + e.Text("text") + "'";
      if (!item.empty()) out += (out.empty() ? "" : " ") + item;
    }
    return out;
  }
  size_t mark = rig.events.events.size();
};

struct Case {
  const char* name;
  std::function<void(Bench&)> set;
  std::string outcome;
};

void Check(const std::vector<Case>& rows, const std::function<void(Cockpit&)>& rules) {
  for (const Case& row : rows) {
    SCOPED_TRACE(row.name);
    Bench b;
    b.mark = b.rig.events.events.size();
    row.set(b);
    Cockpit c = b.c();
    rules(c);
    EXPECT_EQ(b.Outcome(), row.outcome);
  }
}

using B = Bench&;

// clang-format off
TEST(ApproachRules, WhatThePilotHearsOnTheWayDown) {
  Check({
      {"level, lined up, no glideslope, no destination", [](B b) { b.now().IndicatedAltitude = 5000; }, ""},
      {"needle right", [](B b) { b.now().Nav1Localiser = 30; }, "LineUpWithTheCentreLine.wav"},
      {"needle left", [](B b) { b.now().Nav1Localiser = -30; }, "GetLinedUpWithTheRunway.wav"},
      {"needle right in Cruise", [](B b) { b.now().Nav1Localiser = 30; b.flight().Modes = {.Cruise = true}; }, ""},
      {"runway 10 degrees right, sinking", [](B b) { b.Destination(OnRunwayAxis(-1.5, -1600)); b.Descend(500, 490); }, "LineUpWithTheCentreLine.wav"},
      {"visual, 400 feet high at 3 miles", [](B b) { b.Destination(OnRunwayAxis(-3), 400); }, "AboveGlideSlope.wav"},
      {"visual, 300 feet low at 3 miles", [](B b) { b.Destination(OnRunwayAxis(-3), -300); }, "BelowGlideSlope.wav"},
      {"needle high, fast, power on: two draws", [](B b) {
         b.now().Nav1GlideslopeAlive = true; b.now().Nav1Glideslope = 40;
         b.now().IAS = 80; b.now().Eng1Throttle = 3000; b.random.draws = {0.7, 0.2};
       }, "AboveGlideSlope2.wav ReduceThrottle.wav"},
      {"needle low, slow, power off", [](B b) {
         b.now().Nav1GlideslopeAlive = true; b.now().Nav1Glideslope = -40; b.now().IAS = 55; b.random.draws = {0.9};
       }, "BelowGlideSlope.wav IncreaseThrottle2.wav"},
      {"needle low, the engine failed", [](B b) {
         b.now().Nav1GlideslopeAlive = true; b.now().Nav1Glideslope = -40; b.now().IAS = 55;
         b.now().FailFlags[0x0B6B - 0x0B64] = true;
       }, "BelowGlideSlope.wav"},
      {"1100 fpm at 500 feet", [](B b) { b.Descend(500, 500, -1100); }, "AMBERDescentTooFastDontLandGoAround.wav [1]"},
      {"heavy, 17 degrees at 25 feet", [](B b) { b.Heavy(); b.Descend(25, 25); b.now().Pitch = 17; }, "LowerTheNoseTailStrike.wav [2] +LowerTheNoseTailStrike"},
      {"light, 17 degrees at 25 feet", [](B b) { b.Descend(25, 25); b.now().Pitch = 17; }, ""},
      {"light, 21 degrees up", [](B b) { b.now().Pitch = 21; }, "LowerTheNose.wav [2] +LowerTheNose"},
      {"8 degrees down in Cruise, fast", [](B b) { b.flight().Modes = {.Cruise = true}; b.now().Pitch = -8; b.now().IAS = 61; }, "RaiseTheNose.wav [2] +RaiseTheNose"},
      {"through 600, wind from the left", [](B b) { b.Descend(603, 600); b.now().WindSpeed = 10; b.now().WindRelativeToOBS = -45; },
       "NAV1OBSCrosswindIsLeft.wav 0.wav 4.wav 5.wav Degrees.wav"},
      {"through 450, wind from the right", [](B b) { b.Descend(451, 450); b.now().WindSpeed = 5; b.now().WindRelativeToHeading = 30; },
       "YouHaveASignificantRightCrosswind.wav"},
      {"through 650", [](B b) { b.Descend(651, 650); }, "0x32F8=00"},
      {"no flaps at 300 feet", [](B b) { b.Type(AircraftType::C172); b.now().FlapsLeft = 0; b.Descend(300, 300); },
       "NeedFlapsForLanding.wav [2] +NotFlapsForLanding c172\\FlapsSpeed1.wav"},
      {"no flaps, the Caravan", [](B b) { b.Type(AircraftType::C208B); b.now().FlapsLeft = 0; b.Descend(300, 300); },
       "NeedFlapsForLanding.wav [2] +NotFlapsForLanding c208B\\zPro_FlapsSpeed1.wav c208B\\zPro_FlapsSpeed2.wav"},
      {"no flaps, strong crosswind", [](B b) { b.now().FlapsLeft = 0; b.Descend(300, 300); b.now().WindSpeed = 15; b.now().WindRelativeToOBS = 90; }, ""},
      {"no flaps at 700 feet", [](B b) { b.now().FlapsLeft = 0; b.Descend(700, 700); }, "AMBERNeedFlapsForLanding.wav [1]"},
      {"too fast at 100 feet", [](B b) { b.Descend(100, 100); b.now().IAS = 113; }, "TooFastToLandSoAbort.wav [2] +TooFastToLand"},
      {"fast at 100 feet in Cruise", [](B b) { b.flight().Modes = {.Cruise = true}; b.Descend(100, 100); b.now().IAS = 113; },
       "TooFastLowNotLanding.wav [2] +TooFastLowNotLanding 'Are you LANDING?'"},
      {"850 feet in Cruise", [](B b) { b.flight().Modes = {.Cruise = true}; b.Descend(850, 850); }, "AMBERTooFastLowNotLanding.wav [1]"},
      {"1300 fpm at 500 feet; again 29 ticks later: quiet; 31: said and counted", [](B b) {
         b.Descend(500, 500, -1300);
         Cockpit c = b.c();
         for (int step : {29, 2}) { ApproachRules(c); b.flight().TickCount += step; }
       }, "DescentTooFastDontLandGoAround.wav [2] +DescentTooFast DescentTooFastDontLandGoAround.wav [2] +DescentTooFast"},
      {"glideslope overshot", [](B b) { b.Descend(160, 150); b.now().Nav1GlideslopeAlive = true; b.now().Nav1Glideslope = 80; },
       "AboveGlideSlope.wav OvershotTheGlideslopeAbort.wav"},
      {"off course at 200 feet", [](B b) { b.Descend(210, 200); b.now().Nav1Localiser = 60; }, "LineUpWithTheCentreLine.wav OffCourseGoAround.wav"},
  }, ApproachRules);
}

TEST(ApproachCallouts, HeightsBalloonsAndLowFlight) {
  Check({
      {"through 1000", [](B b) { b.Descend(1010, 1000); }, "n1000.wav"},
      {"through 500, fast", [](B b) { b.Descend(520, 470); }, "n500.wav"},
      {"into 55 from 56", [](B b) { b.Descend(56, 55); }, "n50.wav"},
      {"through 20, light", [](B b) { b.Descend(26, 20); }, "n20Flare.wav"},
      {"through 20, heavy", [](B b) { b.Heavy(); b.Descend(26, 20); }, "n20.wav"},
      {"calls disabled", [](B b) { b.aircraft().Monitoring.WantnoGPWS = true; b.Descend(56, 50); }, ""},
      {"light, 360 fpm at 25 feet", [](B b) { b.Descend(25, 25, -360); }, "DescentTooFastDontLandGoAround.wav"},
      {"light, 500 fpm at 60 feet", [](B b) { b.Descend(60, 60, -500); }, ""},
      {"heavy, 550 fpm at 60 feet", [](B b) { b.Heavy(); b.Descend(60, 60, -550); }, "DescentTooFastDontLandGoAround.wav"},
      {"rising 5 feet in the flare, calls disabled", [](B b) { b.aircraft().Monitoring.WantnoGPWS = true; b.Descend(20, 25); },
       "Ballooning.wav [2] +Ballooning"},
      {"a balloon held five ticks: counted on each, said once", [](B b) {
         b.Descend(20, 25);
         Cockpit c = b.c();
         for (int i = 0; i < 4; ++i) { Ballooning(c); b.flight().TickCount += 1; }
       }, "Ballooning.wav [2] +Ballooning +Ballooning +Ballooning +Ballooning +Ballooning"},
      {"ground rising 60 feet in Cruise", [](B b) { b.flight().Modes = {.Cruise = true}; b.Descend(240, 180); },
       "YouFlewTooLow.wav [2] +FlewTooLowOverObstacle"},
      {"the same in Landing", [](B b) { b.Descend(240, 180); }, ""},
  }, [](Cockpit& c) {
    CallOffHeights(c);
    CallOffLast50(c);
    Ballooning(c);
    CallOffDescentTooFast(c);
    CheckLowFlight(c);
  });
}

TEST(ApproachArrival, TheSentenceThatOpensTheApproach) {
  const std::string kILS = "ILSFrequencyIs.wav 1.wav 1.wav 0.wav Decimal.wav 3.wav 0.wav ";
  const std::string kOpens = "Landing.wav BasedOnNav1OBSRunwayHeadingIs.wav ";
  Check({
      {"no change of mode", [](B) {}, ""},
      {"with a runway: its heading", [](B b) { b.approach().PreviousLanding = false; b.Destination(); },
       kILS + kOpens + "0x0C4E=5A00 '90 NAV1OBSAutoSet' 0.wav 9.wav 0.wav GlideslopeNotAlive.wav"},
      {"with a localiser: its heading less the variation", [](B b) {
         b.approach().PreviousLanding = false; b.Destination();
         b.now().RadioFlags = 64; b.now().MagVar = 10; b.now().Nav1GlideslopeAlive = true;
         b.rig.instructor.link.ByteBuffer[0x0871 - 0x20] = 0xC0;  // 270 degrees true
       }, kILS + kOpens + "0x0C4E=0401 '260 NAV1OBSAutoSet' 2.wav 6.wav 0.wav GlideslopeAlive.wav"},
      {"no runway: the OBS as it is", [](B b) { b.approach().PreviousLanding = false; b.now().Nav1OBS = 0; },
       kOpens + "3.wav 6.wav 0.wav GlideslopeNotAlive.wav"},
      {"the ILS tuned by the instructor", [](B b) {
         b.approach().PreviousLanding = false; b.Destination(); b.rig.instructor.options.AutoTuneILS = true;
       }, kOpens + "0x0C4E=5A00 '90 NAV1OBSAutoSet' 0.wav 9.wav 0.wav GlideslopeNotAlive.wav"},
      {"at 150 feet", [](B b) { b.approach().PreviousLanding = false; b.Destination(); b.Descend(150, 150); },
       kILS.substr(0, kILS.size() - 1)},
      {"the DC3 high up", [](B b) { b.approach().PreviousLanding = false; b.Type(AircraftType::DC3); b.Descend(4100, 4100); },
       "Landing.wav DC3\\zPro_CruiseDescent.wav"},
  }, LandingModeArrival);
}

TEST(ApproachArrival, GlideslopeCaptureAndTheILSTunedOnOddTicks) {
  const std::string kTuned = "TuningNAV1ToRunwayILS.wav 1.wav 1.wav 0.wav Decimal.wav 3.wav 0.wav 0x0350=3010";
  Check({
      {"glideslope comes alive", [](B b) { b.now().Nav1GlideslopeAlive = true; }, "GlideslopeCapture.wav"},
      {"glideslope goes", [](B b) { b.before().Nav1GlideslopeAlive = true; }, "GlideslopeLoss.wav"},
      {"comes alive at 150 feet", [](B b) { b.Descend(150, 150); b.now().Nav1GlideslopeAlive = true; }, ""},
      {"odd tick below 2500", [](B b) { b.Tune(2400); }, kTuned},
      {"even tick", [](B b) { b.Tune(2400); b.flight().TickCount = 1002; }, ""},
      {"already tuned", [](B b) { b.Tune(2400); b.now().Nav1Freq = 110.3; }, ""},
      {"light at 3000 feet", [](B b) { b.Tune(3000); }, ""},
      {"heavy at 3000 feet", [](B b) { b.Heavy(); b.Tune(3000); }, kTuned},
  }, [](Cockpit& c) { GlideslopeCapture(c); AutoTuneILS(c); });
}
// clang-format on

// Down from 530 feet: the opening at 510, then ticks at 500, 400... with the
// given needles (localiser twice the glideslope), and the flare at 19 feet;
// without the ILS the destination runway is flown visually.
TEST(ApproachRatingsOnFinal, SumsFromFiveHundredFeetToTheFlare) {
  const int32_t kNone = kNothingGathered;
  struct Row {
    const char* name;
    bool ils;
    std::vector<int> needles;
    int flareFeetHigh;
    // ILS glideslope and localiser sums and samples, visual samples, each held at the flare
    std::vector<int32_t> want;
  };
  // clang-format off
  const std::vector<Row> rows = {
      {"ILS", true, {10, -20, 30}, 0, {60, 3, 120, 3, 0, 0, 1, 0}},
      {"ILS, needle high at the flare", true, {10, 40}, 0, {50, 2, 100, 2, 0, 0, 0, 0}},
      {"visual, from the opening on", false, {0, 0}, 0, {kNone, 0, kNone, 0, 3, 3, 0, 1}},
      {"visual, high at the flare", false, {0, 0}, 80, {kNone, 0, kNone, 0, 3, 3, 0, 0}},
  };
  // clang-format on
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    Bench b;
    b.ratings().ILSGlideslopeSum = 999;  // an earlier approach's
    Cockpit c = b.c();
    const auto tick = [&](double agl, double miles, int feetHigh = 0) {
      b.before() = b.now();
      b.now().AGL = agl;
      if (!row.ils) b.Destination(OnRunwayAxis(-miles), feetHigh);
      GatherApproachRatings(c);
      b.flight().TickCount += 1;
    };
    b.now().AGL = 530;
    tick(510, 1.7);
    EXPECT_EQ(b.ratings().ILSGlideslopeSum, kNone);
    double agl = 500;
    for (int needle : row.needles) {
      b.now().Nav1GlideslopeAlive = row.ils;
      b.now().Nav1Glideslope = needle;
      b.now().Nav1Localiser = 2 * needle;
      tick(agl, agl / 288);
      agl -= 100;
    }
    tick(19, 0.066, row.flareFeetHigh);
    tick(10, 0.03);  // after the flare nothing more is gathered
    const ApproachRatings& r = b.ratings();
    EXPECT_EQ((std::vector<int32_t>{r.ILSGlideslopeSum, r.ILSGlideslopeSamples, r.ILSLocalizerSum,
                                    r.ILSLocalizerSamples, r.VisualGlideslopeSamples,
                                    r.VisualLocalizerSamples, r.GlideslopeHeldAtFlare,
                                    r.VisualGlideslopeHeldAtFlare}),
              row.want);
    // Flown on the glide path and the centre line.
    EXPECT_LE(r.VisualGlideslopeSum, r.VisualGlideslopeSamples);
    EXPECT_EQ(r.VisualLocalizerSum, row.ils ? kNone : 0);
  }
}

TEST(ApproachTouchdown, WhereTheWheelsMetTheRunway) {
  struct Row {
    const char* name;
    bool destination;
    double feetIn, feetNorth, beyond;
    bool surface;
  };
  const std::vector<Row> rows = {
      {"1000 feet in, 70 feet off the centre line", true, 1000, 70, 0.1646, true},
      {"1000 feet in, 80 feet off", true, 1000, 80, 0.1646, false},
      {"300 feet short", true, -300, 0, -0.0494, false},
      {"past the far end", true, 8100, 0, 1.3331, false},
      {"no runway known", false, 1000, 0, 0, false},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    Bench b;
    const Place p = OnRunwayAxis(row.feetIn / kFeetPerNauticalMile, row.feetNorth);
    if (row.destination) b.Destination();
    b.now().Latitude = p.lat;
    b.now().Longitude = p.lon;
    Cockpit c = b.c();
    LandAirportWithoutILSCheck(c);
    EXPECT_NEAR(b.rig.stats().DistanceBeyondThreshold, row.beyond, 0.0002);
    EXPECT_EQ(b.rig.stats().LandedOnRunwaySurface, row.surface);
  }
}

// A whole approach through the tick: the runway comes from the world data at
// the entry into Landing, the OBS is set to it, and the touchdown is measured
// against it.
TEST(ApproachScenario, FromTheWorldDataToTheTouchdown) {
  FlightRig rig;
  // A runway pointing north, 3 miles north of the aircraft's starting place.
  const std::string line =
      "36|0|N47_18_00|E011_21_00|3|ZZBB.36|1900|9000|150|||ASPHALT|0|0|47.4|"
      "11.35|Bee|Bee Field|0|47.300000|11.350000";
  const std::string file = (rig.dir_ / "runways.txt").string();
  ASSERT_TRUE(WriteFileAtomic(file, line + "\r\n"));
  ASSERT_EQ(LoadRunwayFile(rig.instructor.world, file), "");

  rig.Ready();
  rig.Follow(CruiseAt(1500));
  rig.Mark();
  rig.Fly({.key = 7});
  EXPECT_EQ(rig.flight().approach.DestinationICAO, "ZZBB");
  EXPECT_EQ(rig.Texts("write", "bytes"), "6801");  // the OBS to 360
  EXPECT_NE(rig.Queued().find("Landing.wav|BasedOnNav1OBSRunwayHeadingIs.wav|3.wav|6.wav|0.wav"),
            std::string::npos);

  rig.Position(47.3 + 1500 / kFeetPerNauticalMile / 60, 11.35);
  rig.Fly({.agl = 10, .ticks = 30});
  rig.Fly({.onGround = 1, .agl = 0, .gs = 60, .vs = -200, .ticks = 2});
  EXPECT_NEAR(rig.stats().DistanceBeyondThreshold, 0.2469, 0.0002);
  EXPECT_TRUE(rig.stats().LandedOnRunwaySurface);
}

}  // namespace
}  // namespace vantoro
