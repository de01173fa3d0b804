// Reading typed values out of one offset block, by simulator offset. Every
// read checks its bytes against the block: a byte outside reads as zero, so no
// offset and no content can make the decoder read past a buffer.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace vantoro {

// Strings of the simulator end at a zero byte or after this many characters.
inline constexpr size_t kMaxTextLength = 255;

class OffsetBlock {
 public:
  OffsetBlock(const uint8_t* data, size_t size, uint32_t first)
      : data_(data), size_(size), first_(first) {}

  template <class Buffer>
  OffsetBlock(const Buffer& buffer, uint32_t first)
      : OffsetBlock(buffer.data(), buffer.size(), first) {}

  uint8_t U8(uint32_t offset) const {
    if (offset < first_) return 0;
    const size_t i = offset - first_;
    return i < size_ ? data_[i] : 0;
  }

  // A flag is set when its byte is above 0.
  bool Flag(uint32_t offset) const { return U8(offset) > 0; }

  // Signed values are composed by hand: a top byte of 128 or more is negative.
  int32_t I8(uint32_t offset) const {
    const int32_t b = U8(offset);
    return b >= 128 ? b - 256 : b;
  }
  int32_t U16(uint32_t offset) const { return U8(offset) | (U8(offset + 1) << 8); }
  int32_t I16(uint32_t offset) const {
    const int32_t w = U16(offset);
    return w >= 0x8000 ? w - 0x10000 : w;
  }
  int32_t U24(uint32_t offset) const { return U16(offset) | (U8(offset + 2) << 16); }
  uint32_t U32(uint32_t offset) const {
    return static_cast<uint32_t>(U24(offset)) | (uint32_t{U8(offset + 3)} << 24);
  }
  int32_t I32(uint32_t offset) const { return static_cast<int32_t>(U32(offset)); }
  uint64_t U64(uint32_t offset) const {
    return uint64_t{U32(offset)} | (uint64_t{U32(offset + 4)} << 32);
  }
  int64_t I64(uint32_t offset) const { return static_cast<int64_t>(U64(offset)); }

  // The IEEE 754 double and single stored by the simulator.
  double F64(uint32_t offset) const { return std::bit_cast<double>(U64(offset)); }
  double F32(uint32_t offset) const {
    return static_cast<double>(std::bit_cast<float>(U32(offset)));
  }

  // Radio words: four BCD digits, high byte first ("2150" for 121.50).
  int32_t Bcd(uint32_t offset) const {
    const int32_t lo = U8(offset);
    const int32_t hi = U8(offset + 1);
    return ((hi / 16) * 10 + hi % 16) * 100 + (lo / 16) * 10 + lo % 16;
  }

  // Text from offset to the first zero byte, at most maxLength characters,
  // never past the end of the block.
  std::string_view Text(uint32_t offset, size_t maxLength = kMaxTextLength) const {
    if (offset < first_) return {};
    const size_t start = offset - first_;
    if (start >= size_) return {};
    const size_t limit = start + (maxLength < size_ - start ? maxLength : size_ - start);
    size_t end = start;
    while (end < limit && data_[end] != 0) ++end;
    return {reinterpret_cast<const char*>(data_ + start), end - start};
  }

 private:
  const uint8_t* data_;
  size_t size_;
  uint32_t first_;
};

}  // namespace vantoro
