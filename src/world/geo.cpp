#include "world/geo.h"

#include <cmath>

namespace vantoro {

namespace {

constexpr double kPi = 3.14159265358979;
// The arc cosine adds its own, shorter pi for negative arguments; the two
// values differ in the tenth decimal and both are kept as they are.
constexpr double kACosPi = 3.141592654;
constexpr double kToRadians = kPi / 180;
constexpr double kToDegrees = 180 / kPi;
constexpr double kNmPerDegree = 60;

// Cosine of the great-circle angle between the two points.
double CosAngle(double lat1, double lon1, double lat2, double lon2) {
  const double a1 = lat1 * kToRadians, b1 = lon1 * kToRadians;
  const double a2 = lat2 * kToRadians, b2 = lon2 * kToRadians;
  return std::sin(a1) * std::sin(a2) + std::cos(a1) * std::cos(a2) * std::cos(b1 - b2);
}

}  // namespace

double ACos(double x) {
  if (x == 1) return 0;
  // At 0 the quotient below has no value; the angle is a right angle.
  if (x == 0) return 90 * kToRadians;
  // Rounding can carry the cosine of two nearby points a hair past 1; the
  // magnitude keeps the root real, and the angle stays next to 0 (or pi).
  double r = std::atan(std::sqrt(std::fabs(1 - x * x)) / x);
  if (x < 0) r += kACosPi;
  return r;
}

double CalcDistance(double lat1, double lon1, double lat2, double lon2) {
  return ACos(CosAngle(lat1, lon1, lat2, lon2)) * kToDegrees * kNmPerDegree;
}

double CalcAngle(double lat1, double lon1, double lat2, double lon2) {
  if (lat1 == lat2 && lon1 == lon2) return 0;
  const double d = ACos(CosAngle(lat1, lon1, lat2, lon2));
  const double a1 = lat1 * kToRadians, a2 = lat2 * kToRadians;
  const double divisor = std::sin(d) * std::cos(a1);
  // Coinciding points, or a start at a pole: no course can be had.
  if (divisor == 0) return 0;
  double x = (std::sin(a2) - std::sin(a1) * std::cos(d)) / divisor;
  if (x > 1) x = 1;
  if (x < -1) x = -1;
  // The course as the arc cosine, 0 to pi; the side of the meridian decides
  // between it and its complement to a full circle.
  double course = std::acos(x);
  if (std::sin((lon2 - lon1) * kToRadians) < 0) course = 2 * kPi - course;
  return course * kToDegrees;
}

int WrapLongLat(int degrees) {
  if (degrees > 179) return degrees - 360;
  if (degrees < -180) return degrees + 360;
  return degrees;
}

}  // namespace vantoro
