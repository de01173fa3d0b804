// The Cessna 172 set and what the other propeller aircraft share of it: the
// engine start, the engine running, the take-off roll and the climb and
// approach bands of height. Each type brings its own recordings and the
// differences of its own procedure; a rule whose type has no recording of it
// does not apply to that type.
#include <array>
#include <cmath>
#include <cstdlib>

#include "engine/procedures/procedure_rules.h"
#include "voice/phrases.h"

namespace vantoro::procedures {

namespace {

// The recordings of one type, by rule; nullptr where the type has no such rule.
struct PropPhrases {
  const char* ParkingBrakeOn = nullptr;
  const char* EngineFuelValve1On = nullptr;
  const char* EngineFuelValve2On = nullptr;
  const char* MasterBatteryOn = nullptr;
  const char* ThrottleStartPosition = nullptr;
  const char* FuelPumpOn = nullptr;
  const char* PrimeUpTo = nullptr;
  const char* PrimeNoMoreThan = nullptr;
  const char* PrimerUseWhenStarting = nullptr;
  const char* CowlFlapsFullOpen = nullptr;
  const char* PropLeverStarting = nullptr;
  const char* EngineFuelCutOff_On = nullptr;
  const char* FuelSelectorForStarting = nullptr;
  const char* MagnetosBothForStartup = nullptr;
  const char* EngineOnFire1 = nullptr;
  const char* EngineOnFire2 = nullptr;
  const char* EngineFuelValve1Off = nullptr;
  const char* EngineFuelValve2Off = nullptr;
  const char* Enginegeneratorswitch = nullptr;
  const char* AvionicsMasterSwitchOn = nullptr;
  const char* FuelOurTotalIsPercent = nullptr;
  const char* Percent = nullptr;
  const char* FuelOneOrBothTanksLow = nullptr;
  const char* RightRudder = nullptr;
  const char* vx = nullptr;
  const char* vy = nullptr;
  const char* va = nullptr;
  const char* NormalTurns = nullptr;
  const char* CruiseClimb = nullptr;
  const char* apoff = nullptr;
  const char* FlareAdvice = nullptr;
  const char* FlareAdvicePitch = nullptr;
  const char* LandingSpeedAndRPM = nullptr;
  const char* PitchAndPower = nullptr;
  const char* FlapsUp = nullptr;
  const char* FuelPumpOff = nullptr;
  const char* TakeOffFlapsTooMuch = nullptr;
  const char* TakeOffThrottle = nullptr;
  const char* RotationSpeed = nullptr;
  const char* CheckOilPressure = nullptr;
};
constexpr PropPhrases kC172Phrases = {
    .ParkingBrakeOn = "c172\\ParkingBrakeOn.wav",
    .EngineFuelValve1On = "c172\\EngineFuelValve1On.wav",
    .MasterBatteryOn = "c172\\MasterBatteryOn.wav",
    .ThrottleStartPosition = "c172\\ThrottleStartPosition.wav",
    .FuelPumpOn = "c172\\FuelPumpOn.wav",
    .EngineOnFire1 = "c172\\EngineOnFire1.wav",
    .EngineFuelValve1Off = "c172\\EngineFuelValve1Off.wav",
    .Enginegeneratorswitch = "c172\\Enginegeneratorswitch.wav",
    .AvionicsMasterSwitchOn = "c172\\AvionicsMasterSwitchOn.wav",
    .FuelOurTotalIsPercent = "c172\\FuelOurTotalIsPercent.wav",
    .Percent = "c172\\Percent.wav",
    .FuelOneOrBothTanksLow = "c172\\FuelOneOrBothTanksLow.wav",
    .RightRudder = "c172\\RightRudder.wav",
    .vx = "c172\\vx.wav",
    .vy = "c172\\vy.wav",
    .va = "c172\\va.wav",
    .NormalTurns = "c172\\NormalTurns.wav",
    .apoff = "c172\\apoff.wav",
    .FlareAdvice = "c172\\FlareAdvice.wav",
    .FlareAdvicePitch = "c172\\FlareAdvicePitch.wav",
    .LandingSpeedAndRPM = "c172\\LandingSpeedAndRPM.wav",
    .PitchAndPower = "c172\\PitchAndPower.wav",
    .FlapsUp = "c172\\FlapsUp.wav",
    .FuelPumpOff = "c172\\FuelPumpOff.wav",
    .TakeOffFlapsTooMuch = "c172\\TakeOffFlapsTooMuch.wav",
    .TakeOffThrottle = "c172\\TakeOffThrottle.wav",
    .RotationSpeed = "c172\\RotationSpeed.wav",
    .CheckOilPressure = "c172\\CheckOilPressure.wav",
};
constexpr PropPhrases kC152Phrases = {
    .ParkingBrakeOn = "c152\\ParkingBrakeOn.wav",
    .MasterBatteryOn = "c152\\MasterBatteryOn.wav",
    .ThrottleStartPosition = "c152\\ThrottleStartPosition.wav",
    .PrimeUpTo = "c152\\PrimeUpTo3Strokes.wav",
    .PrimeNoMoreThan = "c152\\PrimeNoMoreThan3Strokes.wav",
    .PrimerUseWhenStarting = "c152\\PrimerUseWhenStarting.wav",
    .EngineOnFire1 = "c152\\EngineOnFire1.wav",
    .Enginegeneratorswitch = "c152\\Enginegeneratorswitch.wav",
    .AvionicsMasterSwitchOn = "c152\\AvionicsMasterSwitchOn.wav",
    .FuelOurTotalIsPercent = "c152\\FuelOurTotalIsPercent.wav",
    .Percent = "c152\\Percent.wav",
    .FuelOneOrBothTanksLow = "c152\\FuelOneOrBothTanksLow.wav",
    .RightRudder = "c152\\RightRudder.wav",
    .vx = "c152\\vx.wav",
    .vy = "c152\\vy.wav",
    .va = "c152\\va.wav",
    .NormalTurns = "c152\\NormalTurns.wav",
    .apoff = "c152\\apoff.wav",
    .FlareAdvice = "c152\\FlareAdvice.wav",
    .FlareAdvicePitch = "c152\\FlareAdvicePitch.wav",
    .LandingSpeedAndRPM = "c152\\LandingSpeedAndRPM.wav",
    .PitchAndPower = "c152\\PitchAndPower.wav",
    .FlapsUp = "c152\\FlapsUp.wav",
    .TakeOffFlapsTooMuch = "c152\\TakeOffFlapsTooMuch.wav",
    .TakeOffThrottle = "c152\\TakeOffThrottle.wav",
    .RotationSpeed = "c152\\RotationSpeed.wav",
    .CheckOilPressure = "c152\\CheckOilPressure.wav",
};
constexpr PropPhrases kC182Phrases = {
    .ParkingBrakeOn = "c182\\zPro_ParkingBrakeOn.wav",
    .EngineFuelValve1On = "c182\\zPro_EngineFuelValve1On.wav",
    .MasterBatteryOn = "c182\\zPro_MasterBatteryOn.wav",
    .ThrottleStartPosition = "c182\\zPro_ThrottleStartPosition.wav",
    .FuelPumpOn = "c182\\zPro_FuelPumpOn.wav",
    .CowlFlapsFullOpen = "c182\\zPro_CowlFlapsFullOpen.wav",
    .PropLeverStarting = "c182\\zPro_PropLeverStarting.wav",
    .EngineOnFire1 = "c182\\zPro_EngineOnFire1.wav",
    .EngineFuelValve1Off = "c182\\zPro_EngineFuelValve1Off.wav",
    .Enginegeneratorswitch = "c182\\zPro_Enginegeneratorswitch.wav",
    .AvionicsMasterSwitchOn = "c182\\zPro_AvionicsMasterSwitchOn.wav",
    .FuelOurTotalIsPercent = "c182\\zPro_FuelOurTotalIsPercent.wav",
    .Percent = "c182\\zPro_Percent.wav",
    .FuelOneOrBothTanksLow = "c182\\zPro_FuelOneOrBothTanksLow.wav",
    .RightRudder = "c182\\zPro_RightRudder.wav",
    .vx = "c182\\zPro_vx.wav",
    .vy = "c182\\zPro_vy.wav",
    .va = "c182\\zPro_va.wav",
    .CruiseClimb = "c182\\zPro_CruiseClimb.wav",
    .apoff = "c182\\zPro_apoff.wav",
    .FlareAdvice = "c182\\zPro_FlareAdvice.wav",
    .FlareAdvicePitch = "c182\\zPro_FlareAdvicePitch.wav",
    .LandingSpeedAndRPM = "c182\\zPro_LandingSpeedAndRPM.wav",
    .PitchAndPower = "c182\\zPro_PitchAndPower.wav",
    .FlapsUp = "c182\\zPro_FlapsUp.wav",
    .FuelPumpOff = "c182\\zPro_FuelPumpOff.wav",
    .TakeOffFlapsTooMuch = "c182\\zPro_TakeOffFlapsTooMuch.wav",
    .TakeOffThrottle = "c182\\zPro_TakeOffThrottle.wav",
    .RotationSpeed = "c182\\zPro_RotationSpeed.wav",
    .CheckOilPressure = "c182\\zPro_CheckOilPressure.wav",
};
constexpr PropPhrases kMooneyPhrases = {
    .ParkingBrakeOn = "Mooney\\zPro_ParkingBrakeOn.wav",
    .EngineFuelValve1On = "Mooney\\zPro_EngineFuelValve1On.wav",
    .MasterBatteryOn = "Mooney\\zPro_MasterBatteryOn.wav",
    .ThrottleStartPosition = "Mooney\\zPro_ThrottleStartPosition.wav",
    .FuelPumpOn = "Mooney\\zPro_FuelPumpOn.wav",
    .PrimeNoMoreThan = "Mooney\\zPro_PrimeNoMoreThan40Seconds.wav",
    .EngineOnFire1 = "Mooney\\zPro_EngineOnFire1.wav",
    .EngineFuelValve1Off = "Mooney\\zPro_EngineFuelValve1Off.wav",
    .Enginegeneratorswitch = "Mooney\\zPro_Enginegeneratorswitch.wav",
    .AvionicsMasterSwitchOn = "Mooney\\zPro_AvionicsMasterSwitchOn.wav",
    .FuelOurTotalIsPercent = "Mooney\\zPro_FuelOurTotalIsPercent.wav",
    .Percent = "Mooney\\zPro_Percent.wav",
    .FuelOneOrBothTanksLow = "Mooney\\zPro_FuelOneOrBothTanksLow.wav",
    .RightRudder = "Mooney\\zPro_RightRudder.wav",
    .vx = "Mooney\\zPro_vx.wav",
    .vy = "Mooney\\zPro_vy.wav",
    .va = "Mooney\\zPro_va.wav",
    .CruiseClimb = "Mooney\\zPro_CruiseClimb.wav",
    .apoff = "Mooney\\zPro_apoff.wav",
    .FlareAdvice = "Mooney\\zPro_FlareAdvice.wav",
    .FlareAdvicePitch = "Mooney\\zPro_FlareAdvicePitch.wav",
    .LandingSpeedAndRPM = "Mooney\\zPro_LandingSpeedAndRPM.wav",
    .PitchAndPower = "Mooney\\zPro_PitchAndPower.wav",
    .FlapsUp = "Mooney\\zPro_FlapsUp.wav",
    .FuelPumpOff = "Mooney\\zPro_FuelPumpOff.wav",
    .TakeOffFlapsTooMuch = "Mooney\\zPro_TakeOffFlapsTooMuch.wav",
    .TakeOffThrottle = "Mooney\\zPro_TakeOffThrottle.wav",
    .RotationSpeed = "Mooney\\zPro_RotationSpeed.wav",
    .CheckOilPressure = "Mooney\\zPro_CheckOilPressure.wav",
};
constexpr PropPhrases kC208BPhrases = {
    .ParkingBrakeOn = "c208B\\zPro_ParkingBrakeOn.wav",
    .EngineFuelValve1On = "c208B\\zPro_EngineFuelValve1On.wav",
    .MasterBatteryOn = "c208B\\zPro_MasterBatteryOn.wav",
    .FuelPumpOn = "c208B\\zPro_FuelPumpOn.wav",
    .PropLeverStarting = "c208B\\zPro_PropLeverStarting.wav",
    .EngineFuelCutOff_On = "c208B\\zPro_EngineFuelCutOff_On.wav",
    .FuelSelectorForStarting = "c208B\\zPro_FuelSelectorForStarting.wav",
    .EngineOnFire1 = "c208B\\zPro_EngineOnFire1.wav",
    .EngineFuelValve1Off = "c208B\\zPro_EngineFuelValve1Off.wav",
    .Enginegeneratorswitch = "c208B\\zPro_Enginegeneratorswitch.wav",
    .AvionicsMasterSwitchOn = "c208B\\zPro_AvionicsMasterSwitchOn.wav",
    .FuelOurTotalIsPercent = "c208B\\zPro_FuelOurTotalIsPercent.wav",
    .Percent = "c208B\\zPro_Percent.wav",
    .FuelOneOrBothTanksLow = "c208B\\zPro_FuelOneOrBothTanksLow.wav",
    .RightRudder = "c208B\\zPro_RightRudder.wav",
    .vx = "c208B\\zPro_vx.wav",
    .vy = "c208B\\zPro_vy.wav",
    .va = "c208B\\zPro_va.wav",
    .CruiseClimb = "c208B\\zPro_CruiseClimb.wav",
    .apoff = "c208B\\zPro_apoff.wav",
    .FlareAdvice = "c208B\\zPro_FlareAdvice.wav",
    .FlareAdvicePitch = "c208B\\zPro_FlareAdvicePitch.wav",
    .LandingSpeedAndRPM = "c208B\\zPro_LandingSpeedAndRPM.wav",
    .PitchAndPower = "c208B\\zPro_PitchAndPower.wav",
    .FlapsUp = "c208B\\zPro_FlapsUp.wav",
    .FuelPumpOff = "c208B\\zPro_FuelPumpOff.wav",
    .TakeOffFlapsTooMuch = "c208B\\zPro_TakeOffFlapsTooMuch.wav",
    .TakeOffThrottle = "c208B\\zPro_TakeOffThrottle.wav",
    .RotationSpeed = "c208B\\zPro_RotationSpeed.wav",
    .CheckOilPressure = "c208B\\zPro_CheckOilPressure.wav",
};
constexpr PropPhrases kBaronPhrases = {
    .ParkingBrakeOn = "BaronB58\\zPro_ParkingBrakeOn.wav",
    .EngineFuelValve1On = "BaronB58\\zPro_EngineFuelValve1On.wav",
    .EngineFuelValve2On = "BaronB58\\zPro_EngineFuelValve2On.wav",
    .MasterBatteryOn = "BaronB58\\zPro_MasterBatteryOn.wav",
    .ThrottleStartPosition = "BaronB58\\zPro_ThrottleStartPosition.wav",
    .FuelPumpOn = "BaronB58\\zPro_FuelPumpOn.wav",
    .CowlFlapsFullOpen = "BaronB58\\zPro_CowlFlapsFullOpen.wav",
    .EngineOnFire1 = "BaronB58\\zPro_EngineOnFire1.wav",
    .EngineOnFire2 = "BaronB58\\zPro_EngineOnFire2.wav",
    .EngineFuelValve1Off = "BaronB58\\zPro_EngineFuelValve1Off.wav",
    .EngineFuelValve2Off = "BaronB58\\zPro_EngineFuelValve2Off.wav",
    .Enginegeneratorswitch = "BaronB58\\zPro_Enginegeneratorswitch.wav",
    .AvionicsMasterSwitchOn = "BaronB58\\zPro_AvionicsMasterSwitchOn.wav",
    .FuelOurTotalIsPercent = "BaronB58\\zPro_FuelOurTotalIsPercent.wav",
    .Percent = "BaronB58\\zPro_Percent.wav",
    .FuelOneOrBothTanksLow = "BaronB58\\zPro_FuelOneOrBothTanksLow.wav",
    .RightRudder = "BaronB58\\zPro_RightRudder.wav",
    .vx = "BaronB58\\zPro_vx.wav",
    .vy = "BaronB58\\zPro_vy.wav",
    .va = "BaronB58\\zPro_va.wav",
    .CruiseClimb = "BaronB58\\zPro_CruiseClimb.wav",
    .apoff = "BaronB58\\zPro_apoff.wav",
    .FlareAdvice = "BaronB58\\zPro_FlareAdvice.wav",
    .FlareAdvicePitch = "BaronB58\\zPro_FlareAdvicePitch.wav",
    .LandingSpeedAndRPM = "BaronB58\\zPro_LandingSpeedAndRPM.wav",
    .PitchAndPower = "BaronB58\\zPro_PitchAndPower.wav",
    .FlapsUp = "BaronB58\\zPro_FlapsUp.wav",
    .FuelPumpOff = "BaronB58\\zPro_FuelPumpOff.wav",
    .TakeOffFlapsTooMuch = "BaronB58\\zPro_TakeOffFlapsTooMuch.wav",
    .TakeOffThrottle = "BaronB58\\zPro_TakeOffThrottle.wav",
    .RotationSpeed = "BaronB58\\zPro_RotationSpeed.wav",
    .CheckOilPressure = "BaronB58\\zPro_CheckOilPressure.wav",
};
constexpr PropPhrases kKingAirPhrases = {
    .ParkingBrakeOn = "BeechKingAir350\\zPro_ParkingBrakeOn.wav",
    .EngineFuelValve1On = "BeechKingAir350\\zPro_EngineFuelValve1On.wav",
    .EngineFuelValve2On = "BeechKingAir350\\zPro_EngineFuelValve2On.wav",
    .MasterBatteryOn = "BeechKingAir350\\zPro_MasterBatteryOn.wav",
    .FuelPumpOn = "BeechKingAir350\\zPro_FuelPumpOn.wav",
    .PropLeverStarting = "BeechKingAir350\\zPro_PropLeverStarting.wav",
    .EngineOnFire1 = "BeechKingAir350\\zPro_EngineOnFire1.wav",
    .EngineOnFire2 = "BeechKingAir350\\zPro_EngineOnFire2.wav",
    .EngineFuelValve1Off = "BeechKingAir350\\zPro_EngineFuelValve1Off.wav",
    .EngineFuelValve2Off = "BeechKingAir350\\zPro_EngineFuelValve2Off.wav",
    .Enginegeneratorswitch = "BeechKingAir350\\zPro_Enginegeneratorswitch.wav",
    .AvionicsMasterSwitchOn = "BeechKingAir350\\zPro_AvionicsMasterSwitchOn.wav",
    .FuelOurTotalIsPercent = "BeechKingAir350\\zPro_FuelOurTotalIsPercent.wav",
    .Percent = "BeechKingAir350\\zPro_Percent.wav",
    .FuelOneOrBothTanksLow = "BeechKingAir350\\zPro_FuelOneOrBothTanksLow.wav",
    .RightRudder = "BeechKingAir350\\zPro_RightRudder.wav",
    .vx = "BeechKingAir350\\zPro_vx.wav",
    .vy = "BeechKingAir350\\zPro_vy.wav",
    .va = "BeechKingAir350\\zPro_va.wav",
    .CruiseClimb = "BeechKingAir350\\zPro_CruiseClimb.wav",
    .apoff = "BeechKingAir350\\zPro_apoff.wav",
    .FlareAdvice = "BeechKingAir350\\zPro_FlareAdvice.wav",
    .FlareAdvicePitch = "BeechKingAir350\\zPro_FlareAdvicePitch.wav",
    .LandingSpeedAndRPM = "BeechKingAir350\\zPro_LandingSpeedAndRPM.wav",
    .PitchAndPower = "BeechKingAir350\\zPro_PitchAndPower.wav",
    .FlapsUp = "BeechKingAir350\\zPro_FlapsUp.wav",
    .FuelPumpOff = "BeechKingAir350\\zPro_FuelPumpOff.wav",
    .TakeOffFlapsTooMuch = "BeechKingAir350\\zPro_TakeOffFlapsTooMuch.wav",
    .TakeOffThrottle = "BeechKingAir350\\zPro_TakeOffThrottle.wav",
    .RotationSpeed = "BeechKingAir350\\zPro_RotationSpeed.wav",
    .CheckOilPressure = "BeechKingAir350\\zPro_CheckOilPressure.wav",
};
constexpr PropPhrases kDC3Phrases = {
    .ParkingBrakeOn = "DC3\\zPro_ParkingBrakeOn.wav",
    .EngineFuelValve1On = "DC3\\zPro_EngineFuelValve1On.wav",
    .EngineFuelValve2On = "DC3\\zPro_EngineFuelValve2On.wav",
    .MasterBatteryOn = "DC3\\zPro_MasterBatteryOn.wav",
    .PrimeUpTo = "DC3\\zPro_PrimeUpTo4Strokes.wav",
    .PrimeNoMoreThan = "DC3\\zPro_PrimeNoMoreThan4Strokes.wav",
    .CowlFlapsFullOpen = "DC3\\zPro_CowlFlapsFullOpen.wav",
    .MagnetosBothForStartup = "DC3\\zPro_MagnetosBothForStartup.wav",
    .EngineOnFire1 = "DC3\\zPro_EngineOnFire1.wav",
    .EngineOnFire2 = "DC3\\zPro_EngineOnFire2.wav",
    .EngineFuelValve1Off = "DC3\\zPro_EngineFuelValve1Off.wav",
    .EngineFuelValve2Off = "DC3\\zPro_EngineFuelValve2Off.wav",
    .Enginegeneratorswitch = "DC3\\zPro_Enginegeneratorswitch.wav",
    .AvionicsMasterSwitchOn = "DC3\\zPro_AvionicsMasterSwitchOn.wav",
    .FuelOurTotalIsPercent = "DC3\\zPro_FuelOurTotalIsPercent.wav",
    .Percent = "DC3\\zPro_Percent.wav",
    .FuelOneOrBothTanksLow = "DC3\\zPro_FuelOneOrBothTanksLow.wav",
    .RightRudder = "DC3\\zPro_RightRudder.wav",
    .vx = "DC3\\zPro_vx.wav",
    .vy = "DC3\\zPro_vy.wav",
    .va = "DC3\\zPro_va.wav",
    .CruiseClimb = "DC3\\zPro_CruiseClimb.wav",
    .apoff = "DC3\\zPro_apoff.wav",
    .FlareAdvice = "DC3\\zPro_FlareAdvice.wav",
    .FlareAdvicePitch = "DC3\\zPro_FlareAdvicePitch.wav",
    .LandingSpeedAndRPM = "DC3\\zPro_LandingSpeedAndRPM.wav",
    .PitchAndPower = "DC3\\zPro_PitchAndPower.wav",
    .FlapsUp = "DC3\\zPro_FlapsUp.wav",
    .FuelPumpOff = "DC3\\zPro_FuelPumpOff.wav",
    .TakeOffFlapsTooMuch = "DC3\\zPro_TakeOffFlapsTooMuch.wav",
    .TakeOffThrottle = "DC3\\zPro_TakeOffThrottle.wav",
    .RotationSpeed = "DC3\\zPro_RotationSpeed.wav",
    .CheckOilPressure = "DC3\\zPro_CheckOilPressure.wav",
};

// How the take-off flaps of a type are judged.
enum class TakeOffFlaps {
  AbovePosition,   // above the position's limit + 245
  AboveOut,        // any flap out
  AboveFixed,      // above a fixed indicator value
  AroundPosition,  // within position - 500 .. position + 245
};

struct PropType {
  AircraftType type;
  const PropPhrases& p;
  int engines;
  TakeOffFlaps flapsRule;
  int32_t flapsValue;         // the position, or the fixed value
  int32_t rotationGS;         // the rotation reminder's ground speed
  int32_t autopilotOffBelow;  // feet above the ground, descending
  int32_t flapsUpFrom;        // "flaps up" above this height
  int32_t primerStrokes;      // the most strokes of the primer; 0 without a primer rule
};

constexpr PropType kC172{
    AircraftType::C172, kC172Phrases, 1, TakeOffFlaps::AbovePosition, 1, 10, 1000, 450, 0};
constexpr PropType kC152{
    AircraftType::C152, kC152Phrases, 1, TakeOffFlaps::AbovePosition, 1, 10, 1000, 450, 3};
constexpr PropType kC182{
    AircraftType::C182, kC182Phrases, 1, TakeOffFlaps::AbovePosition, 2, 10, 1000, 450, 0};
constexpr PropType kMooney{
    AircraftType::Mooney, kMooneyPhrases, 1, TakeOffFlaps::AboveOut, 0, 10, 1000, 450, 0};
constexpr PropType kC208B{
    AircraftType::C208B, kC208BPhrases, 1, TakeOffFlaps::AroundPosition, 2, 10, 1000, 450, 0};
constexpr PropType kBaron{
    AircraftType::Baron, kBaronPhrases, 2, TakeOffFlaps::AboveOut, 0, 10, 1000, 450, 0};
constexpr PropType kKingAir{
    AircraftType::KingAir350, kKingAirPhrases, 2, TakeOffFlaps::AboveFixed, 9000, 50, 158, 450, 0};
constexpr PropType kDC3{
    AircraftType::DC3, kDC3Phrases, 2, TakeOffFlaps::AbovePosition, 1, 15, 500, 450, 4};

constexpr const PropType* kPropTypes[] = {&kC172,  &kC152,  &kC182,    &kMooney,
                                          &kC208B, &kBaron, &kKingAir, &kDC3};

const PropType* ActiveProp(const Cockpit& c) {
  for (const PropType* t : kPropTypes)
    if (c.aircraft.WantType(t->type)) return t;
  return nullptr;
}

// The Cessna 172 of the A2A folder runs its own electrics and fuel.
bool A2AModel(const Cockpit& c) {
  return AircraftFolderName(c.link.Now().AirFile) == "A2A_C172";
}

// Starter switch of each engine, its fuel valve, pump, fire and generator.
int32_t Starter(const FSData& d, int e) {
  return e == 1 ? d.Eng1StarterSwitch : d.Eng2StarterSwitch;
}
bool Valve(const FSData& d, int e) {
  return e == 1 ? d.Eng1FuelValve : d.Eng2FuelValve;
}
bool Pump(const FSData& d, int e) {
  return e == 1 ? d.Eng1FuelPump : d.Eng2FuelPump;
}
bool Fire(const FSData& d, int e) {
  return e == 1 ? d.Eng1OnFire : d.Eng2OnFire;
}
bool Generator(const FSData& d, int e) {
  return e == 1 ? d.Eng1Generator : d.Eng2Generator;
}
int32_t Primer(const FSData& d, int e) {
  return e == 1 ? d.Eng1PrimerLevel : d.Eng2PrimerLevel;
}
int32_t PropLever(const FSData& d, int e) {
  return e == 1 ? d.Eng1PropLever : d.Eng2PropLever;
}
int32_t Mixture(const FSData& d, int e) {
  return e == 1 ? d.Eng1MixtureLever : d.Eng2MixtureLever;
}
double CowlFlaps(const FSData& d, int e) {
  return e == 1 ? d.Eng1CowlFlaps : d.Eng2CowlFlaps;
}
// The avionics master switch: the panel's switch (0x3103) or the
// simulator's own (0x2E80), whichever the aircraft drives.
bool Avionics(const FSData& d) {
  return d.RadioPower2 || d.MasterAvionics != 0;
}

// Engine start: the starter moving to start in this sample and not the last.
bool StarterEngaged(const Cockpit& c, int e) {
  return Starter(c.link.Now(), e) == kPistonStarter &&
         Starter(c.link.Before(), e) != kPistonStarter;
}

constexpr int32_t kThrottleStartLow = 1000;
constexpr int32_t kThrottleStartHigh = 6000;
constexpr int32_t kLeverFull = 16000;      // propeller or mixture lever fully forward
constexpr int32_t kLeverFeathered = 1000;  // at or below: feathered, or cut off
constexpr double kCowlFlapsOpen = 0.9;
constexpr double kTankLowPercent = 50;
constexpr int32_t kMooneyPrimerLongest = 40;

void StartEngine(Cockpit& c, const PropType& t, int e) {
  const FSData& now = c.link.Now();
  const FSData& before = c.link.Before();
  const PropPhrases& p = t.p;
  const bool a2a = A2AModel(c);
  const bool engaged = StarterEngaged(c, e);
  // The battery is wanted from the magnetos on.
  const bool magnetos =
      Starter(now, e) == kPistonBothMagnetos && Starter(before, e) != kPistonBothMagnetos;
  if ((engaged || magnetos) && !a2a && !now.MasterBattery) Teach(c, p.MasterBatteryOn, 63, 30, 8);
  if (!engaged) return;
  if (!now.ParkingBrake && now.OnGround != 0 && now.GS < 3) Teach(c, p.ParkingBrakeOn, 66, 30, 8);
  if (!Valve(now, e) && !a2a) {
    if (t.type == AircraftType::C208B) {
      Teach(c, p.EngineFuelCutOff_On, 65, 30, 8);
    } else {
      Teach(c, e == 1 ? p.EngineFuelValve1On : p.EngineFuelValve2On, 65, 30, 8);
    }
  }
  if (!Within(e == 1 ? now.Eng1Throttle : now.Eng2Throttle, kThrottleStartLow, kThrottleStartHigh))
    Teach(c, p.ThrottleStartPosition, 90, 30, 8);
  if (!Pump(now, e)) Teach(c, p.FuelPumpOn, 64, 30, 8);
  if (t.primerStrokes > 0) {
    if (Primer(now, e) == 0) Say(c, p.PrimeUpTo, 67, 30, 8);
    if (Primer(now, e) > t.primerStrokes) Say(c, p.PrimeNoMoreThan, 67, 30, 8);
  }
  if (t.type == AircraftType::Mooney && Primer(now, e) > kMooneyPrimerLongest)
    Say(c, p.PrimeNoMoreThan, 67, 30, 8);
  if (CowlFlaps(now, e) < kCowlFlapsOpen) Say(c, p.CowlFlapsFullOpen, 68, 30, 8);
  if (t.type == AircraftType::C208B) {
    if (PropLever(now, e) > kLeverFeathered) Say(c, p.PropLeverStarting, 69, 30, 8);
    if (now.FuelSelector == 0) Say(c, p.FuelSelectorForStarting, 70, 30, 8);
  } else if (PropLever(now, e) < kLeverFull) {
    Say(c, p.PropLeverStarting, 69, 30, 8);
  }
  if (t.type == AircraftType::DC3 && Starter(before, e) != kPistonBothMagnetos)
    Say(c, p.MagnetosBothForStartup, 70, 30, 8);
}

void RunningEngine(Cockpit& c, const PropType& t, int e) {
  const FSData& now = c.link.Now();
  const FSData& before = c.link.Before();
  const PropPhrases& p = t.p;
  const bool a2a = A2AModel(c);
  if (Fire(now, e) && !Fire(before, e))
    Teach(c, e == 1 ? p.EngineOnFire1 : p.EngineOnFire2, 64, 60, 8);
  if (Fire(now, e) && Valve(now, e) && !a2a)
    Teach(c, e == 1 ? p.EngineFuelValve1Off : p.EngineFuelValve2Off, 63, 30, 8);
  if (Firing(now, e) && !Generator(now, e) && now.MasterBattery && !a2a)
    Teach(c, p.Enginegeneratorswitch, 51, 60, 8);
  // The Mooney runs its boost pump for the start only.
  if (t.type == AircraftType::Mooney && Firing(now, e) && Pump(now, e) && now.OnGround != 0 &&
      !c.flight.Modes.TakeOff)
    Say(c, "Mooney\\zPro_FuelPumpOff.wav", 64, 30, 8);
}

}  // namespace

void CheckStartProps(Cockpit& c) {
  const PropType* t = ActiveProp(c);
  if (t == nullptr) return;
  for (int e = 1; e <= t->engines; ++e) StartEngine(c, *t, e);
  // The primer belongs to a cold start, not to a running engine.
  const FSData& now = c.link.Now();
  if (now.Eng1Combustion && Primer(now, 1) > Primer(c.link.Before(), 1))
    Say(c, t->p.PrimerUseWhenStarting, 67, 30, 8);
}

// The King Air's condition levers: cut off while the starter engages, low
// idle once it turns the engine.
void CheckMixtureForStart(Cockpit& c) {
  if (!c.aircraft.WantType(AircraftType::KingAir350)) return;
  const FSData& now = c.link.Now();
  const FSData& before = c.link.Before();
  for (int e = 1; e <= 2; ++e) {
    if (StarterEngaged(c, e) && Mixture(now, e) > kLeverFeathered) {
      Say(c, "BeechKingAir350\\zPro_MixtureOFFToStart.wav", 68, 30, 8);
    } else if (Starter(now, e) == kPistonStarter && Starter(before, e) == kPistonStarter &&
               Mixture(now, e) <= kLeverFeathered && !Firing(now, e)) {
      Say(c, "BeechKingAir350\\zPro_MixtureFULLToStart.wav", 68, 30, 8);
    }
  }
}

void CheckEngineRunningProps(Cockpit& c) {
  const PropType* t = ActiveProp(c);
  if (t == nullptr || t->type == AircraftType::DC3) return;
  const FSData& now = c.link.Now();
  const FSData& before = c.link.Before();
  const PropPhrases& p = t->p;
  for (int e = 1; e <= t->engines; ++e) RunningEngine(c, *t, e);
  if ((EnginesFiring(now) > 0 || Airborne(c)) && !Avionics(now))
    Teach(c, p.AvionicsMasterSwitchOn, 65, 60, 8);
  if (now.MasterBattery && !before.MasterBattery && p.FuelOurTotalIsPercent != nullptr) {
    Voice v = c.voice();
    PlayAlways(v, p.FuelOurTotalIsPercent);
    SpeakAsANumberAlways(v, std::round(now.FuelPercent));
    PlayAlways(v, p.Percent);
  }
  if (now.TotalFuelCapacity > 0 &&
      (now.TankLeftMainPct <= kTankLowPercent || now.TankRightMainPct <= kTankLowPercent))
    Teach(c, p.FuelOneOrBothTanksLow, 66, 30, 8);
}

void CheckOilPressureProps(Cockpit& c) {
  const PropType* t = ActiveProp(c);
  if (t == nullptr) return;
  const FSData& now = c.link.Now();
  const FSData& before = c.link.Before();
  for (int e = 1; e <= t->engines; ++e)
    if (Firing(now, e) && !Firing(before, e)) Say(c, t->p.CheckOilPressure, 57, 30, 4);
}

void CheckTakeOffRollProps(Cockpit& c) {
  const PropType* t = ActiveProp(c);
  const FSData& now = c.link.Now();
  const FSData& before = c.link.Before();
  if (t == nullptr || !c.flight.Modes.TakeOff || now.OnGround == 0) return;
  const PropPhrases& p = t->p;
  const AircraftValues& a = c.aircraft;
  const size_t position = static_cast<size_t>(t->flapsValue);
  bool tooMuch = false;
  switch (t->flapsRule) {
    case TakeOffFlaps::AbovePosition:
      tooMuch = now.FlapsLeft > a.FlapAngleLimit[position] + kFlapMargin;
      break;
    case TakeOffFlaps::AboveOut:
      tooMuch = now.FlapsLeft > kFlapsOut;
      break;
    case TakeOffFlaps::AboveFixed:
      tooMuch = now.FlapsLeft > t->flapsValue;
      break;
    case TakeOffFlaps::AroundPosition:
      tooMuch = !Within(now.FlapsLeft, a.FlapAngleLimit[position] - 500,
                        a.FlapAngleLimit[position] + kFlapMargin);
      break;
  }
  if (tooMuch) {
    if (t->type == AircraftType::Mooney) {
      Teach(c, "Mooney\\zPro_FlapsTakeOff.wav", 63, 30, 4);
    } else {
      Teach(c, p.TakeOffFlapsTooMuch, 63, 30, 4);
    }
  }
  if (now.AutopilotOn) Say(c, p.apoff, 47, 30, 4);
  if (CrossedUp(before.GS, now.GS, 5)) Say(c, p.TakeOffThrottle, 9, 30, 4);
  if (CrossedUp(before.GS, now.GS, t->rotationGS)) Say(c, p.RotationSpeed, 81, 30, 4);
  const bool pumpsOff = !now.Eng1FuelPump && (t->engines < 2 || !now.Eng2FuelPump);
  const bool anyPump = now.Eng1FuelPump || now.Eng2FuelPump;
  if (t->type == AircraftType::Mooney && pumpsOff)
    Say(c, "Mooney\\zPro_zPro_FuelPumpOn.wav", 64, 30, 4);
  if (t->type == AircraftType::DC3 && pumpsOff) Say(c, "DC3\\zPro_FuelPumpsOn.wav", 64, 30, 4);
  if (t->type == AircraftType::Baron && anyPump)
    Say(c, "BaronB58\\zPro_FuelPumpsOFF.wav", 64, 30, 4);
}

void CheckInFlightProps(Cockpit& c) {
  const PropType* t = ActiveProp(c);
  if (t == nullptr) return;
  const FSData& now = c.link.Now();
  const FSData& before = c.link.Before();
  const FlightState& f = c.flight;
  const PropPhrases& p = t->p;
  // The DC3 taxies with its tail wheel free and locks it on the runway.
  if (t->type == AircraftType::DC3 && f.Modes.Taxiing && !TaxiingInMode(c) && now.GS < 1 &&
      EnginesFiring(now) > 0)
    Say(c, "DC3\\zPro_TailWheelLockOn.wav", 49, 120, 8);
  if (!Airborne(c)) return;
  const double h = now.AGL;
  if (Climbing(c)) {
    if (Within(h, 50, 100)) Say(c, p.RightRudder, 55, 60, 4);
    if (Within(h, 100, 200)) Say(c, p.vx, 35, 60, 4);
    if (Within(h, 200, 300)) Say(c, p.vy, 34, 60, 4);
    if (Within(h, 300, 400)) Say(c, p.va, 66, 60, 4);
    if (Within(h, 400, 500)) Say(c, p.NormalTurns ? p.NormalTurns : p.CruiseClimb, 63, 60, 4);
  }
  if (Descending(c)) {
    if (Within(h, 40, t->autopilotOffBelow) && now.AutopilotOn) Say(c, p.apoff, 47, 60, 4);
    if (Within(h, 240, 300)) Say(c, p.FlareAdvice, 37, 60, 4);
    if (Within(h, 340, 400)) Say(c, p.FlareAdvicePitch, 33, 60, 4);
    if (Within(h, 440, 500)) Say(c, p.LandingSpeedAndRPM, 34, 60, 4);
    if (Within(h, 540, 600)) Say(c, p.PitchAndPower, 35, 60, 4);
  }
  if (h > t->flapsUpFrom && f.Modes.TakeOff && now.FlapsLeft > kFlapsOut)
    Say(c, p.FlapsUp, 56, 30, 4);
  if (h > 550 && f.Modes.TakeOff && (now.Eng1FuelPump || now.Eng2FuelPump))
    Say(c, p.FuelPumpOff, 64, 30, 4);
  if (t->type == AircraftType::C208B && h < 200) {
    if (before.IAS > 150 && now.IAS <= 150) Say(c, "c208B\\zPro_Flaps20_OKbelow150.wav", 48, 30, 8);
    if (before.IAS > 125 && now.IAS <= 125) Say(c, "c208B\\zPro_Flaps30_OKbelow125.wav", 48, 30, 8);
  }
  if (t->type == AircraftType::DC3 && f.Modes.Landing && Within(h, 400, 3000)) {
    if (!now.Eng1FuelPump) Say(c, "DC3\\zPro_FuelPumpLeftOn.wav", 64, 30, 4);
    if (!now.Eng2FuelPump) Say(c, "DC3\\zPro_FuelPumpRightOn.wav", 64, 30, 4);
  }
}

// The DC3 and the Twin Otter: each flap position's own limit, from fixed
// speeds, low on the approach. The Otter's fourth is 17 knots, kept so.
void LandingFlapLimits(Cockpit& c) {
  struct Limits {
    AircraftType type;
    std::array<const char*, 4> files;
  };
  static constexpr Limits kLimits[] = {
      {AircraftType::DC3,
       {"DC3\\zPro_FlapsSpeed1.wav", "DC3\\zPro_FlapsSpeed2.wav", "DC3\\zPro_FlapsSpeed3.wav",
        "DC3\\zPro_FlapsSpeed4.wav"}},
      {AircraftType::TwinOtter,
       {"TwinOtter\\FlapsSpeed1.wav", "TwinOtter\\FlapsSpeed2.wav", "TwinOtter\\FlapsSpeed3.wav",
        "TwinOtter\\FlapsSpeed4.wav"}},
  };
  static constexpr std::array<int32_t, 4> kSpeeds = {135, 99, 97, 17};
  static constexpr std::array<int, 4> kIds = {48, 47, 24, 24};
  const FSData& now = c.link.Now();
  const AircraftValues& a = c.aircraft;
  if (!c.flight.Modes.Landing || !Airborne(c) || now.AGL >= 200) return;
  for (const Limits& l : kLimits) {
    if (!a.WantType(l.type)) continue;
    for (size_t n = 1; n <= 4; ++n) {
      const int32_t beyond = n == 1 ? kFlapsOut : a.FlapAngleLimit[n - 1] + kFlapMargin;
      if (now.FlapsLeft > beyond && now.IAS > kSpeeds[n - 1])
        Say(c, l.files[n - 1], kIds[n - 1], 240, 8);
    }
    return;
  }
}

}  // namespace vantoro::procedures
