// `vantoro-cli runways ...`: the world's runways for pilots, and the import of
// the world from the X-Plane/FlightGear airport and navaid files.
#pragma once

namespace vantoro {

// argv[0] is "runways"; argv[1] the action: "nearest", "airport" or "import".
// Exit status 0 done, 2 bad usage or bad input.
int RunwaysCommand(int argc, char** argv);

}  // namespace vantoro
