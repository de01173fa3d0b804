#include "cli/commands.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <filesystem>
#include <system_error>

#ifdef _WIN32
#include <windows.h>
#endif

namespace fs = std::filesystem;

namespace vantoro {

std::string DefaultRoot(const CliContext& cli) {
  std::error_code ec;
  // The running program's own file where the system tells it; else the
  // path it was started by.
#ifdef _WIN32
  wchar_t own[MAX_PATH] = {};
  const DWORD length = GetModuleFileNameW(nullptr, own, MAX_PATH);
  fs::path program = length > 0 && length < MAX_PATH ? fs::path(own) : fs::path();
#else
  fs::path program = fs::read_symlink("/proc/self/exe", ec);
#endif
  if (ec || program.empty()) program = fs::absolute(cli.program, ec);
  if (ec) return {};
  for (fs::path dir = program.parent_path(); !dir.empty(); dir = dir.parent_path()) {
    const fs::path data = dir / "data";
    if (fs::is_directory(data, ec)) return data.string();
    if (dir == dir.parent_path()) break;
  }
  return {};
}

bool ParseCommandLine(CLI::App& app, const CommandArgs& args, CliContext& cli, int& status) {
  // An option given twice takes its last value, as with most programs.
  for (CLI::Option* option : app.get_options())
    option->multi_option_policy(CLI::MultiOptionPolicy::TakeLast);
  std::vector<std::string> words = args;
  std::vector<char*> argv{cli.program.data()};
  for (std::string& w : words) argv.push_back(w.data());
  try {
    app.parse(static_cast<int>(argv.size()), argv.data());
  } catch (const CLI::CallForHelp&) {
    cli.out << app.help();
    status = kExitOk;
    return false;
  } catch (const CLI::ExtrasError&) {
    // Told in the order given (the library's own text lists them backwards).
    app.allow_extras();
    app.clear();
    try {
      app.parse(static_cast<int>(argv.size()), argv.data());
    } catch (const CLI::ParseError&) {
      // Only the extras are told.
    }
    std::string extras;
    for (const std::string& w : app.remaining()) extras += (extras.empty() ? "" : " ") + w;
    cli.err << app.get_name() << ": not an option or argument of this command: " << extras
            << "\nRun with --help for the options.\n";
    status = kExitBadInput;
    return false;
  } catch (const CLI::ParseError& e) {
    cli.err << app.get_name() << ": " << e.what() << "\n"
            << "Run with --help for the options.\n";
    status = kExitBadInput;
    return false;
  }
  return true;
}

}  // namespace vantoro
