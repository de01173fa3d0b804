// The voice packs: where each caption's recording lies, what the synthesiser
// is given to read, and a build that makes only what changed.
#include "voice/voice_pack.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <fstream>

#include "base/files.h"
#include "voice/wav.h"

namespace vantoro {
namespace {

namespace fs = std::filesystem;

TEST(VoicePack, RecordingsLieWhereTheCaptionLookUpFindsThem) {
  const CaptionFile captions = ParseCaptionText(
      "[Sound Files]\n"
      "B737\\LANDEDTOOFAST.WAV=You landed too fast.\n"
      "VS.WAV=Clean stall speed is 48 knots.\n"
      "APOFF.WAV=Autopilot off please.\n"
      "TEACHTOGA.WAV=Set take-off power.\n"
      "PAUSE250MS.WAV=\n"
      "apoff.wav=a second line loses\n"
      "NOTES.TXT=not a recording\n"
      "[Sound Locations]\n"
      "VS.WAV=c172\n"
      "APOFF.WAV=c172\n"
      "TEACHTOGA.WAV=\\\n"
      "MISSING.WAV=c172\n",
      "english.txt");
  EXPECT_EQ(captions.Captions.size(), 5u);
  ASSERT_EQ(captions.Problems.size(), 3u);
  EXPECT_EQ(captions.Problems[0], "english.txt:7: caption given twice: APOFF.WAV");

  const std::vector<InstructorVoice> two = {{"Claire", "slt"}, {"Ken", "kal16"}};
  std::map<std::string, PackItem> plan;
  for (PackItem& item : PlanVoicePacks(captions, two)) plan[item.Path] = item;
  for (const char* who : {"Claire", "Ken"}) {
    const std::string f = std::string("Sound\\") + who + "\\";
    for (const char* file : {"b737\\landedtoofast.wav", "vs.wav", "c172\\vs.wav", "apoff.wav",
                             "c172\\apoff.wav", "teachtoga.wav", "pause250ms.wav"}) {
      EXPECT_EQ(plan.count(f + file), 1u) << f + file;
    }
  }
  // Files common to all instructors lie once in Sound\, in the first one's voice.
  ASSERT_EQ(plan.count("Sound\\teachtoga.wav"), 1u);
  EXPECT_EQ(plan["Sound\\teachtoga.wav"].Voice, "slt");
  EXPECT_EQ(plan.size(), 2u * 7 + 1);
  EXPECT_EQ(plan["Sound\\Ken\\c172\\vs.wav"].Voice, "kal16");
  EXPECT_EQ(plan["Sound\\Ken\\pause250ms.wav"].SilenceMs, 250);
  // The same words in the same voice make the same file wherever it lies.
  EXPECT_EQ(plan["Sound\\Claire\\vs.wav"].Stamp, plan["Sound\\Claire\\c172\\vs.wav"].Stamp);
  EXPECT_NE(plan["Sound\\Claire\\vs.wav"].Stamp, plan["Sound\\Ken\\vs.wav"].Stamp);
}

TEST(VoicePack, SilencesAndSpokenForms) {
  const struct {
    const char* key;
    int ms;
  } silences[] = {{"PAUSE125MS.WAV", 125}, {"Pause500ms.wav", 500}, {"FSSILENCE.WAV", 250},
                  {"PAUSEMS.WAV", -1},     {"PAUSE1XMS.WAV", -1},   {"POINT.WAV", -1}};
  for (const auto& s : silences) EXPECT_EQ(SilenceMilliseconds(s.key), s.ms) << s.key;

  const std::vector<std::pair<std::string, std::string>> forms = {
      {"737", "seven three seven"}, {"ILS", "I L S"}, {"N1", "N one"}};
  EXPECT_EQ(SpeakableText("Tune the ils for the 737 - N1 at 40.", forms),
            "Tune the I L S for the seven three seven - N one at 40.");
  // Only whole tokens: "B737" and "N10" stay as they are.
  EXPECT_EQ(SpeakableText("B737 N10", forms), "B737 N10");
}

TEST(VoicePack, WaveFilesAreExactAndRepeatable) {
  const std::string silence = SilenceWave(250, 16000);
  const WavInfo info = ParseWavHeader(silence);
  ASSERT_TRUE(info.valid);
  EXPECT_EQ(info.format, 1);
  EXPECT_EQ(info.bitsPerSample, 16);
  EXPECT_EQ(info.channels, 1);
  EXPECT_EQ(info.durationMs, 250);
  EXPECT_EQ(silence.find_first_not_of('\0', 44), std::string::npos);

  const std::string a = RenderSpeech("kal16", "Flaps up.");
  const std::string b = RenderSpeech("kal16", "Flaps up.");
  const WavInfo spoken = ParseWavHeader(a);
  ASSERT_TRUE(spoken.valid);
  EXPECT_EQ(spoken.bitsPerSample, 16);
  EXPECT_GT(spoken.durationMs, 200);
  EXPECT_LT(spoken.durationMs, 3000);
  EXPECT_EQ(a, b);
  EXPECT_TRUE(RenderSpeech("nobody", "Flaps up.").empty());
}

class PackBuild : public ::testing::Test {
 protected:
  void SetUp() override {
    char pattern[] = "/tmp/vantoro-pack-XXXXXX";
    root = mkdtemp(pattern);
    Captions("ONE.WAV=one\nTWO.WAV=two\n");
    options.Root = root;
    options.Jobs = 2;
    options.Instructors = {{"Ken", "kal16"}};
  }
  void TearDown() override { fs::remove_all(root); }
  void Captions(const std::string& lines) {
    fs::create_directories(root + "/text");
    std::ofstream(root + "/text/english.txt")
        << "[Sound Files]\n"
        << lines << "PAUSE125MS.WAV=\n[Sound Locations]\nONE.WAV=c172\n";
  }
  std::string root;
  VoicePackOptions options;
};

TEST_F(PackBuild, ASecondBuildMakesOnlyWhatChanged) {
  VoicePackReport first = BuildVoicePacks(options);
  EXPECT_TRUE(first.Ok()) << first.Problems.front();
  EXPECT_EQ(first.Files, 4);
  EXPECT_EQ(first.Rendered, 4);
  for (const char* f : {"one.wav", "two.wav", "c172/one.wav", "pause125ms.wav"}) {
    EXPECT_TRUE(FileExists(root + "/Sound/Ken/" + f)) << f;
  }
  EXPECT_EQ(ReadWavInfo((root + "/Sound/Ken/pause125ms.wav").c_str()).durationMs, 125);
  const std::string two = ReadFile(root + "/Sound/Ken/two.wav");

  VoicePackReport again = BuildVoicePacks(options);
  EXPECT_EQ(again.Rendered, 0);
  EXPECT_EQ(again.UpToDate, 4);

  // New words for one caption and a lost file: those two are made again.
  Captions("ONE.WAV=one thousand\nTWO.WAV=two\n");
  fs::remove(root + "/Sound/Ken/two.wav");
  VoicePackReport third = BuildVoicePacks(options);
  EXPECT_EQ(third.Rendered, 3);  // one.wav, c172/one.wav, two.wav
  EXPECT_EQ(third.UpToDate, 1);
  EXPECT_EQ(ReadFile(root + "/Sound/Ken/two.wav"), two);
  EXPECT_EQ(ReadFile(root + "/Sound/Ken/one.wav"), ReadFile(root + "/Sound/Ken/c172/one.wav"));
}

TEST_F(PackBuild, AMissingCaptionsFileIsReported) {
  fs::remove(root + "/text/english.txt");
  const VoicePackReport report = BuildVoicePacks(options);
  EXPECT_FALSE(report.Ok());
  EXPECT_EQ(report.Files, 0);
  EXPECT_FALSE(fs::exists(root + "/Sound"));
}

}  // namespace
}  // namespace vantoro
