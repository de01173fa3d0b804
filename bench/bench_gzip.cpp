// A small compressed file built to inflate to gigabytes (2.3 MB of gzip
// members, each a megabyte of zeros, 2.3 GB in all), handed to the reader of
// recordings and world data: it must be refused at once, with a few
// megabytes of memory. "peak_rss_MB" is the whole process's high-water mark,
// the bomb's own 2.3 MB included.
#include <benchmark/benchmark.h>
#include <sys/resource.h>

#include <string>

#include "base/gzip.h"

namespace vantoro {
namespace {

// Members follow one another until the file is `bytes` long.
std::string Bomb(size_t bytes) {
  const std::string member = GzipText(std::string(size_t{1} << 20, '\0'));
  std::string out;
  while (out.size() < bytes) out += member;
  return out;
}

void BM_RefuseCompressedBomb(benchmark::State& state) {
  const std::string bomb = Bomb(size_t{2300} << 10);
  std::string text;
  for (auto _ : state) {
    const InflateResult r = InflateLimited(bomb, text);
    if (r != InflateResult::TooLarge) state.SkipWithError("the bomb was not refused");
    benchmark::DoNotOptimize(text);
  }
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  state.counters["peak_rss_MB"] = static_cast<double>(usage.ru_maxrss) / 1024;
  state.counters["bomb_MB"] = static_cast<double>(bomb.size()) / (1 << 20);
}
BENCHMARK(BM_RefuseCompressedBomb)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace vantoro
