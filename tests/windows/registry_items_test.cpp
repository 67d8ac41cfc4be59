#include "install/registry_items.h"

#include <gtest/gtest.h>
#include <windows.h>

#include "system/handles.h"

static const std::string kKey = "SOFTWARE\\Zendora Installer Tests items", kUserKey = "HKEY_CURRENT_USER\\" + kKey;

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
  const char* const names[] = {"HKEY_LOCAL_MACHINE\\",  "HKEY_CURRENT_USER\\", "HKEY_CLASSES_ROOT\\",
                               "HKEY_CURRENT_CONFIG\\", "HKEY_USERS\\",        ""};
  const HKEY roots[] = {HKEY_LOCAL_MACHINE,  HKEY_CURRENT_USER, HKEY_CLASSES_ROOT,
                        HKEY_CURRENT_CONFIG, HKEY_USERS,        HKEY_LOCAL_MACHINE};
  for (size_t i = 0; i < std::size(roots); ++i) {
    const std::string name = names[i], path = (roots[i] == HKEY_USERS ? ".DEFAULT\\" : "") + kKey;
    Package package;
    package.registryItems = {{name + path, RegistryPhase::Post, {{"a", name}}}};
    EXPECT_EQ(ApplyRegistryItems(package, RegistryPhase::Post, "").succeeded, 1u) << name;
    EXPECT_EQ(ReadValue(roots[i], path, "a"), "1:" + name);
    // A 64-bit system has another view of the machine's software.
    EXPECT_TRUE(roots[i] != HKEY_LOCAL_MACHINE || ReadValue(roots[i], path, "a", KEY_WOW64_64KEY).empty());
    EXPECT_EQ(RegDeleteKeyExA(roots[i], path.c_str(), KEY_WOW64_32KEY, 0), ERROR_SUCCESS) << name;
  }
}

TEST(RegistryItems, OfOnePhaseAreWrittenAsNumbersAndTexts) {
  Package package;
  package.registryItems = {
      {"HKEY_CURRENT_USER", RegistryPhase::Post, {{"a", "a whole root is refused"}}},
      {"HKEY_CURRENT_USER\\" + std::string(300, 'x'), RegistryPhase::Post, {{"a", "so is a name too long"}}},
      {kUserKey, RegistryPhase::Post, {{"", "{install_path}\\a"}, {"number", "00123"}, {"empty", ""}}},
      {kUserKey, RegistryPhase::Pre, {{"pre", "-1"}}},
  };
  EXPECT_EQ(ApplyRegistryItems(package, RegistryPhase::Pre, "").attempted, 1u);
  EXPECT_EQ(ReadValue(HKEY_CURRENT_USER, kKey, "pre"), "1:-1");
  const RegistryCounts counts = ApplyRegistryItems(package, RegistryPhase::Post, "C:\\\xC3\xA4\xD0\x96");
  EXPECT_EQ(counts.attempted, 3u);
  EXPECT_EQ(counts.succeeded, 3u);
  EXPECT_EQ(ReadValue(HKEY_CURRENT_USER, kKey, ""), "1:C:\\\xC3\xA4\xD0\x96\\a");
  EXPECT_EQ(ReadValue(HKEY_CURRENT_USER, kKey, "number"), std::string("4:\x7B\0\0", 5));
  EXPECT_EQ(ReadValue(HKEY_CURRENT_USER, kKey, "empty"), "1:");
  RegDeleteTreeA(HKEY_CURRENT_USER, kKey.c_str());
}
