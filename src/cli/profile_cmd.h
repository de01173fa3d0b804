// vantoro-cli profile FILE [--title T] [--monitor]: the figures the
// instructor will hold a pilot to for an aircraft profile.
#pragma once

#include "cli/commands.h"

namespace vantoro {

// Prints one "name=value" line per raw profile field and working value;
// 0 done, 2 bad usage or a file that cannot be read.
int ProfileCommand(const CommandArgs& args, CliContext& cli);

}  // namespace vantoro
