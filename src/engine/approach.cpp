// The destination of the approach and the arrival in Landing mode: the
// runway picked from the world data, glideslope capture and loss, the ILS
// tuned for the pilot, the sentence that opens the approach with the NAV1 OBS
// set to the runway, and where the aircraft touched down.
#include "engine/approach.h"

#include <cmath>
#include <cstdlib>
#include <string>

#include "base/numbers.h"
#include "engine/runway_choice.h"
#include "engine/tick_rules.h"
#include "link/snapshot.h"
#include "voice/phrases.h"
#include "world/geo.h"
#include "world/runway_queries.h"

namespace vantoro {

namespace {

// Glide slope in degrees to height gain in feet per nautical mile.
constexpr int32_t kGlidePathFeetPerDegree = 96;
// How far ahead a landing runway is looked for, nautical miles.
// The landing runway is picked again on the way down through this height.

constexpr double kGlideslopeAnnounceAbove = 150;  // feet AGL
constexpr double kLandingSentenceAbove = 150;
constexpr double kDC3CruiseDescentAbove = 4000;
constexpr double kAutoTuneBelow = 2500;
constexpr double kAutoTuneBelowHeavy = 3500;

// A runway without a width in the data is taken to be this wide, feet.
constexpr double kDefaultRunwayWidth = 100;

int32_t NormaliseHeading(int32_t degrees) {
  int32_t h = degrees % 360;
  if (h <= 0) h += 360;
  return h;  // 1..360
}

// The heading as the radio speaks it: three digits, 0 said as "360".
std::string ThreeDigits(int32_t heading) {
  return FormatDigits(heading == 0 ? 360 : heading, 3);
}

// The localiser's course as the simulator gives it, true degrees.
int32_t LocaliserHeading(const LinkState& link) {
  const size_t i = kLocaliserHeadingOffset - kMainBlockOffset;
  const uint32_t raw = link.ByteBuffer[i] | (static_cast<uint32_t>(link.ByteBuffer[i + 1]) << 8);
  return CLng(raw * 360.0 / 65536.0);
}

// Sets the NAV1 OBS to `heading`, shows it and says it.
void SetNav1OBS(Cockpit& c, int32_t heading) {
  const uint16_t value = static_cast<uint16_t>(heading);
  WriteToSim(c.sim, c.events, c.flight.TickCount, kNav1OBSOffset, &value, sizeof value);
  ShowMessage(c, std::to_string(heading) + " NAV1OBSAutoSet", 4);
  Voice v = c.voice();
  PlayStringPhoneticallyAlways(v, ThreeDigits(heading));
}

// "110.50": a digit at a 1-based position, 0 when there is none.
int DigitAt(const std::string& text, size_t position) {
  if (position == 0 || position > text.size()) return 0;
  const char ch = text[position - 1];
  return ch >= '0' && ch <= '9' ? ch - '0' : 0;
}

// The frequency said as "110", "decimal", "50".
void SayFrequency(Voice& v, const std::string& frequency) {
  PlayStringPhoneticallyAlways(v, frequency.substr(0, 3));
  PlayAlways(v, "Decimal.wav");
  PlayStringPhoneticallyAlways(v, frequency.size() > 4 ? frequency.substr(4, 2) : "");
}

}  // namespace

double DistanceAirportWithoutILSCheck(const ApproachState& a, const FSData& now) {
  if (!a.Destination.Set) return kNoDestinationDistance;
  const Runway& r = a.Destination.runway;
  const double miles = CalcDistance(now.Latitude, now.Longitude, r.Latitude, r.Longitude);
  return std::round(miles * 10000) / 10000;  // a currency value
}

int32_t BearingAirportWithoutILSCheck(const ApproachState& a, const FSData& now) {
  if (!a.Destination.Set) return kNoDestinationBearing;
  const Runway& r = a.Destination.runway;
  return CLng(CalcAngle(now.Latitude, now.Longitude, r.Latitude, r.Longitude));
}

void SetDestinationRunway(ApproachState& a, ApproachRatings& ratings, const Runway& runway,
                          int32_t magVar) {
  a.Destination.Set = true;
  runway.CopyTo(a.Destination.runway);
  a.DestinationICAO = runway.ICAO;
  a.DestinationElevation = runway.Elevation;
  a.DestinationILSFrequency = runway.ILSFrequency;
  a.DestinationRunwayHeading = NormaliseHeading(runway.Heading - magVar);
  a.GlidePathFeetPerMile = CLng(runway.GlideSlope * kGlidePathFeetPerDegree);
  ratings.VisualApproachActive = true;
  ratings.VisualRunwayLength = runway.Length;
}

bool PickDestinationRunway(Cockpit& c) {
  if (!c.world.RunwaysLoaded()) return false;
  const FSData& now = c.link.Now();
  FillCloseRunways(c.world, now.Latitude, now.Longitude);
  const LandingRunwayPick pick = ChooseLandingRunway(c.world, LandingRunwayQuestionOf(c));
  TakeLandingRunway(c, pick);
  return pick.Found != nullptr;
}

void GlideslopeCapture(Cockpit& c) {
  if (c.aircraft.WantType(AircraftType::DC3)) return;
  const FSData& now = c.link.Now();
  const FSData& before = c.link.Before();
  if (!c.flight.Modes.Landing || now.AGL <= kGlideslopeAnnounceAbove) return;
  if (now.Nav1GlideslopeAlive == before.Nav1GlideslopeAlive) return;
  Voice v = c.voice();
  if (now.Nav1GlideslopeAlive) {
    PlayPerhaps(v, "GlideslopeCapture.wav", 34, 30, 16);
  } else {
    PlayPerhaps(v, "GlideslopeLoss.wav", 35, 30, 16);
  }
}

void AutoTuneILS(Cockpit& c) {
  const ApproachState& a = c.flight.approach;
  const FSData& now = c.link.Now();
  if (c.flight.TickCount % 2 == 0) return;
  if (!c.flight.Modes.Landing || a.DestinationICAO.empty() || a.DestinationILSFrequency.empty()) {
    return;
  }
  const double below = c.link.HeavyAircraft ? kAutoTuneBelowHeavy : kAutoTuneBelow;
  if (now.AGL >= below || !c.options.AutoTuneILS) return;
  const std::string& freq = a.DestinationILSFrequency;
  if (std::abs(ReadDecimal(freq) - now.Nav1Freq) < 0.001) return;

  Voice v = c.voice();
  PlayAlways(v, "TuningNAV1ToRunwayILS.wav");
  SayFrequency(v, freq);
  // The radio takes the digits after the leading 1 as packed decimals, low byte first.
  const uint8_t packed[2] = {
      static_cast<uint8_t>(DigitAt(freq, 6) + 16 * DigitAt(freq, 5)),
      static_cast<uint8_t>(DigitAt(freq, 3) + 16 * DigitAt(freq, 2)),
  };
  WriteToSim(c.sim, c.events, c.flight.TickCount, kNav1FrequencyOffset, packed, sizeof packed);
}

void LandingModeArrival(Cockpit& c) {
  ApproachState& a = c.flight.approach;
  const FSData& now = c.link.Now();
  const bool landing = c.flight.Modes.Landing;
  if (landing == a.PreviousLanding) return;
  a.PreviousLanding = landing;
  if (!landing) return;

  if (!a.Destination.Set) PickDestinationRunway(c);

  Voice v = c.voice();
  if (!a.DestinationICAO.empty() && !a.DestinationILSFrequency.empty() && !c.options.AutoTuneILS) {
    PlayAlways(v, "ILSFrequencyIs.wav");
    SayFrequency(v, a.DestinationILSFrequency);
  }
  if (now.AGL <= kLandingSentenceAbove) return;

  PlayAlways(v, "Landing.wav");
  if (c.aircraft.WantType(AircraftType::DC3)) {
    if (now.AGL > kDC3CruiseDescentAbove) PlayPerhaps(v, "DC3\\zPro_CruiseDescent.wav", 25, 60, 12);
    return;
  }

  PlayAlways(v, "BasedOnNav1OBSRunwayHeadingIs.wav");
  if (now.RadioFlags & kLocaliserReceived) {
    SetNav1OBS(c, NormaliseHeading(LocaliserHeading(c.link) - now.MagVar));
  } else if (a.Destination.Set) {
    SetNav1OBS(c, NormaliseHeading(a.DestinationRunwayHeading));
  } else {
    PlayStringPhoneticallyAlways(v, ThreeDigits(now.Nav1OBS));
  }

  if (now.Nav1GlideslopeAlive) {
    PlayPerhaps(v, "GlideslopeAlive.wav", 34, 30, 20);
  } else {
    PlayPerhaps(v, "GlideslopeNotAlive.wav", 35, 30, 20);
  }
}

void LandAirportWithoutILSCheck(Cockpit& c) {
  const FSData& now = c.link.Now();
  FlightStats& stats = c.flight.Flight();
  const ApproachState& a = c.flight.approach;

  const Runway* runway = a.Destination.Set ? &a.Destination.runway : nullptr;
  if (runway == nullptr && c.world.RunwaysLoaded()) {
    FillCloseRunways(c.world, now.Latitude, now.Longitude);
    runway = FindClosestRunwayWithinFeet(c.world, now.Latitude, now.Longitude).Found;
  }
  if (runway == nullptr) {
    stats.DistanceBeyondThreshold = 0;
    stats.DistanceFromNonILSNumbers = 0;
    stats.LandedOnRunwaySurface = false;
    return;
  }

  // Along and across the runway from its threshold: the runway's point lies
  // the threshold offset before the threshold itself.
  const double miles =
      CalcDistance(runway->Latitude, runway->Longitude, now.Latitude, now.Longitude);
  const double bearing =
      CalcAngle(runway->Latitude, runway->Longitude, now.Latitude, now.Longitude);
  const double off = (bearing - runway->Heading) * 3.14159265358979 / 180;
  const double along = miles * std::cos(off) - runway->ThresholdOffset / kFeetPerNauticalMile;
  const double acrossFeet = std::abs(miles * std::sin(off)) * kFeetPerNauticalMile;
  const double width = runway->Width > 0 ? runway->Width : kDefaultRunwayWidth;
  const double lengthMiles = (runway->Length - runway->ThresholdOffset) / kFeetPerNauticalMile;

  stats.DistanceBeyondThreshold = std::round(along * 10000) / 10000;
  stats.DistanceFromNonILSNumbers = stats.DistanceBeyondThreshold;
  stats.LandedOnRunwaySurface = along >= 0 && along <= lengthMiles && acrossFeet <= width / 2;
}

void ResetApproachErrors(ApproachState& a) {
  a.BestDistanceToThreshold = kNoBestDistance;
  a.BestDistanceToCentreLine = kNoBestDistance;
  a.LastFiveHundredFeetTick = 0;
  // The next approach picks its runway anew.
  a.Destination = {};
  a.DestinationICAO.clear();
  a.DestinationILSFrequency.clear();
  a.DestinationElevation = 0;
  a.DestinationRunwayHeading = 0;
  a.GlidePathFeetPerMile = 0;
}

}  // namespace vantoro
