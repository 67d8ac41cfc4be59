#include "ui/message_boxes.h"

#include "net/error_text.h"
#include "support/box_recorder.h"
#include "support/shell_recorder.h"
#include "support/test_window.h"

extern "C" decltype(&CreateDirectoryW) importedCreateDirectory __asm__("__imp__CreateDirectoryW@8");

namespace {

DWORD creationError = ERROR_SUCCESS;

BOOL WINAPI RefuseDirectory(const wchar_t*, SECURITY_ATTRIBUTES*) {
  SetLastError(creationError);
  return FALSE;
}

// What an error adds to a text.
std::wstring Told(DWORD error) { return L"Error: " + std::to_wstring(error) + L"\n" + GetErrorText(error) + L"\n"; }

}  // namespace

TEST(MessageBoxes, HaveTheirCaptionsAndBelongToTheMainWindow) {
  const std::wstring folder = L"C:\\Zendora tests\\gone", cannotCreate = L"Unable to create a directory:\n" + folder;
  const struct {
    std::function<void()> show;
    const wchar_t* caption;
    std::wstring text;
    UINT type;
    size_t starts = 0;  // the page, the repair of permissions, the program itself
    DWORD creationError = ERROR_SUCCESS;
  } cases[] = {
      {[] { EXPECT_EQ(EnsureTempFolder(), TempFolder::Missing); }, L"Error",
       Told(ERROR_ACCESS_DENIED) + cannotCreate + L"\n\nFix permissions?", MB_YESNO | MB_ICONERROR, 1,
       ERROR_ACCESS_DENIED},
      {[] { EXPECT_EQ(EnsureTempFolder(), TempFolder::Missing); }, L"Error", Told(ERROR_DISK_FULL) + cannotCreate,
       MB_OK | MB_ICONERROR, 0, ERROR_DISK_FULL},
      {[] { PromptDownloadLatest(L"http://help", ERROR_CRC); }, L"Update",
       Told(ERROR_CRC) + L"Please download the latest version of this app from:\nhttp://help\n\nOpen?",
       MB_YESNO | MB_ICONQUESTION, 1},
      {[] { EXPECT_FALSE(RunProcess(true, true, L"setup.exe", L"a b")); }, L"Action is required",
       Told(ERROR_CANCELLED) + L"File: setup.exe\n\nPlease start Zendora Installer with Administrator privileges",
       MB_ICONEXCLAMATION, 1},
  };
  const TestWindow window;
  app.tmpPath.Set(folder);
  for (const auto& test : cases) {
    SCOPED_TRACE(testing::PrintToString(test.text));
    const bool isQuestion = (test.type & MB_TYPEMASK) == MB_YESNO;
    const BoxRecorder boxes({isQuestion ? IDYES : IDOK});
    // Nothing starts, and nobody consents to an elevation.
    const ShellRecorder shell(ERROR_CANCELLED);
    creationError = test.creationError;
    const ReplacedImport createDirectory(importedCreateDirectory, RefuseDirectory);
    test.show();
    ASSERT_EQ(boxes.Boxes().size(), 1u);
    EXPECT_EQ(boxes.Boxes()[0].caption, test.caption);
    EXPECT_EQ(boxes.Boxes()[0].text, test.text);
    EXPECT_EQ(boxes.Boxes()[0].type, test.type);
    EXPECT_EQ(boxes.Boxes()[0].owner, window.Window());
    EXPECT_EQ(shell.Starts().size(), test.starts);
  }
}
