#include "manifest/placeholders.h"

#include <shlobj.h>

#include "manifest/game_paths.h"
#include "support/own_machine_key.h"
#include "support/picker_driver.h"
#include "system/files.h"

TEST(Placeholders, StandForGamesAndSpecialFolders) {
  const OwnMachineKey machine;
  gamePaths = {};
  const PickerDriver cancelled({L"", L"", L""});
  for (const char* unknown : {"{mtasa_folder}", "{mtasa_cache_folder}", "{gtasa_folder}", "{0}", "{}", "{abc}", "{-5}",
                              "{9999}", "{5", "5}", "{", " {5}", "{gtasa_folder}\\data", "{GTASA_FOLDER}", "C:\\GTA"}) {
    EXPECT_EQ(ResolveFolderPlaceholder(unknown), L"") << unknown;
  }
  machine.SetText(L"SOFTWARE\\Multi Theft Auto: San Andreas All\\1.6", L"Last Run Location", L"C:\\MTA");
  gamePaths = {L"C:\\outdated", {}, L"C:\\cache", L"C:\\GTA", {}};
  EXPECT_EQ(ResolveFolderPlaceholder("{mtasa_folder}"), L"C:\\MTA");
  EXPECT_EQ(ResolveFolderPlaceholder("{mtasa_cache_folder}"), L"C:\\cache");
  EXPECT_EQ(ResolveFolderPlaceholder("{gtasa_folder}"), L"C:\\GTA");
  EXPECT_EQ(ResolveFolderPlaceholder("{5}"), SpecialFolder(CSIDL_PERSONAL));
  EXPECT_EQ(ResolveFolderPlaceholder("{ +26x}"), SpecialFolder(CSIDL_APPDATA));
  EXPECT_EQ(ExpandInstallPath("\"{install_path}\\a\" {install_path}", "C:\\\xC3\xA4"),
            "\"C:\\\xC3\xA4\\a\" {install_path}");
}
