// The live program's event loop: one thread, four timers over one
// instructor, as the main window's timers drive it. Work posted from other
// threads (the app's requests) runs on this thread before the next timer
// body, and a post wakes the loop at once. Each timer body runs to its end
// before anything else is served, so the core stays single-threaded.
#pragma once

#include <array>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>
#include <utility>

#include "app/live_bridge.h"

namespace vantoro {

// The four timers and their periods.
enum class LiveTimer { FSPoll = 0, SoundTimer = 1, RemoteTimer = 2, WebTimer = 3 };
inline constexpr int kFSPollMs = 500;
inline constexpr int kSoundTimerMs = 125;
inline constexpr int kRemoteTimerMs = 500;
inline constexpr int kWebTimerMs = 3000;
// A timer that has fallen further behind than this many periods (the
// machine slept, a debugger stopped the program) starts afresh from now
// instead of firing all it missed.
inline constexpr int kMostMissedPeriods = 4;

class LiveLoop {
 public:
  using Body = std::function<void(Instructor&)>;

  // speed: how many times faster than the wall clock the timers run (1 for
  // a pilot; tests run faster).
  LiveLoop(Instructor& instructor, Mailbox& mailbox, double speed = 1.0);
  ~LiveLoop();
  LiveLoop(const LiveLoop&) = delete;
  LiveLoop& operator=(const LiveLoop&) = delete;

  // The body of a timer; a timer without one only runs the posted work.
  void SetBody(LiveTimer timer, Body body);
  // Runs after posted work has run (the app changed something: its state
  // document is published again).
  void SetAfterPosted(Body body) { afterPosted_ = std::move(body); }

  // Runs the timers on the calling thread until Stop. All timers are due at
  // once at the start, in the order FSPoll, SoundTimer, RemoteTimer,
  // WebTimer; when two fall due together they run in that order, so one
  // polling tick is followed by the sound timer's steps as in replay. A
  // failure report thrown by a body or by posted work ends Run and passes
  // through to the caller.
  void Run();
  // Any thread, a signal's included (through the program's own thread): the
  // loop ends after the body it is running.
  void Stop();

  // The thread running the loop (default before Run).
  std::thread::id LoopThread() const { return loopThread_; }
  // How many times each timer's body has run.
  long Fired(LiveTimer timer) const { return fired_[static_cast<size_t>(timer)]; }

 private:
  struct Timer {
    std::chrono::nanoseconds period;
    std::chrono::steady_clock::time_point due;
    Body body;
  };
  void Wake();

  Instructor& instructor_;
  Mailbox& mailbox_;
  std::array<Timer, 4> timers_;
  Body afterPosted_;
  std::array<long, 4> fired_{};
  std::mutex mutex_;
  std::condition_variable wake_;
  bool woken_ = false;
  bool stopping_ = false;
  std::thread::id loopThread_;
};

}  // namespace vantoro
