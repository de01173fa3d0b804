// What the aircraft procedures keep between ticks: the step of each
// type's procedure the pilot has reached and the remarks made once a flight.
// Filled as the procedure rules land.
#pragma once

namespace vantoro {

struct ProceduresState {
  bool operator==(const ProceduresState&) const = default;
};

}  // namespace vantoro
