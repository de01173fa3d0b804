// vantoro-cli voices build [--root DIR] [--jobs N]: renders the instructors'
// voice packs from the captions into DIR/Sound.
#pragma once

namespace vantoro {

// argv[0] is "voices"; without --root the packs go below ./data.
// Exit status 0 done, 2 bad usage, 1 packs incomplete.
int VoicesCommand(int argc, char** argv);

}  // namespace vantoro
