#include "manifest/default_install_path.h"

#include <gtest/gtest.h>
#include <windows.h>

#include "app/context.h"
#include "system/files.h"

namespace {

std::wstring RootOf(int drive) { return std::wstring(1, static_cast<wchar_t>(L'A' + drive)) + L":\\"; }

}  // namespace

TEST(DefaultInstallPath, ExistingGamesFolderWinsOverTheVolumeOfTheApplicationData) {
  const DWORD drives = GetLogicalDrives();
  int last = 0, missing = -1;
  for (int drive = 0; drive < 26; ++drive) {
    if (drives & 1u << drive) {
      last = drive;
      if (PathExists(RootOf(drive) + L"Games")) GTEST_SKIP() << "this computer has a Games folder of its own";
    } else {
      missing = drive;
    }
  }

  app.installPath.Set(L"unchanged");
  app.appDataPath = RootOf(missing) + L"data";
  DefaultInstallPath();
  EXPECT_EQ(*app.installPath.Get(), L"unchanged");

  app.appDataPath = RootOf(last) + L"some\\folder";
  DefaultInstallPath();
  EXPECT_EQ(*app.installPath.Get(), RootOf(last) + L"Games");

  // A file of that name is no place to install to.
  const std::wstring games = L"C:\\Games";
  const HANDLE file = CreateFileW(games.c_str(), GENERIC_WRITE, FILE_SHARE_DELETE, nullptr, CREATE_NEW,
                                  FILE_FLAG_DELETE_ON_CLOSE, nullptr);
  ASSERT_NE(file, INVALID_HANDLE_VALUE);
  DefaultInstallPath();
  CloseHandle(file);
  EXPECT_EQ(*app.installPath.Get(), RootOf(last) + L"Games");

  ASSERT_TRUE(CreateDirectoryW(games.c_str(), nullptr));
  DefaultInstallPath();
  EXPECT_TRUE(RemoveDirectoryW(games.c_str()));
  EXPECT_EQ(*app.installPath.Get(), games);

  app.appDataPath.clear();
  app.installPath.Set({});
}
