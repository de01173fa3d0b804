// The sound device on Linux: ALSA's playback of the instructor's wave files
// (PipeWire and PulseAudio serve ALSA's "default" device). A file plays on a
// small thread of its own, so the loop never waits for the card; the end of
// a file is handed back on the loop thread, where the sound timer asks for
// it (Deliver after each step), because the finished notice sets the sound
// queue's Ready flag, which only the loop may touch.
//
// No device, or a device that fails, never stops the instructor: the
// problem is given to the loop once (for the status line) and the file
// "plays" in silence for its length, so the captions keep their pace.
#pragma once

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "app/wave_samples.h"
#include "voice/audio_out.h"

namespace vantoro {

// The device name ALSA opens for "the system default".
inline constexpr const char* kAlsaDefaultDevice = "default";
// How much sound ALSA holds ahead of what is heard, microseconds.
inline constexpr unsigned kAlsaLatencyMicroseconds = 100'000;

class AlsaAudioOut final : public AudioOut {
 public:
  // systemDefault: the ALSA name "the system default" (-1) stands for.
  explicit AlsaAudioOut(std::string systemDefault = kAlsaDefaultDevice);
  ~AlsaAudioOut() override;
  AlsaAudioOut(const AlsaAudioOut&) = delete;
  AlsaAudioOut& operator=(const AlsaAudioOut&) = delete;

  // The output devices ALSA lists (their ALSA names), read when first asked
  // for, so that the program's start does not wait for ALSA.
  int DeviceCount() const override { return static_cast<int>(Devices().size()); }
  std::string DeviceName(int index) const override;
  // A device no longer in the list is reported and the default taken.
  void SetDevice(int index) override;
  void Play(const std::string& nativePath) override;
  void Stop() override;
  // From Play until its end has been delivered on the loop thread.
  bool IsPlaying() const override { return playing_; }
  void SetVolume(int volume) override { gain_ = VolumeGain(volume); }

  // Loop thread: a file that has ended raises onFinished here. Returns a
  // problem of the device not told before ("" when none).
  std::string Deliver();

  // The ALSA name files play on now.
  const std::string& Device() const { return device_; }
  // Frames handed to the device for the last file (0 when it played silent).
  int64_t FramesWritten() const { return frames_; }

 private:
  void Playback(std::string path, std::string device, double gain);
  void SilentFor(int64_t milliseconds);
  void Report(std::string problem);
  void Join();
  const std::vector<std::string>& Devices() const;

  std::string systemDefault_;
  mutable std::optional<std::vector<std::string>> devices_;
  std::string device_;
  std::atomic<double> gain_{1.0};
  std::thread thread_;
  bool playing_ = false;
  std::atomic<bool> ended_{false};
  std::atomic<bool> stop_{false};
  std::atomic<int64_t> frames_{0};
  std::mutex mutex_;
  std::condition_variable stopped_;
  std::string problem_;   // waiting to be delivered
  std::string lastTold_;  // the last problem delivered, told once
};

}  // namespace vantoro
