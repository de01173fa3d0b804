// The pilot's connection beyond the link: what refuses a Connect, which
// folder belongs to the running simulator, and the world's runways and radio
// stations loaded at connection.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>

#include "engine/options.h"

namespace vantoro {

struct Cockpit;

// The title of the program's message boxes.
inline constexpr char kMessageTitle[] = "Vantoro";

// Connect with a new pilot that has no file yet is refused with this box,
// one line each.
inline constexpr std::array<const char*, 3> kNoPilotLines = {
    "You must load an existing pilot's data", "or save the current pilot data",
    "before attempting to fly."};

// A simulator folder that is named but missing refuses Connect.
inline constexpr char kP3DFolderMissing[] = "The specified P3D folder does not exist!";
inline constexpr char kFS2002FolderMissing[] = "The specified FS2002 folder does not exist!";
inline constexpr char kFS2004FolderMissing[] = "The specified FS2004 folder does not exist!";
inline constexpr char kFSXFolderMissing[] = "The specified FSX folder does not exist!";

// The running simulator is none the program knows a folder for.
inline constexpr char kUnsupportedSimulator[] =
    "This flight simulation application is not supported.";

// The message box that refuses Connect for want of a pilot file (the three
// lines joined by line breaks), or empty.
std::string PilotRefusal(const EngineOptions& options);
// The message box that refuses Connect for a simulator folder that is named
// but missing, or empty: the Prepar3D folder alone in the Prepar3D build;
// else FS2002, FS2004 and FSX in that order. An empty box is no reason.
std::string FolderRefusal(const EngineOptions& options);

// The folder of the simulator the link reports: in the Prepar3D build "P3D"
// gives the Prepar3D folder; otherwise "FS2002", "FS2004" and "FSX" give
// theirs. Any other simulator has none: the caller shows
// kUnsupportedSimulator. An empty folder box gives "".
std::optional<std::string> GetRunningFS(const EngineOptions& options, std::string_view simName);

// The load window at connection: with no runways in memory and a simulator
// on the link, the runways and radio stations are read (the user's file in
// the simulator's folder, else the delivered world under the root). The
// pilot is told what went wrong as a "notice". Once loaded, the world stays
// for the life of the program.
void LoadWorldWhenEmpty(Cockpit& c);

}  // namespace vantoro
