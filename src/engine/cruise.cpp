// Attitude and load limits in the air. Each limit has a red fault, counted
// against the flight, and for most an amber early warning at a tighter
// figure that costs nothing; the red is tried first and the amber only when
// the red did not fire. A red and its amber share one sound family, so the
// one silences the other for the family's gap.
#include "engine/cruise.h"

#include <cstdlib>

#include "engine/tick_rules.h"
#include "records/flight_stats.h"

namespace vantoro {

namespace {

constexpr int kGap = 30;  // fifteen seconds between two remarks of a family
constexpr int kExpiry = 4;
constexpr int kBankRateExpiry = 2;  // a roll is news only at once

// Wings level below this height, above which the other limits take over.
constexpr double kLevelWingsBelow = 50;
constexpr int32_t kLevelWingsBank = 4;
constexpr int32_t kLevelWingsBankAmber = 3;

// Most limits are watched only above this height.
constexpr double kLimitsAbove = 100;

constexpr int32_t kPitchChange = 6;  // degrees in one tick
constexpr int32_t kPitchChangeAmber = 4;

// Load factor, raw: 625 is one g.
constexpr int32_t kStressUp = 2500;
constexpr int32_t kStressDown = -425;
constexpr int32_t kStressDownFrom = -225;
constexpr int32_t kGsPositive = 1250;
constexpr int32_t kGsPositiveAmber = 1000;
constexpr int32_t kGsNegative = -500;
constexpr int32_t kGsNegativeAmber = 0;

// Yoke held against the trim.
constexpr double kYokePressureAbove = 150;
constexpr int32_t kYokePressure = 8000;

// Bank: the first limit counts as a fault with the warning's recording, the
// second adds a count with the plain one.
constexpr int32_t kBankFirstLimit = 32;
constexpr int32_t kBankLimit = 34;

constexpr int32_t kBankChange = 10;  // degrees in one tick
constexpr int32_t kBankChangeAmber = 8;

// A turn flown without rudder: rudder near centre with the ball well out.
constexpr int32_t kRudderCentred = 1000;
constexpr int32_t kSlipOut = 100;

using Counter = int32_t FlightStats::*;

// A red fault: the advice at level 2, and the count when it was given.
bool RedFault(Cockpit& c, std::string_view file, int id, int expiry, Counter counter) {
  return GiveAdvice(c, file, id, kGap, expiry, kRed, counter);
}

// A red fault with its amber twin at a tighter limit, on one sound family.
void RedOrAmber(Cockpit& c, bool red, bool amber, std::string_view redFile,
                std::string_view amberFile, int id, int expiry, Counter counter) {
  if (red)
    RedFault(c, redFile, id, expiry, counter);
  else if (amber)
    GiveAdvice(c, amberFile, id, kGap, expiry, kAmber);
}

// Near the ground the wings must be level.
void LevelWings(Cockpit& c, const FSData& now) {
  if (now.OnGround != 0 || !(now.AGL < kLevelWingsBelow)) return;
  const int32_t bank = std::abs(now.Bank);
  RedOrAmber(c, bank > kLevelWingsBank, bank > kLevelWingsBankAmber, "LevelWings.wav",
             "AMBERLevelWings.wav", 36, kExpiry, &FlightStats::NotLevelWings);
}

void PitchChange(Cockpit& c, const FSData& now, const FSData& before) {
  const int32_t change = std::abs(now.Pitch - before.Pitch);
  RedOrAmber(c, change > kPitchChange, change > kPitchChangeAmber, "EasyOnThePitch.wav",
             "AmberEasyOnThePitch.wav", 37, kExpiry, &FlightStats::ExceedPitchChange);
}

// A sudden load beyond the structure's comfort, up or down: said at once,
// ahead of everything queued; the G rules below count it.
void StressHigh(Cockpit& c, const FSData& now, const FSData& before) {
  const bool up = now.GForce > kStressUp && before.GForce <= kStressUp;
  const bool down = now.GForce < kStressDown && before.GForce >= kStressDownFrom;
  if (!up && !down) return;
  Voice v = c.voice();
  PlayAndPurge(v, "StressHigh.WAV", 0, 0);
}

void TooManyGs(Cockpit& c, const FSData& now) {
  RedOrAmber(c, now.GForce > kGsPositive, now.GForce > kGsPositiveAmber, "TooManyGs.wav",
             "AMBERTooManyGs.wav", 38, kExpiry, &FlightStats::ExceedGsPositive);
  RedOrAmber(c, now.GForce < kGsNegative, now.GForce < kGsNegativeAmber, "TooManyGs.wav",
             "AMBERTooManyGs.wav", 38, kExpiry, &FlightStats::ExceedGsNegative);
}

// Flying on the yoke instead of the trim wheel costs on every tick it lasts.
void UseTrimmers(Cockpit& c, const FSData& now) {
  if (!c.options.HaveYokePressure || !(now.AGL > kYokePressureAbove)) return;
  if (now.Elevator <= kYokePressure && now.Elevator >= -kYokePressure) return;
  GiveAdvice(c, "UseTrimmers.wav", 39, kGap, kExpiry, kRed);
  CountTick(c, &FlightStats::NotUseTrimmers);
}

// Bank beyond 32 degrees is a fault already, told with the warning's
// recording; beyond 34 the plain recording counts once more. On a circuit of
// a light aircraft the second count is the circuit's.
void BankAngle(Cockpit& c, const FSData& now) {
  if (now.Bank > kBankFirstLimit)
    RedFault(c, "AMBERBringBankBack.wav", 41, kExpiry, &FlightStats::ExceedBankRight);
  if (now.Bank < -kBankFirstLimit)
    RedFault(c, "AMBERwatchthatbankangle.wav", 40, kExpiry, &FlightStats::ExceedBankLeft);
  const bool circuit = !c.link.HeavyAircraft && c.flight.CircuitsWanted;
  if (now.Bank > kBankLimit)
    RedFault(c, "BringBankBack.wav", 40, kExpiry,
             circuit ? &FlightStats::CircuitBadBankAngle : &FlightStats::ExceedBankRight);
  if (now.Bank < -kBankLimit)
    RedFault(c, "watchthatbankangle.wav", 41, kExpiry,
             circuit ? &FlightStats::CircuitBadBankAngle : &FlightStats::ExceedBankLeft);
}

// A roll of more than ten degrees in half a second, either way.
void BankChange(Cockpit& c, const FSData& now, const FSData& before) {
  const int32_t change = before.Bank - now.Bank;
  RedOrAmber(c, change > kBankChange, change > kBankChangeAmber, "OuchBank1.wav",
             "AMBEROuchBank1.wav", 42, kBankRateExpiry, &FlightStats::ExceedBankChange);
  RedOrAmber(c, change < -kBankChange, change < -kBankChangeAmber, "OuchBank2.wav",
             "AMBEROuchBank2.wav", 43, kBankRateExpiry, &FlightStats::ExceedBankChange);
}

void RudderCoordination(Cockpit& c, const FSData& now) {
  if (!c.options.RudderController || c.link.HeavyAircraft) return;
  if (std::abs(now.Rudder) < kRudderCentred && std::abs(now.Slip) > kSlipOut)
    RedFault(c, "UseRudderToCoordinateTurns.wav", 44, kExpiry,
             &FlightStats::NotRudderToCoordinateTurns);
}

}  // namespace

void AttitudeAndLoadLimits(Cockpit& c) {
  const FSData& now = c.link.Now();
  const FSData& before = c.link.Before();
  LevelWings(c, now);
  const bool high = now.AGL > kLimitsAbove;
  if (high) {
    PitchChange(c, now, before);
    StressHigh(c, now, before);
    TooManyGs(c, now);
  }
  UseTrimmers(c, now);
  if (high) BankAngle(c, now);
  if (now.OnGround == 0 && now.AGL > 0) BankChange(c, now, before);
  if (high) RudderCoordination(c, now);
}

}  // namespace vantoro
