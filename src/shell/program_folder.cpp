#include "shell/program_folder.h"

#include <filesystem>
#include <system_error>

namespace fs = std::filesystem;

#ifdef _WIN32
#include <windows.h>
#endif

namespace vantoro {

std::string DataBesideProgram(const std::string& program) {
  std::error_code ec;
  // The running program's own file where the system tells it; else the
  // path it was started by.
#ifdef _WIN32
  wchar_t own[MAX_PATH] = {};
  const DWORD length = GetModuleFileNameW(nullptr, own, MAX_PATH);
  fs::path file = length > 0 && length < MAX_PATH ? fs::path(own) : fs::path();
#else
  fs::path file = fs::read_symlink("/proc/self/exe", ec);
#endif
  if (ec || file.empty()) file = fs::absolute(program, ec);
  if (ec) return {};
  for (fs::path dir = file.parent_path(); !dir.empty(); dir = dir.parent_path()) {
    const fs::path data = dir / "data";
    if (fs::is_directory(data, ec)) return data.string();
    if (dir == dir.parent_path()) break;
  }
  return {};
}

}  // namespace vantoro
