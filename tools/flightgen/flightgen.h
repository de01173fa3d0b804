// The flight generator: turns a short script of flight phases into a
// recording whose offsets move together as a real aircraft's would (position
// along the great circle of its heading and ground speed, heights, speeds,
// attitude, on-ground, engine, flaps, gear and the simulator's clock). Tests
// make their scenario flights with it; the demo flight is made with it.
// The script format is described at the top of tools/flightgen/flightgen.cpp and in
// data/Recordings/README.md.
#pragma once

#include <string>
#include <string_view>

namespace vantoro {

// Generates the recording text from a script. `name` is the script's file
// name, used in error messages ("NAME:LINE: what is wrong") and in the
// recording's heading comment. On failure returns false, `error` set and
// `recording` empty.
bool GenerateFlight(std::string_view name, std::string_view script, std::string& recording,
                    std::string& error);

}  // namespace vantoro
