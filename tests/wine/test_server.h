// Runs the test offset server as a separate process for one test, with its
// control block: the test prepares the image and the behaviour, starts the
// server with a window class, and reads back what the client wrote.
#pragma once

#include <windows.h>

#include <cstdint>
#include <string>

#include "server_control.h"

namespace vantoro::testing {

class TestServer {
 public:
  // The image starts as a known pattern (PatternByte) with version 4.80 on
  // FSX in the handshake words; nothing runs until Start.
  TestServer();
  ~TestServer();
  TestServer(const TestServer&) = delete;
  TestServer& operator=(const TestServer&) = delete;

  // Starts the server with a window of `windowClass` and waits for the window.
  // With a flight (a recording or a flight script) the server plays it; a
  // server started again carries on where the last one stopped.
  bool Start(const char* windowClass, const std::string& flight = {});
  // Ends the server; the window disappears (safe when not started).
  void Stop();

  testserver::Control& control() { return *control_; }
  void SetBehaviour(testserver::Behaviour b) { control_->behaviour = b; }
  void SetWord(uint32_t offset, uint32_t value);
  uint32_t Word(uint32_t offset) const;
  uint8_t Byte(uint32_t offset) const { return control_->image[offset]; }

  // The byte the untouched image holds at `offset`.
  static uint8_t PatternByte(uint32_t offset) {
    return static_cast<uint8_t>((offset * 7 + (offset >> 8)) ^ 0x5A);
  }

 private:
  std::string controlName_;
  HANDLE controlMapping_ = nullptr;
  testserver::Control* control_ = nullptr;
  PROCESS_INFORMATION process_{};
  HWND window_ = nullptr;
};

}  // namespace vantoro::testing
