// The close of a flight on the bench: what the pilot hears, which files he
// finds beside his pilot file, and what they hold.
#include "engine/end_flight.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>

#include "base/files.h"
#include "base/text.h"
#include "engine/flight_rig.h"

namespace vantoro {
namespace {

namespace fs = std::filesystem;

bool Has(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

class ClosingFlights : public ::testing::Test {
 protected:
  void SetUp() override {
    rig.clock.Set(WallTime{2026, 11, 22, 14, 5, 0});
    rig.instructor.scores.PilotFile = (rig.dir_ / "Kate.plt").string();
    rig.instructor.options.PilotName = "Kate";
  }
  void End() {
    Cockpit c = rig.instructor.cockpit();
    EndFlight(c);
  }
  std::string File(const char* name) const { return ReadFile((rig.dir_ / name).string()); }
  // The columns of the last row of the flight log.
  std::vector<std::string> LastRow() const {
    const std::vector<std::string> lines = Split(File("Kate.dat"), '\n');
    if (lines.size() < 3) return {};
    return Split(lines[lines.size() - 2], '\t');
  }

  FlightRig rig;
};

TEST_F(ClosingFlights, WhatEachKindOfFlightLeavesBehind) {
  struct Case {
    const char* what;
    std::function<void(FlightStats&)> fly;
    bool recorded;
    double score;
    const char* crashed;  // log column 1
  };
  const std::vector<Case> cases = {
      {"a short hop leaves no trace",
       [](FlightStats& f) { f.TookOff = true, f.FlightDuration = 30; }, false, 0, ""},
      {"a flawless flight of ten minutes",
       [](FlightStats& f) { f.TookOff = true, f.FlightDuration = 600; }, true, 100.6, "0"},
      {"a crash after 10 seconds is recorded with 0",
       [](FlightStats& f) { f.TookOff = true, f.FlightCrashed = true, f.FlightDuration = 10; },
       true, 0, "1"},
      {"a flight that began in the air", [](FlightStats& f) { f.FlightDuration = 31; }, true, 0,
       "0"},
  };
  for (const Case& c : cases) {
    FlightRig& r = rig;
    fs::remove(r.dir_ / "Kate.dat");
    fs::remove(r.dir_ / "Kate.htm");
    r.Ready();
    const int32_t before = r.flight().CurrentFlight;
    c.fly(r.stats());
    r.Mark();
    End();
    EXPECT_EQ(r.flight().CurrentFlight, before + 1) << c.what;
    EXPECT_TRUE(EndsWith(r.Queued(), "StartingANewFlight.wav")) << c.what << ": " << r.Queued();
    const auto flights = r.Since("flight");
    EXPECT_EQ(flights.size(), c.recorded ? 1u : 0u) << c.what;
    EXPECT_EQ(fs::exists(r.dir_ / "Kate.dat"), c.recorded) << c.what;
    EXPECT_EQ(fs::exists(r.dir_ / "Kate.htm"), c.recorded) << c.what;
    if (!c.recorded || flights.empty()) continue;
    const Event& e = flights[0];
    EXPECT_EQ(e.Int("index"), before) << c.what;
    EXPECT_NEAR(std::get<double>(*e.Find("score")), c.score, 1e-9) << c.what;
    EXPECT_FALSE(Has(e.Text("report"), "[SCORE]")) << c.what;
    EXPECT_EQ(r.Texts("log", "file"), (r.dir_ / "Kate.dat").string()) << c.what;
    const auto row = LastRow();
    ASSERT_EQ(row.size(), 109u) << c.what;
    EXPECT_EQ(row[1], c.crashed) << c.what;
    EXPECT_EQ(row[0], "2211261405") << c.what;
    EXPECT_TRUE(Has(File("Kate.htm"), "<b>Flight Score:")) << c.what;
  }
}

TEST_F(ClosingFlights, TheLogBookGrowsFlightByFlightWithoutRepeatingOne) {
  rig.Ready();
  rig.stats().TookOff = true;
  rig.stats().FlightDuration = 600;
  End();
  rig.stats().TookOff = true;
  rig.stats().FlightDuration = 1200;
  End();
  const std::string book = File("Kate.htm");
  EXPECT_TRUE(Has(book, "Flight Score:100.60"));
  EXPECT_TRUE(Has(book, "Flight Score:101.20"));
  EXPECT_EQ(book.find("Flight Score:100.60"), book.rfind("Flight Score:100.60"));
  EXPECT_EQ(Split(File("Kate.dat"), '\n').size(), 4u);  // header, two rows, nothing after
  EXPECT_TRUE(EndsWith(book, "</body></html>"));
}

TEST_F(ClosingFlights, BlockTimeWithoutAClock) {
  struct Case {
    const char* what;
    int startDay, endDay;
    const char* blockTime;
  };
  const Case cases[] = {{"clock never started", 0, 0, "-2"},
                        {"simulator reports day 0", 100, 0, "-1"}};
  for (const Case& c : cases) {
    FlightRig r;
    r.instructor.scores.PilotFile = (r.dir_ / "Kate.plt").string();
    r.image.SetU16(0x023E, static_cast<uint16_t>(c.startDay));
    r.instructor.Connect();
    r.Tick(10);
    r.image.SetU16(0x023E, static_cast<uint16_t>(c.endDay));
    r.Tick(1201);  // the second record read after the day changed is the one closed on
    r.stats().FlightDuration = 600;
    Cockpit cockpit = r.instructor.cockpit();
    EndFlight(cockpit);
    const std::vector<std::string> lines = Split(ReadFile((r.dir_ / "Kate.dat").string()), '\n');
    ASSERT_EQ(lines.size(), 3u) << c.what;
    EXPECT_EQ(Split(lines[1], '\t')[106], c.blockTime) << c.what;
  }
}

TEST_F(ClosingFlights, ACrashInTheAirIsReportedFromTheTickBeforeTheWreck) {
  rig.Ready();
  rig.Follow(Climb(1000));
  rig.VS(-984);
  rig.Bank(-40);
  rig.Tick();
  rig.Mark();
  rig.Crashed(true);
  rig.VS(0);
  rig.Bank(0);
  rig.Tick();

  EXPECT_EQ(rig.flight().CurrentFlight, 2);
  // A crash is commented on like any flight, then the next one begins.
  EXPECT_EQ(rig.Queued(), "YouCrashedThePlane1.WAV|GoodFlight.wav|StartingANewFlight.wav");
  const auto flights = rig.Since("flight");
  ASSERT_EQ(flights.size(), 1u);
  EXPECT_EQ(std::get<double>(*flights[0].Find("score")), 0);
  const std::string shown = rig.instructor.scores.LogBookText;
  EXPECT_TRUE(Has(shown, "Kate piloting"));
  EXPECT_TRUE(Has(shown, "AIRCRAFT CRASHED\r\n"));
  EXPECT_TRUE(Has(shown, "* Vertical Speed: -984 fpm\r\n"));
  EXPECT_TRUE(Has(shown, "* Bank: -40 degrees\r\n"));
  EXPECT_TRUE(Has(shown, "Airborne immediately prior to crash"));
  EXPECT_TRUE(Has(shown, "Flight Score:0.00"));
  const std::string book = File("Kate.htm");
  EXPECT_TRUE(Has(book, "<b>AIRCRAFT CRASHED</b>"));
  EXPECT_FALSE(Has(book, "[STATS]"));
  EXPECT_EQ(LastRow().at(1), "1");
}

}  // namespace
}  // namespace vantoro
