// What goes with the application's data, and what must stay.
#include "app/delete_app_data.h"

#include "app/context.h"
#include "support/box_recorder.h"
#include "support/temp_folder.h"
#include "system/files.h"
#include "system/folder_removal.h"
#include "system/handles.h"
#include "system/registry.h"

extern "C" decltype(&FindNextFileW) importedFindNextFile __asm__("__imp__FindNextFileW@8");
extern "C" decltype(&GetVolumePathNameW) importedGetVolumePathName __asm__("__imp__GetVolumePathNameW@12");

namespace {

TEST(DeleteAppData, RemovesSettingsAndBothFoldersOnYes) {
  const TempFolder folder;
  app.dataDir = folder / L"Zendora\\Installer";
  app.tmpPath.Set(folder / L"downloads");
  for (const wchar_t* file : {L"Zendora\\Installer\\sub\\file", L"downloads\\game.zip", L"other\\file"}) {
    WriteTestFile(folder / file, "content");
  }
  const std::wstring deeper = app.registryKeyPath + L"\\Deeper\\Still";
  for (const HKEY root : {HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE}) {
    RegSetKeyValueW(root, deeper.c_str(), L"Setting", REG_SZ, L"", sizeof(wchar_t));
  }
  for (const bool agrees : {false, true}) {
    const BoxRecorder boxes(agrees ? std::deque<int>{IDYES, IDOK} : std::deque<int>{IDNO});
    DeleteAppData();
    EXPECT_EQ(boxes.Boxes().at(0).text, L"Following data will be deleted:\n- Application registry items\n- Folder: " +
                                            app.dataDir + L"\n- Folder: " + *app.tmpPath.Get());
    EXPECT_EQ(boxes.Boxes().back().text == L"Application data is deleted", agrees);
    for (const HKEY root : {HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE}) {
      EXPECT_EQ(ReadRegistryText(root, deeper.c_str(), L"Setting").has_value(), !agrees);
    }
    EXPECT_EQ(PathExists(app.dataDir), !agrees);
    EXPECT_EQ(PathExists(folder / L"downloads"), !agrees);
  }
  EXPECT_TRUE(PathExists(folder / L"other\\file"));
}

// Shows every folder called "link" as what Windows reports for a junction.
decltype(&FindNextFileW) realFindNextFile;
BOOL WINAPI FindNextWithJunctions(HANDLE find, WIN32_FIND_DATAW* entry) {
  const BOOL found = realFindNextFile(find, entry);
  if (found && std::wstring(entry->cFileName) == L"link") entry->dwFileAttributes |= FILE_ATTRIBUTE_REPARSE_POINT;
  return found;
}

TEST(FolderRemoval, TakesEverythingButWhatIsInUseOrLinked) {
  const TempFolder folder;
  const std::wstring used = folder / L"a\\used", readOnly = folder / L"a\\read-only", linked = folder / L"link\\theirs";
  for (const std::wstring& file : {used, readOnly, linked, folder / L"...x", folder / L"z\\deep\\last"}) {
    WriteTestFile(file, "content");
  }
  SetFileAttributesW(readOnly.c_str(), FILE_ATTRIBUTE_READONLY);
  const FileHandle user(CreateFileW(used.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr));
  realFindNextFile = importedFindNextFile;
  const ReplacedImport findNext(importedFindNextFile, FindNextWithJunctions);
  RemoveFolder(folder.Path());
  EXPECT_TRUE(PathExists(used) && PathExists(linked));
  EXPECT_FALSE(PathExists(readOnly) || PathExists(folder / L"...x") || PathExists(folder / L"z"));
}

// A folder of the test's own plays a volume, so that a fault does no harm elsewhere.
std::wstring volumeRoot;
BOOL WINAPI GiveVolumeOfTheTest(const wchar_t*, wchar_t* volume, DWORD size) {
  volume[(volumeRoot + L"\\").copy(volume, size)] = L'\0';
  return TRUE;
}

TEST(FolderRemoval, LeavesVolumesAlone) {
  const TempFolder folder;
  volumeRoot = folder.Path();
  WriteTestFile(folder / L"sub\\file", "1");
  const ReplacedImport volumes(importedGetVolumePathName, GiveVolumeOfTheTest);
  for (const wchar_t* end : {L"", L"\\", L"/", L"\\.", L"\\sub\\.."}) {
    RemoveFolder(volumeRoot + end);
    EXPECT_TRUE(PathExists(folder / L"sub\\file")) << testing::PrintToString(end);
  }
  RemoveFolder(folder / L"sub");
  EXPECT_FALSE(PathExists(folder / L"sub"));
}

}  // namespace
