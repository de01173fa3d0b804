#include "world/aircraft.h"

#include <gtest/gtest.h>

#include <vector>

#include "world/report_lines.h"

namespace vantoro {
namespace {

using T = AircraftType;

AircraftIdentity Identity(const std::string& folder, const char* title, bool fsx = true) {
  return {"SimObjects\\Airplanes\\" + folder + "\\" + folder + ".air", title, "", fsx};
}

TEST(AircraftTypes, RecogniseTheThirteenTypesByFolderAndTitle) {
  struct Case {
    AircraftIdentity id;
    std::vector<T> is;
  };
  const Case cases[] = {
      {Identity("B737_800", "Boeing 737-800 Paint1"), {T::B737}},
      {Identity("B737_800", "Boeing 737-800", false), {}},  // FS2004 has no 737 rules
      {Identity("PMDG_737NGX", "Boeing 737-800NGX"), {}},   // its panel bypasses the offsets
      {{"B737_800\\a.air", "Airliner", "BOEING", true}, {T::B737}},  // the ATC model counts
      {Identity("B757_200", "Boeing 757-200"), {T::B757}},
      {Identity("C172", "Cessna Skyhawk 172SP"), {T::C172}},
      {Identity("C172", "Skyhawk"), {}},
      {Identity("C152", "Trainer"), {T::C152}},  // the folder names the type
      {Identity("Mooney_Bravo", "Mooney Bravo"), {T::Mooney}},
      {Identity("Twin", "Beechcraft B58"), {T::Baron}},  // the Baron by its title alone
      {Identity("C208B", "Grand Caravan"), {T::C208B}},
      {Identity("A2A_C182", "Skylane"), {T::C182}},
      {Identity("Beech_King_Air_350", "King Air"), {T::KingAir350}},
      {Identity("Lear45", "Learjet 45"), {T::Lear45}},
      {Identity("Dakota C 47", "Dakota"), {T::DC3}},
      {Identity("Bombardier_CRJ_700", "CRJ700"), {T::CRJ700}},
      {Identity("Aerosoft_DHC6_300_FLOAT", "Twin Otter"), {T::TwinOtter}},
      {Identity("DHC6", "Twin Otter"), {}},
  };
  for (const Case& c : cases) {
    AircraftValues a;
    SetAircraftTypeOptions(a, c.id);
    std::vector<T> is;
    for (int t = 0; t < kAircraftTypes; ++t)
      if (a.IsType(static_cast<T>(t))) is.push_back(static_cast<T>(t));
    EXPECT_EQ(is, c.is) << c.id.AirFile << " / " << c.id.Title;
  }
  EXPECT_EQ(OtterVariantOf("Aerosoft_DHC6_100_FLOAT"), OtterVariant::Series100Float);
  EXPECT_EQ(OtterVariantOf("aerosoft_dhc6_100"), OtterVariant::Series100);
}

TEST(AircraftTypes, OptionsEnableTheTypesBoxesAndWantNeedsTheMainBox) {
  AircraftValues a;
  SetAircraftTypeOptions(a, Identity("C182", "Cessna Skylane"));
  for (int box = 0; box < kOptionBoxes; ++box)
    EXPECT_EQ(a.Monitoring.BoeingEnabled[size_t(box)], box == 13 || box == 14 || box == 15) << box;
  for (int frame = 1; frame <= kMiscDataFrames; ++frame)
    EXPECT_EQ(a.Monitoring.MiscDataEnabled[size_t(frame)], frame == 7) << frame;
  EXPECT_FALSE(a.WantType(T::C182));
  a.Monitoring.Boeing[13] = true;
  EXPECT_TRUE(a.WantType(T::C182));
  // The same aircraft on the next tick: the kept answers enable its boxes again.
  a.Monitoring.BoeingEnabled.fill(false);
  SetAircraftTypeOptions(a, Identity("C182", "Cessna Skylane"));
  EXPECT_TRUE(a.Monitoring.BoeingEnabled[13]);
  EXPECT_TRUE(a.WantType(T::C182));
  // Another aircraft: the boxes go grey and the rules stop.
  SetAircraftTypeOptions(a, Identity("PMDG_737NGX", "Boeing 737"));
  EXPECT_FALSE(a.Monitoring.BoeingEnabled[13]);
  EXPECT_FALSE(a.WantType(T::C182));
  EXPECT_FALSE(a.NotPMDG);
}

TEST(SetupAircraftValues, WorkingValuesAndTheTypeOverrides) {
  struct Case {
    const char* what;
    const char* folder;
    bool monitored;  // the type's main box
    std::vector<std::string> pos, speed, want;
  };
  // clang-format off
  const Case cases[] = {
      {"unused positions repeat the last real one", "C172", false, {"10", "20", "30"}, {"110", "85", "85"},
       {"StallCruise=48", "StallLandingPlus15=55", "FlapAngleLimit3=7690", "FlapAngleLimit9=7690",
        "FlapSpeedLimit1=110", "FlapSpeedLimit9=85", "FullFlapsValue=7690"}},
      {"no flaps at all", "C172", false, {}, {}, {"FlapAngleLimit1=0", "FlapSpeedLimit9=0", "FullFlapsValue=0"}},
      {"no first position: no full-flaps value", "C172", false, {"0.0", "20"}, {"0", "85"},
       {"FlapAngleLimit1=0", "FlapAngleLimit2=5130", "FlapSpeedLimit1=0", "FullFlapsValue=0"}},
      {"a decimal comma, rounded half to even", "C172", false, {"12,5", "fifteen"}, {"99.5"},
       {"FlapAngleLimit1=3210", "FlapAngleLimit2=3210", "FlapSpeedLimit1=100"}},
      {"C182 monitored", "C182", true, {"10", "20", "38"}, {"140", "120", "100"},
       {"FlapSpeedLimit1=140", "FlapSpeedLimit2=95", "FlapSpeedLimit3=100"}},
      {"C182 not monitored", "C182", false, {"10", "20"}, {"140", "120"}, {"FlapSpeedLimit2=120"}},
      {"King Air monitored: the sums follow its stall speeds", "Beech_King_Air_350", true, {}, {},
       {"StallCruise=96", "StallLanding=81", "StallLandingPlus10=91", "StallLandingPlus15=96", "StallLandingPlus20=101"}},
      {"DC3 monitored", "Douglas_DC3", true, {"10", "20"}, {"150", "120"},
       {"StallCruise=77", "StallLandingPlus20=91", "FlapSpeedLimit1=135", "FlapSpeedLimit2=99",
        "FlapSpeedLimit4=97", "FlapSpeedLimit5=120"}},
      {"Baron monitored", "Beech_Baron_58", true, {}, {}, {"GearSpeedLimit=152"}},
      // A damaged file's huge figures count as absent: no sum overflows into a
      // landing score of two thousand million.
      {"figures beyond any aircraft", "C172", false, {"2147483647", "-20", "30"},
       {"2147483647", "1e9", "90"},
       {"FlapAngleLimit1=0", "FlapAngleLimit2=0", "FlapAngleLimit3=7690", "FlapSpeedLimit1=0",
        "FlapSpeedLimit3=90"}},
  };
  // clang-format on
  for (const Case& c : cases) {
    AircraftValues a;
    SetAircraftTypeOptions(a, Identity(c.folder, "Cessna Beech Baron"));
    for (int t = 0; t < kAircraftTypes; ++t)
      if (a.IsType(static_cast<T>(t))) a.Monitoring.Boeing[size_t(MainBox(T(t)))] = c.monitored;
    a.Raw.IASStallCruise = "48";
    a.Raw.IASStallLanding = "40";
    for (size_t i = 0; i < c.pos.size(); ++i) a.Raw.FlapPos[i] = c.pos[i];
    for (size_t i = 0; i < c.speed.size(); ++i) a.Raw.FlapSpeed[i] = c.speed[i];
    SetupAircraftValues(a);
    ExpectLines(a, c.want, c.what);
  }
  AircraftValues huge;
  huge.Raw.IASStallLanding = huge.Raw.MaxGearExtension = "2147483647";
  SetupAircraftValues(huge);
  ExpectLines(huge, {"StallLanding=0", "StallLandingPlus20=20", "GearSpeedLimit=0"}, "huge stall");
}

}  // namespace
}  // namespace vantoro
