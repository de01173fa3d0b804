// The demo cross-country flight replayed with its flight plan, as
// "vantoro-cli replay ... --plan" flies it: the route is followed point by
// point, the aids suggested, the route scored; and a plan that cannot be
// read stops the replay before it starts.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "base/files.h"
#include "cli/commands.h"
#include "link/recording.h"
#include "shell/replay.h"
#include "support/scenario.h"
#include "world/flight_plan.h"

namespace vantoro {
namespace {

const std::string kSource = VANTORO_SOURCE_DIR;
const std::string kRoute = kSource + "/data/Recordings/demo-c172-route";
const std::string kPlan = kSource + "/tests/data/plans/egtk-dty-wco-fs9.pln";

TEST(RouteScenario, TheDemoFlightIsCoachedAlongItsPlan) {
  Recording recording;
  std::string error;
  ASSERT_TRUE(LoadRecording(kRoute + ".vrec.gz", recording, error)) << error;
  EventLog log;
  Replay replay(ReplaySetup{testing::DataRoot(), 1, true, {}, {}}, log);
  ASSERT_TRUE(ProcessFlightPlan(kPlan, replay.instructor().plan));
  replay.Run(recording);

  // A round trip: Kidlington, the last point, lies under the climb-out and is
  // passed first, too low to be spoken; then Daventry and Westcott in turn.
  std::string passed;
  for (const Event& e : log.OfType("waypoint"))
    passed += e.Text("name") + (e.Int("spoken") != 0 ? "+" : "-") + " ";
  EXPECT_EQ(passed, "EGTK- DTY+ WCO+ ");

  std::vector<std::string> asked;
  for (const Event& e : log.OfType("queued")) asked.push_back(GetFileName(e.Text("file")));
  const auto count = [&](const std::string& file) {
    return std::count(asked.begin(), asked.end(), file);
  };
  EXPECT_EQ(count("IfYouTuneNAV1ToTheVORAt.wav"), 1) << "Daventry, on the first leg";
  EXPECT_EQ(count("IfYouTuneADF1ToTheNDBAt.wav"), 1) << "Westcott, on the second";
  // Daventry, Westcott, and Kidlington twice: the leg to the final approach
  // passes within three miles of it, leaves and comes back in.
  EXPECT_EQ(count("ApproachingWayPoint.wav"), 4);
  EXPECT_EQ(count("WayPointsWereCrossedCorrectly.wav"), 1);

  const std::vector<Event> route = log.OfType("route");
  ASSERT_EQ(route.size(), 1u);
  EXPECT_EQ(route[0].Int("crossed"), 3);
  EXPECT_EQ(route[0].Int("in_sequence"), 2);
  // The plan's destination picks the landing runway on the way down.
  const std::vector<Event> runways = log.OfType("runway");
  ASSERT_FALSE(runways.empty());
  EXPECT_EQ(runways.back().Text("ident"), "EGTK 01");
  EXPECT_EQ(runways.back().Text("reason"), "plan");
  const std::vector<Event> flight = log.OfType("flight");
  ASSERT_EQ(flight.size(), 1u);
}

TEST(RouteScenario, TheRecordingIsMadeFromItsScript) {
  const std::string script = ReadFile(kRoute + ".flight");
  const std::string made = testing::GenerateScript(script);
  Recording fromScript, stored;
  std::string error;
  ASSERT_TRUE(ParseRecording("script", made, fromScript, error)) << error;
  ASSERT_TRUE(LoadRecording(kRoute + ".vrec.gz", stored, error)) << error;
  EXPECT_EQ(fromScript.steps.size(), stored.steps.size())
      << "regenerate data/Recordings/demo-c172-route.vrec.gz from its script";
}

TEST(RouteScenario, APlanThatCannotBeReadStopsTheReplay) {
  const std::filesystem::path dir = std::filesystem::temp_directory_path() / "vantoro-route-bad";
  std::filesystem::create_directories(dir);
  const std::string bad = (dir / "bad.pln").string();
  std::ofstream(bad) << "[flightplan]\ntype=VFR\nwaypoint.0=EGTK, A, N51* 50.20', W001* 19.20'\n"
                        "waypoint.1=DTY, V, somewhere, W001* 06.83'\n";
  struct Row {
    std::string plan, error;
  };
  const std::vector<Row> rows = {
      {bad, bad + ":4: waypoint.1 has no position; passed over"},
      {(dir / "missing.pln").string(),
       "vantoro-cli replay: no such flight plan " + (dir / "missing.pln").string()},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.plan);
    std::ostringstream out, err;
    CliContext cli{"vantoro-cli", out, err};
    const int status = ReplayCommand(
        {kRoute + ".vrec.gz", "--root", testing::DataRoot(), "--plan", row.plan, "--instant"}, cli);
    EXPECT_EQ(status, kExitBadInput);
    EXPECT_NE(err.str().find(row.error), std::string::npos) << err.str();
    EXPECT_TRUE(out.str().empty()) << "nothing replayed";
  }
  std::filesystem::remove_all(dir);
}

}  // namespace
}  // namespace vantoro
