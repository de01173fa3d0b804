// Landings as a pilot flies them, and what the instructor makes of each: the
// score in the report, the lines of the report and what is said.
#include "records/landing.h"

#include <gtest/gtest.h>

#include <functional>
#include <optional>

#include "link/image_link.h"
#include "records/markup.h"

namespace vantoro {
namespace {

// A Cessna on a stable ILS approach, touching down gently on the centre line
// with flaps 10: the greaser every other landing here departs from.
struct Landing {
  FSData first, second;
  std::optional<FSData> now;  // the tick of the evaluation: the second unless set
  AircraftValues aircraft;
  ApproachRatings approach;
  FlightStats flight;
  FlightPlan plan;
  ScoreState scores;
  bool heavy = false;

  Landing() {
    aircraft.StallLanding = 48;
    aircraft.StallLandingPlus15 = 63;
    aircraft.FlapAngleLimit[1] = 10 * 256 + 10;
    first.VS = -120;
    first.Pitch = 4;
    second.AirFile = "SimObjects\\Airplanes\\C172\\Cessna172SP.air";
    second.AircraftTitle = "Cessna Skyhawk 172SP";
    second.AtcType = "Cessna";
    second.AtcIdentifier = "N172SP";
    second.Vor1Ident = "IKL";
    second.Pitch = 3;
    second.IAS = 55;
    second.FlapsLeft = 10 * 256;
    second.Heading = 268;
    second.Nav1OBS = 270;
    second.Visibility = 20;
    approach.ILSGlideslopeSum = 50;  // 5 on average: 100 percent
    approach.ILSGlideslopeSamples = 10;
    approach.ILSLocalizerSum = 30;  // 3 on average: 100 percent
    approach.ILSLocalizerSamples = 10;
    approach.GlideslopeHeldAtFlare = true;
    flight.FlightDuration = 754;
    flight.Day = 754;
    flight.DistanceBeyondThreshold = 0.12;
    flight.LandedOnRunwaySurface = true;
    plan.FlightPlanDeparture = "LOWI";
    plan.FlightPlanDestination = "LOWS";
  }
  void NoILS() {
    approach.ILSGlideslopeSum = approach.ILSLocalizerSum = kNothingGathered;
    approach.ILSGlideslopeSamples = approach.ILSLocalizerSamples = 0;
  }
  void Visual(double beyondThreshold) {
    NoILS();
    approach.VisualApproachActive = true;
    approach.VisualRunwayLength = 5000;
    approach.VisualGlideslopeSum = 900;  // 90 on average: 80 percent
    approach.VisualGlideslopeSamples = 10;
    approach.VisualLocalizerSum = 1;  // 10 on average: 100 percent
    approach.VisualLocalizerSamples = 10;
    flight.DistanceBeyondThreshold = beyondThreshold;
  }
};

struct Outcome {
  std::string report;  // the log display
  std::string sounds;  // queued, joined by "|"
  std::vector<Event> landingEvents;
};

Outcome Evaluate(Landing& l) {
  OffsetImage image;
  ImageLink link{image};
  int result = 0;
  link.Open(0, result);
  SoundState sound;
  sound.Instructor = "Anna";
  EventLog log;
  Voice v{sound, {nullptr, nullptr}, &link, log, 900};
  const std::array<FSData, 2> touchdown = {l.second, l.first};
  const LandingContext in{
      .Touchdown = touchdown,
      .Now = l.now ? *l.now : l.second,
      .Aircraft = l.aircraft,
      .HeavyAircraft = l.heavy,
      .Approach = l.approach,
      .PilotName = "Kate",
      .VisualAirport = "LOWS",
      .VisualRunway = "26",
      .Ended = WallTime{2026, 11, 22, 14, 5, 0},
  };
  LandingComputeAndSpeak(in, l.flight, l.plan, l.scores, v);
  Outcome out{l.scores.LogBookText, "", log.OfType("landing")};
  for (const Event& e : log.OfType("queued"))
    out.sounds += (out.sounds.empty() ? "" : "|") + e.Text("file");
  return out;
}

const std::string kVerdict = "IRateYourLandingAt.WAV|";
const std::string kApproach100 =
    "|Points.WAV|ApproachWas.wav|100.WAV|Percent.WAV|ForTheGlideSlopeAnd.wav|100.WAV|"
    "Percent.WAV|ForTheLocalizer.wav";

TEST(LandingEvaluation, TheGreaserReadsInFull) {
  Landing l;
  const Outcome o = Evaluate(l);
  EXPECT_EQ(o.report,
            "Kate piloting Cessna Skyhawk 172SP ended Sunday, November 22, 2026 at 14:05\r\n"
            "\r\n"
            "Aircraft: Cessna    ID: N172SP    Airline:     Flight: \r\n"
            "Flight plan: LOWI TO LOWS LOWS:26    NAV1: IKL\r\n"
            "Failure(s): None at landing\r\n"
            "Failure Event(s) (Zulu Time): None\r\n"
            "Failure Bonus:0%   Flight Duration:00 Hours   12 Mins   34 Secs\r\n"
            "\r\n"
            "Landing Score:88.00\r\n"
            "\r\n"
            "Landing was successful in the following areas:\r\n"
            "* Good glideslope on ILS approach. [100%]\r\n"
            "* Good alignment with runway on ILS approach. [100%]\r\n"
            "* Gentle touchdown.  [-120 FPM]\r\n"
            "* Good landing speed - not too fast.  [55 KIAS]\r\n"
            "* Wings were level.\r\n"
            "* Landed on runway surface.\r\n"
            "* Glideslope held until flare.\r\n"
            "* Good pitch control after touchdown.\r\n"
            "* Good pitch at landing.  [4 degrees]\r\n"
            "* With flaps - good job.  [10 degrees]\r\n"
            "* Heading aligned with runway.\r\n"
            "* Throttle(s) idle.\r\n"
            "* Good controlled final descent to touchdown.\r\n"
            "* Good steering after landing.\r\n"
            "   \r\n"
            "A splendid landing!");
  EXPECT_EQ(o.sounds, kVerdict + "80.WAV|8.wav" + kApproach100);
  EXPECT_EQ(l.flight.LandingRating, 88);
  ASSERT_EQ(o.landingEvents.size(), 1u);
  EXPECT_EQ(o.landingEvents[0].Text("report"), o.report);
  // The log book keeps the marked-up copy.
  EXPECT_NE(l.scores.LogBookMarkup.find("[SCORE]Landing Score:88.00[/SCORE]"), std::string::npos);
}

struct Row {
  const char* what;
  std::function<void(Landing&)> fly;
  std::string score;               // as the report shows it
  std::vector<std::string> lines;  // lines the report must hold
  std::string sounds;              // everything queued
};

void CheckRows(const std::vector<Row>& rows) {
  for (const Row& row : rows) {
    SCOPED_TRACE(row.what);
    Landing l;
    row.fly(l);
    const Outcome o = Evaluate(l);
    const std::string report = "\r\n" + o.report + "\r\n";
    for (const std::string& line : row.lines)
      EXPECT_NE(report.find("\r\n" + line + "\r\n"), std::string::npos) << line;
    EXPECT_NE(report.find("\r\nLanding Score:" + row.score + "\r\n"), std::string::npos)
        << o.report;
    EXPECT_EQ(o.sounds, row.sounds);
  }
}

// What is queued: the items' sounds, then the verdict with the spoken
// number, then the approach's percentages.
std::string Said(const std::string& items, const std::string& number,
                 const std::string& approach = kApproach100) {
  return items + kVerdict + number + approach;
}

// clang-format off
TEST(LandingEvaluation, TouchdownsAPilotWouldRecognise) {
  const std::string kVisual = "|Points.WAV|ApproachWas.wav|80.WAV|Percent.WAV|"
      "ForTheGlideSlopeAnd.wav|100.WAV|Percent.WAV|ForTheLocalizer.wav";
  CheckRows({
      {"a hard landing that bounced 1.25 feet", [](Landing& l) { l.first.VS = -780; l.first.AGL = 1.25; },
       "67.50", {"* Too hard - may have damaged your landing gear.  [-780 FPM]", "Definite room for improvement..."},
       Said("LandedTooHard.WAV|", "60.WAV|7.wav|Point.WAV|5.wav|0.wav")},
      {"-699 feet per minute still counts as gentle, at a cost of 49.9", [](Landing& l) { l.first.VS = -699; },
       "30.10", {"* Gentle touchdown.  [-699 FPM]", "A splendid landing!"}, Said("", "30.WAV|Point.WAV|1.wav|0.wav")},
      {"a heavy jet at -600 feet per minute is gentle too", [](Landing& l) {
         l.heavy = true; l.aircraft.StallLanding = 110; l.aircraft.StallLandingPlus15 = 125;
         l.first.VS = -600; l.second.IAS = 120; l.second.LoadedWeightWord = 400; },
       "112.50", {"* Gentle touchdown.  [-600 FPM]"}, Said("", "100And.WAV|12.WAV|Point.WAV|5.wav|0.wav")},
      {"a crab held straight with rudder", [](Landing& l) { l.second.Heading = 280; l.second.Rudder = -2000; },
       "88.00", {"* Heading aligned with runway."}, Said("", "80.WAV|8.wav")},
      {"a crab left in at the touchdown", [](Landing& l) { l.second.Heading = 280; },
       "58.00", {"* Touch down not aligned with the runway - let's point down the runway."},
       Said("BadLandingHeading.WAV|", "50.WAV|8.wav")},
      {"heading 001 on an OBS of 359 is 358 out: rescued at 21 plus speeds",
       [](Landing& l) { l.second.Heading = 1; l.second.Nav1OBS = 359; },
       "26.15", {}, Said("BadLandingHeading.WAV|", "20.WAV|6.wav|Point.WAV|1.wav|5.wav")},
      {"needle at 36 wipes the score out; the rescue brings it back", [](Landing& l) { l.second.Nav1Localiser = 36; },
       "26.15", {"* Nowhere near the centre line - get lined up and keep it that way."},
       Said("NowhereNearTheCentreLine.WAV|", "20.WAV|6.wav|Point.WAV|1.wav|5.wav")},
      {"a long landing on a visual approach, nothing to judge the flare by", [](Landing& l) { l.Visual(0.5); },
       "53.00", {"* Good glideslope on visual approach. [80%]", "* Good alignment with runway on visual approach. [100%]",
                 "* Distance from runway threshold (visual approach): [3038 feet] (excessive)",
                 "* No glideslope - could not compare flare to glideslope."},
       Said("", "50.WAV|3.wav", kVisual)},
      {"a visual approach into the first half, glide path lost before the flare", [](Landing& l) { l.Visual(0.1); },
       "78.00", {"* Distance from runway threshold (visual approach): [607 feet]",
                 "* Glideslope lost before you flared - not your best effort."},
       Said("LostGlideslopeBeforeFlare.WAV|", "70.WAV|8.wav", kVisual)},
      {"nothing gathered on the approach: both ratings and the flare lose", [](Landing& l) { l.NoILS(); },
       "58.00", {"* No glideslope information was available on visual approach.",
                 "* No runway alignment information was available on visual approach."},
       Said("", "50.WAV|8.wav", "|Points.WAV|ApproachWas.wav|0.WAV|Percent.WAV|ForTheGlideSlopeAnd.wav|"
                                "0.WAV|Percent.WAV|ForTheLocalizer.wav")},
      {"a float plane on the water with its wheels up", [](Landing& l) {
         l.NoILS(); l.aircraft.Raw.FloatPlane = l.aircraft.Raw.RetractableGear = true;
         l.first.SurfaceType = 2; l.first.GearDown = false; },
       "51.00", {"* Landed on water with gear up.", "* Good touch down heading."}, Said("", "50.WAV|1.wav", "|Points.WAV")},
      {"exactly 60 before the bonuses earns the crosswind",
       [](Landing& l) { l.first.VS = -400; l.second.WindRelativeToHeading = 90; l.second.WindSpeed = 10; },
       "80.00", {"* Nicely handled crosswind."}, Said("", "80.WAV")},
      {"59.90 before the bonuses does not",
       [](Landing& l) { l.first.VS = -401; l.second.WindRelativeToHeading = 90; l.second.WindSpeed = 10; },
       "59.90", {}, Said("", "50.WAV|9.wav|Point.WAV|9.wav|0.wav")},
          {"weight class 11 earns 7 and a twentieth of the stall speed", [](Landing& l) { l.second.LoadedWeightWord = 11; },
       "97.40", {}, Said("", "90.WAV|7.wav|Point.WAV|4.wav|0.wav")},
      {"40 ticks of autopilot cost a third", [](Landing& l) { l.flight.AutoPilotTicks = 40; },
       "58.08", {"Autopilot used."}, Said("", "50.WAV|8.wav|Point.WAV|0.wav|8.wav")},
      {"an abnormal simulation rate scores nothing",
       [](Landing& l) { l.flight.AbnormalSimRateTicks = 20; l.flight.AutoPilotTicks = 40; },
       "0.00", {"Abnormal simulation rate during flight.", "Autopilot used.",
                "Landing included the following problems:", "Definite room for improvement..."},
       Said("", "0.WAV")},
      {"a minute without the airspeed indicator, still failed, earns 8 percent", [](Landing& l) {
         l.flight.FailureSeconds[1] = 120; l.now = l.second; l.now->FailFlags[1] = true; },
       "95.04", {"ASI inop for 60 secs, still inop", "Failure Bonus:8%   Flight Duration:00 Hours   12 Mins   34 Secs"},
       Said("", "90.WAV|5.wav|Point.WAV|0.wav|4.wav")},
  });
}
// clang-format on

TEST(LandingEvaluation, ATouchdownThatEndsInACrashIsNeitherSpokenNorStored) {
  const struct {
    int32_t bank, pitch;
    bool simulatorSays, crash;
  } rows[] = {{31, 0, false, true},
              {30, 0, false, false},
              {-60, 0, false, false},
              {0, -9, false, true},
              {0, 0, true, true}};
  for (const auto& row : rows) {
    SCOPED_TRACE(testing::Message() << row.bank << " " << row.pitch << " " << row.simulatorSays);
    Landing l;
    l.now = l.second;
    l.now->OnGround = 1;
    l.now->Bank = row.bank;
    l.now->Pitch = row.pitch;
    l.now->Crashed = row.simulatorSays;
    const Outcome o = Evaluate(l);
    EXPECT_EQ(l.flight.FlightCrashed, row.crash);
    EXPECT_EQ(l.flight.LandingRating, row.crash ? 0 : 88);
    EXPECT_EQ(o.sounds.rfind("LooksLikeYouveCrashedThePlane.WAV", 0) == 0, row.crash);
    EXPECT_EQ(o.landingEvents.size(), row.crash ? 0u : 1u);
  }
  // A flight already crashed at the touchdown keeps its negative score.
  Landing l;
  l.flight.FlightCrashed = true;
  l.second.Nav1Localiser = 40;
  Evaluate(l);
  EXPECT_EQ(l.scores.LandingScore, -999959);
}

TEST(LandingEvaluation, TheLogBookSplitsDayNightAndInstrumentTime) {
  const struct {
    int32_t duration;
    double day;
    const char* rules;
    double wantDay, wantNight, wantInst;
    const char* clock;
  } rows[] = {
      {3725, 3700, "VFR", 3725, 0, 0, "01 Hours   02 Mins   05 Secs"},
      {3725, 100, "ifr", 100, 3625, 3725, "01 Hours   02 Mins   05 Secs"},
      {3725, 30, "", 0, 3725, 0, "01 Hours   02 Mins   05 Secs"},
      {59, 0, "IFR", 0, 59, 59, "00 Hours   00 Mins   59 Secs"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.duration);
    Landing l;
    l.flight.FlightDuration = row.duration;
    l.flight.Day = row.day;
    l.plan.FlightRules = row.rules;
    const Outcome o = Evaluate(l);
    EXPECT_EQ(l.flight.Day, row.wantDay);
    EXPECT_EQ(l.flight.Night, row.wantNight);
    EXPECT_EQ(l.flight.Inst, row.wantInst);
    EXPECT_NE(o.report.find(std::string("Flight Duration:") + row.clock), std::string::npos);
  }
}

TEST(LandingEvaluation, ApproachAveragesRateInTheirColumns) {
  const struct {
    RatingColumn column;
    int32_t average, rating;
  } rows[] = {
      {RatingColumn::ILSLocalizer, -1, 0},       {RatingColumn::ILSLocalizer, 38, 0},
      {RatingColumn::ILSLocalizer, 37, 10},      {RatingColumn::ILSLocalizer, 7, 80},
      {RatingColumn::ILSLocalizer, 6, 90},       {RatingColumn::ILSGlideslope, 10, 90},
      {RatingColumn::ILSGlideslope, 9, 100},     {RatingColumn::VisualGlideslope, 45, 90},
      {RatingColumn::VisualGlideslope, 44, 100}, {RatingColumn::VisualLocalizer, 499, 10},
      {RatingColumn::VisualLocalizer, 500, 0},
  };
  for (const auto& row : rows)
    EXPECT_EQ(ApproachRating(row.column, row.average), row.rating)
        << static_cast<int>(row.column) << " " << row.average;
}

}  // namespace
}  // namespace vantoro
