// One decoded snapshot of the simulator. Every rule of the instructor reads
// these fields, of the current and of the previous record, and never the raw
// offset buffers. Field names, sources and conversions are those of the
// decoder (snapshot.cpp); whole numbers are 32-bit here whatever their width in
// the simulator, flags are bools, fixed-point values are doubles.
#pragma once

#include <array>
#include <cstdint>
#include <string>

namespace vantoro {

// The first of the sixteen failure bytes; FailFlags[offset - kFailFlagsOffset].
inline constexpr uint32_t kFailFlagsOffset = 0x0B64;

struct FSData {
  int32_t ZuluHour{};    // simulator zulu hour
  int32_t ZuluMinute{};  // simulator zulu minute
  int32_t Second{};      // simulator second
  int32_t DayOfYear{};   // simulator day of the year
  bool YawDamper{};      // yaw damper on
  bool Flag0B51{};       // power source flag consulted with the battery rules of the jets
  bool Flag341C{};       // aircraft-rule flag
  bool Flag341D{};       // aircraft-rule flag
  bool Flag341F{};   // aircraft-rule flag; with both engines firing on the twin turboprop it means
                     // cross-feed open
  bool Flag0B58{};   // aircraft-rule flag
  bool Flag2438{};   // aircraft-rule flag
  bool PitotHeat{};  // pitot heat on
  int32_t MagVar{};  // magnetic variation, degrees: CLng(raw x 360 / 65536); a westerly value
                     // therefore reads near 360
  int32_t TotalFuelCapacity{};  // sum of the eleven tank capacities, US gallons
  int32_t TotalFuelGallons{};   // sum of the eleven tanks' gallons
  double FuelGallonsWeight{};   // sum over the eleven tanks of tank gallons x FuelWeightPerGallon:
                                // total fuel weight, pounds
  double FuelLbLeftMain{};      // left main tank gallons x FuelWeightPerGallon
  double FuelLbRightMain{};     // right main tank gallons x FuelWeightPerGallon
  double
      FuelPercent{};  // 100 / (TotalFuelCapacity / TotalFuelGallons); 0 when TotalFuelGallons is 0
  int32_t Eng1FuelFlow{};  // raw / 4
  int32_t Eng2FuelFlow{};  // raw / 4
  int32_t GS{};            // ground speed, knots: CLng(raw x 1.9438)
  int32_t BarberPole{};    // never-exceed speed of the simulator aircraft, knots: CLng(raw / 128);
                           // forced to 149 for the Cessna 152 family when the aircraft folder
                           // holds the word "Carenado"
  int32_t Pitch{};  // degrees, nose up positive: x = CLng(CLng(raw x 360 / 256) / 256); x under 180
                    // gives -x, else 360 - x (so 180 reads 180)
  int32_t Bank{};   // degrees, right wing down positive, the same rule as Pitch
  int32_t TrueHeading{};       // degrees 0..359: CLng(CLng(raw x 360 / 256) / 256)
  bool Crashed{};              // the simulator reports a crash
  bool Eng1Combustion{};       // engine 1 combustion
  bool Eng2Combustion{};       // engine 2 combustion
  bool Eng3Combustion{};       // engine 3 combustion
  bool Eng4Combustion{};       // engine 4 combustion
  int32_t Elevator{};          // elevator control position, -16383..16383
  int32_t Aileron{};           // aileron control position, -16383..16383
  int32_t Rudder{};            // rudder control position, -16383..16383
  int32_t ElevatorTrim{};      // elevator trim control position
  int32_t Nav1Localiser{};     // NAV1 localiser needle, -127..127
  int32_t Nav1Glideslope{};    // NAV1 glide-slope needle, -127..127
  bool Nav1GlideslopeAlive{};  // NAV1 glide-slope signal alive
  double Latitude{};         // degrees north: raw x 90 / (10001750 x 65536 x 65536), raw being the
                             // 8-byte currency word x 10000
  double Longitude{};        // degrees east: raw x 360 / 2^64
  double Eng2FuelFlowPPH{};  // engine 2 fuel flow, pounds per hour
  double Eng3FuelFlowPPH{};  // engine 3 fuel flow, pounds per hour
  double Eng4FuelFlowPPH{};  // engine 4 fuel flow, pounds per hour
  double Double0AE0{};       // second flight-model value, read for the log
  double TotalWeight{};      // aircraft value used by the jet rules
  std::string AirFile;       // full path of the simulator's current aircraft file
  std::string FlightFile;    // name of the current flight file
  int32_t FlapsLeft{};  // left flap position, degrees x 256, raw; above 255 (one degree) counts as
                        // flaps out
  int32_t IAS{};        // indicated airspeed, knots: CLng(raw / 128)
  int32_t VS{};         // vertical speed, feet per minute, climb positive: CLng(-raw x 3.28084)
  int32_t APHeadingBug{};      // autopilot heading bug, degrees: CLng(raw / 182)
  int32_t Heading{};           // magnetic heading: TrueHeading - MagVar, 360 added if negative
  double AGL{};                // height above the ground, feet: raw x 3.281
  int32_t SurfaceType{};       // surface under the aircraft; 2 = water
  int32_t OnGround{};          // 1 on the ground, 0 in the air
  int32_t Slip{};              // turn coordinator ball, -128..127
  int32_t Eng1Throttle{};      // engine 1 throttle lever, raw; 16384 is full
  int32_t Eng2Throttle{};      // engine 2 throttle lever, raw
  int32_t Eng1PropLever{};     // engine 1 propeller lever, raw
  int32_t Eng2PropLever{};     // engine 2 propeller lever, raw
  std::string AircraftTitle;   // aircraft title line
  int32_t ReadyToFly{};        // above 0: the simulator is not ready to fly
  int32_t InMenu{};            // above 0: a menu or dialog is open
  bool StallWarning{};         // stall warning active
  int32_t GForce{};            // load factor, 625 = 1 g, raw
  bool AutopilotOn{};          // autopilot master on
  int32_t Engines{};           // number of engines
  bool ParkingBrake{};         // parking brake set
  bool SpoilersArmed{};        // spoilers armed
  int32_t SpoilersControl{};   // spoiler lever, raw
  bool SpoilerLeft{};          // left spoiler out
  bool SpoilerRight{};         // right spoiler out
  bool Brake{};                // toe brake in use
  bool GearDown{};             // gear handle down; forced true for the aircraft folders "CARENADO
                               // CT182T_SKYLANE", "A2A_C172" and "A2A_C182"
  bool GearLeftPosition{};     // left gear not fully up
  int32_t Nav1OBS{};           // NAV1 omni-bearing selector, degrees
  bool Paused{};               // simulator paused
  int32_t SurfaceWindSpeed{};  // surface wind speed, knots
  int32_t SurfaceWindDirection{};  // surface wind direction, degrees: CLng(raw / 182)
  int32_t WindSpeed{};             // ambient wind speed, knots
  int32_t WindDirection{};  // ambient wind direction, magnetic: CLng(raw / 182) - MagVar, 360 added
                            // if negative
  int32_t WindRelativeToHeading{};  // RelativeBearing(SurfaceWindDirection, Heading), -180..180
  int32_t WindRelativeToOBS{};      // RelativeBearing(SurfaceWindDirection, Nav1OBS)
  double LoadedWeightWord{};    // zero-fuel weight in 256-pound units (top word of 0x3BFC): above
                                // 100 the aircraft is heavy, as is the Lear family
  double ZeroFuelWeight{};      // zero-fuel weight word, pounds
  bool InstantReplay{};         // instant replay running
  int32_t GroundAltitude{};     // ground elevation, feet: CLng(raw x 3.281)
  int32_t TransponderWord{};    // altimeter setting word (QNH x 16)
  int32_t Altitude{};           // altitude above mean sea level, feet: CLng(raw x 3.281)
  bool InnerMarker{};           // inner marker active
  bool MiddleMarker{};          // middle marker active
  bool OuterMarker{};           // outer marker active
  int32_t Units{};              // simulator units: 2 or above = metres on the altimeter
  int32_t SimRate{};            // simulation rate x 256; 256 is normal
  int32_t AutoBrake{};          // autobrake switch
  int32_t IndicatedAltitude{};  // altimeter reading in feet; x 3.281 when Units is 2 or above
  int32_t CloudHighBase{};      // upper cloud layer base, feet: CLng(raw x 3.281)
  int32_t CloudHighCover{};     // upper cloud layer cover, oktas: Int(Round(raw / 8184))
  int32_t CloudMidBase{};       // middle cloud layer base, feet
  int32_t CloudMidCover{};      // middle cloud layer cover, oktas
  int32_t CloudLowBase{};       // lowest cloud layer base, feet
  int32_t Eng1ManifoldHigh{};   // top byte of engine 1 manifold word
  int32_t Eng2ManifoldHigh{};   // top byte of engine 2 manifold word
  int32_t Eng3ManifoldHigh{};   // top byte of engine 3 manifold word
  int32_t Eng4ManifoldHigh{};   // top byte of engine 4 manifold word
  uint8_t RadioFlags{};         // radio flags; bit 64 = glide-slope captured
  int32_t Nav1ToFrom{};         // NAV1 to/from flag
  int32_t Nav1BackCourse{};     // NAV1 back-course flags (0x0C4A byte), watched for changes
  std::array<bool, 16> FailFlags{};  // sixteen per-instrument failure bytes in offset order,
                                     // index = offset - kFailFlagsOffset: 0x0B65 FailAirspeed,
                                     // 0x0B68 FailCom1, 0x0B6A FailElectrics, 0x0B6B FailEngine
  bool Eng1FuelValve{};              // engine 1 fuel valve open
  bool Eng2FuelValve{};              // engine 2 fuel valve open
  double Visibility{};               // visibility, statute miles: raw / 100
  std::string Vor1Ident;             // NAV1 station identifier
  std::string Vor1Name;              // NAV1 station name
  std::string AtcFlightNumber;       // flight number
  std::string AtcIdentifier;         // tail number
  std::string AtcAirline;            // airline
  std::string AtcType;               // aircraft type
  int32_t TankCentrePct{};           // centre tank level percent: raw / 83886 (0x0B74 u24)
  int32_t TankCentre2Pct{};          // tank level percent: raw / 83886
  int32_t TankCentre3Pct{};          // tank level percent
  int32_t TankExternal1Pct{};        // tank level percent
  int32_t TankExternal2Pct{};        // tank level percent
  double TankLeftMainPct{};          // tank level percent
  int32_t TankLeftAuxPct{};          // tank level percent
  int32_t TankLeftTipPct{};          // tank level percent
  double TankRightMainPct{};         // tank level percent
  int32_t TankRightAuxPct{};         // tank level percent
  int32_t TankRightTipPct{};         // tank level percent
  bool TailDragger{};                // tail wheel aircraft
  int32_t Squawk{};                  // transponder code, the raw BCD word (0x7700 for 7700)
  double Nav1Freq{};                 // NAV1 frequency, MHz: (BCD digits + 10000) / 100
  int32_t Nav2Freq{};                // second stand-by radio frequency, MHz x 100: BCD digits +
                                     // 10000 (word 0x1050 reads 11050)
  int32_t Com2Freq{};                // radio frequency word, BCD digits (0x2150 reads 2150)
  int32_t Com1Freq{};           // COM1 frequency, BCD digits without the leading 1: word 0x2150
                                // (121.50) reads 2150
  int32_t Com1StandbyRaw{};     // COM2 frequency, BCD digits
  int32_t Nav1Standby{};        // stand-by frequency word, BCD digits
  int32_t Nav2Standby{};        // stand-by frequency word, BCD digits
  int32_t Lights{};             // lights bits: 1 nav, 2 beacon, 4 landing, 8 taxi, 16 strobes
  bool RetractableGear{};       // gear retractable
  bool CrashDetection{};        // crash detection in the simulator on
  int32_t Eng1StarterSwitch{};  // engine 1 starter switch word
  int32_t Eng2StarterSwitch{};  // engine 2 starter switch word
  int32_t Eng3StarterSwitch{};  // engine 3 starter switch word (0x09C2)
  int32_t Eng4StarterSwitch{};  // engine 4 starter switch word (0x0A5A)
  int32_t Eng1MixtureLever{};   // engine 1 mixture lever, raw; 16384 is full rich
  int32_t Eng2MixtureLever{};   // engine 2 mixture lever, raw
  int32_t Eng3MixtureLever{};   // engine 3 mixture lever, raw
  int32_t Eng4MixtureLever{};   // engine 4 mixture lever, raw
  bool Eng1FuelPump{};          // engine 1 fuel pump on
  bool Eng2FuelPump{};          // engine 2 fuel pump on
  bool Eng1Primer{};            // engine 1 primer in use
  bool Eng2Primer{};            // engine 2 primer in use
  bool Flag337D{};              // aircraft-rule flag
  bool Flag337C{};              // aircraft-rule flag
  bool Flag2A90{};              // aircraft-rule flag
  int32_t FuelSelector{};  // fuel selector: 0 none, 1 all, 2 left, 3 right, 16 as the aircraft rule
                           // says
  int32_t FuelSelector2{};       // second fuel selector word
  double FuelWeightPerGallon{};  // pounds per gallon: raw / 256
  double DME1Distance{};         // DME1 distance, nautical miles, text to number
  double DME2Distance{};         // DME2 distance, nautical miles
  int32_t Nav2OBS{};             // NAV2 omni-bearing selector, degrees
  int32_t TimeOfDay{};           // simulator time of day; 1 = day
  bool GpsDrivesNav{};           // GPS drives the NAV display
  bool RadioPower1{};            // radios powered, first word
  bool RadioPower2{};            // radios powered, second word
  bool Eng1Generator{};          // engine 1 generator switch
  bool Eng2Generator{};          // engine 2 generator switch
  bool Eng3Generator{};          // engine 3 generator switch
  bool Eng4Generator{};          // engine 4 generator switch
  int32_t Eng1PrimerLevel{};     // engine 1 primer value
  int32_t Eng2PrimerLevel{};     // engine 2 primer value
  bool Eng1OnFire{};             // engine 1 on fire (only when Engines is above 0)
  bool Eng2OnFire{};             // engine 2 on fire (Engines above 1)
  bool Eng3OnFire{};             // engine 3 on fire (Engines above 2)
  bool Eng4OnFire{};             // engine 4 on fire (Engines above 3)
  bool DoorOpen{};               // an exit is open
  std::string MetarText;         // METAR text block
  uint8_t GpsFlags1{};           // GPS flags
  uint8_t GpsFlags2{};           // GPS flags
  std::string EngineType;  // "Piston", "Jet", "Sailplane", "Helo", "Rocket", "Turboprop" for 0..5;
                           // empty for any other value
  int32_t AutoThrottleArm{};  // autothrottle armed
  int32_t APAirspeedHold{};   // autopilot airspeed hold
  int32_t APMachHold{};       // autopilot Mach hold
  int32_t APHeadingHold{};    // autopilot heading hold
  int32_t APAltitudeHold{};   // autopilot altitude hold
  int32_t APNav1Hold{};       // autopilot NAV1 hold
  int32_t APRpmHold{};        // autopilot RPM hold
  int32_t APApproachHold{};   // autopilot approach hold
  int32_t FlightDirector{};   // flight director on
  bool MasterBattery{};      // master battery on (0x281C); for folder "A2A_C172" it is the opposite
                             // of FailElectrics, for "A2A_C182" bit 64 of the 0x281C byte
  int32_t MasterAvionics{};  // master avionics on

  // Values of the aircraft procedures.
  double Eng1N1{};           // engine 1 N1, percent: raw (0x0898) x 100 / 16384
  double Eng2N1{};           // engine 2 N1, percent (0x0930)
  int32_t APAltitudeBug{};   // autopilot altitude bug, feet: CLng(raw (0x07D4) / 65536 x 3.28084)
  int32_t APSpeedBug{};      // autopilot speed bug, knots (0x07E2)
  int32_t OutsideAirTemp{};  // outside air temperature, whole degrees C: CLng(raw (0x0E8C) / 256)
  int32_t TotalAirTemp{};    // total air temperature, whole degrees C: CLng(raw (0x11D0) / 256)
  double Eng1CowlFlaps{};    // engine 1 cowl flaps, 0 closed to 1 open (0x37F0)
  double Eng2CowlFlaps{};    // engine 2 cowl flaps (0x3730)
};

}  // namespace vantoro
