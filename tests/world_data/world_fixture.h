// Helpers of the world data tests: a scratch folder, runway lines in the
// file's own format, and a world loaded from such lines.
#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <atomic>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "base/files.h"
#include "world/runways.h"

namespace vantoro::testing {

// A folder of its own for one test, removed at the end.
class ScratchFolder {
 public:
  ScratchFolder() {
    static std::atomic<int> serial{0};
    const auto* info = ::testing::UnitTest::GetInstance()->current_test_info();
    path_ = std::filesystem::temp_directory_path() /
            ("vantoro-world-" + std::to_string(::getpid()) + "-" + std::to_string(serial++) + "-" +
             (info ? info->name() : "x"));
    std::filesystem::create_directories(path_);
  }
  ~ScratchFolder() {
    std::error_code ec;
    std::filesystem::remove_all(path_, ec);
  }
  ScratchFolder(const ScratchFolder&) = delete;
  ScratchFolder& operator=(const ScratchFolder&) = delete;

  // The path of a file in the folder, "\" separated as the system builds it.
  std::string File(const std::string& name) const { return path_.string() + "\\" + name; }
  std::string Path() const { return path_.string(); }
  std::string Write(const std::string& name, const std::string& bytes) const {
    const std::string file = File(name);
    std::filesystem::create_directories(std::filesystem::path(NativePath(file)).parent_path());
    EXPECT_TRUE(WriteFileAtomic(file, bytes)) << file;
    return file;
  }

 private:
  std::filesystem::path path_;
};

// One runway line: a valid runway end of "Alder Field" (ZZAA 09 at 10 N,
// 20 E) with the given fields replaced.
inline std::string RunwayLine(const std::map<int, std::string>& changes = {}) {
  std::vector<std::string> f = {
      "09",        "90",        "N10_00_00", "E020_00_00",  "3",        "ZZAA.09",   "512",
      "17951",     "148",       "110.30",    "IZAA",        "CONCRETE", "124.75",    "90",
      "10.000000", "20.050000", "Alderton",  "Alder Field", "328",      "10.000000", "20.000000"};
  for (const auto& [index, value] : changes) {
    if (index >= static_cast<int>(f.size())) f.resize(static_cast<size_t>(index) + 1);
    f[static_cast<size_t>(index)] = value;
  }
  std::string line;
  for (size_t i = 0; i < f.size(); ++i) line += (i ? "|" : "") + f[i];
  return line;
}

// A runway end of airport `icao` named `number` at a place, heading given.
inline std::string RunwayAt(const std::string& icao, const std::string& number, double latitude,
                            double longitude, int heading = 90) {
  return RunwayLine({{0, number},
                     {1, std::to_string(heading)},
                     {5, icao + "." + number},
                     {19, std::to_string(latitude)},
                     {20, std::to_string(longitude)}});
}

inline std::string Lines(const std::vector<std::string>& lines) {
  std::string text;
  for (const auto& l : lines) text += l + "\r\n";
  return text;
}

}  // namespace vantoro::testing
