#include "records/flight_stats.h"

#include <cmath>

namespace vantoro {

const std::array<CounterColumn, 70>& CounterColumns() {
  using F = FlightStats;
  static const std::array<CounterColumn, 70> kColumns = {{
      {&F::AbnormalSimRateTicks, "SimulationRateNotNormal"},
      {&F::AutoPilotTicks, "APOn"},
      {&F::ExceedBankLeft, "ExceedBankLeft"},
      {&F::ExceedBankRight, "ExceedBankRight"},
      {&F::ExceedGsNegative, "ExceedGsNegative"},
      {&F::ExceedGsPositive, "ExceedGsPositive"},
      {&F::ExceedPitchChange, "ExceedPitchChange"},
      {&F::ExceedBankChange, "ExceedBankChange"},
      {&F::ExceedYawChange, "ExceedYawChange"},
      {&F::ExceedGearDown, "ExceedGearDown"},
      {&F::ExceedFlaps, "ExceedFlaps"},
      {&F::ExceedAerobatic, "ExceedAerobatic"},
      {&F::ExceedVNE, "ExceedVNE"},
      {&F::ExceedStall, "ExceedStall"},
      {&F::Scrapes, "Scrapes"},
      {&F::RoughTurnsOnGround, "RoughTurnsOnGround"},
      {&F::BrakeDuringTakeOff, "BrakeDuringTakeOff"},
      {&F::PoorTakeOffSteering, "PoorTakeOffSteering"},
      {&F::LateRotation, "LateRotation"},
      {&F::FlapsNotUpDuringTaxi, "FlapsNotUpDuringTaxi"},
      {&F::NotTaxiInWindWithElevatorDown, "NotTaxiInWindWithElevatorDown"},
      {&F::NotTaxiInWindWithElevatorUp, "NotTaxiInWindWithElevatorUp"},
      {&F::NotTaxiInWindWithLeftAileronUp, "NotTaxiInWindWithLeftAileronUp"},
      {&F::NotTaxiInWindWithRightAileronUp, "NotTaxiInWindWithRightAileronUp"},
      {&F::TaxiTooFast, "TaxiTooFast"},
      {&F::TaxiWithThrottleAndBrakes, "TaxiWithThrottleAndBrakes"},
      {&F::RideBrakes, "RideBrakes"},
      {&F::TakeOffDescent, "TakeOffDescent"},
      {&F::NotLevelWings, "NotLevelWings"},
      {&F::NotRudderToCoordinateTurns, "NotRudderToCoordinateTurns"},
      {&F::NearStall, "NearStall"},
      {&F::DescentTooFast, "DescentTooFast"},
      {&F::LowerTheNoseTailStrike, "LowerTheNoseTailStrike"},
      {&F::LowerTheNose, "LowerTheNose"},
      {&F::RaiseTheNose, "RaiseTheNose"},
      {&F::NotFlapsForLanding, "NotFlapsForLanding"},
      {&F::TooFastToLand, "TooFastToLand"},
      {&F::TooFastLowNotLanding, "TooFastLowNotLanding"},
      {&F::FlewTooLowOverObstacle, "FlewTooLowOverObstacle"},
      {&F::Ballooning, "Ballooning"},
      {&F::NotUseTrimmers, "NotUseTrimmers"},
      {&F::PoorGroundSteeringAfterLanding, "PoorGroundSteeringAfterLanding"},
      {&F::StrangeTouchdowns, "StrangeTouchdowns"},
      {&F::CircuitBadHeadingUpWind, "CircuitBadHeadingUpWind"},
      {&F::CircuitBadHeadingCrossWind, "CircuitBadHeadingCrossWind"},
      {&F::CircuitBadHeadingDownWind, "CircuitBadHeadingDownWind"},
      {&F::CircuitBadHeadingBase, "CircuitBadHeadingBase"},
      {&F::CircuitBadHeadingFinal, "CircuitBadHeadingFinal"},
      {&F::CircuitBadAltitudeUpWind, "CircuitBadAltitudeUpWind"},
      {&F::CircuitBadAltitudeCrossWind, "CircuitBadAltitudeCrossWind"},
      {&F::CircuitBadAltitudeDownWind, "CircuitBadAltitudeDownWind"},
      {&F::CircuitBadAltitudeBase, "CircuitBadAltitudeBase"},
      {&F::CircuitBadAltitudeFinal, "CircuitBadAltitudeFinal"},
      {&F::CircuitBadTimingUpWind, "CircuitBadTimingUpWind"},
      {&F::CircuitBadTimingCrossWind, "CircuitBadTimingCrossWind"},
      {&F::CircuitBadTimingDownWind, "CircuitBadTimingDownWind"},
      {&F::CircuitBadTimingBase, "CircuitBadTimingBase"},
      {&F::CircuitBadTimingFinal, "CircuitBadTimingFinal"},
      {&F::CircuitBadBankAngle, "CircuitBadBankAngle"},
      {&F::CircuitDurationUpWind, "CircuitDurationUpWind"},
      {&F::CircuitDurationCrossWind, "CircuitDurationCrossWind"},
      {&F::CircuitDurationDownWind, "CircuitDurationDownWind"},
      {&F::CircuitDurationBase, "CircuitDurationBase"},
      {&F::CircuitDurationFinal, "CircuitDurationFinal"},
      {&F::ApproachGlideslopeRating, "ApproachGlideslopeRating"},
      {&F::ApproachLocalizerRating, "ApproachLocalizerRating"},
      {&F::nonILSApproachGlideslopeRating, "nonILSApproachGlideslopeRating"},
      {&F::nonILSApproachLocalizerRating, "nonILSApproachLocalizerRating"},
      {&F::FlightDuration, "FlightDuration"},
      {&F::BlockTime, "Block Time"},
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
  return f.ExceedBankLeft + f.ExceedBankRight + f.ExceedGsNegative + f.ExceedGsPositive +
         f.ExceedPitchChange + f.ExceedBankChange + f.ExceedGearDown + f.ExceedFlaps + f.ExceedVNE +
         f.ExceedStall + f.RoughTurnsOnGround + f.BrakeDuringTakeOff + f.PoorTakeOffSteering +
         f.LateRotation + f.FlapsNotUpDuringTaxi + f.NotTaxiInWindWithElevatorDown +
         f.NotTaxiInWindWithElevatorUp + f.NotTaxiInWindWithLeftAileronUp +
         f.NotTaxiInWindWithRightAileronUp + f.TaxiTooFast + f.TaxiWithThrottleAndBrakes +
         f.RideBrakes + f.TakeOffDescent + f.NotLevelWings + f.NotRudderToCoordinateTurns +
         f.NearStall + f.DescentTooFast + f.LowerTheNoseTailStrike + f.LowerTheNose +
         f.RaiseTheNose + f.NotFlapsForLanding + f.TooFastToLand + f.TooFastLowNotLanding +
         f.FlewTooLowOverObstacle + static_cast<int32_t>(std::floor(f.NotUseTrimmers / 10.0));
}

}  // namespace vantoro
