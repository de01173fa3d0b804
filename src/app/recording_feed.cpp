#include "app/recording_feed.h"

#include <utility>

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
    // Voice commands are not part of the instructor yet: phrases pass by.
    if (const StepEffect effect = ApplyStep(step, image_, clock_); effect.key != 0)
      instructor.PressHotKey(effect.key);
  }
  return false;
}

void RecordingFeed::AfterTick() {
  clock_.AdvanceSeconds(kTickSeconds);
}

}  // namespace vantoro
