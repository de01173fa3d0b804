#include "link/flightgear_protocol.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>

namespace vantoro {

namespace {

constexpr double kMetresPerStatuteMile = 1609.344;
constexpr double kHpaPerInchHg = 33.8639;
constexpr double kSecondsPerMinute = 60.0;
constexpr double kFullFlapsDegrees = 40.0;
constexpr double kFar = 1e6;
constexpr size_t kLongestText = 255;

// One line of the protocol, field by field: name, property, type and the
// range a sound value lies in.
#define VANTORO_FG_FIELDS(X)                                                                       \
  X(Latitude, "latitude-deg", "/position/latitude-deg", Double, -90, 90)                           \
  X(Longitude, "longitude-deg", "/position/longitude-deg", Double, -180, 180)                      \
  X(AltitudeFeet, "altitude-ft", "/position/altitude-ft", Double, -2000, 100000)                   \
  X(HeightFeet, "altitude-agl-ft", "/position/altitude-agl-ft", Double, -2000, 100000)             \
  X(TrueHeading, "heading-deg", "/orientation/heading-deg", Double, -360, 720)                     \
  X(Pitch, "pitch-deg", "/orientation/pitch-deg", Double, -180, 180)                               \
  X(Roll, "roll-deg", "/orientation/roll-deg", Double, -180, 180)                                  \
  X(MagVar, "magnetic-variation-deg", "/environment/magnetic-variation-deg", Double, -180, 180)    \
  X(Ias, "airspeed-kt", "/velocities/airspeed-kt", Double, -1000, 5000)                            \
  X(Tas, "true-speed-kt", "/instrumentation/airspeed-indicator/true-speed-kt", Double, -1000,      \
    5000)                                                                                          \
  X(Gs, "groundspeed-kt", "/velocities/groundspeed-kt", Double, -1000, 5000)                       \
  X(VsFps, "vertical-speed-fps", "/velocities/vertical-speed-fps", Double, -2000, 2000)            \
  X(Wow0, "wow-0", "/gear/gear[0]/wow", Bool, 0, 1)                                                \
  X(Wow1, "wow-1", "/gear/gear[1]/wow", Bool, 0, 1)                                                \
  X(Wow2, "wow-2", "/gear/gear[2]/wow", Bool, 0, 1)                                                \
  X(Gear0, "gear-0-position", "/gear/gear[0]/position-norm", Double, 0, 1)                         \
  X(Gear1, "gear-1-position", "/gear/gear[1]/position-norm", Double, 0, 1)                         \
  X(Gear2, "gear-2-position", "/gear/gear[2]/position-norm", Double, 0, 1)                         \
  X(GearDown, "gear-down", "/controls/gear/gear-down", Bool, 0, 1)                                 \
  X(Flaps, "flap-pos-norm", "/surface-positions/flap-pos-norm", Double, -0.1, 1.1)                 \
  X(Elevator, "elevator", "/controls/flight/elevator", Double, -1.5, 1.5)                          \
  X(Aileron, "aileron", "/controls/flight/aileron", Double, -1.5, 1.5)                             \
  X(Rudder, "rudder", "/controls/flight/rudder", Double, -1.5, 1.5)                                \
  X(ElevatorTrim, "elevator-trim", "/controls/flight/elevator-trim", Double, -1.5, 1.5)            \
  X(Throttle0, "throttle-0", "/controls/engines/engine[0]/throttle", Double, -1.5, 1.5)            \
  X(Throttle1, "throttle-1", "/controls/engines/engine[1]/throttle", Double, -1.5, 1.5)            \
  X(Throttle2, "throttle-2", "/controls/engines/engine[2]/throttle", Double, -1.5, 1.5)            \
  X(Throttle3, "throttle-3", "/controls/engines/engine[3]/throttle", Double, -1.5, 1.5)            \
  X(Mixture0, "mixture-0", "/controls/engines/engine[0]/mixture", Double, -0.5, 1.5)               \
  X(Mixture1, "mixture-1", "/controls/engines/engine[1]/mixture", Double, -0.5, 1.5)               \
  X(Mixture2, "mixture-2", "/controls/engines/engine[2]/mixture", Double, -0.5, 1.5)               \
  X(Mixture3, "mixture-3", "/controls/engines/engine[3]/mixture", Double, -0.5, 1.5)               \
  X(Running0, "running-0", "/engines/engine[0]/running", Bool, 0, 1)                               \
  X(Running1, "running-1", "/engines/engine[1]/running", Bool, 0, 1)                               \
  X(Running2, "running-2", "/engines/engine[2]/running", Bool, 0, 1)                               \
  X(Running3, "running-3", "/engines/engine[3]/running", Bool, 0, 1)                               \
  X(Rpm0, "rpm-0", "/engines/engine[0]/rpm", Double, -kFar, kFar)                                  \
  X(Rpm1, "rpm-1", "/engines/engine[1]/rpm", Double, -kFar, kFar)                                  \
  X(Rpm2, "rpm-2", "/engines/engine[2]/rpm", Double, -kFar, kFar)                                  \
  X(Rpm3, "rpm-3", "/engines/engine[3]/rpm", Double, -kFar, kFar)                                  \
  X(ParkingBrake, "brake-parking", "/controls/gear/brake-parking", Double, 0, 1)                   \
  X(BrakeLeft, "brake-left", "/controls/gear/brake-left", Double, 0, 1)                            \
  X(BrakeRight, "brake-right", "/controls/gear/brake-right", Double, 0, 1)                         \
  X(NavLights, "nav-lights", "/controls/lighting/nav-lights", Bool, 0, 1)                          \
  X(Beacon, "beacon", "/controls/lighting/beacon", Bool, 0, 1)                                     \
  X(LandingLights, "landing-lights", "/controls/lighting/landing-lights", Bool, 0, 1)              \
  X(TaxiLight, "taxi-light", "/controls/lighting/taxi-light", Bool, 0, 1)                          \
  X(Strobe, "strobe", "/controls/lighting/strobe", Bool, 0, 1)                                     \
  X(Battery, "battery-switch", "/controls/electric/battery-switch", Bool, 0, 1)                    \
  X(Avionics, "avionics-switch", "/controls/electric/avionics-switch", Bool, 0, 1)                 \
  X(PitotHeat, "pitot-heat", "/controls/anti-ice/pitot-heat", Bool, 0, 1)                          \
  X(StallWarning, "stall-warning", "/sim/alarms/stall-warning", Bool, 0, 1)                        \
  X(GLoad, "pilot-g", "/accelerations/pilot-g", Double, -50, 50)                                   \
  X(FuelLeft, "tank-0-gal", "/consumables/fuel/tank[0]/level-gal_us", Double, -1, kFar)            \
  X(FuelRight, "tank-1-gal", "/consumables/fuel/tank[1]/level-gal_us", Double, -1, kFar)           \
  X(FuelCapacity, "tank-0-capacity", "/consumables/fuel/tank[0]/capacity-gal_us", Double, -1,      \
    kFar)                                                                                          \
  X(Nav1Mhz, "nav-0-mhz", "/instrumentation/nav[0]/frequencies/selected-mhz", Double, 0, 200)      \
  X(Nav1Obs, "nav-0-obs", "/instrumentation/nav[0]/radials/selected-deg", Double, -360, 720)       \
  X(Nav2Mhz, "nav-1-mhz", "/instrumentation/nav[1]/frequencies/selected-mhz", Double, 0, 200)      \
  X(Nav2Obs, "nav-1-obs", "/instrumentation/nav[1]/radials/selected-deg", Double, -360, 720)       \
  X(Com1Mhz, "comm-0-mhz", "/instrumentation/comm[0]/frequencies/selected-mhz", Double, 0, 200)    \
  X(Com2Mhz, "comm-1-mhz", "/instrumentation/comm[1]/frequencies/selected-mhz", Double, 0, 200)    \
  X(AdfKhz, "adf-khz", "/instrumentation/adf[0]/frequencies/selected-khz", Double, 0, 2000)        \
  X(Squawk, "transponder", "/instrumentation/transponder/id-code", Int, 0, 7777)                   \
  X(Localiser, "nav-0-cdi", "/instrumentation/nav[0]/heading-needle-deflection-norm", Double,      \
    -1.5, 1.5)                                                                                     \
  X(Glideslope, "nav-0-gs", "/instrumentation/nav[0]/gs-needle-deflection-norm", Double, -1.5,     \
    1.5)                                                                                           \
  X(GlideslopeAlive, "nav-0-gs-in-range", "/instrumentation/nav[0]/gs-in-range", Bool, 0, 1)       \
  X(ToFlag, "nav-0-to", "/instrumentation/nav[0]/to-flag", Bool, 0, 1)                             \
  X(FromFlag, "nav-0-from", "/instrumentation/nav[0]/from-flag", Bool, 0, 1)                       \
  X(WindFrom, "wind-from-deg", "/environment/wind-from-heading-deg", Double, -360, 720)            \
  X(WindSpeed, "wind-speed-kt", "/environment/wind-speed-kt", Double, -1, 1000)                    \
  X(VisibilityMetres, "visibility-m", "/environment/visibility-m", Double, -1, 1e7)                \
  X(Qnh, "altimeter-inhg", "/instrumentation/altimeter/setting-inhg", Double, 0, 40)               \
  X(IndicatedAltitude, "altimeter-ft", "/instrumentation/altimeter/indicated-altitude-ft", Double, \
    -5000, 100000)                                                                                 \
  X(SimRate, "speed-up", "/sim/speed-up", Double, 0, 1000)                                         \
  X(Paused, "freeze", "/sim/freeze/master", Bool, 0, 1)                                            \
  X(Crashed, "crashed", "/sim/crashed", Bool, 0, 1)                                                \
  X(Gmt, "gmt", "/sim/time/gmt", String, 0, 0)                                                     \
  X(Nav1Ident, "nav-0-id", "/instrumentation/nav[0]/nav-id", String, 0, 0)                         \
  X(AircraftId, "aircraft", "/sim/aircraft", String, 0, 0)                                         \
  X(AircraftDir, "aircraft-dir", "/sim/aircraft-dir", String, 0, 0)                                \
  X(Title, "description", "/sim/description", String, 0, 0)

enum Field : size_t {
#define VANTORO_FG_ENUM(id, name, node, type, low, high) k##id,
  VANTORO_FG_FIELDS(VANTORO_FG_ENUM) kFieldCount
#undef VANTORO_FG_ENUM
};

struct Value {
  double number = 0;
  std::string text;
};

bool ParseNumber(std::string_view s, double& out) {
  if (s.empty()) return false;
  const char* first = s.data();
  const char* last = s.data() + s.size();
  if (*first == '+') ++first;
  const auto [end, ec] = std::from_chars(first, last, out);
  return ec == std::errc() && end == last && std::isfinite(out);
}

bool ParseField(const FlightGearField& f, std::string_view s, Value& v, std::string& error) {
  if (f.type == FlightGearType::String) {
    if (s.size() > kLongestText) {
      error = std::string(f.name) + ": text longer than 255 characters";
      return false;
    }
    for (const char c : s)
      if (static_cast<unsigned char>(c) < 0x20) {
        error = std::string(f.name) + ": control character in text";
        return false;
      }
    v.text.assign(s);
    return true;
  }
  if (f.type == FlightGearType::Bool && (s == "true" || s == "false")) {
    v.number = s == "true" ? 1 : 0;
    return true;
  }
  if (!ParseNumber(s, v.number)) {
    error = std::string(f.name) + ": \"" + std::string(s.substr(0, 32)) + "\" is not a number";
    return false;
  }
  if ((f.type == FlightGearType::Int || f.type == FlightGearType::Bool) &&
      v.number != std::floor(v.number)) {
    error = std::string(f.name) + ": not a whole number";
    return false;
  }
  if (v.number < f.low || v.number > f.high) {
    error = std::string(f.name) + ": " + std::string(s.substr(0, 32)) + " is out of range";
    return false;
  }
  return true;
}

// "2026-06-14T09:00:00" as FlightGear's clock gives it.
bool ParseGmt(std::string_view s, WallTime& t) {
  int year, month, day, hour, minute, second;
  char tail;
  const std::string text(s);
  if (std::sscanf(text.c_str(), "%4d-%2d-%2dT%2d:%2d:%2d%c", &year, &month, &day, &hour, &minute,
                  &second, &tail) != 6)
    return false;
  if (year < 1 || year > 9999 || month < 1 || month > 12 || day < 1 || day > 31 || hour > 23 ||
      hour < 0 || minute < 0 || minute > 59 || second < 0 || second > 60)
    return false;
  t = WallTime{year, month, day, hour, minute, static_cast<double>(second)};
  return true;
}

double Wrap360(double d) {
  d = std::fmod(d, 360.0);
  return d < 0 ? d + 360.0 : d;
}

// The aircraft's file as FlightGear names it: its folder, then the set file.
std::string AircraftPath(const std::string& dir, const std::string& id) {
  std::string path = dir;
  for (char& c : path)
    if (c == '/') c = '\\';
  if (!path.empty() && path.back() != '\\') path += '\\';
  return path + id + "-set.xml";
}

}  // namespace

// A leg this far out is down and locked.
constexpr double kLegDown = 0.99;

const std::vector<FlightGearField>& FlightGearFields() {
  static const std::vector<FlightGearField> fields = {
#define VANTORO_FG_ROW(id, name, node, type, low, high) \
  {name, node, FlightGearType::type, low, high},
      VANTORO_FG_FIELDS(VANTORO_FG_ROW)
#undef VANTORO_FG_ROW
  };
  return fields;
}

std::string FlightGearProtocolXml() {
  std::string xml =
      "<?xml version=\"1.0\"?>\n"
      "<!-- Vantoro: the aircraft's state for the flight instructor, one line of\n"
      "     tab-separated fields per packet, sent by FlightGear started with the\n"
      "     generic output on UDP port 5500 and the property server on port 5501\n"
      "     (the README's Flying on Linux gives the whole command line). -->\n"
      "<PropertyList>\n"
      " <generic>\n"
      "  <output>\n"
      "   <binary_mode>false</binary_mode>\n"
      "   <line_separator>newline</line_separator>\n"
      "   <var_separator>tab</var_separator>\n";
  for (const FlightGearField& f : FlightGearFields()) {
    const char* type = "double";
    const char* format = "%.6f";
    switch (f.type) {
      case FlightGearType::Bool:
        type = "bool";
        format = "%d";
        break;
      case FlightGearType::Int:
        type = "int";
        format = "%d";
        break;
      case FlightGearType::String:
        type = "string";
        format = "%s";
        break;
      case FlightGearType::Double:
        if (std::string_view(f.node).starts_with("/position/l")) format = "%.8f";
        break;
    }
    xml += "   <chunk>\n    <name>" + std::string(f.name) + "</name>\n    <type>" + type +
           "</type>\n    <node>" + f.node + "</node>\n    <format>" + format +
           "</format>\n   </chunk>\n";
  }
  xml += "  </output>\n </generic>\n</PropertyList>\n";
  return xml;
}

bool FlightGearDecoder::Decode(std::string_view packet, SimulatorState& state, std::string& error) {
  const auto& fields = FlightGearFields();
  static_assert(kFieldCount > 0);
  if (!packet.empty() && packet.back() == '\n') packet.remove_suffix(1);
  if (!packet.empty() && packet.back() == '\r') packet.remove_suffix(1);
  std::vector<Value> v(fields.size());
  size_t index = 0;
  size_t start = 0;
  while (true) {
    const size_t tab = packet.find('\t', start);
    const std::string_view part =
        packet.substr(start, tab == std::string_view::npos ? std::string_view::npos : tab - start);
    if (index >= fields.size()) {
      error = "more than " + std::to_string(fields.size()) + " fields";
      return false;
    }
    if (!ParseField(fields[index], part, v[index], error)) return false;
    ++index;
    if (tab == std::string_view::npos) break;
    start = tab + 1;
  }
  if (index != fields.size()) {
    error = std::to_string(index) + " fields of " + std::to_string(fields.size());
    return false;
  }
  WallTime when;
  if (!ParseGmt(v[kGmt].text, when)) {
    error = "gmt: \"" + v[kGmt].text.substr(0, 32) + "\" is not a time";
    return false;
  }

  auto on = [&](Field f) { return v[f].number != 0; };
  auto num = [&](Field f) { return v[f].number; };
  SimulatorState s = state;
  FlownAircraft& a = s.aircraft;
  a.simulatorTime = when;
  a.lat = num(kLatitude);
  a.lon = num(kLongitude);
  a.height = num(kHeightFeet);
  a.fieldElevation = num(kAltitudeFeet) - a.height;
  a.heading = Wrap360(num(kTrueHeading));
  a.pitch = num(kPitch);
  a.bank = num(kRoll);
  a.magvar = num(kMagVar);
  a.ias = std::max(0.0, num(kIas));
  a.gs = std::max(0.0, num(kGs));
  a.tas = num(kTas) > 0 ? num(kTas) : a.ias;
  a.vs = num(kVsFps) * kSecondsPerMinute;
  a.onGround = on(kWow0) || on(kWow1) || on(kWow2);
  // A fixed gear has no lever: FlightGear's c172p reads "up" there while its
  // three legs stand down. The gear is down when the lever says so or when
  // every leg is down.
  a.gearDown = on(kGearDown) || std::min({num(kGear0), num(kGear1), num(kGear2)}) >= kLegDown;
  a.flaps = std::clamp(num(kFlaps), 0.0, 1.0) * kFullFlapsDegrees;
  a.brake = num(kParkingBrake) > 0.5;
  a.battery = on(kBattery);
  a.avionics = on(kAvionics);
  a.lights = (on(kNavLights) ? 1 : 0) | (on(kBeacon) ? 2 : 0) | (on(kLandingLights) ? 4 : 0) |
             (on(kTaxiLight) ? 8 : 0) | (on(kStrobe) ? 16 : 0);
  a.paused = on(kPaused);
  a.crashed = on(kCrashed);
  a.simRate = num(kSimRate) > 0 ? num(kSimRate) : 1.0;
  a.windFrom = Wrap360(num(kWindFrom) - a.magvar);
  a.windSpeed = std::max(0.0, num(kWindSpeed));
  a.obs = static_cast<int>(std::lround(Wrap360(num(kNav1Obs)))) % 360;
  if (num(kFuelCapacity) > 0) a.fuelCapacity = num(kFuelCapacity);
  a.fuelLeft = std::max(0.0, num(kFuelLeft));
  a.fuelRight = std::max(0.0, num(kFuelRight));
  a.title = v[kTitle].text;
  a.path = AircraftPath(v[kAircraftDir].text, v[kAircraftId].text);

  const Field throttles[] = {kThrottle0, kThrottle1, kThrottle2, kThrottle3};
  const Field mixtures[] = {kMixture0, kMixture1, kMixture2, kMixture3};
  const Field running[] = {kRunning0, kRunning1, kRunning2, kRunning3};
  const Field rpm[] = {kRpm0, kRpm1, kRpm2, kRpm3};
  int engines = enginesSeen_;
  for (int e = 0; e < kMaxEngines; ++e) {
    s.throttle[e] = num(throttles[e]);
    s.mixture[e] = num(mixtures[e]);
    s.running[e] = on(running[e]);
    if (s.running[e] || num(rpm[e]) > 0) engines = std::max(engines, e + 1);
  }
  a.engines = engines;
  a.throttle = s.throttle[0];
  a.mixtureRich = s.mixture[0] > 0.5;
  a.firing = s.running[0];

  s.elevator = num(kElevator);
  s.aileron = num(kAileron);
  s.rudder = num(kRudder);
  s.elevatorTrim = num(kElevatorTrim);
  s.gearPosition = {num(kGear0), num(kGear1), num(kGear2)};
  s.toeBrakes = num(kBrakeLeft) > 0.1 || num(kBrakeRight) > 0.1;
  s.pitotHeat = on(kPitotHeat);
  s.stallWarning = on(kStallWarning);
  s.gLoad = num(kGLoad);
  s.visibilityMiles = std::max(0.0, num(kVisibilityMetres)) / kMetresPerStatuteMile;
  if (num(kQnh) > 0) s.qnhHpa = num(kQnh) * kHpaPerInchHg;
  s.indicatedAltitude = num(kIndicatedAltitude);
  s.nav1Mhz = num(kNav1Mhz);
  s.nav2Mhz = num(kNav2Mhz);
  s.nav2Obs = static_cast<int>(std::lround(Wrap360(num(kNav2Obs)))) % 360;
  s.com1Mhz = num(kCom1Mhz);
  s.com2Mhz = num(kCom2Mhz);
  s.adfKhz = num(kAdfKhz);
  s.squawk = static_cast<int>(num(kSquawk));
  s.localiser = num(kLocaliser);
  // FlightGear's glide-slope needle points down when the aircraft is high,
  // as the simulator's offsets do.
  s.glideslope = num(kGlideslope);
  s.toFrom = on(kToFlag) ? 1 : on(kFromFlag) ? 2 : 0;
  s.glideslopeAlive = on(kGlideslopeAlive);
  s.nav1Ident = v[kNav1Ident].text;

  enginesSeen_ = engines;
  state = std::move(s);
  return true;
}

}  // namespace vantoro
