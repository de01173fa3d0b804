// Compressed files (recordings, world data): written deterministically, and
// inflated as a stream with a limit, so that a small file that would inflate to gigabytes is
// refused as soon as it shows itself, after a few megabytes at most.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace vantoro {

struct InflateLimits {
  // The whole inflated text may not pass this.
  size_t MaxBytes = size_t{256} << 20;
  // Once this much is inflated, the text may hold at most MaxRatio bytes for
  // every compressed byte read so far. Real text compresses a few times over;
  // a file built to fill memory compresses about a thousand times.
  size_t RatioAfter = size_t{1} << 20;
  size_t MaxRatio = 100;
};

enum class InflateResult {
  Ok,        // the whole text, or plain data as it stands
  Damaged,   // the compressed data is broken or ends early; `out` holds what came before
  TooLarge,  // a limit was passed; `out` is empty
};

// Inflates gzip data (several members one after the other read as one text).
// Data that does not begin with the gzip mark is taken as it stands.
InflateResult InflateLimited(std::string_view data, std::string& out,
                             const InflateLimits& limits = {});

// True when `inflated` bytes from `consumed` compressed ones pass a limit;
// for readers that inflate line by line.
bool InflatedTooFar(size_t inflated, size_t consumed, const InflateLimits& limits);

// The gzip file of a text, byte for byte the same on every run (no time
// stamp in its header).
std::string GzipText(std::string_view text);

// What went wrong, in the words of an error message ("damaged compressed data").
std::string_view InflateProblem(InflateResult r);

}  // namespace vantoro
