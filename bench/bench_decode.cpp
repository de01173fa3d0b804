// The snapshot decode of one tick, with an aircraft in flight (or on the
// ground) and both traffic tables full.
#include <benchmark/benchmark.h>

#include <memory>
#include <string>

#include "link/image_link.h"
#include "link/snapshot.h"

namespace vantoro {
namespace {

// A light twin at 3000 feet near a busy airport: every field a rule reads is
// set, names and weather are of realistic length, all 95 slots of both
// traffic tables hold a target.
OffsetImage BusyImage(bool onGround) {
  OffsetImage image;
  image.SetU8(0x0366, onGround ? 1 : 0);
  image.SetU16(0x02A0, 0xFC72);  // 5 degrees west
  image.SetU16(0x02B6, 70);
  image.SetU16(0x02BC, 135 * 128);
  image.SetU16(0x057A, 0xFD00);
  image.SetU16(0x057E, 0x0400);
  image.SetU16(0x0582, 0x4000);
  image.SetI64(0x0560, 24567000000000000);   // 51.47 N
  image.SetI64(0x0568, -23058000000000000);  // 0.45 W
  image.SetI16(0x0574, 914);
  image.SetU16(0x31E6, 850);
  image.SetU8(0x0AEC, 2);
  image.SetU16(0x0AF4, 6 * 256);
  for (uint32_t tank : {0x0B7Cu, 0x0B94u, 0x0B84u, 0x0B9Cu}) {
    image.SetU32(tank, 100 * 83886 * 3 / 4);
    image.SetU32(tank + 4, 50);
  }
  image.SetU32(0x3BFC, 4200u * 256u);
  image.SetU16(0x0350, 0x1090);
  image.SetU16(0x034E, 0x1875);
  image.SetU16(0x0EF2, 270 * 182);
  image.SetU16(0x0E92, 280 * 182);
  image.SetString(0x3C00, "C:\\FSX\\SimObjects\\Airplanes\\Beech_Baron_58\\Beech_Baron_58.air");
  image.SetString(0x3D00, "Beechcraft Baron 58 Paint1");
  image.SetString(0x0130, "Previous flight");
  image.SetString(0x3000, "BNN");
  image.SetString(0x3006, "BOVINGDON VOR-DME");
  image.SetString(0x0C29, "12.4");
  image.SetString(0xB800,
                  "EGLL 121250Z 27012KT 9999 FEW030 SCT045 BKN100 14/08 Q1014 NOSIG "
                  "RMK WIND 2000FT 28025KT");
  image.SetString(0x6137, "EGLL");
  image.SetString(0x6081, "BNN");
  image.SetString(0x60A4, "CPT");
  for (uint32_t table : {0xE080u, 0xF080u}) {
    image.SetU16(table - 2, static_cast<uint16_t>(table + 40 * 94));
    for (uint32_t n = 1; n <= 95; ++n) {
      const uint32_t slot = table + 40 * n;
      image.SetU8(slot, static_cast<uint8_t>(n));
      image.SetF32(slot + 4, 51.4f + 0.001f * static_cast<float>(n));
      image.SetF32(slot + 8, -0.45f - 0.001f * static_cast<float>(n));
      image.SetF32(slot + 12, 3000.0f + 10.0f * static_cast<float>(n));
      image.SetU16(slot + 16, static_cast<uint16_t>(n * 600));
      image.SetU16(slot + 18, static_cast<uint16_t>(120 + n));
      image.SetI16(slot + 20, -700);
      image.SetString(slot + 22, "BAW" + std::to_string(100 + n));
      image.SetU8(slot + 37, 141);
    }
  }
  return image;
}

void Load(const OffsetImage& image, LinkState& link) {
  image.GetBytes(kMainBlockOffset, link.ByteBuffer.data(), kMainBlockSize);
  image.GetBytes(kGpsBlockOffset, link.GpsBuffer.data(), kGpsBlockSize);
  image.GetBytes(kTrafficBlockOffset, link.TrafficBuffer.data(), kTrafficBlockSize);
  image.GetBytes(kMetarBlockOffset, link.MetarBuffer.data(), kMetarBlockSize);
}

void BM_ProcessFSData(benchmark::State& state) {
  auto link = std::make_unique<LinkState>();
  Load(BusyImage(state.range(0) != 0), *link);
  DecodeInputs in;
  for (auto _ : state) {
    ++in.TickCount;
    benchmark::DoNotOptimize(ProcessFSData(*link, in));
    link->Swap();
    benchmark::ClobberMemory();
  }
}
BENCHMARK(BM_ProcessFSData)
    ->ArgName("onGround")
    ->Arg(0)
    ->Arg(1)
    ->Repetitions(9)
    ->ReportAggregatesOnly(true);

}  // namespace
}  // namespace vantoro
