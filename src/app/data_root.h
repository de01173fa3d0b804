// Where the live program keeps its data: the shipped data folder beside the
// program when the pilot may write there, else a folder of his own
// (~/.local/share/vantoro or $XDG_DATA_HOME/vantoro on Linux,
// %APPDATA%\Vantoro on Windows) that is seeded with a copy of the shipped
// data the first time.
#pragma once

#include <string>

namespace vantoro {

// The per-user folder of the platform (platform_*.cpp); "" when there is none.
std::string UserDataFolder();

// The data root to use. `shipped` is the data folder beside the program ("" if
// none). Returns "" with `error` set when there is no usable folder; `note`
// tells of a first copy made.
std::string ChooseDataRoot(const std::string& shipped, const std::string& userFolder,
                           std::string& note, std::string& error);

}  // namespace vantoro
