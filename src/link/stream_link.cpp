#include "link/stream_link.h"

#include <cstring>

namespace vantoro {

void StreamLink::Accept(const SimulatorState& state) {
  ImageSink sink(image_);
  EncodeSimulatorState(state, sink);
  heard_ = true;
  lastGood_ = now();
  ++good_;
}

void StreamLink::Reject(const std::string& why) {
  ++bad_;
  ++badSinceProcess_;
  lastBad_ = why;
}

void StreamLink::Tell(const std::string& key, const std::string& text) {
  if (!told_.insert(key).second) return;
  notices_.push_back(text);
}

std::vector<std::string> StreamLink::TakeNotices() {
  std::vector<std::string> out;
  out.swap(notices_);
  return out;
}

bool StreamLink::Fresh() {
  return heard_ && now() - lastGood_ <= kStreamSilence;
}

bool StreamLink::Open(int, int& result) {
  if (open_) {
    result = kLinkAlreadyOpen;
    return false;
  }
  problem_.clear();
  if (!Listen(problem_)) {
    result = kLinkNoServer;
    return false;
  }
  Receive();
  badSinceProcess_ = 0;
  if (!Fresh()) {
    problem_ = Silence();
    result = kLinkTimeout;
    return false;
  }
  int ignored = kLinkOk;
  images_.Open(0, ignored);
  open_ = true;
  result = kLinkOk;
  return true;
}

void StreamLink::Close() {
  open_ = false;
  images_.Close();
  writes_.clear();
  queued_ = false;
}

bool StreamLink::Read(uint32_t offset, uint32_t size, void* destination, int& result) {
  if (!open_) {
    result = kLinkNotOpen;
    return false;
  }
  queued_ = true;
  return images_.Read(offset, size, destination, result);
}

bool StreamLink::Write(uint32_t offset, uint32_t size, const void* source, int& result) {
  if (!open_) {
    result = kLinkNotOpen;
    return false;
  }
  if (!images_.Write(offset, size, source, result)) return false;
  // The image holds the write at once, so that a write told in two parts
  // (the ADF's two words) is read whole when it is handed on.
  image_.SetBytes(offset, source, size);
  const auto* p = static_cast<const uint8_t*>(source);
  writes_.push_back({offset, std::vector<uint8_t>(p, p + size)});
  queued_ = true;
  return true;
}

bool StreamLink::Process(int& result) {
  if (!open_) {
    result = kLinkNotOpen;
    return false;
  }
  std::vector<PendingWrite> writes;
  writes.swap(writes_);
  if (!queued_) {
    result = kLinkNothingQueued;
    return false;
  }
  queued_ = false;
  for (const PendingWrite& w : writes) Deliver(w.offset, w.bytes);
  Receive();
  problem_.clear();
  if (badSinceProcess_ > 0) {
    // A damaged packet is a read error of its tick: the tick is passed over
    // and counted, and the next good packet is read as usual.
    badSinceProcess_ = 0;
    problem_ = "damaged packet: " + lastBad_;
    int ignored = kLinkOk;
    images_.failProcessWith = kLinkBadData;
    images_.Process(ignored);
    images_.failProcessWith = kLinkOk;
    result = kLinkBadData;
    return false;
  }
  if (!Fresh()) {
    problem_ = Silence();
    int ignored = kLinkOk;
    images_.failProcessWith = kLinkTimeout;
    images_.Process(ignored);
    images_.failProcessWith = kLinkOk;
    result = kLinkTimeout;
    return false;
  }
  const bool ok = images_.Process(result);
  images_.writes.clear();
  return ok;
}

}  // namespace vantoro
