#include "app/recording_feed.h"

#include <utility>

#include "engine/voice_actions.h"
#include "shell/instructor.h"

namespace vantoro {

namespace {
constexpr double kTickSeconds = 0.5;
}

RecordingFeed::RecordingFeed(Recording recording)
    : recording_(std::move(recording)), link_(image_) {}

bool RecordingFeed::BeforeTick(Instructor& instructor) {
  if (ticksLeft_ > 0) {
    --ticksLeft_;
    ++served_;
    return true;
  }
  while (index_ < recording_.steps.size()) {
    const RecordingStep& step = recording_.steps[index_++];
    if (step.kind == RecordingStep::Kind::Tick) {
      ticksLeft_ = step.ticks - 1;
      ++served_;
      return true;
    }
    // A key is pressed as the app presses it, as in replay; a phrase is
    // heard by the instructor.
    const StepEffect effect = ApplyStep(step, image_, clock_);
    if (effect.key != 0) instructor.PressHotKey(effect.key);
    if (effect.phrase != nullptr) instructor.HearPhrase(*effect.phrase);
  }
  return false;
}

void RecordingFeed::AfterTick() {
  clock_.AdvanceSeconds(kTickSeconds);
}

}  // namespace vantoro
