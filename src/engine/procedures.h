// The aircraft procedures: for the thirteen types the instructor knows, how
// each is started, configured, flown and landed. Every rule is written out,
// type by type, in the files of src/engine/procedures/; the tick calls them
// through the three entries below, at their places in the order of a tick.
#pragma once

#include <cstdint>

#include "engine/polling.h"

namespace vantoro {

// The never-seen value of APUStopTime.
inline constexpr int32_t kAPUNeverStopped = 999999;

// The aircraft's own procedures that run every tick, on the ground and in the
// air, in their fixed order: take-off limits and the general rules, cowl flaps
// and oil pressure, generator switches, systems, engine start, engine running,
// cruise and landing configuration, the take-off speeds, the take-off roll and
// the in-flight rules.
void AircraftProcedures(Cockpit& c);

// On entering the cruise: the type's cruise power and leaning.
void BeginCruiseAdvice(Cockpit& c);

// Above 100 feet: each flap position against its speed limit; a position
// carried too fast is counted against the flight (ExceedFlaps).
void CheckFlapSpeeds(Cockpit& c);

// Airborne: crossing the type's maximum structural cruising speed.
void CheckVno(Cockpit& c);

}  // namespace vantoro
