#include "cli/runways_cmd.h"

#include <CLI/CLI.hpp>
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
constexpr int kMostRunways = 100000;
constexpr double kMostMiles = 12500;  // half the way round the world

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

// A number from `low` to `high`, told in the pilot's units when it is not.
CLI::Validator Within(double low, double high, const std::string& units) {
  return CLI::Validator(
      [=](std::string& text) -> std::string {
        if (IsNumeric(text)) {
          const double value = ReadDecimal(text);
          if (value >= low && value <= high) return {};
        }
        return "must be " + units + " from " + NumberText(low) + " to " + NumberText(high) +
               ", not " + text;
      },
      units);
}

// The world options every look-up takes.
void AddWorldOptions(CLI::App& command, WorldChoice& w) {
  command.add_option("--root", w.Root, "the data folder (default: the program's own)");
  command.add_option("--sim", w.Sim, "the simulator whose runway file is read")
      ->capture_default_str();
  command.add_option("--sim-folder", w.SimFolder, "the simulator's folder");
}

int ListNearest(double latitude, double longitude, double heading, double maxMiles, int limit,
                const WorldChoice& choice, CliContext& cli) {
  WorldState world;
  std::string message = LoadRunways(world, choice.Root, choice.SimFolder, choice.Sim);
  if (!message.empty()) cli.err << message << "\n";
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
  for (const Found& f : found) cli.out << RunwayJson(*f.runway, &f.miles) << "\n";
  return kDone;
}

int ListAirport(const std::string& code, const WorldChoice& choice, CliContext& cli) {
  RunwayFileChoice file = GetRunwayFile(choice.Root, choice.SimFolder, choice.Sim);
  if (file.Path.empty()) {
    cli.err << file.Message << "\n";
    return kBadUsage;
  }
  WorldState world;
  std::string message = LoadAirportRunways(world, file.Path, code);
  if (!message.empty()) cli.err << message << "\n";
  if (world.SelectedAirport.empty()) cli.err << "runways: no runways of " << code << "\n";
  for (const RunwayRecord& r : world.SelectedAirport) cli.out << RunwayJson(r, nullptr) << "\n";
  return kDone;
}

int Import(const std::string& aptDat, const std::string& navDat, const std::string& outDir,
           bool ship, CliContext& cli) {
  WorldImport world = ImportWorld(aptDat, navDat);
  for (const std::string& w : world.Warnings) cli.err << w << "\n";
  if (!world.Errors.empty()) {
    for (const std::string& e : world.Errors) cli.err << e << "\n";
    return kBadUsage;
  }
  const std::string out = TidyFolder(outDir);
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
      cli.err << path << ": cannot be written\n";
      return kBadUsage;
    }
  }
  cli.out << "airports " << world.Airports << ", runway ends " << world.RunwayEnds
          << " (with a localiser " << world.ILSEnds << "), VORs " << world.VORs << ", NDBs "
          << world.NDBs << "\n";
  return kDone;
}

}  // namespace

int RunwaysCommand(const CommandArgs& args, CliContext& cli) {
  CLI::App app("Looks up the world's runways, or imports the world from airport and navaid files.",
               "vantoro-cli runways");
  app.require_subcommand(1);

  double latitude = 0, longitude = 0, heading = kNoLimit, maxMiles = kNoLimit;
  int limit = kDefaultLimit;
  WorldChoice nearestWorld;
  CLI::App* nearest = app.add_subcommand(
      "nearest", "the runways nearest a position, nearest first, one JSON object a line");
  nearest->add_option("LAT", latitude, "degrees north")
      ->required()
      ->check(Within(-90, 90, "degrees"));
  nearest->add_option("LON", longitude, "degrees east")
      ->required()
      ->check(Within(-180, 180, "degrees"));
  nearest
      ->add_option("--heading", heading, "only runways ahead on this heading and aligned with it")
      ->check(Within(0, 360, "degrees"));
  nearest->add_option("--max-miles", maxMiles, "only runways within so many nautical miles")
      ->check(Within(0, kMostMiles, "nautical miles"));
  nearest->add_option("--limit", limit, "at most so many runways")
      ->check(CLI::Range(1, kMostRunways))
      ->capture_default_str();
  AddWorldOptions(*nearest, nearestWorld);

  std::string code;
  WorldChoice airportWorld;
  CLI::App* airport = app.add_subcommand("airport", "every runway of one airport");
  airport->add_option("ICAO", code, "the airport's code")->required();
  AddWorldOptions(*airport, airportWorld);

  std::string aptDat, navDat, outDir;
  bool ship = false;
  CLI::App* import = app.add_subcommand(
      "import", "the world's runway and VOR files from X-Plane/FlightGear apt.dat and nav.dat");
  import->add_option("APT_DAT", aptDat, "the airport file")->required();
  import->add_option("NAV_DAT", navDat, "the navaid file")->required();
  import->add_option("OUTDIR", outDir, "where the files are written")->required();
  import->add_flag("--ship", ship, "compressed, named as the delivered world");

  const auto isAction = [&](const std::string& word) {
    for (const CLI::App* action : app.get_subcommands({}))
      if (action->get_name() == word) return true;
    return false;
  };
  if (!args.empty() && !args[0].starts_with("-") && !isAction(args[0])) {
    cli.err << "vantoro-cli runways: unknown action " << args[0]
            << " (nearest, airport or import)\nRun with --help for the options.\n";
    return kBadUsage;
  }
  int parsed = kDone;
  if (!ParseCommandLine(app, args, cli, parsed)) return parsed;
  for (WorldChoice* w : {&nearestWorld, &airportWorld})
    if (w->Root.empty()) w->Root = DefaultRoot(cli);
  if (*nearest)
    return ListNearest(latitude, longitude, heading, maxMiles, limit, nearestWorld, cli);
  if (*airport) return ListAirport(code, airportWorld, cli);
  return Import(aptDat, navDat, outDir, ship, cli);
}

}  // namespace vantoro
