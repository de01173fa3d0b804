#include "base/seams.h"

#include <chrono>
#include <cmath>
#include <ctime>

namespace vantoro {

WallTime SystemClock::Now() const {
  using namespace std::chrono;
  const auto now = system_clock::now();
  const std::time_t t = system_clock::to_time_t(now);
  std::tm tm{};
#if defined(_WIN32)
  localtime_s(&tm, &t);
#else
  localtime_r(&t, &tm);
#endif
  const double frac =
      static_cast<double>(duration_cast<milliseconds>(now.time_since_epoch()).count() % 1000) /
      1000.0;
  return WallTime{tm.tm_year + 1900, tm.tm_mon + 1, tm.tm_mday,
                  tm.tm_hour,        tm.tm_min,     tm.tm_sec + frac};
}

namespace {

bool IsLeap(int y) {
  return (y % 4 == 0 && y % 100 != 0) || y % 400 == 0;
}

int DaysIn(int y, int m) {
  static const int kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  return m == 2 && IsLeap(y) ? 29 : kDays[m - 1];
}

}  // namespace

void FixedClock::AdvanceSeconds(double seconds) {
  now_.second += seconds;
  while (now_.second >= 60) {
    now_.second -= 60;
    if (++now_.minute < 60) continue;
    now_.minute = 0;
    if (++now_.hour < 24) continue;
    now_.hour = 0;
    if (++now_.day <= DaysIn(now_.year, now_.month)) continue;
    now_.day = 1;
    if (++now_.month <= 12) continue;
    now_.month = 1;
    ++now_.year;
  }
}

double SeededRandom::Uniform() {
  // splitmix64: small, fast, and fully specified, so a seed gives the same
  // draws everywhere.
  uint64_t z = (state_ += 0x9E3779B97F4A7C15ull);
  z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
  z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
  z ^= z >> 31;
  return static_cast<double>(z >> 11) * 0x1.0p-53;
}

}  // namespace vantoro
