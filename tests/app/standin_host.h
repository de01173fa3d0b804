// A stand-in for the live program, for the app's tests: it flies a recording
// through a whole instructor on a loop thread of its own, at a chosen pace,
// runs what the app posts to the mailbox between ticks, and publishes the
// events and the state document after each tick, as the live loop does.
#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>

#include "app/live_bridge.h"

namespace vantoro {

struct StandInSetup {
  std::string root;                   // a writable copy of the data root
  std::string recording;              // the flight to fly
  std::string pilot;                  // the pilot file to fly with, "" for none
  std::chrono::milliseconds tick{0};  // pace of the ticks; 0 as fast as it goes
  // Stop after this many ticks (the recording's end otherwise).
  int64_t maxTicks = -1;
};

class StandInHost {
 public:
  explicit StandInHost(StandInSetup setup);
  ~StandInHost();

  // Starts the loop thread; false with `error` when the recording cannot be read.
  bool Start(std::string& error);
  // Ends the loop (mailbox and feed closed) and joins it.
  void Stop();
  // True once the recording has been flown to its end (or maxTicks).
  bool Finished() const { return finished_; }

  Mailbox mailbox;
  LiveFeed feed;

 private:
  void Loop();

  StandInSetup setup_;
  std::thread thread_;
  std::mutex mutex_;
  std::condition_variable wake_;
  bool woken_ = false;
  std::atomic<bool> stop_{false};
  std::atomic<bool> finished_{false};
  std::string error_;
};

}  // namespace vantoro
