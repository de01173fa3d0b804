// The world delivered with the program, as a pilot meets it.
#include <gtest/gtest.h>

#include <set>

#include "world/geo.h"
#include "world/runway_queries.h"
#include "world/runways.h"
#include "world/vors.h"
#include "world/world_import.h"

namespace vantoro {
namespace {

const std::string kRoot = std::string(VANTORO_SOURCE_DIR) + "/data";

class ShippedWorld : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    world_ = new WorldState;
    load_message_ = new std::string(LoadRunways(*world_, kRoot, "", "FSX"));
  }
  static void TearDownTestSuite() {
    delete world_;
    delete load_message_;
  }
  static WorldState* world_;
  static std::string* load_message_;
};
WorldState* ShippedWorld::world_ = nullptr;
std::string* ShippedWorld::load_message_ = nullptr;

TEST_F(ShippedWorld, EverySimulatorFindsIt) {
  for (std::string_view sim : {"FS2002", "FS2004", "FSX", "P3D"}) {
    RunwayFileChoice choice = GetRunwayFile(kRoot, "", sim);
    EXPECT_EQ(choice.Path, kRoot + "\\World\\World.RWY.gz") << sim;
    EXPECT_EQ(choice.Message, "") << sim;
  }
  EXPECT_EQ(*load_message_, "");
  std::set<std::string> airports;
  for (const Runway& r : world_->Runways) airports.insert(r.ICAO);
  EXPECT_GT(world_->Runways.size(), 65000u);
  EXPECT_GT(airports.size(), 27000u);
}

// Nearest-airport and airport look-ups at known places give the real
// runways with their localiser frequencies.
TEST_F(ShippedWorld, KnownPlaces) {
  struct Case {
    double latitude, longitude;  // the aircraft, near the runway's threshold
    const char* icao;
    const char* number;
    const char* ils;
    const char* ident;
  };
  const Case cases[] = {
      {40.6252, -73.7701, "KJFK", "04R", "109.50", "IJFK"},
      {42.3508, -71.0119, "KBOS", "04R", "110.30", "IBOS"},
      {51.4779, -0.4330, "EGLL", "27R", "110.30", "IRR"},
      {-33.9291, 151.1718, "YSSY", "16R", "109.50", "IKS"},
      {50.0453, 8.5872, "EDDF", "25C", "111.55", "IFCW"},
      {-37.0065, 174.8060, "NZAA", "23L", "109.90", "IMG"},
  };
  for (const Case& c : cases) {
    WorldState& world = *world_;
    FillCloseRunways(world, c.latitude, c.longitude);
    const Runway* r = FindClosestRunway(world, c.latitude, c.longitude, kNoLimit, kNoLimit, true);
    ASSERT_NE(r, nullptr) << c.icao;
    EXPECT_EQ(r->ICAO, c.icao);
    EXPECT_EQ(r->Number, c.number) << c.icao;
    EXPECT_EQ(r->ILSFrequency, c.ils) << c.icao;
    EXPECT_EQ(r->ILSIdent, c.ident) << c.icao;
    EXPECT_LT(CalcDistance(r->Latitude, r->Longitude, c.latitude, c.longitude), 0.1) << c.icao;

    // The detailed look-up of the same airport finds the same runway.
    WorldState detail;
    EXPECT_EQ(LoadAirportRunways(detail, world.RunwayFile, c.icao), "");
    const int index = FindRunwayIndex(detail, c.number);
    ASSERT_GE(index, 0) << c.icao;
    EXPECT_EQ(detail.SelectedAirport[static_cast<size_t>(index)].ILSFrequency, c.ils);
  }
}

TEST_F(ShippedWorld, KennedyAndItsRunways) {
  WorldState& world = *world_;
  FillCloseRunways(world, 40.6413, -73.7781);
  FillThisAirportRunways(world, "KJFK");
  std::set<std::string> numbers;
  for (const Runway* r : world.AirportRunways) numbers.insert(r->Number);
  const std::set<std::string> expected = {"04L", "04R", "13L", "13R", "22L", "22R", "31L", "31R"};
  EXPECT_EQ(numbers, expected);
  EXPECT_EQ(world.AirportRunways[0]->ATIS, "128.72");
  // Lined up on 31L a mile out: the runway ahead is found by heading.
  const Runway* ahead = FindClosestRunway(world, 40.6193, -73.7528, 301, 5, true);
  ASSERT_NE(ahead, nullptr);
  EXPECT_EQ(ahead->ICAO + ahead->Number, "KJFK31L");
}

TEST_F(ShippedWorld, FijiAcrossTheDateLine) {
  WorldState& world = *world_;
  FillCloseRunways(world, -16.6, 179.6);
  std::set<std::string> airports;
  for (const Runway* r : world.CloseRunways) airports.insert(r->ICAO);
  // Runways both sides of the date line are in the working set.
  EXPECT_TRUE(airports.count("NFFR")) << "east of 179.5";
  EXPECT_TRUE(airports.count("NFNH")) << "west of the date line";
}

TEST(ShippedStations, BostonVor) {
  WorldState world;
  const std::string file = ResolveWorldFile(kRoot + "\\" + std::string(kVorFile), kRoot);
  EXPECT_EQ(file, kRoot + "\\World\\VNTRvors.txt.gz");
  EXPECT_EQ(ReadVorData(world, file), "");
  EXPECT_GT(world.VORStations.size(), 10000u);
  const VORStation* bos = nullptr;
  for (const VORStation& s : world.VORStations)
    if (s.Ident == "BOS") bos = &s;
  ASSERT_NE(bos, nullptr);
  EXPECT_DOUBLE_EQ(bos->Frequency, 112.7);
  EXPECT_EQ(FindVOR(world, bos->Latitude, bos->Longitude, 0.001), bos);
}

}  // namespace
}  // namespace vantoro
