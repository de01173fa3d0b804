// The pilot's flight log: a tab-separated text file beside the pilot's file
// (".dat"), a header row of 109 column names, then one row per closed flight.
// The pilot-log and graph windows read it back by column position.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/files.h"
#include "base/seams.h"
#include "link/fsdata.h"
#include "records/flight_stats.h"

namespace vantoro {

inline constexpr int kLogColumns = 109;
inline constexpr int kLogAircraftColumn = 36;
inline constexpr size_t kLogReaderItems = 100000;
// The reader's filter that takes every aircraft.
inline constexpr std::string_view kAllAircraft = "- ALL -";
// What the main window says when the pilot has no flight log yet.
inline constexpr std::string_view kNoLoggedFlights = "This pilot has no logged flights";

// The 109 column names, in order.
const std::array<std::string_view, kLogColumns>& LogColumnNames();

// The pilot's file with its extension replaced (".dat", ".htm").
std::string GetPilotFile(std::string_view pilotFile, std::string_view extension);

// What a row takes from outside the flight's record.
struct LogRowInputs {
  double LandingScore = 0;
  double FlightScore = 0;
  double CircuitScore = 0;
  std::string SimulatorName;  // "FSX"
  std::string Departure;      // of the flight plan
  std::string Arrival;
  std::string Version = VANTORO_VERSION;
};

// Columns 1 to 108 of the row, tab-separated, without the date and the line end:
// the flight's record, the live state of the aircraft at the close (`live`),
// the three scores and the aircraft's and plan's texts.
std::string FlightLogRow(const FlightStats& flight, const FSData& live, const LogRowInputs& in);

// "ddmmyyHHMM".
std::string LogDate(const WallTime& t);

// Appends one row (given without the date, ended by its line break) to the
// log at `path`: the date goes in front; a file that is missing or holds only
// blanks starts with the header. Written whole to a temporary file and
// renamed, together with the files `alongside` (the flight's log book entry):
// all of them or none. Returns the line as written, without its line end. A
// log that cannot be read, or a file that cannot be written, ends the program
// with the failure report of "WriteLogFile" naming the file and the reason.
std::string WriteLogFile(std::string_view path, std::string_view row, const Clock& clock,
                         const std::vector<FileWrite>& alongside = {});

// Builds the flight's row and writes it to the log with the files
// `alongside`; returns the line written.
std::string DispFlightEvaluation(std::string_view path, const FlightStats& flight,
                                 const FSData& live, const LogRowInputs& in, const Clock& clock,
                                 const std::vector<FileWrite>& alongside = {});

// One row as the pilot-log and graph windows read it back.
struct LogEntry {
  std::array<std::string, kLogColumns> Columns;  // a torn row leaves the rest empty
  // The fixed-width fields of the reader: padded with blanks or cut.
  std::string Type;   // 10 characters
  std::string Ident;  // 7
  std::string Day;    // 5
  std::string Night;  // 5
  // The date column cut into day, month (by name) and two-digit year.
  std::string DateDay;
  std::string DateMonth;
  std::string DateYear;
};

struct FlightLog {
  std::array<std::string, kLogColumns> Header;
  std::vector<LogEntry> Rows;
};

// Reads the log as the windows do: item by item, an item ending at a line end
// or at a comma (so a title with a comma tears its row), at most 100000
// items, the first the header; rows whose aircraft title (column 36) is not
// the filter are left out, unless the filter is empty or "- ALL -". Nullopt
// when the file is missing.
std::optional<FlightLog> ReadFlightLog(std::string_view path, std::string_view aircraftFilter);

}  // namespace vantoro
