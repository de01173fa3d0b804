#include "engine/traffic.h"

#include <cmath>

#include "engine/rule_bench.h"
#include "engine/voice_actions.h"

namespace vantoro {
namespace {

constexpr double kLat = 47.25;
constexpr double kLon = 11.35;

// The traffic on the bench: a light aircraft heading north at 47.25 N
// 11.35 E, in the air at 3000 feet and 100 knots or taxiing at 10 knots.
struct Bench : RuleBench {
  Bench() {
    for (FSData* d : {&now(), &before()}) {
      d->Latitude = kLat;
      d->Longitude = kLon;
      d->Altitude = 3000;
      d->AGL = 3000;
      d->IAS = 100;
    }
  }
  // A target `feet` away at a clock position, in slot n of a table.
  TrafficSlot& Target(std::array<TrafficSlot, kTrafficSlots + 1>& table, int32_t& count, int n,
                      double clock, double feet) {
    const double bearing = clock * 30 * M_PI / 180;
    const double degrees = feet / 6076 / 60;
    TrafficSlot& t = table[static_cast<size_t>(n)];
    t.Latitude = kLat + degrees * std::cos(bearing);
    t.Longitude = kLon + degrees * std::sin(bearing) / std::cos(kLat * M_PI / 180);
    t.Altitude = 3000;
    t.State = kStateEnroute;
    t.Ident = "N123";
    count = std::max(count, n);
    return t;
  }
  TrafficSlot& Air(int n, double clock, double feet) {
    return Target(link().AirTraffic, link().AirTrafficCount, n, clock, feet);
  }
  TrafficSlot& Ground(int n, double clock, double feet) {
    TrafficSlot& t = Target(link().GroundTraffic, link().GroundTrafficCount, n, clock, feet);
    t.State = kStateTaxiingOut;
    t.GS = 10;
    return t;
  }
  void Taxiing(int gs = 10) {
    now().OnGround = 1;
    now().GS = gs;
  }
  // The last sample saw target n at this distance.
  void Before(int n, double feet) {
    rig.instructor.traffic.NearestAirIndex = n;
    rig.instructor.traffic.NearestAirDistance = feet;
  }
};

using B = Bench&;

// clang-format off
TEST(Traffic, WhatThePilotHearsInTheAir) {
  CheckRules<Bench>({
      {"an empty list says nothing", [](B) {}, ""},
      {"exactly 3 o'clock within 1000 feet: let it pass",
       [](B b) { b.Air(1, 3, 800); b.Before(1, 900); }, "TrafficAirDangerLetItPassUs.wav"},
      {"6 o'clock within 1000 feet", [](B b) { b.Air(1, 6, 800); b.Before(1, 900); }, "TrafficAirDangerLetItPassUs.wav"},
      {"12 o'clock within 1000 feet: pass right", [](B b) { b.Air(1, 0, 800); b.Before(1, 900); }, "TrafficAirDangerPassRight.wav"},
      {"crossing 10 x IAS feet", [](B b) { b.Air(1, 1, 990); b.Before(1, 1010); },
       "TrafficAirDangerPassRight.wav TrafficAirDanger1.wav"},
      {"crossing 15 x IAS feet", [](B b) { b.Air(1, 1, 1490); b.Before(1, 1510); }, "TrafficAirDanger2.wav"},
      {"crossing 30 x IAS feet", [](B b) { b.Air(1, 1, 2990); b.Before(1, 3100); }, "TrafficAirDanger3.wav"},
      {"crossing 50 x IAS feet", [](B b) { b.Air(1, 1, 4990); b.Before(1, 5010); }, "TrafficAirDanger4.wav"},
      {"between the marks, still closing", [](B b) { b.Air(1, 1, 2000); b.Before(1, 2100); }, ""},
      {"moving away across a mark", [](B b) { b.Air(1, 1, 3100); b.Before(1, 2990); }, ""},
      {"a new target is described", [](B b) {
         TrafficSlot& t = b.Air(1, 5, 20000); t.Ident = "B738 12"; t.Altitude = 3500; t.VS = 800;
       }, "5.wav OClock.wav High.wav 737.wav IsClimbing.wav"},
      {"a new target below, in the pattern", [](B b) {
         TrafficSlot& t = b.Air(2, 11, 20000); t.State = kStateInPattern; t.Altitude = 1500; b.Before(1, 30000);
       }, "11.wav OClock.wav Low.wav Aircraft.wav IsInThePattern.wav"},
      {"a new target level, cruising, told once in 15 seconds", [](B b) {
         b.Air(1, 9, 20000); b.Before(2, 30000);
         Cockpit c = b.c(); ProcessTCASAir(c); b.mark = b.rig.events.events.size(); b.Before(2, 30000);
       }, ""},
      {"the nearer of two", [](B b) { b.Air(1, 2, 30000); b.Air(2, 9, 20000); b.Before(2, 25000); }, ""},
      {"a target rolling out is no traffic", [](B b) { b.Air(1, 0, 800).State = kStateRollingOut; }, ""},
      {"beyond the slots in use", [](B b) { b.Air(3, 0, 800); b.link().AirTrafficCount = 2; }, ""},
      {"below 300 feet nothing is said", [](B b) { b.Air(1, 0, 800); b.now().AGL = 250; }, ""},
      {"before the tables have filled", [](B b) { b.Air(1, 0, 800); b.flight().TickCount = 22; }, ""},
  }, ProcessTCASAir);
  // "Traffic": the nearest target called now, gap or not, and not described
  // a second time by the monitor that follows in the same tick.
  CheckRules<Bench>({
      {"nothing in the table", [](B) {}, "negative.wav"},
      {"the nearer of two, low and descending", [](B b) {
         TrafficSlot& t = b.Air(2, 2, 20000); t.Ident = "A320 7"; t.Altitude = 2000; t.VS = -700; b.Air(1, 9, 30000);
       }, "2.wav OClock.wav Low.wav A320.wav IsDescending.wav"},
      {"described a moment ago: called all the same", [](B b) {
         b.Air(1, 9, 20000); Cockpit c = b.c(); ProcessTCASAir(c); b.mark = b.rig.events.events.size();
       }, "9.wav OClock.wav Aircraft.wav IsCruising.wav"},
      {"one rolling out is not called", [](B b) { b.Air(1, 0, 800).State = kStateRollingOut; }, "negative.wav"},
      {"taxiing: the ground table, no high or low", [](B b) {
         b.Taxiing(); b.Ground(1, 0, 400).Altitude = 3010; b.Air(2, 3, 300);
       }, "12.wav OClock.wav Aircraft.wav IsTaxiingOut.wav"},
  }, [](Cockpit& c) { c.flight.VoiceAction = 103; VoiceHotKeyAction(c); ProcessTCASAir(c); });
}

TEST(Traffic, WhatThePilotHearsTaxiing) {
  CheckRules<Bench>({
      {"ahead at 90 feet: danger close", [](B b) { b.Taxiing(); b.Ground(1, 0, 90); }, "TrafficGroundDangerClose.wav"},
      {"11 o'clock at 90 feet", [](B b) { b.Taxiing(); b.Ground(1, 11, 90); }, "TrafficGroundDangerClose.wav"},
      {"1 o'clock at 140 feet: more spacing", [](B b) { b.Taxiing(); b.Ground(1, 1, 140); }, "TrafficGroundMoreSpacing.wav"},
      {"ahead at 160 feet: enough", [](B b) { b.Taxiing(); b.Ground(1, 0, 160); }, ""},
      {"a heavy wants 300 feet", [](B b) { b.Taxiing(); b.link().HeavyAircraft = true; b.Ground(1, 0, 250); }, "TrafficGroundMoreSpacing.wav"},
      {"a heavy at 190 feet: danger close", [](B b) { b.Taxiing(); b.link().HeavyAircraft = true; b.Ground(1, 0, 190); }, "TrafficGroundDangerClose.wav"},
      {"2 o'clock is not ahead", [](B b) { b.Taxiing(); b.Ground(1, 2, 90); }, ""},
      {"both standing still", [](B b) { b.Taxiing(0); b.Ground(1, 0, 90).GS = 0; }, ""},
      {"we stand, it moves", [](B b) { b.Taxiing(0); b.Ground(1, 0, 90); }, "TrafficGroundDangerClose.wav"},
      {"it takes off fast: not in the way", [](B b) {
         b.Taxiing(); TrafficSlot& t = b.Ground(1, 0, 90); t.State = kStateTakingOff; t.GS = 60;
       }, ""},
      {"the nearest is the one to judge", [](B b) { b.Taxiing(); b.Ground(1, 0, 140); b.Ground(2, 4, 100); }, ""},
  }, ProcessTCASGround);
}
// clang-format on

TEST(Traffic, TheKindOfAircraftAndWhatItDoes) {
  const struct {
    const char* word;
    const char* phrase;
  } types[] = {
      {"B738", "737.wav"},
      {"b747", "747.wav"},
      {"B721", "727.wav"},
      {"B350", "KingAir.wav"},
      {"KINGAIR", "Aircraft.wav"},
      {"A320", "A320.wav"},
      {"A319", "Airbus.wav"},
      {"C208", "CESSNA.wav"},
      {"C172", "CESSNA172.wav"},
      {"DC-9", "DC9.wav"},
      {"BA46", "BritishAerospace.wav"},
      {"", "BritishAerospace.wav"},
      {"F100", "Aircraft.wav"},
  };
  for (const auto& t : types) EXPECT_EQ(TrafficTypePhrase(t.word), t.phrase) << t.word;

  const struct {
    int32_t state, vs;
    const char* activity;
  } doing[] = {
      {kStateInPattern, 900, "IsInThePattern.wav"},
      {kStateEnroute, 300, "IsClimbing.wav"},
      {kStateEnroute, -300, "IsDescending.wav"},
      {kStateEnroute, 200, "IsCruising.wav"},
      {kStateDeparting, 0, "JustTookOff.wav"},
      {kStateLanding, 0, "IsLanding.wav"},
      {kStateGoingAround, 0, "IsThereSoLetsKeepAnEyeOnHim.wav"},
  };
  for (const auto& d : doing) {
    TrafficSlot t;
    t.State = d.state;
    t.VS = d.vs;
    EXPECT_EQ(TrafficActivityPhrase(t), d.activity) << d.state;
  }
  // Every state from sleeping to taxiing in has its phrase but the three
  // told by what the aircraft does: en route, in the pattern, going around.
  int said = 0;
  for (int32_t s = kStateSleeping; s <= kStateTaxiingIn; ++s)
    said += !TrafficStatePhrase(s).empty();
  EXPECT_EQ(said, 14);
  EXPECT_EQ(TrafficStatePhrase(kStateSleeping), "IsParked.wav");
  EXPECT_EQ(TrafficStatePhrase(kStateRollingOut), "JustLanded.wav");
  EXPECT_EQ(TrafficStatePhrase(kStateInitialising), "");
}

}  // namespace
}  // namespace vantoro
