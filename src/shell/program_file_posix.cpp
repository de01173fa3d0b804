// The running program's file on Linux: the link the kernel keeps for it.
#include <filesystem>
#include <system_error>

#include "shell/program_folder.h"

namespace vantoro {

std::string RunningProgramFile() {
  std::error_code ec;
  const std::filesystem::path file = std::filesystem::read_symlink("/proc/self/exe", ec);
  return ec ? std::string() : file.string();
}

}  // namespace vantoro
