// The approach monitors on final: one full polling tick of a light single in
// Landing at 800 feet with a destination runway known, so that every
// approach rule, the call-outs and the gathering of the ratings run; and the
// approach rules alone on the same records.
#include <benchmark/benchmark.h>

#include "bench/bench_instructor.h"
#include "engine/approach.h"

namespace vantoro {
namespace {

struct OnFinal : BenchInstructor {
  OnFinal() : BenchInstructor("vantoro-bench-approach") {
    image.SetU16(0x023E, 100);
    image.SetU8(0x023B, 12);
    image.SetU16(0x0C1A, 256);
    image.SetString(0x3D00, "Cessna Skyhawk");
    image.SetString(0x3C00, "SimObjects\\Airplanes\\C172\\Cessna172SP.air");
    image.SetU8(0x0BE8, 1);
    image.SetU8(0x0894, 1);
    image.SetU8(0x0366, 0);
    image.SetU16(0x31E6, 244);  // 800 feet
    image.SetI16(0x0574, 400);
    image.SetU16(0x02B6, 36);
    instructor.Connect();
    for (int i = 0; i < 20; ++i) instructor.Tick();  // begun in the air below 1000 feet: Landing
    Runway r;
    r.ICAO = "ZZAA";
    r.Number = "09";
    r.Latitude = instructor.link.Now().Latitude;
    r.Longitude = instructor.link.Now().Longitude + 0.05;
    r.Heading = 90;
    r.Length = 8000;
    r.Width = 150;
    SetDestinationRunway(instructor.flight.approach, instructor.approach, r, 0);
  }
};

void BM_TickOnFinal(benchmark::State& state) {
  OnFinal bench;
  for (auto _ : state) {
    bench.instructor.Tick();
    benchmark::DoNotOptimize(bench.instructor.flight.TickCount);
  }
}
BENCHMARK(BM_TickOnFinal)->Repetitions(5)->ReportAggregatesOnly(true);

void BM_ApproachMonitors(benchmark::State& state) {
  OnFinal bench;
  Cockpit c = bench.instructor.cockpit();
  for (auto _ : state) {
    ApproachMonitors(c);
    benchmark::DoNotOptimize(bench.instructor.approach.VisualGlideslopeSum);
  }
}
BENCHMARK(BM_ApproachMonitors)->Repetitions(5)->ReportAggregatesOnly(true);

}  // namespace
}  // namespace vantoro
