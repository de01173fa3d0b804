#include "voice/wav.h"

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
