// The few facts of a wave file the sound device needs: its format and how
// long it plays. The header is read defensively: a file that is not a RIFF
// wave, or whose chunks are torn, plays for 0 seconds.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace vantoro {

struct WavInfo {
  bool valid = false;   // a "fmt " and a "data" chunk were found
  uint16_t format = 0;  // 1 PCM, 3 float, 0xFFFE extensible...
  uint16_t channels = 0;
  uint32_t sampleRate = 0;
  uint32_t byteRate = 0;  // bytes per second of the data chunk
  uint16_t blockAlign = 0;
  uint16_t bitsPerSample = 0;
  uint32_t dataBytes = 0;   // of the data chunk, cut to what the file holds
  int64_t durationMs = 0;   // dataBytes over byteRate, rounded down; 0 when invalid
  uint64_t dataOffset = 0;  // where the data chunk's samples begin in the file
};

// The header of the wave file held in `bytes` (the whole file, or at least
// everything up to the start of the data chunk; `fileSize` is then the size
// of the whole file, so that a data chunk that claims more than the file holds
// is cut to what is there).
WavInfo ParseWavHeader(std::string_view bytes, uint64_t fileSize);
inline WavInfo ParseWavHeader(std::string_view bytes) {
  return ParseWavHeader(bytes, bytes.size());
}

// The header of a wave file on disk (a native path); invalid when the file is
// missing or unreadable. Reads only the chunk headers, never the samples.
WavInfo ReadWavInfo(const char* nativePath);

// Speech recognition listens at this rate, one channel of 16-bit samples.
inline constexpr uint32_t kSpeechSampleRate = 16000;

// The samples of a whole wave file (PCM of 8 to 32 bits or 32-bit float, any
// rate, any number of channels) mixed to one channel at 16 kHz. False with
// the reason when the bytes are not a wave file of such samples.
bool DecodeSpeechSamples(std::string_view bytes, std::vector<int16_t>& out, std::string& error);

}  // namespace vantoro
