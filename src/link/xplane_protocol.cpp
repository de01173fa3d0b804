#include "link/xplane_protocol.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>

#include "link/image_link.h"

namespace vantoro {

namespace {

constexpr size_t kHeader = 5;
constexpr size_t kRrefPath = 400;
constexpr size_t kDrefPath = 500;
constexpr size_t kPair = 8;
constexpr double kKnotsPerMetrePerSecond = 1.943844;
constexpr double kFeetPerMetre = 3.28084;
constexpr double kMetresPerStatuteMile = 1609.344;
constexpr double kHpaPerInchHg = 33.8639;
constexpr double kPoundsPerKg = 2.20462;
constexpr double kAvgasPoundsPerGallon = 6.0;
constexpr double kNeedleDots = 2.5;  // full deflection of the needles, in dots
constexpr float kFailed = 6;         // X-Plane's failure state "inoperative"

#define VANTORO_XP_REFS(X)                                                   \
  X(Latitude, "sim/flightmodel/position/latitude")                           \
  X(Longitude, "sim/flightmodel/position/longitude")                         \
  X(ElevationM, "sim/flightmodel/position/elevation")                        \
  X(HeightM, "sim/flightmodel/position/y_agl")                               \
  X(TrueHeading, "sim/flightmodel/position/psi")                             \
  X(Pitch, "sim/flightmodel/position/theta")                                 \
  X(Roll, "sim/flightmodel/position/phi")                                    \
  X(MagVar, "sim/flightmodel/position/magnetic_variation")                   \
  X(Ias, "sim/flightmodel/position/indicated_airspeed")                      \
  X(TasMs, "sim/flightmodel/position/true_airspeed")                         \
  X(GsMs, "sim/flightmodel/position/groundspeed")                            \
  X(VsFpm, "sim/flightmodel/position/vh_ind_fpm")                            \
  X(OnGround, "sim/flightmodel/failures/onground_any")                       \
  X(GearHandle, "sim/cockpit2/controls/gear_handle_down")                    \
  X(Gear0, "sim/flightmodel2/gear/deploy_ratio[0]")                          \
  X(Gear1, "sim/flightmodel2/gear/deploy_ratio[1]")                          \
  X(Gear2, "sim/flightmodel2/gear/deploy_ratio[2]")                          \
  X(Retractable, "sim/aircraft/gear/acf_gear_retract")                       \
  X(Flaps, "sim/flightmodel/controls/flaprat")                               \
  X(Elevator, "sim/joystick/yoke_pitch_ratio")                               \
  X(Aileron, "sim/joystick/yoke_roll_ratio")                                 \
  X(Rudder, "sim/joystick/yoke_heading_ratio")                               \
  X(ElevatorTrim, "sim/cockpit2/controls/elevator_trim")                     \
  X(Engines, "sim/aircraft/engine/acf_num_engines")                          \
  X(Throttle0, "sim/cockpit2/engine/actuators/throttle_ratio[0]")            \
  X(Throttle1, "sim/cockpit2/engine/actuators/throttle_ratio[1]")            \
  X(Throttle2, "sim/cockpit2/engine/actuators/throttle_ratio[2]")            \
  X(Throttle3, "sim/cockpit2/engine/actuators/throttle_ratio[3]")            \
  X(Mixture0, "sim/cockpit2/engine/actuators/mixture_ratio[0]")              \
  X(Mixture1, "sim/cockpit2/engine/actuators/mixture_ratio[1]")              \
  X(Mixture2, "sim/cockpit2/engine/actuators/mixture_ratio[2]")              \
  X(Mixture3, "sim/cockpit2/engine/actuators/mixture_ratio[3]")              \
  X(Running0, "sim/flightmodel/engine/ENGN_running[0]")                      \
  X(Running1, "sim/flightmodel/engine/ENGN_running[1]")                      \
  X(Running2, "sim/flightmodel/engine/ENGN_running[2]")                      \
  X(Running3, "sim/flightmodel/engine/ENGN_running[3]")                      \
  X(ParkingBrake, "sim/cockpit2/controls/parking_brake_ratio")               \
  X(BrakeLeft, "sim/cockpit2/controls/left_brake_ratio")                     \
  X(BrakeRight, "sim/cockpit2/controls/right_brake_ratio")                   \
  X(NavLights, "sim/cockpit2/switches/navigation_lights_on")                 \
  X(Beacon, "sim/cockpit2/switches/beacon_on")                               \
  X(LandingLights, "sim/cockpit2/switches/landing_lights_on")                \
  X(TaxiLight, "sim/cockpit2/switches/taxi_light_on")                        \
  X(Strobe, "sim/cockpit2/switches/strobe_lights_on")                        \
  X(Battery, "sim/cockpit2/electrical/battery_on[0]")                        \
  X(Avionics, "sim/cockpit2/switches/avionics_power_on")                     \
  X(PitotHeat, "sim/cockpit2/ice/ice_pitot_heat_on_pilot")                   \
  X(StallWarning, "sim/cockpit2/annunciators/stall_warning")                 \
  X(GLoad, "sim/flightmodel/forces/g_nrml")                                  \
  X(FuelLeftKg, "sim/flightmodel/weight/m_fuel[0]")                          \
  X(FuelRightKg, "sim/flightmodel/weight/m_fuel[1]")                         \
  X(FuelMaxKg, "sim/aircraft/weight/acf_m_fuel_tot")                         \
  X(Nav1, "sim/cockpit2/radios/actuators/nav1_frequency_hz")                 \
  X(Nav1Obs, "sim/cockpit2/radios/actuators/nav1_obs_deg_mag_pilot")         \
  X(Nav2, "sim/cockpit2/radios/actuators/nav2_frequency_hz")                 \
  X(Nav2Obs, "sim/cockpit2/radios/actuators/nav2_obs_deg_mag_pilot")         \
  X(Com1, "sim/cockpit2/radios/actuators/com1_frequency_hz")                 \
  X(Com2, "sim/cockpit2/radios/actuators/com2_frequency_hz")                 \
  X(Adf, "sim/cockpit2/radios/actuators/adf1_frequency_hz")                  \
  X(Squawk, "sim/cockpit2/radios/actuators/transponder_code")                \
  X(Hdef, "sim/cockpit2/radios/indicators/nav1_hdef_dots_pilot")             \
  X(Vdef, "sim/cockpit2/radios/indicators/nav1_vdef_dots_pilot")             \
  X(GsAlive, "sim/cockpit2/radios/indicators/nav1_display_vertical")         \
  X(ToFrom, "sim/cockpit2/radios/indicators/nav1_flag_from_to_pilot")        \
  X(WindFromMag, "sim/cockpit2/gauges/indicators/wind_heading_deg_mag")      \
  X(WindKt, "sim/cockpit2/gauges/indicators/wind_speed_kts")                 \
  X(VisibilityM, "sim/weather/visibility_reported_m")                        \
  X(BaroInHg, "sim/cockpit2/gauges/actuators/barometer_setting_in_hg_pilot") \
  X(IndicatedAltitude, "sim/cockpit2/gauges/indicators/altitude_ft_pilot")   \
  X(ZuluSeconds, "sim/time/zulu_time_sec")                                   \
  X(DayOfYear, "sim/time/local_date_days")                                   \
  X(Paused, "sim/time/paused")                                               \
  X(SimSpeed, "sim/time/sim_speed")                                          \
  X(Crashed, "sim/flightmodel2/misc/has_crashed")

enum Ref : size_t {
#define VANTORO_XP_ENUM(id, name) k##id,
  VANTORO_XP_REFS(VANTORO_XP_ENUM) kPathFirst
#undef VANTORO_XP_ENUM
};
constexpr size_t kRefCount = kPathFirst + kXPlanePathLength;

void PutU32(std::vector<uint8_t>& out, uint32_t v) {
  for (int i = 0; i < 4; ++i) out.push_back(static_cast<uint8_t>(v >> (8 * i)));
}

uint32_t GetU32(const uint8_t* p) {
  return uint32_t{p[0]} | uint32_t{p[1]} << 8 | uint32_t{p[2]} << 16 | uint32_t{p[3]} << 24;
}

std::vector<uint8_t> Header(const char* word) {
  return std::vector<uint8_t>(word, word + kHeader);  // the four letters and a zero byte
}

void PutText(std::vector<uint8_t>& out, std::string_view text, size_t field) {
  const size_t n = std::min(text.size(), field - 1);
  out.insert(out.end(), text.begin(), text.begin() + static_cast<std::ptrdiff_t>(n));
  out.resize(out.size() + field - n, 0);
}

double Wrap360(double d) {
  d = std::fmod(d, 360.0);
  return d < 0 ? d + 360.0 : d;
}

// Month and day of a day of the year (1 for the first of January).
void MonthDay(int year, int dayOfYear, int& month, int& day) {
  static const int kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  month = 1;
  day = std::max(1, dayOfYear);
  for (int m = 0; m < 12; ++m) {
    const int length = kDays[m] + (m == 1 && IsLeapYear(year) ? 1 : 0);
    if (day <= length || m == 11) {
      month = m + 1;
      day = std::min(day, length);
      return;
    }
    day -= length;
  }
}

}  // namespace

const std::vector<XPlaneRef>& XPlaneRefs() {
  static const std::vector<XPlaneRef> refs = [] {
    std::vector<XPlaneRef> r = {
#define VANTORO_XP_ROW(id, name) {name, kXPlaneRate},
        VANTORO_XP_REFS(VANTORO_XP_ROW)
#undef VANTORO_XP_ROW
    };
    for (int i = 0; i < kXPlanePathLength; ++i)
      r.push_back(
          {"sim/aircraft/view/acf_relative_path[" + std::to_string(i) + "]", kXPlaneNameRate});
    return r;
  }();
  return refs;
}

std::vector<uint8_t> RrefRequest(int32_t rate, int32_t index, std::string_view dataref) {
  std::vector<uint8_t> out = Header("RREF");
  PutU32(out, static_cast<uint32_t>(rate));
  PutU32(out, static_cast<uint32_t>(index));
  PutText(out, dataref, kRrefPath);
  return out;
}

std::vector<uint8_t> DrefPacket(float value, std::string_view dataref) {
  std::vector<uint8_t> out = Header("DREF");
  uint32_t bits;
  std::memcpy(&bits, &value, sizeof bits);
  PutU32(out, bits);
  PutText(out, dataref, kDrefPath);
  return out;
}

std::vector<uint8_t> CmndPacket(std::string_view command) {
  std::vector<uint8_t> out = Header("CMND");
  out.reserve(out.size() + command.size() + 1);
  for (char ch : command) out.push_back(static_cast<uint8_t>(ch));
  out.push_back(0);
  return out;
}

XPlaneDecoder::XPlaneDecoder() : values_(kRefCount, 0.0f) {}

bool XPlaneDecoder::Take(const uint8_t* data, size_t size, std::string& error) {
  if (size < kHeader || std::memcmp(data, "RREF", 4) != 0) {
    error = "not an RREF answer";
    return false;
  }
  if ((size - kHeader) % kPair != 0) {
    error = "RREF answer of " + std::to_string(size) + " bytes cut short";
    return false;
  }
  std::vector<std::pair<uint32_t, float>> pairs;
  for (size_t at = kHeader; at < size; at += kPair) {
    const uint32_t index = GetU32(data + at);
    const uint32_t bits = GetU32(data + at + 4);
    float value;
    std::memcpy(&value, &bits, sizeof value);
    if (!std::isfinite(value)) {
      error = "RREF value of index " + std::to_string(index) + " is not a number";
      return false;
    }
    pairs.emplace_back(index, value);
  }
  // An index of another program's subscription on the same port is passed over.
  for (const auto& [index, value] : pairs)
    if (index < values_.size()) values_[index] = value;
  return true;
}

void XPlaneDecoder::Fill(SimulatorState& s, int year) const {
  auto num = [&](Ref r) { return static_cast<double>(values_[r]); };
  auto on = [&](Ref r) { return values_[r] > 0.5f; };
  FlownAircraft& a = s.aircraft;
  a.lat = std::clamp(num(kLatitude), -90.0, 90.0);
  a.lon = std::clamp(num(kLongitude), -180.0, 180.0);
  a.height = num(kHeightM) * kFeetPerMetre;
  a.fieldElevation = num(kElevationM) * kFeetPerMetre - a.height;
  a.heading = Wrap360(num(kTrueHeading));
  a.pitch = std::clamp(num(kPitch), -180.0, 180.0);
  a.bank = std::clamp(num(kRoll), -180.0, 180.0);
  a.magvar = std::clamp(num(kMagVar), -180.0, 180.0);
  a.ias = std::max(0.0, num(kIas));
  a.tas = std::max(0.0, num(kTasMs) * kKnotsPerMetrePerSecond);
  a.gs = std::max(0.0, num(kGsMs) * kKnotsPerMetrePerSecond);
  a.vs = num(kVsFpm);
  a.onGround = on(kOnGround);
  a.gearDown = on(kGearHandle);
  a.retractable = on(kRetractable);
  a.flaps = std::clamp(num(kFlaps), 0.0, 1.0) * 40.0;
  a.engines = std::clamp(static_cast<int>(num(kEngines)), 1, kMaxEngines);
  a.brake = num(kParkingBrake) > 0.5;
  a.battery = on(kBattery);
  a.avionics = on(kAvionics);
  a.lights = (on(kNavLights) ? 1 : 0) | (on(kBeacon) ? 2 : 0) | (on(kLandingLights) ? 4 : 0) |
             (on(kTaxiLight) ? 8 : 0) | (on(kStrobe) ? 16 : 0);
  a.paused = on(kPaused);
  a.crashed = on(kCrashed);
  a.simRate = num(kSimSpeed) > 0 ? num(kSimSpeed) : 1.0;
  a.windFrom = Wrap360(num(kWindFromMag));
  a.windSpeed = std::max(0.0, num(kWindKt));
  a.obs = static_cast<int>(std::lround(Wrap360(num(kNav1Obs)))) % 360;
  const double gallonsPerKg = kPoundsPerKg / kAvgasPoundsPerGallon;
  if (num(kFuelMaxKg) > 0) a.fuelCapacity = num(kFuelMaxKg) * gallonsPerKg / 2;
  a.fuelLeft = std::max(0.0, num(kFuelLeftKg) * gallonsPerKg);
  a.fuelRight = std::max(0.0, num(kFuelRightKg) * gallonsPerKg);

  const double zulu = std::clamp(num(kZuluSeconds), 0.0, 86399.0);
  int month = 1, day = 1;
  MonthDay(year, static_cast<int>(std::clamp(num(kDayOfYear), 0.0, 365.0)) + 1, month, day);
  const int seconds = static_cast<int>(zulu);
  a.simulatorTime = WallTime{
      year, month, day, seconds / 3600, seconds / 60 % 60, static_cast<double>(seconds % 60)};

  std::string file;
  for (int i = 0; i < kXPlanePathLength; ++i) {
    const int c = static_cast<int>(values_[kPathFirst + i]);
    if (c <= 0 || c > 255) break;
    file.push_back(static_cast<char>(c < 0x20 ? ' ' : c));
  }
  TitleFromAircraftFile(file, a.title, a.path);

  const Ref throttles[] = {kThrottle0, kThrottle1, kThrottle2, kThrottle3};
  const Ref mixtures[] = {kMixture0, kMixture1, kMixture2, kMixture3};
  const Ref running[] = {kRunning0, kRunning1, kRunning2, kRunning3};
  for (int e = 0; e < kMaxEngines; ++e) {
    s.throttle[e] = num(throttles[e]);
    s.mixture[e] = num(mixtures[e]);
    s.running[e] = on(running[e]);
  }
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
  s.visibilityMiles = std::max(0.0, num(kVisibilityM)) / kMetresPerStatuteMile;
  if (num(kBaroInHg) > 0) s.qnhHpa = num(kBaroInHg) * kHpaPerInchHg;
  s.indicatedAltitude = num(kIndicatedAltitude);
  // X-Plane gives frequencies in tens of kHz (11050 for 110.50 MHz).
  s.nav1Mhz = num(kNav1) / 100.0;
  s.nav2Mhz = num(kNav2) / 100.0;
  s.nav2Obs = static_cast<int>(std::lround(Wrap360(num(kNav2Obs)))) % 360;
  s.com1Mhz = num(kCom1) / 100.0;
  s.com2Mhz = num(kCom2) / 100.0;
  s.adfKhz = num(kAdf);
  s.squawk = static_cast<int>(num(kSquawk));
  s.localiser = num(kHdef) / kNeedleDots;
  s.glideslope = num(kVdef) / kNeedleDots;
  s.toFrom = std::clamp(static_cast<int>(num(kToFrom)), 0, 2);
  s.glideslopeAlive = on(kGsAlive);
}

namespace {

constexpr uint32_t kMessageText = 0x3380;
constexpr uint32_t kMessageSeconds = 0x32FA;

const char* XPlaneFailure(int index) {
  static const char* const kFailures[16] = {
      "sim/operation/failures/rel_adf1",   "sim/operation/failures/rel_ss_asi",
      "sim/operation/failures/rel_ss_alt", "sim/operation/failures/rel_ss_ahz",
      "sim/operation/failures/rel_com1",   nullptr,
      "sim/operation/failures/rel_esys",   "sim/operation/failures/rel_engfai0",
      "sim/operation/failures/rel_g_fuel", "sim/operation/failures/rel_ss_dgy",
      "sim/operation/failures/rel_ss_vvi", "sim/operation/failures/rel_xpndr",
      "sim/operation/failures/rel_nav1",   "sim/operation/failures/rel_pitot",
      "sim/operation/failures/rel_ss_tsi", "sim/operation/failures/rel_vacuum"};
  return index >= 0 && index < 16 ? kFailures[index] : nullptr;
}

int BcdDigits(uint16_t word, int count) {
  int v = 0;
  for (int i = count - 1; i >= 0; --i) v = v * 10 + ((word >> (4 * i)) & 0xF) % 10;
  return v;
}

}  // namespace

std::vector<std::vector<uint8_t>> XPlaneWritePackets(const OffsetImage& image, uint32_t offset,
                                                     const std::vector<uint8_t>& bytes,
                                                     std::string& missing) {
  missing.clear();
  const float flag = !bytes.empty() && bytes[0] != 0 ? 1.0f : 0.0f;
  auto frequency = [&](uint32_t at) {
    return static_cast<float>(std::lround(FrequencyFromBcd(image.U16(at)) * 100));
  };
  if (offset == kMessageText) {
    missing = "a text line on the screen";
    return {};
  }
  if (offset == kMessageSeconds) return {};
  if (offset == 0x0350)
    return {DrefPacket(frequency(0x0350), "sim/cockpit2/radios/actuators/nav1_frequency_hz")};
  if (offset == 0x0C4E)
    return {DrefPacket(static_cast<float>(image.U16(0x0C4E)),
                       "sim/cockpit2/radios/actuators/nav1_obs_deg_mag_pilot")};
  if (offset == 0x034C || offset == 0x0356) {
    const uint16_t extended = image.U16(0x0356);
    const int khz = (extended >> 8) * 1000 + BcdDigits(image.U16(0x034C), 3);
    return {DrefPacket(static_cast<float>(khz), "sim/cockpit2/radios/actuators/adf1_frequency_hz")};
  }
  if (offset == 0x311C || offset == 0x311D)
    return {
        DrefPacket(frequency(0x311C), "sim/cockpit2/radios/actuators/com2_standby_frequency_hz")};
  if (offset == 0x3123 && !bytes.empty() && bytes[0] == 4)
    return {CmndPacket("sim/radios/com2_standy_flip")};  // X-Plane spells it so
  if (offset == 0x029C) return {DrefPacket(flag, "sim/cockpit2/ice/ice_pitot_heat_on_pilot")};
  if (offset == 0x281C) return {DrefPacket(flag, "sim/cockpit2/electrical/battery_on[0]")};
  if (offset == 0x2E80) return {DrefPacket(flag, "sim/cockpit2/switches/avionics_power_on")};
  if (offset >= 0x0B64 && offset < 0x0B74) {
    std::vector<std::vector<uint8_t>> packets;
    for (size_t i = 0; i < bytes.size() && offset + i < 0x0B74; ++i) {
      const int index = static_cast<int>(offset + i - 0x0B64);
      if (const char* failure = XPlaneFailure(index))
        packets.push_back(DrefPacket(bytes[i] != 0 ? kFailed : 0.0f, failure));
      else
        missing = "the compass failure";
    }
    return packets;
  }
  char what[48];
  std::snprintf(what, sizeof what, "the write to offset 0x%04X", offset);
  missing = what;
  return {};
}

}  // namespace vantoro
