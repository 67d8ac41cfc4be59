#include "install/registry_items.h"

#include <gtest/gtest.h>
#include <windows.h>

#include "system/handles.h"

static const std::string kKey = "SOFTWARE\\Zendora Installer Tests items";

// The type's number and the data without its last byte, a text's terminator; empty when there is no such value.
static std::string ReadValue(HKEY root, const std::string& path, const char* name, REGSAM view = KEY_WOW64_32KEY) {
  RegKey key;
  char data[256] = "";
  DWORD type = REG_NONE, size = sizeof data;
  RegOpenKeyExA(root, path.c_str(), 0, KEY_READ | view, key.Receive());
  RegQueryValueExA(key.Get(), name, nullptr, &type, reinterpret_cast<BYTE*>(data), &size);
  return type == REG_NONE ? "" : std::to_string(type) + ":" + std::string(data, size - 1);
}

TEST(RegistryItems, GoBelowTheirRootInThe32BitView) {
  const std::pair<std::string, HKEY> roots[] = {{"HKEY_LOCAL_MACHINE\\" + kKey, HKEY_LOCAL_MACHINE},
                                                {"HKEY_CLASSES_ROOT\\" + kKey, HKEY_CLASSES_ROOT},
                                                {"HKEY_CURRENT_CONFIG\\" + kKey, HKEY_CURRENT_CONFIG},
                                                {kKey, HKEY_LOCAL_MACHINE}};
  for (const auto& [path, root] : roots) {
    Package package;
    package.registryItems = {{path, RegistryPhase::Post, {{"a", "b"}}}};
    EXPECT_EQ(ApplyRegistryItems(package, RegistryPhase::Post, "").succeeded, 1u) << path;
    EXPECT_EQ(ReadValue(root, kKey, "a"), "1:b") << path;
    EXPECT_TRUE(root != HKEY_LOCAL_MACHINE || ReadValue(root, kKey, "a", KEY_WOW64_64KEY).empty());
    EXPECT_EQ(RegDeleteKeyExA(root, kKey.c_str(), KEY_WOW64_32KEY, 0), ERROR_SUCCESS) << path;
  }
}

TEST(RegistryItems, OfOnePhaseAreWrittenAsNumbersAndTexts) {
  const std::string key = "HKEY_CURRENT_USER\\" + kKey;
  Package package;
  package.registryItems = {
      {"HKEY_CURRENT_USER", RegistryPhase::Post, {{"a", "a whole root is refused"}}},
      {key, RegistryPhase::Post, {{"", "{install_path}\\a"}, {"number", "00123"}, {"empty", ""}}},
      {key, RegistryPhase::Pre, {{"pre", "-1"}}},
  };
  EXPECT_EQ(ApplyRegistryItems(package, RegistryPhase::Pre, "").attempted, 1u);
  const RegistryCounts counts = ApplyRegistryItems(package, RegistryPhase::Post, "C:\\\xC3\xA4\xD0\x96");
  EXPECT_EQ(counts.attempted, 3u);
  EXPECT_EQ(counts.succeeded, 3u);
  EXPECT_EQ(ReadValue(HKEY_CURRENT_USER, kKey, "pre"), "1:-1");
  EXPECT_EQ(ReadValue(HKEY_CURRENT_USER, kKey, ""), "1:C:\\\xC3\xA4\xD0\x96\\a");
  EXPECT_EQ(ReadValue(HKEY_CURRENT_USER, kKey, "number"), std::string("4:\x7B\0\0", 5));
  EXPECT_EQ(ReadValue(HKEY_CURRENT_USER, kKey, "empty"), "1:");
  RegDeleteTreeA(HKEY_CURRENT_USER, kKey.c_str());
}
