#include "world/profiles.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "base/files.h"
#include "base/ini.h"
#include "base/numbers.h"
#include "base/text.h"

namespace vantoro {

namespace {

constexpr char kNoTitle[] = "N/A";

// The whole part of a number as a hand calculation gives it: 200 x 1.15 is
// 230, though in binary fractions the product falls just short of it.
double WholePart(double x) {
  return std::floor(x + 1e-9 * std::max(1.0, std::fabs(x)));
}

// Whole part of a number as page text, clamped so that no file can overflow it.
std::string WholeText(double x) {
  double f = WholePart(x);
  if (f > 2147483647.0) f = 2147483647.0;
  if (f < -2147483648.0) f = -2147483648.0;
  return std::to_string(static_cast<long long>(f));
}

double PageNumber(const std::string& text) {
  return INIValueNumber(text).value_or(0);
}

// The aircraft folders whose aircraft.cfg claims retractable gear (or
// spoilers) that the aircraft does not have.
bool FixedGearFolder(std::string_view folder) {
  const std::string f = Upper(Trim(folder));
  return f == "CARENADO CT182T_SKYLANE" || f == "A2A_C172" || f == "A2A_C182";
}

bool NoSpoilerFolder(std::string_view folder) {
  const std::string f = Upper(Trim(folder));
  return f == "A2A_C172" || f == "A2A_C182";
}

// Fills the page from the entries of a profile file, after the reset.
void ReadProfileEntries(bool cfg, const std::vector<INIEntry>& entries, std::string_view folder,
                        bool heavyAircraft, AircraftValues& a) {
  RawProfile& raw = a.Raw;
  auto get = [&](std::string_view section, std::string_view key) {
    return GetValueFromINI(entries, section, key).Value;
  };
  auto number = [&](std::string_view section, std::string_view key) {
    return INIValueNumber(get(section, key));
  };

  // Flaps. Position 0 of aircraft.cfg is the retracted one and is not read.
  for (int i = 1; i <= kFlapPositions; ++i) {
    const size_t page = static_cast<size_t>(i - 1);
    const std::string key = "flaps-position." + std::to_string(i);
    const bool present = number("flaps.0", key).has_value();
    if (present) raw.FlapPos[page] = get("flaps.0", key);
    if (cfg) {
      if (!present) continue;
      const auto damaging = number("flaps.0", "damaging-speed");
      if (damaging && *damaging > 0)
        raw.FlapSpeed[page] = WholeText(*damaging * kCfgFlapSpeedFactor);
    } else {
      const auto speed = number("reference speeds", "IASTooFastForFlaps" + std::to_string(i - 1));
      raw.FlapSpeed[page] = speed ? WholeText(*speed) : "0";
    }
  }

  // Clean stall.
  if (number("reference speeds", "IASStallCruise"))
    raw.IASStallCruise = get("reference speeds", "IASStallCruise");
  if (cfg) {
    if (const auto v = number("reference speeds", "flaps_up_stall_speed"))
      raw.IASStallCruise = WholeText(*v);
  }

  // aircraft.cfg gives every position the same limit; spread them so that
  // the first keeps it and the limit falls in a straight line to the clean
  // stall speed 45 degrees beyond the first position.
  if (cfg) {
    const double top = PageNumber(raw.FlapSpeed[0]);
    const double stall = PageNumber(raw.IASStallCruise);
    const double first = PageNumber(raw.FlapPos[0]);
    int last = 0;
    for (int i = 1; i <= kFlapPositions; ++i)
      if (PageNumber(raw.FlapSpeed[static_cast<size_t>(i - 1)]) > 0) last = i;
    for (int i = 1; i <= last; ++i) {
      const size_t page = static_cast<size_t>(i - 1);
      if (PageNumber(raw.FlapSpeed[page]) <= 0) continue;
      const double pos = PageNumber(raw.FlapPos[page]);
      const double speed = top - WholePart((pos - first) / kCfgFlapSpreadDegrees * (top - stall));
      raw.FlapSpeed[page] = speed < stall ? raw.IASStallCruise : WholeText(speed);
    }
  }

  // Landing stall.
  if (number("reference speeds", "IASStallLanding"))
    raw.IASStallLanding = get("reference speeds", "IASStallLanding");
  if (cfg) {
    if (const auto v = number("reference speeds", "full_flaps_stall_speed"))
      raw.IASStallLanding = WholeText(*v);
  }

  // Gear.
  if (get("misc settings", "RetractableGear") == "1") raw.RetractableGear = true;
  if (cfg && number("contact_points", "gear_system_type")) raw.RetractableGear = true;
  if (FixedGearFolder(folder)) raw.RetractableGear = false;

  raw.MaxGearExtension = "0";
  if (raw.RetractableGear) {
    if (number("reference speeds", "MaxGearExtension"))
      raw.MaxGearExtension = get("reference speeds", "MaxGearExtension");
    if (cfg) {
      if (const auto damaging = number("flaps.0", "damaging-speed")) {
        double gear = WholePart(WholePart(*damaging) * kCfgGearSpeedFactor);
        if (gear > kCfgGearSpeedCap) gear = kCfgGearSpeedCap;
        raw.MaxGearExtension = WholeText(gear);
      }
    }
  }

  // Spoilers: the types whose models carry spoiler entries they do not have.
  const bool skipSpoilers = a.WantType(AircraftType::C208B) ||
                            a.WantType(AircraftType::TwinOtter) || a.WantType(AircraftType::DC3) ||
                            NoSpoilerFolder(folder);
  if (!skipSpoilers) {
    if (get("misc settings", "Spoilers") == "1") raw.Spoilers = true;
    if (cfg) {
      const auto limit = number("airplane_geometry", "spoiler_limit");
      if (limit && *limit > 0) raw.Spoilers = true;
    }
  }

  if (get("misc settings", "FloatPlane") == "1") raw.FloatPlane = true;

  if (get("misc settings", "FlapsDownDuringTaxi") == "1") raw.FlapsDownDuringTaxi = true;
  if (cfg && heavyAircraft) raw.FlapsDownDuringTaxi = true;
}

int StoredNumber(std::string_view file, std::string_view key) {
  const auto v = INIValueNumber(LoadAircraftSelection(file, key));
  if (!v || *v != std::floor(*v) || std::fabs(*v) > 1e9) return -1;
  return static_cast<int>(*v);
}

std::string TitleKey(std::string_view title) {
  return title.empty() ? std::string(kNoTitle) : std::string(title);
}

}  // namespace

std::string FindAircraftFile(std::string_view kind, const AircraftContext& ctx) {
  const std::string k = Upper(kind);
  const std::string airFolder = GetFolder(ctx.Identity.AirFile);
  const std::string name = AircraftFolderName(ctx.Identity.AirFile);
  std::string path;
  if (k == "FSR" || k == "FSU") {
    path = TidyFolder(ctx.Root) + "Aircraft\\" + name + (k == "FSR" ? ".fsr" : ".fsu");
  } else if (k == "CFG") {
    // Older simulators give the aircraft file below their own folder; FSX
    // and Prepar3D give it whole.
    if (ctx.Simulator == "FS2002") {
      path = ctx.FS2002Folder + airFolder + "aircraft.cfg";
    } else if (ctx.Simulator == "FS2004") {
      path = ctx.FS2004Folder + airFolder + "aircraft.cfg";
    } else if (ctx.Simulator == "FSX") {
      path = (ctx.SimulatorCode == 9 ? ctx.FSXFolder : std::string()) + airFolder + "aircraft.cfg";
    } else if (ctx.Simulator == "P3D") {
      path = airFolder + "aircraft.cfg";
    } else {
      return {};
    }
  } else {
    return {};
  }
  return FileExists(path) ? path : std::string();
}

bool LoadAircraftFile(std::string_view kind, std::string_view path, std::string_view folder,
                      bool heavyAircraft, AircraftValues& a) {
  const std::optional<std::string> text = TryReadFile(path);
  if (!text) return false;
  a.SourceFile = std::string(path);
  ResetAircraftTab(a.Raw);
  ReadProfileEntries(Upper(kind) == "CFG", ParseINIText(*text, true), folder, heavyAircraft, a);
  return true;
}

bool LoadAircraftData(std::string_view kind, const AircraftContext& ctx, AircraftValues& a) {
  const std::string path = FindAircraftFile(kind, ctx);
  if (path.empty()) return false;
  return LoadAircraftFile(kind, path, AircraftFolderName(ctx.Identity.AirFile), ctx.HeavyAircraft,
                          a);
}

std::string AircraftDatPath(std::string_view root) {
  return TidyFolder(root) + "Aircraft.dat";
}

std::string InstructorVolumeKey(std::string_view title) {
  return "InstructorVolume-" + std::string(title);
}

std::string InstructorGPWSKey(std::string_view title) {
  return "InstructorGPWS-" + std::string(title);
}

std::string MonitorEnginesKey(std::string_view title) {
  return "MonitorEngines-" + std::string(title);
}

std::string MonitorLightsKey(int light, std::string_view title) {
  return "MonitorLights" + std::to_string(light) + "-" + std::string(title);
}

std::string OptionBoxKey(int box, std::string_view title) {
  return "chkOption" + std::to_string(box) + "-" + std::string(title);
}

void RestoreAircraftSelections(AircraftValues& a, std::string_view root, int& instructorVolume) {
  const std::string dat = AircraftDatPath(root);
  const std::string& title = a.Title;
  const int volume = StoredNumber(dat, InstructorVolumeKey(title));
  instructorVolume = volume >= 0 && volume <= 4 ? volume : 2;

  auto box = [&](const std::string& key) { return StoredNumber(dat, key) == 1; };
  MonitoringOptions& m = a.Monitoring;
  m.WantnoGPWS = box(InstructorGPWSKey(title));
  m.MonitorEngines = box(MonitorEnginesKey(title));
  for (int i = 0; i < kMonitorLights; ++i)
    m.MonitorLights[static_cast<size_t>(i)] = box(MonitorLightsKey(i, title));
  for (int n : kRestoredOptionBoxes) m.Boeing[static_cast<size_t>(n)] = box(OptionBoxKey(n, title));
}

std::string AircraftChanged(AircraftValues& a, const AircraftContext& ctx, int& instructorVolume) {
  a.Title = TitleKey(ctx.Identity.Title);
  RestoreAircraftSelections(a, ctx.Root, instructorVolume);

  // The stored choice is tried first; the product profile is preferred to
  // an estimate when the pilot never chose, and aircraft.cfg is the last
  // resort. A choice of aircraft.cfg reads the product profile too, then
  // overwrites it.
  const int chosen = StoredNumber(AircraftDatPath(ctx.Root), a.Title);
  bool loaded = false;
  if (chosen == kSourceUser && LoadAircraftData("FSU", ctx, a)) {
    loaded = true;
    a.Source = kSourceUser;
  }
  if ((chosen == kSourceProduct || !loaded) && LoadAircraftData("FSR", ctx, a)) {
    loaded = true;
    a.Source = kSourceProduct;
  }
  if ((chosen == kSourceAircraftCfg || !loaded) && LoadAircraftData("CFG", ctx, a))
    a.Source = kSourceAircraftCfg;

  SetupAircraftValues(a);
  return kAircraftChangedNotice;
}

bool SaveAircraftChoice(std::string_view root, std::string_view title, std::string_view key,
                        int value) {
  if (title == kNoTitle) return true;
  return SaveAircraftSelection(AircraftDatPath(root), key, std::to_string(value));
}

namespace {

// A source button: load, and store the choice when the file was there.
std::string ChooseSource(AircraftValues& a, const AircraftContext& ctx, std::string_view kind,
                         int source, std::string_view missing) {
  std::string message;
  if (LoadAircraftData(kind, ctx, a)) {
    if (!SaveAircraftSelection(AircraftDatPath(ctx.Root), a.Title, std::to_string(source)))
      message = "Can't write " + AircraftDatPath(ctx.Root);
  } else {
    message = std::string(missing);
  }
  a.Source = source;
  a.Locked = true;
  return message;
}

}  // namespace

std::string ChooseVantoroData(AircraftValues& a, const AircraftContext& ctx) {
  return ChooseSource(a, ctx, "FSR", kSourceProduct, "Can't find the FSR File");
}

std::string ChooseFSData(AircraftValues& a, const AircraftContext& ctx) {
  return ChooseSource(a, ctx, "CFG", kSourceAircraftCfg, "Can't find the AIRCRAFT.CFG File");
}

std::string ChooseUserData(AircraftValues& a, const AircraftContext& ctx) {
  // A missing file is no error: the page keeps its values as a starting point.
  LoadAircraftData("FSU", ctx, a);
  std::string message;
  if (!SaveAircraftSelection(AircraftDatPath(ctx.Root), a.Title, std::to_string(kSourceUser)))
    message = "Can't write " + AircraftDatPath(ctx.Root);
  a.Source = kSourceUser;
  a.Locked = false;
  return message;
}

void RestorePageLock(AircraftValues& a) {
  if (a.Source == kSourceUser) a.Locked = false;
}

namespace {

// One field's check: the "invalid" line, else the range line.
void CheckField(std::string& out, const std::string& text, const std::string& invalid,
                const std::string& range, double low, double high, bool whole) {
  const auto v = INIValueNumber(text);
  if (!v) {
    out += invalid + "\r\n";
  } else if (*v < low || *v > high || (whole && *v != std::floor(*v))) {
    out += range + "\r\n";
  }
}

constexpr double kMaxFlapPosition = 99.9;
constexpr double kMaxSpeed = 99999;

}  // namespace

std::string ValidateAircraftUserData(const RawProfile& raw) {
  std::string out;
  for (int i = 1; i <= kFlapPositions; ++i) {
    const std::string n = std::to_string(i);
    CheckField(out, raw.FlapPos[static_cast<size_t>(i - 1)], "* Flap Position " + n + " is invalid",
               "* Flap Position " + n + " must be between 0 and 99.9", 0, kMaxFlapPosition, false);
  }
  for (int i = 1; i <= kFlapPositions; ++i) {
    const std::string n = std::to_string(i);
    CheckField(out, raw.FlapSpeed[static_cast<size_t>(i - 1)], "* Flap Speed " + n + " is invalid",
               "* Flap Speed " + n + " must be a whole number between 0 and 99,999", 0, kMaxSpeed,
               true);
  }
  CheckField(out, raw.IASStallCruise, "* Clean Stall Speed is invalid",
             "* Clean Stall Speed must be a whole number between 0 and 99,999", 0, kMaxSpeed, true);
  CheckField(out, raw.IASStallLanding, "* Landing Config. Stall Speed is invalid",
             "* Landing Config. Stall Speed must be a whole number between 0 and 99,999", 0,
             kMaxSpeed, true);
  CheckField(out, raw.MaxGearExtension, "* Max Gear Extension Speed is invalid",
             "* Max Gear Extension Speed must be a whole number between 0 and 99,999", 0, kMaxSpeed,
             true);
  return out;
}

std::string ComposeUserProfile(const RawProfile& raw) {
  auto line = [](std::string_view key, std::string_view value) {
    return std::string(key) + "=" + Trim(value) + "\r\n";
  };
  auto flag = [](bool b) { return b ? "1" : "0"; };
  std::string out = "[flaps.0]\r\n";
  for (int i = 1; i <= kFlapPositions; ++i) {
    std::string pos = Trim(raw.FlapPos[static_cast<size_t>(i - 1)]);
    for (char& c : pos)
      if (c == ',') c = '.';
    out += line("flaps-position." + std::to_string(i), pos);
  }
  out += "\r\n[reference speeds]\r\n";
  for (int i = 0; i < kFlapPositions; ++i)
    out += line("IASTooFastForFlaps" + std::to_string(i), raw.FlapSpeed[static_cast<size_t>(i)]);
  out += line("IASStallCruise", raw.IASStallCruise);
  out += line("IASStallLanding", raw.IASStallLanding);
  out += line("MaxGearExtension", raw.MaxGearExtension);
  out += "\r\n[misc settings]\r\n";
  out += line("RetractableGear", flag(raw.RetractableGear));
  out += line("Spoilers", flag(raw.Spoilers));
  out += line("FloatPlane", flag(raw.FloatPlane));
  out += line("FlapsDownDuringTaxi", flag(raw.FlapsDownDuringTaxi));
  return out;
}

std::string SaveAircraftUserData(std::string_view root, std::string_view folder,
                                 const RawProfile& raw) {
  std::string errors = ValidateAircraftUserData(raw);
  if (!errors.empty()) return errors;
  if (Trim(folder).empty()) return "No aircraft has been loaded from the simulator yet.\r\n";
  const std::string path = TidyFolder(root) + "Aircraft\\" + std::string(folder) + ".fsu";
  if (!WriteINIFile(path, ComposeUserProfile(raw))) return "Can't write " + path + "\r\n";
  return {};
}

bool WantEstimatingNotice(const AircraftValues& a, double flightTimeSeconds, bool flightRunning) {
  return ProfileIsEstimated(a) && a.Source != kSourceProduct && a.Source != kSourceUser &&
         flightTimeSeconds > kUnknownAircraftAfterSeconds && flightRunning;
}

std::vector<std::string> EstimatedProfileSummary(const AircraftValues& a) {
  if (!ProfileIsEstimated(a)) return {};
  return {"", "Last aircraft was flown using data estimated by Vantoro.",
          "If you wish to make changes to these values, go to the",
          "Aircraft Page and click User Specified Data. Make your changes and then",
          "click the Save User Data button."};
}

std::string DataSourceStatus(const AircraftValues& a) {
  if (a.Source == kSourceProduct) return "[FSR]  ";
  if (a.Source == kSourceUser) return "[FSU]  ";
  return {};
}

std::string ProfileReport(const AircraftValues& a) {
  const RawProfile& raw = a.Raw;
  std::string out;
  auto line = [&](std::string_view name, std::string_view value) {
    out += std::string(name) + "=" + std::string(value) + "\n";
  };
  auto flag = [](bool b) { return b ? "1" : "0"; };
  for (int i = 1; i <= kFlapPositions; ++i)
    line("FlapPos" + std::to_string(i), raw.FlapPos[static_cast<size_t>(i - 1)]);
  for (int i = 1; i <= kFlapPositions; ++i)
    line("FlapSpeed" + std::to_string(i), raw.FlapSpeed[static_cast<size_t>(i - 1)]);
  line("IASStallCruise", raw.IASStallCruise);
  line("IASStallLanding", raw.IASStallLanding);
  line("MaxGearExtension", raw.MaxGearExtension);
  line("RetractableGear", flag(raw.RetractableGear));
  line("Spoilers", flag(raw.Spoilers));
  line("FloatPlane", flag(raw.FloatPlane));
  line("FlapsDownDuringTaxi", flag(raw.FlapsDownDuringTaxi));
  line("StallCruise", std::to_string(a.StallCruise));
  line("StallLanding", std::to_string(a.StallLanding));
  line("StallLandingPlus10", std::to_string(a.StallLandingPlus10));
  line("StallLandingPlus15", std::to_string(a.StallLandingPlus15));
  line("StallLandingPlus20", std::to_string(a.StallLandingPlus20));
  line("GearSpeedLimit", std::to_string(a.GearSpeedLimit));
  for (int i = 1; i <= kFlapPositions; ++i)
    line("FlapAngleLimit" + std::to_string(i),
         std::to_string(a.FlapAngleLimit[static_cast<size_t>(i)]));
  for (int i = 1; i <= kFlapPositions; ++i)
    line("FlapSpeedLimit" + std::to_string(i),
         std::to_string(a.FlapSpeedLimit[static_cast<size_t>(i)]));
  line("FullFlapsValue", NumberText(a.FullFlapsValue));
  return out;
}

}  // namespace vantoro
