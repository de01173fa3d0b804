// What the voice commands and hot keys keep between ticks beyond the
// pressed key itself (FlightState::VoiceAction): the microphone key's state
// and the last phrase heard. Filled as the voice commands land.
#pragma once

namespace vantoro {

struct VoiceCommandsState {
  bool operator==(const VoiceCommandsState&) const = default;
};

}  // namespace vantoro
