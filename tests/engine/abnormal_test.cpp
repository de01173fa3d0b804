#include "engine/flight_rig.h"

namespace vantoro {
namespace {

const std::string kJump =
    "Sudden change in altitude OR\nSudden change in ground speed OR\nSlewing mode engaged OR\n"
    "Sudden change in latitude OR\nSudden change in longitude";

struct Disturbance {
  double lat = 47.25, lon = 11.35, altitude = 0, gs = 0;
  const char* airFile = "SimObjects\\Airplanes\\C172\\Cessna172SP.air";
  std::string cause = "";  // empty: the flight goes on

  void Apply(FlightRig& rig) const {
    rig.Position(lat, lon);
    rig.Altitude(altitude);
    rig.GS(gs);
    rig.AirFile(airFile);
  }
};

// clang-format off
const std::vector<Disturbance> kDisturbances = {
    {.airFile = "B737.air", .cause = "Aircraft changed by pilot"},
    {.lat = 48.26, .cause = kJump},  // a slew of a degree north
    {.lon = 12.36, .cause = kJump},
    {.lat = 48.2, .lon = 12.3},      // less than a whole degree is no jump
    {.altitude = 1201, .cause = kJump},
    {.altitude = 1198},
    {.gs = 101, .cause = kJump},
    {.gs = 99},
};
// clang-format on

TEST(AbnormalSituations, JumpsAndAnotherAircraftEndTheConnectionAfterTenTicks) {
  for (const Disturbance& d : kDisturbances) {
    SCOPED_TRACE(d.cause + " " + std::to_string(&d - kDisturbances.data()));
    for (int ticksBefore : {10, 20}) {  // the flight began on the first tick
      FlightRig rig;
      rig.instructor.Connect();
      rig.Tick(ticksBefore);
      rig.Mark();
      d.Apply(rig);
      rig.Tick(3);
      EXPECT_EQ(rig.Disconnects(), ticksBefore == 10 ? "" : d.cause);
    }
  }
  FlightRig rig;
  rig.instructor.Connect();
  rig.Tick(20);
  rig.Mark();
  kDisturbances[1].Apply(rig);
  rig.Tick(3);
  EXPECT_EQ(rig.flight().Status, "AUTO-Disconnection due to:\n" + kJump);
  EXPECT_EQ(rig.Queued(), "VNTRDisconnect.wav");
  EXPECT_EQ(rig.Modes(), "");  // no new flight begins after it
}

TEST(AbnormalSituations, APlacementWhileTheLinkWarmsUpIsNoSlew) {
  FlightRig rig;
  rig.instructor.Connect();
  rig.Tick(20);
  rig.link.failProcessWith = kLinkTimeout;  // ten failures, and the link opens afresh
  rig.Tick(10);
  rig.link.failProcessWith = kLinkOk;
  rig.Tick();
  rig.Mark();
  rig.Position(49.5, 11.35);  // the reloaded flight stands elsewhere
  rig.Tick(6);
  EXPECT_EQ(rig.Disconnects(), "");
  rig.Position(51.0, 11.35);
  rig.Tick();
  EXPECT_EQ(rig.Disconnects(), kJump);
}

TEST(AbnormalSituations, ASimulatorCrashIsHeardAndEndsTheConnection) {
  for (bool water : {false, true}) {
    FlightRig rig;
    rig.instructor.Connect();
    rig.Tick(20);
    rig.Mark();
    rig.Water(water);
    rig.Crashed(true);
    rig.Tick(3);
    // The crash sound keeps its family shut against the disconnection sound;
    // the crashed flight is then closed and the next one begins.
    EXPECT_EQ(rig.Queued(), std::string(water ? "LooksLikeYouveCrashedThePlaneInWater.wav"
                                              : "YouCrashedThePlane1.WAV") +
                                "|GoodFlight.wav|StartingANewFlight.wav");
    EXPECT_EQ(rig.Disconnects(), "Crash");
    EXPECT_TRUE(rig.flight().Flights[1].FlightCrashed);
  }
}

TEST(AbnormalSituations, AClockJumpEndsTheConnectionUnlessTheStartIsPlaced) {
  struct Row {
    double time;  // seconds of the day; the flight's clock reads 12:00:10
    bool placedStart;
    std::string cause;
  };
  for (const Row& row : {Row{12 * 3600 + 130, false, "Time of day or date changed"},
                         Row{11 * 3600, false, "Time of day or date changed"},
                         Row{12 * 3600 + 40, false, ""}, Row{12 * 3600 + 130, true, ""}}) {
    FlightRig rig;
    rig.instructor.options.StartingPosition = row.placedStart;
    rig.instructor.options.ApproachStartTime = row.placedStart;
    rig.instructor.Connect();
    rig.Tick(20);
    rig.SimTime(row.time);
    rig.Tick(2);
    EXPECT_EQ(rig.Disconnects(), row.cause) << row.time;
  }
}

TEST(AbnormalSituations, PauseFreezesTheMonitorsButNotTheRecords) {
  FlightRig rig;
  rig.Ready();
  rig.Mark();
  rig.Paused(true);
  rig.SimRate(512);
  rig.Fly({.gs = 39, .ticks = 30});  // 39 knots on the taxiway is a take-off
  EXPECT_EQ(rig.Modes(), "");
  EXPECT_EQ(rig.Texts("count", "name"), "");
  EXPECT_EQ(rig.instructor.link.Before().GS, 39);
  EXPECT_EQ(rig.flight().Stats.Clock, "12:01");
  rig.Paused(false);
  rig.SimRate(256);
  rig.Tick();
  EXPECT_EQ(rig.Modes(), "TakeOff");
}

}  // namespace
}  // namespace vantoro
