// vantoro-cli: the instructor without its windows. The first argument names
// the subcommand; each subcommand is one line of the table below.
#include <iostream>
#include <string_view>

#include "cli/commands.h"
#include "cli/profile_cmd.h"
#include "cli/runways_cmd.h"
#include "cli/voices_cmd.h"

namespace {

struct Command {
  std::string_view name;
  std::string_view usage;
  int (*run)(const vantoro::CommandArgs&, vantoro::CliContext&);
};

constexpr Command kCommands[] = {
    {"replay",
     "RECORDING [--root DIR] [--pilot FILE] [--out DIR] [--events FILE|-] [--seed N] "
     "[--instant]",
     vantoro::ReplayCommand},
    {"generate", "SCRIPT OUT.vrec[.gz]", vantoro::GenerateCommand},
    {"record", "OUT.vrec[.gz] [--ticks N] [--root DIR]", vantoro::RecordCommand},
    {"voices", "build [--root DIR] [--jobs N]", vantoro::VoicesCommand},
    {"runways", "nearest|airport|import ...", vantoro::RunwaysCommand},
    {"profile", "FILE [--title T] [--monitor]", vantoro::ProfileCommand},
    {"hear", "FILE.wav [--root DIR]", vantoro::HearCommand},
};

void Usage(std::ostream& out) {
  out << "usage:\n";
  for (const Command& c : kCommands) out << "  vantoro-cli " << c.name << ' ' << c.usage << '\n';
}

}  // namespace

int main(int argc, char** argv) {
  vantoro::CliContext cli{argc > 0 ? argv[0] : "vantoro-cli", std::cout, std::cerr};
  if (argc < 2) {
    Usage(std::cerr);
    return vantoro::kExitBadInput;
  }
  const std::string_view name = argv[1];
  if (name == "--help" || name == "-h" || name == "help") {
    Usage(std::cout);
    return vantoro::kExitOk;
  }
  const vantoro::CommandArgs args(argv + 2, argv + argc);
  for (const Command& c : kCommands) {
    if (c.name != name) continue;
    return c.run(args, cli);
  }
  std::cerr << "vantoro-cli: unknown command '" << name << "'\n";
  Usage(std::cerr);
  return vantoro::kExitBadInput;
}
