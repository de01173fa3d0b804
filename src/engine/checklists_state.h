// What the checklists keep between ticks: the list the checklist key would
// read now, the last list read (for "last check list") and whether the
// aircraft has flown since it was last cold and dark. The run-up flags are
// per flight and live in the flight's record.
#pragma once

#include <string>

namespace vantoro {

struct ChecklistsState {
  // The title of the list that fits this tick ("Taxi In", "Run up"...), ""
  // when none does: the status line and the app show it.
  std::string NextTitle;
  // The recording and title of the last list the pilot asked for.
  std::string LastFile;
  std::string LastTitle;
  // The aircraft has been in the air since it was last cold and dark: the
  // taxi-in and shut-down lists need it, the start list needs it clear.
  bool BeenAirborne = false;

  bool operator==(const ChecklistsState&) const = default;
};

}  // namespace vantoro
