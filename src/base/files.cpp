#include "base/files.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <system_error>

#include "base/text.h"

namespace fs = std::filesystem;

namespace vantoro {

namespace {

bool IsSep(char c) {
  return c == '\\' || c == '/';
}

size_t LastSep(std::string_view path) {
  for (size_t i = path.size(); i > 0; --i)
    if (IsSep(path[i - 1])) return i - 1;
  return std::string_view::npos;
}

std::string SystemReason(int error) {
  return std::generic_category().message(error);
}

// Writes the bytes to a new file and closes it; the system's error number on
// failure (a full disk shows at the write or at the close), 0 on success.
int WriteWhole(const fs::path& path, std::string_view bytes) {
  std::FILE* f = std::fopen(path.string().c_str(), "wb");
  if (f == nullptr) return errno != 0 ? errno : EIO;
  int error = 0;
  if (!bytes.empty() && std::fwrite(bytes.data(), 1, bytes.size(), f) != bytes.size())
    error = errno != 0 ? errno : EIO;
  if (std::fflush(f) != 0 && error == 0) error = errno != 0 ? errno : EIO;
  if (std::fclose(f) != 0 && error == 0) error = errno != 0 ? errno : EIO;
  return error;
}

}  // namespace

std::string NativePath(std::string_view path) {
  std::string out(path);
  for (char& c : out)
    if (IsSep(c)) c = static_cast<char>(fs::path::preferred_separator);
  return out;
}

std::optional<std::string> FindNoCase(std::string_view path) {
  const std::string native = NativePath(path);
  std::error_code ec;
  if (fs::exists(native, ec)) return native;

  // Walk the path component by component, matching each without case.
  fs::path p(native);
  fs::path built = p.root_path();
  for (const fs::path& part : p.relative_path()) {
    fs::path exact = built.empty() ? part : built / part;
    if (fs::exists(exact, ec)) {
      built = exact;
      continue;
    }
    const fs::path dir = built.empty() ? fs::path(".") : built;
    bool found = false;
    for (fs::directory_iterator it(dir, ec), end; !ec && it != end; it.increment(ec)) {
      if (EqualsNoCase(it->path().filename().string(), part.string())) {
        built = built.empty() ? it->path().filename() : built / it->path().filename();
        found = true;
        break;
      }
    }
    if (!found) return std::nullopt;
  }
  return built.string();
}

bool FileExists(std::string_view path) {
  auto found = FindNoCase(path);
  std::error_code ec;
  return found && fs::is_regular_file(*found, ec);
}

bool FolderExists(std::string_view path) {
  auto found = FindNoCase(path);
  std::error_code ec;
  return found && fs::is_directory(*found, ec);
}

std::string ReadFile(std::string_view path) {
  return TryReadFile(path).value_or(std::string());
}

std::optional<std::string> TryReadFile(std::string_view path, std::string* why) {
  if (why != nullptr) why->clear();
  auto found = FindNoCase(path);
  if (!found) return std::nullopt;
  auto fail = [&](const std::string& reason) -> std::optional<std::string> {
    if (why != nullptr) *why = std::string(path) + ": cannot be read (" + reason + ")";
    return std::nullopt;
  };
  std::error_code ec;
  if (!fs::is_regular_file(*found, ec)) return fail(ec ? ec.message() : "not a file");
  std::FILE* f = std::fopen(found->c_str(), "rb");
  if (f == nullptr) return fail(SystemReason(errno));
  std::string bytes;
  char buffer[64 * 1024];
  size_t n = 0;
  while ((n = std::fread(buffer, 1, sizeof buffer, f)) > 0) bytes.append(buffer, n);
  const int error = std::ferror(f) ? errno : 0;
  std::fclose(f);
  if (error != 0) return fail(SystemReason(error));
  return bytes;
}

bool WriteFileAtomic(std::string_view path, std::string_view bytes) {
  return WriteFilesTogether({{std::string(path), std::string(bytes)}}).empty();
}

std::string WriteFilesTogether(const std::vector<FileWrite>& files) {
  std::vector<fs::path> temporaries;
  auto removeTemporaries = [&] {
    std::error_code ec;
    for (const fs::path& t : temporaries) fs::remove(t, ec);
  };
  // A folder where a file belongs would refuse only its rename, after the
  // others are in place: it is found before anything is written.
  for (const FileWrite& w : files) {
    std::error_code ec;
    if (fs::is_directory(NativePath(w.path), ec))
      return w.path + ": cannot be written (" + SystemReason(EISDIR) + ")";
  }
  for (const FileWrite& w : files) {
    fs::path tmp(NativePath(w.path));
    tmp += kTemporarySuffix;
    if (const int error = WriteWhole(tmp, w.bytes); error != 0) {
      std::error_code ec;
      fs::remove(tmp, ec);
      removeTemporaries();
      return w.path + ": cannot be written (" + SystemReason(error) + ")";
    }
    temporaries.push_back(tmp);
  }
  for (size_t i = 0; i < files.size(); ++i) {
    std::error_code ec;
    fs::rename(temporaries[i], NativePath(files[i].path), ec);
    if (ec) {
      // Only the ones not yet renamed are left to remove.
      temporaries.erase(temporaries.begin(), temporaries.begin() + static_cast<long>(i));
      removeTemporaries();
      return files[i].path + ": cannot be written (" + ec.message() + ")";
    }
  }
  return {};
}

int RemoveStrayTemporaries(std::string_view folder) {
  auto found = FindNoCase(folder);
  if (!found) return 0;
  int removed = 0;
  std::error_code ec;
  for (fs::directory_iterator it(*found, ec), end; !ec && it != end; it.increment(ec)) {
    std::error_code fileEc;
    if (!it->is_regular_file(fileEc) || !EndsWith(it->path().filename().string(), kTemporarySuffix))
      continue;
    if (fs::remove(it->path(), fileEc)) ++removed;
  }
  return removed;
}

std::vector<std::string> GetFolderList(std::string_view folder) {
  std::vector<std::string> out;
  auto found = FindNoCase(folder);
  if (!found) return out;
  std::error_code ec;
  for (fs::directory_iterator it(*found, ec), end; !ec && it != end; it.increment(ec))
    if (it->is_directory(ec)) out.push_back(it->path().filename().string());
  std::sort(out.begin(), out.end(),
            [](const std::string& a, const std::string& b) { return Upper(a) < Upper(b); });
  return out;
}

std::vector<std::string> GetFileList(std::string_view folder, std::string_view extension) {
  std::vector<std::string> out;
  auto found = FindNoCase(folder);
  if (!found) return out;
  std::error_code ec;
  for (fs::directory_iterator it(*found, ec), end; !ec && it != end; it.increment(ec)) {
    if (!it->is_regular_file(ec)) continue;
    std::string name = it->path().filename().string();
    if (extension.empty() || EndsWith(Upper(name), Upper(extension))) out.push_back(name);
  }
  std::sort(out.begin(), out.end());
  return out;
}

std::string GetFolder(std::string_view path) {
  size_t i = LastSep(path);
  return i == std::string_view::npos ? std::string() : std::string(path.substr(0, i + 1));
}

std::string GetFileName(std::string_view path) {
  size_t i = LastSep(path);
  return i == std::string_view::npos ? std::string(path) : std::string(path.substr(i + 1));
}

std::string LastFolder(std::string_view path) {
  size_t i = LastSep(path);
  if (i == std::string_view::npos) return {};
  std::string_view folder = path.substr(0, i);
  size_t j = LastSep(folder);
  return std::string(j == std::string_view::npos ? folder : folder.substr(j + 1));
}

std::string TidyFolder(std::string_view path) {
  if (!path.empty() && IsSep(path.back())) return std::string(path);
  return std::string(path) + "\\";
}

std::string GetFileExtension(std::string_view path) {
  size_t i = path.rfind('.');
  return i == std::string_view::npos ? std::string() : std::string(path.substr(i + 1));
}

std::string RemoveFileExtension(std::string_view path) {
  size_t i = path.rfind('.');
  return i == std::string_view::npos ? std::string(path) : std::string(path.substr(0, i));
}

}  // namespace vantoro
