// The pilot record: one ".plt" file per pilot in "PilotRoster\" under the
// root folder, holding his name, picture and every choice of the pilot page.
// The settings file names the pilot last used, so the program opens with him.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/ini.h"
#include "base/notices.h"
#include "base/registry.h"
#include "engine/options.h"
#include "shell/settings.h"
#include "voice/sound_queue.h"

namespace vantoro {

inline constexpr int kNewPilotFailureSlider = 30;
inline constexpr int kMaxFailureSlider = 100;
inline constexpr int kMaxPilotImagePixels = 80;
inline constexpr char kPilotRoster[] = "PilotRoster\\";
inline constexpr char kPilotExtension[] = ".plt";

inline constexpr char kNoInstructorsText[] = "Error: No instructors are installed";
inline constexpr char kNoSaveNameText[] = "Please enter a file to save the Pilot to!";
inline constexpr char kImageTooHighText[] = "The image cannot be over 80 pixels high!";
inline constexpr char kImageTooWideText[] = "The image cannot be over 80 pixels wide!";
// The close question when the pilot's changes are not saved.
inline constexpr char kUnsavedPilotText[] = "The current pilot data has not been saved!";
inline constexpr char kCloseWithoutSavingText[] =
    "Are you sure you want to close the program without saving the data?";

// The pilot page, as written to the file (its rows: PilotFields in
// shell/option_fields.h); the defaults are those a new pilot starts with.
// The choices the tick reads are the PilotOptions it shares with the engine.
struct PilotRecord : PilotOptions {
  std::string name;
  std::string image;  // path of the picture, or empty
  bool DisableSound = false;
  bool Captions = true;
  std::string Instructor;  // folder name of the instructor's voice

  bool operator==(const PilotRecord&) const = default;
};

// The pilot page and where it stands against its file.
struct PilotTab {
  PilotRecord Record;
  std::string CurrentPilotFile;  // "" until loaded or saved
  // The record as last loaded or saved; none for a new pilot.
  std::optional<PilotRecord> Saved;
  // The page differs from its file: the close question is due.
  bool Unsaved = false;
};

// The file's text, keys in their order, CRLF lines, a blank line between
// sections, boxes as "1" or "0".
std::string ComposePilotFile(const PilotRecord& r);
// Takes the keys of a parsed pilot file: a box is set by "1" and cleared by
// anything else, a missing key included. The auto-detect keys of older files
// under [sound setup] are read first; those under [auto detect setup] win.
// The slider and the pause gap keep their values unless the file has a number.
// Values it cannot take as written become notices naming `file` and the line.
void ReadPilotEntries(const std::vector<INIEntry>& entries, PilotRecord& r,
                      Notices* notices = nullptr, std::string_view file = {});

// Copies the page into what the tick and the sound queue read, and sets
// Unsaved when the page differs from its file.
void RefreshPilotData(PilotTab& tab, SoundState& sound, EngineOptions& options);

// Loads a pilot file into the page; the instructor is selected when
// installed, else the selection stays. Returns "" or what went wrong, naming
// the file; a failed load changes nothing.
std::string LoadPilotData(std::string_view file, PilotTab& tab, SoundState& sound,
                          EngineOptions& options, Notices* notices = nullptr);
// Writes the current pilot file. Returns "" or what went wrong.
std::string SavePilotData(PilotTab& tab, const SoundState& sound);

// The file a name entered in the save dialog stands for: ".plt" added unless
// it ends so, under root + "PilotRoster\". Empty when no name was entered.
std::string PilotFileForName(std::string_view root, std::string_view entered);
// The save dialog: the file becomes the current pilot file and is written.
// Returns "" or what to show.
std::string SavePilotAs(std::string_view root, std::string_view entered, PilotTab& tab,
                        const SoundState& sound);
// The pilot files the load dialog lists.
std::vector<std::string> ListPilotFiles(std::string_view root);

// A new pilot: the page takes the defaults and the first instructor. Without
// instructors nothing changes and the error text is returned.
std::string NewPilot(PilotTab& tab, SoundState& sound, EngineOptions& options);

// Start-up: the settings file (or the registry and the sample pilot on a
// first start), then the pilot it names, into the pages and what the tick
// reads. Returns "" or what went wrong, one line each; what could be read is
// taken all the same.
std::string LoadSettingsAndPilot(std::string_view root, const Registry& registry,
                                 Settings& settings, PilotTab& tab, SoundState& sound,
                                 EngineOptions& options);

struct ImageSize {
  int32_t width = 0;
  int32_t height = 0;
};
// The size of a PNG, JPEG, GIF or BMP picture from its header, or nullopt.
std::optional<ImageSize> ReadImageSize(std::string_view bytes);

// Sets the pilot's picture; an empty file clears it. A picture over 80
// pixels high, then one over 80 pixels wide, is refused with its text and the
// old picture stays. Returns "" or what to show.
std::string SetPilotImage(PilotTab& tab, std::string_view file);

}  // namespace vantoro
