// The voice commands heard from real speech: every phrase of the grammar is
// spoken by the synthesiser in several voices, male and female, and run
// through the real recogniser; the phrase heard must ask for the phrase's
// own action.
#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <vector>

#include "base/text.h"
#include "voice/sphinx_recogniser.h"
#include "voice/voice_commands.h"
#include "voice/voice_pack.h"
#include "voice/wav.h"

namespace vantoro {
namespace {

constexpr size_t kChunk = 1024;  // samples handed over at a time, as from a microphone
constexpr double kRequiredAccuracy = 0.95;

std::vector<int16_t> Speak(std::string_view voice, std::string_view text) {
  std::vector<int16_t> samples;
  std::string error;
  EXPECT_TRUE(DecodeSpeechSamples(RenderSpeech(voice, text), samples, error)) << error;
  return samples;
}

std::vector<std::string> Hear(Recogniser& r, const std::vector<int16_t>& samples) {
  std::vector<std::string> heard;
  const PhraseHeard tell = [&heard](const std::string& p) { heard.push_back(p); };
  for (size_t i = 0; i < samples.size(); i += kChunk)
    r.Listen(std::span<const int16_t>(samples.data() + i, std::min(kChunk, samples.size() - i)),
             tell);
  r.EndOfAudio(tell);
  return heard;
}

// What a phrase asks for: its action, or its letter while spelling.
int32_t Meaning(std::string_view phrase) {
  const std::string lower = Lower(phrase);
  if (const char letter = LetterOfPhrase(lower); letter != 0) return -letter;
  return VoiceActionOfPhrase(lower);
}

TEST(Recogniser, EveryPhraseOfTheGrammarFromRealSpeech) {
  SphinxRecogniser recogniser;
  ASSERT_TRUE(recogniser.Ready()) << recogniser.Error();
  std::string error;
  ASSERT_TRUE(recogniser.LoadGrammar(VoiceGrammarLists(), error)) << error;

  // Two female and male American voices and a Scottish male one.
  const std::vector<std::string> voices = {"slt", "rms", "awb"};
  int spoken = 0;
  int right = 0;
  std::string misses;
  for (const std::string& voice : voices) {
    for (const std::vector<std::string>& list : VoiceGrammarLists()) {
      for (const std::string& phrase : list) {
        const std::vector<std::string> heard = Hear(recogniser, Speak(voice, phrase));
        ++spoken;
        if (heard.size() == 1 && heard[0] == Lower(phrase) &&
            Meaning(heard[0]) == Meaning(phrase)) {
          ++right;
        } else {
          misses += "  " + voice + " \"" + phrase + "\" heard as \"" +
                    (heard.empty() ? std::string("nothing") : heard[0]) +
                    (heard.size() > 1 ? "\" and more" : "\"") + "\n";
        }
      }
    }
  }
  const double accuracy = static_cast<double>(right) / spoken;
  RecordProperty("phrase_accuracy_percent", static_cast<int>(accuracy * 1000) / 10.0);
  std::printf("phrase accuracy: %d of %d (%.1f %%)\n%s", right, spoken, accuracy * 100,
              misses.c_str());
  EXPECT_GE(accuracy, kRequiredAccuracy) << misses;
}

TEST(Recogniser, SilenceAndNoiseAreNothingHeard) {
  SphinxRecogniser recogniser;
  ASSERT_TRUE(recogniser.Ready()) << recogniser.Error();
  std::string error;
  ASSERT_TRUE(recogniser.LoadGrammar(VoiceGrammarLists(), error)) << error;
  EXPECT_TRUE(Hear(recogniser, std::vector<int16_t>(kSpeechSampleRate * 2, 0)).empty());
}

TEST(Recogniser, TwoPhrasesWithAPauseAreHeardInTurn) {
  SphinxRecogniser recogniser;
  ASSERT_TRUE(recogniser.Ready()) << recogniser.Error();
  std::string error;
  ASSERT_TRUE(recogniser.LoadGrammar(VoiceGrammarLists(), error)) << error;
  std::vector<int16_t> both = Speak("slt", "ground speed");
  both.insert(both.end(), kSpeechSampleRate, 0);  // a second's pause
  const std::vector<int16_t> second = Speak("slt", "fuel range");
  both.insert(both.end(), second.begin(), second.end());
  EXPECT_EQ(Hear(recogniser, both), (std::vector<std::string>{"ground speed", "fuel range"}));
}

TEST(Recogniser, ModelMissingIsToldNotFatal) {
  SphinxRecogniser recogniser("/nonexistent/model");
  EXPECT_FALSE(recogniser.Ready());
  std::string error;
  EXPECT_FALSE(recogniser.LoadGrammar(VoiceGrammarLists(), error));
  EXPECT_NE(error.find("/nonexistent/model"), std::string::npos);
}

}  // namespace
}  // namespace vantoro
