#include "base/files.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

namespace vantoro {
namespace {

namespace fs = std::filesystem;

class FilesTest : public ::testing::Test {
 protected:
  void SetUp() override {
    dir_ = fs::temp_directory_path() /
           ("vantoro-files-" + std::to_string(::testing::UnitTest::GetInstance()->random_seed()) +
            "-" + ::testing::UnitTest::GetInstance()->current_test_info()->name());
    fs::remove_all(dir_);
    fs::create_directories(dir_ / "Sound" / "Kate" / "c172");
    std::ofstream(dir_ / "Sound" / "Kate" / "c172" / "Touchdown.wav") << "RIFF";
  }
  void TearDown() override { fs::remove_all(dir_); }
  std::string Root() const { return dir_.string() + "/"; }
  fs::path dir_;
};

TEST_F(FilesTest, FindsFilesWhateverTheCaseAndSeparator) {
  EXPECT_TRUE(FileExists(Root() + "Sound\\Kate\\c172\\Touchdown.wav"));
  EXPECT_TRUE(FileExists(Root() + "SOUND\\kate\\C172\\TOUCHDOWN.WAV"));
  EXPECT_FALSE(FileExists(Root() + "Sound\\Kate\\c172\\Missing.wav"));
  EXPECT_TRUE(FolderExists(Root() + "sound\\KATE"));
  EXPECT_FALSE(FileExists(Root() + "Sound\\Kate"));  // a folder is no file
}

TEST_F(FilesTest, AtomicWriteReplacesWholeAndLeavesNoTemporary) {
  const std::string path = Root() + "settings.ini";
  ASSERT_TRUE(WriteFileAtomic(path, "first version, rather long\r\n"));
  ASSERT_TRUE(WriteFileAtomic(path, "second\r\n"));
  EXPECT_EQ(ReadFile(path), "second\r\n");
  for (const auto& e : fs::directory_iterator(dir_))
    EXPECT_EQ(e.path().filename().string().find("tmp~"), std::string::npos);
  EXPECT_FALSE(WriteFileAtomic(Root() + "no-such-folder/x.ini", "x"));
}

// A set of files is written whole or not at all; a failure names the file
// and the system's reason, and the old files stand.
TEST_F(FilesTest, FilesWrittenTogetherAreAllWrittenOrNone) {
  struct Case {
    const char* what;
    const char* blocker;  // a folder made where this file belongs
    std::string want;     // the answer after the root
  };
  const Case cases[] = {
      {"both written", nullptr, ""},
      {"the log book is a folder", "Kate.htm", "Kate.htm: cannot be written (Is a directory)"},
      {"the log is a folder", "Kate.dat", "Kate.dat: cannot be written (Is a directory)"},
  };
  for (const Case& c : cases) {
    fs::remove_all(dir_ / "Kate.dat");
    fs::remove_all(dir_ / "Kate.htm");
    std::ofstream(dir_ / "Kate.dat") << "old row";
    std::ofstream(dir_ / "Kate.htm") << "old book";
    if (c.blocker != nullptr) {
      fs::remove(dir_ / c.blocker);
      fs::create_directories(dir_ / c.blocker);
    }
    const std::string answer =
        WriteFilesTogether({{Root() + "Kate.dat", "new row"}, {Root() + "Kate.htm", "new book"}});
    EXPECT_EQ(answer, c.want.empty() ? "" : Root() + c.want) << c.what;
    const bool written = c.want.empty();
    const std::string blocker = c.blocker == nullptr ? "" : c.blocker;
    if (blocker != "Kate.dat") {
      EXPECT_EQ(ReadFile(Root() + "Kate.dat"), written ? "new row" : "old row") << c.what;
    }
    if (blocker != "Kate.htm") {
      EXPECT_EQ(ReadFile(Root() + "Kate.htm"), written ? "new book" : "old book") << c.what;
    }
    EXPECT_EQ(RemoveStrayTemporaries(Root()), 0) << c.what;
  }
  // A folder where a file is expected reads as nothing, and says why.
  std::string why;
  EXPECT_FALSE(TryReadFile(Root() + "Kate.dat", &why).has_value());
  EXPECT_EQ(why, Root() + "Kate.dat: cannot be read (not a file)");
  EXPECT_EQ(ReadFile(Root() + "Kate.dat"), "");
}

TEST_F(FilesTest, StrayTemporariesOfAKilledWriteAreRemoved) {
  std::ofstream(dir_ / "LightSpeed.dat.tmp~") << "half a row";
  std::ofstream(dir_ / "LightSpeed.htm.TMP~") << "other name, kept";
  std::ofstream(dir_ / "LightSpeed.dat") << "rows";
  EXPECT_EQ(RemoveStrayTemporaries(Root()), 1);
  EXPECT_FALSE(fs::exists(dir_ / "LightSpeed.dat.tmp~"));
  EXPECT_TRUE(fs::exists(dir_ / "LightSpeed.dat"));
  EXPECT_EQ(RemoveStrayTemporaries(Root() + "missing"), 0);
}

TEST(PathHelpers, BackslashPaths) {
  const std::string air = "C:\\FSX\\SimObjects\\Airplanes\\C172\\Cessna172SP.air";
  EXPECT_EQ(GetFileName(air), "Cessna172SP.air");
  EXPECT_EQ(LastFolder(air), "C172");
  EXPECT_EQ(GetFolder(air), "C:\\FSX\\SimObjects\\Airplanes\\C172\\");
  EXPECT_EQ(TidyFolder("C:\\FSX"), "C:\\FSX\\");
  EXPECT_EQ(TidyFolder("C:\\FSX\\"), "C:\\FSX\\");
  EXPECT_EQ(GetFileExtension("pilot.plt"), "plt");
  EXPECT_EQ(RemoveFileExtension("PilotRoster\\Light.Speed.plt"), "PilotRoster\\Light.Speed");
}

}  // namespace
}  // namespace vantoro
