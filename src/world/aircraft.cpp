#include "world/aircraft.h"

#include "base/text.h"

namespace vantoro {

bool ProfileIsEstimated(const AircraftValues& a) {
  return Upper(Trim(Right(a.SourceFile, 3))) == "CFG";
}

}  // namespace vantoro
