// The end of one flight and the opening of the next: taxi mode, the flight's
// score and records, a new flight record.
#pragma once

#include "engine/polling.h"

namespace vantoro {

// A flight of this length or less that did not crash leaves no trace.
inline constexpr int32_t kShortHopSeconds = 30;

// Closes the current flight and opens the next one. A touch-and-go
// (TouchAndGoInProgress) keeps the flight mode as it is.
void EndFlight(Cockpit& c);
// Opens the flight of index CurrentFlight.
void StartFlight(Cockpit& c);

}  // namespace vantoro
