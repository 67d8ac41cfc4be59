#include "system/folder_removal.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <string>

#include "support/replaced_import.h"
#include "support/temp_folder.h"
#include "system/files.h"
#include "system/handles.h"

extern "C" decltype(&FindNextFileW) importedFindNextFile __asm__("__imp__FindNextFileW@8");

namespace {

decltype(&FindNextFileW) realFindNextFile;

// Shows every folder called "link" as what Windows reports for a junction.
BOOL WINAPI FindNextWithJunctions(HANDLE find, WIN32_FIND_DATAW* entry) {
  const BOOL found = realFindNextFile(find, entry);
  if (found && std::wstring(entry->cFileName) == L"link") entry->dwFileAttributes |= FILE_ATTRIBUTE_REPARSE_POINT;
  return found;
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
  WriteTestFile(folder / L"volume\\file", "1");
  // A drive letter of the test's own, so that a fault here does no harm elsewhere.
  ASSERT_TRUE(DefineDosDeviceW(0, L"Q:", (folder / L"volume").c_str()));
  for (const wchar_t* root : {L"Q:\\", L"q:/", L"Q:\\.", L"Q:\\folder\\..", L"Q:"}) {
    RemoveFolder(root);
    EXPECT_TRUE(PathExists(folder / L"volume\\file")) << testing::PrintToString(root);
  }
  EXPECT_TRUE(DefineDosDeviceW(DDD_REMOVE_DEFINITION, L"Q:", nullptr));
}
