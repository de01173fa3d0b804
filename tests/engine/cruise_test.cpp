#include "engine/cruise.h"

#include <set>

#include "engine/flight_rig.h"

namespace vantoro {
namespace {

// A height of whole metres in feet: the simulator keeps heights in metres.
constexpr double M(double metres) {
  return metres * 3.281;
}

// The aircraft's values for one tick; K leaves a value as it is.
struct Air {
  double agl = K, alt = K, ias = K, g = K, bank = K, pitch = K, elevator = K, rudder = K, slip = K,
         flaps = K, vne = K, stall = K, asiFailed = K, gearDown = K;
};

void Set(FlightRig& rig, const Air& a) {
  OffsetImage& im = rig.image;
  if (a.agl != K) rig.AGL(a.agl);
  if (a.alt != K) rig.Altitude(a.alt);
  if (a.ias != K) im.SetU16(0x02BC, static_cast<uint16_t>(a.ias * 128));
  if (a.vne != K) im.SetU16(0x02C4, static_cast<uint16_t>(a.vne * 128));
  if (a.g != K) im.SetI16(0x11BA, static_cast<int16_t>(a.g));
  if (a.bank != K) rig.Bank(static_cast<int>(a.bank));
  if (a.pitch != K) rig.Pitch(static_cast<int>(a.pitch));
  if (a.elevator != K) im.SetI16(0x0BB2, static_cast<int16_t>(a.elevator));
  if (a.rudder != K) im.SetI16(0x0BBA, static_cast<int16_t>(a.rudder));
  if (a.slip != K) im.SetU8(0x036E, static_cast<uint8_t>(static_cast<int8_t>(a.slip)));
  if (a.flaps != K) im.SetU16(0x30F0, static_cast<uint16_t>(a.flaps));
  if (a.stall != K) im.SetU8(0x036C, a.stall > 0);
  if (a.asiFailed != K) im.SetU8(0x0B65, a.asiFailed > 0);
  if (a.gearDown != K) {
    rig.Gear(a.gearDown > 0);
    im.SetU8(0x0BF4, a.gearDown > 0);  // the left gear follows the handle
  }
}

// A roll at a steady rate, one tick a step, ending on `to`.
std::vector<Air> Roll(int from, int to, int step) {
  std::vector<Air> ticks;
  for (int b = from; step > 0 ? b < to : b > to; b += step) ticks.push_back({.bank = double(b)});
  ticks.push_back({.bank = double(to)});
  return ticks;
}

enum class Phase { TakeOff, Cruise, Landing };

// The families these rules speak in, the counters they raise.
const std::set<int64_t> kFamilies = {0,  33, 36, 37, 38, 39, 40, 41, 42,  43, 44,
                                     45, 46, 61, 62, 63, 73, 81, 89, 102, 108};
const std::set<std::string> kCounters = {"NotLevelWings",    "ExceedPitchChange",
                                         "ExceedGsPositive", "ExceedGsNegative",
                                         "NotUseTrimmers",   "ExceedBankRight",
                                         "ExceedBankLeft",   "CircuitBadBankAngle",
                                         "ExceedBankChange", "NotRudderToCoordinateTurns",
                                         "ExceedStall",      "NearStall",
                                         "ExceedGearDown",   "ExceedVNE",
                                         "TakeOffDescent"};

// What the pilot heard, read and lost since the mark, in these rules' families:
// sounds queued, remarks ("file level"), counts, messages and mode changes.
struct Heard {
  std::string queued, remarks, counts, messages, modes;
};

void Join(std::string& to, const std::string& item) {
  to += (to.empty() ? "" : "|") + item;
}

Heard Read(const FlightRig& rig) {
  Heard h;
  std::set<std::string> ours;
  for (const Event& e : rig.Since("queued")) {
    if (!kFamilies.count(e.Int("id"))) continue;
    Join(h.queued, e.Text("file"));
    ours.insert(e.Text("file"));
  }
  for (const Event& e : rig.Since("remark"))
    if (ours.count(e.Text("file")))
      Join(h.remarks, e.Text("file") + " " + std::to_string(e.Int("level")));
  for (const Event& e : rig.Since("count"))
    if (kCounters.count(e.Text("name"))) Join(h.counts, e.Text("name"));
  h.messages = rig.Messages();
  h.modes = rig.Modes();
  return h;
}

// A flight in the air in the phase asked for (climbing out at 400 feet,
// cruising or landing at 3000), with a light single's figures:
// clean stall 48, flaps-out stall 40, gear limit 140 knots.
void Airborne(FlightRig& rig, Phase phase) {
  rig.Altitude(M(500));
  rig.Ready();
  rig.instructor.aircraft.StallCruise = 48;
  rig.instructor.aircraft.StallLanding = 40;
  rig.instructor.aircraft.GearSpeedLimit = 140;
  switch (phase) {
    case Phase::TakeOff:
      rig.Follow(Climb(M(122)));
      break;
    case Phase::Cruise:
      rig.Follow(CruiseAt(M(914)));
      break;
    case Phase::Landing:
      rig.Follow(LandingAt(M(914)));
      break;
  }
  Set(rig, {.ias = 100, .gearDown = 1});
  rig.Tick();
}

// One case: the pilot's set-up, the ticks that lead in (which say nothing
// themselves), the tick judged and what it gives.
struct Case {
  const char* what;
  Phase phase = Phase::Cruise;
  void (*prepare)(FlightRig&) = nullptr;
  std::vector<Air> lead = {};
  Air now = {};
  std::string queued = "", remarks = "", counts = "", messages = "", modes = "";
};

void Check(const std::vector<Case>& cases) {
  for (const Case& k : cases) {
    SCOPED_TRACE(k.what);
    FlightRig rig;
    Airborne(rig, k.phase);
    if (k.prepare) k.prepare(rig);
    for (const Air& a : k.lead) {
      Set(rig, a);
      rig.Tick();
    }
    rig.Mark();
    Set(rig, k.now);
    rig.Tick();
    Heard h = Read(rig);
    // Near the stall the word is drawn by chance.
    if (k.queued.find("SpeedUp.wav") != std::string::npos) {
      for (std::string* s : {&h.queued, &h.remarks})
        if (size_t at = s->find("DontStall.wav"); at != std::string::npos)
          s->replace(at, 13, "SpeedUp.wav");
    }
    EXPECT_EQ(h.queued, k.queued);
    EXPECT_EQ(h.remarks, k.remarks);
    EXPECT_EQ(h.counts, k.counts);
    EXPECT_EQ(h.messages, k.messages);
    EXPECT_EQ(h.modes, k.modes);
  }
}

void Circuits(FlightRig& rig) {
  rig.instructor.flight.CircuitsWanted = true;
}
void HeavyCircuits(FlightRig& rig) {
  rig.Heavy(true);
  rig.instructor.flight.CircuitsWanted = true;
}
void Heavy(FlightRig& rig) {
  rig.Heavy(true);
}
void Yoke(FlightRig& rig) {
  rig.instructor.options.HaveYokePressure = true;
}
void RudderWatched(FlightRig& rig) {
  rig.instructor.options.RudderController = true;
}
void Retractable(FlightRig& rig) {
  rig.instructor.aircraft.Raw.RetractableGear = true;
}
void FloatPlane(FlightRig& rig) {
  rig.instructor.aircraft.Raw.FloatPlane = true;
}

// clang-format off
TEST(CruiseLimits, BankAngle) {
  Check({
      {.what = "32 degrees right is allowed", .lead = Roll(0, 24, 8), .now = {.bank = 32},
       .queued = "", .remarks = "", .counts = ""},
      {.what = "33 right: the warning's recording, counted as a fault", .lead = Roll(0, 32, 8),
       .now = {.bank = 33}, .queued = "AMBERBringBankBack.wav",
       .remarks = "AMBERBringBankBack.wav 2", .counts = "ExceedBankRight"},
      {.what = "33 left likewise", .lead = Roll(0, -32, -8), .now = {.bank = -33},
       .queued = "AMBERwatchthatbankangle.wav", .remarks = "AMBERwatchthatbankangle.wav 2",
       .counts = "ExceedBankLeft"},
      {.what = "35 right counts twice", .lead = Roll(0, 32, 8), .now = {.bank = 35},
       .queued = "AMBERBringBankBack.wav|BringBankBack.wav",
       .remarks = "AMBERBringBankBack.wav 2|BringBankBack.wav 2",
       .counts = "ExceedBankRight|ExceedBankRight"},
      {.what = "35 left counts twice", .lead = Roll(0, -32, -8), .now = {.bank = -35},
       .queued = "AMBERwatchthatbankangle.wav|watchthatbankangle.wav",
       .remarks = "AMBERwatchthatbankangle.wav 2|watchthatbankangle.wav 2",
       .counts = "ExceedBankLeft|ExceedBankLeft"},
      {.what = "35 right on a circuit: the second count is the circuit's", .prepare = Circuits,
       .lead = Roll(0, 32, 8), .now = {.bank = 35},
       .queued = "AMBERBringBankBack.wav|BringBankBack.wav",
       .remarks = "AMBERBringBankBack.wav 2|BringBankBack.wav 2",
       .counts = "ExceedBankRight|CircuitBadBankAngle"},
      {.what = "35 left on a circuit", .prepare = Circuits, .lead = Roll(0, -32, -8),
       .now = {.bank = -35}, .queued = "AMBERwatchthatbankangle.wav|watchthatbankangle.wav",
       .remarks = "AMBERwatchthatbankangle.wav 2|watchthatbankangle.wav 2",
       .counts = "ExceedBankLeft|CircuitBadBankAngle"},
      {.what = "a heavy aircraft's circuit is not judged as one", .prepare = HeavyCircuits,
       .lead = Roll(0, 32, 8), .now = {.bank = 35},
       .queued = "AMBERBringBankBack.wav|BringBankBack.wav",
       .remarks = "AMBERBringBankBack.wav 2|BringBankBack.wav 2",
       .counts = "ExceedBankRight|ExceedBankRight"},
      {.what = "rolling 11 degrees left in a tick", .lead = Roll(0, 20, 8), .now = {.bank = 9},
       .queued = "OuchBank1.wav", .remarks = "OuchBank1.wav 2", .counts = "ExceedBankChange"},
      {.what = "rolling 9 degrees left: the warning", .lead = Roll(0, 20, 8), .now = {.bank = 11},
       .queued = "AMBEROuchBank1.wav", .remarks = "AMBEROuchBank1.wav 1", .counts = ""},
      {.what = "rolling 8 degrees is smooth enough", .lead = Roll(0, 20, 8), .now = {.bank = 12},
       .queued = "", .remarks = "", .counts = ""},
      {.what = "rolling 11 degrees right", .now = {.bank = 11}, .queued = "OuchBank2.wav",
       .remarks = "OuchBank2.wav 2", .counts = "ExceedBankChange"},
      {.what = "rolling 9 degrees right: the warning", .now = {.bank = 9},
       .queued = "AMBEROuchBank2.wav", .remarks = "AMBEROuchBank2.wav 1", .counts = ""},
  });
}

TEST(CruiseLimits, PitchAndLoad) {
  Check({
      {.what = "pitch up 7 degrees in a tick", .lead = {{.pitch = 2}}, .now = {.pitch = 9},
       .queued = "EasyOnThePitch.wav", .remarks = "EasyOnThePitch.wav 2",
       .counts = "ExceedPitchChange"},
      {.what = "pitch down 6 degrees: the warning", .lead = {{.pitch = 2}}, .now = {.pitch = -4},
       .queued = "AmberEasyOnThePitch.wav", .remarks = "AmberEasyOnThePitch.wav 1",
       .counts = ""},
      {.what = "pitch 4 degrees", .lead = {{.pitch = 2}}, .now = {.pitch = 6}, .queued = "",
       .remarks = "", .counts = ""},
      {.what = "G exactly 1000 is nothing", .lead = {{.g = 625}}, .now = {.g = 1000}, .queued = "",
       .remarks = "", .counts = ""},
      {.what = "G 1001: the warning", .lead = {{.g = 625}}, .now = {.g = 1001},
       .queued = "AMBERTooManyGs.wav", .remarks = "AMBERTooManyGs.wav 1", .counts = ""},
      {.what = "G 1251", .lead = {{.g = 625}}, .now = {.g = 1251}, .queued = "TooManyGs.wav",
       .remarks = "TooManyGs.wav 2", .counts = "ExceedGsPositive"},
      {.what = "G 0 is nothing", .lead = {{.g = 625}}, .now = {.g = 0}, .queued = "", .remarks = "",
       .counts = ""},
      {.what = "G just below 0: the warning", .lead = {{.g = 625}}, .now = {.g = -1},
       .queued = "AMBERTooManyGs.wav", .remarks = "AMBERTooManyGs.wav 1", .counts = ""},
      {.what = "G pushed to -501 at once: stress first", .lead = {{.g = 625}}, .now = {.g = -501},
       .queued = "StressHigh.WAV|TooManyGs.wav", .remarks = "TooManyGs.wav 2",
       .counts = "ExceedGsNegative"},
      {.what = "G pulled past 2500 at once", .lead = {{.agl = M(25), .g = 2400}},
       .now = {.agl = M(914), .g = 2501},
       .queued = "StressHigh.WAV|TooManyGs.wav", .remarks = "TooManyGs.wav 2",
       .counts = "ExceedGsPositive"},
      // The lead-in is flown low, where the load rules are silent.
      {.what = "G held past 2500 is no new stress", .lead = {{.agl = M(25), .g = 2600}},
       .now = {.agl = M(914), .g = 2600}, .queued = "TooManyGs.wav",
       .remarks = "TooManyGs.wav 2", .counts = "ExceedGsPositive"},
      {.what = "G already negative is no new stress", .lead = {{.agl = M(25), .g = -300}},
       .now = {.agl = M(914), .g = -501}, .queued = "TooManyGs.wav",
       .remarks = "TooManyGs.wav 2", .counts = "ExceedGsNegative"},
      {.what = "yoke pressure with the option", .prepare = Yoke, .now = {.elevator = 8001},
       .queued = "UseTrimmers.wav", .remarks = "UseTrimmers.wav 2", .counts = "NotUseTrimmers"},
      {.what = "yoke pushed", .prepare = Yoke, .now = {.elevator = -8001},
       .queued = "UseTrimmers.wav", .remarks = "UseTrimmers.wav 2", .counts = "NotUseTrimmers"},
      {.what = "8000 is still trimmed", .prepare = Yoke, .now = {.elevator = 8000}, .queued = "",
       .remarks = "", .counts = ""},
      {.what = "yoke pressure without the option", .now = {.elevator = 9000}, .queued = "",
       .remarks = "", .counts = ""},
      {.what = "a turn without rudder", .prepare = RudderWatched, .now = {.rudder = 999, .slip = 101},
       .queued = "UseRudderToCoordinateTurns.wav",
       .remarks = "UseRudderToCoordinateTurns.wav 2", .counts = "NotRudderToCoordinateTurns"},
      {.what = "the ball at 100", .prepare = RudderWatched, .now = {.rudder = 0, .slip = -100},
       .queued = "", .remarks = "", .counts = ""},
      {.what = "rudder in use", .prepare = RudderWatched, .now = {.rudder = -1000, .slip = 120},
       .queued = "", .remarks = "", .counts = ""},
      {.what = "not watched on a heavy aircraft",
       .prepare = [](FlightRig& r) { Heavy(r); RudderWatched(r); },
       .now = {.rudder = 0, .slip = 120}, .queued = "", .remarks = "", .counts = ""},
  });
}

TEST(CruiseLimits, NearTheGroundOnlyTheWingsCount) {
  Check({
      {.what = "5 degrees at 49 feet", .lead = Roll(0, 5, 5), .now = {.agl = M(15)},
       .queued = "LevelWings.wav", .remarks = "LevelWings.wav 2", .counts = "NotLevelWings"},
      {.what = "-5 degrees at 49 feet", .lead = Roll(0, -5, -5), .now = {.agl = M(15)},
       .queued = "LevelWings.wav", .remarks = "LevelWings.wav 2", .counts = "NotLevelWings"},
      {.what = "4 degrees: the warning", .lead = Roll(0, 4, 4), .now = {.agl = M(15)},
       .queued = "AMBERLevelWings.wav", .remarks = "AMBERLevelWings.wav 1", .counts = ""},
      {.what = "3 degrees is level", .lead = Roll(0, 3, 3), .now = {.agl = M(15)}, .queued = "",
       .remarks = "", .counts = ""},
      {.what = "5 degrees at 52 feet is not near the ground", .lead = Roll(0, 5, 5),
       .now = {.agl = M(16)}, .queued = "", .remarks = "", .counts = ""},
      {.what = "pitch, G and trim are silent below 100 feet",
       .prepare = Yoke, .lead = {{.g = 625, .pitch = 0}},
       .now = {.agl = M(15), .g = 1300, .pitch = 10, .elevator = 9000}, .queued = "",
       .remarks = "", .counts = ""},
  });
}

TEST(CruiseSpeeds, StallAndNearStall) {
  Check({
      {.what = "stall warning", .lead = {{.ias = 60}}, .now = {.ias = 45, .stall = 1},
       .queued = "StallProcedure.wav", .remarks = "StallProcedure.wav 2",
       .counts = "ExceedStall"},
      {.what = "no stall warning at 19 feet", .lead = {{.ias = 60}},
       .now = {.agl = M(6), .ias = 45, .stall = 1}, .queued = "", .remarks = "",
       .counts = ""},
      {.what = "clean at 48 knots", .lead = {{.ias = 60}}, .now = {.ias = 48}, .queued = "",
       .remarks = "", .counts = ""},
      {.what = "clean below the stall speed", .lead = {{.ias = 60}}, .now = {.ias = 47},
       .queued = "SpeedUp.wav|c172\\vs.wav", .remarks = "SpeedUp.wav 2",
       .counts = "NearStall"},
      {.what = "flaps out at 47 knots is safe", .lead = {{.ias = 60, .flaps = 2000}},
       .now = {.ias = 47}, .queued = "", .remarks = "", .counts = ""},
      {.what = "flaps out below their stall speed", .lead = {{.ias = 60, .flaps = 2000}},
       .now = {.ias = 39}, .queued = "SpeedUp.wav|c172\\vso.wav", .remarks = "SpeedUp.wav 2",
       .counts = "NearStall"},
      {.what = "between 50 and 100 feet: by the flaps-out speed, no call", .lead = {{.ias = 60}},
       .now = {.agl = M(25), .ias = 39}, .queued = "DontStall.wav",
       .remarks = "DontStall.wav 2", .counts = "NearStall"},
      {.what = "between 50 and 100 feet, above it", .lead = {{.ias = 60}},
       .now = {.agl = M(25), .ias = 45}, .queued = "", .remarks = "", .counts = ""},
      {.what = "a failed airspeed indicator", .lead = {{.ias = 60}}, .now = {.ias = 30, .asiFailed = 1},
       .queued = "", .remarks = "", .counts = ""},
      {.what = "a jump of 36 knots", .lead = {{.ias = 80}}, .now = {.ias = 44}, .queued = "",
       .remarks = "", .counts = ""},
      {.what = "a change of 35 knots is believed", .lead = {{.ias = 79}}, .now = {.ias = 44},
       .queued = "SpeedUp.wav|c172\\vs.wav", .remarks = "SpeedUp.wav 2",
       .counts = "NearStall"},
      // Led in below 50 feet, where the rule is silent.
      {.what = "the reading before at 5 knots", .lead = {{.agl = M(12), .ias = 5}},
       .now = {.agl = M(914), .ias = 30}, .queued = "", .remarks = "", .counts = ""},
      {.what = "both readings above 5 knots", .lead = {{.agl = M(12), .ias = 6}},
       .now = {.agl = M(914), .ias = 30}, .queued = "SpeedUp.wav|c172\\vs.wav",
       .remarks = "SpeedUp.wav 2", .counts = "NearStall"},
  });
}

TEST(CruiseSpeeds, GearNeverExceedAndFlaps) {
  Check({
      {.what = "151 knots under a 163 barber pole", .lead = {{.ias = 140, .vne = 163}},
       .now = {.ias = 151}, .queued = "", .remarks = "", .counts = ""},
      {.what = "152 knots: the warning", .lead = {{.ias = 140, .vne = 163}}, .now = {.ias = 152},
       .queued = "AmberSlowDown.wav", .remarks = "AmberSlowDown.wav 1", .counts = ""},
      {.what = "161 knots: still the warning", .lead = {{.ias = 140, .vne = 163}}, .now = {.ias = 161},
       .queued = "AmberSlowDown.wav", .remarks = "AmberSlowDown.wav 1", .counts = ""},
      {.what = "162 knots: the fault and the aircraft's limit", .lead = {{.ias = 140, .vne = 163}},
       .now = {.ias = 162}, .queued = "SlowDown.wav|c172\\vne.wav",
       .remarks = "SlowDown.wav 2", .counts = "ExceedVNE"},
      {.what = "gear down in the cruise", .prepare = Retractable, .now = {.ias = 140},
       .queued = "RaiseGear.wav", .remarks = "RaiseGear.wav 1", .counts = ""},
      {.what = "gear down beyond its speed", .prepare = Retractable, .now = {.ias = 141},
       .queued = "RaiseGear.wav", .remarks = "RaiseGear.wav 2", .counts = "ExceedGearDown"},
      {.what = "gear down in Landing", .phase = Phase::Landing, .prepare = Retractable,
       .now = {.ias = 140}, .queued = "", .remarks = "", .counts = ""},
      {.what = "gear down in Landing beyond its speed", .phase = Phase::Landing,
       .prepare = Retractable, .now = {.ias = 141}, .queued = "RaiseGear.wav",
       .remarks = "RaiseGear.wav 2", .counts = "ExceedGearDown"},
      {.what = "fixed gear", .now = {.ias = 141}, .queued = "", .remarks = "", .counts = ""},
      {.what = "gear down at 197 feet", .prepare = Retractable, .now = {.agl = M(60), .ias = 141},
       .queued = "", .remarks = "", .counts = ""},
      {.what = "descending with the gear up", .lead = {{.agl = M(122)}, {.gearDown = 0}},
       .now = {.agl = M(120), .ias = 139}, .queued = "LowerGear.wav",
       .remarks = "LowerGear.wav 1", .counts = ""},
      {.what = "too fast to lower it", .lead = {{.agl = M(122)}, {.gearDown = 0}},
       .now = {.agl = M(120), .ias = 140}, .queued = "SlowDownSoYouCanLowerGear.wav",
       .remarks = "SlowDownSoYouCanLowerGear.wav 1", .counts = ""},
      {.what = "a float plane keeps its gear up", .prepare = FloatPlane,
       .lead = {{.agl = M(122)}, {.gearDown = 0}}, .now = {.agl = M(120)}, .queued = "",
       .remarks = "", .counts = ""},
      {.what = "sinking 3 feet is no descent", .lead = {{.agl = M(122)}, {.gearDown = 0}},
       .now = {.agl = M(121)}, .queued = "", .remarks = "", .counts = ""},
      {.what = "cruising with flaps", .now = {.flaps = 256}, .queued = "CruisingWithFlaps.wav",
       .remarks = "CruisingWithFlaps.wav 1", .counts = ""},
      {.what = "flaps at 255 are up", .now = {.flaps = 255}, .queued = "", .remarks = "", .counts = ""},
      {.what = "flaps in the climb", .phase = Phase::TakeOff, .now = {.flaps = 2000}, .queued = "",
       .remarks = "", .counts = ""},
  });
}

TEST(CruiseSpeeds, ClimbOut) {
  const Air at400 = {.alt = M(500)};
  Check({
      {.what = "sinking 7 feet by both", .phase = Phase::TakeOff, .lead = {at400},
       .now = {.agl = M(120), .alt = M(498)}, .queued = "TakeOffDescent.wav",
       .remarks = "TakeOffDescent.wav 2", .counts = "TakeOffDescent",
       .messages = "Are you CRUISING?"},
      {.what = "20 feet by the altimeter alone", .phase = Phase::TakeOff, .lead = {at400},
       .now = {.alt = M(494)}, .queued = "TakeOffDescent.wav",
       .remarks = "TakeOffDescent.wav 2", .counts = "TakeOffDescent",
       .messages = "Are you CRUISING?"},
      {.what = "16 feet by the altimeter: the warning", .phase = Phase::TakeOff, .lead = {at400},
       .now = {.alt = M(495)}, .queued = "AmberTakeOffDescent.wav",
       .remarks = "AmberTakeOffDescent.wav 1", .counts = ""},
      {.what = "13 feet by the radio altimeter: the warning", .phase = Phase::TakeOff, .lead = {at400},
       .now = {.agl = M(118)}, .queued = "AmberTakeOffDescent.wav",
       .remarks = "AmberTakeOffDescent.wav 1", .counts = ""},
      {.what = "3.3 and 4 feet: the warning", .phase = Phase::TakeOff,
       .lead = {{.alt = M(501)}}, .now = {.agl = M(121), .alt = M(500)}, .queued = "AmberTakeOffDescent.wav",
       .remarks = "AmberTakeOffDescent.wav 1", .counts = ""},
      {.what = "7 feet by the radio altimeter alone", .phase = Phase::TakeOff, .lead = {at400},
       .now = {.agl = M(120)}, .queued = "", .remarks = "", .counts = ""},
      {.what = "below 150 feet", .phase = Phase::TakeOff, .lead = {{.agl = M(45)}},
       .now = {.agl = M(43), .alt = M(498)}, .queued = "", .remarks = "", .counts = ""},
      {.what = "in the cruise", .lead = {at400}, .now = {.agl = M(120), .alt = M(498)}, .queued = "",
       .remarks = "", .counts = ""},
      {.what = "a heavy aircraft", .phase = Phase::TakeOff, .prepare = Heavy, .lead = {at400},
       .now = {.agl = M(120), .alt = M(498)}, .queued = "", .remarks = "", .counts = ""},
      {.what = "a heavy aircraft's positive rate", .phase = Phase::TakeOff, .prepare = Heavy,
       .lead = {{.agl = M(100), .alt = M(500)}}, .now = {.agl = M(104), .alt = M(504)},
       .queued = "PositiveRateGearUP.wav", .remarks = "", .counts = ""},
      {.what = "positive rate with the gear up", .phase = Phase::TakeOff, .prepare = Heavy,
       .lead = {{.agl = M(100), .alt = M(500), .gearDown = 0}},
       .now = {.agl = M(104), .alt = M(504)}, .queued = "", .remarks = "", .counts = ""},
      {.what = "a light aircraft climbing", .phase = Phase::TakeOff,
       .lead = {{.agl = M(100), .alt = M(500)}}, .now = {.agl = M(104), .alt = M(504)},
       .queued = "", .remarks = "", .counts = ""},
      {.what = "sinking back below 20 feet becomes a landing", .phase = Phase::TakeOff,
       .lead = {{.agl = M(7), .alt = M(500)}}, .now = {.agl = M(5), .alt = M(498)},
       .queued = "", .remarks = "", .counts = "",
       .modes = "Landing"},
  });
}
// clang-format on

// Faults count occasions: a limit held is said and counted once per gap.
TEST(CruiseLimits, HeldFaultsCountOncePerGap) {
  struct Row {
    const char* what;
    void (*prepare)(FlightRig&);
    std::vector<Air> lead;
    int ticks;
    std::string queued, counts;
  };
  const std::vector<Row> rows = {
      {"33 degrees for 20 seconds", nullptr, Roll(0, 33, 8), 40,
       "AMBERBringBankBack.wav|AMBERBringBankBack.wav", "ExceedBankRight|ExceedBankRight"},
      {"G 1300 for 10 seconds", nullptr, {{.g = 1300}}, 20, "TooManyGs.wav", "ExceedGsPositive"},
      // The log keeps the yoke held in ticks.
      {"the yoke held for 5 seconds",
       Yoke,
       {{.elevator = 9000}},
       10,
       "UseTrimmers.wav",
       "NotUseTrimmers|NotUseTrimmers|NotUseTrimmers|NotUseTrimmers|NotUseTrimmers|"
       "NotUseTrimmers|NotUseTrimmers|NotUseTrimmers|NotUseTrimmers|NotUseTrimmers"},
      // A slow roll: the bank rules only, never the roll rate's.
      {"a slow roll to 60 degrees", nullptr, Roll(0, 60, 3), 10,
       "AMBERBringBankBack.wav|BringBankBack.wav", "ExceedBankRight|ExceedBankRight"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.what);
    FlightRig rig;
    Airborne(rig, Phase::Cruise);
    if (row.prepare) row.prepare(rig);
    rig.Mark();
    for (const Air& a : row.lead) {
      Set(rig, a);
      rig.Tick();
    }
    rig.Tick(row.ticks - 1);
    const Heard h = Read(rig);
    EXPECT_EQ(h.queued, row.queued);
    EXPECT_EQ(h.counts, row.counts);
  }
}

// Near the stall the two words take turns by chance, not always the same.
TEST(CruiseSpeeds, NearStallWordsVary) {
  FlightRig rig;
  Airborne(rig, Phase::Cruise);
  Set(rig, {.ias = 45});
  rig.Mark();
  rig.Tick(31 * 20);
  const std::string queued = Read(rig).queued;
  EXPECT_NE(queued.find("SpeedUp.wav"), std::string::npos);
  EXPECT_NE(queued.find("DontStall.wav"), std::string::npos);
  EXPECT_EQ(rig.stats().NearStall, 20);
}

// Each type speaks from its own folder; the others have no such call.
TEST(CruiseSpeeds, TypeCalls) {
  struct Row {
    AircraftType type;
    std::string clean, flapsOut, vne;
  };
  const std::vector<Row> rows = {
      {AircraftType::C172, "c172\\vs.wav", "c172\\vso.wav", "c172\\vne.wav"},
      {AircraftType::C152, "c152\\vs.wav", "c152\\vso.wav", "c152\\vne.wav"},
      {AircraftType::Mooney, "Mooney\\zPro_vs.wav", "Mooney\\zPro_vso.wav", "Mooney\\zPro_vne.wav"},
      {AircraftType::C208B, "c208B\\zPro_vs.wav", "c208b\\zPro_vso.wav", "c208B\\zPro_vne.wav"},
      {AircraftType::KingAir350, "BeechKingAir350\\zPro_vs.wav", "BeechKingAir350\\zPro_vso.wav",
       "BeechKingAir350\\zPro_vne.wav"},
      {AircraftType::DC3, "DC3\\zPro_vs.wav", "DC3\\zPro_vso.wav", "DC3\\zPro_vne.wav"},
      {AircraftType::Lear45, "Lear45\\vs.wav", "Lear45\\vso.wav", "Lear45\\vne.wav"},
      {AircraftType::C182, "c182\\zPro_vs.wav", "c182\\zPro_vso.wav", "c182\\zPro_vne.wav"},
      {AircraftType::Baron, "", "", "BaronB58\\zPro_vne.wav"},
      {AircraftType::B737, "", "", "b737\\vne.wav"},
      {AircraftType::B757, "", "", "b757\\vne.wav"},
      {AircraftType::CRJ700, "", "", "CRJ700\\vne.wav"},
      {AircraftType::TwinOtter, "", "", "TwinOtter\\vne.wav"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.vne);
    AircraftValues a;
    a.Is[static_cast<size_t>(row.type)] = true;
    EXPECT_EQ(StallCall(a, false), row.clean);
    EXPECT_EQ(StallCall(a, true), row.flapsOut);
    EXPECT_EQ(NeverExceedCall(a), row.vne);
  }
  EXPECT_EQ(NeverExceedCall(AircraftValues{}), "");
}

}  // namespace
}  // namespace vantoro
