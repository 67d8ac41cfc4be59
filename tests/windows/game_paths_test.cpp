#include "manifest/game_paths.h"

#include "support/own_machine_key.h"
#include "support/replaced_import.h"
#include "support/temp_folder.h"

extern "C" decltype(&RegOpenKeyExW) importedRegOpenKeyEx __asm__("__imp__RegOpenKeyExW@20");

namespace {

decltype(&RegOpenKeyExW) realOpen;

LSTATUS WINAPI RefuseView32(HKEY key, const wchar_t* path, DWORD options, REGSAM access, HKEY* result) {
  return access & KEY_WOW64_32KEY ? ERROR_FILE_NOT_FOUND : realOpen(key, path, options, access, result);
}

class GamePathsTest : public testing::Test {
 protected:
  GamePathsTest() {
    gamePaths = {};
    SetMta(L"1.6", L"Last Run Location", L"C:\\MTA");
    SetMta(L"1.6", L"Last Run Path", mta_);
    SetMta(L"Common", L"File Cache Path", L"C:\\cache");
    SetMta(L"Common", L"GTA:SA Path", L"C:\\told by MTA");
  }
  ~GamePathsTest() override { gamePaths = {}; }

  void SetMta(const std::wstring& key, const wchar_t* value, const std::wstring& text) const {
    machine_.SetText((L"SOFTWARE\\Multi Theft Auto: San Andreas All\\" + key).c_str(), value, text);
  }
  void SetGta(const std::wstring& program) const {
    machine_.SetText(L"SOFTWARE\\Rockstar Games\\GTA San Andreas\\Installation", L"ExePath", program);
  }

  TempFolder folder_;
  OwnMachineKey machine_;
  const std::wstring mta_ = folder_ / L"mta\\Multi Theft Auto.exe", gta_ = folder_ / L"gta\\gta_sa.exe";
};

TEST_F(GamePathsTest, AreWhatTheGamesWroteIntoTheRegistry) {
  for (const bool view32 : {true, false}) {
    gamePaths = {};
    DeleteFileW(gta_.c_str());
    const ReplacedImport open(importedRegOpenKeyEx, view32 ? importedRegOpenKeyEx : RefuseView32);
    realOpen = open.Original();
    SetGta(gta_);
    EXPECT_TRUE(DetectGameInstallations(false));
    EXPECT_EQ(gamePaths.mtaFolder, L"C:\\MTA");
    EXPECT_EQ(gamePaths.mtaExePath, mta_);
    EXPECT_EQ(gamePaths.mtaCacheFolder, L"C:\\cache");
    EXPECT_EQ(gamePaths.gtaExePath, gta_);
    EXPECT_EQ(gamePaths.gtaFolder, L"C:\\told by MTA") << "the program is not there";
    WriteTestFile(gta_, "the game");
    SetGta(std::wstring(260, L'x'));  // longer than a path, so it changes nothing
    EXPECT_TRUE(DetectGameInstallations(true));
    EXPECT_EQ(gamePaths.gtaFolder, folder_ / L"gta");
  }
}

TEST_F(GamePathsTest, KnownGamesAreLookedUpAgainOnlyByForce) {
  SetGta(L"C:\\elsewhere.exe");
  gamePaths.mtaExePath = mta_;
  gamePaths.gtaExePath = gta_;
  for (const std::wstring& program : {mta_, gta_}) WriteTestFile(program, "there");
  EXPECT_FALSE(DetectGameInstallations(false));
  WriteTestFile(gta_, "");  // no program
  EXPECT_TRUE(DetectGameInstallations(false));
  EXPECT_EQ(gamePaths.mtaFolder, L"");
  EXPECT_EQ(gamePaths.gtaExePath, L"C:\\elsewhere.exe");
}

}  // namespace
