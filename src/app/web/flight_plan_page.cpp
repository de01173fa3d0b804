#include "app/web/flight_plan_page.h"

#include <filesystem>

#include "app/web/web_api.h"
#include "base/files.h"
#include "base/text.h"
#include "shell/instructor.h"
#include "world/flight_plan.h"

namespace vantoro::web {

namespace {

constexpr const char* kUploadFolder = "FlightPlans";

// A plain file name ending in ".pln": no folders, no dots in front, no
// control characters. Empty when the name is not acceptable.
std::string PlanFileName(const std::string& name) {
  const std::string base = GetFileName(name);
  if (base.empty() || base.size() > 120 || base != name || base[0] == '.') return {};
  for (const char ch : base)
    if (static_cast<unsigned char>(ch) < 0x20 || ch == '/' || ch == '\\' || ch == ':') return {};
  if (!EqualsNoCase(GetFileExtension(base), "pln")) return {};
  return base;
}

std::vector<std::string> FolderPlans(const std::string& folder) {
  if (folder.empty() || !FolderExists(folder)) return {};
  std::vector<std::string> out;
  for (const std::string& f : GetFileList(folder))
    if (EqualsNoCase(GetFileExtension(f), "pln")) out.push_back(GetFileName(f));
  return out;
}

json NoticesOf(const Notices& notices) {
  json list = json::array();
  for (const Notice& n : notices) list.push_back(NoticeText(n));
  return list;
}

// Loads the file into the instructor's plan; a plan that holds no point is
// refused and the loaded one stays.
json LoadInto(Instructor& in, const std::string& file) {
  FlightPlan plan;
  Notices notices;
  if (!ProcessFlightPlan(file, plan, &notices)) return Refusal(404, "no such flight plan");
  if (FlightPlanCount(plan) == 0) {
    json j = Refusal(422, "the file holds no flight plan points");
    j["notices"] = NoticesOf(notices);
    return j;
  }
  in.plan = std::move(plan);
  json j = FlightPlanPage(in);
  j["notices"] = NoticesOf(notices);
  return j;
}

}  // namespace

json FlightPlanPage(Instructor& in) {
  const FlightPlan& plan = in.plan;
  json j;
  j["file"] = plan.File;
  j["count"] = FlightPlanCount(plan);
  j["departure"] = plan.FlightPlanDeparture;
  j["destination"] = plan.FlightPlanDestination;
  j["title"] = plan.FlightPlanDeparture + " TO " + plan.FlightPlanDestination;
  j["departureLabel"] = DepartureLabel(plan);
  j["destinationLabel"] = DestinationLabel(plan);
  j["rules"] = plan.FlightRules;
  j["next"] = plan.NextWaypoint;
  j["current"] = plan.CurrentWaypointName;
  j["display"] = FlightPlanDisplay(plan);
  json points = json::array();
  for (size_t i = 0; i < plan.Waypoints.size(); ++i) {
    const Waypoint& w = plan.Waypoints[i];
    json p;
    p["number"] = i;
    p["name"] = w.Name;
    p["type"] = w.WaypointType;
    p["latitude"] = w.Latitude;
    p["longitude"] = w.Longitude;
    p["altitude"] = w.Altitude;
    const bool approached = w.ClosestDistance < kNotYetApproached;
    p["closestDistance"] = approached ? json(w.ClosestDistance) : json(nullptr);
    p["passTime"] = approached ? json(w.PassTime) : json(nullptr);
    p["inFlight"] = static_cast<int32_t>(i) == plan.NextWaypoint;
    points.push_back(p);
  }
  j["points"] = points;
  const std::string& folder = in.options.FlightPlanFolder;
  j["folder"] = folder;
  if (folder.empty() || !FolderExists(folder)) {
    j["folderMessage"] = std::string(kNoPlanFolder);
    j["folderPlans"] = json::array();
  } else {
    j["folderPlans"] = FolderPlans(folder);
  }
  return j;
}

json UploadFlightPlanAction(Instructor& in, const json& body) {
  if (!body.is_object() || !body.contains("name") || !body["name"].is_string() ||
      !body.contains("text") || !body["text"].is_string())
    return Refusal(400, "the request must hold \"name\" and \"text\" strings");
  const std::string name = PlanFileName(body["name"].get<std::string>());
  if (name.empty()) return Refusal(400, "the plan's name must be a file name ending in .pln");
  const std::string& text = body["text"].get_ref<const std::string&>();
  if (text.size() > kMaxUploadedPlanBytes) return Refusal(413, "the plan file is too large");
  FlightPlan check;
  Notices notices;
  ProcessFlightPlanText(text, check, name, &notices);
  if (FlightPlanCount(check) == 0) {
    json j = Refusal(422, "the file holds no flight plan points");
    j["notices"] = NoticesOf(notices);
    return j;
  }
  const std::string folder = TidyFolder(in.root) + kUploadFolder;
  std::error_code ec;
  std::filesystem::create_directories(NativePath(folder), ec);
  const std::string file = TidyFolder(folder) + name;
  if (!WriteFileAtomic(file, text)) return Refusal(500, "the plan could not be kept");
  return LoadInto(in, file);
}

json LoadFolderFlightPlanAction(Instructor& in, const json& body) {
  if (!body.is_object() || !body.contains("file") || !body["file"].is_string())
    return Refusal(400, "the request must hold a \"file\" string");
  const std::string& folder = in.options.FlightPlanFolder;
  if (folder.empty() || !FolderExists(folder)) return Refusal(404, kNoPlanFolder);
  const std::string wanted = body["file"].get<std::string>();
  for (const std::string& name : FolderPlans(folder))
    if (name == wanted) return LoadInto(in, TidyFolder(folder) + name);
  return Refusal(404, "no such plan in the flight plan folder");
}

json ReadSimulatorFlightPlanAction(Instructor& in, const json& /*body*/) {
  Notices notices;
  const SimulatorPlanLoad load = LoadSimulatorFlightPlan(
      in.plan, in.flight.Connected && in.flight.UserConnected, in.options.P3DMode,
      in.link.Now().FlightFile, in.options.FlightPlanFolder, &notices);
  if (!load.Loaded) return Refusal(409, load.Message);
  json j = FlightPlanPage(in);
  j["notices"] = NoticesOf(notices);
  return j;
}

json ClearFlightPlanAction(Instructor& in, const json& /*body*/) {
  cmdClearFlightPlan_Click(in.plan);
  return FlightPlanPage(in);
}

}  // namespace vantoro::web
