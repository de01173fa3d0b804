#include "world/geo.h"

#include <cmath>

namespace vantoro {

namespace {
constexpr double kPi = 3.14159265358979;
constexpr double kACosPi = 3.141592654;  // deliberately shorter than kPi
constexpr double kRad = kPi / 180;
constexpr double kNmPerDegree = 60;

double CosAngle(double lat1, double lon1, double lat2, double lon2) {
  const double a1 = lat1 * kRad, b1 = lon1 * kRad, a2 = lat2 * kRad, b2 = lon2 * kRad;
  return std::sin(a1) * std::sin(a2) + std::cos(a1) * std::cos(a2) * std::cos(b1 - b2);
}
}  // namespace

double ACos(double x) {
  if (x == 1) return 0;
  if (x == 0) return kACosPi / 2;
  double r = std::atan(std::sqrt(std::fabs(1 - x * x)) / x);
  if (x < 0) r += kACosPi;
  return r;
}

double CalcDistance(double lat1, double lon1, double lat2, double lon2) {
  return ACos(CosAngle(lat1, lon1, lat2, lon2)) / kRad * kNmPerDegree;
}

double CalcAngle(double lat1, double lon1, double lat2, double lon2) {
  const double c = CosAngle(lat1, lon1, lat2, lon2);
  if (c == 0) return 0;
  const double d = ACos(c);
  if (d == 0) return 0;
  const double a1 = lat1 * kRad, a2 = lat2 * kRad;
  double x = (std::sin(a2) - std::sin(a1) * std::cos(d)) / (std::sin(d) * std::cos(a1));
  if (x > 1) x = 1;
  if (x < -1) x = -1;
  double course = std::acos(x);
  if (std::sin((lon2 - lon1) * kRad) < 0) course = 2 * kPi - course;
  return course / kRad;
}

int WrapLongLat(int degrees) {
  if (degrees > 179) return degrees - 360;
  if (degrees < -180) return degrees + 360;
  return degrees;
}

}  // namespace vantoro
