// The two penalties of a whole flight: a simulation rate other than normal
// (the score becomes zero after ten seconds of it) and the autopilot outside
// its allowed bands (the score loses a third after twenty seconds).
#include "engine/tick_rules.h"
#include "records/flight_stats.h"

namespace vantoro {

namespace {

constexpr int kQuestionSeconds = 4;
constexpr int kPenaltySeconds = 8;

// Heights above which the autopilot may fly.
constexpr double kAutoPilotCruiseLight = 950;
constexpr double kAutoPilotTakeOffHeavy = 600;
constexpr double kAutoPilotLandingHeavy = 900;

}  // namespace

void SimulationRatePenalty(Cockpit& c) {
  FlightState& f = c.flight;
  const FSData& now = c.link.Now();
  if (now.SimRate == kNormalSimRate) return;
  FlightStats& flight = f.Flight();
  if (flight.AbnormalSimRateTicks < kSimRateZeroScoreTicks)
    GiveAdvice(c, "SimulationRateIsWrong.wav", 82, 30, 8, 1);
  if (c.link.Before().SimRate == kNormalSimRate)
    ShowMessage(c, "Do you *want* an abnormal simulation rate?", kQuestionSeconds);
  CountTick(c, &FlightStats::AbnormalSimRateTicks);
  if (flight.AbnormalSimRateTicks == kSimRateZeroScoreTicks)
    ShowMessage(c, "Score will be zero due to abnormal simulation rate.", kPenaltySeconds);
}

void AutoPilotPenalty(Cockpit& c) {
  FlightState& f = c.flight;
  const FSData& now = c.link.Now();
  const ModeFlags m = f.Modes;
  const bool heavy = c.link.HeavyAircraft;
  const bool allowed = (m.Cruise && !heavy && now.AGL > kAutoPilotCruiseLight) ||
                       (m.TakeOff && heavy && now.AGL > kAutoPilotTakeOffHeavy) ||
                       (m.Cruise && heavy) ||
                       (m.Landing && heavy && now.AGL > kAutoPilotLandingHeavy);
  if (allowed) return;
  if (now.AutopilotOn && !c.link.Before().AutopilotOn)
    ShowMessage(c, "Do you *want* AutoPilot on?", kQuestionSeconds);
  if (!now.AutopilotOn) return;
  FlightStats& flight = f.Flight();
  CountTick(c, &FlightStats::AutoPilotTicks);
  if (flight.AutoPilotTicks == kAutoPilotPenaltyTicks)
    ShowMessage(c, "Score loses 33% due to AutoPilot.", kPenaltySeconds);
}

}  // namespace vantoro
