// The polling tick: read the simulator, decode, test the flight for
// abnormal situations, move the flight mode, run the monitors of the phase in
// their fixed order, swap the records.
#pragma once

#include <array>
#include <string>
#include <string_view>

#include "base/events.h"
#include "base/seams.h"
#include "engine/checklists_state.h"
#include "engine/circuit_state.h"
#include "engine/failures_state.h"
#include "engine/flight_state.h"
#include "engine/options.h"
#include "engine/procedures_state.h"
#include "engine/route_state.h"
#include "engine/traffic_state.h"
#include "engine/voice_commands_state.h"
#include "link/simlink.h"
#include "link/snapshot.h"
#include "records/approach_ratings.h"
#include "records/scores.h"
#include "voice/sound_queue.h"
#include "world/aircraft.h"
#include "world/flight_plan.h"
#include "world/runways.h"

namespace vantoro {

// Everything one tick reads and changes, by reference; the state root builds
// it. Rules inside the tick take only the parts they need.
struct Cockpit {
  LinkState& link;
  FlightState& flight;
  SoundState& sound;
  AircraftValues& aircraft;
  WorldState& world;
  FlightPlan& plan;
  ScoreState& scores;
  ApproachRatings& approach;
  // The memory of the later monitors, one struct each, in tick order.
  ProceduresState& procedures;
  ChecklistsState& checklists;
  CircuitState& circuit;
  FailuresState& failures;
  TrafficState& traffic;
  VoiceCommandsState& voiceCommands;
  RouteState& route;
  const EngineOptions& options;
  // The program's root folder (Aircraft\, World\, settings.ini), ending in "\".
  const std::string& root;
  SimLink& sim;
  std::array<AudioOut*, 2> audio;
  Events& events;
  const Clock& clock;
  Random& random;

  // The voice handle for this tick's TickCount.
  Voice voice() { return Voice{sound, audio, &sim, events, flight.TickCount}; }
};

// One polling tick (every 500 ms).
void FSPolling(Cockpit& c);

// Opens the link and fills the status line; true when connected.
bool FSConnect(Cockpit& c);
// The pilot presses Connect: resets the flights and starts the connection.
bool ConnectToFS(Cockpit& c);
// The connection ends; reason non-zero also shows the end-of-connection text.
// `cause` is told to the observers ("Crash", "Aircraft changed by pilot"...);
// the Disconnect button's cause is "Disconnect".
void DisconnectFromFS(Cockpit& c, int reason, std::string_view cause = "Disconnect");

}  // namespace vantoro
