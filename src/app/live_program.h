// The live program put together: one instructor over a simulator link (or a
// recording flown in real time) and the sound devices, driven by the loop's
// four timers; what it does goes out through the live feed as event lines
// and a state document after each tick; each live flight is recorded.
// The app's server threads meet it only through mailbox() and feed().
#pragma once

#include <array>
#include <functional>
#include <future>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>

#include "app/flight_recorder.h"
#include "app/live_bridge.h"
#include "app/live_loop.h"
#include "app/microphone.h"
#include "app/recording_feed.h"
#include "base/events.h"
#include "base/seams.h"
#include "shell/instructor.h"
#include "shell/startup.h"

namespace vantoro {

// What the program flies with; main makes the platform's, tests their own.
struct LiveParts {
  // The simulator link, or a recording flown instead (then `sim` is unused).
  std::unique_ptr<SimLink> sim;
  std::unique_ptr<RecordingFeed> recording;
  // The two sound devices (instructor and second channel); either may be
  // missing (the channel then stays silent).
  std::array<std::unique_ptr<AudioOut>, 2> audio;
  // On the loop thread after each sound timer step: devices hand back their
  // finished notices here (the real device), or move virtual time on. A
  // problem of a device it returns goes on the status line.
  std::function<std::string()> afterSoundStep;
  // The wall clock and the random draws; the computer's own when null (the
  // recording's clock when one is flown).
  std::unique_ptr<Clock> clock;
  std::unique_ptr<Random> random;
  // Also told every event (a console log, a test).
  Events* alsoTell = nullptr;
  // Live flights are recorded (never a recording flown again).
  bool record = true;
};

struct LiveSetup {
  std::string root;
  double speed = 1.0;  // timers this many times faster (tests)
};

// Publishes every event to the live feed as one JSON line.
class FeedEvents final : public Events {
 public:
  explicit FeedEvents(LiveFeed& feed) : feed_(feed) {}
  void Emit(const Event& event) override;
  using Events::Emit;

 private:
  LiveFeed& feed_;
};

// The state document the program publishes when the app's builder is not
// given: connection, status line, flight mode, tick and flight number.
nlohmann::json BasicState(Instructor& instructor);

class LiveProgram {
 public:
  LiveProgram(const LiveSetup& setup, LiveParts parts);
  ~LiveProgram();
  LiveProgram(const LiveProgram&) = delete;
  LiveProgram& operator=(const LiveProgram&) = delete;

  // The start-up, before the loop, in the program's one order (Startup):
  // settings, captions, voices and the sound device, the pilot, aircraft
  // data; the world in the background; recordings a program that died left
  // open; then the first attempt at the simulator so the status line is
  // right at once. What went wrong is told as "notice" events; the program
  // starts all the same.
  // `pilotFile` names the pilot to fly with; empty takes the settings' last.
  void StartUp(std::string_view pilotFile = {});

  // Runs the loop until Stop. Returns 0, or 70 after the standard failure
  // report (told as an "error" event and kept in failure()).
  int Run();
  // Any thread.
  void Stop() { loop_.Stop(); }

  Mailbox& mailbox() { return mailbox_; }
  LiveFeed& feed() { return feed_; }
  const LiveLoop& loop() const { return loop_; }
  // Loop thread only (or before Run / after it has returned).
  Instructor& instructor() { return *instructor_; }
  const FlightRecorder* recorder() const { return recorder_.get(); }
  const std::optional<std::string>& failure() const { return failure_; }

  // The state document's builder (the app's, when it has one).
  std::function<nlohmann::json(Instructor&)> stateOf = BasicState;
  // What the app shows that changes slowly (its log book's files), asked
  // for by the web timer; the state document carries it under "app", with
  // the world data's loading beside it.
  std::function<nlohmann::json(Instructor&)> slowStateOf;

 private:
  void PollTick(Instructor& in);
  void Note(const std::string& text);
  void Tell(const Notice& n);
  void TakeWorldWhenLoaded();
  // The world is being read off the loop thread (taken in first when it has
  // come meanwhile).
  bool WorldPending();
  void PublishState();
  nlohmann::json StateDocument();
  void RemoteTick(Instructor& in);
  void WebTick(Instructor& in);
  nlohmann::json WorldProgress(const Instructor& in);
  // The microphone listens while connected with a voice mode chosen.
  void FollowVoiceMode(Instructor& in);

  LiveParts parts_;
  LiveFeed feed_;
  Mailbox mailbox_;
  FeedEvents feedEvents_;
  EventFanOut events_;
  SystemClock systemClock_;
  std::unique_ptr<TapLink> tap_;
  std::unique_ptr<Instructor> instructor_;
  std::unique_ptr<FlightRecorder> recorder_;
  LiveLoop loop_;
  std::unique_ptr<Registry> registry_;
  std::unique_ptr<Startup> startup_;
  std::future<WorldLoad> world_;
  bool recordingConnected_ = false;
  bool recordingEnded_ = false;
  std::optional<std::string> failure_;
  nlohmann::json slow_;  // what the web timer found last
  // Last, so that it stops before anything it posts to goes.
  std::unique_ptr<MicrophoneListener> microphone_;
  bool microphoneRefused_ = false;  // told once until the voice mode or connection changes
};

}  // namespace vantoro
