// The landing evaluation: once a flight has rolled out after its touchdown,
// the landing earns its score item by item, in a fixed order, is written up
// as a report with markup, and the verdict is spoken.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "base/seams.h"
#include "link/fsdata.h"
#include "records/approach_ratings.h"
#include "records/flight_stats.h"
#include "records/scores.h"
#include "voice/sound_queue.h"
#include "world/aircraft.h"
#include "world/flight_plan.h"

namespace vantoro {

// A flight of this many seconds or less is not evaluated.
inline constexpr int32_t kShortestEvaluatedFlight = 30;

// What the evaluation reads besides the flight's own record.
struct LandingContext {
  // The touchdown: [1] the first tick on the ground, [0] the tick after it.
  const std::array<FSData, 2>& Touchdown;
  // The tick of the evaluation: the crash check and what is failed now.
  const FSData& Now;
  const AircraftValues& Aircraft;  // stall speeds, flaps, the profile's boxes
  bool HeavyAircraft = false;
  const ApproachRatings& Approach;
  std::string_view PilotName;
  // The runway chosen for the landing, as the report names it.
  std::string_view VisualAirport;
  std::string_view VisualRunway;
  bool CircuitMode = false;
  // Where circuit training began: the circuit's landing is judged against it.
  double CircuitReferenceLatitude = 0;
  double CircuitReferenceLongitude = 0;
  WallTime Ended;  // the computer's clock, for the report's heading
};

enum class LandingVerdict {
  Scored,   // the score was spoken and stored
  Crashed,  // the touchdown was a crash: nothing spoken, nothing stored
};

// The whole evaluation, from the clock split of the log book to the spoken
// verdict. Changes the flight's record (day and night, ratings, crash flag,
// LandingRating), the plan's waypoint progress, the scores and texts with the
// log display, and queues the sounds. The "landing" event carries the score,
// the rating and the plain report. On a crash the caller ends the
// connection and writes the crash report.
LandingVerdict LandingComputeAndSpeak(const LandingContext& in, FlightStats& flight,
                                      FlightPlan& plan, ScoreState& scores, Voice& v);

// The rating 0..100 of one approach average in its column; a negative
// average (nothing gathered) rates 0.
enum class RatingColumn { VisualGlideslope, VisualLocalizer, ILSGlideslope, ILSLocalizer };
int32_t ApproachRating(RatingColumn column, int32_t average);

}  // namespace vantoro
