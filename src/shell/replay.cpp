#include "shell/replay.h"

#include "base/registry.h"
#include "engine/voice_actions.h"
#include "shell/startup.h"

namespace vantoro {

Replay::Replay(const ReplaySetup& setup, Events& events)
    : events_(events),
      link_(image_),
      audio_{VirtualAudio(setup.instant), VirtualAudio(setup.instant)},
      random_(setup.seed) {
  Seams seams;
  seams.sim = &link_;
  seams.audio = {&audio_[0], &audio_[1]};
  seams.events = &events_;
  seams.clock = &clock_;
  seams.random = &random_;
  instructor_ = std::make_unique<Instructor>(setup.root, seams);

  // A replay has no registry: the folders are those of the settings.
  const NoRegistry registry;
  Startup start(*instructor_, registry);
  start.OpenSettings();
  start.OpenCaptions();
  start.OpenSoundPacks();
  if (!setup.pilot.empty()) pilotFailed_ = !start.OpenPilot(setup.pilot);
  start.OpenAircraftData();
  if (!setup.logFolder.empty()) start.OpenLogFolder(setup.logFolder);
  notices_ = start.notices();
  for (const Notice& n : notices_) events_.Emit(NoticeEvent(0, n));
}

void Replay::Step(const RecordingStep& step) {
  if (step.kind == RecordingStep::Kind::Tick) {
    for (int32_t i = 0; i < step.ticks; ++i) OneTick();
    return;
  }
  const StepEffect effect = ApplyStep(step, image_, clock_);
  // A recording's key is one the pilot pressed in the app (a key pressed in
  // the simulator is in the offsets read): it is pressed as the app presses
  // it, so that the replay of a live flight does what the flight did.
  if (effect.key != 0) instructor_->PressHotKey(effect.key);
  if (effect.phrase != nullptr) {
    phrases_.push_back(*effect.phrase);
    instructor_->HearPhrase(*effect.phrase);
  }
}

void Replay::OneTick() {
  // The pilot pressed Connect before the first tick, with the image as the
  // recording had set it up (the open handshake reads it).
  if (!connected_) {
    connected_ = true;
    instructor_->Connect();
  }
  instructor_->Tick();
  ++ticks_;
  clock_.AdvanceSeconds(kReplayTickSeconds);
  for (int i = 0; i < kReplaySoundSteps; ++i) {
    instructor_->SoundStep();
    for (VirtualAudio& a : audio_) a.Advance(kReplaySoundStepMs);
    virtualMs_ += kReplaySoundStepMs;
  }
}

int64_t Replay::Run(const Recording& recording) {
  for (const RecordingStep& step : recording.steps) Step(step);
  events_.Emit(instructor_->flight.TickCount, "end", {{"ticks", ticks_}});
  return ticks_;
}

}  // namespace vantoro
