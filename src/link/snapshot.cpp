// The decoder of one tick: the four offset blocks into the current record,
// in a fixed order so that every derived value reads fields already decoded
// this tick.
#include "link/snapshot.h"

#include <cmath>
#include <iterator>

#include "base/numbers.h"
#include "base/text.h"
#include "link/snapshot_bytes.h"
#include "link/snapshot_internal.h"

namespace vantoro {

namespace {

// Fixed-point values of the record keep four decimals.
double Currency(double x) {
  return std::nearbyint(x * 10000.0) / 10000.0;
}

// Metres to feet, as the instructor converts heights.
constexpr double kFeetPerMetre = 3.281;
// Vertical speed is converted with the finer factor.
constexpr double kFeetPerMetreVs = 3.28084;
// Metres per second to knots.
constexpr double kKnotsPerMetreSecond = 1.9438;
// Angle words of 65536 to the turn are divided by this for whole degrees.
constexpr double kAngleWordPerDegree = 182.0;
// Tank level words: 100 percent is 128 x 65536.
constexpr double kTankLevelPerPercent = 83886.0;
// Cloud cover words: 8184 per okta.
constexpr double kCloudCoverPerOkta = 8184.0;
// Raw latitude and longitude (the 8-byte currency value x 10000): 90 degrees
// are 10001750 x 65536 x 65536, a whole turn is 2^64.
constexpr double kLatitudeQuarterTurn = 42957189152768000.0;
constexpr double kLongitudeTurn = 18446744073709552000.0;
// Ticks of warm-up after connection before the aircraft may be placed.
constexpr int32_t kWarmUpTicks = 6;
// Above this weight word the aircraft is heavy.
constexpr double kHeavyWeightWord = 100.0;

// Angle words with 65536 to the turn, top half of a 32-bit angle.
int32_t AngleWordDegrees(int32_t raw) {
  return CLng(CLng(raw * 360.0 / 256.0) / 256.0);
}

// Pitch and bank: a small angle is nose down or left wing down.
int32_t SignedAttitude(int32_t raw) {
  const int32_t x = AngleWordDegrees(raw);
  return x < 180 ? -x : 360 - x;
}

// True to magnetic: less the variation, 360 added when negative.
int32_t LessMagVar(int32_t degrees, int32_t magVar) {
  const int32_t d = degrees - magVar;
  return d < 0 ? d + 360 : d;
}

// The number at the start of a text, as a gauge text is read: leading blanks,
// a sign, digits and one point; 0 when there is none.
double TextToNumber(std::string_view text) {
  size_t i = 0;
  while (i < text.size() && (text[i] == ' ' || text[i] == '\t')) ++i;
  double sign = 1;
  if (i < text.size() && (text[i] == '-' || text[i] == '+')) sign = text[i++] == '-' ? -1 : 1;
  double value = 0;
  double scale = 0;
  for (; i < text.size(); ++i) {
    const char c = text[i];
    if (c >= '0' && c <= '9') {
      if (scale == 0) {
        value = value * 10 + (c - '0');
      } else {
        value += (c - '0') * scale;
        scale /= 10;
      }
    } else if (c == '.' && scale == 0) {
      scale = 0.1;
    } else {
      break;
    }
  }
  return sign * value;
}

// Case-insensitive search for an ASCII word.
bool ContainsNoCase(std::string_view text, std::string_view word) {
  if (word.size() > text.size()) return false;
  for (size_t i = 0; i + word.size() <= text.size(); ++i)
    if (EqualsNoCase(text.substr(i, word.size()), word)) return true;
  return false;
}

// The aircraft folders with rules of their own in the decoder.
constexpr std::string_view kFolderCarenadoC182 = "CARENADO CT182T_SKYLANE";
constexpr std::string_view kFolderA2aC172 = "A2A_C172";
constexpr std::string_view kFolderA2aC182 = "A2A_C182";
constexpr uint32_t kAirFileOffset = 0x3C00;
constexpr uint32_t kMasterBatteryOffset = 0x281C;
constexpr uint8_t kA2aC182BatteryBit = 64;
constexpr int kFailElectrics = 0x0B6A - kFailFlagsOffset;
constexpr int32_t kCarenadoC152BarberPole = 149;

// Upper weight words of the traffic speed limits, and the limit at or below
// each; anything heavier takes the last limit.
struct WeightLimit {
  double weightWord;
  int32_t knots;
};
constexpr WeightLimit kTrafficSpeedLimits[] = {
    {10, 150},  {25, 150},  {50, 150},   {75, 150},   {100, 170},
    {250, 190}, {500, 210}, {1000, 230}, {2000, 250}, {3000, 250},
};
constexpr int32_t kHeaviestTrafficSpeedLimit = 250;

constexpr const char* kEngineTypeNames[] = {"Piston", "Jet",    "Sailplane",
                                            "Helo",   "Rocket", "Turboprop"};

// Eleven tanks: level percent word and capacity word 4 bytes after it.
constexpr uint32_t kTankLevelOffsets[] = {0x0B74, 0x0B7C, 0x0B84, 0x0B8C, 0x0B94, 0x0B9C,
                                          0x0BA4, 0x1244, 0x124C, 0x1254, 0x125C};
constexpr uint32_t kTankCapacityAfterLevel = 4;

// Text of a buffer from a byte index; nothing when the index lies outside.
template <class Buffer>
std::string TextAt(const Buffer& buffer, size_t index) {
  if (index >= buffer.size()) return {};
  return std::string(OffsetBlock(buffer, 0).Text(static_cast<uint32_t>(index)));
}

struct Blocks {
  OffsetBlock main;
  OffsetBlock gps;
  OffsetBlock metar;
};

void DecodeFlagsAndBytes(const OffsetBlock& m, FSData& d) {
  d.YawDamper = m.Flag(0x0808);
  d.Flag0B51 = m.Flag(0x0B51);
  d.Flag341C = m.Flag(0x341C);
  d.Flag341D = m.Flag(0x341D);
  d.Flag341F = m.Flag(0x341F);
  d.Flag0B58 = m.Flag(0x0B58);
  d.Flag2438 = m.Flag(0x2438);
  d.PitotHeat = m.Flag(0x029C);
  d.MagVar = CLng(m.U16(0x02A0) * 360.0 / 65536.0);
  d.Crashed = m.Flag(0x0840);
  d.Eng1Combustion = m.Flag(0x0894);
  d.Eng2Combustion = m.Flag(0x092C);
  d.Eng3Combustion = m.Flag(0x09C4);
  d.Eng4Combustion = m.Flag(0x0A5C);
  d.Nav1GlideslopeAlive = m.Flag(0x0C4C);
  d.SurfaceType = m.U8(0x31E8);
  d.OnGround = m.U8(0x0366);
  d.ReadyToFly = m.U8(0x3364);
  d.InMenu = m.U8(0x3365);
  d.StallWarning = m.Flag(0x036C);
  d.AutopilotOn = m.Flag(0x07BC);
  d.Engines = m.U8(0x0AEC);
  d.ParkingBrake = m.Flag(0x0BC8);
  d.SpoilersArmed = m.Flag(0x0BCC);
  d.SpoilerLeft = m.Flag(0x0BD4);
  d.SpoilerRight = m.Flag(0x0BD8);
  d.Brake = m.Flag(0x0BCA);
  d.GearDown = m.Flag(0x0BE8);
  d.GearLeftPosition = m.Flag(0x0BF4);
  d.Paused = m.Flag(0x0264);
  d.InstantReplay = m.Flag(0x0628);
  d.InnerMarker = m.Flag(0x0BAC);
  d.MiddleMarker = m.Flag(0x0BAE);
  d.OuterMarker = m.Flag(0x0BB0);
  d.Units = m.U8(0x0C18);
  d.AutoBrake = m.U8(0x2F80);
  d.RadioFlags = m.U8(0x3300);
  for (size_t i = 0; i < d.FailFlags.size(); ++i)
    d.FailFlags[i] = m.Flag(kFailFlagsOffset + static_cast<uint32_t>(i));
  d.Eng1FuelValve = m.Flag(0x3590);
  d.Eng2FuelValve = m.Flag(0x3594);
  d.TailDragger = m.Flag(0x0790);
  d.Lights = m.U8(0x0D0C);
  d.RetractableGear = m.Flag(0x0778);
  d.CrashDetection = m.Flag(0x07A0);
  d.Eng1FuelPump = m.Flag(0x3B98);
  d.Eng2FuelPump = m.Flag(0x3AD8);
  d.Eng1Primer = m.Flag(0x08B2);
  d.Eng2Primer = m.Flag(0x094A);
  d.Flag337D = m.Flag(0x337D);
  d.Flag337C = m.Flag(0x337C);
  d.Flag2A90 = m.Flag(0x2A90);
  d.TimeOfDay = m.U8(0x115E);
  d.GpsDrivesNav = m.Flag(0x132C);
  d.RadioPower1 = m.Flag(0x3102);
  d.RadioPower2 = m.Flag(0x3103);
  d.Eng1Generator = m.Flag(0x3B78);
  d.Eng2Generator = m.Flag(0x3AB8);
  d.Eng3Generator = m.Flag(0x39F8);
  d.Eng4Generator = m.Flag(0x3938);
  d.Eng1PrimerLevel = m.U8(0x3872);
  d.Eng2PrimerLevel = m.U8(0x37B2);
  d.DoorOpen = m.Flag(0x3367);
  d.Eng1ManifoldHigh = m.U8(0x0899);
  d.Eng2ManifoldHigh = m.U8(0x0931);
  d.Eng3ManifoldHigh = m.U8(0x09C9);
  d.Eng4ManifoldHigh = m.U8(0x0A61);
  d.MasterBattery = m.Flag(kMasterBatteryOffset);
  d.LoadedWeightWord = m.U16(0x3BFE);
  d.ZeroFuelWeight = m.U24(0x3BFD);
}

// Aircraft whose simulator model reports the gear or the battery in its own
// way. The folder is read straight from the path in the block.
void ApplyAircraftOverrides(const OffsetBlock& m, FSData& d) {
  const std::string_view folder = LastFolder(m.Text(kAirFileOffset));
  const bool a2aC172 = EqualsNoCase(folder, kFolderA2aC172);
  const bool a2aC182 = EqualsNoCase(folder, kFolderA2aC182);
  if (a2aC172 || a2aC182 || EqualsNoCase(folder, kFolderCarenadoC182)) d.GearDown = true;
  if (a2aC172) d.MasterBattery = !d.FailFlags[kFailElectrics];
  if (a2aC182) d.MasterBattery = (m.U8(kMasterBatteryOffset) & kA2aC182BatteryBit) != 0;
}

void DecodeDmeTexts(const OffsetBlock& m, FSData& d) {
  d.DME1Distance = Currency(TextToNumber(m.Text(0x0C29, 4)));
  d.DME2Distance = Currency(TextToNumber(m.Text(0x0C33, 4)));
}

void DecodeSimulatorTime(const OffsetBlock& m, FSData& d) {
  d.ZuluHour = m.U8(0x023B);
  d.ZuluMinute = m.U8(0x023C);
  d.Second = m.U8(0x023A);
  d.DayOfYear = m.U16(0x023E);
}

void DecodeWeatherAndGpsTexts(const Blocks& b, FSData& d, GpsData& gps) {
  d.MetarText.assign(b.metar.Text(kMetarBlockOffset));
  d.GpsFlags1 = b.gps.U8(0x6004);
  d.GpsFlags2 = b.gps.U8(0x6005);
  gps.GpsDestination.assign(b.gps.Text(0x6137));
  gps.GpsNextWaypoint.assign(b.gps.Text(0x6081));
  gps.GpsPreviousWaypoint.assign(b.gps.Text(0x60A4));
  gps.Text6140.assign(b.gps.Text(0x6140));
  gps.Text6154.assign(b.gps.Text(0x6154));
  gps.Text6160.assign(b.gps.Text(0x6160));
  gps.Double608C = b.gps.F64(0x608C);
  gps.Double6094 = b.gps.F64(0x6094);
  gps.Double60AC = b.gps.F64(0x60AC);
  gps.Double60B4 = b.gps.F64(0x60B4);
  gps.Double6048 = b.gps.F64(0x6048) * kFeetPerMetre;
  gps.Long60E4 = b.gps.I32(0x60E4);
  gps.Long6120 = b.gps.I32(0x6120);
}

void DecodeNeedles(const OffsetBlock& m, FSData& d) {
  d.Nav1Localiser = m.I8(0x0C48);
  d.Nav1Glideslope = m.I8(0x0C49);
  d.Nav1BackCourse = m.U8(0x0C4A);
  d.Nav1ToFrom = m.U8(0x0C4B);
  d.Nav1OBS = m.U16(0x0C4E);
  d.Nav2OBS = m.U16(0x0C5E);
  d.Slip = m.I8(0x036E);
}

void DecodeWindAndCloud(const OffsetBlock& m, FSData& d) {
  d.SurfaceWindSpeed = m.U16(0x0EF0);
  d.SurfaceWindDirection = CLng(m.U16(0x0EF2) / kAngleWordPerDegree);
  d.WindSpeed = m.U16(0x0E90);
  d.WindDirection = LessMagVar(CLng(m.U16(0x0E92) / kAngleWordPerDegree), d.MagVar);
  d.Visibility = Currency(m.U16(0x0E8A) / 100.0);
  d.CloudHighBase = CLng(m.U16(0x0F2E) * kFeetPerMetre);
  d.CloudHighCover = CLng(m.U16(0x0F30) / kCloudCoverPerOkta);
  d.CloudMidBase = CLng(m.U16(0x0F26) * kFeetPerMetre);
  d.CloudMidCover = CLng(m.U16(0x0F28) / kCloudCoverPerOkta);
  d.CloudLowBase = CLng(m.U16(0x0F1E) * kFeetPerMetre);
}

void DecodeRadios(const OffsetBlock& m, FSData& d) {
  d.Squawk = m.U16(0x0354);
  d.Nav1Freq = Currency((m.Bcd(0x0350) + 10000) / 100.0);
  d.Nav2Freq = m.Bcd(0x3120) + 10000;
  d.Com2Freq = m.Bcd(0x311E);
  d.Com1Freq = m.Bcd(0x034E);
  d.Com1StandbyRaw = m.Bcd(0x3118);
  d.Nav1Standby = m.Bcd(0x311A);
  d.Nav2Standby = m.Bcd(0x311C);
  d.TransponderWord = m.U16(0x0330);
}

void DecodeFuel(const OffsetBlock& m, FSData& d) {
  auto percent = [&](uint32_t offset) { return m.U24(offset) / kTankLevelPerPercent; };
  d.TankCentrePct = CLng(percent(0x0B74));
  d.TankCentre2Pct = CLng(percent(0x1244));
  d.TankCentre3Pct = CLng(percent(0x124C));
  d.TankExternal1Pct = CLng(percent(0x1254));
  d.TankExternal2Pct = CLng(percent(0x125C));
  d.TankLeftMainPct = percent(0x0B7C);
  d.TankLeftAuxPct = CLng(percent(0x0B84));
  d.TankLeftTipPct = CLng(percent(0x0B8C));
  d.TankRightMainPct = percent(0x0B94);
  d.TankRightAuxPct = CLng(percent(0x0B9C));
  d.TankRightTipPct = CLng(percent(0x0BA4));
  d.FuelWeightPerGallon = m.U16(0x0AF4) / 256.0;
  d.FuelSelector = m.U16(0x0AF8);
  d.FuelSelector2 = m.U16(0x37C0);
  d.Eng1FuelFlow = CLng(m.U16(0x08D8) / 4.0);
  d.Eng2FuelFlow = CLng(m.U16(0x0970) / 4.0);
}

void DecodeAttitude(const OffsetBlock& m, FSData& d) {
  d.Pitch = SignedAttitude(m.U16(0x057A));
  d.Bank = SignedAttitude(m.U16(0x057E));
  d.TrueHeading = AngleWordDegrees(m.U16(0x0582));
  d.Heading = LessMagVar(d.TrueHeading, d.MagVar);
  // The 8-byte currency word times 10000 is the raw fixed-point value.
  d.Latitude = static_cast<double>(m.I64(0x0560)) * 90.0 / kLatitudeQuarterTurn;
  d.Longitude = static_cast<double>(m.I64(0x0568)) * 360.0 / kLongitudeTurn;
  d.Altitude = CLng(m.I16(0x0574) * kFeetPerMetre);
  d.GroundAltitude = CLng(m.I16(0x0021) * kFeetPerMetre);
  d.AGL = Currency(m.U16(0x31E6) * kFeetPerMetre);
  const int32_t indicated = m.U16(0x3324);
  d.IndicatedAltitude = d.Units >= 2 ? CLng(indicated * kFeetPerMetre) : indicated;
  d.VS = CLng(-m.I16(0x0842) * kFeetPerMetreVs);
  d.GS = CLng(m.U16(0x02B6) * kKnotsPerMetreSecond);
  d.IAS = CLng(m.U16(0x02BC) / 128.0);
}

bool WarmUp(LinkState& link, const DecodeInputs& in) {
  if (link.WarmUpTicks >= kWarmUpTicks) return false;
  ++link.WarmUpTicks;
  return link.WarmUpTicks == kWarmUpTicks && in.StartingPositionWanted;
}

void DecodeEngines(const OffsetBlock& m, FSData& d) {
  d.Eng1Throttle = m.U16(0x088C);
  d.Eng2Throttle = m.U16(0x0924);
  d.Eng1PropLever = m.U16(0x088E);
  d.Eng2PropLever = m.U16(0x0926);
  d.Eng1MixtureLever = m.U16(0x0890);
  d.Eng2MixtureLever = m.U16(0x0928);
  d.Eng3MixtureLever = m.U16(0x09C0);
  d.Eng4MixtureLever = m.U16(0x0A58);
  d.Eng1StarterSwitch = m.U16(0x0892);
  d.Eng2StarterSwitch = m.U16(0x092A);
  d.Eng3StarterSwitch = m.U16(0x09C2);
  d.Eng4StarterSwitch = m.U16(0x0A5A);
}

void DecodeFlightModelDoubles(const OffsetBlock& m, FSData& d) {
  d.Eng2FuelFlowPPH = m.F64(0x0918);
  d.Eng3FuelFlowPPH = m.F64(0x09B0);
  d.Eng4FuelFlowPPH = m.F64(0x0A48);
  d.Double0AE0 = m.F64(0x0AE0);
  d.TotalWeight = m.F64(0x3428);
}

// What the aircraft procedures read besides the common values.
void DecodeProcedureValues(const OffsetBlock& m, FSData& d) {
  constexpr double kN1Full = 16384;
  constexpr double kAltitudeBugPerMetre = 65536;
  constexpr double kTemperaturePerDegree = 256;
  d.Eng1N1 = m.U16(0x0898) * 100.0 / kN1Full;
  d.Eng2N1 = m.U16(0x0930) * 100.0 / kN1Full;
  d.APAltitudeBug = CLng(m.I32(0x07D4) / kAltitudeBugPerMetre * kFeetPerMetreVs);
  d.APSpeedBug = m.U16(0x07E2);
  d.OutsideAirTemp = CLng(m.I16(0x0E8C) / kTemperaturePerDegree);
  d.TotalAirTemp = CLng(m.I16(0x11D0) / kTemperaturePerDegree);
  d.Eng1CowlFlaps = m.F64(0x37F0);
  d.Eng2CowlFlaps = m.F64(0x3730);
}

void DecodeNames(const OffsetBlock& m, FSData& d) {
  d.AirFile.assign(m.Text(kAirFileOffset));
  d.FlightFile.assign(m.Text(0x0130));
  d.AircraftTitle.assign(m.Text(0x3D00));
  d.Vor1Ident.assign(m.Text(0x3000));
  d.Vor1Name.assign(m.Text(0x3006));
  d.AtcFlightNumber.assign(m.Text(0x3130));
  d.AtcIdentifier.assign(m.Text(0x313C));
  d.AtcAirline.assign(m.Text(0x3148));
  d.AtcType.assign(m.Text(0x3160));
}

void DecodeGauges(const OffsetBlock& m, FSData& d, const DecodeInputs& in) {
  d.BarberPole = CLng(m.U16(0x02C4) / 128.0);
  if (in.Cessna152Family && ContainsNoCase(LastFolder(d.AirFile), "Carenado"))
    d.BarberPole = kCarenadoC152BarberPole;
  d.GForce = m.I16(0x11BA);
  d.APHeadingBug = CLng(m.U16(0x07CC) / 182.0);
  d.FlapsLeft = m.U16(0x30F0);
  d.Elevator = m.I16(0x0BB2);
  d.Aileron = m.I16(0x0BB6);
  d.Rudder = m.I16(0x0BBA);
  d.ElevatorTrim = m.I16(0x0BC0);
  d.SpoilersControl = m.U16(0x0BD0);
  d.SimRate = m.U16(0x0C1A);
}

void DecodeSwitchStates(const OffsetBlock& m, FSData& d) {
  const uint8_t engineType = m.U8(0x0609);
  if (engineType < std::size(kEngineTypeNames)) {
    d.EngineType.assign(kEngineTypeNames[engineType]);
  } else {
    d.EngineType.clear();
  }
  d.AutoThrottleArm = m.U8(0x0810);
  d.APAirspeedHold = m.U8(0x07DC);
  d.APMachHold = m.U8(0x07E4);
  d.APHeadingHold = m.U8(0x07C8);
  d.APAltitudeHold = m.U8(0x07D0);
  d.APNav1Hold = m.U8(0x07C4);
  d.APRpmHold = m.U8(0x07F4);
  d.APApproachHold = m.U8(0x0800);
  d.FlightDirector = m.U8(0x2EE0);
  d.MasterAvionics = m.U8(0x2E80);
}

// Each tank holds capacity x percent / 100 gallons, as a whole number.
void SumFuel(const OffsetBlock& m, LinkState& link) {
  FSData& d = link.Now();
  const double percents[] = {
      static_cast<double>(d.TankCentrePct),
      d.TankLeftMainPct,
      static_cast<double>(d.TankLeftAuxPct),
      static_cast<double>(d.TankLeftTipPct),
      d.TankRightMainPct,
      static_cast<double>(d.TankRightAuxPct),
      static_cast<double>(d.TankRightTipPct),
      static_cast<double>(d.TankCentre2Pct),
      static_cast<double>(d.TankCentre3Pct),
      static_cast<double>(d.TankExternal1Pct),
      static_cast<double>(d.TankExternal2Pct),
  };
  constexpr size_t kLeftMain = 1;
  constexpr size_t kRightMain = 4;
  int32_t capacity = 0;
  int32_t gallons = 0;
  double weight = 0;
  for (size_t i = 0; i < std::size(kTankLevelOffsets); ++i) {
    const int32_t tankCapacity = m.U24(kTankLevelOffsets[i] + kTankCapacityAfterLevel);
    const int32_t tankGallons = CLng(1.0 / 100.0 * tankCapacity * percents[i]);
    capacity += tankCapacity;
    gallons += tankGallons;
    weight += tankGallons * d.FuelWeightPerGallon;
    if (i == kLeftMain) d.FuelLbLeftMain = tankGallons * d.FuelWeightPerGallon;
    if (i == kRightMain) d.FuelLbRightMain = tankGallons * d.FuelWeightPerGallon;
  }
  d.TotalFuelCapacity = capacity;
  d.TotalFuelGallons = gallons;
  d.FuelGallonsWeight = weight;
  d.FuelPercent = gallons == 0 || capacity == 0
                      ? 0.0
                      : 100.0 / (static_cast<double>(capacity) / static_cast<double>(gallons));
  link.TotalWeightTons = (d.ZeroFuelWeight + d.FuelGallonsWeight) / 2000.0;
}

void StampChanges(LinkState& link, const DecodeInputs& in) {
  const FSData& now = link.Now();
  const FSData& before = link.Before();
  if (now.Nav1BackCourse != before.Nav1BackCourse) link.Nav1BackCourseChanged = in.TickCount;
  if (now.Nav1ToFrom != before.Nav1ToFrom) link.Nav1ToFromChanged = in.TickCount;
  if (now.Nav1OBS != before.Nav1OBS) link.Nav1OBSChanged = in.TickCount;
  if (now.Vor1Name != before.Vor1Name) link.Vor1NameChanged = in.TickCount;
}

// Fire bits of engines the aircraft does not have are ignored.
void DecodeEngineFires(const OffsetBlock& m, FSData& d) {
  const uint8_t fires = m.U8(0x3366);
  d.Eng1OnFire = d.Engines > 0 && (fires & 1) != 0;
  d.Eng2OnFire = d.Engines > 1 && (fires & 2) != 0;
  d.Eng3OnFire = d.Engines > 2 && (fires & 4) != 0;
  d.Eng4OnFire = d.Engines > 3 && (fires & 8) != 0;
}

}  // namespace

std::string_view LastFolder(std::string_view path) {
  const size_t last = path.rfind('\\');
  if (last == std::string_view::npos) return {};
  const std::string_view folders = path.substr(0, last);
  const size_t previous = folders.rfind('\\');
  return previous == std::string_view::npos ? folders : folders.substr(previous + 1);
}

std::string AircraftFolder(std::string_view airFile) {
  return Upper(LastFolder(airFile));
}

int32_t TrafficSpeedLimitFor(double loadedWeightWord) {
  for (const WeightLimit& limit : kTrafficSpeedLimits)
    if (loadedWeightWord <= limit.weightWord) return limit.knots;
  return kHeaviestTrafficSpeedLimit;
}

DecodeResult ProcessFSData(LinkState& link, const DecodeInputs& in) {
  const Blocks b{OffsetBlock(link.ByteBuffer, kMainBlockOffset),
                 OffsetBlock(link.GpsBuffer, kGpsBlockOffset),
                 OffsetBlock(link.MetarBuffer, kMetarBlockOffset)};
  const OffsetBlock traffic(link.TrafficBuffer, kTrafficBlockOffset);
  FSData& d = link.Now();
  DecodeResult result;

  DecodeFlagsAndBytes(b.main, d);
  ApplyAircraftOverrides(b.main, d);
  DecodeDmeTexts(b.main, d);
  DecodeSimulatorTime(b.main, d);
  DecodeWeatherAndGpsTexts(b, d, link.Gps);
  DecodeNeedles(b.main, d);
  DecodeWindAndCloud(b.main, d);
  DecodeRadios(b.main, d);
  DecodeFuel(b.main, d);
  DecodeAttitude(b.main, d);
  result.WarmUpReached = WarmUp(link, in);
  DecodeEngines(b.main, d);
  if (d.OnGround == 0) DecodeAirTraffic(traffic, link);
  DecodeFlightModelDoubles(b.main, d);
  DecodeNames(b.main, d);
  link.HeavyAircraft = d.LoadedWeightWord > kHeavyWeightWord || in.LearFamily;
  link.TrafficSpeedLimit = TrafficSpeedLimitFor(d.LoadedWeightWord);
  d.WindRelativeToHeading = RelativeBearing(d.SurfaceWindDirection, d.Heading);
  d.WindRelativeToOBS = RelativeBearing(d.SurfaceWindDirection, d.Nav1OBS);
  if (d.OnGround != 0) DecodeGroundTraffic(traffic, link);
  DecodeGauges(b.main, d, in);
  DecodeSwitchStates(b.main, d);
  DecodeProcedureValues(b.main, d);
  SumFuel(b.main, link);
  StampChanges(link, in);
  DecodeEngineFires(b.main, d);
  return result;
}

std::string GetByteBuffer(const LinkState& link, size_t index) {
  return TextAt(link.ByteBuffer, index);
}

std::string GetByteBufferGPS(const LinkState& link, size_t index) {
  return TextAt(link.GpsBuffer, index);
}

std::string GetByteBufferTCAS(const LinkState& link, size_t index) {
  return TextAt(link.TrafficBuffer, index);
}

std::string GetByteBufferMetar(const LinkState& link, size_t index) {
  return TextAt(link.MetarBuffer, index);
}

std::string CopyToStringBuffer(std::string_view text) {
  std::string bytes(text);
  bytes.push_back('\0');
  return bytes;
}

size_t CopyToStringBuffer(std::string_view text, std::span<uint8_t> bytes) {
  if (bytes.empty()) return 0;
  const size_t n = text.size() < bytes.size() - 1 ? text.size() : bytes.size() - 1;
  for (size_t i = 0; i < n; ++i) bytes[i] = static_cast<uint8_t>(text[i]);
  bytes[n] = 0;
  return n + 1;
}

int32_t RelativeBearing(int32_t a, int32_t b) {
  int64_t d = (int64_t{a} - int64_t{b}) % 360;
  if (d > 180) d -= 360;
  if (d < -180) d += 360;
  return static_cast<int32_t>(d);
}

}  // namespace vantoro
