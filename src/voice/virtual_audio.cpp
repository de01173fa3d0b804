#include "voice/virtual_audio.h"

#include "voice/wav.h"

namespace vantoro {

std::string VirtualAudio::DeviceName(int index) const {
  return index == 0 ? "Virtual device" : std::string();
}

int64_t VirtualAudio::DurationOf(const std::string& nativePath) {
  auto it = durations_.find(nativePath);
  if (it != durations_.end()) return it->second;
  const int64_t ms = ReadWavInfo(nativePath.c_str()).durationMs;
  durations_.emplace(nativePath, ms);
  return ms;
}

void VirtualAudio::Play(const std::string& nativePath) {
  // A new file replaces the one playing, without a finished notice for it.
  if (playing_ && !played.empty()) played.back().stopped = true;
  const int64_t duration = instant_ ? 0 : DurationOf(nativePath);
  played.push_back(Played{nativePath, nowMs_, duration, volume_, device_, false});
  playing_ = true;
  endMs_ = nowMs_ + duration;
}

void VirtualAudio::Stop() {
  if (!playing_) return;
  playing_ = false;
  if (!played.empty()) played.back().stopped = true;
  if (onFinished) onFinished();
}

void VirtualAudio::Advance(int64_t milliseconds) {
  if (milliseconds > 0) nowMs_ += milliseconds;
  if (playing_ && nowMs_ >= endMs_) {
    playing_ = false;
    if (onFinished) onFinished();
  }
}

}  // namespace vantoro
