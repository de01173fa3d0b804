// What the approach monitors gather on final for the landing evaluation:
// sums and sample counts of the deviations from the ILS and from a visual
// glide path, and how the glide path was held at the flare.
#pragma once

#include <cstdint>

namespace vantoro {

// A sum that holds this value has gathered nothing.
inline constexpr int32_t kNothingGathered = -55555;

struct ApproachRatings {
  int32_t ILSGlideslopeSum = kNothingGathered;
  int32_t ILSLocalizerSum = kNothingGathered;
  int32_t ILSGlideslopeSamples = 0;
  int32_t ILSLocalizerSamples = 0;
  int32_t VisualGlideslopeSum = kNothingGathered;
  int32_t VisualLocalizerSum = kNothingGathered;
  int32_t VisualGlideslopeSamples = 0;
  int32_t VisualLocalizerSamples = 0;

  int32_t ILSGlideslopeAverage = 0;
  int32_t ILSLocalizerAverage = 0;
  int32_t VisualGlideslopeAverage = 0;
  int32_t VisualLocalizerAverage = 0;

  bool GlideslopeHeldAtFlare = false;
  bool VisualGlideslopeHeldAtFlare = false;

  // A runway is selected for a visual approach.
  bool VisualApproachActive = false;
  int32_t VisualRunwayLength = 0;  // feet

  // After each evaluation (or its skipping) everything gathered starts anew.
  void ResetGathered() {
    ILSGlideslopeSum = ILSLocalizerSum = VisualGlideslopeSum = VisualLocalizerSum =
        kNothingGathered;
    ILSGlideslopeSamples = ILSLocalizerSamples = VisualGlideslopeSamples = VisualLocalizerSamples =
        0;
    ILSGlideslopeAverage = ILSLocalizerAverage = VisualGlideslopeAverage = VisualLocalizerAverage =
        0;
  }
};

}  // namespace vantoro
