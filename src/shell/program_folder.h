// Where the program finds its shipped data: the first folder named "data" in
// the running program's folder or above it (in a build tree, the source
// tree's data/). Both front ends, the live program and vantoro-cli, start
// from it.
#pragma once

#include <string>

namespace vantoro {

// `program` is the path the program was started by, used when the system
// does not tell the running program's own file. Empty when there is none.
std::string DataBesideProgram(const std::string& program);

// The running program's own file as the system tells it; "" when it does
// not (program_file_*.cpp, one per platform).
std::string RunningProgramFile();

}  // namespace vantoro
