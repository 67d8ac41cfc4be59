#include "install/install_task.h"

#include <windows.h>

#include "support/box_recorder.h"
#include "support/placement_fixture.h"
#include "support/text_recorder.h"
#include "system/files.h"

namespace {

// The programs that are run are copies of the command interpreter.
class InstallTaskTest : public PlacementFixture {
 protected:
  void PutInterpreter(const std::wstring& path) {
    wchar_t interpreter[MAX_PATH];
    ASSERT_NE(GetEnvironmentVariableW(L"ComSpec", interpreter, MAX_PATH), 0u);
    ASSERT_EQ(CreateDirectories(path.substr(0, path.rfind(L'\\'))), 0u);
    ASSERT_TRUE(CopyFileW(interpreter, path.c_str(), FALSE));
  }
  // Arguments that make the interpreter write a file and end with an exit code that some take for "still running".
  std::string Writing(const char* file) {
    SetEnvironmentVariableW(L"ZENDORA_TEST_FOLDER", folder_.Path().c_str());
    return "/c \"echo ran>\"%ZENDORA_TEST_FOLDER%\\" + std::string(file) + "\" & exit 259\"";
  }
  // Arguments that keep it busy for ever.
  static std::string Endless() { return "/c for /l %i in (0,0,1) do rem"; }
};

TEST_F(InstallTaskTest, RunsTheProgramOfThePackageAndWaits) {
  PutInterpreter(target_ + L"\\setup\\install.exe");
  package_.install = "setup/install.exe|" + Writing("ran.txt") + "|more";
  EXPECT_EQ(RunInstallTask(run_, package_, target_), 0u);
  EXPECT_TRUE(PathExists(folder_ / L"ran.txt"));
  EXPECT_EQ(run_.errorRecords, "");
}

TEST_F(InstallTaskTest, RunsTheDownloadedFileWhenThePackageHasNoSuchProgram) {
  PutInterpreter(packagePath_);
  ASSERT_EQ(CreateDirectories(target_ + L"\\folder"), 0u);
  WriteTestFile(target_ + L"\\empty.exe", "");
  for (const std::string program : {"", "missing.exe", "empty.exe", "folder"}) {
    package_.install = program + "|" + Writing("ran.txt");
    EXPECT_EQ(RunInstallTask(run_, package_, target_), 0u);
    EXPECT_TRUE(DeleteFileW((folder_ / L"ran.txt").c_str())) << program;
  }
}

TEST_F(InstallTaskTest, CancellingEndsTheProgram) {
  PutInterpreter(packagePath_);
  package_.install = "|" + Endless();
  const std::wstring text = L"Installer is running in the background";
  // The label's second round begins after 16 polls.
  int rounds = 0;
  const TextRecorder label(window_, Page().totalDetailLabel, [&](const std::wstring& shown) {
    if (shown == text + L"." && ++rounds == 2) app.cancelRequested = true;
  });
  EXPECT_EQ(RunInstallTask(run_, package_, target_), 0u);
  EXPECT_EQ(label.Texts(), (std::vector<std::wstring>{text, text + L".", text + L"..", text + L"...", text + L"."}));
  // Only a program that has ended lets its file go.
  for (int attempt = 0; attempt < 100 && !DeleteFileW(packagePath_.c_str()); ++attempt) Sleep(50);
  EXPECT_FALSE(PathExists(packagePath_));
}

TEST_F(InstallTaskTest, TellsWhenTheProgramCannotBeStarted) {
  package_.install = "missing.exe|/silent";
  BoxRecorder recorder({IDNO});
  EXPECT_EQ(RunInstallTask(run_, package_, target_), ERROR_BAD_EXE_FORMAT);
  EXPECT_EQ(run_.errorRecords, InstallerNotStartedRecord("pack.bin", ERROR_BAD_EXE_FORMAT));
  ASSERT_EQ(recorder.Boxes().size(), 1u);
  const RecordedBox box = recorder.Boxes()[0];
  EXPECT_EQ(box.caption, L"Error");
  EXPECT_EQ(box.text, L"Unable to start the process\n\nYou can try to start this process manually:\n" + packagePath_ +
                          L"\n\nOpen?");
  EXPECT_EQ(box.buttons, (std::vector<int>{IDYES, IDNO}));
  EXPECT_EQ(box.owner, window_.Window());
}

}  // namespace
