#include "shell/program_folder.h"

#include <filesystem>
#include <system_error>

namespace fs = std::filesystem;

namespace vantoro {

std::string DataBesideProgram(const std::string& program) {
  std::error_code ec;
  // The running program's own file where the system tells it; else the
  // path it was started by.
  fs::path file = RunningProgramFile();
  if (file.empty()) file = fs::absolute(program, ec);
  if (ec) return {};
  for (fs::path dir = file.parent_path(); !dir.empty(); dir = dir.parent_path()) {
    const fs::path data = dir / "data";
    if (fs::is_directory(data, ec)) return data.string();
    if (dir == dir.parent_path()) break;
  }
  return {};
}

}  // namespace vantoro
