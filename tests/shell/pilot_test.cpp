#include "shell/pilot.h"

#include <gtest/gtest.h>

#include "world/temp_folder.h"

namespace vantoro {

// Failures show the record as its file would hold it.
void PrintTo(const PilotRecord& r, std::ostream* os) {
  *os << "\n" << ComposePilotFile(r);
}

namespace {

SoundState Voices(std::vector<std::string> instructors, std::string selected = "Kate") {
  SoundState s;
  s.Instructors = std::move(instructors);
  s.Instructor = std::move(selected);
  return s;
}

// A pilot who changed everything a pilot can change.
PilotRecord Everything() {
  PilotRecord r;
  r.name = "Smith, John; \"Jack\"";
  r.image = "C:\\Vantoro\\Pictures\\jack // 2.png";
  r.HaveYokePressure = r.RudderController = true;
  r.WantTaxiInWindAdvice = r.MonitorUseOfLights = false;
  r.WantRandomFailures = r.WantLooseWireFailures = true;
  r.FailureSlider = 75;
  r.PausePointsLoss = true;
  r.PauseWarning = false;
  r.PauseGap = 120;
  r.Basic = true;
  r.DisableSound = true;
  r.BackgroundSounds = r.Humour = r.Captions = r.MonGT = r.MonAT = false;
  r.AdviceWP = r.AdviceVORNDB = r.MonitorVOR = r.MonitorTaxiways = false;
  r.AutoNearestAirport = true;
  r.Instructor = "Anna";
  r.InstructorNoticesFailures = false;
  r.AutoDetectModeCruise = r.AutoDetectModeLanding = false;
  r.AutoTuneILS = r.AutoTuneATIS = r.AutoTuneVOR = true;
  return r;
}

TEST(PilotFile, SavedPilotLoadsUnchanged) {
  TempFolder dir;
  SoundState sound = Voices({"Anna", "Kate"}, "Anna");
  EngineOptions options;
  PilotTab tab;
  tab.Record = Everything();
  std::filesystem::create_directories(dir.Root() + "PilotRoster");
  EXPECT_EQ(SavePilotAs(dir.Root(), "jack", tab, sound), "");
  EXPECT_EQ(tab.CurrentPilotFile, dir.Root() + "PilotRoster\\jack.plt");

  PilotTab loaded;
  SoundState other = Voices({"Anna", "Kate"});
  EXPECT_EQ(LoadPilotData(tab.CurrentPilotFile, loaded, other, options), "");
  // The name keeps its comma and semicolon; double quotes cannot be written,
  // as the parser drops every one.
  PilotRecord want = Everything();
  want.name = "Smith, John; Jack";
  EXPECT_EQ(loaded.Record, want);
  EXPECT_EQ(other.Instructor, "Anna");
  EXPECT_FALSE(loaded.Unsaved);
  EXPECT_TRUE(other.DisableSound);
  EXPECT_FALSE(other.CaptionsOn);
  EXPECT_EQ(options.FailureSlider, 75);
  EXPECT_TRUE(options.AnnounceNearestAirport);
  EXPECT_FALSE(options.AutoDetectModeCruise);
  EXPECT_EQ(options.PilotFile, tab.CurrentPilotFile);
}

TEST(PilotFile, SamplePilotIsWrittenBackByteForByte) {
  const std::string sample = std::string(VANTORO_SOURCE_DIR) + "/data/PilotRoster/LightSpeed.plt";
  TempFolder dir;
  const std::string copy = dir.Write("LightSpeed.plt", TempFolder::ReadAbsolute(sample));
  SoundState sound = Voices({"Anna", "Kate"}, "Anna");
  EngineOptions options;
  PilotTab tab;
  ASSERT_EQ(LoadPilotData(copy, tab, sound, options), "");
  EXPECT_EQ(sound.Instructor, "Kate");
  PilotRecord sampleDefaults;
  sampleDefaults.name = "LightSpeed";
  sampleDefaults.Instructor = "Kate";
  EXPECT_EQ(tab.Record, sampleDefaults);
  ASSERT_EQ(SavePilotData(tab, sound), "");
  EXPECT_EQ(dir.Read("LightSpeed.plt"), TempFolder::ReadAbsolute(sample));
}

TEST(PilotFile, KeysReadByTheirRules) {
  struct Case {
    const char* text;
    void (*check)(const PilotRecord&, const SoundState&);
  };
  const Case cases[] = {
      {"[sound setup]\nAutoDetectModeCruise=1\nAutoDetectModeLanding=1\n",  // an older file
       [](const PilotRecord& r, const SoundState&) {
         EXPECT_TRUE(r.AutoDetectModeCruise);
         EXPECT_TRUE(r.AutoDetectModeLanding);
       }},
      {"[sound setup]\nAutoDetectModeCruise=1\nAutoDetectModeLanding=1\n"
       "[auto detect setup]\nAutoDetectModeCruise=0\n",
       [](const PilotRecord& r, const SoundState&) {
         EXPECT_FALSE(r.AutoDetectModeCruise);  // the newer section wins
         EXPECT_TRUE(r.AutoDetectModeLanding);
       }},
      {"[flight settings]\nFailureSlider=lots\nPauseGap=\nWantRandomFailures=yes\n",
       [](const PilotRecord& r, const SoundState&) {
         EXPECT_EQ(r.FailureSlider, 55);  // not a number: the slider stays
         EXPECT_EQ(r.PauseGap, 40);
         EXPECT_FALSE(r.WantRandomFailures);  // only "1" checks a box
         EXPECT_FALSE(r.MonitorUseOfLights);  // a missing key clears it
       }},
      {"[flight settings]\nFailureSlider=250\n[sound setup]\nInstructor=Gone\n",
       [](const PilotRecord& r, const SoundState& s) {
         EXPECT_EQ(r.FailureSlider, 100);
         EXPECT_EQ(s.Instructor, "Kate");  // not installed: the selection stays
         EXPECT_EQ(r.Instructor, "Kate");
       }},
  };
  for (const Case& c : cases) {
    TempFolder dir;
    const std::string file = dir.Write("p.plt", c.text);
    SoundState sound = Voices({"Anna", "Kate"});
    EngineOptions options;
    PilotTab tab;
    tab.Record.FailureSlider = 55;
    tab.Record.PauseGap = 40;
    ASSERT_EQ(LoadPilotData(file, tab, sound, options), "");
    SCOPED_TRACE(c.text);
    c.check(tab.Record, sound);
  }
}

TEST(PilotFile, AFailedLoadChangesNothing) {
  TempFolder dir;
  SoundState sound = Voices({"Anna", "Kate"});
  EngineOptions options;
  PilotTab tab;
  tab.Record = Everything();
  tab.CurrentPilotFile = "old.plt";
  const std::string missing = dir.Root() + "PilotRoster\\nobody.plt";
  const std::string error = LoadPilotData(missing, tab, sound, options);
  EXPECT_NE(error.find(missing), std::string::npos);
  EXPECT_EQ(tab.Record, Everything());
  EXPECT_EQ(tab.CurrentPilotFile, "old.plt");
  EXPECT_EQ(sound.Instructor, "Kate");
}

TEST(PilotPage, UnsavedChangesAreKnownUntilSaved) {
  TempFolder dir;
  SoundState sound = Voices({"Anna", "Kate"});
  EngineOptions options;
  PilotTab tab;
  EXPECT_EQ(NewPilot(tab, sound, options), "");
  EXPECT_TRUE(tab.Unsaved);  // a new pilot has no file yet
  EXPECT_EQ(sound.Instructor, "Anna");
  EXPECT_EQ(tab.Record.FailureSlider, 30);
  EXPECT_EQ(SavePilotData(tab, sound), kNoSaveNameText);

  EXPECT_EQ(SavePilotAs(dir.Root(), "  ", tab, sound), kNoSaveNameText);
  std::filesystem::create_directories(dir.Root() + "PilotRoster");
  ASSERT_EQ(SavePilotAs(dir.Root(), "Ann.PLT", tab, sound), "");
  RefreshPilotData(tab, sound, options);
  EXPECT_FALSE(tab.Unsaved);

  tab.Record.Humour = false;
  RefreshPilotData(tab, sound, options);
  EXPECT_TRUE(tab.Unsaved);
  tab.Record.Humour = true;
  sound.Instructor = "Kate";  // another voice chosen from the list
  RefreshPilotData(tab, sound, options);
  EXPECT_TRUE(tab.Unsaved);
  ASSERT_EQ(SavePilotData(tab, sound), "");
  EXPECT_FALSE(tab.Unsaved);
  EXPECT_EQ(ListPilotFiles(dir.Root()), std::vector<std::string>{"Ann.PLT"});
}

TEST(StartUp, SettingsThenThePilotTheyName) {
  TempFolder dir;
  SoundState sound = Voices({"Anna", "Kate"});
  EngineOptions options;
  Settings settings;
  PilotTab tab;
  // First start: no settings, and the sample pilot is not installed either.
  EXPECT_NE(LoadSettingsAndPilot(dir.Root(), NoRegistry(), settings, tab, sound, options)
                .find("LightSpeed.plt"),
            std::string::npos);
  EXPECT_TRUE(tab.CurrentPilotFile.empty());

  const std::string pilot = dir.Write("PilotRoster/Ann.plt", "[pilot]\nname=Ann\n");
  dir.Write("settings.ini", "[Pilot]\nPilotFile=" + pilot + "\n[Misc]\nTransitionAltitude=3000\n");
  EXPECT_EQ(LoadSettingsAndPilot(dir.Root(), NoRegistry(), settings, tab, sound, options), "");
  EXPECT_EQ(options.TransitionAltitude, 3000);
  EXPECT_EQ(options.PilotName, "Ann");
  EXPECT_EQ(tab.CurrentPilotFile, pilot);
}

TEST(PilotPage, NoNewPilotWithoutInstructors) {
  SoundState sound = Voices({}, "");
  EngineOptions options;
  PilotTab tab;
  tab.Record = Everything();
  EXPECT_EQ(NewPilot(tab, sound, options), "Error: No instructors are installed");
  EXPECT_EQ(tab.Record, Everything());
}

TEST(PilotPage, SaveNames) {
  EXPECT_EQ(PilotFileForName("C:\\V\\", "Jack"), "C:\\V\\PilotRoster\\Jack.plt");
  EXPECT_EQ(PilotFileForName("C:\\V", "jack.Plt"), "C:\\V\\PilotRoster\\jack.Plt");
  EXPECT_EQ(PilotFileForName("C:\\V\\", "jack.plt.bak"), "C:\\V\\PilotRoster\\jack.plt.bak.plt");
  EXPECT_EQ(PilotFileForName("C:\\V\\", ""), "");
}

std::string Png(uint32_t w, uint32_t h) {
  std::string b("\x89PNG\r\n\x1a\n\0\0\0\x0dIHDR", 16);
  for (uint32_t v : {w, h})
    for (int s = 24; s >= 0; s -= 8) b += static_cast<char>((v >> s) & 0xFF);
  return b + std::string(5, '\0');
}

std::string Gif(int w, int h) {
  return std::string("GIF89a") + char(w & 0xFF) + char(w >> 8) + char(h & 0xFF) + char(h >> 8) +
         std::string(4, '\0');
}

std::string Bmp(int32_t w, int32_t h, bool core) {
  std::string b = "BM" + std::string(12, '\0');
  auto le = [&](uint32_t v, int bytes) {
    for (int i = 0; i < bytes; ++i) b += static_cast<char>((v >> (8 * i)) & 0xFF);
  };
  le(core ? 12 : 40, 4);
  le(static_cast<uint32_t>(w), core ? 2 : 4);
  le(static_cast<uint32_t>(h), core ? 2 : 4);
  return b + std::string(16, '\0');
}

std::string Jpeg(int w, int h) {
  std::string b("\xFF\xD8\xFF\xE0\x00\x10JFIF\0\x01\x01\0\0\x01\0\x01\0\0", 20);
  b += std::string("\xFF\xFF\xC2\x00\x11\x08", 6);  // a fill byte, then a progressive frame
  b += char(h >> 8) + std::string(1, char(h & 0xFF)) + char(w >> 8) + char(w & 0xFF);
  return b + std::string(9, '\0');
}

TEST(PilotImage, SizeFromTheHeaderOfEachFormat) {
  struct Case {
    std::string bytes;
    std::optional<std::pair<int, int>> size;
  };
  const Case cases[] = {
      {Png(80, 64), {{80, 64}}},
      {Gif(300, 81), {{300, 81}}},
      {Bmp(80, -80, false), {{80, 80}}},
      {Bmp(81, 12, true), {{81, 12}}},
      {Jpeg(640, 480), {{640, 480}}},
      {Jpeg(640, 480).substr(0, 27), {}},
      {Png(1, 1).substr(0, 20), {}},
      {"plain text, not a picture", {}},
      {"", {}},
  };
  for (const Case& c : cases) {
    const auto size = ReadImageSize(c.bytes);
    ASSERT_EQ(size.has_value(), c.size.has_value()) << c.bytes.size();
    if (size) {
      EXPECT_EQ(std::make_pair(size->width, size->height), *c.size);
    }
  }
}

TEST(PilotImage, OverEightyPixelsIsRefusedHeightFirst) {
  TempFolder dir;
  PilotTab tab;
  tab.Record.image = "old.png";
  EXPECT_EQ(SetPilotImage(tab, dir.Write("tall.gif", Gif(200, 81))),
            "The image cannot be over 80 pixels high!");
  EXPECT_EQ(SetPilotImage(tab, dir.Write("wide.bmp", Bmp(81, 80, false))),
            "The image cannot be over 80 pixels wide!");
  EXPECT_FALSE(SetPilotImage(tab, dir.Write("notes.png", "text")).empty());
  EXPECT_EQ(tab.Record.image, "old.png");
  const std::string square = dir.Write("square.jpg", Jpeg(80, 80));
  EXPECT_EQ(SetPilotImage(tab, square), "");
  EXPECT_EQ(tab.Record.image, square);
  EXPECT_EQ(SetPilotImage(tab, ""), "");
  EXPECT_EQ(tab.Record.image, "");
}

}  // namespace
}  // namespace vantoro
