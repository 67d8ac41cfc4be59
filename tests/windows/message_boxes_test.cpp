#include "app/message_boxes.h"

#include <gtest/gtest.h>

#include <future>

#include "app/context.h"
#include "app/localization.h"
#include "app/site.h"
#include "support/box_recorder.h"
#include "support/replaced_import.h"
#include "support/shell_recorder.h"
#include "support/temp_folder.h"
#include "system/error_message.h"
#include "system/files.h"

extern "C" decltype(&CreateDirectoryW) importedCreateDirectory __asm__("__imp__CreateDirectoryW@8");

namespace {

const std::wstring kConnectionHint =
    L"Please check your Internet connection\n\nIn some cases the Antivirus software can cause this problem. You may "
    L"want to add the exception or allow Installer to use the Internet";

// The system's own description of an error, whatever its language; it ends with a line break.
std::wstring SystemText(DWORD error) {
  wchar_t text[512];
  const DWORD length = FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, error, 0,
                                      text, ARRAYSIZE(text), nullptr);
  EXPECT_GT(length, 0u);
  return std::wstring(text, length);
}

// The boxes that `show` shows, each answered in turn.
template <typename Show>
std::vector<RecordedBox> BoxesOf(std::initializer_list<int> answers, Show show) {
  BoxRecorder recorder(answers);
  show();
  return recorder.Boxes();
}

// Leaves no state of its own for the tests that come after.
class MessageBoxes : public testing::Test {
 protected:
  ~MessageBoxes() override {
    app.tmpPath.Set({});
    app.mainWindow = nullptr;
    app.updateInProgress = false;
  }

  TempFolder folder_;
};

HWND CreateHiddenWindow() {
  return CreateWindowExW(0, L"Static", L"", WS_POPUP, 0, 0, 10, 10, nullptr, nullptr, nullptr, nullptr);
}

// Folders can't be created for so many calls.
int deniedCalls;
decltype(&CreateDirectoryW) realCreateDirectory;

BOOL WINAPI DenyFirstCalls(const wchar_t* path, SECURITY_ATTRIBUTES* security) {
  if (deniedCalls == 0) return realCreateDirectory(path, security);
  --deniedCalls;
  SetLastError(ERROR_ACCESS_DENIED);
  return FALSE;
}

bool TakePostedClose(HWND window) {
  MSG message;
  return PeekMessageW(&message, window, WM_CLOSE, WM_CLOSE, PM_REMOVE);
}

}  // namespace

TEST_F(MessageBoxes, ErrorLinesStandBeforeTheText) {
  SetLastError(0);
  EXPECT_EQ(FormatErrorMessage(0, L"Fix permissions?"), L"Fix permissions?");
  const std::wstring accessDenied = L"Error: 5\n" + SystemText(ERROR_ACCESS_DENIED) + L"\nFix permissions?";
  EXPECT_EQ(FormatErrorMessage(ERROR_ACCESS_DENIED, L"Fix permissions?"), accessDenied);
  SetLastError(ERROR_ACCESS_DENIED);
  EXPECT_EQ(FormatErrorMessage(0, L"Fix permissions?"), accessDenied);
  EXPECT_EQ(FormatErrorMessage(12029, L"Help?"), L"Error: 12029\nHelp?");  // the system has no text for it
}

TEST_F(MessageBoxes, FixedTexts) {
  const HWND owner = CreateHiddenWindow();
  app.mainWindow = owner;
  const auto boxes = BoxesOf({IDOK, IDOK, IDOK, IDOK}, [] {
    SetLastError(ERROR_DISK_FULL);
    ShowManifestError();
    SetThreadLanguage(LANG_FRENCH);  // has no texts, so that looking for them leaves an error of its own
    SetLastError(0);
    ShowManifestError();
    SetThreadLanguage(LANG_ENGLISH);
    ShowConnectionHint();
    ShowCorruptDiskMessage();
  });
  DestroyWindow(owner);
  ASSERT_EQ(boxes.size(), 4u);
  for (const auto& box : boxes) {
    EXPECT_EQ(box.owner, owner);
    EXPECT_EQ(box.buttons, std::vector<int>{IDOK});
  }
  EXPECT_EQ(boxes[0].caption, L"Manifest");
  EXPECT_EQ(boxes[0].text, L"Error: 112\n" + SystemText(ERROR_DISK_FULL) + L"\nUnable to download packages list\n\n" +
                               kConnectionHint);
  EXPECT_EQ(boxes[1].text, L"Unable to download packages list\n\n" + kConnectionHint);
  EXPECT_EQ(boxes[2].caption, L"Error");
  EXPECT_EQ(boxes[2].text, kConnectionHint);
  EXPECT_EQ(boxes[3].caption, L"Error");
  EXPECT_EQ(boxes[3].text,
            L"It looks like the file or disk is corrupt. There might be a problem with your drive. If you continue to "
            L"see this message then try to reboot PC");
}

// A worker's box must not need the thread that owns the main window to come back from what it does.
TEST_F(MessageBoxes, RunOnTheThreadThatShowsThem) {
  const auto boxes = BoxesOf({IDOK}, [] { std::async(std::launch::async, ShowCorruptDiskMessage).get(); });
  EXPECT_EQ(boxes.size(), 1u);
}

TEST_F(MessageBoxes, TempFolderIsMadeWithoutAWord) {
  app.tmpPath.Set(folder_.Path());
  EXPECT_EQ(EnsureTempFolder(), 1);
  const std::wstring deep = folder_ / L"a\\b\\c";
  app.tmpPath.Set(deep);
  EXPECT_EQ(EnsureTempFolder(), 1);
  EXPECT_TRUE(IsDirectory(deep));
}

TEST_F(MessageBoxes, TempFolderThatCannotBeMade) {
  const std::wstring path = folder_ / L"file";
  WriteTestFile(path, "in the way");
  app.tmpPath.Set(path);
  int result = -1;
  const auto boxes = BoxesOf({IDOK}, [&] { result = EnsureTempFolder(); });
  EXPECT_EQ(result, 0);
  ASSERT_EQ(boxes.size(), 1u);
  EXPECT_EQ(boxes[0].caption, L"Error");
  EXPECT_EQ(boxes[0].text,
            L"Error: 183\n" + SystemText(ERROR_ALREADY_EXISTS) + L"\nUnable to create a directory:\n" + path);
}

TEST_F(MessageBoxes, DeniedTempFolderIsRepaired) {
  const std::wstring path = folder_ / L"new";
  app.tmpPath.Set(path);
  const ReplacedImport createDirectory(importedCreateDirectory, DenyFirstCalls);
  realCreateDirectory = createDirectory.Original();
  const std::wstring denied = L"Error: 5\n" + SystemText(ERROR_ACCESS_DENIED) + L"\n";
  struct Case {
    int denials, answer;
    DWORD repairError;
    int result;
    size_t repairs;
    bool toldAgain;
  };
  const Case cases[] = {
      {1, IDNO, 0, 0, 0, false},
      {1, IDYES, ERROR_CANCELLED, 0, 1, false},
      {2, IDYES, 0, 0, 1, true},
      {1, IDYES, 0, 2, 1, false},
  };
  for (const Case& c : cases) {
    deniedCalls = c.denials;
    const ShellRecorder shell(c.repairError);
    int result = -1;
    const auto ensure = [&] { result = EnsureTempFolder(); };
    const auto boxes = c.toldAgain ? BoxesOf({c.answer, IDOK}, ensure) : BoxesOf({c.answer}, ensure);
    EXPECT_EQ(result, c.result);
    EXPECT_EQ(shell.Starts().size(), c.repairs);
    EXPECT_EQ(IsDirectory(path), c.result == 2);
    ASSERT_EQ(boxes.size(), c.toldAgain ? 2u : 1u);
    EXPECT_EQ(boxes[0].caption, L"Error");
    EXPECT_EQ(boxes[0].text, denied + L"Unable to create a directory:\n" + path + L"\n\nFix permissions?");
    EXPECT_EQ(boxes[0].buttons, (std::vector<int>{IDYES, IDNO}));
    if (c.toldAgain) {
      EXPECT_EQ(boxes[1].text, denied);
    }
  }
}

TEST_F(MessageBoxes, LatestVersionIsOpened) {
  const ShellRecorder shell;
  BoxesOf({IDYES, IDNO, IDYES}, [] {
    PromptDownloadLatest(L"https://zendora.example/get");
    PromptDownloadLatest(L"https://zendora.example/refused");
    PromptDownloadLatest(L"");
  });
  ASSERT_EQ(shell.Starts().size(), 2u);
  EXPECT_EQ(shell.Starts()[0].verb, L"open");
  EXPECT_EQ(shell.Starts()[0].file, L"https://zendora.example/get");
  EXPECT_EQ(shell.Starts()[0].showCommand, SW_SHOWNORMAL);
  EXPECT_EQ(shell.Starts()[1].file, DownloadPageAddress());
}

TEST_F(MessageBoxes, LatestVersionIsOffered) {
  const HWND window = CreateHiddenWindow();
  app.mainWindow = window;
  const auto boxes = BoxesOf({IDNO, IDNO, IDNO}, [] {
    SetLastError(0);
    PromptDownloadLatest(L"https://zendora.example/get");
    SetLastError(ERROR_FILE_NOT_FOUND);
    PromptDownloadLatest(L"");
    SetLastError(12029);
    PromptDownloadLatest(L"");
  });
  EXPECT_FALSE(TakePostedClose(window));
  ASSERT_EQ(boxes.size(), 3u);
  EXPECT_EQ(boxes[0].caption, L"Update");
  EXPECT_EQ(boxes[0].buttons, (std::vector<int>{IDYES, IDNO}));
  EXPECT_EQ(boxes[0].owner, window);
  EXPECT_EQ(boxes[0].text,
            L"Please download the latest version of this app from:\nhttps://zendora.example/get\n\nOpen?");
  const std::wstring defaultPage =
      L"Please download the latest version of this app from:\n" + DownloadPageAddress() + L"\n\nOpen?";
  EXPECT_EQ(boxes[1].text, L"Error: 2\n" + SystemText(ERROR_FILE_NOT_FOUND) + L"\n" + defaultPage);
  EXPECT_EQ(boxes[2].text, L"Error: 12029\n\n" + defaultPage);

  app.updateInProgress = true;
  BoxesOf({IDNO}, [] { PromptDownloadLatest(L""); });
  EXPECT_TRUE(TakePostedClose(window));
  DestroyWindow(window);
}
