#include "world/profiles.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <vector>

#include "base/files.h"
#include "base/ini.h"
#include "world/report_lines.h"
#include "world/temp_folder.h"

namespace vantoro {

// Failures show the page as its ".fsu" file would hold it.
void PrintTo(const RawProfile& r, std::ostream* os) {
  *os << "\n" << ComposeUserProfile(r);
}

namespace {

// A real aircraft from FSX, read as the instructor reads an aircraft.cfg. By hand:
// - [Flaps.0] has no flaps-position keys, so every position stays "0.0" and
//   every speed "0": FlapAngleLimit = round(0 x 256 + 10) = 10, not above 10,
//   so 0 for all nine; FlapSpeedLimit 0; FullFlapsValue 0.
// - flaps_up_stall_speed = 54.000000, whole part 54; full_flaps_stall_speed =
//   43.200000, whole part 43; the sums 53, 58 and 63.
// - gear_system_type = 3 is a number, which marks the gear retractable; with no
//   damaging-speed in [Flaps.0] the gear limit stays 0.
// - spoiler_limit = 0.0 is not above 0: no spoilers. No float or taxi-flaps
//   keys and not heavy: both clear.
TEST(LoadAircraftData, RealAircraftCfgGivesTheHandCalculation) {
  const std::string folder = std::string(VANTORO_SHARED_TESTDATA) + "/aircraft/DLA_Jodel_DR-1050";
  if (!std::filesystem::is_directory(folder))
    GTEST_SKIP() << "the shared test files are not here (" << folder
                 << "); the real aircraft.cfg is not read";
  AircraftValues a;
  a.Raw.IASStallCruise = "99";  // what the page held before
  ASSERT_TRUE(LoadAircraftFile("CFG", folder + "/aircraft.cfg", "DLA_Jodel_DR-1050", false, a));
  SetupAircraftValues(a);
  EXPECT_TRUE(ProfileIsEstimated(a));
  ExpectLines(a,
              {"FlapPos9=0.0", "FlapSpeed9=0", "IASStallCruise=54", "IASStallLanding=43",
               "RetractableGear=1", "Spoilers=0", "FloatPlane=0", "FlapsDownDuringTaxi=0",
               "StallCruise=54", "StallLandingPlus10=53", "StallLandingPlus20=63",
               "GearSpeedLimit=0", "FlapAngleLimit9=0", "FlapSpeedLimit9=0", "FullFlapsValue=0"},
              "Jodel");
}

TEST(LoadAircraftData, AircraftCfgEstimates) {
  struct Case {
    const char* what;
    const char* folder;
    const char* cfg;
    bool heavy;
    std::vector<std::string> want;
  };
  // clang-format off
  const Case cases[] = {
      // 150 x 0.92 = 138 for each position read (.1 to .3; .0 is the retracted
      // one). Clean stall 60.7 -> 60. Spread: 138 - whole(15 / 45 x 78) = 112,
      // 138 - whole(30 / 45 x 78) = 86. The FSX form "angle, speed" keeps the angle.
      {"flap limits spread to the clean stall speed", "Generic",
       "[flaps.0]\ndamaging-speed = 150\nflaps-position.0 = 0, 0\nflaps-position.1 = 10, 0\n"
       "flaps-position.2=25\nflaps-position.3=40\n[Reference Speeds]\n"
       "flaps_up_stall_speed=60.7\nfull_flaps_stall_speed=48.9\n", false,
       {"FlapPos1=10", "FlapPos3=40", "FlapPos4=0.0", "FlapSpeed1=138", "FlapSpeed2=112",
        "FlapSpeed3=86", "FlapSpeed4=0", "IASStallCruise=60", "IASStallLanding=48",
        "FlapAngleLimit3=10250", "FlapSpeedLimit9=86", "FullFlapsValue=10250"}},
      // 100 x 0.92 = 92; 92 - whole(50 / 45 x 42) = 46 is below the clean stall
      // speed 50, which it becomes.
      {"no flap limit below the clean stall speed", "Generic",
       "[flaps.0]\ndamaging-speed=100\nflaps-position.1=10\nflaps-position.2=60\n"
       "[reference speeds]\nflaps_up_stall_speed=50\n", false, {"FlapSpeed1=92", "FlapSpeed2=50"}},
      {"gear limit capped at 280, not 300 x 1.15 = 345", "Generic",
       "[contact_points]\ngear_system_type=1\n[flaps.0]\ndamaging-speed=300\n", false,
       {"RetractableGear=1", "MaxGearExtension=280"}},
      {"gear limit whole(200.9) x 1.15 = 230, where binary fractions give 229", "Generic",
       "[contact_points]\ngear_system_type=0\n[flaps.0]\ndamaging-speed=200.9\n", false,
       {"RetractableGear=1", "MaxGearExtension=230"}},
      {"A2A Cessna: fixed gear and no spoilers, whatever the file says", "a2a_c172",
       "[contact_points]\ngear_system_type=1\n[flaps.0]\ndamaging-speed=110\n"
       "[airplane_geometry]\nspoiler_limit=60\n", false,
       {"RetractableGear=0", "MaxGearExtension=0", "Spoilers=0"}},
      {"Carenado Skylane: fixed gear, spoilers as the file says", "Carenado CT182T_Skylane",
       "[contact_points]\ngear_system_type=1\n[airplane_geometry]\nspoiler_limit=60\n", false,
       {"RetractableGear=0", "Spoilers=1"}},
      {"Caravan monitored: its spoiler entry ignored", "C208B",
       "[airplane_geometry]\nspoiler_limit=60\n", false, {"Spoilers=0"}},
      {"a heavy aircraft taxies with flaps", "Generic", "", true, {"FlapsDownDuringTaxi=1"}},
      {"values that are not numbers give the defaults", "Generic",
       "[flaps.0]\ndamaging-speed=fast\nflaps-position.1=ten\n[reference speeds]\n"
       "flaps_up_stall_speed=slow\n[contact_points]\ngear_system_type=none\n", false,
       {"FlapPos1=0.0", "FlapSpeed1=0", "IASStallCruise=77", "RetractableGear=0"}},
  };
  // clang-format on
  for (const Case& c : cases) {
    TempFolder dir;
    AircraftValues a;
    SetAircraftTypeOptions(a, {std::string(c.folder) + "\\x.air", "", "", true});
    a.Monitoring.Boeing[size_t(MainBox(AircraftType::C208B))] = true;
    a.Raw.IASStallCruise = "77";
    a.Raw.RetractableGear = true;  // from the aircraft before
    ASSERT_TRUE(LoadAircraftFile("CFG", dir.Write("aircraft.cfg", c.cfg), c.folder, c.heavy, a));
    SetupAircraftValues(a);
    ExpectLines(a, c.want, c.what);
  }
}

// A root folder with an aircraft of Prepar3D and, as asked, its profiles.
struct Hangar {
  TempFolder dir;
  const std::string air = dir.Root() + "Airplanes\\Husky\\Husky.air";
  AircraftContext ctx{dir.Root(), "P3D", 10, "", "", "", {air, "Aviat Husky", "", true}};
  void Add(const std::string& ext) {
    if (ext == "cfg")
      dir.Write("Airplanes/Husky/aircraft.cfg", "[reference speeds]\nflaps_up_stall_speed=53");
    if (ext == "fsr") dir.Write("Aircraft/Husky.fsr", "[reference speeds]\nIASStallCruise=51");
    if (ext == "fsu") dir.Write("Aircraft/Husky.fsu", "[reference speeds]\nIASStallCruise=52");
  }
};

TEST(FindAircraftFile, EachSimulatorGivesTheAircraftFileItsOwnWay) {
  Hangar h;
  h.Add("cfg");
  const std::string relative = "Airplanes\\Husky\\Husky.air";  // as FS2002 and FS2004 give it
  const std::string cfg = h.dir.Root() + "Airplanes\\Husky\\aircraft.cfg";
  struct Case {
    const char* sim;
    int code;
    std::string air, want;
  };
  const Case cases[] = {
      {"FS2004", 7, relative, cfg},
      {"FS2002", 6, relative, ""},  // its folder box is elsewhere
      {"FSX", 8, h.ctx.Identity.AirFile, cfg},
      {"FSX", 9, relative, cfg},
      {"CFS2", 3, h.ctx.Identity.AirFile, ""},
  };
  AircraftContext ctx = h.ctx;
  ctx.FS2004Folder = ctx.FSXFolder = h.dir.Root();
  ctx.FS2002Folder = "C:\\FS2002\\";
  for (const Case& c : cases) {
    std::tie(ctx.Simulator, ctx.SimulatorCode, ctx.Identity.AirFile) =
        std::tuple(std::string(c.sim), c.code, c.air);
    EXPECT_EQ(FindAircraftFile("cfg", ctx), c.want) << c.sim << " " << c.code;
  }
}

TEST(AircraftChanged, StoredChoiceFallsThroughTheSources) {
  struct Case {
    std::vector<std::string> files;
    const char* stored;  // the title's line in Aircraft.dat
    int source;
    int stallCruise;  // 40 is the page as it was
  };
  const Case cases[] = {
      {{"cfg", "fsr", "fsu"}, "", kSourceProduct, 51},  // never chosen: the product's first
      {{"cfg", "fsu"}, "", kSourceAircraftCfg, 53},
      {{"cfg", "fsr", "fsu"}, "Aviat Husky=2", kSourceUser, 52},
      {{"cfg", "fsr"}, "Aviat Husky=2", kSourceProduct, 51},
      {{"cfg", "fsr", "fsu"}, "aviat husky=0", kSourceAircraftCfg, 53},
      {{"fsr"}, "Aviat Husky=0", kSourceProduct, 51},
      {{}, "Aviat Husky=2", kSourceAircraftCfg, 40},
  };
  for (const Case& c : cases) {
    Hangar h;
    for (const std::string& ext : c.files) h.Add(ext);
    h.dir.Write("Aircraft.dat", std::string("Aviat=1\r\n") + c.stored);
    AircraftValues a;
    a.Raw.IASStallCruise = "40";
    int volume = 2;
    EXPECT_EQ(AircraftChanged(a, h.ctx, volume), "Aircraft changed! Using ");
    EXPECT_EQ(std::pair(a.Source, a.StallCruise), std::pair(c.source, c.stallCruise))
        << c.stored << " with " << c.files.size() << " files";
  }
}

TEST(AircraftChanged, RestoresTheMonitoringChoicesOfTheTitle) {
  Hangar h;
  h.dir.Write("Aircraft.dat",
              "InstructorVolume-Aviat Husky=7\r\nInstructorGPWS-Aviat Husky=1\r\n"
              "MonitorLights3-Aviat Husky=1\r\nchkOption0-Aviat Husky=1\r\n"
              "chkOption31-Aviat Husky=1\r\nchkOption5-Aviat Husky=2\r\n"
              "chkOption21-Aviat Husky=1\r\nchkOption6-Other=1\r\n");
  AircraftValues a;
  for (int box : {5, 6, 10}) a.Monitoring.Boeing[size_t(box)] = true;
  int volume = 4;
  AircraftChanged(a, h.ctx, volume);
  EXPECT_EQ(volume, 2);  // 7 is out of range
  EXPECT_TRUE(a.Monitoring.WantnoGPWS);
  EXPECT_FALSE(a.Monitoring.MonitorEngines);
  EXPECT_EQ(a.Monitoring.MonitorLights, (std::array<bool, 5>{false, false, false, true, false}));
  std::vector<int> checked;
  for (int n = 0; n < kOptionBoxes; ++n)
    if (a.Monitoring.Boeing[size_t(n)]) checked.push_back(n);
  // 5 held a 2, 6 belongs to another title, 10 and 21 are never restored.
  EXPECT_EQ(checked, (std::vector<int>{0, 10, 31}));
}

TEST(AircraftChoices, SourceButtonsAndMonitoringBoxesAreStored) {
  Hangar h;
  AircraftValues a;
  a.Title = "Aviat Husky";
  EXPECT_EQ(ChooseFSData(a, h.ctx), "Can't find the AIRCRAFT.CFG File");
  h.Add("fsr");
  EXPECT_EQ(ChooseVantoroData(a, h.ctx), "");
  EXPECT_EQ(DataSourceStatus(a), "[FSR]  ");
  a.Raw.IASStallCruise = "57";
  EXPECT_EQ(ChooseUserData(a, h.ctx), "");  // no .fsu yet: the page stays as a start
  EXPECT_EQ(a.Raw.IASStallCruise, "57");
  EXPECT_FALSE(a.Locked);
  EXPECT_EQ(DataSourceStatus(a), "[FSU]  ");

  EXPECT_TRUE(SaveAircraftChoice(h.ctx.Root, "N/A", OptionBoxKey(3, "N/A"), 1));
  EXPECT_TRUE(SaveAircraftChoice(h.ctx.Root, a.Title, MonitorLightsKey(2, a.Title), 1));
  EXPECT_EQ(h.dir.Read("Aircraft.dat"),
            "Aviat Husky=2\r\nMonitorLights2-Aviat Husky=1\r\n");  // no line for "N/A"
}

TEST(ValidateAircraftUserData, EachBadFieldHasItsLine) {
  using Set = void (*)(RawProfile&);
  const std::pair<Set, const char*> cases[] = {
      {[](RawProfile& r) { r.FlapPos[2] = "ten"; }, "* Flap Position 3 is invalid"},
      {[](RawProfile& r) { r.FlapPos[0] = "100"; }, "* Flap Position 1 must be between 0 and 99.9"},
      {[](RawProfile& r) { r.FlapSpeed[1] = "85.5"; },
       "* Flap Speed 2 must be a whole number between 0 and 99,999"},
      {[](RawProfile& r) { r.IASStallLanding = "100000"; },
       "* Landing Config. Stall Speed must be a whole number between 0 and 99,999"},
      {[](RawProfile& r) { r.MaxGearExtension = "1 40"; }, "* Max Gear Extension Speed is invalid"},
  };
  for (const auto& [set, line] : cases) {
    RawProfile raw;
    raw.FlapPos[1] = "12,5";  // the pilot's decimal comma is fine
    set(raw);
    EXPECT_EQ(ValidateAircraftUserData(raw), std::string(line) + "\r\n");
  }
  RawProfile two;
  two.FlapSpeed[0] = "a";
  two.FlapPos[4] = "b";  // positions come first
  EXPECT_EQ(ValidateAircraftUserData(two),
            "* Flap Position 5 is invalid\r\n* Flap Speed 1 is invalid\r\n");
}

TEST(SaveAircraftUserData, OnlyAGoodPageIsSavedAndItReadsBackAsLeft) {
  TempFolder dir;
  RawProfile raw;
  raw.FlapPos = {"12,5", "30", "0.0", "0.0", "0.0", "0.0", "0.0", "0.0", "0.0"};
  raw.FlapSpeed[0] = "110";
  raw.IASStallCruise = "48";
  raw.MaxGearExtension = "140";
  raw.RetractableGear = raw.FloatPlane = true;
  RawProfile bad = raw;
  bad.FlapSpeed[3] = "?";
  EXPECT_EQ(SaveAircraftUserData(dir.Root(), "Husky", bad), "* Flap Speed 4 is invalid\r\n");
  EXPECT_FALSE(dir.Exists("Aircraft/Husky.fsu"));

  std::filesystem::create_directories(dir.Root() + "Aircraft");
  EXPECT_EQ(SaveAircraftUserData(dir.Root(), "Husky", raw), "");
  EXPECT_TRUE(dir.Read("Aircraft/Husky.fsu").starts_with("[flaps.0]\r\nflaps-position.1=12.5\r\n"));
  AircraftValues a;
  ASSERT_TRUE(LoadAircraftFile("FSU", dir.Root() + "Aircraft\\Husky.fsu", "Husky", false, a));
  raw.FlapPos[0] = "12.5";
  EXPECT_EQ(a.Raw, raw);
  EXPECT_TRUE(WantEstimatingNotice(a, 60, true) == false && EstimatedProfileSummary(a).empty());
}

// Every product profile loads, is recognised as its type and is sound: stall
// speeds in order, flap positions rising and their limits falling, a gear
// limit exactly when the gear retracts.
TEST(ProductProfiles, TheThirteenLoadAndAreConsistent) {
  using T = AircraftType;
  // clang-format off
  const std::pair<const char*, T> cases[] = {
      {"B737_800", T::B737}, {"B757_200", T::B757}, {"C172", T::C172}, {"C152", T::C152},
      {"Mooney_Bravo", T::Mooney}, {"Beech_Baron_58", T::Baron}, {"C208B", T::C208B},
      {"C182", T::C182}, {"Beech_King_Air_350", T::KingAir350}, {"Lear45", T::Lear45},
      {"Douglas_DC3", T::DC3}, {"Bombardier_CRJ_700", T::CRJ700}, {"Aerosoft_DHC6_300", T::TwinOtter},
  };
  // clang-format on
  const std::string dir = std::string(VANTORO_SOURCE_DIR) + "/data/Aircraft/";
  EXPECT_EQ(GetFileList(dir, ".fsr").size(), std::size(cases));
  for (const auto& [folder, type] : cases) {
    AircraftValues a;
    // Titles as the simulator gives them for these folders.
    SetAircraftTypeOptions(
        a, {std::string(folder) + "\\x.air", "Boeing Cessna Mooney Baron", "", true});
    EXPECT_TRUE(a.IsType(type)) << folder;
    ASSERT_TRUE(LoadAircraftFile("FSR", dir + folder + ".fsr", folder, false, a)) << folder;
    SetupAircraftValues(a);
    EXPECT_EQ(ValidateAircraftUserData(a.Raw), "") << folder;
    EXPECT_LT(a.StallLanding, a.StallCruise) << folder;
    EXPECT_GT(a.FullFlapsValue, 0) << folder;
    EXPECT_EQ(a.Raw.RetractableGear, a.GearSpeedLimit > a.StallCruise) << folder;
    for (size_t i = 2; i <= kFlapPositions; ++i) {
      EXPECT_GE(a.FlapAngleLimit[i], a.FlapAngleLimit[i - 1]) << folder << " position " << i;
      EXPECT_LE(a.FlapSpeedLimit[i], a.FlapSpeedLimit[i - 1]) << folder << " position " << i;
    }
    EXPECT_GT(a.FlapSpeedLimit[kFlapPositions], a.StallLanding) << folder;
  }
}

}  // namespace
}  // namespace vantoro
