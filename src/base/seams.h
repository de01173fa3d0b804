// Small seams through which the core meets the outside world, so that tests
// and replay are deterministic: the wall clock (for log dates) and the random
// draws (failures, chatter, alternatives of a remark).
#pragma once

#include <cstdint>

namespace vantoro {

// A calendar moment, local time of the pilot's computer.
struct WallTime {
  int year = 2000;
  int month = 1;  // 1..12
  int day = 1;    // 1..31
  int hour = 0;
  int minute = 0;
  double second = 0;
};

class Clock {
 public:
  virtual ~Clock() = default;
  virtual WallTime Now() const = 0;
};

// The computer's own clock.
class SystemClock final : public Clock {
 public:
  WallTime Now() const override;
};

// A clock that stands still until told otherwise; replay advances it by half a
// second each tick.
class FixedClock final : public Clock {
 public:
  explicit FixedClock(WallTime t = {}) : now_(t) {}
  WallTime Now() const override { return now_; }
  void Set(const WallTime& t) { now_ = t; }
  void AdvanceSeconds(double seconds);

 private:
  WallTime now_;
};

// Uniform draws in [0, 1).
class Random {
 public:
  virtual ~Random() = default;
  virtual double Uniform() = 0;
};

// A seeded generator whose sequence is the same on every platform and build.
class SeededRandom final : public Random {
 public:
  explicit SeededRandom(uint64_t seed = 1) : state_(seed) {}
  double Uniform() override;

 private:
  uint64_t state_;
};

}  // namespace vantoro
