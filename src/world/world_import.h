// The world's airports from open data: the X-Plane/FlightGear airport file
// (apt.dat) and navaid file (nav.dat), plain or gzip-compressed, turned into
// the instructor's own runway file and VOR file. Run by hand through
// `vantoro-cli runways import`; its result is delivered with the program.
#pragma once

#include <array>
#include <string>
#include <string_view>
#include <vector>

namespace vantoro {

struct WorldImport {
  std::string RunwayText;  // the runway file, "\r\n" line ends
  std::string VorText;     // the VOR file, "\r\n" line ends
  // A file that cannot be read or is damaged: "FILE: what is wrong". Nothing
  // is to be written when there is any.
  std::vector<std::string> Errors;
  // Rows that could not be read and were skipped: "FILE:LINE: what is wrong".
  std::vector<std::string> Warnings;
  int Airports = 0;  // airports with at least one runway end
  int RunwayEnds = 0;
  int ILSEnds = 0;  // runway ends with a localiser frequency
  int VORs = 0;
  int NDBs = 0;
};

// Reads both files whole and builds the two texts. Airports are written in
// order of their code, each airport's runway ends in the order of the airport
// file; VORs come before NDBs, each in order of identifier, so that the first
// station at a waypoint is its VOR. Closed airports and helipads are left out.
WorldImport ImportWorld(std::string_view aptDat, std::string_view navDat);

// The spoken surface name of an airport-file surface code, or "" for a code
// that says nothing of the surface (transparent, unknown).
std::string SurfaceName(int code);

// One runway end in the runway file's hemisphere form: "N42_21_77",
// "W071_00_21" (degrees, whole minutes, hundredths of minutes).
std::string FileLatitude(double latitude);
std::string FileLongitude(double longitude);
// A glide slope in the file's form: "3", or "3_20" for 3.2 degrees.
std::string FileGlideSlope(double degrees);

}  // namespace vantoro
