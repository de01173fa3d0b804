// What a simulator without an offset interface tells of its aircraft, in
// the instructor's units, and its encoding into the offsets the snapshot
// decoder reads. The FlightGear and X-Plane links fill one of these from
// their own protocols and encode it into their offset image each time a
// packet arrives.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "link/offset_encoder.h"

namespace vantoro {

inline constexpr int kMaxEngines = 4;
inline constexpr int kGearLegs = 3;

struct SimulatorState {
  // Position, speeds, attitudes, fuel, time and the switches the encoder
  // knows; the fields below add what it does not.
  FlownAircraft aircraft;

  // Per engine: levers of full travel 0..1, and whether it runs.
  std::array<double, kMaxEngines> throttle{};
  std::array<double, kMaxEngines> mixture{};
  std::array<bool, kMaxEngines> running{};
  // Flight controls -1..1 (elevator and trim nose up positive).
  double elevator = 0, aileron = 0, rudder = 0, elevatorTrim = 0;
  // Gear legs' extension 0..1 (nose or tail, left, right).
  std::array<double, kGearLegs> gearPosition{1, 1, 1};
  bool toeBrakes = false;
  bool pitotHeat = false;
  bool stallWarning = false;
  double gLoad = 1.0;
  double visibilityMiles = 10;  // statute miles
  double qnhHpa = 1013.25;
  double indicatedAltitude = 0;  // feet, as the altimeter reads
  // Radios in MHz (COM, NAV), kHz (ADF); transponder as its four digits.
  double nav1Mhz = 0, nav2Mhz = 0, com1Mhz = 0, com2Mhz = 0, adfKhz = 0;
  int nav2Obs = 0;
  int squawk = 1200;
  // NAV1 needles -1..1 of full deflection (right and up positive), the
  // to/from flag (0 off, 1 to, 2 from), the glide slope alive.
  double localiser = 0, glideslope = 0;
  int toFrom = 0;
  bool glideslopeAlive = false;
  std::string nav1Ident;
};

// Writes the encoder's offsets for `aircraft`, then the others, over them
// where both write (per-engine levers, the real load factor).
void EncodeSimulatorState(const SimulatorState& s, OffsetSink& out);

// A radio frequency as its packed decimal word: 110.50 MHz gives 0x1050
// (the leading 1 is implied), 121.50 gives 0x2150.
uint16_t FrequencyBcd(double mhz);
// The packed decimal word back to MHz, the leading 1 implied: 0x1050 gives
// 110.50, 0x2150 gives 121.50.
double FrequencyFromBcd(uint16_t word);
// The transponder's four digits packed: 7000 gives 0x7000.
uint16_t SquawkBcd(int code);

// "Aircraft/Laminar Research/Cessna 172SP/Cessna_172SP.acf" gives the path
// "\" separated and the title "Cessna 172SP" (the file's name, underscores
// as spaces).
void TitleFromAircraftFile(std::string_view file, std::string& title, std::string& path);

}  // namespace vantoro
