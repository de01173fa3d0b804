#include "cli/runways_cmd.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <iostream>
#include <string>
#include <string_view>
#include <vector>

#include "base/files.h"
#include "base/gzip.h"
#include "base/numbers.h"
#include "base/text.h"
#include "cli/commands.h"
#include "cli/event_writers.h"
#include "world/geo.h"
#include "world/runway_queries.h"
#include "world/runways.h"
#include "world/world_import.h"

namespace vantoro {

namespace {

namespace fs = std::filesystem;

constexpr int kDone = 0;
constexpr int kBadUsage = 2;
constexpr int kDefaultLimit = 10;

constexpr std::string_view kUsage =
    "usage: vantoro-cli runways nearest LAT LON [--heading H] [--max-miles M] [--limit N]\n"
    "                                           [--root DIR] [--sim NAME] [--sim-folder DIR]\n"
    "       vantoro-cli runways airport ICAO [--root DIR] [--sim NAME] [--sim-folder DIR]\n"
    "       vantoro-cli runways import APT_DAT NAV_DAT OUTDIR [--ship]\n";

int Usage(std::string_view problem = {}) {
  if (!problem.empty()) std::cerr << "runways: " << problem << "\n";
  std::cerr << kUsage;
  return kBadUsage;
}

// One runway as a JSON object, its properties by name in the record's order.
std::string RunwayJson(const Runway& r, const double* distance) {
  std::string o = "{";
  auto text = [&](std::string_view name, std::string_view value) {
    o += (o.size() > 1 ? "," : "") + JsonString(name) + ":" + JsonString(value);
  };
  auto number = [&](std::string_view name, const std::string& value) {
    o += (o.size() > 1 ? "," : "") + JsonString(name) + ":" + value;
  };
  text("Number", r.Number);
  text("ICAO", r.ICAO);
  number("Latitude", NumberText(r.Latitude));
  number("Longitude", NumberText(r.Longitude));
  number("Heading", std::to_string(r.Heading));
  number("GlideSlope", NumberText(r.GlideSlope));
  number("Elevation", std::to_string(r.Elevation));
  number("Width", std::to_string(r.Width));
  number("Length", std::to_string(r.Length));
  text("ILSFrequency", r.ILSFrequency);
  text("ILSIdent", r.ILSIdent);
  text("Surface", r.Surface);
  text("ATIS", r.ATIS);
  number("EndLatitude", NumberText(r.EndLatitude));
  number("EndLongitude", NumberText(r.EndLongitude));
  number("ILSHeading", std::to_string(r.ILSHeading));
  text("City", r.City);
  text("AirportName", r.AirportName);
  number("ThresholdOffset", std::to_string(r.ThresholdOffset));
  if (distance != nullptr) number("Distance", FormatFixed(*distance, 2));
  return o + "}";
}

// Options shared by the look-ups.
struct WorldChoice {
  std::string Root;
  std::string Sim = "FSX";
  std::string SimFolder;
};

bool Number(std::string_view text, double& out) {
  if (!IsNumeric(text)) return false;
  out = ReadDecimal(text);
  return true;
}

// Reads "--name value" pairs after the positional arguments.
class Options {
 public:
  Options(int argc, char** argv, int first) {
    for (int i = first; i < argc; ++i) args_.emplace_back(argv[i]);
  }
  // The value of an option, removed from the list; false when missing.
  bool Take(std::string_view name, std::string& value) {
    for (size_t i = 0; i < args_.size(); ++i) {
      if (args_[i] != name) continue;
      if (i + 1 >= args_.size()) {
        missing_ = std::string(name);
        return false;
      }
      value = args_[i + 1];
      args_.erase(args_.begin() + static_cast<long>(i), args_.begin() + static_cast<long>(i) + 2);
      return true;
    }
    return false;
  }
  bool Flag(std::string_view name) {
    auto it = std::find(args_.begin(), args_.end(), name);
    if (it == args_.end()) return false;
    args_.erase(it);
    return true;
  }
  void World(WorldChoice& w) {
    if (!Take("--root", w.Root)) {
      CliContext cli{"", std::cout, std::cerr};
      w.Root = DefaultRoot(cli);
    }
    Take("--sim", w.Sim);
    Take("--sim-folder", w.SimFolder);
  }
  // Leftovers and options without a value are bad usage.
  std::string Problem() const {
    if (!missing_.empty()) return missing_ + " needs a value";
    if (!args_.empty()) return "unknown argument " + args_.front();
    return {};
  }

 private:
  std::vector<std::string> args_;
  std::string missing_;
};

int Nearest(int argc, char** argv) {
  if (argc < 4) return Usage("nearest needs LAT and LON");
  double latitude = 0, longitude = 0;
  if (!Number(argv[2], latitude) || latitude < -90 || latitude > 90)
    return Usage("LAT must be a number of degrees from -90 to 90");
  if (!Number(argv[3], longitude) || longitude < -180 || longitude > 180)
    return Usage("LON must be a number of degrees from -180 to 180");
  Options opts(argc, argv, 4);
  WorldChoice choice;
  opts.World(choice);
  std::string text;
  double heading = kNoLimit, maxMiles = kNoLimit, limit = kDefaultLimit;
  if (opts.Take("--heading", text) && (!Number(text, heading) || heading < 0 || heading > 360))
    return Usage("--heading must be degrees from 0 to 360");
  if (opts.Take("--max-miles", text) && (!Number(text, maxMiles) || maxMiles < 0))
    return Usage("--max-miles must be a number of nautical miles");
  if (opts.Take("--limit", text) && (!Number(text, limit) || limit < 1))
    return Usage("--limit must be a count of at least 1");
  if (std::string p = opts.Problem(); !p.empty()) return Usage(p);

  WorldState world;
  std::string message = LoadRunways(world, choice.Root, choice.SimFolder, choice.Sim);
  if (!message.empty()) std::cerr << message << "\n";
  if (!world.RunwaysLoaded()) return kBadUsage;

  FillCloseRunways(world, latitude, longitude);
  // The working set filtered as the instructor's own search filters it,
  // nearest first; equal distances keep the search's order, so the first
  // line is the runway the instructor would choose.
  struct Found {
    const Runway* runway;
    double miles;
  };
  std::vector<Found> found;
  for (const Runway* r : world.CloseRunways) {
    if (heading != kNoLimit) {
      if (!IsAngleWithinHeadingRange(r->Heading, heading, kHeadingTolerance)) continue;
      const double bearing = CalcAngle(latitude, longitude, r->Latitude, r->Longitude);
      if (!IsAngleWithinHeadingRange(bearing, heading, kHeadingTolerance)) continue;
    }
    const double miles = CalcDistance(latitude, longitude, r->Latitude, r->Longitude);
    if (maxMiles != kNoLimit && miles > maxMiles) continue;
    found.push_back({r, miles});
  }
  std::stable_sort(found.begin(), found.end(),
                   [](const Found& a, const Found& b) { return a.miles < b.miles; });
  if (found.size() > static_cast<size_t>(limit)) found.resize(static_cast<size_t>(limit));
  for (const Found& f : found) std::cout << RunwayJson(*f.runway, &f.miles) << "\n";
  return kDone;
}

int Airport(int argc, char** argv) {
  if (argc < 3) return Usage("airport needs ICAO");
  const std::string code = argv[2];
  Options opts(argc, argv, 3);
  WorldChoice choice;
  opts.World(choice);
  if (std::string p = opts.Problem(); !p.empty()) return Usage(p);

  RunwayFileChoice file = GetRunwayFile(choice.Root, choice.SimFolder, choice.Sim);
  if (file.Path.empty()) {
    std::cerr << file.Message << "\n";
    return kBadUsage;
  }
  WorldState world;
  std::string message = LoadAirportRunways(world, file.Path, code);
  if (!message.empty()) std::cerr << message << "\n";
  if (world.SelectedAirport.empty()) std::cerr << "runways: no runways of " << code << "\n";
  for (const RunwayRecord& r : world.SelectedAirport) std::cout << RunwayJson(r, nullptr) << "\n";
  return kDone;
}

int Import(int argc, char** argv) {
  if (argc < 5) return Usage("import needs APT_DAT, NAV_DAT and OUTDIR");
  Options opts(argc, argv, 5);
  const bool ship = opts.Flag("--ship");
  if (std::string p = opts.Problem(); !p.empty()) return Usage(p);

  WorldImport world = ImportWorld(argv[2], argv[3]);
  for (const std::string& w : world.Warnings) std::cerr << w << "\n";
  if (!world.Errors.empty()) {
    for (const std::string& e : world.Errors) std::cerr << e << "\n";
    return kBadUsage;
  }
  const std::string out = TidyFolder(argv[4]);
  std::error_code ec;
  fs::create_directories(NativePath(out), ec);
  // Plain files named as a simulator's folder holds them, or the delivered
  // world: the compressed runway file that every simulator's name resolves
  // to, and the VOR file.
  std::vector<std::pair<std::string, std::string>> files;
  if (ship) {
    files.emplace_back(out + std::string(kWorldRunwayFile) + ".gz", GzipText(world.RunwayText));
    files.emplace_back(out + std::string(kVorFile) + ".gz", GzipText(world.VorText));
  } else {
    files.emplace_back(out + std::string(kUserRunwayFile), world.RunwayText);
    files.emplace_back(out + std::string(kVorFile), world.VorText);
  }
  for (const auto& [path, bytes] : files) {
    if (!WriteFileAtomic(path, bytes)) {
      std::cerr << path << ": cannot be written\n";
      return kBadUsage;
    }
  }
  std::cout << "airports " << world.Airports << ", runway ends " << world.RunwayEnds
            << " (with a localiser " << world.ILSEnds << "), VORs " << world.VORs << ", NDBs "
            << world.NDBs << "\n";
  return kDone;
}

}  // namespace

int RunwaysCommand(int argc, char** argv) {
  if (argc < 2) return Usage();
  const std::string_view action = argv[1];
  if (action == "nearest") return Nearest(argc, argv);
  if (action == "airport") return Airport(argc, argv);
  if (action == "import") return Import(argc, argv);
  return Usage("unknown action " + std::string(action));
}

}  // namespace vantoro
