#include "shell/settings.h"

#include <cmath>
#include <optional>

#include "base/files.h"
#include "base/numbers.h"
#include "base/text.h"

namespace vantoro {

namespace {

constexpr std::array<const char*, kSpokenTipBoxes> kTipKeys = {"SpokenTips", "AviationTips",
                                                               "InstantHelp", "TaxiwayTips"};

std::string Line(std::string_view key, std::string_view value) {
  return std::string(key) + "=" + std::string(value) + "\r\n";
}

const char* Flag(bool b) {
  return b ? "1" : "0";
}

// A whole number, or nullopt for text that is not one.
std::optional<int> WholeNumber(std::string_view text) {
  const auto v = INIValueNumber(text);
  if (!v || *v != std::floor(*v) || std::fabs(*v) > 1e9) return std::nullopt;
  return static_cast<int>(*v);
}

std::string FolderValue(std::string_view value) {
  const std::string t = Trim(value);
  return t.empty() ? std::string() : TidyFolder(t);
}

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
  std::string out = "[FS Folders]\r\n";
  if (s.P3DMode) {
    out += Line("P3D", QuoteINIValue(s.FSXFolder));
  } else {
    out += Line("FS2002", QuoteINIValue(s.FS2002Folder));
    out += Line("FS2004", QuoteINIValue(s.FS2004Folder));
    out += Line("FSX", QuoteINIValue(s.FSXFolder));
  }
  out += Line("FlightPlan", QuoteINIValue(s.FlightPlanFolder));
  out += "\r\n[Pilot]\r\n";
  out += Line("PilotFile", QuoteINIValue(s.PilotFile));
  out += "\r\n[Misc]\r\n";
  out += Line("TransitionAltitude", QuoteINIValue(s.TransitionAltitude));
  out += Line("EndFlight", std::to_string(s.EndFlight));
  out += Line("LoadFSXPlanOnConnect", Flag(s.LoadFSXPlanOnConnect));
  out += Line("GPSOverridesFlightPlan", Flag(s.GPSOverridesFlightPlan));
  for (size_t i = 0; i < kTipKeys.size(); ++i) out += Line(kTipKeys[i], Flag(s.SpokenTips[i]));
  out += "\r\n[Voice]\r\n";
  out += Line("Mode", std::to_string(s.VoiceMode));
  return out;
}

void ReadSettings(const std::vector<INIEntry>& entries, Settings& s) {
  auto value = [&](std::string_view section, std::string_view key) {
    return GetValueFromINI(entries, section, key).Value;
  };

  if (s.P3DMode) {
    s.FSXFolder = FolderValue(value("FS Folders", "P3D"));
  } else {
    s.FS2002Folder = FolderValue(value("FS Folders", "FS2002"));
    s.FS2004Folder = FolderValue(value("FS Folders", "FS2004"));
    s.FSXFolder = FolderValue(value("FS Folders", "FSX"));
  }
  s.FlightPlanFolder = FolderValue(value("FS Folders", "FlightPlan"));
  s.PilotFile = value("Pilot", "PilotFile");

  const std::string altitude = value("Misc", "TransitionAltitude");
  if (INIValueNumber(altitude)) s.TransitionAltitude = altitude;
  // A 0 leaves the design's choice: only 1 and 2 are honoured.
  if (const auto end = WholeNumber(value("Misc", "EndFlight")); end == 1 || end == 2)
    s.EndFlight = *end;
  // These boxes are set by a 1 and never cleared by the file.
  if (WholeNumber(value("Misc", "LoadFSXPlanOnConnect")) == 1) s.LoadFSXPlanOnConnect = true;
  if (WholeNumber(value("Misc", "GPSOverridesFlightPlan")) == 1) s.GPSOverridesFlightPlan = true;
  for (size_t i = 0; i < kTipKeys.size(); ++i) {
    const auto v = INIValueNumber(value("Misc", kTipKeys[i]));
    if (v) s.SpokenTips[i] = *v == 1;
  }

  // Not a number selects "Off"; a number out of range leaves the list alone.
  const std::string mode = value("Voice", "Mode");
  if (!INIValueNumber(mode)) {
    s.VoiceMode = 0;
  } else if (const auto m = WholeNumber(mode);
             m && *m >= 0 && *m < static_cast<int>(kVoiceModes.size())) {
    s.VoiceMode = *m;
  }
}

SettingsLoad LoadSettingsTab(std::string_view root, const Registry& registry, Settings& s) {
  const std::string path = SettingsPath(root);
  // Only a missing file means a first start: one that is there but cannot be
  // read must not be replaced by the registry's folders.
  if (!FindNoCase(path)) {
    GetFSRegistryValues(registry, s);
    return {true, {}, TidyFolder(root) + kSamplePilot};
  }
  const std::optional<std::string> text = TryReadFile(path);
  if (!text) return {false, path + ": the settings file cannot be read", {}};
  ReadSettings(ParseINIText(*text, true), s);
  return {true, {}, s.PilotFile};
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
  o.SpokenTips = s.SpokenTips[0];
  o.AviationTips = s.SpokenTips[1];
  o.SpokenTipsSwitches = s.SpokenTips[2];
  o.TaxiwayTips = s.SpokenTips[3];
  o.VoiceMode = s.VoiceMode;
}

}  // namespace vantoro
