// How the rules of the tick speak and show: advice through the sound gate
// with its remark, and text lines in the simulator's message window.
#include "engine/tick_rules.h"

namespace vantoro {

namespace {

// Bits of the lights switches.
constexpr int32_t kNavigationLights = 1;
constexpr int32_t kBeacon = 2;

}  // namespace

bool Advise(Cockpit& c, Delivery how, std::string_view file, int id, int gap, int expiry, int level,
            FlightCounter occasion) {
  Voice v = c.voice();
  bool given = true;
  switch (how) {
    case Delivery::Perhaps:
      given = PlayPerhaps(v, file, id, gap, expiry);
      break;
    case Delivery::AtOnce:
      given = PlayAndPurge(v, file, id, gap);
      break;
    case Delivery::Always:
      PlayAlways(v, file);
      break;
  }
  if (!given) return false;
  if (level > kNoRemark) ShowRemark(v, file, level);
  if (occasion != nullptr) Count(c.flight.Flight(), occasion, c.events, c.flight.TickCount);
  return true;
}

void CountTick(Cockpit& c, FlightCounter counter) {
  Count(c.flight.Flight(), counter, c.events, c.flight.TickCount);
}

void ShowMessage(Cockpit& c, std::string_view text, int seconds) {
  Voice v = c.voice();
  DisplayFSMessage(v, text, seconds);
}

void SpokenSwitchTips(Cockpit& c) {
  if (c.flight.TickCount <= kSwitchTipsAfterTicks) return;
  if (c.options.SpokenTipsSwitches) {
    const int32_t changed = c.link.Now().Lights ^ c.link.Before().Lights;
    Voice v = c.voice();
    if (changed & kNavigationLights) PlayPerhaps(v, "raxnl.wav", 25, 60, 16);
    if (changed & kBeacon) PlayPerhaps(v, "raxbl.wav", 26, 60, 16);
    // The other switches' remarks join these, one "rax" recording each (spoken tips).
  }
  // The nearest airport is announced here above 800 feet in the air, when the
  // pilot asks for it (SayNearestAirportAutomatically).
}

}  // namespace vantoro
