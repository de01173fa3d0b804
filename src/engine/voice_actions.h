// Voice commands and hot keys in the tick: the hot keys registered in the
// simulator's hot key table and read each tick, the phrase the recogniser
// heard turned into a waiting action, and the spoken actions carried out by
// the next tick. A hot key and a phrase both end in FlightState::VoiceAction:
// 1 to 15 press that hot key, 96 and above run VoiceHotKeyAction.
#pragma once

#include <cstdint>
#include <string_view>

#include "engine/polling.h"

namespace vantoro {

// The voice modes of the settings (lstVoiceCommand).
inline constexpr int kVoiceOff = 0;
inline constexpr int kVoiceOnMicKey = 1;
inline constexpr int kVoiceAlways = 2;

inline constexpr int kMicrophoneSlot = 14;
// The first action that is not a hot key.
inline constexpr int32_t kFirstSpokenAction = 96;
inline constexpr int kRogerSeconds = 2;

// The key code of each slot 1..15 (index 0 unused): low byte the virtual
// key, high byte the shift state (3 Ctrl and Shift).
uint16_t HotKeyCode(int slot);

// Nautical miles the fuel on board lasts at the present fuel flow and ground
// speed; 0 with no fuel flowing.
double FuelRangeMiles(const LinkState& link, const FSData& now);

// Every slot unregistered with its key code.
void InitHotkeysQWE(FlightState& f);
// Takes the first free entry of the simulator's hot key table for the slot
// and writes its key code there; true when the slot is registered. The
// entry is marked in our mirror of the simulator's bytes at once, so that
// the next slot of the same tick takes the next entry.
bool RegisterHotKey(Cockpit& c, int slot);
// Each slot in turn: registered if it is not, else its hit marker read (and
// cleared) or the waiting action taken as a press of it.
void ScanHotKeys(Cockpit& c);
// Writes zero over the entries of every registered slot and leaves the slots
// unregistered: the entries live in the simulator, which outlasts us.
void UnregisterHotKeys(Cockpit& c);

// The recogniser is listening: always, or on the microphone key while it is
// switched on.
bool ListenEnabled(const Cockpit& c);
// A phrase the recogniser heard (the recogniser's event): "Roger..." on the
// simulator's message line, then the phrase's action waits for the next tick;
// a letter while an airport is being spelled adds to the code.
void HearPhrase(Cockpit& c, std::string_view phrase);

// Runs the waiting spoken action (96 and above) and clears it.
void VoiceHotKeyAction(Cockpit& c);

}  // namespace vantoro
