#include "world/vors.h"

#include <cmath>

#include "base/failure.h"
#include "base/numbers.h"
#include "base/text.h"

namespace vantoro {

namespace {
constexpr size_t kVorFields = 6;
constexpr long kErrDamagedFile = 62;
}  // namespace

std::string ReadVorData(WorldState& world, std::string_view file) {
  world.VORStations.clear();
  WorldText read = ReadWorldFile(file);
  size_t start = 0;
  const std::string& text = read.Text;
  while (start < text.size()) {
    size_t nl = text.find('\n', start);
    size_t end = nl == std::string::npos ? text.size() : nl;
    std::string_view line(text.data() + start, end - start);
    start = nl == std::string::npos ? text.size() : nl + 1;
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    if (Trim(line).empty()) continue;
    std::vector<std::string> f = Split(line, '|');
    if (f.size() < kVorFields) continue;
    VORStation s;
    s.Ident = f[0];
    s.Name = f[1];
    s.Latitude = ReadDecimal(f[2]);
    s.Longitude = ReadDecimal(f[3]);
    s.Elevation = CLng(ReadDecimal(f[4]));
    s.Frequency = ReadDecimal(f[5]);
    s.Flag = f.size() > kVorFields ? static_cast<int32_t>(CLng(ReadDecimal(f[6]))) : -1;
    world.VORStations.push_back(std::move(s));
  }
  if (read.Error.empty()) return {};
  return FailureReport(kErrDamagedFile, read.Error, "ReadVorData",
                       "\nFile Read: " + std::string(file))
      .Report();
}

const VORStation* FindVOR(const WorldState& world, double latitude, double longitude,
                          double tolerance) {
  for (const VORStation& s : world.VORStations) {
    if (s.Latitude > latitude - tolerance && s.Latitude < latitude + tolerance &&
        s.Longitude > longitude - tolerance && s.Longitude < longitude + tolerance)
      return &s;
  }
  return nullptr;
}

std::string LoadRunwaysAndVORs(WorldState& world, std::string_view root, std::string_view simFolder,
                               std::string_view simName, const RunwayLoadObserver& observer) {
  std::string message = LoadRunways(world, root, simFolder, simName, observer);
  const std::string vors = ResolveWorldFile(std::string(root) + "\\" + std::string(kVorFile), root);
  std::string vorMessage = ReadVorData(world, vors);
  if (!message.empty() && !vorMessage.empty()) message += "\n";
  return message + vorMessage;
}

}  // namespace vantoro
