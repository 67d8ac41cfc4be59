#include "system/process.h"

#include <gtest/gtest.h>
#include <windows.h>
// Needs windows.h before it.
#include <shellapi.h>

#include <chrono>

#include "app/context.h"
#include "support/box_recorder.h"
#include "support/replaced_import.h"
#include "support/shell_recorder.h"
#include "support/temp_folder.h"
#include "system/handles.h"
#include "system/path_names.h"

extern "C" decltype(&CreateProcessW) importedCreateProcess __asm__("__imp__CreateProcessW@40");

namespace {

decltype(&CreateProcessW) realCreateProcess;
std::wstring lastCommandLine;

BOOL WINAPI KeepCommandLine(const wchar_t* application, wchar_t* commandLine, SECURITY_ATTRIBUTES* process,
                            SECURITY_ATTRIBUTES* thread, BOOL inherit, DWORD flags, void* environment,
                            const wchar_t* folder, STARTUPINFOW* startup, PROCESS_INFORMATION* started) {
  lastCommandLine = commandLine;
  return realCreateProcess(application, commandLine, process, thread, inherit, flags, environment, folder, startup,
                           started);
}

std::wstring SystemFolder() {
  wchar_t folder[MAX_PATH];
  return std::wstring(folder, GetSystemDirectoryW(folder, MAX_PATH));
}

// Started programs tell that they ran by making this file; what they wrote is complete when it can be opened alone.
bool Appears(const std::wstring& path) {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
  while (std::chrono::steady_clock::now() < deadline) {
    const FileHandle file(CreateFileW(path.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));
    if (file) return true;
    Sleep(10);
  }
  return false;
}

class RunProcessTest : public testing::Test {
 protected:
  ~RunProcessTest() override { app.isAdmin = false; }

  // The only box that a start shows, which fails.
  RecordedBox BoxOfFailedStart(bool elevated, const std::wstring& file) {
    BoxRecorder recorder({IDOK});
    EXPECT_FALSE(RunProcess(elevated, true, file, L"a b"));
    const auto boxes = recorder.Boxes();
    EXPECT_EQ(boxes.size(), 1u);
    return boxes.empty() ? RecordedBox{} : boxes.front();
  }

  TempFolder folder_;
};

}  // namespace

TEST_F(RunProcessTest, StartsNormallyAndElevated) {
  const std::wstring shell = JoinPath(SystemFolder(), L"cmd.exe");
  EXPECT_TRUE(RunProcess(false, true, shell, L"/c echo done>" + (folder_ / L"normal")));
  EXPECT_TRUE(Appears(folder_ / L"normal"));

  const ShellRecorder recorder;
  EXPECT_TRUE(RunProcess(true, true, L"C:\\setup.exe", L"install:gta"));
  ASSERT_EQ(recorder.Starts().size(), 1u);
  EXPECT_EQ(recorder.Starts()[0].verb, L"runas");
  EXPECT_EQ(recorder.Starts()[0].file, L"C:\\setup.exe");
  EXPECT_EQ(recorder.Starts()[0].parameters, L"install:gta");
  EXPECT_EQ(recorder.Starts()[0].showCommand, SW_SHOWNORMAL);
}

// The parameters must not take the place of the program's own name, which begins every command line.
TEST_F(RunProcessTest, ProgramThatTheShellRefusesIsStartedWithoutIt) {
  const std::wstring shell = JoinPath(SystemFolder(), L"cmd.exe");
  const ShellRecorder refusing(ERROR_NO_ASSOCIATION);
  const ReplacedImport createProcess(importedCreateProcess, KeepCommandLine);
  realCreateProcess = createProcess.Original();
  const std::wstring parameters = L"/c echo done>" + (folder_ / L"direct");
  EXPECT_TRUE(RunProcess(false, true, shell, parameters));
  EXPECT_TRUE(Appears(folder_ / L"direct"));
  EXPECT_EQ(lastCommandLine, L" " + parameters);
  ASSERT_EQ(refusing.Starts().size(), 1u);
  EXPECT_EQ(refusing.Starts()[0].verb, L"open");
}

TEST_F(RunProcessTest, FailureIsTold) {
  const std::wstring missing = folder_ / L"missing.exe";
  wchar_t notFound[512];
  FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, ERROR_FILE_NOT_FOUND, 0, notFound,
                 ARRAYSIZE(notFound), nullptr);
  const RecordedBox box = BoxOfFailedStart(false, missing);
  EXPECT_EQ(box.caption, L"Action is required");
  EXPECT_EQ(box.text, std::wstring(L"Error: 2\n") + notFound + L"\nFile: " + missing);
  EXPECT_EQ(box.owner, nullptr);
  EXPECT_FALSE(RunProcess(false, false, missing, L""));
}

// A person who refused the consent prompt must not get the program without elevation instead.
TEST_F(RunProcessTest, RefusedElevation) {
  const ShellRecorder refusing(ERROR_CANCELLED);
  const std::wstring shell = JoinPath(SystemFolder(), L"cmd.exe");
  const std::wstring hint = L"\n\nPlease start Zendora Installer with Administrator privileges";
  const RecordedBox box = BoxOfFailedStart(true, shell);
  EXPECT_TRUE(box.text.starts_with(L"Error: 1223\n"));
  EXPECT_TRUE(box.text.ends_with(L"File: " + shell + hint));
  app.isAdmin = true;
  EXPECT_TRUE(BoxOfFailedStart(true, shell).text.ends_with(L"File: " + shell));
  EXPECT_FALSE(RunProcess(true, false, shell, L""));
}

TEST(RepairPermissions, GrantsFoldersToUserAndUsersGroup) {
  EXPECT_EQ(BuildRepairParameters(L"C:\\Users\\player1\\AppData\\Roaming", L"player1"),
            L"/c icacls \"C:\\Users\\player1\\AppData\\Roaming\" /grant:r player1:(F) & icacls "
            L"\"C:\\Users\\player1\\AppData\\Roaming\\Zendora\" /grant:r *S-1-5-32-545:(OI)(CI)(F) /T /grant:r "
            L"player1:(OI)(CI)(F) /T");
}

TEST(RepairPermissions, RunsElevatedInterpreterOnce) {
  wchar_t user[257];
  DWORD capacity = ARRAYSIZE(user);
  ASSERT_TRUE(GetUserNameW(user, &capacity));
  app.appDataPath = L"C:\\data";
  {
    const ShellRecorder shell;
    EXPECT_TRUE(RepairPermissions());
    ASSERT_EQ(shell.Starts().size(), 1u);
    const ShellStart& start = shell.Starts().front();
    EXPECT_EQ(start.verb, L"runas");
    EXPECT_EQ(start.file, L"cmd.exe");
    EXPECT_EQ(start.parameters, BuildRepairParameters(L"C:\\data", user));
    EXPECT_EQ(start.showCommand, SW_SHOW);
    EXPECT_EQ(start.mask, static_cast<ULONG>(SEE_MASK_NOCLOSEPROCESS));
  }
  const ShellRecorder refusing(ERROR_CANCELLED);
  EXPECT_FALSE(RepairPermissions());
  app.appDataPath.clear();
}
