#include "world/flight_plan.h"

#include <gtest/gtest.h>

#include <cmath>
#include <fstream>

#include "base/files.h"
#include "world/temp_folder.h"

namespace vantoro {
namespace {

const std::string kPlans = std::string(VANTORO_SOURCE_DIR) + "/tests/data/plans/";

double Dms(double d, double m, double s) {
  return d + m / 60 + s / 3600;
}

// Plans written by simulators and planners (see tests/data/plans/README.md)
// and the ones authored for these tests: each loads whole, ends and all.
TEST(FlightPlanFiles, LoadWholeWithTheirEndsPositionsAndTypes) {
  struct Row {
    std::string file;
    int count;
    std::string departure, destination, rules;
    int probe;  // a point to look at closely
    std::string name, type;
    double latitude, longitude;
    int altitude;
  };
  const std::vector<Row> rows = {
      {"khwo-fsx.pln", 10, "KEYW", "KHWO", "VFR", 3, "EYW", "VOR", Dms(24, 35, 9.16),
       -Dms(81, 48, 1.71), 1720},
      {"khwo-fsx-latin1.pln", 10, "KEYW", "KHWO", "VFR", 4, "MTH", "NDB", Dms(24, 42, 42.78),
       -Dms(81, 5, 43.13), 2500},
      {"simbrief-mfs.pln", 11, "KEYW", "KMIA", "IFR", 1, "CARNU", "Intersection", Dms(25, 8, 18.13),
       -Dms(81, 19, 32.12), 25000},
      // The latest simulator leaves the id out of navaids: the ICAO block names them.
      {"khwo-msfs2024.pln", 8, "KEYW", "KHWO", "VFR", 2, "EYW", "VOR", Dms(24, 35, 9.16),
       -Dms(81, 48, 1.71), 1720},
      {"egtk-dty-wco-fs9.pln", 4, "EGTK", "EGTK", "VFR", 1, "DTY", "V", 52 + 10.82 / 60,
       -(1 + 6.83 / 60), 2500},
      {"lowi-lows-fs2002.pln", 5, "LOWI", "LOWS", "IFR", 3, "16", "LOCWAY", Dms(47, 45, 0),
       Dms(13, 1, 30), 4000},
      {"tour-200-points.pln", 200, "EGSC", "TOUR199", "VFR", 199, "TOUR199", "User",
       51.6 + 0.0004 * 99, 0.175 - 0.12 * 99 + 0.12 * 99, 3500},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.file);
    FlightPlan plan;
    Notices notices;
    ASSERT_TRUE(ProcessFlightPlan(kPlans + row.file, plan, &notices));
    EXPECT_TRUE(notices.empty()) << NoticeText(notices.front());
    ASSERT_EQ(FlightPlanCount(plan), row.count);
    EXPECT_EQ(plan.FlightPlanDeparture, row.departure);
    EXPECT_EQ(plan.FlightPlanDestination, row.destination);
    EXPECT_EQ(plan.FlightRules, row.rules);
    EXPECT_EQ(plan.NextWaypoint, 1);
    const Waypoint& w = plan.Waypoints[static_cast<size_t>(row.probe)];
    EXPECT_EQ(w.Name, row.name);
    EXPECT_EQ(w.WaypointType, row.type);
    EXPECT_NEAR(w.Latitude, row.latitude, 1e-5);
    EXPECT_NEAR(w.Longitude, row.longitude, 1e-5);
    EXPECT_EQ(w.Altitude, row.altitude);
    EXPECT_EQ(w.ClosestDistance, kNotYetApproached);
  }
}

TEST(FlightPlanCoordinates, HemispheresDegreeSignsMinutesAndSeconds) {
  struct Row {
    std::string text;
    double value;
  };
  const std::vector<Row> rows = {
      {"N47* 25.73'", 47 + 25.73 / 60},
      {"W001* 17.63'", -(1 + 17.63 / 60)},
      {"S33* 56.77'", -(33 + 56.77 / 60)},
      {"E000* 00.00'", 0},
      {"N24\xC2\xB0 33' 22.00\"", Dms(24, 33, 22)},  // the UTF-8 degree sign
      {"W81\xB0 45' 34.39\"", -Dms(81, 45, 34.39)},  // the Latin-1 byte
      {"S25* 39' 6.00\"", -Dms(25, 39, 6)},
      {"E2* 52' 9.02\"", Dms(2, 52, 9.02)},
      {"N59* 52.88", 59 + 52.88 / 60},  // the minutes' mark left off
      {"", 0},
      {"garbage", 0},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.text);
    EXPECT_NEAR(ParseCoOrd(row.text), row.value, 1e-9);
    EXPECT_NEAR(ParseXMLCoOrd(row.text), row.value, 1e-9);
  }
}

TEST(FlightPlanForms, AreToldApartByTheirTagsInAnyCase) {
  EXPECT_TRUE(IsXMLFlightPlan("<?xml?><SimBase.Document>"));
  EXPECT_TRUE(IsXMLFlightPlan("<simbase.document type=\"AceXML\">"));
  EXPECT_TRUE(IsXMLFlightPlan("<FlightPlan.FlightPlan>"));
  EXPECT_FALSE(IsXMLFlightPlan("[flightplan]\ntitle=EGPB to EISG\n"));
  EXPECT_EQ(GetStringBetween("<FPTYPE>IFR</FPTYPE>", "<FPTYPE>", "</FPTYPE>"), "IFR");
  EXPECT_EQ(GetStringBetween("<FPTYPE>IFR", "<FPTYPE>", "</FPTYPE>"), "");
}

std::string PlanOf(int points) {
  std::string text = "[flightplan]\ntype=VFR\ndeparture_id=AAAA, N47* 00.00', E011* 00.00'\n";
  for (int i = 0; i < points; ++i) {
    text += "waypoint." + std::to_string(i) + "=P" + std::to_string(i) + ", I, N47* " +
            std::to_string(i % 60) + ".00', W011* 30.50', +001000.00\n";
  }
  return text;
}

TEST(FlightPlanDisplay, ListsTwentyTwoPointsAndSumsUpTheRest) {
  struct Row {
    int points;
    size_t lines;
    std::string last;
  };
  const std::vector<Row> rows = {
      {1, 3, "1: P0 [047.0000,-011.5083]"},        {22, 24, "22: P21 [047.3500,-011.5083]"},
      {23, 25, "(waypoint 23 not shown)"},         {24, 25, "(waypoints 23 - 24 not shown)"},
      {200, 25, "(waypoints 23 - 200 not shown)"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.points);
    FlightPlan plan;
    ProcessFlightPlanText(PlanOf(row.points), plan);
    const std::vector<std::string> lines = FlightPlanDisplay(plan);
    ASSERT_EQ(lines.size(), row.lines);
    EXPECT_EQ(lines[0], "FLIGHT PLAN");
    EXPECT_EQ(lines[1], "AAAA TO P" + std::to_string(row.points - 1));
    EXPECT_EQ(lines.back(), row.last);
  }
  FlightPlan plan;
  ProcessFlightPlanText(PlanOf(2), plan);
  EXPECT_EQ(DepartureLabel(plan), "Departure: AAAA");
  EXPECT_EQ(DestinationLabel(plan), "Destination: P1");
}

// Damaged plans: what cannot be read is passed over and named by its line;
// the rest of the route is kept.
TEST(FlightPlanDamage, PassesOverWhatItCannotReadAndNamesTheLine) {
  struct Row {
    std::string name, text;
    int count;
    std::string notice;  // "" for none
  };
  const std::string ini = "[flightplan]\ntype=IFR\n";
  const std::vector<Row> rows = {
      {"bad latitude",
       ini + "waypoint.0=A, A, N47* 1.0', E011* 1.0'\nwaypoint.1=B, V, Nowhere, E1\n" +
           "waypoint.2=C, I, N48* 1.0', E011* 1.0'\n",
       2, "p.pln:4: waypoint.1 has no position; passed over"},
      {"out of range", ini + "waypoint.0=A, A, N97* 1.0', E011* 1.0'\n", 0,
       "p.pln:3: waypoint.0 position \"N97* 1.0', E011* 1.0'\" cannot be read; passed over"},
      {"no points", ini, 0, "p.pln: no flight plan points found"},
      {"a gap ends the list",
       ini + "waypoint.0=A, A, N47* 1.0', E011* 1.0'\nwaypoint.2=C, I, N48* 1.0', E011* 1.0'\n", 1,
       ""},
      {"xml without position",
       "<SimBase.Document><ATCWaypoint id=\"X\">\n<ATCWaypointType>VOR</ATCWaypointType>\n</"
       "ATCWaypoint>\n<ATCWaypoint id=\"Y\"><WorldPosition>N1* 0' 0\",E1* 0' 0\",+0</"
       "WorldPosition></ATCWaypoint></SimBase.Document>",
       1, "p.pln:1: flight plan point X position \"\" cannot be read; passed over"},
      {"unclosed xml", "<SimBase.Document><ATCWaypoint id=\"X\"><WorldPosition>N1* 0' 0\",E1* 0", 0,
       "p.pln:1: flight plan point X position \"\" cannot be read; passed over"},
      {"binary", std::string("\0\xff\xfe[<ATCWaypoint \x01", 18), 0,
       "p.pln: no flight plan points found"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    FlightPlan plan;
    Notices notices;
    ProcessFlightPlanText(row.text, plan, "p.pln", &notices);
    EXPECT_EQ(FlightPlanCount(plan), row.count);
    if (row.notice.empty()) {
      EXPECT_TRUE(notices.empty());
    } else {
      ASSERT_FALSE(notices.empty());
      EXPECT_EQ(NoticeText(notices.front()), row.notice);
    }
  }
  FlightPlan plan;
  Notices notices;
  ProcessFlightPlanText(PlanOf(205), plan, "long.pln", &notices);
  EXPECT_EQ(FlightPlanCount(plan), kMaxWaypoints);
  ASSERT_EQ(notices.size(), 1u);
  EXPECT_EQ(notices[0].line, 204);
  EXPECT_FALSE(ProcessFlightPlan(kPlans + "no-such-plan.pln", plan));
  EXPECT_EQ(FlightPlanCount(plan), kMaxWaypoints) << "a missing file leaves the plan alone";
  cmdClearFlightPlan_Click(plan);
  EXPECT_EQ(FlightPlanCount(plan), 0);
  EXPECT_EQ(plan.FlightPlanDestination, "");
}

// The simulator's plan in use, through the flight file it last loaded.
TEST(SimulatorFlightPlan, IsFoundThroughTheFlightFileOrToldWhyNot) {
  TempFolder folder;
  const std::string plans = folder.Root() + "Plans/";
  std::filesystem::create_directories(plans);
  std::ofstream(plans + "Oxford round.PLN") << ReadFile(kPlans + "egtk-dty-wco-fs9.pln");
  const std::string flt = folder.Root() + "Previous flight.FLT";
  std::ofstream(flt) << "[Main]\nTitle=Previous flight\n[GPS_Engine]\nFilename=C:\\Users\\pilot\\"
                        "Documents\\Flight Simulator X Files\\Oxford round\n";
  const std::string noPlanFlt = folder.Root() + "Empty.FLT";
  std::ofstream(noPlanFlt) << "[Main]\nTitle=Empty\n";

  struct Row {
    std::string name;
    bool connected, p3d;
    std::string flightFile, planFolder;
    bool loaded;
    std::string message;
  };
  const std::vector<Row> rows = {
      {"found beside the other plans", true, false, flt, plans, true, ""},
      {"a plan file itself", true, false, plans + "Oxford round.PLN", plans, true, ""},
      {"no simulator", false, false, flt, plans, false, std::string(kLoadSimulatorFirst)},
      {"no simulator, P3D", false, true, flt, plans, false, std::string(kLoadP3DFirst)},
      {"no plan folder", true, false, flt, folder.Root() + "Missing/", false,
       std::string(kNoPlanFolder)},
      {"flight without a plan", true, false, noPlanFlt, plans, false,
       "The simulator has no flight plan in use."},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    FlightPlan plan;
    const SimulatorPlanLoad load =
        LoadSimulatorFlightPlan(plan, row.connected, row.p3d, row.flightFile, row.planFolder);
    EXPECT_EQ(load.Loaded, row.loaded);
    EXPECT_EQ(load.Message, row.message);
    EXPECT_EQ(FlightPlanCount(plan), row.loaded ? 4 : 0);
  }
}

}  // namespace
}  // namespace vantoro
