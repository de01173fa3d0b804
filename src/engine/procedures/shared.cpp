// The order of the aircraft procedures in the tick, the guard and phases the
// rules share, the flap speeds of every aircraft and the type's maximum
// cruising speed.
#include <algorithm>
#include <array>
#include <cmath>

#include "engine/procedures/procedure_rules.h"
#include "records/clocks.h"
#include "records/flight_stats.h"
#include "voice/phrases.h"

namespace vantoro {

namespace procedures {

namespace {

// How long the explanation of a piece of advice stays in the message window.
constexpr int kExplanationSeconds = 10;

}  // namespace

bool PanelRules(const Cockpit& c) {
  const AircraftValues& a = c.aircraft;
  return IdentityOf(c).RunningFSX && a.NotPMDG && a.NotFeelThere;
}

bool TaxiingInMode(const Cockpit& c) {
  const FlightState& f = c.flight;
  return f.Modes.Taxiing && f.HasTouchedDown && f.Flight().TookOff;
}

bool ShutDownMode(const Cockpit& c) {
  return TaxiingInMode(c) && c.link.Now().ParkingBrake && c.link.Before().ParkingBrake;
}

bool Climbing(const Cockpit& c) {
  const FSData& now = c.link.Now();
  const FSData& before = c.link.Before();
  return c.flight.Modes.TakeOff && now.Altitude > before.Altitude + 3 && now.AGL > before.AGL + 3;
}

bool Descending(const Cockpit& c) {
  const FSData& now = c.link.Now();
  const FSData& before = c.link.Before();
  return c.flight.Modes.Landing && now.Altitude < before.Altitude - 3 && now.AGL < before.AGL - 3;
}

bool Airborne(const Cockpit& c) {
  return c.link.Now().OnGround == 0;
}

bool Say(Cockpit& c, const char* file, int id, int gap, int expiry) {
  return file != nullptr && GiveAdvice(c, file, id, gap, expiry, kNoRemark);
}

bool Teach(Cockpit& c, const char* file, int id, int gap, int expiry) {
  if (!Say(c, file, id, gap, expiry)) return false;
  ExplainAdvice(c, file);
  return true;
}

void ExplainAdvice(Cockpit& c, std::string_view file) {
  if (!c.options.AviationTips) return;
  const std::string words = CaptionOf(c.sound, InstructorPath(c.sound, file));
  if (!words.empty()) ShowMessage(c, words, kExplanationSeconds);
}

int32_t ReminderGap(const Cockpit& c, int divisor) {
  return std::max(1, c.options.ReminderInterval / divisor);
}

int32_t FlightTime(const Cockpit& c) {
  return GetFlightTime(c.flight.clocks, c.link.Now());
}

}  // namespace procedures

using namespace procedures;

namespace {

// The type's own phrase of each flap position's limit ("c172\FlapsSpeed2.wav"),
// for the types that have recorded them; the 737 and the Lear 45 build theirs.
struct FlapPhrases {
  AircraftType type;
  std::array<const char*, kFlapPositions> files;
};
constexpr FlapPhrases kFlapPhrases[] = {
    {AircraftType::C172,
     {"c172\\FlapsSpeed1.wav", "c172\\FlapsSpeed2.wav", "c172\\FlapsSpeed3.wav"}},
    {AircraftType::C152,
     {"c152\\FlapsSpeed1.wav", "c152\\FlapsSpeed2.wav", "c152\\FlapsSpeed3.wav"}},
    {AircraftType::C182,
     {"c182\\zPro_FlapsSpeed1.wav", "c182\\zPro_FlapsSpeed2.wav", "c182\\zPro_FlapsSpeed3.wav"}},
    {AircraftType::Mooney, {"Mooney\\zPro_FlapsSpeed1.wav", "Mooney\\zPro_FlapsSpeed2.wav"}},
    {AircraftType::C208B,
     {"c208B\\zPro_FlapsSpeed1.wav", "c208B\\zPro_FlapsSpeed2.wav", "c208B\\zPro_FlapsSpeed3.wav"}},
    {AircraftType::Baron, {"BaronB58\\zPro_FlapsSpeed1.wav", "BaronB58\\zPro_FlapsSpeed2.wav"}},
    {AircraftType::KingAir350,
     {"BeechKingAir350\\zPro_FlapsSpeed1.wav", "BeechKingAir350\\zPro_FlapsSpeed2.wav"}},
    {AircraftType::B757,
     {"b757\\FlapsSpeed1.wav", "b757\\FlapsSpeed2.wav", "b757\\FlapsSpeed3.wav",
      "b757\\FlapsSpeed4.wav", "b757\\FlapsSpeed5.wav", "b757\\FlapsSpeed6.wav"}},
    {AircraftType::CRJ700,
     {"CRJ700\\FlapsSpeed1.wav", "CRJ700\\FlapsSpeed2.wav", "CRJ700\\FlapsSpeed3.wav",
      "CRJ700\\FlapsSpeed4.wav", "CRJ700\\FlapsSpeed5.wav"}},
};

// The family of each position's own phrase.
constexpr std::array<int, kFlapPositions> kFlapPhraseIds = {63, 54, 44, 33, 32, 31, 30, 29, 28};

struct BuiltFlapPhrase {
  AircraftType type;
  const char* youCanHave;
  const char* degreesOfFlapsBelow;
};
constexpr BuiltFlapPhrase kBuiltFlapPhrases[] = {
    {AircraftType::B737, "b737\\YouCanHave.WAV", "b737\\DegreesOfFlapsBelow.WAV"},
    {AircraftType::Lear45, "Lear45\\YouCanHave.WAV", "Lear45\\DegreesOfFlapsBelow.WAV"},
};

// "We can have 15 degrees of flaps below 200 knots".
void SayBuiltFlapLimit(Cockpit& c, const BuiltFlapPhrase& built, int n) {
  const AircraftValues& a = c.aircraft;
  const size_t i = static_cast<size_t>(n);
  Voice v = c.voice();
  if (!PlayPerhaps(v, built.youCanHave, kFlapPhraseIds[i - 1], 30, 12)) return;
  const int32_t degrees = static_cast<int32_t>(std::lround((a.FlapAngleLimit[i] - 10) / 256.0));
  SpeakAsANumberAlways(v, degrees);
  PlayAlways(v, built.degreesOfFlapsBelow);
  SpeakAsANumberAlways(v, a.FlapSpeedLimit[i]);
  PlayAlways(v, "Knots.WAV");
}

void SayTypeFlapLimit(Cockpit& c, int n) {
  const AircraftValues& a = c.aircraft;
  for (const BuiltFlapPhrase& built : kBuiltFlapPhrases) {
    if (a.WantType(built.type)) {
      SayBuiltFlapLimit(c, built, n);
      return;
    }
  }
  const size_t i = static_cast<size_t>(n - 1);
  for (const FlapPhrases& own : kFlapPhrases) {
    if (a.WantType(own.type)) {
      Say(c, own.files[i], kFlapPhraseIds[i], 30, 12);
      return;
    }
  }
}

// The maximum structural cruising speed of each propeller type.
struct CruiseLimit {
  AircraftType type;
  int32_t vno;
  const char* file;
};
constexpr CruiseLimit kCruiseLimits[] = {
    {AircraftType::C172, 129, "c172\\vno.wav"},
    {AircraftType::C152, 111, "c152\\vno.wav"},
    {AircraftType::C182, 143, "c182\\zPro_vno.wav"},
    {AircraftType::Mooney, 174, "Mooney\\zPro_vno.wav"},
    {AircraftType::C208B, 140, "c208B\\zPro_vno.wav"},
    {AircraftType::Baron, 195, "BaronB58\\zPro_vno.wav"},
    {AircraftType::DC3, 185, "DC3\\zPro_vno.wav"},
};

}  // namespace

void AircraftProcedures(Cockpit& c) {
  // 1: the take-off limits of the jets, the general rules and carb heat.
  CheckTakeOffLimitsJets(c);
  CheckGeneralGroundAndFinal(c);
  CheckCarbHeat(c);
  // 2.
  CheckCowlFlaps(c);
  CheckOilPressureProps(c);
  // 3: the jets say their generators with their systems.
  if (!JetOwnsGenerators(c)) EnginegeneratorSwitches(c);
  // 4.
  CheckSystemsJets(c);
  // 5 and 6: engine start and running.
  CheckStartCRJ700(c);
  CheckStartOtter(c);
  CheckStartProps(c);
  CheckMixtureForStart(c);
  CheckEngineRunningProps(c);
  // 7: cruise and landing.
  CheckPropsForLanding(c);
  CheckBeginCruise(c);
  // 8 to 10: take-off and flight.
  VSpeeds(c);
  CallOutTakeOffSpeeds(c);
  CheckTakeOffRollJets(c);
  CheckTakeOffRollProps(c);
  CheckInFlightProps(c);
  CheckInFlightJets(c);
  LandingFlapLimits(c);
}

void CheckFlapSpeeds(Cockpit& c) {
  const AircraftValues& a = c.aircraft;
  const FSData& now = c.link.Now();
  if (now.AGL <= 100 || !a.HasFlaps()) return;
  for (int n = 1; n <= kFlapPositions; ++n) {
    const size_t i = static_cast<size_t>(n);
    const int32_t beyond = n == 1 ? kFlapsOut : a.FlapAngleLimit[i - 1] + kFlapMargin;
    const int32_t limit = a.FlapSpeedLimit[i];
    if (limit <= 0 || now.FlapsLeft <= beyond || now.IAS <= limit) continue;
    const char* general = n == 1 ? "TooFastForFlaps.wav" : "TooFastForThatFlapsSetting.wav";
    if (!GiveAdvice(c, general, 57, 30, 4, kRed, &FlightStats::ExceedFlaps)) return;
    SayTypeFlapLimit(c, n);
    return;
  }
}

void CheckVno(Cockpit& c) {
  const FSData& now = c.link.Now();
  const FSData& before = c.link.Before();
  if (!Airborne(c)) return;
  for (const CruiseLimit& l : kCruiseLimits) {
    if (!c.aircraft.WantType(l.type)) continue;
    if (CrossedUp(before.IAS, now.IAS, l.vno)) Say(c, l.file, 63, 30, 4);
    return;
  }
}

}  // namespace vantoro
