#include "link/offset_encoder.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "link/image_link.h"

namespace vantoro {

namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr double kFeetPerMetre = 3.28084;
constexpr double kKnotsPerMetrePerSecond = 1.943844;
// The flaps lever at full travel, and the lever's word there.
constexpr double kFullFlapsDegrees = 40.0;
constexpr double kFullFlapsWord = 16383;
// The flap indicators (0x30F0, 0x30F4) read degrees x 256.
constexpr double kFlapIndicatorPerDegree = 256;
constexpr uint64_t kGearDownWord = 16383;
constexpr uint64_t kStandardPressure = 16212;  // 1013.25 hPa x 16
constexpr uint64_t kTenMilesVisibility = 1000;
constexpr uint64_t kAvgasPoundsPerGallon = 6 * 256;
// The fuel level word holds 100 % as 128 x 65536, given in steps of 1 %.
constexpr double kFuelPercentWord = 83886.0;

int64_t Round(double x) {
  return static_cast<int64_t>(std::llround(x));
}

double Wrap360(double d) {
  d = std::fmod(d, 360.0);
  if (d < 0) d += 360.0;
  return d;
}

// Degrees to the simulator's 16-bit angle word, 65536 to the turn.
uint64_t AngleWord16(double degrees) {
  return static_cast<uint64_t>(Round(Wrap360(degrees) * 65536.0 / 360.0)) & 0xFFFF;
}

}  // namespace

bool IsLeapYear(int year) {
  return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
}

int DayOfYear(const WallTime& t) {
  static const int kBefore[] = {0, 31, 59, 90, 120, 151, 181, 212, 243, 273, 304, 334};
  return kBefore[t.month - 1] + t.day + (t.month > 2 && IsLeapYear(t.year) ? 1 : 0);
}

void ImageSink::U8(uint32_t offset, uint64_t v) {
  image_.SetU8(offset, static_cast<uint8_t>(v));
}
void ImageSink::U16(uint32_t offset, uint64_t v) {
  image_.SetU16(offset, static_cast<uint16_t>(v));
}
void ImageSink::U32(uint32_t offset, uint64_t v) {
  image_.SetU32(offset, static_cast<uint32_t>(v));
}
void ImageSink::I16(uint32_t offset, int64_t v) {
  image_.SetU16(offset, static_cast<uint16_t>(v));
}
void ImageSink::I32(uint32_t offset, int64_t v) {
  image_.SetU32(offset, static_cast<uint32_t>(v));
}
void ImageSink::I64(uint32_t offset, int64_t v) {
  image_.SetI64(offset, v);
}
void ImageSink::Str(uint32_t offset, const std::string& text) {
  image_.SetString(offset, text);
}

void EncodeAircraft(const FlownAircraft& a, OffsetSink& out) {
  const double metresMsl = (a.fieldElevation + a.height) / kFeetPerMetre;
  const double groundMetres = a.fieldElevation / kFeetPerMetre;
  const WallTime& now = a.simulatorTime;
  const int second = static_cast<int>(now.second);

  out.I32(0x0020, Round(groundMetres * 256));
  out.U8(0x0238, now.hour);
  out.U8(0x0239, now.minute);
  out.U8(0x023A, second);
  out.U8(0x023B, now.hour);
  out.U8(0x023C, now.minute);
  out.U16(0x023E, DayOfYear(now));
  out.U16(0x0240, now.year);
  out.U16(0x0264, a.paused ? 1 : 0);
  out.U16(0x02A0, AngleWord16(a.magvar));
  out.U32(0x02B4, Round(a.gs / kKnotsPerMetrePerSecond * 65536.0));
  out.U32(0x02B8, Round(a.tas * 128.0));
  out.U32(0x02BC, Round(a.ias * 128.0));
  out.I32(0x02C8, Round(a.vs / kFeetPerMetre / 60.0 * 256.0));
  out.U16(0x0330, kStandardPressure);
  out.U16(0x0366, a.onGround ? 1 : 0);
  out.I64(0x0560, Round(a.lat * 10001750.0 * 65536.0 * 65536.0 / 90.0));
  const double lonRaw = a.lon * 18446744073709551616.0 / 360.0;
  out.I64(0x0568, lonRaw >= 9.2233720368547758e18 ? INT64_MAX : Round(lonRaw));
  const double metresFloor = std::floor(metresMsl);
  out.U32(0x0570, Round((metresMsl - metresFloor) * 4294967295.0));
  out.I32(0x0574, static_cast<int64_t>(metresFloor));
  // Nose up and right wing down are negative in the simulator's words.
  out.I32(0x0578, Round(-a.pitch / 360.0 * 4294967296.0));
  out.I32(0x057C, Round(-a.bank / 360.0 * 4294967296.0));
  out.U32(0x0580, static_cast<uint64_t>(Round(a.heading / 360.0 * 4294967296.0)) & 0xFFFFFFFF);
  out.U8(0x0609, 0);  // piston
  out.U16(0x0778, a.retractable ? 1 : 0);
  out.U16(0x0840, a.crashed ? 1 : 0);
  out.I16(0x0842, Round(-a.vs / kFeetPerMetre));
  const uint32_t engineBase[] = {0x088C, 0x0924, 0x09BC, 0x0A54};
  for (int e = 0; e < 4; ++e) {
    const bool fitted = e < a.engines;
    const uint32_t b = engineBase[e];
    out.I16(b, fitted ? Round(a.throttle * 16384) : 0);   // throttle
    out.I16(b + 2, fitted ? 16384 : 0);                   // propeller
    out.I16(b + 4, fitted && a.mixtureRich ? 16384 : 0);  // mixture
    out.U16(b + 8, fitted && a.firing ? 1 : 0);           // combustion
  }
  out.U16(0x0AEC, a.engines);
  out.U16(0x0AF4, kAvgasPoundsPerGallon);
  out.U16(0x0AF8, 1);  // fuel selector: both
  auto tank = [&](uint32_t level, double gallons) {
    out.U32(level, Round(gallons / a.fuelCapacity * 100.0 * kFuelPercentWord));
    out.U32(level + 4, Round(a.fuelCapacity));
  };
  tank(0x0B7C, a.fuelLeft);
  tank(0x0B94, a.fuelRight);
  out.U16(0x0BC8, a.brake ? 32767 : 0);
  out.U32(0x0BE8, a.gearDown ? kGearDownWord : 0);
  for (uint32_t g : {0x0BECu, 0x0BF0u, 0x0BF4u}) out.U32(g, a.gearDown ? kGearDownWord : 0);
  out.U32(0x0BDC, Round(std::min(a.flaps, kFullFlapsDegrees) / kFullFlapsDegrees * kFullFlapsWord));
  out.U16(0x0C1A, Round(a.simRate * 256));
  out.U16(0x0C4E, a.obs);
  out.U16(0x0D0C, a.lights);
  out.U16(0x0E8A, kTenMilesVisibility);
  out.U16(0x0E90, Round(a.windSpeed));
  out.U16(0x0E92, AngleWord16(a.windFrom + a.magvar));  // true
  out.U16(0x0EF0, Round(a.windSpeed));
  out.U16(0x0EF2, AngleWord16(a.windFrom));  // magnetic
  out.U8(0x115E, now.hour >= 7 && now.hour < 19 ? 1 : (now.hour == 6 || now.hour == 19) ? 2 : 4);
  out.I16(0x11BA, Round(625.0 / std::cos(a.bank * kPi / 180.0)));
  out.U32(0x281C, a.battery ? 1 : 0);
  out.U32(0x2E80, a.avionics ? 1 : 0);
  out.U16(0x30F0, Round(a.flaps * kFlapIndicatorPerDegree));
  out.U16(0x30F4, Round(a.flaps * kFlapIndicatorPerDegree));
  out.U32(0x31E4, Round(a.height / kFeetPerMetre * 65536.0));
  out.I32(0x3324, Round(a.fieldElevation + a.height));
  out.U8(0x3364, 0);
  out.U8(0x3365, 0);
  out.Str(0x3C00, a.path);
  out.Str(0x3D00, a.title);
}

}  // namespace vantoro
