// Failures injected by the instructor and failures noticed, in the order the
// tick runs them. The draws are written as the instructor has always drawn
// them: whole numbers by rounding half to even, so that the first and last
// instrument of the table are half as likely as the others, and an engine
// number that rounds past the last engine is held to it.
#include "engine/failures.h"

#include <algorithm>
#include <string>

#include "base/numbers.h"
#include "engine/tick_rules.h"
#include "records/flight_stats.h"
#include "records/markup.h"

namespace vantoro {

namespace {

constexpr uint32_t kRecordBase = kMainBlockOffset;  // position 0 of the record buffer

constexpr std::array<FailureNames, kFailures> kNames = {{
    {"ADF", "ADF", "FS_FAIL_ADF.wav"},
    {"ASI", "ASI", "FS_FAIL_ASI.wav"},
    {"ALTIMETER", "Altimeter", "FS_FAIL_ALTIMETER.wav"},
    {"ATTITUDE INDICATOR", "Attitude Indicator", "FS_FAIL_ATTITUDE_INDICATOR.wav"},
    {"COM1 RADIO", "COM1 Radio", "FS_FAIL_COM1_RADIO.wav"},
    {"COMPASS", "Whiskey Compass", "FS_FAIL_COMPASS.wav"},
    {"ELECTRICS", "Electrical System", "FS_FAIL_ELECTRICS.wav"},
    {"ENGINE", "Engine(s)", ""},
    {"FUEL INDICATOR", "Fuel Indicator(s)", "FS_FAIL_FUEL_INDICATOR.wav"},
    {"HEADING INDICATOR", "Heading Indicator", "FS_FAIL_HEADING_INDICATOR.wav"},
    {"VSI", "VSI", "FS_FAIL_VSI.wav"},
    {"TRANSPONDER", "Transponder", "FS_FAIL_TRANSPONDER.wav"},
    {"NAV1", "NAV1 Radio", "FS_FAIL_NAV1.wav"},
    {"PITOT", "Pitot Static System", "FS_FAIL_PITOT.wav"},
    {"TURN COORDINATOR", "Turn Coordinator", "FS_FAIL_TURN_COORDINATOR.wav"},
    {"VACUUM", "Vacuum System", "FS_FAIL_VACUUM.wav"},
}};

// Offsets of the simulator written here.
constexpr uint32_t kEngineFailByte = 0x32F8;  // bit n-1: engine n failed
constexpr uint32_t kEngineFireByte = 0x3366;  // bit n-1: engine n on fire
constexpr uint8_t kFireWritten = 16;          // added to every fire write
constexpr uint32_t kPitotHeat = 0x029C;
constexpr uint32_t kMasterBattery = 0x281C;
constexpr uint32_t kMasterAvionics = 0x2E80;
constexpr uint32_t kAutopilotMaster = 0x07BC;
constexpr uint32_t kNavGpsSwitch = 0x132C;
constexpr uint32_t kAutoThrottleArm = 0x0810;
constexpr uint32_t kAirspeedHold = 0x07DC;
constexpr uint32_t kHeadingHold = 0x07C8;
constexpr uint32_t kMachHold = 0x07E4;
constexpr uint32_t kAltitudeHold = 0x07D0;
constexpr uint32_t kFlightDirector = 0x2EE0;

// The pilot's reliability: at this value nothing ever fails.
constexpr int32_t kPerfectlyReliable = 100;

// The take-off fire: below this height, above this speed, with at least one
// chance in this many per tick.
constexpr double kFireBelowFeet = 1000;
constexpr int32_t kFireAboveIAS = 50;
constexpr double kFireLeastDraw = 400;

// The in-flight draw: v = round(Rnd x R x R x kDrawScale); v 0..12 acts.
constexpr double kDrawScale = 5;
constexpr double kEngineByteChance = 0.2;  // v = 0: a bird strike instead of an instrument
constexpr double kEngineByteAboveFeet = 650;
constexpr double kSwitchChance = 0.1;  // v = 2..12
constexpr double kEngineChance = 0.1;  // an instrument draw that falls on the engines
constexpr double kLastInstrument = 15;

// The switch remarks keep quiet below this height on the approach.
constexpr double kQuietBelowFeet = 300;
constexpr int kGap = 30;
constexpr int kSwitchExpiry = 16;
constexpr int kNoticeExpiry = 16;
// The notices of the sixteen failures have sound families of their own.
constexpr int kFirstNoticeId = 160;

constexpr int kMessageSeconds = 8;

uint32_t Position(uint32_t offset) {
  return offset - kRecordBase;
}

bool Chance(Cockpit& c, double p) {
  return c.random.Uniform() < p;
}

bool SimulatorCanBurn(const Cockpit& c) {
  return c.flight.SimulatorName == "FSX" || c.flight.SimulatorName == "P3D";
}

bool Combustion(const FSData& d, int n) {
  switch (n) {
    case 1:
      return d.Eng1Combustion;
    case 2:
      return d.Eng2Combustion;
    case 3:
      return d.Eng3Combustion;
    case 4:
      return d.Eng4Combustion;
    default:
      return false;
  }
}

uint8_t BurningBits(const FSData& d) {
  return static_cast<uint8_t>((d.Eng1OnFire ? 1 : 0) | (d.Eng2OnFire ? 2 : 0) |
                              (d.Eng3OnFire ? 4 : 0) | (d.Eng4OnFire ? 8 : 0));
}

uint8_t EngineBit(int n) {
  return static_cast<uint8_t>(1u << (n - 1));
}

bool EngineThere(const FSData& d, int n) {
  return n >= 1 && n <= std::min(d.Engines, 4);
}

// An engine drawn by `whole` of Rnd x engines, plus one, held to the last
// engine; 0 when the aircraft has none.
template <typename Whole>
int DrawEngine(Cockpit& c, Whole whole) {
  const int32_t engines = std::min(c.link.Now().Engines, 4);
  if (engines < 1) return 0;
  const int n = static_cast<int>(whole(c.random.Uniform() * engines)) + 1;
  return std::min(n, engines);
}

// The failure or mend of one draw: i = round(Rnd x 15); the engines (7)
// only one time in ten, with their own number draw. Returns the words of
// the message line, empty when nothing was done.
std::string DrawFailure(Cockpit& c, bool fail) {
  const int32_t i = CLng(c.random.Uniform() * kLastInstrument);
  if (i == static_cast<int32_t>(kFailEngineIndex)) {
    if (!Chance(c, kEngineChance)) return {};
    const int n = DrawEngine(c, [](double x) { return CLng(x); });
    if (n == 0) return {};
    if (fail)
      FailEngine(c, n);
    else
      FixEngine(c, n);
    return std::to_string(n) + " " + kNames[kFailEngineIndex].message;
  }
  const uint32_t position = Position(kFailFlagsOffset + static_cast<uint32_t>(i));
  if (fail)
    FailThis(c, position);
  else
    FixThis(c, position);
  return kNames[static_cast<size_t>(i)].message;
}

// The remark of a switch the draw turned, when the pilot wants failures
// noticed, and never on the approach below 300 feet, where he must not be
// distracted.
void NoticeSwitch(Cockpit& c, std::string_view file, int id) {
  const FSData& now = c.link.Now();
  if (!c.options.InstructorNoticesFailures) return;
  if (now.OnGround == 0 && now.AGL < kQuietBelowFeet && c.flight.Modes.Landing) return;
  Voice v = c.voice();
  PlayPerhaps(v, file, id, kGap, kSwitchExpiry);
}

// A switch that is on goes off, one time in ten, and is remarked on.
void SwitchOff(Cockpit& c, bool on, uint32_t offset, std::string_view file, int id) {
  if (!on || !Chance(c, kSwitchChance)) return;
  FixThis(c, Position(offset));
  NoticeSwitch(c, file, id);
}

// One time in ten a switch changes over, whichever way it stood.
void SwitchFlipped(Cockpit& c, bool on, uint32_t offset, std::string_view file, int id) {
  if (!Chance(c, kSwitchChance)) return;
  FailThis(c, Position(offset), on ? 0 : 1);
  NoticeSwitch(c, file, id);
}

bool FailedForTheTimer(const FSData& now, size_t i) {
  if (i == kFailElectricsIndex) return now.FailFlags[i] && now.MasterBattery;
  return now.FailFlags[i];
}

// "Z" and the simulator's UTC time, hh:mm:ss.
std::string ZuluPrefix(const FSData& now) {
  return "Z" + FormatDigits(now.ZuluHour, 2) + ":" + FormatDigits(now.ZuluMinute, 2) + ":" +
         FormatDigits(now.Second, 2);
}

// The best glide speed of the types that have one, after the loss of the
// last engine; single-engine types and the multi-engine ones apart.
constexpr AircraftType kSingleGlide[] = {AircraftType::C172, AircraftType::Mooney,
                                         AircraftType::C208B, AircraftType::C182,
                                         AircraftType::C152};
constexpr AircraftType kMultiGlide[] = {AircraftType::Baron, AircraftType::KingAir350,
                                        AircraftType::DC3, AircraftType::TwinOtter,
                                        AircraftType::Lear45};

// The file of each type's best glide speed, in its folder.
std::string BestGlideOf(AircraftType t) {
  const bool later = t == AircraftType::Mooney || t == AircraftType::C208B ||
                     t == AircraftType::C182 || t == AircraftType::Baron ||
                     t == AircraftType::KingAir350 || t == AircraftType::DC3;
  return std::string(TypeSoundFolder(t)) + (later ? "zPro_" : "") + "BestGlideSpeed.wav";
}

template <size_t N>
void SayBestGlide(Cockpit& c, Voice& v, const AircraftType (&types)[N]) {
  for (AircraftType t : types) {
    if (!c.aircraft.WantType(t)) continue;
    PlayAlways(v, BestGlideOf(t));
    return;
  }
}

}  // namespace

const FailureNames& FailureNamesOf(size_t index) {
  return kNames.at(index);
}

void FailThis(Cockpit& c, uint32_t position, uint8_t value) {
  WriteToSim(c.sim, c.events, c.flight.TickCount, position + kRecordBase, &value, 1);
}

void FixThis(Cockpit& c, uint32_t position, uint8_t value) {
  FailThis(c, position, value);
}

void FailEngine(Cockpit& c, int n) {
  if (n < 1 || n > 4) return;
  c.failures.EngineFailBits |= EngineBit(n);
  FailThis(c, Position(kEngineFailByte), c.failures.EngineFailBits);
}

void FixEngine(Cockpit& c, int n) {
  if (n < 1 || n > 4) return;
  c.failures.EngineFailBits &= static_cast<uint8_t>(~EngineBit(n));
  FixThis(c, Position(kEngineFailByte), c.failures.EngineFailBits);
}

void FireEngine(Cockpit& c, int n) {
  const FSData& now = c.link.Now();
  if (!EngineThere(now, n) || !Combustion(now, n)) return;
  const uint8_t fire = static_cast<uint8_t>((BurningBits(now) | EngineBit(n)) + kFireWritten);
  FailThis(c, Position(kEngineFireByte), fire);
}

void FireRandomEngine(Cockpit& c) {
  const int n = DrawEngine(c, [](double x) { return Int(x); });
  if (n > 0) FireEngine(c, n);
}

int BirdStrike(Cockpit& c) {
  const int n = DrawEngine(c, [](double x) { return Int(x); });
  FailEngine(c, n);
  return n;
}

void RandomFailure(Cockpit& c) {
  const std::string what = DrawFailure(c, true);
  if (!what.empty()) ShowMessage(c, what + " FAILURE!", kMessageSeconds);
}

void RandomFix(Cockpit& c) {
  const std::string what = DrawFailure(c, false);
  if (!what.empty()) ShowMessage(c, what + " is now functioning!", kMessageSeconds);
}

void CountFailureSeconds(Cockpit& c) {
  const FSData& now = c.link.Now();
  FlightStats& stats = c.flight.Flight();
  for (size_t i = 0; i < kFailures; ++i)
    if (FailedForTheTimer(now, i)) stats.FailureSeconds[i] += 1;
}

void AnnounceIFInstructorNoticesFailures(Cockpit& c) {
  if (!c.options.InstructorNoticesFailures) return;
  const FSData& now = c.link.Now();
  const FSData& before = c.link.Before();
  Voice v = c.voice();
  for (size_t i = 0; i < kFailures; ++i) {
    const std::string_view notice = kNames[i].notice;
    if (notice.empty() || !now.FailFlags[i] || before.FailFlags[i]) continue;
    PlayPerhaps(v, notice, kFirstNoticeId + static_cast<int>(i), kGap, kNoticeExpiry);
  }
}

void BuildFailureEventList(Cockpit& c) {
  const FSData& now = c.link.Now();
  const FSData& before = c.link.Before();
  ScoreState& s = c.scores;
  for (size_t i = 0; i < kFailures; ++i) {
    if (now.FailFlags[i] == before.FailFlags[i]) continue;
    s.FailureEventsText += std::string(now.FailFlags[i] ? "Failure: " : "Working: ") +
                           ZuluPrefix(now) + " " + kNames[i].event + std::string(kLineBreak);
    s.FailureEvents = true;
  }
}

void AnnounceEngineLossAirborne(Cockpit& c) {
  const FSData& now = c.link.Now();
  const FSData& before = c.link.Before();
  if (now.OnGround != 0) return;
  const int engines = std::min(now.Engines, 4);
  bool lost = false;
  int firing = 0;
  for (int n = 1; n <= engines; ++n) {
    if (Combustion(before, n) && !Combustion(now, n)) lost = true;
    if (Combustion(now, n)) ++firing;
  }
  if (!lost) return;
  Voice v = c.voice();
  if (engines == 1) {
    PlayAlways(v, "WeHaveLostTheEngine.wav");
    SayBestGlide(c, v, kSingleGlide);
    // Carburettor ice is the likely cause in these two: 0x08B2 is engine 1's
    // carburettor heat lever.
    if (now.Eng1OnFire || now.Eng1Primer) return;
    if (c.aircraft.WantType(AircraftType::C182)) PlayAlways(v, "c182\\zPro_CarbHeatOn.wav");
    if (c.aircraft.WantType(AircraftType::C152)) PlayAlways(v, "c152\\CarbHeatOn.wav");
  } else if (firing == 0) {
    PlayAlways(v, "WeHaveLostAllEngines.wav");
    SayBestGlide(c, v, kMultiGlide);
  } else {
    PlayAlways(v, "WeHaveLostAnEngine.wav");
  }
}

void RandomEngineFire(Cockpit& c) {
  const FSData& now = c.link.Now();
  const int32_t r = c.options.FailureSlider;
  if (!SimulatorCanBurn(c) || !c.options.WantRandomFailures || r >= kPerfectlyReliable) return;
  if (!(now.AGL < kFireBelowFeet) || !c.flight.Modes.TakeOff || now.IAS <= kFireAboveIAS) return;
  const double n = std::max(static_cast<double>(r) * r, kFireLeastDraw);
  if (Int(c.random.Uniform() * n) == 0) FireRandomEngine(c);
}

void RandomFailures(Cockpit& c) {
  const FSData& now = c.link.Now();
  const int32_t r = c.options.FailureSlider;
  if (!c.options.WantRandomFailures || r >= kPerfectlyReliable) return;
  const int32_t v = CLng(c.random.Uniform() * r * r * kDrawScale);
  switch (v) {
    case 0:
      // Above 650 feet, where the birds fly, one draw in five is a bird
      // strike; otherwise an instrument fails.
      if (Chance(c, kEngineByteChance) && now.AGL > kEngineByteAboveFeet)
        BirdStrike(c);
      else
        RandomFailure(c);
      break;
    case 1:
      if (c.options.WantLooseWireFailures) RandomFix(c);
      break;
    case 2:
      SwitchFlipped(c, now.PitotHeat, kPitotHeat, "FAIL_PITOT_HEAT.wav", 12);
      break;
    case 3:
      SwitchOff(c, now.MasterBattery, kMasterBattery, "FAIL_MASTER_BATTERY.wav", 9);
      break;
    case 4:
      SwitchOff(c, now.MasterAvionics != 0, kMasterAvionics, "FAIL_MASTER_AVIONICS.wav", 10);
      break;
    case 5:
      SwitchOff(c, now.AutopilotOn, kAutopilotMaster, "FAIL_MASTER_AP.wav", 11);
      break;
    case 6:
      SwitchFlipped(c, now.GpsDrivesNav, kNavGpsSwitch, "NAV_GPS_SWITCH.wav", 12);
      break;
    case 7:
      SwitchOff(c, now.AutoThrottleArm != 0, kAutoThrottleArm, "AutoThrottleArm.wav", 9);
      break;
    case 8:
      SwitchOff(c, now.APAirspeedHold != 0, kAirspeedHold, "AutopilotAirspeedHold.wav", 10);
      break;
    case 9:
      SwitchOff(c, now.APHeadingHold != 0, kHeadingHold, "AutopilotHeadingHold.wav", 11);
      break;
    case 10:
      SwitchOff(c, now.APMachHold != 0, kMachHold, "AutopilotMachHold.wav", 12);
      break;
    case 11:
      SwitchOff(c, now.APAltitudeHold != 0, kAltitudeHold, "AutopilotAltitudeHold.wav", 9);
      break;
    case 12:
      SwitchOff(c, now.FlightDirector != 0, kFlightDirector, "FlightDirectorActive.wav", 10);
      break;
    default:
      break;
  }
}

}  // namespace vantoro
