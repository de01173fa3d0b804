// Route coaching along a loaded flight plan: each waypoint announced as it is
// approached and passed with the next leg's distance and heading, a radio aid
// suggested (or tuned) for the next point, the VOR needle and flag explained,
// the GPS's changes of course told, marker beacons called, and at the end of
// the flight how well the route was flown, with its bonus for the flight
// score. A heavy aircraft has every distance tripled: a jet passes a point
// less closely and hears of it earlier.
#pragma once

#include <cstdint>

#include "link/fsdata.h"
#include "voice/sound_queue.h"
#include "world/flight_plan.h"

namespace vantoro {

struct Cockpit;

// Distances of the route rules, nautical miles, for a light aircraft; a
// heavy one has each multiplied by kHeavyRouteFactor.
inline constexpr double kPassingMiles = 1;
inline constexpr double kApproachingMiles = 3;
inline constexpr double kSuggestAidBeyondMiles = 6;
inline constexpr double kSuggestAidPastMiles = 1.5;
inline constexpr double kHeavyRouteFactor = 3;
// Nothing is said at or below this height above the ground, feet.
inline constexpr double kRouteSpeechAboveAGL = 200;
inline constexpr int kWaypointMessageSeconds = 4;
// The bonus is half the crossed points, at most this.
inline constexpr int32_t kMaxRouteBonus = 10;

// Marker beacons are called in Landing above this height, feet.
inline constexpr double kMarkersAboveAGL = 100;
inline constexpr int kInnerMarkerSlot = 83;
inline constexpr int kMiddleMarkerSlot = 84;
inline constexpr int kMarkerGap = 30;
inline constexpr int kMarkerExpiry = 16;

// The VOR teaching sentences and the GPS sentences each have a slot of their
// own; a sentence is not repeated within kTeachingGap ticks.
inline constexpr int kVorFlagToSlot = 180;
inline constexpr int kVorFlagFromSlot = 181;
inline constexpr int kVorFlagOffSlot = 182;
inline constexpr int kVorCentredSlot = 183;
inline constexpr int kVorClosingSlot = 184;
inline constexpr int kGpsNoApproachSlot = 186;
inline constexpr int kGpsNoPlanSlot = 187;
inline constexpr int kTeachingGap = 30;
inline constexpr int kTeachingExpiry = 16;
// The needle counts as off centre beyond this deflection (of 127) and as
// centred within kNeedleCentred.
inline constexpr int32_t kNeedleOffCentre = 16;
inline constexpr int32_t kNeedleCentred = 4;
// "We're closing on the VOR station" as the DME comes down through this, miles.
inline constexpr double kClosingOnStationMiles = 3;
// The GPS's "no approach selected" is told in Landing below this height, feet.
inline constexpr double kGpsApproachCheckBelowAGL = 2500;

// The flag word of the GPS (0x6004): a plan is active, direct-to is flown;
// and of its second byte (0x6005): an approach is loaded.
inline constexpr uint8_t kGpsActivePlan = 0x01;
inline constexpr uint8_t kGpsDirectTo = 0x08;
inline constexpr uint8_t kGpsApproachLoaded = 0x01;

// The NAV1 to/from flag: off, TO, FROM.
inline constexpr int32_t kFlagOff = 0;
inline constexpr int32_t kFlagTo = 1;
inline constexpr int32_t kFlagFrom = 2;

// ADF1's frequency: the three main digits packed as decimals, and the
// thousands digit with the fraction.
inline constexpr uint32_t kAdf1FrequencyOffset = 0x034C;
inline constexpr uint32_t kAdf1ExtendedOffset = 0x0356;

// What the end of the flight makes of the route.
struct RouteResult {
  int32_t Crossed = 0;     // points within the passing distance
  int32_t InSequence = 0;  // crossed points passed after the point before them
  double Bonus = 0;        // for the flight score
  bool Monitored = false;  // a plan of more than one point was loaded
};

// The magnetic heading from one position to another, 0..359.
int32_t MagneticCourse(double fromLat, double fromLon, double toLat, double toLon, int32_t magVar);

// Tick step 8: with the option on, the simulator's plan in use is loaded once
// a connection.
void LoadSimulatorPlanOnConnect(Cockpit& c);
// Help with the plan in the simulator's GPS: a new direct-to or next point,
// a GPS driving the needles without a plan, no approach loaded on the way down.
void FlightPlanHelp(Cockpit& c);
// Passing: each point coming within the passing distance.
void WayPointCheck(Cockpit& c);
// Approaching: the next point coming within the approaching distance.
void NextWayPointCheck(Cockpit& c);
// The radio aid for the next point, once a leg, well away from both ends of it.
void SuggestNavAid(Cockpit& c);
// The same aid tuned for the pilot (option AutoTuneVOR): NAV1 and its course
// for a VOR, ADF1 for an NDB.
void TuneNavAid(Cockpit& c);
// "Nav1IsTunedTo.wav" and the NAV1 station's identifier spelt.
void Nav1IsTunedTo(Voice& v, const FSData& now);
// The VOR flag and needle explained as they change.
void VORTeaching(Cockpit& c);
// Marker beacons in Landing.
void AnnounceMarkers(Cockpit& c);

// The route's result: crossed and in-sequence counts and the bonus (0 unless
// every point after the departure was crossed; then half of them, at most 10).
RouteResult WayPointFinalAnalysis(const FlightPlan& plan, bool heavy);
// The two counts spoken, when the route was monitored.
void SayRouteResult(Voice& v, const RouteResult& result);

}  // namespace vantoro
