// Checklists: the one list that fits the phase of the flight and the type of
// aircraft, read aloud when the pilot asks for it, and the run-up monitor of
// the piston engines.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "engine/polling.h"

namespace vantoro {

// A list as the type's folder holds it: its title and its recording
// ("c182\zPro_ListColdAndDark.wav"), with its sound family.
struct CheckList {
  std::string title;
  std::string file;
  int id = 0;
  bool operator==(const CheckList&) const = default;
};

// The list that fits this tick for the active type, tested in the fixed
// order of the types, then of the phases; none for an aircraft without
// lists of its own or a phase without one.
std::optional<CheckList> ChooseCheckList(const Cockpit& c);

// The checklist key: the list that fits is read and its title shown as
// "Checklist: " + title.
void ProcessCheckLists(Cockpit& c);
// The same choice without sound: `text` with the title appended.
std::string ProcessNextCheckList(const Cockpit& c, std::string text);
// Every tick: the title the key would read, for the status line and the app,
// and whether the aircraft has flown since it was last cold and dark.
void UpdateNextCheckList(Cockpit& c);
// "last check list": the last list read is read again.
void RepeatLastCheckList(Cockpit& c);

// A piston aircraft braked at a standstill: each engine whose magneto check
// has just ended at run-up power is told complete, then the whole run-up.
void CheckIfRunUpComplete(Cockpit& c);

}  // namespace vantoro
