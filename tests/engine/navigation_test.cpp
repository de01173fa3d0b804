#include "engine/navigation.h"

#include "engine/flight_rig.h"

namespace vantoro {
namespace {

int Count(const std::string& joined, const std::string& what) {
  int n = 0;
  for (size_t at = joined.find(what); at != std::string::npos; at = joined.find(what, at + 1)) ++n;
  return n;
}

Waypoint Point(const std::string& name, const std::string& type, double lat, double lon) {
  Waypoint w;
  w.Name = name;
  w.WaypointType = type;
  w.Latitude = lat;
  w.Longitude = lon;
  return w;
}

// Eastward along 47.25 N from the rig's start: a VOR, an NDB and an airfield
// about eight miles apart.
FlightPlan EastwardRoute() {
  FlightPlan plan;
  plan.Waypoints = {Point("LOWI", "A", 47.25, 11.35), Point("ABC", "V", 47.25, 11.55),
                    Point("XY", "N", 47.25, 11.75), Point("LOWX", "A", 47.25, 11.95)};
  plan.NextWaypoint = 1;
  plan.FlightPlanDeparture = "LOWI";
  plan.FlightPlanDestination = "LOWX";
  return plan;
}

// Flies east from the rig's start to `toLon` in steps of `step` degrees a tick.
void FlyEast(FlightRig& rig, double toLon, double step = 0.004) {
  for (double lon = 11.35; lon <= toLon; lon += step) {
    rig.Position(47.25, lon);
    rig.Tick();
  }
}

// Every recording the rules asked for since the mark, whether it found room
// in the queue (the bench plays nothing, so long sentences fill it) or not.
std::string Asked(const FlightRig& rig) {
  std::string out = rig.Queued();
  for (const Event& e : rig.Since("dropped"))
    if (e.Text("why") == "full") out += "|" + e.Text("file");
  return out;
}

TEST(RouteCoaching, AnnouncesEachPointInOrderAndSuggestsItsAid) {
  struct Row {
    std::string name;
    double agl;
    int passingSpoken;  // "PassingWayPoint.wav" queued this many times
  };
  const std::vector<Row> rows = {{"at cruise height", 3000, 3}, {"at 190 feet", 190, 0}};
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    FlightRig rig;
    rig.Ready();
    rig.Follow(CruiseAt(3000));
    rig.instructor.plan = EastwardRoute();
    rig.AGL(row.agl);
    rig.Mark();
    FlyEast(rig, 12.0);
    std::string order;
    for (const Event& e : rig.Since("waypoint")) order += std::to_string(e.Int("index"));
    EXPECT_EQ(order, "123");
    const std::string messages = rig.Messages();
    EXPECT_NE(messages.find("Waypoint:WayPoint 1: ABC"), std::string::npos) << messages;
    EXPECT_NE(messages.find("Waypoint:Completed"), std::string::npos);
    EXPECT_EQ(rig.instructor.plan.NextWaypoint, 3) << "the last point leaves the leg as it is";
    const std::string queued = Asked(rig);
    EXPECT_EQ(Count(queued, "PassingWayPoint.wav"), row.passingSpoken);
    if (row.agl > kRouteSpeechAboveAGL) {
      EXPECT_EQ(Count(queued, "ApproachingWayPoint.wav"), 3);
      EXPECT_EQ(Count(queued, "IfYouTuneNAV1ToTheVORAt.wav"), 1) << "once a leg";
      EXPECT_EQ(Count(queued, "IfYouTuneADF1ToTheNDBAt.wav"), 1);
      EXPECT_EQ(Count(queued, "WeWillTurnTo.wav"), 2) << "no leg after the last point";
    } else {
      EXPECT_EQ(queued.find("Waypoint"), std::string::npos) << queued;
    }
  }
}

TEST(RouteCoaching, NoAidIsSuggestedForTheStationNav1AlreadyReceives) {
  FlightRig rig;
  rig.Ready();
  rig.Follow(CruiseAt(3000));
  rig.instructor.plan = EastwardRoute();
  rig.image.SetString(0x3000, "ABC");
  rig.Mark();
  FlyEast(rig, 11.5);
  EXPECT_EQ(Count(Asked(rig), "IfYouTuneNAV1ToTheVORAt.wav"), 0);
}

TEST(RouteCoaching, AOnePointPlanIsNotFollowed) {
  FlightRig rig;
  rig.Ready();
  rig.Follow(CruiseAt(3000));
  FlightPlan plan = EastwardRoute();
  plan.Waypoints.resize(1);
  rig.instructor.plan = plan;
  rig.Mark();
  FlyEast(rig, 11.6);
  EXPECT_TRUE(rig.Since("waypoint").empty());
}

FlightPlan Flown(int points, int crossed, bool outOfOrder = false) {
  FlightPlan plan;
  for (int i = 0; i < points; ++i) {
    Waypoint w = Point("P" + std::to_string(i), "I", 47, 11 + i * 0.1);
    w.PassTime = i == 0 ? 0 : 100 * i;
    w.ClosestDistance = i <= crossed ? 0.4 : kNotYetApproached;
    plan.Waypoints.push_back(w);
  }
  if (outOfOrder) std::swap(plan.Waypoints[1].PassTime, plan.Waypoints[2].PassTime);
  return plan;
}

TEST(RouteResultTable, BonusIsHalfTheCrossedPointsWhenAllWereCrossed) {
  struct Row {
    std::string name;
    FlightPlan plan;
    bool heavy;
    int crossed, inSequence;
    double bonus;
    bool monitored;
  };
  FlightPlan nearMiss = Flown(5, 4);
  nearMiss.Waypoints[2].ClosestDistance = 2.5;  // within a jet's three miles, not a light's one
  const std::vector<Row> rows = {
      {"one point", Flown(1, 0), false, 0, 0, 0, false},
      {"30 points", Flown(30, 29), false, 29, 29, 10, true},
      {"21 points", Flown(21, 20), false, 20, 20, 10, true},
      {"8 points", Flown(8, 7), false, 7, 7, 3, true},
      {"8 points, one missed", Flown(8, 6), false, 6, 6, 0, true},
      {"out of order", Flown(5, 4, true), false, 4, 3, 2, true},
      {"near miss, light", nearMiss, false, 3, 3, 0, true},
      {"near miss, heavy", nearMiss, true, 4, 4, 2, true},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    const RouteResult r = WayPointFinalAnalysis(row.plan, row.heavy);
    EXPECT_EQ(r.Crossed, row.crossed);
    EXPECT_EQ(r.InSequence, row.inSequence);
    EXPECT_EQ(r.Bonus, row.bonus);
    EXPECT_EQ(r.Monitored, row.monitored);
  }
}

TEST(NavigationTeaching, MarkersAndTheVorFlagAreToldOnceAsTheyChange) {
  FlightRig rig;
  rig.Ready();
  rig.Follow(LandingAt(1500));
  rig.image.SetString(0x3000, "ABC");
  rig.Tick(2);
  rig.Mark();
  rig.image.SetU8(0x0C4B, 1);  // the flag shows TO
  rig.Tick();
  rig.image.SetU8(0x0C4B, 0);
  rig.Tick();
  rig.image.SetU8(0x0C4B, 1);  // and TO again within the gap
  rig.Tick();
  rig.image.SetU8(0x0BAC, 1);  // inner marker
  rig.image.SetU8(0x0BB0, 1);  // outer marker
  rig.Tick();
  const std::string queued = Asked(rig);
  EXPECT_EQ(Count(queued, "VORflagisTO.wav"), 1) << queued;
  EXPECT_EQ(Count(queued, "VORflagisOFF.wav"), 1);
  EXPECT_EQ(Count(queued, "InnerMarker.wav"), 1);
  EXPECT_EQ(Count(queued, "OuterMarker.wav"), 1);
}

}  // namespace
}  // namespace vantoro
