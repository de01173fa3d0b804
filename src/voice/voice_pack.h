// The instructors' voice packs: every caption of "text\english.txt" rendered
// to a wave file with a speech synthesiser, one folder per instructor below
// "Sound\". The packs are built, not shipped: the captions are the source.
//
// The captions file holds three sections besides the captions themselves:
//   [Sound Files]      FILE.WAV=the words spoken, keyed as the caption look-up
//                      builds keys (file part upper case, aircraft folder
//                      prefixes such as "B737\").
//   [Sound Locations]  FILE.WAV=folder: a further place where the recording of
//                      that caption lies, for folders the caption look-up does
//                      not prefix ("c172"), or "\" for the files common to all
//                      instructors that lie in "Sound\" itself.
//   [Spoken Forms]     TOKEN=words: how the synthesiser is to read a token of
//                      the captions ("737=seven three seven").
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace vantoro {

// One instructor of the built packs: the folder below "Sound\" and the
// synthesiser voice that speaks for it.
struct InstructorVoice {
  std::string Folder;
  std::string Voice;  // "slt", "rms", "awb", "kal16"
};

// The instructors that "voices build" makes, first one also speaking the
// common files of "Sound\".
const std::vector<InstructorVoice>& BuiltInInstructors();

struct CaptionLine {
  std::string Key;    // "B737\LANDEDTOOFAST.WAV"
  std::string Words;  // "You landed too fast."
  int Line = 0;
};

struct CaptionFile {
  std::vector<CaptionLine> Captions;                             // [Sound Files], file order
  std::vector<std::pair<std::string, std::string>> Locations;    // key, folder
  std::vector<std::pair<std::string, std::string>> SpokenForms;  // TOKEN, words
  // "english.txt:12: ..." for each line that cannot be used.
  std::vector<std::string> Problems;
};

// Reads the captions file; a missing file gives an empty result and one problem.
CaptionFile LoadCaptionFile(std::string_view path);
CaptionFile ParseCaptionText(std::string_view text, std::string_view name);

// The place of a caption's recording inside an instructor folder, lower case:
// "B737\LANDEDTOOFAST.WAV" lies at "b737\landedtoofast.wav".
std::string PackFileOfKey(std::string_view key);

// Silent recordings ("PAUSE250MS.WAV", "FSSILENCE.WAV"): their length in
// milliseconds, or -1 for a recording with words.
int SilenceMilliseconds(std::string_view key);

// The words as the synthesiser is to read them: each token found among the
// spoken forms (compared without case, punctuation kept apart) is replaced.
std::string SpeakableText(std::string_view words,
                          const std::vector<std::pair<std::string, std::string>>& forms);

// One file of the packs to be made.
struct PackItem {
  std::string Path;  // below the root, "\" separated: "Sound\Claire\b737\flapsup.wav"
  std::string Voice;
  std::string Text;    // what the synthesiser reads; empty for silence
  int SilenceMs = -1;  // >= 0: exact silence of this length
  uint64_t Stamp = 0;  // fingerprint of voice, text and format
};

// Every file of every instructor's pack, sorted by path.
std::vector<PackItem> PlanVoicePacks(const CaptionFile& captions,
                                     const std::vector<InstructorVoice>& instructors);

// A 16-bit PCM mono wave file of exact silence.
std::string SilenceWave(int milliseconds, int sampleRate);
// A 16-bit PCM mono wave file of these samples.
std::string WaveFile(const std::vector<int16_t>& samples, int sampleRate);
// The synthesised speech of text in a voice, as a wave file; empty when the
// voice is unknown.
std::string RenderSpeech(std::string_view voice, std::string_view text);

struct VoicePackOptions {
  std::string Root;  // program root folder holding text\ and Sound\ (native path)
  int Jobs = 2;      // worker processes rendering at once
  std::vector<InstructorVoice> Instructors = BuiltInInstructors();
};

struct VoicePackReport {
  int Files = 0;     // files of the plan
  int Rendered = 0;  // made in this build
  int UpToDate = 0;  // left alone
  uint64_t Bytes = 0;
  std::vector<std::string> Problems;  // caption lines skipped, files not written
  bool Ok() const { return Problems.empty(); }
};

// Builds the packs below Root\Sound from Root\text\english.txt. A file whose
// fingerprint is recorded in "Sound\.voicepack" and which still exists is
// left alone, so a second build only makes what changed.
VoicePackReport BuildVoicePacks(const VoicePackOptions& options);

}  // namespace vantoro
