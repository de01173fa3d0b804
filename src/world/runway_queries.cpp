#include "world/runway_queries.h"

#include "base/numbers.h"
#include "base/text.h"
#include "world/geo.h"

namespace vantoro {

namespace {

std::string RunwayName(const Runway& r) {
  return r.ICAO + " " + r.Number;
}

// The walk shared by the searches: each runway that `passes` is measured and
// kept when strictly nearer than the best so far.
template <typename Filter>
const Runway* Nearest(const WorldState& world, double latitude, double longitude, double maxMiles,
                      Filter passes, double* bestDistance = nullptr) {
  const Runway* best = nullptr;
  double bestMiles = 1;  // the sentinel; the first runway found replaces it
  for (const Runway* r : world.CloseRunways) {
    if (!passes(*r)) continue;
    const double miles = CalcDistance(latitude, longitude, r->Latitude, r->Longitude);
    if (maxMiles != kNoLimit && miles > maxMiles) continue;
    if (best == nullptr || miles < bestMiles) {
      best = r;
      bestMiles = miles;
    }
  }
  if (bestDistance != nullptr) *bestDistance = bestMiles;
  return best;
}

}  // namespace

void FillCloseRunways(WorldState& world, double latitude, double longitude) {
  world.CloseRunways.clear();
  const int lat0 = CLng(latitude);
  const int lon0 = CLng(longitude);
  for (int lat = lat0 - 1; lat <= lat0 + 1; ++lat) {
    for (int step = -1; step <= 1; ++step) {
      const RunwayCell* cell = world.FindCell(lat, WrapLongLat(lon0 + step));
      if (cell == nullptr) continue;
      for (const Runway& r : *cell) world.CloseRunways.push_back(&r);
    }
  }
}

void FillThisAirportRunways(WorldState& world, std::string_view airport) {
  world.AirportRunways.clear();
  for (const Runway* r : world.CloseRunways)
    if (Trim(r->ICAO) == airport) world.AirportRunways.push_back(r);
}

const Runway* FindClosestRunway(const WorldState& world, double latitude, double longitude,
                                double heading, double maxMiles, bool checkBearing,
                                std::string* reasoning) {
  if (heading == kNoLimit) {
    return Nearest(world, latitude, longitude, maxMiles, [](const Runway&) { return true; });
  }

  std::string* why = reasoning;
  if (why != nullptr) *why = "Aircraft Heading: " + NumberText(heading) + "\n";
  const Runway* best = nullptr;
  double bestMiles = 1;
  for (const Runway* r : world.CloseRunways) {
    const double angle = CalcAngle(latitude, longitude, r->Latitude, r->Longitude);
    const double miles = CalcDistance(latitude, longitude, r->Latitude, r->Longitude);
    std::string verdict = " - OK";
    bool passes = true;
    if (!IsAngleWithinHeadingRange(r->Heading, heading, kHeadingTolerance) ||
        (checkBearing && !IsAngleWithinHeadingRange(angle, heading, kHeadingTolerance))) {
      verdict = " - Not within " + NumberText(kHeadingTolerance) + " degrees";
      passes = false;
    } else if (maxMiles != kNoLimit && miles > maxMiles) {
      verdict = " - Not within " + NumberText(maxMiles) + " miles";
      passes = false;
    }
    if (why != nullptr) {
      *why += RunwayName(*r) + "  Heading: " + std::to_string(r->Heading) +
              "  Angle: " + FormatFixed(angle, 1) + "  Distance: " + FormatFixed(miles, 2) +
              verdict + "\n";
    }
    if (passes && (best == nullptr || miles < bestMiles)) {
      best = r;
      bestMiles = miles;
    }
  }
  if (why != nullptr)
    *why += best != nullptr ? "Closest Runway: " + RunwayName(*best) : "No closest runway";
  return best;
}

const Runway* FindClosestRunwayOClock(const WorldState& world, double latitude, double longitude,
                                      int position, const OClockOfPoint& oClockOf,
                                      double maxMiles) {
  return Nearest(world, latitude, longitude, maxMiles,
                 [&](const Runway& r) { return oClockOf(r.Latitude, r.Longitude) == position; });
}

RunwayWithinFeet FindClosestRunwayWithinFeet(const WorldState& world, double latitude,
                                             double longitude) {
  RunwayWithinFeet out;
  double miles = 0;
  out.Found = Nearest(
      world, latitude, longitude, kNoLimit, [](const Runway&) { return true; }, &miles);
  if (out.Found != nullptr) out.Feet = miles * kFeetPerNauticalMile;
  return out;
}

bool IsAngleWithinHeadingRange(double angle, double heading, double /*range*/) {
  const double low = heading - kHeadingTolerance;
  const double high = heading + kHeadingTolerance;
  if (low < 0 && angle > 180) angle -= 360;
  if (high >= 360 && angle < 180) angle += 360;
  return angle >= low && angle <= high;
}

}  // namespace vantoro
