// The waveOut sound device under wine: whether wine's driver plays the file
// or there is no device at all, every file ends, its end is delivered on the
// calling (loop) thread once, and a problem is told once in words.
#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>

#include "app/wave_out_audio.h"

namespace vantoro::testing {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

void Put(std::string& out, uint32_t value, int bytes) {
  for (int i = 0; i < bytes; ++i) out.push_back(static_cast<char>((value >> (8 * i)) & 0xFF));
}

// A tone of `ms` milliseconds, 16-bit mono at 22050 Hz.
std::string Tone(int ms) {
  constexpr uint32_t kRate = 22050;
  const uint32_t samples = kRate * static_cast<uint32_t>(ms) / 1000;
  std::string wav = "RIFF";
  Put(wav, 36 + samples * 2, 4);
  wav += "WAVEfmt ";
  Put(wav, 16, 4);
  Put(wav, 1, 2);  // PCM
  Put(wav, 1, 2);
  Put(wav, kRate, 4);
  Put(wav, kRate * 2, 4);
  Put(wav, 2, 2);
  Put(wav, 16, 2);
  wav += "data";
  Put(wav, samples * 2, 4);
  for (uint32_t i = 0; i < samples; ++i)
    Put(wav, static_cast<uint16_t>(static_cast<int16_t>(8000 * std::sin(i * 0.1))), 2);
  return wav;
}

fs::path WriteTemp(const std::string& name, const std::string& bytes) {
  const fs::path path = fs::temp_directory_path() / name;
  std::ofstream(path, std::ios::binary) << bytes;
  return path;
}

struct Played {
  int finished = 0;
  std::string problems;
};

// Delivers until the file has ended (or the wait is over), as the sound timer does.
Played PlayToEnd(WaveOutAudio& out, const fs::path& file, bool stopEarly) {
  Played p;
  const std::thread::id loop = std::this_thread::get_id();
  out.onFinished = [&] {
    EXPECT_EQ(std::this_thread::get_id(), loop) << "the end came on another thread";
    ++p.finished;
  };
  out.Play(file.string());
  if (stopEarly) out.Stop();
  const auto until = std::chrono::steady_clock::now() + 10s;
  while (out.IsPlaying() && std::chrono::steady_clock::now() < until) {
    p.problems += out.Deliver();
    std::this_thread::sleep_for(10ms);
  }
  p.problems += out.Deliver();
  return p;
}

TEST(WaveOut, EveryFileEndsOnceOnTheLoopThreadWithOrWithoutADevice) {
  const fs::path tone = WriteTemp("vantoro-tone.wav", Tone(300));
  const fs::path longTone = WriteTemp("vantoro-long.wav", Tone(5000));
  const fs::path damaged = WriteTemp("vantoro-damaged.wav", "RIFF....WAVEjunk");
  struct Case {
    const char* what;
    fs::path file;
    bool stopEarly;
  };
  const Case cases[] = {
      {"a short tone", tone, false},
      {"a long tone stopped at once", longTone, true},
      {"a file that is not a wave", damaged, false},
      {"a missing file", fs::temp_directory_path() / "vantoro-none.wav", false},
  };
  WaveOutAudio out;
  for (const Case& c : cases) {
    const auto start = std::chrono::steady_clock::now();
    const Played p = PlayToEnd(out, c.file, c.stopEarly);
    EXPECT_FALSE(out.IsPlaying()) << c.what;
    EXPECT_EQ(p.finished, 1) << c.what;
    if (c.stopEarly) {
      EXPECT_LT(std::chrono::steady_clock::now() - start, 4s) << c.what;
    }
    // Without a device the file plays silent, and the pilot is told why.
    if (!p.problems.empty()) {
      EXPECT_EQ(p.problems.rfind("Sound: the device cannot play (", 0), 0u) << p.problems;
    }
  }
  std::printf("wave out: %d device(s)%s\n", out.DeviceCount(),
              out.Audible() ? "" : ", the last file played silent");
}

TEST(WaveOut, DevicesHaveNamesAndOneThatIsGoneFallsBackToTheDefault) {
  WaveOutAudio out;
  for (int i = 0; i < out.DeviceCount(); ++i) EXPECT_FALSE(out.DeviceName(i).empty()) << i;
  EXPECT_EQ(out.DeviceName(out.DeviceCount()), "");
  out.SetDevice(out.DeviceCount() + 3);
  EXPECT_EQ(out.Device(), -1);
  const std::string told = out.Deliver();
  EXPECT_EQ(told, "Sound: device " + std::to_string(out.DeviceCount() + 3) +
                      " is not there; playing on the default device");
  EXPECT_EQ(out.Deliver(), "") << "told once";
  // The default still plays.
  const Played p = PlayToEnd(out, WriteTemp("vantoro-tone2.wav", Tone(200)), false);
  EXPECT_EQ(p.finished, 1);
}

}  // namespace
}  // namespace vantoro::testing
