// The traffic monitors: the nearest target of each table, where it stands on
// the clock, and what the pilot is told about it.
#include "engine/traffic.h"

#include <array>
#include <string>

#include "base/text.h"
#include "engine/tick_rules.h"
#include "voice/phrases.h"
#include "world/geo.h"

namespace vantoro {

namespace {

constexpr double kFeetPerMile = 6076;

// The ground: a fast target taking off is not in the way; only what stands
// ahead, between 11 and 1 o'clock, and only when one of the two moves.
constexpr int32_t kTakingOffAbove = 20;  // knots
constexpr int32_t kMoving = 1;           // knots
constexpr int32_t kAheadLeft = 11;
constexpr int32_t kAheadRight = 1;
// The spacing behind the aircraft ahead: a light aircraft keeps 150 feet,
// clear of the propwash ahead and room to stop from a brisk taxi; a heavy
// keeps 300 feet, for its jet blast and its longer stop. Closer than two
// thirds of it is danger close.
constexpr double kLightSpacing = 150;
constexpr double kHeavySpacing = 300;
constexpr double kDangerShare = 0.66;
constexpr int kGroundGap = 90;
constexpr int kExpiry = 4;

// The air: only from 300 feet up; a target within 1000 feet is a danger.
constexpr double kAirborneFrom = 300;
constexpr double kDangerFeet = 1000;
constexpr int32_t kBehindFrom = 3;  // 3 to 6 o'clock: it is catching us up
constexpr int32_t kBehindTo = 6;
constexpr int kAirGap = 30;
constexpr int kDangerId = 55;
constexpr int kClosureId = 54;
constexpr int kDescriptionId = 52;
// The closure marks: seconds of flight at our speed, as IAS x feet.
struct ClosureStage {
  double iasTimes;
  const char* phrase;
};
constexpr std::array<ClosureStage, 4> kClosureStages = {{
    {10, "TrafficAirDanger1.wav"},
    {15, "TrafficAirDanger2.wav"},
    {30, "TrafficAirDanger3.wav"},
    {50, "TrafficAirDanger4.wav"},
}};

// What a target is doing, by its vertical speed in feet per minute.
constexpr int32_t kClimbing = 300;

// The type lists, searched in order with the model word between commas. The
// Boeing row comes after the rows of the single models, so a word in both
// names the model. Two oddities are kept as the lists have always been: the
// empty word ",," of the British Aerospace row, and "KingAir" in mixed case,
// which an upper-cased word never meets (the King Air is known as "B350").
struct TypeList {
  std::string_view words;
  std::string_view phrase;
};
constexpr std::array<TypeList, 22> kTypeLists = {{
    {",B731,B737,B732,B733,B734,B738,B735,B736,B739,", "737.wav"},
    {",B741,B747,B742,B743,B744,B748,B745,B746,B749,", "747.wav"},
    {",B751,B757,B752,B753,B754,B758,B755,B756,B759,", "757.wav"},
    {",B761,B767,B762,B763,B764,B768,B765,B766,B769,", "767.wav"},
    {",B771,B777,B772,B773,B774,B778,B775,B776,B779,", "777.wav"},
    {",B711,B717,B712,B713,B714,B718,B715,B716,B719,", "717.wav"},
    {",B721,B727,B722,B723,B724,B728,B725,B726,B729,", "727.wav"},
    {",B701,B707,B702,B703,B704,B708,B705,B706,B709,", "707.wav"},
    {",C172,", "CESSNA172.wav"},
    {",C208B,C208,C152,C182,", "CESSNA.wav"},
    {",B721,B722,B734,B738,B741,B742,B743,B744,B748,B752,B753,B762,B763,B764,B772,B773,",
     "Boeing.wav"},
    {",A320,", "A320.wav"},
    {",A340,", "A340.wav"},
    {",A300,A310,A318,A319,A320,A321,A330,A340,A350,A380,", "Airbus.wav"},
    {",MD80,", "MD80.wav"},
    {",DC10,DC-10,", "DC10.wav"},
    {",DC9,DC-9,", "DC9.wav"},
    {",MD11,", "MD11.wav"},
    {",DH8A,DH8B,DH8C,DH8D,", "DeHavilland.wav"},
    {",PA28A,", "Piper.wav"},
    {",B350,KingAir,", "KingAir.wav"},
    {",BA11,BAE146,BAE11,BA46,,", "BritishAerospace.wav"},
}};

// A slot the simulator has cleared: no identifier and no position.
bool Empty(const TrafficSlot& t) {
  return t.Id == 0 && t.Latitude == 0 && t.Longitude == 0;
}

// The nearest target of a table: slots in use, skipping empty ones and those
// `skip` says;
// the smallest distance above 0 in feet, index kNoTarget when none.
template <typename Skip>
void Nearest(const std::array<TrafficSlot, kTrafficSlots + 1>& table, int32_t inUse,
             const FSData& now, Skip skip, int32_t& index, double& distance) {
  index = kNoTarget;
  distance = kNoTargetDistance;
  for (int32_t n = 1; n <= std::min(inUse, kTrafficSlots); ++n) {
    const TrafficSlot& t = table[static_cast<size_t>(n)];
    if (Empty(t) || skip(t)) continue;
    const double feet =
        CalcDistance(now.Latitude, now.Longitude, t.Latitude, t.Longitude) * kFeetPerMile;
    if (feet > 0 && feet < distance) {
      distance = feet;
      index = n;
    }
  }
}

void Say(Voice& v, std::string_view file) {
  if (!file.empty()) PlayAlways(v, file);
}

// What follows the clock position of a target described: high or low (in
// the air), the kind of aircraft and what it is doing.
void DescribeAfterTheClock(Voice& v, const FSData& now, const TrafficSlot& target, bool air) {
  PlayAlways(v, "OClock.wav");
  if (air && target.Altitude > now.Altitude) PlayAlways(v, "High.wav");
  if (air && target.Altitude < now.Altitude) PlayAlways(v, "Low.wav");
  SayTrafficType(v, target);
  SayTrafficActivity(v, target);
}

std::string ClockFile(int32_t oclock) {
  return std::to_string(oclock) + ".wav";
}

// The new nearest target is described: "3 o'clock high, a Boeing 737, is
// climbing", when the family's gap has run.
void DescribeTarget(Cockpit& c, const TrafficSlot& target) {
  Voice v = c.voice();
  if (!PlayPerhaps(v, ClockFile(c.traffic.OClock), kDescriptionId, kAirGap, kExpiry)) return;
  DescribeAfterTheClock(v, c.link.Now(), target, true);
}

}  // namespace

std::string_view TrafficTypePhrase(std::string_view modelWord) {
  const std::string key = "," + Upper(modelWord) + ",";
  for (const TypeList& list : kTypeLists)
    if (list.words.find(key) != std::string_view::npos) return list.phrase;
  return "Aircraft.wav";
}

// The simulator's states, each said as what a pilot sees the aircraft do.
// Both push-back states are one phrase; initialising, going around and
// shutting down have none.
std::string_view TrafficStatePhrase(int32_t state) {
  switch (state) {
    case kStateSleeping:
      return "IsParked.wav";
    case kStateFilingFlightPlan:
      return "IsGettingReady.wav";
    case kStateObtainingClearance:
      return "IsLookingBusy.wav";
    case kStatePushbackBack:
    case kStatePushbackTurn:
      return "IsBeingPushedBack.wav";
    case kStateStartingUp:
      return "IsStartingUp.wav";
    case kStatePreparingToTaxi:
      return "IsPreparingToTaxi.wav";
    case kStateTaxiingOut:
      return "IsTaxiingOut.wav";
    case kStateTakeOffPrepare:
      return "IsAboutToTakeOff.wav";
    case kStateTakingOff:
      return "IsTakingOff.wav";
    case kStateDeparting:
      return "JustTookOff.wav";
    case kStateLanding:
      return "IsLanding.wav";
    case kStateRollingOut:
      return "JustLanded.wav";
    case kStateTaxiingIn:
      return "IsTaxiingIn.wav";
    default:
      return "";
  }
}

std::string_view TrafficActivityPhrase(const TrafficSlot& target) {
  if (target.State == kStateInPattern) return "IsInThePattern.wav";
  if (target.VS >= kClimbing) return "IsClimbing.wav";
  if (target.VS <= -kClimbing) return "IsDescending.wav";
  if (target.State == kStateEnroute) return "IsCruising.wav";
  const std::string_view state = TrafficStatePhrase(target.State);
  return state.empty() ? "IsThereSoLetsKeepAnEyeOnHim.wav" : state;
}

// The traffic table carries no model of its own: AI traffic whose call sign
// begins with its type ("B738 1234") is named by it, others are "an
// aircraft".
std::string ModelWordOf(const TrafficSlot& target) {
  const std::string ident = Trim(target.Ident);
  return ident.substr(0, ident.find(' '));
}

void SayTrafficType(Voice& v, const TrafficSlot& target) {
  Say(v, TrafficTypePhrase(ModelWordOf(target)));
}

void SayTrafficState(Voice& v, const TrafficSlot& target) {
  Say(v, TrafficStatePhrase(target.State));
}

void SayTrafficActivity(Voice& v, const TrafficSlot& target) {
  Say(v, TrafficActivityPhrase(target));
}

double GroundSpacing(const LinkState& link) {
  return link.HeavyAircraft ? kHeavySpacing : kLightSpacing;
}

void ProcessTCASGround(Cockpit& c) {
  if (c.flight.TickCount <= kTrafficAfterTicks) return;
  const FSData& now = c.link.Now();
  TrafficState& t = c.traffic;
  Nearest(
      c.link.GroundTraffic, c.link.GroundTrafficCount, now,
      [](const TrafficSlot& s) { return s.GS > kTakingOffAbove && s.State == kStateTakingOff; },
      t.NearestGroundIndex, t.NearestGroundDistance);
  if (t.NearestGroundIndex == kNoTarget) return;
  const TrafficSlot& target = c.link.GroundTraffic[static_cast<size_t>(t.NearestGroundIndex)];
  t.OClock = OClockOfLatLongToMe(now, target.Latitude, target.Longitude);
  if (now.OnGround == 0) return;
  if (target.GS <= kMoving && now.GS <= kMoving) return;
  if (t.OClock != 12 && t.OClock != kAheadLeft && t.OClock != kAheadRight) return;
  const double spacing = GroundSpacing(c.link);
  Voice v = c.voice();
  if (t.NearestGroundDistance < spacing * kDangerShare)
    PlayPerhaps(v, "TrafficGroundDangerClose.wav", 56, kGroundGap, kExpiry);
  else if (t.NearestGroundDistance < spacing)
    PlayPerhaps(v, "TrafficGroundMoreSpacing.wav", 57, kGroundGap, kExpiry);
}

void ProcessTCASAir(Cockpit& c) {
  if (c.flight.TickCount <= kTrafficAfterTicks) return;
  const FSData& now = c.link.Now();
  TrafficState& t = c.traffic;
  t.PreviousAirIndex = t.NearestAirIndex;
  t.PreviousAirDistance = t.NearestAirDistance;
  Nearest(
      c.link.AirTraffic, c.link.AirTrafficCount, now,
      [](const TrafficSlot& s) { return s.State == kStateRollingOut; }, t.NearestAirIndex,
      t.NearestAirDistance);
  if (t.NearestAirIndex == kNoTarget) return;
  const TrafficSlot& target = c.link.AirTraffic[static_cast<size_t>(t.NearestAirIndex)];
  t.OClock = OClockOfLatLongToMe(now, target.Latitude, target.Longitude);
  if (now.OnGround != 0 || now.AGL < kAirborneFrom) return;

  Voice v = c.voice();
  if (t.NearestAirDistance < kDangerFeet) {
    const bool behind = t.OClock >= kBehindFrom && t.OClock <= kBehindTo;
    PlayPerhaps(v, behind ? "TrafficAirDangerLetItPassUs.wav" : "TrafficAirDangerPassRight.wav",
                kDangerId, kAirGap, kExpiry);
  }
  // The closest mark crossed since the last sample is told.
  for (const ClosureStage& stage : kClosureStages) {
    const double mark = now.IAS * stage.iasTimes;
    if (t.NearestAirDistance < mark && t.PreviousAirDistance >= mark) {
      PlayPerhaps(v, stage.phrase, kClosureId, kAirGap, kExpiry);
      break;
    }
  }
  if (t.NearestAirIndex != t.PreviousAirIndex) DescribeTarget(c, target);
}

void CallTraffic(Cockpit& c) {
  const FSData& now = c.link.Now();
  TrafficState& t = c.traffic;
  const bool air = now.OnGround == 0;
  const auto& table = air ? c.link.AirTraffic : c.link.GroundTraffic;
  int32_t index = kNoTarget;
  double distance = kNoTargetDistance;
  Nearest(
      table, air ? c.link.AirTrafficCount : c.link.GroundTrafficCount, now,
      [air](const TrafficSlot& s) { return air && s.State == kStateRollingOut; }, index, distance);
  Voice v = c.voice();
  if (index == kNoTarget) {
    PlayAlways(v, "negative.wav");
    return;
  }
  const TrafficSlot& target = table[static_cast<size_t>(index)];
  t.OClock = OClockOfLatLongToMe(now, target.Latitude, target.Longitude);
  PlayAlways(v, ClockFile(t.OClock));
  DescribeAfterTheClock(v, now, target, air);
  // The air monitor now knows this target as the one described, so it does
  // not describe it a second time; its closure marks keep the last sample's
  // distance.
  if (air) t.NearestAirIndex = index;
}

}  // namespace vantoro
