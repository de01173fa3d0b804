// The simulator link on Windows: the inter-process protocol of the offset
// server inside the simulator (FS2002, FS2004, FSX, Prepar3D, and MSFS through
// the server's later versions, or WideClient on another machine). A batch of
// read and write records is packed into a shared memory block whose name is
// handed to the server's window in one message; the server answers in place.
//
// Compiled only for Windows. Every failure is a result code; nothing is thrown.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "link/simlink.h"

namespace vantoro {

// How long an exchange may take. The defaults are the program's; tests use
// short ones so that a server that never answers costs milliseconds.
struct FsuipcTiming {
  uint32_t timeoutMs = 2000;  // one try of the message
  int retries = 10;           // further tries after a failed one
  uint32_t sleepMs = 100;     // pause before each retry and after each handshake round
};

// This client's number, written to the server at 0x330A at every open so that
// the server's log can tell which client spoke.
inline constexpr uint16_t kClientVersion = 0x0100;

// The shared block: 0x8000 bytes mapped, of which the batch with its closing
// word may use 0x7F00.
inline constexpr uint32_t kFsuipcMappingSize = 0x8000;
inline constexpr uint32_t kFsuipcBatchLimit = 0x7F00;

class FsuipcLink final : public SimLink {
 public:
  explicit FsuipcLink(FsuipcTiming timing = {}) : timing_(timing) {}
  ~FsuipcLink() override { Close(); }
  FsuipcLink(const FsuipcLink&) = delete;
  FsuipcLink& operator=(const FsuipcLink&) = delete;

  bool Open(int requestedSim, int& result) override;
  // Deletes the atom, unmaps the view and closes the mapping; safe when closed.
  void Close() override;
  bool IsOpen() const override { return link_.MapView != nullptr; }
  bool Read(uint32_t offset, uint32_t size, void* destination, int& result) override;
  bool Write(uint32_t offset, uint32_t size, const void* source, int& result) override;
  bool Process(int& result) override;
  uint32_t FsVersion() const override { return link_.FsVersion; }
  uint32_t FsId() const override { return link_.FsId; }

  // The mapping name of the latest open ("FSASMLIB:IPC:<pid>:<counter>").
  const std::string& MappingName() const { return mappingName_; }
  // True when the server window found was WideClient's class "FS98MAIN".
  bool FoundWideClientWindow() const { return wideClientWindow_; }

 private:
  // What the link holds while open. Handles are kept untyped so that this
  // header needs no system header.
  struct LinkState {
    void* FsWindow = nullptr;
    unsigned FsMessage = 0;
    uint16_t MapAtom = 0;
    void* MapHandle = nullptr;
    uint8_t* MapView = nullptr;
    uint32_t NextRecord = 0;  // write position in the block
    uint32_t FsVersion = 0;
    uint32_t FsId = 0;
  };
  // One record of the batch as queued: the reply is checked against it and
  // read data is copied to `destination`, never to an address from the block.
  struct Queued {
    uint32_t id;
    uint32_t offset;
    uint32_t size;
    void* destination;
  };

  bool Queue(uint32_t id, uint32_t offset, uint32_t size, const void* data, void* destination,
             int& result);
  // True when the reply block holds exactly the records sent, in order.
  bool ReplyMatches(const std::vector<Queued>& batch) const;
  bool Fail(int code, int& result);  // closes, sets result, returns false

  FsuipcTiming timing_;
  LinkState link_;
  std::vector<Queued> batch_;
  uint32_t openCounter_ = 0;  // grows at each open; part of the mapping name
  std::string mappingName_;
  bool wideClientWindow_ = false;
};

}  // namespace vantoro
