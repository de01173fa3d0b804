// What the pilot is told at start-up about a root file he (or a program he
// ran) damaged: each value or line passed over is named with its file and
// line, what was used instead is said, and the rest of the file still counts.
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <functional>

#include "shell/startup.h"

namespace vantoro {
namespace {

namespace fs = std::filesystem;

struct DamagedFile {
  const char* what;
  const char* file;  // under the root
  const char* text;
  std::string told;  // the notice, without the root folder in front
  // Checked on the state after the start: the good parts of the file count.
  std::function<bool(const Instructor&)> stillRead;
};

TEST(StartupNotices, EachValuePassedOverIsNamedWithItsFileAndLine) {
  const std::string settings = "[Misc]\r\nEndFlight=2\r\n";
  const DamagedFile cases[] = {
      {"a settings number out of its range", "settings.ini",
       "[Misc]\nEndFlight=2\n[Voice]\nMode=7\n",
       "settings.ini:4: Mode=7 is not one of 0 to 2; 0 kept",
       [](const Instructor& in) { return in.settings.EndFlight == 2; }},
      {"a settings box that is not a number", "settings.ini",
       "[Misc]\nInstantHelp=yes\nEndFlight=2\n",
       "settings.ini:2: InstantHelp=yes is not a number; left as it was",
       [](const Instructor& in) { return in.settings.InstantHelp && in.settings.EndFlight == 2; }},
      {"a line of a settings file that is no key", "settings.ini", "[Misc]\nEndFlight=2\ngarbage\n",
       "settings.ini:3: a line neither a [section] nor KEY=VALUE, passed over",
       [](const Instructor& in) { return in.settings.EndFlight == 2; }},
      {"a pilot's slider past its end", "PilotRoster\\Test.plt",
       "[pilot]\nname=Ann\n[flight settings]\nFailureSlider=250\n",
       "PilotRoster/Test.plt:4: FailureSlider=250 is out of range (0 to 100); 100 used",
       [](const Instructor& in) { return in.pilot.Record.name == "Ann"; }},
      {"a pilot's box that is neither 0 nor 1", "PilotRoster\\Test.plt",
       "[pilot]\nname=Ann\n[sound setup]\nCaptions=on\n",
       "PilotRoster/Test.plt:4: Captions=on is neither 0 nor 1; taken as 0",
       [](const Instructor& in) { return !in.pilot.Record.Captions; }},
      {"a pilot's gap that is not a number", "PilotRoster\\Test.plt",
       "[pilot]\nname=Ann\n[flight settings]\nPauseGap=ten\n",
       "PilotRoster/Test.plt:4: PauseGap=ten is not a number; 30 kept",
       [](const Instructor& in) { return in.pilot.Record.PauseGap == 30; }},
      {"a second caption for one sound", "text\\english.txt",
       "[Sound Files]\nFlaps.wav=Flaps.\nFlaps.wav=Flaps again.\n",
       "text/english.txt:3: a second caption for FLAPS.WAV; the one at line 2 is kept",
       [](const Instructor& in) { return in.sound.CaptionTable.at("FLAPS.WAV") == "Flaps."; }},
      {"a caption line without its sound", "text\\english.txt",
       "[Sound Files]\nFlaps.wav=Flaps.\nGear down and three greens\n",
       "text/english.txt:3: a line neither a [section] nor KEY=VALUE, passed over",
       [](const Instructor& in) { return in.sound.CaptionTable.size() == 1; }},
      {"a caption file without its section", "text\\english.txt", "Flaps.wav=Flaps.\n",
       "text/english.txt: no [Sound Files] section; no captions shown",
       [](const Instructor& in) { return in.sound.CaptionTable.empty(); }},
  };
  for (const DamagedFile& c : cases) {
    SCOPED_TRACE(c.what);
    const fs::path dir =
        fs::temp_directory_path() / ("vantoro-notices-" + std::to_string(::getpid()));
    fs::remove_all(dir);
    fs::create_directories(dir / "PilotRoster");
    fs::create_directories(dir / "text");
    std::ofstream(dir / "settings.ini", std::ios::binary) << settings;
    std::ofstream(dir / "text" / "english.txt", std::ios::binary) << "[Sound Files]\n";
    std::ofstream(dir / "PilotRoster" / "Test.plt", std::ios::binary) << "[pilot]\nname=Ann\n";
    std::string name = c.file;
    std::replace(name.begin(), name.end(), '\\', '/');
    std::ofstream(dir / name, std::ios::binary) << c.text;

    const std::string root = dir.string() + "/";
    Instructor in(root, Seams{});
    const NoRegistry registry;
    Startup start(in, registry);
    start.Run(root + "PilotRoster/Test.plt", {});
    std::vector<std::string> told;
    for (const Notice& n : start.notices()) {
      std::string text = NoticeText(n);
      if (text.rfind(root, 0) == 0) text.erase(0, root.size());
      std::replace(text.begin(), text.end(), '\\', '/');
      told.push_back(text);
    }
    EXPECT_NE(std::find(told.begin(), told.end(), c.told), told.end())
        << "told instead:\n"
        << testing::PrintToString(told);
    EXPECT_TRUE(c.stillRead(in));
    fs::remove_all(dir);
  }
}

}  // namespace
}  // namespace vantoro
