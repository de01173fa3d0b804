
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

namespace vantoro {
namespace {

std::string MakeFolder(const std::filesystem::path& p) {
  std::filesystem::create_directories(p);
  return p.string() + "/";
}

TEST(Connection, ConnectIsRefusedWithoutAPilotFileOrWithAMissingFolder) {
  struct Row {
    std::string name{};
    bool unsavedPilot = false, p3d = false;
    // "missing": a folder named but not there; "there": an existing folder.
    std::string fs2002{}, fs2004{}, fsx{};
    std::string refusal{};  // the message box, "" when the pilot may fly
  };
  // clang-format off
  const std::vector<Row> rows = {
      {.name = "nothing named"},
      {.name = "folders there", .fs2002 = "there", .fs2004 = "there", .fsx = "there"},
      {.name = "new pilot", .unsavedPilot = true, .refusal =
           "You must load an existing pilot's data\nor save the current pilot data\n"
           "before attempting to fly."},
      {.name = "fsx", .fs2004 = "there", .fsx = "missing",
       .refusal = "The specified FSX folder does not exist!"},
      {.name = "first missing wins", .fs2002 = "missing", .fsx = "missing",
       .refusal = "The specified FS2002 folder does not exist!"},
      {.name = "fs2004", .fs2002 = "there", .fs2004 = "missing",
       .refusal = "The specified FS2004 folder does not exist!"},
      {.name = "p3d", .p3d = true, .fsx = "missing",
       .refusal = "The specified P3D folder does not exist!"},
      {.name = "p3d keeps no other folder", .p3d = true, .fs2002 = "missing", .fsx = "there"},
  };
  // clang-format on
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    FlightRig rig;
    if (row.p3d) rig.image.SetU32(0x3308, 0xFADE000A);  // Prepar3D on the link
    EngineOptions& o = rig.instructor.options;
    o.P3DMode = row.p3d;
    o.PilotUnsaved = row.unsavedPilot;
    auto folder = [&](const std::string& kind, const char* name) {
      if (kind == "there") return MakeFolder(rig.dir_ / name);
      return kind.empty() ? std::string() : (rig.dir_ / name).string() + "/";
    };
    o.FS2002Folder = folder(row.fs2002, "FS2002");
    o.FS2004Folder = folder(row.fs2004, "FS2004");
    o.FSXFolder = folder(row.fsx, "FSX");
    const bool connected = rig.instructor.Connect();
    const std::string notices = rig.Texts("notice", "text");
    // The missing world is told too; the refusal comes first.
    EXPECT_EQ(notices.substr(0, row.refusal.size()), row.refusal);
    EXPECT_EQ(connected, row.refusal.empty());
    EXPECT_EQ(rig.flight().UserConnected, row.refusal.empty());
    EXPECT_EQ(rig.Queued().empty(), !row.refusal.empty());
  }
}

}  // namespace
}  // namespace vantoro
