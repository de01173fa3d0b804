// The control block shared between the test offset server and the tests that
// drive it: a named memory mapping made by the test before it starts the
// server. It holds the server's whole offset image, so a test prepares what
// the simulator "holds" and afterwards sees what the client wrote, and how
// the server is to misbehave. Given a flight, the server plays it: one tick
// of the flight each time a client reads the main block, as a simulator moves
// on between two polls.
#pragma once

#include <cstdint>

namespace vantoro::testserver {

// Offsets 0x0000..0xFFFF; the server reads zeros and drops writes past it.
inline constexpr uint32_t kImageSize = 0x10000;

enum Behaviour : uint32_t {
  kAnswer = 0,         // serve the batch and answer 1
  kNeverAnswer = 1,    // hold every message until the behaviour changes
  kAnswerZero = 2,     // answer 0 without serving
  kCorruptId = 3,      // serve, then damage the first record's id
  kCorruptSize = 4,    // serve, then set the first record's size past the block
  kOverwriteEnd = 5,   // serve, then replace the closing word with a read id
  kCorruptOffset = 6,  // serve, then move the first record's offset
};

struct Control {
  volatile uint32_t behaviour;  // a Behaviour, read at every message
  // Non-zero: at start the server creates the mapping name that the client of
  // this process id would use at its open number `takenCounter`, and holds it.
  uint32_t takenPid;
  uint32_t takenCounter;
  volatile uint32_t messages;  // exchanges received so far
  // The client's number, written to 0x330A. Those two bytes are not part of
  // the image: reading them gives the top of the id word at 0x3308 (0xFADE)
  // whatever a client wrote, as in the simulator's server.
  volatile uint32_t clientVersion;
  // The flight played: its ticks in all (set by the server at start) and the
  // ticks served so far. A server started again on the same block carries on
  // after the ticks already played, over the image as they left it.
  volatile uint32_t flightTicks;
  volatile uint32_t playedTicks;
  uint8_t image[kImageSize];
};

}  // namespace vantoro::testserver
