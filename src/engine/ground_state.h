// What the ground rules keep between ticks: the take-off heading and speeds,
// the ends of the control check reached so far, and the once-a-flight remarks.
#pragma once

#include <cstdint>

namespace vantoro {

// The take-off speed boxes of the jets: V1, rotate and V2, knots; 0 when not
// known.
struct TakeOffSpeeds {
  int32_t V1 = 0;
  int32_t Vr = 0;
  int32_t V2 = 0;
};

// One control of the check before take-off: which ends of its travel were
// reached since the check was last completed.
struct ControlEnds {
  bool One = false;
  bool Two = false;
};

// What the ground rules keep between ticks; a new connection starts afresh.
struct GroundState {
  int32_t TakeOffHeading = 0;  // magnetic heading when the take-off began
  TakeOffSpeeds Speeds;

  ControlEnds Flaps;
  ControlEnds Elevator;
  ControlEnds Aileron;
  ControlEnds Rudder;
  int32_t FlapsCheckToldFlight = 0;  // the flight whose flaps check was told; 0 none
  int32_t DoorClosedToldFlight = 0;  // the flight whose closed exit was told; 0 none
};

}  // namespace vantoro
