// The checklists of the thirteen types. The instructor does not read items
// one by one: each type's folder holds one recording per list, and the key
// picks the one list that fits the present phase.
#include "engine/checklists.h"

#include <algorithm>
#include <array>
#include <cstdint>

#include "engine/tick_rules.h"

namespace vantoro {

namespace {

// The kinds of list, in the order their phases are tested.
enum Kind : uint16_t {
  kTaxiIn,
  kColdAndDark,
  kShutDown,
  kAfterStart,
  kStarting,
  kRunUp,
  kTakeOff,
  kDescent,
  kLanding,
  kKinds
};

struct KindInfo {
  const char* title;
  const char* file;  // after the type's folder and prefix
  int id;
};

constexpr std::array<KindInfo, kKinds> kKindInfo = {{
    {"Taxi In", "ListTaxiIn.wav", 57},
    {"Cold and dark", "ListColdAndDark.wav", 51},
    {"Shut down", "ListShutDown.wav", 52},
    {"After start", "ListAfterStart.wav", 52},
    {"Start procedure", "ListStarting.wav", 53},
    {"Run up", "ListRunUp.wav", 54},
    {"Take off", "ListTakeOff.wav", 55},
    {"Descent", "ListDescent.wav", 56},
    {"Landing", "ListBeforeLanding.wav", 58},
}};
constexpr int kListGap = 30;
constexpr int kListExpiry = 4;
constexpr int kChecklistMessageSeconds = 5;

constexpr uint16_t Bit(Kind k) {
  return static_cast<uint16_t>(1u << k);
}
// The jets and the Twin Otter: every list but the run-up.
constexpr uint16_t kAirlinerLists = Bit(kTaxiIn) | Bit(kColdAndDark) | Bit(kShutDown) |
                                    Bit(kAfterStart) | Bit(kStarting) | Bit(kTakeOff) |
                                    Bit(kDescent) | Bit(kLanding);
// The light aircraft and the King Air.
constexpr uint16_t kLightLists = Bit(kColdAndDark) | Bit(kShutDown) | Bit(kRunUp) | Bit(kTakeOff) |
                                 Bit(kDescent) | Bit(kLanding);
constexpr uint16_t kAllLists = kAirlinerLists | Bit(kRunUp);

struct TypeLists {
  AircraftType type;
  bool zPro;  // the later recordings, named "zPro_List..."
  uint16_t lists;
};

// In the order the types are tested.
constexpr std::array<TypeLists, kAircraftTypes> kTypeLists = {{
    {AircraftType::B737, false, kAirlinerLists},
    {AircraftType::B757, false, kAirlinerLists},
    {AircraftType::Lear45, false, kAirlinerLists},
    {AircraftType::CRJ700, false, kAirlinerLists},
    {AircraftType::TwinOtter, false, kAirlinerLists},
    {AircraftType::DC3, true, kAllLists},
    {AircraftType::C172, false, kLightLists},
    {AircraftType::Mooney, true, kLightLists},
    {AircraftType::C208B, true, kLightLists},
    {AircraftType::C182, true, kLightLists},
    {AircraftType::Baron, true, kLightLists},
    {AircraftType::KingAir350, true, kLightLists},
    {AircraftType::C152, false, kLightLists},
}};

// The phases below and above which the approach lists change.
constexpr double kDescentListAbove = 1000;  // feet above the ground

// A run-up: the magneto check ends (switch from one magneto back to both) at
// run-up power, braked at a standstill.
constexpr int32_t kMagnetoLeft = 1;
constexpr int32_t kMagnetoRight = 2;
constexpr int32_t kMagnetosBoth = 3;
constexpr int32_t kRunUpPowerAbove = 25;  // the engine's RPM indicator byte
constexpr int32_t kRunUpStoppedGS = 4;
constexpr int kRunUpEngines = 4;

bool IsJetType(AircraftType t) {
  return t == AircraftType::B737 || t == AircraftType::B757 || t == AircraftType::Lear45 ||
         t == AircraftType::CRJ700;
}

int32_t StarterSwitch(const FSData& d, int engine) {
  switch (engine) {
    case 1:
      return d.Eng1StarterSwitch;
    case 2:
      return d.Eng2StarterSwitch;
    case 3:
      return d.Eng3StarterSwitch;
    default:
      return d.Eng4StarterSwitch;
  }
}

int32_t RunUpPower(const FSData& d, int engine) {
  switch (engine) {
    case 1:
      return d.Eng1ManifoldHigh;
    case 2:
      return d.Eng2ManifoldHigh;
    case 3:
      return d.Eng3ManifoldHigh;
    default:
      return d.Eng4ManifoldHigh;
  }
}

bool MagnetoCheck(int32_t sw) {
  return sw == kMagnetoLeft || sw == kMagnetoRight;
}

// Whether the phase of list `k` is the present one for the type.
bool PhaseFits(Kind k, const TypeLists& t, const Cockpit& c) {
  const FSData& now = c.link.Now();
  const FSData& before = c.link.Before();
  const ModeFlags& m = c.flight.Modes;
  const FlightStats& flight = c.flight.Flight();
  const bool taxiOnGround = m.Taxiing && now.OnGround > 0;
  const int32_t firing = EnginesFiring(now);
  const bool flown = c.checklists.BeenAirborne;
  const bool braked = now.ParkingBrake && before.ParkingBrake;  // in this and the last sample
  switch (k) {
    case kTaxiIn:
      return taxiOnGround && flown && !braked;
    case kColdAndDark:
      return taxiOnGround && firing == 0 && !now.MasterBattery;
    case kShutDown:
      return taxiOnGround && flown && braked;
    case kAfterStart:
      // The DC3 reads its run-up after this list: once the run-up has begun
      // (or this list was read), the run-up list follows.
      return taxiOnGround && firing >= 2 && !(t.type == AircraftType::DC3 && flight.RunUpStarted);
    case kStarting:
      return taxiOnGround && firing == 0 && now.MasterBattery && !flown &&
             (!IsJetType(t.type) ||
              ((now.Eng1FuelPump || now.Eng2FuelPump) && now.Flag341D /* seat belts */));
    case kRunUp:
      return taxiOnGround && firing > 0 && !flight.RunUpDone;
    case kTakeOff:
      return m.TakeOff && now.OnGround > 0;
    case kDescent:
      return m.Landing && now.AGL > kDescentListAbove;
    case kLanding:
      return m.Landing && now.AGL <= kDescentListAbove;
    case kKinds:
      break;
  }
  return false;
}

CheckList ListOf(const TypeLists& t, Kind k) {
  const KindInfo& info = kKindInfo[k];
  std::string title = info.title;
  if (k == kRunUp && t.type == AircraftType::C208B) title = "Before takeoff";
  return CheckList{
      title, std::string(TypeSoundFolder(t.type)) + (t.zPro ? "zPro_" : "") + info.file, info.id};
}

}  // namespace

std::optional<CheckList> ChooseCheckList(const Cockpit& c) {
  for (const TypeLists& t : kTypeLists) {
    if (!c.aircraft.WantType(t.type)) continue;
    for (int k = 0; k < kKinds; ++k) {
      const Kind kind = static_cast<Kind>(k);
      if ((t.lists & Bit(kind)) != 0 && PhaseFits(kind, t, c)) return ListOf(t, kind);
    }
    return std::nullopt;
  }
  return std::nullopt;
}

void ProcessCheckLists(Cockpit& c) {
  const std::optional<CheckList> list = ChooseCheckList(c);
  if (!list) return;
  Voice v = c.voice();
  PlayPerhaps(v, list->file, list->id, kListGap, kListExpiry);
  ShowMessage(c, "Checklist: " + list->title, kChecklistMessageSeconds);
  c.checklists.LastFile = list->file;
  c.checklists.LastTitle = list->title;
  if (list->title == kKindInfo[kAfterStart].title) c.flight.Flight().RunUpStarted = true;
}

std::string ProcessNextCheckList(const Cockpit& c, std::string text) {
  if (const std::optional<CheckList> list = ChooseCheckList(c)) text += list->title;
  return text;
}

void UpdateNextCheckList(Cockpit& c) {
  const FSData& now = c.link.Now();
  ChecklistsState& s = c.checklists;
  if (now.OnGround == 0) s.BeenAirborne = true;
  if (now.OnGround > 0 && EnginesFiring(now) == 0 && !now.MasterBattery) s.BeenAirborne = false;
  s.NextTitle = ProcessNextCheckList(c, "");
}

void RepeatLastCheckList(Cockpit& c) {
  if (c.checklists.LastFile.empty()) return;
  Voice v = c.voice();
  PlayAlways(v, c.checklists.LastFile);
  ShowMessage(c, "Checklist: " + c.checklists.LastTitle, kChecklistMessageSeconds);
}

void CheckIfRunUpComplete(Cockpit& c) {
  const FSData& now = c.link.Now();
  const FSData& before = c.link.Before();
  if (now.EngineType != "Piston" || !now.ParkingBrake || c.link.HeavyAircraft ||
      now.GS > kRunUpStoppedGS)
    return;
  FlightStats& flight = c.flight.Flight();
  const int engines = std::min(static_cast<int>(now.Engines), kRunUpEngines);
  if (engines < 1) return;
  Voice v = c.voice();
  for (int n = 1; n <= engines; ++n) {
    bool& done = flight.RunUpEngine[static_cast<size_t>(n - 1)];
    if (MagnetoCheck(StarterSwitch(now, n))) flight.RunUpStarted = true;
    if (done || StarterSwitch(now, n) != kMagnetosBoth || RunUpPower(now, n) <= kRunUpPowerAbove ||
        !MagnetoCheck(StarterSwitch(before, n)))
      continue;
    if (engines > 1) {
      PlayAlways(v, "RunUpCompletedForEngine.wav");
      PlayAlways(v, std::to_string(n) + ".wav");
    }
    done = true;
  }
  if (flight.RunUpDone) return;
  for (int n = 1; n <= engines; ++n)
    if (!flight.RunUpEngine[static_cast<size_t>(n - 1)]) return;
  PlayAlways(v, "RunUpComplete.wav");
  flight.RunUpDone = true;
}

}  // namespace vantoro
