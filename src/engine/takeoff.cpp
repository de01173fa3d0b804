// The ground part of the tick up to the taxi rules: the end of a landed flight
// as the pilot chose it, the entries into take-off and taxi, the steering of
// the roll-out, and the rules of every ground tick: turns, reverse thrust,
// the touch-and-go, spoilers, and the take-off roll up to rotation.
#include <cstdio>
#include <cstdlib>
#include <string>

#include "engine/end_flight.h"
#include "engine/ground.h"
#include "engine/tick_rules.h"
#include "records/flight_stats.h"
#include "voice/phrases.h"
#include "world/runway_queries.h"

namespace vantoro {

namespace {

// Failure byte of the engines.
constexpr size_t kFailEngine = 0x0B6B - kFailFlagsOffset;

// A jet's fuel lever (read as engine 1's mixture) at or above this is not cut off.
constexpr int32_t kJetFuelLeverOpen = 500;

// The entry into take-off.
constexpr int32_t kTailWindDegrees = 90;  // wind from further off the nose than this
constexpr int32_t kLightWindKnots = 4;    // wind at or below this does not matter
constexpr int kTakeOffTextSeconds = 5;

// The roll-out after a touchdown keeps within this of NAV1's course.
constexpr int32_t kRollOutCourseDegrees = 4;

// Gentle turns on the ground.
constexpr int32_t kTurnsFromGS = 10;
constexpr int32_t kRoughTurnSlip = 120;
constexpr int32_t kAmberTurnSlip = 110;

// Reverse thrust: below this speed it should be off. The throttle word reads
// above kReverseThrottle in the reverse range.
constexpr int32_t kReverseOffBelowGS = 57;
constexpr int32_t kReverseThrottle = 60000;

// A touch-and-go: power between these, accelerating, fast.
constexpr double kTouchAndGoAcceleration = 0.25;  // knots a tick
constexpr int32_t kTouchAndGoThrottleLow = 12000;
constexpr int32_t kTouchAndGoThrottleHigh = 17000;
constexpr int32_t kTouchAndGoGS = 40;
// Power back below this ends the touch-and-go.
constexpr int32_t kTouchAndGoOverThrottle = 6000;

// Spoilers out.
constexpr int32_t kSpoilerLever = 1000;

// Braking on the take-off roll: slowing by more than this a tick.
constexpr int32_t kTakeOffBrakingGS = 1;

// Steering on the take-off roll.
constexpr int32_t kSteeringFromGS = 3;
constexpr int32_t kPoorSteeringDegrees = 6;
constexpr int32_t kAmberSteeringDegrees = 4;

// Rotation: the clean stall speed times these, with the nose not yet rising.
constexpr double kLateRotationFactor = 1.15;
constexpr double kAmberRotationFactor = 1.05;
constexpr int32_t kRisingPitchDegrees = 1;

// The CRJ700's take-off speeds; the other jets' come from the stall speed.
constexpr TakeOffSpeeds kCRJ700Speeds{124, 127, 138};
constexpr int32_t kV1BelowStall = 5;
constexpr int32_t kVrBelowStall = 3;
constexpr int32_t kV2AboveStall = 4;

// No engine firing; a jet's fuel lever must be cut off as well.
bool ShutDown(const AircraftValues& a, const FSData& now) {
  if (EnginesFiring(now) > 0) return false;
  return !(a.IsJet() && now.Eng1MixtureLever >= kJetFuelLeverOpen);
}

// "Wind.wav" and "Calm.wav", or the direction in three digits (north said
// "360"), "At.wav" and the speed in digits.
void SayWind(Voice& v, const FSData& now) {
  PlayAlways(v, "Wind.wav");
  if (now.SurfaceWindSpeed == 0) {
    PlayAlways(v, "Calm.wav");
    return;
  }
  const int32_t direction = now.SurfaceWindDirection == 0 ? 360 : now.SurfaceWindDirection;
  char digits[16];
  std::snprintf(digits, sizeof digits, "%03d", static_cast<int>(direction));
  PlayStringPhoneticallyAlways(v, digits);
  PlayAlways(v, "At.wav");
  PlayStringPhoneticallyAlways(v, std::to_string(now.SurfaceWindSpeed));
}

}  // namespace

void VSpeeds(const AircraftValues& a, TakeOffSpeeds& speeds) {
  TakeOffSpeeds figures{a.StallCruise - kV1BelowStall, a.StallCruise - kVrBelowStall,
                        a.StallCruise + kV2AboveStall};
  if (a.IsType(AircraftType::CRJ700)) figures = kCRJ700Speeds;
  if (speeds.V1 == 0) speeds.V1 = figures.V1;
  if (speeds.Vr == 0) speeds.Vr = figures.Vr;
  if (speeds.V2 == 0) speeds.V2 = figures.V2;
}

void EndFlightAsChosen(Cockpit& c) {
  const FlightState& f = c.flight;
  if (!f.HasTouchedDown) return;
  const FSData& now = c.link.Now();
  const bool stopped = now.GS == 0;
  bool end = false;
  switch (c.options.EndFlightWhen) {
    case kEndFlightWhenShutDown:
      end = stopped && now.ParkingBrake && ShutDown(c.aircraft, now);
      break;
    case kEndFlightWhenBrakeSet:
      end = stopped && now.ParkingBrake;
      break;
    default:
      end = stopped || (f.Modes.Taxiing && !f.PreviousModes.Taxiing);
      break;
  }
  if (end) EndFlight(c);
}

void EntryIntoTakeOff(Cockpit& c) {
  FlightState& f = c.flight;
  if (!f.Modes.TakeOff || f.PreviousModes.TakeOff) return;
  const FSData& now = c.link.Now();

  if (std::abs(now.WindRelativeToHeading) > kTailWindDegrees && now.WindSpeed > kLightWindKnots)
    GiveAdvice(c, "NotFacingIntoWind.wav", 95, 30, 16, 1);

  Voice v = c.voice();
  PlayAlways(v, "TakeOff.wav");
  DisplayVoiceIfWanted("OK - You've finished taxiing and are about to take off.",
                       kTakeOffTextSeconds);

  FillCloseRunways(c.world, now.Latitude, now.Longitude);
  if (!c.world.CloseRunways.empty()) {
    const Runway* nearest =
        FindClosestRunway(c.world, now.Latitude, now.Longitude, kNoLimit, kNoLimit, true);
    if (nearest != nullptr) SayRunwayNameAlways(v, nearest->Number);
  }

  if (c.options.TeachingOn)
    PlayAlwaysRoot(v, c.link.HeavyAircraft ? "TeachTOGA.wav" : "TeachLightTakeOffPower.wav");

  if (c.aircraft.WantJet()) VSpeeds(c.aircraft, f.Ground.Speeds);

  f.Ground.TakeOffHeading = now.Heading;
  SayVisibility(v, now);
  SayWind(v, now);
}

void SteeringAfterTouchdown(Cockpit& c) {
  const FlightState& f = c.flight;
  const FSData& now = c.link.Now();
  if (f.HasTouchedDown && !f.Modes.Taxiing &&
      std::abs(RelativeBearing(now.Nav1OBS, now.Heading)) > kRollOutCourseDegrees) {
    CountTick(c, &FlightStats::PoorGroundSteeringAfterLanding);
  }
}

void EntryIntoTaxi(Cockpit& c) {
  const FlightState& f = c.flight;
  if (!f.Modes.Taxiing || f.PreviousModes.Taxiing) return;
  Voice v = c.voice();
  PlayPerhaps(v, "Taxiing.wav", 6, 30, 4);
}

void GroundRules(Cockpit& c) {
  FlightState& f = c.flight;
  const FSData& now = c.link.Now();
  const FSData& before = c.link.Before();
  const AircraftValues& a = c.aircraft;
  const bool heavy = c.link.HeavyAircraft;
  const bool engineFailed = now.FailFlags[kFailEngine];

  // 1. Gentle turns.
  if (now.GS > kTurnsFromGS) {
    if (std::abs(now.Slip) > kRoughTurnSlip) {
      GiveAdvice(c, "GentleTurnsOnGround.wav", 8, 30, 4, 2, &FlightStats::RoughTurnsOnGround);
    } else if (std::abs(now.Slip) > kAmberTurnSlip) {
      GiveAdvice(c, "AmberGentleTurnsOnGround.wav", 8, 30, 4, 1);
    }
  }

  // 2. Reverse thrust off once slow.
  if (!a.IsType(AircraftType::KingAir350) && heavy && now.GS < kReverseOffBelowGS &&
      now.Eng1Throttle > kReverseThrottle) {
    GiveAdvice(c, "ReverseThrustOffPlease.wav", 100, 30, 4, 1);
  }

  // 3. A touch-and-go closes the flight record; the mode stays as it is.
  if (!engineFailed && !heavy && f.Modes.Landing && !f.GoAroundEndFlight &&
      now.GS - before.GS > kTouchAndGoAcceleration && now.Eng1Throttle > kTouchAndGoThrottleLow &&
      now.Eng1Throttle < kTouchAndGoThrottleHigh && now.GS > kTouchAndGoGS && f.HasTouchedDown) {
    f.GoAroundEndFlight = true;
    f.TouchAndGoInProgress = true;
    EndFlight(c);
    f.TouchAndGoInProgress = false;
  }

  // 4. Power off ends the touch-and-go.
  if (!heavy && now.Eng1Throttle < kTouchAndGoOverThrottle) f.GoAroundEndFlight = false;

  // 5. Spoilers in for the taxi and the take-off.
  if ((f.Modes.TakeOff || f.Modes.Taxiing) && !a.IsType(AircraftType::TwinOtter) &&
      !a.IsType(AircraftType::C208B) && !a.IsType(AircraftType::DC3) &&
      !a.IsType(AircraftType::C182) &&
      (now.SpoilersControl > kSpoilerLever || (now.SpoilerLeft && now.SpoilerRight))) {
    GiveAdvice(c, "RetractSpoilers.wav", 13, 30, 4, 1);
  }

  if (!f.Modes.TakeOff) return;

  // 6. Braking on the take-off roll.
  if (now.Brake && before.GS - now.GS > kTakeOffBrakingGS) {
    GiveAdvice(c, "WhyBrakeDuringTakeOff.wav", 12, 30, 4, 2, &FlightStats::BrakeDuringTakeOff);
  }

  // The aircraft's own take-off calls (80 knots, V1, rotate, V2) run here
  // (aircraft procedures).

  // 7. Keeping the take-off heading.
  if (now.GS > kSteeringFromGS) {
    const int32_t off = std::abs(RelativeBearing(f.Ground.TakeOffHeading, now.Heading));
    if (off > kPoorSteeringDegrees) {
      GiveAdvice(c, "PoorTakeOffSteering.wav", 13, 30, 4, 2, &FlightStats::PoorTakeOffSteering);
    } else if (off > kAmberSteeringDegrees) {
      GiveAdvice(c, "AmberPoorTakeOffSteering.wav", 13, 30, 4, 1);
    }
  }

  // 8. Rotation, when no rotate speed is known.
  const bool noseNotRising = now.Pitch - before.Pitch <= kRisingPitchDegrees;
  if (f.Ground.Speeds.Vr <= 0 && noseNotRising && now.OnGround > 0) {
    if (now.IAS > a.StallCruise * kLateRotationFactor) {
      GiveAdvice(c, "OKLetsRotate.wav", 109, 30, 4, 2, &FlightStats::LateRotation);
    } else if (now.IAS > a.StallCruise * kAmberRotationFactor) {
      GiveAdvice(c, "AmberOKLetsRotate.wav", 106, 30, 4, 1);
    }
  }
}

}  // namespace vantoro
