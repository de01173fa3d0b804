// Scenario flights for tests: a flight script becomes a recording (through
// the flight generator), the recording is replayed through a whole
// instructor exactly as vantoro-cli replay does, and the test reads back
// what the instructor did as events.
//
//   auto flight = FlyScript("position 51.8 -1.3\nengine start\ntaxi speed 10 for 20\n");
//   EXPECT_EQ(flight.Modes(), (std::vector<std::string>{"Taxiing"}));
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "base/events.h"
#include "link/image_link.h"
#include "link/recording.h"
#include "link/snapshot.h"

namespace vantoro::testing {

// The program's data folder of the source tree.
std::string DataRoot();

struct ScenarioOptions {
  std::string root = DataRoot();
  uint64_t seed = 1;
  bool instant = false;
  std::string pilot;  // the pilot file to fly with; none when empty
};

struct Scenario {
  std::string recording;  // the recording text that was replayed
  std::vector<Event> events;
  int64_t ticks = 0;
  std::vector<std::string> phrases;  // "say" lines, in order

  std::vector<Event> OfType(std::string_view type) const;
  // The "mode" events' modes, in order.
  std::vector<std::string> Modes() const;
  // The files handed to the audio device, in order.
  std::vector<std::string> Spoken() const;
  bool Said(std::string_view file) const;  // case ignored
};

// Makes a program root folder under `folder` with an instructor voice of
// the given files (each a quiet wave of `ms` milliseconds) in
// Sound\<instructor>\ and the silent file that stands in for missing ones.
// Returns the root.
std::string MakeVoiceRoot(const std::string& folder, const std::string& instructor,
                          const std::vector<std::string>& files, int ms = 600);

// The recording text of a flight script; a script error throws
// std::runtime_error with its "script:LINE: ..." text.
std::string GenerateScript(std::string_view script);

// Replays a recording's text. A bad recording throws std::runtime_error.
Scenario ReplayText(std::string_view recording, const ScenarioOptions& options = {});
// Generates and replays a flight script.
Scenario FlyScript(std::string_view script, const ScenarioOptions& options = {});

// Runs a recording's writes without an instructor and calls `each` after
// every tick with the image as it stands and the tick's number from 1.
void ForEachTick(std::string_view recording,
                 const std::function<void(const OffsetImage&, int64_t)>& each);

// Decodes an image as the polling tick would: the four blocks into the
// link's buffers, then the snapshot decoder into the current record.
const FSData& DecodeImage(const OffsetImage& image, LinkState& link, int32_t tickCount = 1);

}  // namespace vantoro::testing
