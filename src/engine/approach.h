// The rules of the tick that coach a descent to a runway: the arrival in
// Landing mode (glideslope capture, the ILS tuned for the pilot, the NAV1 OBS
// set to the runway), the approach rules that say high, low, off the centre
// line, too fast or too steep, the height call-outs, and what is gathered on
// final for the landing evaluation. FSPolling calls them in the airborne
// branch, in the order of the tick.
#pragma once

#include <cstdint>
#include <string>

#include "engine/approach_state.h"
#include "engine/polling.h"
#include "world/runway.h"

namespace vantoro {

// Offsets the approach monitors write.
inline constexpr uint32_t kNav1FrequencyOffset = 0x0350;  // two packed decimal bytes
inline constexpr uint32_t kNav1OBSOffset = 0x0C4E;
inline constexpr uint32_t kLocaliserHeadingOffset = 0x0870;  // degrees x 65536 / 360, true
inline constexpr uint32_t kApproachFlagOffset = 0x32F8;
// RadioFlags: NAV1 receives a localiser on its tuned frequency.
inline constexpr uint8_t kLocaliserReceived = 64;

// --- Destination (approach.cpp) ---

// Nautical miles to the destination, or kNoDestinationDistance.
double DistanceAirportWithoutILSCheck(const ApproachState& a, const FSData& now);
// Whole-degree true bearing to the destination, or kNoDestinationBearing.
int32_t BearingAirportWithoutILSCheck(const ApproachState& a, const FSData& now);
// Makes `runway` the destination: code, elevation, ILS, heading, glide path,
// and the runway of a visual approach for the landing evaluation.
void SetDestinationRunway(ApproachState& a, ApproachRatings& ratings, const Runway& runway,
                          int32_t magVar);
// The landing runway from the world data when the approach begins
// (ChooseLandingRunway). True when one was found.
bool PickDestinationRunway(Cockpit& c);
// How far ahead a landing runway is looked for, nautical miles.
inline constexpr double kLandingRunwaySearchMiles = 15;
// An airfield this close when the approach begins is the one whose circuit
// is being flown.
inline constexpr double kCircuitAirfieldMiles = 3;

// --- Arrival in Landing mode (approach.cpp) ---

// Glideslope capture and loss, the ILS auto-tune and the change of Landing,
// in that order.
void GlideslopeCapture(Cockpit& c);
void AutoTuneILS(Cockpit& c);
void LandingModeArrival(Cockpit& c);

// --- Approach rules (approach_rules.cpp) ---

// Rules 1 to 30 in order, with the flaps for landing.
void ApproachRules(Cockpit& c);
void AmberFlapsForLanding(Cockpit& c);
void NeedFlapsForLanding(Cockpit& c);

// --- Call-outs and final (approach_callouts.cpp) ---

void CallOffHeights(Cockpit& c);
void CallOffLast50(Cockpit& c);
void Ballooning(Cockpit& c);
void CallOffDescentTooFast(Cockpit& c);
void CheckLowFlight(Cockpit& c);
// The 500-foot opening of the landing evaluation and the sums gathered on
// final; the flare flags at the flare height.
void GatherApproachRatings(Cockpit& c);
// Everything after the limits, in the order of the tick.
void ApproachMonitors(Cockpit& c);

// --- Touchdown (approach.cpp) ---

// Where the aircraft touched down against the destination runway (or the
// nearest runway when none was chosen): DistanceBeyondThreshold and
// LandedOnRunwaySurface of the flight.
void LandAirportWithoutILSCheck(Cockpit& c);
// After the landing: the best distances start anew, the rest of the errors at 0.
void ResetApproachErrors(ApproachState& a);

}  // namespace vantoro
