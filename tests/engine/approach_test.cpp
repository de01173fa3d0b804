#include "engine/approach.h"

#include <deque>
#include <functional>

#include "base/files.h"
#include "engine/flight_rig.h"
#include "world/runway_queries.h"
#include "world/runways.h"

namespace vantoro {
namespace {

// Draws that the test decides: each even-chance choice takes the next value.
class ScriptedRandom final : public Random {
 public:
  std::deque<double> draws;
  double Uniform() override {
    if (draws.empty()) return 0.1;
    const double d = draws.front();
    draws.pop_front();
    return d;
  }
};

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
struct Bench {
  FlightRig rig;
  ScriptedRandom random;

  Bench() {
    rig.instructor.Connect();
    FlightState& f = rig.instructor.flight;
    f.TickCount = 1001;
    f.Modes = {.Landing = true};
    f.approach.PreviousLanding = true;
    AircraftValues& a = rig.instructor.aircraft;
    a.StallLanding = 50;
    a.StallLandingPlus10 = 60;
    a.StallLandingPlus15 = 65;
    a.StallLandingPlus20 = 70;
    a.GearSpeedLimit = 140;
    a.FlapAngleLimit[1] = 10 * 256;
    for (FSData* d : {&now(), &before()}) {
      d->AGL = 1500;
      d->IAS = 70;
      d->Pitch = 3;
      d->GearDown = true;
      d->FlapsLeft = 1000;
      d->Nav1OBS = 90;
      d->Latitude = 10;
      d->Longitude = 19;
    }
    rig.Mark();
  }
  Cockpit c() {
    Cockpit k = rig.instructor.cockpit();
    return Cockpit{k.link,     k.flight,  k.sound, k.aircraft, k.world,  k.plan,  k.scores,
                   k.approach, k.options, k.sim,   k.audio,    k.events, k.clock, random};
  }
  FSData& now() { return rig.instructor.link.Now(); }
  FSData& before() { return rig.instructor.link.Records[rig.instructor.link.PreviousRecord]; }
  FlightState& flight() { return rig.instructor.flight; }
  ApproachState& approach() { return rig.instructor.flight.approach; }
  ApproachRatings& ratings() { return rig.instructor.approach; }
  AircraftValues& aircraft() { return rig.instructor.aircraft; }
  void Descend(double from, double to) {
    before().AGL = from;
    now().AGL = to;
  }
  void Heavy() { rig.instructor.link.HeavyAircraft = true; }
  void Destination() {
    ApproachRatings& r = ratings();
    SetDestinationRunway(approach(), r, Alder(), 0);
  }
  void At(Place p) {
    now().Latitude = p.lat;
    now().Longitude = p.lon;
  }
  void Type(AircraftType t) {
    aircraft().Is[static_cast<size_t>(t)] = true;
    aircraft().Monitoring.Boeing[static_cast<size_t>(MainBox(t))] = true;
  }
  std::string Queued() const { return rig.Queued(); }
  std::string Remarks() const {
    std::string out;
    for (const Event& e : rig.Since("remark"))
      out += (out.empty() ? "" : "|") + std::to_string(e.Int("level")) + ":" + e.Text("file");
    return out;
  }
  std::string Writes() const {
    std::string out;
    for (const Event& e : rig.Since("write"))
      out += (out.empty() ? "" : "|") + e.Text("offset") + "=" + e.Text("bytes");
    return out;
  }
  std::string Counts() const {
    std::string out;
    for (const Event& e : rig.Since("count"))
      out += (out.empty() ? "" : "|") + e.Text("name") + "=" + std::to_string(e.Int("value"));
    return out;
  }
};

struct Case {
  std::string name;
  std::function<void(Bench&)> set;
  std::string queued;
  std::string remarks = "";
  std::string counts = "";
  std::string writes = "";
  std::string messages = "";
};

void Check(const Case& row, const std::function<void(Cockpit&)>& rules) {
  SCOPED_TRACE(row.name);
  Bench b;
  row.set(b);
  Cockpit c = b.c();
  rules(c);
  EXPECT_EQ(b.Queued(), row.queued);
  EXPECT_EQ(b.Remarks(), row.remarks);
  EXPECT_EQ(b.Counts(), row.counts);
  EXPECT_EQ(b.Writes(), row.writes);
  EXPECT_EQ(b.rig.Messages(), row.messages);
}

// clang-format off
TEST(ApproachRules, WhatThePilotHearsOnTheWayDown) {
  const std::vector<Case> rows = {
      {"level, lined up, on the glideslope: nothing", [](Bench&) {}, ""},
      // Lining up by the localiser needle.
      {"needle right", [](Bench& b) { b.now().Nav1Localiser = 30; }, "LineUpWithTheCentreLine.wav"},
      {"needle left", [](Bench& b) { b.now().Nav1Localiser = -30; }, "GetLinedUpWithTheRunway.wav"},
      {"needle at full scale", [](Bench& b) { b.now().Nav1Localiser = 110; }, ""},
      {"needle right at 100 feet", [](Bench& b) { b.now().Nav1Localiser = 30; b.Descend(100, 100); }, ""},
      {"needle right in Cruise", [](Bench& b) { b.now().Nav1Localiser = 30; b.flight().Modes = {.Cruise = true}; }, ""},
      // Lining up by the bearing to the destination, within 2 miles.
      {"runway 10 degrees right of the OBS, sinking", [](Bench& b) {
         b.Destination(); b.At(OnRunwayAxis(-1.5, 1600)); b.Descend(500, 490); b.now().IndicatedAltitude = 500 + 430;
       }, "GetLinedUpWithTheRunway.wav"},
      {"runway 10 degrees the other way", [](Bench& b) {
         b.Destination(); b.At(OnRunwayAxis(-1.5, -1600)); b.Descend(500, 490); b.now().IndicatedAltitude = 500 + 430;
       }, "LineUpWithTheCentreLine.wav"},
      {"runway 10 degrees off, level", [](Bench& b) {
         b.Destination(); b.At(OnRunwayAxis(-1.5, 1600)); b.Descend(490, 490); b.now().IndicatedAltitude = 500 + 430;
       }, ""},
      // The glide path without a glideslope, by the destination's distance.
      {"visual, high at 3 miles", [](Bench& b) {
         b.Destination(); b.At(OnRunwayAxis(-3)); b.now().IndicatedAltitude = 500 + 1200;
       }, "AboveGlideSlope.wav"},
      {"visual, low at 3 miles", [](Bench& b) {
         b.Destination(); b.At(OnRunwayAxis(-3)); b.now().IndicatedAltitude = 500 + 500;
       }, "BelowGlideSlope.wav"},
      {"visual, on the path at 3 miles", [](Bench& b) {
         b.Destination(); b.At(OnRunwayAxis(-3)); b.now().IndicatedAltitude = 500 + 870;
       }, ""},
      {"visual, high at 5 miles", [](Bench& b) {
         b.Destination(); b.At(OnRunwayAxis(-5)); b.now().IndicatedAltitude = 500 + 3000;
       }, ""},
      {"visual, no destination: silent", [](Bench& b) { b.now().IndicatedAltitude = 5000; }, ""},
      // The glideslope needle, with the throttle advice.
      {"needle high, fast, power on: two independent draws", [](Bench& b) {
         b.now().Nav1GlideslopeAlive = true; b.now().Nav1Glideslope = 40;
         b.now().IAS = 80; b.now().Eng1Throttle = 3000; b.random.draws = {0.7, 0.2};
       }, "AboveGlideSlope2.wav|ReduceThrottle.wav"},
      {"needle low, slow, power off", [](Bench& b) {
         b.now().Nav1GlideslopeAlive = true; b.now().Nav1Glideslope = -40;
         b.now().IAS = 55; b.now().Eng1Throttle = 1000; b.random.draws = {0.9};
       }, "BelowGlideSlope.wav|IncreaseThrottle2.wav"},
      {"needle low with the engine failed", [](Bench& b) {
         b.now().Nav1GlideslopeAlive = true; b.now().Nav1Glideslope = -40;
         b.now().IAS = 55; b.now().FailFlags[0x0B6B - 0x0B64] = true;
       }, "BelowGlideSlope.wav"},
      {"needle at a quarter", [](Bench& b) { b.now().Nav1GlideslopeAlive = true; b.now().Nav1Glideslope = 32; }, ""},
      // Descent and pitch.
      {"descent at 1300 fpm at 500 feet", [](Bench& b) { b.Descend(500, 500); b.now().VS = -1300; },
       "DescentTooFastDontLandGoAround.wav", "2:DescentTooFastDontLandGoAround.wav", "DescentTooFast=1"},
      {"descent at 1100 fpm", [](Bench& b) { b.Descend(500, 500); b.now().VS = -1100; },
       "AMBERDescentTooFastDontLandGoAround.wav", "1:AMBERDescentTooFastDontLandGoAround.wav"},
      {"descent at 1300 fpm at 700 feet", [](Bench& b) { b.Descend(700, 700); b.now().VS = -1300; }, ""},
      {"heavy, 17 degrees at 25 feet", [](Bench& b) { b.Heavy(); b.Descend(25, 25); b.now().Pitch = 17; },
       "LowerTheNoseTailStrike.wav", "2:LowerTheNoseTailStrike.wav", "LowerTheNoseTailStrike=1"},
      {"light, 17 degrees at 25 feet", [](Bench& b) { b.Descend(25, 25); b.now().Pitch = 17; }, ""},
      {"light, 21 degrees up", [](Bench& b) { b.now().Pitch = 21; },
       "LowerTheNose.wav", "2:LowerTheNose.wav", "LowerTheNose=1"},
      {"heavy, 21 degrees up", [](Bench& b) { b.Heavy(); b.now().Pitch = 21; }, ""},
      {"15 degrees down", [](Bench& b) { b.now().Pitch = -15; },
       "RaiseTheNose.wav", "2:RaiseTheNose.wav", "RaiseTheNose=1"},
      {"8 degrees down in Cruise, fast", [](Bench& b) { b.flight().Modes = {.Cruise = true}; b.now().Pitch = -8; b.now().IAS = 61; },
       "RaiseTheNose.wav", "2:RaiseTheNose.wav", "RaiseTheNose=1"},
      {"8 degrees down in Landing", [](Bench& b) { b.now().Pitch = -8; b.now().IAS = 61; }, ""},
      // Crosswinds.
      {"through 600 with the wind from the left", [](Bench& b) {
         b.Descend(603, 600); b.now().WindSpeed = 10; b.now().WindRelativeToOBS = -45;
       }, "NAV1OBSCrosswindIsLeft.wav|0.wav|4.wav|5.wav|Degrees.wav"},
      {"through 600 from 602", [](Bench& b) {
         b.Descend(602, 600); b.now().WindSpeed = 10; b.now().WindRelativeToOBS = -45;
       }, ""},
      {"through 600, the DC3", [](Bench& b) {
         b.Type(AircraftType::DC3); b.Descend(603, 600); b.now().WindSpeed = 10; b.now().WindRelativeToOBS = 45;
       }, ""},
      {"through 450 with the wind from the right", [](Bench& b) {
         b.Descend(451, 450); b.now().WindSpeed = 5; b.now().WindRelativeToHeading = 30;
       }, "YouHaveASignificantRightCrosswind.wav"},
      {"through 450, wind of 4 knots", [](Bench& b) {
         b.Descend(451, 450); b.now().WindSpeed = 4; b.now().WindRelativeToHeading = -30;
       }, ""},
      // The simulator's approach flag.
      {"through 650", [](Bench& b) { b.Descend(651, 650); }, "", "", "", "0x32F8=00"},
      // Flaps.
      {"no flaps at 300 feet, calm", [](Bench& b) {
         b.Type(AircraftType::C172); b.now().FlapsLeft = 0; b.Descend(300, 300);
       }, "NeedFlapsForLanding.wav|c172\\FlapsSpeed1.wav", "2:NeedFlapsForLanding.wav", "NotFlapsForLanding=1"},
      {"no flaps at 150 feet: no sentence", [](Bench& b) {
         b.Type(AircraftType::C208B); b.now().FlapsLeft = 0; b.Descend(150, 150);
       }, "NeedFlapsForLanding.wav", "2:NeedFlapsForLanding.wav", "NotFlapsForLanding=1"},
      {"no flaps, the Caravan's two sentences", [](Bench& b) {
         b.Type(AircraftType::C208B); b.now().FlapsLeft = 0; b.Descend(300, 300);
       }, "NeedFlapsForLanding.wav|c208B\\zPro_FlapsSpeed1.wav|c208B\\zPro_FlapsSpeed2.wav",
       "2:NeedFlapsForLanding.wav", "NotFlapsForLanding=1"},
      {"no flaps, strong crosswind", [](Bench& b) {
         b.now().FlapsLeft = 0; b.Descend(300, 300); b.now().WindSpeed = 15; b.now().WindRelativeToOBS = 90;
       }, ""},
      {"no flaps, wind on the nose", [](Bench& b) {
         b.now().FlapsLeft = 0; b.Descend(300, 300); b.now().WindSpeed = 15; b.now().WindRelativeToOBS = 10;
       }, "NeedFlapsForLanding.wav", "2:NeedFlapsForLanding.wav", "NotFlapsForLanding=1"},
      {"no flaps at 700 feet", [](Bench& b) { b.now().FlapsLeft = 0; b.Descend(700, 700); },
       "AMBERNeedFlapsForLanding.wav", "1:AMBERNeedFlapsForLanding.wav"},
      {"no flaps on an aircraft without flaps", [](Bench& b) {
         b.aircraft().FlapAngleLimit[1] = 0; b.now().FlapsLeft = 0; b.Descend(300, 300);
       }, ""},
      // Too fast, and low in Cruise.
      {"too fast at 100 feet", [](Bench& b) { b.Descend(100, 100); b.now().IAS = 113; },
       "TooFastToLandSoAbort.wav", "2:TooFastToLandSoAbort.wav", "TooFastToLand=1"},
      {"fast enough at 100 feet", [](Bench& b) { b.Descend(100, 100); b.now().IAS = 112; }, ""},
      {"fast and low in Cruise", [](Bench& b) { b.flight().Modes = {.Cruise = true}; b.Descend(100, 100); b.now().IAS = 113; },
       "TooFastLowNotLanding.wav", "2:TooFastLowNotLanding.wav", "TooFastLowNotLanding=1", "", "Are you LANDING?"},
      {"700 feet in Cruise", [](Bench& b) { b.flight().Modes = {.Cruise = true}; b.Descend(700, 700); },
       "TooFastLowNotLanding.wav", "2:TooFastLowNotLanding.wav", "TooFastLowNotLanding=1", "", "Are you LANDING?"},
      {"850 feet in Cruise", [](Bench& b) { b.flight().Modes = {.Cruise = true}; b.Descend(850, 850); },
       "AMBERTooFastLowNotLanding.wav", "1:AMBERTooFastLowNotLanding.wav"},
      // Overshot, off course.
      {"glideslope overshot at 150 feet", [](Bench& b) {
         b.Descend(160, 150); b.now().Nav1GlideslopeAlive = true; b.now().Nav1Glideslope = 80;
       }, "AboveGlideSlope.wav|OvershotTheGlideslopeAbort.wav"},
      {"off course at 200 feet", [](Bench& b) { b.Descend(210, 200); b.now().Nav1Localiser = 60; },
       "LineUpWithTheCentreLine.wav|OffCourseGoAround.wav"},
      {"needle at 50 at 200 feet", [](Bench& b) { b.Descend(210, 200); b.now().Nav1Localiser = 50; },
       "LineUpWithTheCentreLine.wav"},
      // Gear.
      {"gear up at 300 feet", [](Bench& b) { b.Descend(310, 300); b.now().GearDown = false; b.now().IAS = 100; },
       "LowerGear.wav", "1:LowerGear.wav"},
      {"gear up and too fast for it", [](Bench& b) { b.Descend(310, 300); b.now().GearDown = false; b.now().IAS = 140; },
       "SlowDownSoYouCanLowerGear.wav", "1:SlowDownSoYouCanLowerGear.wav"},
      {"gear up on a float plane", [](Bench& b) {
         b.Descend(310, 300); b.now().GearDown = false; b.aircraft().Raw.FloatPlane = true;
       }, ""},
  };
  for (const Case& row : rows) Check(row, ApproachRules);
}

TEST(ApproachRules, AnAdviceWithinItsGapIsNeitherSaidNorCounted) {
  Bench b;
  b.Descend(500, 500);
  b.now().VS = -1300;
  Cockpit c = b.c();
  ApproachRules(c);
  b.flight().TickCount += 29;
  ApproachRules(c);
  b.flight().TickCount += 2;
  ApproachRules(c);
  EXPECT_EQ(b.Queued(), "DescentTooFastDontLandGoAround.wav|DescentTooFastDontLandGoAround.wav");
  EXPECT_EQ(b.Counts(), "DescentTooFast=1|DescentTooFast=2");
}

TEST(ApproachCallouts, HeightsAndDescentNearTheGround) {
  const auto descend = [](double from, double to, int vs = 0) {
    return [=](Bench& b) { b.Descend(from, to); b.now().VS = vs; };
  };
  const std::vector<Case> rows = {
      {"through 1000", descend(1010, 1000), "n1000.wav"},
      {"through 500, fast", descend(520, 470), "n500.wav"},
      {"through 100", descend(106, 104), "n100.wav"},
      {"into 55 from 56", descend(56, 55), "n50.wav"},
      {"from 55 to 50", descend(55, 50), ""},
      {"through 40", descend(46, 40), "n40.wav"},
      {"through 30", descend(36, 30), "n30.wav"},
      {"through 20, light", descend(26, 20), "n20Flare.wav"},
      {"through 20, heavy", [](Bench& b) { b.Heavy(); b.Descend(26, 20); }, "n20.wav"},
      {"through 10", descend(16, 10), "n10.wav"},
      {"altitude calls disabled", [](Bench& b) { b.aircraft().Monitoring.WantnoGPWS = true; b.Descend(56, 50); }, ""},
      // Descent too fast near the ground; the first row that matches decides.
      {"light, 360 fpm at 25 feet", descend(25, 25, -360), "DescentTooFastDontLandGoAround.wav"},
      {"light, 390 fpm at 40 feet", descend(40, 40, -390), ""},
      {"light, 500 fpm at 60 feet", descend(60, 60, -500), ""},
      {"light, 650 fpm at 150 feet", descend(150, 150, -650), "DescentTooFastDontLandGoAround.wav"},
      {"light, 900 fpm at 250 feet", descend(250, 250, -900), ""},
      {"heavy, 550 fpm at 60 feet", [](Bench& b) { b.Heavy(); b.Descend(60, 60); b.now().VS = -550; },
       "DescentTooFastDontLandGoAround.wav"},
      {"heavy, 1000 fpm at 250 feet", [](Bench& b) { b.Heavy(); b.Descend(250, 250); b.now().VS = -1000; }, ""},
      {"heavy, 1150 fpm at 250 feet", [](Bench& b) { b.Heavy(); b.Descend(250, 250); b.now().VS = -1150; },
       "DescentTooFastDontLandGoAround.wav"},
      {"descent too fast, calls disabled", [](Bench& b) {
         b.aircraft().Monitoring.WantnoGPWS = true; b.Descend(25, 25); b.now().VS = -700;
       }, ""},
  };
  for (const Case& row : rows) {
    Check(row, [](Cockpit& c) {
      CallOffHeights(c);
      CallOffLast50(c);
      CallOffDescentTooFast(c);
    });
  }
  Bench b;
  b.Descend(56, 50);
  Cockpit c = b.c();
  CallOffLast50(c);
  EXPECT_EQ(b.rig.Texts("queued", "by"), "PlayAndPurge");
}

TEST(ApproachCallouts, BallooningAndFlyingLowAreCounted) {
  const std::vector<Case> rows = {
      {"rising 5 feet in the flare", [](Bench& b) { b.Descend(20, 25); },
       "Ballooning.wav", "2:Ballooning.wav", "Ballooning=1"},
      {"still counted with the calls disabled", [](Bench& b) {
         b.aircraft().Monitoring.WantnoGPWS = true; b.Descend(20, 25);
       }, "Ballooning.wav", "2:Ballooning.wav", "Ballooning=1"},
      {"rising 3 feet", [](Bench& b) { b.Descend(20, 23); }, ""},
      {"rising from 14 feet", [](Bench& b) { b.Descend(14, 20); }, ""},
      {"ground rising 60 feet in Cruise", [](Bench& b) { b.flight().Modes = {.Cruise = true}; b.Descend(240, 180); },
       "YouFlewTooLow.wav", "2:YouFlewTooLow.wav", "FlewTooLowOverObstacle=1"},
      {"the same in Landing", [](Bench& b) { b.Descend(240, 180); }, ""},
      {"ground rising 60 feet at 200", [](Bench& b) { b.flight().Modes = {.Cruise = true}; b.Descend(260, 200); }, ""},
  };
  for (const Case& row : rows) {
    Check(row, [](Cockpit& c) {
      Ballooning(c);
      CheckLowFlight(c);
    });
  }
}

TEST(ApproachArrival, TheSentenceThatOpensTheApproach) {
  const std::string kILS = "ILSFrequencyIs.wav|1.wav|1.wav|0.wav|Decimal.wav|3.wav|0.wav";
  const std::string kBased = "Landing.wav|BasedOnNav1OBSRunwayHeadingIs.wav";
  const auto entering = [](std::function<void(Bench&)> more) {
    return [more](Bench& b) {
      b.approach().PreviousLanding = false;
      more(b);
    };
  };
  const std::vector<Case> rows = {
      {"no change of mode", [](Bench&) {}, ""},
      {"with a runway: its heading", entering([](Bench& b) { b.Destination(); }),
       kILS + "|" + kBased + "|0.wav|9.wav|0.wav|GlideslopeNotAlive.wav", "", "", "0x0C4E=5A00",
       "90 NAV1OBSAutoSet"},
      {"with a localiser: its heading", entering([](Bench& b) {
         b.Destination(); b.now().RadioFlags = 64; b.now().MagVar = 10; b.now().Nav1GlideslopeAlive = true;
         const uint16_t raw = 270 * 65536 / 360;  // true
         b.rig.instructor.link.ByteBuffer[0x0870 - 0x20] = raw & 0xFF;
         b.rig.instructor.link.ByteBuffer[0x0871 - 0x20] = raw >> 8;
       }), kILS + "|" + kBased + "|2.wav|6.wav|0.wav|GlideslopeAlive.wav", "", "", "0x0C4E=0401",
       "260 NAV1OBSAutoSet"},
      {"runway heading 360", entering([](Bench& b) {
         Runway r = Alder(); r.Heading = 0; r.ILSFrequency.clear();
         SetDestinationRunway(b.approach(), b.ratings(), r, 0);
       }), kBased + "|3.wav|6.wav|0.wav|GlideslopeNotAlive.wav", "", "", "0x0C4E=6801", "360 NAV1OBSAutoSet"},
      {"no runway: the OBS as it is", entering([](Bench& b) { b.now().Nav1OBS = 0; }),
       kBased + "|3.wav|6.wav|0.wav|GlideslopeNotAlive.wav"},
      {"the ILS tuned by the instructor is not read out", entering([](Bench& b) {
         b.Destination(); b.rig.instructor.options.AutoTuneILS = true;
       }), kBased + "|0.wav|9.wav|0.wav|GlideslopeNotAlive.wav", "", "", "0x0C4E=5A00", "90 NAV1OBSAutoSet"},
      {"at 150 feet only the frequency", entering([](Bench& b) { b.Destination(); b.Descend(150, 150); }), kILS},
      {"the DC3 high up", entering([](Bench& b) { b.Type(AircraftType::DC3); b.Descend(4100, 4100); }),
       "Landing.wav|DC3\\zPro_CruiseDescent.wav"},
      {"the DC3 lower down", entering([](Bench& b) { b.Type(AircraftType::DC3); }), "Landing.wav"},
      {"leaving Landing", [](Bench& b) { b.flight().Modes = {.Cruise = true}; }, ""},
  };
  for (const Case& row : rows) Check(row, LandingModeArrival);
}

TEST(ApproachArrival, GlideslopeCaptureAndTheILSTunedOnOddTicks) {
  const std::vector<Case> rows = {
      {"glideslope comes alive", [](Bench& b) { b.now().Nav1GlideslopeAlive = true; }, "GlideslopeCapture.wav"},
      {"glideslope goes", [](Bench& b) { b.before().Nav1GlideslopeAlive = true; }, "GlideslopeLoss.wav"},
      {"comes alive at 150 feet", [](Bench& b) { b.Descend(150, 150); b.now().Nav1GlideslopeAlive = true; }, ""},
      {"comes alive in the DC3", [](Bench& b) { b.Type(AircraftType::DC3); b.now().Nav1GlideslopeAlive = true; }, ""},
  };
  for (const Case& row : rows) Check(row, GlideslopeCapture);

  const std::string kTuning = "TuningNAV1ToRunwayILS.wav|1.wav|1.wav|0.wav|Decimal.wav|3.wav|0.wav";
  const auto tune = [](std::function<void(Bench&)> more) {
    return [more](Bench& b) {
      b.Destination();
      b.rig.instructor.options.AutoTuneILS = true;
      b.Descend(2400, 2400);
      b.now().Nav1Freq = 113.9;
      more(b);
    };
  };
  const std::vector<Case> tuning = {
      {"odd tick below 2500", tune([](Bench&) {}), kTuning, "", "", "0x0350=3010"},
      {"even tick", tune([](Bench& b) { b.flight().TickCount = 1002; }), ""},
      {"already tuned", tune([](Bench& b) { b.now().Nav1Freq = 110.3; }), ""},
      {"at 3000 feet", tune([](Bench& b) { b.Descend(3000, 3000); }), ""},
      {"heavy at 3000 feet", tune([](Bench& b) { b.Heavy(); b.Descend(3000, 3000); }), kTuning, "", "", "0x0350=3010"},
      {"option off", tune([](Bench& b) { b.rig.instructor.options.AutoTuneILS = false; }), ""},
      {"in Cruise", tune([](Bench& b) { b.flight().Modes = {.Cruise = true}; }), ""},
  };
  for (const Case& row : tuning) Check(row, AutoTuneILS);
}
// clang-format on

TEST(ApproachDestination, DistanceAndBearingWithTheirSentinels) {
  Bench b;
  b.At(OnRunwayAxis(-3));
  EXPECT_EQ(DistanceAirportWithoutILSCheck(b.approach(), b.now()), -999.99);
  EXPECT_EQ(BearingAirportWithoutILSCheck(b.approach(), b.now()), -99999);
  b.Destination();
  EXPECT_NEAR(DistanceAirportWithoutILSCheck(b.approach(), b.now()), 3, 0.01);
  EXPECT_EQ(BearingAirportWithoutILSCheck(b.approach(), b.now()), 90);
  EXPECT_EQ(b.approach().DestinationICAO, "ZZAA");
  EXPECT_EQ(b.approach().GlidePathFeetPerMile, 288);
  EXPECT_EQ(b.approach().DestinationElevation, 500);
  EXPECT_TRUE(b.ratings().VisualApproachActive);
  EXPECT_EQ(b.ratings().VisualRunwayLength, 8000);
}

struct Gathering {
  std::string name;
  bool ils = false;
  bool destination = false;
  std::vector<int> needles;  // glideslope needle by tick, localiser twice it
  double flareFeetHigh = 0;  // above the visual glide path at the flare
  int32_t gsSum, gsSamples, locSum, locSamples;
  int32_t visualGsSamples, visualLocSamples;
  bool heldILS, heldVisual;
};

TEST(ApproachRatingsOnFinal, SumsFromFiveHundredFeetToTheFlare) {
  const int32_t kNone = kNothingGathered;
  // clang-format off
  const std::vector<Gathering> rows = {
      {"ILS", true, false, {10, -20, 30}, 0, 60, 3, 120, 3, 0, 0, true, false},
      {"ILS, needle high at the flare", true, false, {10, 40}, 0, 50, 2, 100, 2, 0, 0, false, false},
      {"visual", false, true, {0, 0}, 0, kNone, 0, kNone, 0, 3, 3, false, true},
      {"visual, high at the flare", false, true, {0, 0}, 80, kNone, 0, kNone, 0, 3, 3, false, false},
      {"neither", false, false, {0, 0}, 0, kNone, 0, kNone, 0, 0, 0, false, false},
  };
  // clang-format on
  for (const Gathering& row : rows) {
    SCOPED_TRACE(row.name);
    Bench b;
    if (row.destination) b.Destination();
    b.ratings().ILSGlideslopeSum = 999;  // an earlier approach's
    Cockpit c = b.c();
    const auto tick = [&](double agl, double miles) {
      b.before() = b.now();
      b.now().AGL = agl;
      b.At(OnRunwayAxis(-miles));
      b.now().IndicatedAltitude = static_cast<int32_t>(500 + 288 * miles);
      GatherApproachRatings(c);
      b.flight().TickCount += 1;
    };
    b.now().AGL = 530;
    tick(510, 1.7);  // the opening
    EXPECT_EQ(b.approach().LastFiveHundredFeetTick, 1001);
    EXPECT_EQ(b.ratings().ILSGlideslopeSum, kNone);
    double agl = 500;
    for (size_t i = 0; i < row.needles.size(); ++i, agl -= 100) {
      b.now().Nav1GlideslopeAlive = row.ils;
      b.now().Nav1Glideslope = row.needles[i];
      b.now().Nav1Localiser = 2 * row.needles[i];
      tick(agl, agl / 288);
    }
    b.now().IndicatedAltitude += static_cast<int32_t>(row.flareFeetHigh);
    b.before() = b.now();
    b.now().AGL = 19;
    b.now().IndicatedAltitude = static_cast<int32_t>(500 + 19 + row.flareFeetHigh);
    b.At(OnRunwayAxis(-0.05));
    GatherApproachRatings(c);
    tick(10, 0);  // after the flare nothing more is gathered
    const ApproachRatings& r = b.ratings();
    EXPECT_EQ(r.ILSGlideslopeSum, row.gsSum);
    EXPECT_EQ(r.ILSGlideslopeSamples, row.gsSamples);
    EXPECT_EQ(r.ILSLocalizerSum, row.locSum);
    EXPECT_EQ(r.ILSLocalizerSamples, row.locSamples);
    EXPECT_EQ(r.VisualGlideslopeSamples, row.visualGsSamples);
    EXPECT_EQ(r.VisualLocalizerSamples, row.visualLocSamples);
    if (row.destination) {
      EXPECT_LT(r.VisualGlideslopeSum, 5 * row.visualGsSamples);  // flown on the path
      EXPECT_EQ(r.VisualLocalizerSum, 0);                         // and on the centre line
    }
    EXPECT_EQ(r.GlideslopeHeldAtFlare, row.heldILS);
    EXPECT_EQ(r.VisualGlideslopeHeldAtFlare, row.heldVisual);
  }
}

TEST(ApproachTouchdown, WhereTheWheelsMetTheRunway) {
  struct Row {
    std::string name;
    bool destination;
    double miles, feetNorth;
    double beyond;
    bool surface;
  };
  const std::vector<Row> rows = {
      {"1000 feet in, on the centre line", true, 1000 / kFeetPerNauticalMile, 0, 0.1646, true},
      {"1000 feet in, 70 feet off", true, 1000 / kFeetPerNauticalMile, 70, 0.1646, true},
      {"1000 feet in, 80 feet off", true, 1000 / kFeetPerNauticalMile, 80, 0.1646, false},
      {"300 feet short", true, -300 / kFeetPerNauticalMile, 0, -0.0494, false},
      {"past the far end", true, 8100 / kFeetPerNauticalMile, 0, 1.3331, false},
      {"no runway known", false, 0.1, 0, 0, false},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    Bench b;
    if (row.destination) b.Destination();
    b.At(OnRunwayAxis(row.miles, row.feetNorth));
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
  EXPECT_EQ(LoadRunwayFile(rig.instructor.world, file), "");
  ASSERT_TRUE(rig.instructor.world.RunwaysLoaded());

  rig.Ready();
  rig.Follow(CruiseAt(1500));
  rig.Mark();
  rig.Fly({.key = 7});
  EXPECT_EQ(rig.flight().approach.DestinationICAO, "ZZBB");
  EXPECT_EQ(rig.Texts("write", "offset"), "0x0C4E");
  EXPECT_EQ(rig.Texts("write", "bytes"), "6801");  // 360
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
