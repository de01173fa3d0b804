// The touchdown test: on the second tick on the ground after a flight the two
// records are kept for the landing evaluation, and the landing is judged a
// crash, a strange touchdown or a landing with its sound.
#include <cstdlib>

#include "engine/approach.h"
#include "engine/tick_rules.h"
#include "records/clocks.h"
#include "records/flight_stats.h"

namespace vantoro {

namespace {

constexpr int32_t kWaterSurface = 2;
// The failure byte of the electrics, 0x0B6A, among the sixteen from 0x0B64.
constexpr size_t kFailElectrics = 0x0B6A - 0x0B64;

// A crash: banked at a standstill, banked hard, or nose far below its resting
// pitch. Only a right bank is tested; a left bank passes, as it always has.
constexpr int32_t kBankAtStandstill = 2;
constexpr int32_t kBankCrash = 30;
constexpr int32_t kNoseDownCrash = -8;

// A touchdown the instructor recognises as a landing.
constexpr int32_t kFairBank = 10;
constexpr int32_t kFairPitchLowest = -7;
constexpr int32_t kFairPitchHighest = 25;

// Sink rates of a hard landing, feet per minute.
constexpr int32_t kHardLandingVS = -650;
constexpr int32_t kHardLandingVSLight = -400;
constexpr int32_t kTouchdownSoundAfterSeconds = 10;

bool LandingIsCrash(const Cockpit& c) {
  const FSData& now = c.link.Now();
  const FSData& before = c.link.Before();
  const bool floatPlane = c.aircraft.Raw.FloatPlane;
  const bool onWater = now.SurfaceType == kWaterSurface;
  if (now.Bank > kBankAtStandstill && now.GS == 0 && !floatPlane) return true;
  if (now.Bank > kBankCrash) return true;
  if (now.FailFlags[kFailElectrics] && !before.FailFlags[kFailElectrics]) return true;
  if (!now.GearDown && !(onWater && floatPlane)) return true;
  if (onWater && !floatPlane) return true;
  return now.Pitch + c.flight.PitchTrim < kNoseDownCrash;
}

}  // namespace

void TouchdownTest(Cockpit& c) {
  FlightState& f = c.flight;
  const FSData& now = c.link.Now();
  const FSData& before = c.link.Before();
  if (f.TouchdownArmed != 1) {
    f.GroundLatch = 1;
    return;
  }

  f.TouchdownArmed = 0;
  // The touchdown counters of the landing evaluation are cleared here.
  f.LevelFlightTicks = 0;
  f.DescentTicks = 0;

  f.LandingData[1] = before;
  f.LandingData[0] = now;
  f.HasTouchedDown = true;

  if (now.Crashed) {
    DeclareCrash(c, "YouCrashedThePlane1.WAV");
  } else if (LandingIsCrash(c)) {
    f.CrashOnLanding = true;
    DeclareCrash(c, "LooksLikeYouveCrashedThePlane.WAV");
  } else if (std::abs(now.Bank) <= kFairBank && now.Pitch >= kFairPitchLowest &&
             now.Pitch <= kFairPitchHighest) {
    Voice v = c.voice();
    const bool hard =
        before.VS <= kHardLandingVS || (before.VS < kHardLandingVSLight && !c.link.HeavyAircraft);
    if (hard) {
      PlayAndPurge(v, "EffectHardLanding.WAV", 0, 0);
    } else if (GetFlightTime(f.clocks, now) > kTouchdownSoundAfterSeconds) {
      PlayAndPurge(v, "Touchdown.WAV", 0, 0);
    }
    LandAirportWithoutILSCheck(c);
    f.TouchdownTick = f.TickCount;
    f.HasTouchedDown = true;
  } else {
    Advise(c, Delivery::AtOnce, "WhatDidYouJustHit.WAV", 0, 0, 0, kRed,
           &FlightStats::StrangeTouchdowns);
  }

  f.GroundLatch = 1;
  f.LandingFlareState = 0;
}

}  // namespace vantoro
