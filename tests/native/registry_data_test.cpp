#include "install/registry_data.h"

#include <gtest/gtest.h>

TEST(RegistryData, RootNamesAreTakenOffTheKeyPath) {
  struct Case {
    const char* text;
    RegistryRoot root;
    const char* subkey;
  };
  const Case cases[] = {
      {"HKEY_LOCAL_MACHINE\\SOFTWARE\\Game", RegistryRoot::LocalMachine, "SOFTWARE\\Game"},
      {"HKEY_CURRENT_USER\\SOFTWARE\\Game", RegistryRoot::CurrentUser, "SOFTWARE\\Game"},
      {"HKEY_CLASSES_ROOT\\game", RegistryRoot::ClassesRoot, "game"},
      {"HKEY_CURRENT_CONFIG\\a", RegistryRoot::CurrentConfig, "a"},
      {"HKEY_USERS\\.DEFAULT", RegistryRoot::Users, ".DEFAULT"},
      {"HKLM\\SOFTWARE", RegistryRoot::LocalMachine, "HKLM\\SOFTWARE"},
      {"hkey_users\\a", RegistryRoot::LocalMachine, "hkey_users\\a"},
      {"HKEY_USERS", RegistryRoot::Users, ""},  // shorter than what is taken off
      {"", RegistryRoot::LocalMachine, ""},
  };
  for (const Case& c : cases) {
    const RegistryKeyPath path = ParseRegistryKeyPath(c.text);
    EXPECT_EQ(path.root, c.root) << c.text;
    EXPECT_EQ(path.subkey, c.subkey) << c.text;
  }
}

TEST(RegistryData, OnlyPlainDigitsAreANumber) {
  const std::pair<const char*, uint32_t> numbers[] = {{"0", 0},
                                                      {"00123", 123},
                                                      {"4294967295", UINT32_MAX},
                                                      {"4294967296", UINT32_MAX},
                                                      {"99999999999999999999999", UINT32_MAX}};
  for (const auto& [text, number] : numbers) EXPECT_EQ(ParseRegistryNumber(text), number) << text;
  for (const char* text : {"", "-1", "+1", "1 ", " 1", "0x10", "1\xB2"}) {
    EXPECT_EQ(ParseRegistryNumber(text), std::nullopt) << text;
  }
}
