// The pilot's hot keys in the tick: the pressed keys act in their fixed order.
#include "base/text.h"
#include "engine/checklists.h"
#include "engine/circuit.h"
#include "engine/tick_rules.h"
#include "records/flight_stats.h"
#include "voice/phrases.h"

namespace vantoro {

namespace {

constexpr int kMicMessageSeconds = 2;
constexpr int kWhichCheckListSeconds = 8;
constexpr int kDisplayDataSeconds = 8;

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

// Key 3 or 6: the two ends of the flight plan on the message line,
// departure " TO " destination, and each code spelled out letter by letter,
// a short pause between them. Without a plan the instructor says "negative".
void DisplayFlightPlanEnds(Cockpit& c) {
  const std::string departure = Trim(c.plan.FlightPlanDeparture);
  const std::string destination = Trim(c.plan.FlightPlanDestination);
  Voice v = c.voice();
  if (departure.empty() && destination.empty()) {
    PlayAlways(v, "negative.wav");
    return;
  }
  ShowMessage(c, departure + " TO " + destination, kDisplayDataSeconds);
  PlayStringPhoneticallyAlways(v, departure);
  PlayAlways(v, "Pause500ms.wav");
  PlayStringPhoneticallyAlways(v, destination);
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
  if (pressed(3) || pressed(6)) DisplayFlightPlanEnds(c);
}

void ClearPressedKeys(FlightState& f) {
  for (HotKey& key : f.HotKeys) key.Pressed = false;
}

}  // namespace vantoro
