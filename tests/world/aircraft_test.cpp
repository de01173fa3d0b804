#include "world/aircraft.h"

#include <gtest/gtest.h>

#include <vector>

namespace vantoro {
namespace {

AircraftIdentity Identity(const char* folder, const char* title, const char* atc = "",
                          bool fsx = true) {
  return {std::string("SimObjects\\Airplanes\\") + folder + "\\" + folder + ".air", title, atc,
          fsx};
}

TEST(AircraftTypes, RecogniseTheThirteenTypesByFolderTitleAndModel) {
  struct Case {
    AircraftIdentity id;
    std::vector<AircraftType> want;  // the raw tests that hold
  };
  using T = AircraftType;
  const Case cases[] = {
      {Identity("B737_800", "Boeing 737-800 Paint1"), {T::B737}},
      {Identity("B737_800", "Boeing 737-800", "", false), {}},  // FS2004: no 737 rules
      {Identity("PMDG_737NGX", "Boeing 737-800NGX"), {}},       // add-on panel
      {Identity("B737_800", "Airliner", "BOEING"), {T::B737}},  // the ATC model is enough
      {Identity("B757_200", "Boeing 757-200"), {T::B757}},
      {Identity("C172", "Cessna Skyhawk 172SP"), {T::C172}},
      {Identity("C172", "Skyhawk"), {}},
      {Identity("C152", "Trainer"), {T::C152}},  // the folder names the type
      {Identity("Piper152", "Piper"), {}},
      {Identity("Mooney_Bravo", "Mooney Bravo"), {T::Mooney}},
      {Identity("Beech_Baron_58", "Beech Baron 58"), {T::Baron}},
      {Identity("Twin", "Beechcraft B58"), {T::Baron}},
      {Identity("C208B", "Cessna Grand Caravan"), {T::C208B}},
      {Identity("A2A_C182", "Cessna 182"), {T::C182}},
      {Identity("Beech_King_Air_350", "Beech King Air 350"), {T::KingAir350}},
      {Identity("Lear45", "Learjet 45"), {T::Lear45}},
      {Identity("Douglas_DC3", "Douglas DC-3"), {T::DC3}},
      {Identity("Dakota C 47", "Dakota"), {T::DC3}},
      {Identity("Bombardier_CRJ_700", "Bombardier CRJ700"), {T::CRJ700}},
      {Identity("Aerosoft_DHC6_300_FLOAT", "Twin Otter"), {T::TwinOtter}},
      {Identity("DHC6", "Twin Otter"), {}},
  };
  for (const Case& c : cases) {
    AircraftValues a;
    SetAircraftTypeOptions(a, c.id);
    std::vector<AircraftType> got;
    for (int t = 0; t < kAircraftTypes; ++t)
      if (a.IsType(static_cast<AircraftType>(t))) got.push_back(static_cast<AircraftType>(t));
    EXPECT_EQ(got, c.want) << c.id.AirFile << " / " << c.id.Title;
  }
}

TEST(AircraftTypes, OptionsEnableOnlyTheTypesBoxesAndWantNeedsTheMainBox) {
  AircraftValues a;
  SetAircraftTypeOptions(a, Identity("C182", "Cessna Skylane"));
  for (int box = 0; box < kOptionBoxes; ++box)
    EXPECT_EQ(a.Monitoring.BoeingEnabled[static_cast<size_t>(box)],
              box == 13 || box == 14 || box == 15)
        << box;
  for (int frame = 1; frame <= kMiscDataFrames; ++frame)
    EXPECT_EQ(a.Monitoring.MiscDataEnabled[static_cast<size_t>(frame)], frame == 7) << frame;

  EXPECT_FALSE(a.WantType(AircraftType::C182));
  a.Monitoring.Boeing[13] = true;
  EXPECT_TRUE(a.WantType(AircraftType::C182));

  // The next aircraft is another type: the boxes go grey again.
  SetAircraftTypeOptions(a, Identity("PMDG_737NGX", "Boeing 737"));
  EXPECT_FALSE(a.Monitoring.BoeingEnabled[13]);
  EXPECT_FALSE(a.WantType(AircraftType::C182));
  EXPECT_FALSE(a.NotPMDG);
  EXPECT_TRUE(a.NotFeelThere);
}

TEST(AircraftTypes, OtterVariantsAreToldApartByTheFolder) {
  EXPECT_EQ(OtterVariantOf("aerosoft_dhc6_100_float"), OtterVariant::Series100Float);
  EXPECT_EQ(OtterVariantOf("Aerosoft_DHC6_300_FLOAT"), OtterVariant::Series300Float);
  EXPECT_EQ(OtterVariantOf("Aerosoft_DHC6_300_AMPHIB"), OtterVariant::Series300Amphibian);
  EXPECT_EQ(OtterVariantOf("Aerosoft_DHC6_100"), OtterVariant::Series100);
  EXPECT_EQ(OtterVariantOf("Aerosoft_DHC6_300"), OtterVariant::None);
}

// The working values the monitors hold the pilot to.
TEST(SetupAircraftValues, WorkingValuesAndTheTypeOverrides) {
  struct Case {
    const char* what;
    const char* folder;
    const char* title;
    bool monitored;  // the type's main box
    std::vector<std::string> pos, speed;
    int stallCruise, stallLanding, plus15, gear;
    std::array<int32_t, 10> angle, limit;
    double fullFlaps;
  };
  const Case cases[] = {
      {"three positions: the rest repeat the third",
       "C172",
       "Cessna",
       false,
       {"10", "20", "30"},
       {"110", "85", "85"},
       48,
       40,
       55,
       0,
       {0, 2570, 5130, 7690, 7690, 7690, 7690, 7690, 7690, 7690},
       {0, 110, 85, 85, 85, 85, 85, 85, 85, 85},
       7690},
      {"no flaps at all", "Jodel", "Jodel", false, {}, {}, 48, 40, 55, 0, {}, {}, 0},
      {"a missing first position hides the others from the full-flaps value",
       "C172",
       "Cessna",
       false,
       {"0.0", "20"},
       {"0", "85"},
       48,
       40,
       55,
       0,
       {0, 0, 5130, 5130, 5130, 5130, 5130, 5130, 5130, 5130},
       {0, 0, 85, 85, 85, 85, 85, 85, 85, 85},
       0},
      {"decimals with a comma, rounded half to even",
       "C172",
       "Cessna",
       false,
       {"12,5", "37.5"},
       {"100", "90"},
       48,
       40,
       55,
       0,
       {0, 3210, 9610, 9610, 9610, 9610, 9610, 9610, 9610, 9610},
       {0, 100, 90, 90, 90, 90, 90, 90, 90, 90},
       9610},
      {"C182 monitored: second flap limit 95",
       "C182",
       "Cessna",
       true,
       {"10", "20"},
       {"140", "120"},
       48,
       40,
       55,
       0,
       {0, 2570, 5130, 5130, 5130, 5130, 5130, 5130, 5130, 5130},
       {0, 140, 95, 120, 120, 120, 120, 120, 120, 120},
       5130},
      {"C182 not monitored: its own figures",
       "C182",
       "Cessna",
       false,
       {"10", "20"},
       {"140", "120"},
       48,
       40,
       55,
       0,
       {0, 2570, 5130, 5130, 5130, 5130, 5130, 5130, 5130, 5130},
       {0, 140, 120, 120, 120, 120, 120, 120, 120, 120},
       5130},
      {"King Air monitored: its stall speeds, and the sums follow them",
       "Beech_King_Air_350",
       "King Air",
       true,
       {},
       {},
       96,
       81,
       96,
       0,
       {},
       {},
       0},
      {"DC3 monitored: stall speeds and four flap limits",
       "Douglas_DC3",
       "DC-3",
       true,
       {"10", "20"},
       {"150", "120"},
       77,
       71,
       86,
       0,
       {0, 2570, 5130, 5130, 5130, 5130, 5130, 5130, 5130, 5130},
       {0, 135, 99, 97, 97, 120, 120, 120, 120, 120},
       5130},
      {"Baron monitored: gear limit 152",
       "Baron",
       "Beech Baron 58",
       true,
       {},
       {},
       48,
       40,
       55,
       152,
       {},
       {},
       0},
  };
  for (const Case& c : cases) {
    AircraftValues a;
    SetAircraftTypeOptions(a, Identity(c.folder, c.title));
    for (int t = 0; t < kAircraftTypes; ++t)
      if (a.IsType(static_cast<AircraftType>(t)))
        a.Monitoring.Boeing[static_cast<size_t>(MainBox(static_cast<AircraftType>(t)))] =
            c.monitored;
    a.Raw.IASStallCruise = "48";
    a.Raw.IASStallLanding = "40";
    a.Raw.MaxGearExtension = "0";
    for (size_t i = 0; i < c.pos.size(); ++i) a.Raw.FlapPos[i] = c.pos[i];
    for (size_t i = 0; i < c.speed.size(); ++i) a.Raw.FlapSpeed[i] = c.speed[i];
    SetupAircraftValues(a);
    EXPECT_EQ(a.StallCruise, c.stallCruise) << c.what;
    EXPECT_EQ(a.StallLanding, c.stallLanding) << c.what;
    EXPECT_EQ(a.StallLandingPlus10, c.stallLanding + 10) << c.what;
    EXPECT_EQ(a.StallLandingPlus15, c.plus15) << c.what;
    EXPECT_EQ(a.StallLandingPlus20, c.stallLanding + 20) << c.what;
    EXPECT_EQ(a.GearSpeedLimit, c.gear) << c.what;
    EXPECT_EQ(a.FlapAngleLimit, c.angle) << c.what;
    EXPECT_EQ(a.FlapSpeedLimit, c.limit) << c.what;
    EXPECT_EQ(a.FullFlapsValue, c.fullFlaps) << c.what;
  }
}

TEST(SetupAircraftValues, TextThatIsNotANumberCountsAsNothing) {
  AircraftValues a;
  a.Raw.IASStallCruise = "fast";
  a.Raw.FlapPos[0] = "ten";
  a.Raw.FlapSpeed[0] = "";
  SetupAircraftValues(a);
  EXPECT_EQ(a.StallCruise, 0);
  EXPECT_EQ(a.FlapAngleLimit[1], 0);
  EXPECT_EQ(a.FullFlapsValue, 0);
}

}  // namespace
}  // namespace vantoro
