// A stand-in for the offset server inside the simulator, for the link's tests
// under Windows or wine: a hidden window of the server's class answering the
// registered message "FSASMLIB:IPC" over an offset image in memory.
//
//   fsuipc_test_server.exe CLASS CONTROL [FLIGHT]
//
// CLASS is the window class ("UIPCMAIN", or "FS98MAIN" as WideClient shows);
// CONTROL names the mapping with the control block (server_control.h).
// FLIGHT is a recording (.vrec, .vrec.gz) or a flight script (.flight) that
// the server plays, a tick for each read of the main block.
#include <windows.h>

#include <cstdio>
#include <cstring>
#include <string>

#include "base/files.h"
#include "flightgen/flightgen.h"
#include "link/recording.h"
#include "link/snapshot.h"
#include "server_control.h"

namespace {

using vantoro::testserver::Control;
namespace ts = vantoro::testserver;

constexpr uint32_t kBlockSize = 0x8000;
constexpr uint32_t kReadId = 1;
constexpr uint32_t kWriteId = 2;
constexpr DWORD kLongestHold = 10000;  // a held message is let go after this many ms
constexpr uint32_t kClientVersionOffset = 0x330A;
// The version and simulator words the handshake reads.
constexpr uint32_t kServerWordsOffset = 0x3304;
constexpr uint32_t kServerWordsSize = 8;

// The flight being played: the next step and what is left of a "tick N".
struct Flight {
  vantoro::Recording recording;
  size_t next = 0;
  int32_t ticksLeft = 0;
};

struct Server {
  Control* control = nullptr;
  UINT ipcMessage = 0;
  Flight* flight = nullptr;
};

uint32_t LoadWord(const uint8_t* p) {
  uint32_t v;
  std::memcpy(&v, p, 4);
  return v;
}

void StoreWord(uint8_t* p, uint32_t v) {
  std::memcpy(p, &v, 4);
}

// Copies between the image and a record's data; bytes past the image read as
// zero and are dropped when written.
void ReadImage(const Control& c, uint32_t offset, uint8_t* out, uint32_t size) {
  for (uint32_t i = 0; i < size; ++i) {
    const uint64_t at = uint64_t{offset} + i;
    out[i] = at < ts::kImageSize ? c.image[at] : 0;
  }
}

void WriteImage(Control& c, uint32_t offset, const uint8_t* in, uint32_t size) {
  if (offset == kClientVersionOffset && size == 2) {
    c.clientVersion = in[0] | (in[1] << 8);
    return;
  }
  for (uint32_t i = 0; i < size; ++i) {
    const uint64_t at = uint64_t{offset} + i;
    const bool readOnly = at == kClientVersionOffset || at == kClientVersionOffset + 1;
    if (at < ts::kImageSize && !readOnly) c.image[at] = in[i];
  }
}

// Moves the flight on by one tick: its writes up to the next tick land in
// the image (`apply` false passes over them, for ticks played before). The
// end of the flight holds as it stands.
void PlayTick(Flight& f, Control& c, bool apply) {
  if (f.ticksLeft > 0) {
    --f.ticksLeft;
    c.playedTicks = c.playedTicks + 1;
    return;
  }
  while (f.next < f.recording.steps.size()) {
    const vantoro::RecordingStep& step = f.recording.steps[f.next++];
    if (step.kind == vantoro::RecordingStep::Kind::Write && apply) {
      for (size_t i = 0; i < step.bytes.size(); ++i)
        if (step.offset + i < ts::kImageSize) c.image[step.offset + i] = step.bytes[i];
    } else if (step.kind == vantoro::RecordingStep::Kind::Tick) {
      f.ticksLeft = step.ticks - 1;
      c.playedTicks = c.playedTicks + 1;
      return;
    }
  }
}

// Reads the flight; a script is flown into a recording first.
bool LoadFlight(const std::string& file, Flight& f, std::string& error) {
  const bool script = file.size() > 7 && file.compare(file.size() - 7, 7, ".flight") == 0;
  if (!script) return vantoro::LoadRecording(file, f.recording, error);
  const auto text = vantoro::TryReadFile(file);
  if (!text) {
    error = file + ": cannot be read";
    return false;
  }
  std::string recording;
  return vantoro::GenerateFlight(file, *text, recording, error) &&
         vantoro::ParseRecording(file, recording, f.recording, error);
}

// Serves the records in place, as the simulator's server does; a read of the
// main block first moves the flight on. Returns the position of the closing
// word, or -1 for a batch it cannot read.
long Serve(Control& c, Flight* flight, uint8_t* block) {
  uint32_t at = 0;
  while (at + 4 <= kBlockSize) {
    const uint32_t id = LoadWord(block + at);
    if (id == 0) return static_cast<long>(at);
    const uint32_t header = id == kReadId ? 16 : 12;
    if ((id != kReadId && id != kWriteId) || at + header > kBlockSize) return -1;
    const uint32_t offset = LoadWord(block + at + 4);
    const uint32_t size = LoadWord(block + at + 8);
    if (uint64_t{at} + header + size > kBlockSize) return -1;
    if (id == kReadId && flight != nullptr && offset == vantoro::kMainBlockOffset)
      PlayTick(*flight, c, true);
    if (id == kReadId)
      ReadImage(c, offset, block + at + header, size);
    else
      WriteImage(c, offset, block + at + header, size);
    at += header + size;
  }
  return -1;
}

LRESULT Exchange(Server& s, WPARAM atom) {
  Control& c = *s.control;
  c.messages = c.messages + 1;
  if (c.behaviour == ts::kNeverAnswer) {
    // Hold the client past its timeout; what it sent is never served, even
    // when the behaviour changes meanwhile.
    const DWORD start = GetTickCount();
    while (c.behaviour == ts::kNeverAnswer && GetTickCount() - start < kLongestHold) Sleep(2);
    return 0;
  }
  if (c.behaviour == ts::kAnswerZero) return 0;

  char name[64] = {};
  if (GlobalGetAtomNameA(static_cast<ATOM>(atom), name, sizeof name) == 0) return 0;
  HANDLE mapping = OpenFileMappingA(FILE_MAP_WRITE, FALSE, name);
  if (mapping == nullptr) return 0;
  auto* block = static_cast<uint8_t*>(MapViewOfFile(mapping, FILE_MAP_WRITE, 0, 0, 0));
  if (block == nullptr) {
    CloseHandle(mapping);
    return 0;
  }
  const long end = Serve(c, s.flight, block);
  if (end >= 0) {
    switch (c.behaviour) {
      case ts::kCorruptId:
        StoreWord(block, 0x0BAD);
        break;
      case ts::kCorruptSize:
        StoreWord(block + 8, 0x7FFFFFF0);
        break;
      case ts::kCorruptOffset:
        StoreWord(block + 4, LoadWord(block + 4) + 1);
        break;
      case ts::kOverwriteEnd:
        StoreWord(block + end, kReadId);
        if (end + 12 <= static_cast<long>(kBlockSize)) StoreWord(block + end + 8, 0xFFFFFFF0);
        break;
      default:
        break;
    }
  }
  UnmapViewOfFile(block);
  CloseHandle(mapping);
  return end >= 0 ? 1 : 0;
}

LRESULT CALLBACK WindowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_NCCREATE) {
    const auto* create = reinterpret_cast<const CREATESTRUCTA*>(lParam);
    SetWindowLongPtrA(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(create->lpCreateParams));
  }
  auto* server = reinterpret_cast<Server*>(GetWindowLongPtrA(window, GWLP_USERDATA));
  if (server != nullptr && message == server->ipcMessage && message != 0)
    return Exchange(*server, wParam);
  if (message == WM_DESTROY) {
    PostQuitMessage(0);
    return 0;
  }
  return DefWindowProcA(window, message, wParam, lParam);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3 && argc != 4) {
    std::fprintf(stderr, "usage: fsuipc_test_server CLASS CONTROL [FLIGHT]\n");
    return 2;
  }
  const char* windowClass = argv[1];
  HANDLE controlMapping = OpenFileMappingA(FILE_MAP_WRITE, FALSE, argv[2]);
  if (controlMapping == nullptr) {
    std::fprintf(stderr, "fsuipc_test_server: no control block %s\n", argv[2]);
    return 1;
  }
  Server server;
  server.control = static_cast<Control*>(MapViewOfFile(controlMapping, FILE_MAP_WRITE, 0, 0, 0));
  if (server.control == nullptr) return 1;
  server.ipcMessage = RegisterWindowMessageA("FSASMLIB:IPC");

  Flight flight;
  if (argc == 4) {
    std::string error;
    if (!LoadFlight(argv[3], flight, error)) {
      std::fprintf(stderr, "fsuipc_test_server: %s\n", error.c_str());
      return 2;
    }
    Control& c = *server.control;
    c.flightTicks = static_cast<uint32_t>(flight.recording.TotalTicks());
    if (c.playedTicks == 0) {
      // A flight starts on an empty simulator: only the server's own words.
      uint8_t words[kServerWordsSize];
      std::memcpy(words, c.image + kServerWordsOffset, sizeof words);
      std::memset(c.image, 0, ts::kImageSize);
      std::memcpy(c.image + kServerWordsOffset, words, sizeof words);
    }
    const uint32_t played = c.playedTicks;
    c.playedTicks = 0;
    for (uint32_t i = 0; i < played; ++i) PlayTick(flight, c, false);
    server.flight = &flight;
  }

  // Hold the name a client is about to use, so that its open finds it taken.
  HANDLE taken = nullptr;
  if (server.control->takenPid != 0) {
    char name[64];
    std::snprintf(name, sizeof name, "FSASMLIB:IPC:%X:%X", server.control->takenPid,
                  server.control->takenCounter);
    taken = CreateFileMappingA(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, kBlockSize, name);
  }

  HINSTANCE instance = GetModuleHandleA(nullptr);
  WNDCLASSA wc = {};
  wc.lpfnWndProc = WindowProc;
  wc.hInstance = instance;
  wc.lpszClassName = windowClass;
  if (RegisterClassA(&wc) == 0) return 1;
  HWND window = CreateWindowExA(0, windowClass, "offset test server", WS_OVERLAPPED, 0, 0, 100, 100,
                                nullptr, nullptr, instance, &server);
  if (window == nullptr) return 1;

  MSG msg;
  while (GetMessageA(&msg, nullptr, 0, 0) > 0) {
    TranslateMessage(&msg);
    DispatchMessageA(&msg);
  }
  if (taken != nullptr) CloseHandle(taken);
  UnmapViewOfFile(server.control);
  CloseHandle(controlMapping);
  return 0;
}
