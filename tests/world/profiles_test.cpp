#include "world/profiles.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <vector>

#include "base/files.h"
#include "base/ini.h"
#include "base/text.h"
#include "world/temp_folder.h"

namespace vantoro {

// Failures show the record as its file would hold it.
void PrintTo(const RawProfile& r, std::ostream* os) {
  *os << "\n" << ComposeUserProfile(r);
}

namespace {

// The lines of the report that the pilot reads through vantoro-cli profile.
std::vector<std::string> ReportLines(const AircraftValues& a) {
  std::vector<std::string> lines = Split(ProfileReport(a), '\n');
  lines.pop_back();
  return lines;
}

void ExpectLines(const AircraftValues& a, const std::vector<std::string>& want,
                 const std::string& what) {
  const std::vector<std::string> lines = ReportLines(a);
  for (const std::string& w : want) {
    const std::string name = w.substr(0, w.find('=') + 1);
    std::string got = "(no " + name + " line)";
    for (const std::string& line : lines)
      if (StartsWith(line, name)) got = line;
    EXPECT_EQ(got, w) << what;
  }
}

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
  const std::string cfg =
      std::string(VANTORO_SHARED_TESTDATA) + "/aircraft/DLA_Jodel_DR-1050/aircraft.cfg";
  AircraftValues a;
  a.Raw.IASStallCruise = "99";  // what the page held before
  ASSERT_TRUE(LoadAircraftFile("CFG", cfg, "DLA_Jodel_DR-1050", false, a));
  SetupAircraftValues(a);
  EXPECT_TRUE(ProfileIsEstimated(a));
  ExpectLines(a, {"FlapPos1=0.0",          "FlapPos9=0.0",          "FlapSpeed1=0",
                  "FlapSpeed9=0",          "IASStallCruise=54",     "IASStallLanding=43",
                  "MaxGearExtension=0",    "RetractableGear=1",     "Spoilers=0",
                  "FloatPlane=0",          "FlapsDownDuringTaxi=0", "StallCruise=54",
                  "StallLanding=43",       "StallLandingPlus10=53", "StallLandingPlus15=58",
                  "StallLandingPlus20=63", "GearSpeedLimit=0",      "FlapAngleLimit1=0",
                  "FlapAngleLimit9=0",     "FlapSpeedLimit1=0",     "FlapSpeedLimit9=0",
                  "FullFlapsValue=0"},
              "Jodel");
}

TEST(LoadAircraftData, AircraftCfgEstimates) {
  struct Case {
    const char* what;
    const char* folder;
    const char* cfg;
    bool heavy;
    AircraftType monitored;  // its box is checked (B737 stands for none here)
    std::vector<std::string> want;
  };
  const Case cases[] = {
      // 150 x 0.92 = 138 for every position read (.1 to .3; .0 is the retracted
      // one). Clean stall 60.7 -> 60. Spread: 138 - whole(15 / 45 x 78) = 112,
      // 138 - whole(30 / 45 x 78) = 86. The FSX form "angle, speed" keeps the angle.
      {"flap limits spread to the clean stall speed",
       "Generic",
       "[flaps.0]\ndamaging-speed = 150\nflaps-position.0 = 0, 0\nflaps-position.1 = 10, 0\n"
       "flaps-position.2=25\nflaps-position.3=40\n[Reference Speeds]\n"
       "flaps_up_stall_speed=60.7\nfull_flaps_stall_speed=48.9\n",
       false,
       AircraftType::B737,
       {"FlapPos1=10", "FlapPos2=25", "FlapPos3=40", "FlapPos4=0.0", "FlapSpeed1=138",
        "FlapSpeed2=112", "FlapSpeed3=86", "FlapSpeed4=0", "IASStallCruise=60",
        "IASStallLanding=48", "FlapAngleLimit3=10250", "FlapSpeedLimit9=86", "FullFlapsValue=10250",
        "RetractableGear=0", "MaxGearExtension=0"}},
      // 100 x 0.92 = 92; 92 - whole(50 / 45 x 42) = 92 - 46 = 46, below the
      // clean stall speed 50, which it becomes.
      {"no flap limit below the clean stall speed",
       "Generic",
       "[flaps.0]\ndamaging-speed=100\nflaps-position.1=10\nflaps-position.2=60\n"
       "[reference speeds]\nflaps_up_stall_speed=50\n",
       false,
       AircraftType::B737,
       {"FlapSpeed1=92", "FlapSpeed2=50"}},
      // whole(300) x 1.15 = 345, above the cap.
      {"gear limit capped at 280",
       "Generic",
       "[contact_points]\ngear_system_type=1\n[flaps.0]\ndamaging-speed=300\n",
       false,
       AircraftType::B737,
       {"RetractableGear=1", "MaxGearExtension=280"}},
      // whole(200.9) = 200, x 1.15 = 230 (not 229, where binary fractions fall).
      {"gear limit a little above the flaps' damaging speed",
       "Generic",
       "[contact_points]\ngear_system_type=0\n[flaps.0]\ndamaging-speed=200.9\n",
       false,
       AircraftType::B737,
       {"RetractableGear=1", "MaxGearExtension=230"}},
      {"A2A Cessna: fixed gear, no spoilers, whatever the file says",
       "a2a_c172",
       "[contact_points]\ngear_system_type=1\n[flaps.0]\ndamaging-speed=110\n"
       "[airplane_geometry]\nspoiler_limit=60\n",
       false,
       AircraftType::B737,
       {"RetractableGear=0", "MaxGearExtension=0", "Spoilers=0"}},
      {"Carenado Skylane: fixed gear, spoilers as the file says",
       "Carenado CT182T_Skylane",
       "[contact_points]\ngear_system_type=1\n[airplane_geometry]\nspoiler_limit=60\n",
       false,
       AircraftType::B737,
       {"RetractableGear=0", "MaxGearExtension=0", "Spoilers=1"}},
      {"Caravan monitored: spoiler entry ignored",
       "C208B",
       "[airplane_geometry]\nspoiler_limit=60\n",
       false,
       AircraftType::C208B,
       {"Spoilers=0"}},
      {"heavy aircraft taxi with flaps",
       "Generic",
       "[airplane_geometry]\nspoiler_limit=0\n",
       true,
       AircraftType::B737,
       {"Spoilers=0", "FlapsDownDuringTaxi=1"}},
      {"values that are not numbers give the defaults",
       "Generic",
       "[flaps.0]\ndamaging-speed=fast\nflaps-position.1=ten\n[reference speeds]\n"
       "flaps_up_stall_speed=slow\n[contact_points]\ngear_system_type=none\n",
       false,
       AircraftType::B737,
       {"FlapPos1=0.0", "FlapSpeed1=0", "IASStallCruise=77", "RetractableGear=0"}},
  };
  for (const Case& c : cases) {
    TempFolder dir;
    const std::string file = dir.Write("aircraft.cfg", c.cfg);
    AircraftValues a;
    SetAircraftTypeOptions(a, {std::string(c.folder) + "\\x.air", "", "", true});
    if (c.monitored != AircraftType::B737)
      a.Monitoring.Boeing[static_cast<size_t>(MainBox(c.monitored))] = true;
    a.Raw.IASStallCruise = "77";
    a.Raw.RetractableGear = true;  // from the aircraft before
    ASSERT_TRUE(LoadAircraftFile("CFG", file, c.folder, c.heavy, a)) << c.what;
    SetupAircraftValues(a);
    ExpectLines(a, c.want, c.what);
  }
}

// A root folder with an aircraft in a simulator folder and, as asked, its
// product and user profiles and a stored choice.
struct Hangar {
  TempFolder dir;
  AircraftContext ctx;

  Hangar() {
    ctx.Root = dir.Root();
    ctx.Simulator = "P3D";
    ctx.Identity = {dir.Root() + "SimObjects\\Airplanes\\Husky\\Husky.air", "Aviat Husky", "",
                    true};
  }
  void Cfg() {
    dir.Write("SimObjects/Airplanes/Husky/aircraft.cfg",
              "[reference speeds]\nflaps_up_stall_speed=53\n");
  }
  void Fsr() { dir.Write("Aircraft/Husky.fsr", "[reference speeds]\nIASStallCruise=51\n"); }
  void Fsu() { dir.Write("Aircraft/Husky.fsu", "[reference speeds]\nIASStallCruise=52\n"); }
};

TEST(AircraftChanged, StoredChoiceFallsThroughTheSources) {
  struct Case {
    bool cfg, fsr, fsu;
    const char* stored;  // the title's line in Aircraft.dat, or ""
    int source;
    const char* extension;  // of the profile read
    int stallCruise;
  };
  const Case cases[] = {
      {true, true, true, "", kSourceProduct, "fsr", 51},  // never chosen: product first
      {true, false, true, "", kSourceAircraftCfg, "cfg", 53},
      {true, true, true, "Aviat Husky=2", kSourceUser, "fsu", 52},
      {true, true, false, "Aviat Husky=2", kSourceProduct, "fsr", 51},
      {true, true, true, "aviat husky=0", kSourceAircraftCfg, "cfg", 53},
      {true, false, false, "Aviat Husky=1", kSourceAircraftCfg, "cfg", 53},
      {false, true, false, "Aviat Husky=0", kSourceProduct, "fsr", 51},
      {false, false, false, "Aviat Husky=2", kSourceAircraftCfg, "", 40},  // page as it was
  };
  for (const Case& c : cases) {
    Hangar h;
    if (c.cfg) h.Cfg();
    if (c.fsr) h.Fsr();
    if (c.fsu) h.Fsu();
    h.dir.Write("Aircraft.dat", std::string("Aviat=1\r\n") + c.stored + "\r\n");
    AircraftValues a;
    a.Raw.IASStallCruise = "40";
    int volume = 2;
    EXPECT_EQ(AircraftChanged(a, h.ctx, volume), "Aircraft changed! Using ");
    const std::string what = std::string(c.stored) + " cfg " + std::to_string(c.cfg) + " fsr " +
                             std::to_string(c.fsr) + " fsu " + std::to_string(c.fsu);
    EXPECT_EQ(a.Source, c.source) << what;
    EXPECT_EQ(Lower(Right(a.SourceFile, 3)), c.extension) << what;
    EXPECT_EQ(a.StallCruise, c.stallCruise) << what;
  }
}

TEST(AircraftChanged, RestoresTheMonitoringChoicesOfTheTitle) {
  Hangar h;
  h.Fsr();
  h.dir.Write("Aircraft.dat",
              "InstructorVolume-Aviat Husky=7\r\nInstructorGPWS-Aviat Husky=1\r\n"
              "MonitorEngines-Aviat Husky=1\r\nMonitorLights3-Aviat Husky=1\r\n"
              "chkOption0-Aviat Husky=1\r\nchkOption31-Aviat Husky=1\r\n"
              "chkOption5-Aviat Husky=2\r\nchkOption21-Aviat Husky=1\r\n"
              "chkOption6-Other=1\r\n");
  AircraftValues a;
  a.Monitoring.Boeing[5] = true;
  a.Monitoring.Boeing[6] = true;
  a.Monitoring.Boeing[10] = true;  // not restored: keeps what it holds
  int volume = 4;
  AircraftChanged(a, h.ctx, volume);
  EXPECT_EQ(volume, 2);  // 7 is out of range
  EXPECT_TRUE(a.Monitoring.WantnoGPWS);
  EXPECT_TRUE(a.Monitoring.MonitorEngines);
  EXPECT_EQ(a.Monitoring.MonitorLights, (std::array<bool, 5>{false, false, false, true, false}));
  std::vector<int> checked;
  for (int n = 0; n < kOptionBoxes; ++n)
    if (a.Monitoring.Boeing[static_cast<size_t>(n)]) checked.push_back(n);
  EXPECT_EQ(checked, (std::vector<int>{0, 10, 31}));  // 5 held 2, 6 belongs to another title
}

TEST(AircraftSources, ChoosingBySourceButtonStoresTheChoice) {
  Hangar h;
  AircraftValues a;
  a.Title = "Aviat Husky";
  const std::string dat = AircraftDatPath(h.ctx.Root);

  EXPECT_EQ(ChooseVantoroData(a, h.ctx), "Can't find the FSR File");
  EXPECT_EQ(ChooseFSData(a, h.ctx), "Can't find the AIRCRAFT.CFG File");
  EXPECT_EQ(LoadAircraftSelection(dat, "Aviat Husky"), "-1");
  EXPECT_TRUE(a.Locked);

  h.Fsr();
  EXPECT_EQ(ChooseVantoroData(a, h.ctx), "");
  EXPECT_EQ(LoadAircraftSelection(dat, "Aviat Husky"), "1");
  EXPECT_EQ(DataSourceStatus(a), "[FSR]  ");

  a.Raw.IASStallCruise = "57";
  EXPECT_EQ(ChooseUserData(a, h.ctx), "");  // no .fsu yet: the page stays as a start
  EXPECT_EQ(a.Raw.IASStallCruise, "57");
  EXPECT_FALSE(a.Locked);
  EXPECT_EQ(LoadAircraftSelection(dat, "Aviat Husky"), "2");
  EXPECT_EQ(DataSourceStatus(a), "[FSU]  ");
  a.Locked = true;
  RestorePageLock(a);
  EXPECT_FALSE(a.Locked);
}

TEST(AircraftChoices, StoredAtOnceUnlessTheAircraftHasNoTitle) {
  TempFolder dir;
  EXPECT_TRUE(SaveAircraftChoice(dir.Root(), "N/A", OptionBoxKey(3, "N/A"), 1));
  EXPECT_FALSE(dir.Exists("Aircraft.dat"));
  EXPECT_TRUE(SaveAircraftChoice(dir.Root(), "Husky", InstructorVolumeKey("Husky"), 3));
  EXPECT_TRUE(SaveAircraftChoice(dir.Root(), "Husky", MonitorLightsKey(2, "Husky"), 1));
  EXPECT_TRUE(SaveAircraftChoice(dir.Root(), "Husky", InstructorVolumeKey("Husky"), 1));
  EXPECT_EQ(dir.Read("Aircraft.dat"), "InstructorVolume-Husky=1\r\nMonitorLights2-Husky=1\r\n");
}

TEST(ValidateAircraftUserData, EachBadFieldHasItsLine) {
  struct Case {
    void (*spoil)(RawProfile&);
    const char* line;
  };
  const Case cases[] = {
      {[](RawProfile& r) { r.FlapPos[2] = "ten"; }, "* Flap Position 3 is invalid\r\n"},
      {[](RawProfile& r) { r.FlapPos[0] = "100"; },
       "* Flap Position 1 must be between 0 and 99.9\r\n"},
      {[](RawProfile& r) { r.FlapPos[0] = "-1"; },
       "* Flap Position 1 must be between 0 and 99.9\r\n"},
      {[](RawProfile& r) { r.FlapSpeed[8] = ""; }, "* Flap Speed 9 is invalid\r\n"},
      {[](RawProfile& r) { r.FlapSpeed[1] = "85.5"; },
       "* Flap Speed 2 must be a whole number between 0 and 99,999\r\n"},
      {[](RawProfile& r) { r.IASStallCruise = "x"; }, "* Clean Stall Speed is invalid\r\n"},
      {[](RawProfile& r) { r.IASStallLanding = "100000"; },
       "* Landing Config. Stall Speed must be a whole number between 0 and 99,999\r\n"},
      {[](RawProfile& r) { r.MaxGearExtension = "1 40"; },
       "* Max Gear Extension Speed is invalid\r\n"},
  };
  EXPECT_EQ(ValidateAircraftUserData(RawProfile{}), "");
  for (const Case& c : cases) {
    RawProfile raw;
    raw.FlapPos[0] = "12,5";  // the pilot's decimal comma is fine
    c.spoil(raw);
    EXPECT_EQ(ValidateAircraftUserData(raw), c.line);
  }
  RawProfile both;
  both.FlapSpeed[0] = "a";
  both.FlapPos[4] = "b";
  EXPECT_EQ(ValidateAircraftUserData(both),
            "* Flap Position 5 is invalid\r\n* Flap Speed 1 is invalid\r\n");
}

TEST(SaveAircraftUserData, SavedProfileReadsBackAsThePilotLeftIt) {
  TempFolder dir;
  RawProfile raw;
  raw.FlapPos[0] = "12,5";
  raw.FlapPos[1] = "30";
  raw.FlapSpeed[0] = "110";
  raw.FlapSpeed[1] = "85";
  raw.IASStallCruise = "48";
  raw.IASStallLanding = "40";
  raw.MaxGearExtension = "140";
  raw.RetractableGear = true;
  raw.FloatPlane = true;

  RawProfile bad = raw;
  bad.FlapSpeed[3] = "?";
  EXPECT_EQ(SaveAircraftUserData(dir.Root(), "Husky", bad), "* Flap Speed 4 is invalid\r\n");
  EXPECT_FALSE(dir.Exists("Aircraft/Husky.fsu"));

  std::filesystem::create_directories(dir.Root() + "Aircraft");
  EXPECT_EQ(SaveAircraftUserData(dir.Root(), "Husky", raw), "");
  const std::string text = dir.Read("Aircraft/Husky.fsu");
  EXPECT_TRUE(StartsWith(text, "[flaps.0]\r\nflaps-position.1=12.5\r\nflaps-position.2=30\r\n"));
  EXPECT_NE(text.find("[misc settings]\r\nRetractableGear=1\r\nSpoilers=0\r\nFloatPlane=1\r\n"
                      "FlapsDownDuringTaxi=0\r\n"),
            std::string::npos);

  AircraftValues a;
  ASSERT_TRUE(LoadAircraftFile("FSU", dir.Root() + "Aircraft\\Husky.fsu", "Husky", false, a));
  raw.FlapPos[0] = "12.5";
  EXPECT_EQ(a.Raw, raw);
}

TEST(EstimatedProfile, NoticesOnlyForAnEstimatedProfile) {
  AircraftValues a;
  a.SourceFile = "C:\\FSX\\SimObjects\\Airplanes\\Husky\\aircraft.cfg";
  a.Source = kSourceAircraftCfg;
  EXPECT_TRUE(WantEstimatingNotice(a, 10.5, true));
  EXPECT_FALSE(WantEstimatingNotice(a, 10, true));
  EXPECT_FALSE(WantEstimatingNotice(a, 60, false));
  EXPECT_EQ(EstimatedProfileSummary(a).size(), 5u);
  EXPECT_EQ(DataSourceStatus(a), "");
  // The product profile was chosen but could not be found: the cfg figures
  // stand, without the notice in flight.
  a.Source = kSourceProduct;
  EXPECT_FALSE(WantEstimatingNotice(a, 60, true));
  a.SourceFile = "Aircraft\\Husky.fsr";
  EXPECT_TRUE(EstimatedProfileSummary(a).empty());
}

// Every product profile loads, is recognised as its type and is sound: stall
// speeds in order, flap positions rising and their limits falling, a gear
// limit exactly when the gear retracts.
TEST(ProductProfiles, TheThirteenLoadAndAreConsistent) {
  struct Case {
    const char* folder;
    const char* title;
    AircraftType type;
  };
  const Case cases[] = {
      {"B737_800", "Boeing 737-800", AircraftType::B737},
      {"B757_200", "Boeing 757-200", AircraftType::B757},
      {"C172", "Cessna Skyhawk 172SP", AircraftType::C172},
      {"C152", "Cessna C152", AircraftType::C152},
      {"Mooney_Bravo", "Mooney Bravo", AircraftType::Mooney},
      {"Beech_Baron_58", "Beech Baron 58", AircraftType::Baron},
      {"C208B", "Cessna Grand Caravan", AircraftType::C208B},
      {"C182", "Cessna Skylane 182", AircraftType::C182},
      {"Beech_King_Air_350", "Beech King Air 350", AircraftType::KingAir350},
      {"Lear45", "Learjet 45", AircraftType::Lear45},
      {"Douglas_DC3", "Douglas DC-3", AircraftType::DC3},
      {"Bombardier_CRJ_700", "Bombardier CRJ700", AircraftType::CRJ700},
      {"Aerosoft_DHC6_300", "DHC-6 Twin Otter", AircraftType::TwinOtter},
  };
  const std::string dir = std::string(VANTORO_SOURCE_DIR) + "/data/Aircraft/";
  EXPECT_EQ(GetFileList(dir, ".fsr").size(), std::size(cases));
  for (const Case& c : cases) {
    AircraftValues a;
    SetAircraftTypeOptions(a,
                           {std::string(c.folder) + "\\" + c.folder + ".air", c.title, "", true});
    EXPECT_TRUE(a.IsType(c.type)) << c.folder;
    ASSERT_TRUE(LoadAircraftFile("FSR", dir + c.folder + ".fsr", c.folder, false, a)) << c.folder;
    SetupAircraftValues(a);
    EXPECT_EQ(ValidateAircraftUserData(a.Raw), "") << c.folder;
    EXPECT_LT(a.StallLanding, a.StallCruise) << c.folder;
    EXPECT_GT(a.StallLanding, 30) << c.folder;
    EXPECT_GT(a.FullFlapsValue, 0) << c.folder;
    EXPECT_EQ(a.Raw.RetractableGear, a.GearSpeedLimit > a.StallCruise) << c.folder;
    for (int i = 2; i <= kFlapPositions; ++i) {
      EXPECT_GE(a.FlapAngleLimit[static_cast<size_t>(i)],
                a.FlapAngleLimit[static_cast<size_t>(i - 1)])
          << c.folder << " position " << i;
      EXPECT_LE(a.FlapSpeedLimit[static_cast<size_t>(i)],
                a.FlapSpeedLimit[static_cast<size_t>(i - 1)])
          << c.folder << " position " << i;
    }
    EXPECT_GT(a.FlapSpeedLimit[kFlapPositions], a.StallLanding) << c.folder;
  }
}

}  // namespace
}  // namespace vantoro
