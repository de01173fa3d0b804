#include <gtest/gtest.h>

#include "engine/flight_rig.h"
#include "engine/tick_rules.h"

namespace vantoro {
namespace {

using Strings = std::vector<std::string>;

const std::string kMonitoring = "       [Vantoro v" VANTORO_VERSION "]";

TEST(Connection, TheLinkOpensOnlyForAKnownSimulatorAndARecentVersion) {
  struct Row {
    const char* what;
    uint32_t version;
    uint32_t id;
    bool p3d;
    bool noVersionCheck;
    int openFails;  // result code of a failed open, or kLinkOk
    std::string status;
    bool connected;
  };
  const std::vector<Row> rows = {
      {"nothing set answers as 4.80 on FSX", 0, 0, false, false, kLinkOk,
       "Status: Monitoring FSX" + kMonitoring, true},
      {"3.22 on FS2004", 0x32200000, 0xFADE0007, false, false, kLinkOk,
       "Status: Monitoring FS2004" + kMonitoring, true},
      {"3.21 is too old", 0x32100000, 0xFADE0007, false, false, kLinkOk,
       "Status: FSUIPC must be at least v3.22", false},
      {"3.21 with the check switched off", 0x32100000, 0xFADE0007, false, true, kLinkOk,
       "Status: Monitoring FS2004" + kMonitoring, true},
      {"ESP is not one of ours", 0x48000000, 0xFADE0009, false, false, kLinkOk,
       "Status: This version of Flight Simulator is not supported", false},
      {"the Prepar3D build wants 4.80", 0x47900000, 0xFADE0008, true, false, kLinkOk,
       "Status: FSUIPC must be at least v4.80", false},
      {"the Prepar3D build on P3D", 0x48000000, 0xFADE000A, true, false, kLinkOk,
       "Status: Monitoring P3D" + kMonitoring, true},
      {"the Prepar3D build on FS2004", 0x48000000, 0xFADE0007, true, false, kLinkOk,
       "Status: This flight simulation application is not supported", false},
      {"no simulator running", 0, 0, false, false, kLinkNoServer,
       "Status: No Flight Simulator Found", false},
      {"no simulator for the Prepar3D build", 0, 0, true, false, kLinkNoServer,
       "Status: No P3D Found", false},
      {"the mapping fails", 0, 0, false, false, kLinkMappingFailed,
       "Can't Connect - Failed to create a file mapping object", false},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.what);
    FlightRig rig;
    rig.image.SetU32(0x3304, row.version);
    rig.image.SetU32(0x3308, row.id);
    rig.instructor.options.P3DMode = row.p3d;
    rig.link.failOpenWith = row.openFails;
    if (row.noVersionCheck) rig.root.AddFile("NoVersionCheck.txt");
    rig.Tick();  // the tick opens the link
    EXPECT_EQ(rig.Texts("status", "text"), Strings{row.status});
    EXPECT_EQ(rig.flight().Connected, row.connected);
    EXPECT_EQ(rig.link.IsOpen(), row.connected);
  }
}

TEST(Connection, TheVersionReadsAsTheWindowShowsIt) {
  EXPECT_EQ(LinkVersionText(0x48000000), "4.800");
  EXPECT_EQ(LinkVersionText(0x32200003), "3.220c");
  EXPECT_EQ(LinkVersionText(0x49740000), "4.974");
}

TEST(Connection, ConnectingGreetsAndClearsTheFlights) {
  FlightRig rig;
  rig.Connect();
  rig.Tick(20);
  rig.stats().ExceedVNE = 3;
  rig.instructor.Disconnect();
  rig.Mark();
  rig.instructor.options.TeachingOn = false;
  rig.Connect();
  EXPECT_EQ(rig.Queued(), Strings{"VantoroInitialization.wav"});
  EXPECT_EQ(rig.Since("queued")[0].Text("by"), "PlayAlways");
  EXPECT_EQ(rig.stats().ExceedVNE, 0);
  EXPECT_EQ(rig.flight().CurrentFlight, 1);
  EXPECT_TRUE(rig.flight().UserConnected);
  rig.Tick();
  EXPECT_EQ(rig.Modes(), (Strings{"none", "Taxiing"}));  // parked, then a new flight
}

TEST(Connection, TenFailedReadsDropTheLinkAndTheTickOpensItAgain) {
  FlightRig rig;
  rig.Connect();
  rig.Tick(20);
  const int32_t ticks = rig.flight().TickCount;
  rig.Mark();
  rig.link.failProcessWith = kLinkTimeout;
  rig.Tick(9);
  EXPECT_EQ(rig.flight().Stats.LinkStatus, "Failed Process - IPC timed out all retries");
  EXPECT_EQ(rig.flight().Stats.ReadErrors, 9);
  EXPECT_TRUE(rig.flight().Connected);
  rig.Tick();
  EXPECT_FALSE(rig.flight().Connected);
  EXPECT_EQ(rig.flight().TickCount, ticks);  // failed ticks do not count

  // The simulator is gone: the status line says so, the pilot stays connected.
  rig.link.failOpenWith = kLinkNoServer;
  rig.Tick(3);
  EXPECT_EQ(rig.flight().Status, "Status: No Flight Simulator Found");
  EXPECT_TRUE(rig.flight().UserConnected);
  EXPECT_TRUE(rig.Disconnects().empty());

  // It comes back; the flight goes on where it was.
  rig.link.failOpenWith = kLinkOk;
  rig.link.failProcessWith = kLinkOk;
  rig.Tick(2);
  EXPECT_EQ(rig.flight().Status, "Status: Monitoring FSX" + kMonitoring);
  EXPECT_EQ(rig.flight().TickCount, ticks + 1);
  EXPECT_EQ(rig.flight().Stats.LinkStatus, "OK");
  EXPECT_TRUE(rig.flight().FlightStarted);
}

}  // namespace
}  // namespace vantoro
