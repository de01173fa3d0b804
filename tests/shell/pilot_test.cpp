#include "shell/pilot.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "world/temp_folder.h"

namespace vantoro {

// Failures show the pilot as his file would hold him.
void PrintTo(const PilotRecord& r, std::ostream* os) {
  *os << "\n" << ComposePilotFile(r);
}

namespace {

struct Desk {
  TempFolder dir;
  SoundState sound;
  EngineOptions options;
  PilotTab tab;
  explicit Desk(const std::string& tag = "") : dir(tag) {
    sound.Instructors = {"Anna", "Kate"};
    sound.Instructor = "Kate";
    std::filesystem::create_directories(dir.Root() + "PilotRoster");
  }
  std::string Load(const std::string& file) { return LoadPilotData(file, tab, sound, options); }
};

// A pilot who changed everything a pilot can change.
PilotRecord Everything() {
  PilotRecord r;
  r.name = "Smith, John; \"Jack\"";
  r.image = "C:\\Pictures\\jack // 2.png";
  r.HaveYokePressure = r.RudderController = r.WantRandomFailures = r.WantLooseWireFailures = true;
  r.WantTaxiInWindAdvice = r.MonitorUseOfLights = r.PauseWarning = false;
  r.FailureSlider = 75;
  r.PauseGap = 120;
  r.PausePointsLoss = r.Basic = r.DisableSound = r.AnnounceNearestAirport = true;
  r.BackgroundSounds = r.Humour = r.Captions = r.MonGT = r.MonAT = false;
  r.AdviceWP = r.AdviceVORNDB = r.MonitorVOR = r.MonitorTaxiways = false;
  r.Instructor = "Anna";
  r.InstructorNoticesFailures = r.AutoDetectModeCruise = r.AutoDetectModeLanding = false;
  r.AutoTuneILS = r.AutoTuneATIS = r.AutoTuneVOR = true;
  return r;
}

TEST(PilotFile, SavedPilotLoadsUnchanged) {
  Desk saver("-saver");
  saver.tab.Record = Everything();
  saver.sound.Instructor = "Anna";
  ASSERT_EQ(SavePilotAs(saver.dir.Root(), "jack", saver.tab, saver.sound), "");
  EXPECT_EQ(saver.tab.CurrentPilotFile, saver.dir.Root() + "PilotRoster\\jack.plt");

  Desk d;
  ASSERT_EQ(d.Load(saver.tab.CurrentPilotFile), "");
  PilotRecord want = Everything();
  want.name = "Smith, John; Jack";  // a double quote cannot be written: the parser drops it
  EXPECT_EQ(d.tab.Record, want);
  EXPECT_EQ(d.sound.Instructor, "Anna");
  EXPECT_TRUE(d.sound.DisableSound && !d.sound.CaptionsOn);
  EXPECT_EQ(d.options.FailureSlider, 75);
  EXPECT_TRUE(d.options.AnnounceNearestAirport);
  EXPECT_FALSE(d.tab.Unsaved);
}

TEST(PilotFile, SamplePilotIsWrittenBackByteForByte) {
  const std::string sample =
      ReadWhole(std::string(VANTORO_SOURCE_DIR) + "/data/PilotRoster/LightSpeed.plt");
  Desk d;
  d.sound.Instructor = "Anna";
  ASSERT_EQ(d.Load(d.dir.Write("LightSpeed.plt", sample)), "");
  PilotRecord defaults;
  defaults.name = "LightSpeed";
  defaults.Instructor = "Kate";
  EXPECT_EQ(d.tab.Record, defaults);
  ASSERT_EQ(SavePilotData(d.tab, d.sound), "");
  EXPECT_EQ(d.dir.Read("LightSpeed.plt"), sample);
}

TEST(PilotFile, KeysReadByTheirRules) {
  struct Case {
    const char* text;
    void (*check)(const PilotRecord&);
  };
  const Case cases[] = {
      {"[sound setup]\nAutoDetectModeCruise=1\nAutoDetectModeLanding=1\n",  // an older file
       [](const PilotRecord& r) {
         EXPECT_TRUE(r.AutoDetectModeCruise && r.AutoDetectModeLanding);
       }},
      {"[sound setup]\nAutoDetectModeCruise=1\nAutoDetectModeLanding=1\n"
       "[auto detect setup]\nAutoDetectModeCruise=0\n",  // the newer section wins
       [](const PilotRecord& r) {
         EXPECT_TRUE(!r.AutoDetectModeCruise && r.AutoDetectModeLanding);
       }},
      {"[flight settings]\nFailureSlider=lots\nPauseGap=\nWantRandomFailures=yes\n",
       [](const PilotRecord& r) {
         EXPECT_EQ(r.FailureSlider, 55);  // not a number: the slider stays
         EXPECT_EQ(r.PauseGap, 40);
         EXPECT_FALSE(r.WantRandomFailures);  // only "1" checks a box
         EXPECT_FALSE(r.MonitorUseOfLights);  // a missing key clears one
       }},
      {"[flight settings]\nFailureSlider=250\n[sound setup]\nInstructor=Gone\n",
       [](const PilotRecord& r) {
         EXPECT_EQ(r.FailureSlider, 100);
         EXPECT_EQ(r.Instructor, "Kate");  // not installed: the selection stays
       }},
  };
  for (const Case& c : cases) {
    Desk d;
    d.tab.Record.FailureSlider = 55;
    d.tab.Record.PauseGap = 40;
    ASSERT_EQ(d.Load(d.dir.Write("p.plt", c.text)), "");
    SCOPED_TRACE(c.text);
    c.check(d.tab.Record);
  }
}

TEST(PilotFile, AFailedLoadChangesNothing) {
  Desk d;
  d.tab.Record = Everything();
  const std::string missing = d.dir.Root() + "PilotRoster\\nobody.plt";
  EXPECT_NE(d.Load(missing).find(missing), std::string::npos);
  EXPECT_EQ(d.tab.Record, Everything());
  EXPECT_EQ(d.tab.CurrentPilotFile, "");
}

TEST(PilotPage, NewPilotAndUnsavedChanges) {
  Desk d;
  d.sound.Instructors.clear();
  EXPECT_EQ(NewPilot(d.tab, d.sound, d.options), "Error: No instructors are installed");
  d.sound.Instructors = {"Anna", "Kate"};
  d.tab.Record.FailureSlider = 90;
  ASSERT_EQ(NewPilot(d.tab, d.sound, d.options), "");
  EXPECT_EQ(d.tab.Record.FailureSlider, 30);
  EXPECT_EQ(d.sound.Instructor, "Anna");
  EXPECT_TRUE(d.tab.Unsaved);  // no file yet
  EXPECT_EQ(SavePilotAs(d.dir.Root(), "  ", d.tab, d.sound),
            "Please enter a file to save the Pilot to!");
  ASSERT_EQ(SavePilotAs(d.dir.Root(), "Ann.PLT", d.tab, d.sound), "");
  EXPECT_EQ(ListPilotFiles(d.dir.Root()), std::vector<std::string>{"Ann.PLT"});
  EXPECT_FALSE(d.tab.Unsaved);
  d.sound.Instructor = "Kate";  // another voice chosen from the list
  RefreshPilotData(d.tab, d.sound, d.options);
  EXPECT_TRUE(d.tab.Unsaved);
  ASSERT_EQ(SavePilotData(d.tab, d.sound), "");
  EXPECT_FALSE(d.tab.Unsaved);
  EXPECT_EQ(PilotFileForName("C:\\V", "jack.plt.bak"), "C:\\V\\PilotRoster\\jack.plt.bak.plt");
}

std::string Bytes(std::initializer_list<int> bytes) {
  std::string s;
  for (int b : bytes) s += static_cast<char>(b);
  return s;
}

TEST(PilotImage, SizeFromTheHeaderOfEachFormat) {
  const std::string png = Bytes({0x89, 'P', 'N', 'G', 13, 10, 26, 10, 0,  0, 0, 13, 'I', 'H', 'D',
                                 'R',  0,   0,   0,   80, 0,  0,  0,  64, 8, 6, 0,  0,   0});
  const std::string gif = "GIF89a" + Bytes({44, 1, 81, 0, 0, 0});
  const std::string bmp = "BM" + std::string(12, '\0') +  // 80 wide, stored top down 80 high
                          Bytes({40, 0, 0, 0, 80, 0, 0, 0, 0xB0, 0xFF, 0xFF, 0xFF, 1, 0, 24, 0});
  const std::string jpeg = Bytes({0xFF, 0xD8, 0xFF, 0xE0, 0,  4, 0, 0,  // a segment to skip,
                                  0xFF, 0xFF, 0xC2, 0,    17, 8,        // a fill byte, a frame
                                  1,    0xE0, 2,    0x80, 3,  0, 0, 0, 0});
  const std::pair<std::string, std::optional<std::pair<int, int>>> cases[] = {
      {png, {{80, 64}}},        {gif, {{300, 81}}},      {bmp, {{80, 80}}},  {jpeg, {{640, 480}}},
      {jpeg.substr(0, 17), {}}, {png.substr(0, 20), {}}, {"plain text", {}},
  };
  for (const auto& [bytes, want] : cases) {
    const auto size = ReadImageSize(bytes);
    EXPECT_EQ(size ? std::optional(std::pair(size->width, size->height)) : std::nullopt, want)
        << bytes.substr(0, 4);
  }

  // Over 80 pixels is refused, height first, and the old picture stays.
  Desk d;
  d.tab.Record.image = "old.png";
  EXPECT_EQ(SetPilotImage(d.tab, d.dir.Write("tall.gif", gif)),
            "The image cannot be over 80 pixels high!");
  EXPECT_EQ(SetPilotImage(d.tab, d.dir.Write("wide.gif", "GIF87a" + Bytes({81, 0, 80, 0}))),
            "The image cannot be over 80 pixels wide!");
  EXPECT_FALSE(SetPilotImage(d.tab, d.dir.Write("notes.png", "text")).empty());
  EXPECT_EQ(d.tab.Record.image, "old.png");
  const std::string square = d.dir.Write("square.bmp", bmp);
  EXPECT_EQ(SetPilotImage(d.tab, square), "");
  EXPECT_EQ(d.tab.Record.image, square);
}

}  // namespace
}  // namespace vantoro
