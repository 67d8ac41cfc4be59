#include "install/entry_names.h"

#include <gtest/gtest.h>

TEST(EntryNames, BytesBecomeCharactersAndSeparatorsWindowsOwn) {
  EXPECT_EQ(EntryPath("a\\b/gta3.img"), L"a\\b\\gta3.img");
  EXPECT_EQ(EntryPath("\xC3\xA9.txt"), L"\u00C3\u00A9.txt");  // no code page, not even UTF-8
  EXPECT_EQ(EntryPath(std::string_view("a\0b", 3)), std::wstring(L"a\0b", 3));
}
