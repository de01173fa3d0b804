// Random failures in a replayed flight: a pilot who wants them, flying an
// aircraft of reliability 1, has things failed in flight; the same seed
// fails the same things at the same ticks, another seed others.
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "support/scenario.h"

namespace vantoro {
namespace {

constexpr const char* kClimbOut = R"(clock 2026-06-14T09:30:00
position 51.82978359 -1.31962215
heading 10
engine start
taxi speed 8 for 10
takeoff speed 55
rotate pitch 8 vs 600
climb to 2500 vs 700 speed 80
level for 30
)";

// The sample pilot, wanting random failures at the given reliability.
std::string PilotWantingFailures(const std::filesystem::path& folder, int reliability) {
  std::ifstream in(testing::DataRoot() + "/PilotRoster/LightSpeed.plt");
  std::stringstream text;
  text << in.rdbuf();
  std::string pilot = text.str();
  const auto set = [&](const std::string& key, const std::string& value) {
    const size_t at = pilot.find(key + "=");
    ASSERT_NE(at, std::string::npos) << key;
    pilot.replace(at, pilot.find('\n', at) - at, key + "=" + value);
  };
  set("WantRandomFailures", "1");
  set("FailureSlider", std::to_string(reliability));
  std::filesystem::create_directories(folder);
  const std::filesystem::path file = folder / "Failing.plt";
  std::ofstream(file) << pilot;
  return file.string();
}

std::string WhatFailed(const testing::Scenario& flight) {
  std::string out;
  for (const Event& e : flight.OfType("message")) {
    const std::string text = e.Text("text");
    if (text.ends_with(" FAILURE!") || text.ends_with(" is now functioning!"))
      out += std::to_string(e.tick) + " " + text + "|";
  }
  return out;
}

TEST(FailuresScenario, TheSameSeedFailsTheSameThings) {
  const std::filesystem::path folder =
      std::filesystem::temp_directory_path() / ("vantoro-failures-" + std::to_string(::getpid()));
  testing::ScenarioOptions options;
  options.instant = true;
  options.pilot = PilotWantingFailures(folder, 1);
  options.seed = 7;
  const std::string first = WhatFailed(testing::FlyScript(kClimbOut, options));
  EXPECT_NE(first.find(" FAILURE!"), std::string::npos) << first;
  EXPECT_EQ(WhatFailed(testing::FlyScript(kClimbOut, options)), first);
  options.seed = 8;
  EXPECT_NE(WhatFailed(testing::FlyScript(kClimbOut, options)), first);
  // Reliability 100 never fails anything.
  options.pilot = PilotWantingFailures(folder, 100);
  EXPECT_EQ(WhatFailed(testing::FlyScript(kClimbOut, options)), "");
  std::filesystem::remove_all(folder);
}

}  // namespace
}  // namespace vantoro
