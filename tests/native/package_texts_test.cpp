#include "install/package_texts.h"

#include <gtest/gtest.h>

TEST(RegistryData, KnowsRootNamesAndNumbers) {
  using enum RegistryRoot;
  const std::tuple<const char*, RegistryRoot, const char*> cases[] = {
      {"HKEY_LOCAL_MACHINE\\SOFTWARE\\Game", LocalMachine, "SOFTWARE\\Game"},
      {"HKEY_CURRENT_USER\\a", CurrentUser, "a"},
      {"HKEY_CLASSES_ROOT\\a", ClassesRoot, "a"},
      {"HKEY_CURRENT_CONFIG\\a", CurrentConfig, "a"},
      {"HKEY_USERS", Users, ""},  // shorter than what is taken off
      {"hkey_users\\a", LocalMachine, "hkey_users\\a"},
  };
  for (const auto& [text, root, subkey] : cases) {
    EXPECT_EQ(ParseRegistryKeyPath(text).root, root) << text;
    EXPECT_EQ(ParseRegistryKeyPath(text).subkey, subkey);
  }
  EXPECT_EQ(ParseRegistryNumber("99999999999999999999999"), UINT32_MAX);
}
