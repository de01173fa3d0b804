// The loaded flight plan: a table of waypoints, entry 0 the departure.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace vantoro {

inline constexpr int kMaxWaypoints = 200;

struct Waypoint {
  std::string Name;
  double Latitude = 0;
  double Longitude = 0;
  double ClosestDistance = 999999;  // nautical miles, smallest seen so far
  int32_t PassTime = 0;             // flight time at the smallest distance
  std::string WaypointType;         // first letter: V VOR, N NDB, A airport, I intersection
  int32_t Altitude = 0;             // feet
};

struct FlightPlan {
  std::vector<Waypoint> Waypoints;  // FlightPlanCount is Waypoints.size()
  int32_t NextWaypoint = 0;
  std::string FlightPlanDeparture;
  std::string FlightPlanDestination;
  std::string FlightRules;  // as the plan states them ("IFR", "VFR"), any case
  std::string CurrentWaypointName = "Unknown";
};

}  // namespace vantoro
