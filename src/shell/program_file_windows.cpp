// The running program's file on Windows: the module file of the process.
#include <windows.h>

#include <filesystem>

#include "shell/program_folder.h"

namespace vantoro {

std::string RunningProgramFile() {
  wchar_t own[MAX_PATH] = {};
  const DWORD length = GetModuleFileNameW(nullptr, own, MAX_PATH);
  if (length == 0 || length >= MAX_PATH) return {};
  return std::filesystem::path(own).string();
}

}  // namespace vantoro
