#include <gtest/gtest.h>

#include <filesystem>

#include "base/ini.h"
#include "world/temp_folder.h"

namespace vantoro {
namespace {

TEST(INIValueNumber, EitherDecimalSeparatorAndNothingElse) {
  const std::pair<const char*, std::optional<double>> cases[] = {
      {"12.5", 12.5}, {"12,5", 12.5}, {" -3 ", -3.0}, {"+4", 4.0}, {".5", 0.5},  {"1.2.3", {}},
      {"1,2.3", {}},  {"", {}},       {"-", {}},      {"1e3", {}}, {"12 5", {}}, {"ten", {}},
  };
  for (const auto& [text, want] : cases) EXPECT_EQ(INIValueNumber(text), want) << text;
}

TEST(QuoteINIValue, WhatIsWrittenComesBackWhole) {
  for (const char* value : {"Smith, John", "C:\\FSX\\", "a;b", "http://x", "plain", ""}) {
    const auto entries = ParseINIText("key=" + QuoteINIValue(value), true);
    ASSERT_EQ(entries.size(), 1u) << value;
    EXPECT_EQ(entries[0].Value, value);
  }
}

TEST(ParseINIText, EveryKindOfLineEnd) {
  const auto entries = ParseINIText("[a]\rx=1\r\ny=2\n\rz=3", false);
  ASSERT_EQ(entries.size(), 3u);
  EXPECT_EQ(GetValueFromINI(entries, "a", "z").Value, "3");
  EXPECT_EQ(entries[2].Line, 5);  // the LF and the CR after it end two lines
}

TEST(AircraftSelection, FlatFileReadAndRewritten) {
  TempFolder dir;
  const std::string file = dir.Root() + "Aircraft.dat";
  EXPECT_EQ(LoadAircraftSelection(file, "Cessna"), "-1");  // no file yet
  dir.Write("Aircraft.dat", "Cessna 172=1\nCESSNA=2\r\nLear=fast\r\ncessna=0\r\n");
  EXPECT_EQ(LoadAircraftSelection(file, "cessna"), "2");  // the first line of the key
  EXPECT_EQ(LoadAircraftSelection(file, "Lear"), "-1");   // not numeric
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
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir.Root()), {}), 1);  // no temporary
  EXPECT_FALSE(WriteINIFile(dir.Root() + "missing/settings.ini", "x"));
}

}  // namespace
}  // namespace vantoro
