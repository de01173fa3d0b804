#include "shell/replay.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "base/files.h"
#include "base/gzip.h"
#include "base/text.h"
#include "cli/commands.h"
#include "support/scenario.h"

namespace vantoro {
namespace {

namespace fs = std::filesystem;

TEST(Replay, PhrasesKeysAndVirtualTime) {
  Recording r;
  std::string error;
  ASSERT_TRUE(ParseRecording("r",
                             "vantoro-recording 1\n"
                             "say next flight mode\n"
                             "tick 4\n"
                             "say cancel\n"
                             "key 7\n",
                             r, error))
      << error;
  EventLog log;
  Replay replay(ReplaySetup{testing::DataRoot(), 1, true, {}, {}}, log);
  EXPECT_EQ(replay.Run(r), 4);
  // Each tick is half a second: one tick and four sound steps of 125 ms.
  EXPECT_EQ(replay.VirtualMs(), 2000);
  EXPECT_EQ(replay.Phrases(), (std::vector<std::string>{"next flight mode", "cancel"}));
  // The key is pressed as in the app: it waits for a tick that never comes.
  EXPECT_EQ(replay.instructor().flight.VoiceAction, 7);
  ASSERT_FALSE(log.events.empty());
  EXPECT_EQ(log.events.back().type, "end");
  EXPECT_EQ(log.events.back().Int("ticks"), 4);
}

// The hot keys of a replayed flight: the fifteen entries of the
// simulator's hot key table written on the first tick, key code and two
// zero bytes each, and written back to zero when a crash ends the
// connection, since the table outlives the instructor.
TEST(Replay, HotKeyEntriesAreWrittenAndClearedAtTheEnd) {
  Recording r;
  std::string error;
  ASSERT_TRUE(ParseRecording("r", "vantoro-recording 1\ntick 30\nu8 0840 1\ntick 2\n", r, error))
      << error;
  EventLog log;
  Replay replay(ReplaySetup{testing::DataRoot(), 1, true, {}, {}}, log);
  replay.Run(r);
  std::string registered, cleared, disconnect;
  for (const Event& e : log.events) {
    if (e.type == "disconnect") disconnect = e.Text("reason");
    if (e.type != "write" || e.Text("offset") < "0x3210" || e.Text("offset") > "0x324C") continue;
    (disconnect.empty() ? registered : cleared) += e.Text("offset") + "=" + e.Text("bytes") + " ";
  }
  EXPECT_NE(disconnect.find("Crash"), std::string::npos) << disconnect;
  EXPECT_EQ(registered,
            "0x3210=31030000 0x3214=32030000 0x3218=33030000 0x321C=34030000 0x3220=35030000 "
            "0x3224=44030000 0x3228=5A030000 0x322C=58030000 0x3230=43030000 0x3234=20030000 "
            "0x3238=42030000 0x323C=4E030000 0x3240=4D030000 0x3244=35000000 0x3248=53030000 ");
  EXPECT_EQ(cleared,
            "0x3210=00000000 0x3214=00000000 0x3218=00000000 0x321C=00000000 0x3220=00000000 "
            "0x3224=00000000 0x3228=00000000 0x322C=00000000 0x3230=00000000 0x3234=00000000 "
            "0x3238=00000000 0x323C=00000000 0x3240=00000000 0x3244=00000000 0x3248=00000000 ");
}

class Cli : public ::testing::Test {
 protected:
  void SetUp() override {
    dir_ = fs::temp_directory_path() / ("vantoro-cli-test-" + std::to_string(::getpid()));
    fs::create_directories(dir_);
  }
  void TearDown() override { fs::remove_all(dir_); }

  std::string Path(const std::string& name) const { return (dir_ / name).string(); }
  std::string Write(const std::string& name, const std::string& text) const {
    std::ofstream(Path(name), std::ios::binary) << text;
    return Path(name);
  }
  int Run(int (*command)(const CommandArgs&, CliContext&), const CommandArgs& args) {
    out_.str("");
    err_.str("");
    CliContext cli{"vantoro-cli", out_, err_};
    return command(args, cli);
  }

  fs::path dir_;
  std::ostringstream out_, err_;
};

TEST_F(Cli, BadReplaysEndWithStatusTwoAndWriteNothing) {
  const std::string good = Write("good.vrec", "vantoro-recording 1\ntick\n");
  const std::string bad = Write("bad.vrec", "vantoro-recording 1\ntick\nu8 0366 300\n");
  const std::string pilot = Write("Pilot.plt", "[Pilot]\n");
  const std::string root = testing::DataRoot();
  const std::string kHelp = "Run with --help for the options.\n";
  struct Case {
    CommandArgs args;
    std::string error;
  };
  const Case cases[] = {
      {{bad, "--root", root, "--pilot", pilot},
       bad + ":3: value 300 is out of range for u8 (0..255)\n"},
      {{Path("none.vrec"), "--root", root}, Path("none.vrec") + ": no such recording\n"},
      {{}, "vantoro-cli replay: RECORDING is required\n" + kHelp},
      {{good, good},
       "vantoro-cli replay: not an option or argument of this command: " + good + "\n" + kHelp},
      {{good, "--speed", "2"},
       "vantoro-cli replay: not an option or argument of this command: --speed 2\n" + kHelp},
      {{good, "--seed", "x"}, "vantoro-cli replay: Could not convert: --seed = x\n" + kHelp},
      {{good, "--root"}, "vantoro-cli replay: --root: 1 required TEXT missing\n" + kHelp},
      {{good, "--root", Path("nowhere")},
       "vantoro-cli replay: no program root folder at " + Path("nowhere") + "\n"},
      {{good, "--root", root, "--pilot", Path("nobody.plt")},
       "vantoro-cli replay: no such pilot file " + Path("nobody.plt") + "\n"},
      {{good, "--root", root, "--pilot", pilot, "--events", Path("no/such/events.jsonl")},
       "vantoro-cli replay: no folder " + Path("no/such") + " for the events\n"},
  };
  for (const Case& c : cases) {
    CommandArgs args{"--out", Path("out"), "--events", Path("events.jsonl")};
    args.insert(args.end(), c.args.begin(), c.args.end());
    EXPECT_EQ(Run(ReplayCommand, args), kExitBadInput) << c.error;
    EXPECT_EQ(err_.str(), c.error);
    EXPECT_FALSE(fs::exists(Path("out"))) << c.error;
    EXPECT_FALSE(fs::exists(Path("events.jsonl"))) << c.error;
  }
}

TEST_F(Cli, ReplayWritesEventsAndCopiesThePilot) {
  const std::string rec = Write("r.vrec.gz", GzipText("vantoro-recording 1\n"
                                                      "clock 2026-11-21T14:05:00\n"
                                                      "u8 0366 1\n"
                                                      "tick 6\n"));
  const std::string pilot = Write("Ace.plt", "[Pilot]\nName=Ace\n");
  ASSERT_EQ(
      Run(ReplayCommand, {rec, "--root", testing::DataRoot(), "--pilot", pilot, "--out",
                          Path("out"), "--events", Path("e.jsonl"), "--seed", "9", "--instant"}),
      kExitOk)
      << err_.str();
  EXPECT_EQ(ReadFile(Path("out/Ace.plt")), "[Pilot]\nName=Ace\n");
  const std::vector<std::string> lines = Split(Trim(ReadFile(Path("e.jsonl"))), '\n');
  ASSERT_FALSE(lines.empty());
  for (const std::string& line : lines) {
    EXPECT_TRUE(StartsWith(line, "{\"tick\":")) << line;
    EXPECT_NE(line.find(",\"type\":\""), std::string::npos) << line;
  }
  EXPECT_TRUE(StartsWith(lines.back(), "{\"tick\":")) << lines.back();
  EXPECT_TRUE(EndsWith(lines.back(), ",\"type\":\"end\",\"ticks\":6}")) << lines.back();
  // With the events in a file, standard output stays quiet.
  EXPECT_EQ(out_.str(), "");

  // Without --out, a new folder is made and named at the end.
  ASSERT_EQ(Run(ReplayCommand, {rec, "--root", testing::DataRoot(), "--pilot", pilot}), kExitOk);
  const std::string said = out_.str();
  const std::string tail = "The pilot's log files are in ";
  const size_t at = said.rfind(tail);
  ASSERT_NE(at, std::string::npos) << said;
  const std::string folder = Trim(said.substr(at + tail.size()));
  EXPECT_TRUE(FileExists(folder + "/Ace.plt")) << folder;
  fs::remove_all(folder);
}

TEST_F(Cli, GenerateAndRecord) {
  const std::string script = Write("s.flight", "engine start\nwait for 2\ntaxi spede 4 for 1\n");
  EXPECT_EQ(Run(GenerateCommand, {script, Path("s.vrec")}), kExitBadInput);
  EXPECT_EQ(err_.str(), script + ":3: taxi does not take 'spede'\n");
  EXPECT_FALSE(fs::exists(Path("s.vrec")));

  Write("s.flight", "engine start\nwait for 2\n");
  ASSERT_EQ(Run(GenerateCommand, {script, Path("s.vrec.gz")}), kExitOk) << err_.str();
  const std::string packed = ReadFile(Path("s.vrec.gz"));
  ASSERT_GE(packed.size(), 2u);
  EXPECT_EQ(static_cast<uint8_t>(packed[0]), 0x1F);
  Recording r;
  std::string error;
  ASSERT_TRUE(LoadRecording(Path("s.vrec.gz"), r, error)) << error;
  EXPECT_EQ(r.TotalTicks(), 12);

  EXPECT_EQ(Run(RecordCommand, {Path("live.vrec")}), kExitBadInput);
  EXPECT_EQ(err_.str(), "vantoro-cli record: Cannot link to FSUIPC or WideClient\n");
  EXPECT_FALSE(fs::exists(Path("live.vrec")));
}

// The demo flight through the whole instructor: the circuit moves through
// every flight mode, and the mode changes are shown and spoken.
TEST_F(Cli, DemoFliesTheCircuitThroughEveryMode) {
  testing::ScenarioOptions options;
  options.root = testing::MakeVoiceRoot(Path("root"), "Demo",
                                        {"Cruise.wav", "FlightGoodSoFar.wav", "Touchdown.WAV"});
  const testing::Scenario flight = testing::ReplayText(
      ReadFile(testing::DataRoot() + "/Recordings/demo-c172-circuit.vrec"), options);
  EXPECT_EQ(flight.Modes(),
            (std::vector<std::string>{"Taxiing", "TakeOff", "Cruise", "Landing", "Taxiing"}));
  std::vector<std::string> shown;
  for (const Event& e : flight.OfType("message")) shown.push_back(e.Text("text"));
  for (const char* text : {"Taxiing...", "Take Off...", "Cruise...", "Landing..."})
    EXPECT_NE(std::find(shown.begin(), shown.end(), text), shown.end()) << text;
  EXPECT_TRUE(flight.Said("Cruise.wav"));
  EXPECT_TRUE(flight.Said("Touchdown.WAV"));
  EXPECT_EQ(flight.OfType("end").size(), 1u);
}

}  // namespace
}  // namespace vantoro

namespace vantoro {
namespace {

TEST(Replay, TheDeliveredWorldIsLoadedAtConnectAndTheNearestRunwayFound) {
  Recording r;
  std::string error;
  // On the ground at New York's Kennedy airport, near the end of runway 22R.
  ASSERT_TRUE(ParseRecording("r",
                             "vantoro-recording 1\n"
                             "u8 0366 1\n"
                             "i64 0560 19402330434000212\n"
                             "i64 0568 -3780045306437648896\n"
                             "tick 32\n",
                             r, error))
      << error;
  EventLog log;
  Replay replay(ReplaySetup{testing::DataRoot(), 1, true, {}, {}}, log);
  replay.Run(r);
  const FlightState& f = replay.instructor().flight;
  ASSERT_NE(f.Runways.NearestRunway, nullptr);
  EXPECT_EQ(f.Runways.NearestRunway->ICAO + " " + f.Runways.NearestRunway->Number, "KJFK 22R");
  for (const Event& e : log.events) EXPECT_NE(e.type, "notice") << e.Text("text");
}

}  // namespace
}  // namespace vantoro

namespace vantoro {
namespace {

// The demo circuit at Oxford with the delivered world: the approach finds
// runway 01, the one into the wind, and the landing on it is judged as one.
TEST(Replay, TheDemoCircuitIsJudgedAgainstTheRunwayIntoTheWind) {
  Recording r;
  std::string error;
  ASSERT_TRUE(ParseRecording(
      "demo", ReadFile(testing::DataRoot() + "/Recordings/demo-c172-circuit.vrec"), r, error))
      << error;
  EventLog log;
  Replay replay(ReplaySetup{testing::DataRoot(), 1, true, {}, {}}, log);
  replay.Run(r);
  const std::vector<Event> landings = log.OfType("landing");
  ASSERT_EQ(landings.size(), 1u);
  const std::string report = landings[0].Text("report");
  for (const char* line : {"* Landed on runway surface.", "* Heading aligned with runway.",
                           "* Distance from runway threshold (visual approach): [1455 feet]"})
    EXPECT_NE(report.find(line), std::string::npos) << line;
  const EventValue* score = landings[0].Find("score");
  ASSERT_NE(score, nullptr);
  EXPECT_GT(std::get<double>(*score), 80.0);
  EXPECT_EQ(log.OfType("flight").size(), 1u);
}

// A circuit flown in FlightGear at Honolulu and recorded through its link:
// real simulator values, with the magnetic variation (9.5 degrees east) that
// the generated flights at Kidlington barely have.
TEST(Replay, TheFlightGearCircuitAtHonoluluIsFlownAndLanded) {
  Recording r;
  std::string error;
  const std::string file = testing::DataRoot() + "/Recordings/flightgear-c172-phnl-circuit.vrec.gz";
  ASSERT_TRUE(LoadRecording(file, r, error)) << error;
  EventLog log;
  Replay replay(ReplaySetup{testing::DataRoot(), 1, true, {}, {}}, log);
  replay.Run(r);
  std::vector<std::string> modes;
  for (const Event& e : log.OfType("mode")) modes.push_back(e.Text("mode"));
  EXPECT_EQ(modes, (std::vector<std::string>{"Taxiing", "TakeOff", "Cruise", "Landing"}));
  const std::vector<Event> landings = log.OfType("landing");
  ASSERT_EQ(landings.size(), 1u);
  const std::string report = landings[0].Text("report");
  for (const char* line : {"* Landed on runway surface.", "* Wings were level.",
                           "* Heading aligned with runway.", "* Good steering after landing."})
    EXPECT_NE(report.find(line), std::string::npos) << line << "\n" << report;
  EXPECT_EQ(report.find("crash"), std::string::npos) << report;
}

}  // namespace
}  // namespace vantoro
