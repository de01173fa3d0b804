// Flight recordings: what the simulator's offsets held, tick by tick, as text
// ("vantoro-recording 1" and one directive a line), plain or gzip-compressed.
// The reader checks the whole file before anything runs, so a bad line never
// leaves half a flight replayed; the writer turns a live link into the same
// text, one "set" line for each run of bytes that changed since the last tick.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/seams.h"
#include "link/image_link.h"
#include "link/simlink.h"

namespace vantoro {

inline constexpr std::string_view kRecordingFirstLine = "vantoro-recording 1";
inline constexpr int kRecordingKeyFirst = 1;
inline constexpr int kRecordingKeyLast = 15;
// One line may ask for at most this many ticks (about 58 days of flight).
inline constexpr int32_t kRecordingMaxTicksPerLine = 10'000'000;

// One directive of a recording, already checked.
struct RecordingStep {
  enum class Kind { Write, Clock, Key, Say, Tick };
  Kind kind = Kind::Tick;
  int line = 0;                // line number in the file, from 1
  uint32_t offset = 0;         // Write: first simulator offset
  std::vector<uint8_t> bytes;  // Write: the bytes as they lie in memory
  WallTime clock;              // Clock
  int key = 0;                 // Key: hot key slot 1..15
  std::string phrase;          // Say
  int32_t ticks = 1;           // Tick: how many
};

struct Recording {
  std::string name;  // the file name errors are reported with
  std::vector<RecordingStep> steps;
  int64_t TotalTicks() const;
};

// Parses recording text; `name` is the file name used in error messages.
// On failure returns false with `error` set to "NAME:LINE: what is wrong";
// `out` then holds nothing.
bool ParseRecording(std::string_view name, std::string_view text, Recording& out,
                    std::string& error);

// Reads a recording file, gzip-compressed or plain (told by its content, not
// its name), and parses it. Errors as ParseRecording, or "FILE: ..." when the
// file cannot be read at all.
bool LoadRecording(const std::string& path, Recording& out, std::string& error);

// Puts a Write step's bytes into the image (the reader has checked the range).
void ApplyWrite(OffsetImage& image, const RecordingStep& step);

// What a line other than "tick" does when a recording is flown: bytes go
// into the image and the wall clock is set; a hot key or a spoken phrase is
// for the instructor and handed back to the caller.
struct StepEffect {
  int key = 0;                          // a hot key slot, 0 for none
  const std::string* phrase = nullptr;  // what the recogniser hears, or none
};
StepEffect ApplyStep(const RecordingStep& step, OffsetImage& image, FixedClock& clock);

// "2026-11-21T14:05:00" (seconds may carry a fraction); false when malformed
// or not a real date and time.
bool ParseIsoTime(std::string_view text, WallTime& out);
std::string FormatIsoTime(const WallTime& t);

// Writes a recording from whatever a link reads: the first line at once,
// then per sample the changed bytes of the four blocks as "set" lines and a
// "tick" line.
class RecordingWriter {
 public:
  RecordingWriter();

  // The text written so far.
  const std::string& Text() const { return text_; }
  // Hands over the text written since the last call, for a writer that
  // streams to a file as the flight goes.
  std::string TakeText() { return std::exchange(text_, {}); }

  // Reads the four blocks through the link and writes one tick. On a failed
  // read nothing is written for the tick and false is returned with the
  // link's result code.
  bool Sample(SimLink& link, int& result);
  // Writes one tick from an image the caller has filled.
  void SampleImage(const OffsetImage& image);
  void Clock(const WallTime& t);
  void Comment(std::string_view text);
  // The pilot pressed hot key `slot` (1..15) before the next tick.
  void Key(int slot);

 private:
  void Diff(uint32_t first, const uint8_t* now, uint8_t* before, uint32_t size);

  std::string text_;
  std::vector<uint8_t> main_, gps_, metar_, traffic_;  // what the last tick held
};

}  // namespace vantoro
