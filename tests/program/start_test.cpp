#include <gtest/gtest.h>
#include <windows.h>

TEST(Program, IsThere) { EXPECT_NE(GetFileAttributesW(L"ZendoraInstaller.exe"), INVALID_FILE_ATTRIBUTES); }
