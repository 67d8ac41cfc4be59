#include "install/registry_items.h"

#include <gtest/gtest.h>
#include <windows.h>

namespace {

constexpr REGSAM kView32 = KEY_WOW64_32KEY, kView64 = KEY_WOW64_64KEY;
const std::string kKey = "SOFTWARE\\Zendora Installer Tests items";
const std::string kUserKey = "HKEY_CURRENT_USER\\" + kKey;

// A text as it stands there, a number in angle brackets, "none" for anything else.
std::string ReadValue(HKEY root, const std::string& path, const std::string& name, REGSAM view = kView32) {
  HKEY key = nullptr;
  char text[256] = "";
  DWORD type = REG_NONE, size = sizeof text, number = 0;
  if (RegOpenKeyExA(root, path.c_str(), 0, KEY_READ | view, &key) != ERROR_SUCCESS) return "none";
  RegQueryValueExA(key, name.c_str(), nullptr, &type, reinterpret_cast<BYTE*>(text), &size);
  RegCloseKey(key);
  memcpy(&number, text, sizeof number);
  if (type == REG_DWORD) return "<" + std::to_string(number) + ">";
  return type == REG_SZ && size == strlen(text) + 1 ? text : "none";
}

TEST(RegistryItems, GoBelowTheirRootInThe32BitView) {
  for (const auto& [name, root] : {std::pair("HKEY_LOCAL_MACHINE\\", HKEY_LOCAL_MACHINE),
                                   {"", HKEY_LOCAL_MACHINE},
                                   {"HKEY_CURRENT_USER\\", HKEY_CURRENT_USER},
                                   {"HKEY_CLASSES_ROOT\\", HKEY_CLASSES_ROOT},
                                   {"HKEY_CURRENT_CONFIG\\", HKEY_CURRENT_CONFIG},
                                   {"HKEY_USERS\\", HKEY_USERS}}) {
    const std::string path = root == HKEY_USERS ? ".DEFAULT\\" + kKey : kKey;
    Package package;
    package.registryItems = {{name + path, RegistryPhase::Post, {{"a", name}}}};
    EXPECT_EQ(ApplyRegistryItems(package, RegistryPhase::Post, "").succeeded, 1u) << name;
    EXPECT_EQ(ReadValue(root, path, "a"), name);
    if (root == HKEY_LOCAL_MACHINE) EXPECT_EQ(ReadValue(root, path, "a", kView64), "none") << "needs a 64-bit system";
    EXPECT_EQ(RegDeleteKeyExA(root, path.c_str(), kView32, 0), ERROR_SUCCESS) << name;
  }
}

TEST(RegistryItems, OfOnePhaseAreWrittenAsNumbersAndTexts) {
  Package package;
  package.registryItems = {
      {"HKEY_CURRENT_USER", RegistryPhase::Post, {{"a", "a whole root is refused"}}},
      {"HKEY_CURRENT_USER\\" + std::string(300, 'x'), RegistryPhase::Post, {{"a", "so is a name too long"}}},
      {kUserKey,
       RegistryPhase::Post,
       {{"", "default"}, {"number", "00123"}, {"empty", ""}, {"path", "{install_path}\\a"}}},
      {kUserKey + "\\pre", RegistryPhase::Pre, {{"a", "1"}}},
  };
  EXPECT_EQ(ApplyRegistryItems(package, RegistryPhase::Pre, "").attempted, 1u);
  EXPECT_EQ(ReadValue(HKEY_CURRENT_USER, kKey + "\\pre", "a"), "<1>");
  EXPECT_EQ(ReadValue(HKEY_CURRENT_USER, kKey, ""), "none");
  const RegistryCounts counts = ApplyRegistryItems(package, RegistryPhase::Post, "C:\\\xC3\xA4\xD0\x96");
  EXPECT_EQ(counts.attempted, 4u);
  EXPECT_EQ(counts.succeeded, 4u);
  EXPECT_EQ(ReadValue(HKEY_CURRENT_USER, kKey, ""), "default");
  EXPECT_EQ(ReadValue(HKEY_CURRENT_USER, kKey, "number"), "<123>");
  EXPECT_EQ(ReadValue(HKEY_CURRENT_USER, kKey, "empty"), "");
  EXPECT_EQ(ReadValue(HKEY_CURRENT_USER, kKey, "path"), "C:\\\xC3\xA4\xD0\x96\\a");
  RegDeleteTreeA(HKEY_CURRENT_USER, kKey.c_str());
}

}  // namespace
