#include "engine/runway_choice.h"

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

void PickLandingRunway(Cockpit& c) {
  if (!c.world.RunwaysLoaded()) return;
  RunwayChoice& r = c.flight.Runways;
  const FSData& now = c.link.Now();
  const FSData& before = c.link.Before();
  if (now.OnGround == 0 && now.AGL < kLandingRunwayPickAGL && before.AGL >= kLandingRunwayPickAGL) {
    // The working set may be up to 31 ticks old: it is taken afresh here.
    FillCloseRunways(c.world, now.Latitude, now.Longitude);
    const Runway* ahead = FindClosestRunway(c.world, now.Latitude, now.Longitude,
                                            c.flight.GroundTrack, kLandingRunwaySearchMiles, true);
    // Coming down on a base leg nothing lies ahead: the nearest runway is the
    // one the circuit is flown to.
    if (ahead == nullptr)
      ahead = FindClosestRunway(c.world, now.Latitude, now.Longitude, kNoLimit,
                                kLandingRunwaySearchMiles, false);
    if (ahead != nullptr) {
      r.LandingRunway = ahead;
      // The approach rules coach down to it from here on.
      SetDestinationRunway(c.flight.approach, c.approach, *ahead, now.MagVar);
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
