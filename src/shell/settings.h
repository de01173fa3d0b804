// "settings.ini" in the program's root folder: the simulator folders, the
// pilot last used, the flight-end and tip options and the voice mode. Read
// once at start, written when the pilot leaves the settings page and when
// the program closes.
#pragma once

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "base/ini.h"
#include "base/notices.h"
#include "base/registry.h"
#include "engine/options.h"

namespace vantoro {

inline constexpr char kDefaultTransitionAltitude[] = "18000";
// The sample pilot, loaded when there is no settings file.
inline constexpr char kSamplePilot[] = "PilotRoster\\LightSpeed.plt";

// Texts of the flight-end choice and the voice modes, by value.
inline constexpr std::array<const char*, 3> kEndFlightLabels = {"or Taxiing", "and Brake set",
                                                                "and Brake set && Eng(s) off"};
inline constexpr std::array<const char*, 3> kEndFlightTips = {
    "Flight will be evaluated after landing when aircraft stops or taxi mode is indicated",
    "Flight will be evaluated after landing when aircraft stops and parking brake is set",
    "Flight will be evaluated after landing when aircraft stops, parking brake is set and "
    "engine(s) are shut down"};
inline constexpr std::array<const char*, 3> kVoiceModes = {
    "Off - No voice commands", "Key - Controlled by VNTR Mic Key [5]", "On - Listen at all times!"};

// The settings page (its rows: SettingsFields in shell/option_fields.h).
struct Settings {
  // The Prepar3D build: only Prepar3D's folder is kept, in the FSX row.
  bool P3DMode = false;
  std::string FS2002Folder;  // each ends in "\" or is empty
  std::string FS2004Folder;
  std::string FSXFolder;
  std::string FlightPlanFolder;
  std::string PilotFile;                                        // the pilot file last loaded
  std::string TransitionAltitude = kDefaultTransitionAltitude;  // feet, as text
  int EndFlight = 0;                                            // 0, 1 or 2: kEndFlightLabels
  bool LoadFSXPlanOnConnect = false;
  bool GPSOverridesFlightPlan = false;
  // The four boxes of spoken tips; InstantHelp explains the switches.
  bool SpokenTips = true;
  bool AviationTips = true;
  bool InstantHelp = true;
  bool TaxiwayTips = true;
  int VoiceMode = 0;  // 0, 1 or 2: kVoiceModes
  // How persistently the autopilot-mode and flaps-up reminders of the
  // aircraft procedures repeat (EngineOptions::ReminderInterval).
  int32_t ReminderInterval = kDefaultReminderInterval;
  // The simulator link ("fsuipc", "flightgear", "xplane"; empty for the
  // platform's own) and where the simulator runs (empty: this machine, its
  // usual port). Written only when chosen.
  std::string Simulator;
  std::string SimulatorHost;
  std::string SimulatorPort;

  bool operator==(const Settings&) const = default;
};

std::string SettingsPath(std::string_view root);

// Registry keys of the installed simulators (the machine-wide hive).
inline constexpr char kP3DRegistryKey[] = "SOFTWARE\\Wow6432Node\\Lockheed Martin\\Prepar3D v2";
inline constexpr char kFS2002RegistryKey[] =
    "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\Flight Simulator 8.0";
inline constexpr char kFS2004RegistryKey[] =
    "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\Flight Simulator 9.0";
inline constexpr char kFSXRegistryKey[] =
    "SOFTWARE\\Microsoft\\Microsoft Games\\Flight Simulator\\10.0";
inline constexpr char kFSXSteamRegistryKey[] = "SOFTWARE\\Wow6432Node\\DovetailGames\\FSX";

// Fills the folder boxes from the registry: the Prepar3D folder in the
// Prepar3D build, else the FS2002, FS2004 and FSX folders (FSX from its Steam
// edition when the boxed one is not installed).
void GetFSRegistryValues(const Registry& registry, Settings& s);

// The settings file's text, keys in their order, CRLF lines, a blank line
// between sections.
std::string ComposeSettings(const Settings& s);
// Takes the keys of a parsed settings file into `s`, each by its rule: a
// folder is tidied, a number is honoured only where its rule says, and a key
// that is not honoured leaves its box as it is.
// Values it cannot take as written become notices naming `file` and the line.
void ReadSettings(const std::vector<INIEntry>& entries, Settings& s, Notices* notices = nullptr,
                  std::string_view file = {});

struct SettingsLoad {
  bool ok = true;
  std::string error;      // what went wrong, naming the file
  std::string pilotFile;  // the pilot to load next, "" for none
  Notices notices;        // values passed over in a file that was read
};

// Start-up: reads the settings file into `s`. Without one, the folders come
// from the registry and the sample pilot is the one to load. A file that is
// there but cannot be read changes nothing.
SettingsLoad LoadSettingsTab(std::string_view root, const Registry& registry, Settings& s);
// Writes the whole file, overwriting any comment in it. False on failure.
bool SaveSettingsTab(std::string_view root, const Settings& s);

// Copies the settings into what the tick reads.
void ApplySettings(const Settings& s, EngineOptions& options);

}  // namespace vantoro
