#include "cli/profile_cmd.h"

#include <cstdio>
#include <string>
#include <string_view>

#include "base/files.h"
#include "base/text.h"
#include "world/profiles.h"

namespace vantoro {

namespace {

constexpr char kUsage[] =
    "usage: vantoro-cli profile FILE [--title T] [--monitor]\n"
    "  FILE       an aircraft.cfg (any name ending in .cfg), a .fsr or a .fsu profile\n"
    "  --title T  the aircraft title, as the simulator gives it\n"
    "  --monitor  the type's \"Monitor ...\" box is checked, so its own figures apply\n"
    "An aircraft.cfg is read as for an aircraft in its folder; a .fsr or .fsu as\n"
    "for an aircraft whose folder has the file's name.\n";

int Usage(const char* problem) {
  std::fprintf(stderr, "vantoro-cli profile: %s\n%s", problem, kUsage);
  return 2;
}

}  // namespace

int ProfileCommand(int argc, char** argv) {
  std::string file;
  std::string title;
  bool monitor = false;
  for (int i = 1; i < argc; ++i) {
    const std::string_view arg = argv[i];
    if (arg == "--title") {
      if (i + 1 >= argc) return Usage("--title needs a value");
      title = argv[++i];
    } else if (arg == "--monitor") {
      monitor = true;
    } else if (arg == "-h" || arg == "--help") {
      std::fputs(kUsage, stdout);
      return 0;
    } else if (StartsWith(arg, "--") || !file.empty()) {
      return Usage(("unexpected argument " + std::string(arg)).c_str());
    } else {
      file = arg;
    }
  }
  if (file.empty()) return Usage("no profile file given");

  const std::string kind = Upper(GetFileExtension(file));
  if (kind != "CFG" && kind != "FSR" && kind != "FSU")
    return Usage(("not an aircraft.cfg, .fsr or .fsu file: " + file).c_str());
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
    std::fprintf(stderr, "%s: the file cannot be read\n", file.c_str());
    return 2;
  }
  SetupAircraftValues(a);
  std::fputs(ProfileReport(a).c_str(), stdout);
  return 0;
}

}  // namespace vantoro
