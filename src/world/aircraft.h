// What the instructor knows of the aircraft in the simulator: the working
// values the monitors read, where the profile came from, and the type tests
// of the aircraft with rules of their own.
#pragma once

#include <array>
#include <cstdint>
#include <string>

namespace vantoro {

inline constexpr int kFlapPositions = 9;

// The thirteen aircraft types with rules of their own.
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

struct AircraftValues {
  int32_t StallCruise = 0;
  int32_t StallLanding = 0;
  int32_t StallLandingPlus10 = 0;
  int32_t StallLandingPlus15 = 0;
  int32_t StallLandingPlus20 = 0;
  int32_t GearSpeedLimit = 0;
  std::array<int32_t, kFlapPositions + 1> FlapAngleLimit{};  // positions 1..9
  std::array<int32_t, kFlapPositions + 1> FlapSpeedLimit{};  // positions 1..9
  double FullFlapsValue = 0;

  bool RetractableGear = false;
  bool Spoilers = false;
  bool FloatPlane = false;
  bool FlapsDownDuringTaxi = false;

  // Path of the file the profile came from; "...CFG" means it was estimated
  // from the simulator's aircraft.cfg.
  std::string SourceFile;
  // Source chosen: 0 aircraft.cfg, 1 product profile, 2 pilot's profile.
  int Source = 0;

  // Raw type tests (Is...) and the active ones (Want...: also needs the
  // type's monitoring box).
  std::array<bool, kAircraftTypes> Is{};
  std::array<bool, kAircraftTypes> Want{};

  bool IsType(AircraftType t) const { return Is[static_cast<size_t>(t)]; }
  bool WantType(AircraftType t) const { return Want[static_cast<size_t>(t)]; }
};

// The profile came from the simulator's aircraft.cfg, so its speeds are estimates.
bool ProfileIsEstimated(const AircraftValues& a);

}  // namespace vantoro
