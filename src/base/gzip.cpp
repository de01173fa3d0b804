#include "base/gzip.h"

#include <zlib.h>

#include <algorithm>
#include <array>
#include <cstdint>

namespace vantoro {

namespace {

constexpr size_t kOutChunk = 64 * 1024;
// Input is handed to zlib in slices, since its counter is 32 bits wide.
constexpr size_t kInSlice = size_t{1} << 30;

bool IsGzip(std::string_view data) {
  return data.size() >= 2 && static_cast<uint8_t>(data[0]) == 0x1F &&
         static_cast<uint8_t>(data[1]) == 0x8B;
}

}  // namespace

bool InflatedTooFar(size_t inflated, size_t consumed, const InflateLimits& limits) {
  if (inflated > limits.MaxBytes) return true;
  return inflated > limits.RatioAfter &&
         inflated / (consumed == 0 ? 1 : consumed) > limits.MaxRatio;
}

// A gzip member ends with its CRC and its inflated size, four bytes each.
constexpr size_t kGzipTrailer = 8;
// Real text inflates a few times over; a trailer that claims more is not
// trusted with memory before the text shows itself.
constexpr size_t kBelievedRatio = 16;

InflateResult InflateLimited(std::string_view data, std::string& out, const InflateLimits& limits) {
  out.clear();
  if (!IsGzip(data)) {
    if (data.size() > limits.MaxBytes) return InflateResult::TooLarge;
    out.assign(data);
    return InflateResult::Ok;
  }
  // The last member's trailer tells its inflated size: room for it is made at
  // once, so that a large world file is not copied again each time the text
  // grows. A size out of proportion to the data is not believed.
  if (data.size() >= kGzipTrailer) {
    const auto* end = reinterpret_cast<const unsigned char*>(data.data() + data.size());
    const size_t told =
        size_t{end[-4]} | size_t{end[-3]} << 8 | size_t{end[-2]} << 16 | size_t{end[-1]} << 24;
    out.reserve(std::min({told, data.size() * kBelievedRatio, limits.MaxBytes}));
  }
  z_stream z{};
  if (inflateInit2(&z, 16 + MAX_WBITS) != Z_OK) return InflateResult::Damaged;
  size_t offset = 0;  // of the next slice not yet handed to zlib
  auto feed = [&] {
    const size_t n = std::min(kInSlice, data.size() - offset);
    z.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(data.data() + offset));
    z.avail_in = static_cast<uInt>(n);
    offset += n;
  };
  feed();
  std::array<char, kOutChunk> buffer;
  InflateResult result = InflateResult::Damaged;
  for (;;) {
    z.next_out = reinterpret_cast<Bytef*>(buffer.data());
    z.avail_out = static_cast<uInt>(buffer.size());
    const int rc = inflate(&z, Z_NO_FLUSH);
    if (rc != Z_OK && rc != Z_STREAM_END && rc != Z_BUF_ERROR) break;
    out.append(buffer.data(), buffer.size() - z.avail_out);
    const size_t consumed = offset - z.avail_in;
    if (InflatedTooFar(out.size(), consumed, limits)) {
      result = InflateResult::TooLarge;
      break;
    }
    if (z.avail_in == 0 && offset < data.size()) feed();
    if (rc == Z_STREAM_END) {
      // Another member may follow; anything after the last one but the
      // padding some tools leave is taken as damage.
      if (z.avail_in == 0) {
        result = InflateResult::Ok;
        break;
      }
      if (inflateReset(&z) != Z_OK) break;
      continue;
    }
    // No progress with no input left: the data ends early.
    if (rc == Z_BUF_ERROR) break;
  }
  inflateEnd(&z);
  if (result == InflateResult::TooLarge) {
    out.clear();
    out.shrink_to_fit();
  }
  return result;
}

std::string_view InflateProblem(InflateResult r) {
  switch (r) {
    case InflateResult::Ok:
      return "";
    case InflateResult::Damaged:
      return "damaged compressed data";
    case InflateResult::TooLarge:
      return "compressed data that inflates far beyond any real file (refused)";
  }
  return "";
}

std::string GzipText(std::string_view text) {
  z_stream z{};
  // 15 + 16: a gzip wrapper with an empty header, so the bytes never change.
  deflateInit2(&z, 9, Z_DEFLATED, 15 + 16, 9, Z_DEFAULT_STRATEGY);
  std::string out(deflateBound(&z, static_cast<uLong>(text.size())), '\0');
  z.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(text.data()));
  z.avail_in = static_cast<uInt>(text.size());
  z.next_out = reinterpret_cast<Bytef*>(out.data());
  z.avail_out = static_cast<uInt>(out.size());
  deflate(&z, Z_FINISH);
  out.resize(z.total_out);
  deflateEnd(&z);
  return out;
}

}  // namespace vantoro
