#include "app/flight_recorder.h"

#include <chrono>
#include <cmath>
#include <ctime>
#include <filesystem>
#include <system_error>

#include "base/files.h"
#include "base/gzip.h"
#include "records/flight_log.h"
#include "shell/instructor.h"

namespace fs = std::filesystem;

namespace vantoro {

namespace {

// Seconds since 1970 of a wall time read as UTC (only differences matter).
double SecondsOf(const WallTime& t) {
  using namespace std::chrono;
  const sys_days day = year_month_day{year{t.year}, month{static_cast<unsigned>(t.month)},
                                      std::chrono::day{static_cast<unsigned>(t.day)}};
  const double days = static_cast<double>(day.time_since_epoch().count());
  return days * 86400.0 + t.hour * 3600.0 + t.minute * 60.0 + t.second;
}

// The clock is written again when it strays this far from what a replay
// would make of it (half a second a tick).
constexpr double kClockDriftSeconds = 1.0;
constexpr double kTickSeconds = 0.5;

std::string TwoDigits(int v) {
  return (v < 10 ? "0" : "") + std::to_string(v);
}

}  // namespace

bool TapLink::Open(int requestedSim, int& result) {
  reads_.clear();
  return inner_.Open(requestedSim, result);
}

void TapLink::Close() {
  reads_.clear();
  inner_.Close();
}

bool TapLink::Read(uint32_t offset, uint32_t size, void* destination, int& result) {
  if (!inner_.Read(offset, size, destination, result)) return false;
  reads_.push_back({offset, size, destination});
  return true;
}

bool TapLink::Process(int& result) {
  const bool ok = inner_.Process(result);
  if (ok) ++exchanges_;
  // Reads outside the four blocks of a recording are not kept.
  if (ok)
    for (const PendingRead& r : reads_)
      if (OffsetImage::InBlocks(r.offset, r.size)) image_.SetBytes(r.offset, r.destination, r.size);
  reads_.clear();
  return ok;
}

FlightRecorder::FlightRecorder(const TapLink& tap, const Clock& clock) : tap_(tap), clock_(clock) {}

FlightRecorder::~FlightRecorder() {
  Close();
}

std::string RecordingFileFor(const Instructor& instructor, const WallTime& start) {
  const std::string moment = std::to_string(start.year) + "-" + TwoDigits(start.month) + "-" +
                             TwoDigits(start.day) + " " + TwoDigits(start.hour) + "-" +
                             TwoDigits(start.minute) + "-" +
                             TwoDigits(static_cast<int>(start.second));
  const std::string& pilot = instructor.scores.PilotFile;
  const std::string base =
      pilot.empty() ? instructor.root + "Recordings\\live" : GetPilotFile(pilot, "");
  return NativePath(base + " " + moment + kRecordingExtension);
}

std::string FlightRecorder::Open(const Instructor& instructor) {
  const WallTime now = clock_.Now();
  path_ = RecordingFileFor(instructor, now);
  partPath_ = path_ + kOpenRecordingSuffix;
  std::error_code ec;
  const fs::path folder = fs::path(path_).parent_path();
  if (!folder.empty()) fs::create_directories(folder, ec);
  file_ = std::fopen(partPath_.c_str(), "wb");
  if (file_ == nullptr) {
    std::string problem = "cannot write the flight's recording " + partPath_;
    path_.clear();
    partPath_.clear();
    return problem;
  }
  writer_ = std::make_unique<RecordingWriter>();
  writer_->Comment("A live flight, recorded as it was flown");
  writer_->Clock(now);
  expectedClock_ = SecondsOf(now);
  flight_ = instructor.flight.CurrentFlight;
  lastFlush_ = std::chrono::steady_clock::now();
  return {};
}

bool FlightRecorder::Flush() {
  lastFlush_ = std::chrono::steady_clock::now();
  const std::string text = writer_->TakeText();
  if (text.empty()) return true;
  // Each flush is one whole gzip member: a reader takes the members one
  // after the other as one text, and a file cut after any of them is whole.
  const std::string member = GzipText(text);
  return std::fwrite(member.data(), 1, member.size(), file_) == member.size() &&
         std::fflush(file_) == 0;
}

std::string FlightRecorder::AfterTick(const Instructor& instructor, int pressedKey) {
  const FlightState& f = instructor.flight;
  if (file_ != nullptr && (!f.UserConnected || f.CurrentFlight != flight_)) {
    // The tick that ended the flight belongs to it: it was written last time
    // round, so the next flight starts in a file of its own.
    Close();
  }
  // A tick whose reads failed brought nothing to write; a link lost in
  // flight (the simulator gone for a while) keeps the flight's file open, so
  // that the flight goes on in it when the link is back.
  const bool read = tap_.Exchanges() != exchangesWritten_;
  exchangesWritten_ = tap_.Exchanges();
  if (!f.UserConnected || !f.Connected || !read) return {};
  std::string problem;
  if (file_ == nullptr && !(problem = Open(instructor)).empty()) return problem;

  const WallTime now = clock_.Now();
  if (std::abs(SecondsOf(now) - expectedClock_) > kClockDriftSeconds) {
    writer_->Clock(now);
    expectedClock_ = SecondsOf(now);
  }
  if (pressedKey >= kRecordingKeyFirst && pressedKey <= kRecordingKeyLast) writer_->Key(pressedKey);
  writer_->SampleImage(tap_.Image());
  expectedClock_ += kTickSeconds;
  if (std::chrono::steady_clock::now() - lastFlush_ >= kRecordingFlushEvery && !Flush()) {
    problem = "cannot write the flight's recording " + partPath_;
    Close();
  }
  return problem;
}

void FlightRecorder::Close() {
  if (file_ == nullptr) return;
  const bool flushed = Flush();
  const bool closed = std::fclose(file_) == 0;
  file_ = nullptr;
  writer_.reset();
  std::error_code ec;
  if (flushed && closed) {
    fs::rename(partPath_, path_, ec);
    if (!ec) finished_.push_back(path_);
  }
  partPath_.clear();
  path_.clear();
}

std::vector<std::string> RecoverOpenRecordings(const std::string& folder) {
  std::vector<std::string> renamed;
  std::error_code ec;
  const std::string suffix = std::string(kRecordingExtension) + kOpenRecordingSuffix;
  for (fs::recursive_directory_iterator it(folder, ec), end; !ec && it != end; it.increment(ec)) {
    const std::string name = it->path().string();
    if (name.size() <= suffix.size() ||
        name.compare(name.size() - suffix.size(), suffix.size(), suffix) != 0)
      continue;
    const std::string whole =
        name.substr(0, name.size() - std::string(kOpenRecordingSuffix).size());
    std::error_code renameError;
    fs::rename(name, whole, renameError);
    if (!renameError) renamed.push_back(whole);
  }
  return renamed;
}

}  // namespace vantoro
