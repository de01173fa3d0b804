// The sound device: asynchronous playback of one wave file at a time, a
// device list, a relative volume and a finished notice.
#pragma once

#include <functional>
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

  // Called when a file has finished (or was stopped while playing).
  std::function<void()> onFinished;
};

}  // namespace vantoro
