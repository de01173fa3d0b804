// vantoro-cli generate SCRIPT OUT.vrec[.gz]
// Makes a recording from a flight script (see flightgen.cpp). A script error
// is told as "FILE:LINE: what is wrong", status 2, and nothing is written.
#include "base/files.h"
#include "base/gzip.h"
#include "cli/commands.h"
#include "cli/flightgen.h"
#include "link/recording.h"

namespace vantoro {

int GenerateCommand(const CommandArgs& args, CliContext& cli) {
  if (args.size() != 2 || (!args[0].empty() && args[0][0] == '-')) {
    cli.err << "vantoro-cli generate: usage: vantoro-cli generate SCRIPT OUT.vrec[.gz]\n";
    return kExitBadInput;
  }
  const std::string& script = args[0];
  const std::string& out = args[1];
  if (!FileExists(script)) {
    cli.err << script << ": no such flight script\n";
    return kExitBadInput;
  }
  std::string recording, error;
  if (!GenerateFlight(script, ReadFile(script), recording, error)) {
    cli.err << error << '\n';
    return kExitBadInput;
  }
  const bool compressed = out.size() > 3 && out.compare(out.size() - 3, 3, ".gz") == 0;
  if (!WriteFileAtomic(out, compressed ? GzipText(recording) : recording)) {
    cli.err << out << ": cannot be written\n";
    return kExitBadInput;
  }
  return kExitOk;
}

}  // namespace vantoro
