// The limits watched in the air: attitude and load (wings level near the
// ground, pitch changes, G, bank and its rate, trim and rudder), the stall and
// near-stall warnings, gear and never-exceed speeds, flaps left out in the
// cruise, and the climb-out after take-off. Each function is one group of
// rules in the order the tick runs them; a rule that speaks goes through the
// sound gate and counts its fault only when the advice was given.
#pragma once

#include <string_view>

#include "engine/polling.h"

namespace vantoro {

// Wings level near the ground, pitch change, load factor, yoke pressure, bank
// angle, bank rate and rudder coordination, in that order.
void AttitudeAndLoadLimits(Cockpit& c);

// The stall warning, then the near-stall advice with the aircraft's stall call.
void StallWarnings(Cockpit& c);

// Descending low with the gear up: lower it, or slow down to lower it.
void LowerGearAdvice(Cockpit& c);

// Gear still down in the climb or beyond its speed, then the never-exceed speed.
void GearAndNeverExceedSpeeds(Cockpit& c);

// Flaps left out in the cruise.
void CruisingWithFlaps(Cockpit& c);

// After take-off: the heavy aircraft's positive rate call and the take-off
// descent warnings.
void ClimbOutRules(Cockpit& c);

// The aircraft's own stall call, clean or with flaps out, and its never-exceed
// call; empty for a type without one.
std::string_view StallCall(const AircraftValues& a, bool flapsOut);
std::string_view NeverExceedCall(const AircraftValues& a);

}  // namespace vantoro
