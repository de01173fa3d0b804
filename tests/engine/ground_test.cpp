#include <functional>

#include "engine/flight_rig.h"

namespace vantoro {
namespace {

constexpr int N = -99999;  // a value left as it is

// What the aircraft does, in the simulator's units at its offsets; N leaves a
// value alone. Ground speed travels in whole metres a second: 20 knots reads
// 19, 10 reads 10, 14 reads 14, 23 reads 23, 2 reads 2.
struct Sim {
  int key = 0, gs = N, slip = N, throttle = N, brake = N, parkingBrake = N, heading = N, ias = N,
      pitch = N, flaps = N, elevator = N, aileron = N, rudder = N, windFrom = N, windKt = N,
      spoilers = N, heavy = N, tailWheel = N, engineFailed = N, stallCruise = N, jet = N;
};

void Apply(FlightRig& r, const Sim& s) {
  auto set = [&](int v, auto write) {
    if (v != N) write(v);
  };
  OffsetImage& m = r.image;
  if (s.key != 0) r.instructor.PressHotKey(s.key);
  set(s.gs, [&](int v) { r.GS(v); });
  set(s.slip, [&](int v) { m.SetU8(0x036E, static_cast<uint8_t>(v)); });
  set(s.throttle, [&](int v) { m.SetU16(0x088C, static_cast<uint16_t>(v)); });
  set(s.brake, [&](int v) { m.SetU8(0x0BCA, static_cast<uint8_t>(v)); });
  set(s.parkingBrake, [&](int v) { m.SetU8(0x0BC8, static_cast<uint8_t>(v)); });
  set(s.heading, [&](int v) { m.SetU16(0x0582, static_cast<uint16_t>(v * 65536 / 360)); });
  set(s.ias, [&](int v) { m.SetU16(0x02BC, static_cast<uint16_t>(v * 128)); });
  set(s.pitch, [&](int v) { r.Pitch(v); });
  set(s.flaps, [&](int v) { m.SetU16(0x30F0, static_cast<uint16_t>(v)); });
  set(s.elevator, [&](int v) { m.SetI16(0x0BB2, static_cast<int16_t>(v)); });
  set(s.aileron, [&](int v) { m.SetI16(0x0BB6, static_cast<int16_t>(v)); });
  set(s.rudder, [&](int v) { m.SetI16(0x0BBA, static_cast<int16_t>(v)); });
  set(s.windFrom, [&](int v) { m.SetU16(0x0EF2, static_cast<uint16_t>(v * 182)); });
  set(s.windKt, [&](int v) {
    m.SetU16(0x0EF0, static_cast<uint16_t>(v));
    m.SetU16(0x0E90, static_cast<uint16_t>(v));
  });
  set(s.spoilers, [&](int v) { m.SetU16(0x0BD0, static_cast<uint16_t>(v)); });
  set(s.heavy, [&](int v) { r.Heavy(v != 0); });
  set(s.tailWheel, [&](int v) { m.SetU8(0x0790, static_cast<uint8_t>(v)); });
  set(s.engineFailed, [&](int v) { m.SetU8(0x0B6B, static_cast<uint8_t>(v)); });
  set(s.stallCruise, [&](int v) { r.instructor.aircraft.StallCruise = v; });
  set(s.jet, [&](int) {
    r.instructor.aircraft.Monitoring.Boeing[static_cast<size_t>(MainBox(AircraftType::CRJ700))] =
        true;
  });
}

// A case: the aircraft's folder, the state reached before the mark, the
// change judged over `ticks`; what was queued, the remarks' levels, the
// counters raised and the mode changes.
struct Case {
  const char* what;
  Sim arrange, act;
  std::string queued, levels, counts;
  int ticks = 1;
  std::string modes = "";
  const char* folder = nullptr;
};

std::string Levels(const FlightRig& rig) {
  std::string out;
  for (const Event& e : rig.Since("remark"))
    out += (out.empty() ? "" : "|") + std::to_string(e.Int("level"));
  return out;
}

void Judge(const std::vector<Case>& cases, const std::function<void(FlightRig&)>& options = {}) {
  for (const Case& k : cases) {
    SCOPED_TRACE(k.what);
    FlightRig rig;
    if (k.folder) rig.AirFile(std::string("SimObjects\\Airplanes\\") + k.folder + "\\a.air");
    rig.Ready();
    if (options) options(rig);
    Apply(rig, k.arrange);
    rig.Tick();
    rig.Mark();
    Apply(rig, k.act);
    rig.Tick(k.ticks);
    EXPECT_EQ(rig.Queued(), k.queued);
    EXPECT_EQ(Levels(rig), k.levels);
    EXPECT_EQ(rig.Texts("count", "name"), k.counts);
    EXPECT_EQ(rig.Modes(), k.modes);
  }
}

// Rotation judged against a stall speed of 50: late above 57.5, nearly there above 52.5.
constexpr Sim kRoll{.key = 7, .stallCruise = 50};

// clang-format off
TEST(GroundRules, TurnsReverseSpoilersAndTheTakeOffRoll) {
  Judge({
      {"rough turn held ten ticks: one occasion", {}, {.gs = 15, .slip = 121},
       "GentleTurnsOnGround.wav", "2", "RoughTurnsOnGround", 10},
      {"a little sharp, the other way", {}, {.gs = 15, .slip = -115}, "AmberGentleTurnsOnGround.wav", "1", ""},
      {"sharpest turn at 10 knots", {}, {.gs = 10, .slip = 127}, "", "", ""},
      {"reverse, heavy", {.heavy = 1}, {.gs = 20, .throttle = 61440}, "ReverseThrustOffPlease.wav", "1", ""},
      {"spoilers out", {}, {.spoilers = 4800}, "RetractSpoilers.wav", "1", ""},
      {"spoilers of a C182", {}, {.spoilers = 4800}, "", "", "", 1, "", "C182"},
      {"braking on the roll", {.key = 7, .gs = 40}, {.gs = 38, .brake = 1},
       "WhyBrakeDuringTakeOff.wav", "2", "BrakeDuringTakeOff"},
      {"7 degrees off heading", {.key = 7}, {.gs = 20, .heading = 7},
       "PoorTakeOffSteering.wav", "2", "PoorTakeOffSteering"},
      {"5 degrees off", {.key = 7}, {.gs = 20, .heading = 355}, "AmberPoorTakeOffSteering.wav", "1", ""},
      {"past rotation speed", kRoll, {.gs = 50, .ias = 58}, "OKLetsRotate.wav", "2", "LateRotation"},
      {"nearing it", kRoll, {.gs = 50, .ias = 53}, "AmberOKLetsRotate.wav", "1", ""},
      {"rotating", kRoll, {.gs = 50, .ias = 58, .pitch = 3}, "", "", ""},
      {"a jet, whose own calls take over", {.key = 7, .stallCruise = 50, .jet = 1}, {.gs = 50, .ias = 58}, "CRJ700\\TakeOffThrottle.wav|CRJ700\\RotationSpeed.wav", "", "", 1, "", "CRJ700"},
  });
}

TEST(GroundRules, TaxiSpeedFlapsWindAndBrakes) {
  const Sim tailWind{.windFrom = 180, .windKt = 10}, headWind{.windFrom = 0, .windKt = 10};
  Judge({
      {"35-knot taxi becomes a take-off", {}, {.gs = 35}, "AmberTaxiSlower.wav", "1", "", 1, "TakeOff"},
      {"30 knots for ten seconds", {}, {.gs = 30},
       "AmberTaxiSlower.wav|TaxiSlower.wav", "1|2", "TaxiTooFast", 20},
      {"flaps out at 7 knots", {.flaps = 2000}, {.gs = 7}, "FlapsUpDuringTaxi.wav", "2", "FlapsNotUpDuringTaxi"},
      {"flaps out at 4 knots", {.flaps = 2000}, {.gs = 4}, "AMBERFlapsUpDuringTaxi.wav", "1", ""},
      {"tail wind, elevator neutral", tailWind, {.gs = 5},
       "TaxiInWindWithElevatorDown.wav", "2", "NotTaxiInWindWithElevatorDown"},
      {"head wind, nose wheel, elevator up", headWind, {.gs = 5, .elevator = 8000},
       "TaxiInWindWithElevatorNeutral.wav", "2", "NotTaxiInWindWithElevatorUp"},
      {"head wind, tail wheel, elevator neutral", {.windFrom = 0, .windKt = 10, .tailWheel = 1}, {.gs = 5},
       "TaxiInWindWithElevatorUp.wav", "2", "NotTaxiInWindWithElevatorUp"},
      {"wind from the left front", {.windFrom = 315, .windKt = 10}, {.gs = 5},
       "TaxiInWindWithLeftAileronUp.wav", "2", "NotTaxiInWindWithLeftAileronUp"},
      {"right front, aileron into it", {.windFrom = 45, .windKt = 10}, {.gs = 5, .aileron = -13000}, "", "", ""},
      {"a 4-knot tail wind", {.windFrom = 180, .windKt = 4}, {.gs = 5}, "", "", ""},
      {"throttle against the brakes", {.gs = 23}, {.throttle = 5000, .brake = 1},
       "DontTaxiWithThrottleAndBrakes.wav", "2", "TaxiWithThrottleAndBrakes"},
      {"braking 9 knots a tick", {.gs = 20}, {.gs = 10, .brake = 1},
       "ShouldntHaveToRideTheBreaks.wav", "2", "RideBrakes"},
      {"braking 5 knots a tick", {.gs = 20}, {.gs = 14, .brake = 1},
       "AmberShouldntHaveToRideTheBreaks.wav", "1", ""},
  });
  Judge({{"flaps allowed down in the taxi", {.flaps = 2000}, {.gs = 7}, "", "", ""}},
        [](FlightRig& r) { r.instructor.aircraft.Raw.FlapsDownDuringTaxi = true; });
}

TEST(GroundRules, TheControlCheckWhenStopped) {
  const Sim full{.flaps = 2000, .aileron = 13000, .rudder = 9000};
  const Sim back{.flaps = 0, .aileron = -13000, .rudder = -9000};
  const std::string both = "FlapsCheckComplete.wav|AileronCheckComplete.wav";
  Judge({
      {"elevator up, down", {.elevator = 10000}, {.elevator = -13000}, "ElevatorCheckComplete.wav", "", ""},
      {"elevator up only", {}, {.elevator = 10000}, "", "", ""},
      {"while rolling", {.gs = 3, .elevator = 10000}, {.elevator = -13000}, "", "", ""},
      {"flaps, ailerons; rudder unwatched", full, back, both, "", ""},
  });
  Judge({{"rudder watched", full, back, both + "|RudderCheckComplete.wav", "", ""}},
        [](FlightRig& r) { r.instructor.options.RudderController = true; });
}

TEST(GroundRules, TheTakeOffIsAnnounced) {
  const std::string light = "TakeOff.wav|TeachLightTakeOffPower.wav|";
  const std::string calm = "VisibilityIs.wav|VeryBad.wav|Wind.wav|Calm.wav";
  Judge({
      {"calm, no runways", {}, {.key = 7}, light + calm, "", "", 1, "TakeOff"},
      {"heavy", {.heavy = 1}, {.key = 7}, "TakeOffFlapsPerhaps.wav|TakeOff.wav|TeachTOGA.wav|" + calm, "", "", 1, "TakeOff"},
  });
  Judge({{"tail wind, 12 miles, on a known runway", {.windFrom = 180, .windKt = 10}, {.key = 7},
          "NotFacingIntoWind.wav|TakeOff.wav|runway.wav|0.wav|8.wav|left.wav|TeachLightTakeOffPower.wav|"
          "VisibilityIs.wav|1.wav|2.wav|Miles.wav|Wind.wav|1.wav|8.wav|0.wav|At.wav|1.wav|0.wav",
          "1", "", 1, "TakeOff"}},
        [](FlightRig& r) {
          Runway east;
          east.Number = "08L";
          east.Latitude = 47.255;
          east.Longitude = 11.34;
          r.instructor.world.Runways.push_back(east);
          r.instructor.world.Places.push_back(PlaceOf(47.255, 11.34));
          r.instructor.world.RunwayCells[47][11].push_back(0);
          r.image.SetU16(0x0E8A, 1200);  // visibility
        });
}

// Down on the runway at 60 knots in Landing, touchdown recorded.
void LandOn(FlightRig& rig) {
  rig.Follow(LandingAt(300));
  rig.Tick(31);  // the mode sounds of the approach have had their gap
  rig.Fly({.onGround = 1, .agl = 0, .gs = 60, .ticks = 2});
}

TEST(GroundRules, TheLandedFlightEndsAsThePilotChose) {
  struct Row { int when, brake, engineOff, afterTaxi, afterStop; std::string queued; };
  const std::vector<Row> rows = {
      {kEndFlightWhenStoppedOrTaxiing, 0, 0, 2, 2, "StartingANewFlight.wav|Taxiing.wav"},
      {kEndFlightWhenBrakeSet, 0, 0, 1, 1, "Taxiing.wav"},
      {kEndFlightWhenBrakeSet, 1, 0, 1, 2, "Taxiing.wav|StartingANewFlight.wav"},
      {kEndFlightWhenShutDown, 1, 0, 1, 1, "Taxiing.wav"},
      {kEndFlightWhenShutDown, 0, 1, 1, 1, "Taxiing.wav|ParkingBrakeOn.wav"},
      {kEndFlightWhenShutDown, 1, 1, 1, 2, "Taxiing.wav|StartingANewFlight.wav"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(testing::Message() << row.when << row.brake << row.engineOff);
    FlightRig rig;
    rig.instructor.options.EndFlightWhen = row.when;
    rig.Ready();
    LandOn(rig);
    rig.Mark();
    rig.Fly({.gs = 14});
    EXPECT_EQ(rig.flight().CurrentFlight, row.afterTaxi);
    Apply(rig, {.parkingBrake = row.brake});
    rig.Engine(row.engineOff == 0);
    rig.Fly({.gs = 0, .ticks = 3});
    EXPECT_EQ(rig.flight().CurrentFlight, row.afterStop);
    EXPECT_EQ(rig.Queued(), row.queued);
  }
}

TEST(GroundRules, ATouchAndGoClosesTheFlightAndTakesOffAgain) {
  struct Row { const char* what; Sim before; int throttle; bool ends; };
  const std::vector<Row> rows = {
      {"power up", {}, 14000, true},
      {"idle", {}, 2000, false},
      {"heavy aircraft", {.heavy = 1}, 14000, false},
      {"engine failed", {.engineFailed = 1}, 14000, false},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.what);
    FlightRig rig;
    rig.Ready();
    Apply(rig, row.before);
    LandOn(rig);
    rig.Mark();
    Apply(rig, {.gs = 62, .throttle = row.throttle});
    rig.Tick();
    EXPECT_EQ(rig.flight().CurrentFlight, row.ends ? 2 : 1);
    EXPECT_EQ(rig.Modes() + rig.Messages(), "");
    rig.Fly({.onGround = 0, .agl = 20, .gs = 70});
    EXPECT_EQ(rig.Modes(), row.ends ? "TakeOff" : "");
  }
}

TEST(GroundRules, RollOutOffTheCourseCountsEachTick) {
  FlightRig rig;
  rig.Ready();
  LandOn(rig);
  Apply(rig, {.gs = 40, .heading = 10});
  rig.Tick(4);
  EXPECT_EQ(rig.stats().PoorGroundSteeringAfterLanding, 4);
}
// clang-format on

}  // namespace
}  // namespace vantoro
