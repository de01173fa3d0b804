// The raw offset buffers of one tick and their decoding into FSData.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "link/fsdata.h"

namespace vantoro {

// The four blocks read every tick, with their first simulator offsets.
inline constexpr uint32_t kMainBlockOffset = 0x0020;
inline constexpr uint32_t kMainBlockSize = 0x4000;
inline constexpr uint32_t kGpsBlockOffset = 0x6000;
inline constexpr uint32_t kGpsBlockSize = 512;
inline constexpr uint32_t kTrafficBlockOffset = 0xE020;
inline constexpr uint32_t kTrafficBlockSize = 0x2000;
inline constexpr uint32_t kMetarBlockOffset = 0xB800;
inline constexpr uint32_t kMetarBlockSize = 0x1000;

inline constexpr int kTrafficSlots = 95;
// The two traffic tables: slot n lies at table + 40 x n; the word just before
// each table holds the offset of its last slot in use.
inline constexpr uint32_t kAirTrafficTable = 0xE080;
inline constexpr uint32_t kGroundTrafficTable = 0xF080;
inline constexpr uint32_t kTrafficSlotSize = 40;

// One target of a traffic table; heading is relative to magnetic north.
struct TrafficSlot {
  int32_t Id = 0;  // low byte of the simulator's identifier
  double Latitude = 0;
  double Longitude = 0;
  double Altitude = 0;          // feet
  int32_t RelativeHeading = 0;  // CLng(raw / 182) - MagVar, 360 added if negative
  int32_t GS = 0;               // knots
  int32_t VS = 0;               // feet per minute
  std::string Ident;
  int32_t State = 0;
};

// GPS values of the 0x6000 block, used by the navigation coaching.
struct GpsData {
  std::string GpsDestination;       // 0x6137
  std::string GpsNextWaypoint;      // 0x6081
  std::string GpsPreviousWaypoint;  // 0x60A4
  std::string Text6140, Text6154, Text6160;
  double Double608C = 0, Double6094 = 0, Double60AC = 0, Double60B4 = 0;
  double Double6048 = 0;  // x 3.281
  int32_t Long60E4 = 0, Long6120 = 0;
};

// Everything the link keeps between ticks: the buffers, the two live records
// (a third element exists but is never written) and what the decoder derives.
struct LinkState {
  std::array<uint8_t, kMainBlockSize> ByteBuffer{};
  std::array<uint8_t, kGpsBlockSize> GpsBuffer{};
  std::array<uint8_t, kTrafficBlockSize> TrafficBuffer{};
  std::array<uint8_t, kMetarBlockSize> MetarBuffer{};

  std::array<FSData, 3> Records{};
  int CurrentRecord = 0;
  int PreviousRecord = 1;

  const FSData& Now() const { return Records[CurrentRecord]; }
  const FSData& Before() const { return Records[PreviousRecord]; }
  FSData& Now() { return Records[CurrentRecord]; }

  int32_t WarmUpTicks = 0;  // decoded ticks since connection, stops at 6
  // TickCount when a value last changed between the two records.
  int32_t Nav1BackCourseChanged = 0;
  int32_t Nav1ToFromChanged = 0;
  int32_t Nav1OBSChanged = 0;
  int32_t Vor1NameChanged = 0;

  std::array<TrafficSlot, kTrafficSlots + 1> AirTraffic{};  // slots 1..95
  std::array<TrafficSlot, kTrafficSlots + 1> GroundTraffic{};
  // Slots in use, from the word before each table, kept within 0..95; each
  // is decoded only on the ticks its table is (air table in the air, ground
  // table on the ground) and keeps its last value otherwise.
  int32_t AirTrafficCount = 0;
  int32_t GroundTrafficCount = 0;
  GpsData Gps;

  bool HeavyAircraft = false;     // LoadedWeightWord above 100, or the Lear family
  int32_t TrafficSpeedLimit = 0;  // knots, by LoadedWeightWord
  double TotalWeightTons = 0;     // (ZeroFuelWeight + FuelGallonsWeight) / 2000
  int32_t AirborneSeconds = 0;    // the snapshot's airborne-second counter (not decoded)

  // Swaps now and before: the one exit of a processed tick.
  void Swap() {
    CurrentRecord = 1 - CurrentRecord;
    PreviousRecord = 1 - PreviousRecord;
  }
};

// What the decoder needs to know from outside the snapshot.
struct DecodeInputs {
  int32_t TickCount = 0;
  bool LearFamily = false;              // the Learjet 45 under detailed monitoring
  bool Cessna152Family = false;         // the Cessna 152 family (BarberPole override)
  bool StartingPositionWanted = false;  // the starting-position box is visible and on
};

struct DecodeResult {
  bool WarmUpReached = false;  // this tick WarmUpTicks reached 6: place the aircraft now
};

// Decodes the buffers into the current record and the derived values.
DecodeResult ProcessFSData(LinkState& link, const DecodeInputs& in);

// String of the main block from index (= simulator offset - 0x20) up to a zero
// byte, at most 255 characters; never reads outside the buffer. The variants
// read the GPS, traffic and weather blocks, index counted from their start.
std::string GetByteBuffer(const LinkState& link, size_t index);
std::string GetByteBufferGPS(const LinkState& link, size_t index);
std::string GetByteBufferTCAS(const LinkState& link, size_t index);
std::string GetByteBufferMetar(const LinkState& link, size_t index);

// The text and a closing zero, as bytes.
std::string CopyToStringBuffer(std::string_view text);
// The text and a closing zero into bytes; a text too long for them is cut so
// that the zero still fits. Returns the bytes written (0 for no room at all).
size_t CopyToStringBuffer(std::string_view text, std::span<uint8_t> bytes);

// The last folder of an aircraft file path ("" separators), in capitals:
// "A2A_C172" for "C:\Sim\SimObjects\Airplanes\A2A_C172\A2A_C172.air".
std::string AircraftFolder(std::string_view airFile);

// The traffic speed limit, in knots, of an aircraft of this weight word.
int32_t TrafficSpeedLimitFor(double loadedWeightWord);

// a minus b, normalised to -180..180.
int32_t RelativeBearing(int32_t a, int32_t b);

}  // namespace vantoro
