#include <fstream>

#include "engine/flight_rig.h"

namespace vantoro {
namespace {

const std::string kVersion = "       [Vantoro v" VANTORO_VERSION "]";

TEST(Connection, TheLinkOpensForAKnownSimulatorAndARecentVersion) {
  struct Row {
    uint32_t version = 0, id = 0;  // both 0: the image answers 4.80 on FSX
    bool p3d = false, noVersionCheck = false;
    int openFails = kLinkOk;
    std::string status;
  };
  // clang-format off
  const std::vector<Row> rows = {
      {.status = "Status: Monitoring FSX" + kVersion},
      {.version = 0x32200000, .id = 0xFADE0007, .status = "Status: Monitoring FS2004" + kVersion},
      {.version = 0x32100000, .id = 0xFADE0007, .status = "Status: FSUIPC must be at least v3.22"},
      {.version = 0x32100000, .id = 0xFADE0007, .noVersionCheck = true,
       .status = "Status: Monitoring FS2004" + kVersion},
      {.version = 0x48000000, .id = 0xFADE0009,
       .status = "Status: This version of Flight Simulator is not supported"},
      {.version = 0x47900000, .id = 0xFADE000A, .p3d = true,
       .status = "Status: FSUIPC must be at least v4.80"},
      {.version = 0x48000000, .id = 0xFADE000A, .p3d = true,
       .status = "Status: Monitoring P3D" + kVersion},
      {.version = 0x48000000, .id = 0xFADE0007, .p3d = true,
       .status = "Status: This flight simulation application is not supported"},
      {.openFails = kLinkNoServer, .status = "Status: No Flight Simulator Found"},
      {.p3d = true, .openFails = kLinkNoServer, .status = "Status: No P3D Found"},
      {.openFails = kLinkMappingFailed,
       .status = "Can't Connect - Failed to create a file mapping object"},
  };
  // clang-format on
  for (const Row& row : rows) {
    SCOPED_TRACE(row.status);
    FlightRig rig;
    rig.image.SetU32(0x3304, row.version);
    rig.image.SetU32(0x3308, row.id);
    rig.instructor.options.P3DMode = row.p3d;
    rig.link.failOpenWith = row.openFails;
    if (row.noVersionCheck) std::ofstream(rig.dir_ / "NoVersionCheck.txt") << "";
    rig.Tick();  // the tick opens the link
    EXPECT_EQ(rig.Texts("status", "text"), row.status);
    const bool monitoring = row.status.find("Monitoring") != std::string::npos;
    EXPECT_EQ(rig.flight().Connected, monitoring);
    EXPECT_EQ(rig.link.IsOpen(), monitoring);
  }
}

TEST(Connection, TenFailedReadsDropTheLinkAndTheTickOpensItAgain) {
  FlightRig rig;
  rig.instructor.Connect();
  EXPECT_EQ(rig.Queued(), "VantoroInitialization.wav|TeachVNTRConnecting.wav");
  rig.Tick(20);
  const int32_t ticks = rig.flight().TickCount;
  rig.link.failProcessWith = kLinkTimeout;
  rig.Tick(9);
  EXPECT_EQ(rig.flight().Stats.LinkStatus, "Failed Process - IPC timed out all retries");
  EXPECT_EQ(rig.flight().Stats.ReadErrors, 9);
  EXPECT_TRUE(rig.flight().Connected);
  rig.Tick();
  EXPECT_FALSE(rig.flight().Connected);
  EXPECT_EQ(rig.flight().TickCount, ticks);  // failed reads are no ticks

  rig.link.failOpenWith = kLinkNoServer;  // the simulator has gone; the pilot stays connected
  rig.Tick(3);
  EXPECT_EQ(rig.flight().Status, "Status: No Flight Simulator Found");
  EXPECT_TRUE(rig.flight().UserConnected);

  rig.link.failOpenWith = kLinkOk;  // and it is back: the flight goes on
  rig.link.failProcessWith = kLinkOk;
  rig.Tick(2);
  EXPECT_EQ(rig.flight().Status, "Status: Monitoring FSX" + kVersion);
  EXPECT_EQ(rig.flight().TickCount, ticks + 1);
  EXPECT_EQ(rig.flight().Stats.LinkStatus, "OK");
  EXPECT_EQ(rig.Disconnects(), "");
}

}  // namespace
}  // namespace vantoro
