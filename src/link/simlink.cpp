#include "link/simlink.h"

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

}  // namespace vantoro
