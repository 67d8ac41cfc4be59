#include "system/path_names.h"

#include <gtest/gtest.h>

TEST(PathNames, JoinAndTakeApart) {
  EXPECT_EQ(JoinPath(L"C:\\a", L"b"), L"C:\\a\\b");
  EXPECT_EQ(JoinPath(L"C:/a/", L"b"), L"C:/a/b");
  EXPECT_EQ(ParentFolder(L"C:\\a"), L"C:\\");
  EXPECT_EQ(ParentFolder(L"name"), L"");
  EXPECT_EQ(LastComponent(L"C:/a\\b"), L"b");
}

TEST(PathNames, OnlyNamesThatStayBelowTheirFolderAreSafe) {
  for (const wchar_t* safe : {L"a.txt", L"a\\b/c.dat", L"folder/", L".hidden", L"a..b", L"..a", L"CONSOLE", L"com",
                              L"COM10", L"con1", L"nul_", L"a b", L"\u0416.txt"}) {
    EXPECT_TRUE(IsSafeRelativePath(safe)) << safe;
  }
  for (const wchar_t* unsafe :
       {L"",         L".",         L"..",     L"../a",   L"a\\..\\..\\b", L"a/..", L"/a",    L"\\\\h\\s", L"C:\\a",
        L"C:a",      L"a:stream",  L"a//b",   L"a.",     L"a ",           L"a./b", L"CON",   L"nul.txt",  L"a/Aux",
        L"LPT9.log", L"com\u00B9", L"con .x", L"CONIN$", L"CONOUT$",      L"prn",  L"a\x01", L"a*",       L"what?",
        L"a|b",      L"/",         L"a//",    L"..\\",   L"\\\\?\\C:\\a"}) {
    EXPECT_FALSE(IsSafeRelativePath(unsafe)) << unsafe;
  }
  EXPECT_FALSE(IsSafeFileName(L"a/b"));
}
