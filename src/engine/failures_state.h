// What the failures keep between ticks. Everything else about a failure is
// the simulator's own state, read with each sample: nothing stops the pilot
// or the simulator's menu failing or mending things, and the flags as read
// are the truth.
#pragma once

#include <cstdint>

namespace vantoro {

struct FailuresState {
  // The per-engine failure byte as last written (bit 0 engine 1 .. bit 3
  // engine 4): the byte is not read back, so a second engine failed keeps
  // the first.
  uint8_t EngineFailBits = 0;

  bool operator==(const FailuresState&) const = default;
};

}  // namespace vantoro
