#include "app/live_program.h"

#include <chrono>
#include <utility>

#include "base/failure.h"
#include "base/files.h"
#include "base/registry.h"
#include "engine/polling.h"
#include "engine/tick_rules.h"
#include "engine/voice_actions.h"
#include "link/platform_link.h"
#include "shell/event_json.h"
#include "voice/sound_queue.h"

namespace vantoro {

namespace {

// The status line once a recording flown through the program has no tick left.
constexpr const char* kRecordingFinished = "Status: The recording is finished";

// The simulator the delivered world is read for before any has connected.
constexpr const char* kDeliveredWorldSim = "FSX";

uint64_t SeedFromTime() {
  return static_cast<uint64_t>(std::chrono::system_clock::now().time_since_epoch().count()) | 1u;
}

// No simulator folder is set: whichever simulator connects flies over the
// delivered world.
bool NoSimulatorFolder(const EngineOptions& o) {
  return o.FS2002Folder.empty() && o.FS2004Folder.empty() && o.FSXFolder.empty();
}

}  // namespace

void FeedEvents::Emit(const Event& event) {
  feed_.PublishEvent(EventJson(event));
}

nlohmann::json BasicState(Instructor& in) {
  return {
      {"tick", in.flight.TickCount},       {"connected", in.flight.UserConnected},
      {"status", in.flight.Status},        {"mode", FlightModeName(CurrentMode(in.flight.Modes))},
      {"flight", in.flight.CurrentFlight}, {"pilot", in.pilot.CurrentPilotFile}};
}

LiveProgram::LiveProgram(const LiveSetup& setup, LiveParts parts)
    : parts_(std::move(parts)),
      feedEvents_(feed_),
      instructor_([&] {
        events_.Add(&feedEvents_);
        if (parts_.alsoTell != nullptr) events_.Add(parts_.alsoTell);
        if (!parts_.random) parts_.random = std::make_unique<SeededRandom>(SeedFromTime());
        Seams seams;
        seams.events = &events_;
        seams.random = parts_.random.get();
        seams.audio = {parts_.audio[0].get(), parts_.audio[1].get()};
        if (parts_.recording) {
          seams.sim = &parts_.recording->link();
          seams.clock = &parts_.recording->clock();
        } else {
          if (!parts_.sim) parts_.sim = std::make_unique<NoSimulatorLink>();
          tap_ = std::make_unique<TapLink>(*parts_.sim);
          seams.sim = tap_.get();
          seams.clock = parts_.clock ? parts_.clock.get() : &systemClock_;
        }
        return std::make_unique<Instructor>(setup.root, seams);
      }()),
      loop_(*instructor_, mailbox_, setup.speed),
      registry_(MakePlatformRegistry()) {
  if (tap_ && parts_.record)
    recorder_ = std::make_unique<FlightRecorder>(
        *tap_, parts_.clock ? *parts_.clock : static_cast<const Clock&>(systemClock_));
  loop_.SetAfterPosted([this](Instructor&) { PublishState(); });
  loop_.SetBody(LiveTimer::FSPoll, [this](Instructor& in) { PollTick(in); });
  loop_.SetBody(LiveTimer::SoundTimer, [this](Instructor& in) {
    in.SoundStep();
    if (!parts_.afterSoundStep) return;
    // A sound device that fails is told on the status line; the instructor
    // goes on in silence, the captions still shown.
    if (std::string problem = parts_.afterSoundStep(); !problem.empty()) {
      in.flight.Status = problem;
      events_.Emit(in.flight.TickCount, "status", {{"text", problem}});
    }
  });
  loop_.SetBody(LiveTimer::RemoteTimer, [this](Instructor& in) { RemoteTick(in); });
  loop_.SetBody(LiveTimer::WebTimer, [this](Instructor& in) { WebTick(in); });
}

LiveProgram::~LiveProgram() {
  mailbox_.Close();
  feed_.Close();
}

void LiveProgram::Note(const std::string& text) {
  events_.Emit(instructor_->flight.TickCount, "notice", {{"text", text}});
}

void LiveProgram::Tell(const Notice& n) {
  events_.Emit(NoticeEvent(instructor_->flight.TickCount, n));
}

void LiveProgram::StartUp(std::string_view pilotFile) {
  Instructor& in = *instructor_;
  startup_ = std::make_unique<Startup>(in, *registry_);
  startup_->Run(pilotFile);
  for (const Notice& n : startup_->notices()) Tell(n);
  {
    Voice v{in.sound,
            {parts_.audio[0].get(), parts_.audio[1].get()},
            nullptr,
            events_,
            in.flight.TickCount};
    SelectSoundCard(v, in.sound.SoundCard);
    SetInstructorVolume(v, in.sound.InstructorVolume);
  }
  // Without a simulator folder in the settings every simulator flies over
  // the delivered world: it is read now, off the loop thread, and taken in
  // by the timers once it is there. A connection waits for it (see
  // WorldPending): were it to read the world itself meanwhile, the loop
  // would stand still for the read and the program hold two worlds at once.
  if (NoSimulatorFolder(in.options)) world_ = startup_->OpenWorldInBackground(kDeliveredWorldSim);
  if (recorder_)
    for (const std::string& file : RecoverOpenRecordings(NativePath(in.root)))
      Note("A flight's recording left open has been kept: " + file);
  // The first attempt at the simulator, so that the status line tells at
  // once whether one is there; a recording connects before its first tick.
  if (!parts_.recording) {
    Cockpit c = in.cockpit();
    FSConnect(c);
  }
  PublishState();
}

bool LiveProgram::WorldPending() {
  TakeWorldWhenLoaded();
  return world_.valid();
}

void LiveProgram::TakeWorldWhenLoaded() {
  if (!world_.valid() || world_.wait_for(std::chrono::seconds(0)) != std::future_status::ready)
    return;
  const size_t before = startup_->notices().size();
  startup_->TakeWorld(world_.get());
  for (size_t i = before; i < startup_->notices().size(); ++i) Tell(startup_->notices()[i]);
}

nlohmann::json LiveProgram::StateDocument() {
  nlohmann::json state = stateOf(*instructor_);
  if (!slow_.is_null() && state.is_object()) state["app"] = slow_;
  return state;
}

void LiveProgram::PublishState() {
  feed_.PublishState(StateDocument());
}

void LiveProgram::RemoteTick(Instructor& in) {
  // The app's requests that act on the flight, carried out between ticks;
  // in the first moments, once the world being read is in (a Connect would
  // read it again on this thread).
  if (WorldPending()) return;
  if (mailbox_.RunRemote(in) > 0) PublishState();
}

nlohmann::json LiveProgram::WorldProgress(const Instructor& in) {
  const size_t runways = in.world.Runways.size();
  const char* state = runways > 0 ? "loaded" : world_.valid() ? "loading" : "not loaded";
  return {{"state", state}, {"runways", runways}, {"stations", in.world.VORStations.size()}};
}

void LiveProgram::WebTick(Instructor& in) {
  TakeWorldWhenLoaded();
  nlohmann::json slow = slowStateOf ? slowStateOf(in) : nlohmann::json::object();
  slow["world"] = WorldProgress(in);
  if (slow == slow_) return;
  slow_ = std::move(slow);
  PublishState();
}

void LiveProgram::FollowVoiceMode(Instructor& in) {
  const bool wanted = in.options.VoiceMode != kVoiceOff && in.flight.UserConnected;
  if (!wanted) {
    microphone_.reset();
    microphoneRefused_ = false;
    return;
  }
  if (microphone_ || microphoneRefused_) return;
  // The recogniser's thread hands over the phrase's text alone; it is heard
  // on this thread before the next tick.
  microphone_ = std::make_unique<MicrophoneListener>([this](const std::string& phrase) {
    mailbox_.Post([phrase](Instructor& i) { i.HearPhrase(phrase); });
  });
  if (std::string why; !microphone_->Start(why)) {
    microphone_.reset();
    microphoneRefused_ = true;
    Note("Voice commands are off: " + why);
  }
}

void LiveProgram::PollTick(Instructor& in) {
  TakeWorldWhenLoaded();
  if (RecordingFeed* recording = parts_.recording.get()) {
    // Replay has the world from the connection on: the recording's first
    // tick waits for the world being read.
    if (!recordingConnected_ && WorldPending()) return;
    if (!recording->BeforeTick(in)) {
      if (!recordingEnded_) {
        recordingEnded_ = true;
        events_.Emit(in.flight.TickCount, "end", {{"ticks", recording->TicksServed()}});
        in.flight.Status = kRecordingFinished;
        events_.Emit(in.flight.TickCount, "status", {{"text", kRecordingFinished}});
        PublishState();
      }
      return;
    }
    // The pilot pressed Connect before the first tick, with the image as the
    // recording had set it up, as in replay.
    if (!recordingConnected_) {
      recordingConnected_ = true;
      in.Connect();
    }
  }
  // A hot key the pilot pressed in the app acts in this tick; the flight's
  // recording says so before the tick.
  const int pressedKey = in.flight.VoiceAction;
  in.Tick();
  // What the simulator could not do of the instructor's writes is told once,
  // on the status line and as a notice.
  if (!parts_.recording && parts_.sim)
    for (const std::string& text : parts_.sim->TakeNotices()) {
      in.flight.Status = text;
      events_.Emit(in.flight.TickCount, "status", {{"text", text}});
      Note(text);
    }
  FollowVoiceMode(in);
  if (parts_.recording) parts_.recording->AfterTick();
  if (recorder_)
    if (std::string problem = recorder_->AfterTick(in, pressedKey); !problem.empty()) Note(problem);
  PublishState();
}

int LiveProgram::Run() {
  try {
    loop_.Run();
  } catch (const FailureReport& f) {
    failure_ = f.Report();
  } catch (const std::exception& e) {
    failure_ = FailureReport(kErrInvalidCall, e.what(), "FSPolling").Report();
  }
  if (recorder_) recorder_->Close();
  if (failure_) {
    events_.Emit(instructor_->flight.TickCount, "error", {{"text", *failure_}});
    nlohmann::json state = StateDocument();
    state["failure"] = *failure_;
    feed_.PublishState(std::move(state));
    return 70;
  }
  return 0;
}

}  // namespace vantoro
