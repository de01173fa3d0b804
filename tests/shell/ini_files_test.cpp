#include <gtest/gtest.h>

#include <filesystem>

#include "base/ini.h"
#include "world/temp_folder.h"

namespace vantoro {
namespace {

TEST(INIValueNumber, EitherDecimalSeparatorNothingElse) {
  struct Case {
    const char* text;
    std::optional<double> want;
  };
  const Case cases[] = {
      {"12.5", 12.5}, {"12,5", 12.5}, {" -3 ", -3.0}, {"+4", 4.0},  {".5", 0.5},
      {"7.", 7.0},    {"1.2.3", {}},  {"1,2.3", {}},  {"", {}},     {"-", {}},
      {".", {}},      {"1e3", {}},    {"12 5", {}},   {"0x10", {}}, {"ten", {}},
  };
  for (const Case& c : cases) EXPECT_EQ(INIValueNumber(c.text), c.want) << c.text;
}

TEST(QuoteINIValue, WhatIsWrittenComesBackWhole) {
  for (const char* value : {"Smith, John", "C:\\FSX\\", "a;b", "http://x", "plain", "",
                            "C:\\Program Files (x86)\\Steam\\FSX\\"}) {
    const std::string line = "key=" + QuoteINIValue(value);
    const auto entries = ParseINIText(line, true);
    ASSERT_EQ(entries.size(), 1u) << value;
    EXPECT_EQ(entries[0].Value, value) << line;
  }
  EXPECT_EQ(QuoteINIValue("plain"), "plain");  // ordinary values stay as they are
}

TEST(ParseINIText, EveryKindOfLineEnd) {
  const auto entries = ParseINIText("[a]\rx=1\r\ny=2\n\rz=3", false);
  ASSERT_EQ(entries.size(), 3u);
  EXPECT_EQ(GetValueFromINI(entries, "a", "z").Value, "3");
  EXPECT_EQ(entries[2].Line, 5);  // the LF and the CR after it are two line ends
}

TEST(AircraftSelection, FlatFileReadAndRewritten) {
  TempFolder dir;
  const std::string file = dir.Root() + "Aircraft.dat";
  EXPECT_EQ(LoadAircraftSelection(file, "Cessna"), "-1");  // no file yet
  dir.Write("Aircraft.dat", "Cessna 172=1\nCESSNA=2\r\nLear=fast\r\ncessna=0\r\n");
  EXPECT_EQ(LoadAircraftSelection(file, "cessna"), "2");  // the first line of the key
  EXPECT_EQ(LoadAircraftSelection(file, "Cessna 172"), "1");
  EXPECT_EQ(LoadAircraftSelection(file, "Lear"), "-1");  // not numeric
  EXPECT_EQ(LoadAircraftSelection(file, "Lear", "0"), "0");
  EXPECT_EQ(LoadAircraftSelection(file, "Cess"), "-1");

  EXPECT_TRUE(SaveAircraftSelection(file, "Cessna", "1"));
  EXPECT_TRUE(SaveAircraftSelection(file, "Baron", "2"));
  EXPECT_EQ(dir.Read("Aircraft.dat"),
            "Cessna 172=1\r\nCessna=1\r\nLear=fast\r\ncessna=0\r\nBaron=2\r\n");
}

TEST(WriteINIFile, ReplacesTheFileWholeOrNotAtAll) {
  TempFolder dir;
  const std::string file = dir.Write("settings.ini", "old text that is longer");
  EXPECT_TRUE(WriteINIFile(file, "new"));
  EXPECT_EQ(dir.Read("settings.ini"), "new");
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir.Root()),
                          std::filesystem::directory_iterator()),
            1);  // no temporary file left behind
  EXPECT_FALSE(WriteINIFile(dir.Root() + "missing/settings.ini", "x"));
}

}  // namespace
}  // namespace vantoro
