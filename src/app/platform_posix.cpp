// The live program on Linux: ALSA's sound, xdg-open, signals and the XDG
// data folder.
#include <pthread.h>
#include <signal.h>

#include <array>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <thread>

#include "app/alsa_audio.h"
#include "app/data_root.h"
#include "app/platform.h"

namespace vantoro {

std::string UserDataFolder() {
  namespace fs = std::filesystem;
  if (const char* xdg = std::getenv("XDG_DATA_HOME"); xdg != nullptr && *xdg != '\0')
    return (fs::path(xdg) / "vantoro").string();
  if (const char* home = std::getenv("HOME"); home != nullptr && *home != '\0')
    return (fs::path(home) / ".local" / "share" / "vantoro").string();
  return {};
}

void SoundOnPlatform(LiveParts& parts) {
  auto first = std::make_unique<AlsaAudioOut>();
  auto second = std::make_unique<AlsaAudioOut>();
  std::array<AlsaAudioOut*, 2> devices = {first.get(), second.get()};
  parts.audio = {std::move(first), std::move(second)};
  parts.afterSoundStep = [devices] {
    std::string problem;
    for (AlsaAudioOut* d : devices)
      if (std::string p = d->Deliver(); !p.empty()) problem = p;
    return problem;
  };
}

void OpenBrowser(const std::string& url) {
  const std::string command = "xdg-open '" + url + "' >/dev/null 2>&1 &";
  if (std::system(command.c_str()) != 0)
    std::cout << "Open " << url << " in your browser" << std::endl;
}

// SIGINT and SIGTERM: a thread of its own waits for them and stops the loop.
struct StopRequests::State {
  sigset_t set;
  std::thread thread;
};

StopRequests::StopRequests() : state_(std::make_unique<State>()) {
  sigemptyset(&state_->set);
  sigaddset(&state_->set, SIGINT);
  sigaddset(&state_->set, SIGTERM);
  sigaddset(&state_->set, SIGUSR1);
  // Blocked before any other thread starts, so only this one takes them.
  pthread_sigmask(SIG_BLOCK, &state_->set, nullptr);
}

void StopRequests::Start(LiveProgram& program) {
  state_->thread = std::thread([this, &program] {
    int signal = 0;
    while (sigwait(&state_->set, &signal) == 0) {
      if (signal == SIGUSR1) return;
      program.Stop();
    }
  });
}

void StopRequests::Finished() {}

StopRequests::~StopRequests() {
  if (state_->thread.joinable()) {
    pthread_kill(state_->thread.native_handle(), SIGUSR1);
    state_->thread.join();
  }
}

}  // namespace vantoro
