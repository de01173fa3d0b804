// vantoro-cli voices and hear on Windows: the voice packs are rendered on
// Linux (with libflite) and delivered beside the program; the recogniser's
// test command needs PocketSphinx, which the Windows build does not carry.
#include <ostream>

#include "cli/commands.h"
#include "cli/voices_cmd.h"

namespace vantoro {

int VoicesCommand(const CommandArgs&, CliContext& cli) {
  cli.err << "vantoro-cli voices: the voice packs are delivered with the program in "
             "data\\Sound; they are rendered by the Linux build\n";
  return kExitBadInput;
}

int HearCommand(const CommandArgs&, CliContext& cli) {
  cli.err << "vantoro-cli hear: the recogniser's test command is part of the Linux build\n";
  return kExitBadInput;
}

}  // namespace vantoro
