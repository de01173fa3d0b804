#include "shell/instructor.h"

#include "base/files.h"
#include "engine/voice_actions.h"

namespace vantoro {

Instructor::Instructor(std::string rootFolder, Seams seams)
    : root(TidyFolder(rootFolder)), seams_(seams) {
  if (seams_.events == nullptr) seams_.events = &noEvents_;
  sound.SoundRoot = root;
  InitSound(sound);
  InitHotkeysQWE(flight);
}

Cockpit Instructor::cockpit() {
  return Cockpit{.link = link,
                 .flight = flight,
                 .sound = sound,
                 .aircraft = aircraft,
                 .world = world,
                 .plan = plan,
                 .scores = scores,
                 .approach = approach,
                 .procedures = procedures,
                 .checklists = checklists,
                 .circuit = circuit,
                 .failures = failures,
                 .traffic = traffic,
                 .voiceCommands = voiceCommands,
                 .route = route,
                 .options = options,
                 .root = root,
                 .sim = *seams_.sim,
                 .audio = seams_.audio,
                 .events = *seams_.events,
                 .clock = *seams_.clock,
                 .random = *seams_.random};
}

bool Instructor::Connect() {
  Cockpit c = cockpit();
  if (!flight.Connected) FSConnect(c);
  return ConnectToFS(c);
}

void Instructor::Disconnect() {
  if (!flight.UserConnected) return;
  Cockpit c = cockpit();
  DisconnectFromFS(c, -1);
}

void Instructor::PressHotKey(int slot) {
  flight.VoiceAction = slot;
}

void Instructor::HearPhrase(std::string_view phrase) {
  Cockpit c = cockpit();
  vantoro::HearPhrase(c, phrase);
}

void Instructor::Tick() {
  Cockpit c = cockpit();
  FSPolling(c);
}

void Instructor::SoundStep() {
  Voice v{sound, seams_.audio, seams_.sim, *seams_.events, flight.TickCount};
  SoundTimer(v, 0);
  SoundTimer(v, 1);
}

}  // namespace vantoro
