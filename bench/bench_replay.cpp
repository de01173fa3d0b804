// Replay of a one-hour flight (7200 ticks) through the whole instructor with
// every sound playing for no time, as vantoro-cli replay --instant runs it:
// reading the recording's text, then every tick and sound step.
#include <benchmark/benchmark.h>

#include <stdexcept>
#include <string>

#include "base/events.h"
#include "flightgen/flightgen.h"
#include "link/recording.h"
#include "shell/replay.h"

namespace vantoro {
namespace {

constexpr int64_t kOneHourTicks = 7200;

// A cross-country hour: start-up, climb to 3000 feet, a long cruise with
// turns, descent, landing and taxi-in; padded to exactly one hour.
const char* const kFlight =
    "clock 2026-06-14T08:00:00\n"
    "field elevation 270\n"
    "position 51.8300 -1.3220\n"
    "heading 10.7\n"
    "wind 270 12\n"
    "engine start\n"
    "taxi speed 10 for 60\n"
    "stop\n"
    "takeoff speed 55\n"
    "rotate\n"
    "climb to 3000 vs 700 speed 80\n"
    "turn to 100 right speed 105 throttle 70\n"
    "level for 1000\n"
    "turn to 190 right\n"
    "level for 900\n"
    "turn to 280 right\n"
    "level for 600\n"
    "descend to 1000 vs 500 speed 90\n"
    "level for 60\n"
    "approach to 20 vs 450 speed 65 flaps 30\n"
    "flare\n"
    "touchdown\n"
    "rollout speed 10\n"
    "taxi speed 8 for 60\n"
    "stop\n"
    "engine stop\n";

std::string OneHourRecording() {
  std::string text, error;
  if (!GenerateFlight("hour.flight", kFlight, text, error)) throw std::runtime_error(error);
  Recording r;
  if (!ParseRecording("hour", text, r, error)) throw std::runtime_error(error);
  const int64_t missing = kOneHourTicks - r.TotalTicks();
  if (missing < 0) throw std::runtime_error("the benchmark flight is longer than an hour");
  std::string padded = std::string(kFlight) + "wait for " + std::to_string(missing / 2) +
                       (missing % 2 ? ".5\n" : "\n");
  if (!GenerateFlight("hour.flight", padded, text, error)) throw std::runtime_error(error);
  return text;
}

void BM_ReplayOneHour(benchmark::State& state) {
  const std::string text = OneHourRecording();
  const std::string root = std::string(VANTORO_SOURCE_DIR) + "/data";
  int64_t ticks = 0;
  for (auto _ : state) {
    Recording recording;
    std::string error;
    if (!ParseRecording("hour", text, recording, error)) {
      state.SkipWithError(error.c_str());
      return;
    }
    NoEvents events;
    Replay replay(ReplaySetup{root, 1, true, {}, {}}, events);
    ticks = replay.Run(recording);
    benchmark::DoNotOptimize(ticks);
  }
  state.counters["ticks"] = static_cast<double>(ticks);
  state.counters["recording_kB"] = static_cast<double>(text.size()) / 1024.0;
}
BENCHMARK(BM_ReplayOneHour)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace vantoro
