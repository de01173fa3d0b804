#include "link/image_link.h"

#include <cstring>

#include "link/hotkey_table.h"
#include "link/snapshot.h"

namespace vantoro {

namespace {

// The batch of one exchange, with its closing word, stays within this size.
constexpr uint32_t kImageBytes =
    kMainBlockSize + kGpsBlockSize + kMetarBlockSize + kTrafficBlockSize;
constexpr uint32_t kReadRecordHeader = 16;
constexpr uint32_t kWriteRecordHeader = 12;
// The handshake answer of a replay that sets nothing: version 4.80 on FSX.
constexpr uint32_t kDefaultVersion = 0x48000000;
constexpr uint32_t kDefaultId = 0xFADE0008;
constexpr uint32_t kVersionOffset = 0x3304;
constexpr uint32_t kIdOffset = 0x3308;

}  // namespace

OffsetImage::OffsetImage() {
  blocks_.push_back({kMainBlockOffset, std::vector<uint8_t>(kMainBlockSize)});
  blocks_.push_back({kGpsBlockOffset, std::vector<uint8_t>(kGpsBlockSize)});
  blocks_.push_back({kMetarBlockOffset, std::vector<uint8_t>(kMetarBlockSize)});
  blocks_.push_back({kTrafficBlockOffset, std::vector<uint8_t>(kTrafficBlockSize)});
}

bool OffsetImage::InBlocks(uint32_t offset, uint32_t size) {
  const uint64_t end = uint64_t{offset} + size;
  auto inside = [&](uint32_t first, uint32_t length) {
    return offset >= first && end <= uint64_t{first} + length;
  };
  return inside(kMainBlockOffset, kMainBlockSize) || inside(kGpsBlockOffset, kGpsBlockSize) ||
         inside(kMetarBlockOffset, kMetarBlockSize) ||
         inside(kTrafficBlockOffset, kTrafficBlockSize);
}

const OffsetImage::Block* OffsetImage::Find(uint32_t offset, uint32_t size) const {
  const uint64_t end = uint64_t{offset} + size;
  for (const Block& b : blocks_)
    if (offset >= b.first && end <= uint64_t{b.first} + b.bytes.size()) return &b;
  return nullptr;
}

bool OffsetImage::SetBytes(uint32_t offset, const void* data, uint32_t size) {
  const Block* b = Find(offset, size);
  if (b == nullptr) return false;
  if (size > 0) std::memcpy(const_cast<Block*>(b)->bytes.data() + (offset - b->first), data, size);
  return true;
}

bool OffsetImage::GetBytes(uint32_t offset, void* data, uint32_t size) const {
  const Block* b = Find(offset, size);
  if (b == nullptr) return false;
  if (size > 0) std::memcpy(data, b->bytes.data() + (offset - b->first), size);
  return true;
}

bool OffsetImage::SetU16(uint32_t offset, uint16_t v) {
  const uint8_t b[2] = {static_cast<uint8_t>(v), static_cast<uint8_t>(v >> 8)};
  return SetBytes(offset, b, 2);
}

bool OffsetImage::SetU32(uint32_t offset, uint32_t v) {
  uint8_t b[4];
  for (int i = 0; i < 4; ++i) b[i] = static_cast<uint8_t>(v >> (8 * i));
  return SetBytes(offset, b, 4);
}

bool OffsetImage::SetU64(uint32_t offset, uint64_t v) {
  uint8_t b[8];
  for (int i = 0; i < 8; ++i) b[i] = static_cast<uint8_t>(v >> (8 * i));
  return SetBytes(offset, b, 8);
}

bool OffsetImage::SetF32(uint32_t offset, float v) {
  uint32_t bits;
  std::memcpy(&bits, &v, 4);
  return SetU32(offset, bits);
}

bool OffsetImage::SetF64(uint32_t offset, double v) {
  uint64_t bits;
  std::memcpy(&bits, &v, 8);
  return SetU64(offset, bits);
}

bool OffsetImage::SetString(uint32_t offset, std::string_view text) {
  std::vector<uint8_t> bytes(text.begin(), text.end());
  bytes.push_back(0);
  return SetBytes(offset, bytes.data(), static_cast<uint32_t>(bytes.size()));
}

uint8_t OffsetImage::U8(uint32_t offset) const {
  uint8_t v = 0;
  GetBytes(offset, &v, 1);
  return v;
}

uint16_t OffsetImage::U16(uint32_t offset) const {
  uint8_t b[2] = {};
  GetBytes(offset, b, 2);
  return static_cast<uint16_t>(b[0] | (b[1] << 8));
}

uint32_t OffsetImage::U32(uint32_t offset) const {
  uint8_t b[4] = {};
  GetBytes(offset, b, 4);
  return uint32_t{b[0]} | (uint32_t{b[1]} << 8) | (uint32_t{b[2]} << 16) | (uint32_t{b[3]} << 24);
}

std::string OffsetImage::String(uint32_t offset, uint32_t maxLength) const {
  std::string out;
  for (uint32_t i = 0; i < maxLength; ++i) {
    if (!InBlocks(offset + i, 1)) break;
    const char c = static_cast<char>(U8(offset + i));
    if (c == '\0') break;
    out += c;
  }
  return out;
}

bool ImageLink::Open(int requestedSim, int& result) {
  if (open_) {
    result = kLinkAlreadyOpen;
    return false;
  }
  if (failOpenWith != kLinkOk) {
    result = failOpenWith;
    return false;
  }
  version_ = image_.U32(kVersionOffset);
  id_ = image_.U32(kIdOffset);
  if (version_ == 0 && id_ == 0) {
    version_ = kDefaultVersion;
    id_ = kDefaultId;
  }
  if (version_ < 0x19980005u || (id_ >> 16) != 0xFADE) {
    result = kLinkWrongVersion;
    return false;
  }
  id_ &= 0xFFFF;
  if (requestedSim != 0 && static_cast<int>(id_) != requestedSim) {
    result = kLinkWrongSim;
    return false;
  }
  open_ = true;
  result = kLinkOk;
  return true;
}

bool ImageLink::Read(uint32_t offset, uint32_t size, void* destination, int& result) {
  if (!open_) {
    result = kLinkNotOpen;
    return false;
  }
  // The real interface carries the batch in a shared block of kBatchLimit
  // bytes; the image serves the tick's large block reads whole, and refuses
  // only a read larger than all its blocks together.
  if (uint64_t{size} > kImageBytes) {
    result = kLinkBatchFull;
    return false;
  }
  batch_.push_back(Request{false, offset, destination, std::vector<uint8_t>(size)});
  batchBytes_ += kReadRecordHeader + size;
  result = kLinkOk;
  return true;
}

bool ImageLink::Write(uint32_t offset, uint32_t size, const void* source, int& result) {
  if (!open_) {
    result = kLinkNotOpen;
    return false;
  }
  const auto* p = static_cast<const uint8_t*>(source);
  batch_.push_back(Request{true, offset, nullptr, std::vector<uint8_t>(p, p + size)});
  batchBytes_ += kWriteRecordHeader + size;
  result = kLinkOk;
  return true;
}

bool ImageLink::Process(int& result) {
  if (!open_) {
    result = kLinkNotOpen;
    return false;
  }
  if (batch_.empty()) {
    result = kLinkNothingQueued;
    return false;
  }
  std::vector<Request> batch;
  batch.swap(batch_);
  batchBytes_ = 0;
  if (failProcessWith != kLinkOk) {
    result = failProcessWith;
    return false;
  }
  for (Request& r : batch) {
    const auto size = static_cast<uint32_t>(r.data.size());
    if (r.isWrite) {
      image_.SetBytes(r.offset, r.data.data(), size);  // outside the blocks: lost, as unread
      writes.push_back(LinkWrite{r.offset, std::move(r.data)});
    } else if (r.destination != nullptr && size > 0) {
      // Bytes outside the blocks read as zero.
      if (!image_.GetBytes(r.offset, r.destination, size)) {
        auto* d = static_cast<uint8_t*>(r.destination);
        for (uint32_t i = 0; i < size; ++i) d[i] = image_.U8(r.offset + i);
      }
    }
  }
  result = kLinkOk;
  return true;
}

}  // namespace vantoro

namespace vantoro {

bool PressHotKeyEntry(OffsetImage& image, uint16_t keyCode) {
  for (int entry = 0; entry < kHotKeyEntries; ++entry) {
    const uint32_t at = HotKeyEntryOffset(entry);
    if (image.U16(at) != keyCode) continue;
    return image.SetU8(at + kHotKeyHitByte, 1);
  }
  return false;
}

}  // namespace vantoro
