// The pilot's hot keys in the tick: the pressed keys act in their fixed order.
#include "engine/tick_rules.h"

namespace vantoro {

namespace {

constexpr int kMicMessageSeconds = 2;

}  // namespace

void HotKeysAct(Cockpit& c) {
  FlightState& f = c.flight;
  auto pressed = [&f](int slot) { return f.HotKeys[static_cast<size_t>(slot)].Pressed; };

  // Key 4 or 10 asks for circuit training here (circuit training).
  if (pressed(14)) {
    f.MicEnabled = !f.MicEnabled;
    if (c.options.ShowMicState)
      ShowMessage(c, std::string("VNTR Mic:") + (f.MicEnabled ? "ON" : "OFF"), kMicMessageSeconds);
  }
  if (pressed(5) || pressed(9)) f.ExtraSpeechWanted = !f.ExtraSpeechWanted;
  if (pressed(1) || pressed(7)) AdvanceFlightMode(c);
  if (pressed(2) || pressed(8)) BackUpFlightMode(c);
  // Key 11 shows the pilot errors, the height, the ground altitude, the range
  // and the check list key; key 12 moves to the next check list (check lists).
  // Key 3 or 6 shows and spells the flight plan's departure and destination (flight plans).
}

void ClearPressedKeys(FlightState& f) {
  for (HotKey& key : f.HotKeys) key.Pressed = false;
}

}  // namespace vantoro
