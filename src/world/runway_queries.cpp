#include "world/runway_queries.h"

#include <algorithm>
#include <cmath>

#include "base/numbers.h"
#include "base/text.h"
#include "world/geo.h"

namespace vantoro {

namespace {

std::string RunwayName(const Runway& r) {
  return r.ICAO + " " + r.Number;
}

constexpr double kToRadians = 3.14159265358979 / 180;
constexpr double kNmPerDegree = 60;
// Cosines of great-circle angles closer than this are not told apart by the
// quick test below; such runways are measured exactly.
constexpr double kCosineMargin = 1e-9;

// The cosine of the great-circle angle from the aircraft to a place, without
// trigonometry: the same expression as the distance formula, with the cosine
// of the longitude difference expanded.
double CosineTo(const RunwayPlace& here, const RunwayPlace& there) {
  const double cosLongitudes =
      here.CosLongitude * there.CosLongitude + here.SinLongitude * there.SinLongitude;
  return here.SinLatitude * there.SinLatitude +
         here.CosLatitude * there.CosLatitude * cosLongitudes;
}

// The walk shared by the searches: of the runways that `passes`, the nearest
// by CalcDistance, strictly nearer than the best so far (so on equal
// distances the earlier stays), within maxMiles. A quick cosine test first
// passes over runways that are plainly farther than the best or beyond the
// limit, so that only a few runways are measured exactly.
template <typename Filter>
const Runway* Nearest(const WorldState& world, double latitude, double longitude, double maxMiles,
                      Filter passes, double* bestDistance = nullptr) {
  const RunwayPlace here = PlaceOf(latitude, longitude);
  const bool placesKept = world.ClosePlaces.size() == world.CloseRunways.size();
  const double limitCosine =
      maxMiles == kNoLimit ? -2
                           : std::cos(std::clamp(maxMiles / kNmPerDegree, 0.0, 180.0) * kToRadians);
  const Runway* best = nullptr;
  double bestMiles = 1;  // the sentinel; the first runway found replaces it
  double bestCosine = -2;
  for (size_t i = 0; i < world.CloseRunways.size(); ++i) {
    const Runway* r = world.CloseRunways[i];
    const double cosine =
        CosineTo(here, placesKept ? world.ClosePlaces[i] : PlaceOf(r->Latitude, r->Longitude));
    if (cosine < limitCosine - kCosineMargin) continue;
    if (best != nullptr && cosine < bestCosine - kCosineMargin) continue;
    if (!passes(*r)) continue;
    const double miles = CalcDistance(latitude, longitude, r->Latitude, r->Longitude);
    if (maxMiles != kNoLimit && miles > maxMiles) continue;
    if (best == nullptr || miles < bestMiles) {
      best = r;
      bestMiles = miles;
      bestCosine = cosine;
    }
  }
  if (bestDistance != nullptr) *bestDistance = bestMiles;
  return best;
}

}  // namespace

void FillCloseRunways(WorldState& world, double latitude, double longitude) {
  world.CloseRunways.clear();
  world.ClosePlaces.clear();
  const int lat0 = CLng(latitude);
  const int lon0 = CLng(longitude);
  for (int lat = lat0 - 1; lat <= lat0 + 1; ++lat) {
    for (int step = -1; step <= 1; ++step) {
      const RunwayCell* cell = world.FindCell(lat, WrapLongLat(lon0 + step));
      if (cell == nullptr) continue;
      for (int32_t serial : *cell) {
        world.CloseRunways.push_back(&world.Runways[static_cast<size_t>(serial)]);
        world.ClosePlaces.push_back(world.Places[static_cast<size_t>(serial)]);
      }
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
  if (heading == kNoLimit)
    return Nearest(world, latitude, longitude, maxMiles, [](const Runway&) { return true; });
  if (reasoning == nullptr) {
    return Nearest(world, latitude, longitude, maxMiles, [&](const Runway& r) {
      if (!IsAngleWithinHeadingRange(r.Heading, heading, kHeadingTolerance)) return false;
      if (!checkBearing) return true;
      const double bearing = CalcAngle(latitude, longitude, r.Latitude, r.Longitude);
      return IsAngleWithinHeadingRange(bearing, heading, kHeadingTolerance);
    });
  }

  // The same search, every runway measured, for the reasoning.
  std::string* why = reasoning;
  *why = "Aircraft Heading: " + NumberText(heading) + "\n";
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
    {
      *why += RunwayName(*r) + "  Heading: " + std::to_string(r->Heading) +
              "  Angle: " + FormatFixed(angle, 1) + "  Distance: " + FormatFixed(miles, 2) +
              verdict + "\n";
    }
    if (passes && (best == nullptr || miles < bestMiles)) {
      best = r;
      bestMiles = miles;
    }
  }
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

bool LandableRunway(const Runway& r, bool floatPlane) {
  // A helipad's "H1" reads "0H1" once padded; a closed one carries an "X".
  if (r.Number.empty() || r.Number[0] < '0' || r.Number[0] > '9') return false;
  if (r.Number.find_first_of("HhXx") != std::string::npos) return false;
  if (StartsWith(r.AirportName, "[X]")) return false;
  return floatPlane || r.Surface != "WATER";
}

const Runway* FindClosestRunwayWhere(const WorldState& world, double latitude, double longitude,
                                     double maxMiles, const RunwayFilter& passes) {
  return Nearest(world, latitude, longitude, maxMiles, passes);
}

bool IsAngleWithinHeadingRange(double angle, double heading, double /*range*/) {
  const double low = heading - kHeadingTolerance;
  const double high = heading + kHeadingTolerance;
  if (low < 0 && angle > 180) angle -= 360;
  if (high >= 360 && angle < 180) angle += 360;
  return angle >= low && angle <= high;
}

}  // namespace vantoro
