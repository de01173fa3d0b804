#include "records/flight_stats.h"

namespace vantoro {

const std::array<CounterColumn, 70>& CounterColumns() {
  using F = FlightStats;
  constexpr int32_t kNone = CounterColumn::kNotAnError;
  constexpr int32_t kEach = 1;
  constexpr int32_t kEveryTenth = 10;
  static const std::array<CounterColumn, 70> kColumns = {{
      {&F::AbnormalSimRateTicks, "SimulationRateNotNormal", kNone},
      {&F::AutoPilotTicks, "APOn", kNone},
      {&F::ExceedBankLeft, "ExceedBankLeft", kEach},
      {&F::ExceedBankRight, "ExceedBankRight", kEach},
      {&F::ExceedGsNegative, "ExceedGsNegative", kEach},
      {&F::ExceedGsPositive, "ExceedGsPositive", kEach},
      {&F::ExceedPitchChange, "ExceedPitchChange", kEach},
      {&F::ExceedBankChange, "ExceedBankChange", kEach},
      {&F::ExceedYawChange, "ExceedYawChange", kNone},
      {&F::ExceedGearDown, "ExceedGearDown", kEach},
      {&F::ExceedFlaps, "ExceedFlaps", kEach},
      {&F::ExceedAerobatic, "ExceedAerobatic", kNone},
      {&F::ExceedVNE, "ExceedVNE", kEach},
      {&F::ExceedStall, "ExceedStall", kEach},
      {&F::Scrapes, "Scrapes", kNone},
      {&F::RoughTurnsOnGround, "RoughTurnsOnGround", kEach},
      {&F::BrakeDuringTakeOff, "BrakeDuringTakeOff", kEach},
      {&F::PoorTakeOffSteering, "PoorTakeOffSteering", kEach},
      {&F::LateRotation, "LateRotation", kEach},
      {&F::FlapsNotUpDuringTaxi, "FlapsNotUpDuringTaxi", kEach},
      {&F::NotTaxiInWindWithElevatorDown, "NotTaxiInWindWithElevatorDown", kEach},
      {&F::NotTaxiInWindWithElevatorUp, "NotTaxiInWindWithElevatorUp", kEach},
      {&F::NotTaxiInWindWithLeftAileronUp, "NotTaxiInWindWithLeftAileronUp", kEach},
      {&F::NotTaxiInWindWithRightAileronUp, "NotTaxiInWindWithRightAileronUp", kEach},
      {&F::TaxiTooFast, "TaxiTooFast", kEach},
      {&F::TaxiWithThrottleAndBrakes, "TaxiWithThrottleAndBrakes", kEach},
      {&F::RideBrakes, "RideBrakes", kEach},
      {&F::TakeOffDescent, "TakeOffDescent", kEach},
      {&F::NotLevelWings, "NotLevelWings", kEach},
      {&F::NotRudderToCoordinateTurns, "NotRudderToCoordinateTurns", kEach},
      {&F::NearStall, "NearStall", kEach},
      {&F::DescentTooFast, "DescentTooFast", kEach},
      {&F::LowerTheNoseTailStrike, "LowerTheNoseTailStrike", kEach},
      {&F::LowerTheNose, "LowerTheNose", kEach},
      {&F::RaiseTheNose, "RaiseTheNose", kEach},
      {&F::NotFlapsForLanding, "NotFlapsForLanding", kEach},
      {&F::TooFastToLand, "TooFastToLand", kEach},
      {&F::TooFastLowNotLanding, "TooFastLowNotLanding", kEach},
      {&F::FlewTooLowOverObstacle, "FlewTooLowOverObstacle", kEach},
      {&F::Ballooning, "Ballooning", kNone},
      {&F::NotUseTrimmers, "NotUseTrimmers", kEveryTenth},
      {&F::PoorGroundSteeringAfterLanding, "PoorGroundSteeringAfterLanding", kNone},
      {&F::StrangeTouchdowns, "StrangeTouchdowns", kNone},
      {&F::CircuitBadHeadingUpWind, "CircuitBadHeadingUpWind", kNone},
      {&F::CircuitBadHeadingCrossWind, "CircuitBadHeadingCrossWind", kNone},
      {&F::CircuitBadHeadingDownWind, "CircuitBadHeadingDownWind", kNone},
      {&F::CircuitBadHeadingBase, "CircuitBadHeadingBase", kNone},
      {&F::CircuitBadHeadingFinal, "CircuitBadHeadingFinal", kNone},
      {&F::CircuitBadAltitudeUpWind, "CircuitBadAltitudeUpWind", kNone},
      {&F::CircuitBadAltitudeCrossWind, "CircuitBadAltitudeCrossWind", kNone},
      {&F::CircuitBadAltitudeDownWind, "CircuitBadAltitudeDownWind", kNone},
      {&F::CircuitBadAltitudeBase, "CircuitBadAltitudeBase", kNone},
      {&F::CircuitBadAltitudeFinal, "CircuitBadAltitudeFinal", kNone},
      {&F::CircuitBadTimingUpWind, "CircuitBadTimingUpWind", kNone},
      {&F::CircuitBadTimingCrossWind, "CircuitBadTimingCrossWind", kNone},
      {&F::CircuitBadTimingDownWind, "CircuitBadTimingDownWind", kNone},
      {&F::CircuitBadTimingBase, "CircuitBadTimingBase", kNone},
      {&F::CircuitBadTimingFinal, "CircuitBadTimingFinal", kNone},
      {&F::CircuitBadBankAngle, "CircuitBadBankAngle", kNone},
      {&F::CircuitDurationUpWind, "CircuitDurationUpWind", kNone},
      {&F::CircuitDurationCrossWind, "CircuitDurationCrossWind", kNone},
      {&F::CircuitDurationDownWind, "CircuitDurationDownWind", kNone},
      {&F::CircuitDurationBase, "CircuitDurationBase", kNone},
      {&F::CircuitDurationFinal, "CircuitDurationFinal", kNone},
      {&F::ApproachGlideslopeRating, "ApproachGlideslopeRating", kNone},
      {&F::ApproachLocalizerRating, "ApproachLocalizerRating", kNone},
      {&F::nonILSApproachGlideslopeRating, "nonILSApproachGlideslopeRating", kNone},
      {&F::nonILSApproachLocalizerRating, "nonILSApproachLocalizerRating", kNone},
      {&F::FlightDuration, "FlightDuration", kNone},
      {&F::BlockTime, "Block Time", kNone},
  }};
  return kColumns;
}

std::string_view CounterName(FlightCounter field) {
  for (const CounterColumn& c : CounterColumns())
    if (c.field == field) return c.column;
  return {};
}

void Count(FlightStats& flight, FlightCounter field, Events& events, int32_t tick) {
  SetCount(flight, field, flight.*field + 1, events, tick);
}

void SetCount(FlightStats& flight, FlightCounter field, int32_t value, Events& events,
              int32_t tick) {
  if (flight.*field == value) return;
  flight.*field = value;
  events.Emit(tick, "count", {{"name", CounterName(field)}, {"value", value}});
}

int32_t FlightPPScore(const FlightStats& f) {
  int32_t errors = 0;
  for (const CounterColumn& c : CounterColumns())
    if (c.errorShare != CounterColumn::kNotAnError) errors += f.*c.field / c.errorShare;
  return errors;
}

}  // namespace vantoro
