#include "link/simlink.h"

#include <cstdio>

namespace vantoro {

const char* LinkResultText(int result) {
  static const char* const kTexts[] = {
      "Okay",
      "Attempt to Open when already Open",
      "Cannot link to FSUIPC or WideClient",
      "Failed to Register common message with Windows",
      "Failed to create Atom for mapping filename",
      "Failed to create a file mapping object",
      "Failed to open a view to the file map",
      "Incorrect version of FSUIPC, or not FSUIPC",
      "Sim is not version requested",
      "Call cannot execute, link not Open",
      "Call cannot execute: no requests accumulated",
      "IPC timed out all retries",
      "IPC sendmessage failed all retries",
      "IPC request contains bad data",
      "Maybe running on WideClient, but FS not running on Server, or wrong FSUIPC",
      "Read or Write request cannot be added, memory for Process is full",
  };
  if (result < 0 || result > 15) return "";
  return kTexts[result];
}

const char* SimulatorName(int code, bool p3dMode) {
  static const char* const kNames[] = {"Any",    "FS98",   "FS2K", "CFS2", "CFS1", "FLY",
                                       "FS2002", "FS2004", "FSX",  "ESP",  "P3D"};
  const int last = p3dMode ? 10 : 9;
  if (code < 0 || code > last) return "";
  return kNames[code];
}

uint32_t Shift(uint32_t value, int bits, bool left) {
  if (bits < 0 || bits > 31) return 0;
  return left ? value << bits : value >> bits;
}

std::string FsuipcVersionText(uint32_t fsVersion, char decimalSeparator) {
  static const char kDigits[] = "0123456789ABCDEF";
  std::string text;
  for (int bits = 28; bits >= 16; bits -= 4) {
    text += kDigits[Shift(fsVersion, bits, false) & 0xF];
    if (bits == 28) text += decimalSeparator;
  }
  if ((fsVersion & 0xFFFF) != 0) text += static_cast<char>('a' + (fsVersion & 0xFF) - 1);
  return text;
}

bool WriteToSim(SimLink& link, Events& events, int32_t tick, uint32_t offset, const void* data,
                uint32_t size) {
  int result = kLinkOk;
  if (!link.Write(offset, size, data, result)) return false;
  const bool ok = link.Process(result);
  char where[16];
  std::snprintf(where, sizeof where, "0x%04X", offset);
  std::string hex;
  const auto* p = static_cast<const uint8_t*>(data);
  for (uint32_t i = 0; i < size; ++i) {
    char b[3];
    std::snprintf(b, sizeof b, "%02X", p[i]);
    hex += b;
  }
  events.Emit(tick, "write", {{"offset", std::string(where)}, {"bytes", hex}});
  return ok;
}

}  // namespace vantoro
