// What circuit training keeps between ticks: the leg being flown, the
// marks of each leg and the circuit's score. Filled as the circuit rules
// land.
#pragma once

namespace vantoro {

struct CircuitState {
  bool operator==(const CircuitState&) const = default;
};

}  // namespace vantoro
