#include "records/landing.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "base/numbers.h"
#include "base/text.h"
#include "records/circuit_score.h"
#include "records/crash_report.h"
#include "records/markup.h"
#include "voice/phrases.h"

namespace vantoro {

namespace {

constexpr std::string_view kLB = kLineBreak;

// The day and night split: a difference under this many seconds is noise.
constexpr double kDayNightSlack = 55;

// The rating columns: the lower limit of each rating from 0 (worst) to 100.
constexpr int kRatingRows = 11;
constexpr std::array<int32_t, kRatingRows> kVisualGlideslopeLimits = {450, 405, 360, 315, 270, 225,
                                                                      180, 135, 90,  45,  0};
constexpr std::array<int32_t, kRatingRows> kVisualLocalizerLimits = {500, 450, 400, 350, 300, 250,
                                                                     200, 150, 100, 50,  0};
constexpr std::array<int32_t, kRatingRows> kILSGlideslopeLimits = {100, 90, 80, 70, 60, 50,
                                                                   40,  30, 20, 10, 0};
// Steps of 4, then 3 at the good end.
constexpr std::array<int32_t, kRatingRows> kILSLocalizerLimits = {38, 34, 30, 26, 22, 18,
                                                                  14, 10, 7,  4,  0};
constexpr int32_t kGoodApproachRating = 50;

constexpr int32_t kWaterSurface = 2;
constexpr size_t kFailElectrics = 6;  // failure byte 0x0B6A
constexpr size_t kFailEngine = 7;     // failure byte 0x0B6B

// The scored items.
constexpr int32_t kHardLandingVS = -700;  // feet per minute, one threshold for all
constexpr double kTooFastFactor = 1.2;    // of StallLandingPlus15
constexpr int32_t kLevelWingsBank = 2;
constexpr int32_t kHighestGoodPitch = 15;
constexpr int32_t kViolentPitchChange = 4;
constexpr int32_t kNoFlapsPosition = 255;
constexpr int32_t kSpoilerHandleStowed = 1000;
constexpr int32_t kHeadingErrorTolerated = 8;
constexpr int32_t kHeadingErrorLimit = 16;
constexpr int32_t kRudderAgainstError = 300;
constexpr int32_t kIdleThrottle = 3200;
constexpr double kFeetPerMile = 6076;
constexpr int32_t kNowhereNearNeedle = 35;
constexpr int32_t kNearNeedle = 7;
constexpr int32_t kLargestNeedleDeduction = 200;
constexpr double kWipedOut = -999999;

// Bonuses and caps.
constexpr double kBonusFromScore = 60;
constexpr int32_t kCrosswindFrom = 21;
constexpr int32_t kCrosswindTo = 159;
constexpr int32_t kCrosswindLineAbove = 4;  // knots
constexpr double kPoorVisibility = 1;       // statute miles
constexpr double kZeroVisibilityBonus = 80;
constexpr double kRescueBelow = 21;
constexpr double kLightestClass = 10;  // WeightClass units of 256 pounds
constexpr int32_t kAutoPilotTicks = 40;
constexpr double kAutoPilotFactor = 0.66;
constexpr int32_t kSimRateTicks = 20;
constexpr double kNegativeBecomes = 10;
// The score is cut to whole hundredths; a sum of tenths such as 30.1 lies a
// hair below itself in binary and must not lose a hundredth to that.
constexpr double kBinaryNoise = 1e-7;

// A touchdown that ends in one of these attitudes is a crash. Only a bank to
// the right is tested, as the touchdown test does.
constexpr int32_t kCrashBank = 30;
constexpr int32_t kCrashPitch = -8;

struct ClassBand {
  double upTo;
  double base;
};
constexpr std::array<ClassBand, 7> kClassBands = {
    {{20, 7}, {50, 15}, {100, 24}, {250, 30}, {500, 37}, {1000, 45}, {1500, 53}}};
constexpr double kHeaviestClassBase = 60;

// The failure bonus: each system's weight per share of the flight failed,
// and its weight when it is still failed at the landing.
struct FailureWeight {
  const char* name;
  int32_t time;
  int32_t stillFailed;
};
constexpr std::array<FailureWeight, 16> kFailureWeights = {{
    {"ADF", 2, 1},
    {"ASI", 20, 15},
    {"Altimeter", 20, 15},
    {"Attitude Indicator", 30, 15},
    {"COM1 Radio", 5, 3},
    {"Whiskey Compass", 2, 2},
    {"Electrical System", 20, 20},
    {"Engine(s)", 80, 80},
    {"Fuel Indicator(s)", 5, 1},
    {"Heading Indicator", 15, 3},
    {"VSI", 15, 15},
    {"Transponder", 2, 1},
    {"NAV1 Radio", 15, 20},
    {"Pitot Static System", 50, 30},
    {"Turn Coordinator", 5, 5},
    {"Vacuum System", 25, 25},
}};

// Four-decimal fixed point, as the failure bonus and the heights are summed.
double Currency(double x) {
  return std::nearbyint(x * 10000) / 10000;
}

// An average rounded to a whole number; -1 when nothing was gathered.
int32_t Average(int64_t sum, int32_t samples, int64_t scale = 1) {
  if (sum == kNothingGathered || samples <= 0) return -1;
  return CLng(static_cast<double>(sum * scale) / samples);
}

bool FailedNow(const FSData& now, size_t i) {
  if (i == kFailElectrics) return now.FailFlags[i] && now.MasterBattery;
  return now.FailFlags[i];
}

// The score and the lists as the items build them.
struct Sheet {
  Voice& v;
  double& score;
  std::string& good;
  std::string& bad;

  void Good(std::string_view line, double points) {
    good += std::string(line) + std::string(kLB);
    score += points;
  }
  void Bad(std::string_view line, double points, std::string_view sound = {}) {
    bad += std::string(line) + std::string(kLB);
    score += points;
    if (!sound.empty()) PlayAlways(v, sound);
  }
};

std::string Bracket(int32_t value) {
  return " [" + std::to_string(value) + "%]";
}

// Items 1 and 2: how the glideslope and the runway's line were held.
void ApproachItems(Sheet& s, const ApproachRatings& a, const FlightStats& f) {
  if (a.ILSGlideslopeSamples > 0) {
    const int32_t r = f.ApproachGlideslopeRating;
    if (r < kGoodApproachRating)
      s.Bad("* Poor glideslope on ILS approach - you can do better." + Bracket(r), -5);
    else
      s.Good("* Good glideslope on ILS approach." + Bracket(r), 5);
  } else if (a.VisualApproachActive && a.VisualGlideslopeSamples > 0) {
    const int32_t r = f.nonILSApproachGlideslopeRating;
    if (r < kGoodApproachRating)
      s.Bad("* Poor glideslope on visual approach - you can do better." + Bracket(r), -5);
    else
      s.Good("* Good glideslope on visual approach." + Bracket(r), 5);
  } else {
    s.Bad("* No glideslope information was available on visual approach.", -5);
  }

  if (a.ILSLocalizerSamples > 0) {
    const int32_t r = f.ApproachLocalizerRating;
    if (r < kGoodApproachRating)
      s.Bad("* Poor alignment with runway on ILS approach - line up and stay there." + Bracket(r),
            -5);
    else
      s.Good("* Good alignment with runway on ILS approach." + Bracket(r), 5);
  } else if (a.VisualApproachActive && a.VisualLocalizerSamples > 0) {
    const int32_t r = f.nonILSApproachLocalizerRating;
    if (r < kGoodApproachRating)
      s.Bad(
          "* Poor alignment with runway on visual approach - line up and stay there." + Bracket(r),
          -5);
    else
      s.Good("* Good alignment with runway on visual approach." + Bracket(r), 5);
  } else {
    s.Bad("* No runway alignment information was available on visual approach.", -5);
  }
}

// The flare line of item 7, from the samples and the flag of one approach kind.
void FlareLine(Sheet& s, int32_t samples, bool heldAtFlare, bool heavy) {
  if (samples <= 0) {
    s.Bad("* No glideslope - could not compare flare to glideslope.", -5);
  } else if (!heldAtFlare) {
    if (heavy)
      s.Bad("* Glideslope lost before you touched down - not your best effort.", -5,
            "LostGlideslopeBy20.WAV");
    else
      s.Bad("* Glideslope lost before you flared - not your best effort.", -5,
            "LostGlideslopeBeforeFlare.WAV");
  } else {
    s.Good("* Glideslope held until flare.", 5);
  }
}

void SurfaceLine(Sheet& s, bool onRunway) {
  if (onRunway)
    s.Good("* Landed on runway surface.", 0);
  else
    s.Bad("* Landed without a proper approach OR off runway surface.", -50);
}

// Item 7: where past the threshold, on what, the flare and the centre line.
void ThresholdItem(Sheet& s, const LandingContext& in, const FlightStats& f) {
  const ApproachRatings& a = in.Approach;
  const double d = f.DistanceBeyondThreshold;
  const double half = a.VisualRunwayLength / kFeetPerMile / 2;
  const std::string feet =
      "[" + std::to_string(static_cast<int64_t>(Int(d * kFeetPerMile))) + " feet]";
  const std::string distance = "* Distance from runway threshold (visual approach): ";

  if (d > 0 && a.VisualApproachActive && a.ILSGlideslopeSamples <= 0 && d < half) {
    s.Good(distance + feet, 10);
    SurfaceLine(s, f.LandedOnRunwaySurface);
    FlareLine(s, a.VisualGlideslopeSamples, a.VisualGlideslopeHeldAtFlare, in.HeavyAircraft);
    return;
  }

  if (d < 0 && a.VisualApproachActive) s.Bad(distance + feet + " (short)", 0);
  if (d >= half && a.VisualApproachActive) s.Bad(distance + feet + " (excessive)", -25);
  SurfaceLine(s, f.LandedOnRunwaySurface);
  FlareLine(s, a.ILSGlideslopeSamples, a.GlideslopeHeldAtFlare, in.HeavyAircraft);

  const int32_t needle = std::abs(in.Touchdown[0].Nav1Localiser);
  if (needle > kNowhereNearNeedle) {
    s.Bad("* Nowhere near the centre line - get lined up and keep it that way.", 0,
          "NowhereNearTheCentreLine.WAV");
    s.score = kWipedOut;
  } else if (needle > kNearNeedle) {
    s.Bad("* Not near the centre line - you can do better.",
          -std::min(needle, kLargestNeedleDeduction), "MissedTheCentreLine.WAV");
  } else {
    s.score += 10;
  }
}

// Step 4: the fifteen items in their order.
void ScoredItems(Sheet& s, const LandingContext& in, const FlightStats& f) {
  const FSData& first = in.Touchdown[1];
  const FSData& second = in.Touchdown[0];
  const AircraftValues& a = in.Aircraft;
  const bool floatPlane = a.Raw.FloatPlane;
  const bool onWater = first.SurfaceType == kWaterSurface;

  ApproachItems(s, in.Approach, f);

  // 3: the sink rate; a hard landing loses by the height lost on the bounce.
  const int32_t rate = std::abs(first.VS);
  const std::string fpm = "  [" + std::to_string(-rate) + " FPM]";
  if (first.VS <= kHardLandingVS) {
    s.Bad("* Too hard - may have damaged your landing gear." + fpm,
          -10 * (Currency(first.AGL) - Currency(second.AGL)), "LandedTooHard.WAV");
  } else {
    s.Good("* Gentle touchdown." + fpm, 20 - rate / (in.HeavyAircraft ? 20.0 : 10.0));
  }

  // 4: the speed just after the touchdown.
  const std::string kias = "  [" + std::to_string(second.IAS) + " KIAS]";
  if (second.IAS > kTooFastFactor * a.StallLandingPlus15) {
    s.Bad("* Too fast - you had to force the plane to stay down." + kias,
          a.StallLandingPlus15 - second.IAS, "LandedTooFast.WAV");
  } else {
    s.Good("* Good landing speed - not too fast." + kias, 10);
  }

  // 5: a float plane on water.
  if (onWater && floatPlane) {
    if (first.GearDown)
      s.Bad("* Landed on water with gear down.", -5);
    else if (a.Raw.RetractableGear)
      s.Good("* Landed on water with gear up.", 0);
  }

  // 6: the wings.
  if (std::abs(first.Bank) > kLevelWingsBank) {
    s.Bad("* Wings not level - danger of clipping the ground or damaging your gear.  [" +
              std::to_string(first.Bank) + " degrees]",
          -5, "NotLevelAtLanding.WAV");
  } else {
    s.Good("* Wings were level.", 5);
  }

  // 7: threshold, surface, flare and centre line, not on floats.
  if (!floatPlane) ThresholdItem(s, in, f);

  // 8: the pitch change over the touchdown.
  const int32_t pitchChange = first.Pitch - second.Pitch;
  if (pitchChange > kViolentPitchChange)
    s.Bad("* Violently pitched down at touchdown.", 0);
  else if (pitchChange < -kViolentPitchChange)
    s.Bad("* Violently pitched up at touchdown.", 0);
  else
    s.Good("* Good pitch control after touchdown.", 5);

  // 9: the attitude at the touchdown.
  const int32_t pitch = first.Pitch;
  const std::string degrees = "  [" + std::to_string(pitch) + " degrees]";
  if (pitch >= 0 && pitch <= kHighestGoodPitch)
    s.Good("* Good pitch at landing." + degrees, 10);
  else if (pitch > kHighestGoodPitch)
    s.Bad("* Nose up too high - poor visibility & possible danger of tail-strike." + degrees,
          -pitch, "PitchUpAtLanding.WAV");
  else
    s.Bad("* Nose down too low - you need to land on your main gear." + degrees, pitch,
          "PitchDownAtLanding.WAV");

  // 10: flaps; an aircraft without them earns the points silently.
  const bool flaps = a.HasFlaps();
  if (second.FlapsLeft <= kNoFlapsPosition && flaps)
    s.Bad("* Without flaps - use them for better glideslope and control at low speed.", -5,
          "YouHadNoFlapsForLanding.WAV");
  else if (flaps)
    s.Good("* With flaps - good job.  [" +
               std::to_string(static_cast<int64_t>(Int(second.FlapsLeft / 256.0))) + " degrees]",
           5);
  else
    s.score += 5;

  // 11: spoilers armed.
  if (a.Raw.Spoilers) {
    if (second.SpoilersControl <= kSpoilerHandleStowed && !second.SpoilersArmed &&
        !second.SpoilerLeft && !second.SpoilerRight)
      s.Bad("* Without spoilers armed - arm them before landing.", -5);
    else
      s.Good("* With spoilers armed.", 0);
  }

  // 12: heading against the OBS, by plain subtraction: 001 on an OBS of 359
  // is an error of 358. Rudder held against an error under 16 excuses it.
  const int32_t error = std::abs(second.Heading - second.Nav1OBS);
  const bool notAcceptable =
      error >= kHeadingErrorTolerated &&
      (error >= kHeadingErrorLimit || std::abs(second.Rudder) <= kRudderAgainstError);
  if (!notAcceptable)
    s.Good(floatPlane ? "* Good touch down heading." : "* Heading aligned with runway.", 10);
  else
    s.Bad(floatPlane ? "* Poor touch down heading."
                     : "* Touch down not aligned with the runway - let's point down the runway.",
          -2.0 * error, "BadLandingHeading.WAV");

  // 13: throttles idle, except for two aircraft whose levers read otherwise.
  const std::string folder = Upper(AircraftFolderName(second.AirFile));
  if (folder != "A2A_C172" && folder != "A2A_C182") {
    if (!FailedNow(in.Now, kFailEngine) && second.Eng1Throttle > kIdleThrottle)
      s.Bad("* Throttle(s) forward - should be idle.", -5, "ThrottleShouldBeIdleAtLanding.WAV");
    else
      s.Good("* Throttle(s) idle.", 5);
  }

  // 14: ballooning on the flare.
  if (f.Ballooning > 0)
    s.Bad("* Ballooning during landing - needs practice.", -3);
  else
    s.Good("* Good controlled final descent to touchdown.", 3);

  // 15: the roll-out.
  if (!(floatPlane && onWater)) {
    if (f.PoorGroundSteeringAfterLanding > 0)
      s.Bad("* Poor steering after landing - stay on the centre line.", -2);
    else
      s.Good("* Good steering after landing.", 2);
  }
}

double ClassBase(double weightClass) {
  for (const ClassBand& b : kClassBands)
    if (weightClass <= b.upTo) return b.base;
  return kHeaviestClassBase;
}

// Step 5: bonuses and caps up to the simulation rate; the circuit and the
// final cap follow at the caller.
void BonusesAndCaps(Sheet& s, const LandingContext& in, const FlightStats& f) {
  const FSData& second = in.Touchdown[0];
  double& score = s.score;

  const int32_t wind = std::abs(second.WindRelativeToHeading);
  if (score >= kBonusFromScore && wind >= kCrosswindFrom && wind <= kCrosswindTo) {
    if (second.WindSpeed > kCrosswindLineAbove)
      s.good += "* Nicely handled crosswind." + std::string(kLB);
    score += 2.0 * second.WindSpeed;
  }

  if (score >= kBonusFromScore && second.Visibility < kPoorVisibility) {
    if (second.Visibility > 0)
      s.Good("* Well done - visibility was very poor.", Int(5 / second.Visibility));
    else
      s.Good("* Well done - visibility was just about zero.", kZeroVisibilityBonus);
  }

  if (score < kRescueBelow && !f.FlightCrashed)
    score = kRescueBelow + in.Aircraft.StallLanding / 20.0 + second.IAS / 20.0;

  const double weightClass = second.LoadedWeightWord;
  if (score >= kBonusFromScore && weightClass > kLightestClass)
    score += in.Aircraft.StallLanding / 20.0 + ClassBase(weightClass);

  if (f.AutoPilotTicks >= kAutoPilotTicks) score *= kAutoPilotFactor;
  score = Int(score * 100 + kBinaryNoise) / 100;
  if (f.AbnormalSimRateTicks >= kSimRateTicks) score = 0;
}

// Step 7: the bonus for flying on with failed equipment, in percent, and
// the failures text of the report.
int32_t FailureBonus(const FlightStats& f, const FSData& now, std::string& text) {
  double bonus = 0;
  for (size_t i = 0; i < kFailureWeights.size(); ++i) {
    const FailureWeight& w = kFailureWeights[i];
    const int32_t ticks = f.FailureSeconds[i];
    const bool failed = FailedNow(now, i);
    if (ticks > 0) {
      const double seconds = ticks / 2.0;
      text += std::string(w.name) + " inop for " + NumberText(seconds) + " secs" +
              (failed ? ", still inop" : "") + std::string(kLB);
      bonus = Currency(bonus + Currency(seconds / f.FlightDuration * w.time));
      if (failed) bonus = Currency(bonus + w.stillFailed);
    } else if (failed) {
      text += std::string(w.name) + " inop" + std::string(kLB);
    }
  }
  return static_cast<int32_t>(Int(Int(bonus) / 2));
}

}  // namespace

int32_t ApproachRating(RatingColumn column, int32_t average) {
  if (average < 0) return 0;
  const std::array<int32_t, kRatingRows>* limits = &kILSLocalizerLimits;
  switch (column) {
    case RatingColumn::VisualGlideslope:
      limits = &kVisualGlideslopeLimits;
      break;
    case RatingColumn::VisualLocalizer:
      limits = &kVisualLocalizerLimits;
      break;
    case RatingColumn::ILSGlideslope:
      limits = &kILSGlideslopeLimits;
      break;
    case RatingColumn::ILSLocalizer:
      break;
  }
  for (int row = 0; row < kRatingRows; ++row)
    if (average >= (*limits)[static_cast<size_t>(row)]) return row * 10;
  return 0;
}

LandingVerdict LandingComputeAndSpeak(const LandingContext& in, FlightStats& flight,
                                      FlightPlan& plan, ScoreState& scores, Voice& v) {
  const FSData& second = in.Touchdown[0];
  const ApproachRatings& approach = in.Approach;
  const bool floatPlane = in.Aircraft.Raw.FloatPlane;
  const std::string lb(kLB);

  // Step 1: the clock of the report; the texts start anew.
  const int32_t d = flight.FlightDuration;
  int32_t hours = 0;
  int32_t minutes = 0;
  if (d >= 3600) {
    hours = d / 3600;
    minutes = (d - 3600 * hours) / 60;
  } else if (d >= 60) {
    minutes = d / 60;
  }
  const int32_t seconds = d - 3600 * hours - 60 * minutes;
  scores.LandingSummary.clear();
  scores.LandingGoodList.clear();
  scores.LandingBadList.clear();
  scores.CircuitText.clear();
  scores.FlightSummary.clear();
  scores.FlightGoodList.clear();
  scores.FlightBadList.clear();
  scores.LandingScore = 0;
  // The plan's points stay: the end of the flight scores the route from them.
  plan.CurrentWaypointName = "Unknown";
  plan.NextWaypoint = 0;

  // Step 2: the log book's day and night.
  if (std::fabs(d - flight.Day) < kDayNightSlack) {
    flight.Day = d;
    flight.Night = 0;
  } else {
    flight.Night = std::max(0.0, d - flight.Day);
  }
  if (std::fabs(flight.Night - d) < kDayNightSlack) {
    flight.Night = d;
    flight.Day = 0;
  }
  if (Upper(plan.FlightRules) == "IFR") flight.Inst = d;

  // Step 3: the approach ratings; a float plane is not rated.
  const int32_t visualGlideslope =
      Average(approach.VisualGlideslopeSum, approach.VisualGlideslopeSamples);
  const int32_t visualLocalizer =
      Average(approach.VisualLocalizerSum, approach.VisualLocalizerSamples, 100);
  const int32_t ilsGlideslope = Average(approach.ILSGlideslopeSum, approach.ILSGlideslopeSamples);
  const int32_t ilsLocalizer = Average(approach.ILSLocalizerSum, approach.ILSLocalizerSamples);
  const auto rate = [&](FlightCounter field, RatingColumn column, int32_t average) {
    SetCount(flight, field, floatPlane ? 0 : ApproachRating(column, average), v.events, v.tick);
  };
  rate(&FlightStats::ApproachGlideslopeRating, RatingColumn::ILSGlideslope, ilsGlideslope);
  rate(&FlightStats::ApproachLocalizerRating, RatingColumn::ILSLocalizer, ilsLocalizer);
  rate(&FlightStats::nonILSApproachGlideslopeRating, RatingColumn::VisualGlideslope,
       visualGlideslope);
  rate(&FlightStats::nonILSApproachLocalizerRating, RatingColumn::VisualLocalizer, visualLocalizer);

  // Steps 4 and 5: the items, then bonuses and caps in their order.
  Sheet sheet{v, scores.LandingScore, scores.LandingGoodList, scores.LandingBadList};
  ScoredItems(sheet, in, flight);
  BonusesAndCaps(sheet, in, flight);
  BuildCircuitScore(CircuitInputs{second, in.CircuitMode, in.CircuitReferenceLatitude,
                                  in.CircuitReferenceLongitude},
                    flight, scores);
  if (scores.LandingScore < 0 && !flight.FlightCrashed) scores.LandingScore = kNegativeBecomes;

  // Step 6: the wording of the lists and the summary.
  if (scores.LandingScore > 0 && scores.LandingBadList.empty())
    scores.LandingBadList = "A splendid landing!";
  else
    scores.LandingBadList = "Landing included the following problems:[LIST]" + lb +
                            scores.LandingBadList + "[/LIST]" + "Definite room for improvement...";
  if (scores.LandingGoodList.empty())
    scores.LandingGoodList = "A very poor landing.";
  else
    scores.LandingGoodList = "Landing was successful in the following areas:[LIST]" + lb +
                             scores.LandingGoodList + "[/LIST]" + "   ";
  if (flight.AutoPilotTicks >= kAutoPilotTicks)
    scores.LandingSummary = "Autopilot used." + lb + scores.LandingSummary;
  if (flight.AbnormalSimRateTicks >= kSimRateTicks)
    scores.LandingSummary = "Abnormal simulation rate during flight." + lb + scores.LandingSummary;

  // Step 7: the failure bonus.
  std::string failures;
  const int32_t bonus = FailureBonus(flight, in.Now, failures);
  const double factor = 1 + bonus / 100.0;
  scores.LandingScore *= factor;
  scores.CircuitScore *= factor;
  scores.FlightScore *= factor;

  // Step 8: the report.
  std::string report = ReportHeading(in.PilotName, second.AircraftTitle, in.Ended);
  report += "[STATS][VERSION][SIM_VERSION][VISIBILITY][WINDSPEED][/STATS]" + lb;
  report += "Aircraft: " + second.AtcType + "    ID: " + second.AtcIdentifier +
            "    Airline: " + second.AtcAirline + "    Flight: " + second.AtcFlightNumber + lb;
  report += "Flight plan: " + plan.FlightPlanDeparture;
  if (!plan.FlightPlanDestination.empty())
    report += " TO " + plan.FlightPlanDestination + " " + std::string(in.VisualAirport) + ":" +
              std::string(in.VisualRunway);
  report += "    NAV1: " + second.Vor1Ident + lb;
  report += "Failure(s): " + (failures.empty() ? "None at landing" + lb : lb + failures + lb);
  report += "Failure Event(s) (Zulu Time): " +
            (scores.FailureEventsText.empty() ? "None" + lb : lb + scores.FailureEventsText + lb);
  report += "Failure Bonus:" + std::to_string(bonus) + "%" +
            "   Flight Duration:" + FormatDigits(hours, 2) + " Hours   " +
            FormatDigits(minutes, 2) + " Mins   " + FormatDigits(seconds, 2) + " Secs" + lb + lb;
  report += "[SCORE]Landing Score:" + FormatFixed(scores.LandingScore, 2) + "[/SCORE]" + lb +
            scores.LandingSummary + lb + scores.LandingGoodList + lb + scores.LandingBadList;
  scores.LandingSummary = report;
  CompleteCircuitText(flight, scores);

  // Step 9: a touchdown that ended upside down or on its nose is a crash.
  const FSData& now = in.Now;
  const bool onGround = now.OnGround > 0;
  if ((now.Bank > kCrashBank && onGround) || (now.Pitch < kCrashPitch && onGround) || now.Crashed) {
    PlayAndPurge(v, "LooksLikeYouveCrashedThePlane.WAV", 0, 0);
    flight.FlightCrashed = true;
    return LandingVerdict::Crashed;
  }

  // Step 10: the verdict.
  flight.LandingRating = scores.LandingScore;
  PlayAlways(v, "IRateYourLandingAt.WAV");
  SpeakThisNumberAlways(v, scores.LandingScore);
  PlayAlways(v, "Points.WAV");
  scores.LogBookText = RemoveMarkup(scores.LandingSummary);
  scores.LogBookMarkup = scores.LandingSummary;
  if (in.CircuitMode) {
    scores.LogBookText += lb + RemoveMarkup(scores.CircuitText);
    scores.LogBookMarkup += lb + scores.CircuitText;
  }
  v.events.Emit(v.tick, "landing",
                {{"score", scores.LandingScore},
                 {"rating", flight.LandingRating},
                 {"report", scores.LogBookText}});
  if (!floatPlane) {
    PlayAlways(v, "ApproachWas.wav");
    SpeakThisNumberAlways(v, approach.ILSGlideslopeSamples > 0
                                 ? flight.ApproachGlideslopeRating
                                 : flight.nonILSApproachGlideslopeRating);
    PlayAlways(v, "Percent.WAV");
    PlayAlways(v, "ForTheGlideSlopeAnd.wav");
    SpeakThisNumberAlways(v, approach.ILSLocalizerSamples > 0
                                 ? flight.ApproachLocalizerRating
                                 : flight.nonILSApproachLocalizerRating);
    PlayAlways(v, "Percent.WAV");
    PlayAlways(v, "ForTheLocalizer.wav");
  }
  return LandingVerdict::Scored;
}

}  // namespace vantoro
