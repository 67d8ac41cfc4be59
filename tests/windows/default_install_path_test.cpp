#include "manifest/default_install_path.h"

#include <gtest/gtest.h>
#include <windows.h>

#include "app/context.h"
#include "system/files.h"

TEST(DefaultInstallPath, ExistingGamesFolderWinsOverTheVolumeOfTheApplicationData) {
  if (PathExists(L"C:\\Games") || !IsDirectory(L"Z:\\") || PathExists(L"Z:\\Games")) {
    GTEST_SKIP() << "needs two drives without a folder for games";
  }
  app.appDataPath = L"Z:\\some\\folder";
  DefaultInstallPath();
  EXPECT_EQ(*app.installPath.Get(), L"Z:\\Games");
  CreateDirectoryW(L"C:\\Games", nullptr);
  DefaultInstallPath();
  EXPECT_TRUE(RemoveDirectoryW(L"C:\\Games"));
  EXPECT_EQ(*app.installPath.Get(), L"C:\\Games");
  app.appDataPath.clear();
  app.installPath.Set({});
}
