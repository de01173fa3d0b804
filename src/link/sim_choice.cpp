#include "link/sim_choice.h"

#include <cstdlib>
#include <filesystem>

#include "base/files.h"
#include "link/flightgear_protocol.h"
#include "link/platform_link.h"
#ifndef _WIN32
#include "link/flightgear_link.h"
#include "link/xplane_link.h"
#endif

namespace vantoro {

std::unique_ptr<SimLink> MakeSimulatorLink(const SimChoice& choice, std::string& error) {
  if (choice.name.empty()) return MakePlatformLink();
#ifdef _WIN32
  if (choice.name == "fsuipc") return MakePlatformLink();
  if (choice.name == "flightgear" || choice.name == "xplane") {
    error = "--sim " + choice.name + ": this link is built for Linux only";
    return nullptr;
  }
#else
  if (choice.name == "fsuipc") {
    error = "--sim fsuipc: the offset server's link exists only on Windows";
    return nullptr;
  }
  if (choice.name == "flightgear") {
    FlightGearOptions o;
    if (!choice.host.empty()) o.host = choice.host;
    // FlightGear on another computer sends its packets over the network.
    if (o.host != "127.0.0.1" && o.host != "localhost") o.listenAddress = "0.0.0.0";
    if (choice.port > 0) o.dataPort = choice.port;
    return std::make_unique<FlightGearLink>(o);
  }
  if (choice.name == "xplane") {
    XPlaneOptions o;
    if (!choice.host.empty()) o.host = choice.host;
    if (choice.port > 0) o.port = choice.port;
    return std::make_unique<XPlaneLink>(o);
  }
#endif
  error = "--sim " + choice.name + ": no such simulator link (fsuipc, flightgear, xplane)";
  return nullptr;
}

std::vector<std::string> FlightGearDataFolders() {
  std::vector<std::string> folders;
  if (const char* root = std::getenv("FG_ROOT"); root != nullptr && *root != '\0')
    folders.emplace_back(root);
  folders.emplace_back("/usr/share/games/flightgear");
  folders.emplace_back("/usr/share/flightgear");
  return folders;
}

std::string InstallFlightGearProtocol(const std::string& definition,
                                      const std::vector<std::string>& folders) {
  namespace fs = std::filesystem;
  const std::string file = std::string(kFlightGearProtocolName) + ".xml";
  for (const std::string& folder : folders) {
    std::error_code ec;
    if (!fs::is_directory(fs::path(folder) / "Protocol", ec)) continue;
    const std::string target = (fs::path(folder) / "Protocol" / file).string();
    if (const auto there = TryReadFile(target); there && *there == definition)
      return "FlightGear's protocol " + target + " is in place";
    if (WriteFileAtomic(target, definition)) return "FlightGear's protocol written to " + target;
    return "Cannot write " + target + "; copy data/FlightGear/" + file +
           " there as root (sudo cp), then start fgfs";
  }
  return "No FlightGear data folder found (set FG_ROOT); copy data/FlightGear/" + file +
         " into its Protocol folder";
}

}  // namespace vantoro
