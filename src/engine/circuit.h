// Circuit training: the left-hand traffic pattern flown from a reference
// point. The pilot asks for it on the ground; from the take-off on the
// instructor follows Upwind, Crosswind, Downwind, Base and Final, advises and
// counts the errors that the circuit score reads at the landing.
#pragma once

#include <string_view>

#include "engine/polling.h"

namespace vantoro {

// The texts of the circuit key. Circuits are a reward: they are open once a
// landing has scored above 70 and a flight above 80 (the marker files).
inline constexpr std::string_view kCircuitsNeedBothScores =
    "Please achieve a Landing Score above 70 and a Flight Score above 80 to enable circuits.";
// Shown when only the flight's marker is missing: the wording names the
// landing score, and the flight-score text below is never shown.
inline constexpr std::string_view kCircuitsNeedLandingScore =
    "Please achieve a Landing Score above 70 to enable circuits.";
inline constexpr std::string_view kCircuitsNeedFlightScore =
    "Please achieve a Flight Score above 80 to enable circuits.";
inline constexpr std::string_view kCircuitsOff = "You don't want to fly circuits";
inline constexpr std::string_view kCircuitsStartOnGround =
    "If you want to fly circuits - start on the ground.";
inline constexpr std::string_view kCircuitsOn =
    "You want to fly circuits. Circuit reference point is HERE. LAND HERE!";

// The circuit key (4 or 10).
void CircuitHotKey(Cockpit& c);
// At lift-off, whether circuits are on or not: Upwind begins, the leg
// headings are fixed from NAV1's OBS and the take-off altitude kept.
void TakeCircuitReference(Cockpit& c);
// Each tick in the air (and on the touchdown tick) with circuits on: the
// five legs in one pass, with their advice and counters.
void CircuitMonitors(Cockpit& c);
// The leg the message line and the app show: "Base  ", ... or "".
const char* CircuitLegText(const CircuitState& s);

}  // namespace vantoro
