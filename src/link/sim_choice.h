// Which simulator link to fly with: "fsuipc" (the offset server, Windows),
// "flightgear" or "xplane", with the simulator's host and port where it
// runs elsewhere. The pilot chooses in the settings or with --sim.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "link/simlink.h"

namespace vantoro {

struct SimChoice {
  std::string name;  // empty: the platform's own (the offset server on Windows)
  std::string host;  // empty: this machine
  int port = 0;      // 0: the simulator's usual port
};

// The link for `choice`, or null with the reason in `error` (an unknown name,
// a link this platform has not).
std::unique_ptr<SimLink> MakeSimulatorLink(const SimChoice& choice, std::string& error);

// FlightGear reads its protocols from Protocol/ in its data folder: the
// folders where it may be installed, $FG_ROOT first.
std::vector<std::string> FlightGearDataFolders();

// Puts the protocol definition (`definition`, the text of
// data/FlightGear/vantoro.xml) into Protocol/ of the first FlightGear data
// folder found, unless the same file is there already. Returns what the
// pilot is told: where it went, or why it could not and what to do.
std::string InstallFlightGearProtocol(const std::string& definition,
                                      const std::vector<std::string>& folders);

}  // namespace vantoro
