// The common part of the links to simulators that stream their aircraft's
// state in packets (FlightGear, X-Plane): the packets fill an offset image
// through the encoder, the instructor's reads are answered from it, and its
// writes are handed to the simulator's own protocol, where it has an
// equivalent, and land in the image. What has no equivalent is told once.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <set>
#include <string>
#include <vector>

#include "link/image_link.h"
#include "link/sim_state.h"
#include "link/simlink.h"

namespace vantoro {

// Without a good packet for this long the simulator counts as gone.
inline constexpr std::chrono::milliseconds kStreamSilence{2000};

class StreamLink : public SimLink {
 public:
  using TimePoint = std::chrono::steady_clock::time_point;

  bool Open(int requestedSim, int& result) override;
  void Close() override;
  bool IsOpen() const override { return open_; }
  bool Read(uint32_t offset, uint32_t size, void* destination, int& result) override;
  bool Write(uint32_t offset, uint32_t size, const void* source, int& result) override;
  bool Process(int& result) override;
  // The words of an offset server of version 4.80 on FSX, as the replay
  // answers: the rules treat the simulator as the one they know best.
  uint32_t FsVersion() const override { return open_ ? 0x48000000u : 0; }
  uint32_t FsId() const override { return open_ ? 0xFADE0008u : 0; }
  std::string Problem() const override { return problem_; }
  std::vector<std::string> TakeNotices() override;

  const OffsetImage& image() const { return image_; }
  // Packets taken in and packets thrown away as damaged, since the start.
  int64_t goodPackets() const { return good_; }
  int64_t badPackets() const { return bad_; }

  // The clock the silence is measured by (tests set their own).
  std::function<TimePoint()> now = [] { return std::chrono::steady_clock::now(); };

 protected:
  // Opens the sockets if they are not open yet; false with the reason.
  virtual bool Listen(std::string& problem) = 0;
  // Takes every waiting packet, calling Accept or Reject for each.
  virtual void Receive() = 0;
  // Hands one of the instructor's writes to the simulator.
  virtual void Deliver(uint32_t offset, const std::vector<uint8_t>& bytes) = 0;
  // "no data from FlightGear on port 5500".
  virtual std::string Silence() const = 0;

  void Accept(const SimulatorState& state);
  void Reject(const std::string& why);
  // Tells `text` once for `key` in the link's life.
  void Tell(const std::string& key, const std::string& text);

 private:
  bool Fresh();

  OffsetImage image_;
  ImageLink images_{image_};
  bool open_ = false;
  bool heard_ = false;
  TimePoint lastGood_{};
  int64_t good_ = 0;
  int64_t bad_ = 0;
  int badSinceProcess_ = 0;
  std::string lastBad_;
  std::string problem_;
  std::set<std::string> told_;
  std::vector<std::string> notices_;
  struct PendingWrite {
    uint32_t offset;
    std::vector<uint8_t> bytes;
  };
  std::vector<PendingWrite> writes_;
  bool queued_ = false;
};

}  // namespace vantoro
