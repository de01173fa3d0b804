// One full polling tick of a connected instructor in level cruise: the four
// reads, the decode and every rule of the tick.
#include <benchmark/benchmark.h>

#include "bench/bench_instructor.h"

namespace vantoro {
namespace {

void BM_TickInCruise(benchmark::State& state) {
  BenchInstructor bench("vantoro-bench-tick");
  OffsetImage& image = bench.image;
  Instructor& instructor = bench.instructor;

  // A light single level at 3000 feet, 110 knots, in Cruise.
  image.SetU16(0x023E, 100);
  image.SetU8(0x023B, 12);
  image.SetU16(0x0C1A, 256);
  image.SetString(0x3D00, "Cessna Skyhawk");
  image.SetString(0x3C00, "SimObjects\\Airplanes\\C172\\Cessna172SP.air");
  image.SetU8(0x0BE8, 1);
  image.SetU8(0x0894, 1);
  image.SetU8(0x0366, 0);
  image.SetU16(0x31E6, 914);
  image.SetI16(0x0574, 1000);
  image.SetU16(0x02B6, 57);
  instructor.Connect();
  for (int i = 0; i < 20; ++i) instructor.Tick();  // begun in the air above 1000 feet: Cruise

  for (auto _ : state) {
    instructor.Tick();
    benchmark::DoNotOptimize(instructor.flight.TickCount);
  }
}
BENCHMARK(BM_TickInCruise)->Repetitions(5)->ReportAggregatesOnly(true);

}  // namespace
}  // namespace vantoro
