#include "world/aircraft.h"

#include "base/files.h"
#include "base/ini.h"
#include "base/numbers.h"
#include "base/text.h"

namespace vantoro {

namespace {

// The boxes and frame of one type on the aircraft page.
struct TypeBoxes {
  int frame;
  int mainBox;
  std::array<int, 4> further;
  int furtherCount;
  const char* soundFolder;
};

// Indexed by AircraftType.
constexpr std::array<TypeBoxes, kAircraftTypes> kTypeBoxes = {{
    {1, 0, {1, 2, 3, 5}, 4, "b737\\"},
    {2, 11, {}, 0, "c172\\"},
    {3, 6, {}, 0, "c152\\"},
    {4, 7, {}, 0, "Mooney\\"},
    {5, 8, {}, 0, "BaronB58\\"},
    {6, 12, {}, 0, "c208B\\"},
    {7, 13, {14, 15}, 2, "c182\\"},
    {8, 9, {10, 16}, 2, "BeechKingAir350\\"},
    {9, 21, {19, 20, 22}, 3, "Lear45\\"},
    {10, 23, {}, 0, "DC3\\"},
    {11, 31, {30, 29, 28}, 3, "b757\\"},
    {12, 34, {32, 33, 35}, 3, "CRJ700\\"},
    {13, 39, {37, 38, 40}, 3, "TwinOtter\\"},
}};

const TypeBoxes& BoxesOf(AircraftType t) {
  return kTypeBoxes[static_cast<size_t>(t)];
}

bool Has(std::string_view upperText, std::string_view word) {
  return upperText.find(word) != std::string_view::npos;
}

// The three texts the tests look at, upper-cased.
struct Words {
  std::string folder, title, atc;
  explicit Words(const AircraftIdentity& id)
      : folder(Upper(AircraftFolderName(id.AirFile))),
        title(Upper(id.Title)),
        atc(Upper(id.AtcType)) {}
  bool TitleOrAtc(std::string_view word) const { return Has(title, word) || Has(atc, word); }
};

// The Boeing tests differ only in the folder word.
bool IsBoeing(const AircraftIdentity& id, std::string_view folderWord) {
  const Words w(id);
  return id.RunningFSX && !Has(w.folder, "PMDG") && !Has(w.folder, "FEELTHERE") &&
         Has(w.folder, folderWord) && w.TitleOrAtc("BOEING");
}

void SetTypeOptions(AircraftValues& a, AircraftType t, bool is) {
  a.Is[static_cast<size_t>(t)] = is;
  const TypeBoxes& b = BoxesOf(t);
  a.Monitoring.MiscDataEnabled[static_cast<size_t>(b.frame)] = is;
  a.Monitoring.BoeingEnabled[static_cast<size_t>(b.mainBox)] = is;
  for (int i = 0; i < b.furtherCount; ++i)
    a.Monitoring.BoeingEnabled[static_cast<size_t>(b.further[static_cast<size_t>(i)])] = is;
}

// No aircraft flies near these: a figure beyond them is a damaged file, and
// counts as the field's default 0, so that no sum of speeds can overflow.
constexpr double kHighestProfileSpeed = 1000;  // knots
constexpr double kHighestFlapAngle = 90;       // degrees

double PageNumber(const std::string& text, double highest = kHighestProfileSpeed) {
  const double x = INIValueNumber(text).value_or(0);
  return x >= 0 && x <= highest ? x : 0;
}

}  // namespace

bool AircraftValues::WantType(AircraftType t) const {
  return IsType(t) && Monitoring.Boeing[static_cast<size_t>(BoxesOf(t).mainBox)];
}

bool AircraftValues::IsJet() const {
  return IsType(AircraftType::B737) || IsType(AircraftType::B757) || IsType(AircraftType::Lear45) ||
         IsType(AircraftType::CRJ700);
}

bool AircraftValues::WantJet() const {
  return WantType(AircraftType::B737) || WantType(AircraftType::B757) ||
         WantType(AircraftType::Lear45) || WantType(AircraftType::CRJ700);
}

bool ProfileIsEstimated(const AircraftValues& a) {
  return Upper(Trim(Right(a.SourceFile, 3))) == "CFG";
}

std::string AircraftFolderName(std::string_view airFile) {
  return LastFolder(airFile);
}

bool Is737(const AircraftIdentity& id) {
  return IsBoeing(id, "737");
}

bool Is757(const AircraftIdentity& id) {
  return IsBoeing(id, "75");
}

bool IsC172(const AircraftIdentity& id) {
  const Words w(id);
  return Has(w.folder, "172") && w.TitleOrAtc("CESSNA");
}

bool IsC152(const AircraftIdentity& id) {
  const Words w(id);
  return Has(w.folder, "152") && (w.TitleOrAtc("CESSNA") || Has(w.folder, "C152"));
}

bool IsMooney(const AircraftIdentity& id) {
  const Words w(id);
  return Has(w.folder, "BRAV") && w.TitleOrAtc("MOON");
}

bool IsBaron(const AircraftIdentity& id) {
  const std::string title = Upper(id.Title);
  return Has(title, "BARON") || Has(title, "B58");
}

bool IsC208B(const AircraftIdentity& id) {
  return Has(Upper(AircraftFolderName(id.AirFile)), "208");
}

bool IsC182(const AircraftIdentity& id) {
  return Has(Upper(AircraftFolderName(id.AirFile)), "182");
}

bool IsKingAir350(const AircraftIdentity& id) {
  return Has(Upper(AircraftFolderName(id.AirFile)), "350");
}

bool IsLear45(const AircraftIdentity& id) {
  const std::string folder = Upper(AircraftFolderName(id.AirFile));
  return Has(folder, "LEAR") && Has(folder, "45");
}

bool IsDC3(const AircraftIdentity& id) {
  const std::string folder = Upper(AircraftFolderName(id.AirFile));
  for (std::string_view word : {"C47", "C-47", "C 47", "C_47", "DC_3", "DC 3", "DC-3", "DC3"})
    if (Has(folder, word)) return true;
  return false;
}

bool IsCRJ700(const AircraftIdentity& id) {
  const std::string folder = Upper(AircraftFolderName(id.AirFile));
  return Has(folder, "CRJ") && Has(folder, "700");
}

bool IsOtter(const AircraftIdentity& id) {
  const std::string folder = Upper(AircraftFolderName(id.AirFile));
  return Has(folder, "AEROSOFT") && Has(folder, "DHC6");
}

OtterVariant OtterVariantOf(std::string_view folder) {
  const std::string f = Upper(folder);
  // The plain series 100 name is part of its float variant's name, so it comes last.
  if (Has(f, "AEROSOFT_DHC6_100_FLOAT")) return OtterVariant::Series100Float;
  if (Has(f, "AEROSOFT_DHC6_300_FLOAT")) return OtterVariant::Series300Float;
  if (Has(f, "AEROSOFT_DHC6_300_AMPHIB")) return OtterVariant::Series300Amphibian;
  if (Has(f, "AEROSOFT_DHC6_100")) return OtterVariant::Series100;
  return OtterVariant::None;
}

int MainBox(AircraftType t) {
  return BoxesOf(t).mainBox;
}

int MiscDataFrame(AircraftType t) {
  return BoxesOf(t).frame;
}

const char* TypeSoundFolder(AircraftType t) {
  return BoxesOf(t).soundFolder;
}

void Set737Options(AircraftValues& a, const AircraftIdentity& id) {
  const std::string folder = Upper(AircraftFolderName(id.AirFile));
  a.NotPMDG = !Has(folder, "PMDG");
  a.NotFeelThere = !Has(folder, "FEELTHERE");
  SetTypeOptions(a, AircraftType::B737, Is737(id));
}

void Set757Options(AircraftValues& a, const AircraftIdentity& id) {
  const std::string folder = Upper(AircraftFolderName(id.AirFile));
  a.NotPMDG = !Has(folder, "PMDG");
  a.NotFeelThere = !Has(folder, "FEELTHERE");
  SetTypeOptions(a, AircraftType::B757, Is757(id));
}

void SetC172Options(AircraftValues& a, const AircraftIdentity& id) {
  SetTypeOptions(a, AircraftType::C172, IsC172(id));
}

void SetC152Options(AircraftValues& a, const AircraftIdentity& id) {
  SetTypeOptions(a, AircraftType::C152, IsC152(id));
}

void SetMooneyOptions(AircraftValues& a, const AircraftIdentity& id) {
  SetTypeOptions(a, AircraftType::Mooney, IsMooney(id));
}

void SetBaronOptions(AircraftValues& a, const AircraftIdentity& id) {
  SetTypeOptions(a, AircraftType::Baron, IsBaron(id));
}

void Setc208BOptions(AircraftValues& a, const AircraftIdentity& id) {
  SetTypeOptions(a, AircraftType::C208B, IsC208B(id));
}

void Setc182Options(AircraftValues& a, const AircraftIdentity& id) {
  SetTypeOptions(a, AircraftType::C182, IsC182(id));
}

void SetKingAir350Options(AircraftValues& a, const AircraftIdentity& id) {
  SetTypeOptions(a, AircraftType::KingAir350, IsKingAir350(id));
}

void SetLear45Options(AircraftValues& a, const AircraftIdentity& id) {
  SetTypeOptions(a, AircraftType::Lear45, IsLear45(id));
}

void SetDC3Options(AircraftValues& a, const AircraftIdentity& id) {
  SetTypeOptions(a, AircraftType::DC3, IsDC3(id));
}

void SetCRJOptions(AircraftValues& a, const AircraftIdentity& id) {
  SetTypeOptions(a, AircraftType::CRJ700, IsCRJ700(id));
}

void SetOtterOptions(AircraftValues& a, const AircraftIdentity& id) {
  SetTypeOptions(a, AircraftType::TwinOtter, IsOtter(id));
}

void SetAircraftTypeOptions(AircraftValues& a, const AircraftIdentity& id) {
  if (a.TypeTestedFor == id) {
    for (int t = 0; t < kAircraftTypes; ++t) {
      const auto type = static_cast<AircraftType>(t);
      SetTypeOptions(a, type, a.IsType(type));
    }
    return;
  }
  a.TypeTestedFor = id;
  Set737Options(a, id);
  SetC172Options(a, id);
  SetC152Options(a, id);
  SetMooneyOptions(a, id);
  SetBaronOptions(a, id);
  Setc208BOptions(a, id);
  Setc182Options(a, id);
  SetKingAir350Options(a, id);
  SetLear45Options(a, id);
  SetDC3Options(a, id);
  Set757Options(a, id);
  SetCRJOptions(a, id);
  SetOtterOptions(a, id);
}

void ResetAircraftTab(RawProfile& raw) {
  raw.RetractableGear = false;
  raw.Spoilers = false;
  raw.FloatPlane = false;
  raw.FlapsDownDuringTaxi = false;
  raw.FlapPos.fill("0.0");
  raw.FlapSpeed.fill("0");
}

void SetupAircraftValues(AircraftValues& a) {
  const RawProfile& raw = a.Raw;

  // The type figures replace the stall speeds before the sums are formed,
  // so that the sums follow them.
  a.StallCruise = CLng(PageNumber(raw.IASStallCruise));
  a.StallLanding = CLng(PageNumber(raw.IASStallLanding));
  if (a.WantType(AircraftType::KingAir350)) {
    a.StallCruise = kKingAir350StallCruise;
    a.StallLanding = kKingAir350StallLanding;
  }
  if (a.WantType(AircraftType::DC3)) {
    a.StallCruise = kDC3StallCruise;
    a.StallLanding = kDC3StallLanding;
  }

  a.StallLandingPlus10 = a.StallLanding + 10;
  a.StallLandingPlus20 = a.StallLanding + 20;
  a.GearSpeedLimit = CLng(PageNumber(raw.MaxGearExtension));
  if (a.WantType(AircraftType::Baron)) a.GearSpeedLimit = kBaronGearSpeedLimit;
  a.StallLandingPlus15 = a.StallLanding + 15;

  // An unused position repeats the last real one, so the flap rules hold
  // every deflection beyond it to that position's limit.
  int32_t lastAngle = 0;
  int32_t lastSpeed = 0;
  for (int i = 1; i <= kFlapPositions; ++i) {
    const size_t page = static_cast<size_t>(i - 1);
    int32_t angle = CLng(PageNumber(raw.FlapPos[page], kHighestFlapAngle) * 256 + 10);
    if (angle > 10) {
      lastAngle = angle;
    } else {
      angle = lastAngle;
    }
    a.FlapAngleLimit[static_cast<size_t>(i)] = angle;

    int32_t speed = CLng(PageNumber(raw.FlapSpeed[page]));
    if (speed > 0) {
      lastSpeed = speed;
    } else {
      speed = lastSpeed;
    }
    a.FlapSpeedLimit[static_cast<size_t>(i)] = speed;
  }

  if (a.WantType(AircraftType::C182)) a.FlapSpeedLimit[2] = kC182FlapSpeedLimit2;
  if (a.WantType(AircraftType::DC3))
    for (size_t i = 0; i < kDC3FlapSpeedLimits.size(); ++i)
      a.FlapSpeedLimit[i + 1] = kDC3FlapSpeedLimits[i];

  a.FullFlapsValue = FullFlapsFSUIPCValue(a);
}

double FullFlapsFSUIPCValue(const AircraftValues& a) {
  double full = 0;
  for (int i = 1; i <= kFlapPositions; ++i) {
    const int32_t v = a.FlapAngleLimit[static_cast<size_t>(i)];
    if (v <= 0) break;
    full = v;
  }
  return full;
}

}  // namespace vantoro
