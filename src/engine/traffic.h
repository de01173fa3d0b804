// Traffic: the instructor watches the simulator's traffic through its two
// tables, the targets in the air and the targets on the ground. On the ground
// it keeps the pilot off the aircraft ahead; in the air it calls nearby
// traffic by clock position, says what kind of aircraft it is and what it is
// doing, and warns as a target closes to a few seconds of flight.
#pragma once

#include <string_view>

#include "engine/polling.h"

namespace vantoro {

// The traffic rules wait for the tables to fill after a connection.
inline constexpr int32_t kTrafficAfterTicks = 22;

// The simulator's AI traffic states, as the interface's traffic tables give
// them in the state byte of a slot (0x80 initialising to 0x92 shutting
// down). The phrases of TrafficStatePhrase follow them one by one; en route,
// in the pattern and going around are told by what the aircraft is doing
// (TrafficActivityPhrase) instead.
enum TrafficStates : int32_t {
  kStateInitialising = 128,
  kStateSleeping = 129,
  kStateFilingFlightPlan = 130,
  kStateObtainingClearance = 131,
  kStatePushbackBack = 132,
  kStatePushbackTurn = 133,
  kStateStartingUp = 134,
  kStatePreparingToTaxi = 135,
  kStateTaxiingOut = 136,
  kStateTakeOffPrepare = 137,
  kStateTakingOff = 138,
  kStateDeparting = 139,
  kStateEnroute = 140,
  kStateInPattern = 141,
  kStateLanding = 142,
  kStateRollingOut = 143,
  kStateGoingAround = 144,
  kStateTaxiingIn = 145,
  kStateShuttingDown = 146,
};

// The phrase of a target's kind, from its model word ("B738": "737.wav");
// "Aircraft.wav" for a word that none of the lists holds.
std::string_view TrafficTypePhrase(std::string_view modelWord);
// The phrase of a target's AI state ("IsTaxiingOut.wav"); "" for a state
// that has none.
std::string_view TrafficStatePhrase(int32_t state);
// What an airborne target is doing: in the pattern, climbing, descending,
// cruising, else its state's phrase, else "keep an eye on him".
std::string_view TrafficActivityPhrase(const TrafficSlot& target);
// The model word of a target: its call sign up to the first blank.
std::string ModelWordOf(const TrafficSlot& target);

// The speech pieces of a target of the air table, queued one behind the other.
void SayTrafficType(Voice& v, const TrafficSlot& target);
void SayTrafficState(Voice& v, const TrafficSlot& target);
void SayTrafficActivity(Voice& v, const TrafficSlot& target);

// The spacing wanted behind the aircraft ahead on the ground, feet.
double GroundSpacing(const LinkState& link);

// The two monitors of the tick, each behind its option: the ground table on
// the ground, the air table in the air.
void ProcessTCASGround(Cockpit& c);
void ProcessTCASAir(Cockpit& c);

// The traffic call the pilot asks for: the nearest target now, from the air
// table in the air and the ground table on the ground, told as the air
// monitor describes a new target ("2 o'clock, low, a 737, is descending"),
// without waiting for the family's gap; on the ground without high or low.
// "negative.wav" when no target is in the table.
void CallTraffic(Cockpit& c);

}  // namespace vantoro
