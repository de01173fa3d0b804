// The replay starts as the live program does: the root's settings.ini, then
// the pilot it names, and what they choose is what the pilot hears and how
// his flight ends.
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "base/files.h"
#include "base/text.h"
#include "cli/commands.h"
#include "shell/replay.h"
#include "support/scenario.h"

namespace vantoro {
namespace {

namespace fs = std::filesystem;

// A short flight: the nav lights go on after the first reads (the instant
// help explains the switch), a circuit-less hop, a stop on the runway
// without the brake, then the brake set; the engine keeps running.
constexpr char kHop[] = R"(clock 2026-06-14T09:30:00
aircraft title Cessna Skyhawk 172SP
aircraft path SimObjects\Airplanes\C172\Cessna172SP.air
aircraft engines 1
field elevation 270
wind 010 6
position 51.82978359 -1.31962215
heading 10.7
set brake off lights off
engine start
wait for 40
set lights nav
wait for 5
takeoff speed 55
rotate pitch 8 vs 600
climb to 600 vs 700 speed 74
approach to 20 vs 450 speed 65 flaps 30
flare
touchdown
rollout speed 12
stop
wait for 10
set brake on
wait for 10
)";

enum class Ends { AtStop, AtBrake, Never };

class Startup : public ::testing::Test {
 protected:
  void SetUp() override {
    dir_ = fs::temp_directory_path() / ("vantoro-startup-test-" + std::to_string(::getpid()));
    fs::remove_all(dir_);
    fs::create_directories(dir_ / "PilotRoster");
    // The delivered data, but a pilot roster and settings of the test's own.
    for (const char* folder : {"Aircraft", "World", "text", "Sound"}) {
      const fs::path from = fs::path(testing::DataRoot()) / folder;
      if (fs::exists(from)) fs::create_directory_symlink(from, dir_ / folder);
    }
    fs::copy_file(fs::path(testing::DataRoot()) / "PilotRoster" / "LightSpeed.plt",
                  dir_ / "PilotRoster" / "LightSpeed.plt");
    std::ofstream(dir_ / "PilotRoster" / "Ace.plt", std::ios::binary) << "[pilot]\r\nname=Ace\r\n";
    std::ofstream(dir_ / "hop.vrec", std::ios::binary) << testing::GenerateScript(kHop);
  }
  void TearDown() override { fs::remove_all(dir_); }

  // Replays the hop with the root's settings; the events, one line each.
  std::vector<std::string> Fly(const std::string& settings, std::string& err) {
    fs::remove_all(dir_ / "settings.ini");
    fs::remove_all(dir_ / "out");
    if (settings == "folder") {
      fs::create_directory(dir_ / "settings.ini");
    } else if (!settings.empty()) {
      std::ofstream(dir_ / "settings.ini", std::ios::binary) << settings;
    }
    std::ostringstream out, errors;
    CliContext cli{"vantoro-cli", out, errors};
    const int status =
        ReplayCommand({(dir_ / "hop.vrec").string(), "--root", dir_.string(), "--out",
                       (dir_ / "out").string(), "--events", "-", "--instant"},
                      cli);
    err = errors.str();
    EXPECT_EQ(status, kExitOk) << err;
    return Split(Trim(out.str()), '\n');
  }

  fs::path dir_;
};

int TickOf(const std::string& line) {
  return std::stoi(line.substr(line.find(':') + 1));
}

TEST_F(Startup, TheRootsSettingsChooseWhatIsSaidAndWhenTheFlightEnds) {
  const std::string missingFsx = (dir_ / "nowhere").string();
  struct Row {
    const char* what;
    std::string settings;  // "" none, "folder" a folder in its place
    bool instantHelp;      // the nav lights are explained
    Ends ends;
    std::string pilot;  // named in the landing report
    std::string notice;
  };
  const Row rows[] = {
      {"first start: the sample pilot", "", true, Ends::AtStop, "LightSpeed", ""},
      {"instant help off", "[Misc]\r\nInstantHelp=0\r\n", false, Ends::AtStop, "", ""},
      {"other tips off, instant help on", "[Misc]\r\nSpokenTips=0\r\nInstantHelp=1\r\n", true,
       Ends::AtStop, "", ""},
      {"ends with the brake set", "[Misc]\r\nEndFlight=1\r\n", true, Ends::AtBrake, "", ""},
      {"ends with the engines off", "[Misc]\r\nEndFlight=2\r\n", true, Ends::Never, "", ""},
      {"a 0 keeps the design's choice", "[Misc]\r\nEndFlight=0\r\n", true, Ends::AtStop, "", ""},
      {"the last pilot", "[Pilot]\r\nPilotFile=PilotRoster\\Ace.plt\r\n", true, Ends::AtStop, "Ace",
       ""},
      {"a damaged settings file: defaults", "folder", true, Ends::AtStop, "",
       "settings.ini: the settings file cannot be read; defaults used"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.what);
    std::string err;
    const std::vector<std::string> lines = Fly(row.settings, err);
    bool explained = false;
    int stop = -1;
    int flight = -1;
    int modes = 0;
    std::string landing;
    for (const std::string& line : lines) {
      if (line.find("\"type\":\"queued\",\"file\":\"raxnl.wav\"") != std::string::npos)
        explained = true;
      if (line.find("\"type\":\"mode\",\"mode\":\"Taxiing\"") != std::string::npos && ++modes == 2)
        stop = TickOf(line);
      if (line.find("\"type\":\"flight\"") != std::string::npos) flight = TickOf(line);
      if (line.find("\"type\":\"landing\"") != std::string::npos) landing = line;
    }
    EXPECT_EQ(explained, row.instantHelp);
    ASSERT_GT(stop, 0) << "the hop never stopped";
    switch (row.ends) {
      case Ends::AtStop:
        EXPECT_EQ(flight, stop);
        break;
      case Ends::AtBrake:
        EXPECT_GT(flight, stop);
        break;
      case Ends::Never:
        EXPECT_EQ(flight, -1);
        break;
    }
    EXPECT_NE(landing.find("\"report\":\"" + row.pilot + " piloting"), std::string::npos)
        << landing.substr(0, 120);
    if (!row.notice.empty()) {
      EXPECT_NE(err.find(row.notice), std::string::npos) << err;
    }
  }

  // A simulator folder named but missing refuses the connection: nothing is
  // flown, and the pilot is told which folder.
  std::string err;
  const std::vector<std::string> refused = Fly("[FS Folders]\r\nFSX=" + missingFsx + "\r\n", err);
  bool told = false;
  for (const std::string& line : refused) {
    EXPECT_EQ(line.find("\"type\":\"mode\""), std::string::npos) << line;
    told = told || line.find("The specified FSX folder does not exist!") != std::string::npos;
  }
  EXPECT_TRUE(told);
}

TEST_F(Startup, TheTransitionAltitudeAndFoldersReachTheEngine) {
  std::ofstream(dir_ / "settings.ini", std::ios::binary)
      << "[FS Folders]\r\nFlightPlan=" << dir_.string()
      << "\r\n[Misc]\r\nTransitionAltitude=6000\r\n";
  NoEvents events;
  Replay replay(ReplaySetup{dir_.string(), 1, true, {}, {}}, events);
  EXPECT_EQ(replay.instructor().options.TransitionAltitude, 6000);
  EXPECT_EQ(replay.instructor().options.FlightPlanFolder, TidyFolder(dir_.string()));
}

}  // namespace
}  // namespace vantoro
