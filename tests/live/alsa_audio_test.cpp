// The ALSA sound device against ALSA itself: the test's own configuration
// defines a "file" device that writes every frame it is given to a file, over
// ALSA's "null" device, so what the instructor would hear can be counted.
#include "app/alsa_audio.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include "base/files.h"

namespace fs = std::filesystem;

namespace vantoro {
namespace {

const fs::path& Folder() {
  static const fs::path folder =
      fs::temp_directory_path() / ("vantoro-alsa-" + std::to_string(getpid()));
  return folder;
}
fs::path Captured() {
  return Folder() / "captured.raw";
}

// ALSA reads its configuration once per process: the test's is in place
// before the first device is made.
class AlsaConfiguration : public ::testing::Environment {
 public:
  void SetUp() override {
    fs::create_directories(Folder());
    const fs::path conf = Folder() / "asound.conf";
    std::ofstream(conf) << "pcm.null { type null }\n"
                           "pcm.vantoro_file {\n"
                           "  type file\n"
                           "  slave.pcm \"null\"\n"
                           "  file \""
                        << Captured().string()
                        << "\"\n"
                           "  format \"raw\"\n"
                           "  hint { show on description \"Test capture\" }\n"
                           "}\n"
                           "pcm.!default { type plug slave.pcm \"vantoro_file\" }\n";
    setenv("ALSA_CONFIG_PATH", conf.c_str(), 1);
  }
  void TearDown() override {
    std::error_code ec;
    fs::remove_all(Folder(), ec);
  }
};
[[maybe_unused]] ::testing::Environment* const kAlsa =
    ::testing::AddGlobalTestEnvironment(new AlsaConfiguration);

// A PCM wave of `frames` frames whose every sample is `value`.
std::string Wave(uint16_t channels, uint32_t rate, uint16_t bits, uint32_t frames, int value) {
  const uint16_t align = static_cast<uint16_t>(channels * bits / 8);
  const uint32_t dataBytes = frames * align;
  std::string w = "RIFF";
  auto u32 = [&](uint32_t v) { w.append(reinterpret_cast<const char*>(&v), 4); };
  auto u16 = [&](uint16_t v) { w.append(reinterpret_cast<const char*>(&v), 2); };
  u32(36 + dataBytes);
  w += "WAVEfmt ";
  u32(16);
  u16(1);
  u16(channels);
  u32(rate);
  u32(rate * align);
  u16(align);
  u16(bits);
  w += "data";
  u32(dataBytes);
  for (uint32_t i = 0; i < frames * channels; ++i) {
    if (bits == 8) {
      w += static_cast<char>(value);
    } else {
      const int16_t s = static_cast<int16_t>(value);
      w.append(reinterpret_cast<const char*>(&s), 2);
    }
  }
  return w;
}

// Waits, delivering finished notices as the sound timer does, until the
// device is idle; the problems it told, in order.
std::vector<std::string> PlayToEnd(AlsaAudioOut& out, const std::string& file) {
  std::vector<std::string> told;
  out.Play(file);
  for (int i = 0; i < 2000 && out.IsPlaying(); ++i) {
    if (std::string p = out.Deliver(); !p.empty()) told.push_back(p);
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  if (std::string p = out.Deliver(); !p.empty()) told.push_back(p);
  EXPECT_FALSE(out.IsPlaying()) << file << " never finished";
  return told;
}

TEST(AlsaAudio, PlaysEveryFrameOfTheFileAtItsVolume) {
  struct Case {
    const char* name;
    uint16_t channels;
    uint32_t rate;
    uint16_t bits;
    uint32_t frames;
    int sample;
    int volume;
    int expectedSample;  // every sample of what the device was given
  };
  const Case cases[] = {
      {"mono voice", 1, 16000, 16, 4000, 1000, 0, 1000},
      {"stereo", 2, 22050, 16, 2205, -500, 0, -500},
      {"eight-bit", 1, 8000, 8, 800, 200, 0, 200},
      {"quieter", 1, 16000, 16, 1600, 1000, -20, 100},
      {"inaudible", 1, 16000, 16, 1600, 1000, -30000, 0},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    const std::string file = (Folder() / (std::string(c.name) + ".wav")).string();
    ASSERT_TRUE(WriteFileAtomic(file, Wave(c.channels, c.rate, c.bits, c.frames, c.sample)));
    std::error_code ec;
    fs::remove(Captured(), ec);
    AlsaAudioOut out;
    int finished = 0;
    out.onFinished = [&] { ++finished; };
    out.SetVolume(c.volume);
    EXPECT_TRUE(PlayToEnd(out, file).empty());
    EXPECT_EQ(finished, 1);
    EXPECT_EQ(out.FramesWritten(), c.frames);
    const std::string raw = ReadFile(Captured().string());
    const size_t align = c.channels * c.bits / 8;
    ASSERT_EQ(raw.size(), c.frames * align);
    int16_t first = 0;
    if (c.bits == 8)
      first = static_cast<uint8_t>(raw[0]);
    else
      std::memcpy(&first, raw.data(), 2);
    EXPECT_EQ(first, c.expectedSample);
  }
}

TEST(AlsaAudio, AMissingDeviceIsToldOnceAndTheFileEndsInSilence) {
  const std::string file = (Folder() / "short.wav").string();
  ASSERT_TRUE(WriteFileAtomic(file, Wave(1, 16000, 16, 1600, 100)));  // 0.1 s
  AlsaAudioOut out("vantoro_no_such_device");
  int finished = 0;
  out.onFinished = [&] { ++finished; };
  const std::vector<std::string> first = PlayToEnd(out, file);
  ASSERT_EQ(first.size(), 1u);
  EXPECT_NE(first[0].find("Sound: the device vantoro_no_such_device cannot play"),
            std::string::npos)
      << first[0];
  EXPECT_TRUE(PlayToEnd(out, file).empty()) << "the same problem is told once";
  EXPECT_EQ(finished, 2) << "the sound queue still hears each file end";
  EXPECT_EQ(out.FramesWritten(), 0);
}

TEST(AlsaAudio, TheDeviceListAndAChoiceThatIsGone) {
  AlsaAudioOut out;
  std::vector<std::string> names;
  for (int i = 0; i < out.DeviceCount(); ++i) names.push_back(out.DeviceName(i));
  EXPECT_NE(std::find(names.begin(), names.end(), "vantoro_file"), names.end());
  out.SetDevice(0);
  EXPECT_EQ(out.Device(), names[0]);
  out.SetDevice(out.DeviceCount() + 3);  // SoundCard.dat names a card since removed
  EXPECT_EQ(out.Device(), kAlsaDefaultDevice);
  EXPECT_NE(out.Deliver().find("is not there"), std::string::npos);
}

TEST(AlsaAudio, StopCutsTheFileShortAndTellsTheQueue) {
  const std::string file = (Folder() / "long.wav").string();
  ASSERT_TRUE(WriteFileAtomic(file, Wave(1, 16000, 16, 16000 * 30, 10)));
  AlsaAudioOut out("vantoro_no_such_device");  // 30 s of silence in its place
  int finished = 0;
  out.onFinished = [&] { ++finished; };
  out.Play(file);
  EXPECT_TRUE(out.IsPlaying());
  out.Stop();
  EXPECT_FALSE(out.IsPlaying());
  EXPECT_EQ(finished, 1);
}

}  // namespace
}  // namespace vantoro
