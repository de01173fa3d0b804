// What the traffic monitors keep between ticks: the aircraft already
// pointed out and when. Filled as the traffic rules land.
#pragma once

namespace vantoro {

struct TrafficState {
  bool operator==(const TrafficState&) const = default;
};

}  // namespace vantoro
