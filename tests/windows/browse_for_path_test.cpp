#include "manifest/browse_for_path.h"

#include "manifest/game_paths.h"
#include "support/box_recorder.h"
#include "support/picker_driver.h"
#include "support/temp_folder.h"

TEST(BrowseForPath, OnlyTheGamesOwnProgramIsTaken) {
  const PickerDriver user({L"C:\\Game\\gta-sa.exe", L"C:\\Other\\GTA_SA.EXE"});
  const BoxRecorder boxes({IDOK});
  EXPECT_TRUE(BrowseForPath(nullptr, BrowseMode::GtaExecutable));
  EXPECT_FALSE(BrowseForPath(nullptr, BrowseMode::GtaExecutable));
  EXPECT_EQ(boxes.Boxes().at(0).text, L"This file is not suitable");
  EXPECT_EQ(gamePaths.gtaExePath, L"C:\\Game\\gta-sa.exe");
  EXPECT_EQ(gamePaths.gtaFolder, L"C:\\Game");
}

TEST(BrowseForPath, CacheIsTheFolderThatHoldsTheResources) {
  const TempFolder folder;
  EXPECT_EQ(CacheFolderOf(folder.Path()), std::nullopt);
  WriteTestFile(folder / L"client.dll", "content");
  EXPECT_EQ(CacheFolderOf(folder.Path()), folder.Path());
  EXPECT_EQ(CacheFolderOf(folder / L"resources"), folder.Path());
}
