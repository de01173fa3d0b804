// One full polling tick of a connected instructor in level cruise: the four
// reads, the decode and every rule of the tick.
#include <benchmark/benchmark.h>

#include <filesystem>

#include "base/events.h"
#include "base/seams.h"
#include "bench/quiet_audio.h"
#include "link/image_link.h"
#include "shell/instructor.h"

namespace vantoro {
namespace {

void BM_TickInCruise(benchmark::State& state) {
  const std::filesystem::path root = std::filesystem::temp_directory_path() / "vantoro-bench-tick";
  std::filesystem::create_directories(root / "Sound" / "Bench");
  OffsetImage image;
  ImageLink link(image);
  NoEvents events;
  QuietAudio audio;
  FixedClock clock;
  SeededRandom random(1);
  Instructor instructor(root.string() + "/",
                        Seams{&link, {&audio, &audio}, &events, &clock, &random});

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
  std::filesystem::remove_all(root);
}
BENCHMARK(BM_TickInCruise)->Repetitions(5)->ReportAggregatesOnly(true);

}  // namespace
}  // namespace vantoro
