#include "system/folder_removal.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <string>

#include "support/replaced_import.h"
#include "support/temp_folder.h"
#include "system/files.h"
#include "system/handles.h"

extern "C" {
extern decltype(&FindNextFileW) importedFindNextFile __asm__("__imp__FindNextFileW@8");
extern decltype(&GetVolumePathNameW) importedGetVolumePathName __asm__("__imp__GetVolumePathNameW@12");
}

namespace {

decltype(&FindNextFileW) realFindNextFile;

// Shows every folder called "link" as what Windows reports for a junction.
BOOL WINAPI FindNextWithJunctions(HANDLE find, WIN32_FIND_DATAW* entry) {
  const BOOL found = realFindNextFile(find, entry);
  if (found && std::wstring(entry->cFileName) == L"link") entry->dwFileAttributes |= FILE_ATTRIBUTE_REPARSE_POINT;
  return found;
}

// A folder of the test's own plays a volume, so that a fault does no harm elsewhere.
std::wstring volumeRoot;

BOOL WINAPI GiveVolumeOfTheTest(const wchar_t*, wchar_t* volume, DWORD size) {
  (volumeRoot + L"\\").copy(volume, size);
  volume[volumeRoot.size() + 1] = L'\0';
  return TRUE;
}

}  // namespace

TEST(FolderRemoval, TakesEverythingInIt) {
  const TempFolder folder;
  const std::wstring doomed = folder / L"doomed";
  WriteTestFile(doomed + L"\\file", "1");
  WriteTestFile(doomed + L"\\a\\b\\c\\file", "2");
  WriteTestFile(doomed + L"\\.hidden", "3");
  WriteTestFile(doomed + L"\\...x", "4");
  EXPECT_EQ(CreateDirectories(doomed + L"\\empty"), 0u);
  WriteTestFile(doomed + L"\\a\\read-only", "5");
  EXPECT_TRUE(SetFileAttributesW((doomed + L"\\a\\read-only").c_str(), FILE_ATTRIBUTE_READONLY));
  EXPECT_TRUE(SetFileAttributesW((doomed + L"\\.hidden").c_str(), FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM));
  WriteTestFile(folder / L"neighbour", "6");
  RemoveFolder(doomed);
  EXPECT_FALSE(PathExists(doomed));
  EXPECT_TRUE(PathExists(folder / L"neighbour"));
}

TEST(FolderRemoval, KeepsOnlyWhatIsInUse) {
  const TempFolder folder;
  WriteTestFile(folder / L"doomed\\a\\first", "1");
  WriteTestFile(folder / L"doomed\\a\\used", "2");
  WriteTestFile(folder / L"doomed\\z\\last", "3");
  const FileHandle user(CreateFileW((folder / L"doomed\\a\\used").c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
                                    OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
  ASSERT_TRUE(user);
  RemoveFolder(folder / L"doomed");
  EXPECT_EQ(ReadTestFile(folder / L"doomed\\a\\used"), "2");
  EXPECT_FALSE(PathExists(folder / L"doomed\\a\\first"));
  EXPECT_FALSE(PathExists(folder / L"doomed\\z"));
}

TEST(FolderRemoval, FollowsNoJunction) {
  const TempFolder folder;
  WriteTestFile(folder / L"doomed\\file", "1");
  WriteTestFile(folder / L"doomed\\link\\somebody's", "2");
  realFindNextFile = importedFindNextFile;
  const ReplacedImport findNext(importedFindNextFile, FindNextWithJunctions);
  RemoveFolder(folder / L"doomed");
  EXPECT_FALSE(PathExists(folder / L"doomed\\file"));
  EXPECT_EQ(ReadTestFile(folder / L"doomed\\link\\somebody's"), "2");
}

TEST(FolderRemoval, LeavesVolumesAlone) {
  const TempFolder folder;
  volumeRoot = folder / L"volume";
  WriteTestFile(volumeRoot + L"\\sub\\file", "1");
  const ReplacedImport volumes(importedGetVolumePathName, GiveVolumeOfTheTest);
  for (const wchar_t* end : {L"", L"\\", L"/", L"\\.", L"\\sub\\.."}) {
    RemoveFolder(volumeRoot + end);
    EXPECT_TRUE(PathExists(volumeRoot + L"\\sub\\file")) << testing::PrintToString(end);
  }
  RemoveFolder(volumeRoot + L"\\sub");
  EXPECT_FALSE(PathExists(volumeRoot + L"\\sub"));
}
