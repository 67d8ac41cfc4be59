#include "manifest/browse_for_path.h"

#include <gtest/gtest.h>
#include <shlobj.h>

#include "app/page_controls.h"
#include "manifest/game_paths.h"
#include "support/box_recorder.h"
#include "support/picker_driver.h"
#include "support/temp_folder.h"
#include "support/test_window.h"
#include "system/files.h"
#include "system/registry.h"

namespace {

class BrowseForPathTest : public testing::Test {
 protected:
  ~BrowseForPathTest() override {
    gamePaths = {};
    app.installPath.Set({});
    app.tmpPath.Set({});
  }

  bool BrowseOnWindowThread(BrowseMode mode) const {
    bool result = false;
    window_.Run([&] { result = BrowseForPath(window_.Window(), mode); });
    return result;
  }
  // As the worker does it. The window must keep up meanwhile.
  bool Browse(BrowseMode mode, const std::wstring& choice) {
    const PickerDriver driver({choice}, [this] {
      RedrawWindow(window_.Window(), nullptr, nullptr, RDW_INVALIDATE | RDW_ALLCHILDREN | RDW_UPDATENOW);
      AppendLog(L"still there");
    });
    const bool result = BrowseForPath(window_.Window(), mode);
    if (!driver.Pickers().empty()) picker_ = driver.Pickers().front();
    return result;
  }

  TempFolder folder_;
  TestWindow window_;
  RecordedPicker picker_;
};

TEST_F(BrowseForPathTest, FoldersArePickedFromTheKnownOnesOnAndRemembered) {
  const std::wstring chosen = folder_ / L"known\\\u0416\u4E2D", desktop = SpecialFolder(CSIDL_DESKTOP);
  ASSERT_EQ(CreateDirectories(chosen), 0u);
  app.installPath.Set(folder_ / L"known");
  app.tmpPath.Set(folder_ / L"known");
  const PickerDriver driver(
      {desktop, L"\u0416\u4E2D", L"\u0416\u4E2D", L"", folder_ / L"missing", desktop, desktop, L""});
  const BoxRecorder boxes({IDYES, IDOK, IDNO, IDYES});
  EXPECT_TRUE(BrowseOnWindowThread(BrowseMode::InstallFolder)) << "not the desktop, but another folder";
  EXPECT_TRUE(BrowseOnWindowThread(BrowseMode::TempFolder));
  EXPECT_FALSE(BrowseOnWindowThread(BrowseMode::TempFolder)) << "cancelled";
  EXPECT_FALSE(BrowseOnWindowThread(BrowseMode::TempFolder)) << "missing";
  const HKEY user = HKEY_CURRENT_USER;
  for (const std::wstring& path : {*app.installPath.Get(), *app.tmpPath.Get()}) EXPECT_EQ(path, chosen);
  for (const wchar_t* name : {L"LastInstallPath", L"LastTmpPath"}) {
    EXPECT_EQ(ReadRegistryText(user, app.registryKeyPath.c_str(), name), chosen);
  }
  EXPECT_TRUE(BrowseOnWindowThread(BrowseMode::InstallFolder)) << "the desktop all the same";
  EXPECT_FALSE(BrowseOnWindowThread(BrowseMode::InstallFolder)) << "another one, and then none";
  EXPECT_EQ(*app.installPath.Get(), desktop);
  EXPECT_EQ(driver.Pickers().at(0).title, L"Browse and select the installation folder");
  EXPECT_EQ(driver.Pickers().at(2).title, L"Browse and select the folder for temporary files");
  EXPECT_EQ(boxes.Boxes().at(0).caption, L"Folder");
  EXPECT_EQ(boxes.Boxes().at(0).text,
            L"It's not recommended to use Desktop as installation directory\n"
            L"Would you like to select another directory?");
  EXPECT_EQ(boxes.Boxes().at(1).text, L"The selected path is invalid");
}

TEST_F(BrowseForPathTest, TheCacheIsTheFolderWithTheClientLibrary) {
  WriteTestFile(folder_ / L"cache\\client.dll", "library");
  WriteTestFile(folder_ / L"cache\\resources\\client.dll", "");
  for (const wchar_t* choice : {L"cache", L"cache\\resources"}) {
    gamePaths.mtaCacheFolder.clear();
    EXPECT_TRUE(Browse(BrowseMode::MtaCacheFolder, folder_ / choice));
    EXPECT_EQ(gamePaths.mtaCacheFolder, folder_ / L"cache");
  }
  EXPECT_EQ(picker_.title, L"Select a folder with MTA:SA cache files");
  const BoxRecorder boxes({IDOK});
  EXPECT_FALSE(Browse(BrowseMode::MtaCacheFolder, folder_.Path()));
  EXPECT_EQ(boxes.Boxes().at(0).text, L"This folder is not valid (incorrect path)");
  EXPECT_EQ(gamePaths.mtaCacheFolder, folder_ / L"cache");
}

TEST_F(BrowseForPathTest, ProgramsAreKnownByTheirExactNames) {
  for (const wchar_t* file : {L"a\\gta_sa.exe", L"a\\gta-sa.exe", L"b\\Multi Theft Auto.exe", L"c\\GTA_SA.EXE"}) {
    WriteTestFile(folder_ / file, "program");
  }
  EXPECT_TRUE(Browse(BrowseMode::MtaExecutable, folder_ / L"b\\Multi Theft Auto.exe"));
  EXPECT_EQ(gamePaths.mtaFolder, folder_ / L"b");
  EXPECT_EQ(picker_.title, L"Select Multi Theft Auto.exe");
  for (const wchar_t* name : {L"gta_sa.exe", L"gta-sa.exe"}) {
    gamePaths.gtaExePath = folder_ / L"a\\known.exe";
    EXPECT_TRUE(Browse(BrowseMode::GtaExecutable, name));
    EXPECT_EQ(gamePaths.gtaExePath, folder_ / L"a\\" + name);
    EXPECT_EQ(gamePaths.gtaFolder, folder_ / L"a");
    EXPECT_EQ(picker_.name, L"known.exe");
    EXPECT_EQ(picker_.patterns, (std::vector<std::wstring>{L"gta_sa.exe", L"gta-sa.exe"}));
  }
  const BoxRecorder boxes({IDOK});
  EXPECT_FALSE(Browse(BrowseMode::GtaExecutable, folder_ / L"c\\GTA_SA.EXE"));
  EXPECT_EQ(boxes.Boxes().at(0).text, L"This file is not suitable");
  EXPECT_EQ(boxes.Boxes().at(0).owner, window_.Window());
  EXPECT_EQ(gamePaths.gtaFolder, folder_ / L"a");
}

}  // namespace
