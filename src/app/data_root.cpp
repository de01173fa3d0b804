#include "app/data_root.h"

#include <filesystem>
#include <fstream>
#include <system_error>

namespace fs = std::filesystem;

namespace vantoro {

namespace {

// Whether the program may write in the folder: a file is made there and
// removed again (the folder's rights, not its read-only flag, decide on
// Windows, as for "Program Files").
bool Writable(const fs::path& folder) {
  const fs::path probe = folder / ".vantoro-write-test";
  std::error_code ec;
  {
    std::ofstream out(probe, std::ios::binary);
    if (!out || !(out << 'x') || !(out.flush())) return false;
  }
  return fs::remove(probe, ec);
}

}  // namespace

std::string ChooseDataRoot(const std::string& shipped, const std::string& userFolder,
                           std::string& note, std::string& error) {
  std::error_code ec;
  if (!shipped.empty() && fs::is_directory(shipped, ec) && Writable(shipped)) return shipped;
  if (userFolder.empty()) {
    error = shipped.empty() ? "no data folder beside the program; name one with --root"
                            : "cannot write to " + shipped + " and no home folder to copy it to";
    return {};
  }
  if (fs::is_directory(userFolder, ec)) return userFolder;
  if (shipped.empty() || !fs::is_directory(shipped, ec)) {
    error = "no data folder beside the program to copy to " + userFolder;
    return {};
  }
  // Copied under a temporary name and renamed, so that a copy cut short is
  // never taken for a whole one.
  const std::string partial = userFolder + ".copying";
  fs::remove_all(partial, ec);
  fs::create_directories(fs::path(partial).parent_path(), ec);
  fs::copy(shipped, partial, fs::copy_options::recursive, ec);
  if (!ec) fs::rename(partial, userFolder, ec);
  if (ec) {
    fs::remove_all(partial, ec);
    error = "cannot copy the data from " + shipped + " to " + userFolder;
    return {};
  }
  note = "The program's data has been copied to " + userFolder;
  return userFolder;
}

}  // namespace vantoro
