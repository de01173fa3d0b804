// The crash report: the findings of an accident board, read from the last
// record before the wreck, in the marked-up text of the other reports; and
// the score links of the log book page with their marker files.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "base/seams.h"
#include "link/fsdata.h"

namespace vantoro {

// The long date of the reports, day in two digits: "Sunday, June 07, 2026".
std::string LongDate(const WallTime& t);
// "[HEADER]Kate piloting Cessna 172 ended Sunday, November 22, 2026 at 14:05[/HEADER]"
// and a line break: the first line of every report.
std::string ReportHeading(std::string_view pilotName, std::string_view aircraftTitle,
                          const WallTime& t);

struct CrashScene {
  std::string PilotName;
  std::string AircraftTitle;
  WallTime When;
  FSData Before;  // the tick before the wreck: every finding is read from it
  bool RetractableGear = false;
  int32_t GearSpeedLimit = 0;  // knots
  std::string Departure;       // of the flight plan
  std::string Destination;
};

// The crash report with its markup.
std::string CrashReport(const CrashScene& scene);

// Marker files in the program's folder: a landing above 70 and a flight
// above 80 leave them, once.
inline constexpr std::string_view kLandingMarkerFile = "Vantoro.xml";
inline constexpr std::string_view kFlightMarkerFile = "Orlenhaus.xml";
inline constexpr double kLandingMarkerScore = 70;
inline constexpr double kFlightMarkerScore = 80;
// Where scores are submitted.
inline constexpr std::string_view kScoreSite = "https://scores.vantoro.example";
inline constexpr std::string_view kScorePage = "/SubmitFSScore.asp";

struct ScoreLinkInputs {
  double LandingScore = 0;
  double FlightScore = 0;
  double CircuitScore = 0;
  std::string SimulatorName;
  double Visibility = 0;  // statute miles
  std::string AircraftTitle;
};

// The submission link of one score.
std::string ScoreLink(double score, const ScoreLinkInputs& in);
// The text of the log book page with one link per score; creates the marker
// files under `root` (the program's folder, ending in "\"; empty: none)
// when a score first passes its mark.
std::string GenerateScoreLinks(std::string_view root, const ScoreLinkInputs& in);

}  // namespace vantoro
