// The sound queue as the pilot meets it: a temporary program root with an
// instructor "Anna" whose recordings are real wave files, a captions file,
// the virtual device, and the simulator's message line in an offset image.
#include "voice/sound_queue.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <fstream>

#include "base/failure.h"
#include "base/text.h"
#include "link/image_link.h"
#include "voice/virtual_audio.h"
#include "voice/wav.h"

namespace vantoro {
namespace {

using Strings = std::vector<std::string>;

std::string Le(uint32_t v, int bytes) {
  std::string out;
  for (int i = 0; i < bytes; ++i) out += static_cast<char>((v >> (8 * i)) & 0xFF);
  return out;
}
// A wave file of 8 kHz mono 8-bit silence; `pre` goes before the format chunk,
// `dataSize` is the size the data chunk claims (its true size when 0).
std::string Wav(int ms, const std::string& pre = "", uint32_t dataSize = 0, uint32_t fmtSize = 16) {
  const std::string fmt = "fmt " + Le(fmtSize, 4) + Le(1, 2) + Le(1, 2) + Le(8000, 4) +
                          Le(8000, 4) + Le(1, 2) + Le(8, 2);
  const std::string data =
      "data" + Le(dataSize ? dataSize : 8u * ms, 4) + std::string(8u * ms, '\x80');
  return "RIFF" + Le(static_cast<uint32_t>(4 + pre.size() + fmt.size() + data.size()), 4) + "WAVE" +
         pre + fmt + data;
}

class Booth : public ::testing::Test {
 protected:
  void SetUp() override {
    char pattern[] = "/tmp/vantoro-voice-XXXXXX";
    root = mkdtemp(pattern);
    const std::pair<const char*, int> files[] = {{"Hello", 300}, {"Long", 5000},
                                                 {"One", 100},   {"Two", 100},
                                                 {"Three", 100}, {"B737/LandedTooFast", 200}};
    for (auto [file, ms] : files) Put(std::string("Sound/Anna/") + file + ".wav", Wav(ms));
    Put("Sound/FSSilence.wav", Wav(100));
    Put("text/english.txt",
        "[Other]\nHELLO.WAV=wrong section\n[Sound Files]\nHELLO.WAV=Hello, pilot.\n"
        "Hello.wav=second copy loses\nB737\\LANDEDTOOFAST.WAV=Too fast for the seven three "
        "seven.\nONE.WAV=one\nTWO.WAV=two\nTHREE.WAV=three\n=no key\n");
    s.SoundRoot = root + "\\";
    s.Instructor = "Anna";
    LoadCaptions(s, s.SoundRoot + "text\\english.txt");
    int result = 0;
    link.Open(0, result);
  }
  void TearDown() override { std::filesystem::remove_all(root); }

  void Put(const std::string& rel, const std::string& bytes) {
    const std::filesystem::path p = std::filesystem::path(root) / rel;
    std::filesystem::create_directories(p.parent_path());
    std::ofstream(p, std::ios::binary) << bytes;
  }
  Voice V() { return Voice{s, {&audio, nullptr}, &link, log, tick}; }
  // As replay runs: the tick's rules (called before), four timer steps of 125 ms, the next tick.
  void Run(int ticks) {
    for (int t = 0; t < ticks; ++t, ++tick) {
      for (int step = 0; step < 4; ++step, audio.Advance(125)) {
        Voice v = V();
        SoundTimer(v, 0);
      }
    }
  }
  Strings Files(std::string_view type) const {
    Strings out;
    for (const Event& e : log.OfType(type)) out.push_back(e.Text("file"));
    return out;
  }
  void Reset() {
    InitSound(s);
    s.LastPlayed.fill(0);
    s.CaptionBuffer.clear();
    audio = VirtualAudio();
    log.events.clear();
    link.writes.clear();
  }

  std::string root;
  SoundState s;
  VirtualAudio audio;
  EventLog log;
  OffsetImage image;
  ImageLink link{image};
  int32_t tick = 100;
};

TEST_F(Booth, GateIsStrictAndOutlivesATickReset) {
  // Gap 30; the last: TickCount was reset, the old stamp holds.
  const std::tuple<int32_t, int32_t, bool> cases[] = {
      {50, 80, false}, {50, 81, true}, {500, 10, false}};
  for (bool purge : {false, true}) {
    for (auto [last, now, passes] : cases) {
      Reset();
      s.LastPlayed[7] = last;
      tick = now;
      Voice v = V();
      purge ? PlayAndPurge(v, "Hello.wav", 7, 30) : PlayPerhaps(v, "Hello.wav", 7, 30, 4);
      EXPECT_EQ(log.events.size(), passes ? 1u : 0u) << last << " " << now;
      EXPECT_EQ(s.LastPlayed[7], passes ? now : last);
    }
  }
}

TEST_F(Booth, FullRingLosesTheNewRequestAndPurgeEmptiesIt) {
  Voice v = V();
  Strings first20;
  for (int i = 0; i < kRingSize; ++i)
    PlayAlways(v, first20.emplace_back(std::to_string(i) + ".wav"));
  PlayPerhaps(v, "Hello.wav", 5, 30, 4);
  EXPECT_EQ(s.LastPlayed[5], tick);  // stamped although the ring had no room
  EXPECT_EQ(PlaySound(v, "Locations\\x.wav", kModeQueue, 120, 0), kRingFull);
  EXPECT_EQ(Files("dropped"), (Strings{"Hello.wav", "Locations\\x.wav"}));
  Run(6);  // missing files: a silence of 100 ms each
  EXPECT_EQ(Files("spoken"), first20);
  log.events.clear();  // the ring wraps
  Strings next = {"One.wav", "Two.wav", "Three.wav", "Hello.wav", "One.wav"};
  for (const std::string& f : next) PlayAlways(v, f);
  Run(3);
  EXPECT_EQ(Files("spoken"), next);

  log.events.clear();  // a purge stops the playing file and leaves one entry
  PlayAlways(v, "Long.wav");
  Run(1);
  PlayAlways(v, "Hello.wav");
  PlayAndPurge(v, "One.wav", 9, 30);
  EXPECT_TRUE(audio.played.back().stopped);
  EXPECT_EQ(s.Channels[0].Count, 1);
  Run(2);
  EXPECT_EQ(Files("spoken"), (Strings{"Long.wav", "One.wav"}));
}

TEST_F(Booth, EntryPastItsExpiryIsPassedOverWithoutCaption) {
  // Its turn comes at the first step after the blocker's end.
  for (auto [ms, expiry, spoken] : {std::tuple{2375, 4, true}, {2500, 4, false}, {5000, 0, true}}) {
    Reset();
    Put("Sound/Anna/Blocker.wav", Wav(ms));
    Voice v = V();
    PlayAlways(v, "Blocker.wav");
    PlayPerhaps(v, "Hello.wav", 5, 30, expiry);
    Run(12);
    EXPECT_EQ(Files(spoken ? "spoken" : "dropped").back(), "Hello.wav") << ms;
    EXPECT_EQ(s.CaptionBuffer.find("Hello") != std::string::npos, spoken);
  }
}

TEST_F(Booth, DisabledSoundWithCaptionsKeepsThePaceSilently) {
  struct Case {
    bool disable, captions, muted;
    size_t files;
    int volume;
    std::string buffer;
  };
  const Case cases[] = {
      {false, true, false, 2, 0, "Hello, pilot. one"},
      {true, true, false, 2, -30000, "Hello, pilot. one"},
      {true, false, false, 0, 0, ""},
      {false, true, true, 0, 0, ""},  // the pilot said "stop"
  };
  for (const Case& c : cases) {
    Reset();
    s.DisableSound = c.disable;
    s.CaptionsOn = c.captions;
    s.Muted = c.muted;
    Voice v = V();
    SetVolumeAtConnection(v);
    PlayAlways(v, "Hello.wav");
    PlayAlways(v, "One.wav");
    Run(2);
    ASSERT_EQ(audio.played.size(), c.files) << c.disable << c.captions << c.muted;
    for (const auto& p : audio.played) EXPECT_EQ(p.volume, c.volume);
    if (c.files == 2) {
      EXPECT_EQ(audio.played[1].startMs, 375);  // Hello lasts 300 ms
    }
    EXPECT_EQ(log.OfType("dropped").size(), 2 - c.files);
    EXPECT_EQ(s.CaptionBuffer, c.buffer);
  }
}

TEST(CaptionKey, AircraftFoldersPrefixTheFileInTheirOrder) {
  const std::pair<const char*, const char*> cases[] = {
      {"Sound\\Anna\\c172\\vs.wav", "VS.WAV"},  // not a caption folder
      {"Sound\\Anna\\B7370\\vs.wav", "VS.WAV"},
      {"Sound\\Anna\\DC3\\B737\\x.wav", "DC3\\B737\\X.WAV"},  // the later folder outermost
  };
  for (const auto& [path, key] : cases) EXPECT_EQ(CaptionKey(path), key) << path;
}

TEST_F(Booth, CaptionsRunTogetherWithinOneTickAndKeepTheLast150) {
  EXPECT_EQ(s.CaptionTable.size(), 5u);  // first duplicate wins, empty key skipped
  Voice v = V();
  PlayAlways(v, "One.wav");
  PlayAlways(v, "Two.wav");
  Run(1);
  v.tick = tick;
  PlayAlways(v, "Three.wav");
  PlayAlways(v, "B737\\LandedTooFast.wav");
  Run(1);
  const std::string said = "one two      three Too fast for the seven three seven.";
  EXPECT_EQ(s.CaptionBuffer, said);
  EXPECT_EQ(image.String(kMessageTextOffset), said);
  EXPECT_EQ(image.U16(kMessageSecondsOffset), 15);
  EXPECT_TRUE(log.OfType("message").empty());

  s.CaptionBuffer = std::string(149, 'x');
  v.tick = tick;
  PlayAlways(v, "One.wav");
  Run(1);
  EXPECT_EQ(s.CaptionBuffer, std::string(141, 'x') + "      one");
  EXPECT_EQ(image.String(kMessageTextOffset), Right(s.CaptionBuffer, 113));

  v.tick = tick;  // a missing file: silence in its place, no caption, no new sentence
  PlayAlways(v, "Nowhere.wav");
  Run(1);
  EXPECT_TRUE(audio.played.back().path.ends_with("FSSilence.wav"));
  EXPECT_EQ(log.OfType("spoken").back().Int("missing"), 1);
  EXPECT_EQ(s.CaptionBuffer, std::string(141, 'x') + "      one");
  EXPECT_EQ(s.Channels[0].LastStamp, tick - 2);
}

TEST_F(Booth, MessageLineAsThePilotReadsIt) {
  const std::string status = "NAV1OBS:090  Taxiing  WPT:Unknown [000]     ";  // 44 wide
  const std::string circuit = "NAV1OBS:090  Taxiing  CIRCUIT:        [FSR]  WPT:Unknown [000]     ";
  const std::string cs(150, 'c'), t56(56, 't'), t69(69, 't');
  struct Case {
    bool circuit, only;
    std::string buffer, text, line;  // line "": the standard failure report
  };
  const Case cases[] = {
      {false, false, "", "Hello", status + "Hello"},
      {true, false, "", "Hi", circuit + "Hi"},
      {false, false, cs, t56, status + t56 + "  ::  " + std::string(13, 'c')},
      {false, false, cs, t69, status + t69 + "  ::  "},
      {false, false, cs, t69 + "t", ""},  // 114 wide: a negative cut
      {false, false, "", "-caption-mode-", "-caption-mode-"},
      {false, false, cs, "-caption-mode-", std::string(113, 'c')},
      {false, true, cs, std::string(130, 'r'), std::string(119, 'r')},
  };
  s.Status.Nav1OBS = 90;
  s.Status.Mode = "Taxiing  ";
  for (const Case& c : cases) {
    Reset();
    s.Status.CircuitTraining = c.circuit;
    s.Status.DataSource = c.circuit ? "[FSR]  " : "";
    s.CaptionBuffer = c.buffer;
    Voice v = V();
    if (c.line.empty()) {
      EXPECT_THROW(DisplayFSMessage(v, c.text, 5), FailureReport);
      EXPECT_TRUE(link.writes.empty());
      continue;
    }
    EXPECT_TRUE(c.only ? DisplayOnlyThisTextFSMessage(v, c.text, 5)
                       : DisplayFSMessage(v, c.text, 5));
    ASSERT_EQ(link.writes.size(), 2u) << c.text;
    EXPECT_EQ(link.writes[0].offset, kMessageTextOffset);
    EXPECT_EQ(std::string(link.writes[0].bytes.begin(), link.writes[0].bytes.end()),
              c.line + std::string(1, '\0'));
    EXPECT_EQ(link.writes[1].offset, kMessageSecondsOffset);
    EXPECT_EQ(link.writes[1].bytes, (std::vector<uint8_t>{5, 0}));
    EXPECT_EQ(log.OfType("message").size(), c.text == "-caption-mode-" ? 0u : 1u);
  }
}

TEST(Wav, RecordingsLastForTheirHeadersDuration) {
  const std::pair<std::string, int64_t> cases[] = {
      {Wav(1000, "LIST" + Le(3, 4) + "abc" + '\0'), 1000},  // an odd chunk is padded
      {Wav(500, "", 0xFFFFFFFF), 500},                      // streamed: what the file holds
      {Wav(500, "", 0, 2), 0},                              // torn format
  };
  for (const auto& [bytes, ms] : cases) EXPECT_EQ(ParseWavHeader(bytes).durationMs, ms);
}

}  // namespace
}  // namespace vantoro
