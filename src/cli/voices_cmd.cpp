#include "cli/voices_cmd.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "voice/voice_pack.h"

namespace vantoro {

namespace {

constexpr int kUsage = 2;

int Usage() {
  std::fprintf(stderr, "usage: vantoro-cli voices build [--root DIR] [--jobs N]\n");
  return kUsage;
}

// Without --root: the data folder of the working directory.
constexpr const char* kDefaultRoot = "data";

}  // namespace

int VoicesCommand(int argc, char** argv) {
  if (argc < 2 || std::string(argv[1]) != "build") return Usage();
  VoicePackOptions options;
  options.Root = kDefaultRoot;
  for (int i = 2; i < argc; ++i) {
    const std::string arg = argv[i];
    if (arg == "--root" && i + 1 < argc) {
      options.Root = argv[++i];
    } else if (arg == "--jobs" && i + 1 < argc) {
      options.Jobs = std::atoi(argv[++i]);
      if (options.Jobs < 1) return Usage();
    } else {
      return Usage();
    }
  }

  const auto start = std::chrono::steady_clock::now();
  const VoicePackReport report = BuildVoicePacks(options);
  const double seconds =
      std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();

  for (const std::string& problem : report.Problems) std::fprintf(stderr, "%s\n", problem.c_str());
  std::printf(
      "voices: %d files in %zu packs below %s/Sound: %d made, %d up to date, %.1f MB, %.1f s\n",
      report.Files, options.Instructors.size(), options.Root.c_str(), report.Rendered,
      report.UpToDate, static_cast<double>(report.Bytes) / 1e6, seconds);
  return report.Ok() ? 0 : 1;
}

}  // namespace vantoro
