// vantoro-cli voices build [--root DIR] [--jobs N]: renders the instructors'
// voice packs from the captions into DIR/Sound.
#pragma once

#include "cli/commands.h"

namespace vantoro {

// "build" and its options; without --root the packs go below ./data.
// Exit status 0 done, 2 bad usage, 1 packs incomplete.
int VoicesCommand(const CommandArgs& args, CliContext& cli);

}  // namespace vantoro
