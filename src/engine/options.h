// The pilot's choices that the tick reads: check boxes and choices of the
// main window, as plain fields. The desktop program binds its widgets to
// them; vantoro-cli fills them from the settings and pilot files.
#pragma once

namespace vantoro {

struct EngineOptions {
  bool AutoDetectModeCruise = true;
  bool AutoDetectModeLanding = true;
  bool StartingPosition = false;        // chkStartingPosition (visible and on)
  bool ApproachStartTime = false;       // chkApproachStartTime
  bool SpokenTipsSwitches = true;       // third box of chkSpokenTips: explain switches
  bool AnnounceNearestAirport = false;  // Check2(4)
  bool LoadFSXPlanOnConnect = false;    // chkLoadFSXPlanOnConnect
  bool TeachingOn = true;               // teaching remarks wanted
  bool ShowMicState = true;             // show "VNTR Mic:" on the microphone key
  int EndFlightWhen = 0;                // 0 "or Taxiing", 1 "and Brake set", 2 "... Eng(s) off"
  bool P3DMode = false;                 // the build for Prepar3D: version floor and simulators
};

}  // namespace vantoro
