#include "manifest/game_paths.h"

#include <shlobj.h>

#include "manifest/placeholders.h"
#include "support/own_machine_key.h"
#include "support/picker_driver.h"
#include "support/temp_folder.h"
#include "system/files.h"

TEST(GamePaths, AreWhatTheGamesWroteIntoTheRegistry) {
  const TempFolder folder;
  const OwnMachineKey machine;
  const std::wstring gta = folder / L"gta\\gta_sa.exe";
  const std::wstring mtaKey = L"SOFTWARE\\Multi Theft Auto: San Andreas All\\";
  const std::wstring gtaKey = L"SOFTWARE\\Rockstar Games\\GTA San Andreas\\Installation";
  machine.SetText(mtaKey + L"1.6", L"Last Run Location", L"C:\\MTA");
  machine.SetText(mtaKey + L"Common", L"File Cache Path", L"C:\\cache");
  machine.SetText(mtaKey + L"Common", L"GTA:SA Path", L"C:\\told by MTA");
  machine.SetText(gtaKey, L"ExePath", gta);
  EXPECT_TRUE(DetectGameInstallations(true));
  EXPECT_EQ(gamePaths.gtaFolder, L"C:\\told by MTA") << "the program is not there";
  WriteTestFile(gta, "there");
  machine.SetText(gtaKey, L"ExePath", std::wstring(260, L'x'));  // longer than a path, so it changes nothing
  EXPECT_EQ(ResolveFolderPlaceholder("{mtasa_folder}"), L"C:\\MTA");
  EXPECT_EQ(ResolveFolderPlaceholder("{mtasa_cache_folder}"), L"C:\\cache");
  EXPECT_EQ(ResolveFolderPlaceholder("{gtasa_folder}"), folder / L"gta");

  // Without force only a game whose program is missing is looked up.
  machine.SetText(gtaKey, L"ExePath", L"C:\\elsewhere.exe");
  DetectGameInstallations(false);
  EXPECT_EQ(gamePaths.gtaExePath, gta);
  WriteTestFile(gta, "");
  DetectGameInstallations(false);
  EXPECT_EQ(gamePaths.gtaExePath, L"C:\\elsewhere.exe");
}

TEST(Placeholders, StandForGamesAndSpecialFolders) {
  const OwnMachineKey machine;
  const PickerDriver cancelled({L""});
  for (const char* unknown : {"{gtasa_folder}", "{0}", "{}", "{abc}", "{9999}", "{5", "5}", "{", "{gtasa_folder}\\data",
                              "{GTASA_FOLDER}", "C:\\GTA"}) {
    EXPECT_EQ(ResolveFolderPlaceholder(unknown), L"") << unknown;
  }
  EXPECT_EQ(ResolveFolderPlaceholder("{5}"), SpecialFolder(CSIDL_PERSONAL));
  EXPECT_EQ(ExpandInstallPath("\"{install_path}\\a\" {install_path}", "C:\\\xC3\xA4"),
            "\"C:\\\xC3\xA4\\a\" {install_path}");
}
