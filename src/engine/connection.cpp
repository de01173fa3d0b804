// The connection to the simulator: opening the link with its version checks,
// the pilot's Connect and Disconnect, automatic disconnection and the status
// line.
#include "engine/connection.h"

#include <string>

#include "base/files.h"
#include "engine/tick_rules.h"
#include "engine/voice_actions.h"
#include "records/flight_stats.h"
#include "world/flight_plan.h"
#include "world/profiles.h"
#include "world/vors.h"

namespace vantoro {

namespace {

// The oldest interface module the instructor works with, as four version
// digits: 4.800 for the Prepar3D build, 3.220 otherwise.
constexpr int kLowestVersionP3D = 4800;
constexpr int kLowestVersion = 3220;

// Simulator codes of the interface module.
constexpr int kSimFS2002 = 6;
constexpr int kSimFSX = 8;
constexpr int kSimP3D = 10;

int VersionDigits(uint32_t version) {
  const int d1 = static_cast<int>((version >> 28) & 0xF);
  const int d2 = static_cast<int>((version >> 24) & 0xF);
  const int d3 = static_cast<int>((version >> 20) & 0xF);
  const int d4 = static_cast<int>((version >> 16) & 0xF);
  return d1 * 1000 + d2 * 100 + d3 * 10 + d4;
}

bool SimulatorSupported(int code, bool p3dMode) {
  if (p3dMode) return code == kSimFSX || code == kSimP3D;
  return code >= kSimFS2002 && code <= kSimFSX;
}

// A message box of the program, as the observers see it.
void ShowNotice(Cockpit& c, std::string_view text) {
  c.events.Emit(c.flight.TickCount, "notice", {{"text", text}});
}

bool NamedButMissing(const std::string& folder) {
  return !folder.empty() && !FolderExists(folder);
}

}  // namespace

std::string PilotRefusal(const EngineOptions& options) {
  if (!options.PilotUnsaved) return {};
  std::string text;
  for (const char* line : kNoPilotLines) text += (text.empty() ? "" : "\n") + std::string(line);
  return text;
}

std::string FolderRefusal(const EngineOptions& o) {
  // In the Prepar3D build the FSX row holds Prepar3D's folder.
  if (o.P3DMode) return NamedButMissing(o.FSXFolder) ? kP3DFolderMissing : "";
  if (NamedButMissing(o.FS2002Folder)) return kFS2002FolderMissing;
  if (NamedButMissing(o.FS2004Folder)) return kFS2004FolderMissing;
  if (NamedButMissing(o.FSXFolder)) return kFSXFolderMissing;
  return {};
}

std::optional<std::string> GetRunningFS(const EngineOptions& o, std::string_view simName) {
  if (o.P3DMode) {
    if (simName == "P3D") return o.FSXFolder;
    return std::nullopt;
  }
  if (simName == "FS2002") return o.FS2002Folder;
  if (simName == "FS2004") return o.FS2004Folder;
  if (simName == "FSX") return o.FSXFolder;
  return std::nullopt;
}

void LoadWorldWhenEmpty(Cockpit& c) {
  const FlightState& f = c.flight;
  if (c.world.RunwaysLoaded() || !f.Connected || f.SimulatorName.empty()) return;
  // A simulator the program keeps no folder for still has the delivered world.
  const std::string folder = GetRunningFS(c.options, f.SimulatorName).value_or("");
  const std::string message = LoadRunwaysAndVORs(c.world, c.root, folder, f.SimulatorName);
  if (!message.empty()) ShowNotice(c, message);
}

std::string LinkVersionText(uint32_t version) {
  std::string text;
  for (int i = 0; i < 4; ++i) {
    const int nibble = static_cast<int>((version >> (28 - 4 * i)) & 0xF);
    text += static_cast<char>(nibble < 10 ? '0' + nibble : 'A' + nibble - 10);
    if (i == 0) text += '.';
  }
  if ((version & 0xFFFF) != 0)
    text += static_cast<char>('a' + static_cast<int>(version & 0xFF) - 1);
  return text;
}

void SetStatus(Cockpit& c, std::string text) {
  FlightState& f = c.flight;
  if (text == f.Status) return;
  f.Status = std::move(text);
  c.events.Emit(f.TickCount, "status", {{"text", f.Status}});
}

bool FSConnect(Cockpit& c) {
  FlightState& f = c.flight;
  const bool p3d = c.options.P3DMode;
  int result = kLinkOk;
  if (!c.sim.Open(0, result)) {
    if (const std::string problem = c.sim.Problem(); !problem.empty()) {
      SetStatus(c, "Can't Connect - " + problem);
    } else if (result == kLinkNoServer) {
      SetStatus(c, p3d ? "Status: No P3D Found" : "Status: No Flight Simulator Found");
    } else {
      SetStatus(c, std::string("Can't Connect - ") + LinkResultText(result));
    }
    return false;
  }

  const int simCode = static_cast<int>(c.sim.FsId() & 0xFFFF);
  f.SimulatorName = SimulatorName(simCode, p3d);
  f.Stats.Simulator = f.SimulatorName;
  f.Stats.LinkVersion = LinkVersionText(c.sim.FsVersion());

  // A file "NoVersionCheck.txt" beside the program lets any version through.
  const bool anyVersion = FileExists(c.root + "NoVersionCheck.txt");
  if (!anyVersion &&
      VersionDigits(c.sim.FsVersion()) < (p3d ? kLowestVersionP3D : kLowestVersion)) {
    c.sim.Close();
    SetStatus(
        c, p3d ? "Status: FSUIPC must be at least v4.80" : "Status: FSUIPC must be at least v3.22");
    return false;
  }
  if (!SimulatorSupported(simCode, p3d)) {
    c.sim.Close();
    SetStatus(c, p3d ? "Status: This flight simulation application is not supported"
                     : "Status: This version of Flight Simulator is not supported");
    return false;
  }

  f.Connected = true;
  // The decoder warms up afresh with every link: a flight reloaded in a
  // restarted simulator is placed before its jumps count.
  c.link.WarmUpTicks = 0;
  // A simulator reached through its own protocol is named as itself, while
  // the rules go on knowing it as the simulator it stands in for.
  const std::string shown = c.sim.DisplayName().empty() ? f.SimulatorName : c.sim.DisplayName();
  SetStatus(c, "Status: Monitoring " + shown + "       [Vantoro v" VANTORO_VERSION "]");
  // A pilot who pressed Connect before the simulator ran gets its world now.
  if (f.UserConnected) LoadWorldWhenEmpty(c);
  return true;
}

bool ConnectToFS(Cockpit& c) {
  FlightState& f = c.flight;
  if (const std::string refusal = PilotRefusal(c.options); !refusal.empty()) {
    ShowNotice(c, refusal);
    return false;
  }
  SetupAircraftValues(c.aircraft);

  // A new connection begins with a clean slate of flights.
  f.Flights = {};
  f.CurrentFlight = 1;
  f.CircuitsWanted = false;
  c.checklists = ChecklistsState{};
  c.circuit = CircuitState{};
  c.sound.Status.CircuitTraining = false;
  c.sound.Status.CircuitLeg.clear();
  f.UnknownAircraftShown = false;
  f.CrashOnLanding = false;
  f.Crashed = false;
  // The taxi-advice latches start afresh; the approach has no destination and
  // its bests are not measured yet.
  f.Ground = GroundState{};
  f.approach = {};
  f.FlightStarted = false;
  f.FlightStartTick = 0;
  f.TickCount = 0;
  c.link.WarmUpTicks = 0;
  f.clocks = Clocks{};
  f.LastFlightTime = -2;
  f.HasTouchedDown = false;
  f.GroundLatch = 0;
  f.TouchdownArmed = 0;
  f.GoAroundEndFlight = false;
  f.PreviousGoAroundEndFlight = false;
  f.LevelFlightTicks = 0;
  f.DescentTicks = 0;
  f.LandingData = {};
  f.Runways.NearestRunway = nullptr;
  f.Runways.LandingRunway = nullptr;
  f.Runways.RunwayHeadingRelative = 0;
  SetFlightMode(c, FlightMode::None);

  if (const std::string refusal = FolderRefusal(c.options); !refusal.empty()) {
    ShowNotice(c, refusal);
    return false;
  }
  LoadWorldWhenEmpty(c);

  // The six touchdown counters of the landing evaluation are cleared here.

  f.UserConnected = true;
  // The log book view reads "No flights completed since last connection was
  // made." from here on (flight log).

  Voice v = c.voice();
  SetVolumeAtConnection(v);
  PlayAlways(v, "VantoroInitialization.wav");
  if (c.options.TeachingOn) PlayAlwaysRoot(v, "TeachVNTRConnecting.wav");
  return true;
}

void DisconnectFromFS(Cockpit& c, int reason, std::string_view cause) {
  FlightState& f = c.flight;
  if (reason != 0) {
    // The stored text of the last connection goes to the log book view here
    // (flight log).
    cmdClearFlightPlan_Click(c.plan);
  }
  f.FlightStarted = false;
  f.UserConnected = false;
  c.events.Emit(f.TickCount, "disconnect", {{"reason", cause}});

  // Family 0 with no gap: on a crash, the crash sound queued in the same tick
  // keeps the family shut, so that the pilot hears the crash and not this.
  Voice v = c.voice();
  PlayAndPurge(v, "VNTRDisconnect.wav", 0, 0);
  UnregisterHotKeys(c);

  // An estimated profile: the pilot is told how to correct its figures.
  std::string notice;
  for (const std::string& line : EstimatedProfileSummary(c.aircraft)) {
    if (line.empty()) continue;
    notice += (notice.empty() ? "" : "\n") + line;
  }
  if (!notice.empty()) ShowNotice(c, notice);
}

void AutoDisconnect(Cockpit& c, std::string_view cause) {
  DisconnectFromFS(c, 0, cause);
  SetStatus(c, std::string(kAutoDisconnection) + "\n" + std::string(cause));
}

void LinkFailure(Cockpit& c, std::string_view words, int result) {
  FlightState& f = c.flight;
  const std::string problem = c.sim.Problem();
  f.Stats.LinkStatus = std::string(words) + (problem.empty() ? LinkResultText(result) : problem);
  f.ReadErrors += 1;
  f.Stats.ReadErrors = f.ReadErrors;
}

}  // namespace vantoro
