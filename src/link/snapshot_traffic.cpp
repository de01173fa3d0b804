// The two traffic tables of the simulator: up to 95 targets each, the airborne
// table read in the air and the ground table on the ground.
#include <algorithm>

#include "base/numbers.h"
#include "link/snapshot_internal.h"

namespace vantoro {

namespace {

// Where the fields of a target lie in its slot.
constexpr uint32_t kSlotId = 0;
constexpr uint32_t kSlotLatitude = 4;
constexpr uint32_t kSlotLongitude = 8;
constexpr uint32_t kSlotAltitude = 12;
constexpr uint32_t kSlotHeading = 16;
constexpr uint32_t kSlotGroundSpeed = 18;
constexpr uint32_t kSlotVerticalSpeed = 20;
constexpr uint32_t kSlotCallSign = 22;
constexpr uint32_t kSlotState = 37;
// The word just before each table: offset of the last slot in use.
constexpr uint32_t kLastSlotWordBefore = 2;
constexpr double kAngleWordPerDegree = 182.0;

// Slots in use: (last-slot offset - table) / 40 + 1. An empty or damaged word
// gives a number outside the table; it is held to 0..95.
int32_t SlotsInUse(const OffsetBlock& traffic, uint32_t table) {
  const int32_t word = traffic.U16(table - kLastSlotWordBefore);
  const int32_t count =
      CLng((word - static_cast<double>(table)) / static_cast<double>(kTrafficSlotSize) + 1.0);
  return std::clamp(count, 0, kTrafficSlots);
}

// The fields of a target. The altitude and vertical speed of the airborne
// targets are read too: the traffic calls say whether a target is high or
// low and whether it climbs or descends.
void DecodeSlot(const OffsetBlock& traffic, uint32_t at, int32_t magVar, TrafficSlot& slot) {
  slot.Id = traffic.U8(at + kSlotId);
  slot.Latitude = traffic.F32(at + kSlotLatitude);
  slot.Longitude = traffic.F32(at + kSlotLongitude);
  int32_t heading = CLng(traffic.U16(at + kSlotHeading) / kAngleWordPerDegree) - magVar;
  if (heading < 0) heading += 360;
  slot.RelativeHeading = heading;
  slot.GS = traffic.U16(at + kSlotGroundSpeed);
  slot.Altitude = traffic.F32(at + kSlotAltitude);
  slot.VS = traffic.I16(at + kSlotVerticalSpeed);
  slot.Ident.assign(traffic.Text(at + kSlotCallSign));
  slot.State = traffic.U8(at + kSlotState);
}

uint32_t SlotOffset(uint32_t table, int n) {
  return table + kTrafficSlotSize * static_cast<uint32_t>(n);
}

}  // namespace

void DecodeAirTraffic(const OffsetBlock& traffic, LinkState& link) {
  const int32_t magVar = link.Now().MagVar;
  link.AirTrafficCount = SlotsInUse(traffic, kAirTrafficTable);
  for (int n = 1; n <= kTrafficSlots; ++n)
    DecodeSlot(traffic, SlotOffset(kAirTrafficTable, n), magVar, link.AirTraffic[n]);
}

void DecodeGroundTraffic(const OffsetBlock& traffic, LinkState& link) {
  const int32_t magVar = link.Now().MagVar;
  link.GroundTrafficCount = SlotsInUse(traffic, kGroundTrafficTable);
  for (int n = 1; n <= kTrafficSlots; ++n)
    DecodeSlot(traffic, SlotOffset(kGroundTrafficTable, n), magVar, link.GroundTraffic[n]);
}

}  // namespace vantoro
