// The sound device: asynchronous playback of one wave file at a time, a
// device list, a relative volume and a finished notice.
#pragma once

#include <functional>
#include <stdexcept>
#include <string>

namespace vantoro {

class AudioOut {
 public:
  virtual ~AudioOut() = default;

  virtual int DeviceCount() const = 0;
  virtual std::string DeviceName(int index) const = 0;
  virtual void SetDevice(int index) = 0;  // -1: the system default

  // Starts the file (a native path) and returns at once.
  virtual void Play(const std::string& nativePath) = 0;
  virtual void Stop() = 0;
  virtual bool IsPlaying() const = 0;
  // Volume in the instructor's units: 0 normal, -10 quieter ... 6 louder,
  // -30000 inaudible.
  virtual void SetVolume(int volume) = 0;

  // Called when a file has finished (or was stopped while playing). The sound
  // queue sets it to the Ready flag of the channel that plays on this device.
  std::function<void()> onFinished;
};

// A failure of the device (the player cannot start, the chosen device has
// gone away...). The sound timer turns it into the standard failure report.
class AudioFailure : public std::runtime_error {
 public:
  AudioFailure(long number, const std::string& text) : std::runtime_error(text), number_(number) {}
  long number() const { return number_; }

 private:
  long number_;
};

// The failure a device reports when the default sound card has been changed
// under it.
inline constexpr long kAudioDeviceChanged = -2147467259;  // 0x80004005

}  // namespace vantoro
