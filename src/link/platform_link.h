// The live simulator link of the platform the program runs on: the offset
// server's inter-process link on Windows. Elsewhere no such server can exist,
// and the link says so ("Cannot link to FSUIPC or WideClient") so that the
// connection logic, the status line and the tests behave the same everywhere.
#pragma once

#include <memory>

#include "link/simlink.h"

namespace vantoro {

// A link to no simulator: Open answers kLinkNoServer, every other call
// kLinkNotOpen.
class NoSimulatorLink final : public SimLink {
 public:
  bool Open(int requestedSim, int& result) override;
  void Close() override {}
  bool IsOpen() const override { return false; }
  bool Read(uint32_t offset, uint32_t size, void* destination, int& result) override;
  bool Write(uint32_t offset, uint32_t size, const void* source, int& result) override;
  bool Process(int& result) override;
  uint32_t FsVersion() const override { return 0; }
  uint32_t FsId() const override { return 0; }
};

std::unique_ptr<SimLink> MakePlatformLink();

}  // namespace vantoro
