#include "engine/end_flight.h"

#include "base/failure.h"
#include "engine/tick_rules.h"

namespace vantoro {

void EndFlight(Cockpit& c) {
  FlightState& f = c.flight;

  if (!f.TouchAndGoInProgress) {
    if (!f.Modes.Taxiing) ShowMessage(c, "Taxiing...", 3);
    SetFlightMode(c, FlightMode::Taxiing);
  }

  const FlightStats& flight = f.Flight();
  if (flight.FlightCrashed || flight.FlightDuration > kShortHopSeconds) {
    // The flight's score, its report, the log row and the log book entry are
    // made here.
  }

  // The nearest airport's location remark is checked here (CheckLocation).
  if (f.CurrentFlight + 1 >= kFlightTableSize)
    throw FailureReport(kErrOutOfRange, "Subscript out of range", "EndFlight");
  f.CurrentFlight += 1;
  StartFlight(c);
}

void StartFlight(Cockpit& c) {
  c.flight.HasTouchedDown = false;
  Voice v = c.voice();
  PlayAlways(v, "StartingANewFlight.wav");

  ScoreState& s = c.scores;
  s.LandingSummary.clear();
  s.LandingGoodList.clear();
  s.LandingBadList.clear();
  s.CircuitText.clear();
  s.FlightSummary.clear();
  s.FlightGoodList.clear();
  s.FlightBadList.clear();
  s.FailureEventsText.clear();
  s.FailureEvents = false;

  // The flight plan is cleared, and with it the current waypoint.
  c.plan = FlightPlan{};
}

}  // namespace vantoro
