// The simulator's offsets held in memory: the four blocks that the tick
// reads. A recording writes into it tick by tick; the replay link and the
// tests read from it; whatever the instructor writes lands in it, as it would
// in a simulator.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "link/simlink.h"

namespace vantoro {

class OffsetImage {
 public:
  OffsetImage();

  // True when [offset, offset + size) lies inside one of the four blocks.
  static bool InBlocks(uint32_t offset, uint32_t size);

  // Raw bytes; false (and nothing written) outside the blocks.
  bool SetBytes(uint32_t offset, const void* data, uint32_t size);
  bool GetBytes(uint32_t offset, void* data, uint32_t size) const;

  // Little-endian typed writes, as the simulator lays them out.
  bool SetU8(uint32_t offset, uint8_t v) { return SetBytes(offset, &v, 1); }
  bool SetU16(uint32_t offset, uint16_t v);
  bool SetU32(uint32_t offset, uint32_t v);
  bool SetU64(uint32_t offset, uint64_t v);
  bool SetI16(uint32_t offset, int16_t v) { return SetU16(offset, static_cast<uint16_t>(v)); }
  bool SetI32(uint32_t offset, int32_t v) { return SetU32(offset, static_cast<uint32_t>(v)); }
  bool SetI64(uint32_t offset, int64_t v) { return SetU64(offset, static_cast<uint64_t>(v)); }
  bool SetF32(uint32_t offset, float v);
  bool SetF64(uint32_t offset, double v);
  // Text with a closing zero byte.
  bool SetString(uint32_t offset, std::string_view text);

  uint8_t U8(uint32_t offset) const;
  uint16_t U16(uint32_t offset) const;
  uint32_t U32(uint32_t offset) const;
  std::string String(uint32_t offset, uint32_t maxLength = 255) const;

 private:
  struct Block {
    uint32_t first;
    std::vector<uint8_t> bytes;
  };
  const Block* Find(uint32_t offset, uint32_t size) const;
  std::vector<Block> blocks_;
};

// A write the instructor made, as the link saw it.
struct LinkWrite {
  uint32_t offset;
  std::vector<uint8_t> bytes;
};

// The simulator link over an offset image: reads copy from the image, writes
// land in it. The open handshake reads 0x3304 and 0x3308; when both are zero
// it answers as version 4.80 on FSX. Tests can make it fail on purpose.
class ImageLink final : public SimLink {
 public:
  explicit ImageLink(OffsetImage& image) : image_(image) {}

  bool Open(int requestedSim, int& result) override;
  void Close() override {
    open_ = false;
    batch_.clear();
  }
  bool IsOpen() const override { return open_; }
  bool Read(uint32_t offset, uint32_t size, void* destination, int& result) override;
  bool Write(uint32_t offset, uint32_t size, const void* source, int& result) override;
  bool Process(int& result) override;
  uint32_t FsVersion() const override { return version_; }
  uint32_t FsId() const override { return id_; }

  // Every write processed so far, in order (tests and the event stream read it).
  std::vector<LinkWrite> writes;
  // When set, Process fails with this result code instead of answering.
  int failProcessWith = kLinkOk;
  // When set, Open fails with this result code.
  int failOpenWith = kLinkOk;

 private:
  struct Request {
    bool isWrite;
    uint32_t offset;
    void* destination;
    std::vector<uint8_t> data;  // write data, or size bytes for a read
  };
  OffsetImage& image_;
  bool open_ = false;
  uint32_t version_ = 0;
  uint32_t id_ = 0;
  uint32_t batchBytes_ = 0;
  std::vector<Request> batch_;
};

}  // namespace vantoro
