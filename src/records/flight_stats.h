// The per-flight record of counters and results: one row of the pilot's
// flight log. Counter fields are named as the rules name them; where the log
// column has another name (AbnormalSimRateTicks is "SimulationRateNotNormal",
// AutoPilotTicks is "APOn", FlightCrashed is "Crashed") the column table says so.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "base/events.h"

namespace vantoro {

struct FlightStats {
  // Counters of the tick, in the record's order.
  int32_t AbnormalSimRateTicks = 0;  // ticks with the simulation rate not normal
  int32_t AutoPilotTicks = 0;        // ticks with the autopilot on outside its bands
  int32_t ExceedBankLeft = 0;
  int32_t ExceedBankRight = 0;
  int32_t ExceedGsNegative = 0;
  int32_t ExceedGsPositive = 0;
  int32_t ExceedPitchChange = 0;
  int32_t ExceedBankChange = 0;
  int32_t ExceedYawChange = 0;
  int32_t ExceedGearDown = 0;
  int32_t ExceedFlaps = 0;
  int32_t ExceedAerobatic = 0;
  int32_t ExceedVNE = 0;
  int32_t ExceedStall = 0;
  int32_t Scrapes = 0;

  // Ground and take-off.
  int32_t RoughTurnsOnGround = 0;
  int32_t BrakeDuringTakeOff = 0;
  int32_t PoorTakeOffSteering = 0;
  int32_t LateRotation = 0;
  int32_t FlapsNotUpDuringTaxi = 0;
  int32_t NotTaxiInWindWithElevatorDown = 0;
  int32_t NotTaxiInWindWithElevatorUp = 0;
  int32_t NotTaxiInWindWithLeftAileronUp = 0;
  int32_t NotTaxiInWindWithRightAileronUp = 0;
  int32_t TaxiTooFast = 0;
  int32_t TaxiWithThrottleAndBrakes = 0;
  int32_t RideBrakes = 0;
  int32_t TakeOffDescent = 0;
  // Flight and approach.
  int32_t NotLevelWings = 0;
  int32_t NotRudderToCoordinateTurns = 0;
  int32_t NearStall = 0;
  int32_t DescentTooFast = 0;
  int32_t LowerTheNoseTailStrike = 0;
  int32_t LowerTheNose = 0;
  int32_t RaiseTheNose = 0;
  int32_t NotFlapsForLanding = 0;
  int32_t TooFastToLand = 0;
  int32_t TooFastLowNotLanding = 0;
  int32_t FlewTooLowOverObstacle = 0;
  int32_t Ballooning = 0;
  int32_t NotUseTrimmers = 0;  // ticks; the scores use a tenth of it
  int32_t PoorGroundSteeringAfterLanding = 0;
  int32_t StrangeTouchdowns = 0;

  // Circuit training.
  int32_t CircuitBadHeadingUpWind = 0;
  int32_t CircuitBadHeadingCrossWind = 0;
  int32_t CircuitBadHeadingDownWind = 0;
  int32_t CircuitBadHeadingBase = 0;
  int32_t CircuitBadHeadingFinal = 0;
  int32_t CircuitBadAltitudeUpWind = 0;
  int32_t CircuitBadAltitudeCrossWind = 0;
  int32_t CircuitBadAltitudeDownWind = 0;
  int32_t CircuitBadAltitudeBase = 0;
  int32_t CircuitBadAltitudeFinal = 0;
  int32_t CircuitBadTimingUpWind = 0;
  int32_t CircuitBadTimingCrossWind = 0;
  int32_t CircuitBadTimingDownWind = 0;
  int32_t CircuitBadTimingBase = 0;
  int32_t CircuitBadTimingFinal = 0;
  int32_t CircuitBadBankAngle = 0;
  int32_t CircuitDurationUpWind = 0;
  int32_t CircuitDurationCrossWind = 0;
  int32_t CircuitDurationDownWind = 0;
  int32_t CircuitDurationBase = 0;
  int32_t CircuitDurationFinal = 0;

  // The run-up of the piston engines: each engine's magneto check ended
  // at run-up power, then all of them. RunUpStarted: a magneto check has
  // begun, or the after-start list was read, so the run-up comes next.
  std::array<bool, 4> RunUpEngine{};
  bool RunUpDone = false;
  bool RunUpStarted = false;

  // Results.
  bool FlightCrashed = false;
  bool TookOff = false;
  bool LandingHasReachedEvaluationStage = false;
  double LandingRating = 0;
  int32_t ApproachGlideslopeRating = 0;
  int32_t ApproachLocalizerRating = 0;
  int32_t nonILSApproachGlideslopeRating = 0;
  int32_t nonILSApproachLocalizerRating = 0;
  std::string Aircraft;  // title as chosen at the start of the flight
  int32_t FlightDuration = 0;
  double FlightDistance = 0;  // knots summed over airborne ticks
  double DistanceFromNonILSNumbers = 0;
  double DistanceBeyondThreshold = 0;
  bool LandedOnRunwaySurface = false;
  double LandingScore = 0;
  double FlightScore = 0;
  double CircuitScore = 0;
  double Day = 0;    // seconds by day, steps of 0.5
  double Night = 0;  // seconds at night
  double Inst = 0;   // seconds under instrument conditions
  int32_t BlockTime = 0;

  // How long each of the sixteen instrument failures (in the order of the
  // simulator's failure bytes) has been active this flight, in ticks: the
  // failure timers advance it twice a second, so seconds are half of it.
  std::array<int32_t, 16> FailureSeconds{};
};

inline constexpr int kFlightTableSize = 201;  // flights 0..200

// A counter field of FlightStats: its flight-log column name (the name the
// "count" event gives too) and its share in the flight's pilot errors
// (FlightPPScore): none, each count, or every tenth count (NotUseTrimmers
// counts ticks).
using FlightCounter = int32_t FlightStats::*;
struct CounterColumn {
  static constexpr int32_t kNotAnError = 0;
  FlightCounter field;
  const char* column;
  int32_t errorShare;  // kNotAnError, or the counts that make one error
};

// Every counter of the record, in the log's order: a new counter is a field
// of FlightStats and one row here.
const std::array<CounterColumn, 70>& CounterColumns();
// The log column name of a counter field ("" for one outside the table).
std::string_view CounterName(FlightCounter field);

// Adds 1 to a counter of the current flight and tells the observers.
void Count(FlightStats& flight, FlightCounter field, Events& events, int32_t tick);
// Sets a counter to a value and tells the observers when it changed.
void SetCount(FlightStats& flight, FlightCounter field, int32_t value, Events& events,
              int32_t tick);

// The number of pilot errors of the flight so far.
int32_t FlightPPScore(const FlightStats& f);

}  // namespace vantoro
