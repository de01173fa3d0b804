// The scores and texts of the landing, the flight and the circuit, and the
// log display that collects them over a connection.
#pragma once

#include <string>

namespace vantoro {

struct ScoreState {
  double LandingScore = 0;
  double FlightScore = 0;
  double CircuitScore = 0;

  std::string LandingSummary;
  std::string LandingGoodList;
  std::string LandingBadList;
  std::string CircuitText;
  std::string FlightSummary;
  std::string FlightGoodList;
  std::string FlightBadList;

  // The failure events of the flight, as the report lists them.
  std::string FailureEventsText;
  bool FailureEvents = false;

  // The log display of the main window: plain, and with its markup for the
  // pilot's HTML log book.
  std::string LogBookText;
  std::string LogBookMarkup;

  // The pilot's record; the flight log (".dat") and the log book (".htm")
  // lie beside it under its name. Empty: no pilot file, nothing is written.
  std::string PilotFile;
  // The program's folder, where the score marker files are left (ending in
  // "\"); empty: none are left.
  std::string MarkerFolder;
  // The score links of the log book page, from the last scored flight.
  std::string ScoreLinks;
};

}  // namespace vantoro
