#include "install/entry_names.h"

#include <gtest/gtest.h>

#include "system/path_names.h"

TEST(EntryNames, BytesBecomeCharactersAndSeparatorsWindowsOwn) {
  EXPECT_EQ(EntryPath("models/gta3.img"), L"models\\gta3.img");
  EXPECT_EQ(EntryPath("a\\b/c"), L"a\\b\\c");
  EXPECT_EQ(EntryPath("\xC3\xA9.txt"), L"\u00C3\u00A9.txt");  // no code page, not even UTF-8
  EXPECT_EQ(EntryPath(std::string_view("a\0b", 3)), std::wstring(L"a\0b", 3));
  EXPECT_EQ(EntryPath(""), L"");
}

TEST(EntryNames, NamesThatLeaveTheTargetStayUnsafe) {
  for (const char* name : {"../up.txt", "a/../../up.txt", "/root.txt", "C:/drive.txt", "a//b", "\\\\host/share/x"}) {
    EXPECT_FALSE(IsSafeRelativePath(EntryPath(name))) << name;
  }
  EXPECT_FALSE(IsSafeRelativePath(EntryPath(std::string_view("a\0.txt", 6))));
  EXPECT_TRUE(IsSafeRelativePath(EntryPath("deep/er/file.txt")));
}
