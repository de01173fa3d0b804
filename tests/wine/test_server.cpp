#include "test_server.h"

#include <cstdio>
#include <cstring>

namespace vantoro::testing {

namespace {

// The server program lies beside the test program.
std::string ServerPath() {
  char path[MAX_PATH] = {};
  GetModuleFileNameA(nullptr, path, MAX_PATH);
  std::string p = path;
  const size_t slash = p.find_last_of("\\/");
  return p.substr(0, slash == std::string::npos ? 0 : slash + 1) + "fsuipc_test_server.exe";
}

struct FindServer {
  DWORD pid;
  const char* windowClass;
  HWND window;
};

// The server's own window: its process may own others (the input method's).
BOOL CALLBACK MatchWindow(HWND window, LPARAM param) {
  auto* find = reinterpret_cast<FindServer*>(param);
  DWORD pid = 0;
  GetWindowThreadProcessId(window, &pid);
  char name[32] = {};
  GetClassNameA(window, name, sizeof name);
  if (pid != find->pid || lstrcmpiA(name, find->windowClass) != 0) return TRUE;
  find->window = window;
  return FALSE;
}

}  // namespace

TestServer::TestServer() {
  // The name is this process's and this object's, so that servers of other
  // test programs never share a control block with this one.
  char name[64];
  std::snprintf(name, sizeof name, "VantoroTestServer:%lX:%p", GetCurrentProcessId(),
                static_cast<void*>(this));
  controlName_ = name;
  controlMapping_ = CreateFileMappingA(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0,
                                       sizeof(testserver::Control), name);
  control_ =
      static_cast<testserver::Control*>(MapViewOfFile(controlMapping_, FILE_MAP_WRITE, 0, 0, 0));
  control_->behaviour = testserver::kAnswer;
  control_->takenPid = 0;
  control_->takenCounter = 0;
  control_->messages = 0;
  control_->clientVersion = 0;
  control_->flightTicks = 0;
  control_->playedTicks = 0;
  for (uint32_t i = 0; i < testserver::kImageSize; ++i) control_->image[i] = PatternByte(i);
  SetWord(0x3304, 0x48000000);  // version 4.80
  SetWord(0x3308, 0xFADE0008);  // check pattern, FSX
}

TestServer::~TestServer() {
  Stop();
  if (control_ != nullptr) UnmapViewOfFile(control_);
  if (controlMapping_ != nullptr) CloseHandle(controlMapping_);
}

void TestServer::SetWord(uint32_t offset, uint32_t value) {
  std::memcpy(control_->image + offset, &value, 4);
}

uint32_t TestServer::Word(uint32_t offset) const {
  uint32_t v;
  std::memcpy(&v, control_->image + offset, 4);
  return v;
}

bool TestServer::Start(const char* windowClass, const std::string& flight) {
  std::string command = "\"";
  command.append(ServerPath()).append("\" ").append(windowClass).append(" ").append(controlName_);
  if (!flight.empty()) command.append(" \"").append(flight).append("\"");
  STARTUPINFOA startup{};
  startup.cb = sizeof startup;
  if (!CreateProcessA(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                      &startup, &process_))
    return false;
  FindServer find{process_.dwProcessId, windowClass, nullptr};
  for (int i = 0; i < 2000 && find.window == nullptr; ++i) {
    if (WaitForSingleObject(process_.hProcess, 0) == WAIT_OBJECT_0) break;
    EnumWindows(MatchWindow, reinterpret_cast<LPARAM>(&find));
    if (find.window == nullptr) Sleep(5);
  }
  window_ = find.window;
  return window_ != nullptr;
}

void TestServer::Stop() {
  if (process_.hProcess == nullptr) return;
  // A held message is let go without being served, and so is anything still
  // queued, so that the server ends promptly.
  control_->behaviour = testserver::kAnswerZero;
  if (window_ != nullptr) PostMessageA(window_, WM_CLOSE, 0, 0);
  if (WaitForSingleObject(process_.hProcess, 5000) != WAIT_OBJECT_0) {
    TerminateProcess(process_.hProcess, 1);
    WaitForSingleObject(process_.hProcess, 5000);
  }
  CloseHandle(process_.hProcess);
  CloseHandle(process_.hThread);
  process_ = {};
  window_ = nullptr;
}

}  // namespace vantoro::testing
