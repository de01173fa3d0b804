#include "link/udp.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netdb.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace vantoro {

namespace {

constexpr size_t kLargestPacket = 65536;
constexpr int kSendTries = 20;
constexpr int kSendWaitMs = 10;

bool Resolve(const std::string& host, int port, int type, sockaddr_in& out) {
  std::memset(&out, 0, sizeof out);
  out.sin_family = AF_INET;
  out.sin_port = htons(static_cast<uint16_t>(port));
  if (inet_pton(AF_INET, host.c_str(), &out.sin_addr) == 1) return true;
  addrinfo hints{};
  hints.ai_family = AF_INET;
  hints.ai_socktype = type;
  addrinfo* found = nullptr;
  if (getaddrinfo(host.c_str(), nullptr, &hints, &found) != 0 || found == nullptr) return false;
  out.sin_addr = reinterpret_cast<sockaddr_in*>(found->ai_addr)->sin_addr;
  freeaddrinfo(found);
  return true;
}

void NoWaiting(int fd) {
  fcntl(fd, F_SETFL, fcntl(fd, F_GETFL, 0) | O_NONBLOCK);
}

}  // namespace

UdpSocket::~UdpSocket() {
  Close();
}

void UdpSocket::Close() {
  if (fd_ >= 0) ::close(fd_);
  fd_ = -1;
}

bool UdpSocket::Bind(const std::string& address, int port, std::string& error) {
  Close();
  sockaddr_in where{};
  if (!Resolve(address.empty() ? "0.0.0.0" : address, port, SOCK_DGRAM, where)) {
    error = "unknown address " + address;
    return false;
  }
  fd_ = ::socket(AF_INET, SOCK_DGRAM, 0);
  if (fd_ < 0) {
    error = std::strerror(errno);
    return false;
  }
  if (::bind(fd_, reinterpret_cast<sockaddr*>(&where), sizeof where) != 0) {
    error = "port " + std::to_string(port) + ": " + std::strerror(errno);
    Close();
    return false;
  }
  NoWaiting(fd_);
  return true;
}

int UdpSocket::LocalPort() const {
  sockaddr_in where{};
  socklen_t size = sizeof where;
  if (fd_ < 0 || getsockname(fd_, reinterpret_cast<sockaddr*>(&where), &size) != 0) return 0;
  return ntohs(where.sin_port);
}

bool UdpSocket::Receive(std::vector<uint8_t>& packet) {
  if (fd_ < 0) return false;
  packet.resize(kLargestPacket);
  const ssize_t n = ::recv(fd_, packet.data(), packet.size(), 0);
  if (n < 0) {
    packet.clear();
    return false;
  }
  packet.resize(static_cast<size_t>(n));
  return true;
}

bool UdpSocket::SendTo(const std::string& host, int port, const void* data, size_t size) {
  sockaddr_in where{};
  if (fd_ < 0 || !Resolve(host, port, SOCK_DGRAM, where)) return false;
  // The socket does not wait for packets, so a burst (the subscriptions) can
  // fill its send buffer: then it waits a moment for room rather than lose one.
  for (int tries = 0; tries < kSendTries; ++tries) {
    const ssize_t n =
        ::sendto(fd_, data, size, 0, reinterpret_cast<sockaddr*>(&where), sizeof where);
    if (n == static_cast<ssize_t>(size)) return true;
    if (n >= 0 || (errno != EAGAIN && errno != EWOULDBLOCK && errno != ENOBUFS)) return false;
    pollfd p{fd_, POLLOUT, 0};
    ::poll(&p, 1, kSendWaitMs);
  }
  return false;
}

TcpLine::~TcpLine() {
  Close();
}

void TcpLine::Close() {
  if (fd_ >= 0) ::close(fd_);
  fd_ = -1;
}

bool TcpLine::Connect(const std::string& host, int port, int timeoutMs, std::string& error) {
  Close();
  sockaddr_in where{};
  if (!Resolve(host, port, SOCK_STREAM, where)) {
    error = "unknown host " + host;
    return false;
  }
  fd_ = ::socket(AF_INET, SOCK_STREAM, 0);
  if (fd_ < 0) {
    error = std::strerror(errno);
    return false;
  }
  NoWaiting(fd_);
  if (::connect(fd_, reinterpret_cast<sockaddr*>(&where), sizeof where) != 0 &&
      errno != EINPROGRESS) {
    error = std::strerror(errno);
    Close();
    return false;
  }
  pollfd p{fd_, POLLOUT, 0};
  if (::poll(&p, 1, timeoutMs) != 1) {
    error = "no answer within " + std::to_string(timeoutMs) + " ms";
    Close();
    return false;
  }
  int failure = 0;
  socklen_t size = sizeof failure;
  getsockopt(fd_, SOL_SOCKET, SO_ERROR, &failure, &size);
  if (failure != 0) {
    error = std::strerror(failure);
    Close();
    return false;
  }
  return true;
}

bool TcpLine::Send(std::string_view text) {
  while (fd_ >= 0 && !text.empty()) {
    const ssize_t n = ::send(fd_, text.data(), text.size(), MSG_NOSIGNAL);
    if (n < 0 && (errno == EAGAIN || errno == EWOULDBLOCK)) {
      pollfd p{fd_, POLLOUT, 0};
      if (::poll(&p, 1, 200) != 1) break;
      continue;
    }
    if (n <= 0) break;
    text.remove_prefix(static_cast<size_t>(n));
  }
  if (!text.empty()) Close();
  return text.empty();
}

std::string TcpLine::ReceiveWaiting() {
  std::string got;
  char buffer[4096];
  while (fd_ >= 0) {
    const ssize_t n = ::recv(fd_, buffer, sizeof buffer, 0);
    if (n > 0) {
      got.append(buffer, static_cast<size_t>(n));
      continue;
    }
    if (n == 0) Close();
    break;
  }
  return got;
}

}  // namespace vantoro
