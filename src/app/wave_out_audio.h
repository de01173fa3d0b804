// The sound device on Windows: the multimedia system's wave output
// (waveOut). A file is handed to the device whole and plays while the loop
// goes on; the device's "done" callback, on a thread of the system's, only
// marks the file as ended. Its end is handed back on the loop thread, where
// the sound timer asks for it (Deliver after each step), because the finished
// notice sets the sound queue's Ready flag, which only the loop may touch.
//
// No device, or a device that fails, never stops the instructor: the
// problem is given to the loop once (for the status line) and the file
// "plays" in silence for its length, so the captions keep their pace.
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "voice/audio_out.h"

namespace vantoro {

class WaveOutAudio final : public AudioOut {
 public:
  WaveOutAudio();
  ~WaveOutAudio() override;
  WaveOutAudio(const WaveOutAudio&) = delete;
  WaveOutAudio& operator=(const WaveOutAudio&) = delete;

  // The output devices Windows lists, by their product names, read when
  // first asked for.
  int DeviceCount() const override { return static_cast<int>(Devices().size()); }
  std::string DeviceName(int index) const override;
  // -1 is the system's default device (the wave mapper). A device no longer
  // in the list is reported and the default taken.
  void SetDevice(int index) override;
  void Play(const std::string& nativePath) override;
  void Stop() override;
  // From Play until its end has been delivered on the loop thread.
  bool IsPlaying() const override { return playing_; }
  void SetVolume(int volume) override;

  // Loop thread: a file that has ended raises onFinished here. Returns a
  // problem of the device not told before ("" when none).
  std::string Deliver();

  // The device files play on now (-1 the default).
  int Device() const { return device_; }
  // True when the last file went to the card, false when it played silent.
  bool Audible() const { return audible_; }

 private:
  struct Opened;
  void CloseDevice();
  void SilentFor(int64_t milliseconds);
  void Report(std::string problem);
  const std::vector<std::string>& Devices() const;

  mutable std::optional<std::vector<std::string>> devices_;
  int device_ = -1;
  double gain_ = 1.0;
  bool playing_ = false;
  bool audible_ = false;
  // The open device, the samples it plays and the flag its callback sets,
  // held until the device is closed.
  std::unique_ptr<Opened> opened_;
  // A file playing silent ends at this time instead.
  std::optional<std::chrono::steady_clock::time_point> silentUntil_;
  std::string problem_;   // waiting to be delivered
  std::string lastTold_;  // the last problem delivered, told once
};

}  // namespace vantoro
