#include "voice/sound_queue.h"

#include <cstdlib>
#include <iterator>
#include <map>
#include <optional>

#include "base/failure.h"
#include "base/files.h"
#include "base/ini.h"
#include "base/numbers.h"
#include "base/text.h"
#include "link/simlink.h"

namespace vantoro {

namespace {

// Aircraft folders of an instructor whose recordings have captions of their
// own, in the order the caption key is built (a later one goes outermost).
constexpr std::string_view kAircraftFolders[] = {
    "B737",   "C152", "MOONEY", "BARONB58", "C208B",     "C182", "BEECHKINGAIR350",
    "LEAR45", "DC3",  "B757",   "CRJ700",   "TWINOTTER",
};

constexpr int kVolumeSettings[] = {-10, -5, 0, 3, 6};
constexpr int kVolumeSettingMute = -999;
constexpr int kVolumeInaudible = -30000;
constexpr int kVolumeNormal = 0;

constexpr std::string_view kUtteranceGap = "     ";  // before the first file of a sentence
constexpr std::string_view kStatusGap = "    ";      // between the status part and the text
constexpr std::string_view kCaptionJoin = "  ::  ";  // between the text and the captions
constexpr std::string_view kNoCircuitLeg = "        ";

constexpr std::string_view kDeviceChangedAdvice =
    "\n\n*** This error can occur when the default sound card has been changed (in the Settings "
    "tab) ***";

void CheckChannel(int channel, const char* location) {
  if (channel < 0 || channel >= 2)
    throw FailureReport(kErrOutOfRange, "Subscript out of range", location);
}

void CheckFamily(int id, const char* location) {
  if (id < 0 || id >= kSoundFamilies)
    throw FailureReport(kErrOutOfRange, "Subscript out of range", location);
}

// The device of a channel reports the end of a file by setting Ready.
void BindDevice(Voice& v, int channel) {
  AudioOut* device = v.audio[channel];
  if (device == nullptr) return;
  bool* ready = &v.state.Channels[channel].Ready;
  device->onFinished = [ready] { *ready = true; };
}

int16_t NextSlot(int16_t slot) {
  return static_cast<int16_t>(slot + 1 >= kRingSize ? 0 : slot + 1);
}

// The gate of the "perhaps" calls: strictly below TickCount - gap.
bool GatePasses(const SoundState& s, int32_t tick, int id, int gap) {
  return int64_t{s.LastPlayed[id]} < int64_t{tick} - gap;
}

int Enqueue(Voice& v, std::string_view path, int mode, int validFor, int channel,
            std::string_view by, std::string_view file, std::optional<int> id) {
  CheckChannel(channel, "PlaySound");
  SoundChannel& ch = v.state.Channels[channel];
  QueuedSound entry{std::string(path), std::string(file.empty() ? path : file), v.tick, validFor};

  if (mode == kModeQueue) {
    if (ch.Count >= kRingSize) {
      v.events.Emit(v.tick, "dropped", {{"file", entry.File}, {"why", "full"}});
      return kRingFull;
    }
    ch.Tail = NextSlot(ch.Tail);
    ch.Entries[ch.Tail] = std::move(entry);
    ++ch.Count;
  } else if (mode == kModePurge) {
    // Whatever was playing stops; its finished notice sets Ready.
    BindDevice(v, channel);
    if (AudioOut* device = v.audio[channel]) device->Stop();
    ch.Count = 1;
    ch.Tail = 0;
    ch.Head = 0;
    ch.Entries[0] = std::move(entry);
  } else {
    return -1;
  }

  const QueuedSound& queued = ch.Entries[ch.Tail];
  Event e{v.tick, "queued", {{"file", queued.File}, {"by", by}}};
  if (id) e.fields.emplace_back("id", *id);
  e.fields.emplace_back("valid", validFor);
  v.events.Emit(e);
  return 0;
}

std::string StatusPart(const MessageStatus& st) {
  std::string s = "NAV1OBS:" + FormatDigits(st.Nav1OBS, 3) + "  ";
  s += st.Mode;
  if (st.CircuitTraining) {
    s += "CIRCUIT:";
    s += st.CircuitLeg.empty() ? std::string(kNoCircuitLeg) : st.CircuitLeg;
  }
  s += st.DataSource;
  s += "WPT:" + st.WaypointName + " [" + FormatDigits(st.WaypointHeading, 3) + "] ";
  return s;
}

// The text, then the seconds that make the simulator show it.
bool WriteMessageLine(Voice& v, std::string_view line, int seconds) {
  if (v.link == nullptr) return false;
  std::string text(line);
  text.push_back('\0');
  int result = kLinkOk;
  if (!v.link->Write(kMessageTextOffset, static_cast<uint32_t>(text.size()), text.data(), result))
    return false;
  const auto s16 = static_cast<uint16_t>(static_cast<int16_t>(seconds));
  const uint8_t secondBytes[2] = {static_cast<uint8_t>(s16 & 0xFF), static_cast<uint8_t>(s16 >> 8)};
  const bool both = v.link->Write(kMessageSecondsOffset, 2, secondBytes, result);
  v.link->Process(result);
  return both;
}

std::string CutToLine(std::string line) {
  if (line.size() > static_cast<size_t>(kMessageLineLength)) line.resize(kMessageLineLength);
  return line;
}

// What the pilot reads while the file plays: the rolling caption buffer.
void ShowCaption(Voice& v, const SoundChannel& ch, const QueuedSound& entry,
                 const std::string& caption) {
  SoundState& s = v.state;
  std::string words = caption;
  if (entry.QueuedAt != ch.LastStamp) words = std::string(kUtteranceGap) + words;
  s.CaptionBuffer = Trim(Right(s.CaptionBuffer + " " + words, kCaptionBufferLength));
  DisplayFSMessage(v, kCaptionMode, kCaptionSeconds);
}

void SoundTimerStep(Voice& v, int channel) {
  SoundState& s = v.state;
  SoundChannel& ch = s.Channels[channel];
  AudioOut* device = v.audio[channel];

  const bool playing = device != nullptr && device->IsPlaying();
  if (playing || !ch.Ready || ch.Count <= 0) return;

  --ch.Count;
  const QueuedSound& entry = ch.Entries[ch.Head];
  const bool fresh =
      !(entry.ValidFor > 0 && int64_t{v.tick} > int64_t{entry.QueuedAt} + entry.ValidFor);
  const bool suppressed = (!s.CaptionsOn && s.DisableSound) || s.Muted;

  if (!fresh) {
    v.events.Emit(v.tick, "dropped", {{"file", entry.File}, {"why", "stale"}});
  } else if (suppressed) {
    v.events.Emit(v.tick, "dropped", {{"file", entry.File}, {"why", "suppressed"}});
  } else {
    BindDevice(v, channel);
    if (std::optional<std::string> found = FindNoCase(s.SoundRoot + entry.Path);
        found && FileExists(*found)) {
      if (device != nullptr) device->Play(*found);
      const std::string caption = CaptionOf(s, entry.Path);
      v.events.Emit(v.tick, "spoken",
                    {{"file", entry.File}, {"caption", caption}, {"missing", false}});
      if (s.CaptionsOn) ShowCaption(v, ch, entry, caption);
      ch.LastStamp = entry.QueuedAt;
    } else {
      // Silence in its place keeps the finished notice coming and the pace
      // of a composed sentence.
      std::optional<std::string> silence = FindNoCase(s.SoundRoot + std::string(kSilenceFile));
      if (silence && FileExists(*silence) && device != nullptr) device->Play(*silence);
      v.events.Emit(v.tick, "spoken", {{"file", entry.File}, {"caption", ""}, {"missing", true}});
    }
    if (device != nullptr) ch.Ready = false;
  }
  ch.Head = NextSlot(ch.Head);
}

}  // namespace

std::string CaptionOf(const SoundState& s, std::string_view path) {
  auto it = s.CaptionTable.find(CaptionKey(path));
  return it == s.CaptionTable.end() ? std::string() : it->second;
}

void InitSound(SoundState& s) {
  for (SoundChannel& ch : s.Channels) ch = SoundChannel{};
}

std::string InstructorPath(const SoundState& s, std::string_view file) {
  return std::string(kSoundFolder) + s.Instructor + "\\" + std::string(file);
}

bool PlayPerhaps(Voice& v, std::string_view file, int id, int gap, int expiry) {
  CheckFamily(id, "PlayPerhaps");
  if (!GatePasses(v.state, v.tick, id, gap)) return false;
  // Stamped before the enqueue: a request lost to a full ring still counts.
  v.state.LastPlayed[id] = v.tick;
  Enqueue(v, InstructorPath(v.state, file), kModeQueue, expiry, 0, "PlayPerhaps", file, id);
  return true;
}

bool PlayAndPurge(Voice& v, std::string_view file, int id, int gap) {
  CheckFamily(id, "PlayAndPurge");
  if (!GatePasses(v.state, v.tick, id, gap)) return false;
  v.state.LastPlayed[id] = v.tick;
  Enqueue(v, InstructorPath(v.state, file), kModePurge, 0, 0, "PlayAndPurge", file, id);
  return true;
}

void PlayAlways(Voice& v, std::string_view file) {
  Enqueue(v, InstructorPath(v.state, file), kModeQueue, kPlayAlwaysValidFor, 0, "PlayAlways", file,
          std::nullopt);
}

void PlayAlwaysRoot(Voice& v, std::string_view file) {
  Enqueue(v, std::string(kSoundFolder) + std::string(file), kModeQueue, kPlayAlwaysValidFor, 0,
          "PlayAlwaysRoot", file, std::nullopt);
}

int PlaySound(Voice& v, std::string_view path, int mode, int validFor, int channel,
              std::string_view by, std::string_view file) {
  return Enqueue(v, path, mode, validFor, channel, by, file, std::nullopt);
}

void SoundTimer(Voice& v, int channel) {
  CheckChannel(channel, "SoundTimer::Timer");
  try {
    SoundTimerStep(v, channel);
  } catch (const AudioFailure& f) {
    throw FailureReport(
        f.number(), f.what(), "SoundTimer::Timer",
        f.number() == kAudioDeviceChanged ? std::string(kDeviceChangedAdvice) : std::string());
  }
}

void ShowRemark(Voice& v, std::string_view file, int level) {
  v.state.RemarkText = CaptionOf(v.state, InstructorPath(v.state, file));
  v.state.RemarkLevel = level;
  v.events.Emit(v.tick, "remark",
                {{"file", file}, {"level", level}, {"caption", v.state.RemarkText}});
}

bool DisplayFSMessage(Voice& v, std::string_view text, int seconds) {
  const SoundState& s = v.state;
  const bool captionMode = text == kCaptionMode;
  std::string line = captionMode
                         ? std::string(text)
                         : StatusPart(s.Status) + std::string(kStatusGap) + std::string(text);
  if (!s.CaptionBuffer.empty()) {
    if (captionMode) {
      line = Right(s.CaptionBuffer, kMessageCaptionLength);
    } else {
      const long room = kMessageCaptionLength - static_cast<long>(line.size());
      // A status line wider than the caption room is a run-time failure.
      if (room < 0)
        throw FailureReport(kErrInvalidCall, "Invalid procedure call or argument",
                            "DisplayFSMessage");
      line += std::string(kCaptionJoin) + Right(s.CaptionBuffer, static_cast<size_t>(room));
    }
  }
  line = CutToLine(std::move(line));
  if (!captionMode) v.events.Emit(v.tick, "message", {{"text", text}, {"seconds", seconds}});
  return WriteMessageLine(v, line, seconds);
}

bool DisplayOnlyThisTextFSMessage(Voice& v, std::string_view text, int seconds) {
  const std::string line = CutToLine(std::string(text));
  v.events.Emit(v.tick, "message", {{"text", text}, {"seconds", seconds}});
  return WriteMessageLine(v, line, seconds);
}

void LoadCaptions(SoundState& s, std::string_view file, Notices* notices) {
  s.CaptionTable.clear();
  const std::string text = ReadFile(file);
  // Captions are sentences: a comma in them is part of the words.
  const std::vector<INIEntry> entries = ParseINISectionText(text, kCaptionSection, false);
  std::map<std::string, int> lineOf;
  for (const INIEntry& e : entries) {
    if (e.Key.empty()) {
      if (notices)
        notices->push_back(
            Notice{std::string(file), e.Line, "a caption without a sound name, passed over"});
      continue;
    }
    // The first of two captions for one sound wins.
    if (const auto [at, added] = lineOf.emplace(e.Key, e.Line); !added) {
      if (notices)
        notices->push_back(Notice{std::string(file), e.Line,
                                  "a second caption for " + e.Key + "; the one at line " +
                                      std::to_string(at->second) + " is kept"});
      continue;
    }
    s.CaptionTable.emplace(e.Key, e.Value);
  }
  if (notices == nullptr) return;
  if (entries.empty())
    notices->push_back(
        Notice{std::string(file), 0,
               "no " + std::string(kCaptionSection) + " section; no captions shown"});
  NoteLinesPassedOver(file, text, false, *notices);
}

std::string CaptionKey(std::string_view path) {
  std::string upper = Upper(path);
  for (char& c : upper)
    if (c == '/') c = '\\';
  std::string key = GetFileName(upper);
  for (std::string_view folder : kAircraftFolders) {
    const std::string marker = "\\" + std::string(folder) + "\\";
    if (upper.find(marker) != std::string::npos) key = std::string(folder) + "\\" + key;
  }
  return key;
}

void SetInstructorVolume(Voice& v, int setting) {
  int volume = kVolumeNormal;
  if (setting >= 0 && setting < static_cast<int>(std::size(kVolumeSettings)))
    volume = kVolumeSettings[setting];
  else if (setting == kVolumeSettingMute)
    volume = kVolumeInaudible;
  if (AudioOut* device = v.audio[0]) device->SetVolume(volume);
}

void SetVolumeAtConnection(Voice& v) {
  if (v.state.DisableSound && v.state.CaptionsOn)
    SetInstructorVolume(v, kVolumeSettingMute);
  else
    SetInstructorVolume(v, v.state.InstructorVolume);
}

void LoadInstructors(SoundState& s) {
  s.Instructors = GetFolderList(s.SoundRoot + std::string(kSoundFolder));
}

bool FindAndSetInstructor(SoundState& s, std::string_view name) {
  for (const std::string& instructor : s.Instructors) {
    if (instructor == name) {
      s.Instructor = instructor;
      return true;
    }
  }
  return false;
}

int LoadSoundCard(const SoundState& s) {
  const std::string text = Trim(ReadFile(s.SoundRoot + std::string(kSoundCardFile)));
  if (!IsNumeric(text)) return -1;
  const double value = std::strtod(text.c_str(), nullptr);
  if (!(value >= 0) || value > 1e6) return -1;
  return CLng(value);
}

bool SaveSoundCard(const SoundState& s, int device) {
  return WriteFileAtomic(s.SoundRoot + std::string(kSoundCardFile),
                         std::to_string(device < 0 ? -1 : device) + "\r\n");
}

void SelectSoundCard(Voice& v, int device) {
  v.state.SoundCard = device < 0 ? -1 : device;
  if (AudioOut* out = v.audio[0]) out->SetDevice(v.state.SoundCard);
}

}  // namespace vantoro
