#include "standin_host.h"

#include <utility>

#include "app/web/web_server.h"
#include "base/failure.h"
#include "shell/event_json.h"
#include "shell/replay.h"

namespace vantoro {

namespace {

// Every event of the instructor becomes a line of the live stream.
class FeedEvents final : public Events {
 public:
  explicit FeedEvents(LiveFeed& feed) : feed_(feed) {}
  void Emit(const Event& event) override { feed_.PublishEvent(EventJson(event)); }
  using Events::Emit;

 private:
  LiveFeed& feed_;
};

}  // namespace

StandInHost::StandInHost(StandInSetup setup) : setup_(std::move(setup)) {}

StandInHost::~StandInHost() {
  Stop();
}

bool StandInHost::Start(std::string& error) {
  Recording probe;
  if (!LoadRecording(setup_.recording, probe, error)) return false;
  mailbox.SetWake([this] {
    std::lock_guard lock(mutex_);
    woken_ = true;
    wake_.notify_all();
  });
  thread_ = std::thread([this] { Loop(); });
  return true;
}

void StandInHost::Stop() {
  stop_ = true;
  {
    std::lock_guard lock(mutex_);
    woken_ = true;
    wake_.notify_all();
  }
  mailbox.Close();
  feed.Close();
  if (thread_.joinable()) thread_.join();
}

void StandInHost::Loop() {
  Recording recording;
  std::string error;
  LoadRecording(setup_.recording, recording, error);
  FeedEvents events(feed);
  Replay replay(ReplaySetup{setup_.root, 1, false, setup_.pilot, setup_.root}, events);
  Instructor& in = replay.instructor();
  in.settings.PilotFile = in.pilot.CurrentPilotFile;
  feed.PublishState(LiveState(in));

  // Waits out the pace of one tick, running what the app posts meanwhile;
  // what waits for the remote timer runs at least once between two ticks.
  auto runPosted = [&] {
    if (mailbox.RunPending(in) + mailbox.RunRemote(in) > 0) feed.PublishState(LiveState(in));
  };
  auto pause = [&](std::chrono::milliseconds span) {
    const auto until = std::chrono::steady_clock::now() + span;
    do {
      runPosted();
      std::unique_lock lock(mutex_);
      wake_.wait_until(lock, until, [&] { return woken_ || stop_.load(); });
      woken_ = false;
    } while (!stop_ && std::chrono::steady_clock::now() < until);
    runPosted();
  };

  RecordingStep one;
  one.kind = RecordingStep::Kind::Tick;
  try {
    for (const RecordingStep& step : recording.steps) {
      if (stop_) break;
      if (step.kind != RecordingStep::Kind::Tick) {
        replay.Step(step);
        continue;
      }
      for (int32_t i = 0; i < step.ticks && !stop_; ++i) {
        if (setup_.maxTicks >= 0 && replay.Ticks() >= setup_.maxTicks) break;
        pause(setup_.tick);
        replay.Step(one);
        feed.PublishState(LiveState(in));
      }
    }
  } catch (const FailureReport& f) {
    nlohmann::json state = LiveState(in);
    state["failure"] = f.Report();
    events.Emit(in.flight.TickCount, "error", {{"text", f.Report()}});
    feed.PublishState(state);
  }
  finished_ = true;
  while (!stop_) pause(std::chrono::milliseconds(100));
}

}  // namespace vantoro
