#include "install/package_placement.h"

#include <windows.h>

#include "manifest/game_paths.h"
#include "support/box_recorder.h"
#include "support/placement_fixture.h"
#include "support/text_recorder.h"
#include "system/files.h"
#include "system/text.h"

namespace {

class PackagePlacementTest : public PlacementFixture {
 protected:
  PlacementResult Place() { return PlacePackage(run_, package_, target_); }

  // The programs that are run are copies of the command interpreter.
  static void PutInterpreter(const std::wstring& path) {
    wchar_t interpreter[MAX_PATH];
    GetEnvironmentVariableW(L"ComSpec", interpreter, MAX_PATH);
    WriteTestFile(path, ReadTestFile(interpreter));
  }
};

TEST_F(PackagePlacementTest, TargetFolder) {
  for (const wchar_t* name : {L"", L"..\\other", L"\\games", L"C:\\games", L"a/../../b", L"nul"}) {
    package_.name = name;
    EXPECT_EQ(ResolveTargetFolder(run_, package_), L"") << name;
  }
  const std::wstring existing = folder_ / L"existing", below = run_.installPath + L"\\GTA\\mods";
  package_.name = L"GTA\\mods";
  run_.existingFolders["pack.bin"] = existing;
  EXPECT_EQ(ResolveTargetFolder(run_, package_), below) << "the existing installation is gone";
  EXPECT_EQ(CreateDirectories(existing), 0u);
  EXPECT_EQ(ResolveTargetFolder(run_, package_), existing);
  gamePaths.gtaFolder = folder_ / L"found game";
  package_.folder = "{gtasa_folder}";
  EXPECT_EQ(ResolveTargetFolder(run_, package_), gamePaths.gtaFolder);
  gamePaths = {};
}

TEST_F(PackagePlacementTest, FilesAreCopiedAndVerified) {
  WriteTestFile(InTarget(L"pack.bin"), "an older one");
  WriteTestFile(InTarget(L"models\\gta3.img"), "");
  package_.verify = "pack.bin||models|models/gta3.img|";
  EXPECT_TRUE(Place().ok);
  EXPECT_EQ(ReadTestFile(InTarget(L"pack.bin")), "the package");

  package_.verify = "pack.bin|lost folder/lost.dll|lost too.dll";
  const BoxRecorder recorder({IDOK});
  EXPECT_EQ(Place().error, ERROR_PATH_NOT_FOUND);
  const std::wstring path = InTarget(L"lost folder/lost.dll");
  EXPECT_EQ(run_.errorRecords, VerifyFailedRecord("pack.bin", ERROR_PATH_NOT_FOUND, path));
  EXPECT_EQ(recorder.Boxes().at(0).text,
            L"Component installation failed\n\nRequired file or folder is missing:\n" + path +
                L"\n\nThis error could be caused by other program (for example by virus or antivirus)");
}

TEST_F(PackagePlacementTest, AnInstallerThatRanMakesUpForAFailedExtraction) {
  const std::wstring output = folder_ / L"ran.txt";
  PutInterpreter(packagePath_);
  PutInterpreter(InTarget(L"setup\\install.exe"));
  WriteTestFile(InTarget(L"empty.exe"), "");
  package_.filetype = "application/x-zip-compressed";
  for (const std::string program : {"", "missing.exe", "empty.exe", "setup/install.exe"}) {
    // Some take this exit code for "still running".
    package_.install = program + "|/c \"echo ran>\"" + WideToUtf8(output) + "\" & exit 259\"|more";
    EXPECT_TRUE(Place().ok) << program;
    EXPECT_TRUE(DeleteFileW(output.c_str())) << program;
  }
}

TEST_F(PackagePlacementTest, AnInstallerThatCannotBeStartedIsTold) {
  package_.filetype = "application/x-msdownload";
  EXPECT_FALSE(Place().ok) << "there is nothing to do with this type but to run it";
  package_.install = "missing.exe|/silent";
  const BoxRecorder recorder({IDNO});
  EXPECT_EQ(Place().error, ERROR_BAD_EXE_FORMAT);
  EXPECT_EQ(run_.errorRecords, InstallerNotStartedRecord("pack.bin", ERROR_BAD_EXE_FORMAT));
  EXPECT_EQ(
      recorder.Boxes().at(0).text,
      L"Unable to start the process\n\nYou can try to start this process manually:\n" + packagePath_ + L"\n\nOpen?");
}

TEST_F(PackagePlacementTest, CancellingEndsTheInstaller) {
  PutInterpreter(packagePath_);
  package_.install = "|/c for /l %i in (0,0,1) do rem";
  const std::wstring text = L"Installer is running in the background";
  int rounds = 0;  // the second one begins after 16 polls
  const TextRecorder label(window_, window_.Installation().totalDetailLabel, [&](const std::wstring& shown) {
    if (shown == text + L"." && ++rounds == 2) app.cancelRequested = true;
  });
  EXPECT_TRUE(Place().ok);
  EXPECT_EQ(label.Texts(), (Lines{L"-", text, text + L".", text + L"..", text + L"...", text + L"."}));
  // Only a program that has ended lets its file go.
  for (int attempt = 0; attempt < 100 && !DeleteFileW(packagePath_.c_str()); ++attempt) Sleep(50);
  EXPECT_FALSE(PathExists(packagePath_));
}

TEST_F(PackagePlacementTest, PathsThatLeaveTheirFolderAreRefused) {
  const std::pair<std::string Package::*, std::string> cases[] = {
      {&Package::filename, "../pack.bin"},         {&Package::filename, ""},
      {&Package::verify, "fine.txt|../../up"},     {&Package::install, "../evil.exe|/s"},
      {&Package::link, "\\\\host\\evil.exe|Game"}, {&Package::execute, "C:\\evil.exe"}};
  for (const auto& [field, path] : cases) {
    Package package = package_;
    package.*field = path;
    EXPECT_FALSE(PathsStayInside(package)) << path;
  }
  EXPECT_TRUE(PathsStayInside(package_));
}

}  // namespace
