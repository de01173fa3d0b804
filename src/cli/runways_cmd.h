// `vantoro-cli runways ...`: the world's runways for pilots, and the import of
// the world from the X-Plane/FlightGear airport and navaid files.
#pragma once

#include "cli/commands.h"

namespace vantoro {

// The action ("nearest", "airport" or "import") and its arguments.
// Exit status 0 done, 2 bad usage or bad input.
int RunwaysCommand(const CommandArgs& args, CliContext& cli);

}  // namespace vantoro
