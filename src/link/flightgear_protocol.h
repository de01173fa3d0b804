// FlightGear's side of the link, without the sockets: the generic-protocol
// output definition that makes FlightGear stream the aircraft's properties
// as one line of tab-separated fields per UDP packet, and the decoder of
// such a line into the simulator's state. The definition and the decoder
// are built from one table of fields, so they cannot disagree.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "link/sim_state.h"

namespace vantoro {

// The protocol's name: fgfs --generic=socket,out,10,HOST,PORT,udp,vantoro
// reads Protocol/vantoro.xml.
inline constexpr const char* kFlightGearProtocolName = "vantoro";
inline constexpr int kFlightGearDataPort = 5500;
inline constexpr int kFlightGearTelnetPort = 5501;

enum class FlightGearType { Bool, Int, Double, String };

struct FlightGearField {
  const char* name;  // the chunk's name in the definition
  const char* node;  // the property
  FlightGearType type;
  double low, high;  // a number outside is a damaged packet
};

// Every field of the line, in order.
const std::vector<FlightGearField>& FlightGearFields();

// The generic-protocol output definition (Protocol/vantoro.xml).
std::string FlightGearProtocolXml();

// Decodes FlightGear's lines. It remembers across packets only which
// engines have been seen turning: FlightGear does not say how many engines
// an aircraft has, so an engine counts once it has turned.
class FlightGearDecoder {
 public:
  // Fills `state` from one packet. False, with the reason in `error` and
  // `state` untouched, when the packet is not one whole line of the
  // definition's fields in range.
  bool Decode(std::string_view packet, SimulatorState& state, std::string& error);

 private:
  int enginesSeen_ = 1;
};

class OffsetImage;

// The property FlightGear shows as a white line on the screen.
inline constexpr const char* kFlightGearScreenMessage = "/sim/screen/white";

// The failure manager's failure mode of the simulator's failure flag at
// 0x0B64 + index (0..15), "instrumentation/altimeter"; empty where
// FlightGear has no such failure.
std::vector<std::string> FlightGearFailureModes(int index);

// The telnet lines that carry the instructor's write of `bytes` to `offset`
// ("set /instrumentation/nav[0]/radials/selected-deg 93\r\n"), reading the
// image (which already holds the write) for values written in parts. Empty,
// with what has no equivalent in `missing`, where FlightGear has none; empty
// and no `missing` for a write that needs no line (the message's seconds).
std::string FlightGearSetLines(const OffsetImage& image, uint32_t offset,
                               const std::vector<uint8_t>& bytes, std::string& missing);

}  // namespace vantoro
