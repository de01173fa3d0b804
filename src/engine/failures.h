// Failures: the instructor breaks things to train the pilot, by writing the
// simulator's own failure flags and switches, so that the failure is real in
// the simulator. How often is the pilot's choice of reliability R (the
// failure slider, 100 never fails): each tick's draw acts with a chance that
// falls with R squared. Whatever fails, by these draws, by the pilot or by
// the simulator's own failure menu, is timed, listed with its Zulu time for
// the landing report, and noticed aloud when the pilot wants it.
//
// Every draw goes through the cockpit's Random, so a replay with the same
// seed fails the same things at the same ticks.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "engine/polling.h"

namespace vantoro {

// The sixteen failure bytes of the simulator, 0x0B64 to 0x0B73, in order.
inline constexpr size_t kFailures = 16;
inline constexpr size_t kFailEngineIndex = 7;     // 0x0B6B, the engines
inline constexpr size_t kFailElectricsIndex = 6;  // 0x0B6A

// The names of one failure: in the simulator's message line, in the landing
// report's event list, and the notice the instructor speaks ("" for the
// engines, whose loss has announcements of its own).
struct FailureNames {
  const char* message;
  const char* event;
  const char* notice;
};
const FailureNames& FailureNamesOf(size_t index);

// The write path of the failures: one byte at simulator offset `position` +
// 0x20, `position` being the offset's place in the record buffer (offset less
// 32), as the failure table and the switch offsets are kept. FailThis writes
// 1 unless told otherwise, FixThis 0.
void FailThis(Cockpit& c, uint32_t position, uint8_t value = 1);
void FixThis(Cockpit& c, uint32_t position, uint8_t value = 0);

// Engine n (1..4) failed or working again, by its bit in the per-engine
// failure byte (0x32F8); the byte last written is kept between ticks.
void FailEngine(Cockpit& c, int n);
void FixEngine(Cockpit& c, int n);
// Engine n, when it is there and burning fuel, catches fire: its bit in the
// fire byte (0x3366) with the engines already burning, and 16.
void FireEngine(Cockpit& c, int n);
// One engine drawn at random catches fire.
void FireRandomEngine(Cockpit& c);
// Birds into an engine: one engine drawn at random fails through the
// per-engine failure byte. Returns the engine, 0 for an aircraft without one.
int BirdStrike(Cockpit& c);

// One instrument or system fails, drawn at random; the engines only one time
// in ten. The message line says what ("ASI FAILURE!", "2 ENGINE FAILURE!").
void RandomFailure(Cockpit& c);
// The same draw, mending instead ("ASI is now functioning!").
void RandomFix(Cockpit& c);

// The tick's failure timers, after the flight has begun: the seconds each
// failure has been active, the pilot's notice of what has just failed, and
// the event list of the landing report.
void CountFailureSeconds(Cockpit& c);
void AnnounceIFInstructorNoticesFailures(Cockpit& c);
void BuildFailureEventList(Cockpit& c);

// In the air, an engine that has stopped burning: the loss is announced,
// with the type's best glide speed when the last engine is gone.
void AnnounceEngineLossAirborne(Cockpit& c);

// On the take-off run and climb below 1000 feet, an engine may catch fire.
void RandomEngineFire(Cockpit& c);
// Each tick in the air: the draw of the in-flight failures table.
void RandomFailures(Cockpit& c);

}  // namespace vantoro
