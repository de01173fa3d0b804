// A typo in a rule's file name must never ship: every wave file that the
// source names has words in the captions and a file in each instructor's
// pack. The packs are those built into data/Sound before this test runs.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <sstream>

#include "base/files.h"
#include "base/text.h"
#include "voice/sound_queue.h"
#include "voice/voice_pack.h"

namespace vantoro {
namespace {

namespace fs = std::filesystem;

const std::string kSource = VANTORO_SOURCE_DIR;
const std::string kData = kSource + "/data";

// The string literals of a C++ source, escapes resolved.
std::vector<std::string> Literals(const std::string& code) {
  std::vector<std::string> out;
  size_t i = 0;
  while (i < code.size()) {
    const char c = code[i];
    if (c == '/' && i + 1 < code.size() && code[i + 1] == '/') {
      i = code.find('\n', i);
      if (i == std::string::npos) break;
      continue;
    }
    if (c == '/' && i + 1 < code.size() && code[i + 1] == '*') {
      i = code.find("*/", i + 2);
      if (i == std::string::npos) break;
      i += 2;
      continue;
    }
    if (c == '\'') {  // a character literal: '"' must not open a string
      i += (i + 1 < code.size() && code[i + 1] == '\\') ? 4 : 3;
      continue;
    }
    if (c != '"') {
      ++i;
      continue;
    }
    std::string text;
    for (++i; i < code.size() && code[i] != '"'; ++i) {
      if (code[i] == '\\' && i + 1 < code.size()) ++i;
      text += code[i];
    }
    ++i;
    out.push_back(text);
  }
  return out;
}

struct Named {
  std::string file;   // as the source names it: "b737\FlapsUp.wav"
  std::string where;  // "src/engine/...cpp"
};

// Every literal of src/ that names a wave file (any case), with its place.
std::vector<Named> WaveNamesInSource() {
  std::vector<Named> out;
  for (const auto& entry : fs::recursive_directory_iterator(kSource + "/src")) {
    const std::string ext = Lower(entry.path().extension().string());
    if (ext != ".cpp" && ext != ".h") continue;
    std::ifstream in(entry.path(), std::ios::binary);
    std::stringstream code;
    code << in.rdbuf();
    const std::string where = fs::relative(entry.path(), kSource).string();
    for (const std::string& text : Literals(code.str())) {
      // A bare ".wav" is the tail of a composed name; its parts are listed below.
      if (!EndsWith(Lower(text), ".wav") || GetFileName(text).size() <= 4) continue;
      out.push_back({text, where});
    }
    // The common files played from "Sound\" itself.
    const std::string all = code.str();
    for (size_t at = all.find("PlayAlwaysRoot("); at != std::string::npos;
         at = all.find("PlayAlwaysRoot(", at + 1)) {
      const size_t open = all.find('"', at), close = all.find(')', at);
      if (open == std::string::npos || open > close) continue;
      const std::string file = all.substr(open + 1, all.find('"', open + 1) - open - 1);
      if (EndsWith(Lower(file), ".wav")) out.push_back({"Sound\\" + file, where});
    }
  }
  return out;
}

// Names composed at run time from parts: the characters of spelt text, the
// number words and the runway surfaces.
std::vector<Named> ComposedNames() {
  std::vector<Named> out;
  const std::string chars = "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ.";
  for (char c : chars) out.push_back({std::string(1, c) + ".wav", "spelt text"});
  for (int n = 10; n <= 19; ++n) out.push_back({std::to_string(n) + ".WAV", "number words"});
  for (int n = 20; n <= 90; n += 10) out.push_back({std::to_string(n) + ".WAV", "number words"});
  for (const char* s :
       {"ASPHALT", "BITUMINUS", "CONCRETE", "CORAL", "DIRT", "GRASS", "GRAVEL", "ICE", "MACADAM",
        "OILTREATED", "PLANKS", "SAND", "SHALE", "SNOW", "STEELMATS", "TARMAC", "WATER"}) {
    out.push_back({std::string("S") + s + ".wav", "runway surfaces"});
  }
  return out;
}

std::set<std::string> CaptionKeys() {
  std::set<std::string> keys;
  for (const CaptionLine& c : LoadCaptionFile(kData + "/text/english.txt").Captions) {
    keys.insert(c.Key);
  }
  return keys;
}

TEST(VoiceGuard, EveryNamedRecordingHasWordsAndAFileInEachPack) {
  const std::set<std::string> keys = CaptionKeys();
  ASSERT_GT(keys.size(), 1000u) << "data/text/english.txt is missing or damaged";

  std::vector<Named> names = WaveNamesInSource();
  ASSERT_GT(names.size(), 50u) << "no wave file names found below src/";
  const std::vector<Named> composed = ComposedNames();
  names.insert(names.end(), composed.begin(), composed.end());

  std::map<std::string, std::string> noCaption, noFile;
  for (const Named& n : names) {
    // The key the caption look-up builds for the file in an instructor's folder.
    if (keys.count(CaptionKey("Sound\\Instructor\\" + n.file)) == 0) noCaption[n.file] = n.where;
    if (StartsWith(Upper(n.file), "SOUND\\")) {
      // Common to all instructors: below the root itself.
      if (!FileExists(kData + "/" + n.file)) noFile[n.file] = n.where;
      continue;
    }
    for (const InstructorVoice& who : BuiltInInstructors()) {
      const std::string path = kData + "/Sound/" + who.Folder + "/" + n.file;
      if (!FileExists(path)) noFile["Sound\\" + who.Folder + "\\" + n.file] = n.where;
    }
  }
  for (const auto& [file, where] : noCaption) {
    ADD_FAILURE() << "no caption line in data/text/english.txt for \"" << file << "\" (" << where
                  << ")";
  }
  for (const auto& [file, where] : noFile) {
    ADD_FAILURE() << "no recording " << file << " (" << where << ")";
  }
}

TEST(VoiceGuard, CaptionsReadTheSameHoweverTheFileIsParsed) {
  const CaptionFile captions = LoadCaptionFile(kData + "/text/english.txt");
  EXPECT_TRUE(captions.Problems.empty()) << captions.Problems.front();
  for (const CaptionLine& c : captions.Captions) {
    // A comma or semicolon would cut the words short for a reader that takes
    // them as comments.
    EXPECT_EQ(c.Words.find_first_of(",;\""), std::string::npos) << c.Key;
    const bool silent = SilenceMilliseconds(c.Key) >= 0;
    EXPECT_EQ(Trim(c.Words).empty(), silent) << c.Key << " needs words";
  }
}

}  // namespace
}  // namespace vantoro
