#include "link/recording.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "base/gzip.h"
#include "cli/record.h"
#include "link/image_link.h"
#include "support/scenario.h"

namespace vantoro {
namespace {

std::string Rec(std::string_view body) {
  return std::string(kRecordingFirstLine) + "\n" + std::string(body);
}

TEST(RecordingReader, ErrorsNameTheFileAndLine) {
  const std::string outside =
      " lies outside the offset blocks (0020-401F, 6000-61FF, B800-C7FF, "
      "E020-1001F)";
  const std::pair<std::string, std::string> cases[] = {
      {"", "f.vrec:1: not a recording: the first line must be \"vantoro-recording 1\""},
      {"vantoro-recording 2\ntick\n",
       "f.vrec:1: recording version '2' is not one this program reads (vantoro-recording 1)"},
      {Rec("tick\n\n# note\nwrite 0366 1\n"), "f.vrec:5: unknown directive 'write'"},
      {Rec("u16 401F 1\n"), "f.vrec:2: a write of 2 bytes at 401F" + outside},
      {Rec("u8 0010 1\n"), "f.vrec:2: a write of 1 byte at 0010" + outside},
      {Rec("str 401E ab\n"), "f.vrec:2: a write of 3 bytes at 401E" + outside},
      {Rec("u16 02BC 12x\n"), "f.vrec:2: malformed number '12x' for u16"},
      {Rec("u8 0366 256\n"), "f.vrec:2: value 256 is out of range for u8 (0..255)"},
      {Rec("u16 0366 -1\n"), "f.vrec:2: value -1 is out of range for u16 (no sign)"},
      {Rec("i8 0366 -129\n"), "f.vrec:2: value -129 is out of range for i8 (-128..127)"},
      {Rec("u64 0560 18446744073709551616\n"),
       "f.vrec:2: value 18446744073709551616 is out of range for u64"},
      {Rec("f32 0560 1e39\n"), "f.vrec:2: value 1e39 is out of range for f32"},
      {Rec("f64 0560 nan\n"), "f.vrec:2: malformed number 'nan' for f64"},
      {Rec("u16 0x0366 1\n"), "f.vrec:2: offset '0x0366' must be written without \"0x\""},
      {Rec("u16 03G6 1\n"), "f.vrec:2: malformed offset '03G6'"},
      {Rec("u16 0366\n"), "f.vrec:2: a value is missing after the offset"},
      {Rec("u16 0366 1 2\n"), "f.vrec:2: unexpected '2' at the end of the line"},
      {Rec("set 0366 0\n"), "f.vrec:2: bytes '0' are not whole hex pairs"},
      {Rec("set 0366 0Z\n"), "f.vrec:2: malformed byte '0Z'"},
      {Rec("set 0366\n"), "f.vrec:2: set needs bytes after the offset (hex pairs)"},
      {Rec("clock 2026-02-29T10:00:00\n"),
       "f.vrec:2: malformed date and time '2026-02-29T10:00:00' (2026-11-21T14:05:00)"},
      {Rec("clock\n"), "f.vrec:2: clock needs a date and time (2026-11-21T14:05:00)"},
      {Rec("key 16\n"), "f.vrec:2: key needs a hot key slot from 1 to 15, not '16'"},
      {Rec("key 0\n"), "f.vrec:2: key needs a hot key slot from 1 to 15, not '0'"},
      {Rec("say   \n"), "f.vrec:2: say needs the phrase the pilot speaks"},
      {Rec("tick 0\n"), "f.vrec:2: tick count 0 is out of range (1..10000000)"},
      {Rec("tick two\n"), "f.vrec:2: malformed tick count 'two'"},
      {Rec("tick\nu8 0366 \x01\n"), "f.vrec:3: malformed number '\\x01' for u8"},
  };
  for (const auto& [text, message] : cases) {
    Recording r;
    std::string error;
    EXPECT_FALSE(ParseRecording("f.vrec", text, r, error)) << text;
    EXPECT_EQ(error, message) << text;
    // Nothing of a bad recording is kept, so nothing of it can run.
    EXPECT_TRUE(r.steps.empty()) << text;
  }
}

TEST(RecordingReader, TypedWritesLandAtTheirBytes) {
  struct Case {
    const char* line;
    uint32_t offset;
    std::vector<uint8_t> bytes;
  };
  const Case cases[] = {
      {"u8 0366 1", 0x0366, {0x01}},
      {"u16 02bc 12800", 0x02BC, {0x00, 0x32}},
      {"u32 02B4 65536", 0x02B4, {0x00, 0x00, 0x01, 0x00}},
      {"u64 0560 1", 0x0560, {1, 0, 0, 0, 0, 0, 0, 0}},
      {"i8 0C48 -1", 0x0C48, {0xFF}},
      {"i16 0842 -2", 0x0842, {0xFE, 0xFF}},
      {"i16 0842 +5", 0x0842, {0x05, 0x00}},
      {"i32 0574 -32768", 0x0574, {0x00, 0x80, 0xFF, 0xFF}},
      {"f32 6048 1.5", 0x6048, {0x00, 0x00, 0xC0, 0x3F}},
      {"f64 0918 -2", 0x0918, {0, 0, 0, 0, 0, 0, 0x00, 0xC0}},
      {"set 0BC8 ff 7F", 0x0BC8, {0xFF, 0x7F}},
      {"str 3D00 C 172  SP", 0x3D00, {'C', ' ', '1', '7', '2', ' ', ' ', 'S', 'P', 0}},
      {"str B810", 0xB810, {0}},
      {"u8 1001F 7", 0x1001F, {0x07}},
      {"u16 401E 513", 0x401E, {0x01, 0x02}},
  };
  for (const Case& c : cases) {
    Recording r;
    std::string error;
    ASSERT_TRUE(ParseRecording("f", Rec(c.line), r, error)) << c.line << ": " << error;
    ASSERT_EQ(r.steps.size(), 1u);
    OffsetImage image;
    // What lay there before is overwritten only where the write reaches.
    const std::vector<uint8_t> before(c.bytes.size() + 2, 0xAA);
    image.SetBytes(c.offset - 1, before.data(), static_cast<uint32_t>(before.size() - 1));
    ApplyWrite(image, r.steps[0]);
    std::vector<uint8_t> got(c.bytes.size());
    image.GetBytes(c.offset, got.data(), static_cast<uint32_t>(got.size()));
    EXPECT_EQ(got, c.bytes) << c.line;
    EXPECT_EQ(image.U8(c.offset - 1), 0xAA) << c.line;
  }
}

TEST(RecordingReader, ReadsEveryOtherDirectiveInOrder) {
  const std::string text =
      "\xEF\xBB\xBF"
      "vantoro-recording 1\r\n"
      "  # a comment\r\n"
      "\r\n"
      "clock 2026-11-21T14:05:00\r\n"
      "key 7\r\n"
      "say   next flight mode  \r\n"
      "tick\r\n"
      "tick 20\r\n";
  Recording r;
  std::string error;
  ASSERT_TRUE(ParseRecording("f", text, r, error)) << error;
  ASSERT_EQ(r.steps.size(), 5u);
  EXPECT_EQ(r.steps[0].kind, RecordingStep::Kind::Clock);
  EXPECT_EQ(FormatIsoTime(r.steps[0].clock), "2026-11-21T14:05:00");
  EXPECT_EQ(r.steps[0].line, 4);
  EXPECT_EQ(r.steps[1].key, 7);
  EXPECT_EQ(r.steps[2].phrase, "next flight mode");
  EXPECT_EQ(r.TotalTicks(), 21);
}

TEST(RecordingFiles, CompressedAndPlainReadAlike) {
  const std::filesystem::path dir = std::filesystem::temp_directory_path() /
                                    ("vantoro-recording-test-" + std::to_string(::getpid()));
  std::filesystem::create_directories(dir);
  auto Write = [&dir](const std::string& name, const std::string& bytes) {
    std::ofstream((dir / name).string(), std::ios::binary) << bytes;
    return (dir / name).string();
  };
  const std::string text = Rec("u16 02BC 12800\nstr 3D00 Cessna\ntick 3\n");
  Recording plain, packed;
  std::string error;
  ASSERT_TRUE(LoadRecording(Write("a.vrec", text), plain, error)) << error;
  // Told by content, not by name.
  ASSERT_TRUE(LoadRecording(Write("c.vrec", GzipText(text)), packed, error)) << error;
  ASSERT_EQ(packed.steps.size(), plain.steps.size());
  for (size_t i = 0; i < plain.steps.size(); ++i)
    EXPECT_EQ(packed.steps[i].bytes, plain.steps[i].bytes);
  EXPECT_EQ(packed.TotalTicks(), 3);

  // A bad line inside a compressed file is told with the file's name.
  const std::string bad = Write("bad.vrec.gz", GzipText(Rec("tick\nbogus\n")));
  EXPECT_FALSE(LoadRecording(bad, packed, error));
  EXPECT_EQ(error, bad + ":3: unknown directive 'bogus'");

  std::string damaged = GzipText(text);
  damaged.resize(damaged.size() / 2);
  // 8 MB of one repeated line packs into some 8 KB: refused after the first
  // megabyte instead of being inflated whole.
  std::string huge = Rec("");
  while (huge.size() < (size_t{8} << 20)) huge += "tick\n";
  const std::pair<std::string, std::string> refused[] = {
      {Write("cut.vrec.gz", damaged), ": damaged compressed data"},
      {Write("bomb.vrec.gz", GzipText(huge)),
       ": compressed data that inflates far beyond any real file (refused)"},
  };
  for (const auto& [file, why] : refused) {
    EXPECT_FALSE(LoadRecording(file, packed, error));
    EXPECT_EQ(error, file + why);
  }

  std::filesystem::remove_all(dir);
}

// What the writer records, replayed, gives back the simulator's memory as it
// was at every tick.
TEST(RecordingWriter, ReplayOfARecordingRestoresEveryTick) {
  OffsetImage sim;
  ImageLink link(sim);
  std::vector<std::vector<uint8_t>> seen;
  auto snapshot = [](const OffsetImage& image) {
    std::vector<uint8_t> all(kMainBlockSize + kTrafficBlockSize);
    image.GetBytes(kMainBlockOffset, all.data(), kMainBlockSize);
    image.GetBytes(kTrafficBlockOffset, all.data() + kMainBlockSize, kTrafficBlockSize);
    return all;
  };
  int step = 0;
  auto before = [&] {
    // The simulator moves between samples: scattered and neighbouring bytes;
    // from the fourth on nothing changes: bare ticks.
    if (step == 0) {
      sim.SetU16(0x02BC, 12800);
      sim.SetString(0x3D00, "Cessna Skyhawk");
      sim.SetU8(0x1001F, 9);
    } else if (step == 1) {
      sim.SetU16(0x02BC, 12928);
      sim.SetU8(0x0366, 1);
      sim.SetU8(0x036A, 1);  // three unchanged bytes between: one line
    } else if (step == 2) {
      sim.SetU8(0x0366, 0);
    }
    ++step;
    seen.push_back(snapshot(sim));
    return true;
  };
  std::string text, error;
  FixedClock clock(WallTime{2026, 11, 21, 14, 5, 0});
  ASSERT_TRUE(RecordFlight(link, clock, 4, before, text, error)) << error;
  EXPECT_NE(text.find("clock 2026-11-21T14:05:00\n"), std::string::npos);
  EXPECT_NE(text.find("set 0366 0100000001\n"), std::string::npos) << text;
  EXPECT_NE(text.find("\nset 0366 00\ntick\ntick\n"), std::string::npos) << text;

  std::vector<std::vector<uint8_t>> replayed;
  testing::ForEachTick(
      text, [&](const OffsetImage& image, int64_t) { replayed.push_back(snapshot(image)); });
  ASSERT_EQ(replayed.size(), seen.size());
  for (size_t i = 0; i < seen.size(); ++i) EXPECT_TRUE(replayed[i] == seen[i]) << "tick " << i + 1;
}

}  // namespace
}  // namespace vantoro
