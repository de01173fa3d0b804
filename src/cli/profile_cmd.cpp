#include "cli/profile_cmd.h"

#include <CLI/CLI.hpp>
#include <string>
#include <string_view>

#include "base/files.h"
#include "base/text.h"
#include "world/profiles.h"

namespace vantoro {

int ProfileCommand(const CommandArgs& args, CliContext& cli) {
  std::string file;
  std::string title;
  bool monitor = false;
  CLI::App app("The figures the instructor will hold a pilot to for an aircraft profile.",
               "vantoro-cli profile");
  app.add_option("FILE", file,
                 "an aircraft.cfg (any name ending in .cfg), a .fsr or a .fsu profile; an "
                 "aircraft.cfg is read as for an aircraft in its folder, a .fsr or .fsu as for an "
                 "aircraft whose folder has the file's name")
      ->required();
  app.add_option("--title", title, "the aircraft title, as the simulator gives it");
  app.add_flag("--monitor", monitor,
               "the type's \"Monitor ...\" box is checked, so its own figures apply");
  int parsed = kExitOk;
  if (!ParseCommandLine(app, args, cli, parsed)) return parsed;

  const std::string kind = Upper(GetFileExtension(file));
  if (kind != "CFG" && kind != "FSR" && kind != "FSU") {
    cli.err << "vantoro-cli profile: not an aircraft.cfg, .fsr or .fsu file: " << file << "\n";
    return kExitBadInput;
  }
  const std::string folder =
      kind == "CFG" ? LastFolder(file) : RemoveFileExtension(GetFileName(file));

  AircraftValues a;
  AircraftIdentity id;
  id.AirFile = folder + "\\" + folder + ".air";
  id.Title = title;
  id.RunningFSX = true;
  SetAircraftTypeOptions(a, id);
  if (monitor)
    for (int t = 0; t < kAircraftTypes; ++t)
      if (a.IsType(static_cast<AircraftType>(t)))
        a.Monitoring.Boeing[static_cast<size_t>(MainBox(static_cast<AircraftType>(t)))] = true;
  a.Title = title.empty() ? "N/A" : title;

  if (!LoadAircraftFile(kind, file, folder, false, a)) {
    cli.err << file << ": the file cannot be read\n";
    return kExitBadInput;
  }
  SetupAircraftValues(a);
  cli.out << ProfileReport(a);
  return kExitOk;
}

}  // namespace vantoro
