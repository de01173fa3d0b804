// The simulator link: a batch of reads and writes of simulator offsets, sent
// in one exchange. Every implementation (the inter-process client on Windows,
// FlightGear, X-Plane, the replay of a recording, the in-memory image of the
// tests) answers with the same result codes.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "base/events.h"

namespace vantoro {

enum LinkResult : int {
  kLinkOk = 0,
  kLinkAlreadyOpen = 1,
  kLinkNoServer = 2,
  kLinkRegisterFailed = 3,
  kLinkAtomFailed = 4,
  kLinkMappingFailed = 5,
  kLinkViewFailed = 6,
  kLinkWrongVersion = 7,
  kLinkWrongSim = 8,
  kLinkNotOpen = 9,
  kLinkNothingQueued = 10,
  kLinkTimeout = 11,
  kLinkSendFailed = 12,
  kLinkBadData = 13,
  kLinkWideClientNoServer = 14,
  kLinkBatchFull = 15,
};

// The words of a result code ("Okay", "Cannot link to FSUIPC or WideClient"...).
const char* LinkResultText(int result);

// Simulator names by the code in the low word of the server's id word;
// code 10 ("P3D") exists only in the Prepar3D build mode.
const char* SimulatorName(int code, bool p3dMode);

// `left` multiplies `value` by 2 to the `bits`, otherwise divides by it
// (whole numbers); splits the server's version word into its digits.
uint32_t Shift(uint32_t value, int bits, bool left);

// The server's version word as the status line shows it: the four digits of
// the top word with the decimal separator after the first, and a build letter
// when the low word is set (0x19980005 reads "1.998e", 0x48000000 "4.800").
std::string FsuipcVersionText(uint32_t fsVersion, char decimalSeparator = '.');

class SimLink {
 public:
  virtual ~SimLink() = default;

  // Opens the link; requestedSim 0 accepts any simulator.
  virtual bool Open(int requestedSim, int& result) = 0;
  virtual void Close() = 0;
  virtual bool IsOpen() const = 0;

  // Queue a read into `destination` (filled by Process) or a write of `source`.
  virtual bool Read(uint32_t offset, uint32_t size, void* destination, int& result) = 0;
  virtual bool Write(uint32_t offset, uint32_t size, const void* source, int& result) = 0;
  // Sends the batch and copies the replies; the batch is emptied either way.
  virtual bool Process(int& result) = 0;

  // The two words read at open: server version and simulator id (low word).
  virtual uint32_t FsVersion() const = 0;
  virtual uint32_t FsId() const = 0;

  // A link to a simulator without an offset interface tells its own words:
  // why the last Open or Process failed ("no data from FlightGear on port
  // 5500"), empty when the result code says it all;
  virtual std::string Problem() const { return {}; }
  // the simulator's name for the status line, empty to take it from FsId;
  virtual std::string DisplayName() const { return {}; }
  // and what it could not do, each thing once ("FlightGear has no ..."),
  // handed over once and forgotten.
  virtual std::vector<std::string> TakeNotices() { return {}; }
};

// A write of the instructor to the simulator (radio tuning, failures, OBS...):
// queued, processed at once, and told to the observers as a "write" event.
// The message line has its own path and event; the traffic-table controls
// written with the tick's reads are part of the read exchange and not told.
bool WriteToSim(SimLink& link, Events& events, int32_t tick, uint32_t offset, const void* data,
                uint32_t size);

}  // namespace vantoro
