// A fresh folder per test, removed afterwards.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

namespace vantoro {

inline std::string ReadWhole(const std::filesystem::path& file) {
  std::ifstream in(file, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

class TempFolder {
 public:
  explicit TempFolder(const std::string& tag = "") {
    const auto* test = ::testing::UnitTest::GetInstance()->current_test_info();
    path_ = std::filesystem::temp_directory_path() /
            ("vantoro-" + std::string(test->test_suite_name()) + "-" + test->name() + tag);
    std::filesystem::remove_all(path_);
    std::filesystem::create_directories(path_);
  }
  ~TempFolder() { std::filesystem::remove_all(path_); }

  // The folder, ending in a separator as the system's root folders do.
  std::string Root() const { return path_.string() + "/"; }
  // Writes a file below the folder, making its folders; its full path.
  std::string Write(const std::string& relative, const std::string& text) const {
    std::filesystem::create_directories((path_ / relative).parent_path());
    std::ofstream(path_ / relative, std::ios::binary) << text;
    return (path_ / relative).string();
  }
  std::string Read(const std::string& relative) const { return ReadWhole(path_ / relative); }
  bool Exists(const std::string& relative) const {
    return std::filesystem::exists(path_ / relative);
  }

 private:
  std::filesystem::path path_;
};

}  // namespace vantoro
