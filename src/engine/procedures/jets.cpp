// The Boeing 737 set and what the other jets, the Twin Otter and the DC3
// share of it: the systems from start to stop (signs, lights, hydraulics,
// fuel pumps and crossfeed, anti-ice, auto brakes, generators), the take-off
// limits, the take-off roll and the flight. The rules are those of the 737;
// each type brings its own figures and recordings, and a rule whose type has
// no recording of it does not apply to that type.
#include <algorithm>
#include <cstdlib>

#include "base/numbers.h"
#include "engine/procedures/procedure_rules.h"
#include "link/simlink.h"
#include "world/flight_plan.h"

namespace vantoro::procedures {

namespace {

// The recordings of one type, by rule; nullptr where the type has no such rule.
struct JetPhrases {
  const char* MaxAlt = nullptr;
  const char* MaxAltOneEngine = nullptr;
  const char* MaxAltFlaps = nullptr;
  const char* PanelOff = nullptr;
  const char* PanelOn = nullptr;
  const char* HydraulicPumpsOff = nullptr;
  const char* HydraulicPumpsOn = nullptr;
  const char* NoSmokingOn = nullptr;
  const char* AutoThrottleOff = nullptr;
  const char* AutoThrottleOn = nullptr;
  const char* FDOff = nullptr;
  const char* FDOn = nullptr;
  const char* FuelControlLeversOff = nullptr;
  const char* SeatbeltsOff = nullptr;
  const char* SeatbeltsOn = nullptr;
  const char* SeatbeltsAsRequired = nullptr;
  const char* APURestartTooSoon = nullptr;
  const char* FPWarningRunwayWidth = nullptr;
  const char* FPWarningRunwayLength = nullptr;
  const char* FPWarningRunwaySurfaceType = nullptr;
  const char* ParkingBrakesOff = nullptr;
  const char* IASOver250Below10000MSL = nullptr;
  const char* SpeedBrakeUpBelow1000 = nullptr;
  const char* SpeedBrakeUpOver320KIAS = nullptr;
  const char* PitotHeatOn = nullptr;
  const char* PitotHeatOff = nullptr;
  const char* FuelPumpOff = nullptr;
  const char* CrossfeedOff = nullptr;
  const char* FuelPumpLeftOffRightOnCrossOpen = nullptr;
  const char* FuelPumpLeftOnRightOffCrossOpen = nullptr;
  const char* FuelPumpLeftOff = nullptr;
  const char* FuelPumpRightOff = nullptr;
  const char* FuelPumpOn = nullptr;
  const char* FuelPumpLeftOn = nullptr;
  const char* FuelPumpRightOn = nullptr;
  const char* WingAntiIceGroundOff = nullptr;
  const char* EngineAntiIceOff = nullptr;
  const char* EngineAntiIceOn = nullptr;
  const char* EngineAntiIceWarmOff = nullptr;
  const char* WingAntiIceAirOn = nullptr;
  const char* WingAntiIceAirOff = nullptr;
  const char* EngineAntiIceNotRunningOff = nullptr;
  const char* AutoBrakeOff = nullptr;
  const char* AutoBrakeNotRTO = nullptr;
  const char* AutoBrakeSet = nullptr;
  const char* AutoBrakeOffShort = nullptr;
  const char* CheckOilPressure = nullptr;
  const char* TakeOffFlapsTooLittle = nullptr;
  const char* TakeOffFlapsTooMuch = nullptr;
  const char* WeightExceedsMaxTaxi = nullptr;
  const char* WeightExceedsMTOW = nullptr;
  const char* TakeOffTrim = nullptr;
  const char* N1Spool = nullptr;
  const char* ParkingBrakeOnWhenSpoolingUp = nullptr;
  const char* APOff = nullptr;
  const char* APALTSetForTO = nullptr;
  const char* APHEADSetForTO = nullptr;
  const char* APIASSetForTO = nullptr;
  const char* YawDamperOn = nullptr;
  const char* APUOff = nullptr;
  const char* TakeOffThrottle = nullptr;
  const char* RotationSpeed = nullptr;
  const char* RetractedFlapsTooSoon = nullptr;
  const char* StartFlapRetract = nullptr;
  const char* IAS250Below10000MSL = nullptr;
  const char* APOn = nullptr;
  const char* EngageMCPSpeed = nullptr;
  const char* EngageMCPAltitude = nullptr;
  const char* EngageMCPHeading = nullptr;
  const char* FlapsUp = nullptr;
  const char* ApproachingMinimums = nullptr;
  const char* Minimums = nullptr;
  const char* APOffBelow50 = nullptr;
  const char* APOffNoILS = nullptr;
  const char* FlareAdvice = nullptr;
  const char* FlareAdvicePitch = nullptr;
  const char* LandingWeightTooHeavy = nullptr;
  const char* ArmTheSpoilers = nullptr;
  const char* FuelPumpsOn = nullptr;
  const char* PropellerAntiIceGroundOff = nullptr;
  const char* EngineAntiIceOnOtter = nullptr;  // in icing conditions in the air
};
constexpr JetPhrases k737Phrases = {
    .MaxAlt = "b737\\MaxAlt.wav",
    .MaxAltFlaps = "b737\\MaxAltFlaps.wav",
    .PanelOff = "b737\\PanelOff.wav",
    .PanelOn = "b737\\PanelOn.wav",
    .HydraulicPumpsOff = "b737\\HydraulicPumpsOff.wav",
    .HydraulicPumpsOn = "b737\\HydraulicPumpsOn.wav",
    .NoSmokingOn = "b737\\NoSmokingOn.wav",
    .AutoThrottleOff = "b737\\AutoThrottleOff.wav",
    .AutoThrottleOn = "b737\\AutoThrottleOn.wav",
    .FDOff = "b737\\FDOff.wav",
    .FDOn = "b737\\FDOn.wav",
    .FuelControlLeversOff = "b737\\FuelControlLeversOff.wav",
    .SeatbeltsOff = "b737\\SeatbeltsOff.wav",
    .SeatbeltsOn = "b737\\SeatbeltsOn.wav",
    .SeatbeltsAsRequired = "b737\\SeatbeltsAsRequired.wav",
    .APURestartTooSoon = "b737\\APURestartTooSoon.wav",
    .FPWarningRunwayWidth = "b737\\FPWarningRunwayWidth.wav",
    .FPWarningRunwayLength = "b737\\FPWarningRunwayLength.wav",
    .FPWarningRunwaySurfaceType = "b737\\FPWarningRunwaySurfaceType.wav",
    .ParkingBrakesOff = "b737\\ParkingBrakesOff.wav",
    .IASOver250Below10000MSL = "b737\\IASOver250Below10000MSL.wav",
    .SpeedBrakeUpBelow1000 = "b737\\SpeedBrakeUpBelow1000.wav",
    .SpeedBrakeUpOver320KIAS = "b737\\SpeedBrakeUpOver320KIAS.wav",
    .PitotHeatOn = "b737\\PitotHeatOn.wav",
    .PitotHeatOff = "b737\\PitotHeatOff.wav",
    .FuelPumpOff = "b737\\FuelPumpOff.wav",
    .CrossfeedOff = "b737\\CrossfeedOff.wav",
    .FuelPumpLeftOffRightOnCrossOpen = "b737\\FuelPumpLeftOffRightOnCrossOpen.wav",
    .FuelPumpLeftOnRightOffCrossOpen = "b737\\FuelPumpLeftOnRightOffCrossOpen.wav",
    .FuelPumpLeftOff = "b737\\FuelPumpLeftOff.wav",
    .FuelPumpRightOff = "b737\\FuelPumpRightOff.wav",
    .FuelPumpOn = "b737\\FuelPumpOn.wav",
    .FuelPumpLeftOn = "b737\\FuelPumpLeftOn.wav",
    .FuelPumpRightOn = "b737\\FuelPumpRightOn.wav",
    .WingAntiIceGroundOff = "b737\\WingAntiIceGroundOff.wav",
    .EngineAntiIceOff = "b737\\EngineAntiIceOff.wav",
    .EngineAntiIceOn = "b737\\EngineAntiIceOn.wav",
    .EngineAntiIceWarmOff = "b737\\EngineAntiIceWarmOff.wav",
    .WingAntiIceAirOn = "b737\\WingAntiIceAirOn.wav",
    .WingAntiIceAirOff = "b737\\WingAntiIceAirOff.wav",
    .EngineAntiIceNotRunningOff = "b737\\EngineAntiIceNotRunningOff.wav",
    .AutoBrakeOff = "b737\\AutoBrakeOff.wav",
    .AutoBrakeNotRTO = "b737\\AutoBrakeNotRTO.wav",
    .AutoBrakeSet = "b737\\AutoBrakeSet.wav",
    .AutoBrakeOffShort = "b737\\AutoBrakeOffShort.wav",
    .CheckOilPressure = "b737\\CheckOilPressure.wav",
    .TakeOffFlapsTooLittle = "b737\\TakeOffFlapsTooLittle.wav",
    .TakeOffFlapsTooMuch = "b737\\TakeOffFlapsTooMuch.wav",
    .WeightExceedsMaxTaxi = "b737\\WeightExceedsMaxTaxi.wav",
    .WeightExceedsMTOW = "b737\\WeightExceedsMTOW.wav",
    .TakeOffTrim = "b737\\TakeOffTrim.wav",
    .N1Spool = "b737\\N1SpoolTo40ThenBrakesOff.wav",
    .ParkingBrakeOnWhenSpoolingUp = "b737\\ParkingBrakeOnWhenSpoolingUp.wav",
    .APOff = "b737\\APOff.wav",
    .APALTSetForTO = "b737\\APALTSetForTO.wav",
    .APHEADSetForTO = "b737\\APHEADSetForTO.wav",
    .APIASSetForTO = "b737\\APIASSetForTO.wav",
    .YawDamperOn = "b737\\YawDamperOn.wav",
    .APUOff = "b737\\APUOff.wav",
    .TakeOffThrottle = "b737\\TakeOffThrottle.wav",
    .RotationSpeed = "b737\\RotationSpeed.wav",
    .RetractedFlapsTooSoon = "b737\\RetractedFlapsTooSoon.wav",
    .StartFlapRetract = "b737\\StartFlapRetract.wav",
    .IAS250Below10000MSL = "b737\\IAS250Below10000MSL.wav",
    .APOn = "b737\\APOn.wav",
    .EngageMCPSpeed = "b737\\EngageMCPSpeed.wav",
    .EngageMCPAltitude = "b737\\EngageMCPAltitude.wav",
    .EngageMCPHeading = "b737\\EngageMCPHeading.wav",
    .FlapsUp = "b737\\FlapsUp.wav",
    .ApproachingMinimums = "b737\\ApproachingMinimums.wav",
    .Minimums = "b737\\Minimums.wav",
    .APOffBelow50 = "b737\\APOffBelow50.wav",
    .APOffNoILS = "b737\\APOffNoILS.wav",
    .FlareAdvice = "b737\\FlareAdvice.wav",
    .FlareAdvicePitch = "b737\\FlareAdvicePitch.wav",
    .LandingWeightTooHeavy = "b737\\LandingWeightTooHeavy.wav",
    .ArmTheSpoilers = "b737\\ArmTheSpoilers.wav",
};
constexpr JetPhrases k757Phrases = {
    .MaxAlt = "b757\\MaxAlt.wav",
    .MaxAltFlaps = "b757\\MaxAltFlaps.wav",
    .PanelOff = "b757\\PanelOff.wav",
    .PanelOn = "b757\\PanelOn.wav",
    .HydraulicPumpsOff = "b757\\HydraulicPumpsOff.wav",
    .HydraulicPumpsOn = "b757\\HydraulicPumpsOn.wav",
    .NoSmokingOn = "b757\\NoSmokingOn.wav",
    .AutoThrottleOff = "b757\\AutoThrottleOff.wav",
    .AutoThrottleOn = "b757\\AutoThrottleOn.wav",
    .FDOff = "b757\\FDOff.wav",
    .FDOn = "b757\\FDOn.wav",
    .FuelControlLeversOff = "b757\\FuelControlLeversOff.wav",
    .SeatbeltsOff = "b757\\SeatbeltsOff.wav",
    .SeatbeltsOn = "b757\\SeatbeltsOn.wav",
    .SeatbeltsAsRequired = "b757\\SeatbeltsAsRequired.wav",
    .APURestartTooSoon = "b757\\APURestartTooSoon.wav",
    .FPWarningRunwayWidth = "b757\\FPWarningRunwayWidth.wav",
    .FPWarningRunwayLength = "b757\\FPWarningRunwayLength.wav",
    .FPWarningRunwaySurfaceType = "b757\\FPWarningRunwaySurfaceType.wav",
    .ParkingBrakesOff = "b757\\ParkingBrakesOff.wav",
    .IASOver250Below10000MSL = "b757\\IASOver250Below10000MSL.wav",
    .SpeedBrakeUpBelow1000 = "b757\\SpeedBrakeUpBelow1000.wav",
    .SpeedBrakeUpOver320KIAS = "b757\\SpeedBrakeUpOver320KIAS.wav",
    .PitotHeatOn = "b757\\PitotHeatOn.wav",
    .PitotHeatOff = "b757\\PitotHeatOff.wav",
    .FuelPumpOff = "b757\\FuelPumpOff.wav",
    .CrossfeedOff = "b757\\CrossfeedOff.wav",
    .FuelPumpLeftOffRightOnCrossOpen = "b757\\FuelPumpLeftOffRightOnCrossOpen.wav",
    .FuelPumpLeftOnRightOffCrossOpen = "b757\\FuelPumpLeftOnRightOffCrossOpen.wav",
    .FuelPumpLeftOff = "b757\\FuelPumpLeftOff.wav",
    .FuelPumpRightOff = "b757\\FuelPumpRightOff.wav",
    .FuelPumpOn = "b757\\FuelPumpOn.wav",
    .FuelPumpLeftOn = "b757\\FuelPumpLeftOn.wav",
    .FuelPumpRightOn = "b757\\FuelPumpRightOn.wav",
    .EngineAntiIceOff = "b757\\EngineAntiIceOff.wav",
    .EngineAntiIceOn = "b757\\EngineAntiIceOn.wav",
    .EngineAntiIceWarmOff = "b757\\EngineAntiIceWarmOff.wav",
    .EngineAntiIceNotRunningOff = "b757\\EngineAntiIceNotRunningOff.wav",
    .AutoBrakeOff = "b757\\AutoBrakeOff.wav",
    .AutoBrakeNotRTO = "b757\\AutoBrakeNotRTO.wav",
    .AutoBrakeSet = "b757\\AutoBrakeSet.wav",
    .AutoBrakeOffShort = "b757\\AutoBrakeOffShort.wav",
    .CheckOilPressure = "b757\\CheckOilPressure.wav",
    .TakeOffFlapsTooLittle = "b757\\TakeOffFlapsTooLittle.wav",
    .TakeOffFlapsTooMuch = "b757\\TakeOffFlapsTooMuch.wav",
    .WeightExceedsMaxTaxi = "b757\\WeightExceedsMaxTaxi.wav",
    .WeightExceedsMTOW = "b757\\WeightExceedsMTOW.wav",
    .TakeOffTrim = "b757\\TakeOffTrim.wav",
    .N1Spool = "b757\\N1SpoolTo60ThenBrakesOff.wav",
    .ParkingBrakeOnWhenSpoolingUp = "b757\\ParkingBrakeOnWhenSpoolingUp.wav",
    .APOff = "b757\\APOff.wav",
    .APALTSetForTO = "b757\\APALTSetForTO.wav",
    .APHEADSetForTO = "b757\\APHEADSetForTO.wav",
    .APIASSetForTO = "b757\\APIASSetForTO.wav",
    .YawDamperOn = "b757\\YawDamperOn.wav",
    .APUOff = "b757\\APUOff.wav",
    .TakeOffThrottle = "b757\\TakeOffThrottle.wav",
    .RotationSpeed = "b757\\RotationSpeed.wav",
    .RetractedFlapsTooSoon = "b757\\RetractedFlapsTooSoon.wav",
    .StartFlapRetract = "b757\\StartFlapRetract.wav",
    .IAS250Below10000MSL = "b757\\IAS250Below10000MSL.wav",
    .APOn = "b757\\APOn.wav",
    .EngageMCPSpeed = "b757\\EngageMCPSpeed.wav",
    .EngageMCPAltitude = "b757\\EngageMCPAltitude.wav",
    .EngageMCPHeading = "b757\\EngageMCPHeading.wav",
    .FlapsUp = "b757\\FlapsUp.wav",
    .ApproachingMinimums = "b757\\ApproachingMinimums.wav",
    .Minimums = "b757\\Minimums.wav",
    .APOffBelow50 = "b757\\APOffBelow50.wav",
    .APOffNoILS = "b757\\APOffNoILS.wav",
    .FlareAdvice = "b757\\FlareAdvice.wav",
    .FlareAdvicePitch = "b757\\FlareAdvicePitch.wav",
    .LandingWeightTooHeavy = "b757\\LandingWeightTooHeavy.wav",
    .ArmTheSpoilers = "b757\\ArmTheSpoilers.wav",
};
constexpr JetPhrases kLear45Phrases = {
    .MaxAlt = "Lear45\\MaxAlt.wav",
    .PanelOff = "Lear45\\PanelOff.wav",
    .PanelOn = "Lear45\\PanelOn.wav",
    .NoSmokingOn = "Lear45\\NoSmokingOn.wav",
    .AutoThrottleOff = "Lear45\\AutoThrottleOff.wav",
    .AutoThrottleOn = "Lear45\\AutoThrottleOn.wav",
    .FDOff = "Lear45\\FDOff.wav",
    .FDOn = "Lear45\\FDOn.wav",
    .FuelControlLeversOff = "Lear45\\FuelControlLeversOff.wav",
    .SeatbeltsOff = "Lear45\\SeatbeltsOff.wav",
    .SeatbeltsOn = "Lear45\\SeatbeltsOn.wav",
    .APURestartTooSoon = "Lear45\\APURestartTooSoon.wav",
    .FPWarningRunwayLength = "Lear45\\FPWarningRunwayLength.wav",
    .FPWarningRunwaySurfaceType = "Lear45\\FPWarningRunwaySurfaceType.wav",
    .ParkingBrakesOff = "Lear45\\ParkingBrakesOff.wav",
    .IASOver250Below10000MSL = "Lear45\\IASOver250Below10000MSL.wav",
    .SpeedBrakeUpBelow1000 = "Lear45\\SpeedBrakeUpBelow1000.wav",
    .SpeedBrakeUpOver320KIAS = "Lear45\\SpeedBrakeUpOver320KIAS.wav",
    .PitotHeatOn = "Lear45\\PitotHeatOn.wav",
    .PitotHeatOff = "Lear45\\PitotHeatOff.wav",
    .FuelPumpOff = "Lear45\\FuelPumpOff.wav",
    .CrossfeedOff = "Lear45\\CrossfeedOff.wav",
    .FuelPumpLeftOffRightOnCrossOpen = "Lear45\\FuelPumpLeftOffRightOnCrossOpen.wav",
    .FuelPumpLeftOnRightOffCrossOpen = "Lear45\\FuelPumpLeftOnRightOffCrossOpen.wav",
    .FuelPumpLeftOff = "Lear45\\FuelPumpLeftOff.wav",
    .FuelPumpRightOff = "Lear45\\FuelPumpRightOff.wav",
    .FuelPumpOn = "Lear45\\FuelPumpOn.wav",
    .FuelPumpLeftOn = "Lear45\\FuelPumpLeftOn.wav",
    .FuelPumpRightOn = "Lear45\\FuelPumpRightOn.wav",
    .WingAntiIceGroundOff = "Lear45\\WingAntiIceGroundOff.wav",
    .WingAntiIceAirOn = "Lear45\\WingAntiIceAirOn.wav",
    .WingAntiIceAirOff = "Lear45\\WingAntiIceAirOff.wav",
    .AutoBrakeOff = "Lear45\\AutoBrakeOff.wav",
    .AutoBrakeNotRTO = "Lear45\\AutoBrakeNotRTO.wav",
    .AutoBrakeSet = "Lear45\\AutoBrakeSet.wav",
    .AutoBrakeOffShort = "Lear45\\AutoBrakeOffShort.wav",
    .CheckOilPressure = "Lear45\\CheckOilPressure.wav",
    .TakeOffFlapsTooLittle = "Lear45\\TakeOffFlapsTooLittle.wav",
    .TakeOffFlapsTooMuch = "Lear45\\TakeOffFlapsTooMuch.wav",
    .WeightExceedsMaxTaxi = "Lear45\\WeightExceedsMaxTaxi.wav",
    .WeightExceedsMTOW = "Lear45\\WeightExceedsMTOW.wav",
    .TakeOffTrim = "Lear45\\TakeOffTrim.wav",
    .N1Spool = "Lear45\\N1SpoolTo40ThenBrakesOff.wav",
    .ParkingBrakeOnWhenSpoolingUp = "Lear45\\ParkingBrakeOnWhenSpoolingUp.wav",
    .APOff = "Lear45\\APOff.wav",
    .APALTSetForTO = "Lear45\\APALTSetForTO.wav",
    .APHEADSetForTO = "Lear45\\APHEADSetForTO.wav",
    .APIASSetForTO = "Lear45\\APIASSetForTO.wav",
    .YawDamperOn = "Lear45\\YawDamperOn.wav",
    .APUOff = "Lear45\\APUOff.wav",
    .TakeOffThrottle = "Lear45\\TakeOffThrottle.wav",
    .RotationSpeed = "Lear45\\RotationSpeed.wav",
    .RetractedFlapsTooSoon = "Lear45\\RetractedFlapsTooSoon.wav",
    .StartFlapRetract = "Lear45\\StartFlapRetract.wav",
    .IAS250Below10000MSL = "Lear45\\IAS250Below10000MSL.wav",
    .APOn = "Lear45\\APOn.wav",
    .EngageMCPSpeed = "Lear45\\EngageMCPSpeed.wav",
    .EngageMCPAltitude = "Lear45\\EngageMCPAltitude.wav",
    .EngageMCPHeading = "Lear45\\EngageMCPHeading.wav",
    .FlapsUp = "Lear45\\FlapsUp.wav",
    .ApproachingMinimums = "Lear45\\ApproachingMinimums.wav",
    .Minimums = "Lear45\\Minimums.wav",
    .APOffBelow50 = "Lear45\\APOffBelow50.wav",
    .APOffNoILS = "Lear45\\APOffNoILS.wav",
    .FlareAdvice = "Lear45\\FlareAdvice.wav",
    .FlareAdvicePitch = "Lear45\\FlareAdvicePitch.wav",
    .ArmTheSpoilers = "Lear45\\ArmTheSpoilers.wav",
};
constexpr JetPhrases kCRJ700Phrases = {
    .MaxAlt = "CRJ700\\MaxAlt.wav",
    .MaxAltFlaps = "CRJ700\\MaxAltFlaps.wav",
    .PanelOff = "CRJ700\\PanelOff.wav",
    .PanelOn = "CRJ700\\PanelOn.wav",
    .HydraulicPumpsOff = "CRJ700\\HydraulicPumpsOff.wav",
    .HydraulicPumpsOn = "CRJ700\\HydraulicPumpsOn.wav",
    .NoSmokingOn = "CRJ700\\NoSmokingOn.wav",
    .AutoThrottleOff = "CRJ700\\AutoThrottleOff.wav",
    .AutoThrottleOn = "CRJ700\\AutoThrottleOn.wav",
    .FDOff = "CRJ700\\FDOff.wav",
    .FDOn = "CRJ700\\FDOn.wav",
    .FuelControlLeversOff = "CRJ700\\FuelControlLeversOff.wav",
    .SeatbeltsOff = "CRJ700\\SeatbeltsOff.wav",
    .SeatbeltsOn = "CRJ700\\SeatbeltsOn.wav",
    .SeatbeltsAsRequired = "CRJ700\\SeatbeltsAsRequired.wav",
    .APURestartTooSoon = "CRJ700\\APURestartTooSoon.wav",
    .FPWarningRunwayWidth = "CRJ700\\FPWarningRunwayWidth.wav",
    .FPWarningRunwayLength = "CRJ700\\FPWarningRunwayLength.wav",
    .FPWarningRunwaySurfaceType = "CRJ700\\FPWarningRunwaySurfaceType.wav",
    .ParkingBrakesOff = "CRJ700\\ParkingBrakesOff.wav",
    .IASOver250Below10000MSL = "CRJ700\\IASOver250Below10000MSL.wav",
    .SpeedBrakeUpBelow1000 = "CRJ700\\SpeedBrakeUpBelow1000.wav",
    .SpeedBrakeUpOver320KIAS = "CRJ700\\SpeedBrakeUpOver320KIAS.wav",
    .PitotHeatOn = "CRJ700\\PitotHeatOn.wav",
    .PitotHeatOff = "CRJ700\\PitotHeatOff.wav",
    .FuelPumpOff = "CRJ700\\FuelPumpOff.wav",
    .CrossfeedOff = "CRJ700\\CrossfeedOff.wav",
    .FuelPumpLeftOffRightOnCrossOpen = "CRJ700\\FuelPumpLeftOffRightOnCrossOpen.wav",
    .FuelPumpLeftOnRightOffCrossOpen = "CRJ700\\FuelPumpLeftOnRightOffCrossOpen.wav",
    .FuelPumpLeftOff = "CRJ700\\FuelPumpLeftOff.wav",
    .FuelPumpRightOff = "CRJ700\\FuelPumpRightOff.wav",
    .FuelPumpOn = "CRJ700\\FuelPumpOn.wav",
    .FuelPumpLeftOn = "CRJ700\\FuelPumpLeftOn.wav",
    .FuelPumpRightOn = "CRJ700\\FuelPumpRightOn.wav",
    .WingAntiIceGroundOff = "CRJ700\\WingAntiIceGroundOff.wav",
    .EngineAntiIceOff = "CRJ700\\EngineAntiIceOff.wav",
    .EngineAntiIceOn = "CRJ700\\EngineAntiIceOn.wav",
    .EngineAntiIceWarmOff = "CRJ700\\EngineAntiIceWarmOff.wav",
    .WingAntiIceAirOn = "CRJ700\\WingAntiIceAirOn.wav",
    .WingAntiIceAirOff = "CRJ700\\WingAntiIceAirOff.wav",
    .EngineAntiIceNotRunningOff = "CRJ700\\EngineAntiIceNotRunningOff.wav",
    .AutoBrakeOff = "CRJ700\\AutoBrakeOff.wav",
    .AutoBrakeNotRTO = "CRJ700\\AutoBrakeNotRTO.wav",
    .AutoBrakeSet = "CRJ700\\AutoBrakeSet.wav",
    .AutoBrakeOffShort = "CRJ700\\AutoBrakeOffShort.wav",
    .CheckOilPressure = "CRJ700\\CheckOilPressure.wav",
    .TakeOffFlapsTooLittle = "CRJ700\\TakeOffFlapsTooLittle.wav",
    .TakeOffFlapsTooMuch = "CRJ700\\TakeOffFlapsTooMuch.wav",
    .WeightExceedsMaxTaxi = "CRJ700\\WeightExceedsMaxTaxi.wav",
    .WeightExceedsMTOW = "CRJ700\\WeightExceedsMTOW.wav",
    .TakeOffTrim = "CRJ700\\TakeOffTrim.wav",
    .N1Spool = "CRJ700\\N1SpoolTo40ThenBrakesOff.wav",
    .ParkingBrakeOnWhenSpoolingUp = "CRJ700\\ParkingBrakeOnWhenSpoolingUp.wav",
    .APOff = "CRJ700\\APOff.wav",
    .APALTSetForTO = "CRJ700\\APALTSetForTO.wav",
    .APHEADSetForTO = "CRJ700\\APHEADSetForTO.wav",
    .APIASSetForTO = "CRJ700\\APIASSetForTO.wav",
    .YawDamperOn = "CRJ700\\YawDamperOn.wav",
    .APUOff = "CRJ700\\APUOff.wav",
    .TakeOffThrottle = "CRJ700\\TakeOffThrottle.wav",
    .RotationSpeed = "CRJ700\\RotationSpeed.wav",
    .RetractedFlapsTooSoon = "CRJ700\\RetractedFlapsTooSoon.wav",
    .StartFlapRetract = "CRJ700\\StartFlapRetract.wav",
    .IAS250Below10000MSL = "CRJ700\\IAS250Below10000MSL.wav",
    .APOn = "CRJ700\\APOn.wav",
    .EngageMCPSpeed = "CRJ700\\EngageMCPSpeed.wav",
    .EngageMCPAltitude = "CRJ700\\EngageMCPAltitude.wav",
    .EngageMCPHeading = "CRJ700\\EngageMCPHeading.wav",
    .FlapsUp = "CRJ700\\FlapsUp.wav",
    .ApproachingMinimums = "CRJ700\\ApproachingMinimums.wav",
    .Minimums = "CRJ700\\Minimums.wav",
    .APOffBelow50 = "CRJ700\\APOffBelow50.wav",
    .APOffNoILS = "CRJ700\\APOffNoILS.wav",
    .FlareAdvice = "CRJ700\\FlareAdvice.wav",
    .FlareAdvicePitch = "CRJ700\\FlareAdvicePitch.wav",
    .LandingWeightTooHeavy = "CRJ700\\LandingWeightTooHeavy.wav",
    .ArmTheSpoilers = "CRJ700\\ArmTheSpoilers.wav",
};
constexpr JetPhrases kOtterPhrases = {
    .MaxAlt = "TwinOtter\\MaxAlt.wav",
    .MaxAltOneEngine = "TwinOtter\\MaxAltOneEngine.wav",
    .MaxAltFlaps = "TwinOtter\\MaxAltFlaps.wav",
    .NoSmokingOn = "TwinOtter\\NoSmokingOn.wav",
    .FuelControlLeversOff = "TwinOtter\\FuelControlLeversOff.wav",
    .SeatbeltsOff = "TwinOtter\\SeatbeltsOff.wav",
    .SeatbeltsOn = "TwinOtter\\SeatbeltsOn.wav",
    .ParkingBrakesOff = "TwinOtter\\ParkingBrakesOff.wav",
    .PitotHeatOn = "TwinOtter\\PitotHeatOn.wav",
    .PitotHeatOff = "TwinOtter\\PitotHeatOff.wav",
    .FuelPumpOff = "TwinOtter\\FuelPumpOff.wav",
    .CrossfeedOff = "TwinOtter\\CrossfeedOff.wav",
    .FuelPumpLeftOffRightOnCrossOpen = "TwinOtter\\FuelPumpLeftOffRightOnCrossOpen.wav",
    .FuelPumpLeftOnRightOffCrossOpen = "TwinOtter\\FuelPumpLeftOnRightOffCrossOpen.wav",
    .FuelPumpLeftOff = "TwinOtter\\FuelPumpLeftOff.wav",
    .FuelPumpRightOff = "TwinOtter\\FuelPumpRightOff.wav",
    .FuelPumpOn = "TwinOtter\\FuelPumpOn.wav",
    .FuelPumpLeftOn = "TwinOtter\\FuelPumpLeftOn.wav",
    .FuelPumpRightOn = "TwinOtter\\FuelPumpRightOn.wav",
    .EngineAntiIceOff = "TwinOtter\\EngineAntiIceOff.wav",
    .EngineAntiIceOn = "TwinOtter\\EngineAntiIceOn.wav",
    .EngineAntiIceWarmOff = "TwinOtter\\EngineAntiIceWarmOff.wav",
    .WingAntiIceAirOn = "TwinOtter\\WingAntiIceAirOn.wav",
    .WingAntiIceAirOff = "TwinOtter\\WingAntiIceAirOff.wav",
    .EngineAntiIceNotRunningOff = "TwinOtter\\EngineAntiIceNotRunningOff.wav",
    .CheckOilPressure = "TwinOtter\\CheckOilPressure.wav",
    .TakeOffFlapsTooLittle = "TwinOtter\\TakeOffFlapsTooLittle.wav",
    .TakeOffFlapsTooMuch = "TwinOtter\\TakeOffFlapsTooMuch.wav",
    .WeightExceedsMaxTaxi = "TwinOtter\\WeightExceedsMaxTaxi.wav",
    .TakeOffTrim = "TwinOtter\\TakeOffTrim.wav",
    .N1Spool = "TwinOtter\\N1SpoolTo40ThenBrakesOff.wav",
    .ParkingBrakeOnWhenSpoolingUp = "TwinOtter\\ParkingBrakeOnWhenSpoolingUp.wav",
    .APOff = "TwinOtter\\APOff.wav",
    .APALTSetForTO = "TwinOtter\\APALTSetForTO.wav",
    .APHEADSetForTO = "TwinOtter\\APHEADSetForTO.wav",
    .APIASSetForTO = "TwinOtter\\APIASSetForTO.wav",
    .YawDamperOn = "TwinOtter\\YawDamperOn.wav",
    .TakeOffThrottle = "TwinOtter\\TakeOffThrottle.wav",
    .RotationSpeed = "TwinOtter\\RotationSpeed.wav",
    .RetractedFlapsTooSoon = "TwinOtter\\RetractedFlapsTooSoon.wav",
    .StartFlapRetract = "TwinOtter\\StartFlapRetract.wav",
    .APOn = "TwinOtter\\APOn.wav",
    .EngageMCPSpeed = "TwinOtter\\EngageMCPSpeed.wav",
    .EngageMCPAltitude = "TwinOtter\\EngageMCPAltitude.wav",
    .EngageMCPHeading = "TwinOtter\\EngageMCPHeading.wav",
    .FlapsUp = "TwinOtter\\FlapsUp.wav",
    .APOffNoILS = "TwinOtter\\APOffNoILS.wav",
    .FlareAdvice = "TwinOtter\\FlareAdvice.wav",
    .FlareAdvicePitch = "TwinOtter\\FlareAdvicePitch.wav",
    .LandingWeightTooHeavy = "TwinOtter\\LandingWeightTooHeavy.wav",
    .FuelPumpsOn = "TwinOtter\\FuelPumpsOn.wav",
    .EngineAntiIceOnOtter = "TwinOtter\\EngineAntiIceOnOtter.wav",
};
constexpr JetPhrases kDC3Phrases = {
    .MaxAlt = "DC3\\zPro_MaxAlt.wav",
    .FPWarningRunwayLength = "DC3\\zPro_FPWarningRunwayLength.wav",
    .WeightExceedsMaxTaxi = "DC3\\zPro_WeightExceedsMaxTaxi.wav",
    .WeightExceedsMTOW = "DC3\\zPro_WeightExceedsMTOW.wav",
    .LandingWeightTooHeavy = "DC3\\zPro_LandingWeightTooHeavy.wav",
    .PropellerAntiIceGroundOff = "DC3\\zPro_PropellerAntiIceGroundOff.wav",
};

// The figures of a type that differ from the 737's; 0 where the type has no
// such rule.
struct JetType {
  AircraftType type;
  const JetPhrases& p;
  int32_t maxAltitude;           // pressure altitude, feet
  int32_t maxAltitudeOneEngine;  // with fewer than two engines firing
  int32_t flapsMaxAltitude;      // flaps out above this pressure altitude
  int32_t takeOffFlapsLow;       // take-off flaps, degrees x 256
  int32_t takeOffFlapsHigh;
  int32_t maxTaxiWeight;  // pounds
  int32_t maxTakeOffWeight;
  int32_t maxLandingWeight;
  int32_t spoolN1;          // percent: hold the brakes up to here
  int32_t releaseN1;        // and release them above here
  int32_t takeOffSpeedBug;  // knots
  int32_t rotationGS;       // the rotation reminder's ground speed
  int32_t minRunwayWidth;   // feet, the destination's
  int32_t minRunwayLength;
  int32_t autopilotOffBelow;  // feet above the ground, with an ILS
  int32_t mcpSpeedFrom;       // the autopilot-mode reminders, feet above the ground
  int32_t mcpAltitudeFrom;
  int32_t mcpHeadingFrom;
  int mcpSpeedBox;  // the pilot's boxes for the three reminders
  int mcpAltitudeBox;
  int mcpHeadingBox;
  int32_t flapRetractFrom;    // start the retraction above this height
  int32_t flapsTooSoonBelow;  // retracted below this height is too soon
  int32_t flapsUpFrom;        // "flaps up" above this height
  int32_t flapsUpAboveIAS;    // and above this speed
  bool crossfeedBalance;      // the balance advice opens the crossfeed
};

// The Twin Otter's maximum take-off weight by variant.
constexpr int32_t kOtter100FloatMTOW = 11600;
constexpr int32_t kOtter100MTOW = 11579;
constexpr int32_t kOtter300MTOW = 12500;

constexpr JetType k737{AircraftType::B737,
                       k737Phrases,
                       41000,
                       0,
                       20000,
                       1240,
                       3870,
                       156000,
                       155500,
                       144000,
                       40,
                       43,
                       140,
                       33,
                       148,
                       6000,
                       50,
                       1100,
                       1150,
                       1200,
                       2,
                       3,
                       1,
                       1050,
                       950,
                       2100,
                       0,
                       true};
constexpr JetType k757{AircraftType::B757,
                       k757Phrases,
                       42000,
                       0,
                       20000,
                       1240,
                       5150,
                       256000,
                       255000,
                       210000,
                       60,
                       63,
                       140,
                       33,
                       148,
                       5000,
                       0,
                       1100,
                       1150,
                       1200,
                       29,
                       28,
                       30,
                       1050,
                       950,
                       2100,
                       0,
                       true};
constexpr JetType kLear45{AircraftType::Lear45,
                          kLear45Phrases,
                          51000,
                          0,
                          0,
                          1240,
                          5400,
                          20450,
                          20200,
                          0,
                          40,
                          88,
                          140,
                          33,
                          0,
                          3200,
                          200,
                          0,
                          0,
                          0,
                          19,
                          22,
                          20,
                          1050,
                          950,
                          2100,
                          0,
                          true};
constexpr JetType kCRJ700{AircraftType::CRJ700,
                          kCRJ700Phrases,
                          41000,
                          0,
                          15000,
                          1240,
                          5400,
                          74945,
                          74695,
                          67000,
                          40,
                          88,
                          125,
                          22,
                          100,
                          5100,
                          200,
                          400,
                          450,
                          500,
                          32,
                          33,
                          35,
                          1050,
                          950,
                          2100,
                          200,
                          false};
// The Otter's landing weight is the CRJ's figure, kept as it always was.
constexpr JetType kOtter{AircraftType::TwinOtter,
                         kOtterPhrases,
                         25000,
                         11600,
                         15000,
                         1240,
                         5400,
                         12500,
                         kOtter300MTOW,
                         67000,
                         40,
                         88,
                         0,
                         22,
                         0,
                         0,
                         200,
                         500,
                         550,
                         600,
                         37,
                         38,
                         40,
                         450,
                         350,
                         400,
                         0,
                         true};
constexpr JetType kDC3{AircraftType::DC3,
                       kDC3Phrases,
                       23200,
                       0,
                       0,
                       0,
                       0,
                       26200,
                       26200,
                       26200,
                       0,
                       0,
                       0,
                       0,
                       0,
                       2500,
                       0,
                       0,
                       0,
                       0,
                       0,
                       0,
                       0,
                       0,
                       0,
                       0,
                       0,
                       true};

// The active type of the family, or nullptr.
const JetType* ActiveJet(const Cockpit& c, std::initializer_list<const JetType*> family) {
  for (const JetType* j : family)
    if (c.aircraft.WantType(j->type)) return j;
  return nullptr;
}

// The rules' own families.
const JetType* SystemsType(const Cockpit& c) {
  return ActiveJet(c, {&k737, &kLear45, &kCRJ700, &kDC3, &k757, &kOtter});
}

bool Battery(const FSData& d) {
  return d.MasterBattery;
}

// Engine anti-ice switches (0x08B2, 0x094A).
bool EngineAntiIce(const FSData& d, int engine) {
  return engine == 1 ? d.Eng1Primer : d.Eng2Primer;
}
// The APU: its switch (0x0B51) and running (0x0B58).
bool APUSwitch(const FSData& d) {
  return d.Flag0B51;
}
bool APURunning(const FSData& d) {
  return d.Flag0B58;
}
bool NoSmokingSign(const FSData& d) {
  return d.Flag341C;
}
bool SeatBeltSign(const FSData& d) {
  return d.Flag341D;
}
bool Crossfeed(const FSData& d) {
  return d.Flag341F;
}
bool WingAntiIce(const FSData& d) {
  return d.Flag337D;
}
// Hydraulic pump pressure of each engine, psi (0x08D8, 0x0970).
int32_t HydraulicPressure(const FSData& d, int engine) {
  return engine == 1 ? d.Eng1FuelFlow : d.Eng2FuelFlow;
}
double WeightPounds(const Cockpit& c) {
  return c.link.TotalWeightTons * 2000.0;
}
// The decision height, feet: the double at 0x3428 holds it in metres.
int32_t DecisionHeight(const FSData& d) {
  return CLng(d.TotalWeight * 3.281);
}
bool BoxChecked(const Cockpit& c, int box) {
  return c.aircraft.Monitoring.Boeing[static_cast<size_t>(box)];
}

constexpr int32_t kSeatBeltAltitude = 10000;
constexpr int32_t kAPURestartWithinSeconds = 60;
constexpr int32_t kAPURestartAfterSeconds = 6;
constexpr int32_t kRunwayChecksAbove = 2000;
constexpr const char* kPavedSurfaces = ",ASPHALT,BITUMINUS,CONCRETE,MACADAM,TARMAC,";
constexpr int32_t kParkingBrakeInFlightAbove = 150;
constexpr int32_t k250KnotsBelow = 9800;
constexpr int32_t k250Knots = 251;
constexpr int32_t kSpeedBrakeOut = 12000;
constexpr int32_t kSpeedBrakeLowFrom = 150;
constexpr int32_t kSpeedBrakeLowTo = 980;
constexpr int32_t kSpeedBrakeFastIAS = 320;
constexpr int32_t kHydraulicsUp = 1900;
constexpr int32_t kHydraulicsNone = 3;
constexpr int32_t kAutoThrottleOffBelow = 50;
constexpr double kTankDry = 2;           // pounds
constexpr double kTankImbalance = 1000;  // pounds
constexpr int32_t kIcingAt = 10;         // degrees C and below
constexpr int32_t kWarmAbove = 11;
constexpr int32_t kIcingChecksAbove = 1000;
constexpr int32_t kIcingChecksAboveInTakeOff = 2000;

// Auto brake switch (0x2F80): 0 RTO, 1 off, 2 and above a landing setting.
constexpr int32_t kAutoBrakeRTO = 0;
constexpr int32_t kAutoBrakeOff = 1;
constexpr int32_t kAutoBrakeShortRunway = 7000;  // feet
constexpr int32_t kAutoBrakeSetBelow = 3000;     // feet above the ground, landing

// The fuel control levers work the engines' mixture: the top byte of full rich.
constexpr uint32_t kMixtureHighByte[] = {0x0891, 0x0929};
constexpr uint8_t kMixtureRunHighByte = 0x40;

void MaxAltitude(Cockpit& c, const JetType& j) {
  const FSData& now = c.link.Now();
  if (j.maxAltitudeOneEngine > 0 && Airborne(c) && EnginesFiring(now) < 2 &&
      now.IndicatedAltitude > j.maxAltitudeOneEngine) {
    Teach(c, j.p.MaxAltOneEngine, 34, 120, 4);
  } else if (now.IndicatedAltitude > j.maxAltitude) {
    Teach(c, j.p.MaxAlt, 34, 120, 4);
  }
}

void PanelAndSigns(Cockpit& c, const JetType& j, bool panel, bool shut) {
  const FSData& now = c.link.Now();
  const FSData& before = c.link.Before();
  const FlightState& f = c.flight;
  const bool panelLights = (now.Lights & kPanelLights) != 0;
  const bool anyPump = now.Eng1FuelPump || now.Eng2FuelPump;
  if (panel && shut && panelLights && !anyPump && !SeatBeltSign(now))
    Say(c, j.p.PanelOff, 57, 30, 4);
  if (panel && !shut && Battery(now) && !panelLights) Say(c, j.p.PanelOn, 56, 30, 4);
  if (panel && shut &&
      (HydraulicPressure(now, 1) > kHydraulicsUp || HydraulicPressure(now, 2) > kHydraulicsUp))
    Say(c, j.p.HydraulicPumpsOff, 31, 30, 4);
  if (panel && EnginesFiring(now) > 0 && Battery(now) &&
      (HydraulicPressure(now, 1) < kHydraulicsNone || HydraulicPressure(now, 2) < kHydraulicsNone))
    Say(c, j.p.HydraulicPumpsOn, 37, 30, 4);
  if (panel && Battery(now) && !NoSmokingSign(now)) Say(c, j.p.NoSmokingOn, 87, 30, 4);
  if (panel) {
    const bool offNow = (f.Modes.Landing && now.AGL < kAutoThrottleOffBelow) || f.Modes.Taxiing;
    if (offNow && now.AutoThrottleArm != 0) {
      Say(c, j.p.AutoThrottleOff, 26, 30, 4);
    } else if (!offNow && EnginesFiring(now) > 0 && now.AutoThrottleArm == 0) {
      Say(c, j.p.AutoThrottleOn, 26, 120, 16);
    }
  }
  if (panel && TaxiingInMode(c) && now.FlightDirector != 0) Say(c, j.p.FDOff, 21, 30, 4);
  if (panel && !f.Modes.Taxiing && now.FlightDirector == 0) Say(c, j.p.FDOn, 86, 30, 4);
  if (shut && (now.Eng1FuelValve || now.Eng2FuelValve)) Say(c, j.p.FuelControlLeversOff, 50, 30, 4);
  if (panel && shut && SeatBeltSign(now)) Say(c, j.p.SeatbeltsOff, 91, 30, 4);
  if (panel && !shut && now.Altitude < kSeatBeltAltitude && Battery(now) && !SeatBeltSign(now))
    Say(c, j.p.SeatbeltsOn, 92, 30, 4);
  if (panel && CrossedUp(before.Altitude, now.Altitude, kSeatBeltAltitude))
    Say(c, j.p.SeatbeltsAsRequired, 93, 30, 4);
}

// The APU needs a minute to run down before it may be started again.
void APURestart(Cockpit& c, const JetType& j) {
  const FSData& now = c.link.Now();
  const FSData& before = c.link.Before();
  ProceduresState& p = c.procedures;
  const int32_t t = FlightTime(c);
  if (!APUSwitch(now) && APUSwitch(before)) p.APUStopTime = t;
  if (!Battery(now) || !APUSwitch(now) || APUSwitch(before) || p.APUStopTime == kAPUNeverStopped)
    return;
  const int32_t since = t - p.APUStopTime;
  if (since > kAPURestartAfterSeconds && since <= kAPURestartWithinSeconds) {
    const int32_t ticksLeft = (kAPURestartWithinSeconds - since) * 2;
    Say(c, j.p.APURestartTooSoon, 39, ticksLeft, 4);
  }
}

void DestinationRunway(Cockpit& c, const JetType& j) {
  const FSData& now = c.link.Now();
  const ApproachState& a = c.flight.approach;
  if (!(now.AGL > kRunwayChecksAbove || c.flight.HasTouchedDown)) return;
  if (c.plan.FlightPlanDestination.empty() || !a.Destination.Set) return;
  const Runway& r = a.Destination.runway;
  if (j.minRunwayWidth > 0 && r.Width < j.minRunwayWidth)
    Teach(c, j.p.FPWarningRunwayWidth, 29, 30, 8);
  if (j.minRunwayLength > 0 && r.Length < j.minRunwayLength)
    Teach(c, j.p.FPWarningRunwayLength, 41, 30, 8);
  if (std::string_view(kPavedSurfaces).find("," + r.Surface + ",") == std::string_view::npos)
    Teach(c, j.p.FPWarningRunwaySurfaceType, 39, 30, 8);
}

void SpeedRules(Cockpit& c, const JetType& j) {
  const FSData& now = c.link.Now();
  if (!Airborne(c)) return;
  if (now.AGL > kParkingBrakeInFlightAbove && now.ParkingBrake)
    Say(c, j.p.ParkingBrakesOff, 39, 30, 8);
  if (now.Altitude < k250KnotsBelow && now.IAS >= k250Knots)
    Teach(c, j.p.IASOver250Below10000MSL, 87, 30, 4);
  if (Within(now.AGL, kSpeedBrakeLowFrom, kSpeedBrakeLowTo) && now.SpoilersControl > kSpeedBrakeOut)
    Teach(c, j.p.SpeedBrakeUpBelow1000, 77, 30, 4);
  if (now.AGL > kSpeedBrakeLowFrom && now.IAS > kSpeedBrakeFastIAS &&
      now.SpoilersControl > kSpeedBrakeOut)
    Teach(c, j.p.SpeedBrakeUpOver320KIAS, 77, 30, 4);
}

void PitotRules(Cockpit& c, const JetType& j, bool panel, bool shut) {
  const FSData& now = c.link.Now();
  if (!panel) return;
  if (!shut && EnginesFiring(now) > 0 && !now.PitotHeat) Say(c, j.p.PitotHeatOn, 58, 30, 4);
  if (shut && now.PitotHeat) Say(c, j.p.PitotHeatOff, 59, 30, 4);
}

// Left and right: which pump is on and whether its tank holds fuel.
void PumpsAndCrossfeed(Cockpit& c, const JetType& j, bool panel, bool shut) {
  const FSData& now = c.link.Now();
  if (!panel || !Battery(now)) return;
  const bool left = now.Eng1FuelPump;
  const bool right = now.Eng2FuelPump;
  const bool cross = Crossfeed(now);
  if (shut) {
    if (left || right) Say(c, j.p.FuelPumpOff, 64, 30, 4);
    if (cross) Say(c, j.p.CrossfeedOff, 86, 30, 4);
    return;
  }
  const double l = now.FuelLbLeftMain;
  const double r = now.FuelLbRightMain;
  const bool leftDry = l < kTankDry;
  const bool rightDry = r < kTankDry;
  if (j.crossfeedBalance && (leftDry || r > l + kTankImbalance) && !rightDry) {
    if (left || !right || !cross) Say(c, j.p.FuelPumpLeftOffRightOnCrossOpen, 64, 30, 4);
    return;
  }
  if (j.crossfeedBalance && (rightDry || l > r + kTankImbalance) && !leftDry) {
    if (!left || right || !cross) Say(c, j.p.FuelPumpLeftOnRightOffCrossOpen, 64, 30, 4);
    return;
  }
  if (leftDry && rightDry) {
    if (left || right) Say(c, j.p.FuelPumpOff, 64, 30, 4);
    if (cross) Say(c, j.p.CrossfeedOff, 79, 30, 4);
    return;
  }
  if (leftDry && left) {
    Say(c, j.p.FuelPumpLeftOff, 64, 30, 4);
    return;
  }
  if (rightDry && right) {
    Say(c, j.p.FuelPumpRightOff, 64, 30, 4);
    return;
  }
  const bool leftWanted = !leftDry && !left;
  const bool rightWanted = !rightDry && !right;
  if (leftWanted && rightWanted) {
    Say(c, j.p.FuelPumpOn, 64, 30, 4);
  } else if (leftWanted) {
    Say(c, j.p.FuelPumpLeftOn, 64, 30, 4);
  } else if (rightWanted) {
    Say(c, j.p.FuelPumpRightOn, 64, 30, 4);
  } else if (cross) {
    Say(c, j.p.CrossfeedOff, 86, 30, 4);
  }
}

void AntiIce(Cockpit& c, const JetType& j, bool panel, bool shut) {
  const FSData& now = c.link.Now();
  const FlightState& f = c.flight;
  if (!panel) return;
  // The DC3 has only its propeller de-ice (0x337C) to leave off on the ground.
  if (now.OnGround != 0 && now.Flag337C) Say(c, j.p.PropellerAntiIceGroundOff, 36, 30, 4);
  const bool engineOn = EngineAntiIce(now, 1) || EngineAntiIce(now, 2);
  if (now.OnGround != 0) {
    if (WingAntiIce(now)) Say(c, j.p.WingAntiIceGroundOff, 36, 30, 4);
    if (shut && engineOn) Say(c, j.p.EngineAntiIceOff, 33, 30, 4);
    const bool standing = !(f.Modes.TakeOff && now.GS > 3);
    if (!shut && standing) {
      if (now.OutsideAirTemp <= kIcingAt) {
        if (now.Eng1Combustion && now.Eng2Combustion && Battery(now) &&
            (!EngineAntiIce(now, 1) || !EngineAntiIce(now, 2)))
          Say(c, j.p.EngineAntiIceOn, 38, 30, 4);
      } else if (engineOn) {
        Say(c, j.p.EngineAntiIceWarmOff, 33, 30, 4);
      }
    }
    return;
  }
  const bool checks =
      (now.AGL > kIcingChecksAbove && !f.Modes.TakeOff) || now.AGL > kIcingChecksAboveInTakeOff;
  if (!checks) return;
  const bool icing = now.TotalAirTemp <= kIcingAt;
  const bool warm = now.TotalAirTemp > kWarmAbove;
  if (icing && !WingAntiIce(now)) Say(c, j.p.WingAntiIceAirOn, 36, 30, 8);
  if (warm && WingAntiIce(now)) Say(c, j.p.WingAntiIceAirOff, 36, 30, 24);
  const char* engineOnInIcing =
      j.p.EngineAntiIceOnOtter ? j.p.EngineAntiIceOnOtter : j.p.EngineAntiIceOn;
  for (int e = 1; e <= 2; ++e) {
    if (icing && Firing(now, e) && !EngineAntiIce(now, e)) Say(c, engineOnInIcing, 38, 30, 8);
    if (icing && !Firing(now, e) && EngineAntiIce(now, e))
      Say(c, j.p.EngineAntiIceNotRunningOff, 38, 30, 8);
    if (warm && EngineAntiIce(now, e)) Say(c, j.p.EngineAntiIceWarmOff, 33, 30, 24);
  }
}

// RTO for the take-off, off once down and taxiing in, a landing setting for
// the landing (the more so on a short runway).
void AutoBrakes(Cockpit& c, const JetType& j, bool panel) {
  const FSData& now = c.link.Now();
  const FlightState& f = c.flight;
  if (!panel) return;
  const int32_t setting = now.AutoBrake;
  if (now.OnGround != 0 && f.Modes.TakeOff && setting != kAutoBrakeRTO) {
    Say(c, j.p.AutoBrakeNotRTO, 35, 30, 8);
  } else if (TaxiingInMode(c) && setting != kAutoBrakeOff) {
    Say(c, j.p.AutoBrakeOff, 35, 30, 8);
  } else if (f.Modes.Landing && Airborne(c) && now.AGL < kAutoBrakeSetBelow &&
             setting <= kAutoBrakeOff) {
    const ApproachState& a = f.approach;
    const bool shortRunway =
        a.Destination.Set && a.Destination.runway.Length < kAutoBrakeShortRunway;
    Say(c, shortRunway ? j.p.AutoBrakeOffShort : j.p.AutoBrakeSet, 35, 60, 8);
  }
}

// The fuel control lever of an engine moved to run works that engine's mixture.
void FuelLeverWrite(Cockpit& c) {
  const FSData& now = c.link.Now();
  const FSData& before = c.link.Before();
  const bool opened[] = {now.Eng1FuelValve && !before.Eng1FuelValve,
                         now.Eng2FuelValve && !before.Eng2FuelValve};
  for (size_t e = 0; e < 2; ++e) {
    if (!opened[e]) continue;
    WriteToSim(c.sim, c.events, c.flight.TickCount, kMixtureHighByte[e], &kMixtureRunHighByte, 1);
  }
}

int32_t MaxTakeOffWeight(const Cockpit& c, const JetType& j, const char*& file) {
  file = j.p.WeightExceedsMTOW;
  if (j.type != AircraftType::TwinOtter) return j.maxTakeOffWeight;
  switch (OtterVariantOf(AircraftFolderName(c.link.Now().AirFile))) {
    case OtterVariant::Series100Float:
      file = "TwinOtter\\WeightExceedsMTOW_DHC6_100_FLOAT.wav";
      return kOtter100FloatMTOW;
    case OtterVariant::Series100:
      file = "TwinOtter\\WeightExceedsMTOW_DHC6_100_OTHER.wav";
      return kOtter100MTOW;
    default:
      file = "TwinOtter\\WeightExceedsMTOW_DHC6_300_ALL.wav";
      return kOtter300MTOW;
  }
}

// The recordings of the generator switches of each engine.
struct GeneratorPhrases {
  AircraftType type;
  const char* on1;
  const char* off1;
  const char* on2;
  const char* off2;
};
constexpr GeneratorPhrases kGeneratorPhrases[] = {
    {AircraftType::B737, "b737\\EnginegeneratorSwitch1On.wav",
     "b737\\EnginegeneratorSwitch1Off.wav", "b737\\EnginegeneratorSwitch2On.wav",
     "b737\\EnginegeneratorSwitch2Off.wav"},
    {AircraftType::B757, "b757\\EnginegeneratorSwitch1On.wav",
     "b757\\EnginegeneratorSwitch1Off.wav", "b757\\EnginegeneratorSwitch2On.wav",
     "b757\\EnginegeneratorSwitch2Off.wav"},
    {AircraftType::Lear45, "Lear45\\EnginegeneratorSwitch1On.wav",
     "Lear45\\EnginegeneratorSwitch1Off.wav", "Lear45\\EnginegeneratorSwitch2On.wav",
     "Lear45\\EnginegeneratorSwitch2Off.wav"},
    {AircraftType::CRJ700, "CRJ700\\EnginegeneratorSwitch1On.wav",
     "CRJ700\\EnginegeneratorSwitch1Off.wav", "CRJ700\\EnginegeneratorSwitch2On.wav",
     "CRJ700\\EnginegeneratorSwitch2Off.wav"},
    {AircraftType::KingAir350, "BeechKingAir350\\zPro_EnginegeneratorSwitch1On.wav",
     "BeechKingAir350\\zPro_EnginegeneratorSwitch1Off.wav",
     "BeechKingAir350\\zPro_EnginegeneratorSwitch2On.wav",
     "BeechKingAir350\\zPro_EnginegeneratorSwitch2Off.wav"},
    {AircraftType::DC3, "DC3\\zPro_EnginegeneratorSwitch1On.wav",
     "DC3\\zPro_EnginegeneratorSwitch1Off.wav", "DC3\\zPro_EnginegeneratorSwitch2On.wav",
     "DC3\\zPro_EnginegeneratorSwitch2Off.wav"},
};

// The autopilot's three modes, reminded at the pilot's reminder interval.
void AutopilotModes(Cockpit& c, const JetType& j, bool panel) {
  const FSData& now = c.link.Now();
  const FlightState& f = c.flight;
  if (!panel || !now.AutopilotOn) return;
  const int32_t gap = ReminderGap(c, 2);
  if (j.mcpSpeedFrom > 0 && now.AGL > j.mcpSpeedFrom && BoxChecked(c, j.mcpSpeedBox)) {
    if (now.IAS > now.APSpeedBug && now.APAirspeedHold == 0) {
      Say(c, j.p.EngageMCPSpeed, 24, gap, 8);
    } else if (now.APAirspeedHold == 0 && now.APMachHold == 0) {
      Say(c, j.p.EngageMCPSpeed, 94, gap, 8);
    }
  }
  if (j.mcpAltitudeFrom > 0 && now.AGL > j.mcpAltitudeFrom && BoxChecked(c, j.mcpAltitudeBox) &&
      now.APApproachHold == 0 && now.APAltitudeHold == 0)
    Say(c, j.p.EngageMCPAltitude, 95, gap, 8);
  if (j.mcpHeadingFrom > 0 && now.AGL > j.mcpHeadingFrom && BoxChecked(c, j.mcpHeadingBox) &&
      now.APApproachHold == 0 && !f.Modes.Landing && now.APNav1Hold == 0 && now.APHeadingHold == 0)
    Say(c, j.p.EngageMCPHeading, 96, gap, 8);
}

// Descending through the height between the last sample and this one.
bool Through(const FSData& before, const FSData& now, int32_t height) {
  return before.AGL > height && now.AGL <= height;
}

void Minimums(Cockpit& c, const JetType& j, bool panel) {
  const FSData& now = c.link.Now();
  const FSData& before = c.link.Before();
  const int32_t dh = DecisionHeight(now);
  if (!c.flight.Modes.Landing || !panel || now.AGL < 40 || dh <= 0) return;
  if (Through(before, now, dh + 100)) Say(c, j.p.ApproachingMinimums, 96, 30, 4);
  if (Through(before, now, dh)) Say(c, j.p.Minimums, 95, 30, 4);
}

void AutopilotLow(Cockpit& c, const JetType& j, bool panel) {
  const FSData& now = c.link.Now();
  if (!c.flight.Modes.Landing || !panel || !now.AutopilotOn) return;
  constexpr uint8_t kIlsCaptured = 64;
  const bool ils = (now.RadioFlags & kIlsCaptured) != 0;
  if (ils && j.autopilotOffBelow > 0 &&
      Within(now.AGL, j.autopilotOffBelow, j.autopilotOffBelow + 5)) {
    if (j.p.APOffBelow50 != nullptr) {
      Advise(c, Delivery::AtOnce, j.p.APOffBelow50, 55, 30, 0, kNoRemark);
    }
  } else if (!ils && Within(now.AGL, 40, 360)) {
    Say(c, j.p.APOffNoILS, 55, 30, 4);
  }
}

}  // namespace

bool JetOwnsGenerators(const Cockpit& c) {
  return c.aircraft.WantJet();
}

void EnginegeneratorSwitches(Cockpit& c) {
  const FSData& now = c.link.Now();
  for (const GeneratorPhrases& g : kGeneratorPhrases) {
    if (!c.aircraft.WantType(g.type)) continue;
    if (now.Eng1Combustion && !now.Eng1Generator) Say(c, g.on1, 21, 30, 4);
    if (!now.Eng1Combustion && now.Eng1Generator) Say(c, g.off1, 22, 30, 4);
    if (now.Eng2Combustion && !now.Eng2Generator) Say(c, g.on2, 23, 30, 4);
    if (!now.Eng2Combustion && now.Eng2Generator) Say(c, g.off2, 24, 30, 4);
    return;
  }
}

void CheckTakeOffLimitsJets(Cockpit& c) {
  const JetType* j = ActiveJet(c, {&k737, &kLear45, &kCRJ700, &kDC3, &k757, &kOtter});
  if (j == nullptr) return;
  const FSData& now = c.link.Now();
  const FSData& before = c.link.Before();
  if (Battery(now)) {
    if (now.Eng1StarterSwitch == kJetStarterStart && before.Eng1StarterSwitch != kJetStarterStart)
      Say(c, j->p.CheckOilPressure, 57, 30, 4);
    if (now.Eng2StarterSwitch == kJetStarterStart && before.Eng2StarterSwitch != kJetStarterStart)
      Say(c, j->p.CheckOilPressure, 53, 30, 4);
  }
  if (now.OnGround == 0 || c.flight.Flight().TookOff) return;
  if (now.GS > 2 && EnginesFiring(now) > 0 && j->takeOffFlapsHigh > 0) {
    if (now.FlapsLeft < j->takeOffFlapsLow) Teach(c, j->p.TakeOffFlapsTooLittle, 89, 30, 16);
    if (now.FlapsLeft > j->takeOffFlapsHigh) Teach(c, j->p.TakeOffFlapsTooMuch, 63, 30, 16);
  }
  if (!Battery(now)) return;
  const double weight = WeightPounds(c);
  const char* mtowFile = nullptr;
  const int32_t mtow = MaxTakeOffWeight(c, *j, mtowFile);
  if (weight > j->maxTaxiWeight) Teach(c, j->p.WeightExceedsMaxTaxi, 31, 120, 16);
  if (weight > mtow) Teach(c, mtowFile, 33, 120, 16);
}

void CheckSystemsJets(Cockpit& c) {
  const JetType* j = SystemsType(c);
  if (j == nullptr) return;
  const bool panel = PanelRules(c);
  const bool shut = ShutDownMode(c);
  MaxAltitude(c, *j);
  PanelAndSigns(c, *j, panel, shut);
  APURestart(c, *j);
  DestinationRunway(c, *j);
  SpeedRules(c, *j);
  if (j->type == AircraftType::DC3) {
    // The DC3's weight is one limit, checked once in the air for the landing.
    const FSData& now = c.link.Now();
    if (c.flight.Modes.Landing && now.AGL > 300 && WeightPounds(c) > j->maxLandingWeight)
      Teach(c, j->p.LandingWeightTooHeavy, 26, 240, 4);
  }
  PitotRules(c, *j, panel, shut);
  if (JetOwnsGenerators(c)) EnginegeneratorSwitches(c);
  PumpsAndCrossfeed(c, *j, panel, shut);
  AutoBrakes(c, *j, panel);
  AntiIce(c, *j, panel, shut);
  if (j->type == AircraftType::B737 || j->type == AircraftType::B757 ||
      j->type == AircraftType::CRJ700 || j->type == AircraftType::Lear45)
    FuelLeverWrite(c);
}

void CheckStartCRJ700(Cockpit& c) {
  if (!c.aircraft.WantType(AircraftType::CRJ700)) return;
  const FSData& now = c.link.Now();
  const FSData& before = c.link.Before();
  const bool starting =
      (now.Eng1StarterSwitch == kJetStarterStart && before.Eng1StarterSwitch != kJetStarterStart) ||
      (now.Eng2StarterSwitch == kJetStarterStart && before.Eng2StarterSwitch != kJetStarterStart);
  // The engines start on the boost pumps.
  if (starting && Battery(now) && !now.Eng1FuelPump && !now.Eng2FuelPump)
    Say(c, kCRJ700Phrases.FuelPumpOn, 64, 30, 4);
}

void CheckStartOtter(Cockpit& c) {
  if (!c.aircraft.WantType(AircraftType::TwinOtter)) return;
  const FSData& now = c.link.Now();
  const FSData& before = c.link.Before();
  const bool starting =
      (now.Eng1StarterSwitch == kJetStarterStart && before.Eng1StarterSwitch != kJetStarterStart) ||
      (now.Eng2StarterSwitch == kJetStarterStart && before.Eng2StarterSwitch != kJetStarterStart);
  if (starting && (!now.Eng1FuelPump || !now.Eng2FuelPump))
    Say(c, kOtterPhrases.FuelPumpsOn, 64, 30, 8);
}

void VSpeeds(Cockpit& c) {
  const AircraftValues& a = c.aircraft;
  if (!c.flight.Modes.TakeOff || !a.WantJet()) return;
  ProceduresState& p = c.procedures;
  const bool crj = a.WantType(AircraftType::CRJ700);
  if (p.V1 <= 0) p.V1 = crj ? 124 : a.StallCruise - 5;
  if (p.Vr <= 0) p.Vr = crj ? 127 : a.StallCruise - 3;
  if (p.V2 <= 0) p.V2 = crj ? 138 : a.StallCruise + 4;
}

void CallOutTakeOffSpeeds(Cockpit& c) {
  if (!c.flight.Modes.TakeOff || !c.link.HeavyAircraft) return;
  const FSData& now = c.link.Now();
  const FSData& before = c.link.Before();
  const ProceduresState& p = c.procedures;
  if (CrossedUp(before.IAS, now.IAS, 77)) Say(c, "80Kts.wav", 100, 30, 4);
  if (p.V1 > 0 && CrossedUp(before.IAS, now.IAS, p.V1 - 3)) Say(c, "V1.wav", 97, 30, 4);
  if (p.Vr > 0 && CrossedUp(before.IAS, now.IAS, p.Vr - 3)) Say(c, "Rotate.wav", 98, 30, 4);
  if (p.V2 > 0 && CrossedUp(before.IAS, now.IAS, p.V2 - 3)) Say(c, "V2.wav", 99, 30, 4);
}

void CheckTakeOffRollJets(Cockpit& c) {
  const JetType* j = ActiveJet(c, {&k737, &k757, &kLear45, &kCRJ700, &kOtter});
  if (j == nullptr || !c.flight.Modes.TakeOff || c.link.Now().OnGround == 0) return;
  const FSData& now = c.link.Now();
  const FSData& before = c.link.Before();
  const bool panel = PanelRules(c);
  constexpr int32_t kTrimLow = static_cast<int16_t>(0xE3FC);
  constexpr int32_t kTrimHigh = static_cast<int16_t>(0xF7B3);
  constexpr double kSpoolFrom = 27;
  if (panel && !Within(now.ElevatorTrim, kTrimLow, kTrimHigh)) Say(c, j->p.TakeOffTrim, 91, 30, 16);
  const double lowN1 = std::min(now.Eng1N1, now.Eng2N1);
  const double highN1 = std::max(now.Eng1N1, now.Eng2N1);
  if (lowN1 >= kSpoolFrom && highN1 <= j->spoolN1 && now.ParkingBrake)
    Say(c, j->p.N1Spool, 79, 60, 4);
  if (lowN1 > j->releaseN1 && now.ParkingBrake) Say(c, j->p.ParkingBrakesOff, 39, 30, 8);
  // Spooling up without the brakes, still standing.
  if (highN1 >= j->spoolN1 && !now.ParkingBrake && now.GS <= 2)
    Teach(c, j->p.ParkingBrakeOnWhenSpoolingUp, 79, 30, 4);
  if (panel && now.AutopilotOn) Say(c, j->p.APOff, 47, 30, 16);
  if (panel && now.APAltitudeBug < 1500) Say(c, j->p.APALTSetForTO, 52, 30, 16);
  if (panel && std::abs(RelativeBearing(now.APHeadingBug, now.Heading)) > 2)
    Say(c, j->p.APHEADSetForTO, 36, 30, 16);
  if (panel && j->takeOffSpeedBug > 0 && now.APSpeedBug < j->takeOffSpeedBug)
    Say(c, j->p.APIASSetForTO, 38, 30, 16);
  if (panel && !now.YawDamper && Say(c, j->p.YawDamperOn, 89, 30, 16))
    ShowMessage(c, "Yaw damper is OFF. You need to press Ctrl D to turn ON.", 8);
  if (APURunning(now)) Say(c, j->p.APUOff, 88, 30, 16);
  if (CrossedUp(before.GS, now.GS, 5)) Say(c, j->p.TakeOffThrottle, 9, 30, 4);
  if (CrossedUp(before.GS, now.GS, j->rotationGS)) Say(c, j->p.RotationSpeed, 81, 30, 4);
}

void CheckInFlightJets(Cockpit& c) {
  const JetType* j = ActiveJet(c, {&k737, &k757, &kLear45, &kCRJ700, &kOtter});
  if (j == nullptr || !Airborne(c)) return;
  const FSData& now = c.link.Now();
  const FSData& before = c.link.Before();
  const FlightState& f = c.flight;
  const bool panel = PanelRules(c);
  const bool flapsOut = now.FlapsLeft > kFlapsOut;
  if (f.Modes.TakeOff && !flapsOut && before.FlapsLeft > kFlapsOut &&
      now.AGL < j->flapsTooSoonBelow)
    Teach(c, j->p.RetractedFlapsTooSoon, 65, 30, 4);
  if (Climbing(c) && now.AGL > j->flapRetractFrom && flapsOut)
    Teach(c, j->p.StartFlapRetract, 63, 30, 4);
  if (Climbing(c) && Within(now.AGL, 3330, 3470)) Say(c, j->p.IAS250Below10000MSL, 66, 30, 16);
  if (now.AGL > 1000 && EnginesFiring(now) > 0 && panel && !now.AutopilotOn)
    Say(c, j->p.APOn, 64, 30, 8);
  if (j->flapsMaxAltitude > 0 && now.IndicatedAltitude > j->flapsMaxAltitude && flapsOut)
    Teach(c, j->p.MaxAltFlaps, 62, 30, 4);
  AutopilotModes(c, *j, panel);
  if (now.AGL > j->flapsUpFrom && f.Modes.TakeOff && EnginesFiring(now) > 0 && flapsOut &&
      now.IAS > j->flapsUpAboveIAS)
    Say(c, j->p.FlapsUp, 56, ReminderGap(c, 4), 4);
  Minimums(c, *j, panel);
  AutopilotLow(c, *j, panel);
  if (Descending(c) && Within(now.AGL, 240, 300)) Say(c, j->p.FlareAdvice, 37, 60, 4);
  if (Descending(c) && Within(now.AGL, 340, 400)) Say(c, j->p.FlareAdvicePitch, 33, 60, 4);
  if (f.Modes.Landing && now.AGL > 300 && j->maxLandingWeight > 0 &&
      WeightPounds(c) > j->maxLandingWeight)
    Teach(c, j->p.LandingWeightTooHeavy, 26, 240, 4);
  if (f.Modes.Landing && Within(now.AGL, 200, 2000) && !now.SpoilersArmed)
    Say(c, j->p.ArmTheSpoilers, 25, 60, 4);
}

}  // namespace vantoro::procedures
