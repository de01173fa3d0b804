// The voice commands' recogniser. Budgets: from the end of speech to the
// phrase's VoiceAction waiting for the tick (the pause the recogniser waits
// for, plus its work) under 300 ms; listening costs a small share of one
// core (real-time factor well under 0.2).
#include <benchmark/benchmark.h>

#include <chrono>
#include <string>
#include <vector>

#include "base/text.h"
#include "voice/sphinx_recogniser.h"
#include "voice/voice_commands.h"
#include "voice/voice_pack.h"
#include "voice/wav.h"

namespace vantoro {
namespace {

constexpr size_t kChunk = 1024;  // 64 ms of microphone samples

std::vector<int16_t> Speech(const char* text) {
  std::vector<int16_t> samples;
  std::string error;
  DecodeSpeechSamples(RenderSpeech("slt", text), samples, error);
  return samples;
}

// Speech is fed as the microphone gives it; then silence, chunk by chunk,
// until the phrase is told and its action set. Timed: the work on the silence. Counted: the
// silence the recogniser waited for, and the whole latency.
void BM_EndOfSpeechToPhrase(benchmark::State& state) {
  SphinxRecogniser r;
  std::string error;
  if (!r.LoadGrammar(VoiceGrammarLists(), error)) {
    state.SkipWithError(error.c_str());
    return;
  }
  const std::vector<int16_t> speech = Speech("next flight mode");
  const std::vector<int16_t> silence(kChunk, 0);
  double waitedMs = 0;
  double workMs = 0;
  int64_t runs = 0;
  for (auto _ : state) {
    state.PauseTiming();
    // The phrase is heard as the instructor hears it: trimmed, lower-cased
    // and turned into its waiting action.
    std::string heard;
    int32_t action = 0;
    const PhraseHeard tell = [&heard, &action](const std::string& p) {
      heard = p;
      action = VoiceActionOfPhrase(Lower(Trim(p)));
    };
    for (size_t i = 0; i < speech.size(); i += kChunk)
      r.Listen(std::span<const int16_t>(speech.data() + i, std::min(kChunk, speech.size() - i)),
               tell);
    state.ResumeTiming();
    const auto start = std::chrono::steady_clock::now();
    int chunks = 0;
    while (heard.empty() && chunks < 100) {
      r.Listen(silence, tell);
      ++chunks;
    }
    const auto end = std::chrono::steady_clock::now();
    state.PauseTiming();
    if (action != 7) state.SkipWithError(("heard: " + heard).c_str());
    waitedMs += chunks * kChunk * 1000.0 / kSpeechSampleRate;
    workMs += std::chrono::duration<double, std::milli>(end - start).count();
    ++runs;
    r.EndOfAudio(tell);
    state.ResumeTiming();
  }
  state.counters["pause_waited_ms"] = waitedMs / static_cast<double>(runs);
  state.counters["latency_ms"] = (waitedMs + workMs) / static_cast<double>(runs);
}
BENCHMARK(BM_EndOfSpeechToPhrase)->Unit(benchmark::kMillisecond)->Iterations(10);

// Ten seconds of microphone audio (phrases and pauses): the time it takes
// over the audio's own length is the share of a core spent listening.
void BM_ListeningCost(benchmark::State& state) {
  SphinxRecogniser r;
  std::string error;
  if (!r.LoadGrammar(VoiceGrammarLists(), error)) {
    state.SkipWithError(error.c_str());
    return;
  }
  std::vector<int16_t> audio;
  for (const char* p : {"ground speed", "airport seven a clock", "echo", "fuel range"}) {
    const std::vector<int16_t> s = Speech(p);
    audio.insert(audio.end(), s.begin(), s.end());
    audio.insert(audio.end(), kSpeechSampleRate, 0);
  }
  audio.resize(10 * kSpeechSampleRate, 0);
  const PhraseHeard tell = [](const std::string&) {};
  for (auto _ : state) {
    for (size_t i = 0; i < audio.size(); i += kChunk)
      r.Listen(std::span<const int16_t>(audio.data() + i, std::min(kChunk, audio.size() - i)),
               tell);
    r.EndOfAudio(tell);
  }
  state.counters["real_time_factor"] =
      benchmark::Counter(static_cast<double>(state.iterations()) * 10.0,
                         benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}
BENCHMARK(BM_ListeningCost)->Unit(benchmark::kMillisecond)->Iterations(3);

}  // namespace
}  // namespace vantoro
