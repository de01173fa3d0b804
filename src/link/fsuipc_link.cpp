#include "link/fsuipc_link.h"

#include <windows.h>

#include <cstdio>
#include <cstring>

namespace vantoro {

namespace {

constexpr uint32_t kReadId = 1;
constexpr uint32_t kWriteId = 2;
constexpr uint32_t kReadHeader = 16;   // id, offset, size, destination
constexpr uint32_t kWriteHeader = 12;  // id, offset, size
constexpr uint32_t kEndWord = 4;
// The server's answer to an exchange it accepted.
constexpr DWORD_PTR kServerAccepted = 1;

// Versions before 1.998e, or an id word without this check pattern in its
// top half, are not the offset server.
constexpr uint32_t kOldestServer = 0x19980005;
constexpr uint32_t kCheckPattern = 0xFADE;
constexpr uint32_t kVersionOffset = 0x3304;
constexpr uint32_t kIdOffset = 0x3308;
constexpr uint32_t kClientVersionOffset = 0x330A;
constexpr int kHandshakeRounds = 5;

constexpr char kServerClass[] = "UIPCMAIN";
constexpr char kWideClientClass[] = "FS98MAIN";
constexpr char kMessageName[] = "FSASMLIB:IPC";
// The mapping name lives in a 24-character field with its closing zero.
constexpr size_t kMappingNameField = 24;

uint32_t LoadWord(const uint8_t* p) {
  uint32_t v;
  std::memcpy(&v, p, 4);
  return v;
}

void StoreWord(uint8_t* p, uint32_t v) {
  std::memcpy(p, &v, 4);
}

}  // namespace

bool FsuipcLink::Fail(int code, int& result) {
  Close();
  result = code;
  return false;
}

bool FsuipcLink::Open(int requestedSim, int& result) {
  if (link_.MapView != nullptr) {
    result = kLinkAlreadyOpen;
    return false;
  }
  link_.FsVersion = 0;
  link_.FsId = 0;

  // The simulator's own server first; WideClient only pretends to be FS98.
  wideClientWindow_ = false;
  HWND window = FindWindowExA(nullptr, nullptr, kServerClass, nullptr);
  if (window == nullptr) {
    window = FindWindowExA(nullptr, nullptr, kWideClientClass, nullptr);
    wideClientWindow_ = window != nullptr;
  }
  if (window == nullptr) {
    result = kLinkNoServer;
    return false;
  }
  link_.FsWindow = window;

  link_.FsMessage = RegisterWindowMessageA(kMessageName);
  if (link_.FsMessage == 0) {
    result = kLinkRegisterFailed;
    return false;
  }

  // A fresh name at every open, so that a block the server still holds from
  // an earlier link is never mistaken for ours.
  ++openCounter_;
  char name[kMappingNameField];
  std::snprintf(name, sizeof name, "%s:%lX:%X", kMessageName, GetCurrentProcessId(), openCounter_);
  mappingName_ = name;
  link_.MapAtom = GlobalAddAtomA(name);
  if (link_.MapAtom == 0) {
    result = kLinkAtomFailed;
    return false;
  }

  SetLastError(ERROR_SUCCESS);
  link_.MapHandle = CreateFileMappingA(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0,
                                       kFsuipcMappingSize, name);
  // A name that already exists is somebody else's block: never reuse it.
  if (link_.MapHandle == nullptr || GetLastError() == ERROR_ALREADY_EXISTS)
    return Fail(kLinkMappingFailed, result);

  link_.MapView = static_cast<uint8_t*>(MapViewOfFile(link_.MapHandle, FILE_MAP_WRITE, 0, 0, 0));
  if (link_.MapView == nullptr) return Fail(kLinkViewFailed, result);
  link_.NextRecord = 0;
  batch_.clear();

  // The server may need a moment after start before it fills its words.
  const uint16_t clientVersion = kClientVersion;
  for (int round = 0; round < kHandshakeRounds && (link_.FsVersion == 0 || link_.FsId == 0);
       ++round) {
    if (!Read(kVersionOffset, 4, &link_.FsVersion, result) ||
        !Read(kIdOffset, 4, &link_.FsId, result) ||
        !Write(kClientVersionOffset, 2, &clientVersion, result) || !Process(result)) {
      const int code = result;
      return Fail(code, result);
    }
    Sleep(timing_.sleepMs);
  }

  if (link_.FsVersion < kOldestServer || (link_.FsId >> 16) != kCheckPattern)
    return Fail(wideClientWindow_ ? kLinkWideClientNoServer : kLinkWrongVersion, result);

  link_.FsId &= 0xFFFF;
  if (requestedSim != 0 && static_cast<int>(link_.FsId) != requestedSim)
    return Fail(kLinkWrongSim, result);

  result = kLinkOk;
  return true;
}

void FsuipcLink::Close() {
  if (link_.MapAtom != 0) {
    GlobalDeleteAtom(link_.MapAtom);
    link_.MapAtom = 0;
  }
  if (link_.MapView != nullptr) {
    UnmapViewOfFile(link_.MapView);
    link_.MapView = nullptr;
  }
  if (link_.MapHandle != nullptr) {
    CloseHandle(link_.MapHandle);
    link_.MapHandle = nullptr;
  }
  link_.FsWindow = nullptr;
  link_.NextRecord = 0;
  batch_.clear();
}

bool FsuipcLink::Queue(uint32_t id, uint32_t offset, uint32_t size, const void* data,
                       void* destination, int& result) {
  if (link_.MapView == nullptr) {
    result = kLinkNotOpen;
    return false;
  }
  const uint32_t header = id == kReadId ? kReadHeader : kWriteHeader;
  if (uint64_t{link_.NextRecord} + header + size + kEndWord > kFsuipcBatchLimit) {
    result = kLinkBatchFull;
    return false;
  }
  uint8_t* record = link_.MapView + link_.NextRecord;
  StoreWord(record, id);
  StoreWord(record + 4, offset);
  StoreWord(record + 8, size);
  if (id == kReadId) {
    // The destination goes to the server as the protocol expects, but the
    // reply is copied through the queue's own copy of it.
    StoreWord(record + 12,
              static_cast<uint32_t>(reinterpret_cast<uintptr_t>(destination) & 0xFFFFFFFFu));
    std::memset(record + header, 0, size);
  } else if (data != nullptr) {
    std::memcpy(record + header, data, size);
  } else {
    std::memset(record + header, 0, size);
  }
  link_.NextRecord += header + size;
  batch_.push_back(Queued{id, offset, size, destination});
  result = kLinkOk;
  return true;
}

bool FsuipcLink::Read(uint32_t offset, uint32_t size, void* destination, int& result) {
  return Queue(kReadId, offset, size, nullptr, destination, result);
}

bool FsuipcLink::Write(uint32_t offset, uint32_t size, const void* source, int& result) {
  return Queue(kWriteId, offset, size, source, nullptr, result);
}

bool FsuipcLink::ReplyMatches(const std::vector<Queued>& batch) const {
  // Positions come from the batch as sent, so a damaged reply can never lead
  // the walk outside the block.
  uint32_t at = 0;
  for (const Queued& q : batch) {
    const uint8_t* record = link_.MapView + at;
    if (LoadWord(record) != q.id || LoadWord(record + 4) != q.offset ||
        LoadWord(record + 8) != q.size)
      return false;
    at += (q.id == kReadId ? kReadHeader : kWriteHeader) + q.size;
  }
  return LoadWord(link_.MapView + at) == 0;
}

bool FsuipcLink::Process(int& result) {
  if (link_.MapView == nullptr) {
    result = kLinkNotOpen;
    return false;
  }
  if (link_.NextRecord == 0) {
    result = kLinkNothingQueued;
    return false;
  }
  StoreWord(link_.MapView + link_.NextRecord, 0);
  link_.NextRecord = 0;
  std::vector<Queued> batch;
  batch.swap(batch_);

  DWORD_PTR reply = 0;
  for (int attempt = 0;; ++attempt) {
    SetLastError(ERROR_SUCCESS);
    if (SendMessageTimeoutA(static_cast<HWND>(link_.FsWindow), link_.FsMessage, link_.MapAtom, 0,
                            SMTO_ABORTIFHUNG, timing_.timeoutMs, &reply) != 0)
      break;
    const DWORD error = GetLastError();
    if (attempt >= timing_.retries) {
      // A server that is there but silent timed out; any other error means
      // the message could not be delivered at all (the window is gone).
      result = error == ERROR_SUCCESS || error == ERROR_TIMEOUT ? kLinkTimeout : kLinkSendFailed;
      return false;
    }
    Sleep(timing_.sleepMs);
  }

  if (reply != kServerAccepted || !ReplyMatches(batch)) {
    result = kLinkBadData;
    return false;
  }
  uint32_t at = 0;
  for (const Queued& q : batch) {
    const uint32_t header = q.id == kReadId ? kReadHeader : kWriteHeader;
    if (q.id == kReadId && q.destination != nullptr && q.size != 0)
      std::memcpy(q.destination, link_.MapView + at + header, q.size);
    at += header + q.size;
  }
  result = kLinkOk;
  return true;
}

}  // namespace vantoro
