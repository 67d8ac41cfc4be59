#include "install/game_paths.h"

#include <gtest/gtest.h>
#include <shlobj.h>

#include "install/browse_for_path.h"
#include "install/package_paths.h"
#include "support/temp_folder.h"
#include "system/files.h"
#include "system/handles.h"

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

// The games are 32-bit programs, as this one: their entries are in that view of the registry.
TEST(GamePaths, AreReadFromTheViewThatTheGamesWriteTo) {
  const TempFolder folder;
  const std::wstring program = folder / L"gta_sa.exe", mta = L"SOFTWARE\\Multi Theft Auto: San Andreas All",
                     gta = L"SOFTWARE\\Rockstar Games\\GTA San Andreas";
  const auto write = [](REGSAM view, const std::wstring& key, const wchar_t* name, const std::wstring& text) {
    RegKey handle;
    RegCreateKeyExW(HKEY_LOCAL_MACHINE, key.c_str(), 0, nullptr, 0, KEY_WRITE | view, nullptr, handle.Receive(),
                    nullptr);
    const auto size = static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t));
    EXPECT_EQ(RegSetKeyValueW(handle.Get(), nullptr, name, REG_SZ, text.c_str(), size), ERROR_SUCCESS);
  };
  write(KEY_WOW64_64KEY, mta + L"\\1.6", L"Last Run Location", L"C:\\of another program");
  EXPECT_FALSE(DetectGameInstallations(true));

  write(KEY_WOW64_32KEY, mta + L"\\1.6", L"Last Run Location", L"C:\\MTA");
  write(KEY_WOW64_32KEY, mta + L"\\1.6", L"Last Run Path", std::wstring(300, L'x'));
  write(KEY_WOW64_32KEY, mta + L"\\Common", L"GTA:SA Path", L"C:\\GTA as MTA knows it");
  write(KEY_WOW64_32KEY, gta + L"\\Installation", L"ExePath", program);
  EXPECT_TRUE(DetectGameInstallations(false));
  EXPECT_EQ(gamePaths.mtaFolder, L"C:\\MTA");
  EXPECT_EQ(gamePaths.mtaExePath, L"") << "longer than a path";
  ASSERT_EQ(gamePaths.gtaFolder, L"C:\\GTA as MTA knows it") << "the program is gone";
  WriteTestFile(program, "content");
  EXPECT_EQ(TargetOf("{gtasa_folder}"), folder.Path());
  for (const std::wstring& key : {mta, gta}) RegDeleteTreeW(HKEY_LOCAL_MACHINE, key.c_str());
}

TEST(GamePaths, CacheIsTheFolderThatHoldsTheResources) {
  const TempFolder folder;
  EXPECT_EQ(CacheFolderOf(folder.Path()), std::nullopt);
  WriteTestFile(folder / L"client.dll", "content");
  EXPECT_EQ(CacheFolderOf(folder.Path()), folder.Path());
  EXPECT_EQ(CacheFolderOf(folder / L"resources"), folder.Path());
}
