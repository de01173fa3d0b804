// A recorded flight read back for the log book's plots: the recording is
// flown again through an instructor of its own (not the live one), in
// virtual time and without sound, and each tick's values are kept; each
// landing gets its approach (height and speed against the distance to the
// touchdown point) and a touchdown card.
#pragma once

#include <nlohmann/json.hpp>
#include <string>

namespace vantoro {

// The approach plot starts this far out, nautical miles.
inline constexpr double kApproachPlotMiles = 8.0;
// The touchdown card shows the last ticks below this height above the ground.
inline constexpr double kTouchdownCardFeet = 50.0;
// Ground contacts this soon after the touchdown are bounces, not landings.
inline constexpr int kBounceWindowTicks = 40;
// A landing needs the aircraft to have been airborne this long before it.
inline constexpr int kAirborneBeforeLandingTicks = 60;
inline constexpr double kFeetPerMile = 6076.12;
inline constexpr double kGForceUnit = 625.0;  // the simulator's load factor for 1 g

// {"ticks": [...], "landings": [{"approach": [...], "card": {...}}]} or, when
// the recording cannot be read, {"error": "FILE:LINE: ..."}.
nlohmann::json RecordedFlight(const std::string& recordingPath, const std::string& root);

}  // namespace vantoro
