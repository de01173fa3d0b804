// What the aircraft procedures keep between ticks: when the APU was last
// seen stopping, the three take-off speeds of the take-off speed boxes, and
// how long the aircraft has stood on the runway in take-off mode.
#pragma once

#include <cstdint>

namespace vantoro {

struct ProceduresState {
  // Flight time, seconds, when the APU was last seen stopping; 999999 never.
  int32_t APUStopTime = 999999;
  // The take-off speed boxes (txtV1, txtVr, txtV2), knots; 0 is empty and
  // is filled from the aircraft when the take-off begins.
  int32_t V1 = 0;
  int32_t Vr = 0;
  int32_t V2 = 0;
  // Ticks standing still on the runway in take-off mode.
  int32_t TakeOffHoldTicks = 0;

  bool operator==(const ProceduresState&) const = default;
};

}  // namespace vantoro
