// What both sound devices do to a wave file before the card gets it: find
// its samples, tell their form, and scale them by the instructor's volume.
#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include "voice/wav.h"

namespace vantoro {

// The relative volume as a factor on the samples: the instructor's units are
// decibels (0 normal, -10 quieter ... 6 louder); -30000 is silence.
double VolumeGain(int volume);

// The sample forms a card is given.
enum class SampleForm { Unsigned8, Signed16, Signed24, Signed32, Float32 };

// The form of the file's samples, or nothing for a form no card is given.
std::optional<SampleForm> SampleFormOf(const WavInfo& info);

// Where the samples of a wave file start, or nothing when it has no data chunk.
std::optional<size_t> DataStart(const std::string& bytes);

// The volume applied to the samples in place (16-bit and float; other forms
// are played as they are, or silent).
void ApplyGain(char* data, size_t bytes, SampleForm form, double gain);

}  // namespace vantoro
