// The registry look-up where the simulators' installers leave their folders,
// against values written for the test into the user's own hive.
#include "base/registry.h"

#include <gtest/gtest.h>
#include <windows.h>

namespace vantoro {
namespace {

constexpr char kKey[] = "Software\\Vantoro Registry Test";

TEST(Registry, StringValuesAreReadAndAnythingElseGivesTheFallback) {
  HKEY key = nullptr;
  ASSERT_EQ(RegCreateKeyExA(HKEY_CURRENT_USER, kKey, 0, nullptr, 0, KEY_WRITE | KEY_WOW64_32KEY,
                            nullptr, &key, nullptr),
            ERROR_SUCCESS);
  const char folder[] = "C:\\Program Files (x86)\\Microsoft Games\\FSX\\";
  RegSetValueExA(key, "SetupPath", 0, REG_SZ, reinterpret_cast<const BYTE*>(folder), sizeof folder);
  const DWORD number = 7;
  RegSetValueExA(key, "Number", 0, REG_DWORD, reinterpret_cast<const BYTE*>(&number),
                 sizeof number);
  RegCloseKey(key);

  const auto registry = MakePlatformRegistry();
  struct Row {
    const char* key;
    const char* name;
    std::string value;
  };
  const Row rows[] = {
      {kKey, "SetupPath", folder},
      {kKey, "Install_Path", "none"},
      {kKey, "Number", "none"},
      {"Software\\No Such Key Anywhere", "SetupPath", "none"},
  };
  for (const Row& row : rows)
    EXPECT_EQ(registry->GetRegistryValue(RegistryHive::CurrentUser, row.key, row.name, "none"),
              row.value)
        << row.name;
  RegDeleteKeyA(HKEY_CURRENT_USER, kKey);
}

}  // namespace
}  // namespace vantoro
