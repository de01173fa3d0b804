// The state document of the Fly page, built on the loop thread after each tick.
#include <filesystem>
#include <string>
#include <system_error>

#include "app/web/web_server.h"
#include "base/files.h"
#include "base/text.h"
#include "records/flight_log.h"
#include "shell/instructor.h"

namespace vantoro {

namespace {

const char* ModeName(const ModeFlags& m) {
  if (m.Taxiing) return "Taxiing";
  if (m.TakeOff) return "TakeOff";
  if (m.Cruise) return "Cruise";
  if (m.Landing) return "Landing";
  return "none";
}

// "size/time" of a file, "" when there is none.
std::string FileStamp(const std::string& path) {
  std::error_code ec;
  const auto size = std::filesystem::file_size(path, ec);
  if (ec) return {};
  const auto time = std::filesystem::last_write_time(path, ec).time_since_epoch().count();
  return std::to_string(size) + "/" + std::to_string(time);
}

}  // namespace

nlohmann::json SlowAppState(const Instructor& in) {
  const std::string& pilot = in.pilot.CurrentPilotFile;
  const std::string log = pilot.empty() ? "" : NativePath(GetPilotFile(pilot, ".dat"));
  return {{"logBook", log.empty() ? "" : FileStamp(log)}};
}

nlohmann::json LiveState(const Instructor& in) {
  const FlightState& f = in.flight;
  nlohmann::json j;
  j["tick"] = f.TickCount;
  j["connected"] = f.UserConnected;
  j["linkOpen"] = f.Connected;
  j["statusLine"] = f.Status;
  j["simulator"] = f.Stats.Simulator.empty() ? f.SimulatorName : f.Stats.Simulator;
  j["linkVersion"] = f.Stats.LinkVersion;
  j["linkStatus"] = f.Stats.LinkStatus;
  j["aircraft"] = f.Stats.CurrentAircraft;
  j["clock"] = f.Stats.Clock;
  j["pressedKeys"] = f.Stats.PressedKeys;
  j["readErrors"] = f.Stats.ReadErrors;
  j["mode"] = ModeName(f.Modes);
  j["crashed"] = f.Crashed;
  if (f.UserConnected && f.TickCount > 0) {
    // The tick swaps its records last: what it decoded is now the one before.
    const FSData& now = in.link.Before();
    nlohmann::json live;
    live["ias"] = now.IAS;
    live["groundSpeed"] = now.GS;
    live["height"] = static_cast<int>(now.AGL + 0.5);
    live["altitude"] = now.Altitude;
    live["verticalSpeed"] = now.VS;
    live["bank"] = now.Bank;
    live["pitch"] = now.Pitch;
    live["heading"] = now.Heading;
    live["onGround"] = now.OnGround > 0;
    j["live"] = live;
  }
  if (in.sound.Status.CircuitTraining) j["leg"] = Trim(in.sound.Status.CircuitLeg);
  if (!in.checklists.NextTitle.empty()) j["checklist"] = in.checklists.NextTitle;
  if (!in.plan.Waypoints.empty()) j["waypoint"] = in.plan.CurrentWaypointName;
  j["remark"] = {{"text", in.sound.RemarkText}, {"level", in.sound.RemarkLevel}};
  j["scores"] = {{"landing", in.scores.LandingScore},
                 {"flight", in.scores.FlightScore},
                 {"circuit", in.scores.CircuitScore}};
  j["logBook"] = in.scores.LogBookText;
  j["pilot"] = {{"name", in.pilot.Record.name}, {"unsaved", in.pilot.Unsaved}};
  return j;
}

}  // namespace vantoro
