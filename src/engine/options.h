// The pilot's choices that the tick reads: check boxes and choices of the
// main window, as plain fields. The desktop program binds its widgets to
// them; vantoro-cli fills them from the settings and pilot files.
#pragma once

#include <cstdint>
#include <string>

namespace vantoro {

// The choices of EndFlightWhen: a landed flight ends when the aircraft stops
// or taxiing begins, when it stops with the parking brake set, or when it
// stops braked with the engines shut down.
inline constexpr int kEndFlightWhenStoppedOrTaxiing = 0;
inline constexpr int kEndFlightWhenBrakeSet = 1;
inline constexpr int kEndFlightWhenShutDown = 2;

// The reminder interval of the aircraft procedures, in ticks: 120 repeats an
// autopilot-mode reminder every 30 seconds and the flaps-up call every 15.
inline constexpr int32_t kDefaultReminderInterval = 120;
inline constexpr int32_t kShortestReminderInterval = 4;
inline constexpr int32_t kLongestReminderInterval = 2400;

// The pilot's own choices that the tick reads, as his pilot file keeps them
// (the file's rows are in shell/option_fields.h). The pilot page and the
// tick share this one struct.
struct PilotOptions {
  bool HaveYokePressure = false;
  bool RudderController = false;
  bool WantTaxiInWindAdvice = true;
  bool MonitorUseOfLights = true;
  bool WantRandomFailures = false;
  bool WantLooseWireFailures = false;
  int32_t FailureSlider = 30;  // reliability, up to 100
  bool PausePointsLoss = false;
  bool PauseWarning = true;
  int32_t PauseGap = 30;
  bool Basic = false;  // the basic log book instead of the detailed one
  bool BackgroundSounds = true;
  bool Humour = true;
  bool MonGT = true;  // traffic on the ground
  bool MonAT = true;  // traffic in the air
  bool AdviceWP = true;
  bool AdviceVORNDB = true;
  bool MonitorVOR = true;
  bool AnnounceNearestAirport = false;  // "AutoNearestAirport" in the file
  bool MonitorTaxiways = true;
  bool InstructorNoticesFailures = true;
  bool AutoDetectModeCruise = true;
  bool AutoDetectModeLanding = true;
  bool AutoTuneILS = false;
  bool AutoTuneATIS = false;
  bool AutoTuneVOR = false;

  bool operator==(const PilotOptions&) const = default;
};

struct EngineOptions : PilotOptions {
  bool StartingPosition = false;      // chkStartingPosition (visible and on)
  bool ApproachStartTime = false;     // chkApproachStartTime
  bool SpokenTipsSwitches = true;     // third box of chkSpokenTips: explain switches
  bool LoadFSXPlanOnConnect = false;  // chkLoadFSXPlanOnConnect
  bool TeachingOn = true;             // teaching remarks wanted
  bool ShowMicState = true;           // show "VNTR Mic:" on the microphone key
  int EndFlightWhen = 0;              // 0 "or Taxiing", 1 "and Brake set", 2 "... Eng(s) off"

  // From the settings file.
  bool P3DMode = false;      // the Prepar3D build: the FSX folder box holds Prepar3D's
  std::string FS2002Folder;  // simulator folders, each ending in "\" or empty
  std::string FS2004Folder;
  std::string FSXFolder;
  std::string FlightPlanFolder;        // where flight plans are looked for
  int32_t TransitionAltitude = 18000;  // feet
  bool GPSOverridesFlightPlan = false;
  bool SpokenTips = true;    // first box of chkSpokenTips ("InstantHelp" is SpokenTipsSwitches)
  bool AviationTips = true;  // second box
  bool TaxiwayTips = true;   // fourth box
  int VoiceMode = 0;         // 0 off, 1 on the microphone key, 2 listening at all times
  // The repeated reminders of the aircraft procedures: the autopilot-mode
  // reminders (engage MCP speed, altitude, heading) wait half this many ticks
  // before they are said again, the flaps-up call a quarter. Settings key
  // "ReminderInterval" in [Misc].
  int32_t ReminderInterval = kDefaultReminderInterval;

  // From the pilot file (the pilot's choices above too).
  std::string PilotName;
  std::string PilotFile;  // the current pilot file; his flight log lies beside it
  // A new pilot not yet saved to a file: Connect is refused until he is.
  bool PilotUnsaved = false;
  std::string PilotImage;  // path of the pilot's picture, or empty
};

}  // namespace vantoro
