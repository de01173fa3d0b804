// The state root: one instructor, made of one plain struct per subsystem and
// the seams through which it meets the world. Tests build as many as they
// like; nothing is global.
#pragma once

#include <array>
#include <string>
#include <string_view>

#include "engine/polling.h"
#include "shell/pilot.h"
#include "shell/settings.h"

namespace vantoro {

struct Seams {
  SimLink* sim = nullptr;
  std::array<AudioOut*, 2> audio{};
  Events* events = nullptr;
  const Clock* clock = nullptr;
  Random* random = nullptr;
};

class Instructor {
 public:
  // root: the program's root folder (Sound\, text\, Aircraft\, settings.ini).
  Instructor(std::string root, Seams seams);

  // The Connect button.
  bool Connect();
  // The Disconnect button.
  void Disconnect();
  // The pilot presses hot key `slot` (1..15), or asks for it by voice: it
  // acts in the next tick.
  void PressHotKey(int slot);
  // The recogniser heard a phrase: it acts in the next tick.
  void HearPhrase(std::string_view phrase);
  // One polling tick (500 ms).
  void Tick();
  // One step of the sound timer (125 ms) on both channels.
  void SoundStep();

  Cockpit cockpit();

  LinkState link;
  FlightState flight;
  SoundState sound;
  AircraftValues aircraft;
  WorldState world;
  FlightPlan plan;
  ScoreState scores;
  ApproachRatings approach;
  ProceduresState procedures;
  ChecklistsState checklists;
  CircuitState circuit;
  FailuresState failures;
  TrafficState traffic;
  VoiceCommandsState voiceCommands;
  RouteState route;
  EngineOptions options;
  Settings settings;  // the settings page
  PilotTab pilot;     // the pilot page
  std::string root;

 private:
  Seams seams_;
  NoEvents noEvents_;
};

}  // namespace vantoro
