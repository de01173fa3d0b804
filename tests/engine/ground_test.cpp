#include <functional>

#include "engine/flight_rig.h"

namespace vantoro {
namespace {

// The simulator's values the ground rules read, at their offsets and units.
// Ground speed travels in whole metres a second: 20 knots reads 19, 10 reads
// 10, 14 reads 14, 23 reads 23, 2 reads 2.
void Slip(FlightRig& r, int ball) {
  r.image.SetU8(0x036E, static_cast<uint8_t>(ball));
}
void Throttle(FlightRig& r, int raw) {
  r.image.SetU16(0x088C, static_cast<uint16_t>(raw));
}
void Brake(FlightRig& r, bool on) {
  r.image.SetU8(0x0BCA, on);
}
void ParkingBrake(FlightRig& r, bool on) {
  r.image.SetU8(0x0BC8, on);
}
void Heading(FlightRig& r, int deg) {
  r.image.SetU16(0x0582, static_cast<uint16_t>(deg * 65536 / 360));
}
void IAS(FlightRig& r, int kt) {
  r.image.SetU16(0x02BC, static_cast<uint16_t>(kt * 128));
}
void Flaps(FlightRig& r, int raw) {
  r.image.SetU16(0x30F0, static_cast<uint16_t>(raw));
}
void Elevator(FlightRig& r, int v) {
  r.image.SetI16(0x0BB2, static_cast<int16_t>(v));
}
void Aileron(FlightRig& r, int v) {
  r.image.SetI16(0x0BB6, static_cast<int16_t>(v));
}
void Rudder(FlightRig& r, int v) {
  r.image.SetI16(0x0BBA, static_cast<int16_t>(v));
}
void Wind(FlightRig& r, int from, int kt) {
  r.image.SetU16(0x0EF2, static_cast<uint16_t>(from * 182));
  r.image.SetU16(0x0EF0, static_cast<uint16_t>(kt));
  r.image.SetU16(0x0E90, static_cast<uint16_t>(kt));
}
void EngineFailed(FlightRig& r) {
  r.image.SetU8(0x0B6B, 1);
}

using Change = std::function<void(FlightRig&)>;

// A case: the aircraft and options before connecting, the state reached
// before the mark, then the change and the ticks that are judged.
struct Case {
  const char* what;
  Change before, arrange, act;
  std::string queued, remarks, counts;
  int ticks = 1;
  const char* modes = "";  // the mode changes
};

// "file/level" of each remark since the mark.
std::string Remarks(const FlightRig& rig) {
  std::string out;
  for (const Event& e : rig.Since("remark"))
    out += (out.empty() ? "" : "|") + e.Text("file") + "/" + std::to_string(e.Int("level"));
  return out;
}

void Judge(const std::vector<Case>& cases) {
  for (const Case& k : cases) {
    SCOPED_TRACE(k.what);
    FlightRig rig;
    if (k.before) k.before(rig);
    rig.Ready();
    if (k.arrange) k.arrange(rig);
    rig.Tick();
    rig.Mark();
    k.act(rig);
    rig.Tick(k.ticks);
    EXPECT_EQ(rig.Queued(), k.queued);
    EXPECT_EQ(Remarks(rig), k.remarks);
    EXPECT_EQ(rig.Texts("count", "name"), k.counts);
    EXPECT_EQ(rig.Modes(), k.modes);
  }
}

const Change kTakeOffMode = [](FlightRig& r) { r.Fly({.key = 7}); };
// A stall speed of 50 knots: late rotation above 57.5, nearly there above 52.5.
const Change kRotation = [](FlightRig& r) {
  r.instructor.aircraft.StallCruise = 50;
  r.Fly({.key = 7});
};
const Change kHeavy = [](FlightRig& r) { r.Heavy(true); };

// clang-format off
TEST(GroundRules, TurnsReverseSpoilersAndTheTakeOffRoll) {
  Judge({
      {"rough turn at 15 knots", {}, {}, [](FlightRig& r) { r.GS(15); Slip(r, 121); },
       "GentleTurnsOnGround.wav", "GentleTurnsOnGround.wav/2", "RoughTurnsOnGround"},
      {"held for ten ticks: one occasion", {}, {}, [](FlightRig& r) { r.GS(15); Slip(r, -125); },
       "GentleTurnsOnGround.wav", "GentleTurnsOnGround.wav/2", "RoughTurnsOnGround", 10},
      {"a little sharp", {}, {}, [](FlightRig& r) { r.GS(15); Slip(r, 115); },
       "AmberGentleTurnsOnGround.wav", "AmberGentleTurnsOnGround.wav/1", ""},
      {"sharpest turn at 10 knots", {}, {}, [](FlightRig& r) { r.GS(10); Slip(r, 127); }, "", "", ""},
      {"reverse at 20 knots, heavy", kHeavy, {}, [](FlightRig& r) { r.GS(20); Throttle(r, 61440); },
       "ReverseThrustOffPlease.wav", "ReverseThrustOffPlease.wav/1", ""},
      {"reverse at 20 knots, light", {}, {}, [](FlightRig& r) { r.GS(20); Throttle(r, 61440); },
       "", "", ""},
      {"spoilers out taxiing", {}, {}, [](FlightRig& r) { r.image.SetU16(0x0BD0, 4800); },
       "RetractSpoilers.wav", "RetractSpoilers.wav/1", ""},
      {"spoilers of a C182", [](FlightRig& r) { r.AirFile("SimObjects\\Airplanes\\C182\\c182.air"); },
       {}, [](FlightRig& r) { r.image.SetU16(0x0BD0, 4800); }, "", "", ""},
      {"braking on the take-off roll", {}, [](FlightRig& r) { r.Fly({.key = 7, .gs = 40}); },
       [](FlightRig& r) { r.GS(38); Brake(r, true); },
       "WhyBrakeDuringTakeOff.wav", "WhyBrakeDuringTakeOff.wav/2", "BrakeDuringTakeOff"},
      {"7 degrees off the take-off heading", {}, kTakeOffMode,
       [](FlightRig& r) { r.GS(20); Heading(r, 7); },
       "PoorTakeOffSteering.wav", "PoorTakeOffSteering.wav/2", "PoorTakeOffSteering"},
      {"5 degrees off", {}, kTakeOffMode, [](FlightRig& r) { r.GS(20); Heading(r, 355); },
       "AmberPoorTakeOffSteering.wav", "AmberPoorTakeOffSteering.wav/1", ""},
      {"7 degrees off at 2 knots", {}, kTakeOffMode, [](FlightRig& r) { r.GS(2); Heading(r, 7); },
       "", "", ""},
      {"past rotation speed", {}, kRotation, [](FlightRig& r) { r.GS(50); IAS(r, 58); },
       "OKLetsRotate.wav", "OKLetsRotate.wav/2", "LateRotation"},
      {"nearing rotation speed", {}, kRotation, [](FlightRig& r) { r.GS(50); IAS(r, 53); },
       "AmberOKLetsRotate.wav", "AmberOKLetsRotate.wav/1", ""},
      {"rotating", {}, kRotation, [](FlightRig& r) { r.GS(50); IAS(r, 58); r.Pitch(3); },
       "", "", ""},
      {"a jet knows its rotate speed",
       [](FlightRig& r) { r.AirFile("SimObjects\\Airplanes\\CRJ700\\crj.air"); },
       [](FlightRig& r) {
         r.instructor.aircraft.Monitoring.Boeing[static_cast<size_t>(MainBox(AircraftType::CRJ700))] = true;
         kRotation(r);
       },
       [](FlightRig& r) { r.GS(50); IAS(r, 58); }, "", "", ""},
  });
}

TEST(GroundRules, TaxiSpeedFlapsWindAndBrakes) {
  const Change from20 = [](FlightRig& r) { r.GS(20); };
  const Change flapsOut = [](FlightRig& r) { Flaps(r, 2000); };
  Judge({
      {"35-knot taxi becomes a take-off", {}, {}, [](FlightRig& r) { r.GS(35); },
       "AmberTaxiSlower.wav", "AmberTaxiSlower.wav/1", "", 1, "TakeOff"},
      {"30 knots: amber before red", {}, {}, [](FlightRig& r) { r.GS(30); },
       "AmberTaxiSlower.wav|TaxiSlower.wav", "AmberTaxiSlower.wav/1|TaxiSlower.wav/2", "TaxiTooFast"},
      {"30 knots for ten seconds", {}, {}, [](FlightRig& r) { r.GS(30); },
       "AmberTaxiSlower.wav|TaxiSlower.wav", "AmberTaxiSlower.wav/1|TaxiSlower.wav/2", "TaxiTooFast",
       20},
      {"23 knots", {}, {}, [](FlightRig& r) { r.GS(23); },
       "AmberTaxiSlower.wav", "AmberTaxiSlower.wav/1", ""},
      {"flaps out at 7 knots", {}, flapsOut, [](FlightRig& r) { r.GS(7); },
       "FlapsUpDuringTaxi.wav", "FlapsUpDuringTaxi.wav/2", "FlapsNotUpDuringTaxi"},
      {"flaps out at 4 knots", {}, flapsOut, [](FlightRig& r) { r.GS(4); },
       "AMBERFlapsUpDuringTaxi.wav", "AMBERFlapsUpDuringTaxi.wav/1", ""},
      {"flaps out at 12 knots", {}, flapsOut, [](FlightRig& r) { r.GS(12); }, "", "", ""},
      {"flaps allowed down in the taxi", {},
       [](FlightRig& r) { r.instructor.aircraft.Raw.FlapsDownDuringTaxi = true; Flaps(r, 2000); },
       [](FlightRig& r) { r.GS(7); }, "", "", ""},
      {"tail wind, elevator neutral", {}, [](FlightRig& r) { Wind(r, 180, 10); },
       [](FlightRig& r) { r.GS(5); }, "TaxiInWindWithElevatorDown.wav",
       "TaxiInWindWithElevatorDown.wav/2", "NotTaxiInWindWithElevatorDown"},
      {"head wind, nose wheel, elevator up", {}, [](FlightRig& r) { Wind(r, 0, 10); },
       [](FlightRig& r) { r.GS(5); Elevator(r, 8000); }, "TaxiInWindWithElevatorNeutral.wav",
       "TaxiInWindWithElevatorNeutral.wav/2", "NotTaxiInWindWithElevatorUp"},
      {"head wind, tail wheel, elevator neutral", [](FlightRig& r) { r.image.SetU8(0x0790, 1); },
       [](FlightRig& r) { Wind(r, 0, 10); }, [](FlightRig& r) { r.GS(5); },
       "TaxiInWindWithElevatorUp.wav", "TaxiInWindWithElevatorUp.wav/2",
       "NotTaxiInWindWithElevatorUp"},
      {"wind from the left front", {}, [](FlightRig& r) { Wind(r, 315, 10); },
       [](FlightRig& r) { r.GS(5); }, "TaxiInWindWithLeftAileronUp.wav",
       "TaxiInWindWithLeftAileronUp.wav/2", "NotTaxiInWindWithLeftAileronUp"},
      {"wind from the right front, aileron into it", {}, [](FlightRig& r) { Wind(r, 45, 10); },
       [](FlightRig& r) { r.GS(5); Aileron(r, -13000); }, "", "", ""},
      {"wind from the right rear", {}, [](FlightRig& r) { Wind(r, 135, 10); },
       [](FlightRig& r) { r.GS(5); Elevator(r, 7000); }, "TaxiInWindWithLeftAileronUp.wav",
       "TaxiInWindWithLeftAileronUp.wav/2", "NotTaxiInWindWithLeftAileronUp"},
      {"a 4-knot wind", {}, [](FlightRig& r) { Wind(r, 180, 4); }, [](FlightRig& r) { r.GS(5); },
       "", "", ""},
      {"throttle against the brakes", {}, [](FlightRig& r) { r.GS(23); },
       [](FlightRig& r) { Brake(r, true); Throttle(r, 5000); }, "DontTaxiWithThrottleAndBrakes.wav",
       "DontTaxiWithThrottleAndBrakes.wav/2", "TaxiWithThrottleAndBrakes"},
      {"the same with an engine failed", {}, [](FlightRig& r) { r.GS(23); EngineFailed(r); },
       [](FlightRig& r) { Brake(r, true); Throttle(r, 5000); }, "", "", ""},
      {"braking 9 knots a tick", {}, from20, [](FlightRig& r) { r.GS(10); Brake(r, true); },
       "ShouldntHaveToRideTheBreaks.wav", "ShouldntHaveToRideTheBreaks.wav/2", "RideBrakes"},
      {"braking 5 knots a tick", {}, from20, [](FlightRig& r) { r.GS(14); Brake(r, true); },
       "AmberShouldntHaveToRideTheBreaks.wav", "AmberShouldntHaveToRideTheBreaks.wav/1", ""},
      {"slowing 9 knots without brakes", {}, from20, [](FlightRig& r) { r.GS(10); }, "", "", ""},
  });
}

TEST(GroundRules, TheControlCheckWhenStopped) {
  const Change up = [](FlightRig& r) { Elevator(r, 10000); };
  const Change full = [](FlightRig& r) { Aileron(r, 13000); Rudder(r, 9000); Flaps(r, 2000); };
  const Change rudderWatched = [](FlightRig& r) { r.instructor.options.RudderController = true; };
  Judge({
      {"elevator up then down", {}, up, [](FlightRig& r) { Elevator(r, -13000); },
       "ElevatorCheckComplete.wav", "", ""},
      {"elevator down then up", {}, [](FlightRig& r) { Elevator(r, -13000); }, up,
       "ElevatorCheckComplete.wav", "", ""},
      {"elevator up only", {}, {}, up, "", "", ""},
      {"while rolling", {}, [](FlightRig& r) { r.GS(3); Elevator(r, 10000); },
       [](FlightRig& r) { Elevator(r, -13000); }, "", "", ""},
      {"ailerons, rudder, flaps", {}, full,
       [](FlightRig& r) { Aileron(r, -13000); Rudder(r, -9000); Flaps(r, 0); },
       "FlapsCheckComplete.wav|AileronCheckComplete.wav", "", ""},
      {"with a rudder controller", rudderWatched, full,
       [](FlightRig& r) { Aileron(r, -13000); Rudder(r, -9000); },
       "AileronCheckComplete.wav|RudderCheckComplete.wav", "", ""},
  });
}
// Down on the runway at 60 knots in Landing, touchdown recorded.
void LandOn(FlightRig& rig) {
  rig.Follow(LandingAt(300));
  rig.Tick(31);  // the mode sounds of the approach have had their gap
  rig.Fly({.onGround = 1, .agl = 0, .gs = 60, .ticks = 2});
}

TEST(GroundRules, TheLandedFlightEndsAsThePilotChose) {
  struct Row { int when; bool brake, engineOff; int32_t afterTaxi, afterStop; };
  const std::vector<Row> rows = {
      {kEndFlightWhenStoppedOrTaxiing, false, false, 2, 2},
      {kEndFlightWhenBrakeSet, false, false, 1, 1},
      {kEndFlightWhenBrakeSet, true, false, 1, 2},
      {kEndFlightWhenShutDown, true, false, 1, 1},
      {kEndFlightWhenShutDown, false, true, 1, 1},
      {kEndFlightWhenShutDown, true, true, 1, 2},
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
    ParkingBrake(rig, row.brake);
    rig.Engine(!row.engineOff);
    rig.Fly({.gs = 0, .ticks = 3});
    EXPECT_EQ(rig.flight().CurrentFlight, row.afterStop);
    const bool ended = row.afterStop == 2;
    EXPECT_EQ(rig.Queued(), ended ? (row.afterTaxi == 2 ? "StartingANewFlight.wav|Taxiing.wav"
                                                        : "Taxiing.wav|StartingANewFlight.wav")
                                  : "Taxiing.wav");
  }
}

TEST(GroundRules, ATouchAndGoClosesTheFlightAndTakesOffAgain) {
  struct Row { const char* what; Change before; int throttle; bool ends; };
  const std::vector<Row> rows = {
      {"power up", {}, 14000, true},
      {"idle", {}, 2000, false},
      {"heavy aircraft", kHeavy, 14000, false},
      {"engine failed", EngineFailed, 14000, false},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.what);
    FlightRig rig;
    rig.Ready();
    if (row.before) row.before(rig);
    LandOn(rig);
    rig.Mark();
    Throttle(rig, row.throttle);
    rig.Fly({.gs = 62});
    EXPECT_EQ(rig.flight().CurrentFlight, row.ends ? 2 : 1);
    EXPECT_EQ(rig.Modes(), "");
    EXPECT_EQ(rig.Messages(), "");
    rig.Fly({.onGround = 0, .agl = 20, .gs = 70});
    EXPECT_EQ(rig.Modes(), row.ends ? "TakeOff" : "");
    EXPECT_FALSE(rig.flight().TouchAndGoInProgress);
  }
}

TEST(GroundRules, RollOutOffTheCourseCountsEachTick) {
  FlightRig rig;
  rig.Ready();
  LandOn(rig);
  rig.Mark();
  Heading(rig, 10);
  rig.Fly({.gs = 40, .ticks = 4});
  EXPECT_EQ(rig.stats().PoorGroundSteeringAfterLanding, 4);
  EXPECT_EQ(rig.Queued(), "");
}

TEST(GroundRules, TheTakeOffIsAnnounced) {
  const Change key7 = [](FlightRig& r) { r.instructor.PressHotKey(7); };
  const Change runway = [](FlightRig& r) {
    WorldState& w = r.instructor.world;
    Runway east;
    east.Number = "08L";
    east.Latitude = 47.255;
    east.Longitude = 11.34;
    w.Runways.push_back(east);
    w.Places.push_back(PlaceOf(47.255, 11.34));
    w.RunwayCells[47][11].push_back(0);
  };
  const Change tailWindClear = [](FlightRig& r) {
    Wind(r, 180, 10);
    r.image.SetU16(0x0E8A, 1200);
  };
  const std::string kCalm = "VisibilityIs.wav|VeryBad.wav|Wind.wav|Calm.wav";
  Judge({
      {"calm, no runways", {}, {}, key7, "TakeOff.wav|TeachLightTakeOffPower.wav|" + kCalm, "", "", 1,
       "TakeOff"},
      {"tail wind, clear, on a known runway", {}, [&](FlightRig& r) { runway(r); tailWindClear(r); },
       key7,
       "NotFacingIntoWind.wav|TakeOff.wav|runway.wav|0.wav|8.wav|left.wav|"
       "TeachLightTakeOffPower.wav|VisibilityIs.wav|1.wav|2.wav|Miles.wav|"
       "Wind.wav|1.wav|8.wav|0.wav|At.wav|1.wav|0.wav",
       "NotFacingIntoWind.wav/1", "", 1, "TakeOff"},
      {"north wind", {}, [](FlightRig& r) { Wind(r, 0, 5); }, key7,
       "TakeOff.wav|TeachLightTakeOffPower.wav|VisibilityIs.wav|VeryBad.wav|"
       "Wind.wav|3.wav|6.wav|0.wav|At.wav|5.wav", "", "", 1, "TakeOff"},
      {"heavy", kHeavy, {}, key7, "TakeOff.wav|TeachTOGA.wav|" + kCalm, "", "", 1, "TakeOff"},
      {"no teaching", [](FlightRig& r) { r.instructor.options.TeachingOn = false; }, {}, key7,
       "TakeOff.wav|" + kCalm, "", "", 1, "TakeOff"},
  });
}

// clang-format on

}  // namespace
}  // namespace vantoro
