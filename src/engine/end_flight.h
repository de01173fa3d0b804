// The end of one flight and the opening of the next: taxi mode, the flight's
// score and records, a new flight record; and the crash report that closes a
// crashed flight.
#pragma once

#include "engine/polling.h"
#include "records/markup.h"

namespace vantoro {

// A flight of this length or less that did not crash leaves no trace.
inline constexpr int32_t kShortHopSeconds = 30;

// Closes the current flight and opens the next one. A touch-and-go
// (TouchAndGoInProgress) keeps the flight mode as it is. A flight longer than
// a short hop, or crashed, is scored, reported, logged (".dat") and entered
// in the pilot's log book (".htm").
void EndFlight(Cockpit& c);
// Opens the flight of index CurrentFlight.
void StartFlight(Cockpit& c);

// A crash has been decided: the touchdown records become the current and
// previous records, the findings report joins the log display, and the
// flight is closed (EndFlight).
void WriteCrashReport(Cockpit& c);

// What the report tags stand for in the log book: program and simulator,
// visibility and wind at touchdown, the pilot's picture.
MarkupValues ReportMarkupValues(const Cockpit& c);

}  // namespace vantoro
