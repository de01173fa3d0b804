// The demo circuit at Oxford flown through the whole instructor as a pilot
// who has earned circuits: the circuit key at the point he means to land on,
// the take-off, the five legs announced, the landing scored for the circuit,
// and the score in the landing report, the flight event and the log row.
#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include "base/files.h"
#include "link/recording.h"
#include "records/flight_log.h"
#include "shell/replay.h"
#include "support/scenario.h"

namespace vantoro {
namespace {

namespace fs = std::filesystem;

std::string Replace(std::string text, const std::string& from, const std::string& to) {
  const size_t at = text.find(from);
  EXPECT_NE(at, std::string::npos) << from;
  if (at != std::string::npos) text.replace(at, from.size(), to);
  return text;
}

// The demo's script with the circuit asked for: at the holding point the
// pilot taxis up the runway to where he will touch down, presses the circuit
// key there, and back-tracks to the threshold for his run-up and take-off.
std::string CircuitScript() {
  std::string script = ReadFile(testing::DataRoot() + "/Recordings/demo-c172-circuit.flight");
  script = Replace(script, "# Checks at the holding point",
                   "taxi speed 10 heading 10.7 for 112\nstop\nkey 10\nwait for 4\n"
                   "turn to 190.7 right speed 6\ntaxi speed 10 for 108\nturn to 10.7 right "
                   "speed 6\nstop\n# Checks at the holding point");
  return script;
}

// The value of a log column in a row.
std::string Column(const std::string& row, std::string_view name) {
  std::vector<std::string> cells;
  std::stringstream in(row);
  for (std::string cell; std::getline(in, cell, '\t');) cells.push_back(cell);
  const auto& names = LogColumnNames();
  for (size_t i = 0; i < names.size(); ++i)
    if (names[i] == name) return i < cells.size() ? cells[i] : "";
  return "no column " + std::string(name);
}

TEST(CircuitScenario, TheDemoCircuitIsFlownAndScored) {
  const fs::path dir =
      fs::temp_directory_path() / ("vantoro-circuit-" + std::to_string(::getpid()));
  fs::remove_all(dir);
  fs::create_directories(dir);
  // The pilot has scored above 70 on a landing and above 80 on a flight.
  WriteFileAtomic((dir / "Vantoro.xml").string(), "<vantoro><score>75.00</score></vantoro>\r\n");
  WriteFileAtomic((dir / "Orlenhaus.xml").string(), "<vantoro><score>85.00</score></vantoro>\r\n");
  WriteFileAtomic((dir / "Ace.plt").string(), "[Pilot]\r\nName=Ace\r\n");
  Recording recording;
  std::string error;
  ASSERT_TRUE(ParseRecording("circuit", testing::GenerateScript(CircuitScript()), recording, error))
      << error;
  testing::Scenario flight;
  EventLog log;
  Replay replay(ReplaySetup{testing::DataRoot(), 1, true, (dir / "Ace.plt").string(), dir.string()},
                log);
  replay.Run(recording);
  flight.events = std::move(log.events);

  std::vector<std::string> shown;
  for (const Event& e : flight.OfType("message")) shown.push_back(e.Text("text"));
  EXPECT_NE(std::find(shown.begin(), shown.end(),
                      "You want to fly circuits. Circuit reference point is HERE. LAND HERE!"),
            shown.end());

  // Each leg is announced as the pilot turns onto it (asked for: on final
  // the queue may be full with the height calls).
  std::string legs;
  for (const Event& e : flight.events) {
    if (e.type != "queued" && !(e.type == "dropped" && e.Text("why") == "full")) continue;
    const std::string file = e.Text("file");
    for (const char* leg :
         {"CircuitStarts.wav", "CircuitCrosswind.wav", "CircuitCrosswindNiceAAL.wav",
          "CircuitDownwind.wav", "CircuitDownwindNiceAAL.wav", "CircuitBase.wav",
          "CircuitBaseNiceAAL.wav", "CircuitFinal.wav", "CircuitFinalNiceTurn.wav"})
      if (file == leg) legs += file + " ";
  }
  // The turns onto crosswind and downwind come before their heights; base at
  // 600 to 800 feet; final lined up (no localiser is tuned, so the needle
  // reads centred).
  EXPECT_EQ(legs,
            "CircuitStarts.wav CircuitCrosswind.wav CircuitDownwind.wav CircuitBaseNiceAAL.wav "
            "CircuitFinalNiceTurn.wav ");

  const std::vector<Event> landings = flight.OfType("landing");
  ASSERT_EQ(landings.size(), 1u);
  const std::string report = landings[0].Text("report");
  // The circuit stands: landed 41 (short) feet from where the key was
  // pressed, every leg long enough; what was flown poorly costs its points,
  // and with no localiser the base leg counts as late throughout.
  for (const char* line :
       {"Circuit Score:71.74", "* Poor Upwind heading - maintain runway heading.",
        "* Poor Crosswind heading - fly at 90 degrees to the runway.",
        "* Poor Downwind altitude - maintain 1000 feet AAL.", "* Good turn onto Base.",
        "* Late on Final - get onto final sooner next time.", "* Banking not too steep.",
        "* Landing distance from Circuit reference point:41 feet."})
    EXPECT_NE(report.find(line), std::string::npos) << line << "\n" << report;
  const std::vector<Event> flights = flight.OfType("flight");
  ASSERT_EQ(flights.size(), 1u);
  const double circuit = std::get<double>(*flights[0].Find("circuit"));
  EXPECT_DOUBLE_EQ(circuit, 71.74);

  const std::vector<Event> rows = flight.OfType("log");
  ASSERT_EQ(rows.size(), 1u);
  const std::string row = rows[0].Text("row");
  const std::vector<std::pair<const char*, const char*>> columns = {
      {"CircuitScore", "71.74"},
      {"CircuitDurationUpWind", "90"},
      {"CircuitDurationCrossWind", "77"},
      {"CircuitDurationDownWind", "129"},
      {"CircuitDurationBase", "89"},
      {"CircuitDurationFinal", "131"},
      {"CircuitBadHeadingUpWind", "33"},
      {"CircuitBadHeadingCrossWind", "20"},
      {"CircuitBadAltitudeDownWind", "16"},
      {"CircuitBadTimingDownWind", "0"},
      {"CircuitBadTimingBase", "60"},
      {"CircuitBadBankAngle", "0"}};
  for (const auto& [name, value] : columns) EXPECT_EQ(Column(row, name), value) << name;
  fs::remove_all(dir);
}

}  // namespace
}  // namespace vantoro
