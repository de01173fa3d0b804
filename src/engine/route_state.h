// What the navigation coaching keeps between ticks: the leg of the flight
// plan being flown, the waypoint ahead and the remarks made about it. Filled
// as the navigation rules land.
#pragma once

namespace vantoro {

struct RouteState {
  bool operator==(const RouteState&) const = default;
};

}  // namespace vantoro
