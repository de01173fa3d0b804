// The runway database: the world's runway ends, one per line of a generated
// text file, loaded once into a geographic index of one-degree cells. The
// queries (runway_queries.h) search only a small working set of cells round
// the aircraft; the detailed look-up of one airport reads the file again.
//
// File format: plain text, one runway end per line, lines ended by "\r\n",
// fields separated by "|", no header; a line counts only with 21 fields:
//   0 designator ("7", "07L")       11 surface (a spoken surface name)
//   1 true heading, whole degrees   12 ATIS frequency ("118.30")
//   2 latitude  ("N42_21_77")       13 ILS heading, whole degrees
//   3 longitude ("W071_00_21")      14 other end latitude, decimal
//   4 glide slope ("3" or "3_20")   15 other end longitude, decimal
//   5 "ICAO.designator"             16 city
//   6 elevation, feet               17 airport name
//   7 length, feet                  18 threshold offset, feet (0..32000)
//   8 width, feet                   19 latitude, decimal
//   9 ILS frequency ("110.30")      20 longitude, decimal
//  10 ILS identifier
// Every file may also lie gzip-compressed beside its name ("FSX.RWY.gz").
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "world/runway.h"

namespace vantoro {

// The file the user generated from his own scenery, in the simulator's folder.
inline constexpr std::string_view kUserRunwayFile = "VNTR2011.TXT";
// The delivered world: root + "\" + simulator name + this extension.
inline constexpr std::string_view kRunwayFileExtension = ".RWY";
// The VOR file in the root folder.
inline constexpr std::string_view kVorFile = "VNTRvors.txt";
// The folder below the root where the delivered world files lie compressed.
inline constexpr std::string_view kWorldFolder = "World";
// The delivered world's runway file in that folder: every simulator's
// delivered runway file ("FSX.RWY") resolves to it when the root holds none
// of that name.
inline constexpr std::string_view kWorldRunwayFile = "World.RWY";

inline constexpr int kRunwayFields = 21;
inline constexpr int kMaxHeading = 360;
inline constexpr int kMaxThresholdOffset = 32000;
inline constexpr int kProgressEveryLines = 1024;
inline constexpr int kProgressBarTwips = 3000;  // full width of the bar at 100 percent

// Where a runway end lies, in the form the distance formula wants it; worked
// out once at load so that a query needs no trigonometry for most runways.
struct RunwayPlace {
  double SinLatitude = 0, CosLatitude = 1;
  double SinLongitude = 0, CosLongitude = 1;
};
RunwayPlace PlaceOf(double latitude, double longitude);

// Serial numbers of the runway ends of one one-degree cell, in file order.
using RunwayCell = std::vector<int32_t>;
// Cells by rounded longitude (-180..179), within one rounded latitude.
using RunwayCellRow = std::unordered_map<int, RunwayCell>;
// Rows by rounded latitude (-90..90).
using RunwayCellMap = std::unordered_map<int, RunwayCellRow>;

// The world as the instructor knows it. Loaded once per connection when
// empty, then kept until the program ends. The working sets point into
// Runways, so the state is moved, never copied.
struct WorldState {
  std::vector<Runway> Runways;                // every runway end of the file, by serial number
  std::vector<RunwayPlace> Places;            // the same, by serial number
  RunwayCellMap RunwayCells;                  // the geographic index into Runways
  std::vector<const Runway*> CloseRunways;    // the working set round the aircraft
  std::vector<RunwayPlace> ClosePlaces;       // kept beside CloseRunways by FillCloseRunways
  std::vector<const Runway*> AirportRunways;  // the runways of one chosen airport
  std::vector<RunwayRecord> SelectedAirport;  // the detailed look-up of one airport
  std::vector<VORStation> VORStations;        // in file order
  std::string RunwayFile;                     // the file the runways came from
  std::string LoadStatus;                     // the last status text of the load

  WorldState() = default;
  WorldState(const WorldState&) = delete;
  WorldState& operator=(const WorldState&) = delete;
  WorldState(WorldState&&) = default;
  WorldState& operator=(WorldState&&) = default;

  bool RunwaysLoaded() const { return !Runways.empty(); }
  // The cell of a rounded latitude and longitude, or nullptr.
  const RunwayCell* FindCell(int latitude, int longitude) const;
};

// The outcome of the file choice: the path to load, or an empty path and the
// message for the pilot.
struct RunwayFileChoice {
  std::string Path;
  std::string Message;
};

// Candidate 1 is the simulator's folder + "VNTR2011.TXT" (skipped without a
// folder), candidate 2 root + "\" + simulator name + ".RWY"; the first that
// exists is taken. A candidate also exists as its ".gz" beside it, and the
// delivered world counts for candidate 2 from the "World" folder of the root.
RunwayFileChoice GetRunwayFile(std::string_view root, std::string_view simFolder,
                               std::string_view simName);

// The file that stands for `path`: the path itself, its ".gz", or (with a
// root) the same name, plain or ".gz", in the root's "World" folder. Empty
// when none exists.
std::string ResolveWorldFile(std::string_view path, std::string_view root = {});

// Whole text of a world file, plain or gzip-compressed (recognised by its
// content). A damaged or truncated compressed file keeps what could be read,
// cut back to its last whole line, and sets Error to a text that names it.
struct WorldText {
  std::string Text;
  std::string Error;
};
WorldText ReadWorldFile(std::string_view path);

// What the load window shows while the runways are read.
struct RunwayLoadProgress {
  std::string_view Status;  // the status label
  int32_t Line = 0;         // line being worked on
  int32_t Lines = 0;        // lines in the file
  double Fraction() const { return Lines > 0 ? static_cast<double>(Line) / Lines : 0; }
};
using RunwayLoadObserver = std::function<void(const RunwayLoadProgress&)>;

// Caption of the progress bar: the whole percent and "%".
std::string ProgressCaption(double fraction);
// Width of the progress bar in twips.
int ProgressBarWidth(double fraction);

// Finds the file, reads it and fills RunwayCells anew; empties CloseRunways
// and AirportRunways. The observer hears each named step and every 1024th
// line. The result is the message for the pilot: the missing-file message, or
// the report of a failure during the load (the runways read so far are kept),
// or empty.
std::string LoadRunways(WorldState& world, std::string_view root, std::string_view simFolder,
                        std::string_view simName, const RunwayLoadObserver& observer = {});
// Steps after the file choice: the same over a known file.
std::string LoadRunwayFile(WorldState& world, std::string_view file,
                           const RunwayLoadObserver& observer = {});

// "7L" gives "07L": a "0" before a text holding exactly one digit.
std::string PadRunwayNumber(std::string_view text);

// A co-ordinate or glide slope in the file's own form. kind "DECIMAL":
// "3_20" is 3.2; "LATITUDE": "N42_21_77" is 42 degrees 21.77 minutes north;
// "LONGITUDE": "W071_00_21", negative for west. Any other text gives 0.
double ParseFileCoOrd(std::string_view text, std::string_view kind);

// A decimal field of the data files: "." is the decimal point whatever the
// regional setting of the machine. The leading number of the text is taken
// ("12ft" is 12); no number at all gives 0.
double ReadDecimal(std::string_view text);

// The detail view: fills SelectedAirport with the runways of one airport by
// scanning the file anew. Result as LoadRunways.
std::string LoadAirportRunways(WorldState& world, std::string_view file, std::string_view airport);
// Index in SelectedAirport of the padded designator, or -1.
int FindRunwayIndex(const WorldState& world, std::string_view text);

// The button for generating runway data from the simulator's scenery: checks
// the folder and the four files of the generating batch in the root folder,
// and starts the batch without waiting (on Windows only: elsewhere the batch
// cannot run and the result is the could-not-be-generated message). Result:
// the message for the pilot, empty when the batch was started.
std::string GenerateRunwayData(std::string_view folder, std::string_view root, bool p3dMode);

}  // namespace vantoro
