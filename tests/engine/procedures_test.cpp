// The aircraft procedures as the pilot meets them: each row puts one type in
// one situation (the two samples of the tick, the flight mode, the switches)
// and names everything the procedures then say, count, show and write.
#include "engine/procedures.h"

#include <functional>

#include "engine/flight_rig.h"
#include "engine/procedures/procedure_rules.h"

namespace vantoro {
namespace {

// The procedures on the bench: connected, tick 1001, parked on the ground in
// Taxiing with everything off; a case names the aircraft and sets the two
// samples. Nothing moves between the samples unless the case moves it.
struct Bench {
  FlightRig rig;

  Bench() {
    rig.instructor.Connect();
    flight().TickCount = 1001;
    flight().Modes = {.Taxiing = true};
    for (FSData* d : {&now(), &before()}) {
      d->OnGround = 1;
      d->Eng1PropLever = d->Eng2PropLever = 16383;
      d->Eng1MixtureLever = d->Eng2MixtureLever = 16383;
      d->Eng1CowlFlaps = d->Eng2CowlFlaps = 1;
      d->Eng1Throttle = 3000;
      d->OutsideAirTemp = d->TotalAirTemp = 15;
      d->ElevatorTrim = -4000;  // the 737's take-off band
      d->FlightDirector = 1;
      d->Flag341C = true;  // no smoking sign
      d->Lights = procedures::kPanelLights;
      d->RadioPower2 = true;  // avionics
      d->YawDamper = true;
      d->APAltitudeBug = 5000;
      d->APSpeedBug = 150;
    }
  }
  Cockpit c() { return rig.instructor.cockpit(); }
  FSData& now() { return rig.instructor.link.Now(); }
  FSData& before() { return rig.instructor.link.Records[rig.instructor.link.PreviousRecord]; }
  FlightState& flight() { return rig.instructor.flight; }
  AircraftValues& aircraft() { return rig.instructor.aircraft; }
  void Both(const std::function<void(FSData&)>& set) {
    set(now());
    set(before());
  }
  // The aircraft of this folder and title, with its monitoring box checked.
  void Type(AircraftType t, const std::string& folder, const std::string& title) {
    Both([&](FSData& d) {
      d.AirFile = "SimObjects\\Airplanes\\" + folder + "\\a.air";
      d.AircraftTitle = title;
    });
    Cockpit k = c();
    SetAircraftTypeOptions(aircraft(), IdentityOf(k));
    aircraft().Monitoring.Boeing[static_cast<size_t>(MainBox(t))] = true;
  }
  void B737() { Type(AircraftType::B737, "B737_800", "Boeing 737-800"); }
  void C172() { Type(AircraftType::C172, "C172", "Cessna Skyhawk 172SP"); }
  // Flap positions in degrees and their speeds, as the profile gives them.
  void Flaps(std::vector<std::pair<double, int>> positions) {
    AircraftValues& a = aircraft();
    for (size_t i = 0; i < positions.size(); ++i) {
      a.FlapAngleLimit[i + 1] = static_cast<int32_t>(positions[i].first * 256 + 10);
      a.FlapSpeedLimit[i + 1] = positions[i].second;
    }
    for (size_t i = positions.size() + 1; i <= kFlapPositions; ++i) {
      a.FlapAngleLimit[i] = a.FlapAngleLimit[i - 1];
      a.FlapSpeedLimit[i] = a.FlapSpeedLimit[i - 1];
    }
  }
  void Airborne(double agl) {
    Both([&](FSData& d) {
      d.OnGround = 0;
      d.AGL = agl;
      d.Altitude = static_cast<int32_t>(agl);
    });
  }
  // Climbing or descending 10 feet a tick to `agl`.
  void Through(double agl, int step) {
    Airborne(agl - step);
    now().AGL = agl;
    now().Altitude = static_cast<int32_t>(agl);
  }
  void Mode(FlightMode m) {
    flight().Modes = {.Taxiing = m == FlightMode::Taxiing,
                      .TakeOff = m == FlightMode::TakeOff,
                      .Cruise = m == FlightMode::Cruise,
                      .Landing = m == FlightMode::Landing};
  }
  // Landed after a flight and taxiing in.
  void TaxiingIn() {
    Mode(FlightMode::Taxiing);
    flight().HasTouchedDown = true;
    flight().Flight().TookOff = true;
  }
  // Left and right main tanks in pounds (a gallon weighing a pound).
  void Fuel(double left, double right) {
    Both([&](FSData& d) {
      d.FuelLbLeftMain = left;
      d.FuelLbRightMain = right;
    });
  }
  void Heavy() { rig.instructor.link.HeavyAircraft = true; }

  // What the pilot got, in order: files queued, counters raised (+name),
  // simulator writes and messages ('text').
  std::string Outcome() const {
    std::string out;
    for (size_t i = mark; i < rig.events.events.size(); ++i) {
      const Event& e = rig.events.events[i];
      std::string item;
      if (e.type == "queued") item = e.Text("file");
      if (e.type == "count") item = "+" + e.Text("name");
      if (e.type == "write") item = e.Text("offset") + "=" + e.Text("bytes");
      if (e.type == "message") item = "'" + e.Text("text") + "'";
      if (!item.empty()) out += (out.empty() ? "" : " ") + item;
    }
    return out;
  }
  size_t mark = 0;
};

using B = Bench&;

struct Case {
  const char* name;
  std::function<void(Bench&)> set;
  std::string outcome;
};

// Every procedure of the tick (the twelve places) once, on the case's samples.
void Check(const std::vector<Case>& rows) {
  for (const Case& row : rows) {
    SCOPED_TRACE(row.name);
    Bench b;
    row.set(b);
    b.mark = b.rig.events.events.size();
    Cockpit c = b.c();
    AircraftProcedures(c);
    CheckFlapSpeeds(c);
    CheckVno(c);
    EXPECT_EQ(b.Outcome(), row.outcome);
  }
}

// clang-format off
TEST(Procedures, TheGuardAndTheTypeBoxes) {
  Check({
      {"a 737 above its ceiling", [](B b) { b.B737(); b.now().IndicatedAltitude = 41001; }, "b737\\MaxAlt.wav"},
      {"at the ceiling exactly", [](B b) { b.B737(); b.now().IndicatedAltitude = 41000; }, ""},
      {"a 737 in a PMDG folder runs no 737 rule", [](B b) {
         b.Type(AircraftType::B737, "PMDG 737NGX", "Boeing 737-800"); b.now().IndicatedAltitude = 41001;
       }, ""},
      {"the 737's box unchecked", [](B b) {
         b.B737(); b.aircraft().Monitoring.Boeing[0] = false; b.now().IndicatedAltitude = 41001;
       }, ""},
      {"panel rules need the simulator's own panel", [](B b) {
         b.B737(); b.flight().SimulatorName = "FS2004"; b.Both([](FSData& d) { d.MasterBattery = true; d.Flag341C = false; });
       }, ""},
      {"no smoking sign off, battery on", [](B b) {
         b.B737(); b.Both([](FSData& d) { d.MasterBattery = true; d.Flag341C = false; d.Flag341D = true; });
       }, "b737\\NoSmokingOn.wav"},
  });
}

TEST(Procedures, The737FuelPumpsAndCrossfeed) {
  auto powered = [](B b) {
    b.B737();
    b.Both([](FSData& d) { d.MasterBattery = true; d.Flag341D = true; });
  };
  Check({
      {"left 500, right 1600, left pump on: balance from the right", [=](B b) {
         powered(b); b.Fuel(500, 1600); b.Both([](FSData& d) { d.Eng1FuelPump = d.Eng2FuelPump = true; });
       }, "b737\\FuelPumpLeftOffRightOnCrossOpen.wav"},
      {"already balancing: left off, right on, crossfeed open", [=](B b) {
         powered(b); b.Fuel(500, 1600); b.Both([](FSData& d) { d.Eng2FuelPump = true; d.Flag341F = true; });
       }, ""},
      {"right 500, left 1600", [=](B b) {
         powered(b); b.Fuel(1600, 500); b.Both([](FSData& d) { d.Eng1FuelPump = d.Eng2FuelPump = true; });
       }, "b737\\FuelPumpLeftOnRightOffCrossOpen.wav"},
      {"balanced, both pumps off", [=](B b) { powered(b); b.Fuel(3000, 3000); }, "b737\\FuelPumpOn.wav"},
      {"balanced, right pump off", [=](B b) {
         powered(b); b.Fuel(3000, 3000); b.Both([](FSData& d) { d.Eng1FuelPump = true; });
       }, "b737\\FuelPumpRightOn.wav"},
      {"balanced, pumps on, crossfeed left open", [=](B b) {
         powered(b); b.Fuel(3000, 3000); b.Both([](FSData& d) { d.Eng1FuelPump = d.Eng2FuelPump = true; d.Flag341F = true; });
       }, "b737\\CrossfeedOff.wav"},
      {"both tanks dry, pumps on", [=](B b) {
         powered(b); b.Fuel(0, 1); b.Both([](FSData& d) { d.Eng1FuelPump = d.Eng2FuelPump = true; });
       }, "b737\\FuelPumpOff.wav"},
      {"battery off: no pump advice", [](B b) { b.B737(); b.Fuel(500, 1600); }, ""},
  });
}

TEST(Procedures, The737FromStartToStop) {
  Check({
      {"starter to start, battery on: oil pressure", [](B b) {
         b.B737(); b.Both([](FSData& d) { d.MasterBattery = true; d.Flag341D = true; });
         b.Fuel(3000, 3000); b.Both([](FSData& d) { d.Eng1FuelPump = d.Eng2FuelPump = true; });
         b.now().Eng1StarterSwitch = 1;
       }, "b737\\CheckOilPressure.wav"},
      {"rolling with no take-off flap", [](B b) {
         b.B737(); b.Both([](FSData& d) { d.GS = 5; d.Eng1Combustion = true; d.Eng1Generator = true; });
       }, "b737\\TakeOffFlapsTooLittle.wav b737\\PitotHeatOn.wav"},
      {"rolling with flaps 25", [](B b) {
         b.B737(); b.Both([](FSData& d) { d.GS = 5; d.Eng1Combustion = true; d.Eng1Generator = true; d.FlapsLeft = 25 * 256; d.PitotHeat = true; });
       }, "b737\\TakeOffFlapsTooMuch.wav"},
      {"engines spooled to 30 percent on the brakes", [](B b) {
         b.B737(); b.Mode(FlightMode::TakeOff);
         b.Both([](FSData& d) { d.FlapsLeft = 5 * 256; d.ParkingBrake = true; d.Eng1N1 = d.Eng2N1 = 30; });
       }, "b737\\N1SpoolTo40ThenBrakesOff.wav"},
      {"45 percent and still on the brakes", [](B b) {
         b.B737(); b.Mode(FlightMode::TakeOff);
         b.Both([](FSData& d) { d.FlapsLeft = 5 * 256; d.ParkingBrake = true; d.Eng1N1 = d.Eng2N1 = 45; });
       }, "b737\\ParkingBrakesOff.wav"},
      {"take-off roll through 5 and 33 knots", [](B b) {
         b.B737(); b.Mode(FlightMode::TakeOff); b.Both([](FSData& d) { d.FlapsLeft = 5 * 256; });
         b.before().GS = 4; b.now().GS = 34;
       }, "b737\\TakeOffThrottle.wav b737\\RotationSpeed.wav"},
      {"yaw damper off on the roll", [](B b) {
         b.B737(); b.Mode(FlightMode::TakeOff); b.Both([](FSData& d) { d.FlapsLeft = 5 * 256; d.YawDamper = false; });
       }, "b737\\YawDamperOn.wav 'Yaw damper is OFF. You need to press Ctrl D to turn ON.'"},
      {"shut down at the gate, fuel levers left open", [](B b) {
         b.B737(); b.TaxiingIn();
         b.Both([](FSData& d) { d.ParkingBrake = true; d.Eng1FuelValve = true; d.Lights = 0; d.FlightDirector = 0; d.AutoBrake = 1; });
       }, "b737\\FuelControlLeversOff.wav"},
      {"taxiing in with the flight director on", [](B b) {
         b.B737(); b.TaxiingIn();
       }, "ParkingBrakeOn.wav b737\\FDOff.wav b737\\AutoBrakeOff.wav"},
      {"cold day, both engines running, anti-ice off", [](B b) {
         b.B737();
         b.Both([](FSData& d) {
           d.MasterBattery = d.Flag341D = true; d.OutsideAirTemp = 5;
           d.Eng1Combustion = d.Eng2Combustion = d.Eng1Generator = d.Eng2Generator = true;
           d.Eng1FuelFlow = d.Eng2FuelFlow = 3000; d.PitotHeat = true; d.FuelLbLeftMain = d.FuelLbRightMain = 3000;
           d.Eng1FuelPump = d.Eng2FuelPump = true; d.AutoBrake = 1;
         });
       }, "b737\\EngineAntiIceOn.wav"},
      {"fuel lever to run works the mixture", [](B b) { b.B737(); b.now().Eng1FuelValve = true; }, "0x0891=40"},
  });
}

TEST(Procedures, The737InFlight) {
  auto flying = [](B b, double agl) {
    b.B737(); b.Airborne(agl);
    b.Both([](FSData& d) {
      d.MasterBattery = d.Flag341D = d.AutopilotOn = true; d.Eng1Combustion = d.Eng2Combustion = true;
      d.Eng1Generator = d.Eng2Generator = d.PitotHeat = true; d.Eng1FuelFlow = d.Eng2FuelFlow = 3000;
      d.Eng1FuelPump = d.Eng2FuelPump = true; d.FuelLbLeftMain = d.FuelLbRightMain = 3000;
      d.IAS = 240; d.APAltitudeHold = d.APHeadingHold = d.APAirspeedHold = 1; d.Altitude = 12000;
      d.TotalAirTemp = 20; d.AutoThrottleArm = 1;
    });
  };
  Check({
      {"quiet in a good cruise", [=](B b) { flying(b, 9000); b.Mode(FlightMode::Cruise); }, ""},
      {"270 knots below 10,000", [=](B b) { flying(b, 9000); b.Mode(FlightMode::Cruise); b.Both([](FSData& d) { d.Altitude = 9000; d.IAS = 270; }); },
       "b737\\IASOver250Below10000MSL.wav"},
      {"flaps out above 20,000", [=](B b) { flying(b, 21000); b.Mode(FlightMode::Cruise); b.Both([](FSData& d) { d.IndicatedAltitude = 21000; d.FlapsLeft = 1280; }); },
       "b737\\MaxAltFlaps.wav"},
      {"autopilot on without heading mode, box checked", [=](B b) {
         flying(b, 5000); b.Mode(FlightMode::Cruise); b.aircraft().Monitoring.Boeing[1] = true;
         b.Both([](FSData& d) { d.APHeadingHold = 0; });
       }, "b737\\EngageMCPHeading.wav"},
      {"the heading reminder repeats at the reminder interval", [=](B b) {
         flying(b, 5000); b.Mode(FlightMode::Cruise); b.aircraft().Monitoring.Boeing[1] = true;
         b.Both([](FSData& d) { d.APHeadingHold = 0; });
         b.rig.instructor.sound.LastPlayed[96] = 1001 - 59;  // said 59 ticks ago: 60 is the default gap
       }, ""},
      {"flaps still out at 2,200 feet in the climb", [=](B b) {
         flying(b, 2200); b.Mode(FlightMode::TakeOff); b.Both([](FSData& d) { d.FlapsLeft = 1280; d.IAS = 200; });
       }, "b737\\FlapsUp.wav"},
      {"descending through 250 feet", [=](B b) { flying(b, 260); b.Mode(FlightMode::Landing); b.Through(250, -10);
         b.Both([](FSData& d) { d.AutopilotOn = false; d.SpoilersArmed = true; d.AutoBrake = 3; d.IAS = 140; }); },
       "b737\\FlareAdvice.wav"},
      {"landing heavy", [=](B b) { flying(b, 1500); b.Mode(FlightMode::Landing); b.Heavy();
         b.rig.instructor.link.TotalWeightTons = 75;
         b.Both([](FSData& d) { d.SpoilersArmed = true; d.AutoBrake = 3; d.APApproachHold = 1; d.IAS = 180; }); },
       "b737\\LandingWeightTooHeavy.wav"},
      {"spoilers not armed on the approach", [=](B b) { flying(b, 1500); b.Mode(FlightMode::Landing);
         b.Both([](FSData& d) { d.AutoBrake = 3; d.APApproachHold = 1; d.IAS = 180; }); },
       "b737\\ArmTheSpoilers.wav"},
      {"icing in the climb: wing and both engines", [=](B b) { flying(b, 5000); b.Mode(FlightMode::Cruise);
         b.Both([](FSData& d) { d.TotalAirTemp = 0; }); },
       "b737\\WingAntiIceAirOn.wav b737\\EngineAntiIceOn.wav"},
  });
}

TEST(Procedures, TakeOffSpeedsOfTheJets) {
  auto rolling = [](B b) {
    b.B737(); b.Heavy(); b.Mode(FlightMode::TakeOff); b.aircraft().StallCruise = 140;
    b.Both([](FSData& d) { d.FlapsLeft = 5 * 256; d.GS = 60; });
  };
  Check({
      {"through 77 knots", [=](B b) { rolling(b); b.before().IAS = 76; b.now().IAS = 78; }, "80Kts.wav"},
      {"through V1 - 3 (V1 filled from the stall speed: 135)", [=](B b) { rolling(b); b.before().IAS = 131; b.now().IAS = 132; }, "V1.wav"},
      {"the box the pilot filled wins", [=](B b) { rolling(b); b.rig.instructor.procedures.V1 = 150; b.before().IAS = 131; b.now().IAS = 132; }, ""},
      {"a light aircraft hears no call", [](B b) { b.C172(); b.Mode(FlightMode::TakeOff); b.before().IAS = 76; b.now().IAS = 78; }, ""},
  });
}

TEST(Procedures, WhatTheOtherJetsDoDifferently) {
  // A Twin Otter in the landing mode, full flap (37 degrees) out.
  auto otterLanding = [](B b, double agl, int32_t ias) {
    b.Type(AircraftType::TwinOtter, "Aerosoft_DHC6_300", "DHC-6 Twin Otter"); b.Flaps({{10, 135}, {20, 99}, {30, 97}, {37.5, 97}});
    b.Airborne(agl); b.Mode(FlightMode::Landing);
    b.Both([=](FSData& d) { d.FlapsLeft = 37 * 256; d.IAS = ias; d.Eng1Combustion = d.Eng2Combustion = true; d.PitotHeat = true; });
  };
  Check({
      {"a 757 flies to 42,000", [](B b) { b.Type(AircraftType::B757, "B757", "Boeing 757"); b.now().IndicatedAltitude = 41500; }, ""},
      {"and no higher", [](B b) { b.Type(AircraftType::B757, "B757", "Boeing 757"); b.now().IndicatedAltitude = 42001; }, "b757\\MaxAlt.wav"},
      {"a 757 spools to 60 on the brakes", [](B b) {
         b.Type(AircraftType::B757, "B757", "Boeing 757"); b.Mode(FlightMode::TakeOff);
         b.Both([](FSData& d) { d.FlapsLeft = 5 * 256; d.ParkingBrake = true; d.Eng1N1 = d.Eng2N1 = 50; });
       }, "b757\\N1SpoolTo60ThenBrakesOff.wav"},
      {"a Lear 45 rotates at 33 knots of ground speed", [](B b) {
         b.Type(AircraftType::Lear45, "Learjet 45", "Learjet 45"); b.Mode(FlightMode::TakeOff);
         b.Both([](FSData& d) { d.FlapsLeft = 10 * 256; d.APSpeedBug = 150; }); b.before().GS = 30; b.now().GS = 33;
       }, "Lear45\\RotationSpeed.wav"},
      {"a CRJ700 rotates at 22", [](B b) {
         b.Type(AircraftType::CRJ700, "CRJ700", "Bombardier CRJ 700"); b.Mode(FlightMode::TakeOff);
         b.Both([](FSData& d) { d.FlapsLeft = 8 * 256; }); b.before().GS = 21; b.now().GS = 22;
       }, "CRJ700\\RotationSpeed.wav"},
      {"a CRJ700 with flaps at 16,000", [](B b) {
         b.Type(AircraftType::CRJ700, "CRJ700", "Bombardier CRJ 700"); b.Airborne(15000); b.Mode(FlightMode::Cruise);
         b.Both([](FSData& d) { d.IndicatedAltitude = 16000; d.FlapsLeft = 1280; d.Eng1Combustion = d.Eng2Combustion = true;
                                d.Eng1Generator = d.Eng2Generator = true; d.AutopilotOn = true; d.TotalAirTemp = 20;
                                d.AutoThrottleArm = 1; d.PitotHeat = true; });
       }, "CRJ700\\MaxAltFlaps.wav"},
      {"a CRJ700 gives no balance advice with the crossfeed", [](B b) {
         b.Type(AircraftType::CRJ700, "CRJ700", "Bombardier CRJ 700");
         b.Both([](FSData& d) { d.MasterBattery = true; d.Flag341D = true; d.Eng1FuelPump = d.Eng2FuelPump = true; });
         b.Fuel(500, 1600);
       }, ""},
      {"a Twin Otter on one engine above 11,600", [](B b) {
         b.Type(AircraftType::TwinOtter, "Aerosoft_DHC6_300", "DHC-6 Twin Otter"); b.Airborne(11000); b.Mode(FlightMode::Cruise);
         b.Both([](FSData& d) { d.IndicatedAltitude = 12000; d.Eng1Combustion = true; d.TotalAirTemp = 20; });
       }, "TwinOtter\\MaxAltOneEngine.wav TwinOtter\\PitotHeatOn.wav TwinOtter\\APOn.wav"},
      {"the float Otter's take-off weight", [](B b) {
         b.Type(AircraftType::TwinOtter, "Aerosoft_DHC6_100_FLOAT", "DHC-6 Twin Otter");
         b.Both([](FSData& d) { d.MasterBattery = true; d.Flag341D = true; });
         b.rig.instructor.link.TotalWeightTons = 5.9;
       }, "TwinOtter\\WeightExceedsMTOW_DHC6_100_FLOAT.wav"},
      {"the -300 Otter carries that weight", [](B b) {
         b.Type(AircraftType::TwinOtter, "Aerosoft_DHC6_300", "DHC-6 Twin Otter");
         b.Both([](FSData& d) { d.MasterBattery = true; d.Flag341D = true; });
         b.rig.instructor.link.TotalWeightTons = 5.9;
       }, ""},
      {"the Otter's fourth flap below 200 feet at 18 knots", [=](B b) { otterLanding(b, 150, 18); }, "TwinOtter\\FlapsSpeed4.wav"},
      {"the Otter's fourth flap at 17 knots is within its limit", [=](B b) { otterLanding(b, 150, 17); }, ""},
      {"the Otter's fourth flap at 200 feet is not judged", [=](B b) { otterLanding(b, 200, 18); }, ""},
      {"a DC3 over its weight", [](B b) {
         b.Type(AircraftType::DC3, "Douglas DC-3", "Douglas DC-3"); b.Both([](FSData& d) { d.MasterBattery = true; });
         b.rig.instructor.link.TotalWeightTons = 13.2; b.aircraft().FlapAngleLimit[1] = 2570;
       }, "DC3\\zPro_WeightExceedsMaxTaxi.wav DC3\\zPro_WeightExceedsMTOW.wav"},
  });
}

TEST(Procedures, TheCessna172) {
  auto c172 = [](B b) { b.C172(); b.Flaps({{10, 110}, {20, 85}, {30, 85}}); };
  Check({
      {"starter engaged, battery off, brake off, valve closed", [=](B b) {
         c172(b); b.now().Eng1StarterSwitch = 4; b.before().Eng1StarterSwitch = 3;
       }, "c172\\MasterBatteryOn.wav c172\\ParkingBrakeOn.wav c172\\EngineFuelValve1On.wav c172\\FuelPumpOn.wav"},
      {"magnetos to both with the battery off", [=](B b) { c172(b); b.now().Eng1StarterSwitch = 3; },
       "c172\\MasterBatteryOn.wav"},
      {"the A2A Cessna keeps its own battery and fuel", [](B b) {
         b.Type(AircraftType::C172, "A2A_C172", "Cessna Skyhawk 172"); b.now().Eng1StarterSwitch = 4; b.before().Eng1StarterSwitch = 3;
         b.Both([](FSData& d) { d.Eng1Combustion = true; });
       }, "c172\\ParkingBrakeOn.wav c172\\FuelPumpOn.wav"},
      {"running on the battery with the alternator off", [=](B b) {
         c172(b); b.Both([](FSData& d) { d.MasterBattery = d.Eng1Combustion = true; });
       }, "c172\\Enginegeneratorswitch.wav"},
      {"the A2A Cessna runs its own alternator", [](B b) {
         b.Type(AircraftType::C172, "A2A_C172", "Cessna Skyhawk 172"); b.Both([](FSData& d) { d.MasterBattery = d.Eng1Combustion = true; });
       }, ""},
      {"a good start: nothing to say", [=](B b) {
         c172(b); b.Both([](FSData& d) { d.ParkingBrake = d.MasterBattery = d.Eng1FuelValve = d.Eng1FuelPump = true; });
         b.now().Eng1StarterSwitch = 4; b.before().Eng1StarterSwitch = 3;
       }, ""},
      {"the engine catches", [=](B b) {
         c172(b); b.Both([](FSData& d) { d.MasterBattery = d.Eng1Generator = true; }); b.now().Eng1Combustion = true;
       }, "c172\\CheckOilPressure.wav"},
      {"running with the alternator off", [=](B b) {
         c172(b); b.Both([](FSData& d) { d.MasterBattery = d.Eng1Combustion = true; });
       }, "c172\\Enginegeneratorswitch.wav"},
      {"engine fire", [=](B b) {
         c172(b); b.Both([](FSData& d) { d.Eng1Combustion = d.Eng1Generator = d.Eng1FuelValve = true; d.Engines = 1; });
         b.now().Eng1OnFire = true;
       }, "c172\\EngineOnFire1.wav c172\\EngineFuelValve1Off.wav"},
      {"battery on: the fuel state", [=](B b) { c172(b); b.now().MasterBattery = true; b.now().FuelPercent = 75; },
       "c172\\FuelOurTotalIsPercent.wav 70.WAV 5.wav c172\\Percent.wav"},
      {"take-off roll through 5 and 10 knots", [=](B b) { c172(b); b.Mode(FlightMode::TakeOff); b.before().GS = 4; b.now().GS = 11; b.Both([](FSData& d) { d.Eng1Throttle = 16383; }); },
       "c172\\TakeOffThrottle.wav c172\\RotationSpeed.wav"},
      {"take-off with 20 degrees of flap", [=](B b) { c172(b); b.Mode(FlightMode::TakeOff); b.Both([](FSData& d) { d.FlapsLeft = 20 * 256; }); },
       "c172\\TakeOffFlapsTooMuch.wav"},
      {"take-off with 10 degrees is fine", [=](B b) { c172(b); b.Mode(FlightMode::TakeOff); b.Both([](FSData& d) { d.FlapsLeft = 10 * 256; }); }, ""},
      {"climbing through 150 feet", [=](B b) { c172(b); b.Mode(FlightMode::TakeOff); b.Through(150, 10); }, "c172\\vx.wav"},
      {"climbing through 450 feet with flaps out", [=](B b) { c172(b); b.Mode(FlightMode::TakeOff); b.Through(520, 10); b.Both([](FSData& d) { d.FlapsLeft = 10 * 256; d.IAS = 70; }); },
       "c172\\FlapsUp.wav"},
      {"descending through 450 feet", [=](B b) { c172(b); b.Mode(FlightMode::Landing); b.Through(450, -10); }, "c172\\LandingSpeedAndRPM.wav"},
      {"above 129 knots", [=](B b) { c172(b); b.Airborne(3000); b.Mode(FlightMode::Cruise); b.before().IAS = 128; b.now().IAS = 130; }, "c172\\vno.wav"},
      {"on final at 100 knots with 20 degrees", [=](B b) { c172(b); b.Airborne(600); b.Mode(FlightMode::Landing); b.Both([](FSData& d) { d.FlapsLeft = 20 * 256; d.IAS = 100; }); },
       "TooFastForThatFlapsSetting.wav +ExceedFlaps c172\\FlapsSpeed2.wav"},
      {"first flaps at 115 knots", [=](B b) { c172(b); b.Airborne(600); b.Mode(FlightMode::Landing); b.Both([](FSData& d) { d.FlapsLeft = 10 * 256; d.IAS = 115; }); },
       "TooFastForFlaps.wav +ExceedFlaps c172\\FlapsSpeed1.wav"},
      {"20 degrees at 80 knots", [=](B b) { c172(b); b.Airborne(600); b.Mode(FlightMode::Landing); b.Both([](FSData& d) { d.FlapsLeft = 20 * 256; d.IAS = 80; }); }, ""},
      {"below 100 feet the flap speeds are not judged", [=](B b) { c172(b); b.Airborne(90); b.Mode(FlightMode::Landing); b.Both([](FSData& d) { d.FlapsLeft = 20 * 256; d.IAS = 100; }); }, ""},
  });
}

TEST(Procedures, ThePropellerTypesDoDifferently) {
  Check({
      {"a C152 primes up to three strokes", [](B b) {
         b.Type(AircraftType::C152, "C152", "Cessna 152"); b.Both([](FSData& d) { d.ParkingBrake = d.MasterBattery = true; });
         b.now().Eng1StarterSwitch = 4;
       }, "c152\\PrimeUpTo3Strokes.wav"},
      {"and no more", [](B b) {
         b.Type(AircraftType::C152, "C152", "Cessna 152"); b.Both([](FSData& d) { d.ParkingBrake = d.MasterBattery = true; d.Eng1PrimerLevel = 5; });
         b.now().Eng1StarterSwitch = 4;
       }, "c152\\PrimeNoMoreThan3Strokes.wav"},
      {"a C152 above 111 knots", [](B b) { b.Type(AircraftType::C152, "C152", "Cessna 152"); b.Airborne(3000); b.before().IAS = 110; b.now().IAS = 112; }, "c152\\vno.wav"},
      {"a C182 starts with its cowl flaps open", [](B b) {
         b.Type(AircraftType::C182, "C182", "Cessna Skylane 182"); b.Both([](FSData& d) { d.ParkingBrake = d.MasterBattery = d.Eng1FuelValve = d.Eng1FuelPump = true; d.Eng1CowlFlaps = 0; });
         b.now().Eng1StarterSwitch = 4;
       }, "c182\\zPro_CowlFlapsFullOpen.wav"},
      {"a Mooney takes off with its boost pump on", [](B b) {
         b.Type(AircraftType::Mooney, "Mooney Bravo", "Mooney M20M"); b.Mode(FlightMode::TakeOff); b.Both([](FSData& d) { d.Eng1Throttle = 16383; });
       }, "Mooney\\zPro_zPro_FuelPumpOn.wav"},
      {"a Caravan starts with the condition lever at cut off", [](B b) {
         b.Type(AircraftType::C208B, "C208B", "Cessna Caravan"); b.Both([](FSData& d) { d.ParkingBrake = d.MasterBattery = d.Eng1FuelPump = true; d.FuelSelector = 1; d.Eng1PropLever = 0; });
         b.now().Eng1StarterSwitch = 4;
       }, "c208B\\zPro_EngineFuelCutOff_On.wav"},
      {"a Baron levels off at 8,000 feet", [](B b) {
         b.Type(AircraftType::Baron, "Beech_Baron_58", "Beechcraft Baron 58"); b.Airborne(7000); b.Mode(FlightMode::Cruise);
         b.Both([](FSData& d) { d.Altitude = 8000; d.Eng1CowlFlaps = d.Eng2CowlFlaps = 0; }); b.before().Altitude = 4990; b.now().Altitude = 5010;
       }, "BaronB58\\zPro_HighCruise.wav"},
      {"a Baron's cowl flaps closed for the taxi", [](B b) {
         b.Type(AircraftType::Baron, "Beech_Baron_58", "Beechcraft Baron 58"); b.Both([](FSData& d) { d.Eng1CowlFlaps = 0.5; });
       }, "BaronB58\\zPro_CowlFlapsFullOpen.wav"},
      {"a King Air's second engine runs with its generator off", [](B b) {
         b.Type(AircraftType::KingAir350, "Beech_King_Air_350", "Beech King Air 350");
         b.Both([](FSData& d) { d.MasterBattery = d.Eng1Generator = d.Eng1Combustion = d.Eng2Combustion = true; });
       }, "BeechKingAir350\\zPro_EnginegeneratorSwitch2On.wav BeechKingAir350\\zPro_Enginegeneratorswitch.wav"},
      {"a King Air on the approach with the propellers back", [](B b) {
         b.Type(AircraftType::KingAir350, "Beech_King_Air_350", "Beech King Air 350"); b.Airborne(1500); b.Mode(FlightMode::Landing);
         b.Both([](FSData& d) { d.Eng1PropLever = 10000; d.Altitude = 3500; });
       }, "BeechKingAir350\\zPro_PropLeverLanding.wav"},
      {"a DC3 on the approach with its left pump off", [](B b) {
         b.Type(AircraftType::DC3, "Douglas DC-3", "Douglas DC-3"); b.Airborne(1500); b.Mode(FlightMode::Landing);
         b.Both([](FSData& d) { d.Eng2FuelPump = true; d.Altitude = 3500; d.Eng1CowlFlaps = d.Eng2CowlFlaps = 0.5; });
       }, "DC3\\zPro_FuelPumpLeftOn.wav"},
  });
}

TEST(Procedures, SingleRules) {
  Check({
      {"carb heat off on the approach", [](B b) {
         b.C172(); b.aircraft().Monitoring.Boeing[15] = true; b.Airborne(1500); b.Mode(FlightMode::Landing);
         b.Both([](FSData& d) { d.Eng1Combustion = true; });
       }, "c152\\CarbHeatOn.wav"},
      {"carb heat left on in the cruise", [](B b) {
         b.C172(); b.aircraft().Monitoring.Boeing[15] = true; b.Airborne(3000); b.Mode(FlightMode::Cruise);
         b.Both([](FSData& d) { d.Eng1Combustion = true; d.Eng1Primer = true; });
       }, "c152\\CarbHeatOff.wav"},
      {"no carb heat advice without the box", [](B b) {
         b.C172(); b.Airborne(1500); b.Mode(FlightMode::Landing); b.Both([](FSData& d) { d.Eng1Combustion = true; });
       }, ""},
      {"the parking brake set at 10 knots", [](B b) { b.C172(); b.Both([](FSData& d) { d.ParkingBrake = true; d.GS = 10; }); },
       "ParkingBrakeSetWhilstMoving.wav"},
      {"much too fast on final", [](B b) { b.C172(); b.aircraft().StallLanding = 45; b.Airborne(500); b.Mode(FlightMode::Landing); b.Both([](FSData& d) { d.IAS = 95; }); },
       "LandMuchSlowerOrFlyMissedApproach.wav"},
      {"the advice explained, with the aviation tips wanted", [](B b) {
         b.B737(); b.now().IndicatedAltitude = 41001;
         b.rig.instructor.sound.CaptionTable[CaptionKey(InstructorPath(b.rig.instructor.sound, "b737\\MaxAlt.wav"))] = "Too high.";
       }, "b737\\MaxAlt.wav 'Too high.'"},
  });
}
TEST(Procedures, The737AutoBrakesAPUAndDestination) {
  auto powered = [](B b) {
    b.B737();
    b.Both([](FSData& d) { d.MasterBattery = d.Flag341D = true; d.Eng1FuelPump = d.Eng2FuelPump = true; });
    b.Fuel(3000, 3000);
  };
  auto approach = [=](B b, int runwayLength) {
    powered(b); b.Airborne(2500); b.Mode(FlightMode::Landing);
    b.Both([](FSData& d) { d.SpoilersArmed = true; d.IAS = 180; d.AutoThrottleArm = 1; d.Eng1Combustion = d.Eng2Combustion = true;
                           d.Eng1Generator = d.Eng2Generator = d.PitotHeat = true; d.Eng1FuelFlow = d.Eng2FuelFlow = 3000; d.AutoBrake = 1;
                           d.AutopilotOn = true; d.APApproachHold = 1; });
    b.rig.instructor.plan.FlightPlanDestination = "EGLL";
    DestinationRunway& d = b.flight().approach.Destination;
    d.Set = true;
    d.runway.Width = 150;
    d.runway.Length = runwayLength;
    d.runway.Surface = "ASPHALT";
  };
  Check({
      {"lined up with the auto brake off", [=](B b) { powered(b); b.Mode(FlightMode::TakeOff); b.Both([](FSData& d) { d.FlapsLeft = 1280; d.AutoBrake = 1; }); },
       "b737\\AutoBrakeNotRTO.wav"},
      {"on the approach with the auto brake off", [=](B b) { approach(b, 9000); }, "b737\\AutoBrakeSet.wav"},
      {"to a short runway with the auto brake off", [=](B b) { approach(b, 6500); }, "b737\\AutoBrakeOffShort.wav"},
      {"to a runway too short for the 737", [=](B b) { approach(b, 5000); b.Both([](FSData& d) { d.AutoBrake = 3; }); },
       "b737\\FPWarningRunwayLength.wav"},
      {"to a grass strip", [=](B b) { approach(b, 9000); b.Both([](FSData& d) { d.AutoBrake = 3; });
         b.flight().approach.Destination.runway.Surface = "GRASS"; }, "b737\\FPWarningRunwaySurfaceType.wav"},
      {"speed brake out at 500 feet", [=](B b) { approach(b, 9000); b.Airborne(500); b.Both([](FSData& d) { d.AutoBrake = 3; d.SpoilersControl = 16383; }); },
       "b737\\SpeedBrakeUpBelow1000.wav"},
      {"through the decision height of 200 feet", [=](B b) { approach(b, 9000); b.Through(200, -10);
         b.Both([](FSData& d) { d.AutoBrake = 3; d.TotalWeight = 200 / 3.281; d.AutopilotOn = false; }); },
       "b737\\Minimums.wav"},
      {"the APU started again 30 seconds after it stopped", [=](B b) {
         powered(b); b.rig.instructor.procedures.APUStopTime = procedures::FlightTime(b.c()) - 30; b.now().Flag0B51 = true;
       }, "b737\\APURestartTooSoon.wav"},
      {"and 70 seconds after", [=](B b) {
         powered(b); b.rig.instructor.procedures.APUStopTime = procedures::FlightTime(b.c()) - 70; b.now().Flag0B51 = true;
       }, ""},
      {"the parking brake set in flight", [=](B b) { approach(b, 9000); b.Both([](FSData& d) { d.AutoBrake = 3; d.ParkingBrake = true; }); },
       "b737\\ParkingBrakesOff.wav"},
      {"parked: signs, pumps and panel off", [=](B b) {
         powered(b); b.TaxiingIn();
         b.Both([](FSData& d) { d.ParkingBrake = true; d.FlightDirector = 0; d.AutoBrake = 1; d.Flag341F = true; });
       }, "b737\\SeatbeltsOff.wav b737\\FuelPumpOff.wav b737\\CrossfeedOff.wav"},
  });
}

TEST(Procedures, MoreOfThePropellerTypes) {
  Check({
      {"a King Air's condition levers cut off for the start", [](B b) {
         b.Type(AircraftType::KingAir350, "Beech_King_Air_350", "Beech King Air 350");
         b.Both([](FSData& d) { d.ParkingBrake = d.MasterBattery = d.Eng1FuelValve = d.Eng1FuelPump = true; });
         b.now().Eng1StarterSwitch = 4;
       }, "BeechKingAir350\\zPro_MixtureOFFToStart.wav"},
      {"and to low idle once the starter turns it", [](B b) {
         b.Type(AircraftType::KingAir350, "Beech_King_Air_350", "Beech King Air 350");
         b.Both([](FSData& d) { d.ParkingBrake = d.MasterBattery = d.Eng1FuelValve = d.Eng1FuelPump = true; d.Eng1StarterSwitch = 4; d.Eng1MixtureLever = 0; });
       }, "BeechKingAir350\\zPro_MixtureFULLToStart.wav"},
      {"a King Air rotates at 50 knots of ground speed", [](B b) {
         b.Type(AircraftType::KingAir350, "Beech_King_Air_350", "Beech King Air 350"); b.Mode(FlightMode::TakeOff);
         b.Both([](FSData& d) { d.Eng1Throttle = 16383; }); b.before().GS = 49; b.now().GS = 50;
       }, "BeechKingAir350\\zPro_RotationSpeed.wav"},
      {"a Caravan below 150 knots low on the approach", [](B b) {
         b.Type(AircraftType::C208B, "C208B", "Cessna Caravan"); b.Airborne(180); b.Mode(FlightMode::Landing);
         b.before().IAS = 152; b.now().IAS = 149;
       }, "c208B\\zPro_Flaps20_OKbelow150.wav"},
      {"a DC3 standing with its engines running: the tail wheel lock", [](B b) {
         b.Type(AircraftType::DC3, "Douglas DC-3", "Douglas DC-3");
         b.Both([](FSData& d) { d.Eng1Combustion = d.Eng2Combustion = d.Eng1Generator = d.Eng2Generator = true; });
       }, "DC3\\zPro_TailWheelLockOn.wav"},
      {"a DC3's cowl flaps wide open in the cruise", [](B b) {
         b.Type(AircraftType::DC3, "Douglas DC-3", "Douglas DC-3"); b.Airborne(3000); b.Mode(FlightMode::Cruise);
       }, "DC3\\zPro_CowlFlapsHalfOpen.wav"},
      {"a DC3's 4,000 feet approach with the mixture lean", [](B b) {
         b.Type(AircraftType::DC3, "Douglas DC-3", "Douglas DC-3"); b.Airborne(1500); b.Mode(FlightMode::Landing);
         b.Both([](FSData& d) { d.Eng1MixtureLever = 8000; d.Altitude = 2500; d.Eng1FuelPump = d.Eng2FuelPump = true; d.Eng1CowlFlaps = 0.5; });
       }, "DC3\\zPro_MixtureFullForLanding.wav"},
      {"a C172 with a half-empty tank", [](B b) {
         b.C172(); b.Both([](FSData& d) { d.TotalFuelCapacity = 56; d.TankLeftMainPct = 40; d.TankRightMainPct = 90; });
       }, "c172\\FuelOneOrBothTanksLow.wav"},
      {"a C172 on the runway for three minutes", [](B b) {
         b.C172(); b.Mode(FlightMode::TakeOff); b.rig.instructor.procedures.TakeOffHoldTicks = 240;
       }, "DelayExcessiveForTakeOff.wav"},
      {"a C172 lined up with the wind behind", [](B b) {
         b.C172(); b.Mode(FlightMode::TakeOff); b.Both([](FSData& d) { d.SurfaceWindSpeed = 15; d.WindRelativeToHeading = 170; });
       }, "NotFacingIntoWind.wav"},
      {"a Lear 45 too fast for its second flap", [](B b) {
         b.Type(AircraftType::Lear45, "Learjet 45", "Learjet 45"); b.Flaps({{8, 250}, {20, 200}, {40, 150}});
         b.Airborne(3000); b.Mode(FlightMode::Landing);
         b.Both([](FSData& d) { d.FlapsLeft = 20 * 256; d.IAS = 220; d.SpoilersArmed = true; });
       }, "TooFastForThatFlapsSetting.wav +ExceedFlaps Lear45\\YouCanHave.WAV 20.WAV Lear45\\DegreesOfFlapsBelow.WAV 2.wav 0.wav 0.wav Knots.WAV"},
  });
}

// clang-format on

// Over whole ticks: the 737 above its ceiling hears it once a minute, twice in two.
TEST(Procedures, TheCeilingOncePer120Ticks) {
  FlightRig rig;
  rig.image.SetString(0x3D00, "Boeing 737-800");
  rig.AirFile("SimObjects\\Airplanes\\B737_800\\B737.air");
  rig.Ready();
  rig.instructor.aircraft.Monitoring.Boeing[0] = true;
  rig.image.SetU16(0x3324, 41001);
  rig.Mark();
  rig.Tick(240);
  int said = 0;
  for (const Event& e : rig.Since("queued"))
    if (e.Text("file") == "b737\\MaxAlt.wav") ++said;
  EXPECT_EQ(said, 2);
}

// A C172 flight whose pilot leaves the carb heat cold on the approach.
TEST(Procedures, AFlightThatForgetsCarbHeat) {
  FlightRig rig;
  rig.Ready();
  rig.instructor.aircraft.Monitoring.Boeing[static_cast<size_t>(MainBox(AircraftType::C172))] =
      true;
  rig.instructor.aircraft.Monitoring.Boeing[15] = true;  // Monitor Carb. Heat
  rig.Mark();
  rig.Follow(LandingAt(1500));
  rig.Fly({.agl = 1400, .ticks = 4});
  // Levelling off, the Cessna's cruise power.
  EXPECT_NE(rig.Queued().find("c172\\BeginCruise.wav"), std::string::npos) << rig.Queued();
  EXPECT_NE(rig.Queued().find("c152\\CarbHeatOn.wav"), std::string::npos) << rig.Queued();
  // With the carb heat on (0x08B2) the reminder stops.
  rig.image.SetU8(0x08B2, 1);
  rig.Mark();
  rig.Fly({.agl = 1300, .ticks = 130});
  EXPECT_EQ(rig.Queued().find("CarbHeat"), std::string::npos) << rig.Queued();
}

}  // namespace
}  // namespace vantoro
