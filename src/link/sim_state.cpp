#include "link/sim_state.h"

#include <algorithm>
#include <cmath>

namespace vantoro {

namespace {

constexpr double kFullDeflection = 16383.0;
constexpr double kFullLever = 16384.0;
constexpr double kNeedleFull = 127.0;
constexpr double kLoadFactorOne = 625.0;
constexpr double kHundredthsOfMile = 100.0;
constexpr double kQnhSixteenths = 16.0;
constexpr uint32_t kEngineBase[kMaxEngines] = {0x088C, 0x0924, 0x09BC, 0x0A54};
constexpr uint32_t kGearLegOffset[kGearLegs] = {0x0BEC, 0x0BF4, 0x0BF0};
constexpr double kGearDownWord = 16383.0;

int64_t Round(double x) {
  return static_cast<int64_t>(std::llround(x));
}

double Clamp(double v, double lo, double hi) {
  return std::isfinite(v) ? std::clamp(v, lo, hi) : 0.0;
}

uint16_t DigitsBcd(int value, int digits) {
  uint16_t word = 0;
  for (int i = 0; i < digits; ++i) {
    word = static_cast<uint16_t>(word | ((value % 10) << (4 * i)));
    value /= 10;
  }
  return word;
}

}  // namespace

uint16_t FrequencyBcd(double mhz) {
  // Hundredths of a MHz past 100: 110.50 keeps the four digits 1050.
  const int64_t hundredths = Round(Clamp(mhz, 100.0, 199.99) * 100.0) - 10000;
  return DigitsBcd(static_cast<int>(std::clamp<int64_t>(hundredths, 0, 9999)), 4);
}

double FrequencyFromBcd(uint16_t word) {
  int digits = 0;
  for (int shift = 12; shift >= 0; shift -= 4) digits = digits * 10 + ((word >> shift) & 0xF) % 10;
  return 100.0 + digits / 100.0;
}

uint16_t SquawkBcd(int code) {
  return DigitsBcd(std::clamp(code, 0, 7777), 4);
}

void TitleFromAircraftFile(std::string_view file, std::string& title, std::string& path) {
  path.assign(file);
  std::replace(path.begin(), path.end(), '/', '\\');
  const size_t slash = path.rfind('\\');
  std::string name = slash == std::string::npos ? path : path.substr(slash + 1);
  if (const size_t dot = name.rfind('.'); dot != std::string::npos && dot > 0) name.resize(dot);
  std::replace(name.begin(), name.end(), '_', ' ');
  title = name;
}

void EncodeSimulatorState(const SimulatorState& s, OffsetSink& out) {
  EncodeAircraft(s.aircraft, out);
  const int engines = std::clamp(s.aircraft.engines, 1, kMaxEngines);
  for (int e = 0; e < kMaxEngines; ++e) {
    const bool fitted = e < engines;
    const uint32_t b = kEngineBase[e];
    out.I16(b, fitted ? Round(Clamp(s.throttle[e], -0.25, 1.0) * kFullLever) : 0);
    out.I16(b + 4, fitted ? Round(Clamp(s.mixture[e], 0.0, 1.0) * kFullLever) : 0);
    out.U16(b + 8, fitted && s.running[e] ? 1 : 0);
  }
  out.I16(0x0BB2, Round(Clamp(s.elevator, -1, 1) * kFullDeflection));
  out.I16(0x0BB6, Round(Clamp(s.aileron, -1, 1) * kFullDeflection));
  out.I16(0x0BBA, Round(Clamp(s.rudder, -1, 1) * kFullDeflection));
  out.I16(0x0BC0, Round(Clamp(s.elevatorTrim, -1, 1) * kFullDeflection));
  for (int g = 0; g < kGearLegs; ++g)
    out.U32(kGearLegOffset[g], Round(Clamp(s.gearPosition[g], 0, 1) * kGearDownWord));
  out.U16(0x0BCA, s.toeBrakes ? 1 : 0);
  out.U8(0x029C, s.pitotHeat ? 1 : 0);
  out.U8(0x036C, s.stallWarning ? 1 : 0);
  out.I16(0x11BA, Round(Clamp(s.gLoad, -20, 20) * kLoadFactorOne));
  out.U16(0x0E8A, Round(Clamp(s.visibilityMiles, 0, 600) * kHundredthsOfMile));
  out.U16(0x0330, Round(Clamp(s.qnhHpa, 800, 1100) * kQnhSixteenths));
  out.I32(0x3324, Round(Clamp(s.indicatedAltitude, -2000, 99999)));
  out.U16(0x0350, FrequencyBcd(s.nav1Mhz));
  out.U16(0x0352, FrequencyBcd(s.nav2Mhz));
  out.U16(0x3120, FrequencyBcd(s.nav2Mhz));
  out.U16(0x034E, FrequencyBcd(s.com1Mhz));
  out.U16(0x311E, FrequencyBcd(s.com2Mhz));
  const int adf = static_cast<int>(Round(Clamp(s.adfKhz, 0, 1799.9) * 10));
  out.U16(0x034C, DigitsBcd(adf / 10 % 1000, 3));
  out.U16(0x0356, static_cast<uint16_t>((adf / 10000) << 8 | adf % 10));
  out.U16(0x0C5E, std::clamp(s.nav2Obs, 0, 360));
  out.U16(0x0354, SquawkBcd(s.squawk));
  out.U8(0x0C48, static_cast<uint8_t>(Round(Clamp(s.localiser, -1, 1) * kNeedleFull)));
  out.U8(0x0C49, static_cast<uint8_t>(Round(Clamp(s.glideslope, -1, 1) * kNeedleFull)));
  out.U8(0x0C4B, std::clamp(s.toFrom, 0, 2));
  out.U8(0x0C4C, s.glideslopeAlive ? 1 : 0);
  out.Str(0x3000, s.nav1Ident.substr(0, 5));
}

}  // namespace vantoro
