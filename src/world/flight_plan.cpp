#include "world/flight_plan.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <unordered_map>

#include "base/files.h"
#include "base/ini.h"
#include "base/numbers.h"
#include "base/text.h"

namespace vantoro {

namespace {

// The Latin-1 degree sign; it is also the second byte of the UTF-8 sign, whose
// first byte (0xC2) the walk passes over like any other mark.
constexpr unsigned char kLatin1Degree = 0xB0;
constexpr double kMaxLatitude = 90;
constexpr double kMaxLongitude = 180;

// Upper case of the ASCII letters only, so that every byte keeps its place and
// a position found in the copy is the same position in the original.
std::string AsciiUpper(std::string_view text) {
  std::string out(text);
  for (char& ch : out)
    if (ch >= 'a' && ch <= 'z') ch = static_cast<char>(ch - 'a' + 'A');
  return out;
}

double Number(std::string_view digits) {
  double value = 0;
  if (digits.empty()) return 0;
  std::from_chars(digits.data(), digits.data() + digits.size(), value);
  return value;
}

// One coordinate walked byte by byte; false when the text holds no digit.
bool WalkCoOrd(std::string_view text, double& result) {
  double sign = 1;
  double parts[3] = {0, 0, 0};  // degrees, minutes, seconds
  int part = 0;
  bool anyDigit = false;
  std::string digits;
  const auto close = [&](int next) {
    if (part < 3) parts[part] = Number(digits);
    digits.clear();
    part = std::max(part, next);
  };
  for (const char ch : text) {
    const auto byte = static_cast<unsigned char>(ch);
    if (ch == 'N' || ch == 'E' || ch == 'n' || ch == 'e') {
      sign = 1;
    } else if (ch == 'S' || ch == 'W' || ch == 's' || ch == 'w' || ch == '-') {
      sign = -1;
    } else if ((ch >= '0' && ch <= '9') || ch == '.') {
      digits += ch;
      anyDigit = anyDigit || ch != '.';
    } else if (ch == '*' || byte == kLatin1Degree) {
      close(1);
    } else if (ch == '\'') {
      close(2);
    } else if (ch == '"') {
      close(3);
    }
  }
  if (!digits.empty()) close(part + 1);
  result = sign * (parts[0] + parts[1] / 60 + parts[2] / 3600);
  return anyDigit;
}

// The entry's text after "ID=" in its opening tag, quotes removed.
std::string WaypointId(std::string_view tag, std::string_view upperTag) {
  const size_t at = upperTag.find("ID=");
  if (at == std::string_view::npos) return {};
  size_t i = at + 3;
  while (i < tag.size() && tag[i] == ' ') ++i;
  if (i >= tag.size()) return {};
  const char quote = tag[i];
  size_t end = 0;
  if (quote == '"' || quote == '\'') {
    ++i;
    end = tag.find(quote, i);
  } else {
    end = tag.find_first_of(" >/", i);
  }
  if (end == std::string_view::npos) end = tag.size();
  return Trim(tag.substr(i, end - i));
}

// The original text between open and close, found in the upper-cased copy.
std::string Between(std::string_view text, std::string_view upper, std::string_view open,
                    std::string_view close) {
  const size_t a = upper.find(open);
  if (a == std::string_view::npos) return {};
  const size_t from = a + open.size();
  const size_t b = upper.find(close, from);
  if (b == std::string_view::npos) return {};
  return Trim(text.substr(from, b - from));
}

void Note(Notices* notices, std::string_view file, int line, std::string text) {
  if (notices != nullptr) notices->push_back({std::string(file), line, std::move(text)});
}

bool InRange(double latitude, double longitude) {
  return std::fabs(latitude) <= kMaxLatitude && std::fabs(longitude) <= kMaxLongitude;
}

// One point into the table: false when the table is full.
bool AddWaypoint(FlightPlan& plan, Waypoint w, std::string_view file, int line, Notices* notices) {
  if (FlightPlanCount(plan) >= kMaxWaypoints) {
    Note(notices, file, line,
         "flight plan point " + w.Name + " and those after it passed over: the plan holds " +
             std::to_string(kMaxWaypoints) + " points at most");
    return false;
  }
  w.ClosestDistance = kNotYetApproached;
  plan.Waypoints.push_back(std::move(w));
  return true;
}

void FinishPlan(FlightPlan& plan, std::string_view file, Notices* notices) {
  if (plan.Waypoints.empty()) {
    Note(notices, file, 0, "no flight plan points found");
    return;
  }
  if (plan.FlightPlanDeparture.empty()) plan.FlightPlanDeparture = plan.Waypoints.front().Name;
  if (plan.FlightPlanDestination.empty()) plan.FlightPlanDestination = plan.Waypoints.back().Name;
}

void StartPlan(FlightPlan& plan) {
  plan.Waypoints.clear();
  plan.NextWaypoint = 1;
  plan.FlightPlanDeparture.clear();
  plan.FlightPlanDestination.clear();
  plan.FlightRules.clear();
  plan.CurrentWaypointName = "Unknown";
}

// "000.0000": at least three whole digits, four decimals, the sign in front.
std::string DisplayDegrees(double x) {
  char digits[32];
  std::snprintf(digits, sizeof digits, "%08.4f", std::fabs(x));
  const bool negative = x < 0 && std::string_view(digits) != "000.0000";
  return (negative ? "-" : "") + std::string(digits);
}

}  // namespace

bool IsXMLFlightPlan(std::string_view text) {
  const std::string upper = AsciiUpper(text);
  return upper.find("<FLIGHTPLAN.FLIGHTPLAN") != std::string::npos ||
         upper.find("<SIMBASE.DOCUMENT") != std::string::npos;
}

std::string GetStringBetween(std::string_view text, std::string_view open, std::string_view close) {
  const size_t a = text.find(open);
  if (a == std::string_view::npos) return {};
  const size_t from = a + open.size();
  const size_t b = text.find(close, from);
  if (b == std::string_view::npos) return {};
  return std::string(text.substr(from, b - from));
}

double ParseCoOrd(std::string_view text) {
  double value = 0;
  WalkCoOrd(text, value);
  return value;
}

double ParseXMLCoOrd(std::string_view text) {
  return ParseCoOrd(text);
}

void ProcessINIFlightPlan(std::string_view text, FlightPlan& plan, std::string_view file,
                          Notices* notices) {
  StartPlan(plan);
  const std::vector<INIEntry> entries = ParseINISectionText(text, "[flightplan]", false);
  std::unordered_map<std::string, const INIEntry*> byKey;
  for (const INIEntry& e : entries) byKey.emplace(e.Key, &e);
  const auto value = [&](const std::string& key) -> const INIEntry* {
    const auto it = byKey.find(key);
    return it == byKey.end() ? nullptr : it->second;
  };
  if (const INIEntry* type = value("TYPE")) plan.FlightRules = type->Value;
  if (const INIEntry* dep = value("DEPARTURE_ID"))
    plan.FlightPlanDeparture = Trim(Split(dep->Value, ',')[0]);
  if (const INIEntry* dest = value("DESTINATION_ID"))
    plan.FlightPlanDestination = Trim(Split(dest->Value, ',')[0]);

  for (int n = 0;; ++n) {
    const INIEntry* e = value("WAYPOINT." + std::to_string(n));
    if (e == nullptr || e->Value.empty()) break;
    std::vector<std::string> fields = Split(e->Value, ',');
    for (std::string& f : fields) f = Trim(f);
    // Two layouts are in use: "ident, type, lat, lon, alt" and the later
    // "region, ident, , name, type, lat, lon, alt, airway". The latitude is
    // the first field that begins with its hemisphere and a digit.
    size_t lat = 0;
    for (size_t i = 1; i + 1 < fields.size() && lat == 0; ++i) {
      const std::string& f = fields[i];
      if (f.size() > 1 && (f[0] == 'N' || f[0] == 'S' || f[0] == 'n' || f[0] == 's') &&
          f[1] >= '0' && f[1] <= '9')
        lat = i;
    }
    if (lat < 1) {
      Note(notices, file, e->Line,
           "waypoint." + std::to_string(n) + " has no position; passed over");
      continue;
    }
    Waypoint w;
    w.WaypointType = fields[lat - 1];
    w.Name = lat >= 4 ? fields[1] : fields[0];
    if (w.WaypointType.find("LOCWAY") != std::string::npos)
      w.Name = w.Name.size() > 2 ? w.Name.substr(2) : std::string();
    const bool read = WalkCoOrd(fields[lat], w.Latitude) && WalkCoOrd(fields[lat + 1], w.Longitude);
    if (!read || !InRange(w.Latitude, w.Longitude)) {
      Note(notices, file, e->Line,
           "waypoint." + std::to_string(n) + " position \"" + fields[lat] + ", " + fields[lat + 1] +
               "\" cannot be read; passed over");
      continue;
    }
    if (lat + 2 < fields.size()) w.Altitude = CLng(ParseCoOrd(fields[lat + 2]));
    if (!AddWaypoint(plan, std::move(w), file, e->Line, notices)) break;
  }
  FinishPlan(plan, file, notices);
}

void ProcessXMLFlightPlan(std::string_view text, FlightPlan& plan, std::string_view file,
                          Notices* notices) {
  StartPlan(plan);
  const std::string upper = AsciiUpper(text);
  plan.FlightRules = Between(text, upper, "<FPTYPE>", "</FPTYPE>");
  plan.FlightPlanDeparture = Between(text, upper, "<DEPARTUREID>", "</DEPARTUREID>");
  plan.FlightPlanDestination = Between(text, upper, "<DESTINATIONID>", "</DESTINATIONID>");

  size_t pos = 0;
  size_t counted = 0;
  int line = 1;
  // "<ATCWaypoint id=...>" as the older simulators write it, or a bare
  // "<ATCWaypoint>" with the name in its ICAO block as the latest one does.
  while ((pos = upper.find("<ATCWAYPOINT", pos)) != std::string::npos) {
    const char after = pos + 12 < upper.size() ? upper[pos + 12] : '\0';
    if (after != ' ' && after != '>' && after != '\t' && after != '\n' && after != '\r') {
      pos += 12;
      continue;
    }
    line += static_cast<int>(std::count(upper.begin() + static_cast<long>(counted),
                                        upper.begin() + static_cast<long>(pos), '\n'));
    counted = pos;
    size_t end = upper.find("</ATCWAYPOINT>", pos);
    if (end == std::string::npos) end = upper.size();
    const std::string_view block(text.data() + pos, end - pos);
    const std::string_view upperBlock(upper.data() + pos, end - pos);
    pos = end;

    const size_t tagEnd = std::min(upperBlock.find('>'), upperBlock.size());
    Waypoint w;
    w.Name = WaypointId(block.substr(0, tagEnd), upperBlock.substr(0, tagEnd));
    if (w.Name.empty()) w.Name = Between(block, upperBlock, "<ICAOIDENT>", "</ICAOIDENT>");
    w.WaypointType = Between(block, upperBlock, "<ATCWAYPOINTTYPE>", "</ATCWAYPOINTTYPE>");
    std::string position = Between(block, upperBlock, "<WORLDPOSITION>", "</WORLDPOSITION>");
    std::replace(position.begin(), position.end(), static_cast<char>(kLatin1Degree), '*');
    const std::vector<std::string> fields = Split(position, ',');
    const bool read =
        fields.size() >= 2 && WalkCoOrd(fields[0], w.Latitude) && WalkCoOrd(fields[1], w.Longitude);
    if (!read || !InRange(w.Latitude, w.Longitude)) {
      Note(notices, file, line,
           "flight plan point " + w.Name + " position \"" + position +
               "\" cannot be read; passed over");
      continue;
    }
    if (fields.size() >= 3) w.Altitude = CLng(ParseCoOrd(fields[2]));
    if (!AddWaypoint(plan, std::move(w), file, line, notices)) break;
  }
  FinishPlan(plan, file, notices);
}

void ProcessFlightPlanText(std::string_view text, FlightPlan& plan, std::string_view file,
                           Notices* notices) {
  if (IsXMLFlightPlan(text))
    ProcessXMLFlightPlan(text, plan, file, notices);
  else
    ProcessINIFlightPlan(text, plan, file, notices);
}

bool ProcessFlightPlan(const std::string& file, FlightPlan& plan, Notices* notices) {
  const std::optional<std::string> text = TryReadFile(file);
  if (!text) return false;
  ProcessFlightPlanText(*text, plan, file, notices);
  plan.File = file;
  return true;
}

std::vector<std::string> FlightPlanDisplay(const FlightPlan& plan) {
  std::vector<std::string> lines;
  lines.emplace_back("FLIGHT PLAN");
  lines.push_back(plan.FlightPlanDeparture + " TO " + plan.FlightPlanDestination);
  const int count = FlightPlanCount(plan);
  for (int i = 0; i < count && i < kDisplayedWaypoints; ++i) {
    const Waypoint& w = plan.Waypoints[static_cast<size_t>(i)];
    lines.push_back(std::to_string(i + 1) + ": " + w.Name + " [" + DisplayDegrees(w.Latitude) +
                    "," + DisplayDegrees(w.Longitude) + "]");
  }
  const int first = kDisplayedWaypoints + 1;
  if (count == first) {
    lines.push_back("(waypoint " + std::to_string(first) + " not shown)");
  } else if (count > first) {
    lines.push_back("(waypoints " + std::to_string(first) + " - " + std::to_string(count) +
                    " not shown)");
  }
  return lines;
}

std::string DepartureLabel(const FlightPlan& plan) {
  return "Departure: " + plan.FlightPlanDeparture;
}

std::string DestinationLabel(const FlightPlan& plan) {
  return "Destination: " + plan.FlightPlanDestination;
}

std::vector<std::string> AnnounceProcessFlightPlan(FlightPlan& plan, Notices* notices) {
  if (!plan.File.empty()) ProcessFlightPlan(plan.File, plan, notices);
  return FlightPlanDisplay(plan);
}

void cmdClearFlightPlan_Click(FlightPlan& plan) {
  plan = FlightPlan{};
  plan.NextWaypoint = 0;
}

std::string SimulatorFlightPlanFile(std::string_view flightFile, std::string_view planFolder) {
  const std::string given = Trim(flightFile);
  if (given.empty()) return {};
  const auto inPlanFolder = [&](const std::string& name) -> std::string {
    if (planFolder.empty()) return {};
    std::string candidate = TidyFolder(planFolder) + GetFileName(name);
    if (GetFileExtension(GetFileName(candidate)).empty()) candidate += ".PLN";
    return FileExists(candidate) ? candidate : std::string();
  };
  const std::string ext = Upper(GetFileExtension(GetFileName(given)));
  if (ext == "PLN") return FileExists(given) ? given : inPlanFolder(given);
  if (ext != "FLT" || !FileExists(given)) return {};
  const std::vector<INIEntry> flight = ParseINIFileSection(given, "[GPS_Engine]", false);
  const std::string plan = GetValueFromINI(flight, "GPS_Engine", "Filename").Value;
  if (plan.empty()) return {};
  if (FileExists(plan)) return plan;
  return inPlanFolder(plan);
}

SimulatorPlanLoad LoadSimulatorFlightPlan(FlightPlan& plan, bool connected, bool p3d,
                                          std::string_view flightFile, std::string_view planFolder,
                                          Notices* notices) {
  SimulatorPlanLoad result;
  if (!connected) {
    result.Message = std::string(p3d ? kLoadP3DFirst : kLoadSimulatorFirst);
    return result;
  }
  if (planFolder.empty() || !FolderExists(planFolder)) {
    result.Message = std::string(kNoPlanFolder);
    return result;
  }
  const std::string file = SimulatorFlightPlanFile(flightFile, planFolder);
  if (file.empty() || !ProcessFlightPlan(file, plan, notices)) {
    result.Message = "The simulator has no flight plan in use.";
    return result;
  }
  result.Loaded = true;
  return result;
}

}  // namespace vantoro
