// Files as the instructor sees them. Paths inside the system are built with
// "\" separators ("Sound\" + instructor + "\" + file), as on the simulator's
// own platform; they are turned into native paths only when the file system
// is touched. Lookups ignore case, since recordings and rules name the same
// file in different cases ("Touchdown.WAV", "touchdown.wav").
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vantoro {

// "\" and "/" both become the native separator.
std::string NativePath(std::string_view path);

// The existing file or folder that matches path when case is ignored in each
// component, or nullopt when there is none.
std::optional<std::string> FindNoCase(std::string_view path);

bool FileExists(std::string_view path);    // a regular file, case ignored
bool FolderExists(std::string_view path);  // a folder, case ignored

// Whole file as bytes; empty when missing or unreadable (a folder where the
// file should be included).
std::string ReadFile(std::string_view path);
// Whole file as bytes, or nullopt when it is missing or cannot be read, so
// that a caller can tell an empty file from a failed read. `why`, when given,
// receives "PATH: cannot be read (the system's reason)" for a file that is
// there but cannot be read, and stays empty for a missing one.
std::optional<std::string> TryReadFile(std::string_view path, std::string* why = nullptr);

// Replaces the file with exactly these bytes: written to a temporary file in
// the same folder and renamed over the old one, so that a crash mid-write
// leaves either the old or the new file, never a torn one. False on failure.
bool WriteFileAtomic(std::string_view path, std::string_view bytes);

// One file of a set that is written together.
struct FileWrite {
  std::string path;
  std::string bytes;
};
// Writes every file of the set or none: each goes to its temporary file
// first, and only when all are written whole are they renamed over the old
// ones. On failure the temporaries are removed, the old files stand, and the
// answer names the file and the system's reason ("PATH: cannot be written (No
// space left on device)"); empty on success.
std::string WriteFilesTogether(const std::vector<FileWrite>& files);

// The temporary files of those writes end in this.
inline constexpr std::string_view kTemporarySuffix = ".tmp~";
// Removes the temporary files a killed write left in a folder; the number
// removed.
int RemoveStrayTemporaries(std::string_view folder);

// Names of the immediate subfolders (sorted, case-insensitively).
std::vector<std::string> GetFolderList(std::string_view folder);
// Names of the files in a folder whose name ends in `extension` (any case;
// empty means all), sorted.
std::vector<std::string> GetFileList(std::string_view folder, std::string_view extension = {});

// Path helpers over "\" separated paths (a "/" counts as a separator too).
std::string GetFolder(std::string_view path);    // up to and including the last separator
std::string GetFileName(std::string_view path);  // after the last separator
std::string LastFolder(std::string_view path);   // name of the folder holding the file
std::string TidyFolder(std::string_view path);   // with a trailing "\" added if missing
std::string GetFileExtension(std::string_view path);
std::string RemoveFileExtension(std::string_view path);

}  // namespace vantoro
