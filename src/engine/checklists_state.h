// What the checklists keep between ticks: the list being read, the item
// reached and the lists already done this flight. Filled as the checklist
// rules land.
#pragma once

namespace vantoro {

struct ChecklistsState {
  bool operator==(const ChecklistsState&) const = default;
};

}  // namespace vantoro
