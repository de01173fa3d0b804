// Replay of a recording through a whole instructor, in virtual time: the
// recording's bytes go into an offset image that an image link serves, sounds
// "play" on virtual devices for their wave duration, the wall clock stands
// still except for half a second a tick, and the random draws are seeded.
// Each tick is one polling tick and then four 125 ms steps of the sound timer.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "base/events.h"
#include "base/notices.h"
#include "base/seams.h"
#include "link/image_link.h"
#include "link/recording.h"
#include "shell/instructor.h"
#include "voice/virtual_audio.h"

namespace vantoro {

inline constexpr int kReplayTickMs = 500;
inline constexpr int kReplaySoundStepMs = 125;
inline constexpr int kReplaySoundSteps = 4;
inline constexpr double kReplayTickSeconds = 0.5;

struct ReplaySetup {
  std::string root;  // the program's root folder
  uint64_t seed = 1;
  bool instant = false;  // every sound plays for 0 s
  // The pilot to fly with; empty flies without one (nothing is logged).
  std::string pilot;
  // The folder of the score marker files; empty leaves none.
  std::string logFolder;
};

class Replay {
 public:
  // Opens everything as the live program does at its start (settings of the
  // root, captions, voices, the pilot, aircraft data, log folder); what was
  // passed over is told as "notice" events and kept in StartupNotices.
  Replay(const ReplaySetup& setup, Events& events);
  Replay(const Replay&) = delete;
  Replay& operator=(const Replay&) = delete;

  // Runs every step of the recording and emits "end". Returns the ticks run.
  // A failure report of the instructor passes through to the caller.
  int64_t Run(const Recording& recording);

  // Virtual time since the first tick, milliseconds.
  const int64_t& VirtualMs() const { return virtualMs_; }
  int64_t Ticks() const { return ticks_; }
  Instructor& instructor() { return *instructor_; }
  const Notices& StartupNotices() const { return notices_; }
  // The pilot file named could not be read.
  bool PilotFailed() const { return pilotFailed_; }
  OffsetImage& image() { return image_; }
  // The phrases the pilot spoke, in order; each was heard by the instructor
  // before the tick it precedes.
  const std::vector<std::string>& Phrases() const { return phrases_; }
  // One directive of the recording; hosts that pace the flight themselves
  // (the live app's stand-in, the plots of a recorded flight) feed ticks
  // one at a time.
  void Step(const RecordingStep& step);

 private:
  void OneTick();

  Events& events_;
  OffsetImage image_;
  ImageLink link_;
  std::array<VirtualAudio, 2> audio_;
  FixedClock clock_;
  SeededRandom random_;
  std::unique_ptr<Instructor> instructor_;
  bool connected_ = false;
  int64_t ticks_ = 0;
  int64_t virtualMs_ = 0;
  std::vector<std::string> phrases_;
  Notices notices_;
  bool pilotFailed_ = false;
};

}  // namespace vantoro
