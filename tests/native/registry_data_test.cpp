#include "install/registry_data.h"

#include <gtest/gtest.h>

TEST(RegistryData, RootNamesAreTakenOffTheKeyPath) {
  const struct {
    const char* text;
    RegistryRoot root;
    const char* subkey;
  } cases[] = {
      {"HKEY_LOCAL_MACHINE\\SOFTWARE\\Game", RegistryRoot::LocalMachine, "SOFTWARE\\Game"},
      {"HKEY_USERS", RegistryRoot::Users, ""},  // shorter than what is taken off
      {"HKLM\\SOFTWARE", RegistryRoot::LocalMachine, "HKLM\\SOFTWARE"},
      {"hkey_users\\a", RegistryRoot::LocalMachine, "hkey_users\\a"},
  };
  for (const auto& [text, root, subkey] : cases) {
    EXPECT_EQ(ParseRegistryKeyPath(text).root, root) << text;
    EXPECT_EQ(ParseRegistryKeyPath(text).subkey, subkey);
  }
}

TEST(RegistryData, OnlyPlainDigitsAreANumber) {
  using Number = std::optional<uint32_t>;
  const std::pair<const char*, Number> cases[] = {
      {"00123", 123},   {"4294967295", UINT32_MAX}, {"99999999999999999999999", UINT32_MAX},
      {"", Number()},   {"-1", Number()},           {"+1", Number()},
      {" 1", Number()}, {"0x10", Number()}};
  for (const auto& [text, number] : cases) EXPECT_EQ(ParseRegistryNumber(text), number) << text;
}
