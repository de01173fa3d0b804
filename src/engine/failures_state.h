// What the failures keep between ticks: the failures injected, when each
// is due, and whether the pilot has noticed it. Filled as the failure rules
// land.
#pragma once

namespace vantoro {

struct FailuresState {
  bool operator==(const FailuresState&) const = default;
};

}  // namespace vantoro
