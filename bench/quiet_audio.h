// A sound device for the benchmarks: it takes every file and plays nothing,
// so a measured tick never waits on the sound queue.
#pragma once

#include <string>

#include "voice/audio_out.h"

namespace vantoro {

class QuietAudio final : public AudioOut {
 public:
  int DeviceCount() const override { return 1; }
  std::string DeviceName(int) const override { return "bench"; }
  void SetDevice(int) override {}
  void Play(const std::string&) override {}
  void Stop() override {}
  bool IsPlaying() const override { return false; }
  void SetVolume(int) override {}
};

}  // namespace vantoro
