#include "manifest/browse_for_path.h"

#include <gtest/gtest.h>
#include <shlobj.h>

#include "manifest/game_paths.h"
#include "support/box_recorder.h"
#include "support/picker_driver.h"
#include "support/temp_folder.h"
#include "support/test_window.h"
#include "system/files.h"
#include "system/registry.h"

TEST(BrowseForPath, ChoicesAreCheckedAndKept) {
  const TempFolder folder;
  const TestWindow window;
  for (const wchar_t* file : {L"cache\\client.dll", L"cache\\resources\\a", L"\u0416\u4E2D\\a", L"Multi Theft Auto.exe",
                              L"gta_sa.exe", L"gta-sa.exe", L"c\\GTA_SA.EXE"}) {
    WriteTestFile(folder / file, "content");
  }
  gamePaths = {};
  app.installPath.Set(folder.Path());  // where the picker begins, so that a name without a path is enough for it
  app.tmpPath.Set(folder.Path());
  const wchar_t* const tempTitle = L"Browse and select the folder for temporary files";
  const wchar_t* const cacheTitle = L"Select a folder with MTA:SA cache files";
  const std::tuple<BrowseMode, const wchar_t*, std::wstring, bool> cases[] = {
      {BrowseMode::InstallFolder, L"Browse and select the installation folder", L"\u0416\u4E2D", true},
      {BrowseMode::TempFolder, tempTitle, L"\u0416\u4E2D", true},
      {BrowseMode::TempFolder, tempTitle, folder / L"missing", false},
      {BrowseMode::MtaCacheFolder, cacheTitle, folder / L"cache", true},
      {BrowseMode::MtaCacheFolder, cacheTitle, folder / L"cache\\resources", true},
      {BrowseMode::MtaCacheFolder, cacheTitle, folder.Path(), false},
      {BrowseMode::MtaExecutable, L"Select Multi Theft Auto.exe", folder / L"Multi Theft Auto.exe", true},
      {BrowseMode::GtaExecutable, L"Select gta_sa.exe", folder / L"gta_sa.exe", true},
      {BrowseMode::GtaExecutable, L"Select gta_sa.exe", L"gta-sa.exe", true},
      {BrowseMode::GtaExecutable, L"Select gta_sa.exe", folder / L"c\\GTA_SA.EXE", false},
  };
  const BoxRecorder boxes({IDOK, IDOK, IDOK});
  RecordedPicker last;
  for (const auto& [mode, title, choice, accepted] : cases) {
    const PickerDriver driver({choice}, [&] {  // the window keeps up
      RedrawWindow(window.Window(), nullptr, nullptr, RDW_INVALIDATE | RDW_ALLCHILDREN | RDW_UPDATENOW);
    });
    bool result = false;
    const auto browse = [&, picker = mode] { result = BrowseForPath(window.Window(), picker); };
    mode <= BrowseMode::TempFolder ? window.Run(browse) : browse();  // on the threads that the program uses
    EXPECT_EQ(result, accepted);
    last = driver.Pickers().at(0);
    EXPECT_EQ(last.title, title);
    EXPECT_EQ(last.owner, window.Window());
  }
  for (const wchar_t* name : {L"LastInstallPath", L"LastTmpPath"}) {
    EXPECT_EQ(ReadRegistryText(HKEY_CURRENT_USER, app.registryKeyPath.c_str(), name), *app.installPath.Get());
  }
  EXPECT_EQ(*app.installPath.Get(), folder / L"\u0416\u4E2D");
  EXPECT_EQ(gamePaths.mtaCacheFolder, folder / L"cache");
  EXPECT_EQ(gamePaths.mtaExePath, folder / L"Multi Theft Auto.exe");
  EXPECT_EQ(gamePaths.gtaExePath, folder / L"gta-sa.exe");
  EXPECT_TRUE(gamePaths.mtaFolder == folder.Path() && gamePaths.gtaFolder == folder.Path());
  EXPECT_EQ(last.name, L"gta-sa.exe") << "the known one";
  EXPECT_EQ(last.patterns, (std::vector<std::wstring>{L"gta_sa.exe", L"gta-sa.exe"}));
  EXPECT_EQ(boxes.Boxes().at(0).text + boxes.Boxes().at(1).text + boxes.Boxes().at(2).text,
            L"The selected path is invalidThis folder is not valid (incorrect path)This file is not suitable");
}

TEST(BrowseForPath, TheDesktopIsAdvisedAgainst) {
  const std::wstring desktop = SpecialFolder(CSIDL_DESKTOP);
  const PickerDriver driver({desktop, desktop, desktop, L""});
  const BoxRecorder boxes({IDYES, IDNO, IDYES});
  EXPECT_TRUE(BrowseForPath(nullptr, BrowseMode::InstallFolder)) << "asked for another one, and then taken";
  EXPECT_FALSE(BrowseForPath(nullptr, BrowseMode::InstallFolder)) << "asked for another one, and then none";
  EXPECT_EQ(*app.installPath.Get(), desktop);
  EXPECT_EQ(boxes.Boxes().at(0).text,
            L"It's not recommended to use Desktop as installation directory\n"
            L"Would you like to select another directory?");
}
