#include "install/registry_items.h"

#include <gtest/gtest.h>
#include <windows.h>

static const std::string kKey = "SOFTWARE\\Zendora Installer Tests items";

// The type's number and the data without its last byte, a text's terminator.
static std::string ReadValue(const char* name) {
  char data[256];
  DWORD type = REG_NONE, size = sizeof data;
  RegGetValueA(HKEY_LOCAL_MACHINE, kKey.c_str(), name, RRF_RT_ANY, &type, data, &size);
  return std::to_string(type) + ":" + std::string(data, size - 1);
}

TEST(RegistryItems, AreNumbersAndTexts) {
  Package package;
  package.registryItems = {
      {"HKEY_LOCAL_MACHINE", RegistryPhase::Post, {{"a", "a whole root is refused"}}},
      {kKey, RegistryPhase::Post, {{"", "{install_path}\\a {install_path}"}, {"number", "00123"}, {"empty", ""}}},
      {kKey, RegistryPhase::Pre, {{"pre", "-1"}}},
  };
  EXPECT_EQ(ApplyRegistryItems(package, RegistryPhase::Pre, "").attempted, 1u);
  EXPECT_EQ(ReadValue("pre"), "1:-1");
  EXPECT_EQ(ApplyRegistryItems(package, RegistryPhase::Post, "C:\\\xC3\xA4\xD0\x96").succeeded, 3u);
  EXPECT_EQ(ReadValue(""), "1:C:\\\xC3\xA4\xD0\x96\\a {install_path}");
  EXPECT_EQ(ReadValue("number"), std::string("4:\x7B\0\0", 5));
  EXPECT_EQ(ReadValue("empty"), "1:");
  RegDeleteKeyA(HKEY_LOCAL_MACHINE, kKey.c_str());
}
