#include "records/crash_report.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>

#include "base/files.h"
#include "records/markup.h"

namespace vantoro {
namespace {

// A light single sinking fast over land, the tick before the wreck.
CrashScene Scene() {
  CrashScene s{"Kate", "Cessna Skyhawk", WallTime{2026, 11, 22, 14, 5, 0}, {}, false, 0, "EGLL",
               "EGKK"};
  FSData& b = s.Before;
  b.VS = -2400, b.AGL = 35.6, b.Bank = -25, b.GS = 98, b.IAS = 105, b.Pitch = -12;
  b.BarberPole = 160, b.Com1Freq = 2345, b.Squawk = 0x2000, b.Visibility = 9.6;
  b.Engines = 1, b.Eng1Combustion = true, b.Nav1Freq = 110.5, b.AtcIdentifier = "N172SP";
  return s;
}

bool Has(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

TEST(CrashReport, FindingsOfTheBoard) {
  EXPECT_EQ(RemoveMarkup(CrashReport(Scene())),
            "Kate piloting Cessna Skyhawk ended Sunday, November 22, 2026 at 14:05\r\n"
            "Aircraft: Cessna Skyhawk    ID: N172SP    Airline:     Flight: \r\n"
            "Flight plan: EGLL TO EGKK    NAV1: 110.50\r\n\r\n"
            "AIRCRAFT CRASHED\r\nNational Aeronautical Safety Board Findings:\r\n"
            "* Vertical Speed: -2400 fpm\r\n* AGL: 36 feet\r\n* Bank: -25 degrees\r\n"
            "* Ground Speed: 98 kts\r\n* IAS: 105 kts\r\n* Pitch: -12 degrees\r\n"
            "* COM1: Standard\r\n* AutoPilot: Off\r\n* Visibility: 10 nm\r\n* Eng1: Running\r\n"
            "Airborne immediately prior to crash\r\n");

  struct Case {
    const char* what;
    std::function<void(CrashScene&)> change;
    std::string seen;
    std::string unseen;
  };
  const std::vector<Case> cases = {
      {"7700", [](CrashScene& s) { s.Before.Squawk = 0x7700; }, "* Transponder: Emergency\r\n", ""},
      {"121.50", [](CrashScene& s) { s.Before.Com1Freq = 2150; }, "* COM1: Emergency", ""},
      {"past the barber pole", [](CrashScene& s) { s.Before.IAS = 161; }, "* Overspeed\r\n", ""},
      {"no barber pole given", [](CrashScene& s) { s.Before.BarberPole = 0; }, "", "Overspeed"},
      {"retractable gear down too fast",
       [](CrashScene& s) { s.RetractableGear = s.Before.GearDown = true, s.GearSpeedLimit = 100; },
       "* Gear: Down\r\n* Gear extension speed exceeded\r\n", ""},
      {"a twin on fire", [](CrashScene& s) { s.Before.Engines = 2, s.Before.Eng2OnFire = true; },
       "* Eng1: Running\r\n* Eng2: Stopped On Fire\r\n", "Eng3"},
      {"stalled on the ground over water",
       [](CrashScene& s) {
         s.Before.OnGround = 1, s.Before.StallWarning = true, s.Before.SurfaceType = 2;
       },
       "On Ground immediately prior to crash\r\n* Stalled\r\n* In/Over Water\r\n", "Airborne"},
  };
  for (const Case& c : cases) {
    CrashScene s = Scene();
    c.change(s);
    const std::string report = CrashReport(s);
    EXPECT_TRUE(Has(report, c.seen)) << c.what;
    if (!c.unseen.empty()) {
      EXPECT_FALSE(Has(report, c.unseen)) << c.what;
    }
  }
}

TEST(CrashReport, LogBookHtmlWithoutAPictureKeepsTheValuesAlone) {
  const std::string html =
      ApplyMarkup(CrashReport(Scene()), {"Vantoro v0.1.0", "FSX", 9.6, 12, ""});
  EXPECT_FALSE(Has(html, "STATS"));
  EXPECT_FALSE(Has(html, "<table"));
  EXPECT_TRUE(Has(html,
                  "</font><br>\r\nVantoro v0.1.0<br>Using: FSX<br>Visibility: 9.60 Miles "
                  "&nbsp;&nbsp;&nbsp;&nbsp;Wind: 12 Knots<br>Aircraft: Cessna Skyhawk"));
  EXPECT_TRUE(Has(html, "Findings:</b><ul><br>\r\n<li>Vertical Speed: -2400 fpm<br>"));
}

TEST(ScoreLinks, MarkersAreLeftOnceWhenAScoreFirstPassesItsMark) {
  namespace fs = std::filesystem;
  const fs::path dir = fs::temp_directory_path() / "vantoro-score-links";
  fs::remove_all(dir);
  fs::create_directories(dir);
  const std::string root = dir.string() + "/";
  ScoreLinkInputs in{70, 80, 0, "FSX", 9.5, "Cessna Skyhawk"};
  EXPECT_TRUE(
      Has(GenerateScoreLinks(root, in),
          "/SubmitFSScore.asp?sc=070.00&ver=FSX&aircraft=Cessna%20Skyhawk&visibility=9.50"));
  EXPECT_FALSE(fs::exists(dir / "Vantoro.xml") || fs::exists(dir / "Orlenhaus.xml"));
  in.LandingScore = 70.01;
  GenerateScoreLinks(root, in);
  const std::string first = ReadFile(root + "Vantoro.xml");
  EXPECT_FALSE(first.empty());
  EXPECT_FALSE(fs::exists(dir / "Orlenhaus.xml"));
  in.LandingScore = 95, in.FlightScore = 80.5;
  GenerateScoreLinks(root, in);
  EXPECT_EQ(ReadFile(root + "Vantoro.xml"), first);  // left once, never rewritten
  EXPECT_TRUE(fs::exists(dir / "Orlenhaus.xml"));
  fs::remove_all(dir);
}

}  // namespace
}  // namespace vantoro
