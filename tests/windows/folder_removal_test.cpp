#include "system/folder_removal.h"

#include <gtest/gtest.h>
#include <windows.h>

#include "support/replaced_import.h"
#include "support/temp_folder.h"
#include "system/files.h"
#include "system/handles.h"

extern "C" decltype(&FindNextFileW) importedFindNextFile __asm__("__imp__FindNextFileW@8");
extern "C" decltype(&GetVolumePathNameW) importedGetVolumePathName __asm__("__imp__GetVolumePathNameW@12");

namespace {

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
  EXPECT_EQ(RemoveFolder(folder.Path()), DWORD{ERROR_SHARING_VIOLATION});
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
    EXPECT_EQ(RemoveFolder(volumeRoot + end), DWORD{ERROR_DIR_NOT_ROOT});
    EXPECT_TRUE(PathExists(folder / L"sub\\file")) << testing::PrintToString(end);
  }
  EXPECT_EQ(RemoveFolder(folder / L"sub"), 0u);
  EXPECT_EQ(RemoveFolder(folder / L"sub"), 0u) << "it is gone already";
  EXPECT_FALSE(PathExists(folder / L"sub"));
}

}  // namespace
