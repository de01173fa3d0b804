#include "voice/wav.h"

#include <cmath>
#include <cstring>
#include <fstream>

namespace vantoro {

namespace {

constexpr uint32_t kRiffHeaderBytes = 12;  // "RIFF", size, "WAVE"
constexpr uint32_t kChunkHeaderBytes = 8;  // id, size
constexpr uint32_t kFmtBytesUsed = 16;     // the fields of WAVEFORMAT plus bits per sample
// A real file has a handful of chunks; a walk longer than this is garbage.
constexpr int kMaxChunks = 4096;

uint16_t Le16(const unsigned char* p) {
  return static_cast<uint16_t>(p[0] | (p[1] << 8));
}

uint32_t Le32(const unsigned char* p) {
  return uint32_t{p[0]} | (uint32_t{p[1]} << 8) | (uint32_t{p[2]} << 16) | (uint32_t{p[3]} << 24);
}

// Walks the chunks of a RIFF wave. `readAt(pos, buffer, n)` copies n bytes at
// pos and is false when they are not all there.
template <typename ReadAt>
WavInfo Walk(ReadAt readAt, uint64_t fileSize) {
  WavInfo info;
  unsigned char head[kRiffHeaderBytes];
  if (!readAt(0, head, kRiffHeaderBytes)) return info;
  if (std::memcmp(head, "RIFF", 4) != 0 || std::memcmp(head + 8, "WAVE", 4) != 0) return info;

  bool haveFmt = false;
  bool haveData = false;
  uint64_t pos = kRiffHeaderBytes;
  for (int n = 0; n < kMaxChunks && !(haveFmt && haveData); ++n) {
    unsigned char chunk[kChunkHeaderBytes];
    if (!readAt(pos, chunk, kChunkHeaderBytes)) break;
    const uint32_t size = Le32(chunk + 4);
    const uint64_t body = pos + kChunkHeaderBytes;
    if (std::memcmp(chunk, "fmt ", 4) == 0 && !haveFmt) {
      unsigned char fmt[kFmtBytesUsed];
      if (size < kFmtBytesUsed || !readAt(body, fmt, kFmtBytesUsed)) return info;
      info.format = Le16(fmt);
      info.channels = Le16(fmt + 2);
      info.sampleRate = Le32(fmt + 4);
      info.byteRate = Le32(fmt + 8);
      info.blockAlign = Le16(fmt + 12);
      info.bitsPerSample = Le16(fmt + 14);
      haveFmt = true;
    } else if (std::memcmp(chunk, "data", 4) == 0 && !haveData) {
      // Streamed files often leave the size open (0 or 0xFFFFFFFF): what the
      // file holds is what plays.
      const uint64_t available = fileSize > body ? fileSize - body : 0;
      info.dataBytes = static_cast<uint32_t>(size < available ? size : available);
      info.dataOffset = body;
      haveData = true;
    }
    pos = body + size + (size & 1u);  // chunks are padded to an even length
    if (pos >= fileSize) break;
  }
  if (!haveFmt || !haveData) return WavInfo{};

  uint64_t rate = info.byteRate;
  if (rate == 0) rate = uint64_t{info.sampleRate} * info.blockAlign;
  if (rate == 0) return WavInfo{};
  info.valid = true;
  info.durationMs = static_cast<int64_t>((uint64_t{info.dataBytes} * 1000 + rate / 2) / rate);
  return info;
}

}  // namespace

WavInfo ParseWavHeader(std::string_view bytes, uint64_t fileSize) {
  auto readAt = [&](uint64_t pos, unsigned char* out, size_t n) {
    if (pos > bytes.size() || bytes.size() - pos < n) return false;
    std::memcpy(out, bytes.data() + pos, n);
    return true;
  };
  return Walk(readAt, fileSize < bytes.size() ? bytes.size() : fileSize);
}

WavInfo ReadWavInfo(const char* nativePath) {
  std::ifstream in(nativePath, std::ios::binary);
  if (!in) return {};
  in.seekg(0, std::ios::end);
  const std::streamoff end = in.tellg();
  if (end <= 0) return {};
  auto readAt = [&](uint64_t pos, unsigned char* out, size_t n) {
    if (pos + n > static_cast<uint64_t>(end)) return false;
    in.clear();
    in.seekg(static_cast<std::streamoff>(pos));
    in.read(reinterpret_cast<char*>(out), static_cast<std::streamsize>(n));
    return static_cast<size_t>(in.gcount()) == n;
  };
  return Walk(readAt, static_cast<uint64_t>(end));
}

}  // namespace vantoro

namespace vantoro {

namespace {

constexpr uint16_t kFormatPcm = 1;
constexpr uint16_t kFormatFloat = 3;
constexpr uint16_t kFormatExtensible = 0xFFFE;

// One sample of any of the usual encodings, -1..1.
double SampleAt(const unsigned char* p, uint16_t format, uint16_t bits) {
  if (format == kFormatFloat && bits == 32) {
    float f;
    std::memcpy(&f, p, sizeof f);
    return std::isfinite(f) ? f : 0.0;
  }
  switch (bits) {
    case 8:
      return (p[0] - 128) / 128.0;
    case 16:
      return static_cast<int16_t>(Le16(p)) / 32768.0;
    case 24: {
      int32_t v = p[0] | (p[1] << 8) | (p[2] << 16);
      if (v & 0x800000) v -= 0x1000000;
      return v / 8388608.0;
    }
    case 32:
      return static_cast<int32_t>(Le32(p)) / 2147483648.0;
    default:
      return 0;
  }
}

}  // namespace

bool DecodeSpeechSamples(std::string_view bytes, std::vector<int16_t>& out, std::string& error) {
  out.clear();
  const WavInfo info = ParseWavHeader(bytes);
  if (!info.valid) {
    error = "not a wave file";
    return false;
  }
  const uint16_t bits = info.bitsPerSample;
  const bool known = (info.format == kFormatPcm || info.format == kFormatExtensible ||
                      info.format == kFormatFloat) &&
                     (bits == 8 || bits == 16 || bits == 24 || bits == 32);
  if (!known || info.channels == 0 || info.sampleRate == 0 ||
      info.blockAlign < info.channels * (bits / 8)) {
    error = "unsupported wave format (PCM of 8 to 32 bits or 32-bit float only)";
    return false;
  }
  const auto* data = reinterpret_cast<const unsigned char*>(bytes.data()) + info.dataOffset;
  const size_t frames = info.dataBytes / info.blockAlign;
  // Mixed down to one channel.
  std::vector<double> mono(frames);
  for (size_t i = 0; i < frames; ++i) {
    double sum = 0;
    for (uint16_t ch = 0; ch < info.channels; ++ch)
      sum += SampleAt(data + i * info.blockAlign + ch * (bits / 8), info.format, bits);
    mono[i] = sum / info.channels;
  }
  // Resampled by linear interpolation; a lower rate first loses what lies
  // above the new half rate through a moving average as wide as the step.
  const double step = static_cast<double>(info.sampleRate) / kSpeechSampleRate;
  if (step > 1) {
    const size_t width = static_cast<size_t>(std::lround(step));
    std::vector<double> smooth(frames);
    double run = 0;
    for (size_t i = 0; i < frames; ++i) {
      run += mono[i];
      if (i >= width) run -= mono[i - width];
      smooth[i] = run / static_cast<double>(i + 1 < width ? i + 1 : width);
    }
    mono.swap(smooth);
  }
  const size_t count = static_cast<size_t>(static_cast<double>(frames) / step);
  out.reserve(count);
  for (size_t j = 0; j < count; ++j) {
    const double at = static_cast<double>(j) * step;
    const size_t i = static_cast<size_t>(at);
    const double frac = at - static_cast<double>(i);
    const double a = mono[i];
    const double b = i + 1 < frames ? mono[i + 1] : a;
    double v = (a + (b - a) * frac) * 32767.0;
    if (v > 32767) v = 32767;
    if (v < -32768) v = -32768;
    out.push_back(static_cast<int16_t>(std::lround(v)));
  }
  return true;
}

}  // namespace vantoro
