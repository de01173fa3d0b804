#include "voice/phrases.h"

#include <array>
#include <cmath>
#include <cstdlib>
#include <string>

#include "base/failure.h"
#include "base/numbers.h"
#include "base/text.h"
#include "link/simlink.h"
#include "link/snapshot.h"
#include "world/geo.h"

namespace vantoro {

namespace {

// The phonetic path puts each character straight onto the ring, like this.
constexpr int kPhoneticValidFor = 120;
constexpr int kPhoneticChannel = 0;

// The announcement comes once, as the aircraft comes within a quarter of an
// hour of the runway.
constexpr double kATISHours = 0.2501;

// A VB-style run-time division by zero, for the standard failure report.
constexpr long kErrDivisionByZero = 11;

// Surfaces with a recording of their own: "S" + name + ".wav".
constexpr std::array<std::string_view, 17> kSpokenSurfaces = {
    "ASPHALT", "BITUMINUS", "CONCRETE",  "CORAL",      "DIRT",   "GRASS",
    "GRAVEL",  "ICE",       "MACADAM",   "OILTREATED", "PLANKS", "SAND",
    "SHALE",   "SNOW",      "STEELMATS", "TARMAC",     "WATER"};

std::string WholeText(double x) {
  return std::to_string(static_cast<long long>(Int(x)));
}

void Say(Voice& v, std::string_view file) {
  PlayAlways(v, file);
}

void Spell(Voice& v, std::string_view text) {
  PlayStringPhoneticallyAlways(v, text);
}

double DistanceTo(const FSData& now, double latitude, double longitude) {
  return CalcDistance(now.Latitude, now.Longitude, latitude, longitude);
}

// "118.30": the digit at a 1-based position, 0 when there is none.
int DigitAt(std::string_view text, size_t position) {
  if (position == 0 || position > text.size()) return 0;
  const char c = text[position - 1];
  return (c >= '0' && c <= '9') ? c - '0' : 0;
}

uint8_t Bcd(int high, int low) {
  return static_cast<uint8_t>(high * 16 + low);
}

void WriteByte(Voice& v, uint32_t offset, uint8_t value) {
  if (v.link == nullptr) return;
  WriteToSim(*v.link, v.events, v.tick, offset, &value, 1);
}

// The airport part shared by the on-demand and the automatic nearest airport.
void SayAirportBearingAndDistance(Voice& v, const Runway& nearest, const FSData& now) {
  Spell(v, Trim(nearest.ICAO));
  Say(v, "Bearing.wav");
  int32_t bearing =
      CLng(CalcAngle(now.Latitude, now.Longitude, nearest.Latitude, nearest.Longitude)) -
      now.TrueHeading;
  if (bearing < 0) bearing += 360;
  Spell(v, std::to_string(bearing));
  Say(v, "Degrees.wav");
  Spell(v, WholeText(DistanceTo(now, nearest.Latitude, nearest.Longitude)));
  Say(v, "Miles.wav");
  RunwayLengthIs(v, nearest.Length, nearest.Surface);
}

}  // namespace

void PlayStringPhoneticallyAlways(Voice& v, std::string_view text) {
  for (char c : text) {
    const std::string file = std::string(1, c) + ".wav";
    const std::string path = "Sound\\" + v.state.Instructor + "\\" + file;
    PlaySound(v, path, kModeQueue, kPhoneticValidFor, kPhoneticChannel, "PlaySound", file);
  }
}

void SpeakThisNumberAlways(Voice& v, double n) {
  if (n < 0) {
    Say(v, "minus.WAV");
    n = -n;
  }
  if (n == 0) {
    Say(v, "0.WAV");
    return;
  }
  if (n >= 101) {
    Say(v, "100And.WAV");
    n -= 100;
  } else if (n >= 100) {
    Say(v, "100.WAV");
    n -= 100;
  }
  if (n >= 1) {
    // 200 and above stay at 100 or more here and have no branch: only
    // "100And.WAV" is said for them.
    const double whole = Int(n);
    if (whole < 10) {
      Spell(v, FormatDigits(static_cast<long long>(whole), 1));
    } else if (whole < 20) {
      Say(v, FormatDigits(static_cast<long long>(whole), 2) + ".WAV");
    } else if (whole < 100) {
      const long long tens = static_cast<long long>(whole) / 10 * 10;
      Say(v, std::to_string(tens) + ".WAV");
      if (n >= tens + 1) Spell(v, FormatDigits(static_cast<long long>(whole) - tens, 1));
    }
  }
  const double fraction = n - Int(n);
  if (Int(fraction * 100) != 0) {
    Say(v, "Point.WAV");
    Spell(v, FormatDigits(std::llround(fraction * 100), 2));
  }
}

void SpeakAsANumberAlways(Voice& v, int32_t value) {
  if (value > 199) {
    Spell(v, std::to_string(value));
  } else {
    SpeakThisNumberAlways(v, value);
  }
}

void SayAlwaysHoursAndMinutes(Voice& v, double minutes) {
  const double hours = Int(minutes / 60);
  const double rest = minutes - hours * 60;
  if (hours > 1) {
    SpeakThisNumberAlways(v, hours);
    Say(v, "Hours.wav");
  } else if (hours == 1) {
    SpeakThisNumberAlways(v, hours);
    Say(v, "Hour.wav");
  }
  SpeakThisNumberAlways(v, rest);
  Say(v, rest == 1 ? "Minute.wav" : "Minutes.wav");
}

void SayRunwayNumbersAlways(Voice& v, std::string_view name) {
  const std::string designator = Right(Upper(Trim(name)), 3);
  if (designator.empty()) return;
  Spell(v, designator.substr(0, 2));
  switch (designator.back()) {
    case 'L':
      Say(v, "left.wav");
      break;
    case 'R':
      Say(v, "right.wav");
      break;
    case 'C':
      Say(v, "centre.wav");
      break;
    default:
      break;
  }
}

void SayRunwayNameAlways(Voice& v, std::string_view name) {
  Say(v, "runway.wav");
  SayRunwayNumbersAlways(v, name);
}

void WeAreLandingAtRunway(Voice& v, const Runway& destination) {
  Say(v, "WeAreLandingAtRunway.wav");
  SayRunwayNumbersAlways(v, destination.Number);
  Say(v, "ElevationIs.wav");
  Spell(v, std::to_string(destination.Elevation));
  Say(v, "Feet.wav");
}

void RunwayLengthIs(Voice& v, int32_t feet, std::string_view surface) {
  const long long thousands = static_cast<long long>(Int(feet / 1000.0));
  const long long hundreds = static_cast<long long>(Int((feet - thousands * 1000) / 100.0));
  Say(v, "RunwayLengthIs.wav");
  if (thousands > 0) {
    if (thousands < 10) {
      Spell(v, FormatDigits(thousands, 1));
    } else {
      Say(v, FormatDigits(thousands, 2) + ".WAV");
    }
    Say(v, "Thousand.wav");
  }
  if (hundreds > 0) {
    Spell(v, FormatDigits(hundreds, 1));
    Say(v, "Hundred.wav");
  }
  Say(v, "Feet.wav");
  SaySurface(v, surface);
}

void SaySurface(Voice& v, std::string_view surface) {
  const std::string name = Trim(surface);
  if (name.empty()) return;
  Say(v, "SurfaceIs.wav");
  for (std::string_view known : kSpokenSurfaces) {
    if (name == known) {
      Say(v, "S" + name + ".wav");
      return;
    }
  }
}

void RunwayHeading(Voice& v, const Runway& destination) {
  Say(v, "RunwayHeading.wav");
  Spell(v, destination.Heading == 0 ? std::string("360") : FormatDigits(destination.Heading, 3));
  Say(v, "Degrees.wav");
}

void SayVisibility(Voice& v, const FSData& now) {
  Say(v, "VisibilityIs.wav");
  if (now.Visibility > 0) {
    Spell(v, WholeText(now.Visibility));
    Say(v, "Miles.wav");
  } else {
    Say(v, "VeryBad.wav");
  }
}

void SayCloudCoverage(Voice& v, const CloudLayer& first, const CloudLayer& second) {
  if (first.Oktas == 0 && second.Oktas == 0) {
    Say(v, "NoSignificantCloud.wav");
    return;
  }
  const CloudLayer* layer = nullptr;
  if (first.Oktas > 0) {
    layer = &first;
  } else if (second.Oktas > 0) {
    layer = &second;
  }
  if (layer == nullptr) return;

  switch (layer->Oktas) {
    case 1:
    case 2:
      Say(v, "FewClouds.wav");
      break;
    case 3:
    case 4:
      Say(v, "ScatteredClouds.wav");
      break;
    case 5:
    case 6:
    case 7:
      Say(v, "BrokenCloud.wav");
      break;
    case 8:
      Say(v, "Overcast.wav");
      break;
    default:
      break;
  }
  // Heights are said to the hundred feet.
  const int32_t hundreds = CLng(layer->UpperFeet / 100.0);
  if (hundreds > 99) {
    Spell(v, std::to_string(static_cast<long long>(hundreds) * 100));
  } else if (hundreds % 10 == 0) {
    SpeakThisNumberAlways(v, Int(hundreds * 100 / 1000.0));
    Say(v, "thousand.wav");
  } else {
    SpeakThisNumberAlways(v, hundreds);
    Say(v, "hundred.wav");
  }
  Say(v, "feet.wav");
}

void SpeakRunwayAndATIS(Voice& v, const FSData& now, const FSData& before,
                        const Runway& destination, double approachSpeed, bool autoTuneATIS) {
  const double hoursNow =
      DistanceTo(now, destination.Latitude, destination.Longitude) / (approachSpeed + 1);
  const double hoursBefore =
      DistanceTo(before, destination.Latitude, destination.Longitude) / (approachSpeed + 1);
  if (!(hoursNow < kATISHours) || hoursBefore < kATISHours) return;

  RunwayLengthIs(v, destination.Length, destination.Surface);

  const std::string atis = Trim(destination.ATIS);
  if (atis.empty() || std::atof(atis.c_str()) == 0) return;
  const std::string whole = atis.substr(0, 3);
  const std::string decimals = Right(atis, 2);
  Say(v, autoTuneATIS ? "TuningCOM2ToATIS.wav" : "ATISFrequencyIs.wav");
  Spell(v, whole);
  Say(v, "Decimal.wav");
  Spell(v, decimals);
  if (!autoTuneATIS) return;

  // "118.30": 0x30 to the low byte, 0x18 to the high byte of COM2 standby.
  const uint8_t low = Bcd(DigitAt(atis, 5), DigitAt(atis, 6));
  const uint8_t high = Bcd(DigitAt(atis, 2), DigitAt(atis, 3));
  for (int i = 0; i < 2; ++i) {
    WriteByte(v, kCom2StandbyLow, low);
    WriteByte(v, kCom2StandbyHigh, high);
  }
  WriteByte(v, kRadioSwap, kSwapCom2);
}

void SpeakRunwayAtOClock(Voice& v, const Runway* found, const FSData& now) {
  if (found == nullptr) {
    Say(v, "negative.wav");
    return;
  }
  Spell(v, Trim(found->ICAO));
  Spell(v, WholeText(DistanceTo(now, found->Latitude, found->Longitude)));
  Say(v, "Miles.wav");
  Say(v, "ElevationIs.wav");
  Spell(v, std::to_string(found->Elevation));
  Say(v, "Feet.wav");
  RunwayLengthIs(v, found->Length, found->Surface);
}

void SayNearestAirport(Voice& v, const Runway* nearest, const FSData& now) {
  if (nearest == nullptr) {
    Say(v, "negative.wav");
    return;
  }
  SayAirportBearingAndDistance(v, *nearest, now);
}

void SayNearestAirportAutomatically(Voice& v, const Runway* nearest, const FSData& now,
                                    std::string& lastSpokenCode) {
  if (nearest == nullptr || nearest->ICAO == lastSpokenCode) return;
  SayAirportBearingAndDistance(v, *nearest, now);
  lastSpokenCode = nearest->ICAO;
}

void SayWhereIsTheAirport(Voice& v, std::string_view destinationCode, double latitude,
                          double longitude, const FSData& now) {
  if (destinationCode.empty()) return;
  Spell(v, destinationCode);
  Spell(v, std::to_string(OClockOfLatLongToMe(now, latitude, longitude)));
  Say(v, "oclock.wav");
  Spell(v, WholeText(DistanceTo(now, latitude, longitude)));
  Say(v, "miles.wav");
}

void SayDescentRateToDesintation(Voice& v, std::string_view destinationCode,
                                 int32_t destinationElevation, double latitude, double longitude,
                                 const FSData& now) {
  if (destinationCode.empty()) return;
  const double height = static_cast<double>(now.Altitude) - destinationElevation;
  if (!(height > 0)) return;
  const double milesPerMinute = now.GS / 60.0;
  const double minutes =
      milesPerMinute == 0 ? 0 : DistanceTo(now, latitude, longitude) / milesPerMinute;
  if (milesPerMinute == 0 || minutes == 0) {
    throw FailureReport(kErrDivisionByZero, "Division by zero", "SayDescentRateToDesintation");
  }
  const double rate = height / minutes;
  Spell(v, destinationCode);
  if (rate < 100) {
    Spell(v, WholeText(rate));
  } else {
    Spell(v, WholeText(rate / 100));
    Say(v, "Hundred.wav");
  }
  Say(v, "FeetPerMinute.wav");
}

int32_t OClock(int32_t degrees) {
  if (degrees < 0) degrees += 360;
  int32_t position = CLng(degrees / 30.0);
  if (position < 1) position = 12;
  return position;
}

int32_t OClockOfLatLongToMe(const FSData& now, double latitude, double longitude) {
  double angle = CalcAngle(now.Latitude, now.Longitude, latitude, longitude) - now.TrueHeading;
  if (angle < 0) angle += 360;
  return OClock(RelativeBearing(CLng(angle), now.MagVar));
}

double FlightplanRemainder(const FlightPlan& plan, const FSData& now,
                           std::vector<double>* legLengths) {
  const auto& points = plan.Waypoints;
  const int32_t count = static_cast<int32_t>(points.size());
  if (legLengths != nullptr) legLengths->assign(points.size(), 0.0);
  for (int32_t i = 1; i < count; ++i) {
    const double leg = CalcDistance(points[i - 1].Latitude, points[i - 1].Longitude,
                                    points[i].Latitude, points[i].Longitude);
    if (legLengths != nullptr) (*legLengths)[i] = leg;
  }
  const int32_t next = plan.NextWaypoint;
  if (next < 0 || next >= count) return 0;
  double miles = DistanceTo(now, points[next].Latitude, points[next].Longitude);
  for (int32_t i = next + 1; i < count; ++i) {
    miles += CalcDistance(points[i - 1].Latitude, points[i - 1].Longitude, points[i].Latitude,
                          points[i].Longitude);
  }
  return miles;
}

double ETR(const FlightPlan& plan, const FSData& now) {
  return FlightplanRemainder(plan, now) / (now.GS + 0.001) * 60 + 1;
}

int32_t MoreFlapsAt(int32_t flapsLeft, const AircraftValues& aircraft) {
  constexpr int32_t kFlapsUp = 255;
  constexpr int32_t kStageMargin = 245;
  if (flapsLeft <= kFlapsUp) return aircraft.FlapSpeedLimit[1];
  for (int stage = 2; stage <= kFlapPositions; ++stage) {
    if (flapsLeft <= aircraft.FlapAngleLimit[stage] + kStageMargin) {
      return aircraft.FlapSpeedLimit[stage];
    }
  }
  return 0;  // every stage is out: no further limit to tell
}

}  // namespace vantoro
