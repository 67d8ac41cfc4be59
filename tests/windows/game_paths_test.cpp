#include "install/game_paths.h"

#include <gtest/gtest.h>
#include <shlobj.h>

#include "install/browse_for_path.h"
#include "install/package_paths.h"
#include "support/temp_folder.h"
#include "system/files.h"

static std::wstring TargetOf(const std::string& folder) {
  Package package;
  package.folder = folder;
  return ResolveTargetFolder(RunState(), package);
}

TEST(GamePaths, OnlyWholePlaceholdersAreFolders) {
  for (const char* unknown : {"{0}", "{abc}", "{9999}", "{5", "5}", "{", "{gtasa_folder}\\a", "C:\\"}) {
    EXPECT_EQ(TargetOf(unknown), L"") << unknown;
  }
  EXPECT_EQ(TargetOf("{5}"), SpecialFolder(CSIDL_PERSONAL));
}

TEST(GamePaths, CacheIsTheFolderThatHoldsTheResources) {
  const TempFolder folder;
  EXPECT_EQ(CacheFolderOf(folder.Path()), std::nullopt);
  WriteTestFile(folder / L"client.dll", "content");
  EXPECT_EQ(CacheFolderOf(folder.Path()), folder.Path());
  EXPECT_EQ(CacheFolderOf(folder / L"resources"), folder.Path());
}
