#include "world/runways.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cmath>
#include <sstream>

#include "base/gzip.h"
#include "world/world_import.h"
#include "world_fixture.h"

namespace vantoro {
namespace {

using testing::Lines;
using testing::RunwayAt;
using testing::RunwayLine;
using testing::ScratchFolder;

// A world loaded from the given runway lines.
WorldState Loaded(const ScratchFolder& dir, const std::vector<std::string>& lines) {
  WorldState world;
  EXPECT_EQ(LoadRunwayFile(world, dir.Write("r.txt", Lines(lines))), "");
  return world;
}

TEST(RunwayFile, FileFormValues) {
  struct Case {
    const char* text;
    const char* kind;
    double expected;
  };
  const Case cases[] = {
      {"3_20", "DECIMAL", 3.2},
      {"2_5", "DECIMAL", 2.5},  // the digits follow "0." as they stand
      {"N42_21_77", "LATITUDE", 42 + 21.77 / 60},
      {" s33_56_50 ", "LATITUDE", -(33 + 56.50 / 60)},
      {"W071_00_21", "LONGITUDE", -(71 + 0.21 / 60)},
      {"", "LATITUDE", 0},
      {"N42_21_77", "DEGREES", 0},
  };
  for (const Case& c : cases)
    EXPECT_NEAR(ParseFileCoOrd(c.text, c.kind), c.expected, 1e-12) << c.text << " " << c.kind;
  const std::pair<const char*, const char*> designators[] = {
      {"5", "05"}, {"5R", "05R"}, {"15", "15"}, {"36W", "36W"}, {"N", "N"}};
  for (const auto& [text, padded] : designators) EXPECT_EQ(PadRunwayNumber(text), padded) << text;
}

// Lines that fail the validity rules are skipped without trace; the rest load.
TEST(RunwayFile, ValidityOfLines) {
  std::string twenty = RunwayLine();
  twenty.erase(twenty.rfind('|'));
  const std::pair<std::string, bool> cases[] = {
      {RunwayLine(), true},
      {RunwayLine({{1, "360"}}), true},
      {RunwayLine({{1, "361"}}), false},
      {RunwayLine({{1, "9O"}}), false},
      {RunwayLine({{13, "361"}}), false},
      {RunwayLine({{18, "32000"}}), true},
      {RunwayLine({{18, "32001"}}), false},
      {RunwayLine({{0, "  "}}), false},
      {RunwayLine({{2, ""}}), false},
      {twenty, false},
      {RunwayLine({{21, "extra"}}), true},
  };
  for (const auto& [line, loads] : cases) {
    ScratchFolder dir;
    EXPECT_EQ(Loaded(dir, {line}).Runways.size(), loads ? 1u : 0u) << line;
  }
}

TEST(RunwayFile, FieldsOfARunway) {
  ScratchFolder dir;
  WorldState world =
      Loaded(dir, {RunwayLine({{0, "5R"}, {4, "3_20"}}),
                   RunwayLine({{0, "9"}, {4, ""}, {5, "ZZAB"}}), RunwayLine({{19, ""}, {20, ""}})});
  ASSERT_EQ(world.Runways.size(), 3u);
  const Runway& r = world.Runways[0];
  std::ostringstream fields;
  fields << r.Number << " " << r.ICAO << " " << r.Latitude << " " << r.Longitude << " " << r.Heading
         << " " << r.GlideSlope << " " << r.Elevation << " " << r.Width << " " << r.Length << " "
         << r.ILSFrequency << " " << r.ILSIdent << " " << r.Surface << " " << r.ATIS << " "
         << r.EndLatitude << " " << r.EndLongitude << " " << r.ILSHeading << " " << r.City << " "
         << r.AirportName << " " << r.ThresholdOffset;
  EXPECT_EQ(fields.str(),
            "05R ZZAA 10 20 90 3.2 512 148 17951 110.30 IZAA CONCRETE 124.75 10 20.05 90 "
            "Alderton Alder Field 328");
  // No "." in field 5: no airport code; an empty glide slope is the standard 3.
  EXPECT_EQ(world.Runways[1].ICAO + world.Runways[1].Number, "09");
  EXPECT_DOUBLE_EQ(world.Runways[1].GlideSlope, 3);
  // Without the decimal co-ordinates the hemisphere form places the runway.
  EXPECT_DOUBLE_EQ(world.Runways[2].Latitude, 10);
  EXPECT_DOUBLE_EQ(world.Runways[2].Longitude, 20);
}

// Cells are whole degrees rounded half to even; past 179.5 east the cell is
// the one the queries search (-180).
TEST(RunwayFile, CellsRoundHalfToEven) {
  struct Case {
    double latitude, longitude;
    int cellLatitude, cellLongitude;
  };
  const Case cases[] = {{0.5, 0.5, 0, 0},     {1.5, 1.5, 2, 2},         {2.5, -2.5, 2, -2},
                        {-0.5, -1.5, 0, -2},  {10.49, 20.51, 10, 21},   {0, 179.6, 0, -180},
                        {0, -179.6, 0, -180}, {-89.6, 179.4, -90, 179}, {0, 180, 0, -180}};
  ScratchFolder dir;
  std::vector<std::string> lines;
  for (const Case& c : cases) lines.push_back(RunwayAt("ZZAA", "09", c.latitude, c.longitude));
  WorldState world = Loaded(dir, lines);
  for (size_t i = 0; i < std::size(cases); ++i) {
    const RunwayCell* cell = world.FindCell(cases[i].cellLatitude, cases[i].cellLongitude);
    ASSERT_NE(cell, nullptr) << i;
    EXPECT_NE(std::find(cell->begin(), cell->end(), static_cast<int32_t>(i)), cell->end()) << i;
  }
}

// The file reads alike whatever the machine's decimal separator.
TEST(RunwayFile, DecimalsUnderACommaLocale) {
  const char* comma = nullptr;
  for (const char* name : {"de_DE.UTF-8", "de_DE.utf8", "fr_FR.UTF-8", "de_DE"})
    if ((comma = std::setlocale(LC_NUMERIC, name)) != nullptr) break;
  if (comma == nullptr) GTEST_SKIP() << "no locale with a decimal comma on this machine";
  ScratchFolder dir;
  WorldState world = Loaded(dir, {RunwayLine({{19, "42.5"}, {4, "3_20"}})});
  std::setlocale(LC_NUMERIC, "C");
  ASSERT_EQ(world.Runways.size(), 1u);
  EXPECT_DOUBLE_EQ(world.Runways[0].Latitude, 42.5);
  EXPECT_DOUBLE_EQ(world.Runways[0].GlideSlope, 3.2);
}

TEST(RunwayFile, ChoiceOfFile) {
  ScratchFolder dir;
  const std::string root = dir.File("root");
  const std::string sim = dir.File("FSX");
  // Nothing at all: the message names candidate 2, and a loaded world is emptied.
  std::filesystem::create_directories(NativePath(root));
  WorldState world = Loaded(dir, {RunwayLine()});
  EXPECT_EQ(LoadRunways(world, root, sim, "FSX"),
            "Vantoro runway data file is missing!\n\nFile: " + root + "\\FSX.RWY");
  EXPECT_FALSE(world.RunwaysLoaded());
  EXPECT_EQ(world.FindCell(10, 20), nullptr);

  // The delivered world in the root's World folder answers for every
  // simulator, and a file of the simulator's name beside the root wins over it.
  dir.Write("root\\World\\World.RWY.gz", GzipText(RunwayLine()));
  const std::string shipped = root + "\\World\\World.RWY.gz";
  EXPECT_EQ(GetRunwayFile(root, "", "FSX").Path, shipped);
  dir.Write("root\\fsx.rwy", RunwayLine());
  EXPECT_EQ(GetRunwayFile(root, sim, "FSX").Path, root + "\\FSX.RWY");

  // The user's own generated file in the simulator's folder comes first.
  dir.Write("FSX\\vntr2011.txt.gz", GzipText(RunwayLine()));
  EXPECT_EQ(GetRunwayFile(root, sim, "FSX").Path, sim + "\\VNTR2011.TXT.gz");
}

// The load window hears each step and every 1024th line.
TEST(RunwayFile, ProgressOfTheLoad) {
  ScratchFolder dir;
  dir.Write("FSX.RWY", Lines(std::vector<std::string>(3000, RunwayLine())));
  std::string statuses;
  std::vector<double> fractions;
  WorldState world;
  LoadRunways(world, dir.Path(), "", "FSX", [&](const RunwayLoadProgress& p) {
    statuses += std::string(p.Status) + "|";
    fractions.push_back(p.Fraction());
  });
  EXPECT_EQ(statuses,
            "Finding file|Reading file|File read|File Split|Processing Data|Processing runway "
            "line 0|Processing runway line 1024|Processing runway line 2048|Finished|");
  EXPECT_DOUBLE_EQ(fractions[6], 1024.0 / 3000);
  EXPECT_EQ(world.Runways.size(), 3000u);
}

// A compressed file that ends early or is damaged is reported with its name
// and what could be read is kept. A file that ends early keeps its whole lines
// exactly, and no torn line slips in; in a damaged one the check sum finds
// the damage only at the end, so only the report is certain.
TEST(RunwayFile, DamagedCompressedFile) {
  std::vector<std::string> lines;
  for (int i = 0; i < 4000; ++i)
    lines.push_back(RunwayAt("ZZ" + std::to_string(i), "09", 10 + i * 0.0001, 20 + i * 0.0001));
  const std::string packed = GzipText(Lines(lines));
  std::string flipped = packed;
  for (size_t i = flipped.size() / 2; i < flipped.size() / 2 + 64; ++i) flipped[i] ^= 0x5a;
  for (const std::string& bytes : {packed.substr(0, packed.size() / 2), flipped}) {
    ScratchFolder dir;
    const std::string file = dir.Write("r.RWY.gz", bytes);
    WorldState world;
    const std::string message = LoadRunwayFile(world, file);
    EXPECT_NE(message.find("File Read: " + file), std::string::npos) << message;
    EXPECT_NE(message.find("Location: LoadRunways"), std::string::npos) << message;
    EXPECT_GT(world.Runways.size(), 100u);
    EXPECT_LT(world.Runways.size(), 4000u);
    if (bytes == flipped) continue;
    for (size_t i = 0; i < world.Runways.size(); ++i) {
      ASSERT_EQ(world.Runways[i].ICAO, "ZZ" + std::to_string(i));
      ASSERT_NEAR(world.Runways[i].Longitude, 20 + static_cast<double>(i) * 0.0001, 1e-6);
    }
  }
}

TEST(RunwayFile, DetailedLookUpOfOneAirport) {
  ScratchFolder dir;
  const std::string file = dir.Write(
      "r.txt",
      Lines({RunwayLine(), RunwayLine({{0, "27"}, {5, "ZZAA.27"}, {4, "0"}, {2, "N10_00_30"}}),
             RunwayLine({{0, "04"}, {5, "ZZAB.04"}}),
             // An older generated file: 13 fields, the later ones left empty.
             "18|180|N10_01_00|E020_01_00|3_10|zzaa.18|600|5000|75|||GRASS|126.00",
             "36|abc|N10_01_00|E020_01_00|3|ZZAA.36",
             // The same designator again: that entry is updated.
             RunwayLine({{0, "9"}, {6, "530"}})}));
  WorldState world;
  EXPECT_EQ(LoadAirportRunways(world, file, "zzaa"), "");
  ASSERT_EQ(world.SelectedAirport.size(), 3u);
  const RunwayRecord& r09 = world.SelectedAirport[0];
  EXPECT_EQ(r09.Number + " " + r09.ILSFrequency + " " + r09.City, "09 110.30 Alderton");
  EXPECT_EQ(r09.Elevation, 530);
  EXPECT_DOUBLE_EQ(world.SelectedAirport[1].GlideSlope, 3);
  EXPECT_DOUBLE_EQ(world.SelectedAirport[1].Latitude, 10 + 0.30 / 60);
  const RunwayRecord& r18 = world.SelectedAirport[2];
  EXPECT_EQ(r18.Surface + " " + r18.ATIS + " " + r18.AirportName, "GRASS 126.00 ");
  EXPECT_DOUBLE_EQ(r18.GlideSlope, 3.1);
  EXPECT_EQ(r18.ILSHeading, 0);
}

TEST(RunwayFile, GeneratingRunwayData) {
  ScratchFolder dir;
  const std::string root = dir.File("root");
  const std::string sim = dir.File("FS9");
  std::filesystem::create_directories(NativePath(root));
  EXPECT_EQ(GenerateRunwayData(sim, root, false), "The folder: " + sim + " does not exist.");
  std::filesystem::create_directories(NativePath(sim));
  // The four files are tested in order; the first one missing is named.
  for (const char* file : {"MakeRwys.exe", "VNTRRwys.exe", "VNTRRwys.fsf", "VNTRRwy.bat"}) {
    EXPECT_EQ(GenerateRunwayData(sim, root, false), std::string("Error cannot find: ") + file);
    dir.Write(std::string("root\\") + file, "x");
  }
#ifndef _WIN32
  // Only Windows can run the batch.
  EXPECT_EQ(GenerateRunwayData(sim, root, false),
            "New Flight Simulator runway data could not be generated.");
  EXPECT_EQ(GenerateRunwayData(sim, root, true), "New P3D runway data could not be generated.");
#endif
}

}  // namespace
}  // namespace vantoro
