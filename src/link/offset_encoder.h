// The offset encoder: an aircraft's values, in the instructor's units, turned
// into the offsets the simulator would hold for them, in the raw encodings
// the snapshot decoder reads. The flight generator writes recordings with it;
// a link to a simulator without an offset interface fills its image with it.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "base/seams.h"

namespace vantoro {

class OffsetImage;

// What the encoder writes: the aircraft's state at one moment. Angles are
// degrees, heights feet, speeds knots, vertical speed feet per minute.
struct FlownAircraft {
  std::string title;  // the simulator's aircraft title
  std::string path;   // the aircraft file, "\" separated
  int engines = 1;    // 1..4, all piston
  bool retractable = false;
  double fuelCapacity = 28;  // per main tank, US gallons
  double fuelLeft = 0, fuelRight = 0;
  double lat = 0, lon = 0;    // north and east positive
  double fieldElevation = 0;  // the ground's height above sea level
  double magvar = 0;          // east positive
  double windFrom = 0;        // magnetic
  double windSpeed = 0;
  int obs = 0;  // NAV1 omni-bearing selector
  WallTime simulatorTime{2026, 6, 14, 9, 0, 0};

  bool onGround = true;
  double heading = 0;  // true
  double height = 0;   // above the ground
  double ias = 0, gs = 0, tas = 0;
  double vs = 0;        // up positive
  double pitch = 0;     // nose up positive
  double bank = 0;      // right wing down positive
  double throttle = 0;  // of full, 0..1
  double flaps = 0;     // degrees, 40 at full
  bool firing = false, mixtureRich = false;
  bool gearDown = true, brake = true, battery = true, avionics = true;
  int lights = 0;  // the simulator's light bits
  bool paused = false, crashed = false;
  double simRate = 1;
};

// Where the encoder's typed, little-endian writes go.
class OffsetSink {
 public:
  virtual ~OffsetSink() = default;
  virtual void U8(uint32_t offset, uint64_t v) = 0;
  virtual void U16(uint32_t offset, uint64_t v) = 0;
  virtual void U32(uint32_t offset, uint64_t v) = 0;
  virtual void I16(uint32_t offset, int64_t v) = 0;
  virtual void I32(uint32_t offset, int64_t v) = 0;
  virtual void I64(uint32_t offset, int64_t v) = 0;
  // Text with a closing zero byte.
  virtual void Str(uint32_t offset, const std::string& text) = 0;
};

// A sink that writes straight into an offset image.
class ImageSink final : public OffsetSink {
 public:
  explicit ImageSink(OffsetImage& image) : image_(image) {}
  void U8(uint32_t offset, uint64_t v) override;
  void U16(uint32_t offset, uint64_t v) override;
  void U32(uint32_t offset, uint64_t v) override;
  void I16(uint32_t offset, int64_t v) override;
  void I32(uint32_t offset, int64_t v) override;
  void I64(uint32_t offset, int64_t v) override;
  void Str(uint32_t offset, const std::string& text) override;

 private:
  OffsetImage& image_;
};

// Writes every offset the aircraft's values set, always in the same order.
void EncodeAircraft(const FlownAircraft& a, OffsetSink& out);

bool IsLeapYear(int year);
// 1 for the first of January.
int DayOfYear(const WallTime& t);

}  // namespace vantoro
