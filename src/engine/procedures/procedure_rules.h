// What the rules of the aircraft procedures share: the guard of the rules
// that read panel switches, the phases of the flight as the procedures see
// them, and the two ways a rule speaks (plain advice, and advice that is also
// explained). Only the files of src/engine/procedures/ include this.
#pragma once

#include <cstdint>
#include <string_view>

#include "engine/procedures.h"
#include "engine/tick_rules.h"

namespace vantoro::procedures {

// Lights bit of the panel (instrument) lights.
inline constexpr int32_t kPanelLights = 32;

// Starter switch words: a jet's starter at 1 is starting; a piston's
// magneto switch at 3 is both magnetos, 4 the starter.
inline constexpr int32_t kJetStarterStart = 1;
inline constexpr int32_t kPistonBothMagnetos = 3;
inline constexpr int32_t kPistonStarter = 4;

// Flaps out: the indicator above this.
inline constexpr int32_t kFlapsOut = 255;
// A flap position's upper bound is its FlapAngleLimit plus this margin.
inline constexpr int32_t kFlapMargin = 245;

// Rules that read panel switches (autopilot, pumps, hydraulics, signs) run
// only on the simulator's own panels: add-on panels do not drive the
// standard offsets (RunningFSX, NotPMDG, NotFeelThere).
bool PanelRules(const Cockpit& c);

// Parked after a flight: parking brake set in this and the last sample,
// taxi mode, landed, and airborne this flight.
bool ShutDownMode(const Cockpit& c);
// The same without the brake: taxiing in after a flight.
bool TaxiingInMode(const Cockpit& c);
// Take-off mode, altitude and height both more than 3 feet up on the last sample.
bool Climbing(const Cockpit& c);
// Landing mode, altitude and height both more than 3 feet down.
bool Descending(const Cockpit& c);
bool Airborne(const Cockpit& c);

// Engine 1 or 2 has combustion.
inline bool Firing(const FSData& d, int engine) {
  return engine == 1 ? d.Eng1Combustion : d.Eng2Combustion;
}

inline bool Within(double value, double low, double high) {
  return value >= low && value <= high;
}
// From below `level` in the last sample to `level` or above in this one.
inline bool CrossedUp(double before, double now, double level) {
  return before < level && now >= level;
}

// The advice through its family's gap; a rule whose type has no such phrase
// (nullptr) says nothing. True when it was given.
bool Say(Cockpit& c, const char* file, int id, int gap, int expiry);
// The same, and explained (ExplainAdvice).
bool Teach(Cockpit& c, const char* file, int id, int gap, int expiry);

// With the aviation tips wanted, a piece of advice just given is explained:
// its words stay in the simulator's message window.
void ExplainAdvice(Cockpit& c, std::string_view file);

// The gap of a repeated reminder: the pilot's reminder interval divided.
int32_t ReminderGap(const Cockpit& c, int divisor);

// Flight time in seconds (GetFlightTime).
int32_t FlightTime(const Cockpit& c);

// --- The jets and the turboprops and the DC3's limits (jets.cpp) ---

// 1: take-off limits of 737, Lear 45, CRJ700, DC3, 757, Twin Otter.
void CheckTakeOffLimitsJets(Cockpit& c);
// 4: systems from start to stop.
void CheckSystemsJets(Cockpit& c);
// 5: engine start of the CRJ700 and the Twin Otter.
void CheckStartCRJ700(Cockpit& c);
void CheckStartOtter(Cockpit& c);
// 8: the take-off speed boxes and their calls.
void VSpeeds(Cockpit& c);
void CallOutTakeOffSpeeds(Cockpit& c);
// 9 and 10: the take-off roll and the flight of the jets and the Otter.
void CheckTakeOffRollJets(Cockpit& c);
void CheckInFlightJets(Cockpit& c);
// The generator switches of each engine, for 737, 757, Lear, CRJ, King Air, DC3.
void EnginegeneratorSwitches(Cockpit& c);
// The 737 and its kind: one of the four jets with its box checked.
bool JetOwnsGenerators(const Cockpit& c);

// --- The propeller aircraft (props.cpp) ---

void CheckStartProps(Cockpit& c);
void CheckMixtureForStart(Cockpit& c);
void CheckEngineRunningProps(Cockpit& c);
void CheckTakeOffRollProps(Cockpit& c);
void CheckInFlightProps(Cockpit& c);
void CheckOilPressureProps(Cockpit& c);
// The DC3's and the Twin Otter's flap limits low on the approach.
void LandingFlapLimits(Cockpit& c);

// --- Rules of several types (singles.cpp) ---

void CheckGeneralGroundAndFinal(Cockpit& c);
void CheckCarbHeat(Cockpit& c);
void CheckCowlFlaps(Cockpit& c);
void CheckPropsForLanding(Cockpit& c);
void CheckBeginCruise(Cockpit& c);

}  // namespace vantoro::procedures
