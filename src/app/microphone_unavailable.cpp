// The microphone on Windows: the recogniser and the capture are not part of
// the Windows build yet, so listening is refused with the reason and the
// voice commands stay with the hot keys.
#include <utility>

#include "app/microphone.h"

namespace vantoro {

struct MicrophoneListener::Parts {};

MicrophoneListener::MicrophoneListener(Heard heard, std::string device)
    : heard_(std::move(heard)), device_(std::move(device)) {}

MicrophoneListener::~MicrophoneListener() = default;

bool MicrophoneListener::Start(std::string& error) {
  error = "voice commands by microphone are not in the Windows program yet; use the hot keys";
  return false;
}

void MicrophoneListener::Stop() {}

void MicrophoneListener::Capture() {}

}  // namespace vantoro
