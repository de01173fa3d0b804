// A Boeing 737 through the phases of a flight: one full polling tick in each,
// with the 737's monitoring box checked so that every family of its
// procedures (systems, pumps and fuel balance, anti-ice, auto brakes,
// take-off limits and roll, in flight, flap speeds) and the checklist status
// line run on top of the general rules.
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdint>

#include "bench/bench_instructor.h"

namespace vantoro {
namespace {

enum class Phase { Taxi, TakeOffRoll, Climb, Cruise, Approach };

struct Jet737 : BenchInstructor {
  explicit Jet737(Phase phase) : BenchInstructor("vantoro-bench-procedures") {
    image.SetU16(0x023E, 100);
    image.SetU8(0x023B, 12);
    image.SetU16(0x0C1A, 256);
    image.SetString(0x3D00, "Boeing 737-800");
    image.SetString(0x3C00, "SimObjects\\Airplanes\\B737_800\\B737_800.air");
    image.SetU8(0x0AEC, 2);  // two engines, both running with their generators
    for (uint32_t combustion : {0x0894u, 0x092Cu}) image.SetU8(combustion, 1);
    for (uint32_t n1 : {0x0898u, 0x0930u}) image.SetU16(n1, 8000);
    for (uint32_t generator : {0x3B78u, 0x3AB8u}) image.SetU8(generator, 1);
    for (uint32_t pump : {0x3B98u, 0x3AD8u}) image.SetU8(pump, 1);
    image.SetU32(0x281C, 1);  // battery
    image.SetU8(0x3103, 1);   // avionics
    image.SetU8(0x341D, 1);   // seat belts sign
    image.SetU8(0x0BE8, 1);   // gear down
    // Mains uneven (the balance rule), centre tank empty.
    image.SetU32(0x0B7C, 40 * 83886);
    image.SetU32(0x0B80, 1300);
    image.SetU32(0x0B94, 60 * 83886);
    image.SetU32(0x0B98, 1300);
    switch (phase) {
      case Phase::Taxi:
        Ground(12);
        break;
      case Phase::TakeOffRoll:
        Ground(90);
        image.SetU16(0x30F0, 5 * 256);  // flaps 5
        break;
      case Phase::Climb:
        Air(4000, 220, 2500);
        break;
      case Phase::Cruise:
        Air(35000, 280, 0);
        break;
      case Phase::Approach:
        Air(800, 145, -700);
        image.SetU16(0x30F0, 30 * 256);  // flaps 30
        image.SetU8(0x0BCC, 1);          // spoilers armed
        image.SetU8(0x2F80, 2);          // auto brake
        break;
    }
    // The flight begins with the settings' monitoring boxes; the 737's box
    // is checked once it has begun.
    instructor.Connect();
    for (int i = 0; i < 20; ++i) instructor.Tick();
    instructor.aircraft.Monitoring.Boeing[static_cast<size_t>(MainBox(AircraftType::B737))] = true;
    for (int i = 0; i < 4; ++i) instructor.Tick();
    // The climb is flown in the take-off mode; begun in the air above 1000
    // feet the instructor would take it for the cruise.
    if (phase == Phase::Climb) instructor.flight.Modes = {.TakeOff = true};
  }

  void Ground(double knots) {
    image.SetU8(0x0366, 1);
    image.SetU16(0x02B6, static_cast<uint16_t>(std::lround(knots / 1.9438)));
    image.SetU32(0x02BC, static_cast<uint32_t>(std::lround(knots * 128)));
  }
  void Air(double feet, double knots, double fpm) {
    image.SetU8(0x0366, 0);
    image.SetU16(0x31E6, static_cast<uint16_t>(std::lround(feet / 3.281)));
    image.SetI16(0x0574, static_cast<int16_t>(std::lround((feet + 300) / 3.281)));
    image.SetU16(0x3324, static_cast<uint16_t>(std::lround(feet + 300)));
    image.SetU16(0x02B6, static_cast<uint16_t>(std::lround(knots * 1.2 / 1.9438)));
    image.SetU32(0x02BC, static_cast<uint32_t>(std::lround(knots * 128)));
    image.SetI16(0x0842, static_cast<int16_t>(std::lround(-fpm / 3.28084)));
    image.SetU8(0x0BE8, feet < 2000 ? 1 : 0);
  }
};

// The flight mode the instructor must be in for the phase.
bool InMode(const ModeFlags& m, Phase phase) {
  switch (phase) {
    case Phase::Taxi:
      return m.Taxiing;
    case Phase::TakeOffRoll:
    case Phase::Climb:
      return m.TakeOff;
    case Phase::Cruise:
      return m.Cruise;
    case Phase::Approach:
      return m.Landing;
  }
  return false;
}

void BM_Tick737(benchmark::State& state, Phase phase) {
  Jet737 bench(phase);
  if (!bench.instructor.aircraft.WantType(AircraftType::B737)) {
    state.SkipWithError("the aircraft is not taken for a monitored 737");
    return;
  }
  if (!InMode(bench.instructor.flight.Modes, phase)) {
    state.SkipWithError("the instructor is not in the phase's flight mode");
    return;
  }
  for (auto _ : state) {
    bench.instructor.Tick();
    benchmark::DoNotOptimize(bench.instructor.flight.TickCount);
  }
}
BENCHMARK_CAPTURE(BM_Tick737, taxi, Phase::Taxi)->Repetitions(5)->ReportAggregatesOnly(true);
BENCHMARK_CAPTURE(BM_Tick737, takeoff_roll, Phase::TakeOffRoll)
    ->Repetitions(5)
    ->ReportAggregatesOnly(true);
BENCHMARK_CAPTURE(BM_Tick737, climb, Phase::Climb)->Repetitions(5)->ReportAggregatesOnly(true);
BENCHMARK_CAPTURE(BM_Tick737, cruise, Phase::Cruise)->Repetitions(5)->ReportAggregatesOnly(true);
BENCHMARK_CAPTURE(BM_Tick737, approach, Phase::Approach)
    ->Repetitions(5)
    ->ReportAggregatesOnly(true);

}  // namespace
}  // namespace vantoro
