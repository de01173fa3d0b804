// The program's start: everything a flight needs is opened here, in this
// order, by every front end (the live program, the replay, the recorder):
//
//   1. settings.ini of the root: the simulator folders, the last pilot, the
//      flight-end and tip choices;
//   2. the captions (text\english.txt);
//   3. the sound packs: the instructors' voices below Sound\ and the output
//      device of SoundCard.dat;
//   4. the pilot: the one a front end names, else the last of the settings
//      (the sample pilot on a first start);
//   5. the aircraft data: the profiles folder and Aircraft.dat;
//   6. the world data: runways and radio stations (may be loaded off the
//      loop thread, see LoadWorldData);
//   7. the log folder, where the flight log and the score markers go.
//
// A file that is missing or damaged gives a notice naming it, and the
// defaults stand; a failed load overwrites nothing, on disk or in memory.
// The notices are kept for the front end to show (status line, event
// stream).
#pragma once

#include <future>
#include <string>
#include <string_view>

#include "base/notices.h"
#include "base/registry.h"
#include "shell/instructor.h"
#include "world/runways.h"

namespace vantoro {

inline constexpr char kCaptionFile[] = "text\\english.txt";
inline constexpr char kAircraftFolder[] = "Aircraft\\";

// The world as loaded off the loop thread: the runways and stations, and
// what went wrong (for the pilot, one line each; empty when all went well).
struct WorldLoad {
  WorldState world;
  std::string message;
};

// Loads the runways and radio stations for the simulator `simName` (its
// folder from the settings; the delivered world under the root when it has
// none). Touches nothing but its own result, so it may run on any thread.
WorldLoad LoadWorldData(std::string root, EngineOptions options, std::string simName);

// The pilot file as a settings file or a command line names it: as it
// stands when it exists, else under the root when it is a relative path.
std::string ResolvePilotFile(std::string_view root, std::string_view named);
// The pilot the settings of the root name (the sample pilot on a first
// start; "" for none), without opening anything else.
std::string LastPilotFile(std::string_view root, const Registry& registry);

class Startup {
 public:
  Startup(Instructor& instructor, const Registry& registry);

  // Every step in order. `pilotFile` names the pilot to fly with; empty
  // takes the settings' last pilot. The world is not loaded here: it is
  // loaded at connection (or by OpenWorld / LoadWorldData beforehand).
  void Run(std::string_view pilotFile = {}, std::string_view logFolder = {});

  // 1. Returns the pilot file the settings name (the sample pilot on a
  // first start, "" for none).
  std::string OpenSettings();
  // 2.
  void OpenCaptions();
  // 3.
  void OpenSoundPacks();
  // 4. False (and a notice) when the file cannot be read; the pilot page is
  // then as it was.
  bool OpenPilot(std::string_view file);
  // 5.
  void OpenAircraftData();
  // 6. Synchronous: the world for the simulator `simName`.
  void OpenWorld(std::string_view simName);
  // 6, from a load run elsewhere: takes the world in unless one is loaded.
  void TakeWorld(WorldLoad loaded);
  // 6, in the background: the load runs on its own thread; the loop thread
  // hands its result to TakeWorld when it is ready.
  std::future<WorldLoad> OpenWorldInBackground(std::string_view simName) const;
  // 7. The folder of the flight log and the score marker files: made when
  // missing. False (and a notice) when it cannot be made.
  bool OpenLogFolder(std::string_view folder);

  // The settings' last pilot, after OpenSettings.
  const std::string& LastPilot() const { return lastPilot_; }
  const Notices& notices() const { return notices_; }

 private:
  void Note(std::string file, std::string text);

  Instructor& in_;
  const Registry& registry_;
  std::string lastPilot_;
  Notices notices_;
};

}  // namespace vantoro
