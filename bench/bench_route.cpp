// Flight plans and the route: reading the 200-point plan of the tests, and
// the route rules of one tick (passing, approaching, the aid for the next
// point) over a 200-point plan, which look at every point each tick.
#include <benchmark/benchmark.h>

#include <filesystem>

#include "base/files.h"
#include "bench/bench_instructor.h"
#include "engine/navigation.h"
#include "engine/polling.h"
#include "world/flight_plan.h"

namespace vantoro {
namespace {

const std::string kTour = std::string(VANTORO_SOURCE_DIR) + "/tests/data/plans/tour-200-points.pln";

void BM_ReadPlanOf200Points(benchmark::State& state) {
  const std::string text = ReadFile(kTour);
  for (auto _ : state) {
    FlightPlan plan;
    ProcessFlightPlanText(text, plan);
    benchmark::DoNotOptimize(plan.Waypoints.data());
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * text.size()));
}
BENCHMARK(BM_ReadPlanOf200Points)->Repetitions(5)->ReportAggregatesOnly(true);

void BM_RouteRulesOneTick(benchmark::State& state) {
  BenchInstructor bench("vantoro-bench-route");
  Instructor& instructor = bench.instructor;
  ProcessFlightPlan(kTour, instructor.plan);
  // In the air at 3000 feet over the tour's start, between its points.
  instructor.link.Now().Latitude = 52.1;
  instructor.link.Now().Longitude = -1.0;
  instructor.link.Now().AGL = 3000;
  Cockpit c = instructor.cockpit();
  for (auto _ : state) {
    WayPointCheck(c);
    NextWayPointCheck(c);
    SuggestNavAid(c);
    benchmark::DoNotOptimize(instructor.plan.NextWaypoint);
  }
}
BENCHMARK(BM_RouteRulesOneTick)->Repetitions(5)->ReportAggregatesOnly(true);

}  // namespace
}  // namespace vantoro
