// Every live flight is kept: what the instructor reads from the simulator is
// written as a flight recording (gzip), one file per flight beside the
// pilot's log, so that any flight can be replayed, re-scored and plotted.
//
// TapLink sits between the instructor and the real link and keeps a copy of
// every byte a read brought back, in an offset image. After each tick the
// FlightRecorder writes what changed in that image as one tick of the
// recording. The file is written as the flight goes: at least once a second
// the new lines are appended as a complete gzip member, so a program that
// dies loses at most the last second. While the flight is open the file
// carries ".part" after its name; it takes its own name when the flight
// ends, and a ".part" left by a program that died is renamed at the next
// start.
#pragma once

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "link/image_link.h"
#include "link/recording.h"
#include "link/simlink.h"

namespace vantoro {

class Instructor;

inline constexpr const char* kRecordingExtension = ".vrec.gz";
inline constexpr const char* kOpenRecordingSuffix = ".part";
// New lines reach the file at least this often.
inline constexpr std::chrono::milliseconds kRecordingFlushEvery{1000};

class TapLink final : public SimLink {
 public:
  explicit TapLink(SimLink& inner) : inner_(inner) {}

  bool Open(int requestedSim, int& result) override;
  void Close() override;
  bool IsOpen() const override { return inner_.IsOpen(); }
  bool Read(uint32_t offset, uint32_t size, void* destination, int& result) override;
  bool Write(uint32_t offset, uint32_t size, const void* source, int& result) override {
    return inner_.Write(offset, size, source, result);
  }
  bool Process(int& result) override;
  uint32_t FsVersion() const override { return inner_.FsVersion(); }
  uint32_t FsId() const override { return inner_.FsId(); }
  std::string Problem() const override { return inner_.Problem(); }
  std::string DisplayName() const override { return inner_.DisplayName(); }
  std::vector<std::string> TakeNotices() override { return inner_.TakeNotices(); }

  // What the reads have brought back so far.
  const OffsetImage& Image() const { return image_; }
  // How many exchanges have succeeded.
  uint64_t Exchanges() const { return exchanges_; }

 private:
  struct PendingRead {
    uint32_t offset;
    uint32_t size;
    const void* destination;
  };
  SimLink& inner_;
  OffsetImage image_;
  std::vector<PendingRead> reads_;
  uint64_t exchanges_ = 0;
};

class FlightRecorder {
 public:
  // folderOf: where the recordings of a flight go is asked at each new
  // flight (the pilot may have changed); clock: the wall clock of the
  // instructor, written into the recording for the log dates.
  FlightRecorder(const TapLink& tap, const Clock& clock);
  ~FlightRecorder();
  FlightRecorder(const FlightRecorder&) = delete;
  FlightRecorder& operator=(const FlightRecorder&) = delete;

  // After each polling tick: while connected, the tick is written to the
  // flight's file (opened on the first tick of a flight); a flight that has
  // ended (EndFlight opened the next one) or a connection that has ended
  // closes the file. `pressedKey` is the hot key slot (1..15) the pilot
  // pressed in the app for this tick, 0 for none: it is written before the
  // tick, so that the flight replayed hears the same key. Returns "" or what
  // went wrong with the file (the flight goes on unrecorded).
  std::string AfterTick(const Instructor& instructor, int pressedKey = 0);
  // Closes the open recording, if any (the program ends).
  void Close();

  // The file being written (with its ".part"), or "".
  const std::string& OpenFile() const { return partPath_; }
  // The files completed so far, in order.
  const std::vector<std::string>& Finished() const { return finished_; }

 private:
  std::string Open(const Instructor& instructor);
  bool Flush();

  const TapLink& tap_;
  const Clock& clock_;
  std::unique_ptr<RecordingWriter> writer_;
  uint64_t exchangesWritten_ = 0;  // the tap's exchanges at the last tick
  std::FILE* file_ = nullptr;
  std::string partPath_;
  std::string path_;
  int32_t flight_ = 0;  // the flight index the open file belongs to
  double expectedClock_ = 0;
  std::chrono::steady_clock::time_point lastFlush_;
  std::vector<std::string> finished_;
};

// The file a flight's recording goes to: beside the pilot's log, named after
// the pilot and the moment it started ("LightSpeed 2026-11-21 14-05-00");
// without a pilot under root + "Recordings/". Native path, no ".part".
std::string RecordingFileFor(const Instructor& instructor, const WallTime& start);

// Gives every ".part" recording left in `folder` by a program that ended
// without closing it its own name. Returns the files renamed.
std::vector<std::string> RecoverOpenRecordings(const std::string& folder);

}  // namespace vantoro
