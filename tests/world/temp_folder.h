// A fresh folder per test, removed afterwards.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

namespace vantoro {

class TempFolder {
 public:
  TempFolder() {
    const auto* info = ::testing::UnitTest::GetInstance()->current_test_info();
    path_ = std::filesystem::temp_directory_path() /
            ("vantoro-" + std::string(info->test_suite_name()) + "-" + info->name());
    std::filesystem::remove_all(path_);
    std::filesystem::create_directories(path_);
  }
  ~TempFolder() { std::filesystem::remove_all(path_); }
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;

  // The folder, ending in a separator, as the system's root folders do.
  std::string Root() const { return path_.string() + "/"; }

  // Writes a file below the folder ("/" separated), making its folders.
  std::string Write(std::string_view relative, std::string_view text) const {
    const std::filesystem::path file = path_ / std::filesystem::path(relative);
    std::filesystem::create_directories(file.parent_path());
    std::ofstream(file, std::ios::binary) << text;
    return file.string();
  }

  std::string Read(std::string_view relative) const {
    std::ifstream in(path_ / std::filesystem::path(relative), std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
  }

  static std::string ReadAbsolute(const std::string& file) {
    std::ifstream in(file, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
  }

  bool Exists(std::string_view relative) const {
    return std::filesystem::exists(path_ / std::filesystem::path(relative));
  }

 private:
  std::filesystem::path path_;
};

}  // namespace vantoro
