// The rules of the polling tick that move the flight mode and watch the
// flight as a whole: beginning a flight, the abnormal-situation tests, the
// hot keys, the automatic mode changes, the touchdown test and the
// simulation-rate and autopilot penalties. FSPolling calls them in the order
// of the tick; each takes the cockpit and changes only what it says.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "engine/polling.h"
#include "records/flight_stats.h"

namespace vantoro {

// Thresholds of the tick, in ticks (0.5 s), feet and knots.
inline constexpr int32_t kReadErrorLimit = 10;        // failed reads before the link is dropped
inline constexpr int32_t kAbnormalGraceTicks = 10;    // no abnormal test right after the start
inline constexpr int32_t kWarmUpBeforeJumps = 6;      // decoded ticks before a jump counts
inline constexpr int32_t kTrackEveryTicks = 4;        // the ground track spans four ticks
inline constexpr int32_t kSwitchTipsAfterTicks = 10;  // switch remarks wait for the first reads
inline constexpr int32_t kNormalSimRate = 256;        // simulation rate x 256
inline constexpr int32_t kSimRateZeroScoreTicks = 20;
inline constexpr int32_t kAutoPilotPenaltyTicks = 40;
inline constexpr int32_t kClockJumpSeconds = 60;  // flight time jumping more is a new time

// The status line's first line of an automatic disconnection.
inline constexpr std::string_view kAutoDisconnection = "AUTO-Disconnection due to:";

// The flight modes; None is the parked state before the first valid tick.
enum class FlightMode { None, Taxiing, TakeOff, Cruise, Landing };

// "Taxiing", "TakeOff", "Cruise", "Landing", "none".
const char* FlightModeName(FlightMode mode);
FlightMode CurrentMode(const ModeFlags& modes);

// Makes `mode` the only mode. On a change: the cruise targets return to
// "not set", entry into Landing stores LandingModeEntryTime, the message
// line's mode text follows and the observers hear of it.
void SetFlightMode(Cockpit& c, FlightMode mode);

// The aircraft in the simulator as the type tests and the profiles see it.
AircraftIdentity IdentityOf(const Cockpit& c);

// The number of engines with combustion.
int32_t EnginesFiring(const FSData& now);

// The levels of a remark's caption.
inline constexpr int kNoRemark = 0;
inline constexpr int kAmber = 1;  // the early warning, which costs nothing
inline constexpr int kRed = 2;    // a fault

// How a piece of advice reaches the loudspeaker: queued through its family's
// gap (PlayPerhaps), at once ahead of everything queued through the gap
// (PlayAndPurge), or queued with no gap (PlayAlways).
enum class Delivery { Perhaps, AtOnce, Always };

// The one path of every remark of the rules: the sound delivered, and when it
// was (its gap had run), the caption remark at `level` and one more occasion
// on the `occasion` counter. True when the advice was given, so that a rule
// can go on with what follows it.
bool Advise(Cockpit& c, Delivery how, std::string_view file, int id, int gap, int expiry, int level,
            FlightCounter occasion = nullptr);
// The common case: queued through the family's gap.
inline bool GiveAdvice(Cockpit& c, std::string_view file, int id, int gap, int expiry, int level,
                       FlightCounter occasion = nullptr) {
  return Advise(c, Delivery::Perhaps, file, id, gap, expiry, level, occasion);
}
// A counter that counts ticks, not occasions.
void CountTick(Cockpit& c, FlightCounter counter);

// A line of text in the simulator's message window.
void ShowMessage(Cockpit& c, std::string_view text, int seconds);

// A switch that has just changed explains itself, when the pilot wants
// spoken tips on switches.
void SpokenSwitchTips(Cockpit& c);

// The status line; the observers hear of each change.
void SetStatus(Cockpit& c, std::string text);

// --- Connection (connection.cpp) ---

// The version word of the simulator's interface module as the window shows
// it: four nibbles with the point after the first, and a letter for a
// non-zero low word ("4.800", "3.220c").
std::string LinkVersionText(uint32_t version);
// Ends the connection and shows why in the status line.
void AutoDisconnect(Cockpit& c, std::string_view cause);
// A failed read or process: "Failed Read - " or "Failed Process - " and the
// link's words, one more read error.
void LinkFailure(Cockpit& c, std::string_view words, int result);

// --- Hot keys (hotkeys.cpp) ---

// The hot keys act, in the order of the tick.
void HotKeysAct(Cockpit& c);
void ClearPressedKeys(FlightState& f);

// --- Flight modes (modes.cpp) ---

void BeginFlight(Cockpit& c);
void AdvanceFlightMode(Cockpit& c);
void BackUpFlightMode(Cockpit& c);
// Cruise asked for by the pilot, with its sounds: "Cruise...", "Cruise.wav"
// and, with no error so far, "FlightGoodSoFar.wav".
void EnterCruiseByRequest(Cockpit& c, int seconds);
void AutoDetectCruise(Cockpit& c);
void AutoDetectLanding(Cockpit& c);
void GoodSoFarRemarks(Cockpit& c);
void LiftOffTest(Cockpit& c);
// On the ground after a touchdown, slow enough: the landing is detected.
void LandingOnGround(Cockpit& c);
// Landing gives way to Taxiing once the roll-out is slow.
void LeaveLanding(Cockpit& c);
// Taxiing at take-off speed before the first touchdown is a take-off.
void TaxiSpeedTakeOff(Cockpit& c);
// A take-off that sinks back below 20 feet becomes a landing, silently.
void TooLowSetsLanding(Cockpit& c);
// Restarts the flight clock (and the clock-jump test's memory of it).
void RestartFlightTimer(Cockpit& c);

// --- Abnormal situations (abnormal.cpp) ---

// The crash, aircraft-change and jump tests; true when the connection ended.
bool AbnormalSituationTests(Cockpit& c);
// The simulator's crash flag: the crash is declared with the given sound
// (the water variant on water); true when the connection ended.
bool DeclareCrash(Cockpit& c, std::string_view sound);
// The simulator's crash flag, tested again past the gate.
bool CrashFlagTest(Cockpit& c);
// "UNKNOWN AIRCRAFT!! - Estimating profile..." once, for an estimated profile.
void UnknownAircraftNotice(Cockpit& c);
// The simulator's clock jumped: true when the connection ended.
bool ClockJumpTest(Cockpit& c);

// --- Touchdown (touchdown.cpp) ---

void TouchdownTest(Cockpit& c);

// --- Penalties (penalties.cpp) ---

void SimulationRatePenalty(Cockpit& c);
void AutoPilotPenalty(Cockpit& c);

}  // namespace vantoro
