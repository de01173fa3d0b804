#include "shell/startup.h"

#include <filesystem>
#include <system_error>

#include "base/files.h"
#include "engine/connection.h"
#include "world/profiles.h"
#include "world/vors.h"

namespace vantoro {

namespace {

bool IsAbsolute(std::string_view path) {
  return (!path.empty() && (path[0] == '/' || path[0] == '\\')) ||
         (path.size() > 1 && path[1] == ':');
}

}  // namespace

std::string ResolvePilotFile(std::string_view root, std::string_view named) {
  if (named.empty()) return {};
  if (FileExists(named)) return *FindNoCase(named);
  if (!IsAbsolute(named)) {
    const std::string underRoot = TidyFolder(root) + std::string(named);
    if (FileExists(underRoot)) return *FindNoCase(underRoot);
  }
  return std::string(named);
}

std::string LastPilotFile(std::string_view root, const Registry& registry) {
  Settings settings;
  const SettingsLoad loaded = LoadSettingsTab(root, registry, settings);
  return ResolvePilotFile(root, loaded.pilotFile);
}

WorldLoad LoadWorldData(std::string root, EngineOptions options, std::string simName) {
  WorldLoad out;
  // A simulator the program keeps no folder for still has the delivered world.
  const std::string folder = GetRunningFS(options, simName).value_or("");
  out.message = LoadRunwaysAndVORs(out.world, TidyFolder(root), folder, simName);
  return out;
}

Startup::Startup(Instructor& instructor, const Registry& registry)
    : in_(instructor), registry_(registry) {}

void Startup::Note(std::string file, std::string text) {
  notices_.push_back(Notice{std::move(file), 0, std::move(text)});
}

void Startup::Run(std::string_view pilotFile, std::string_view logFolder) {
  OpenSettings();
  OpenCaptions();
  OpenSoundPacks();
  const std::string pilot = pilotFile.empty() ? lastPilot_ : std::string(pilotFile);
  if (!pilot.empty()) OpenPilot(pilot);
  OpenAircraftData();
  if (!logFolder.empty()) OpenLogFolder(logFolder);
}

std::string Startup::OpenSettings() {
  const SettingsLoad loaded = LoadSettingsTab(in_.root, registry_, in_.settings);
  if (!loaded.ok) Note(SettingsPath(in_.root), "the settings file cannot be read; defaults used");
  notices_.insert(notices_.end(), loaded.notices.begin(), loaded.notices.end());
  ApplySettings(in_.settings, in_.options);
  lastPilot_ = ResolvePilotFile(in_.root, loaded.pilotFile);
  return lastPilot_;
}

void Startup::OpenCaptions() {
  const std::string file = in_.root + kCaptionFile;
  if (!FileExists(file)) {
    Note(file, "the caption file is missing; remarks are shown without captions");
    in_.sound.CaptionTable.clear();
    return;
  }
  LoadCaptions(in_.sound, *FindNoCase(file), &notices_);
}

void Startup::OpenSoundPacks() {
  SoundState& sound = in_.sound;
  LoadInstructors(sound);
  if (!sound.Instructors.empty()) {
    sound.Instructor = sound.Instructors.front();
  } else if (FolderExists(in_.root + std::string(kSoundFolder))) {
    Note(in_.root + std::string(kSoundFolder), kNoInstructorsText);
  }
  sound.SoundCard = LoadSoundCard(sound);
  InitSound(sound);
}

bool Startup::OpenPilot(std::string_view file) {
  const std::string problem = LoadPilotData(file, in_.pilot, in_.sound, in_.options, &notices_);
  if (!problem.empty()) {
    Note(std::string(file), "the pilot file cannot be read; the pilot page is as it was");
    return false;
  }
  // The flight log and the log book lie beside the pilot's file; a write of
  // them killed half-way left its temporary file there.
  in_.scores.PilotFile = std::string(file);
  RemoveStrayTemporaries(GetFolder(file));
  return true;
}

void Startup::OpenAircraftData() {
  const std::string folder = in_.root + kAircraftFolder;
  if (!FolderExists(folder))
    Note(folder,
         "the aircraft profile folder is missing; aircraft without their own profile "
         "are judged by the simulator's figures");
  const std::string selection = AircraftDatPath(in_.root);
  if (FileExists(selection) && !TryReadFile(*FindNoCase(selection)))
    Note(selection, "the aircraft choices cannot be read; each aircraft takes its default data");
}

void Startup::OpenWorld(std::string_view simName) {
  TakeWorld(LoadWorldData(in_.root, in_.options, std::string(simName)));
}

void Startup::TakeWorld(WorldLoad loaded) {
  if (!loaded.message.empty()) Note(in_.root, loaded.message);
  if (!in_.world.RunwaysLoaded()) in_.world = std::move(loaded.world);
}

std::future<WorldLoad> Startup::OpenWorldInBackground(std::string_view simName) const {
  return std::async(std::launch::async, LoadWorldData, in_.root, in_.options, std::string(simName));
}

bool Startup::OpenLogFolder(std::string_view folder) {
  std::error_code ec;
  const std::string native = NativePath(folder);
  std::filesystem::create_directories(native, ec);
  if (!std::filesystem::is_directory(native, ec)) {
    Note(std::string(folder), "the log folder cannot be made; no flight is logged");
    return false;
  }
  in_.scores.MarkerFolder = TidyFolder(folder);
  RemoveStrayTemporaries(folder);
  return true;
}

}  // namespace vantoro
