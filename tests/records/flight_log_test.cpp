#include "records/flight_log.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <functional>

#include "base/files.h"
#include "base/text.h"
#include "records/log_book.h"

namespace vantoro {
namespace {

namespace fs = std::filesystem;

class FlightLogFiles : public ::testing::Test {
 protected:
  void SetUp() override {
    dir_ = fs::temp_directory_path() /
           (std::string("vantoro-log-") +
            ::testing::UnitTest::GetInstance()->current_test_info()->name());
    fs::remove_all(dir_);
    fs::create_directories(dir_);
  }
  void TearDown() override { fs::remove_all(dir_); }
  std::string Path(const std::string& name) const { return (dir_ / name).string(); }
  void Put(const std::string& name, const std::string& bytes) const {
    std::ofstream(dir_ / name, std::ios::binary) << bytes;
  }

  fs::path dir_;
  FixedClock clock_{WallTime{2026, 11, 22, 14, 5, 30}};
};

// A light single that landed, as the log holds it.
FlightStats Landed() {
  FlightStats f;
  f.Aircraft = "Cessna Skyhawk";
  f.TookOff = f.LandingHasReachedEvaluationStage = true;
  f.LandingRating = 87.5;
  f.FlightDuration = 1234;
  f.FlightDistance = 0.123456;
  f.NotUseTrimmers = 17;
  f.Day = 1200.5;
  f.BlockTime = 1500;
  return f;
}

FSData Parked() {
  FSData d;
  d.Heading = 271;
  d.GearDown = true;
  d.AtcType = "C172";
  d.AtcIdentifier = "N172SP";
  return d;
}

TEST_F(FlightLogFiles, FirstFlightStartsTheFileWithItsHeaderAndLaterOnesAppend) {
  for (const char* existing : {"", "  \r\n \r\n", "missing"}) {
    fs::remove(dir_ / "Kate.dat");
    if (std::string(existing) != "missing") Put("Kate.dat", existing);
    const std::string line = DispFlightEvaluation(Path("Kate.dat"), Landed(), Parked(), {}, clock_);
    const auto lines = Split(ReadFile(Path("Kate.dat")), '\n');
    ASSERT_EQ(lines.size(), 3u) << existing;  // header, row, nothing after the last CR LF
    EXPECT_EQ(Split(lines[0], '\t').size(), 109u);
    EXPECT_TRUE(StartsWith(lines[0], "Date\tCrashed\tLandingRating\tBank\t"));
    EXPECT_EQ(lines[1], line + "\r");
    EXPECT_TRUE(StartsWith(line, "2211261405\t0\t87.5\t")) << line;
  }
  clock_.Set(WallTime{2026, 11, 23, 9, 0, 0});
  DispFlightEvaluation(Path("Kate.dat"), Landed(), Parked(), {}, clock_);
  EXPECT_TRUE(StartsWith(Split(ReadFile(Path("Kate.dat")), '\n')[2], "2311260900\t"));
  // A log whose last row lost its line end keeps that row whole.
  Put("Old.dat", "Date\tCrashed\r\n0101260000\t1");
  WriteLogFile(Path("Old.dat"), "0\r\n", clock_);
  EXPECT_EQ(ReadFile(Path("Old.dat")), "Date\tCrashed\r\n0101260000\t1\r\n2311260900\t0\r\n");
}

TEST(FlightLogRow, ColumnsAsThePilotLogWindowReadsThem) {
  using Change = std::function<void(FlightStats&, LogRowInputs&)>;
  struct Case {
    const char* what;
    Change change;
    std::vector<std::pair<int, std::string>> columns;
  };
  const std::vector<Case> cases = {
      {"a landed flight",
       [](FlightStats&, LogRowInputs&) {},
       {{1, "0"},
        {2, "87.5"},
        {5, "1"},
        {6, "271"},
        {36, "Cessna Skyhawk"},
        {37, "1"},
        {39, "1234"},
        {43, "0.1235"},
        {90, "17"},
        {93, "75.25"},
        {94, "100.6"},
        {96, "FSX"},
        {97, "C172"},
        {101, "EGLL"},
        {103, "1200.5"},
        {106, "1500"},
        {108, VANTORO_VERSION}}},
      {"ended in the air",
       [](FlightStats& f, LogRowInputs& in) {
         f.LandingRating = 0, f.LandingHasReachedEvaluationStage = false, in.LandingScore = 0;
       },
       {{2, "0"}, {37, "1"}, {38, "0"}, {93, "0"}}},
      {"a crash",
       [](FlightStats& f, LogRowInputs& in) { f.FlightCrashed = true, in.FlightScore = 0; },
       {{1, "1"}, {94, "0"}}},
  };
  for (const Case& c : cases) {
    FlightStats f = Landed();
    LogRowInputs in{75.25, 100.6, 0, "FSX", "EGLL", "EGKK"};
    c.change(f, in);
    const auto cols = Split("date\t" + FlightLogRow(f, Parked(), in), '\t');
    ASSERT_EQ(cols.size(), 109u) << c.what;
    for (const auto& [i, text] : c.columns) EXPECT_EQ(cols[size_t(i)], text) << c.what << " " << i;
  }
}

TEST_F(FlightLogFiles, ReaderFiltersByAircraftAndTearsTitlesWithCommas) {
  for (const char* title : {"Cessna Skyhawk", "Beech Baron 58", "Baron, Float"}) {
    FlightStats f = Landed();
    f.Aircraft = title;
    DispFlightEvaluation(Path("Kate.dat"), f, Parked(), {}, clock_);
  }
  // The torn row is two items: "Baron" ends the first, the rest is the second.
  const std::pair<const char*, size_t> cases[] = {
      {"", 4}, {"- ALL -", 4}, {"Beech Baron 58", 1}, {"Baron, Float", 0}, {"Baron", 1}};
  for (const auto& [filter, rows] : cases)
    EXPECT_EQ(ReadFlightLog(Path("Kate.dat"), filter)->Rows.size(), rows) << filter;
  const LogEntry e = ReadFlightLog(Path("Kate.dat"), "Cessna Skyhawk")->Rows.at(0);
  EXPECT_EQ(e.Type + "|" + e.Ident + "|" + e.Day + "|" + e.Night, "C172      |N172SP |1200.|0    ");
  EXPECT_EQ(e.DateDay + " " + e.DateMonth + " " + e.DateYear, "22 November 26");
  EXPECT_FALSE(ReadFlightLog(Path("Nobody.dat"), "").has_value());
}

TEST(LogBook, WrittenNewOrExtendedBeforeItsClosingTags) {
  const std::string entry = "<b>Flight Score:100.60</b>";
  const std::string fresh =
      "<html><head>\r\n  <title>Vantoro Pilot's Log Book</title>\r\n"
      "  <style>body { font-family: Arial; }</style>\r\n</head>\r\n<body>\r\n" +
      entry + "\r\n</body></html>";
  const std::string added = "<br><br><hr><br>\r\n" + entry + "\r\n</body></html>";
  const std::pair<std::string, std::string> cases[] = {
      {"", fresh},
      {" \r\n", fresh},
      {"<html><body>\r\nold\r\n</body></html>", "<html><body>\r\nold\r\n" + added},
      {"<html><body>\r\nold", "<html><body>\r\nold" + added},  // lost its tags: loses nothing
  };
  for (const auto& [existing, want] : cases) EXPECT_EQ(ExtendLogBook(existing, entry), want);
}

}  // namespace
}  // namespace vantoro
