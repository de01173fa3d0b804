// The pilot's hot keys in the tick: the pressed keys act in their fixed order.
#include "engine/checklists.h"
#include "engine/circuit.h"
#include "engine/tick_rules.h"
#include "records/flight_stats.h"

namespace vantoro {

namespace {

constexpr int kMicMessageSeconds = 2;
constexpr int kWhichCheckListSeconds = 8;

// Key 11: the pilot errors so far, the height, the ground's elevation and the
// list the checklist key would read.
void ShowWhichCheckList(Cockpit& c) {
  const FSData& now = c.link.Now();
  const std::string height =
      now.OnGround > 0 ? std::string("On Ground") : std::to_string(static_cast<int>(now.AGL));
  ShowMessage(
      c,
      ProcessNextCheckList(
          c, "PilotErrors:" + std::to_string(FlightPPScore(c.flight.Flight())) + "  AGL:" + height +
                 "  GrndAlt:" + std::to_string(now.GroundAltitude) + "   Checklist Key: "),
      kWhichCheckListSeconds);
}

}  // namespace

void HotKeysAct(Cockpit& c) {
  FlightState& f = c.flight;
  auto pressed = [&f](int slot) { return f.HotKeys[static_cast<size_t>(slot)].Pressed; };

  if (pressed(4) || pressed(10)) CircuitHotKey(c);
  if (pressed(14)) {
    f.MicEnabled = !f.MicEnabled;
    if (c.options.ShowMicState)
      ShowMessage(c, std::string("VNTR Mic:") + (f.MicEnabled ? "ON" : "OFF"), kMicMessageSeconds);
  }
  if (pressed(5) || pressed(9)) f.ExtraSpeechWanted = !f.ExtraSpeechWanted;
  if (pressed(1) || pressed(7)) AdvanceFlightMode(c);
  if (pressed(2) || pressed(8)) BackUpFlightMode(c);
  if (pressed(11)) ShowWhichCheckList(c);
  if (pressed(12)) ProcessCheckLists(c);
  // Key 3 or 6 shows and spells the flight plan's departure and destination (flight plans).
}

void ClearPressedKeys(FlightState& f) {
  for (HotKey& key : f.HotKeys) key.Pressed = false;
}

}  // namespace vantoro
