// The system registry, where the installed simulators leave their folders.
// Only Windows has one: MakePlatformRegistry gives the real look-up there;
// every other platform has NoRegistry, and the pilot fills the folder boxes
// by hand.
#pragma once

#include <memory>
#include <string>
#include <string_view>

namespace vantoro {

enum class RegistryHive {
  LocalMachine,  // the machine-wide hive, where installers write
  CurrentUser,
};

class Registry {
 public:
  virtual ~Registry() = default;
  // A string value: opens the key, reads the value, closes the key. The
  // terminating zero is cut; `fallback` when the key or the value is missing.
  virtual std::string GetRegistryValue(RegistryHive hive, std::string_view key,
                                       std::string_view name, std::string_view fallback) const = 0;
};

// A platform without a registry: every look-up gives the fallback.
class NoRegistry final : public Registry {
 public:
  std::string GetRegistryValue(RegistryHive, std::string_view, std::string_view,
                               std::string_view fallback) const override {
    return std::string(fallback);
  }
};

// The registry of the platform the program runs on.
std::unique_ptr<Registry> MakePlatformRegistry();

}  // namespace vantoro
