#include "engine/circuit.h"

#include <cmath>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "base/files.h"
#include "engine/flight_rig.h"
#include "engine/tick_rules.h"
#include "records/circuit_score.h"
#include "records/markup.h"

namespace vantoro {
namespace {

// ---- The circuit key ----

// Which score markers the pilot has earned, and where the aircraft is.
struct KeyCase {
  const char* what;
  bool landingMarker, flightMarker;
  bool onGround;
  FlightMode mode;
  bool circuitsOn;
  const char* shown;  // "" for nothing
  bool circuitsAfter;
};

TEST(CircuitKey, OpensOnlyForEarnedScoresAndOnlyOnTheGround) {
  const FlightMode Taxi = FlightMode::Taxiing, TakeOff = FlightMode::TakeOff,
                   Landing = FlightMode::Landing;
  const std::string on(kCircuitsOn), off(kCircuitsOff), both(kCircuitsNeedBothScores),
      landing(kCircuitsNeedLandingScore), ground(kCircuitsStartOnGround);
  const std::vector<KeyCase> cases = {
      {"no markers", false, false, true, Taxi, false, both.c_str(), false},
      {"landing marker only: the text names the landing", true, false, true, Taxi, false,
       landing.c_str(), false},
      {"flight marker only: nothing at all", false, true, true, Taxi, false, "", false},
      {"both, taxiing", true, true, true, Taxi, false, on.c_str(), true},
      {"both, lined up", true, true, true, TakeOff, false, on.c_str(), true},
      {"both, on the ground in landing mode", true, true, true, Landing, false, "", false},
      {"both, in the air with circuits off", true, true, false, Landing, false, ground.c_str(),
       false},
      {"both, in the air with circuits on", true, true, false, Landing, true, off.c_str(), false},
      {"both, on the ground with circuits on", true, true, true, Taxi, true, off.c_str(), false},
  };
  for (const KeyCase& k : cases) {
    FlightRig rig;
    rig.Ready();
    Instructor& in = rig.instructor;
    const std::string folder = rig.dir_.string() + "/";
    in.scores.MarkerFolder = folder;
    if (k.landingMarker) WriteFileAtomic(folder + "Vantoro.xml", "<vantoro/>\r\n");
    if (k.flightMarker) WriteFileAtomic(folder + "Orlenhaus.xml", "<vantoro/>\r\n");
    rig.image.SetU8(0x0366, k.onGround);
    rig.Tick(2);
    in.flight.Modes = ModeFlags{};
    in.flight.Modes.Taxiing = k.mode == Taxi;
    in.flight.Modes.TakeOff = k.mode == TakeOff;
    in.flight.Modes.Landing = k.mode == Landing;
    in.flight.CircuitsWanted = k.circuitsOn;
    rig.Mark();
    Cockpit c = in.cockpit();
    CircuitHotKey(c);
    EXPECT_EQ(rig.Messages(), k.shown) << k.what;
    EXPECT_EQ(in.flight.CircuitsWanted, k.circuitsAfter) << k.what;
    if (k.circuitsAfter) {
      EXPECT_NEAR(in.circuit.ReferenceLatitude, 47.25, 1e-6) << k.what;
      EXPECT_NEAR(in.circuit.ReferenceLongitude, 11.35, 1e-6) << k.what;
    }
  }
}

// ---- The legs ----

constexpr double kRefLat = 51.83, kRefLon = -1.32;
constexpr double kField = 270;  // feet; the take-off altitude
constexpr double kNmPerDegree = 60;

// A point `nm` nautical miles from (lat, lon) on true bearing `bearing`.
void Offset(double lat, double lon, double bearing, double nm, double& outLat, double& outLon) {
  const double b = bearing * M_PI / 180;
  outLat = lat + nm * std::cos(b) / kNmPerDegree;
  outLon = lon + nm * std::sin(b) / kNmPerDegree / std::cos(lat * M_PI / 180);
}

// One tick of a runway-010 circuit as the legs see it: the leg flown, the
// aircraft's place as bearing and distance from the reference point, its
// height above the field, its track (the leg's and over the last ticks),
// the localiser needle, the bank and the seconds since take-off.
struct LegTick {
  const char* what;
  const char* leg;  // "Upwind", "Crosswind", "Downwind", "Base", "Final"
  double fromRef, nm;
  int aal, track;
  int needle;  // 0 is centred, and reads the same as no signal
  int bank;
  int seconds;
  double agl;
  const char* heard;     // files queued, "|" joined
  const char* counted;   // counters raised, " " joined
  const char* legAfter;  // CircuitLegText without its blanks
};

std::string Judge(const LegTick& t) {
  FlightRig rig;
  Instructor& in = rig.instructor;
  rig.Ready();
  in.flight.CircuitsWanted = true;
  FSData& now = in.link.Records[static_cast<size_t>(in.link.CurrentRecord)];
  now.Nav1OBS = 10;
  now.MagVar = 0;
  now.Altitude = static_cast<int32_t>(kField);
  Cockpit c = in.cockpit();
  TakeCircuitReference(c);
  CircuitState& s = in.circuit;
  s.UpWind = false;
  std::string leg = t.leg;
  s.UpWind = leg == "Upwind";
  s.CrossWind = leg == "Crosswind";
  s.DownWind = leg == "Downwind";
  s.Base = leg == "Base";
  s.Final = leg == "Final";
  s.ReferenceLatitude = kRefLat;
  s.ReferenceLongitude = kRefLon;
  Offset(kRefLat, kRefLon, t.fromRef, t.nm, now.Latitude, now.Longitude);
  // The leg began half a mile back along the track flown.
  Offset(now.Latitude, now.Longitude, t.track + 180, 0.5, s.LegStartLatitude, s.LegStartLongitude);
  in.flight.MagneticTrack = t.track;
  now.Altitude = static_cast<int32_t>(kField) + t.aal;
  now.AGL = t.agl;
  now.Nav1Localiser = t.needle;
  now.Bank = t.bank;
  in.flight.clocks.Flight = SimClockStart{100, 12, 0, 0};
  now.DayOfYear = 100;
  now.ZuluHour = 12;
  now.ZuluMinute = t.seconds / 60;
  now.Second = t.seconds % 60;
  in.sound.LastPlayed.fill(0);
  in.flight.TickCount += 1000;

  rig.Mark();
  CircuitMonitors(c);
  std::string counted;
  for (const Event& e : rig.Since("count"))
    if (e.Text("name").rfind("CircuitDuration", 0) != 0)
      counted += (counted.empty() ? "" : " ") + e.Text("name");
  std::string after = CircuitLegText(s);
  while (!after.empty() && after.back() == ' ') after.pop_back();
  return rig.Queued() + " / " + counted + " / " + after;
}

// clang-format off
TEST(CircuitLegs, AdviceCountersAndTheNextLeg) {
  const std::vector<LegTick> ticks = {
      // Upwind: runway heading 010, crosswind 280, downwind 190, base 100.
      {"upwind on the heading, climbing", "Upwind", 10, 0.5, 300, 10, 0, 0, 30, 500, "", "", "Upwind"},
      {"upwind drifting off the heading", "Upwind", 10, 0.5, 300, 25, 0, 0, 30, 500, "CircuitHoldRunwayHeading.wav", "CircuitBadHeadingUpWind", "Upwind"},
      {"upwind still low after 51 seconds", "Upwind", 10, 1, 400, 10, 0, 0, 51, 500, "CircuitClimbTo500.wav", "CircuitBadAltitudeUpWind", "Upwind"},
      {"upwind late for the crosswind turn", "Upwind", 10, 2, 700, 10, 0, 0, 81, 500, "CircuitLateForCrosswind.wav", "CircuitBadTimingCrossWind", "Upwind"},
      {"turned crosswind at 700 feet", "Upwind", 10, 1, 700, 282, 0, 0, 30, 500, "CircuitCrosswindNiceAAL.wav", "", "Crosswind"},
      {"turned crosswind at 450 feet", "Upwind", 10, 1, 450, 275, 0, 0, 30, 500, "CircuitHoldRunwayHeading.wav|CircuitCrosswind.wav", "CircuitBadHeadingUpWind", "Crosswind"},
      {"on the ground the counters run, nothing is said", "Upwind", 10, 0.5, 300, 25, 0, 0, 30, 0, "", "CircuitBadHeadingUpWind", "Upwind"},
      // Crosswind.
      {"crosswind low after 141 seconds", "Crosswind", 330, 1, 900, 280, 0, 0, 141, 500, "CircuitClimbTo1000.wav", "CircuitBadAltitudeCrossWind", "Crosswind"},
      {"turned downwind at 1000 feet", "Crosswind", 330, 1, 1000, 190, 0, 0, 30, 500, "CircuitDownwindNiceAAL.wav", "", "Downwind"},
      {"late for the downwind turn", "Crosswind", 330, 1, 1000, 280, 0, 0, 151, 500, "CircuitLateForDownwind.wav", "CircuitBadTimingDownWind", "Crosswind"},
      // Downwind: the reference point abeam (R 90), behind (R 150), past the line (R 178).
      // A leg forced to Base runs Base on the same tick: still short of final,
      // it counts its own late turn as well.
      {"downwind at height, parallel", "Downwind", 280, 1, 1000, 190, 0, 0, 30, 500, "", "", "Downwind"},
      {"downwind too low", "Downwind", 280, 1, 850, 190, 0, 0, 30, 500, "CircuitDownwindAdjustAAL.wav", "CircuitBadAltitudeDownWind", "Downwind"},
      {"downwind off the heading", "Downwind", 280, 1, 1000, 170, 0, 0, 30, 500, "CircuitHoldDownWindHeading.wav", "CircuitBadHeadingDownWind", "Downwind"},
      {"reference point 45 behind: turn base", "Downwind", 220, 1.5, 1000, 190, 0, 0, 30, 500, "TurnOntoBase.wav", "CircuitBadTimingDownWind", "Downwind"},
      {"reference point behind, already turning left", "Downwind", 220, 1.5, 1000, 190, 0, -20, 30, 500, "", "", "Downwind"},
      {"flown past the runway line: base forced", "Downwind", 188, 2, 1000, 190, 0, 0, 30, 500, "CircuitBaseTurnToFinal.wav", "CircuitBadTimingDownWind CircuitBadTimingBase", "Base"},
      {"the needle comes alive with the point ahead: base forced", "Downwind", 300, 1, 1000, 190, 5, 0, 30, 500, "CircuitBaseTurnToFinalNAV.wav", "CircuitBadTimingDownWind CircuitBadTimingBase", "Base"},
      {"needle at full scale is not alive", "Downwind", 300, 1, 1000, 190, 127, 0, 30, 500, "", "", "Downwind"},
      {"turned base at 700 feet", "Downwind", 220, 1.5, 700, 100, 60, 0, 30, 500, "CircuitBaseNiceAAL.wav", "", "Base"},
      // Base.
      {"base, needle far off, on the heading", "Base", 200, 1.5, 700, 100, 60, 0, 30, 500, "", "", "Base"},
      {"base off the heading", "Base", 200, 1.5, 700, 130, 60, 0, 30, 500, "CircuitHoldBaseHeading.wav", "CircuitBadHeadingBase", "Base"},
      {"base with the needle centred: turn final", "Base", 200, 1.5, 700, 100, 3, 0, 30, 500, "CircuitBaseTurnToFinalNAV.wav", "CircuitBadTimingBase", "Base"},
      {"turned final lined up at 550 feet", "Base", 190, 1.2, 550, 12, 2, 0, 30, 500, "CircuitFinalNiceTurn.wav|CircuitFinalNiceAAL.wav", "", "Final"},
      {"turned final off the centre line", "Base", 190, 1.2, 700, 12, 40, 0, 30, 500, "CircuitFinal.wav", "", "Final"},
      {"final: nothing is watched", "Final", 190, 1, 400, 40, 0, 0, 30, 500, "", "", "Final"},
  };
  for (const LegTick& t : ticks)
    EXPECT_EQ(Judge(t), std::string(t.heard) + " / " + t.counted + " / " + t.legAfter) << t.what;
}
// clang-format on

// ---- The circuit score ----

struct ScoreCase {
  const char* what;
  std::function<void(FlightStats&, FSData&)> change;
  double landing;  // the landing score
  double score;
  std::vector<std::string> lines;  // lines the text holds
};

TEST(CircuitScore, ItemsBonusesValidityAndReset) {
  const double feetPerNm = 6076.12;
  // clang-format off
  const std::vector<ScoreCase> cases = {
      {"every item good", [](FlightStats&, FSData&) {}, 80, 103.2,
       {"* Good Upwind heading.", "* Banking not too steep.", "* Landing distance from Circuit reference point:0 feet."}},
      {"ten ticks off the upwind heading are tolerated", [](FlightStats& f, FSData&) { f.CircuitBadHeadingUpWind = 10; }, 80, 103.2,
       {"* Good Upwind heading."}},
      {"eleven are not", [](FlightStats& f, FSData&) { f.CircuitBadHeadingUpWind = 11; }, 80, 96.2,
       {"* Poor Upwind heading - maintain runway heading."}},
      {"one late tick turning base", [](FlightStats& f, FSData&) { f.CircuitBadTimingDownWind = 1; }, 80, 96.2,
       {"* Late turn onto Base - turn when circuit reference point is 45 degrees behind you."}},
      {"steep bank on base", [](FlightStats& f, FSData&) { f.CircuitBadBankAngle = 1; f.CircuitBadTimingBase = 1; }, 80, 83.2,
       {"* Excessively steep banking - only up to 30 degrees and mostly less.", "* Late on Final - get onto final sooner next time."}},
      {"a crosswind of 10 knots", [](FlightStats&, FSData& s) { s.WindRelativeToHeading = -90; s.WindSpeed = 10; }, 80, 123.2,
       {"* Nice handling of that crosswind - tricky during a circuit."}},
      {"half a mile of visibility", [](FlightStats&, FSData& s) { s.Visibility = 0.5; }, 80, 113.2,
       {"* Well done - circuits are tough in low visibility."}},
      {"autopilot", [](FlightStats& f, FSData&) { f.AutoPilotTicks = 40; }, 80, 69.06,
       {"Autopilot used.\r\n"}},
      {"abnormal simulation rate", [](FlightStats& f, FSData&) { f.AbnormalSimRateTicks = 20; }, 80, 0,
       {"Abnormal simulation rate during flight.\r\n"}},
      {"a landing of 49.99", [](FlightStats&, FSData&) {}, 49.99, 0,
       {"Definite room for improvement...\r\nCircuit Score reset to zero due to poor Landing Score (under 50 points)."}},
      {"landed 305 feet from the reference point",
       [&](FlightStats&, FSData& s) { s.Latitude = kRefLat + 305 / feetPerNm / 60; }, 80, 0,
       {"* Landing too far from Circuit reference point.", "* Landing distance from Circuit reference point:265 feet."}},
      {"an upwind of six minutes", [](FlightStats& f, FSData&) { f.CircuitDurationUpWind = 720; }, 80, 0,
       {"* Upwind circuit leg too long [360] secs."}},
      {"a base of five seconds", [](FlightStats& f, FSData&) { f.CircuitDurationBase = 10; }, 80, 0,
       {"* Circuit legs too short or missing."}},
  };
  // clang-format on
  for (const ScoreCase& k : cases) {
    FlightStats flight;
    flight.CircuitDurationUpWind = 50;
    flight.CircuitDurationCrossWind = 50;
    flight.CircuitDurationDownWind = 80;
    flight.CircuitDurationBase = 20;
    flight.CircuitDurationFinal = 30;
    flight.FlightDuration = 400;
    FSData second;
    second.Latitude = kRefLat;
    second.Longitude = kRefLon;
    second.GS = 20;
    second.Visibility = 10;
    k.change(flight, second);
    ScoreState scores;
    scores.LandingScore = k.landing;
    BuildCircuitScore(CircuitInputs{second, true, kRefLat, kRefLon}, flight, scores);
    CompleteCircuitText(flight, scores);
    EXPECT_NEAR(scores.CircuitScore, k.score, 1e-9) << k.what;
    EXPECT_EQ(scores.CircuitText.find("\r\n\r\n[SCORE]Circuit Score:"), 0u) << k.what;
    for (const std::string& line : k.lines)
      EXPECT_NE(scores.CircuitText.find(line), std::string::npos) << k.what << ": " << line;
  }
}

TEST(CircuitScore, WithoutCircuitModeTheCircuitIsNotValid) {
  FlightStats flight;
  FSData second;
  ScoreState scores;
  scores.LandingScore = 90;
  BuildCircuitScore(CircuitInputs{second, false, 0, 0}, flight, scores);
  CompleteCircuitText(flight, scores);
  EXPECT_EQ(scores.CircuitScore, 0);
  EXPECT_NE(scores.CircuitText.find("[SCORE]Circuit Score:0.00[/SCORE]"), std::string::npos);
}

}  // namespace
}  // namespace vantoro
