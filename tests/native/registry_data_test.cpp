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
      {"SOFTWARE\\Game", RegistryRoot::LocalMachine, "SOFTWARE\\Game"},
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
  struct Case {
    const char* data;
    std::optional<uint32_t> number;
  };
  const Case cases[] = {
      {"0", 0},
      {"00123", 123},
      {"4294967295", 4294967295u},
      {"4294967296", 4294967295u},
      {"99999999999999999999999", 4294967295u},
      {"", std::nullopt},
      {"-1", std::nullopt},
      {"+1", std::nullopt},
      {"1 ", std::nullopt},
      {" 1", std::nullopt},
      {"0x10", std::nullopt},
      {"1\xB2", std::nullopt},
  };
  for (const Case& c : cases) EXPECT_EQ(ParseRegistryNumber(c.data), c.number) << c.data;
}
