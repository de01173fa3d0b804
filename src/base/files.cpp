#include "base/files.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
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
  auto found = FindNoCase(path);
  if (!found) return {};
  std::ifstream in(*found, std::ios::binary);
  if (!in) return {};
  return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

std::optional<std::string> TryReadFile(std::string_view path) {
  auto found = FindNoCase(path);
  std::error_code ec;
  if (!found || !fs::is_regular_file(*found, ec)) return std::nullopt;
  std::ifstream in(*found, std::ios::binary);
  if (!in) return std::nullopt;
  std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  if (in.bad()) return std::nullopt;
  return bytes;
}

bool WriteFileAtomic(std::string_view path, std::string_view bytes) {
  const fs::path target(NativePath(path));
  fs::path tmp = target;
  tmp += ".tmp~";
  {
    std::ofstream out(tmp, std::ios::binary | std::ios::trunc);
    if (!out) return false;
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    out.flush();
    if (!out) {
      out.close();
      std::error_code ec;
      fs::remove(tmp, ec);
      return false;
    }
  }
  std::error_code ec;
  fs::rename(tmp, target, ec);
  if (ec) {
    fs::remove(tmp, ec);
    return false;
  }
  return true;
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
