// What circuit training keeps between ticks: the reference point where the
// pilot must land, where the present leg began, the leg flags and the leg
// headings fixed at take-off. Whether circuit training is on is the tick's
// own flag (FlightState::CircuitsWanted); the counters of each leg are in
// the flight's record.
#pragma once

#include <cstdint>

namespace vantoro {

struct CircuitState {
  double ReferenceLatitude = 0;
  double ReferenceLongitude = 0;
  double LegStartLatitude = 0;
  double LegStartLongitude = 0;

  // The legs. More than one may be set: Final is never cleared, so on a
  // later circuit of the same run it counts from the take-off on.
  bool UpWind = false;
  bool CrossWind = false;
  bool DownWind = false;
  bool Base = false;
  bool Final = false;

  // Magnetic headings of the legs from NAV1's OBS at take-off; the pattern
  // is always to the left. UpwindTrueHeading adds the magnetic variation.
  int32_t UpwindHeading = 0;
  int32_t CrosswindHeading = 0;
  int32_t DownwindHeading = 0;
  int32_t BaseHeading = 0;
  int32_t FinalHeading = 0;
  int32_t UpwindTrueHeading = 0;
  int32_t TakeOffAltitude = 0;  // feet above sea level

  bool operator==(const CircuitState&) const = default;
};

}  // namespace vantoro
