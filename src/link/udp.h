// Small POSIX sockets for the simulator links: a UDP socket that is never
// waited on, and a TCP line connection with a short connect timeout.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace vantoro {

class UdpSocket {
 public:
  UdpSocket() = default;
  ~UdpSocket();
  UdpSocket(const UdpSocket&) = delete;
  UdpSocket& operator=(const UdpSocket&) = delete;

  // Binds to `port` on `address` (0: any free port). False with the reason.
  bool Bind(const std::string& address, int port, std::string& error);
  bool IsBound() const { return fd_ >= 0; }
  int LocalPort() const;
  // One waiting packet into `packet`; false when none is waiting.
  bool Receive(std::vector<uint8_t>& packet);
  bool SendTo(const std::string& host, int port, const void* data, size_t size);
  void Close();

 private:
  int fd_ = -1;
};

class TcpLine {
 public:
  TcpLine() = default;
  ~TcpLine();
  TcpLine(const TcpLine&) = delete;
  TcpLine& operator=(const TcpLine&) = delete;

  // Connects within `timeoutMs`; false with the reason.
  bool Connect(const std::string& host, int port, int timeoutMs, std::string& error);
  bool IsConnected() const { return fd_ >= 0; }
  // Sends all of `text`; false (and closed) when the other side has gone.
  bool Send(std::string_view text);
  // What has arrived, without waiting.
  std::string ReceiveWaiting();
  void Close();

 private:
  int fd_ = -1;
};

}  // namespace vantoro
