#include <set>
#include <sstream>
#include <string>

#include "engine/flight_rig.h"

namespace vantoro {
namespace {

// A height of whole metres in feet: the simulator keeps heights in metres.
constexpr double M(double metres) {
  return metres * 3.281;
}

// One tick's values as words: "bank=33 ias=47" (heights in metres), and the
// pilot's set-ups: circuits, heavy, yoke, rudderwatch, retractable, float.
void Apply(FlightRig& rig, const std::string& words) {
  OffsetImage& im = rig.image;
  std::istringstream in(words);
  for (std::string w; in >> w;) {
    const size_t eq = w.find('=');
    const std::string k = w.substr(0, eq);
    const double v = eq == std::string::npos ? 1 : std::stod(w.substr(eq + 1));
    if (k == "agl") rig.AGL(M(v));
    if (k == "alt") rig.Altitude(M(v));
    if (k == "ias") im.SetU16(0x02BC, static_cast<uint16_t>(v * 128));
    if (k == "vne") im.SetU16(0x02C4, static_cast<uint16_t>(v * 128));
    if (k == "g") im.SetI16(0x11BA, static_cast<int16_t>(v));
    if (k == "bank") rig.Bank(static_cast<int>(v));
    if (k == "pitch") rig.Pitch(static_cast<int>(v));
    if (k == "elevator") im.SetI16(0x0BB2, static_cast<int16_t>(v));
    if (k == "rudder") im.SetI16(0x0BBA, static_cast<int16_t>(v));
    if (k == "slip") im.SetU8(0x036E, static_cast<uint8_t>(static_cast<int8_t>(v)));
    if (k == "flaps") im.SetU16(0x30F0, static_cast<uint16_t>(v));
    if (k == "stall") im.SetU8(0x036C, 1);
    if (k == "asifailed") im.SetU8(0x0B65, 1);
    if (k == "gear") rig.Gear(v > 0), im.SetU8(0x0BF4, v > 0);  // the left gear follows
    if (k == "circuits") rig.instructor.flight.CircuitsWanted = true;
    if (k == "heavy") rig.Heavy(true);
    if (k == "yoke") rig.instructor.options.HaveYokePressure = true;
    if (k == "rudderwatch") rig.instructor.options.RudderController = true;
    if (k == "retractable") rig.instructor.aircraft.Raw.RetractableGear = true;
    if (k == "float") rig.instructor.aircraft.Raw.FloatPlane = true;
  }
}

// In the air in the phase asked for (climbing out at 400 feet, cruising or
// landing at 3000), with a light single's stall speeds 48 and 40 knots and a
// gear limit of 140.
void Airborne(FlightRig& rig, int mode) {
  rig.Altitude(M(500));
  rig.Ready();
  rig.Follow(mode == 0 ? Climb(M(122)) : mode == 1 ? CruiseAt(M(914)) : LandingAt(M(914)));
  rig.instructor.aircraft.StallCruise = 48;
  rig.instructor.aircraft.StallLanding = 40;
  rig.instructor.aircraft.GearSpeedLimit = 140;
  Apply(rig, "ias=100 gear=1");
  rig.Tick();
}
constexpr int kTakeOff = 0, kCruise = 1, kLanding = 2;

// What these rules said since the mark: sounds queued with the level of their
// remark ("file:2"), then "+" each count, their message and mode changes.
std::string Heard(const FlightRig& rig) {
  static const std::set<int64_t> kFamilies = {0,  33, 36, 37, 38, 39, 40, 41, 42,  43, 44,
                                              45, 46, 61, 62, 63, 73, 81, 89, 102, 108};
  const std::string counters =
      "NotLevelWings ExceedPitchChange ExceedGsPositive ExceedGsNegative NotUseTrimmers "
      "ExceedBankRight ExceedBankLeft CircuitBadBankAngle ExceedBankChange ExceedStall NearStall "
      "NotRudderToCoordinateTurns ExceedGearDown ExceedVNE TakeOffDescent";
  std::string out;
  for (const Event& q : rig.Since("queued")) {
    if (q.Find("id") == nullptr || !kFamilies.count(q.Int("id"))) continue;
    out += (out.empty() ? "" : "|") + q.Text("file");
    for (const Event& r : rig.Since("remark"))
      if (r.tick == q.tick && r.Text("file") == q.Text("file"))
        out += ":" + std::to_string(r.Int("level"));
  }
  for (const Event& e : rig.Since("count"))
    if (counters.find(e.Text("name")) != std::string::npos) out += " +" + e.Text("name");
  if (rig.Seconds("Are you CRUISING?") == 5) out += " \"Are you CRUISING?\"";
  if (!rig.Modes().empty()) out += " " + rig.Modes();
  return out.starts_with(' ') ? out.substr(1) : out;
}

void Fly(FlightRig& rig, const std::string& ticks) {
  std::istringstream in(ticks + ";");
  for (std::string tick; std::getline(in, tick, ';');) Apply(rig, tick), rig.Tick();
}

// A case: the ticks that lead in, separated by ";" (they say nothing
// themselves), the ticks judged, and what the pilot hears of them.
struct Case {
  std::string what, lead, now, heard;
};

void Check(int mode, const std::vector<Case>& cases) {
  for (const Case& k : cases) {
    SCOPED_TRACE(k.what);
    FlightRig rig;
    Airborne(rig, mode);
    Fly(rig, k.lead);
    rig.Mark();
    Fly(rig, k.now);
    std::string heard = Heard(rig);
    // Near the stall one of two words is drawn by chance.
    if (size_t at = heard.find("DontStall.wav:2|"); at != std::string::npos)
      heard.replace(at, 13, "SpeedUp.wav");
    EXPECT_EQ(heard, k.heard);
  }
}

const std::string R32 = "bank=8;bank=16;bank=24;bank=32";

// clang-format off
TEST(CruiseLimits, AttitudeAndLoad) {
  Check(kCruise, {
      {"32 right", "bank=8;bank=16;bank=24", "bank=32", ""},
      {"33 right", R32, "bank=33", "AMBERBringBankBack.wav:2 +ExceedBankRight"},
      {"35 left, circuits", "circuits bank=-8;bank=-16;bank=-24;bank=-32", "bank=-35", "AMBERwatchthatbankangle.wav:2|watchthatbankangle.wav:2 +ExceedBankLeft +CircuitBadBankAngle"},
      {"roll 11 left", "bank=8;bank=16;bank=20", "bank=9", "OuchBank1.wav:2 +ExceedBankChange"},
      {"roll 9 left", "bank=8;bank=16;bank=20", "bank=11", "AMBEROuchBank1.wav:1"},
      {"roll 11 right", "", "bank=11", "OuchBank2.wav:2 +ExceedBankChange"},
      {"pitch +7", "pitch=2", "pitch=9", "EasyOnThePitch.wav:2 +ExceedPitchChange"},
      {"pitch -6", "pitch=2", "pitch=-4", "AmberEasyOnThePitch.wav:1"},
      {"G 1000", "g=625", "g=1000", ""},
      {"G 1001", "g=625", "g=1001", "AMBERTooManyGs.wav:1"},
      {"G 1251", "g=625", "g=1251", "TooManyGs.wav:2 +ExceedGsPositive"},
      {"G -501 at once", "g=625", "g=-501", "StressHigh.WAV|TooManyGs.wav:2 +ExceedGsNegative"},
      {"G 2501 at once", "agl=25 g=2400", "agl=914 g=2501", "StressHigh.WAV|TooManyGs.wav:2 +ExceedGsPositive"},
      {"G held past 2500", "agl=25 g=2600", "agl=914", "TooManyGs.wav:2 +ExceedGsPositive"},
      {"yoke pushed", "yoke", "elevator=-8001", "UseTrimmers.wav:2 +NotUseTrimmers"},
      {"yoke held 3 ticks", "yoke", "elevator=9000;;", "UseTrimmers.wav:2 +NotUseTrimmers +NotUseTrimmers +NotUseTrimmers"},
      {"33 right for 20 s", "", "bank=8;bank=16;bank=24;bank=32;bank=33" + std::string(40, ';'), "AMBERBringBankBack.wav:2|AMBERBringBankBack.wav:2 +ExceedBankRight +ExceedBankRight"},
      {"slow roll to 60", "", "bank=3;bank=6;bank=9;bank=12;bank=15;bank=18;bank=21;bank=24;bank=27;bank=30;bank=33;bank=36;bank=39;bank=42;bank=45;bank=48;bank=51;bank=54;bank=57;bank=60",
       "AMBERBringBankBack.wav:2|BringBankBack.wav:2 +ExceedBankRight +ExceedBankRight"},
      {"no rudder", "rudderwatch", "rudder=999 slip=101", "UseRudderToCoordinateTurns.wav:2 +NotRudderToCoordinateTurns"},
      {"rudder used", "rudderwatch", "rudder=1000 slip=101", ""},
      {"5 deg at 49 ft", "bank=5", "agl=15", "LevelWings.wav:2 +NotLevelWings"},
      {"4 deg at 49 ft", "bank=4", "agl=15", "AMBERLevelWings.wav:1"},
      {"5 deg at 52 ft", "bank=5", "agl=16", ""},
      {"only wings at 49 ft", "yoke pitch=0 g=625", "agl=15 pitch=10 g=1300 elevator=9000", ""},
  });
}

TEST(CruiseSpeeds, StallGearAndNeverExceed) {
  Check(kCruise, {
      {"stall warning", "ias=60", "ias=45 stall", "StallProcedure.wav:2 +ExceedStall"},
      {"clean 47 kt", "ias=60", "ias=47", "SpeedUp.wav:2|c172\\vs.wav +NearStall"},
      {"flaps out 39 kt", "ias=60 flaps=2000", "ias=39", "SpeedUp.wav:2|c172\\vso.wav +NearStall"},
      {"82 ft, 39 kt", "ias=60", "agl=25 ias=39", "DontStall.wav:2 +NearStall"},
      {"failed ASI", "ias=60", "ias=30 asifailed", ""},
      {"36-knot jump", "ias=80", "ias=44", ""},
      {"35-knot change", "ias=79", "ias=44", "SpeedUp.wav:2|c172\\vs.wav +NearStall"},
      {"reading before 5", "agl=12 ias=5", "agl=914 ias=30", ""},
      {"151 kt, VNE 163", "ias=140 vne=163", "ias=151", ""},
      {"152 kt", "ias=140 vne=163", "ias=152", "AmberSlowDown.wav:1"},
      {"162 kt", "ias=140 vne=163", "ias=162", "SlowDown.wav:2|c172\\vne.wav +ExceedVNE"},
      {"gear down", "", "retractable ias=140", "RaiseGear.wav:1"},
      {"gear too fast", "", "retractable ias=141", "RaiseGear.wav:2 +ExceedGearDown"},
      {"gear up, sinking", "agl=122;gear=0", "agl=120 ias=139", "LowerGear.wav:1"},
      {"gear up, fast", "agl=122;gear=0", "agl=120 ias=140", "SlowDownSoYouCanLowerGear.wav:1"},
      {"float plane", "float agl=122;gear=0", "agl=120", ""},
      {"flaps out", "", "flaps=256", "CruisingWithFlaps.wav:1"},
  });
  Check(kLanding, {
      {"gear down landing", "retractable", "ias=140", ""},
      {"gear too fast landing", "retractable", "ias=141", "RaiseGear.wav:2 +ExceedGearDown"},
  });
}

TEST(CruiseSpeeds, ClimbOut) {
  Check(kTakeOff, {
      {"7 ft by both", "", "agl=120 alt=498", "TakeOffDescent.wav:2 +TakeOffDescent \"Are you CRUISING?\""},
      {"20 ft by altitude", "", "alt=494", "TakeOffDescent.wav:2 +TakeOffDescent \"Are you CRUISING?\""},
      {"3.3 and 4 ft", "alt=501", "agl=121 alt=500", "AmberTakeOffDescent.wav:1"},
      {"7 ft by AGL", "", "agl=120", ""},
      {"heavy", "heavy", "agl=120 alt=498", ""},
      {"heavy climbing", "heavy agl=100", "agl=104 alt=504", "PositiveRateGearUP.wav"},
      {"sinking below 20 ft", "agl=7", "agl=5 alt=498", "Landing"},
  });
}

// clang-format on

}  // namespace
}  // namespace vantoro
