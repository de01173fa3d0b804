#include "shell/settings.h"

#include <cmath>
#include <optional>

#include "base/files.h"
#include "base/numbers.h"
#include "base/text.h"
#include "shell/option_fields.h"

namespace vantoro {

namespace {

// The registry names an icon file for FS2002 ("...\fs2002.exe,0"): its folder
// is the simulator's.
std::string FolderOfIcon(std::string_view icon) {
  std::string path = Trim(icon);
  if (size_t comma = path.rfind(','); comma != std::string::npos) path.resize(comma);
  path = Trim(path);
  if (EndsWith(Upper(path), ".EXE")) path = GetFolder(path);
  return path;
}

}  // namespace

std::string SettingsPath(std::string_view root) {
  return TidyFolder(root) + "settings.ini";
}

void GetFSRegistryValues(const Registry& registry, Settings& s) {
  auto get = [&](const char* key, const char* name) {
    return Trim(registry.GetRegistryValue(RegistryHive::LocalMachine, key, name, ""));
  };
  if (s.P3DMode) {
    s.FSXFolder = FolderValue(get(kP3DRegistryKey, "SetupPath"));
    return;
  }
  s.FS2002Folder = FolderValue(FolderOfIcon(get(kFS2002RegistryKey, "DisplayIcon")));
  s.FS2004Folder = FolderValue(get(kFS2004RegistryKey, "InstallLocation"));
  std::string fsx = get(kFSXRegistryKey, "SetupPath");
  if (fsx.empty()) fsx = get(kFSXSteamRegistryKey, "Install_Path");
  s.FSXFolder = FolderValue(fsx);
}

std::string ComposeSettings(const Settings& s) {
  return ComposeFields(SettingsFields(), s);
}

void ReadSettings(const std::vector<INIEntry>& entries, Settings& s, Notices* notices,
                  std::string_view file) {
  ReadFields(SettingsFields(), entries, s, notices, file);
}

SettingsLoad LoadSettingsTab(std::string_view root, const Registry& registry, Settings& s) {
  const std::string path = SettingsPath(root);
  // Only a missing file means a first start: one that is there but cannot be
  // read must not be replaced by the registry's folders.
  if (!FindNoCase(path)) {
    GetFSRegistryValues(registry, s);
    return {true, {}, TidyFolder(root) + kSamplePilot, {}};
  }
  const std::optional<std::string> text = TryReadFile(path);
  if (!text) return {false, path + ": the settings file cannot be read", {}, {}};
  SettingsLoad loaded;
  ReadSettings(ParseINIText(*text, true), s, &loaded.notices, path);
  NoteLinesPassedOver(path, *text, true, loaded.notices);
  loaded.pilotFile = s.PilotFile;
  return loaded;
}

bool SaveSettingsTab(std::string_view root, const Settings& s) {
  return WriteINIFile(SettingsPath(root), ComposeSettings(s));
}

void ApplySettings(const Settings& s, EngineOptions& o) {
  o.P3DMode = s.P3DMode;
  o.FS2002Folder = s.FS2002Folder;
  o.FS2004Folder = s.FS2004Folder;
  o.FSXFolder = s.FSXFolder;
  o.FlightPlanFolder = s.FlightPlanFolder;
  if (const auto altitude = INIValueNumber(s.TransitionAltitude))
    o.TransitionAltitude = CLng(*altitude);
  o.EndFlightWhen = s.EndFlight;
  o.LoadFSXPlanOnConnect = s.LoadFSXPlanOnConnect;
  o.GPSOverridesFlightPlan = s.GPSOverridesFlightPlan;
  o.SpokenTips = s.SpokenTips;
  o.AviationTips = s.AviationTips;
  o.SpokenTipsSwitches = s.InstantHelp;
  o.TaxiwayTips = s.TaxiwayTips;
  o.VoiceMode = s.VoiceMode;
  o.ReminderInterval = s.ReminderInterval;
}

}  // namespace vantoro
