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
