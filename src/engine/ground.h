// The rules of the aircraft on the ground: the entries into take-off and taxi,
// the end of a landed flight, the touch-and-go, turning and braking, the
// take-off roll and rotation, and the taxi rules with the control check.
// Each function is one step of the ground part of the tick, called in order;
// a rule that speaks goes through the sound gate and counts its fault only
// when the advice was given.
#pragma once

#include "engine/polling.h"

namespace vantoro {

// The jets' take-off speeds fill the boxes still at 0: the CRJ700 with its
// own figures, the others from the clean stall speed.
void VSpeeds(const AircraftValues& a, TakeOffSpeeds& speeds);

// The end of a landed flight as the pilot chose it (EndFlightWhen): stopped
// or just taxiing, stopped with the parking brake set, or stopped, braked and
// shut down.
void EndFlightAsChosen(Cockpit& c);
// On the tick TakeOff has just been set: wind, runway, teaching, speeds,
// heading, visibility and wind spoken.
void EntryIntoTakeOff(Cockpit& c);
// Rolling out off NAV1's course after a touchdown, tick by tick.
void SteeringAfterTouchdown(Cockpit& c);
// On the tick Taxiing has just been set: "Taxiing.wav".
void EntryIntoTaxi(Cockpit& c);
// Gentle turns, reverse thrust, the touch-and-go, spoilers, braking, steering
// and rotation on the take-off roll.
void GroundRules(Cockpit& c);
// With Taxiing set: completed checks, the control check when stopped, and
// flaps, wind, speed and brakes when moving.
void TaxiRules(Cockpit& c);

}  // namespace vantoro
