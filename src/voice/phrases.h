// Spoken phrases: every sentence with a number or a name in it is composed at
// run time out of single recordings, queued one behind the other so that
// they run together as one utterance. All of them enqueue unconditionally;
// a caller that wants a gate applies PlayPerhaps's gate before it starts the
// sentence. Every file named here lies in the current instructor's folder.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "link/fsdata.h"
#include "voice/sound_queue.h"
#include "world/aircraft.h"
#include "world/flight_plan.h"
#include "world/runway.h"

namespace vantoro {

// The ATIS frequency goes to COM2 standby (BCD digits after the leading 1),
// then the standby is swapped to active.
inline constexpr uint32_t kCom2StandbyLow = 0x311C;   // digits 5 and 6 of "118.30"
inline constexpr uint32_t kCom2StandbyHigh = 0x311D;  // digits 2 and 3
inline constexpr uint32_t kRadioSwap = 0x3123;
inline constexpr uint8_t kSwapCom2 = 4;

// Each character of text in turn, as its own recording ("A.wav", "7.wav",
// "..wav"), straight onto the ring without any gate.
void PlayStringPhoneticallyAlways(Voice& v, std::string_view text);
// A number in words up to 199.99; 200 and above say "100And.WAV" alone.
void SpeakThisNumberAlways(Voice& v, double n);
// In words up to 199, digit by digit above.
void SpeakAsANumberAlways(Voice& v, int32_t value);
// A duration: hours (when any) and minutes.
void SayAlwaysHoursAndMinutes(Voice& v, double minutes);

// The designator of a runway ("07L": "0", "7", "left.wav").
void SayRunwayNumbersAlways(Voice& v, std::string_view name);
// "runway.wav" and the designator.
void SayRunwayNameAlways(Voice& v, std::string_view name);

// The landing runway and its elevation.
void WeAreLandingAtRunway(Voice& v, const Runway& destination);
void RunwayLengthIs(Voice& v, int32_t feet, std::string_view surface);
void SaySurface(Voice& v, std::string_view surface);
// The heading of the landing runway, 0 said as "360".
void RunwayHeading(Voice& v, const Runway& destination);
void SayVisibility(Voice& v, const FSData& now);

// One reported cloud layer: heights in feet, coverage in oktas 0 to 8.
struct CloudLayer {
  int32_t LowerFeet = 0;
  int32_t UpperFeet = 0;
  int32_t Oktas = 0;
};
// The lowest reported cloud: the first layer when it has any cover, else the second.
void SayCloudCoverage(Voice& v, const CloudLayer& first, const CloudLayer& second);

// The timed approach announcement, called on every tick of the landing phase
// while a destination runway is set: length, surface and ATIS once the
// aircraft comes within a quarter of an hour of the runway. With autoTune the
// ATIS frequency is also set on COM2 and made active.
void SpeakRunwayAndATIS(Voice& v, const FSData& now, const FSData& before,
                        const Runway& destination, double approachSpeed, bool autoTuneATIS);

// The runway found in the direction of a clock position (nullptr: none found
// or no runways loaded), from the aircraft's position.
void SpeakRunwayAtOClock(Voice& v, const Runway* found, const FSData& now);
// The nearest airport on demand (nullptr: none found or no runways loaded).
void SayNearestAirport(Voice& v, const Runway* nearest, const FSData& now);
// The same, said only when the airport differs from the one this routine
// spoke last (lastSpokenCode, kept by the caller).
void SayNearestAirportAutomatically(Voice& v, const Runway* nearest, const FSData& now,
                                    std::string& lastSpokenCode);
// Clock position and distance of the destination; nothing without a code.
void SayWhereIsTheAirport(Voice& v, std::string_view destinationCode, double latitude,
                          double longitude, const FSData& now);
// The descent rate needed to reach the destination. A ground speed of 0 ends
// in the standard failure report.
void SayDescentRateToDesintation(Voice& v, std::string_view destinationCode,
                                 int32_t destinationElevation, double latitude, double longitude,
                                 const FSData& now);

// Clock position (1..12) of a bearing relative to the nose: degrees / 30,
// rounded half to even, 0 becoming 12.
int32_t OClock(int32_t degrees);
// Clock position of a point seen from the aircraft.
int32_t OClockOfLatLongToMe(const FSData& now, double latitude, double longitude);
// Nautical miles from the aircraft to the current waypoint plus all remaining
// legs. The length of each leg (to point i from point i - 1, index 0 unused)
// is stored in legLengths when given.
double FlightplanRemainder(const FlightPlan& plan, const FSData& now,
                           std::vector<double>* legLengths = nullptr);
// Estimated minutes remaining on the plan at the present ground speed.
double ETR(const FlightPlan& plan, const FSData& now);
// The flap-limit speed to be told for the next flap stage; 0 when every stage
// is already out.
int32_t MoreFlapsAt(int32_t flapsLeft, const AircraftValues& aircraft);

}  // namespace vantoro
