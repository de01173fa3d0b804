#include "link/flightgear_link.h"

namespace vantoro {

namespace {

// A property server that does not answer is tried again this often; its
// connection is made within this time, on the loop thread.
constexpr std::chrono::seconds kTelnetRetry{5};
constexpr int kTelnetConnectMs = 250;

}  // namespace

bool FlightGearLink::Listen(std::string& problem) {
  if (socket_.IsBound()) return true;
  std::string error;
  if (!socket_.Bind(options_.listenAddress, options_.dataPort, error)) {
    problem = "cannot listen for FlightGear on " + error;
    return false;
  }
  return true;
}

void FlightGearLink::Receive() {
  while (socket_.Receive(packet_)) {
    std::string error;
    const std::string_view text(reinterpret_cast<const char*>(packet_.data()), packet_.size());
    if (decoder_.Decode(text, state_, error))
      Accept(state_);
    else
      Reject(error);
  }
}

std::string FlightGearLink::Silence() const {
  return "no data from FlightGear on port " + std::to_string(dataPort());
}

bool FlightGearLink::Telnet() {
  if (telnet_.IsConnected()) return true;
  const auto now = std::chrono::steady_clock::now();
  if (now < nextTelnetTry_) return false;
  nextTelnetTry_ = now + kTelnetRetry;
  std::string error;
  if (!telnet_.Connect(options_.host, options_.telnetPort, kTelnetConnectMs, error)) {
    Tell("telnet", "FlightGear's property server on port " + std::to_string(options_.telnetPort) +
                       " does not answer (" + error +
                       "): the instructor's messages, radio tuning and failures do not reach "
                       "FlightGear; start fgfs with --telnet=" +
                       std::to_string(options_.telnetPort));
    return false;
  }
  // Data mode: no prompts, and no echo of each line set.
  return telnet_.Send("data\r\n");
}

void FlightGearLink::Deliver(uint32_t offset, const std::vector<uint8_t>& bytes) {
  std::string missing;
  const std::string lines = FlightGearSetLines(image(), offset, bytes, missing);
  if (!missing.empty())
    Tell(missing, "FlightGear has no equivalent of " + missing +
                      "; the instructor's write there "
                      "stays in Vantoro");
  if (lines.empty() || !Telnet()) return;
  if (!telnet_.Send(lines))
    Tell("telnet-lost",
         "FlightGear's property server closed the connection; writes are tried "
         "again in a few seconds");
  telnet_.ReceiveWaiting();  // whatever it answers is not read
}

}  // namespace vantoro
