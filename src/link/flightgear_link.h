// The link to FlightGear: its generic protocol streams the aircraft's
// properties over UDP (Protocol/vantoro.xml), and the instructor's writes
// go to FlightGear's telnet property server as "set" lines.
#pragma once

#include <chrono>
#include <string>

#include "link/flightgear_protocol.h"
#include "link/stream_link.h"
#include "link/udp.h"

namespace vantoro {

struct FlightGearOptions {
  std::string listenAddress = "127.0.0.1";
  int dataPort = kFlightGearDataPort;
  std::string host = "127.0.0.1";  // where the property server is
  int telnetPort = kFlightGearTelnetPort;
};

class FlightGearLink final : public StreamLink {
 public:
  explicit FlightGearLink(FlightGearOptions options = {}) : options_(std::move(options)) {}
  std::string DisplayName() const override { return "FlightGear"; }
  int dataPort() const { return socket_.IsBound() ? socket_.LocalPort() : options_.dataPort; }

 protected:
  bool Listen(std::string& problem) override;
  void Receive() override;
  void Deliver(uint32_t offset, const std::vector<uint8_t>& bytes) override;
  std::string Silence() const override;

 private:
  bool Telnet();

  FlightGearOptions options_;
  FlightGearDecoder decoder_;
  SimulatorState state_;
  UdpSocket socket_;
  TcpLine telnet_;
  std::chrono::steady_clock::time_point nextTelnetTry_{};
  std::vector<uint8_t> packet_;
};

}  // namespace vantoro
