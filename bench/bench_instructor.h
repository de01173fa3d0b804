// An instructor for the benchmarks: an offset image for a simulator, a quiet
// sound device, no events, a fixed clock, and a root folder of its own that
// is removed when it goes.
#pragma once

#include <filesystem>
#include <string>

#include "base/events.h"
#include "base/seams.h"
#include "bench/quiet_audio.h"
#include "link/image_link.h"
#include "shell/instructor.h"

namespace vantoro {

struct BenchInstructor {
  explicit BenchInstructor(const std::string& folder)
      : root(std::filesystem::temp_directory_path() / folder) {
    std::filesystem::create_directories(root / "Sound" / "Bench");
  }
  ~BenchInstructor() { std::filesystem::remove_all(root); }

  std::filesystem::path root;
  OffsetImage image;
  ImageLink link{image};
  NoEvents events;
  QuietAudio audio;
  FixedClock clock;
  SeededRandom random{1};
  Instructor instructor{root.string() + "/",
                        Seams{&link, {&audio, &audio}, &events, &clock, &random}};
};

}  // namespace vantoro
