// Flight scripts: one line a step, "#" starts a comment line, blank lines are
// ignored. Words are separated by blanks; numbers use a point for decimals.
// Headings and wind directions are magnetic, as the pilot reads them; heights
// are feet above the field (the ground is flat at the field elevation);
// speeds are knots (indicated in the air, over the ground on the ground);
// vertical speeds are feet per minute, given without sign.
//
// Setting lines take no time and act from the next tick on:
//   aircraft title TEXT        the simulator's aircraft title
//   aircraft path TEXT         the aircraft file ("\" separated)
//   aircraft engines N         number of engines (1..4), all piston
//   aircraft retractable       the gear retracts (default: fixed gear)
//   fuel LEFT RIGHT [capacity C]  US gallons in the two main tanks (capacity 28 each)
//   position LAT LON           degrees, north and east positive
//   heading H                  the aircraft's heading, at once
//   field elevation FT         the ground's height above sea level
//   magvar D                   magnetic variation, east positive (-2 is 2 degrees west)
//   wind DIR SPEED             the wind, from DIR at SPEED knots
//   clock 2026-06-14T09:30:00  the simulator's clock and the computer's clock
//   obs D                      NAV1 omni-bearing selector
//   set OPTIONS                change the options below without letting time pass
//   key N / say PHRASE         the pilot presses hot key N / speaks, before the next tick
//   traffic air|ground SLOT at CLOCK FEET [high|low FT] [speed K] [vs V] [state S] [ident TEXT]
//                              a target of the simulator's traffic tables (slot 1..95), placed
//                              FEET from the aircraft at the clock position CLOCK (1..12) of
//                              its nose, level with it unless high or low; the rest of the
//                              line after "ident" is its call sign (default "N123"), state its
//                              AI state (140, en route). It stays there until placed again;
//                              the table's count of slots in use covers the highest slot placed
//   raw DIRECTIVE              a recording line written as it stands before the next tick
//                              ("raw u16 0C4E 12"); it holds until the generator itself
//                              changes that offset
//
// Phase lines let time pass. Each ends on its own condition, or after
// "for SECONDS" when that is given (targets then carry on into the next line,
// so a turn can be flown while a climb goes on):
//   wait for S                 everything goes on as it is
//   engine start [for S]       engine(s) firing, idle throttle, mixture rich (4 s)
//   engine stop [for S]        engine(s) stopped, mixture cut off (2 s)
//   taxi [speed K] [heading H] for S   on the ground at K knots (10), turning to H
//   stop                       brakes to a standstill on the ground
//   takeoff [speed K] [heading H]  take-off roll at full throttle until K knots (55)
//   rotate [pitch P] [vs V]    nose up to P degrees (8), lift-off, climb at V (500)
//   climb to H [vs V]          climb to H feet above the field at V (700), then level
//   descend to H [vs V]        descend to H at V (500), then level
//   level for S                hold the height
//   turn to H [left|right] [bank B]  turn to heading H, banked B degrees (20)
//   approach [to H] [vs V]     descend on the approach to H feet (50) at V (500), 65 knots
//   flare [to H] [vs V] [pitch P]  round out to H feet (1), sink easing to V (150)
//   touchdown [vs V]           sink at V until the wheels are on the ground
//   rollout [speed K]          braking on the runway down to K knots (10)
//   bounce [to H] [vs V]       back into the air up to H feet (8), down again at V (400)
//   crash [for S]              the simulator reports a crash
//   slew [north N] [east E] [up U]  the aircraft jumps N and E nautical miles, U feet
//   pause for S                the simulator is paused: nothing moves, its clock stands
//   simrate R [for S]          simulation rate R (1 normal, 2 twice as fast, 0.5 half)
// Options that any phase and "set" take:
//   speed K, flaps DEGREES, throttle PERCENT, gear up|down, brake on|off,
//   battery on|off, avionics on|off, lights LIST (nav+beacon+landing+taxi+strobe, or off)
#include "flightgen/flightgen.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <map>
#include <optional>
#include <vector>

#include "base/seams.h"
#include "link/offset_encoder.h"
#include "link/recording.h"

namespace vantoro {

namespace {

constexpr double kTickSeconds = 0.5;
constexpr double kPi = 3.14159265358979323846;
// One degree of great circle is 60 nautical miles, as the instructor measures.
constexpr double kEarthRadiusNm = 60.0 * 180.0 / kPi;
constexpr double kFeetPerSecondPerKnot = 1.687810;
constexpr double kFeetPerNauticalMile = 6076;  // as the traffic monitors measure
// A phase without "for" that has not ended after this long is a script fault.
constexpr int kMaxPhaseTicks = 4 * 3600 * 2;
constexpr int kMaxFlightTicks = 48 * 3600 * 2;

// How fast things change, per second of simulator time.
constexpr double kTaxiAccel = 2.0;     // knots
constexpr double kTakeOffAccel = 3.5;  // knots
constexpr double kBrakingDecel = 3.0;  // knots
constexpr double kAirAccel = 1.5;      // knots
constexpr double kVsChange = 300.0;    // feet per minute
constexpr double kRollRate = 8.0;      // degrees of bank
constexpr double kPitchRate = 3.0;     // degrees
constexpr double kRotatePitchRate = 4.0;
constexpr double kTaxiTurnRate = 20.0;  // degrees of heading
constexpr double kFlapRate = 3.0;       // degrees
constexpr double kThrottleRate = 0.5;   // of full
constexpr double kLevelCapture = 20.0;  // fpm of climb per foot still to go

constexpr double kIdleThrottle = 0.10;
constexpr double kTaxiThrottle = 0.20;

enum class Op {
  AircraftTitle,
  AircraftPath,
  AircraftEngines,
  AircraftRetractable,
  Fuel,
  Position,
  Heading,
  FieldElevation,
  Magvar,
  Wind,
  Clock,
  Obs,
  Set,
  Key,
  Say,
  Raw,
  Traffic,
  Wait,
  EngineStart,
  EngineStop,
  Taxi,
  Stop,
  TakeOff,
  Rotate,
  Climb,
  Descend,
  Level,
  Turn,
  Approach,
  Flare,
  Touchdown,
  Rollout,
  Bounce,
  Crash,
  Slew,
  Pause,
  SimRate,
};

// Keys a phase may take besides the common options.
enum Key : unsigned {
  kTo = 1,
  kVs = 2,
  kBank = 4,
  kDir = 8,
  kPitch = 16,
  kHeading = 32,
  kSlew = 64,
  kCapacity = 128,
  kCommon = 256,  // speed, flaps, throttle, gear, brake, battery, avionics, lights, for
};

struct OpInfo {
  std::string_view words;  // the line's first word(s)
  Op op;
  int numbers;     // positional numbers that follow
  bool text;       // the rest of the line is text
  unsigned keys;   // keys it takes
  bool takesTime;  // a phase
  bool needsFor;   // "for" is required
};

constexpr OpInfo kOps[] = {
    {"aircraft title", Op::AircraftTitle, 0, true, 0, false, false},
    {"aircraft path", Op::AircraftPath, 0, true, 0, false, false},
    {"aircraft engines", Op::AircraftEngines, 1, false, 0, false, false},
    {"aircraft retractable", Op::AircraftRetractable, 0, false, 0, false, false},
    {"fuel", Op::Fuel, 2, false, kCapacity, false, false},
    {"position", Op::Position, 2, false, 0, false, false},
    {"heading", Op::Heading, 1, false, 0, false, false},
    {"field elevation", Op::FieldElevation, 1, false, 0, false, false},
    {"magvar", Op::Magvar, 1, false, 0, false, false},
    {"wind", Op::Wind, 2, false, 0, false, false},
    {"clock", Op::Clock, 0, true, 0, false, false},
    {"obs", Op::Obs, 1, false, 0, false, false},
    {"set", Op::Set, 0, false, kCommon, false, false},
    {"key", Op::Key, 1, false, 0, false, false},
    {"say", Op::Say, 0, true, 0, false, false},
    {"raw", Op::Raw, 0, true, 0, false, false},
    {"traffic", Op::Traffic, 0, true, 0, false, false},
    {"wait", Op::Wait, 0, false, kCommon, true, true},
    {"engine start", Op::EngineStart, 0, false, kCommon, true, false},
    {"engine stop", Op::EngineStop, 0, false, kCommon, true, false},
    {"taxi", Op::Taxi, 0, false, kCommon | kHeading, true, true},
    {"stop", Op::Stop, 0, false, kCommon, true, false},
    {"takeoff", Op::TakeOff, 0, false, kCommon | kHeading, true, false},
    {"rotate", Op::Rotate, 0, false, kCommon | kPitch | kVs, true, false},
    {"climb", Op::Climb, 0, false, kCommon | kTo | kVs, true, false},
    {"descend", Op::Descend, 0, false, kCommon | kTo | kVs, true, false},
    {"level", Op::Level, 0, false, kCommon, true, true},
    {"turn", Op::Turn, 0, false, kCommon | kTo | kBank | kDir, true, false},
    {"approach", Op::Approach, 0, false, kCommon | kTo | kVs, true, false},
    {"flare", Op::Flare, 0, false, kCommon | kTo | kVs | kPitch, true, false},
    {"touchdown", Op::Touchdown, 0, false, kCommon | kVs, true, false},
    {"rollout", Op::Rollout, 0, false, kCommon, true, false},
    {"bounce", Op::Bounce, 0, false, kCommon | kTo | kVs, true, false},
    {"crash", Op::Crash, 0, false, kCommon, true, false},
    {"slew", Op::Slew, 0, false, kSlew, true, false},
    {"pause", Op::Pause, 0, false, kCommon, true, true},
    {"simrate", Op::SimRate, 1, false, kCommon, true, false},
};

constexpr int kLightNav = 1;
constexpr int kLightBeacon = 2;
constexpr int kLightLanding = 4;
constexpr int kLightTaxi = 8;
constexpr int kLightStrobe = 16;

struct Options {
  std::optional<double> forSeconds, to, speed, vs, bank, pitch, flaps, throttle, heading, capacity;
  std::optional<double> north, east, up;
  std::optional<bool> gearDown, brake, battery, avionics;
  std::optional<int> lights;
  int dir = 0;  // -1 left, +1 right, 0 the shorter way
};

// A target placed in a traffic table.
struct TrafficTarget {
  bool ground = false;
  int slot = 1;
  double clock = 12, feet = 0, above = 0, speed = 0, vs = 0;
  int state = 140;
  std::string ident = "N123";
};

struct ScriptLine {
  int line = 0;
  std::string source;  // the line as written, trimmed
  const OpInfo* info = nullptr;
  std::vector<double> numbers;
  std::string text;
  WallTime clock;
  Options opt;
  TrafficTarget traffic;
};

bool IsBlank(char c) {
  return c == ' ' || c == '\t' || c == '\r';
}

std::string_view Trim(std::string_view s) {
  while (!s.empty() && IsBlank(s.front())) s.remove_prefix(1);
  while (!s.empty() && IsBlank(s.back())) s.remove_suffix(1);
  return s;
}

std::vector<std::string_view> Words(std::string_view s) {
  std::vector<std::string_view> out;
  size_t i = 0;
  while (i < s.size()) {
    while (i < s.size() && IsBlank(s[i])) ++i;
    const size_t start = i;
    while (i < s.size() && !IsBlank(s[i])) ++i;
    if (i > start) out.push_back(s.substr(start, i - start));
  }
  return out;
}

// The text after the first n words of s.
std::string_view AfterWords(std::string_view s, size_t n) {
  size_t i = 0;
  for (size_t w = 0; w < n; ++w) {
    while (i < s.size() && IsBlank(s[i])) ++i;
    while (i < s.size() && !IsBlank(s[i])) ++i;
  }
  return Trim(s.substr(i));
}

double Wrap360(double d) {
  d = std::fmod(d, 360.0);
  if (d < 0) d += 360.0;
  return d;
}

// a - b brought into -180..180.
double Relative(double a, double b) {
  double d = Wrap360(a - b);
  if (d > 180.0) d -= 360.0;
  return d;
}

double Toward(double value, double target, double maxStep) {
  if (value < target) return std::min(target, value + maxStep);
  return std::max(target, value - maxStep);
}

double Radians(double d) {
  return d * kPi / 180.0;
}

double Degrees(double r) {
  return r * 180.0 / kPi;
}

// ---------------------------------------------------------------------------
// Reading the script.

class ScriptReader {
 public:
  explicit ScriptReader(std::string_view name) : name_(name) {}

  bool Read(std::string_view script, std::vector<ScriptLine>& out, std::string& error);

 private:
  bool Fail(std::string what) {
    error_ = name_ + ":" + std::to_string(line_) + ": " + what;
    return false;
  }
  bool Number(std::string_view word, std::string_view what, double low, double high, double& v);
  bool Line(std::string_view text, ScriptLine& out);
  bool Option(std::vector<std::string_view>& words, size_t& i, ScriptLine& out);
  bool Traffic(std::string_view text, TrafficTarget& t);

  std::string name_;
  int line_ = 0;
  std::string error_;
};

bool ScriptReader::Number(std::string_view word, std::string_view what, double low, double high,
                          double& v) {
  std::string_view digits = word;
  if (digits.size() > 1 && digits[0] == '+') digits.remove_prefix(1);
  auto [p, ec] = std::from_chars(digits.data(), digits.data() + digits.size(), v);
  if (word.empty() || ec != std::errc() || p != digits.data() + digits.size() || !std::isfinite(v))
    return Fail(std::string(what) + " needs a number, not '" + std::string(word) + "'");
  if (v < low || v > high) {
    char range[64];
    std::snprintf(range, sizeof range, " (%g..%g)", low, high);
    return Fail(std::string(what) + " " + std::string(word) + " is out of range" + range);
  }
  return true;
}

bool ScriptReader::Option(std::vector<std::string_view>& words, size_t& i, ScriptLine& out) {
  const OpInfo& info = *out.info;
  const std::string_view key = words[i];
  const std::string phase(info.words);
  auto allowed = [&](unsigned k) {
    if (info.keys & k) return true;
    return Fail(phase + " does not take '" + std::string(key) + "'");
  };
  // Flag words.
  if (key == "left" || key == "right") {
    if (!allowed(kDir)) return false;
    out.opt.dir = key == "left" ? -1 : 1;
    ++i;
    return true;
  }
  if (i + 1 >= words.size()) return Fail("'" + std::string(key) + "' needs a value");
  const std::string_view value = words[i + 1];
  i += 2;
  double v = 0;
  auto number = [&](unsigned k, double low, double high, std::optional<double>& into) {
    if (!allowed(k) || !Number(value, key, low, high, v)) return false;
    into = v;
    return true;
  };
  auto onOff = [&](std::string_view on, std::string_view off, std::optional<bool>& into) {
    if (!allowed(kCommon)) return false;
    if (value == on) {
      into = true;
    } else if (value == off) {
      into = false;
    } else {
      return Fail(std::string(key) + " is " + std::string(on) + " or " + std::string(off) +
                  ", not '" + std::string(value) + "'");
    }
    return true;
  };
  if (key == "for") return number(kCommon | kSlew, 0, 86400, out.opt.forSeconds);
  if (key == "to") {
    // A turn goes to a heading, the others to a height.
    if (info.op == Op::Turn) return number(kTo, 0, 360, out.opt.to);
    return number(kTo, 0, 45000, out.opt.to);
  }
  if (key == "speed") return number(kCommon, 0, 600, out.opt.speed);
  if (key == "vs") return number(kVs, 0, 6000, out.opt.vs);
  if (key == "bank") return number(kBank, 1, 60, out.opt.bank);
  if (key == "pitch") return number(kPitch, -20, 30, out.opt.pitch);
  if (key == "flaps") return number(kCommon, 0, 40, out.opt.flaps);
  if (key == "throttle") return number(kCommon, 0, 100, out.opt.throttle);
  if (key == "heading") return number(kHeading, 0, 360, out.opt.heading);
  if (key == "capacity") return number(kCapacity, 1, 1000, out.opt.capacity);
  if (key == "north") return number(kSlew, -600, 600, out.opt.north);
  if (key == "east") return number(kSlew, -600, 600, out.opt.east);
  if (key == "up") return number(kSlew, -45000, 45000, out.opt.up);
  if (key == "gear") return onOff("down", "up", out.opt.gearDown);
  if (key == "brake") return onOff("on", "off", out.opt.brake);
  if (key == "battery") return onOff("on", "off", out.opt.battery);
  if (key == "avionics") return onOff("on", "off", out.opt.avionics);
  if (key == "lights") {
    if (!allowed(kCommon)) return false;
    int bits = 0;
    if (value != "off") {
      size_t start = 0;
      while (start <= value.size()) {
        const size_t end = value.find_first_of("+,", start);
        const std::string_view light =
            value.substr(start, end == value.npos ? value.npos : end - start);
        if (light == "nav") {
          bits |= kLightNav;
        } else if (light == "beacon") {
          bits |= kLightBeacon;
        } else if (light == "landing") {
          bits |= kLightLanding;
        } else if (light == "taxi") {
          bits |= kLightTaxi;
        } else if (light == "strobe") {
          bits |= kLightStrobe;
        } else {
          return Fail("unknown light '" + std::string(light) +
                      "' (nav, beacon, landing, taxi, strobe, or off)");
        }
        if (end == value.npos) break;
        start = end + 1;
      }
    }
    out.opt.lights = bits;
    return true;
  }
  return Fail(phase + " does not take '" + std::string(key) + "'");
}

bool ScriptReader::Traffic(std::string_view text, TrafficTarget& t) {
  std::vector<std::string_view> words = Words(text);
  if (words.size() < 5 || (words[0] != "air" && words[0] != "ground") || words[2] != "at")
    return Fail("traffic needs: air|ground SLOT at CLOCK FEET");
  t.ground = words[0] == "ground";
  double slot = 0;
  if (!Number(words[1], "traffic slot", 1, 95, slot) ||
      !Number(words[3], "clock position", 1, 12, t.clock) ||
      !Number(words[4], "traffic distance", 0, 1e6, t.feet))
    return false;
  t.slot = static_cast<int>(slot);
  for (size_t i = 5; i < words.size(); i += 2) {
    const std::string_view key = words[i];
    if (key == "ident") {
      t.ident = std::string(AfterWords(text, i + 1));
      if (t.ident.empty() || t.ident.size() > 14)
        return Fail("ident needs a call sign of 1 to 14 characters");
      return true;
    }
    if (i + 1 >= words.size()) return Fail("traffic '" + std::string(key) + "' needs a number");
    double v = 0;
    if (key == "high" || key == "low") {
      if (!Number(words[i + 1], key, 0, 60000, v)) return false;
      t.above = key == "high" ? v : -v;
    } else if (key == "speed") {
      if (!Number(words[i + 1], "speed", 0, 2000, t.speed)) return false;
    } else if (key == "vs") {
      if (!Number(words[i + 1], "vs", -30000, 30000, t.vs)) return false;
    } else if (key == "state") {
      if (!Number(words[i + 1], "state", 0, 255, v)) return false;
      t.state = static_cast<int>(v);
    } else {
      return Fail("traffic does not take '" + std::string(key) + "'");
    }
  }
  return true;
}

bool ScriptReader::Line(std::string_view text, ScriptLine& out) {
  std::vector<std::string_view> words = Words(text);
  // The longest matching first words name the step.
  const OpInfo* found = nullptr;
  size_t used = 0;
  for (const OpInfo& info : kOps) {
    const std::vector<std::string_view> want = Words(info.words);
    if (want.size() > words.size() || want.size() <= used) continue;
    if (std::equal(want.begin(), want.end(), words.begin())) {
      found = &info;
      used = want.size();
    }
  }
  if (found == nullptr) {
    if (words[0] == "aircraft" || words[0] == "engine" || words[0] == "field")
      return Fail("unknown step '" + std::string(text.substr(0, 40)) + "'");
    return Fail("unknown step '" + std::string(words[0]) + "'");
  }
  out.info = found;
  if (found->text) {
    out.text = std::string(AfterWords(text, used));
    if (out.text.empty()) return Fail(std::string(found->words) + " needs its text");
    if (found->op == Op::Clock && !ParseIsoTime(out.text, out.clock))
      return Fail("malformed date and time '" + out.text + "' (2026-06-14T09:30:00)");
    if (found->op == Op::Traffic) return Traffic(out.text, out.traffic);
    if (found->op == Op::Raw) {
      // Checked now as the replay will read it.
      Recording check;
      std::string error;
      if (!ParseRecording("raw", std::string(kRecordingFirstLine) + "\n" + out.text, check, error))
        return Fail("raw: " + error.substr(error.find(": ", 4) + 2));
    }
    return true;
  }
  size_t i = used;
  for (int n = 0; n < found->numbers; ++n, ++i) {
    if (i >= words.size()) return Fail(std::string(found->words) + " needs more numbers");
    double v = 0;
    double low = -1e9, high = 1e9;
    std::string what = std::string(found->words);
    switch (found->op) {
      case Op::Position:
        what = n == 0 ? "latitude" : "longitude";
        low = n == 0 ? -89.9 : -180;
        high = n == 0 ? 89.9 : 180;
        break;
      case Op::Heading:
      case Op::Obs:
        low = 0, high = 360;
        break;
      case Op::Wind:
        what = n == 0 ? "wind direction" : "wind speed";
        low = 0, high = n == 0 ? 360 : 200;
        break;
      case Op::Magvar:
        low = -180, high = 180;
        break;
      case Op::FieldElevation:
        low = -1500, high = 30000;
        break;
      case Op::Fuel:
        low = 0, high = 1000;
        break;
      case Op::AircraftEngines:
        low = 1, high = 4;
        break;
      case Op::Key:
        low = kRecordingKeyFirst, high = kRecordingKeyLast;
        break;
      case Op::SimRate:
        low = 0.25, high = 128;
        break;
      default:
        break;
    }
    if (!Number(words[i], what, low, high, v)) return false;
    out.numbers.push_back(v);
  }
  while (i < words.size())
    if (!Option(words, i, out)) return false;
  if (found->needsFor && !out.opt.forSeconds)
    return Fail(std::string(found->words) + " needs 'for SECONDS'");
  if ((found->op == Op::Climb || found->op == Op::Descend || found->op == Op::Turn) && !out.opt.to)
    return Fail(std::string(found->words) + " needs 'to'");
  if (found->op == Op::Fuel && out.opt.capacity &&
      (out.numbers[0] > *out.opt.capacity || out.numbers[1] > *out.opt.capacity))
    return Fail("more fuel than the tanks hold");
  if (found->op == Op::SimRate && std::fmod(out.numbers[0] * 256, 1.0) != 0)
    return Fail("simulation rate " + std::string(words[used]) + " is not a multiple of 1/256");
  if (found->op == Op::Key && std::fmod(out.numbers[0], 1.0) != 0)
    return Fail("key needs a whole number");
  return true;
}

bool ScriptReader::Read(std::string_view script, std::vector<ScriptLine>& out, std::string& error) {
  while (!script.empty()) {
    ++line_;
    const size_t end = script.find('\n');
    const std::string_view raw = script.substr(0, end);
    script.remove_prefix(end == std::string_view::npos ? script.size() : end + 1);
    const std::string_view text = Trim(raw);
    if (text.empty() || text.front() == '#') continue;
    ScriptLine line;
    line.line = line_;
    line.source = std::string(text);
    if (!Line(text, line)) {
      error = error_;
      return false;
    }
    out.push_back(std::move(line));
  }
  return true;
}

// ---------------------------------------------------------------------------
// Flying it.

// The values the offsets are written from, and the script's starting clock.
struct Aircraft : FlownAircraft {
  Aircraft() {
    title = "Cessna Skyhawk 172SP";
    fuelLeft = fuelRight = 24;
  }
  WallTime clock{2026, 6, 14, 9, 0, 0};
};

// What the phase under way aims at.
struct Targets {
  double speed = 0;  // IAS in the air, ground speed on the ground
  double accel = kTaxiAccel;
  std::optional<double> height;
  double climbRate = 700;
  std::optional<double> sink;   // a fixed descent (flare, touchdown, bounce down)
  std::optional<double> climb;  // a fixed climb without a height (after rotation)
  std::optional<double> heading;
  int turnDir = 0;
  double bank = 20;
  bool headingReached = true;
  std::optional<double> pitch;
  double pitchRate = kPitchRate;
  double throttle = 0;
  double flaps = 0;
};

// Typed offset writes, each written only when its bytes change.
class Output final : public OffsetSink {
 public:
  explicit Output(std::string& text) : text_(text) {}

  void U8(uint32_t o, uint64_t v) override { Put(o, "u8", 1, v, std::to_string(v)); }
  void U16(uint32_t o, uint64_t v) override { Put(o, "u16", 2, v, std::to_string(v)); }
  void U32(uint32_t o, uint64_t v) override { Put(o, "u32", 4, v, std::to_string(v)); }
  void I16(uint32_t o, int64_t v) override {
    Put(o, "i16", 2, static_cast<uint64_t>(v), std::to_string(v));
  }
  void I32(uint32_t o, int64_t v) override {
    Put(o, "i32", 4, static_cast<uint64_t>(v), std::to_string(v));
  }
  void I64(uint32_t o, int64_t v) override {
    Put(o, "i64", 8, static_cast<uint64_t>(v), std::to_string(v));
  }
  void Str(uint32_t o, const std::string& s) override {
    auto it = strings_.find(o);
    if (it != strings_.end() && it->second == s) return;
    strings_[o] = s;
    Line("str", o, s);
  }

 private:
  void Put(uint32_t o, const char* type, int size, uint64_t v, const std::string& shown) {
    const uint64_t mask = size == 8 ? ~uint64_t{0} : (uint64_t{1} << (size * 8)) - 1;
    v &= mask;
    auto it = values_.find(o);
    if (it != values_.end() && it->second == v) return;
    values_[o] = v;
    Line(type, o, shown);
  }
  void Line(const char* type, uint32_t o, const std::string& value) {
    char head[24];
    std::snprintf(head, sizeof head, "%s %04X ", type, o);
    text_ += head;
    text_ += value;
    text_ += '\n';
  }

  std::string& text_;
  std::map<uint32_t, uint64_t> values_;
  std::map<uint32_t, std::string> strings_;
};

int64_t Round(double x) {
  return static_cast<int64_t>(std::llround(x));
}

class Generator {
 public:
  Generator(std::string_view name, std::string& text) : name_(name), text_(text), out_(text) {}

  bool Run(const std::vector<ScriptLine>& lines, std::string& error);

 private:
  bool Fail(const ScriptLine& l, std::string what) {
    error_ = name_ + ":" + std::to_string(l.line) + ": " + what;
    return false;
  }
  void Setting(const ScriptLine& l);
  void PlaceTraffic(const TrafficTarget& t);
  void Common(const Options& o);
  bool Begin(const ScriptLine& l);
  bool Ended(const ScriptLine& l) const;
  void Move(double dt);
  void Contact();
  void WriteTick();
  WallTime SimulatorTime() const;
  double TrueOf(double magnetic) const { return Wrap360(magnetic + a_.magvar); }
  double Headwind() const {
    return a_.windSpeed * std::cos(Radians(TrueOf(a_.windFrom) - a_.heading));
  }

  std::string name_;
  std::string& text_;
  Output out_;
  std::string error_;
  Aircraft a_;
  Targets t_;
  double simSeconds_ = 0;  // simulator clock: seconds since the clock's midnight
  int ticks_ = 0;
  bool clockPending_ = true;
  std::string pending_;                 // key, say, raw and traffic lines for the next tick
  int airSlots_ = 0, groundSlots_ = 0;  // the highest traffic slot placed in each table
  // State of the phase under way.
  bool contact_ = false;  // the wheels touched in this tick
  int bounceStage_ = 0;
  double bounceTop_ = 0, bounceSink_ = 0;
  bool liftedOff_ = false;
  int phaseTicks_ = 0;
};

void Generator::Common(const Options& o) {
  if (o.speed) t_.speed = *o.speed;
  if (o.flaps) t_.flaps = *o.flaps;
  if (o.throttle) t_.throttle = *o.throttle / 100.0;
  if (o.gearDown) a_.gearDown = *o.gearDown;
  if (o.brake) a_.brake = *o.brake;
  if (o.battery) a_.battery = *o.battery;
  if (o.avionics) a_.avionics = *o.avionics;
  if (o.lights) a_.lights = *o.lights;
}

// The target's slot as the simulator's traffic tables hold it: position,
// altitude, heading (the aircraft's own), speeds, call sign and state; the
// word before the table names the highest slot placed so far.
void Generator::PlaceTraffic(const TrafficTarget& t) {
  const uint32_t table = t.ground ? 0xF080 : 0xE080;
  const uint32_t at = table + 40 * static_cast<uint32_t>(t.slot);
  int& highest = t.ground ? groundSlots_ : airSlots_;
  highest = std::max(highest, t.slot);
  const double bearing = Radians(a_.heading + t.clock * 30);
  const double degrees = t.feet / kFeetPerNauticalMile / 60.0;
  const double lat = a_.lat + degrees * std::cos(bearing);
  const double lon = a_.lon + degrees * std::sin(bearing) / std::cos(Radians(a_.lat));
  char line[160];
  auto put = [&](const char* type, uint32_t offset, const std::string& value) {
    std::snprintf(line, sizeof line, "%s %04X %s\n", type, offset, value.c_str());
    pending_ += line;
  };
  auto number = [](double v) {
    char text[40];
    std::snprintf(text, sizeof text, "%.9g", v);
    return std::string(text);
  };
  put("u16", table - 2, std::to_string(table + 40 * (highest - 1)));
  put("u8", at, std::to_string(t.slot));
  put("f32", at + 4, number(lat));
  put("f32", at + 8, number(lon));
  put("f32", at + 12, number(a_.fieldElevation + a_.height + t.above));
  put("u16", at + 16, std::to_string(Round(a_.heading * 65536.0 / 360.0) % 65536));
  put("u16", at + 18, std::to_string(Round(t.speed)));
  put("i16", at + 20, std::to_string(Round(t.vs)));
  put("str", at + 22, t.ident);
  put("u8", at + 37, std::to_string(t.state));
}

void Generator::Setting(const ScriptLine& l) {
  const auto& n = l.numbers;
  switch (l.info->op) {
    case Op::AircraftTitle:
      a_.title = l.text;
      break;
    case Op::AircraftPath:
      a_.path = l.text;
      break;
    case Op::AircraftEngines:
      a_.engines = static_cast<int>(n[0]);
      break;
    case Op::AircraftRetractable:
      a_.retractable = true;
      break;
    case Op::Fuel:
      if (l.opt.capacity) a_.fuelCapacity = *l.opt.capacity;
      a_.fuelLeft = std::min(n[0], a_.fuelCapacity);
      a_.fuelRight = std::min(n[1], a_.fuelCapacity);
      break;
    case Op::Position:
      a_.lat = n[0];
      a_.lon = n[1];
      break;
    case Op::Heading:
      a_.heading = TrueOf(n[0]);
      t_.heading.reset();
      break;
    case Op::FieldElevation:
      a_.fieldElevation = n[0];
      break;
    case Op::Magvar: {
      const double magnetic = Wrap360(a_.heading - a_.magvar);
      a_.magvar = n[0];
      a_.heading = TrueOf(magnetic);
      break;
    }
    case Op::Wind:
      a_.windFrom = n[0];
      a_.windSpeed = n[1];
      break;
    case Op::Clock:
      a_.clock = l.clock;
      simSeconds_ = l.clock.hour * 3600.0 + l.clock.minute * 60.0 + l.clock.second;
      clockPending_ = true;
      break;
    case Op::Obs:
      a_.obs = static_cast<int>(Round(n[0])) % 360;
      break;
    case Op::Set:
      Common(l.opt);
      break;
    case Op::Key:
      pending_ += "key " + std::to_string(static_cast<int>(n[0])) + "\n";
      break;
    case Op::Say:
      pending_ += "say " + l.text + "\n";
      break;
    case Op::Raw:
      pending_ += l.text + "\n";
      break;
    case Op::Traffic:
      PlaceTraffic(l.traffic);
      break;
    default:
      break;
  }
}

bool Generator::Begin(const ScriptLine& l) {
  const Options& o = l.opt;
  const std::string phase(l.info->words);
  auto needGround = [&] {
    if (a_.onGround) return true;
    return Fail(l, phase + " needs the aircraft on the ground");
  };
  auto needAir = [&] {
    if (!a_.onGround) return true;
    return Fail(l, phase + " needs the aircraft in the air (rotate first)");
  };
  contact_ = false;
  bounceStage_ = 0;
  liftedOff_ = false;
  phaseTicks_ = 0;
  // A fixed sink and a held nose carry on into the next phases (a turn flown
  // on the approach keeps descending) until a phase sets its own.
  switch (l.info->op) {
    case Op::Wait:
      break;
    case Op::EngineStart:
      a_.firing = true;
      a_.mixtureRich = true;
      t_.throttle = kIdleThrottle;
      break;
    case Op::EngineStop:
      a_.firing = false;
      a_.mixtureRich = false;
      t_.throttle = 0;
      if (a_.onGround) t_.speed = 0;
      break;
    case Op::Taxi:
      if (!needGround()) return false;
      t_.speed = 10;
      t_.accel = kTaxiAccel;
      t_.throttle = kTaxiThrottle;
      a_.brake = false;
      if (o.heading) t_.heading = TrueOf(*o.heading);
      break;
    case Op::Stop:
      if (!needGround()) return false;
      t_.speed = 0;
      t_.accel = kBrakingDecel;
      t_.throttle = a_.firing ? kIdleThrottle : 0;
      break;
    case Op::TakeOff:
      if (!needGround()) return false;
      t_.accel = kTakeOffAccel;
      t_.throttle = 1.0;
      a_.brake = false;
      if (o.heading) t_.heading = TrueOf(*o.heading);
      break;
    case Op::Rotate:
      if (!needGround()) return false;
      t_.sink.reset();
      t_.pitch = o.pitch.value_or(8);
      t_.pitchRate = kRotatePitchRate;
      t_.climbRate = o.vs.value_or(500);
      t_.height.reset();
      t_.speed = a_.ias + 5;
      t_.throttle = 1.0;
      break;
    case Op::Climb:
    case Op::Descend:
      if (!needAir()) return false;
      t_.height = *o.to;
      t_.climb.reset();
      t_.sink.reset();
      t_.pitch.reset();
      t_.climbRate = o.vs.value_or(l.info->op == Op::Climb ? 700 : 500);
      t_.throttle = l.info->op == Op::Climb ? 1.0 : 0.35;
      break;
    case Op::Level:
      if (!needAir()) return false;
      t_.climb.reset();
      t_.sink.reset();
      t_.pitch.reset();
      t_.height = std::round(a_.height);
      t_.throttle = 0.65;
      break;
    case Op::Turn:
      t_.heading = TrueOf(*o.to);
      t_.turnDir = o.dir;
      t_.bank = o.bank.value_or(20);
      t_.headingReached = false;
      break;
    case Op::Approach:
      if (!needAir()) return false;
      t_.climb.reset();
      t_.height.reset();
      t_.pitch.reset();
      t_.sink = o.vs.value_or(500);
      t_.speed = 65;
      t_.throttle = 0.25;
      break;
    case Op::Flare:
      if (!needAir()) return false;
      t_.climb.reset();
      t_.height.reset();
      t_.sink = o.vs.value_or(150);
      t_.pitch = o.pitch.value_or(std::max(a_.pitch, 0.0) + 4);
      t_.pitchRate = kPitchRate;
      t_.throttle = 0;
      t_.speed = std::max(0.0, a_.ias - 5);
      break;
    case Op::Touchdown:
      if (a_.onGround) break;  // the flare already put the wheels on
      t_.climb.reset();
      t_.height.reset();
      t_.sink = o.vs.value_or(std::max(60.0, -a_.vs));
      t_.throttle = 0;
      break;
    case Op::Rollout:
      if (!needGround()) return false;
      t_.speed = 10;
      t_.accel = kBrakingDecel;
      t_.throttle = a_.firing ? kIdleThrottle : 0;
      t_.pitch = 0;
      break;
    case Op::Bounce:
      if (!needGround()) return false;
      // The gear throws the aircraft back up at once.
      a_.onGround = false;
      a_.vs = 400;
      t_.height.reset();
      t_.sink.reset();
      t_.climb = 400;
      bounceStage_ = 1;
      bounceTop_ = o.to.value_or(8);
      bounceSink_ = o.vs.value_or(400);
      break;
    case Op::Crash:
      a_.crashed = true;
      break;
    case Op::Slew: {
      const double north = o.north.value_or(0), east = o.east.value_or(0);
      a_.lat = std::clamp(a_.lat + north / 60.0, -89.9, 89.9);
      a_.lon += east / (60.0 * std::cos(Radians(a_.lat)));
      if (a_.lon > 180) a_.lon -= 360;
      if (a_.lon < -180) a_.lon += 360;
      if (o.up) {
        a_.height = std::max(0.0, a_.height + *o.up);
        if (a_.height > 0) a_.onGround = false;
        if (t_.height) t_.height = a_.height;
      }
      break;
    }
    case Op::Pause:
      a_.paused = true;
      break;
    case Op::SimRate:
      a_.simRate = l.numbers[0];
      break;
    default:
      break;
  }
  Common(o);
  // A phase's own speed wins over its default, as does a "for".
  if (l.info->op == Op::TakeOff) t_.speed = o.speed.value_or(55) + 40;
  return true;
}

bool Generator::Ended(const ScriptLine& l) const {
  const Options& o = l.opt;
  switch (l.info->op) {
    case Op::EngineStart:
      return phaseTicks_ >= 8;
    case Op::EngineStop:
      return phaseTicks_ >= 4;
    case Op::Stop:
      return a_.gs <= 0;
    case Op::TakeOff:
      return a_.ias >= o.speed.value_or(55);
    case Op::Rotate:
      return liftedOff_ && a_.height >= 10;
    case Op::Climb:
    case Op::Descend:
      return t_.height && a_.height == *t_.height && a_.vs == 0;
    case Op::Approach:
      return a_.onGround || a_.height <= o.to.value_or(50);
    case Op::Turn:
      return t_.headingReached && a_.bank == 0;
    case Op::Flare:
      return a_.onGround || a_.height <= o.to.value_or(1);
    case Op::Touchdown:
      return contact_ || (a_.onGround && phaseTicks_ == 0);
    case Op::Bounce:
      return contact_;
    case Op::Rollout:
      return a_.gs <= t_.speed;
    case Op::Crash:
    case Op::Slew:
      return phaseTicks_ >= 1;
    case Op::SimRate:
      return true;  // without "for" the new rate takes no time
    default:
      return false;
  }
}

void Generator::Contact() {
  // The vertical speed of the contact tick stays what it was (the
  // simulator shows the sink the wheels met); it is zero from the next tick.
  a_.onGround = true;
  a_.height = 0;
  a_.bank = 0;
  t_.height.reset();
  t_.sink.reset();
  t_.climb.reset();
  t_.pitch.reset();
  t_.pitchRate = kPitchRate;
  t_.speed = a_.gs;
  t_.accel = kBrakingDecel;
  contact_ = true;
}

void Generator::Move(double tickSeconds) {
  if (a_.paused) return;
  const double dt = tickSeconds * a_.simRate;
  simSeconds_ += dt;

  a_.throttle = Toward(a_.throttle, t_.throttle, kThrottleRate * dt);
  a_.flaps = Toward(a_.flaps, t_.flaps, kFlapRate * dt);

  if (a_.crashed) {
    a_.gs = a_.ias = a_.tas = a_.vs = 0;
    return;
  }

  const double mslFeet = a_.fieldElevation + a_.height;
  if (a_.onGround) {
    a_.gs = std::max(0.0, Toward(a_.gs, t_.speed, t_.accel * dt));
    a_.ias = std::max(0.0, a_.gs + Headwind());
    a_.tas = a_.ias;
    if (a_.gs == 0) a_.ias = a_.tas = 0;
    if (t_.heading && a_.gs > 0) {
      const double rest = Relative(*t_.heading, a_.heading);
      const double step = kTaxiTurnRate * dt;
      if (std::fabs(rest) <= step) {
        a_.heading = *t_.heading;
        t_.headingReached = true;
      } else {
        a_.heading = Wrap360(a_.heading + std::copysign(step, rest));
      }
    }
    a_.bank = 0;
    a_.vs = 0;
    // Rotation: the nose comes up, and with it the wheels leave the ground.
    if (t_.pitch) {
      a_.pitch = Toward(a_.pitch, *t_.pitch, t_.pitchRate * dt);
      if (*t_.pitch > 0 && a_.pitch >= *t_.pitch - 1) {
        a_.onGround = false;
        liftedOff_ = true;
        t_.climb = t_.climbRate;
        t_.pitch.reset();
      }
    } else {
      a_.pitch = Toward(a_.pitch, 0, kPitchRate * dt);
    }
  } else {
    a_.ias = std::max(0.0, Toward(a_.ias, t_.speed, kAirAccel * dt));
    a_.tas = a_.ias * (1 + 0.02 * mslFeet / 1000.0);
    a_.gs = std::max(0.0, a_.tas - Headwind());

    // Vertical: a fixed sink or climb, else the height target's capture.
    double wanted = 0;
    // A bounce goes up to its top, then sinks back.
    if (bounceStage_ == 1 && a_.height >= bounceTop_) {
      bounceStage_ = 2;
      t_.climb.reset();
      t_.sink = bounceSink_;
    }
    if (t_.sink) {
      wanted = -*t_.sink;
    } else if (t_.climb) {
      wanted = *t_.climb;
    } else if (t_.height) {
      const double rest = *t_.height - a_.height;
      wanted = std::clamp(rest * kLevelCapture, -t_.climbRate, t_.climbRate);
      if (std::fabs(wanted) < 100 && std::fabs(rest) >= 1) wanted = std::copysign(100, rest);
    }
    a_.vs = Toward(a_.vs, wanted, kVsChange * dt);
    a_.height += a_.vs * dt / 60.0;
    // Captured: within a foot of the height and nearly level.
    if (t_.height && !t_.sink && !t_.climb && std::fabs(*t_.height - a_.height) < 1 &&
        std::fabs(a_.vs) <= 100) {
      a_.height = *t_.height;
      a_.vs = 0;
    }

    // Heading: banked turns at the rate the bank and speed give.
    if (t_.heading && !t_.headingReached) {
      double rest = Relative(*t_.heading, a_.heading);
      if (t_.turnDir != 0 && rest * t_.turnDir < 0 && std::fabs(rest) > 1) rest += 360 * t_.turnDir;
      const double wantBank = std::copysign(std::min(t_.bank, std::fabs(rest) * 1.5), rest);
      a_.bank = Toward(a_.bank, wantBank, kRollRate * dt);
      const double rate = 1091.0 * std::tan(Radians(a_.bank)) / std::max(a_.tas, 40.0);
      const double turn = rate * dt;
      if (std::fabs(turn) >= std::fabs(rest) || std::fabs(rest) < 0.05) {
        a_.heading = *t_.heading;
        t_.headingReached = true;
      } else {
        a_.heading = Wrap360(a_.heading + turn);
      }
    } else {
      a_.bank = Toward(a_.bank, 0, kRollRate * dt);
    }

    // Attitude: the flight path plus the angle of attack that the speed and
    // flaps ask for, unless a phase holds the nose.
    const double gamma =
        Degrees(std::atan2(a_.vs / 60.0, std::max(a_.tas, 1.0) * kFeetPerSecondPerKnot));
    const double alpha = std::clamp(1.5 + (85 - a_.ias) * 0.12 - a_.flaps * 0.05, -2.0, 12.0);
    const double wantPitch = t_.pitch ? *t_.pitch : gamma + alpha;
    a_.pitch = Toward(a_.pitch, wantPitch, t_.pitchRate * dt);

    if (a_.height <= 0) Contact();
  }

  // Along the great circle of the heading.
  const double distance = a_.gs * dt / 3600.0 / kEarthRadiusNm;  // radians
  if (distance > 0) {
    const double lat1 = Radians(a_.lat), lon1 = Radians(a_.lon), course = Radians(a_.heading);
    const double lat2 = std::asin(std::sin(lat1) * std::cos(distance) +
                                  std::cos(lat1) * std::sin(distance) * std::cos(course));
    const double lon2 = lon1 + std::atan2(std::sin(course) * std::sin(distance) * std::cos(lat1),
                                          std::cos(distance) - std::sin(lat1) * std::sin(lat2));
    a_.lat = Degrees(lat2);
    a_.lon = Degrees(lon2);
    if (a_.lon > 180) a_.lon -= 360;
    if (a_.lon < -180) a_.lon += 360;
  }

  // Fuel: a light piston's burn, more with more throttle.
  if (a_.firing) {
    const double gallons = (1.5 + 9.0 * a_.throttle) * a_.engines * dt / 3600.0;
    a_.fuelLeft = std::max(0.0, a_.fuelLeft - gallons / 2);
    a_.fuelRight = std::max(0.0, a_.fuelRight - gallons / 2);
    if (a_.fuelLeft + a_.fuelRight <= 0) a_.firing = false;
  }
}

WallTime Generator::SimulatorTime() const {
  WallTime t = a_.clock;
  const auto whole = static_cast<int64_t>(std::floor(simSeconds_));
  int64_t days = whole / 86400;
  const int64_t ofDay = whole % 86400;
  t.hour = static_cast<int>(ofDay / 3600);
  t.minute = static_cast<int>(ofDay / 60 % 60);
  t.second = static_cast<double>(ofDay % 60);
  for (; days > 0; --days) {
    static const int kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    const int inMonth = t.month == 2 && IsLeapYear(t.year) ? 29 : kDays[t.month - 1];
    if (++t.day <= inMonth) continue;
    t.day = 1;
    if (++t.month <= 12) continue;
    t.month = 1;
    ++t.year;
  }
  return t;
}

void Generator::WriteTick() {
  // The computer's clock goes with the simulator's, from the clock line on.
  if (clockPending_) {
    text_ += "clock " + FormatIsoTime(a_.clock) + "\n";
    clockPending_ = false;
  }
  // The simulator clock, carried across midnight and the year's end.
  a_.simulatorTime = SimulatorTime();
  EncodeAircraft(a_, out_);

  text_ += pending_;
  pending_.clear();
  text_ += "tick\n";
  ++ticks_;
}

bool Generator::Run(const std::vector<ScriptLine>& lines, std::string& error) {
  text_ = std::string(kRecordingFirstLine) + "\n";
  text_ += "# Generated by vantoro-cli generate from " + name_ + "\n";
  simSeconds_ = a_.clock.hour * 3600.0 + a_.clock.minute * 60.0 + a_.clock.second;
  for (const ScriptLine& l : lines) {
    text_ += "# " + l.source + "\n";
    if (!l.info->takesTime) {
      Setting(l);
      continue;
    }
    if (!Begin(l)) {
      error = error_;
      return false;
    }
    const int fixed =
        l.opt.forSeconds ? static_cast<int>(std::lround(*l.opt.forSeconds / kTickSeconds)) : -1;
    while (true) {
      if (fixed >= 0 ? phaseTicks_ >= fixed : Ended(l)) break;
      if (fixed < 0 && phaseTicks_ >= kMaxPhaseTicks) {
        Fail(l, std::string(l.info->words) + " has not ended after four hours; check its target");
        error = error_;
        return false;
      }
      if (ticks_ >= kMaxFlightTicks) {
        Fail(l, "the flight is longer than 48 hours");
        error = error_;
        return false;
      }
      contact_ = false;
      Move(kTickSeconds);
      WriteTick();
      ++phaseTicks_;
    }
    if (l.info->op == Op::Pause) a_.paused = false;
  }
  // Key, say and raw lines after the last phase still reach the recording.
  text_ += pending_;
  return true;
}

}  // namespace

bool GenerateFlight(std::string_view name, std::string_view script, std::string& recording,
                    std::string& error) {
  recording.clear();
  // Errors and the heading name the script by its file name only, so that a
  // recording does not depend on where it was generated.
  const size_t slash = name.find_last_of("/\\");
  const std::string_view shortName =
      slash == std::string_view::npos ? name : name.substr(slash + 1);
  std::vector<ScriptLine> lines;
  ScriptReader reader(name);
  if (!reader.Read(script, lines, error)) return false;
  std::string text;
  Generator generator(shortName, text);
  if (!generator.Run(lines, error)) {
    // Errors name the file as it was given.
    if (error.compare(0, shortName.size(), shortName) == 0)
      error = std::string(name) + error.substr(shortName.size());
    return false;
  }
  recording = std::move(text);
  return true;
}

}  // namespace vantoro
