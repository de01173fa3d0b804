// The live program's pieces that differ between Windows and Linux: the
// sound devices, the browser, the per-user data folder and how the pilot
// ends the program from its console.
#pragma once

#include <memory>
#include <string>

#include "app/live_program.h"

namespace vantoro {

// The two sound channels on the platform's sound devices, handing their
// finished notices back after each sound step.
void SoundOnPlatform(LiveParts& parts);

// The app in the pilot's default browser; the address is printed instead when
// no browser can be started.
void OpenBrowser(const std::string& url);

// Ctrl+C (and closing the console window on Windows, SIGTERM on Linux) ends
// the program cleanly: the loop is stopped, which closes the flight and its
// files. Made before any other thread starts.
class StopRequests {
 public:
  StopRequests();
  ~StopRequests();
  StopRequests(const StopRequests&) = delete;
  StopRequests& operator=(const StopRequests&) = delete;
  void Start(LiveProgram& program);
  // The program has closed its files: a console being closed may go.
  void Finished();

  // What the platform's watcher holds (platform_*.cpp).
  struct State;

 private:
  std::unique_ptr<State> state_;
};

}  // namespace vantoro
