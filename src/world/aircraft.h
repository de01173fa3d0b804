// What the instructor knows of the aircraft in the simulator: the raw profile
// as the aircraft page shows it, the working values the monitors read, where
// the profile came from, the pilot's monitoring options, and the type tests
// of the thirteen aircraft with rules of their own.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace vantoro {

inline constexpr int kFlapPositions = 9;
inline constexpr int kOptionBoxes = 42;     // the monitoring boxes chkBoeing(0..41)
inline constexpr int kMiscDataFrames = 13;  // the type frames MiscData(1..13)
inline constexpr int kMonitorLights = 5;    // MonitorLights(0..4)

// The thirteen aircraft types with rules of their own, in the order their
// options are set at the top of every tick.
enum class AircraftType {
  B737,
  C172,
  C152,
  Mooney,
  Baron,
  C208B,
  C182,
  KingAir350,
  Lear45,
  DC3,
  B757,
  CRJ700,
  TwinOtter,
};
inline constexpr int kAircraftTypes = 13;

// Where a profile comes from; also the choice stored per aircraft.
enum ProfileSource : int {
  kSourceNone = -1,        // never chosen
  kSourceAircraftCfg = 0,  // the simulator's aircraft.cfg, estimated ("CFG")
  kSourceProduct = 1,      // a profile delivered with the program (".fsr")
  kSourceUser = 2,         // the pilot's own profile (".fsu")
};

// The raw profile as the aircraft page holds it: text the pilot may edit, so
// that a bad entry can be shown back to him. Decimal values use "." or ",".
struct RawProfile {
  std::array<std::string, kFlapPositions> FlapPos;    // degrees; "0.0" where absent
  std::array<std::string, kFlapPositions> FlapSpeed;  // knots IAS, whole; "0" where absent
  std::string IASStallCruise = "0";                   // clean stall speed, knots IAS
  std::string IASStallLanding = "0";                  // landing-configuration stall speed
  std::string MaxGearExtension = "0";                 // gear extension limit; 0 for fixed gear
  bool RetractableGear = false;
  bool Spoilers = false;
  bool FloatPlane = false;
  bool FlapsDownDuringTaxi = false;  // flaps are typically allowed down while taxiing

  RawProfile() {
    FlapPos.fill("0.0");
    FlapSpeed.fill("0");
  }
  bool operator==(const RawProfile&) const = default;
};

// The pilot's monitoring options of the aircraft page, stored per aircraft.
struct MonitoringOptions {
  std::array<bool, kOptionBoxes> Boeing{};  // chkBoeing(N): type and procedure boxes
  bool MonitorEngines = false;
  std::array<bool, kMonitorLights> MonitorLights{};
  bool WantnoGPWS = false;  // "Disable Instructor Altitude Calls"

  // Enabled states, set from the raw type tests at the top of every tick.
  std::array<bool, kOptionBoxes> BoeingEnabled{};
  std::array<bool, kMiscDataFrames + 1> MiscDataEnabled{};  // frames 1..13
};

// What the type tests look at.
struct AircraftIdentity {
  std::string AirFile;      // full path of the simulator's aircraft file, "\" separated
  std::string Title;        // aircraft title
  std::string AtcType;      // ATC model string
  bool RunningFSX = false;  // the simulator is FSX or Prepar3D
  bool operator==(const AircraftIdentity&) const = default;
};

struct AircraftValues {
  // Working values, written only by SetupAircraftValues.
  int32_t StallCruise = 0;
  int32_t StallLanding = 0;
  int32_t StallLandingPlus10 = 0;
  int32_t StallLandingPlus15 = 0;
  int32_t StallLandingPlus20 = 0;
  int32_t GearSpeedLimit = 0;
  std::array<int32_t, kFlapPositions + 1> FlapAngleLimit{};  // positions 1..9, degrees x 256
  std::array<int32_t, kFlapPositions + 1> FlapSpeedLimit{};  // positions 1..9, knots
  double FullFlapsValue = 0;

  RawProfile Raw;
  // Path of the file the profile came from; "...CFG" means it was estimated
  // from the simulator's aircraft.cfg.
  std::string SourceFile;
  // The aircraft title, key of everything stored per aircraft; "N/A" when none.
  std::string Title = "N/A";
  // The source selected on the page (one of ProfileSource, never kSourceNone).
  int Source = kSourceAircraftCfg;
  // The page's profile fields refuse editing unless the pilot's own profile
  // is selected.
  bool Locked = true;

  MonitoringOptions Monitoring;

  // Raw type tests, set at the top of every tick; the active tests also need
  // the type's main monitoring box (WantType).
  std::array<bool, kAircraftTypes> Is{};
  // Set with the Boeing tests: the folder is not that of an add-on whose
  // panel bypasses the standard offsets.
  bool NotPMDG = true;
  bool NotFeelThere = true;
  // The aircraft the raw tests above were last worked out for: the type
  // changes only with the title and the folder, so a tick of the same
  // aircraft keeps the answers.
  std::optional<AircraftIdentity> TypeTestedFor;

  bool IsType(AircraftType t) const { return Is[static_cast<size_t>(t)]; }
  bool WantType(AircraftType t) const;
  // One of the four jets (737, 757, Learjet 45, CRJ 700) by the raw tests.
  bool IsJet() const;
  // The same, with the type's monitoring box: the jets' own procedures apply.
  bool WantJet() const;
  // The profile gives a first flap position.
  bool HasFlaps() const { return FlapAngleLimit[1] > 0; }
};

// The profile came from the simulator's aircraft.cfg, so its speeds are estimates.
bool ProfileIsEstimated(const AircraftValues& a);

// Name of the folder that holds the aircraft file: how profiles are named and
// most types are told.
std::string AircraftFolderName(std::string_view airFile);

// Raw type tests: the words alone, upper-cased, matched as substrings.
bool Is737(const AircraftIdentity& id);
bool Is757(const AircraftIdentity& id);
bool IsC172(const AircraftIdentity& id);
bool IsC152(const AircraftIdentity& id);
bool IsMooney(const AircraftIdentity& id);
bool IsBaron(const AircraftIdentity& id);
bool IsC208B(const AircraftIdentity& id);
bool IsC182(const AircraftIdentity& id);
bool IsKingAir350(const AircraftIdentity& id);
bool IsLear45(const AircraftIdentity& id);
bool IsDC3(const AircraftIdentity& id);
bool IsCRJ700(const AircraftIdentity& id);
bool IsOtter(const AircraftIdentity& id);

// The Twin Otter variants, told apart by the folder.
enum class OtterVariant { None, Series100Float, Series300Float, Series300Amphibian, Series100 };
OtterVariant OtterVariantOf(std::string_view folder);

// The type's main monitoring box, its frame, and its sound folder ("b737\").
int MainBox(AircraftType t);
int MiscDataFrame(AircraftType t);
const char* TypeSoundFolder(AircraftType t);

// Each sets the type's raw test and the enabled state of its frame, its main
// box and its further boxes.
void Set737Options(AircraftValues& a, const AircraftIdentity& id);
void Set757Options(AircraftValues& a, const AircraftIdentity& id);
void SetC172Options(AircraftValues& a, const AircraftIdentity& id);
void SetC152Options(AircraftValues& a, const AircraftIdentity& id);
void SetMooneyOptions(AircraftValues& a, const AircraftIdentity& id);
void SetBaronOptions(AircraftValues& a, const AircraftIdentity& id);
void Setc208BOptions(AircraftValues& a, const AircraftIdentity& id);
void Setc182Options(AircraftValues& a, const AircraftIdentity& id);
void SetKingAir350Options(AircraftValues& a, const AircraftIdentity& id);
void SetLear45Options(AircraftValues& a, const AircraftIdentity& id);
void SetDC3Options(AircraftValues& a, const AircraftIdentity& id);
void SetCRJOptions(AircraftValues& a, const AircraftIdentity& id);
void SetOtterOptions(AircraftValues& a, const AircraftIdentity& id);
// All thirteen, in the order of the tick; for the aircraft tested last, only
// the enabled states are set again from the kept answers.
void SetAircraftTypeOptions(AircraftValues& a, const AircraftIdentity& id);

// Clears the four flags; every flap position "0.0", every flap speed "0".
// The stall and gear speeds keep what they hold.
void ResetAircraftTab(RawProfile& raw);

// Type figures that replace the profile's for the types the instructor knows.
inline constexpr int32_t kKingAir350StallCruise = 96;
inline constexpr int32_t kKingAir350StallLanding = 81;
inline constexpr int32_t kDC3StallCruise = 77;
inline constexpr int32_t kDC3StallLanding = 71;
inline constexpr int32_t kBaronGearSpeedLimit = 152;
inline constexpr int32_t kC182FlapSpeedLimit2 = 95;
inline constexpr std::array<int32_t, 4> kDC3FlapSpeedLimits = {135, 99, 97, 97};

// Parses the page into the working values. Text that is not a number counts
// as 0.
void SetupAircraftValues(AircraftValues& a);

// The flap indicator value of full flaps: walking FlapAngleLimit from 1 up,
// the last value before the first that is not positive; 0 when the first is
// not positive.
double FullFlapsFSUIPCValue(const AircraftValues& a);

}  // namespace vantoro
