// What the main window shows of the link and the aircraft, refreshed on every
// tick whose reads succeeded. The desktop program binds its labels to these
// fields; the replay transcript prints them.
#pragma once

#include <cstdint>
#include <string>

namespace vantoro {

struct FSData;
struct FlightState;

struct StatsView {
  std::string CurrentAircraft;  // the aircraft title, "N/A" when there is none
  std::string PressedKeys;      // hot keys pressed this tick: "F7", "F1 F12"
  std::string LinkStatus;       // "OK", or "Failed Read - ..." / "Failed Process - ..."
  std::string Clock;            // simulator time, "HH:MM"
  int32_t ReadErrors = 0;       // failed reads since the last reset
  std::string Simulator;        // name of the running simulator, "FSX"
  std::string LinkVersion;      // version of the simulator's interface module, "4.800"
};

// Refreshes the view from the current record and the hot keys of this tick.
void UpdateStats(FlightState& flight, const FSData& now);

}  // namespace vantoro
