// Recording a flight from a simulator link, as vantoro-cli record does: the
// link is opened as the instructor opens it, the computer's clock is noted,
// and each sample writes the bytes that changed since the one before.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "base/seams.h"
#include "link/simlink.h"

namespace vantoro {

// Opens the link and takes up to maxTicks samples (0: until the link fails),
// calling `before` ahead of each one; `before` returning false ends the
// recording (the live command waits half a second there). A link that will
// not open gives false and its result text in `error`; a link that fails
// later ends the recording with what was taken so far.
bool RecordFlight(SimLink& link, const Clock& clock, int64_t maxTicks,
                  const std::function<bool()>& before, std::string& text, std::string& error);

}  // namespace vantoro
