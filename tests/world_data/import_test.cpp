#include <gtest/gtest.h>

#include "base/files.h"
#include "base/gzip.h"
#include "world/runway_queries.h"
#include "world/runways.h"
#include "world/vors.h"
#include "world/world_import.h"
#include "world_fixture.h"

namespace vantoro {
namespace {

using testing::ScratchFolder;

const std::string kData = std::string(VANTORO_SOURCE_DIR) + "/tests/world_data/data/";

// The lines of a written file, each with its "\r\n" end.
std::vector<std::string> LinesOf(const std::string& text, size_t start = 0) {
  std::vector<std::string> out;
  for (size_t end; (end = text.find("\r\n", start)) != std::string::npos; start = end + 2)
    out.push_back(text.substr(start, end - start));
  return out;
}

TEST(WorldImport, RunwayEndsAndStationsOfTheFiles) {
  WorldImport world = ImportWorld(kData + "mini.apt.dat", kData + "mini.nav.dat");
  EXPECT_TRUE(world.Errors.empty());
  const std::vector<std::string> expected = {
      // The localiser alone on 09 (named "9" by the navaid file), the PAPI's
      // 3.5 degrees; a displaced threshold of 100 m; the ATIS rather than
      // the AWOS.
      "09|90|N10_00_00|E020_00_00|3_50|ZZAA.09|512|17951|148|109.90|IZAB|CONCRETE|124.75|90|"
      "10.000000|20.050000||Alder Field|328|10.000000|20.000000",
      // A full ILS with its glide slope of 3.2 degrees.
      "27|270|N10_00_00|E020_03_00|3_20|ZZAA.27|512|17951|148|110.30|IZAA|CONCRETE|124.75|270|"
      "10.000000|20.000000||Alder Field|0|10.000000|20.050000",
      "18|180|N10_01_20|E020_01_20|3|ZZAA.18|512|10937|98|||GRASS|124.75|0|9.990000|20.020000||"
      "Alder Field|0|10.020000|20.020000",
      "36|360|N09_59_40|E020_01_20|3|ZZAA.36|512|10937|98|||GRASS|124.75|0|10.020000|20.020000||"
      "Alder Field|0|9.990000|20.020000",
      // A transparent surface says nothing; a Latin-1 name becomes UTF-8.
      "03|40|S33_30_00|W070_30_00|3|ZZAC.03|1200|4747|59|||||0|-33.490000|-70.490000||"
      "Zweibr\xc3\xbc"
      "cken|0|-33.500000|-70.500000",
      "21|220|S33_29_40|W070_29_40|3|ZZAC.21|1200|4747|59|||||0|-33.500000|-70.500000||"
      "Zweibr\xc3\xbc"
      "cken|0|-33.490000|-70.490000",
      // A seaplane base: water ends, its tag gone and "|" made harmless.
      "N|360|N11_59_40|E022_00_00|3|ZZSB.N|0|3646|200|||WATER||0|12.000000|22.000000||"
      "Birch / Lake|0|11.990000|22.000000",
      "S|180|N12_00_00|E022_00_00|3|ZZSB.S|0|3646|200|||WATER||0|11.990000|22.000000||"
      "Birch / Lake|0|12.000000|22.000000",
  };
  // The closed airport, the heliport and the helipad are left out.
  EXPECT_EQ(LinesOf(world.RunwayText), expected);

  // Rows that cannot be read are named by file and line and skipped.
  const std::vector<std::string> warnings = {
      kData + "mini.nav.dat:9: glide slope row has 10 fields, 11 expected; row skipped",
      kData + "mini.apt.dat:20: runway row has 10 fields, 26 expected; row skipped",
      kData + "mini.apt.dat:21: frequency is not a number: \"oops\"; row skipped",
  };
  EXPECT_EQ(world.Warnings, warnings);

  // Stations: the VORs first.
  const std::vector<std::string> stations = {
      "ABC|ABC VOR|10.300000|20.300000|510|113.20",
      "ALD|ALDER VOR-DME|10.200000|20.200000|500|116.80",
      "AL|ALDER NDB|10.100000|20.100000|0|385",
  };
  EXPECT_EQ(LinesOf(world.VorText), stations);
}

// What the import writes is what the loader reads, compressed or not.
TEST(WorldImport, ImportedWorldLoads) {
  ScratchFolder dir;
  const std::string apt = dir.Write("apt.dat.gz", GzipText(ReadFile(kData + "mini.apt.dat")));
  WorldImport world = ImportWorld(apt, kData + "mini.nav.dat");
  ASSERT_TRUE(world.Errors.empty());
  EXPECT_EQ(world.RunwayText,
            ImportWorld(kData + "mini.apt.dat", kData + "mini.nav.dat").RunwayText);
  dir.Write("World\\World.RWY.gz", GzipText(world.RunwayText));
  dir.Write("World\\VNTRvors.txt.gz", GzipText(world.VorText));

  WorldState loaded;
  EXPECT_EQ(LoadRunwaysAndVORs(loaded, dir.Path(), "", "FSX"), "");
  ASSERT_EQ(loaded.Runways.size(), 8u);
  FillCloseRunways(loaded, 10.01, 20.01);
  const Runway* r = FindClosestRunway(loaded, 10.0, 20.07, 270, kNoLimit, true);
  ASSERT_NE(r, nullptr);
  EXPECT_EQ(r->ICAO + " " + r->Number + " " + r->ILSFrequency, "ZZAA 27 110.30");
  EXPECT_DOUBLE_EQ(r->GlideSlope, 3.2);
  EXPECT_EQ(r->ILSHeading, 270);

  EXPECT_EQ(loaded.VORStations.size(), 3u);
}

TEST(WorldImport, UnreadableFiles) {
  ScratchFolder dir;
  std::string packed = GzipText(ReadFile(kData + "mini.apt.dat"));
  const std::string torn = dir.Write("apt.dat.gz", packed.substr(0, packed.size() - 12));
  WorldImport world = ImportWorld(torn, dir.File("nav.dat"));
  ASSERT_EQ(world.Errors.size(), 2u);
  EXPECT_EQ(world.Errors[0], dir.File("nav.dat") + ": cannot be read");
  EXPECT_TRUE(world.Errors[1].starts_with(torn + ": damaged compressed data")) << world.Errors[1];
  EXPECT_TRUE(world.RunwayText.empty());
}

TEST(WorldImport, FileForms) {
  EXPECT_EQ(FileLatitude(42.3629), "N42_21_77");
  EXPECT_EQ(FileLongitude(-71.0035), "W071_00_21");
  EXPECT_EQ(FileLatitude(-0.9999999), "S01_00_00");  // minutes that round up carry over
  EXPECT_EQ(FileGlideSlope(3), "3");
  EXPECT_EQ(FileGlideSlope(3.2), "3_20");
  for (double v : {-33.9461, 89.99})
    EXPECT_NEAR(ParseFileCoOrd(FileLongitude(v * 2), "LONGITUDE"), v * 2, 0.01 / 60 / 2 + 1e-12);
  const std::pair<int, const char*> surfaces[] = {
      {1, "ASPHALT"}, {3, "GRASS"}, {14, "SNOW"}, {15, ""}, {20, "ASPHALT"}, {57, "CONCRETE"}};
  for (const auto& [code, name] : surfaces) EXPECT_EQ(SurfaceName(code), name) << code;
}

}  // namespace
}  // namespace vantoro
