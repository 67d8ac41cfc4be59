#include "manifest/browse_for_path.h"

#include "app/context.h"
#include "manifest/game_paths.h"
#include "support/box_recorder.h"
#include "support/picker_driver.h"
#include "support/temp_folder.h"
#include "system/registry.h"

TEST(BrowseForPath, ChoicesAreCheckedAndKept) {
  const TempFolder folder;
  const std::wstring install = folder / L"\u0416\u4E2D", game = install + L"\\gta-sa.exe",
                     missing = folder / L"missing";
  const std::wstring cache = folder / L"cache", resources = cache + L"\\resources", other = install + L"\\GTA_SA.EXE";
  for (const std::wstring& file : {game, other, cache + L"\\client.dll", resources + L"\\a"}) WriteTestFile(file, "x");
  const std::tuple<BrowseMode, std::wstring, std::wstring> cases[] = {
      {BrowseMode::InstallFolder, install, L""},
      {BrowseMode::InstallFolder, missing, L"The selected path is invalid"},
      {BrowseMode::MtaCacheFolder, resources, L""},
      {BrowseMode::MtaCacheFolder, install, L"This folder is not valid (incorrect path)"},
      {BrowseMode::GtaExecutable, game, L""},
      {BrowseMode::GtaExecutable, other, L"This file is not suitable"},
  };
  for (const auto& [mode, choice, refusal] : cases) {
    const PickerDriver user({choice});
    const BoxRecorder boxes(std::deque<int>(refusal.empty() ? 0 : 1, IDOK));
    EXPECT_EQ(BrowseForPath(nullptr, mode), refusal.empty());
    EXPECT_EQ(boxes.Boxes().empty() ? L"" : boxes.Boxes().at(0).text, refusal);
  }
  EXPECT_EQ(ReadRegistryText(HKEY_CURRENT_USER, app.registryKeyPath.c_str(), L"LastInstallPath"), install);
  EXPECT_EQ(*app.installPath.Get(), install);
  EXPECT_EQ(gamePaths.mtaCacheFolder, cache);
  EXPECT_EQ(gamePaths.gtaExePath, game);
  EXPECT_EQ(gamePaths.gtaFolder, install);
}
