// The one path by which any recorded file reaches the loudspeaker. Rules call
// the enqueue operations (PlayPerhaps and friends) from the polling tick; the
// sound timer takes entries off the ring one at a time, drops what has gone
// stale, plays the rest and shows the words of each file as a caption.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "base/events.h"
#include "base/notices.h"
#include "voice/audio_out.h"

namespace vantoro {

class SimLink;

inline constexpr int kRingSize = 20;
inline constexpr int kSoundFamilies = 201;  // ids 0..200
inline constexpr int kModeQueue = 100;      // append to the ring
inline constexpr int kModePurge = 200;      // stop, empty the ring, play this
inline constexpr int kPlayAlwaysValidFor = 120;
inline constexpr int kRingFull = -999;
inline constexpr int kCaptionBufferLength = 150;

// Files below the program root.
inline constexpr std::string_view kSoundFolder = "Sound\\";
inline constexpr std::string_view kSilenceFile = "Sound\\FSSilence.wav";
inline constexpr std::string_view kCaptionsFile = "text\\english.txt";
inline constexpr std::string_view kSoundCardFile = "SoundCard.dat";
inline constexpr std::string_view kCaptionSection = "[Sound Files]";
// The text that asks the message line to show the captions alone.
inline constexpr std::string_view kCaptionMode = "-caption-mode-";
inline constexpr int kCaptionSeconds = 15;

// The simulator's message line: the text (with its closing zero) and then
// the seconds to show it, whose write makes the simulator display the text.
inline constexpr uint32_t kMessageTextOffset = 0x3380;
inline constexpr uint32_t kMessageSecondsOffset = 0x32FA;
inline constexpr int kMessageLineLength = 119;     // longest line shown
inline constexpr int kMessageCaptionLength = 113;  // caption text that fits beside the status

struct QueuedSound {
  std::string Path;  // path below the program root, "\" separated
  std::string File;  // the file as the caller named it (for events)
  int32_t QueuedAt = 0;
  int32_t ValidFor = 0;  // ticks; 0 or less never goes stale
};

struct SoundChannel {
  std::array<QueuedSound, kRingSize> Entries{};
  int16_t Head = 0;
  int16_t Tail = -1;
  int16_t Count = 0;
  bool Ready = true;  // the device has reported the end of the last file
  int32_t LastStamp = 0;
};

// What the status part of the simulator's message line shows.
struct MessageStatus {
  int32_t Nav1OBS = 0;
  std::string Mode;  // "Taxiing  ", "Taking Off  ", ... or ""
  bool CircuitTraining = false;
  std::string CircuitLeg;  // "Base  ", ... or eight blanks
  std::string DataSource;  // "[FSR]  ", "[FSU]  " or ""
  std::string WaypointName = "Unknown";
  int32_t WaypointHeading = 0;
};

struct SoundState {
  std::array<int32_t, kSoundFamilies> LastPlayed{};
  std::array<SoundChannel, 2> Channels{};

  std::unordered_map<std::string, std::string> CaptionTable;
  std::string CaptionBuffer;
  bool Muted = false;

  // The folder holding Sound\ and SoundCard.dat (the program's root), ends
  // in "\".
  std::string SoundRoot;
  std::string Instructor;  // folder name below "Sound\"
  std::vector<std::string> Instructors;

  // Options of the sound page.
  bool DisableSound = false;
  bool CaptionsOn = true;
  int InstructorVolume = 2;  // index 0..4
  int SoundCard = -1;        // device index, -1 the system default

  MessageStatus Status;
  // The last remark shown: its caption and level (1 amber, 2 red).
  std::string RemarkText;
  int RemarkLevel = 0;
};

// What the enqueue operations and the timer need besides their own state.
struct Voice {
  SoundState& state;
  std::array<AudioOut*, 2> audio{};  // channel 0 and the idle channel 1
  SimLink* link = nullptr;           // for the simulator's message line
  Events& events;
  int32_t tick = 0;  // the current TickCount
};

void InitSound(SoundState& s);

// "Sound\" + instructor + "\" + file: a file of the chosen instructor.
std::string InstructorPath(const SoundState& s, std::string_view file);

// The gated operations: the family `id` speaks again only once `gap` ticks
// have run since it last did. True when the gate passed and the file was
// asked for.
bool PlayPerhaps(Voice& v, std::string_view file, int id, int gap, int expiry);
bool PlayAndPurge(Voice& v, std::string_view file, int id, int gap);
void PlayAlways(Voice& v, std::string_view file);
void PlayAlwaysRoot(Voice& v, std::string_view file);
// A path below the program root ("Locations\Harbour.wav"); `by` and `file`
// name the request in the events (file: the path when empty).
// 0 accepted, -999 ring full, -1 unknown mode.
int PlaySound(Voice& v, std::string_view path, int mode, int validFor, int channel,
              std::string_view by = "PlaySound", std::string_view file = {});

// One step of the 125 ms sound timer of a channel. A channel without a
// device plays nothing and never waits. A failure of the device ends in the
// standard failure report (FailureReport, location "SoundTimer::Timer").
void SoundTimer(Voice& v, int channel);

// The caption of a remark, 1 amber (early warning), 2 red (a fault).
void ShowRemark(Voice& v, std::string_view file, int level);

// The simulator's message line; true when both writes were accepted.
bool DisplayFSMessage(Voice& v, std::string_view text, int seconds);
bool DisplayOnlyThisTextFSMessage(Voice& v, std::string_view text, int seconds);
// A call point kept for spoken texts; it shows nothing.
inline void DisplayVoiceIfWanted(std::string_view /*text*/, int /*seconds*/ = 0) {}

// What cannot be a caption (a line that is no "NAME=words", a second caption
// for one sound, no caption section at all) becomes a notice naming the line.
void LoadCaptions(SoundState& s, std::string_view file, Notices* notices = nullptr);
// The caption key of a path: file part upper case, with the aircraft folder
// prefixes ("B737\LANDEDTOOFAST.WAV").
std::string CaptionKey(std::string_view path);
// The words of a file below the root ("Sound\\Jim\\b737\\MaxAlt.wav"); empty when
// the captions have none.
std::string CaptionOf(const SoundState& s, std::string_view path);

void SetInstructorVolume(Voice& v, int setting);
// On connecting: sound disabled with captions on keeps the files running,
// inaudibly, to pace the captions; otherwise the chosen volume.
void SetVolumeAtConnection(Voice& v);
// Fills the instructor list from the folders below "Sound\".
void LoadInstructors(SoundState& s);
bool FindAndSetInstructor(SoundState& s, std::string_view name);
// "SoundCard.dat": the chosen output device.
int LoadSoundCard(const SoundState& s);
bool SaveSoundCard(const SoundState& s, int device);
// The pilot picks an output device (-1 the system default).
void SelectSoundCard(Voice& v, int device);

}  // namespace vantoro
