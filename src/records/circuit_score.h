// The circuit score: built inside the landing evaluation from the circuit
// counters of the flight, then its text completed after the landing's report.
#pragma once

#include <array>

#include "link/fsdata.h"
#include "records/flight_stats.h"
#include "records/scores.h"

namespace vantoro {

// What the circuit score reads besides the flight's counters.
struct CircuitInputs {
  const FSData& Second;  // the second tick on the ground
  bool CircuitMode = false;
  double ReferenceLatitude = 0;  // where the pilot must land
  double ReferenceLongitude = 0;
};

// A circuit stands when its landing is this close to the reference point
// (nautical miles) and each leg lasted between its minimum and the maximum.
inline constexpr double kCircuitLandingWithin = 0.05;
inline constexpr int32_t kCircuitLegTooLongTicks = 720;
// Upwind, Crosswind, Downwind, Base, Final: a leg must last more ticks than this.
inline constexpr std::array<int32_t, 5> kCircuitLegShortestTicks = {40, 40, 60, 10, 20};

// Steps 1-8: the score from 0, item by item, with bonuses, caps and
// validity; the lines go to scores.CircuitText.
void BuildCircuitScore(const CircuitInputs& in, const FlightStats& flight, ScoreState& scores);
// After the landing's report: the wording, the reset under a poor landing,
// the autopilot and simulation-rate notes, and the score heading.
void CompleteCircuitText(const FlightStats& flight, ScoreState& scores);

}  // namespace vantoro
