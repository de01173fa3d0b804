#include "engine/stats_view.h"

#include "base/numbers.h"
#include "engine/flight_state.h"

namespace vantoro {

void UpdateStats(FlightState& flight, const FSData& now) {
  StatsView& view = flight.Stats;
  view.CurrentAircraft = now.AircraftTitle.empty() ? "N/A" : now.AircraftTitle;
  view.PressedKeys.clear();
  for (int slot = 1; slot <= kHotKeySlots; ++slot) {
    if (!flight.HotKeys[static_cast<size_t>(slot)].Pressed) continue;
    if (!view.PressedKeys.empty()) view.PressedKeys += ' ';
    view.PressedKeys += "F" + std::to_string(slot);
  }
  view.LinkStatus = "OK";
  view.ReadErrors = flight.ReadErrors;
  view.Clock = FormatDigits(now.ZuluHour, 2) + ":" + FormatDigits(now.ZuluMinute, 2);
}

}  // namespace vantoro
