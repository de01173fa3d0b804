#include "app/web/web_api.h"

#include <array>
#include <filesystem>
#include <utility>

#include "base/files.h"
#include "base/text.h"
#include "engine/tick_rules.h"
#include "records/flight_log.h"
#include "shell/instructor.h"
#include "voice/voice_commands.h"
#include "world/profiles.h"

namespace vantoro::web {

namespace fs = std::filesystem;

namespace {

// The pilot page's boxes, by their keys in the pilot file.
struct PilotBox {
  const char* key;
  bool PilotRecord::*field;
};
constexpr std::array<PilotBox, 26> kPilotBoxes = {{
    {"HaveYokePressure", &PilotRecord::HaveYokePressure},
    {"RudderController", &PilotRecord::RudderController},
    {"WantTaxiInWindAdvice", &PilotRecord::WantTaxiInWindAdvice},
    {"MonitorUseOfLights", &PilotRecord::MonitorUseOfLights},
    {"WantRandomFailures", &PilotRecord::WantRandomFailures},
    {"WantLooseWireFailures", &PilotRecord::WantLooseWireFailures},
    {"PausePointsLoss", &PilotRecord::PausePointsLoss},
    {"PauseWarning", &PilotRecord::PauseWarning},
    {"Basic", &PilotRecord::Basic},
    {"DisableSound", &PilotRecord::DisableSound},
    {"BackgroundSounds", &PilotRecord::BackgroundSounds},
    {"Humour", &PilotRecord::Humour},
    {"Captions", &PilotRecord::Captions},
    {"MonGT", &PilotRecord::MonGT},
    {"MonAT", &PilotRecord::MonAT},
    {"AdviceWP", &PilotRecord::AdviceWP},
    {"AdviceVORNDB", &PilotRecord::AdviceVORNDB},
    {"MonitorVOR", &PilotRecord::MonitorVOR},
    {"AutoNearestAirport", &PilotRecord::AnnounceNearestAirport},
    {"MonitorTaxiways", &PilotRecord::MonitorTaxiways},
    {"InstructorNoticesFailures", &PilotRecord::InstructorNoticesFailures},
    {"AutoDetectModeCruise", &PilotRecord::AutoDetectModeCruise},
    {"AutoDetectModeLanding", &PilotRecord::AutoDetectModeLanding},
    {"AutoTuneILS", &PilotRecord::AutoTuneILS},
    {"AutoTuneATIS", &PilotRecord::AutoTuneATIS},
    {"AutoTuneVOR", &PilotRecord::AutoTuneVOR},
}};

// The pause gap is in seconds; an hour is more than any pilot asks for.
constexpr int kMaxPauseGap = 3600;
// A name typed in the save dialog: a file name, never a path.
constexpr size_t kMaxPilotNameLength = 64;

json RecordJson(const PilotRecord& r) {
  json j;
  j["name"] = r.name;
  j["image"] = r.image;
  j["Instructor"] = r.Instructor;
  j["FailureSlider"] = r.FailureSlider;
  j["PauseGap"] = r.PauseGap;
  for (const PilotBox& b : kPilotBoxes) j[b.key] = r.*(b.field);
  return j;
}

json Done(std::string message = {}) {
  json j;
  j["ok"] = true;
  if (!message.empty()) j["message"] = std::move(message);
  return j;
}

// The pilot file's name as the load dialog shows it.
std::string FileNameOf(const std::string& path) {
  return fs::path(NativePath(path)).filename().string();
}

bool SafeFileName(const std::string& name) {
  if (name.empty() || name.size() > kMaxPilotNameLength || name == "." || name == "..")
    return false;
  for (char ch : name) {
    const auto c = static_cast<unsigned char>(ch);
    if (c < 0x20 || ch == '/' || ch == '\\' || ch == ':' || ch == '*' || ch == '?' || ch == '"' ||
        ch == '<' || ch == '>' || ch == '|')
      return false;
  }
  return name.find("..") == std::string::npos;
}

AircraftContext ContextOf(Instructor& in) {
  Cockpit c = in.cockpit();
  return AircraftContext{
      in.sound.SoundRoot,      in.flight.SimulatorName, static_cast<int>(c.sim.FsId() & 0xFFFF),
      in.options.FS2002Folder, in.options.FS2004Folder, in.options.FSXFolder,
      IdentityOf(c),           in.link.HeavyAircraft};
}

// The names of the monitoring boxes, by index; "" for boxes without a function.
const std::array<const char*, kOptionBoxes>& BoxNames() {
  static const std::array<const char*, kOptionBoxes> kNames = {
      "Monitor FSX Boeing 737-800",   // 0
      "Monitor MCP Heading",          // 1
      "Monitor MCP Speed",            // 2
      "Monitor MCP Altitude",         // 3
      "",                             // 4
      "",                             // 5 (737, unnamed)
      "Monitor Cessna 152",           // 6
      "Monitor Mooney",               // 7
      "Monitor Beechcraft Baron 58",  // 8
      "Monitor King Air 350",         // 9
      "Monitor Fuel Pump",            // 10
      "Monitor Cessna 172",           // 11
      "Monitor Cessna 208B",          // 12
      "Monitor Cessna 182",           // 13
      "Monitor Fuel Pump",            // 14
      "Monitor Carb. Heat",           // 15
      "Monitor Carb. Heat",           // 16
      "",                             // 17
      "",                             // 18
      "Monitor FGC Speed",            // 19
      "Monitor FGC Heading",          // 20
      "Monitor Learjet 45",           // 21
      "Monitor FGC Altitude",         // 22
      "Monitor Douglas DC3",          // 23
      "Monitor Fuel Pump",            // 24
      "Monitor Carb. Heat",           // 25
      "",                             // 26
      "",                             // 27
      "Monitor MCP Altitude",         // 28
      "Monitor MCP Speed",            // 29
      "Monitor MCP Heading",          // 30
      "Monitor Boeing 757",           // 31
      "Monitor FCP Speed",            // 32
      "Monitor FCP Altitude",         // 33
      "Monitor CRJ700",               // 34
      "Monitor FCP Heading",          // 35
      "",                             // 36
      "Monitor AP Speed",             // 37
      "Monitor AP Alt",               // 38
      "Monitor DHC-6",                // 39
      "Monitor AP Hdg",               // 40
      "",                             // 41
  };
  return kNames;
}

// The type frames in the order of the page, each with its boxes.
struct TypeFrame {
  const char* name;
  int frame;
  std::array<int, 4> boxes;  // -1 where the frame has fewer
};
constexpr std::array<TypeFrame, kAircraftTypes> kTypeFrames = {{
    {"Boeing 737-800", 1, {0, 1, 2, 3}},
    {"Cessna 172", 2, {11, -1, -1, -1}},
    {"Cessna 152", 3, {6, -1, -1, -1}},
    {"Mooney Bravo", 4, {7, -1, -1, -1}},
    {"Beechcraft Baron 58", 5, {8, -1, -1, -1}},
    {"Cessna 208B", 6, {12, -1, -1, -1}},
    {"Cessna 182", 7, {13, 14, 15, -1}},
    {"King Air 350", 8, {9, 10, 16, -1}},
    {"Learjet 45", 9, {21, 19, 20, 22}},
    {"Douglas DC3", 10, {23, -1, -1, -1}},
    {"Boeing 757", 11, {31, 30, 29, 28}},
    {"CRJ700", 12, {34, 32, 33, 35}},
    {"DHC-6 Twin Otter", 13, {39, 37, 38, 40}},
}};

const char* SourceName(int source) {
  switch (source) {
    case kSourceProduct:
      return "optVantoroData";
    case kSourceUser:
      return "optUserData";
    default:
      return "optFSData";
  }
}

json RawJson(const RawProfile& raw) {
  json j;
  j["FlapPos"] = raw.FlapPos;
  j["FlapSpeed"] = raw.FlapSpeed;
  j["IASStallCruise"] = raw.IASStallCruise;
  j["IASStallLanding"] = raw.IASStallLanding;
  j["MaxGearExtension"] = raw.MaxGearExtension;
  j["RetractableGear"] = raw.RetractableGear;
  j["Spoilers"] = raw.Spoilers;
  j["FloatPlane"] = raw.FloatPlane;
  j["FlapsDownDuringTaxi"] = raw.FlapsDownDuringTaxi;
  return j;
}

// Reads the page's fields from JSON; false with `error` when a field is of
// the wrong kind or unknown.
bool ReadRaw(const json& j, RawProfile& raw, std::string& error) {
  if (!j.is_object()) {
    error = "\"profile\" must be an object";
    return false;
  }
  for (auto it = j.begin(); it != j.end(); ++it) {
    const std::string& k = it.key();
    const json& v = it.value();
    if (k == "FlapPos" || k == "FlapSpeed") {
      auto& target = k == "FlapPos" ? raw.FlapPos : raw.FlapSpeed;
      if (!v.is_array() || v.size() != target.size()) {
        error = "\"" + k + "\" must be a list of " + std::to_string(target.size()) + " texts";
        return false;
      }
      for (size_t i = 0; i < target.size(); ++i) {
        if (!v[i].is_string()) {
          error = "\"" + k + "\" must be a list of texts";
          return false;
        }
        target[i] = v[i].get<std::string>();
      }
    } else if (k == "IASStallCruise" || k == "IASStallLanding" || k == "MaxGearExtension") {
      if (!v.is_string()) {
        error = "\"" + k + "\" must be a text";
        return false;
      }
      (k == "IASStallCruise"    ? raw.IASStallCruise
       : k == "IASStallLanding" ? raw.IASStallLanding
                                : raw.MaxGearExtension) = v.get<std::string>();
    } else if (k == "RetractableGear" || k == "Spoilers" || k == "FloatPlane" ||
               k == "FlapsDownDuringTaxi") {
      if (!v.is_boolean()) {
        error = "\"" + k + "\" must be true or false";
        return false;
      }
      (k == "RetractableGear" ? raw.RetractableGear
       : k == "Spoilers"      ? raw.Spoilers
       : k == "FloatPlane"    ? raw.FloatPlane
                              : raw.FlapsDownDuringTaxi) = v.get<bool>();
    } else {
      error = "unknown profile field \"" + k + "\"";
      return false;
    }
  }
  return true;
}

}  // namespace

json Refusal(int status, std::string_view message) {
  json j;
  j["status"] = status;
  j["error"] = std::string(message);
  return j;
}

namespace {

// What Connect and Disconnect answer: where the connection now stands.
json ConnectionAnswer(const Instructor& in) {
  json j = Done();
  j["connected"] = in.flight.UserConnected;
  j["statusLine"] = in.flight.Status;
  return j;
}

// A file inside the data root as the pilot knows it, from the root on
// ("Aircraft/C172.fsr"); a file elsewhere in full.
std::string ShownInRoot(const std::string& root, const std::string& file) {
  if (file.empty()) return file;
  std::error_code ec;
  const fs::path base = fs::weakly_canonical(NativePath(root), ec);
  const fs::path path = fs::weakly_canonical(file, ec);
  if (ec) return file;
  const fs::path inside = path.lexically_relative(base);
  if (inside.empty() || *inside.begin() == "..") return file;
  return inside.generic_string();
}

}  // namespace

json ConnectAction(Instructor& in) {
  in.Connect();
  return ConnectionAnswer(in);
}

json DisconnectAction(Instructor& in) {
  in.Disconnect();
  return ConnectionAnswer(in);
}

json PressKeyAction(Instructor& in, const json& body) {
  if (!body.is_object() || !body.contains("key") || !body["key"].is_number_integer())
    return Refusal(400, "the request must hold \"key\", a hot key slot from 1 to 15");
  const int64_t slot = body["key"].get<int64_t>();
  if (slot < 1 || slot > kHotKeySlots)
    return Refusal(400, "\"key\" must be a hot key slot from 1 to 15");
  if (!in.flight.UserConnected)
    return Refusal(409, "the hot keys act in flight: connect to the simulator first");
  in.PressHotKey(static_cast<int>(slot));
  json j = Done();
  j["key"] = slot;
  return j;
}

json PilotPage(Instructor& in) {
  json j;
  j["record"] = RecordJson(in.pilot.Record);
  j["file"] = in.pilot.CurrentPilotFile.empty() ? "" : FileNameOf(in.pilot.CurrentPilotFile);
  j["unsaved"] = in.pilot.Unsaved;
  j["instructors"] = in.sound.Instructors;
  json files = json::array();
  for (const std::string& f : ListPilotFiles(in.root)) files.push_back(FileNameOf(f));
  j["files"] = files;
  j["maxFailureSlider"] = kMaxFailureSlider;
  j["maxPicturePixels"] = kMaxPilotImagePixels;
  j["unsavedQuestion"] = {kUnsavedPilotText, kCloseWithoutSavingText};
  return j;
}

json EditPilot(Instructor& in, const json& body) {
  if (!body.is_object() || !body.contains("record") || !body["record"].is_object())
    return Refusal(400, "the request must hold a \"record\" object");
  PilotRecord r = in.pilot.Record;
  for (auto it = body["record"].begin(); it != body["record"].end(); ++it) {
    const std::string& k = it.key();
    const json& v = it.value();
    if (k == "name") {
      if (!v.is_string()) return Refusal(400, "\"name\" must be a text");
      r.name = v.get<std::string>();
    } else if (k == "Instructor") {
      if (!v.is_string()) return Refusal(400, "\"Instructor\" must be a text");
      const std::string name = v.get<std::string>();
      bool installed = false;
      for (const std::string& i : in.sound.Instructors) installed = installed || i == name;
      if (!installed) return Refusal(422, "no instructor \"" + name + "\" is installed");
      r.Instructor = name;
    } else if (k == "FailureSlider" || k == "PauseGap") {
      const int high = k == "FailureSlider" ? kMaxFailureSlider : kMaxPauseGap;
      if (!v.is_number_integer() || v.get<int64_t>() < 0 || v.get<int64_t>() > high)
        return Refusal(400,
                       "\"" + k + "\" must be a whole number from 0 to " + std::to_string(high));
      (k == "FailureSlider" ? r.FailureSlider : r.PauseGap) = v.get<int32_t>();
    } else if (k == "image") {
      if (!v.is_string() || !v.get<std::string>().empty())
        return Refusal(400, "the picture is set by uploading it; \"image\" may only be cleared");
      r.image.clear();
    } else {
      bool known = false;
      for (const PilotBox& b : kPilotBoxes) {
        if (k != b.key) continue;
        if (!v.is_boolean()) return Refusal(400, "\"" + k + "\" must be true or false");
        r.*(b.field) = v.get<bool>();
        known = true;
      }
      if (!known) return Refusal(400, "unknown pilot field \"" + k + "\"");
    }
  }
  in.pilot.Record = r;
  FindAndSetInstructor(in.sound, r.Instructor);
  RefreshPilotData(in.pilot, in.sound, in.options);
  return PilotPage(in);
}

json NewPilotAction(Instructor& in) {
  if (std::string problem = NewPilot(in.pilot, in.sound, in.options); !problem.empty())
    return Refusal(409, problem);
  return PilotPage(in);
}

json LoadPilotAction(Instructor& in, const json& body) {
  if (!body.is_object() || !body.contains("file") || !body["file"].is_string())
    return Refusal(400, "the request must name a \"file\"");
  const std::string wanted = body["file"].get<std::string>();
  for (const std::string& f : ListPilotFiles(in.root)) {
    if (FileNameOf(f) != wanted) continue;
    const std::string path = TidyFolder(in.root) + kPilotRoster + f;
    if (std::string problem = LoadPilotData(path, in.pilot, in.sound, in.options); !problem.empty())
      return Refusal(422, problem);
    in.settings.PilotFile = in.pilot.CurrentPilotFile;
    in.scores.PilotFile = in.pilot.CurrentPilotFile;
    SaveSettingsTab(in.root, in.settings);
    return PilotPage(in);
  }
  return Refusal(404, "no pilot file \"" + wanted + "\" in the roster");
}

json SavePilotAction(Instructor& in, const json& body) {
  if (!body.is_object()) return Refusal(400, "the request must be a JSON object");
  std::string name;
  if (body.contains("name")) {
    if (!body["name"].is_string()) return Refusal(400, "\"name\" must be a text");
    name = body["name"].get<std::string>();
  }
  // The save dialog ("saveAs") always asks for a name.
  const bool dialog =
      body.contains("saveAs") && body["saveAs"].is_boolean() && body["saveAs"].get<bool>();
  std::string problem;
  if (Trim(name).empty()) {
    if (dialog || in.pilot.CurrentPilotFile.empty()) return Refusal(422, kNoSaveNameText);
    problem = SavePilotData(in.pilot, in.sound);
  } else {
    if (!SafeFileName(std::string(Trim(name))))
      return Refusal(400, "a pilot is saved under a plain file name, without folders");
    problem = SavePilotAs(in.root, name, in.pilot, in.sound);
  }
  if (!problem.empty()) return Refusal(problem == kNoSaveNameText ? 422 : 500, problem);
  in.settings.PilotFile = in.pilot.CurrentPilotFile;
  in.scores.PilotFile = in.pilot.CurrentPilotFile;
  SaveSettingsTab(in.root, in.settings);
  json j = PilotPage(in);
  j["message"] = "Saved " + FileNameOf(in.pilot.CurrentPilotFile);
  return j;
}

json SetPictureAction(Instructor& in, const std::string& bytes, const std::string& file) {
  const std::optional<ImageSize> size = ReadImageSize(bytes);
  if (!size) return Refusal(415, "the picture must be a PNG, JPEG, GIF or BMP image");
  if (size->height > kMaxPilotImagePixels) return Refusal(422, kImageTooHighText);
  if (size->width > kMaxPilotImagePixels) return Refusal(422, kImageTooWideText);
  std::error_code ec;
  fs::create_directories(fs::path(NativePath(file)).parent_path(), ec);
  if (!WriteFileAtomic(file, bytes)) return Refusal(500, "cannot write " + NativePath(file));
  if (std::string problem = SetPilotImage(in.pilot, file); !problem.empty())
    return Refusal(422, problem);
  RefreshPilotData(in.pilot, in.sound, in.options);
  return PilotPage(in);
}

json PicturePath(Instructor& in) {
  json j;
  j["path"] = NativePath(in.pilot.Record.image);
  return j;
}

json ListenAction(Instructor& in) {
  if (in.sound.Instructor.empty()) return Refusal(409, kNoInstructorsText);
  Cockpit c = in.cockpit();
  Voice v = c.voice();
  const int accepted = PlaySound(v, InstructorPath(in.sound, "LandedTooFast.wav"), 200, 0, 0,
                                 "PlaySound", "LandedTooFast.wav");
  if (accepted != 0) return Refusal(503, "the sound queue is full; try again in a moment");
  return Done();
}

json SettingsPage(Instructor& in) {
  const Settings& s = in.settings;
  json j;
  json set;
  set["P3DMode"] = s.P3DMode;
  set["FS2002Folder"] = s.FS2002Folder;
  set["FS2004Folder"] = s.FS2004Folder;
  set["FSXFolder"] = s.FSXFolder;
  set["FlightPlanFolder"] = s.FlightPlanFolder;
  set["PilotFile"] = s.PilotFile;
  set["TransitionAltitude"] = s.TransitionAltitude;
  set["EndFlight"] = s.EndFlight;
  set["LoadFSXPlanOnConnect"] = s.LoadFSXPlanOnConnect;
  set["GPSOverridesFlightPlan"] = s.GPSOverridesFlightPlan;
  set["SpokenTips"] = {s.SpokenTips, s.AviationTips, s.InstantHelp, s.TaxiwayTips};
  set["VoiceMode"] = s.VoiceMode;
  set["Simulator"] = s.Simulator;
  set["SimulatorHost"] = s.SimulatorHost;
  set["SimulatorPort"] = s.SimulatorPort;
  j["settings"] = set;
  // The simulator links the pilot can choose; the change is flown from the
  // next start of the program.
  j["simulators"] = {"", "fsuipc", "flightgear", "xplane"};
  j["endFlightLabels"] = kEndFlightLabels;
  j["endFlightTips"] = kEndFlightTips;
  j["voiceModes"] = kVoiceModes;
  // What the pilot may say: the grammar's phrase lists, as the recogniser
  // hears them.
  j["voicePhrases"] = VoiceGrammarLists();
  json devices = json::array();
  if (AudioOut* out = in.cockpit().audio[0]) {
    for (int i = 0; i < out->DeviceCount(); ++i) devices.push_back(out->DeviceName(i));
  }
  j["soundDevices"] = devices;
  j["soundCard"] = in.sound.SoundCard;
  return j;
}

json EditSettings(Instructor& in, const json& body) {
  if (!body.is_object()) return Refusal(400, "the request must be a JSON object");
  Settings s = in.settings;
  std::optional<int> soundCard;
  if (body.contains("soundCard")) {
    const json& v = body["soundCard"];
    const AudioOut* out = in.cockpit().audio[0];
    const int count = out != nullptr ? out->DeviceCount() : 0;
    if (!v.is_number_integer() || v.get<int64_t>() < -1 || v.get<int64_t>() >= count)
      return Refusal(400, "\"soundCard\" must be -1 (the system default) or a device of the list");
    soundCard = v.get<int>();
  }
  if (body.contains("settings")) {
    const json& set = body["settings"];
    if (!set.is_object()) return Refusal(400, "\"settings\" must be an object");
    for (auto it = set.begin(); it != set.end(); ++it) {
      const std::string& k = it.key();
      const json& v = it.value();
      auto text = [&](std::string& field) {
        if (!v.is_string() || v.get<std::string>().find_first_of("\r\n") != std::string::npos)
          return false;
        field = v.get<std::string>();
        return true;
      };
      auto folder = [&](std::string& field) {
        if (!text(field)) return false;
        field = Trim(field).empty() ? std::string() : TidyFolder(Trim(field));
        return true;
      };
      bool good = true;
      if (k == "FS2002Folder") {
        good = folder(s.FS2002Folder);
      } else if (k == "FS2004Folder") {
        good = folder(s.FS2004Folder);
      } else if (k == "FSXFolder") {
        good = folder(s.FSXFolder);
      } else if (k == "FlightPlanFolder") {
        good = folder(s.FlightPlanFolder);
      } else if (k == "TransitionAltitude") {
        good = v.is_string() && INIValueNumber(v.get<std::string>()).has_value() &&
               text(s.TransitionAltitude);
      } else if (k == "EndFlight" || k == "VoiceMode") {
        good = v.is_number_integer() && v.get<int64_t>() >= 0 && v.get<int64_t>() <= 2;
        if (good) (k == "EndFlight" ? s.EndFlight : s.VoiceMode) = v.get<int>();
      } else if (k == "LoadFSXPlanOnConnect" || k == "GPSOverridesFlightPlan") {
        good = v.is_boolean();
        if (good)
          (k == "LoadFSXPlanOnConnect" ? s.LoadFSXPlanOnConnect : s.GPSOverridesFlightPlan) =
              v.get<bool>();
      } else if (k == "Simulator") {
        good = v.is_string() && (v == "" || v == "fsuipc" || v == "flightgear" || v == "xplane") &&
               text(s.Simulator);
      } else if (k == "SimulatorHost") {
        good = v.is_string() &&
               v.get<std::string>().find_first_of(" ;,\"\t") == std::string::npos &&
               text(s.SimulatorHost);
      } else if (k == "SimulatorPort") {
        // Empty for the simulator's usual port, else a whole number 1..65535.
        const double port =
            v.is_string() ? INIValueNumber(v.get<std::string>()).value_or(0.0) : 0.0;
        good = v.is_string() &&
               (v == "" || (port >= 1 && port <= 65535 && port == static_cast<int>(port))) &&
               text(s.SimulatorPort);
      } else if (k == "SpokenTips") {
        // The four boxes of spoken tips, in the order the page shows them.
        bool* const boxes[] = {&s.SpokenTips, &s.AviationTips, &s.InstantHelp, &s.TaxiwayTips};
        good = v.is_array() && v.size() == std::size(boxes);
        for (size_t i = 0; good && i < std::size(boxes); ++i) good = v[i].is_boolean();
        for (size_t i = 0; good && i < std::size(boxes); ++i) *boxes[i] = v[i].get<bool>();
      } else {
        return Refusal(400, "unknown or fixed setting \"" + k + "\"");
      }
      if (!good) return Refusal(400, "\"" + k + "\" has a value the setting cannot take");
    }
  }
  if (s != in.settings) {
    if (!SaveSettingsTab(in.root, s))
      return Refusal(500, "cannot write " + NativePath(SettingsPath(in.root)));
    in.settings = s;
    ApplySettings(in.settings, in.options);
  }
  if (soundCard) {
    Cockpit c = in.cockpit();
    Voice v = c.voice();
    SelectSoundCard(v, *soundCard);
    if (!SaveSoundCard(in.sound, *soundCard))
      return Refusal(500, "cannot write " + NativePath(in.root + "SoundCard.dat"));
  }
  return SettingsPage(in);
}

json AircraftPage(Instructor& in) {
  const AircraftValues& a = in.aircraft;
  json j;
  j["title"] = a.Title;
  j["sourceFile"] = ShownInRoot(in.root, NativePath(a.SourceFile));
  j["source"] = SourceName(a.Source);
  j["estimated"] = ProfileIsEstimated(a);
  j["locked"] = a.Locked;
  j["profile"] = RawJson(a.Raw);
  json w;
  w["StallCruise"] = a.StallCruise;
  w["StallLanding"] = a.StallLanding;
  w["StallLandingPlus10"] = a.StallLandingPlus10;
  w["StallLandingPlus15"] = a.StallLandingPlus15;
  w["StallLandingPlus20"] = a.StallLandingPlus20;
  w["GearSpeedLimit"] = a.GearSpeedLimit;
  w["FlapAngleLimit"] = std::vector<int32_t>(a.FlapAngleLimit.begin() + 1, a.FlapAngleLimit.end());
  w["FlapSpeedLimit"] = std::vector<int32_t>(a.FlapSpeedLimit.begin() + 1, a.FlapSpeedLimit.end());
  w["FullFlapsValue"] = a.FullFlapsValue;
  j["working"] = w;
  json frames = json::array();
  for (const TypeFrame& t : kTypeFrames) {
    json f;
    f["name"] = t.name;
    f["enabled"] = a.Monitoring.MiscDataEnabled[static_cast<size_t>(t.frame)];
    json boxes = json::array();
    for (int b : t.boxes) {
      if (b < 0) continue;
      const auto i = static_cast<size_t>(b);
      boxes.push_back({{"box", b},
                       {"name", BoxNames()[i]},
                       {"checked", a.Monitoring.Boeing[i]},
                       {"enabled", a.Monitoring.BoeingEnabled[i]}});
    }
    f["boxes"] = boxes;
    frames.push_back(f);
  }
  j["types"] = frames;
  j["MonitorEngines"] = a.Monitoring.MonitorEngines;
  j["MonitorLights"] = a.Monitoring.MonitorLights;
  j["InstructorGPWS"] = a.Monitoring.WantnoGPWS;
  j["InstructorVolume"] = in.sound.InstructorVolume;
  j["validation"] = ValidateAircraftUserData(a.Raw);
  return j;
}

json ChooseSourceAction(Instructor& in, const json& body) {
  if (!body.is_object() || !body.contains("source") || !body["source"].is_string())
    return Refusal(400, "the request must name a \"source\"");
  const std::string source = body["source"].get<std::string>();
  if (source != "optFSData" && source != "optVantoroData" && source != "optUserData")
    return Refusal(400, "the source is one of optFSData, optVantoroData, optUserData");
  if (in.aircraft.Title == "N/A") return Refusal(409, "no aircraft yet: connect to the simulator");
  const AircraftContext ctx = ContextOf(in);
  const std::string message = source == "optFSData"        ? ChooseFSData(in.aircraft, ctx)
                              : source == "optVantoroData" ? ChooseVantoroData(in.aircraft, ctx)
                                                           : ChooseUserData(in.aircraft, ctx);
  SetupAircraftValues(in.aircraft);
  json j = AircraftPage(in);
  if (!message.empty()) j["message"] = message;
  return j;
}

json SaveProfileAction(Instructor& in, const json& body) {
  if (!body.is_object() || !body.contains("profile"))
    return Refusal(400, "the request must hold a \"profile\" object");
  if (in.aircraft.Locked)
    return Refusal(409, "the profile can be changed only with User Specified Data selected");
  RawProfile raw = in.aircraft.Raw;
  std::string error;
  if (!ReadRaw(body["profile"], raw, error)) return Refusal(400, error);
  const std::string folder = AircraftFolderName(in.link.Now().AirFile);
  if (const std::string lines = ValidateAircraftUserData(raw); !lines.empty()) {
    json j = Refusal(422, "the profile was not saved");
    j["validation"] = lines;
    return j;
  }
  if (folder.empty()) return Refusal(409, "no aircraft folder yet: connect to the simulator");
  if (std::string problem = SaveAircraftUserData(in.root, folder, raw); !problem.empty())
    return Refusal(500, problem);
  in.aircraft.Raw = raw;
  SetupAircraftValues(in.aircraft);
  json j = AircraftPage(in);
  j["message"] = "Saved " + folder + ".fsu";
  j["saved"] = true;
  return j;
}

json MonitoringAction(Instructor& in, const json& body) {
  if (!body.is_object() || !body.contains("value"))
    return Refusal(400, "the request must hold a \"value\"");
  AircraftValues& a = in.aircraft;
  const json& v = body["value"];
  std::string key;
  int stored = 0;
  if (body.contains("box")) {
    if (!body["box"].is_number_integer() || body["box"].get<int64_t>() < 0 ||
        body["box"].get<int64_t>() >= kOptionBoxes || !v.is_boolean())
      return Refusal(400, "\"box\" is a box number from 0 to 41 and \"value\" true or false");
    const auto box = body["box"].get<size_t>();
    if (!a.Monitoring.BoeingEnabled[box])
      return Refusal(409, "that box is not in use for this aircraft");
    a.Monitoring.Boeing[box] = v.get<bool>();
    key = OptionBoxKey(static_cast<int>(box), a.Title);
    stored = v.get<bool>() ? 1 : 0;
  } else if (body.contains("key") && body["key"].is_string()) {
    const std::string k = body["key"].get<std::string>();
    if (k == "InstructorVolume") {
      if (!v.is_number_integer() || v.get<int64_t>() < 0 || v.get<int64_t>() > 4)
        return Refusal(400, "the volume is 0 to 4");
      stored = v.get<int>();
      Cockpit c = in.cockpit();
      Voice voice = c.voice();
      SetInstructorVolume(voice, stored);
      key = InstructorVolumeKey(a.Title);
    } else {
      if (!v.is_boolean()) return Refusal(400, "\"value\" must be true or false");
      stored = v.get<bool>() ? 1 : 0;
      if (k == "MonitorEngines") {
        a.Monitoring.MonitorEngines = v.get<bool>();
        key = MonitorEnginesKey(a.Title);
      } else if (k == "InstructorGPWS") {
        a.Monitoring.WantnoGPWS = v.get<bool>();
        key = InstructorGPWSKey(a.Title);
      } else if (k.size() == 14 && k.rfind("MonitorLights", 0) == 0 && k[13] >= '0' &&
                 k[13] < '0' + kMonitorLights) {
        const int light = k[13] - '0';
        a.Monitoring.MonitorLights[static_cast<size_t>(light)] = v.get<bool>();
        key = MonitorLightsKey(light, a.Title);
      } else {
        return Refusal(400, "unknown monitoring option \"" + k + "\"");
      }
    }
  } else {
    return Refusal(400, "the request must name a \"box\" or a \"key\"");
  }
  if (a.Title != "N/A" && !SaveAircraftChoice(in.root, a.Title, key, stored))
    return Refusal(500, "cannot write " + NativePath(AircraftDatPath(in.root)));
  return AircraftPage(in);
}

json PilotFiles(Instructor& in) {
  json j;
  const std::string& pilot = in.pilot.CurrentPilotFile;
  j["pilot"] = pilot.empty() ? "" : NativePath(pilot);
  j["log"] = pilot.empty() ? "" : NativePath(GetPilotFile(pilot, ".dat"));
  j["logBook"] = pilot.empty() ? "" : NativePath(GetPilotFile(pilot, ".htm"));
  j["name"] = in.pilot.Record.name;
  return j;
}

}  // namespace vantoro::web
