#include "manifest/game_paths.h"

#include <shlobj.h>

#include "manifest/placeholders.h"
#include "support/own_machine_key.h"
#include "support/picker_driver.h"
#include "support/temp_folder.h"
#include "system/files.h"

TEST(GamePaths, PlaceholdersStandForThem) {
  const TempFolder folder;
  const OwnMachineKey machine;
  const PickerDriver cancelled({L""});
  for (const char* unknown :
       {"{gtasa_folder}", "{0}", "{abc}", "{9999}", "{5", "5}", "{", "{gtasa_folder}\\a", "C:\\"}) {
    EXPECT_EQ(ResolveFolderPlaceholder(unknown), L"") << unknown;
  }
  EXPECT_EQ(ResolveFolderPlaceholder("{5}"), SpecialFolder(CSIDL_PERSONAL));

  const std::wstring gta = folder / L"gta\\gta_sa.exe", mtaKey = L"SOFTWARE\\Multi Theft Auto: San Andreas All\\";
  const std::wstring gtaKey = L"SOFTWARE\\Rockstar Games\\GTA San Andreas\\Installation";
  machine.SetText(mtaKey + L"1.6", L"Last Run Location", L"C:\\MTA");
  machine.SetText(mtaKey + L"Common", L"File Cache Path", L"C:\\cache");
  machine.SetText(mtaKey + L"Common", L"GTA:SA Path", L"C:\\told by MTA");
  machine.SetText(gtaKey, L"ExePath", gta);
  EXPECT_EQ(ResolveFolderPlaceholder("{mtasa_folder}"), L"C:\\MTA");
  EXPECT_EQ(ResolveFolderPlaceholder("{mtasa_cache_folder}"), L"C:\\cache");
  EXPECT_EQ(ResolveFolderPlaceholder("{gtasa_folder}"), L"C:\\told by MTA") << "the program is not there";
  WriteTestFile(gta, "there");
  EXPECT_EQ(ResolveFolderPlaceholder("{gtasa_folder}"), folder / L"gta");
}
