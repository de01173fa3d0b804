// vantoro-cli hear: a recorded wave file through the voice commands'
// recogniser, as a pilot checks a microphone recording.
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "cli/commands.h"
#include "voice/voice_pack.h"
#include "voice/wav.h"

namespace vantoro {
namespace {

namespace fs = std::filesystem;

// A wave file of 16-bit samples, interleaved channels.
std::string Wave(const std::vector<int16_t>& samples, int rate, int channels) {
  std::string w = WaveFile(samples, rate);
  const auto put16 = [&w](size_t at, int v) {
    w[at] = static_cast<char>(v & 0xFF);
    w[at + 1] = static_cast<char>((v >> 8) & 0xFF);
  };
  const auto put32 = [&w](size_t at, uint32_t v) {
    for (int i = 0; i < 4; ++i) w[at + i] = static_cast<char>((v >> (8 * i)) & 0xFF);
  };
  put16(22, channels);
  put32(28, static_cast<uint32_t>(rate * channels * 2));
  put16(32, channels * 2);
  return w;
}

class Hear : public ::testing::Test {
 protected:
  void SetUp() override {
    dir_ = fs::temp_directory_path() / ("vantoro-hear-test-" + std::to_string(::getpid()));
    fs::create_directories(dir_);
  }
  void TearDown() override { fs::remove_all(dir_); }
  std::string Write(const std::string& name, const std::string& bytes) {
    const std::string path = (dir_ / name).string();
    std::ofstream(path, std::ios::binary) << bytes;
    return path;
  }
  int Run(const CommandArgs& args) {
    out_.str("");
    err_.str("");
    CliContext cli{"vantoro-cli", out_, err_};
    return HearCommand(args, cli);
  }
  fs::path dir_;
  std::ostringstream out_, err_;
};

TEST_F(Hear, PhrasesActionsAndWhatIsNotAWave) {
  std::vector<int16_t> speech;
  std::string error;
  ASSERT_TRUE(DecodeSpeechSamples(RenderSpeech("rms", "wears the airport"), speech, error));
  // The same speech as a 32 kHz stereo recording: resampled and mixed down.
  std::vector<int16_t> stereo;
  for (int16_t s : speech) stereo.insert(stereo.end(), {s, s, s, s});
  const std::vector<int16_t> silence(16000, 0);

  struct Case {
    std::string file;
    int status;
    std::string out;
    std::string err;
  };
  const std::string text = Write("notes.wav", "these are not samples\n");
  const Case cases[] = {
      {Write("mono.wav", WaveFile(speech, 16000)), 0, "wears the airport\t147\n", ""},
      {Write("stereo.wav", Wave(stereo, 32000, 2)), 0, "wears the airport\t147\n", ""},
      {Write("quiet.wav", WaveFile(silence, 16000)), 0, "nothing heard\n", ""},
      {text, 2, "", "vantoro-cli hear: " + text + ": not a wave file\n"},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(Run({c.file}), c.status) << c.file;
    EXPECT_EQ(out_.str(), c.out) << c.file;
    EXPECT_EQ(err_.str(), c.err) << c.file;
  }
  EXPECT_EQ(Run({(dir_ / "absent.wav").string()}), 2);
  EXPECT_NE(err_.str().find("absent.wav"), std::string::npos);
}

}  // namespace
}  // namespace vantoro
