#include "shell/simulators.h"

#include <filesystem>
#include <optional>
#include <system_error>

#include "base/files.h"
#include "base/text.h"

namespace vantoro {

namespace {

void FSXToP3D(std::string& text) {
  for (size_t at = text.find("FSX"); at != std::string::npos; at = text.find("FSX", at + 3))
    text.replace(at, 3, "P3D");
}

// The "modules\" folder of the simulator, whatever the case of its name,
// made when missing. Empty when it cannot be made.
std::optional<std::string> ModulesFolder(std::string_view simFolder) {
  const std::string wanted = TidyFolder(simFolder) + kModulesFolder;
  if (const auto found = FindNoCase(wanted.substr(0, wanted.size() - 1)); found) {
    if (FolderExists(*found)) return TidyFolder(*found);
    return std::nullopt;  // a file of that name stands in the way
  }
  std::error_code ec;
  std::filesystem::create_directories(NativePath(wanted), ec);
  if (ec || !FolderExists(wanted)) return std::nullopt;
  return wanted;
}

}  // namespace

void SetP3DTexts(SimulatorCaptions& c) {
  for (std::string* text : {&c.AutoReadPlan, &c.ReadPlan, &c.LoadFolderFromRegistry,
                            &c.GenerateRunwayData, &c.FolderLabel})
    FSXToP3D(*text);
}

InstallOutcome InstallFSUIPC(std::string_view root, std::string_view simFolder) {
  const std::string modules = TidyFolder(simFolder) + kModulesFolder;
  const InstallOutcome failed{false, kFSUIPCNotWritten + modules + "\n" + kFSUIPCNeeded};
  const std::optional<std::string> source = TryReadFile(TidyFolder(root) + kFSUIPCModule);
  if (!source) return failed;
  const std::optional<std::string> folder = ModulesFolder(simFolder);
  if (!folder) return failed;
  // An older copy, whatever the case of its name, is replaced.
  const std::string target = FindNoCase(*folder + kFSUIPCModule).value_or(*folder + kFSUIPCModule);
  if (!WriteFileAtomic(target, *source)) return failed;
  return {true, kFSUIPCInstalled};
}

std::vector<std::string> CloseQuestion(const PilotTab& pilot) {
  if (!pilot.Unsaved) return {};
  return {kUnsavedPilotText, kCloseWithoutSavingText};
}

std::string CloseProgram(std::string_view root, const Settings& settings, SimLink& link) {
  const bool saved = SaveSettingsTab(root, settings);
  link.Close();
  return saved ? std::string() : SettingsPath(root) + ": the settings file cannot be written";
}

}  // namespace vantoro
