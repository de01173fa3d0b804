// The decoder seen from the rules: values placed at simulator offsets in an
// offset image come out of the current record as the instructor reads them.
#include "link/snapshot.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <functional>
#include <random>
#include <string>
#include <tuple>

#include "link/image_link.h"
#include "link/offset_encoder.h"

namespace vantoro {
namespace {

// One decoder with its image; Decode copies the four blocks as a tick reads
// them and decodes them into the current record.
struct Sim {
  OffsetImage image;
  LinkState link;
  DecodeInputs in;
  DecodeResult result;

  const FSData& Decode() {
    image.GetBytes(kMainBlockOffset, link.ByteBuffer.data(), kMainBlockSize);
    image.GetBytes(kGpsBlockOffset, link.GpsBuffer.data(), kGpsBlockSize);
    image.GetBytes(kTrafficBlockOffset, link.TrafficBuffer.data(), kTrafficBlockSize);
    image.GetBytes(kMetarBlockOffset, link.MetarBuffer.data(), kMetarBlockSize);
    result = ProcessFSData(link, in);
    return link.Now();
  }
};

// Degrees to the top word of a 32-bit simulator angle (65536 to the turn).
uint16_t AngleWord(double degrees) {
  return static_cast<uint16_t>(std::lround(std::fmod(degrees + 360.0, 360.0) * 65536.0 / 360.0));
}

// One field of the current record, read as a number.
template <typename T>
std::function<double(const FSData&)> Field(T FSData::*field) {
  return [field](const FSData& d) { return static_cast<double>(d.*field); };
}

TEST(Snapshot, FieldsInTheInstructorsUnits) {
  struct Case {
    uint32_t offset;
    uint16_t raw;
    std::function<double(const FSData&)> field;
    double expected;
  };
  const Case cases[] = {
      // The simulator's pitch is negative nose up; 180 exactly lands on the 360 - x side.
      {0x057A, 910, Field(&FSData::Pitch), -5},
      {0x057E, AngleWord(-5), Field(&FSData::Bank), 5},
      {0x057A, 32768, Field(&FSData::Pitch), 180},
      {0x057E, 32585, Field(&FSData::Bank), -179},
      {0x057A, 65535, Field(&FSData::Pitch), 0},
      {0x0BB2, 0x8000, Field(&FSData::Elevator), -32768},  // top byte 0x80
      {0x0842, 0x8000, Field(&FSData::VS), 107507},        // the fastest climb the word holds
      {0x0842, static_cast<uint16_t>(-100), Field(&FSData::VS), 328},
      {0x0574, static_cast<uint16_t>(-10), Field(&FSData::Altitude), -33},  // below sea level
      {0x036E, 0x80, Field(&FSData::Slip), -128},
      {0x0C48, 0xFF, Field(&FSData::Nav1Localiser), -1},
      {0x02B6, 50, Field(&FSData::GS), 97},  // 50 m/s
      {0x02BC, 64, Field(&FSData::IAS), 0},  // half a knot rounds to even
      {0x02BC, 192, Field(&FSData::IAS), 2},
      {0x0021, 100, Field(&FSData::GroundAltitude), 328},  // 100.0 m reads 328.1 ft
      {0x07CC, 90 * 182, Field(&FSData::APHeadingBug), 90},
      {0x0F30, 3 * 8184, Field(&FSData::CloudHighCover), 3},
      {0x08D8, 10, Field(&FSData::Eng1FuelFlow), 2},  // 2.5 to even
      {0x034E, 0x2150, Field(&FSData::Com1Freq), 2150},
      {0x3120, 0x1170, Field(&FSData::Nav2Freq), 11170},
      {0x0354, 0x7700, Field(&FSData::Squawk), 0x7700},
      {0x31E6, 300, Field(&FSData::AGL), 984.3},
      {0x0E8A, 1050, Field(&FSData::Visibility), 10.5},
      {0x0350, 0x0895, Field(&FSData::Nav1Freq), 108.95},
  };
  for (const Case& c : cases) {
    Sim sim;
    sim.image.SetU16(c.offset, c.raw);
    EXPECT_DOUBLE_EQ(c.field(sim.Decode()), c.expected) << std::hex << c.offset;
  }
  Sim sim;
  sim.image.SetU16(0x3324, 1000);
  sim.image.SetU8(0x0C18, 2);  // metres on the altimeter
  EXPECT_EQ(sim.Decode().IndicatedAltitude, 3281);
}

// What a simulator link encodes is what the instructor reads back, within the
// resolution of each raw word (heights in whole metres, 3.3 ft; vertical
// speed in metres a minute; attitudes and headings in whole degrees).
TEST(Snapshot, EncodedAircraftReadsBack) {
  struct Case {
    const char* what;
    std::function<void(FlownAircraft&)> set;
    std::function<double(const FSData&)> field;
    double expected;
    double within;
  };
  const Case cases[] = {
      {"latitude south", [](FlownAircraft& a) { a.lat = -33.9461; }, Field(&FSData::Latitude),
       -33.9461, 1e-9},
      {"longitude near the date line", [](FlownAircraft& a) { a.lon = 179.99; },
       Field(&FSData::Longitude), 179.99, 1e-9},
      {"longitude west", [](FlownAircraft& a) { a.lon = -1.32; }, Field(&FSData::Longitude), -1.32,
       1e-9},
      {"altitude above sea level",
       [](FlownAircraft& a) {
         a.fieldElevation = 270;
         a.height = 1000;
       },
       Field(&FSData::Altitude), 1270, 3.3},
      {"field elevation", [](FlownAircraft& a) { a.fieldElevation = 270; },
       Field(&FSData::GroundAltitude), 270, 3.3},
      {"height above the ground", [](FlownAircraft& a) { a.height = 500; }, Field(&FSData::AGL),
       500, 3.3},
      {"indicated airspeed", [](FlownAircraft& a) { a.ias = 65; }, Field(&FSData::IAS), 65, 0},
      {"ground speed", [](FlownAircraft& a) { a.gs = 72; }, Field(&FSData::GS), 72, 0},
      {"climb", [](FlownAircraft& a) { a.vs = 700; }, Field(&FSData::VS), 700, 3.3},
      {"descent", [](FlownAircraft& a) { a.vs = -500; }, Field(&FSData::VS), -500, 3.3},
      {"nose up", [](FlownAircraft& a) { a.pitch = 8; }, Field(&FSData::Pitch), 8, 0},
      {"nose down", [](FlownAircraft& a) { a.pitch = -3; }, Field(&FSData::Pitch), -3, 0},
      {"right bank", [](FlownAircraft& a) { a.bank = 20; }, Field(&FSData::Bank), 20, 0},
      {"left bank", [](FlownAircraft& a) { a.bank = -25; }, Field(&FSData::Bank), -25, 0},
      {"true heading", [](FlownAircraft& a) { a.heading = 358; }, Field(&FSData::TrueHeading), 358,
       0},
      {"magnetic heading with westerly variation",
       [](FlownAircraft& a) {
         a.heading = 10;
         a.magvar = -2;
       },
       Field(&FSData::Heading), 12, 0},
      {"on the ground", [](FlownAircraft& a) { a.onGround = true; }, Field(&FSData::OnGround), 1,
       0},
      {"in the air", [](FlownAircraft& a) { a.onGround = false; }, Field(&FSData::OnGround), 0, 0},
      {"flaps in degrees x 256", [](FlownAircraft& a) { a.flaps = 10; }, Field(&FSData::FlapsLeft),
       2560, 0},
      {"gear down", [](FlownAircraft& a) { a.gearDown = true; }, Field(&FSData::GearDown), 1, 0},
      {"gear up", [](FlownAircraft& a) { a.gearDown = false; }, Field(&FSData::GearDown), 0, 0},
      {"twin", [](FlownAircraft& a) { a.engines = 2; }, Field(&FSData::Engines), 2, 0},
      {"engine firing", [](FlownAircraft& a) { a.firing = true; }, Field(&FSData::Eng1Combustion),
       1, 0},
      {"surface wind", [](FlownAircraft& a) { a.windSpeed = 12; }, Field(&FSData::SurfaceWindSpeed),
       12, 0},
      {"NAV1 course", [](FlownAircraft& a) { a.obs = 13; }, Field(&FSData::Nav1OBS), 13, 0},
      {"paused", [](FlownAircraft& a) { a.paused = true; }, Field(&FSData::Paused), 1, 0},
      {"crashed", [](FlownAircraft& a) { a.crashed = true; }, Field(&FSData::Crashed), 1, 0},
  };
  for (const Case& c : cases) {
    FlownAircraft a;
    c.set(a);
    Sim sim;
    ImageSink sink(sim.image);
    EncodeAircraft(a, sink);
    EXPECT_NEAR(c.field(sim.Decode()), c.expected, c.within) << c.what;
  }
  FlownAircraft a;
  a.title = "Cessna Skyhawk 172SP";
  Sim sim;
  ImageSink sink(sim.image);
  EncodeAircraft(a, sink);
  EXPECT_EQ(sim.Decode().AircraftTitle, a.title);
}

TEST(Snapshot, LatitudeAndLongitude) {
  for (auto [latitude, longitude] : {std::pair{-33.9461, 151.1772}, {89.9, -179.99}}) {
    Sim sim;
    sim.image.SetI64(0x0560,
                     static_cast<int64_t>(latitude * 10001750.0 * 65536.0 * 65536.0 / 90.0));
    sim.image.SetI64(0x0568, static_cast<int64_t>(longitude / 360.0 * 18446744073709551616.0));
    EXPECT_NEAR(sim.Decode().Latitude, latitude, 1e-9);
    EXPECT_NEAR(sim.link.Now().Longitude, longitude, 1e-9);
  }
}

TEST(Snapshot, FuelSums) {
  constexpr uint32_t kFull = 128 * 65536;
  struct Tank {
    uint32_t level, percentWord, capacity;
  };
  struct Case {
    std::vector<Tank> tanks;
    int32_t capacity, gallons;
    double percent, leftMainLb;
  };
  // No tanks; half and full mains; the centre and far external tanks count too.
  const Case cases[] = {
      {{}, 0, 0, 0, 0},
      {{{0x0B7C, kFull / 2, 26}, {0x0B94, kFull, 26}}, 52, 39, 75, 78},
      {{{0x0B74, kFull, 100}, {0x125C, kFull / 4, 40}, {0x0B7C, kFull, 10}}, 150, 120, 80, 60},
  };
  for (const Case& c : cases) {
    Sim sim;
    sim.image.SetU16(0x0AF4, 6 * 256);       // 6 lb per gallon
    sim.image.SetU32(0x3BFC, 1500u * 256u);  // zero-fuel weight 1500 lb
    for (const Tank& t : c.tanks) {
      sim.image.SetU32(t.level, t.percentWord);
      sim.image.SetU32(t.level + 4, t.capacity);
    }
    const FSData& d = sim.Decode();
    EXPECT_EQ(d.TotalFuelCapacity, c.capacity) << c.capacity;
    EXPECT_EQ(d.TotalFuelGallons, c.gallons) << c.capacity;
    EXPECT_DOUBLE_EQ(d.FuelPercent, c.percent) << c.capacity;
    EXPECT_DOUBLE_EQ(d.FuelLbLeftMain, c.leftMainLb) << c.capacity;
    EXPECT_DOUBLE_EQ(d.FuelGallonsWeight, c.gallons * 6.0) << c.capacity;
    EXPECT_DOUBLE_EQ(sim.link.TotalWeightTons, (1500 + c.gallons * 6.0) / 2000) << c.capacity;
  }
}

TEST(Snapshot, HeadingAndWindAcrossNorth) {
  struct Case {
    double trueHeading, magVar, surfaceWind, obs;
    int32_t heading, windToHeading, windToObs, windMagnetic;
  };
  const Case cases[] = {
      {20, 10, 350, 10, 10, -20, -20, 340},  // easterly variation
      {10, -10, 10, 350, 20, -10, 20, 20},   // westerly variation reads near 360
      {0, 0, 180, 0, 0, 180, 180, 180},
      {90, 0, 270, 270, 90, 180, 0, 270},
  };
  for (const Case& c : cases) {
    Sim sim;
    sim.image.SetU16(0x0582, AngleWord(c.trueHeading));
    sim.image.SetU16(0x02A0, AngleWord(c.magVar));
    sim.image.SetU16(0x0EF2, static_cast<uint16_t>(c.surfaceWind * 182));
    sim.image.SetU16(0x0E92, static_cast<uint16_t>(c.surfaceWind * 182));
    sim.image.SetU16(0x0C4E, static_cast<uint16_t>(c.obs));
    const FSData& d = sim.Decode();
    EXPECT_EQ(d.Heading, c.heading) << c.trueHeading;
    EXPECT_EQ(d.WindRelativeToHeading, c.windToHeading) << c.trueHeading;
    EXPECT_EQ(d.WindRelativeToOBS, c.windToObs) << c.trueHeading;
    EXPECT_EQ(d.WindDirection, c.windMagnetic) << c.trueHeading;
  }
  EXPECT_EQ(RelativeBearing(10, 190), -180);
  EXPECT_EQ(RelativeBearing(720, 0), 0);
}

TEST(Snapshot, StringsStopAtZeroOr255AndAtTheBufferEnd) {
  Sim sim;
  sim.image.SetString(0x3D00, std::string(300, 'T'));  // title longer than 255
  sim.image.SetString(0x0C29, "123.4");                // DME reads four characters
  sim.image.SetString(0x0C33, " 5.2");
  const std::string tail(10, 'M');  // weather text running into the end of its block
  sim.image.SetBytes(kMetarBlockOffset + kMetarBlockSize - 10, tail.data(), 10);
  sim.image.SetString(0x6081, "EGLL");
  sim.image.SetF64(0x6048, 1000.0);
  const FSData& d = sim.Decode();
  EXPECT_EQ(sim.link.Gps.GpsNextWaypoint, "EGLL");
  EXPECT_DOUBLE_EQ(sim.link.Gps.Double6048, 3281.0);
  EXPECT_EQ(d.AircraftTitle, std::string(255, 'T'));
  EXPECT_DOUBLE_EQ(d.DME1Distance, 123);
  EXPECT_DOUBLE_EQ(d.DME2Distance, 5.2);
  EXPECT_EQ(GetByteBufferMetar(sim.link, kMetarBlockSize - 10), tail);
  EXPECT_EQ(GetByteBufferMetar(sim.link, kMetarBlockSize), "");
  EXPECT_EQ(GetByteBuffer(sim.link, size_t{1} << 40), "");

  uint8_t bytes[4];
  EXPECT_EQ(CopyToStringBuffer("ABCDEF", bytes), 4u);
  EXPECT_EQ(std::string(reinterpret_cast<char*>(bytes)), "ABC");
}

TEST(Snapshot, TrafficTableOfThePhaseOnly) {
  struct Case {
    uint8_t onGround;
    uint16_t lastSlotWord;
    int32_t airCount, groundCount;
  };
  // The word names the last used slot: three airborne, five on the ground, none
  // (empty word), and a hostile word held to the table.
  const Case cases[] = {
      {0, 0xE080 + 2 * 40, 3, 0},
      {1, 0xF080 + 4 * 40, 0, 5},
      {0, 0, 0, 0},
      {0, 0xFFFF, 95, 0},
  };
  for (const Case& c : cases) {
    Sim sim;
    sim.image.SetU8(0x0366, c.onGround);
    sim.image.SetU16(0x02A0, AngleWord(10));
    sim.image.SetU16(0xE07E, c.lastSlotWord);
    sim.image.SetU16(0xF07E, c.lastSlotWord);
    for (uint32_t table : {0xE080u, 0xF080u}) {
      const uint32_t slot = table + 40 * 2;
      sim.image.SetU8(slot, 7);
      sim.image.SetF32(slot + 4, 51.5f);
      sim.image.SetF32(slot + 12, 1200.0f);
      sim.image.SetU16(slot + 16, 90 * 182);
      sim.image.SetU16(slot + 18, 140);
      sim.image.SetI16(slot + 20, -500);
      sim.image.SetString(slot + 22, "BAW123");
      sim.image.SetU8(slot + 37, 141);
    }
    sim.Decode();
    EXPECT_EQ(sim.link.AirTrafficCount, c.airCount);
    EXPECT_EQ(sim.link.GroundTrafficCount, c.groundCount);
    const TrafficSlot& read = c.onGround ? sim.link.GroundTraffic[2] : sim.link.AirTraffic[2];
    const TrafficSlot& unread = c.onGround ? sim.link.AirTraffic[2] : sim.link.GroundTraffic[2];
    EXPECT_EQ(read.Ident, "BAW123");
    EXPECT_DOUBLE_EQ(read.Latitude, 51.5);
    EXPECT_EQ(std::tie(read.Id, read.RelativeHeading, read.GS, read.State, read.VS),
              std::make_tuple(7, 80, 140, 141, -500));
    EXPECT_DOUBLE_EQ(read.Altitude, 1200);
    EXPECT_EQ(unread.Ident, "");
  }
}

TEST(Snapshot, AircraftFolderOverrides) {
  struct Case {
    const char* airFile;
    bool c152Family;
    uint8_t gear, battery, failElectrics;
    bool gearDown, masterBattery;
    int32_t barberPole;
  };
  const Case cases[] = {
      {"C:\\FSX\\SimObjects\\Airplanes\\C172\\c172.air", false, 0, 1, 0, false, true, 160},
      {"C:\\FSX\\SimObjects\\Airplanes\\A2A_C172\\A2A_C172.air", false, 0, 0, 0, true, true, 160},
      {"C:\\FSX\\SimObjects\\Airplanes\\A2A_C172\\A2A_C172.air", false, 0, 1, 1, true, false, 160},
      {"C:\\FSX\\SimObjects\\Airplanes\\a2a_c182\\a2a.air", false, 0, 0x40, 0, true, true, 160},
      {"C:\\FSX\\SimObjects\\Airplanes\\A2A_C182\\a2a.air", false, 0, 0x01, 0, true, false, 160},
      {"C:\\P3D\\Airplanes\\Carenado CT182T_Skylane\\x.air", false, 0, 1, 0, true, true, 160},
      {"C:\\P3D\\Airplanes\\A2A_C172_Old\\x.air", false, 0, 1, 1, false, true, 160},
      {"C:\\FSX\\Airplanes\\Carenado C152II\\c152.air", true, 1, 1, 0, true, true, 149},
      {"C:\\Carenado\\Airplanes\\C152\\c152.air", true, 1, 1, 0, true, true, 160},
      {"C:\\FSX\\Airplanes\\Carenado C152II\\c152.air", false, 1, 1, 0, true, true, 160},
  };
  for (const Case& c : cases) {
    Sim sim;
    sim.in.Cessna152Family = c.c152Family;
    sim.image.SetString(0x3C00, c.airFile);
    sim.image.SetU8(0x0BE8, c.gear);
    sim.image.SetU8(0x281C, c.battery);
    sim.image.SetU8(0x0B6A, c.failElectrics);
    sim.image.SetU16(0x02C4, 160 * 128);
    const FSData& d = sim.Decode();
    EXPECT_EQ(d.GearDown, c.gearDown) << c.airFile;
    EXPECT_EQ(d.MasterBattery, c.masterBattery) << c.airFile;
    EXPECT_EQ(d.BarberPole, c.barberPole) << c.airFile;
  }
}

TEST(Snapshot, WeightClassEnginesAndTypes) {
  // Weight word, Lear family, heavy, traffic speed limit.
  for (auto [word, lear, heavy, limit] : {std::tuple{75, false, false, 150},
                                          {100, false, false, 170},
                                          {101, true, true, 190},
                                          {60, true, true, 150},
                                          {5000, false, true, 250}}) {
    Sim sim;
    sim.in.LearFamily = lear;
    sim.image.SetU16(0x3BFE, static_cast<uint16_t>(word));
    sim.Decode();
    EXPECT_EQ(sim.link.HeavyAircraft, heavy) << word;
    EXPECT_EQ(sim.link.TrafficSpeedLimit, limit) << word;
  }
  Sim sim;
  sim.image.SetU8(0x0AEC, 2);
  sim.image.SetU8(0x3366, 0x0F);  // all four fire bits
  sim.image.SetU8(0x0609, 5);
  FSData d = sim.Decode();
  EXPECT_TRUE(d.Eng1OnFire && d.Eng2OnFire);
  EXPECT_FALSE(d.Eng3OnFire || d.Eng4OnFire);
  EXPECT_EQ(d.EngineType, "Turboprop");
  sim.image.SetU8(0x0609, 9);
  EXPECT_EQ(sim.Decode().EngineType, "");
}

TEST(Snapshot, WarmUpAndChangeStamps) {
  for (bool wanted : {true, false}) {
    Sim sim;
    sim.in.StartingPositionWanted = wanted;
    for (int tick = 1; tick <= 9; ++tick) {
      sim.in.TickCount = tick;
      sim.Decode();
      EXPECT_EQ(sim.result.WarmUpReached, wanted && tick == 6) << tick;
      sim.link.Swap();
    }
    EXPECT_EQ(sim.link.WarmUpTicks, 6);
  }
  Sim sim;
  sim.image.SetU16(0x0C4E, 90);
  sim.image.SetString(0x3006, "LONDON");
  for (int tick = 20; tick <= 23; ++tick) {
    if (tick == 22) sim.image.SetU16(0x0C4E, 95);
    if (tick == 23) sim.image.SetU8(0x0C4B, 1);
    sim.in.TickCount = tick;
    sim.Decode();
    sim.link.Swap();
  }
  EXPECT_EQ(sim.link.Nav1OBSChanged, 22);
  EXPECT_EQ(sim.link.Nav1ToFromChanged, 23);
  EXPECT_EQ(sim.link.Vor1NameChanged, 20);  // changed from the empty first record only
  EXPECT_EQ(sim.link.Nav1BackCourseChanged, 0);
}

// Whatever bytes arrive, the decode stays inside its buffers (the sanitizer
// build watches) and the traffic counts stay within the tables.
TEST(Snapshot, RandomBuffersDecodeSafely) {
  std::mt19937 random(20240611);
  std::uniform_int_distribution<int> byte(0, 255);
  LinkState link;
  for (int round = 0; round < 300; ++round) {
    const bool dense = round % 2 == 0;  // half the rounds without zero bytes at all
    auto fill = [&](auto& buffer) {
      for (uint8_t& b : buffer)
        b = static_cast<uint8_t>(dense ? 1 + byte(random) % 255 : byte(random));
    };
    fill(link.ByteBuffer);
    fill(link.GpsBuffer);
    fill(link.TrafficBuffer);
    fill(link.MetarBuffer);
    ProcessFSData(link, DecodeInputs{round, round % 3 == 0, round % 5 == 0, true});
    const FSData& d = link.Now();
    EXPECT_TRUE(d.AirFile.size() <= 255 && d.MetarText.size() <= 255);
    EXPECT_TRUE(std::abs(d.Pitch) <= 180 && std::abs(d.WindRelativeToHeading) <= 180);
    EXPECT_TRUE(link.AirTrafficCount >= 0 && link.GroundTrafficCount <= kTrafficSlots);
    link.Swap();
  }
}

}  // namespace
}  // namespace vantoro
