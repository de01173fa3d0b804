#include "cli/record.h"

#include "link/recording.h"

namespace vantoro {

bool RecordFlight(SimLink& link, const Clock& clock, int64_t maxTicks,
                  const std::function<bool()>& before, std::string& text, std::string& error) {
  int result = kLinkOk;
  if (!link.Open(0, result)) {
    error = LinkResultText(result);
    return false;
  }
  RecordingWriter writer;
  writer.Clock(clock.Now());
  for (int64_t tick = 0; maxTicks <= 0 || tick < maxTicks; ++tick) {
    if (before && !before()) break;
    if (!writer.Sample(link, result)) {
      writer.Comment(std::string("The link failed: ") + LinkResultText(result));
      break;
    }
  }
  link.Close();
  text = writer.Text();
  return true;
}

}  // namespace vantoro
