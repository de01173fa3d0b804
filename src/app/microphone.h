// The microphone of the voice commands on Linux: ALSA capture at 16 kHz,
// one channel, on a thread of its own that also runs the recogniser. Only
// the text of each phrase heard leaves that thread (through `heard`); no
// flight logic ever runs on it.
#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <string>
#include <thread>

namespace vantoro {

class MicrophoneListener {
 public:
  using Heard = std::function<void(const std::string& phrase)>;
  // device: the ALSA capture device ("default": the system's microphone).
  explicit MicrophoneListener(Heard heard, std::string device = "default");
  ~MicrophoneListener();
  MicrophoneListener(const MicrophoneListener&) = delete;
  MicrophoneListener& operator=(const MicrophoneListener&) = delete;

  // Starts the recogniser with the grammar of the voice commands and opens
  // the microphone; false with the reason when either cannot be had.
  bool Start(std::string& error);
  void Stop();

 private:
  void Capture();

  Heard heard_;
  std::string device_;
  struct Parts;
  std::unique_ptr<Parts> parts_;
  std::atomic<bool> stopping_{false};
  std::thread thread_;
};

}  // namespace vantoro
