// The loaded flight plan: a table of waypoints, entry 0 the departure, and
// the readers of the simulator's two plan forms: the older INI form
// ("[flightplan]" with "waypoint.N=" lines) and the XML form written by the
// later simulators and by the common planners ("<SimBase.Document>" with one
// "<ATCWaypoint>" per point).
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "base/notices.h"

namespace vantoro {

// The table holds at most this many points; further points of a longer plan
// are passed over with a notice.
inline constexpr int kMaxWaypoints = 200;
// A point not yet approached is this far away.
inline constexpr double kNotYetApproached = 999999;
// The display lists this many points; the rest are summed up in one line.
inline constexpr int kDisplayedWaypoints = 22;

// What the pilot is told when a plan cannot be loaded.
inline constexpr std::string_view kNoPlanFolder = "The flight plan folder does not exist!";
inline constexpr std::string_view kLoadSimulatorFirst =
    "Please load Flight Simulator before attempting to load a flight plan.";
inline constexpr std::string_view kLoadP3DFirst =
    "Please load P3D before attempting to load a flight plan.";

struct Waypoint {
  std::string Name;
  double Latitude = 0;
  double Longitude = 0;
  double ClosestDistance = kNotYetApproached;  // nautical miles, smallest seen so far
  int32_t PassTime = 0;                        // flight time at the smallest distance
  std::string WaypointType;  // first letter: V VOR, N NDB, A airport, I intersection
  int32_t Altitude = 0;      // feet
};

struct FlightPlan {
  std::vector<Waypoint> Waypoints;  // FlightPlanCount is Waypoints.size()
  int32_t NextWaypoint = 0;
  std::string FlightPlanDeparture;
  std::string FlightPlanDestination;
  std::string FlightRules;  // as the plan states them ("IFR", "VFR"), any case
  std::string CurrentWaypointName = "Unknown";
  std::string File;  // the plan file the pilot chose (lblFlightPlan); empty: none
};

inline int32_t FlightPlanCount(const FlightPlan& plan) {
  return static_cast<int32_t>(plan.Waypoints.size());
}

// True when the text holds "<FLIGHTPLAN.FLIGHTPLAN" or "<SIMBASE.DOCUMENT" in
// any case.
bool IsXMLFlightPlan(std::string_view text);

// The text between the first `open` and the next `close` after it; empty when
// either is missing. Case counts: callers search upper-cased text.
std::string GetStringBetween(std::string_view text, std::string_view open, std::string_view close);

// A coordinate such as "N47* 25.73'" or "W122° 22' 30.00\"": the letter gives
// the sign (N and E plus, S and W minus), "*" or a degree sign (the Latin-1
// byte or its UTF-8 pair) closes the degrees, "'" the minutes and the rest is
// seconds. Numbers are read with "." whatever the computer's own decimal
// separator. Text without digits gives 0.
double ParseCoOrd(std::string_view text);
// The XML form's coordinate; degrees, minutes and seconds alike.
double ParseXMLCoOrd(std::string_view text);

// The INI form, replacing the plan's table. `file` names the notices.
void ProcessINIFlightPlan(std::string_view text, FlightPlan& plan, std::string_view file = {},
                          Notices* notices = nullptr);
// The XML form, replacing the plan's table.
void ProcessXMLFlightPlan(std::string_view text, FlightPlan& plan, std::string_view file = {},
                          Notices* notices = nullptr);
// Either form by its content. A point whose coordinates cannot be read, or
// beyond the table's size, is passed over with a notice naming the line; a
// plan without any point leaves the table empty and says so.
void ProcessFlightPlanText(std::string_view text, FlightPlan& plan, std::string_view file = {},
                           Notices* notices = nullptr);
// False when the file does not exist (the table is left as it was);
// otherwise the plan is loaded by its form, the table replaced and File set.
bool ProcessFlightPlan(const std::string& file, FlightPlan& plan, Notices* notices = nullptr);

// The list the flight plan page shows: "FLIGHT PLAN", departure " TO "
// destination, one line per point numbered from 1 with its position in
// "000.0000" form, 22 points at most and a last line for the rest.
std::vector<std::string> FlightPlanDisplay(const FlightPlan& plan);
// "Departure: " and "Destination: " labels of the page.
std::string DepartureLabel(const FlightPlan& plan);
std::string DestinationLabel(const FlightPlan& plan);

// AnnounceProcessFlightPlan: the plan named in plan.File is loaded again (the
// route starts afresh) and the display built. Without a file the plan is left
// alone and the display shows what is loaded.
std::vector<std::string> AnnounceProcessFlightPlan(FlightPlan& plan, Notices* notices = nullptr);

// cmdClearFlightPlan_Click: the table is emptied (FlightPlanCount 0), the two
// ends, the rules and the file forgotten.
void cmdClearFlightPlan_Click(FlightPlan& plan);

// Where the simulator keeps the plan it has in use: the flight file it last
// loaded or saved (a ".PLN" itself, or a ".FLT" whose [GPS_Engine] Filename
// names the plan, found as given or in the plan folder). Empty: none found.
std::string SimulatorFlightPlanFile(std::string_view flightFile, std::string_view planFolder);

// What loading the simulator's plan came to.
struct SimulatorPlanLoad {
  bool Loaded = false;
  std::string Message;  // for the pilot when nothing was loaded
};
// chkLoadFSXPlanOnConnect and the page's Read button: the simulator's plan in
// use is loaded. Without a connection the pilot is asked to start the
// simulator first (its P3D wording when p3d), without an existing plan folder
// he is told so.
SimulatorPlanLoad LoadSimulatorFlightPlan(FlightPlan& plan, bool connected, bool p3d,
                                          std::string_view flightFile, std::string_view planFolder,
                                          Notices* notices = nullptr);

}  // namespace vantoro
