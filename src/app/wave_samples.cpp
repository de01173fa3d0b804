#include "app/wave_samples.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>

namespace vantoro {

namespace {

constexpr int kSilentVolume = -10000;  // at or below: nothing is heard
constexpr uint16_t kWavPcm = 1;
constexpr uint16_t kWavFloat = 3;
constexpr uint16_t kWavExtensible = 0xFFFE;

}  // namespace

double VolumeGain(int volume) {
  if (volume <= kSilentVolume) return 0.0;
  return std::pow(10.0, volume / 20.0);
}

std::optional<SampleForm> SampleFormOf(const WavInfo& info) {
  const bool floating = info.format == kWavFloat;
  if (info.format != kWavPcm && !floating && info.format != kWavExtensible) return std::nullopt;
  switch (info.bitsPerSample) {
    case 8:
      return SampleForm::Unsigned8;
    case 16:
      return SampleForm::Signed16;
    case 24:
      return SampleForm::Signed24;
    case 32:
      return floating ? SampleForm::Float32 : SampleForm::Signed32;
    default:
      return std::nullopt;
  }
}

std::optional<size_t> DataStart(const std::string& bytes) {
  size_t at = 12;
  while (at + 8 <= bytes.size()) {
    uint32_t length = 0;
    std::memcpy(&length, bytes.data() + at + 4, 4);
    if (bytes.compare(at, 4, "data") == 0) return at + 8;
    at += 8 + static_cast<size_t>(length) + (length & 1u);
  }
  return std::nullopt;
}

void ApplyGain(char* data, size_t bytes, SampleForm form, double gain) {
  if (gain == 1.0) return;
  if (gain <= 0.0 && form != SampleForm::Unsigned8) {
    std::memset(data, 0, bytes);
    return;
  }
  if (form == SampleForm::Signed16) {
    for (size_t i = 0; i + 2 <= bytes; i += 2) {
      int16_t s;
      std::memcpy(&s, data + i, 2);
      const double scaled = std::clamp(s * gain, -32768.0, 32767.0);
      s = static_cast<int16_t>(std::lrint(scaled));
      std::memcpy(data + i, &s, 2);
    }
  } else if (form == SampleForm::Float32) {
    for (size_t i = 0; i + 4 <= bytes; i += 4) {
      float f;
      std::memcpy(&f, data + i, 4);
      f = static_cast<float>(std::clamp(f * gain, -1.0, 1.0));
      std::memcpy(data + i, &f, 4);
    }
  }
}

}  // namespace vantoro
