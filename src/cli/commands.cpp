#include "cli/commands.h"

#include <CLI/CLI.hpp>

#include "shell/program_folder.h"

namespace vantoro {

std::string DefaultRoot(const CliContext& cli) {
  return DataBesideProgram(cli.program);
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
  } catch (const CLI::ExtrasError& e) {
    // Told in the order given (the library's own text lists them backwards).
    const std::string told = e.what();
    app.allow_extras();
    app.clear();
    try {
      app.parse(static_cast<int>(argv.size()), argv.data());
    } catch (const CLI::ParseError&) {
      // Only the extras are told.
    }
    std::string extras;
    for (const std::string& w : app.remaining(true)) extras += (extras.empty() ? "" : " ") + w;
    cli.err << app.get_name() << ": "
            << (extras.empty() ? told : "not an option or argument of this command: " + extras)
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
