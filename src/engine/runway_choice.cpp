#include "engine/runway_choice.h"

#include <cstdlib>

#include "base/numbers.h"
#include "engine/approach.h"
#include "engine/polling.h"
#include "link/snapshot.h"
#include "voice/phrases.h"
#include "world/geo.h"
#include "world/runway_queries.h"

namespace vantoro {

void FindCloseRunways(Cockpit& c) {
  FlightState& f = c.flight;
  if (f.TickCount % kCloseRunwaysEveryTicks != 0) return;
  const FSData& now = c.link.Now();
  FillCloseRunways(c.world, now.Latitude, now.Longitude);
  f.Runways.NearestRunway =
      c.world.CloseRunways.empty()
          ? nullptr
          : FindClosestRunway(c.world, now.Latitude, now.Longitude, kNoLimit, kNoLimit, true);
}

namespace {

// Frequencies closer than this are the same channel.
constexpr double kSameFrequency = 0.001;
// A runway whose heading lies within this of the track faces the aircraft.
constexpr int32_t kFacingDegrees = 90;

int32_t DegreesOff(int32_t heading, int32_t track) {
  return std::abs(RelativeBearing(heading, track));
}

// The tuned ILS: of the runways on the NAV1 frequency, the nearest facing the
// track, else the nearest.
const Runway* RunwayOfTunedILS(const WorldState& world, const LandingRunwayQuestion& q) {
  if (q.Nav1Freq <= 0) return nullptr;
  const auto tuned = [&](const Runway& r) {
    return LandableRunway(r, q.FloatPlane) && !r.ILSFrequency.empty() &&
           std::abs(ReadDecimal(r.ILSFrequency) - q.Nav1Freq) < kSameFrequency;
  };
  const Runway* facing = FindClosestRunwayWhere(
      world, q.Latitude, q.Longitude, kLandingRunwaySearchMiles,
      [&](const Runway& r) { return tuned(r) && DegreesOff(r.Heading, q.Track) < kFacingDegrees; });
  return facing != nullptr ? facing
                           : FindClosestRunwayWhere(world, q.Latitude, q.Longitude,
                                                    kLandingRunwaySearchMiles, tuned);
}

// Of the airfield's landable runways in the working set, the one facing most
// into the surface wind; the first on equal angles.
const Runway* MostIntoWind(const WorldState& world, const LandingRunwayQuestion& q,
                           std::string_view airfield) {
  const Runway* best = nullptr;
  int32_t bestAngle = 181;
  for (const Runway* r : world.CloseRunways) {
    if (r->ICAO != airfield || !LandableRunway(*r, q.FloatPlane)) continue;
    const int32_t angle = DegreesOff(r->Heading, q.SurfaceWindDirection);
    if (angle < bestAngle) {
      best = r;
      bestAngle = angle;
    }
  }
  return best;
}

// The flight plan's destination, when the aircraft is within 15 nm of it.
const Runway* RunwayOfPlanDestination(const WorldState& world, const LandingRunwayQuestion& q) {
  if (q.PlanDestination.empty()) return nullptr;
  const Runway* closest = FindClosestRunwayWhere(
      world, q.Latitude, q.Longitude, kLandingRunwaySearchMiles, [&](const Runway& r) {
        return r.ICAO == q.PlanDestination && LandableRunway(r, q.FloatPlane);
      });
  return closest != nullptr ? MostIntoWind(world, q, closest->ICAO) : nullptr;
}

const Runway* RunwayAhead(const WorldState& world, const LandingRunwayQuestion& q) {
  return FindClosestRunwayWhere(
      world, q.Latitude, q.Longitude, kLandingRunwaySearchMiles, [&](const Runway& r) {
        if (!LandableRunway(r, q.FloatPlane)) return false;
        if (!IsAngleWithinHeadingRange(r.Heading, q.Track, kHeadingTolerance)) return false;
        const double bearing = CalcAngle(q.Latitude, q.Longitude, r.Latitude, r.Longitude);
        return IsAngleWithinHeadingRange(bearing, q.Track, kHeadingTolerance);
      });
}

// At an airfield close by, the pilot is flying its circuit: he lands on the
// runway that faces most into the surface wind.
const Runway* RunwayIntoWindNearby(const WorldState& world, const LandingRunwayQuestion& q) {
  const Runway* nearest =
      FindClosestRunwayWhere(world, q.Latitude, q.Longitude, kCircuitAirfieldMiles,
                             [&](const Runway& r) { return LandableRunway(r, q.FloatPlane); });
  return nearest != nullptr ? MostIntoWind(world, q, nearest->ICAO) : nullptr;
}

}  // namespace

const char* LandingRunwayReasonName(LandingRunwayReason reason) {
  switch (reason) {
    case LandingRunwayReason::ILS:
      return "ils";
    case LandingRunwayReason::Plan:
      return "plan";
    case LandingRunwayReason::Ahead:
      return "ahead";
    case LandingRunwayReason::Wind:
      return "wind";
    case LandingRunwayReason::Nearest:
      break;
  }
  return "nearest";
}

LandingRunwayPick ChooseLandingRunway(const WorldState& world, const LandingRunwayQuestion& q) {
  using Reason = LandingRunwayReason;
  if (const Runway* r = RunwayOfTunedILS(world, q)) return {r, Reason::ILS};
  if (const Runway* r = RunwayOfPlanDestination(world, q)) return {r, Reason::Plan};
  if (const Runway* r = RunwayAhead(world, q)) return {r, Reason::Ahead};
  if (const Runway* r = RunwayIntoWindNearby(world, q)) return {r, Reason::Wind};
  return {FindClosestRunwayWhere(world, q.Latitude, q.Longitude, kLandingRunwaySearchMiles,
                                 [&](const Runway& r) { return LandableRunway(r, q.FloatPlane); }),
          Reason::Nearest};
}

LandingRunwayQuestion LandingRunwayQuestionOf(const Cockpit& c) {
  const FSData& now = c.link.Now();
  return LandingRunwayQuestion{
      .Latitude = now.Latitude,
      .Longitude = now.Longitude,
      .Nav1Freq = now.Nav1Freq,
      .Track = c.flight.GroundTrack,
      .SurfaceWindDirection = now.SurfaceWindDirection,
      .FloatPlane = c.aircraft.Raw.FloatPlane,
      .PlanDestination = c.plan.FlightPlanDestination,
  };
}

void TakeLandingRunway(Cockpit& c, const LandingRunwayPick& pick) {
  if (pick.Found == nullptr) return;
  const Runway& r = *pick.Found;
  SetDestinationRunway(c.flight.approach, c.approach, r, c.link.Now().MagVar);
  c.events.Emit(
      c.flight.TickCount, "runway",
      {{"ident", r.ICAO + " " + r.Number}, {"reason", LandingRunwayReasonName(pick.Reason)}});
}

void PickLandingRunway(Cockpit& c) {
  if (!c.world.RunwaysLoaded()) return;
  RunwayChoice& r = c.flight.Runways;
  const FSData& now = c.link.Now();
  const FSData& before = c.link.Before();
  if (now.OnGround == 0 && now.AGL < kLandingRunwayPickAGL && before.AGL >= kLandingRunwayPickAGL) {
    // The working set may be up to 31 ticks old: it is taken afresh here.
    FillCloseRunways(c.world, now.Latitude, now.Longitude);
    const LandingRunwayPick pick = ChooseLandingRunway(c.world, LandingRunwayQuestionOf(c));
    if (pick.Found != nullptr) {
      r.LandingRunway = pick.Found;
      // The approach rules coach down to it from here on.
      TakeLandingRunway(c, pick);
    }
  }
  if (r.LandingRunway == nullptr) {
    r.RunwayHeadingRelative = 0;
    return;
  }
  const double bearing =
      CalcAngle(now.Latitude, now.Longitude, r.LandingRunway->Latitude, r.LandingRunway->Longitude);
  r.RunwayHeadingRelative = RelativeBearing(CLng(bearing), now.TrueHeading);
}

void AnnounceNearestAirport(Cockpit& c) {
  FlightState& f = c.flight;
  const FSData& now = c.link.Now();
  if (f.TickCount <= kAnnounceAirportAfterTicks || !c.options.AnnounceNearestAirport) return;
  if (!(now.AGL > kAnnounceAirportAboveAGL) || now.OnGround != 0) return;
  const Runway* nearest =
      c.world.CloseRunways.empty()
          ? nullptr
          : FindClosestRunway(c.world, now.Latitude, now.Longitude, kNoLimit, kNoLimit, false);
  Voice v = c.voice();
  SayNearestAirportAutomatically(v, nearest, now, f.Runways.LastAnnouncedAirport);
}

}  // namespace vantoro
