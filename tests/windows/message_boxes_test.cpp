#include "app/message_boxes.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "app/context.h"
#include "support/box_recorder.h"
#include "support/replaced_import.h"
#include "support/shell_recorder.h"
#include "support/temp_folder.h"
#include "system/files.h"

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
  struct Case {
    int denials;
    std::deque<int> answers;
    DWORD repairError;
    int result;
  };
  for (const Case& test : {Case{1, {IDNO}, 0, 0}, Case{1, {IDYES}, ERROR_CANCELLED, 0}, Case{2, {IDYES, IDOK}, 0, 0},
                           Case{1, {IDYES}, 0, 2}, Case{0, {}, 0, 1}}) {
    denials = test.denials;
    const ShellRecorder shell(test.repairError);
    const BoxRecorder boxes(test.answers);
    EXPECT_EQ(EnsureTempFolder(), test.result);
    EXPECT_EQ(IsDirectory(folder / L"new"), test.result != 0);
    EXPECT_EQ(std::ssize(shell.Starts()), std::ranges::count(test.answers, IDYES));
  }
  app.tmpPath.Set({});
}

TEST(MessageBoxes, LatestVersionIsOffered) {
  const ShellRecorder shell;
  const BoxRecorder boxes({IDNO, IDYES});
  PromptDownloadLatest(L"");
  SetLastError(12029);
  PromptDownloadLatest(L"https://zendora.example/");
  EXPECT_EQ(boxes.Boxes().at(1).text,
            L"Error: 12029\n\nPlease download the latest version of this app from:\nhttps://zendora.example/\n\nOpen?");
  EXPECT_EQ(shell.Starts().at(0).file, L"https://zendora.example/");
}

}  // namespace
