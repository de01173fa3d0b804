#include "base/numbers.h"

#include <cstdio>
#include <cstdlib>

namespace vantoro {

std::string FormatDigits(long long x, int digits) {
  char buf[40];
  if (x < 0) {
    std::snprintf(buf, sizeof buf, "-%0*lld", digits, -x);
  } else {
    std::snprintf(buf, sizeof buf, "%0*lld", digits, x);
  }
  return buf;
}

std::string FormatFixed(double x, int decimals) {
  char buf[64];
  std::snprintf(buf, sizeof buf, "%.*f", decimals, x);
  return buf;
}

std::string NumberText(double x) {
  if (x == std::floor(x) && std::fabs(x) < 1e15) {
    char buf[32];
    std::snprintf(buf, sizeof buf, "%lld", static_cast<long long>(x));
    return buf;
  }
  char buf[64];
  for (int precision = 1; precision <= 17; ++precision) {
    std::snprintf(buf, sizeof buf, "%.*g", precision, x);
    if (std::strtod(buf, nullptr) == x) break;
  }
  return buf;
}

}  // namespace vantoro
