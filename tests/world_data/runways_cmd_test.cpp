// `vantoro-cli runways`: what a pilot types and reads.
#include "cli/runways_cmd.h"

#include <gtest/gtest.h>

#include <iostream>
#include <sstream>

#include "base/files.h"
#include "world_fixture.h"

namespace vantoro {
namespace {

using testing::ScratchFolder;

const std::string kRoot = std::string(VANTORO_SOURCE_DIR) + "/data";
const std::string kData = std::string(VANTORO_SOURCE_DIR) + "/tests/world_data/data/";

struct CliRun {
  int status = 0;
  std::string out, err;
  std::vector<std::string> lines;
};

CliRun Runways(const std::vector<std::string>& args) {
  std::ostringstream out, err;
  CliContext cli{"vantoro-cli", out, err};
  CliRun run;
  run.status = RunwaysCommand(args, cli);
  run.out = out.str();
  run.err = err.str();
  std::istringstream lines(run.out);
  for (std::string line; std::getline(lines, line);) run.lines.push_back(line);
  return run;
}

TEST(RunwaysCommand, NearestAtKennedy) {
  CliRun run = Runways({"nearest", "40.6252", "-73.7701", "--root", kRoot, "--limit", "3"});
  EXPECT_EQ(run.status, 0) << run.err;
  ASSERT_EQ(run.lines.size(), 3u);
  EXPECT_TRUE(run.lines[0].starts_with(
      R"({"Number":"04R","ICAO":"KJFK","Latitude":40.625426,"Longitude":-73.770347,)"
      R"("Heading":31,"GlideSlope":3,"Elevation":13,"Width":200,"Length":8397,)"
      R"("ILSFrequency":"109.50","ILSIdent":"IJFK","Surface":"ASPHALT","ATIS":"128.72",)"))
      << run.lines[0];
  EXPECT_TRUE(run.lines[0].ends_with(R"("AirportName":"John F Kennedy Intl",)"
                                     R"("ThresholdOffset":0,"Distance":0.02})"))
      << run.lines[0];

  // Lined up with 31L a mile out, only runways ahead and aligned count.
  run = Runways(
      {"nearest", "40.6193", "-73.7528", "--heading", "301", "--max-miles", "3", "--root", kRoot});
  ASSERT_EQ(run.lines.size(), 1u) << run.out;
  EXPECT_TRUE(run.lines[0].starts_with(R"({"Number":"31L","ICAO":"KJFK")")) << run.lines[0];
}

TEST(RunwaysCommand, AirportLookUp) {
  CliRun run = Runways({"airport", "kbos", "--root", kRoot});
  EXPECT_EQ(run.status, 0) << run.err;
  EXPECT_EQ(run.lines.size(), 12u);
  bool found = false;
  for (const std::string& line : run.lines) {
    if (!line.starts_with(R"({"Number":"04R","ICAO":"KBOS")")) continue;
    found = true;
    EXPECT_NE(line.find(R"("ILSFrequency":"110.30","ILSIdent":"IBOS")"), std::string::npos);
    EXPECT_EQ(line.find("Distance"), std::string::npos);
  }
  EXPECT_TRUE(found) << run.out;

  run = Runways({"airport", "QQQQ", "--root", kRoot});
  EXPECT_EQ(run.status, 0);
  EXPECT_TRUE(run.lines.empty());
  EXPECT_EQ(run.err, "runways: no runways of QQQQ\n");
}

TEST(RunwaysCommand, Import) {
  ScratchFolder dir;
  CliRun run = Runways({"import", kData + "mini.apt.dat", kData + "mini.nav.dat", dir.Path()});
  EXPECT_EQ(run.status, 0) << run.err;
  EXPECT_EQ(run.out, "airports 3, runway ends 8 (with a localiser 2), VORs 2, NDBs 1\n");
  EXPECT_NE(run.err.find("mini.apt.dat:20: runway row has 10 fields"), std::string::npos);
  EXPECT_TRUE(FileExists(dir.File("VNTR2011.TXT")));
  EXPECT_TRUE(FileExists(dir.File("VNTRvors.txt")));

  run = Runways(
      {"import", kData + "mini.apt.dat", kData + "mini.nav.dat", dir.File("ship"), "--ship"});
  EXPECT_EQ(run.status, 0) << run.err;
  for (const char* name : {"World.RWY.gz", "VNTRvors.txt.gz"})
    EXPECT_TRUE(FileExists(dir.File(std::string("ship\\") + name))) << name;
}

TEST(RunwaysCommand, BadUsage) {
  ScratchFolder dir;
  struct Case {
    std::vector<std::string> args;
    const char* problem;
  };
  const Case cases[] = {
      {{}, "A subcommand is required"},
      {{"nearby", "1", "2"}, "unknown action nearby"},
      {{"nearest", "north", "-73"}, "LAT: must be degrees from -90 to 90, not north"},
      {{"nearest", "40", "-73", "--heading", "400"},
       "--heading: must be degrees from 0 to 360, not 400"},
      {{"nearest", "40", "-73", "--limit"}, "--limit: 1 required"},
      {{"nearest", "40", "-73", "--wind", "3"},
       "not an option or argument of this command: --wind"},
      {{"nearest", "40", "-73", "--root", dir.Path()}, "Vantoro runway data file is missing!"},
      {{"import", dir.File("apt.dat"), kData + "mini.nav.dat", dir.Path()}, "cannot be read"},
  };
  for (const Case& c : cases) {
    CliRun run = Runways(c.args);
    EXPECT_EQ(run.status, 2) << c.problem;
    EXPECT_NE(run.err.find(c.problem), std::string::npos) << c.problem << "\n" << run.err;
    EXPECT_TRUE(run.out.empty()) << c.problem;
  }
}

}  // namespace
}  // namespace vantoro
