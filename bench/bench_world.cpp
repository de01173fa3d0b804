// The world's runways: loading the delivered world file, and the questions
// the polling tick asks of it (working set plus nearest runway).
#include <benchmark/benchmark.h>

#include <fstream>
#include <memory>
#include <string>

#include "world/runway_queries.h"
#include "world/runways.h"

namespace vantoro {
namespace {

const std::string kWorld = std::string(VANTORO_SOURCE_DIR) + "/data/World/World.RWY.gz";

// A line of /proc/self/status in megabytes ("VmRSS", "VmHWM").
double StatusMegabytes(const std::string& key) {
  std::ifstream in("/proc/self/status");
  std::string name;
  double kb = 0;
  while (in >> name) {
    if (name == key + ":") {
      in >> kb;
      return kb / 1024;
    }
    std::getline(in, name);
  }
  return 0;
}

void BM_LoadWorld(benchmark::State& state) {
  const double before = StatusMegabytes("VmRSS");
  double loaded = 0;
  int32_t runways = 0;
  for (auto _ : state) {
    auto world = std::make_unique<WorldState>();
    LoadRunwayFile(*world, kWorld);
    runways = static_cast<int32_t>(world->Runways.size());
    state.PauseTiming();
    loaded = StatusMegabytes("VmRSS");
    world.reset();
    state.ResumeTiming();
  }
  state.counters["runway_ends"] = runways;
  state.counters["rss_loaded_MB"] = loaded;
  state.counters["rss_world_MB"] = loaded - before;
  state.counters["peak_MB"] = StatusMegabytes("VmHWM");
}
BENCHMARK(BM_LoadWorld)->Unit(benchmark::kMillisecond)->Iterations(5);

// One tick's question: gather the nine cells, then the nearest runway.
void Query(benchmark::State& state, double latitude, double longitude, double heading) {
  WorldState world;
  LoadRunwayFile(world, kWorld);
  size_t close = 0;
  for (auto _ : state) {
    FillCloseRunways(world, latitude, longitude);
    benchmark::DoNotOptimize(
        FindClosestRunway(world, latitude, longitude, heading, kNoLimit, heading != kNoLimit));
    close = world.CloseRunways.size();
  }
  state.counters["close_runways"] = static_cast<double>(close);
}

void BM_NearestAtKJFK(benchmark::State& state) {
  Query(state, 40.6413, -73.7781, kNoLimit);
}
BENCHMARK(BM_NearestAtKJFK)->Unit(benchmark::kMicrosecond);

void BM_NearestAtKJFKWithHeading(benchmark::State& state) {
  Query(state, 40.55, -73.90, 40);
}
BENCHMARK(BM_NearestAtKJFKWithHeading)->Unit(benchmark::kMicrosecond);

void BM_NearestAtSea(benchmark::State& state) {
  Query(state, 35.0, -40.0, kNoLimit);
}
BENCHMARK(BM_NearestAtSea)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace vantoro
