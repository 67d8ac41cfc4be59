// What the user is asked and told when something can't be done.
#include "app/message_boxes.h"

#include "app/context.h"
#include "net/error_text.h"
#include "support/box_recorder.h"
#include "support/shell_recorder.h"
#include "support/temp_folder.h"
#include "system/files.h"
#include "system/process.h"

extern "C" decltype(&CreateDirectoryW) importedCreateDirectory __asm__("__imp__CreateDirectoryW@8");

namespace {

int denials;
decltype(&CreateDirectoryW) realCreateDirectory;
BOOL WINAPI DenyAtFirst(const wchar_t* path, SECURITY_ATTRIBUTES* security) {
  if (denials-- <= 0) return realCreateDirectory(path, security);
  SetLastError(ERROR_ACCESS_DENIED);
  return FALSE;
}

TEST(MessageBoxes, DeniedTempFolderCanBeRepaired) {
  const TempFolder folder;
  app.tmpPath.Set(folder / L"new");
  const ReplacedImport createDirectory(importedCreateDirectory, DenyAtFirst);
  realCreateDirectory = createDirectory.Original();
  const struct {
    int denials;
    std::deque<int> answers;
    DWORD repairError;
    int result;
  } cases[] = {{1, {IDNO}, 0, 0}, {1, {IDYES}, ERROR_CANCELLED, 0}, {2, {IDYES, IDOK}, 0, 0}, {1, {IDYES}, 0, 2}};
  for (const auto& test : cases) {
    denials = test.denials;
    const ShellRecorder shell(test.repairError);
    const BoxRecorder boxes(test.answers);
    EXPECT_EQ(EnsureTempFolder(), test.result);
    EXPECT_EQ(IsDirectory(folder / L"new"), test.result != 0);
    EXPECT_EQ(shell.Starts().size(), test.answers[0] == IDYES ? 1u : 0u);
  }
}

TEST(RepairPermissions, GrantsFoldersToUserAndUsersGroup) {
  EXPECT_EQ(BuildRepairParameters(L"C:\\Data", L"Ann"),
            L"/c icacls \"C:\\Data\" /grant:r Ann:(F) & icacls \"C:\\Data\\Zendora\" /grant:r "
            L"*S-1-5-32-545:(OI)(CI)(F) /T /grant:r Ann:(OI)(CI)(F) /T");
}

// A person who refused the consent prompt must not get the program without elevation instead.
TEST(RunProcess, RefusedElevationIsTold) {
  const ShellRecorder shell(ERROR_CANCELLED);
  const BoxRecorder boxes({IDOK});
  EXPECT_FALSE(RunProcess(true, true, L"setup.exe", L"a b"));
  EXPECT_EQ(boxes.Boxes().at(0).text, L"Error: 1223\n" + GetErrorText(ERROR_CANCELLED) + L"\nFile: setup.exe\n\n" +
                                          L"Please start Zendora Installer with Administrator privileges");
}

}  // namespace
