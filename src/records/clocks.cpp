#include "records/clocks.h"

namespace vantoro {

namespace {
constexpr int32_t kSecondsPerDay = 86400;
constexpr int32_t kDaysPerYear = 365;
}  // namespace

void StartTimer(SimClockStart& start, const FSData& now) {
  if (now.DayOfYear <= 0) return;
  start.Day = now.DayOfYear;
  start.Hour = now.ZuluHour;
  start.Minute = now.ZuluMinute;
  start.Second = now.Second;
}

int32_t ElapsedSeconds(const SimClockStart& start, const FSData& now) {
  if (start.Day <= 0) return -2;
  if (now.DayOfYear <= 0) return -1;
  int32_t days = 0;
  if (now.DayOfYear > start.Day) {
    days = now.DayOfYear - start.Day;
  } else if (now.DayOfYear < start.Day) {
    days = now.DayOfYear + kDaysPerYear - start.Day;
  }
  int32_t sum = days * kSecondsPerDay + (now.ZuluHour - start.Hour) * 3600 +
                (now.ZuluMinute - start.Minute) * 60 + (now.Second - start.Second);
  if (sum > -kSecondsPerDay && sum < 0) sum += kSecondsPerDay;
  return sum;
}

}  // namespace vantoro
