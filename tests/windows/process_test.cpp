#include "system/process.h"

#include <gtest/gtest.h>

#include "net/error_text.h"
#include "support/box_recorder.h"
#include "support/replaced_import.h"
#include "support/shell_recorder.h"

extern "C" decltype(&CreateProcessW) importedCreateProcess __asm__("__imp__CreateProcessW@40");

namespace {

std::wstring startedDirectly;
BOOL WINAPI RecordProcess(const wchar_t* file, wchar_t* commandLine, SECURITY_ATTRIBUTES*, SECURITY_ATTRIBUTES*, BOOL,
                          DWORD, void*, const wchar_t*, STARTUPINFOW*, PROCESS_INFORMATION* started) {
  startedDirectly = std::wstring(file) + L"|" + commandLine;
  *started = {};
  return TRUE;
}

TEST(RunProcess, DoesWithoutTheShellWhereItRefuses) {
  const ReplacedImport createProcess(importedCreateProcess, RecordProcess);
  const ShellRecorder shell(ERROR_NO_ASSOCIATION);
  EXPECT_TRUE(RunProcess(false, true, L"setup.exe", L"a b"));
  EXPECT_EQ(shell.Starts().at(0).verb, L"open");
  // The parameters don't take the place of the program's own name, which begins every command line.
  EXPECT_EQ(startedDirectly, L"setup.exe| a b");
}

// A person who refused the consent prompt must not get the program without elevation instead.
TEST(RunProcess, RefusedElevationIsTold) {
  const ShellRecorder shell(ERROR_CANCELLED);
  const BoxRecorder boxes({IDOK});
  EXPECT_FALSE(RunProcess(true, true, L"setup.exe", L"a b"));
  EXPECT_EQ(boxes.Boxes().at(0).text, L"Error: 1223\n" + GetErrorText(ERROR_CANCELLED) + L"\nFile: setup.exe\n\n" +
                                          L"Please start Zendora Installer with Administrator privileges");
}

TEST(RepairPermissions, GrantsFoldersToUserAndUsersGroup) {
  EXPECT_EQ(BuildRepairParameters(L"C:\\Users\\player1\\AppData\\Roaming", L"player1"),
            L"/c icacls \"C:\\Users\\player1\\AppData\\Roaming\" /grant:r player1:(F) & icacls "
            L"\"C:\\Users\\player1\\AppData\\Roaming\\Zendora\" /grant:r *S-1-5-32-545:(OI)(CI)(F) /T /grant:r "
            L"player1:(OI)(CI)(F) /T");
}

}  // namespace
