#include "records/flight_log.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "base/files.h"
#include "base/text.h"
#include "records/log_book.h"

namespace vantoro {
namespace {

namespace fs = std::filesystem;

class FlightLogFiles : public ::testing::Test {
 protected:
  void SetUp() override {
    const auto* test = ::testing::UnitTest::GetInstance()->current_test_info();
    dir_ = fs::temp_directory_path() / (std::string("vantoro-log-") + test->name());
    fs::remove_all(dir_);
    fs::create_directories(dir_);
  }
  void TearDown() override { fs::remove_all(dir_); }
  std::string Path(const std::string& name) const { return (dir_ / name).string(); }
  void Put(const std::string& name, const std::string& bytes) const {
    std::ofstream(dir_ / name, std::ios::binary) << bytes;
  }
  std::vector<std::string> Lines(const std::string& name) const {
    std::string text = ReadFile(Path(name));
    std::vector<std::string> lines;
    size_t start = 0, end;
    while ((end = text.find("\r\n", start)) != std::string::npos) {
      lines.push_back(text.substr(start, end - start));
      start = end + 2;
    }
    EXPECT_EQ(start, text.size()) << "every row ends in CR LF";
    return lines;
  }

  fs::path dir_;
  FixedClock clock_{WallTime{2026, 11, 22, 14, 5, 30}};
};

// A flight as the log would hold it: a light single that landed.
FlightStats Landed() {
  FlightStats f;
  f.Aircraft = "Cessna Skyhawk";
  f.TookOff = true;
  f.LandingHasReachedEvaluationStage = true;
  f.LandingRating = 87.5;
  f.FlightDuration = 1234;
  f.FlightDistance = 123456.789012;
  f.ExceedBankLeft = 2;
  f.NotUseTrimmers = 17;
  f.Day = 1200.5;
  f.BlockTime = 1500;
  return f;
}

FSData Parked() {
  FSData d;
  d.Heading = 271;
  d.GearDown = true;
  d.VS = -10;
  d.AtcType = "C172";
  d.AtcIdentifier = "N172SP";
  return d;
}

TEST_F(FlightLogFiles, FirstFlightOfAPilotAndBlankFilesStartWithTheHeader) {
  struct Case {
    const char* what;
    const char* existing;  // nullptr: no file
  };
  const Case cases[] = {{"no file yet", nullptr}, {"blanks only", "  \r\n \r\n"}, {"empty", ""}};
  for (const Case& c : cases) {
    fs::remove(dir_ / "Kate.dat");
    if (c.existing != nullptr) Put("Kate.dat", c.existing);
    const std::string line =
        DispFlightEvaluation(Path("Kate.dat"), Landed(), Parked(),
                             LogRowInputs{75.25, 100.6, 0, "FSX", "EGLL", "EGKK"}, clock_);
    const auto lines = Lines("Kate.dat");
    ASSERT_EQ(lines.size(), 2u) << c.what;
    const auto header = Split(lines[0], '\t');
    ASSERT_EQ(header.size(), 109u) << c.what;
    EXPECT_EQ(header[0], "Date");
    EXPECT_EQ(header[36], "Aircraft");
    EXPECT_EQ(header[106], "Block Time");
    EXPECT_EQ(header[108], "VNTR_Version");
    EXPECT_EQ(lines[1], line) << c.what;
    EXPECT_EQ(Split(lines[1], '\t').size(), 109u) << c.what;
    EXPECT_TRUE(StartsWith(lines[1], "2211261405\t0\t87.5\t")) << c.what;
  }
}

TEST_F(FlightLogFiles, LaterFlightsAppendAndKeepEveryRow) {
  Put("Kate.dat", "");
  DispFlightEvaluation(Path("Kate.dat"), Landed(), Parked(), {}, clock_);
  clock_.Set(WallTime{2026, 11, 23, 9, 0, 0});
  DispFlightEvaluation(Path("Kate.dat"), Landed(), Parked(), {}, clock_);
  const auto lines = Lines("Kate.dat");
  ASSERT_EQ(lines.size(), 3u);
  EXPECT_TRUE(StartsWith(lines[2], "2311260900\t"));
  // A log whose last row lost its line end keeps it whole.
  Put("Old.dat", "Date\tCrashed\r\n0101260000\t1");
  WriteLogFile(Path("Old.dat"), "0\r\n", clock_);
  EXPECT_EQ(ReadFile(Path("Old.dat")), "Date\tCrashed\r\n0101260000\t1\r\n2311260900\t0\r\n");
  EXPECT_FALSE(fs::exists(dir_ / "Old.dat.tmp~"));
}

TEST_F(FlightLogFiles, ColumnsOfTheRowAsThePilotLogWindowReadsThem) {
  struct Case {
    const char* what;
    std::function<void(FlightStats&, FSData&, LogRowInputs&)> change;
    std::vector<std::pair<int, std::string>> columns;
  };
  const std::vector<Case> cases = {
      {"a landed flight",
       [](FlightStats&, FSData&, LogRowInputs&) {},
       {{1, "0"},
        {2, "87.5"},
        {5, "1"},
        {6, "271"},
        {14, "-10"},
        {21, "2"},
        {36, "Cessna Skyhawk"},
        {37, "1"},
        {38, "1"},
        {39, "1234"},
        {43, "123456.789"},
        {90, "17"},
        {93, "75.25"},
        {94, "100.6"},
        {95, "0"},
        {96, "FSX"},
        {97, "C172"},
        {98, "N172SP"},
        {101, "EGLL"},
        {102, "EGKK"},
        {103, "1200.5"},
        {106, "1500"},
        {108, VANTORO_VERSION}}},
      {"reserved columns stay 0 in the format",
       [](FlightStats&, FSData&, LogRowInputs&) {},
       {{40, "0"}, {41, "0"}, {42, "0"}, {107, "0"}}},
      {"a flight that ended in the air",
       [](FlightStats& f, FSData&, LogRowInputs& in) {
         f.LandingRating = 0;
         f.LandingHasReachedEvaluationStage = false;
         in.LandingScore = 0;
       },
       {{2, "0"}, {37, "1"}, {38, "0"}, {93, "0"}}},
      {"a crash",
       [](FlightStats& f, FSData&, LogRowInputs& in) {
         f.FlightCrashed = true;
         in.FlightScore = 0;
       },
       {{1, "1"}, {94, "0"}}},
      {"block clock never started, or day 0 in the simulator",
       [](FlightStats& f, FSData&, LogRowInputs&) { f.BlockTime = -2; },
       {{106, "-2"}}},
  };
  for (const Case& c : cases) {
    FlightStats f = Landed();
    f.FlightDistance = 123456.789;
    FSData live = Parked();
    LogRowInputs in{75.25, 100.6, 0, "FSX", "EGLL", "EGKK"};
    c.change(f, live, in);
    const auto cols = Split("date\t" + FlightLogRow(f, live, in), '\t');
    ASSERT_EQ(cols.size(), 109u) << c.what;
    for (const auto& [index, text] : c.columns)
      EXPECT_EQ(cols[static_cast<size_t>(index)], text) << c.what << " column " << index;
  }
  // Currency keeps four decimals at most.
  FlightStats f = Landed();
  EXPECT_EQ(Split("d\t" + FlightLogRow(f, Parked(), {}), '\t')[43], "123456.789");
  f.FlightDistance = 0.123456;
  EXPECT_EQ(Split("d\t" + FlightLogRow(f, Parked(), {}), '\t')[43], "0.1235");
}

TEST_F(FlightLogFiles, ReaderFiltersByAircraftAndTearsTitlesWithCommas) {
  Put("Kate.dat", "");
  FlightStats cessna = Landed();
  FlightStats baron = Landed();
  baron.Aircraft = "Beech Baron 58";
  FlightStats torn = Landed();
  torn.Aircraft = "Baron, Float";
  DispFlightEvaluation(Path("Kate.dat"), cessna, Parked(), {}, clock_);
  DispFlightEvaluation(Path("Kate.dat"), baron, Parked(), {}, clock_);
  DispFlightEvaluation(Path("Kate.dat"), torn, Parked(), {}, clock_);

  struct Case {
    const char* filter;
    size_t rows;
  };
  // The torn row becomes two items: "Baron" ends the first, the rest of the
  // row is the second; neither carries a whole title.
  const Case cases[] = {{"", 4},
                        {"- ALL -", 4},
                        {"Cessna Skyhawk", 1},
                        {"Beech Baron 58", 1},
                        {"Baron, Float", 0},
                        {"Baron", 1}};
  for (const Case& c : cases) {
    const auto log = ReadFlightLog(Path("Kate.dat"), c.filter);
    ASSERT_TRUE(log.has_value());
    EXPECT_EQ(log->Header[36], "Aircraft");
    EXPECT_EQ(log->Rows.size(), c.rows) << c.filter;
  }
  const auto log = ReadFlightLog(Path("Kate.dat"), "Cessna Skyhawk");
  const LogEntry& e = log->Rows.at(0);
  EXPECT_EQ(e.Type, "C172      ");
  EXPECT_EQ(e.Ident, "N172SP ");
  EXPECT_EQ(e.Day, "1200.");
  EXPECT_EQ(e.Night, "0    ");
  EXPECT_EQ(e.DateDay, "22");
  EXPECT_EQ(e.DateMonth, "November");
  EXPECT_EQ(e.DateYear, "26");
  EXPECT_FALSE(ReadFlightLog(Path("Nobody.dat"), "").has_value());
}

TEST_F(FlightLogFiles, LogBookIsWrittenThenExtended) {
  const std::string first = "<b>Flight Score: 100.60</b>";
  const std::string second = "<b>Flight Score: 88.00</b>";
  struct Case {
    const char* what;
    const char* existing;
    std::string want;
  };
  const std::string fresh =
      "<html><head>\r\n  <title>Vantoro Pilot's Log Book</title>\r\n"
      "  <style>body { font-family: Arial; }</style>\r\n</head>\r\n<body>\r\n" +
      first + "\r\n</body></html>";
  const Case cases[] = {
      {"a new book", "", fresh},
      {"blanks are no book", " \r\n", fresh},
      {"an entry goes before the closing tags", "<html><body>\r\nold\r\n</body></html>",
       "<html><body>\r\nold\r\n<br><br><hr><br>\r\n" + first + "\r\n</body></html>"},
      {"a book that lost its closing tags loses nothing", "<html><body>\r\nold",
       "<html><body>\r\nold<br><br><hr><br>\r\n" + first + "\r\n</body></html>"},
  };
  for (const Case& c : cases) EXPECT_EQ(ExtendLogBook(c.existing, first), c.want) << c.what;

  ASSERT_TRUE(WriteLogBook(Path("Kate.htm"), first));
  ASSERT_TRUE(WriteLogBook(Path("Kate.htm"), second));
  const std::string book = ReadFile(Path("Kate.htm"));
  EXPECT_EQ(book, fresh.substr(0, fresh.size() - 14) + "<br><br><hr><br>\r\n" + second +
                      "\r\n</body></html>");
}

TEST(FlightLogPaths, LogFilesLieBesideThePilotsFile) {
  EXPECT_EQ(GetPilotFile("C:\\Vantoro\\PilotRoster\\Kate.plt", ".dat"),
            "C:\\Vantoro\\PilotRoster\\Kate.dat");
  EXPECT_EQ(GetPilotFile("/tmp/out/LightSpeed.plt", ".htm"), "/tmp/out/LightSpeed.htm");
}

}  // namespace
}  // namespace vantoro
