#include <cmath>
#include <fstream>

#include "base/files.h"
#include "engine/flight_rig.h"

namespace vantoro {
namespace {

// One runway end in the world file's form: 21 fields, co-ordinates in both
// forms (the decimal ones are those read).
std::string RunwayLine(const std::string& number, int heading, double lat, double lon,
                       const std::string& icao, int length = 6000) {
  char line[512];
  std::snprintf(line, sizeof line,
                "%s|%d|N47_15_00|E011_20_00|3|%s.%s|1900|%d|150|||ASPHALT|126.00|0|0|0|"
                "City|Airfield|0|%.6f|%.6f\r\n",
                number.c_str(), heading, icao.c_str(), number.c_str(), length, lat, lon);
  return line;
}

void WriteFile(const std::filesystem::path& p, const std::string& text) {
  std::filesystem::create_directories(p.parent_path());
  std::ofstream(p, std::ios::binary) << text;
}

// West of the aircraft's start on the same parallel: runway 26 of LOWI far
// away, and nearer, the other end of the runway, which faces the other way.
const std::string kValley = RunwayLine("26", 265, 47.25, 11.30, "LOWI") +
                            RunwayLine("08", 85, 47.25, 11.36, "LOWI") +
                            RunwayLine("08R", 80, 48.35, 11.78, "EDDM");

TEST(RunwayChoice, TheWorldLoadsAtConnectionFromTheUsersFileFirst) {
  struct Row {
    std::string name;
    bool rootFile = false, userFile = false;
    std::string from;    // the file the runways came from, by name; "" for none
    std::string notice;  // start of what the pilot is told
  };
  const std::vector<Row> rows = {
      {"delivered world", true, false, "FSX.RWY", ""},
      {"user's own file wins", true, true, "VNTR2011.TXT", ""},
      {"no file", false, false, "", "Vantoro runway data file is missing!"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    FlightRig rig;
    if (row.rootFile) WriteFile(rig.dir_ / "FSX.RWY", kValley);
    rig.instructor.options.FSXFolder = (rig.dir_ / "FSX").string() + "/";
    std::filesystem::create_directories(rig.dir_ / "FSX");
    if (row.userFile)
      WriteFile(rig.dir_ / "FSX" / "VNTR2011.TXT", RunwayLine("27", 270, 1, 2, "X"));
    EXPECT_TRUE(rig.instructor.Connect());
    EXPECT_EQ(GetFileName(rig.instructor.world.RunwayFile), row.from);
    EXPECT_EQ(rig.Texts("notice", "text").substr(0, row.notice.size()), row.notice);
  }
}

// Connected east of the valley's runways, which the world file holds.
class Valley {
 public:
  explicit Valley(bool announce = false) {
    WriteFile(rig.dir_ / "FSX.RWY", kValley);
    rig.Position(47.25, lon_);
    rig.instructor.options.AnnounceNearestAirport = announce;
    EXPECT_TRUE(rig.instructor.Connect());
  }
  // Westward along the parallel, a little each tick, at the given height.
  void FlyWest(double agl, int ticks) {
    rig.image.SetU8(0x0366, 0);
    rig.AGL(agl);
    for (int i = 0; i < ticks; ++i) {
      lon_ -= 0.002;
      rig.Position(47.25, lon_);
      rig.Tick();
    }
  }
  const RunwayChoice& runways() const { return rig.flight().Runways; }
  static std::string Name(const Runway* r) { return r ? r->ICAO + " " + r->Number : "none"; }

  FlightRig rig;

 private:
  double lon_ = 11.42;
};

TEST(RunwayChoice, TheNearestRunwayIsFoundEvery32ndTick) {
  Valley v;
  v.FlyWest(900, 31);
  EXPECT_EQ(Valley::Name(v.runways().NearestRunway), "none");
  v.FlyWest(900, 1);
  EXPECT_EQ(Valley::Name(v.runways().NearestRunway), "LOWI 08");
}

TEST(RunwayChoice, ComingDownThrough500FeetPicksTheRunwayAheadAndAligned) {
  Valley v;
  auto landing = [&] { return Valley::Name(v.runways().LandingRunway); };
  v.FlyWest(900, 8);
  EXPECT_EQ(landing(), "none");
  v.FlyWest(520, 2);  // not yet below
  EXPECT_EQ(landing(), "none");
  // The nearer end faces the other way: the one the pilot lines up with is 26.
  v.FlyWest(450, 1);
  EXPECT_EQ(landing(), "LOWI 26");
  // Straight ahead, seen from a nose pointing north: to the left.
  EXPECT_EQ(v.runways().RunwayHeadingRelative, -90);
  v.FlyWest(900, 4);  // a go-around keeps it
  EXPECT_EQ(landing(), "LOWI 26");
}

TEST(RunwayChoice, TheNearestAirportIsAnnouncedOnceWhenAskedForAndHighEnough) {
  struct Row {
    std::string name;
    bool option;
    double agl;
    int announcements;
  };
  const std::vector<Row> rows = {
      {"option on, above 800 ft", true, 900, 1},
      {"option off", false, 900, 0},
      {"too low", true, 780, 0},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    Valley v(row.option);
    v.FlyWest(row.agl, 60);  // the working set is there from tick 32
    const std::string queued = v.rig.Queued();
    int said = 0;
    for (size_t at = queued.find("Bearing.wav"); at != std::string::npos;
         at = queued.find("Bearing.wav", at + 1))
      ++said;
    EXPECT_EQ(said, row.announcements);
  }
}

// Honolulu from the delivered world data: runway 08L has the ILS on 111.70;
// Pearl Harbor's seaplane lanes lie 1.5 nm from its final approach.
const std::string kHonolulu =
    "08L|90|N21_19_51|W157_56_59|3|PHNL.08L|13|12273|150|111.70|IHNL|ASPHALT|127.90|90|21.325244|"
    "-157.907094||Honolulu Intl|0|21.325247|-157.943233\r\n"
    "26R|270|N21_19_51|W157_54_43|3|PHNL.26R|13|12273|150|||ASPHALT|127.90|0|21.325247|-157.943233|"
    "|Honolulu Intl|0|21.325244|-157.907094\r\n"
    "04R|53|N21_18_84|W157_55_63|3|PHNL.04R|13|9000|150|110.50|IIUM|ASPHALT|127.90|53|21.328822|"
    "-157.906011||Honolulu Intl|0|21.313917|-157.927136\r\n"
    "22L|233|N21_19_73|W157_54_36|3|PHNL.22L|13|9000|150|||ASPHALT|127.90|0|21.313917|-157.927136|"
    "|Honolulu Intl|0|21.328822|-157.906011\r\n"
    "36|360|N21_18_15|W157_58_20|3|QPHB.36|0|5000|5000|||WATER||0|21.316174|-157.970016||"
    "Pearl Harbor|0|21.302460|-157.970016\r\n"
    "18|180|N21_18_97|W157_58_20|3|QPHB.18|0|5000|5000|||WATER||0|21.302460|-157.970016||"
    "Pearl Harbor|0|21.316174|-157.970016\r\n"
    "H1|0|N21_18_97|W157_58_20|3|QPHB.H1|0|100|100|||CONCRETE||0|0|0||Pearl Harbor|0|21.31|"
    "-157.975\r\n";

TEST(RunwayChoice, TheApproachTakesTheTunedILSThenTheRunwayAheadAndNeverWaterForALandPlane) {
  struct Row {
    std::string name;
    double startMiles;  // west of the 08L threshold, flying east along its centre line
    int heading;        // the direction flown
    bool ilsTuned, floatPlane;
    std::string runway, reason, obs;  // obs: the NAV1 OBS the instructor writes
    std::string plan = "";            // the flight plan's destination
  };
  // clang-format off
  const std::vector<Row> rows = {
      {"down the localiser, 3 nm out", 3, 90, true, false, "PHNL 08L", "ils", "5A00"},
      {"the same, not tuned: the runway ahead", 3, 90, false, false, "PHNL 08L", "ahead", "5A00"},
      {"flying north past the seaplane lanes, not tuned", 2.5, 0, false, false, "PHNL 04R", "wind", "3500"},
      {"the same in a float plane", 2.5, 0, false, true, "QPHB 36", "wind", "6801"},
      {"the float plane's plan ends at Honolulu", 2.5, 0, false, true, "PHNL 04R", "plan", "3500", "PHNL"},
  };
  // clang-format on
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    FlightRig rig;
    WriteFile(rig.dir_ / "FSX.RWY", kHonolulu);
    rig.instructor.aircraft.Raw.FloatPlane = row.floatPlane;
    rig.instructor.plan.FlightPlanDestination = row.plan;
    rig.image.SetU16(0x0EF2, 0);  // a north wind: Pearl Harbor's 36 faces it
    rig.image.SetU16(0x0EF0, 10);
    if (row.ilsTuned) rig.image.SetU16(0x0350, 0x1170);  // NAV1 on 111.70
    const double kMilesPerDegree = 60 * std::cos(21.325 * M_PI / 180);
    double lat = 21.325247, lon = -157.943233 - row.startMiles / kMilesPerDegree;
    rig.Position(lat, lon);
    rig.image.SetU8(0x0366, 0);
    rig.AGL(1500);
    ASSERT_TRUE(rig.instructor.Connect());
    rig.Mark();
    for (int i = 0; i < 8; ++i) {  // in Cruise, long enough for a ground track
      (row.heading == 90 ? lon : lat) += 0.0003;
      rig.Position(lat, lon);
      rig.Tick();
    }
    rig.AGL(900);
    rig.Fly({.key = 7});  // the approach begins
    EXPECT_EQ(rig.Texts("runway", "ident"), row.runway);
    EXPECT_EQ(rig.Texts("runway", "reason"), row.reason);
    std::string obs;
    for (const Event& e : rig.Since("write"))
      if (e.Text("offset") == "0x0C4E") obs = e.Text("bytes");
    EXPECT_EQ(obs, row.obs);
  }
}

}  // namespace
}  // namespace vantoro
