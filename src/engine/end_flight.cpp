#include "engine/end_flight.h"

#include "base/failure.h"
#include "engine/navigation.h"
#include "engine/tick_rules.h"
#include "records/crash_report.h"
#include "records/flight_evaluation.h"
#include "records/flight_log.h"
#include "records/log_book.h"

namespace vantoro {

namespace {

constexpr std::string_view kVersionCaption = "Vantoro v" VANTORO_VERSION;

// A report joins the log display (plain) and its marked-up copy on a line of
// its own.
void AppendReport(std::string& text, const std::string& report) {
  if (!text.empty()) text += kLineBreak;
  text += report;
}

// The flight's score, its report, the log row and the log book entry.
void ScoreAndRecordFlight(Cockpit& c) {
  FlightState& f = c.flight;
  FlightStats& flight = f.Flight();
  ScoreState& s = c.scores;
  const FSData& now = c.link.Now();

  flight.BlockTime = GetBlockTime(f.clocks, now);
  StartBlockTimer(f.clocks, now);
  c.link.AirborneSeconds = 0;
  if (flight.Aircraft.empty()) flight.Aircraft = c.aircraft.Title;

  const RouteResult route = WayPointFinalAnalysis(c.plan, c.link.HeavyAircraft);
  const FlightEvaluationInputs in{c.aircraft.HasFlaps(),     c.aircraft.Raw.RetractableGear,
                                  c.aircraft.Raw.FloatPlane, now.LoadedWeightWord,
                                  c.aircraft.StallLanding,   route.Bonus};
  const FlightEvaluation e = EvaluateFlight(flight, in);
  Voice v = c.voice();
  for (const std::string& sound : e.Sounds) PlayAlways(v, sound);
  // The route is told where its bonus joins the score: after the items.
  SayRouteResult(v, route);
  if (route.Monitored)
    c.events.Emit(f.TickCount, "route",
                  {{"crossed", route.Crossed},
                   {"in_sequence", route.InSequence},
                   {"points", FlightPlanCount(c.plan)},
                   {"bonus", route.Bonus}});

  s.FlightScore = e.Score;
  s.FlightGoodList = e.GoodList;
  s.FlightBadList = e.BadList;
  s.FlightSummary = e.Summary;
  flight.LandingScore = s.LandingScore;
  flight.FlightScore = s.FlightScore;
  flight.CircuitScore = s.CircuitScore;
  AppendReport(s.LogBookText, RemoveMarkup(s.FlightSummary));
  AppendReport(s.LogBookMarkup, s.FlightSummary);

  c.events.Emit(f.TickCount, "flight",
                {{"index", f.CurrentFlight},
                 {"score", s.FlightScore},
                 {"landing", s.LandingScore},
                 {"circuit", s.CircuitScore},
                 {"duration", flight.FlightDuration},
                 {"report", RemoveMarkup(s.FlightSummary)}});

  // The row and the log book entry are written together, both or neither.
  if (!s.PilotFile.empty()) {
    const FileWrite book =
        LogBookUpdate(GetPilotFile(s.PilotFile, ".htm"),
                      ApplyMarkup(s.LogBookMarkup, ReportMarkupValues(c)), "EndFlight");
    const LogRowInputs row{s.LandingScore,
                           s.FlightScore,
                           s.CircuitScore,
                           f.SimulatorName,
                           c.plan.FlightPlanDeparture,
                           c.plan.FlightPlanDestination};
    const std::string file = GetPilotFile(s.PilotFile, ".dat");
    const std::string line = DispFlightEvaluation(file, flight, now, row, c.clock, {book});
    c.events.Emit(f.TickCount, "log", {{"file", file}, {"row", line}});
  }

  const ScoreLinkInputs links{s.LandingScore,  s.FlightScore,  s.CircuitScore,
                              f.SimulatorName, now.Visibility, flight.Aircraft};
  s.ScoreLinks = GenerateScoreLinks(s.MarkerFolder, links);
}

}  // namespace

MarkupValues ReportMarkupValues(const Cockpit& c) {
  const FSData& touchdown = c.flight.LandingData[1];
  return MarkupValues{std::string(kVersionCaption), c.flight.SimulatorName, touchdown.Visibility,
                      touchdown.SurfaceWindSpeed, c.options.PilotImage};
}

void EndFlight(Cockpit& c) {
  FlightState& f = c.flight;

  if (!f.TouchAndGoInProgress) {
    if (!f.Modes.Taxiing) ShowMessage(c, "Taxiing...", 3);
    SetFlightMode(c, FlightMode::Taxiing);
  }

  const FlightStats& flight = f.Flight();
  if (flight.FlightCrashed || flight.FlightDuration > kShortHopSeconds) ScoreAndRecordFlight(c);

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
  // The log book's copy holds what the next flight adds; the display keeps
  // showing the last reports until new ones replace them.
  s.LogBookMarkup.clear();

  // The flight plan is cleared, and with it the current waypoint.
  cmdClearFlightPlan_Click(c.plan);
  c.flight.Flight().Aircraft = c.aircraft.Title;
}

void WriteCrashReport(Cockpit& c) {
  FlightState& f = c.flight;
  f.LandingData[0] = c.link.Now();
  f.LandingData[1] = c.link.Before();

  CrashScene scene;
  scene.PilotName = c.options.PilotName;
  scene.AircraftTitle = c.aircraft.Title;
  scene.When = c.clock.Now();
  scene.Before = f.LandingData[1];
  scene.RetractableGear = c.aircraft.Raw.RetractableGear;
  scene.GearSpeedLimit = c.aircraft.GearSpeedLimit;
  scene.Departure = c.plan.FlightPlanDeparture;
  scene.Destination = c.plan.FlightPlanDestination;
  const std::string report = CrashReport(scene);

  ScoreState& s = c.scores;
  AppendReport(s.LogBookText, RemoveMarkup(report));
  AppendReport(s.LogBookMarkup, report);
  EndFlight(c);
}

}  // namespace vantoro
