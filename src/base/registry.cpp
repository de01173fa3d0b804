#include "base/registry.h"

#ifdef _WIN32
#include <windows.h>
#endif

namespace vantoro {

#ifdef _WIN32

namespace {

// The registry of Windows. The simulators' installers are 32-bit programs
// and write into the 32-bit view, so that view is the one read, whatever the
// program's own width.
class WindowsRegistry final : public Registry {
 public:
  std::string GetRegistryValue(RegistryHive hive, std::string_view key, std::string_view name,
                               std::string_view fallback) const override {
    HKEY root = hive == RegistryHive::LocalMachine ? HKEY_LOCAL_MACHINE : HKEY_CURRENT_USER;
    HKEY opened = nullptr;
    const std::string keyText(key), nameText(name);
    if (RegOpenKeyExA(root, keyText.c_str(), 0, KEY_READ | KEY_WOW64_32KEY, &opened) !=
        ERROR_SUCCESS)
      return std::string(fallback);
    std::string value;
    DWORD type = 0, size = 0;
    bool found = RegQueryValueExA(opened, nameText.c_str(), nullptr, &type, nullptr, &size) ==
                     ERROR_SUCCESS &&
                 (type == REG_SZ || type == REG_EXPAND_SZ);
    if (found) {
      value.resize(size);
      found = RegQueryValueExA(opened, nameText.c_str(), nullptr, &type,
                               reinterpret_cast<BYTE*>(value.data()), &size) == ERROR_SUCCESS;
      value.resize(found ? size : 0);
    }
    RegCloseKey(opened);
    if (!found) return std::string(fallback);
    // The stored text ends in a zero, sometimes more than one.
    while (!value.empty() && value.back() == '\0') value.pop_back();
    return value;
  }
};

}  // namespace

std::unique_ptr<Registry> MakePlatformRegistry() {
  return std::make_unique<WindowsRegistry>();
}

#else

std::unique_ptr<Registry> MakePlatformRegistry() {
  return std::make_unique<NoRegistry>();
}

#endif

}  // namespace vantoro
