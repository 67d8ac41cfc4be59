#include "system/path_names.h"

#include <gtest/gtest.h>

TEST(PathNames, JoinAndTakeApart) {
  EXPECT_EQ(JoinPath(L"C:\\a", L"b"), L"C:\\a\\b");
  EXPECT_EQ(JoinPath(L"C:/a/", L"b"), L"C:/a/b");
  struct Case {
    const wchar_t *path, *parent, *last;
  };
  const Case cases[] = {
      {L"C:\\a\\b.exe", L"C:\\a", L"b.exe"},
      {L"C:\\a", L"C:\\", L"a"},
      {L"C:/a/b", L"C:/a", L"b"},
      {L"name", L"", L"name"},
      {L"a\\", L"a", L""},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(ParentFolder(c.path), c.parent);
    EXPECT_EQ(LastComponent(c.path), c.last);
  }
}

TEST(PathNames, OnlyNamesThatStayBelowTheirFolderAreSafe) {
  const wchar_t* const safe[] = {L"a",    L"a.txt", L"a\\b/c.dat", L"folder/",    L".hidden",
                                 L"a..b", L"..a",   L"CONSOLE",    L"com",        L"COM10",
                                 L"con1", L"a b",   L"\u0416.txt", L"gta_sa.exe", L"models/gta3.img",
                                 L"nul_"};
  for (const wchar_t* path : safe) EXPECT_TRUE(IsSafeRelativePath(path)) << path;

  const wchar_t* const unsafe[] = {L"",          L".",      L"..",      L"../a",     L"a/../b",      L"a\\..\\..\\b",
                                   L"a/..",      L"/a",     L"\\a",     L"\\\\h\\s", L"C:\\a",       L"C:a",
                                   L"a:stream",  L"a//b",   L"a\\/b",   L"a.",       L"a ",          L"a./b",
                                   L"...",       L"a /b",   L"CON",     L"nul.txt",  L"a/Aux",       L"LPT9.log",
                                   L"com\u00B9", L"con .x", L"CONOUT$", L"a\x01",    L"a*",          L"what?",
                                   L"a|b",       L"/",      L"a//",     L"..\\",     L"\\\\?\\C:\\a"};
  for (const wchar_t* path : unsafe) EXPECT_FALSE(IsSafeRelativePath(path)) << path;

  EXPECT_TRUE(IsSafeFileName(L"mtasa.exe"));
  EXPECT_FALSE(IsSafeFileName(L"a/b"));
}
