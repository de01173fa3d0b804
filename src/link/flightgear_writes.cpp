// The instructor's writes as FlightGear's property server takes them.
#include <cstdio>

#include "link/flightgear_protocol.h"
#include "link/image_link.h"

namespace vantoro {

namespace {

constexpr uint32_t kMessageText = 0x3380;
constexpr uint32_t kMessageSeconds = 0x32FA;
constexpr uint32_t kNav1Frequency = 0x0350;
constexpr uint32_t kNav1Obs = 0x0C4E;
constexpr uint32_t kAdfMain = 0x034C;
constexpr uint32_t kAdfExtended = 0x0356;
constexpr uint32_t kCom2Standby = 0x311C;
constexpr uint32_t kRadioSwap = 0x3123;
constexpr uint8_t kSwapCom2 = 4;
constexpr uint32_t kPitotHeat = 0x029C;
constexpr uint32_t kBattery = 0x281C;
constexpr uint32_t kAvionics = 0x2E80;
constexpr uint32_t kFailFirst = 0x0B64;
constexpr int kFailures = 16;

int Digits(uint16_t word, int count) {
  int v = 0;
  for (int i = count - 1; i >= 0; --i) v = v * 10 + ((word >> (4 * i)) & 0xF) % 10;
  return v;
}

std::string Set(const std::string& property, const std::string& value) {
  return "set " + property + " " + value + "\r\n";
}

std::string Number(double v, const char* format = "%.2f") {
  char text[32];
  std::snprintf(text, sizeof text, format, v);
  return text;
}

// FlightGear's telnet line ends at a line break and takes the rest as the
// value: the message keeps its printable characters only.
std::string Printable(std::string text) {
  for (char& c : text)
    if (static_cast<unsigned char>(c) < 0x20) c = ' ';
  return text;
}

}  // namespace

std::vector<std::string> FlightGearFailureModes(int index) {
  switch (index) {
    case 0:
      return {"instrumentation/adf"};
    case 1:
      return {"instrumentation/airspeed-indicator"};
    case 2:
      return {"instrumentation/altimeter"};
    case 3:
      return {"instrumentation/attitude-indicator"};
    case 5:
      return {"instrumentation/magnetic-compass"};
    case 6:
      return {"systems/electrical"};
    case 7:
      return {"engines/engine"};
    case 9:
      return {"instrumentation/heading-indicator"};
    case 10:
      return {"instrumentation/vertical-speed-indicator"};
    case 12:
      return {"instrumentation/nav/cdi", "instrumentation/nav/gs"};
    case 13:
      return {"systems/pitot"};
    case 14:
      return {"instrumentation/turn-indicator"};
    case 15:
      return {"systems/vacuum"};
    default:
      return {};  // COM1, fuel indicators, transponder
  }
}

std::string FlightGearSetLines(const OffsetImage& image, uint32_t offset,
                               const std::vector<uint8_t>& bytes, std::string& missing) {
  missing.clear();
  const auto flag = [&] { return std::string(!bytes.empty() && bytes[0] != 0 ? "1" : "0"); };
  if (offset == kMessageText) {
    const std::string text = Printable(image.String(kMessageText));
    return text.empty() ? std::string() : Set(kFlightGearScreenMessage, text);
  }
  if (offset == kMessageSeconds) return {};  // FlightGear's messages fade by themselves
  if (offset == kNav1Frequency && bytes.size() == 2)
    return Set("/instrumentation/nav[0]/frequencies/selected-mhz",
               Number(FrequencyFromBcd(image.U16(kNav1Frequency))));
  if (offset == kNav1Obs && bytes.size() == 2)
    return Set("/instrumentation/nav[0]/radials/selected-deg", std::to_string(image.U16(kNav1Obs)));
  if ((offset == kAdfMain || offset == kAdfExtended) && bytes.size() == 2) {
    const uint16_t extended = image.U16(kAdfExtended);
    const double khz =
        (extended >> 8) * 1000 + Digits(image.U16(kAdfMain), 3) + (extended & 0xF) / 10.0;
    return Set("/instrumentation/adf[0]/frequencies/selected-khz", Number(khz, "%.1f"));
  }
  if (offset == kCom2Standby || offset == kCom2Standby + 1)
    return Set("/instrumentation/comm[1]/frequencies/standby-mhz",
               Number(FrequencyFromBcd(image.U16(kCom2Standby))));
  if (offset == kRadioSwap && !bytes.empty() && bytes[0] == kSwapCom2) {
    const std::string standby = Number(FrequencyFromBcd(image.U16(kCom2Standby)));
    const std::string active = Number(FrequencyFromBcd(image.U16(0x311E)));
    return Set("/instrumentation/comm[1]/frequencies/selected-mhz", standby) +
           Set("/instrumentation/comm[1]/frequencies/standby-mhz", active);
  }
  if (offset == kPitotHeat) return Set("/controls/anti-ice/pitot-heat", flag());
  if (offset == kBattery) return Set("/controls/electric/battery-switch", flag());
  if (offset == kAvionics) return Set("/controls/electric/avionics-switch", flag());
  if (offset >= kFailFirst && offset < kFailFirst + kFailures) {
    std::string lines;
    for (size_t i = 0; i < bytes.size() && offset + i < kFailFirst + kFailures; ++i) {
      const int index = static_cast<int>(offset + i - kFailFirst);
      const std::vector<std::string> modes = FlightGearFailureModes(index);
      if (modes.empty()) {
        char what[64];
        std::snprintf(what, sizeof what, "the failure flag at 0x%04X",
                      offset + static_cast<uint32_t>(i));
        missing = what;
      }
      for (const std::string& mode : modes)
        lines += Set("/sim/failure-manager/" + mode + "/failure-level", bytes[i] != 0 ? "1" : "0");
    }
    return lines;
  }
  char what[48];
  std::snprintf(what, sizeof what, "the write to offset 0x%04X", offset);
  missing = what;
  return {};
}

}  // namespace vantoro
