#include "install/package_placement.h"

#include <windows.h>

#include "manifest/game_paths.h"
#include "support/box_recorder.h"
#include "support/placement_fixture.h"
#include "support/text_recorder.h"
#include "support/zip_builder.h"
#include "system/files.h"

namespace {

using Lines = std::vector<std::wstring>;

using TargetFolderTest = PlacementFixture;
using PackagePlacementTest = PlacementFixture;

TEST_F(TargetFolderTest, IsCreatedBelowTheInstallationFolder) {
  package_.name = L"GTA San Andreas\\mods";
  EXPECT_EQ(ResolveTargetFolder(run_, package_), run_.installPath + L"\\GTA San Andreas\\mods");
  EXPECT_TRUE(IsDirectory(run_.installPath + L"\\GTA San Andreas\\mods"));
}

TEST_F(TargetFolderTest, IsTheOneOfAnExistingInstallation) {
  const std::wstring existing = folder_ / L"existing";
  package_.name = L"GTA";
  run_.existingFolders["pack.bin"] = existing;
  EXPECT_EQ(ResolveTargetFolder(run_, package_), run_.installPath + L"\\GTA") << "the folder is gone";
  ASSERT_EQ(CreateDirectories(existing), 0u);
  EXPECT_EQ(ResolveTargetFolder(run_, package_), existing);
  package_.filename = "another";
  EXPECT_EQ(ResolveTargetFolder(run_, package_), run_.installPath + L"\\GTA");
}

TEST_F(TargetFolderTest, IsThePlaceholdersBeforeTheName) {
  gamePaths.gtaFolder = folder_ / L"found game";
  package_.folder = "{gtasa_folder}";
  package_.name = L"GTA";
  EXPECT_EQ(ResolveTargetFolder(run_, package_), gamePaths.gtaFolder);
  EXPECT_FALSE(PathExists(gamePaths.gtaFolder) || PathExists(run_.installPath));
  gamePaths = {};
}

TEST_F(TargetFolderTest, IsNoneWithoutANameAndForUnsafeOnes) {
  EXPECT_EQ(ResolveTargetFolder(run_, package_), L"");
  Lines expected;
  for (const wchar_t* name : {L"..", L"..\\other", L"\\games", L"C:\\games", L"C:games", L"a/../../b", L"nul"}) {
    package_.name = name;
    EXPECT_EQ(ResolveTargetFolder(run_, package_), L"") << name;
    expected.push_back(std::wstring(L"[ERROR] Unsafe path (") + name + L")");
  }
  EXPECT_EQ(window_.LogLines(), expected);
}

TEST_F(PackagePlacementTest, ZipArchivesAreUnpacked) {
  BuildZip(packagePath_, {{"a.txt", "content"}});
  package_.filetype = "application/x-zip-compressed";
  package_.upsize = 7;
  package_.verify = "a.txt";
  EXPECT_TRUE(PlacePackage(run_, package_, target_).ok);
  EXPECT_EQ(ReadTestFile(target_ + L"\\a.txt"), "content");
  EXPECT_FALSE(PathExists(target_ + L"\\pack.bin"));
  EXPECT_EQ(TextOf(Page().totalDetailLabel), L"-");
}

TEST_F(PackagePlacementTest, OtherFilesAreCopied) {
  WriteTestFile(target_ + L"\\pack.bin", "an older one");
  for (const char* filetype : {"", "text/plain", "Application/X-Zip-Compressed"}) {
    WriteTestFile(packagePath_, std::string("file of type ") + filetype);
    package_.filetype = filetype;
    EXPECT_TRUE(PlacePackage(run_, package_, target_).ok) << filetype;
    EXPECT_EQ(ReadTestFile(target_ + L"\\pack.bin"), std::string("file of type ") + filetype);
  }
  EXPECT_TRUE(PlacePackage(run_, package_, target_ + L"\\new\\folder").ok);
  EXPECT_TRUE(PathExists(target_ + L"\\new\\folder\\pack.bin"));

  DeleteFileW(packagePath_.c_str());
  const PlacementResult missing = PlacePackage(run_, package_, target_);
  EXPECT_FALSE(missing.ok);
  EXPECT_EQ(missing.error, ERROR_FILE_NOT_FOUND);
}

TEST_F(PackagePlacementTest, InstallersNeedAnInstallTask) {
  package_.filetype = "application/x-msdownload";
  EXPECT_FALSE(PlacePackage(run_, package_, target_).ok);
  EXPECT_FALSE(PathExists(target_));

  wchar_t interpreter[MAX_PATH];
  GetEnvironmentVariableW(L"ComSpec", interpreter, MAX_PATH);
  ASSERT_TRUE(CopyFileW(interpreter, packagePath_.c_str(), FALSE));
  package_.install = "|/c exit 5";
  EXPECT_TRUE(PlacePackage(run_, package_, target_).ok);
}

TEST_F(PackagePlacementTest, AnInstallerThatRanMakesUpForAFailedExtraction) {
  wchar_t interpreter[MAX_PATH];
  GetEnvironmentVariableW(L"ComSpec", interpreter, MAX_PATH);
  ASSERT_TRUE(CopyFileW(interpreter, packagePath_.c_str(), FALSE));
  package_.filetype = "application/x-zip-compressed";
  package_.install = "|/c exit";
  const PlacementResult result = PlacePackage(run_, package_, target_);
  EXPECT_TRUE(result.ok);
  EXPECT_EQ(result.error, 0u);
}

TEST_F(PackagePlacementTest, AnInstallerThatCannotBeStartedChangesNothing) {
  package_.install = "missing.exe";
  {
    BoxRecorder recorder({IDNO});
    EXPECT_TRUE(PlacePackage(run_, package_, target_).ok);
  }
  package_.filetype = "application/x-msdownload";
  BoxRecorder recorder({IDNO});
  const PlacementResult result = PlacePackage(run_, package_, target_);
  EXPECT_FALSE(result.ok);
  EXPECT_EQ(result.error, ERROR_BAD_EXE_FORMAT);
}

TEST_F(PackagePlacementTest, MissingFilesOfTheVerifyListMakeItFail) {
  package_.verify = "missing.dll";
  BoxRecorder recorder({IDOK});
  const PlacementResult result = PlacePackage(run_, package_, target_);
  EXPECT_FALSE(result.ok);
  EXPECT_EQ(result.error, ERROR_FILE_NOT_FOUND);
}

TEST_F(PackagePlacementTest, PathsThatLeaveTheirFolderAreRefused) {
  struct Case {
    const char *filename, *verify, *install, *refused;
  };
  const Case cases[] = {
      {"../pack.bin", "", "", "../pack.bin"},
      {"C:\\pack.bin", "", "", "C:\\pack.bin"},
      {"", "", "", ""},
      {"pack.bin", "fine.txt|../../up.txt", "", "../../up.txt"},
      {"pack.bin", "", "../evil.exe|/s", "../evil.exe"},
      {"pack.bin", "", "\\\\host\\share\\evil.exe", "\\\\host\\share\\evil.exe"},
  };
  Lines expected;
  const BoxRecorder noBoxes(std::initializer_list<int>{});
  for (const Case& c : cases) {
    package_.filename = c.filename;
    package_.verify = c.verify;
    package_.install = c.install;
    const PlacementResult result = PlacePackage(run_, package_, target_);
    EXPECT_FALSE(result.ok);
    EXPECT_EQ(result.error, ERROR_INVALID_NAME);
    expected.push_back(L"[ERROR] Unsafe path (" + std::wstring(c.refused, c.refused + strlen(c.refused)) + L")");
  }
  EXPECT_EQ(window_.LogLines(), expected);
  EXPECT_FALSE(PathExists(target_));
}

TEST_F(PackagePlacementTest, ATargetThatCannotBeCreatedMakesItFail) {
  WriteTestFile(target_, "a file where the folder should be");
  for (const char* filetype : {"", "application/x-zip-compressed"}) {
    package_.filetype = filetype;
    const PlacementResult result = PlacePackage(run_, package_, target_);
    EXPECT_FALSE(result.ok);
    EXPECT_EQ(result.error, ERROR_ALREADY_EXISTS);
  }
  EXPECT_EQ(window_.LogLines(), Lines(2, L"[ERROR] Unable to create folder (183) (" + target_ + L")"));
}

TEST_F(PackagePlacementTest, NothingFollowsACancelledPlacement) {
  BuildZip(packagePath_, {{"a.txt", "content"}});
  package_.filetype = "application/x-zip-compressed";
  package_.upsize = 7;
  package_.install = "missing.exe";
  package_.verify = "missing.dll";
  const TextRecorder label(window_, Page().totalDetailLabel, [](const std::wstring& text) {
    if (text.ends_with(L"(100%)")) app.cancelRequested = true;
  });
  const BoxRecorder noBoxes(std::initializer_list<int>{});
  EXPECT_FALSE(PlacePackage(run_, package_, target_).ok);
  EXPECT_EQ(label.Texts().back(), L"Extracting: a.txt (100%)");
  EXPECT_EQ(run_.errorRecords, "");
}

}  // namespace
