#include "install/package_placement.h"

#include <shlobj.h>

#include "install/finishing_tasks.h"
#include "manifest/game_paths.h"
#include "support/box_recorder.h"
#include "support/install_scenario.h"
#include "support/text_recorder.h"
#include "system/text.h"

namespace {

class PackagePlacementTest : public InstallScenario {
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
  for (const wchar_t* name : {L"", L"..\\other", L"C:\\games", L"a/../../b", L"nul"}) {
    package_.name = name;
    EXPECT_EQ(ResolveTargetFolder(run_, package_), L"") << name;
  }
  package_.name = L"Fox";
  run_.existingFolders["fox"] = folder_ / L"existing";
  EXPECT_EQ(ResolveTargetFolder(run_, package_), target_) << "the existing installation is gone";
  CreateDirectories(folder_ / L"existing");
  EXPECT_EQ(ResolveTargetFolder(run_, package_), folder_ / L"existing");
  package_.folder = "{unknown}";
  EXPECT_EQ(ResolveTargetFolder(run_, package_), L"");
}

TEST_F(PackagePlacementTest, FilesAreCopiedAndVerified) {
  WriteTestFile(file_, kFox);
  WriteTestFile(target_ + L"\\fox", "an older one");
  WriteTestFile(target_ + L"\\models\\gta3.img", "");
  package_.verify = "fox||models|models/gta3.img|";
  EXPECT_TRUE(Place().ok);
  EXPECT_EQ(ReadTestFile(target_ + L"\\fox"), kFox);

  package_.verify = "fox|lost folder/lost.dll|lost too.dll";
  const BoxRecorder recorder({IDOK});
  EXPECT_EQ(Place().error, ERROR_PATH_NOT_FOUND);
  const std::wstring path = target_ + L"\\lost folder/lost.dll";
  EXPECT_EQ(run_.errorRecords, VerifyFailedRecord("fox", ERROR_PATH_NOT_FOUND, path));
  EXPECT_EQ(recorder.Boxes().at(0).text,
            L"Component installation failed\n\nRequired file or folder is missing:\n" + path +
                L"\n\nThis error could be caused by other program (for example by virus or antivirus)");
}

TEST_F(PackagePlacementTest, AnInstallerThatRanMakesUpForAFailedExtraction) {
  const std::wstring output = folder_ / L"ran.txt";
  PutInterpreter(file_);
  PutInterpreter(target_ + L"\\setup\\install.exe");
  package_.filetype = "application/x-zip-compressed";
  for (const std::string program : {"", "missing.exe", "setup/install.exe"}) {
    // Some take this exit code for "still running".
    package_.install = program + "|/c \"echo ran>\"" + WideToUtf8(output) + "\" & exit 259\"|more";
    EXPECT_TRUE(Place().ok) << program;
    EXPECT_TRUE(DeleteFileW(output.c_str())) << program;
  }
}

TEST_F(PackagePlacementTest, AnInstallerThatCannotBeStartedIsTold) {
  WriteTestFile(file_, kFox);
  package_.filetype = "application/x-msdownload";
  EXPECT_FALSE(Place().ok) << "there is nothing to do with this type but to run it";
  package_.install = "missing.exe|/silent";
  const BoxRecorder recorder({IDNO});
  EXPECT_EQ(Place().error, ERROR_BAD_EXE_FORMAT);
  EXPECT_EQ(run_.errorRecords, InstallerNotStartedRecord("fox", ERROR_BAD_EXE_FORMAT));
  EXPECT_EQ(recorder.Boxes().at(0).text,
            L"Unable to start the process\n\nYou can try to start this process manually:\n" + file_ + L"\n\nOpen?");
}

TEST_F(PackagePlacementTest, CancellingEndsTheInstaller) {
  PutInterpreter(file_);
  package_.install = "|/c for /l %i in (0,0,1) do rem";
  const TextRecorder label(window_, window_.Installation().totalDetailLabel, [](const std::wstring& text) {
    app.cancelRequested = text == L"Installer is running in the background..";
  });
  EXPECT_TRUE(Place().ok);
  // Only a program that has ended lets its file go.
  for (int attempt = 0; attempt < 100 && !DeleteFileW(file_.c_str()); ++attempt) Sleep(50);
  EXPECT_FALSE(PathExists(file_));
}

TEST_F(PackagePlacementTest, PathsThatLeaveTheirFolderAreRefused) {
  EXPECT_TRUE(PathsStayInside(package_));
  const std::pair<std::string Package::*, std::string> cases[] = {{&Package::filename, "../fox"},
                                                                  {&Package::verify, "fine.txt|../../up"},
                                                                  {&Package::install, "../evil.exe|/s"},
                                                                  {&Package::link, "\\\\host\\evil.exe|Game"},
                                                                  {&Package::execute, "C:\\evil.exe"}};
  for (const auto& [field, path] : cases) {
    Package package = package_;
    package.*field = path;
    EXPECT_FALSE(PathsStayInside(package)) << path;
  }
}

TEST_F(PackagePlacementTest, LinksGoToTheDesktop) {
  WriteTestFile(target_ + L"\\bin\\\u00E9.exe", "program");
  const std::tuple<const char*, const wchar_t*, bool> cases[] = {{"bin/\xE9.exe||", L"\u00E9.exe.lnk", true},
                                                                 {"bin/\xE9.exe|zt 1.", L"zt 1..lnk", true},
                                                                 {"missing.exe|zt 2", L"zt 2.lnk", false},
                                                                 {"bin/\xE9.exe|..\\zt 3", L"..\\zt 3.lnk", false}};
  for (const auto& [link, name, made] : cases) {
    package_.link = link;
    CreateDesktopLink(package_, target_);
    EXPECT_EQ(DeleteFileW((SpecialFolder(CSIDL_DESKTOP) + L"\\" + name).c_str()), made) << link;
  }
}

}  // namespace
