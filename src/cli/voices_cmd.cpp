#include "cli/voices_cmd.h"

#include <CLI/CLI.hpp>
#include <chrono>
#include <cstdio>
#include <string>

#include "voice/voice_pack.h"

namespace vantoro {

namespace {

// Without --root: the data folder of the working directory.
constexpr const char* kDefaultRoot = "data";
constexpr int kMostJobs = 64;

}  // namespace

int VoicesCommand(const CommandArgs& args, CliContext& cli) {
  VoicePackOptions options;
  options.Root = kDefaultRoot;
  CLI::App app("Renders the instructors' voice packs from the captions.", "vantoro-cli voices");
  app.require_subcommand(1);
  CLI::App* build = app.add_subcommand(
      "build", "renders every caption not yet up to date into ROOT/Sound, for each instructor");
  build->add_option("--root", options.Root, "the data folder")->capture_default_str();
  build->add_option("--jobs", options.Jobs, "phrases rendered at once")
      ->check(CLI::Range(1, kMostJobs))
      ->capture_default_str();
  int parsed = kExitOk;
  if (!ParseCommandLine(app, args, cli, parsed)) return parsed;

  const auto start = std::chrono::steady_clock::now();
  const VoicePackReport report = BuildVoicePacks(options);
  const double seconds =
      std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();

  for (const std::string& problem : report.Problems) cli.err << problem << "\n";
  char line[256];
  std::snprintf(
      line, sizeof line,
      "voices: %d files in %zu packs below %s/Sound: %d made, %d up to date, %.1f MB, %.1f s\n",
      report.Files, options.Instructors.size(), options.Root.c_str(), report.Rendered,
      report.UpToDate, static_cast<double>(report.Bytes) / 1e6, seconds);
  cli.out << line;
  return report.Ok() ? 0 : 1;
}

}  // namespace vantoro
