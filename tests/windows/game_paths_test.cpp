#include "manifest/game_paths.h"

#include "support/own_machine_key.h"
#include "support/replaced_import.h"
#include "support/temp_folder.h"

extern "C" decltype(&RegOpenKeyExW) importedRegOpenKeyEx __asm__("__imp__RegOpenKeyExW@20");
static decltype(&RegOpenKeyExW) realOpen;

static LSTATUS WINAPI RefuseView32(HKEY key, const wchar_t* path, DWORD options, REGSAM access, HKEY* result) {
  return access & KEY_WOW64_32KEY ? ERROR_FILE_NOT_FOUND : realOpen(key, path, options, access, result);
}

TEST(GamePaths, AreWhatTheGamesWroteIntoTheRegistry) {
  const TempFolder folder;
  const OwnMachineKey machine;
  const std::wstring mta = folder / L"Multi Theft Auto.exe", gta = folder / L"gta\\gta_sa.exe";
  const std::wstring mtaKey = L"SOFTWARE\\Multi Theft Auto: San Andreas All\\";
  const std::wstring gtaKey = L"SOFTWARE\\Rockstar Games\\GTA San Andreas\\Installation";
  gamePaths = {};
  machine.SetText(mtaKey + L"1.6", L"Last Run Location", L"C:\\MTA");
  machine.SetText(mtaKey + L"1.6", L"Last Run Path", mta);
  machine.SetText(mtaKey + L"Common", L"File Cache Path", L"C:\\cache");
  machine.SetText(mtaKey + L"Common", L"GTA:SA Path", L"C:\\told by MTA");
  machine.SetText(gtaKey, L"ExePath", gta);
  EXPECT_TRUE(DetectGameInstallations(true));
  EXPECT_EQ(gamePaths.mtaFolder, L"C:\\MTA");
  EXPECT_EQ(gamePaths.mtaCacheFolder, L"C:\\cache");
  EXPECT_EQ(gamePaths.gtaFolder, L"C:\\told by MTA") << "the program is not there";
  for (const std::wstring& program : {mta, gta}) WriteTestFile(program, "there");
  machine.SetText(gtaKey, L"ExePath", std::wstring(260, L'x'));  // longer than a path, so it changes nothing
  EXPECT_TRUE(DetectGameInstallations(true));
  EXPECT_EQ(gamePaths.gtaFolder, folder / L"gta");

  // Without force only a game whose program is missing is looked up. There need not be two views of the registry.
  gamePaths.mtaFolder = L"kept";
  machine.SetText(gtaKey, L"ExePath", L"C:\\elsewhere.exe");
  EXPECT_FALSE(DetectGameInstallations(false));
  WriteTestFile(gta, "");
  const ReplacedImport open(importedRegOpenKeyEx, RefuseView32);
  realOpen = open.Original();
  EXPECT_TRUE(DetectGameInstallations(false));
  EXPECT_EQ(gamePaths.gtaExePath, L"C:\\elsewhere.exe");
  EXPECT_EQ(gamePaths.mtaFolder, L"kept");
}
