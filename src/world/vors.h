// The radio stations of the world: one line per station in "VNTRvors.txt",
// fields separated by "|":
//   0 identifier, 1 name, 2 latitude, 3 longitude (decimal degrees),
//   4 elevation (whole feet), 5 frequency (MHz for a VOR, kHz for an NDB),
//   6 flag, optional.
#pragma once

#include <string>
#include <string_view>

#include "world/runways.h"

namespace vantoro {

// Fills VORStations from the file, in file order; empty lines and lines with
// fewer than six fields are skipped. Result: the report of a damaged file
// (what was read is kept), or empty. A missing file leaves no stations.
std::string ReadVorData(WorldState& world, std::string_view file);

// The first station, in file order, strictly inside the box of plus and minus
// tolerance degrees round the point, or nullptr. Deliberately not the nearest
// one: callers pass a tolerance so small that only the station at a waypoint
// can match.
const VORStation* FindVOR(const WorldState& world, double latitude, double longitude,
                          double tolerance);

// What the load window does at connection when no runways are loaded yet:
// LoadRunways, then ReadVorData of root + "\VNTRvors.txt" (or the delivered
// one). Result: the messages of both for the pilot, one per line; empty when
// all went well.
std::string LoadRunwaysAndVORs(WorldState& world, std::string_view root, std::string_view simFolder,
                               std::string_view simName, const RunwayLoadObserver& observer = {});

}  // namespace vantoro
