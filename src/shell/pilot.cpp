#include "shell/pilot.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "base/files.h"
#include "base/numbers.h"
#include "base/text.h"
#include "shell/option_fields.h"

namespace vantoro {

std::string ComposePilotFile(const PilotRecord& r) {
  return ComposeFields(PilotFields(), r);
}

void ReadPilotEntries(const std::vector<INIEntry>& entries, PilotRecord& r, Notices* notices,
                      std::string_view file) {
  ReadFields(PilotFields(), entries, r, notices, file);
  // Older files kept the auto-detect keys with the sound; a key of the newer
  // section, when there, has the last word.
  for (auto [key, field] : {std::pair{"AutoDetectModeCruise", &r.AutoDetectModeCruise},
                            std::pair{"AutoDetectModeLanding", &r.AutoDetectModeLanding}}) {
    if (GetValueFromINI(entries, "auto detect setup", key).Key.empty())
      *field = GetValueFromINI(entries, "sound setup", key).Value == "1";
  }
}

void RefreshPilotData(PilotTab& tab, SoundState& sound, EngineOptions& o) {
  PilotRecord& r = tab.Record;
  // The instructor list's selection is the sound queue's instructor.
  r.Instructor = sound.Instructor;

  static_cast<PilotOptions&>(o) = r;
  o.PilotName = r.name;
  o.PilotFile = tab.CurrentPilotFile;
  o.PilotUnsaved = tab.CurrentPilotFile.empty();
  o.PilotImage = r.image;
  sound.DisableSound = r.DisableSound;
  sound.CaptionsOn = r.Captions;

  tab.Unsaved = !tab.Saved || *tab.Saved != r;
}

std::string LoadPilotData(std::string_view file, PilotTab& tab, SoundState& sound,
                          EngineOptions& options, Notices* notices) {
  const std::optional<std::string> text = TryReadFile(file);
  if (!text) return std::string(file) + ": the pilot file cannot be read";
  PilotRecord r = tab.Record;
  ReadPilotEntries(ParseINIText(*text, true), r, notices, file);
  if (notices != nullptr) NoteLinesPassedOver(file, *text, true, *notices);
  FindAndSetInstructor(sound, r.Instructor);
  r.Instructor = sound.Instructor;
  tab.Record = r;
  tab.CurrentPilotFile = std::string(file);
  tab.Saved = r;
  RefreshPilotData(tab, sound, options);
  return {};
}

std::string SavePilotData(PilotTab& tab, const SoundState& sound) {
  tab.Record.Instructor = sound.Instructor;
  if (tab.CurrentPilotFile.empty()) return kNoSaveNameText;
  if (!WriteINIFile(tab.CurrentPilotFile, ComposePilotFile(tab.Record)))
    return tab.CurrentPilotFile + ": the pilot file cannot be written";
  tab.Saved = tab.Record;
  tab.Unsaved = false;
  return {};
}

std::string PilotFileForName(std::string_view root, std::string_view entered) {
  std::string name = Trim(entered);
  if (name.empty()) return {};
  if (!EndsWith(Upper(name), ".PLT")) name += kPilotExtension;
  return TidyFolder(root) + kPilotRoster + name;
}

std::string SavePilotAs(std::string_view root, std::string_view entered, PilotTab& tab,
                        const SoundState& sound) {
  const std::string file = PilotFileForName(root, entered);
  if (file.empty()) return kNoSaveNameText;
  const std::string previous = tab.CurrentPilotFile;
  tab.CurrentPilotFile = file;
  std::string error = SavePilotData(tab, sound);
  if (!error.empty()) tab.CurrentPilotFile = previous;
  return error;
}

std::vector<std::string> ListPilotFiles(std::string_view root) {
  return GetFileList(TidyFolder(root) + kPilotRoster, kPilotExtension);
}

std::string NewPilot(PilotTab& tab, SoundState& sound, EngineOptions& options) {
  if (sound.Instructors.empty()) return kNoInstructorsText;
  tab.Record = PilotRecord{};
  sound.Instructor = sound.Instructors.front();
  tab.CurrentPilotFile.clear();
  tab.Saved.reset();
  RefreshPilotData(tab, sound, options);
  return {};
}

std::string LoadSettingsAndPilot(std::string_view root, const Registry& registry,
                                 Settings& settings, PilotTab& tab, SoundState& sound,
                                 EngineOptions& options) {
  const SettingsLoad loaded = LoadSettingsTab(root, registry, settings);
  ApplySettings(settings, options);
  std::string errors = loaded.ok ? std::string() : loaded.error + "\n";
  if (!loaded.pilotFile.empty()) {
    const std::string error = LoadPilotData(loaded.pilotFile, tab, sound, options);
    if (!error.empty()) errors += error + "\n";
  }
  return errors;
}

namespace {

uint32_t BigEndian(std::string_view b, size_t at, int bytes) {
  uint32_t v = 0;
  for (int i = 0; i < bytes; ++i)
    v = (v << 8) | static_cast<unsigned char>(b[at + static_cast<size_t>(i)]);
  return v;
}

uint32_t LittleEndian(std::string_view b, size_t at, int bytes) {
  uint32_t v = 0;
  for (int i = bytes - 1; i >= 0; --i)
    v = (v << 8) | static_cast<unsigned char>(b[at + static_cast<size_t>(i)]);
  return v;
}

// Whole pictures are never this large; a bigger value is a damaged header.
constexpr uint32_t kMaxImageSide = 1u << 30;

std::optional<ImageSize> Sized(uint32_t width, uint32_t height) {
  if (width > kMaxImageSide || height > kMaxImageSide) return std::nullopt;
  return ImageSize{static_cast<int32_t>(width), static_cast<int32_t>(height)};
}

std::optional<ImageSize> JpegSize(std::string_view b) {
  size_t i = 2;
  while (i + 4 <= b.size()) {
    if (static_cast<unsigned char>(b[i]) != 0xFF) return std::nullopt;
    const unsigned marker = static_cast<unsigned char>(b[i + 1]);
    if (marker == 0xFF) {  // fill byte
      ++i;
      continue;
    }
    if (marker == 0x01 || (marker >= 0xD0 && marker <= 0xD7)) {  // markers without length
      i += 2;
      continue;
    }
    if (marker == 0xD9 || marker == 0xDA) return std::nullopt;  // image data before any frame
    const uint32_t length = BigEndian(b, i + 2, 2);
    const bool frame =
        marker >= 0xC0 && marker <= 0xCF && marker != 0xC4 && marker != 0xC8 && marker != 0xCC;
    if (frame) {
      if (i + 9 > b.size()) return std::nullopt;
      return Sized(BigEndian(b, i + 7, 2), BigEndian(b, i + 5, 2));
    }
    if (length < 2) return std::nullopt;
    i += 2 + length;
  }
  return std::nullopt;
}

}  // namespace

std::optional<ImageSize> ReadImageSize(std::string_view b) {
  if (b.size() >= 24 && b.substr(0, 8) == std::string_view("\x89PNG\r\n\x1a\n", 8) &&
      b.substr(12, 4) == "IHDR")
    return Sized(BigEndian(b, 16, 4), BigEndian(b, 20, 4));
  if (b.size() >= 10 && (b.substr(0, 6) == "GIF87a" || b.substr(0, 6) == "GIF89a"))
    return Sized(LittleEndian(b, 6, 2), LittleEndian(b, 8, 2));
  if (b.size() >= 26 && b.substr(0, 2) == "BM") {
    const uint32_t header = LittleEndian(b, 14, 4);
    if (header == 12) return Sized(LittleEndian(b, 18, 2), LittleEndian(b, 20, 2));
    // Width and height are signed; a negative height means rows stored top down.
    const auto width = static_cast<int32_t>(LittleEndian(b, 18, 4));
    const auto height = static_cast<int32_t>(LittleEndian(b, 22, 4));
    if (width < 0 || height == INT32_MIN) return std::nullopt;
    return Sized(static_cast<uint32_t>(width), static_cast<uint32_t>(std::abs(height)));
  }
  if (b.size() >= 4 && static_cast<unsigned char>(b[0]) == 0xFF &&
      static_cast<unsigned char>(b[1]) == 0xD8)
    return JpegSize(b);
  return std::nullopt;
}

std::string SetPilotImage(PilotTab& tab, std::string_view file) {
  if (Trim(file).empty()) {
    tab.Record.image.clear();
    return {};
  }
  const std::optional<std::string> bytes = TryReadFile(file);
  if (!bytes) return std::string(file) + ": the picture cannot be read";
  const std::optional<ImageSize> size = ReadImageSize(*bytes);
  if (!size) return std::string(file) + ": the picture is not a PNG, JPEG, GIF or BMP image";
  if (size->height > kMaxPilotImagePixels) return kImageTooHighText;
  if (size->width > kMaxPilotImagePixels) return kImageTooWideText;
  tab.Record.image = std::string(file);
  return {};
}

}  // namespace vantoro
