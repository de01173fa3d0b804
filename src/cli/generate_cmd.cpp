// vantoro-cli generate SCRIPT OUT.vrec[.gz]
// Makes a recording from a flight script (see tools/flightgen/flightgen.cpp). A script error
// is told as "FILE:LINE: what is wrong", status 2, and nothing is written.
#include <CLI/CLI.hpp>

#include "base/files.h"
#include "base/gzip.h"
#include "cli/commands.h"
#include "flightgen/flightgen.h"
#include "link/recording.h"

namespace vantoro {

int GenerateCommand(const CommandArgs& args, CliContext& cli) {
  std::string script, out;
  CLI::App app("Makes a recording from a flight script.", "vantoro-cli generate");
  app.add_option("SCRIPT", script, "the flight script")->required();
  app.add_option("OUT", out, "the recording to write (.vrec, or .vrec.gz compressed)")->required();
  int parsed = kExitOk;
  if (!ParseCommandLine(app, args, cli, parsed)) return parsed;
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
