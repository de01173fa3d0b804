// vantoro-cli voices on Windows: the voice packs are rendered on Linux (with
// libflite) and delivered beside the program.
#include <iostream>

#include "cli/commands.h"
#include "cli/voices_cmd.h"

namespace vantoro {

int VoicesCommand(int, char**) {
  std::cerr << "vantoro-cli voices: the voice packs are delivered with the program in "
               "data\\Sound; they are rendered by the Linux build\n";
  return kExitBadInput;
}

}  // namespace vantoro
