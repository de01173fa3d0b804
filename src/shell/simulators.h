// The simulators beside the program: the captions that name the simulator,
// installing the offset server's module into an older simulator, and what
// the program does when the pilot closes it.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "link/simlink.h"
#include "shell/pilot.h"
#include "shell/settings.h"

namespace vantoro {

// Captions and tips that name the simulator; the Prepar3D build names its
// own (SetP3DTexts).
struct SimulatorCaptions {
  std::string AutoReadPlan = "Auto-Read FSX Flight Plan";                             // check box
  std::string ReadPlan = "Read FSX's Plan";                                           // button
  std::string LoadFolderFromRegistry = "Load FSX folder location from the Registry";  // tip
  std::string GenerateRunwayData = "Generate runway data for FSX";                    // button
  std::string FolderLabel = "FSX Folder:";                                            // label

  bool operator==(const SimulatorCaptions&) const = default;
};

// "FSX" becomes "P3D" in every caption and tip.
void SetP3DTexts(SimulatorCaptions& captions);

// The module file of the offset server, delivered in the program's root.
inline constexpr char kFSUIPCModule[] = "fsuipc.dll";
inline constexpr char kModulesFolder[] = "modules\\";
inline constexpr char kFSUIPCInstalled[] =
    "Vantoro is now configured to communicate with Flight Simulator 2004. Please restart";
inline constexpr char kFSUIPCNotWritten[] =
    "Vantoro could not write a copy of the file FSUIPC.DLL into ";
inline constexpr char kFSUIPCNeeded[] =
    "This operation is necessary if you are using FS2004 or FS2002.";

struct InstallOutcome {
  bool Installed = false;
  std::string Message;  // for the pilot, lines joined by line breaks
};

// FS2002 and FS2004 need the module copied into "modules\" under their
// folder (made when missing). The copy is written whole or not at all.
InstallOutcome InstallFSUIPC(std::string_view root, std::string_view simFolder);

// The close question, one line each; empty when the pilot's data is saved.
std::vector<std::string> CloseQuestion(const PilotTab& pilot);

// The program closes: the settings file is written and the link closed.
// Returns "" or what went wrong with the settings file.
std::string CloseProgram(std::string_view root, const Settings& settings, SimLink& link);

}  // namespace vantoro
