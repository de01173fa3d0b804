#include <gtest/gtest.h>

#include <functional>

#include "engine/flight_rig.h"

namespace vantoro {
namespace {

using Strings = std::vector<std::string>;

const std::string kJumpStatus =
    "AUTO-Disconnection due to:\n"
    "Sudden change in altitude OR\n"
    "Sudden change in ground speed OR\n"
    "Slewing mode engaged OR\n"
    "Sudden change in latitude OR\n"
    "Sudden change in longitude";
const std::string kAircraftStatus = "AUTO-Disconnection due to:\nAircraft changed by pilot";

struct Disturbance {
  const char* what;
  std::function<void(FlightRig&)> apply;
  std::string status;  // empty: the flight goes on
};

const std::vector<Disturbance>& Disturbances() {
  static const std::vector<Disturbance> rows = {
      {"another aircraft loaded",
       [](FlightRig& r) { r.AirFile("SimObjects\\Airplanes\\B737\\B737.air"); }, kAircraftStatus},
      {"slewed a degree north", [](FlightRig& r) { r.Position(48.26, 11.35); }, kJumpStatus},
      {"slewed a degree east", [](FlightRig& r) { r.Position(47.25, 12.36); }, kJumpStatus},
      {"moved most of a degree", [](FlightRig& r) { r.Position(48.2, 12.3); }, ""},
      {"climbed 1201 feet in a tick", [](FlightRig& r) { r.Altitude(1201); }, kJumpStatus},
      {"climbed 1198 feet in a tick", [](FlightRig& r) { r.Altitude(1198); }, ""},
      {"gained 101 knots in a tick", [](FlightRig& r) { r.GS(101); }, kJumpStatus},
      {"gained 99 knots in a tick", [](FlightRig& r) { r.GS(99); }, ""},
  };
  return rows;
}

TEST(AbnormalSituations, JumpsAndAircraftChangesEndTheConnection) {
  for (const Disturbance& d : Disturbances()) {
    SCOPED_TRACE(d.what);
    FlightRig rig;
    rig.Connect();
    rig.Tick(20);
    rig.Mark();
    d.apply(rig);
    rig.Tick(3);
    if (d.status.empty()) {
      EXPECT_TRUE(rig.Disconnects().empty());
      EXPECT_TRUE(rig.flight().UserConnected);
      continue;
    }
    EXPECT_EQ(rig.Texts("status", "text"), Strings{d.status});
    EXPECT_EQ(rig.Disconnects(), Strings{d.status.substr(d.status.find('\n') + 1)});
    EXPECT_FALSE(rig.flight().UserConnected);
    EXPECT_FALSE(rig.flight().FlightStarted);
    EXPECT_EQ(rig.Queued(), Strings{"VNTRDisconnect.wav"});
    EXPECT_EQ(rig.Since("queued")[0].Text("by"), "PlayAndPurge");
    // Once disconnected the tick neither begins a flight nor moves a mode.
    EXPECT_TRUE(rig.Modes().empty());
  }
}

TEST(AbnormalSituations, NothingIsTestedInTheFirstTenTicksOfAFlight) {
  for (const Disturbance& d : Disturbances()) {
    SCOPED_TRACE(d.what);
    FlightRig rig;
    rig.Connect();
    rig.Tick(10);  // the flight began on the first tick
    rig.Mark();
    d.apply(rig);
    rig.Tick(10);
    EXPECT_TRUE(rig.Disconnects().empty());
    EXPECT_TRUE(rig.flight().UserConnected);
  }
}

TEST(AbnormalSituations, APlacementWhileTheLinkWarmsUpIsNoSlew) {
  FlightRig rig;
  rig.Connect();
  rig.Tick(20);
  // The simulator stops answering; after ten failures the link is opened afresh.
  rig.link.failProcessWith = kLinkTimeout;
  rig.Tick(10);
  rig.link.failProcessWith = kLinkOk;
  rig.Tick();
  ASSERT_TRUE(rig.flight().Connected);
  rig.Mark();
  rig.Position(49.5, 11.35);  // the reloaded flight stands somewhere else
  rig.Tick(6);
  EXPECT_TRUE(rig.Disconnects().empty());
  rig.Position(51.0, 11.35);
  rig.Tick();
  EXPECT_EQ(rig.Texts("status", "text"), Strings{kJumpStatus});
}

TEST(AbnormalSituations, ASimulatorCrashIsHeardAndEndsTheConnection) {
  struct Row {
    const char* what;
    bool water;
    std::string sound;
  };
  const std::vector<Row> rows = {
      {"on land", false, "YouCrashedThePlane1.WAV"},
      {"in water", true, "LooksLikeYouveCrashedThePlaneInWater.wav"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.what);
    FlightRig rig;
    rig.Connect();
    rig.Tick(20);
    rig.Mark();
    rig.Water(row.water);
    rig.Crashed(true);
    rig.Tick(3);
    // The crash sound keeps its family shut: the disconnection sound does not purge it.
    EXPECT_EQ(rig.Queued(), Strings{row.sound});
    EXPECT_EQ(rig.Since("queued")[0].Text("by"), "PlayAndPurge");
    EXPECT_EQ(rig.Disconnects(), Strings{"Crash"});
    EXPECT_EQ(rig.flight().Status, "AUTO-Disconnection due to:\nCrash");
    EXPECT_TRUE(rig.stats().FlightCrashed);
    EXPECT_TRUE(rig.flight().Crashed);
  }
}

TEST(AbnormalSituations, AClockJumpEndsTheConnectionUnlessTheStartIsPlaced) {
  struct Row {
    const char* what;
    double newTime;  // seconds of the day, from 12:00:10
    bool placedStart;
    bool disconnects;
  };
  const std::vector<Row> rows = {
      {"two minutes on", 12 * 3600 + 130, false, true},
      {"an hour back", 11 * 3600, false, true},
      {"half a minute on", 12 * 3600 + 40, false, false},
      {"two minutes on, start placed with its time", 12 * 3600 + 130, true, false},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.what);
    FlightRig rig;
    rig.instructor.options.StartingPosition = row.placedStart;
    rig.instructor.options.ApproachStartTime = row.placedStart;
    rig.Connect();
    rig.Tick(20);
    rig.Mark();
    rig.SimTime(row.newTime);
    rig.Tick(2);
    if (row.disconnects) {
      EXPECT_EQ(rig.Disconnects(), Strings{"Time of day or date changed"});
    } else {
      EXPECT_TRUE(rig.Disconnects().empty());
    }
  }
}

TEST(AbnormalSituations, PauseFreezesTheMonitorsButNotTheRecords) {
  FlightRig rig;
  rig.ReadyOnTheRunway();
  rig.Mark();
  rig.Paused(true);
  rig.SimRate(512);
  rig.GS(39);
  rig.Tick(30);
  EXPECT_TRUE(rig.Modes().empty());  // 39 knots would be a take-off
  EXPECT_TRUE(rig.Queued().empty());
  EXPECT_TRUE(rig.Since("count").empty());
  EXPECT_EQ(rig.instructor.link.Before().GS, 39);  // the records swapped
  EXPECT_EQ(rig.flight().Stats.Clock, "12:01");    // and the window followed

  rig.Paused(false);
  rig.SimRate(256);
  rig.Tick();
  EXPECT_EQ(rig.Modes(), Strings{"TakeOff"});
}

TEST(AbnormalSituations, AnEstimatedProfileIsToldOnceAndAgainAtTheEnd) {
  FlightRig rig;
  rig.instructor.aircraft.SourceFile = "C:\\FSX\\SimObjects\\Airplanes\\C172\\aircraft.cfg";
  rig.Connect();
  rig.Mark();
  rig.Tick(60);
  EXPECT_EQ(rig.MessageSeconds("UNKNOWN AIRCRAFT!! - Estimating profile..."), 8);
  EXPECT_EQ(rig.Messages().size(), 2u);  // "Taxiing..." and the notice, once
  rig.instructor.Disconnect();
  const auto notices = rig.Since("notice");
  ASSERT_EQ(notices.size(), 1u);
  EXPECT_EQ(notices[0].Text("text").substr(0, 57),
            "Last aircraft was flown using data estimated by Vantoro.\n");
  EXPECT_EQ(rig.Disconnects(), Strings{"Disconnect"});
}

}  // namespace
}  // namespace vantoro
