// The Flight plan page of the app: the loaded plan as a list (departure " TO "
// destination, each point with its closest distance and pass time, the point
// in flight), and its actions: a plan file uploaded from the browser, one of
// the simulator's plan folder, the plan the simulator has in use, clear. Each
// runs on the loop thread (Mailbox::Ask) and answers a JSON document; a
// refused request answers {"status": 4xx, "error": "..."} and changes nothing.
#pragma once

#include <nlohmann/json.hpp>

namespace vantoro {

class Instructor;

namespace web {

using nlohmann::json;

// Uploaded plans are kept at most this large, bytes.
inline constexpr size_t kMaxUploadedPlanBytes = 1 << 20;

// The page: the plan, its display lines and labels, each point, and the
// plan files of the simulator's folder (or why there are none).
json FlightPlanPage(Instructor& in);
// {"name": "trip.pln", "text": "..."}: kept in the program's "FlightPlans"
// folder and loaded as if chosen from the disk.
json UploadFlightPlanAction(Instructor& in, const json& body);
// {"file": "trip.pln"}: one of the files the page lists from the plan folder.
json LoadFolderFlightPlanAction(Instructor& in, const json& body);
// The simulator's plan in use ("Read FSX's Plan").
json ReadSimulatorFlightPlanAction(Instructor& in, const json& body);
json ClearFlightPlanAction(Instructor& in, const json& body);

}  // namespace web
}  // namespace vantoro
