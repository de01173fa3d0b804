// X-Plane's UDP data-ref interface, without the sockets: the packets that
// subscribe to data-refs (RREF), write one (DREF) and run a command (CMND),
// the decoder of X-Plane's RREF answers into the simulator's state, and the
// instructor's writes as DREF and CMND packets. All numbers on the wire are
// little-endian; values are 32-bit floats.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "link/sim_state.h"

namespace vantoro {

class OffsetImage;

inline constexpr int kXPlanePort = 49000;
// Answers per second asked for the aircraft's state, and for its file name.
inline constexpr int kXPlaneRate = 10;
inline constexpr int kXPlaneNameRate = 1;
// Characters of the aircraft's file name subscribed to, one data-ref each.
inline constexpr int kXPlanePathLength = 128;

struct XPlaneRef {
  std::string dataref;  // "sim/flightmodel/position/latitude", "...[3]" for an element
  int rate;             // answers per second
};

// Every data-ref subscribed to; its position is the index X-Plane answers with.
const std::vector<XPlaneRef>& XPlaneRefs();

// "RREF\0", the rate, the index and the data-ref in 400 bytes: 413 bytes.
// A rate of 0 ends the subscription.
std::vector<uint8_t> RrefRequest(int32_t rate, int32_t index, std::string_view dataref);
// "DREF\0", the value and the data-ref in 500 bytes: 509 bytes.
std::vector<uint8_t> DrefPacket(float value, std::string_view dataref);
// "CMND\0" and the command's name.
std::vector<uint8_t> CmndPacket(std::string_view command);

// Collects X-Plane's RREF answers and turns what it has into the state.
class XPlaneDecoder {
 public:
  XPlaneDecoder();
  // Takes one answer: "RREF", one byte, then (index, value) pairs. False,
  // with the reason, when it is not one (nothing of it is taken).
  bool Take(const uint8_t* data, size_t size, std::string& error);
  // The state from every value received so far; `year` from the computer's
  // clock, as X-Plane tells only the day of the year.
  void Fill(SimulatorState& state, int year) const;

 private:
  std::vector<float> values_;
};

// The packets that carry the instructor's write of `bytes` to `offset`, read
// with the image that already holds it. Empty, with what has no equivalent
// in `missing`, where X-Plane has none.
std::vector<std::vector<uint8_t>> XPlaneWritePackets(const OffsetImage& image, uint32_t offset,
                                                     const std::vector<uint8_t>& bytes,
                                                     std::string& missing);

}  // namespace vantoro
