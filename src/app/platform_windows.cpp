// The live program on Windows: waveOut's sound, the browser through the
// shell, the console's Ctrl+C and close button, and %APPDATA%\Vantoro.
// clang-format off
#include <windows.h>
#include <shellapi.h>
#include <shlobj.h>
// clang-format on

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <filesystem>
#include <iostream>
#include <mutex>

#include "app/data_root.h"
#include "app/platform.h"
#include "app/wave_out_audio.h"

namespace vantoro {

namespace {

// How long a console being closed waits for the flight's files to be closed;
// Windows ends the program after five seconds in any case.
constexpr auto kCloseWait = std::chrono::milliseconds(4500);

}  // namespace

std::string UserDataFolder() {
  char folder[MAX_PATH] = {};
  if (SHGetFolderPathA(nullptr, CSIDL_APPDATA, nullptr, SHGFP_TYPE_CURRENT, folder) != S_OK)
    return {};
  return (std::filesystem::path(folder) / "Vantoro").string();
}

void SoundOnPlatform(LiveParts& parts) {
  auto first = std::make_unique<WaveOutAudio>();
  auto second = std::make_unique<WaveOutAudio>();
  std::array<WaveOutAudio*, 2> devices = {first.get(), second.get()};
  parts.audio = {std::move(first), std::move(second)};
  parts.afterSoundStep = [devices] {
    std::string problem;
    for (WaveOutAudio* d : devices)
      if (std::string p = d->Deliver(); !p.empty()) problem = p;
    return problem;
  };
}

void OpenBrowser(const std::string& url) {
  const auto result = reinterpret_cast<INT_PTR>(
      ShellExecuteA(nullptr, "open", url.c_str(), nullptr, nullptr, SW_SHOWNORMAL));
  // Values up to 32 are the shell's errors.
  if (result <= 32) std::cout << "Open " << url << " in your browser" << std::endl;
}

// The console's handler runs on a thread the system makes for it.
struct StopRequests::State {
  LiveProgram* program = nullptr;
  std::mutex mutex;
  std::condition_variable finished;
  bool done = false;
};

namespace {

std::atomic<StopRequests::State*> theRequests{nullptr};

}  // namespace

static BOOL WINAPI ConsoleControl(DWORD event) {
  StopRequests::State* state = theRequests.load();
  if (state == nullptr) return FALSE;
  std::unique_lock lock(state->mutex);
  if (state->program != nullptr) state->program->Stop();
  // Closing the window, logging off or shutting down end the process when
  // the handler returns: it waits until the files are closed.
  if (event == CTRL_CLOSE_EVENT || event == CTRL_LOGOFF_EVENT || event == CTRL_SHUTDOWN_EVENT)
    state->finished.wait_for(lock, kCloseWait, [state] { return state->done; });
  return TRUE;
}

StopRequests::StopRequests() : state_(std::make_unique<State>()) {
  theRequests = state_.get();
  SetConsoleCtrlHandler(&ConsoleControl, TRUE);
}

void StopRequests::Start(LiveProgram& program) {
  std::lock_guard lock(state_->mutex);
  state_->program = &program;
}

void StopRequests::Finished() {
  std::lock_guard lock(state_->mutex);
  state_->program = nullptr;
  state_->done = true;
  state_->finished.notify_all();
}

StopRequests::~StopRequests() {
  Finished();
  SetConsoleCtrlHandler(&ConsoleControl, FALSE);
  theRequests = nullptr;
}

}  // namespace vantoro
