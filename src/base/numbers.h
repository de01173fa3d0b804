// Number conversions as the instructor's rules are written: whole numbers are
// rounded half to even (a value of 2.5 knots becomes 2, 3.5 becomes 4), and
// "Int" is the floor, also for negative values.
#pragma once

#include <cmath>
#include <cstdint>
#include <string>

namespace vantoro {

// Rounds to the nearest whole number, ties to the even one, clamped to the
// 32-bit range so that no simulator value can cause undefined behaviour.
inline int32_t CLng(double x) {
  if (std::isnan(x)) return 0;
  double r = std::nearbyint(x);  // default rounding mode: to nearest, ties to even
  if (r > 2147483647.0) return INT32_MAX;
  if (r < -2147483648.0) return INT32_MIN;
  return static_cast<int32_t>(r);
}

// Largest whole number not above x.
inline double Int(double x) {
  return std::floor(x);
}

// x formatted with at least `digits` digits, zero padded ("000" style).
std::string FormatDigits(long long x, int digits);

// x with a fixed number of decimals, point as separator ("##0.00" style).
std::string FormatFixed(double x, int decimals);

// The plain number-to-text conversion of the log files: shortest form, point
// as decimal separator, no grouping, no trailing zeros.
std::string NumberText(double x);

}  // namespace vantoro
