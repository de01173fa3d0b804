// The last part of the approach: heights called out on the way down, the
// balloon in the flare, a descent too fast near the ground, flying low over
// rising ground, and what is gathered on final for the landing evaluation.
#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "base/numbers.h"
#include "engine/approach.h"
#include "engine/tick_rules.h"
#include "link/snapshot.h"
#include "world/geo.h"

namespace vantoro {

namespace {

// A call is made once, on the tick the height comes down into its band:
// the tick before above the band's top, this one inside it.
struct HeightCall {
  double bottom;  // exclusive
  double top;     // inclusive
  const char* file;
  int id;
};

// The higher calls: a band that reaches further down the higher the call, so
// that a fast descent cannot step over it in one tick.
constexpr HeightCall kHigherCalls[] = {
    {9000, 10005, "n10000.wav", 170}, {2250, 2505, "n2500.wav", 171}, {900, 1005, "n1000.wav", 172},
    {450, 505, "n500.wav", 173},      {360, 405, "n400.wav", 174},    {270, 305, "n300.wav", 175},
    {180, 205, "n200.wav", 176},      {90, 105, "n100.wav", 177},
};
constexpr int kCallGap = 30;
constexpr int kCallExpiry = 4;

bool Crossed(const HeightCall& call, double now, double before) {
  return before > call.top && now > call.bottom && now <= call.top;
}

bool AltitudeCallsWanted(const Cockpit& c) {
  return !c.aircraft.Monitoring.WantnoGPWS;
}

// Ballooning: in the flare, the aircraft rises again.
constexpr double kBalloonFrom = 15;
constexpr double kBalloonBelow = 35;
constexpr double kBalloonRise = 3;

// Descent too fast near the ground: the first row that matches decides.
struct DescentRow {
  double aglAtMost;
  int32_t vsBelow;
};
constexpr DescentRow kDescentRowsHeavy[] = {{70, -500}, {100, -600}, {200, -850}, {300, -1100}};
constexpr DescentRow kDescentRowsOthers[] = {{30, -350}, {50, -400}, {100, -600}, {200, -600}};

// Flying low: a drop of the height above ground of 50 feet in a tick, low down.
constexpr double kLowFlightDrop = 50;
constexpr double kLowFlightBelow = 200;

// The landing evaluation opens on the way down through 500 feet.
constexpr double kOpeningLow = 495;
constexpr double kOpeningHigh = 515;
// The descent through the flare height closes the gathering.
constexpr double kFlareHeight = 20;
// Held at the flare: the needle within a quarter of its deflection, or
// within this many feet of the glide path to the runway.
constexpr int32_t kHeldNeedle = 32;
constexpr double kHeldVisualFeet = 50;
// Closer to the runway than this the bearing to it says little of the
// alignment.
constexpr double kVisualAlignmentFrom = 0.25;

void Add(int32_t& sum, int32_t& samples, int32_t value) {
  if (sum == kNothingGathered) sum = 0;
  sum += value;
  samples += 1;
}

// Feet off the glide path to the destination, at distance d.
double GlidePathError(const ApproachState& a, const FSData& now, double d) {
  return std::abs((now.IndicatedAltitude - a.DestinationElevation) - a.GlidePathFeetPerMile * d);
}

// Degrees between two headings, 0..180 either way round.
int32_t DegreesApart(int32_t a, int32_t b) {
  const int32_t d = ((a - b) % 360 + 360) % 360;
  return d > 180 ? 360 - d : d;
}

}  // namespace

void CallOffHeights(Cockpit& c) {
  if (!AltitudeCallsWanted(c)) return;
  const double now = c.link.Now().AGL;
  const double before = c.link.Before().AGL;
  Voice v = c.voice();
  for (const HeightCall& call : kHigherCalls) {
    if (Crossed(call, now, before)) PlayPerhaps(v, call.file, call.id, kCallGap, kCallExpiry);
  }
}

void CallOffLast50(Cockpit& c) {
  if (!AltitudeCallsWanted(c)) return;
  const double now = c.link.Now().AGL;
  const double before = c.link.Before().AGL;
  Voice v = c.voice();
  if (Crossed({45, 55, "n50.wav", 68}, now, before)) PlayAndPurge(v, "n50.wav", 68, kCallGap);
  if (Crossed({35, 45, "n40.wav", 69}, now, before)) PlayPerhaps(v, "n40.wav", 69, 30, 4);
  if (Crossed({25, 35, "n30.wav", 70}, now, before)) PlayPerhaps(v, "n30.wav", 70, 30, 4);
  if (Crossed({15, 25, "n20.wav", 71}, now, before)) {
    PlayPerhaps(v, c.link.HeavyAircraft ? "n20.wav" : "n20Flare.wav", 71, 30, 4);
  }
  if (Crossed({5, 15, "n10.wav", 72}, now, before)) PlayPerhaps(v, "n10.wav", 72, 30, 4);
}

// Unlike the other faults, a balloon counts on every tick the aircraft rises
// in the flare, so one bad flare can count several times; the phrase keeps
// its gap.
void Ballooning(Cockpit& c) {
  const FSData& now = c.link.Now();
  const FSData& before = c.link.Before();
  if (!(before.AGL >= kBalloonFrom && c.flight.Modes.Landing && now.AGL < kBalloonBelow &&
        now.AGL > before.AGL + kBalloonRise))
    return;
  GiveAdvice(c, "Ballooning.wav", 107, 30, 1, kRed);
  CountTick(c, &FlightStats::Ballooning);
}

void CallOffDescentTooFast(Cockpit& c) {
  if (!AltitudeCallsWanted(c)) return;
  const FSData& now = c.link.Now();
  if (now.AGL <= 0) return;
  const auto decide = [&](const auto& rows) {
    for (const DescentRow& row : rows) {
      if (now.AGL <= row.aglAtMost && now.VS < row.vsBelow) {
        Voice v = c.voice();
        PlayPerhaps(v, "DescentTooFastDontLandGoAround.wav", 91, 8, 1);
        return;
      }
    }
  };
  if (c.link.HeavyAircraft) {
    decide(kDescentRowsHeavy);
  } else {
    decide(kDescentRowsOthers);
  }
}

void CheckLowFlight(Cockpit& c) {
  const FSData& now = c.link.Now();
  const FSData& before = c.link.Before();
  const ModeFlags& m = c.flight.Modes;
  if (m.Landing || m.TakeOff) return;  // low flight is what these modes expect
  if (before.AGL - now.AGL < kLowFlightDrop || now.AGL >= kLowFlightBelow) return;
  Advise(c, Delivery::Always, "YouFlewTooLow.wav", 0, 0, 0, kRed,
         &FlightStats::FlewTooLowOverObstacle);
}

void GatherApproachRatings(Cockpit& c) {
  FlightState& f = c.flight;
  ApproachState& a = f.approach;
  ApproachRatings& r = c.approach;
  const FSData& now = c.link.Now();
  const FSData& before = c.link.Before();

  if (now.AGL >= kOpeningLow && now.AGL <= kOpeningHigh && before.AGL > kOpeningHigh) {
    a.LastFiveHundredFeetTick = f.TickCount;
    r.ResetGathered();
    a.BestDistanceToThreshold = kNoBestDistance;
    a.BestDistanceToCentreLine = kNoBestDistance;
  }
  if (!f.Modes.Landing || a.LastFiveHundredFeetTick == 0 || f.LandingFlareState != 0) return;
  if (now.AGL <= 0 || now.AGL > kOpeningHigh) return;

  const double d = DistanceAirportWithoutILSCheck(a, now);
  const bool known = d != kNoDestinationDistance;

  if (before.AGL > kFlareHeight && now.AGL <= kFlareHeight) {
    // The flare: how well the glide path was held down to here.
    f.LandingFlareState = 1;
    r.GlideslopeHeldAtFlare =
        now.Nav1GlideslopeAlive && std::abs(now.Nav1Glideslope) <= kHeldNeedle;
    r.VisualGlideslopeHeldAtFlare = known && GlidePathError(a, now, d) <= kHeldVisualFeet;
    return;
  }

  if (now.Nav1GlideslopeAlive) {
    Add(r.ILSGlideslopeSum, r.ILSGlideslopeSamples, std::abs(now.Nav1Glideslope));
    Add(r.ILSLocalizerSum, r.ILSLocalizerSamples, std::abs(now.Nav1Localiser));
  }
  if (known) {
    Add(r.VisualGlideslopeSum, r.VisualGlideslopeSamples, CLng(GlidePathError(a, now, d)));
    const int32_t off =
        DegreesApart(a.Destination.runway.Heading, BearingAirportWithoutILSCheck(a, now));
    if (d >= kVisualAlignmentFrom) Add(r.VisualLocalizerSum, r.VisualLocalizerSamples, off);
    if (a.BestDistanceToThreshold == kNoBestDistance || d < a.BestDistanceToThreshold) {
      a.BestDistanceToThreshold = d;
    }
    if (a.BestDistanceToCentreLine == kNoBestDistance || off < a.BestDistanceToCentreLine) {
      a.BestDistanceToCentreLine = off;
    }
  }
}

void ApproachMonitors(Cockpit& c) {
  ApproachRules(c);
  CallOffHeights(c);
  CallOffLast50(c);
  Ballooning(c);
  CallOffDescentTooFast(c);
  CheckLowFlight(c);
  GatherApproachRatings(c);
}

}  // namespace vantoro
