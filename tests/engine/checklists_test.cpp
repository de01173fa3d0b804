#include "engine/checklists.h"

#include <optional>
#include <string>
#include <vector>

#include "engine/flight_rig.h"
#include "engine/tick_rules.h"

namespace vantoro {
namespace {

using T = AircraftType;

// The active type: its raw test and its main monitoring box.
void Want(Instructor& in, T type) {
  in.aircraft.Is.fill(false);
  in.aircraft.Is[static_cast<size_t>(type)] = true;
  in.aircraft.Monitoring.Boeing[static_cast<size_t>(MainBox(type))] = true;
}

// The aircraft's state as the chooser sees it. Brake: "--" off in both
// samples, "-P" set just now, "PP" set in this and the last sample.
struct State {
  FlightMode mode = FlightMode::Taxiing;
  bool onGround = true;
  int firing = 0;  // engines with combustion
  bool battery = true;
  const char* brake = "--";
  bool flown = false;  // airborne since last cold and dark
  double agl = 0;
  bool runUpDone = false;
  bool pumpAndBelts = false;  // a fuel pump on and the seat-belt sign on
  bool runUpStarted = false;
};

std::string Chosen(T type, const State& s) {
  FlightRig rig;
  Instructor& in = rig.instructor;
  Want(in, type);
  FSData& now = in.link.Records[static_cast<size_t>(in.link.CurrentRecord)];
  FSData& before = in.link.Records[static_cast<size_t>(in.link.PreviousRecord)];
  now.OnGround = s.onGround ? 1 : 0;
  now.Eng1Combustion = s.firing >= 1;
  now.Eng2Combustion = s.firing >= 2;
  now.MasterBattery = s.battery;
  now.ParkingBrake = s.brake[1] == 'P';
  before.ParkingBrake = s.brake[0] == 'P';
  now.AGL = s.agl;
  now.Eng1FuelPump = s.pumpAndBelts;
  now.Flag341D = s.pumpAndBelts;
  in.flight.Modes = ModeFlags{};
  in.flight.Modes.Taxiing = s.mode == FlightMode::Taxiing;
  in.flight.Modes.TakeOff = s.mode == FlightMode::TakeOff;
  in.flight.Modes.Landing = s.mode == FlightMode::Landing;
  in.flight.Modes.Cruise = s.mode == FlightMode::Cruise;
  in.flight.Flight().RunUpDone = s.runUpDone;
  in.flight.Flight().RunUpStarted = s.runUpStarted;
  in.checklists.BeenAirborne = s.flown;
  const Cockpit c = in.cockpit();
  const std::optional<CheckList> list = ChooseCheckList(c);
  return list ? list->title + " " + list->file : "none";
}

struct Row {
  const char* what;
  T type;
  State state;
  const char* list;
};

// clang-format off
TEST(CheckLists, TheListThatFitsThePhaseAndTheType) {
  const FlightMode TakeOff = FlightMode::TakeOff, Cruise = FlightMode::Cruise,
                   Landing = FlightMode::Landing;
  const std::vector<Row> rows = {
      {"737 cold and dark", T::B737, {.battery = false}, "Cold and dark b737\\ListColdAndDark.wav"},
      {"737 battery on, pumps and belts off: no start list", T::B737, {}, "none"},
      {"737 battery, pump and belts on", T::B737, {.pumpAndBelts = true}, "Start procedure b737\\ListStarting.wav"},
      {"737 both engines running", T::B737, {.firing = 2}, "After start b737\\ListAfterStart.wav"},
      {"737 one engine running: no list of its own", T::B737, {.firing = 1}, "none"},
      {"737 on the runway", T::B737, {.mode = TakeOff, .firing = 2}, "Take off b737\\ListTakeOff.wav"},
      {"737 cruising", T::B737, {.mode = Cruise, .onGround = false, .firing = 2, .agl = 30000}, "none"},
      {"737 taxiing in", T::B737, {.firing = 2, .flown = true}, "Taxi In b737\\ListTaxiIn.wav"},
      {"737 brake set just now: still taxi in", T::B737, {.firing = 2, .brake = "-P", .flown = true}, "Taxi In b737\\ListTaxiIn.wav"},
      {"737 brake set two samples", T::B737, {.firing = 2, .brake = "PP", .flown = true}, "Shut down b737\\ListShutDown.wav"},
      {"757 descent", T::B757, {.mode = Landing, .onGround = false, .agl = 8000}, "Descent b757\\ListDescent.wav"},
      {"Lear below 1000", T::Lear45, {.mode = Landing, .onGround = false, .agl = 600}, "Landing Lear45\\ListBeforeLanding.wav"},
      {"CRJ at 1000 exactly", T::CRJ700, {.mode = Landing, .onGround = false, .agl = 1000}, "Landing CRJ700\\ListBeforeLanding.wav"},
      {"CRJ just above 1000", T::CRJ700, {.mode = Landing, .onGround = false, .agl = 1000.5}, "Descent CRJ700\\ListDescent.wav"},
      {"Otter starting needs no belts", T::TwinOtter, {}, "Start procedure TwinOtter\\ListStarting.wav"},
      {"Otter has no run-up", T::TwinOtter, {.firing = 1}, "none"},
      {"DC3 after start", T::DC3, {.firing = 2}, "After start DC3\\zPro_ListAfterStart.wav"},
      {"DC3 run-up under way", T::DC3, {.firing = 2, .runUpStarted = true}, "Run up DC3\\zPro_ListRunUp.wav"},
      {"DC3 starting", T::DC3, {}, "Start procedure DC3\\zPro_ListStarting.wav"},
      {"C172 cold and dark", T::C172, {.battery = false}, "Cold and dark c172\\ListColdAndDark.wav"},
      {"C172 master on, engine off: no start list", T::C172, {}, "none"},
      {"C172 engine running", T::C172, {.firing = 1}, "Run up c172\\ListRunUp.wav"},
      {"C172 run-up done", T::C172, {.firing = 1, .runUpDone = true}, "none"},
      {"C172 lined up", T::C172, {.mode = TakeOff, .firing = 1, .runUpDone = true}, "Take off c172\\ListTakeOff.wav"},
      {"C172 taxiing in, brake set just now", T::C172, {.firing = 1, .brake = "-P", .flown = true, .runUpDone = true}, "none"},
      {"C172 taxiing in, brake set two samples", T::C172, {.firing = 1, .brake = "PP", .flown = true, .runUpDone = true}, "Shut down c172\\ListShutDown.wav"},
      {"Mooney descent", T::Mooney, {.mode = Landing, .onGround = false, .agl = 4000}, "Descent Mooney\\zPro_ListDescent.wav"},
      {"Caravan run-up is before take-off", T::C208B, {.firing = 1}, "Before takeoff c208B\\zPro_ListRunUp.wav"},
      {"C182 landing", T::C182, {.mode = Landing, .onGround = false, .agl = 500}, "Landing c182\\zPro_ListBeforeLanding.wav"},
      {"Baron both running", T::Baron, {.firing = 2}, "Run up BaronB58\\zPro_ListRunUp.wav"},
      {"King Air shut down", T::KingAir350, {.brake = "PP", .flown = true}, "Shut down BeechKingAir350\\zPro_ListShutDown.wav"},
      {"C152 cold and dark", T::C152, {.battery = false}, "Cold and dark c152\\ListColdAndDark.wav"},
  };
  for (const Row& r : rows) EXPECT_EQ(Chosen(r.type, r.state), r.list) << r.what;
}
// clang-format on

TEST(CheckLists, NoListForAnAircraftWithoutOne) {
  FlightRig rig;
  rig.instructor.aircraft.Is.fill(false);
  EXPECT_EQ(ProcessNextCheckList(rig.instructor.cockpit(), "Key: "), "Key: ");
  // The raw test alone is not enough: the type's monitoring box must be on.
  rig.instructor.aircraft.Is[static_cast<size_t>(T::C172)] = true;
  rig.instructor.aircraft.Monitoring.Boeing.fill(false);
  EXPECT_EQ(ProcessNextCheckList(rig.instructor.cockpit(), "Key: "), "Key: ");
}

// A C172 (or a Baron) braked at the holding point, engine(s) at run-up
// power; the pilot checks each magneto and returns to both.
struct RunUp {
  FlightRig rig;
  explicit RunUp(int engines) {
    rig.Ready();
    rig.image.SetU8(0x0AEC, static_cast<uint8_t>(engines));
    rig.image.SetU8(0x0BC8, 1);  // parking brake
    rig.image.SetU8(0x092C, engines > 1);
    rig.image.SetU8(0x0899, 40);  // run-up power
    rig.image.SetU8(0x0931, 40);
    Switches(3, 3);
    rig.Tick(2);
    rig.Mark();
  }
  void Switches(int one, int two) {
    rig.image.SetU16(0x0892, static_cast<uint16_t>(one));
    rig.image.SetU16(0x092A, static_cast<uint16_t>(two));
  }
  std::string Check(const std::vector<std::pair<int, int>>& positions) {
    for (auto [one, two] : positions) {
      Switches(one, two);
      rig.Tick();
    }
    return rig.Queued();
  }
};

TEST(CheckLists, RunUpCompleteWhenEachMagnetoCheckEndsAtPower) {
  struct Case {
    const char* what;
    int engines;
    std::vector<std::pair<int, int>> positions;
    const char* heard;
  };
  const std::vector<Case> cases = {
      {"single: left, right, both", 1, {{1, 0}, {2, 0}, {3, 0}}, "RunUpComplete.wav"},
      {"single: both only", 1, {{3, 0}, {3, 0}}, ""},
      {"single: said once", 1, {{2, 0}, {3, 0}, {1, 0}, {3, 0}}, "RunUpComplete.wav"},
      {"twin: engine 1 only", 2, {{1, 3}, {3, 3}}, "RunUpCompletedForEngine.wav|1.wav"},
      {"twin: both engines",
       2,
       {{1, 3}, {3, 3}, {3, 2}, {3, 3}},
       "RunUpCompletedForEngine.wav|1.wav|RunUpCompletedForEngine.wav|2.wav|RunUpComplete.wav"},
  };
  for (const Case& k : cases) {
    RunUp r(k.engines);
    EXPECT_EQ(r.Check(k.positions), k.heard) << k.what;
  }
}

TEST(CheckLists, RunUpNeedsTheBrakeAndLowPower) {
  RunUp braked(1);
  braked.rig.image.SetU8(0x0BC8, 0);
  EXPECT_EQ(braked.Check({{1, 0}, {3, 0}}), "") << "brake off";
  RunUp idle(1);
  idle.rig.image.SetU8(0x0899, 20);
  EXPECT_EQ(idle.Check({{1, 0}, {3, 0}}), "") << "below run-up power";
  EXPECT_FALSE(idle.rig.stats().RunUpDone);
}

// The pilot presses the checklist key in a C172 with the engine running
// before the run-up: the run-up list is read and its title shown; key 11
// shows the fuel range and which list is next; "last check list" reads it
// again.
TEST(CheckLists, TheKeyReadsTheListAndTheStatusLineNamesIt) {
  FlightRig rig;
  rig.Ready();
  rig.instructor.aircraft.Monitoring.Boeing[static_cast<size_t>(MainBox(T::C172))] = true;
  rig.image.SetU8(0x281C, 1);  // battery
  rig.Tick();
  EXPECT_EQ(rig.instructor.checklists.NextTitle, "Run up");
  rig.Mark();
  rig.instructor.PressHotKey(12);
  rig.Tick();
  EXPECT_EQ(rig.Queued(), "c172\\ListRunUp.wav");
  EXPECT_EQ(rig.Messages(), "Checklist: Run up");
  // Key 11 with 14 gallons in each main tank (6 pounds a gallon) burning 50
  // pounds an hour at 10 knots: 3.36 hours, 34 nautical miles.
  for (uint32_t tank : {0x0B7Cu, 0x0B94u}) {
    rig.image.SetU32(tank, 50 * 83886);
    rig.image.SetU32(tank + 4, 28);
  }
  rig.image.SetU16(0x0AF4, 6 * 256);
  rig.image.SetF64(0x0880, 50);
  rig.GS(10);
  rig.Mark();
  rig.instructor.PressHotKey(11);
  rig.Tick();
  EXPECT_EQ(rig.Messages(),
            "PilotErrors:0  AGL:On Ground  GrndAlt:0 Range:34 NM   Checklist Key: Run up");
  rig.Mark();
  Cockpit c = rig.instructor.cockpit();
  RepeatLastCheckList(c);
  EXPECT_EQ(rig.Queued(), "c172\\ListRunUp.wav");
}

}  // namespace
}  // namespace vantoro
