// What the route coaching remembers between ticks, beside the plan itself.
#pragma once

#include <cstdint>
#include <string>

namespace vantoro {

struct RouteState {
  // The leg (NextWaypoint) whose radio aid was last suggested: once a leg.
  int32_t AidSuggestedFor = 0;
  // The simulator's plan was looked for on this connection (option
  // LoadFSXPlanOnConnect): once a connection.
  bool SimulatorPlanTried = false;
  // The GPS's next waypoint as last announced.
  std::string GpsNextWaypoint;

  bool operator==(const RouteState&) const = default;
};

}  // namespace vantoro
