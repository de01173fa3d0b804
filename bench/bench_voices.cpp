// Building the instructors' voice packs: every caption of the shipped
// captions file rendered for every instructor, from scratch. Budget: under
// 60 s on the reference machine (2 cores).
#include <benchmark/benchmark.h>
#include <stdlib.h>

#include <filesystem>

#include "voice/voice_pack.h"

namespace vantoro {
namespace {

namespace fs = std::filesystem;

void BM_BuildAllPacksFromScratch(benchmark::State& state) {
  for (auto _ : state) {
    state.PauseTiming();
    char pattern[] = "/tmp/vantoro-bench-voices-XXXXXX";
    const std::string root = mkdtemp(pattern);
    fs::create_directories(root + "/text");
    fs::copy_file(std::string(VANTORO_SOURCE_DIR) + "/data/text/english.txt",
                  root + "/text/english.txt");
    VoicePackOptions options;
    options.Root = root;
    options.Jobs = static_cast<int>(state.range(0));
    state.ResumeTiming();

    const VoicePackReport report = BuildVoicePacks(options);

    state.PauseTiming();
    state.counters["files"] = report.Files;
    state.counters["MB"] = static_cast<double>(report.Bytes) / 1e6;
    if (!report.Ok()) state.SkipWithError(report.Problems.front().c_str());
    fs::remove_all(root);
    state.ResumeTiming();
  }
}
BENCHMARK(BM_BuildAllPacksFromScratch)
    ->Arg(2)
    ->Iterations(1)
    ->Unit(benchmark::kSecond)
    ->UseRealTime();

// One caption of ordinary length in each voice.
void BM_RenderOneCaption(benchmark::State& state, const char* voice) {
  for (auto _ : state) {
    benchmark::DoNotOptimize(
        RenderSpeech(voice, "We're too fast for that flap setting. Slow down below 85 knots."));
  }
}
BENCHMARK_CAPTURE(BM_RenderOneCaption, slt, "slt")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_RenderOneCaption, kal16, "kal16")->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace vantoro
