// The subcommands of vantoro-cli. Each lives in its own file and is one line
// of the dispatcher's table (main.cpp); each reads its arguments, writes to
// the two streams it is given and returns the program's exit status.
#pragma once

#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

namespace vantoro {

inline constexpr int kExitOk = 0;
inline constexpr int kExitBadInput = 2;  // bad usage or bad input; nothing written
inline constexpr int kExitFailure = 70;  // the standard failure report

struct CliContext {
  std::string program;  // path of the running program, as started
  std::ostream& out;
  std::ostream& err;
};

using CommandArgs = std::vector<std::string>;

}  // namespace vantoro

namespace CLI {
class App;
}

namespace vantoro {

// Reads a command's options with the command's CLI11 description. --help
// prints the command's usage to the output and gives status 0; a bad option
// prints "vantoro-cli NAME: what is wrong" and where to find the usage, and
// gives status 2. Returns true when the command is to go on.
bool ParseCommandLine(CLI::App& app, const CommandArgs& args, CliContext& cli, int& status);

// The data folder beside the program (shell/program_folder.h); empty when
// there is none.
std::string DefaultRoot(const CliContext& cli);

int ReplayCommand(const CommandArgs& args, CliContext& cli);
int GenerateCommand(const CommandArgs& args, CliContext& cli);
int RecordCommand(const CommandArgs& args, CliContext& cli);
int HearCommand(const CommandArgs& args, CliContext& cli);

class Recogniser;
// Feeds the samples (16 kHz mono) to the recogniser in microphone-sized
// pieces and returns the phrases it heard, in order.
std::vector<std::string> HearSamples(Recogniser& recogniser, const std::vector<int16_t>& samples);

}  // namespace vantoro
