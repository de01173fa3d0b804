#include "link/xplane_link.h"

#include <ctime>

namespace vantoro {

namespace {

// While X-Plane is silent the subscriptions are sent again this often: it
// forgets them when it restarts.
constexpr std::chrono::seconds kSubscribeAgain{3};

int ThisYear() {
  const std::time_t now = std::time(nullptr);
  std::tm utc{};
  gmtime_r(&now, &utc);
  return utc.tm_year + 1900;
}

}  // namespace

XPlaneLink::~XPlaneLink() {
  if (socket_.IsBound()) Subscribe(0);
}

void XPlaneLink::Subscribe(int32_t rateScale) {
  const auto& refs = XPlaneRefs();
  for (size_t i = 0; i < refs.size(); ++i) {
    const std::vector<uint8_t> packet =
        RrefRequest(refs[i].rate * rateScale, static_cast<int32_t>(i), refs[i].dataref);
    socket_.SendTo(options_.host, options_.port, packet.data(), packet.size());
  }
}

bool XPlaneLink::Listen(std::string& problem) {
  if (!socket_.IsBound()) {
    std::string error;
    if (!socket_.Bind("0.0.0.0", options_.localPort, error)) {
      problem = "cannot listen for X-Plane on " + error;
      return false;
    }
  }
  const auto now = std::chrono::steady_clock::now();
  if (now >= nextSubscribe_) {
    Subscribe(1);
    nextSubscribe_ = now + kSubscribeAgain;
  }
  return true;
}

void XPlaneLink::Receive() {
  bool any = false;
  while (socket_.Receive(packet_)) {
    std::string error;
    if (decoder_.Take(packet_.data(), packet_.size(), error))
      any = true;
    else
      Reject(error);
  }
  if (!any) return;
  decoder_.Fill(state_, ThisYear());
  Accept(state_);
}

std::string XPlaneLink::Silence() const {
  return "no data from X-Plane at " + options_.host + ":" + std::to_string(options_.port);
}

void XPlaneLink::Deliver(uint32_t offset, const std::vector<uint8_t>& bytes) {
  std::string missing;
  for (const std::vector<uint8_t>& packet : XPlaneWritePackets(image(), offset, bytes, missing))
    socket_.SendTo(options_.host, options_.port, packet.data(), packet.size());
  if (!missing.empty())
    Tell(missing, "X-Plane has no equivalent of " + missing +
                      " from outside; the instructor's write there stays in Vantoro");
}

}  // namespace vantoro
