// The link to X-Plane 11 and 12 over its UDP data-ref interface: it
// subscribes to the data-refs it needs (RREF), keeps the aircraft's state
// from the answers, and hands the instructor's writes over as DREF and CMND
// packets. X-Plane may run on another machine.
#pragma once

#include <chrono>
#include <string>

#include "link/stream_link.h"
#include "link/udp.h"
#include "link/xplane_protocol.h"

namespace vantoro {

struct XPlaneOptions {
  std::string host = "127.0.0.1";  // where X-Plane runs
  int port = kXPlanePort;          // X-Plane's receiving port
  int localPort = 0;               // ours; 0 takes any free one
};

class XPlaneLink final : public StreamLink {
 public:
  explicit XPlaneLink(XPlaneOptions options = {}) : options_(std::move(options)) {}
  ~XPlaneLink() override;
  std::string DisplayName() const override { return "X-Plane"; }

 protected:
  bool Listen(std::string& problem) override;
  void Receive() override;
  void Deliver(uint32_t offset, const std::vector<uint8_t>& bytes) override;
  std::string Silence() const override;

 private:
  void Subscribe(int32_t rateScale);

  XPlaneOptions options_;
  XPlaneDecoder decoder_;
  SimulatorState state_;
  UdpSocket socket_;
  std::chrono::steady_clock::time_point nextSubscribe_{};
  std::vector<uint8_t> packet_;
};

}  // namespace vantoro
