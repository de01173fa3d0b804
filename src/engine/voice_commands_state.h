// What the voice commands and hot keys keep between ticks beyond the hot
// key table and the waiting action (FlightState::HotKeys, VoiceAction): the
// airport code being spelled and the last phrase heard.
#pragma once

#include <string>

namespace vantoro {

struct VoiceCommandsState {
  // Letters heard now make an airport code; SpelledCode keeps the last four.
  bool SpellingAirport = false;
  std::string SpelledCode;
  std::string LastPhrase;  // as heard, before trimming

  bool operator==(const VoiceCommandsState&) const = default;
};

}  // namespace vantoro
