// vantoro-cli record OUT.vrec[.gz] [--ticks N]
// Records the simulator's offsets twice a second into a recording. The live
// simulator links belong to their platforms (the Windows client); this build
// has none, so the command finds no simulator to record from.
#include <charconv>

#include "cli/commands.h"
#include "link/simlink.h"

namespace vantoro {

int RecordCommand(const CommandArgs& args, CliContext& cli) {
  std::string out;
  int64_t ticks = 0;
  for (size_t i = 0; i < args.size(); ++i) {
    const std::string& a = args[i];
    if (a == "--ticks") {
      const std::string text = i + 1 < args.size() ? args[++i] : std::string();
      auto [p, ec] = std::from_chars(text.data(), text.data() + text.size(), ticks);
      if (text.empty() || ec != std::errc() || p != text.data() + text.size() || ticks < 1) {
        cli.err << "vantoro-cli record: --ticks needs a whole number above 0\n";
        return kExitBadInput;
      }
    } else if (a.size() > 1 && a[0] == '-') {
      cli.err << "vantoro-cli record: unknown option '" << a << "'\n";
      return kExitBadInput;
    } else if (out.empty()) {
      out = a;
    } else {
      cli.err << "vantoro-cli record: one output file only\n";
      return kExitBadInput;
    }
  }
  if (out.empty()) {
    cli.err << "vantoro-cli record: usage: vantoro-cli record OUT.vrec[.gz] [--ticks N]\n";
    return kExitBadInput;
  }
  // No live link in this build: nothing is opened and nothing written.
  cli.err << "vantoro-cli record: " << LinkResultText(kLinkNoServer) << '\n';
  return kExitBadInput;
}

}  // namespace vantoro
