#include "app/live_loop.h"

#include <algorithm>

namespace vantoro {

namespace {

std::chrono::nanoseconds Period(int milliseconds, double speed) {
  const double ns = milliseconds * 1e6 / std::max(speed, 1e-3);
  return std::chrono::nanoseconds(static_cast<int64_t>(ns));
}

}  // namespace

LiveLoop::LiveLoop(Instructor& instructor, Mailbox& mailbox, double speed)
    : instructor_(instructor), mailbox_(mailbox) {
  timers_ = {Timer{Period(kFSPollMs, speed), {}, {}}, Timer{Period(kSoundTimerMs, speed), {}, {}},
             Timer{Period(kRemoteTimerMs, speed), {}, {}},
             Timer{Period(kWebTimerMs, speed), {}, {}}};
}

LiveLoop::~LiveLoop() {
  mailbox_.SetWake({});
}

void LiveLoop::SetBody(LiveTimer timer, Body body) {
  timers_[static_cast<size_t>(timer)].body = std::move(body);
}

void LiveLoop::Wake() {
  {
    std::lock_guard lock(mutex_);
    woken_ = true;
  }
  wake_.notify_one();
}

void LiveLoop::Stop() {
  {
    std::lock_guard lock(mutex_);
    stopping_ = true;
  }
  wake_.notify_one();
}

void LiveLoop::Run() {
  using Clock = std::chrono::steady_clock;
  loopThread_ = std::this_thread::get_id();
  mailbox_.SetWake([this] { Wake(); });
  const Clock::time_point start = Clock::now();
  for (Timer& t : timers_) t.due = start;

  for (;;) {
    // The next timer to fire; ties go to the earlier timer of the list.
    size_t next = 0;
    for (size_t i = 1; i < timers_.size(); ++i)
      if (timers_[i].due < timers_[next].due) next = i;
    Timer& timer = timers_[next];
    {
      std::unique_lock lock(mutex_);
      wake_.wait_until(lock, timer.due, [this] { return woken_ || stopping_; });
      woken_ = false;
      if (stopping_) break;
    }
    if (mailbox_.RunPending(instructor_) > 0 && afterPosted_) afterPosted_(instructor_);
    const Clock::time_point now = Clock::now();
    if (now < timer.due) continue;  // woken for posted work only
    if (timer.body) timer.body(instructor_);
    ++fired_[next];
    timer.due += timer.period;
    if (timer.due + kMostMissedPeriods * timer.period < now) timer.due = now + timer.period;
  }
  mailbox_.RunPending(instructor_);
}

}  // namespace vantoro
