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

struct Bench {
  Bench() {
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
    return lines.size() < 3 ? std::vector<std::string>{} : Split(lines[lines.size() - 2], '\t');
  }
  FlightRig rig;
};

TEST(ClosingFlights, WhatEachKindOfFlightLeavesBehind) {
  struct Case {
    const char* what;
    std::function<void(FlightStats&)> fly;
    double score;         // -1: no trace at all
    const char* crashed;  // log column 1
  };
  const std::vector<Case> cases = {
      {"a short hop", [](FlightStats& f) { f.TookOff = true, f.FlightDuration = 30; }, -1, ""},
      {"ten flawless minutes", [](FlightStats& f) { f.TookOff = true, f.FlightDuration = 600; },
       100.6, "0"},
      {"a crash after 10 s",
       [](FlightStats& f) { f.TookOff = f.FlightCrashed = true, f.FlightDuration = 10; }, 0, "1"},
      {"began in the air", [](FlightStats& f) { f.FlightDuration = 31; }, 0, "0"},
  };
  for (const Case& c : cases) {
    Bench b;
    b.rig.Ready();
    c.fly(b.rig.stats());
    b.rig.Mark();
    b.End();
    EXPECT_EQ(b.rig.flight().CurrentFlight, 2) << c.what;
    EXPECT_TRUE(EndsWith(b.rig.Queued(), "StartingANewFlight.wav")) << c.what;
    const auto flights = b.rig.Since("flight");
    const bool recorded = c.score >= 0;
    EXPECT_EQ(flights.size(), recorded ? 1u : 0u) << c.what;
    EXPECT_EQ(fs::exists(b.rig.dir_ / "Kate.htm"), recorded) << c.what;
    if (!recorded || flights.empty()) {
      EXPECT_FALSE(fs::exists(b.rig.dir_ / "Kate.dat")) << c.what;
      continue;
    }
    EXPECT_EQ(flights[0].Int("index"), 1) << c.what;
    EXPECT_NEAR(std::get<double>(*flights[0].Find("score")), c.score, 1e-9) << c.what;
    EXPECT_FALSE(Has(flights[0].Text("report"), "[SCORE]")) << c.what;
    EXPECT_EQ(b.rig.Texts("log", "file"), (b.rig.dir_ / "Kate.dat").string()) << c.what;
    const auto row = b.LastRow();
    ASSERT_EQ(row.size(), 109u) << c.what;
    EXPECT_EQ(row[0] + " " + row[1], std::string("2211261405 ") + c.crashed) << c.what;
  }
}

TEST(ClosingFlights, TheLogBookGrowsFlightByFlightWithoutRepeatingOne) {
  Bench b;
  b.rig.Ready();
  for (int32_t seconds : {600, 1200}) {
    b.rig.stats().TookOff = true;
    b.rig.stats().FlightDuration = seconds;
    b.End();
  }
  const std::string book = b.File("Kate.htm");
  EXPECT_EQ(book.find("Flight Score:100.60"), book.rfind("Flight Score:100.60"));
  EXPECT_TRUE(Has(book, "<br><br><hr><br>\r\n<br>\r\n<br>\r\n<b>Flight Score:101.20</b>"));
  EXPECT_EQ(Split(b.File("Kate.dat"), '\n').size(), 4u);  // header, two rows
}

TEST(ClosingFlights, BlockTimeWithoutAClock) {
  for (const auto& [startDay, blockTime] : {std::pair{0, "-2"}, std::pair{100, "-1"}}) {
    Bench b;
    b.rig.image.SetU16(0x023E, static_cast<uint16_t>(startDay));
    b.rig.instructor.Connect();
    b.rig.Tick(10);
    b.rig.image.SetU16(0x023E, 0);  // the simulator reports day 0 at the end
    b.rig.Tick(2);
    b.rig.stats().FlightDuration = 600;
    b.End();
    EXPECT_EQ(b.LastRow().at(106), blockTime);
  }
}

TEST(ClosingFlights, ACrashInTheAirIsReportedFromTheTickBeforeTheWreck) {
  Bench b;
  FlightRig& rig = b.rig;
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

  // A crash is commented on like any flight (the 40 degrees of bank before it
  // were steep and rough), then the next one begins.
  EXPECT_EQ(rig.Queued(),
            "YouCrashedThePlane1.WAV|YouNeedToImprove.wav|RoughTurns.wav|ExcessiveBanking.wav|"
            "ProblemsYouNeedToWorkOn.wav|StartingANewFlight.wav");
  EXPECT_EQ(rig.flight().CurrentFlight, 2);
  const std::string shown = rig.instructor.scores.LogBookText;
  for (const char* part :
       {"Kate piloting", "AIRCRAFT CRASHED\r\n", "* Vertical Speed: -984 fpm\r\n",
        "* Bank: -40 degrees\r\n", "Airborne immediately prior to crash", "Flight Score:0.00"})
    EXPECT_TRUE(Has(shown, part)) << part;
  EXPECT_TRUE(Has(b.File("Kate.htm"), "<b>AIRCRAFT CRASHED</b>"));
  EXPECT_EQ(b.LastRow().at(1), "1");
}

}  // namespace
}  // namespace vantoro
