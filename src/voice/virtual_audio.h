// The sound device of replay and tests: a file "plays" for the duration its
// wave header gives, in virtual time that only Advance moves. Nothing is
// heard; what was played is kept, in order, for whoever wants to read it.
#pragma once

#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

#include "voice/audio_out.h"

namespace vantoro {

class VirtualAudio final : public AudioOut {
 public:
  // One file handed to the device.
  struct Played {
    std::string path;        // the native path as given to Play
    int64_t startMs = 0;     // virtual time when it started
    int64_t durationMs = 0;  // from its wave header; 0 for a broken header or in instant mode
    int volume = 0;          // the volume it played at
    int device = -1;         // the device number it played on
    bool stopped = false;    // cut short by Stop
  };

  // instant: every file plays for 0 s (finished at the next Advance).
  explicit VirtualAudio(bool instant = false) : instant_(instant) {}

  int DeviceCount() const override { return 1; }
  std::string DeviceName(int index) const override;
  void SetDevice(int index) override { device_ = index; }
  void Play(const std::string& nativePath) override;
  void Stop() override;
  bool IsPlaying() const override { return playing_; }
  void SetVolume(int volume) override { volume_ = volume; }

  // Moves virtual time on; a file whose end is reached finishes and the
  // finished notice is raised.
  void Advance(int64_t milliseconds);

  int64_t NowMs() const { return nowMs_; }
  int Volume() const { return volume_; }
  int Device() const { return device_; }
  bool Instant() const { return instant_; }

  std::vector<Played> played;

 private:
  int64_t DurationOf(const std::string& nativePath);

  bool instant_;
  bool playing_ = false;
  int64_t nowMs_ = 0;
  int64_t endMs_ = 0;
  int volume_ = 0;
  int device_ = -1;
  // Durations by path: a voice pack's files are read once.
  std::unordered_map<std::string, int64_t> durations_;
};

}  // namespace vantoro
