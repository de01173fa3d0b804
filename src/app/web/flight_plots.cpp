#include "app/web/flight_plots.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <exception>
#include <vector>

#include "base/failure.h"
#include "shell/replay.h"
#include "world/geo.h"

namespace vantoro {

namespace {

constexpr double kPi = 3.14159265358979323846;

struct Sample {
  double t = 0;  // seconds since the first tick
  double agl = 0;
  int altitude = 0;
  int ias = 0;
  int gs = 0;
  int vs = 0;
  int pitch = 0;
  int bank = 0;
  int trueHeading = 0;
  double lat = 0;
  double lon = 0;
  bool onGround = false;
  double g = 0;
};

struct RunwayAtTouchdown {
  bool known = false;
  std::string name;
  double lat = 0;
  double lon = 0;
  int heading = 0;
  int thresholdOffset = 0;
};

// -180..180: how far `b` lies clockwise of `a`.
double Difference(double a, double b) {
  double d = std::fmod(b - a + 540.0, 360.0) - 180.0;
  return d;
}

double Round1(double v) {
  return std::round(v * 10.0) / 10.0;
}

nlohmann::json TouchdownCard(const std::vector<Sample>& s, size_t td, const RunwayAtTouchdown& rw) {
  nlohmann::json card;
  // The last ticks below 50 feet, up to the first tick on the ground.
  size_t first = td;
  while (first > 0 && !s[first - 1].onGround && s[first - 1].agl <= kTouchdownCardFeet) --first;
  nlohmann::json ticks = nlohmann::json::array();
  for (size_t i = first; i <= td; ++i) {
    ticks.push_back({{"t", s[i].t},
                     {"height", Round1(s[i].agl)},
                     {"ias", s[i].ias},
                     {"vs", s[i].vs},
                     {"pitch", s[i].pitch},
                     {"bank", s[i].bank}});
  }
  card["ticks"] = ticks;
  card["time"] = s[td].t;
  const Sample& air = td > 0 ? s[td - 1] : s[td];
  card["rate"] = air.vs;
  double g = s[td].g;
  if (td + 1 < s.size()) g = std::max(g, s[td + 1].g);
  card["g"] = Round1(g * 10.0) / 10.0;
  // Crab: the nose against the track over the ground in the last second.
  double crab = 0;
  if (td > 0) {
    const Sample& a = s[td > 1 ? td - 2 : td - 1];
    const double track = CalcAngle(a.lat, a.lon, s[td].lat, s[td].lon);
    if (CalcDistance(a.lat, a.lon, s[td].lat, s[td].lon) > 0)
      crab = Difference(track, s[td].trueHeading);
  }
  card["crab"] = Round1(crab);
  card["ias"] = s[td].ias;
  int bounces = 0;
  for (size_t i = td + 1; i < s.size() && i <= td + kBounceWindowTicks; ++i)
    if (s[i].onGround && !s[i - 1].onGround) ++bounces;
  card["bounces"] = bounces;
  if (rw.known) {
    const double miles = CalcDistance(rw.lat, rw.lon, s[td].lat, s[td].lon);
    const double angle =
        (CalcAngle(rw.lat, rw.lon, s[td].lat, s[td].lon) - rw.heading) * kPi / 180.0;
    card["runway"] = rw.name;
    card["pastThreshold"] =
        std::lround(miles * kFeetPerMile * std::cos(angle) - rw.thresholdOffset);
    card["centreLineOffset"] = std::lround(miles * kFeetPerMile * std::sin(angle));
  }
  return card;
}

// The final approach: back from the touchdown while the aircraft was coming
// closer, up to kApproachPlotMiles out.
nlohmann::json Approach(const std::vector<Sample>& s, size_t td) {
  auto distance = [&](size_t i) { return CalcDistance(s[i].lat, s[i].lon, s[td].lat, s[td].lon); };
  size_t first = td;
  double farthest = 0;
  while (first > 0 && !s[first - 1].onGround) {
    const double d = distance(first - 1);
    if (d > kApproachPlotMiles || d < farthest - kTurnedAwayMiles) break;
    farthest = std::max(farthest, d);
    --first;
  }
  nlohmann::json points = nlohmann::json::array();
  for (size_t i = first; i <= td; ++i) {
    points.push_back({{"distance", std::round(distance(i) * 100.0) / 100.0},
                      {"height", std::lround(s[i].agl)},
                      {"ias", s[i].ias}});
  }
  return points;
}

}  // namespace

nlohmann::json RecordedFlight(const std::string& recordingPath, const std::string& root) {
  Recording recording;
  std::string error;
  if (!LoadRecording(recordingPath, recording, error)) return {{"error", error}};

  std::vector<Sample> samples;
  std::vector<RunwayAtTouchdown> runways;
  std::string start;  // the wall clock at the first tick, when the recording gives it
  NoEvents quiet;
  try {
    Replay replay(ReplaySetup{root, 1, true, {}, {}}, quiet);
    Instructor& in = replay.instructor();
    RecordingStep one;
    one.kind = RecordingStep::Kind::Tick;
    for (const RecordingStep& step : recording.steps) {
      if (step.kind != RecordingStep::Kind::Tick) {
        if (step.kind == RecordingStep::Kind::Clock && samples.empty()) {
          char text[24];
          std::snprintf(text, sizeof text, "%04d-%02d-%02dT%02d:%02d:%02d", step.clock.year,
                        step.clock.month, step.clock.day, step.clock.hour, step.clock.minute,
                        static_cast<int>(step.clock.second));
          start = text;
        }
        replay.Step(step);
        continue;
      }
      for (int32_t i = 0; i < step.ticks; ++i) {
        replay.Step(one);
        // The tick swaps its records last: what it decoded is the one before.
        const FSData& now = in.link.Before();
        Sample x;
        x.t = static_cast<double>(replay.Ticks() - 1) * kReplayTickSeconds;
        x.agl = now.AGL;
        x.altitude = now.Altitude;
        x.ias = now.IAS;
        x.gs = now.GS;
        x.vs = now.VS;
        x.pitch = now.Pitch;
        x.bank = now.Bank;
        x.trueHeading = now.TrueHeading;
        x.lat = now.Latitude;
        x.lon = now.Longitude;
        x.onGround = now.OnGround > 0;
        x.g = now.GForce / kGForceUnit;
        samples.push_back(x);
        RunwayAtTouchdown rw;
        if (const Runway* r = in.flight.Runways.LandingRunway) {
          rw.known = true;
          rw.name = r->ICAO + " " + r->Number;
          rw.lat = r->Latitude;
          rw.lon = r->Longitude;
          rw.heading = r->Heading;
          rw.thresholdOffset = r->ThresholdOffset;
        }
        runways.push_back(rw);
      }
    }
  } catch (const FailureReport& f) {
    // The flight ended in the failure report: what was flown up to it is kept.
  } catch (const std::exception& e) {
    return {{"error", recordingPath + ": " + e.what()}};
  }

  nlohmann::json ticks = nlohmann::json::array();
  for (const Sample& x : samples)
    ticks.push_back({{"t", x.t},
                     {"height", std::lround(x.agl)},
                     {"altitude", x.altitude},
                     {"ias", x.ias},
                     {"gs", x.gs},
                     {"vs", x.vs},
                     {"onGround", x.onGround}});
  nlohmann::json landings = nlohmann::json::array();
  int airborne = 0;
  size_t lastTouchdown = 0;
  bool any = false;
  for (size_t i = 1; i < samples.size(); ++i) {
    airborne = samples[i - 1].onGround ? 0 : airborne + 1;
    if (!samples[i].onGround || samples[i - 1].onGround) continue;
    const bool bounce = any && i - lastTouchdown <= static_cast<size_t>(kBounceWindowTicks);
    if (airborne < kAirborneBeforeLandingTicks || bounce) continue;
    any = true;
    lastTouchdown = i;
    landings.push_back(
        {{"approach", Approach(samples, i)}, {"card", TouchdownCard(samples, i, runways[i])}});
  }
  return {{"start", start}, {"ticks", ticks}, {"landings", landings}};
}

}  // namespace vantoro
