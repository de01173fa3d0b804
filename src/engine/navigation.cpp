#include "engine/navigation.h"

#include <cmath>
#include <cstdlib>

#include "base/numbers.h"
#include "base/text.h"
#include "engine/approach.h"
#include "engine/polling.h"
#include "engine/tick_rules.h"
#include "voice/phrases.h"
#include "world/geo.h"
#include "world/vors.h"

namespace vantoro {

namespace {

// A station at a waypoint lies within this many degrees of it.
constexpr double kStationAtWaypointDegrees = 0.01;

double RouteMiles(const Cockpit& c, double miles) {
  return c.link.HeavyAircraft ? miles * kHeavyRouteFactor : miles;
}

double MilesTo(const FSData& at, const Waypoint& w) {
  return CalcDistance(at.Latitude, at.Longitude, w.Latitude, w.Longitude);
}

bool Speaks(const FSData& now) {
  return now.AGL > kRouteSpeechAboveAGL;
}

void SayHeading(Voice& v, int32_t heading) {
  PlayStringPhoneticallyAlways(v, FormatDigits(heading, 3));
}

// The recording that names the kind of point, by the first letter of its type.
const char* WaypointKindSound(const std::string& type) {
  switch (type.empty() ? ' ' : std::toupper(static_cast<unsigned char>(type[0]))) {
    case 'V':
      return "VOR.wav";
    case 'N':
      return "NDB.wav";
    case 'A':
      return "Airport.wav";
    case 'I':
      return "Intersection.wav";
    default:
      return nullptr;
  }
}

bool IsVOR(const Waypoint& w) {
  return !w.WaypointType.empty() &&
         std::toupper(static_cast<unsigned char>(w.WaypointType[0])) == 'V';
}

bool IsNDB(const Waypoint& w) {
  return !w.WaypointType.empty() &&
         std::toupper(static_cast<unsigned char>(w.WaypointType[0])) == 'N';
}

// Four decimal digits packed two to a byte, low byte first: 1640 -> 0x40, 0x16.
void PackDecimal(int32_t digits, uint8_t out[2]) {
  const auto digit = [&](int place) { return (digits / place) % 10; };
  out[0] = static_cast<uint8_t>(digit(1) + 16 * digit(10));
  out[1] = static_cast<uint8_t>(digit(100) + 16 * digit(1000));
}

// The ILS channels: 108.10 to 111.95 with an odd tenth.
bool IsILSFrequency(double mhz) {
  const int32_t tenths = CLng(mhz * 10);
  return mhz >= 108 && mhz < 112 && (tenths % 10) % 2 == 1;
}

void UpdateWaypointStatus(Cockpit& c, const FlightPlan& plan, const FSData& now) {
  const int32_t next = plan.NextWaypoint;
  if (next <= 0 || next >= FlightPlanCount(plan)) return;
  const Waypoint& w = plan.Waypoints[static_cast<size_t>(next)];
  c.sound.Status.WaypointName = w.Name;
  c.sound.Status.WaypointHeading =
      MagneticCourse(now.Latitude, now.Longitude, w.Latitude, w.Longitude, now.MagVar);
}

}  // namespace

int32_t MagneticCourse(double fromLat, double fromLon, double toLat, double toLon, int32_t magVar) {
  int32_t course = CLng(CalcAngle(fromLat, fromLon, toLat, toLon) - magVar);
  while (course < 0) course += 360;
  return course % 360;
}

void LoadSimulatorPlanOnConnect(Cockpit& c) {
  RouteState& r = c.route;
  if (c.flight.TickCount <= 1) r.SimulatorPlanTried = false;
  const FSData& now = c.link.Now();
  if (!c.options.LoadFSXPlanOnConnect || r.SimulatorPlanTried || now.FlightFile.empty()) return;
  r.SimulatorPlanTried = true;
  Notices notices;
  const SimulatorPlanLoad load =
      LoadSimulatorFlightPlan(c.plan, c.flight.Connected, c.options.P3DMode, now.FlightFile,
                              c.options.FlightPlanFolder, &notices);
  for (const Notice& n : notices)
    c.events.Emit(c.flight.TickCount, "notice", {{"text", NoticeText(n)}});
  if (load.Loaded) {
    c.events.Emit(c.flight.TickCount, "flightplan",
                  {{"file", c.plan.File},
                   {"points", FlightPlanCount(c.plan)},
                   {"departure", c.plan.FlightPlanDeparture},
                   {"destination", c.plan.FlightPlanDestination}});
  } else {
    c.events.Emit(c.flight.TickCount, "flightplan", {{"message", load.Message}});
  }
}

void FlightPlanHelp(Cockpit& c) {
  if (!c.options.AdviceWP) return;
  const FSData& now = c.link.Now();
  const FSData& before = c.link.Before();
  const GpsData& gps = c.link.Gps;
  RouteState& r = c.route;
  Voice v = c.voice();

  if (!now.GpsDrivesNav) {
    r.GpsNextWaypoint = gps.GpsNextWaypoint;
    return;
  }
  // The NAV display was just given to a GPS that has no plan to fly.
  if (!before.GpsDrivesNav && (now.GpsFlags1 & kGpsActivePlan) == 0 && now.OnGround == 0) {
    PlayPerhaps(v, "GPSNoFlightPlan.wav", kGpsNoPlanSlot, kTeachingGap, kTeachingExpiry);
  }
  // A new point for the GPS to fly to.
  if (!gps.GpsNextWaypoint.empty() && gps.GpsNextWaypoint != r.GpsNextWaypoint &&
      (now.GpsFlags1 & kGpsActivePlan) != 0 && Speaks(now)) {
    const bool direct = (now.GpsFlags1 & kGpsDirectTo) != 0;
    PlayAlways(v, direct ? "GPSFlyingDirectTo.wav" : "GPSNextWaypoint.wav");
    PlayStringPhoneticallyAlways(v, gps.GpsNextWaypoint);
  }
  r.GpsNextWaypoint = gps.GpsNextWaypoint;
  // Coming down to land on the GPS without an approach loaded in it.
  if (c.flight.Modes.Landing && now.OnGround == 0 && now.AGL < kGpsApproachCheckBelowAGL &&
      Speaks(now) && (now.GpsFlags2 & kGpsApproachLoaded) == 0) {
    PlayPerhaps(v, "GPSNoApproachSelected.wav", kGpsNoApproachSlot, kTeachingGap * 10,
                kTeachingExpiry);
  }
}

void WayPointCheck(Cockpit& c) {
  FlightPlan& plan = c.plan;
  const int32_t count = FlightPlanCount(plan);
  if (count <= 1) return;
  const FSData& now = c.link.Now();
  // Only a flying aircraft follows the route: on the first ticks, before the
  // ground latch is set, a round trip's last point lies at the parking spot.
  if (now.OnGround != 0) return;
  const double passing = RouteMiles(c, kPassingMiles);
  for (int32_t i = 1; i < count; ++i) {
    Waypoint& w = plan.Waypoints[static_cast<size_t>(i)];
    const double d = MilesTo(now, w);
    if (w.ClosestDistance <= d) continue;  // no closer than before
    if (w.ClosestDistance > passing && d <= passing) {
      Voice v = c.voice();
      ShowMessage(c, "Waypoint:WayPoint " + std::to_string(i) + ": " + w.Name,
                  kWaypointMessageSeconds);
      if (Speaks(now)) {
        PlayAlways(v, "PassingWayPoint.wav");
        PlayStringPhoneticallyAlways(v, std::to_string(i));
      }
      if (i == count - 1) {
        ShowMessage(c, "Waypoint:Completed", kWaypointMessageSeconds);
        plan.CurrentWaypointName = "Completed";
        c.sound.Status.WaypointName = "Completed";
      } else {
        plan.NextWaypoint = i + 1;
        const Waypoint& next = plan.Waypoints[static_cast<size_t>(i + 1)];
        plan.CurrentWaypointName = next.Name;
        if (Speaks(now)) {
          PlayAlways(v, "WayPoint.wav");
          PlayStringPhoneticallyAlways(v, std::to_string(i + 1));
          PlayStringPhoneticallyAlways(v, next.Name);
          SpeakAsANumberAlways(v, CLng(Int(MilesTo(now, next))));
          PlayAlways(v, "Miles.wav");
          PlayAlways(v, "heading.wav");
          SayHeading(v, MagneticCourse(now.Latitude, now.Longitude, next.Latitude, next.Longitude,
                                       now.MagVar));
        }
      }
      c.events.Emit(c.flight.TickCount, "waypoint",
                    {{"index", i}, {"name", w.Name}, {"spoken", Speaks(now)}});
    }
    w.ClosestDistance = d;
    w.PassTime = GetFlightTime(c.flight.clocks, now);
  }
  UpdateWaypointStatus(c, plan, now);
}

void NextWayPointCheck(Cockpit& c) {
  const FlightPlan& plan = c.plan;
  const int32_t count = FlightPlanCount(plan);
  const int32_t next = plan.NextWaypoint;
  if (count <= 1 || next <= 0 || next >= count) return;
  const FSData& now = c.link.Now();
  const Waypoint& w = plan.Waypoints[static_cast<size_t>(next)];
  const double d = MilesTo(now, w);
  const double p = MilesTo(c.link.Before(), w);
  const double approaching = RouteMiles(c, kApproachingMiles);
  if (!(p >= approaching && d < approaching) || !Speaks(now)) return;
  Voice v = c.voice();
  PlayAlways(v, "ApproachingWayPoint.wav");
  PlayStringPhoneticallyAlways(v, std::to_string(next));
  PlayAlways(v, "Pause500ms.wav");
  PlayStringPhoneticallyAlways(v, w.Name);
  if (const char* kind = WaypointKindSound(w.WaypointType)) PlayAlways(v, kind);
  if (next + 1 < count) {
    const Waypoint& after = plan.Waypoints[static_cast<size_t>(next + 1)];
    PlayAlways(v, "WeWillTurnTo.wav");
    SayHeading(
        v, MagneticCourse(w.Latitude, w.Longitude, after.Latitude, after.Longitude, now.MagVar));
  }
}

namespace {

// The next point when its aid may be suggested now: well along the leg and
// well short of the point, above the ground, not yet suggested on this leg.
const Waypoint* AidToSuggest(const Cockpit& c) {
  const FlightPlan& plan = c.plan;
  const int32_t count = FlightPlanCount(plan);
  const int32_t next = plan.NextWaypoint;
  if (count <= 1 || next <= 0 || next >= count) return nullptr;
  if (c.route.AidSuggestedFor == next) return nullptr;
  const FSData& now = c.link.Now();
  const Waypoint& w = plan.Waypoints[static_cast<size_t>(next)];
  const Waypoint& last = plan.Waypoints[static_cast<size_t>(next - 1)];
  if (!(MilesTo(now, w) > RouteMiles(c, kSuggestAidBeyondMiles))) return nullptr;
  if (!(MilesTo(now, last) > RouteMiles(c, kSuggestAidPastMiles))) return nullptr;
  if (!Speaks(now)) return nullptr;
  if (IsVOR(w)) return EqualsNoCase(w.Name, now.Vor1Ident) ? nullptr : &w;
  return IsNDB(w) ? &w : nullptr;
}

// The radial of the VOR the aircraft is on, and the course to fly to the point.
int32_t RadialFrom(const Waypoint& w, const FSData& now) {
  return MagneticCourse(w.Latitude, w.Longitude, now.Latitude, now.Longitude, now.MagVar);
}
int32_t CourseTo(const Waypoint& w, const FSData& now) {
  return MagneticCourse(now.Latitude, now.Longitude, w.Latitude, w.Longitude, now.MagVar);
}

}  // namespace

void SuggestNavAid(Cockpit& c) {
  if (!c.options.AdviceVORNDB || c.options.AutoTuneVOR) return;
  const Waypoint* w = AidToSuggest(c);
  if (w == nullptr) return;
  c.route.AidSuggestedFor = c.plan.NextWaypoint;
  const FSData& now = c.link.Now();
  Voice v = c.voice();
  if (IsVOR(*w)) {
    PlayAlways(v, "IfYouTuneNAV1ToTheVORAt.wav");
    PlayStringPhoneticallyAlways(v, w->Name);
    PlayAlways(v, "WeCanApproachItOnRadial.wav");
    SayHeading(v, RadialFrom(*w, now));
  } else {
    PlayAlways(v, "IfYouTuneADF1ToTheNDBAt.wav");
    PlayStringPhoneticallyAlways(v, w->Name);
    PlayAlways(v, "WeCanUseTheADFNeedleToFlyACourseOf.wav");
    SayHeading(v, CourseTo(*w, now));
  }
}

void TuneNavAid(Cockpit& c) {
  if (!c.options.AutoTuneVOR) return;
  const Waypoint* w = AidToSuggest(c);
  if (w == nullptr) return;
  c.route.AidSuggestedFor = c.plan.NextWaypoint;
  const FSData& now = c.link.Now();
  const VORStation* station =
      FindVOR(c.world, w->Latitude, w->Longitude, kStationAtWaypointDegrees);
  if (station == nullptr) return;  // not in the station file: nothing to tune
  Voice v = c.voice();
  const int32_t tick = c.flight.TickCount;
  if (IsVOR(*w)) {
    uint8_t packed[2];
    PackDecimal(CLng(station->Frequency * 100) - 10000, packed);
    WriteToSim(c.sim, c.events, tick, kNav1FrequencyOffset, packed, sizeof packed);
    // The course to the station: inbound on the radial the aircraft is on.
    const auto course = static_cast<uint16_t>(CourseTo(*w, now));
    WriteToSim(c.sim, c.events, tick, kNav1OBSOffset, &course, sizeof course);
    PlayAlways(v, "ITunedNAV1ToTheVORAt.wav");
    PlayStringPhoneticallyAlways(v, w->Name);
    PlayAlways(v, "WeCanApproachItOnRadial.wav");
    SayHeading(v, RadialFrom(*w, now));
  } else {
    const int32_t khz = CLng(station->Frequency);
    uint8_t main[2];
    PackDecimal(khz % 1000, main);
    const uint8_t extended[2] = {static_cast<uint8_t>(khz / 1000), 0};
    WriteToSim(c.sim, c.events, tick, kAdf1FrequencyOffset, main, sizeof main);
    WriteToSim(c.sim, c.events, tick, kAdf1ExtendedOffset, extended, sizeof extended);
    PlayAlways(v, "ITunedADF1ToTheNDBAt.wav");
    PlayStringPhoneticallyAlways(v, w->Name);
    PlayAlways(v, "WeCanUseTheADFNeedleToFlyACourseOf.wav");
    SayHeading(v, CourseTo(*w, now));
  }
}

void Nav1IsTunedTo(Voice& v, const FSData& now) {
  PlayAlways(v, "Nav1IsTunedTo.wav");
  PlayStringPhoneticallyAlways(v, now.Vor1Ident);
}

void VORTeaching(Cockpit& c) {
  if (!c.options.MonitorVOR) return;
  const FSData& now = c.link.Now();
  const FSData& before = c.link.Before();
  // Only a VOR flown by its own needle: no GPS driving it, no localiser tuned.
  if (now.OnGround != 0 || !Speaks(now) || now.Vor1Ident.empty() || now.GpsDrivesNav ||
      IsILSFrequency(now.Nav1Freq) || now.Vor1Ident != before.Vor1Ident) {
    return;
  }
  Voice v = c.voice();
  if (now.Nav1ToFrom != before.Nav1ToFrom) {
    if (now.Nav1ToFrom == kFlagTo) {
      PlayPerhaps(v, "VORflagisTO.wav", kVorFlagToSlot, kTeachingGap, kTeachingExpiry);
    } else if (now.Nav1ToFrom == kFlagFrom && before.Nav1ToFrom == kFlagTo) {
      PlayPerhaps(v, "WehavepassedtheVORstation.wav", kVorFlagFromSlot, kTeachingGap,
                  kTeachingExpiry);
    } else if (now.Nav1ToFrom == kFlagFrom) {
      PlayPerhaps(v, "VORflagisFROM.wav", kVorFlagFromSlot, kTeachingGap, kTeachingExpiry);
    } else if (now.Nav1ToFrom == kFlagOff) {
      PlayPerhaps(v, "VORflagisOFF.wav", kVorFlagOffSlot, kTeachingGap, kTeachingExpiry);
    }
  }
  if (now.Nav1ToFrom != kFlagOff && std::abs(before.Nav1Localiser) > kNeedleOffCentre &&
      std::abs(now.Nav1Localiser) <= kNeedleCentred) {
    PlayPerhaps(v, "VORneedlehascentered.wav", kVorCentredSlot, kTeachingGap, kTeachingExpiry);
  }
  if (now.Nav1ToFrom == kFlagTo && now.DME1Distance > 0 &&
      now.DME1Distance < kClosingOnStationMiles && before.DME1Distance >= kClosingOnStationMiles) {
    PlayPerhaps(v, "WereclosingontheVORstation.wav", kVorClosingSlot, kTeachingGap,
                kTeachingExpiry);
  }
}

void AnnounceMarkers(Cockpit& c) {
  const FSData& now = c.link.Now();
  const FSData& before = c.link.Before();
  if (!c.flight.Modes.Landing || !(now.AGL > kMarkersAboveAGL)) return;
  Voice v = c.voice();
  if (now.InnerMarker && !before.InnerMarker)
    PlayPerhaps(v, "InnerMarker.wav", kInnerMarkerSlot, kMarkerGap, kMarkerExpiry);
  if (now.MiddleMarker && !before.MiddleMarker)
    PlayPerhaps(v, "MiddleMarker.wav", kMiddleMarkerSlot, kMarkerGap, kMarkerExpiry);
  if (now.OuterMarker && !before.OuterMarker) PlayAlways(v, "OuterMarker.wav");
}

RouteResult WayPointFinalAnalysis(const FlightPlan& plan, bool heavy) {
  RouteResult r;
  const int32_t count = FlightPlanCount(plan);
  if (count <= 1) return r;
  r.Monitored = true;
  const double passing = heavy ? kPassingMiles * kHeavyRouteFactor : kPassingMiles;
  for (int32_t i = 1; i < count; ++i) {
    const Waypoint& w = plan.Waypoints[static_cast<size_t>(i)];
    if (w.ClosestDistance > passing) continue;
    r.Crossed += 1;
    if (w.PassTime > plan.Waypoints[static_cast<size_t>(i - 1)].PassTime) r.InSequence += 1;
  }
  if (r.Crossed == count - 1) r.Bonus = std::min<int32_t>(r.Crossed / 2, kMaxRouteBonus);
  return r;
}

void SayRouteResult(Voice& v, const RouteResult& result) {
  if (!result.Monitored) return;
  PlayStringPhoneticallyAlways(v, std::to_string(result.Crossed));
  PlayAlways(v, "WayPointsWereCrossedCorrectly.wav");
  PlayStringPhoneticallyAlways(v, std::to_string(result.InSequence));
  PlayAlways(v, "WayPointsWereInTheirCorrectSequence.wav");
}

}  // namespace vantoro
