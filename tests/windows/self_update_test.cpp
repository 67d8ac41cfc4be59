#include "net/self_update.h"

#include <gtest/gtest.h>
#include <windows.h>
// These need windows.h before them.
#include <commctrl.h>
#include <shellapi.h>

#include <future>
#include <string>
#include <thread>
#include <vector>

#include "app/context.h"
#include "app/replaced_program.h"
#include "app/site.h"
#include "net/network_errors.h"
#include "resource.h"
#include "support/box_recorder.h"
#include "support/exchanged.h"
#include "support/replaced_import.h"
#include "support/scripted_server.h"
#include "support/shell_recorder.h"
#include "support/temp_folder.h"
#include "support/test_window.h"
#include "support/wininet_faults.h"
#include "system/error_message.h"
#include "system/files.h"
#include "system/handles.h"

extern "C" {
extern decltype(&CopyFileW) importedCopyFile __asm__("__imp__CopyFileW@12");
extern decltype(&ShellExecuteExW) importedShellExecuteEx __asm__("__imp__ShellExecuteExW@4");
}

namespace {

constexpr char kNewProgram[] = "The quick brown fox jumps over the lazy dog";
constexpr char kNewMd5[] = "9e107d9d372bb6826bd81d3542a419d6";
constexpr char kFirst[] = "http://zendora.example/first", kSecond[] = "http://zendora.example/second";
constexpr wchar_t kPrompt[] = L"Please download the latest version of this app from:\n";

int pauses;

ScriptedAnswer Body(const std::string& body) {
  ScriptedAnswer answer;
  answer.body = body;
  return answer;
}

ScriptedAnswer Missing() {
  ScriptedAnswer answer = Body(kNewProgram);
  answer.status = 404;
  return answer;
}

ScriptedAnswer CutShort() {
  ScriptedAnswer answer = Body(kNewProgram);
  answer.announceLength = false;
  answer.closeAfter = 20;
  return answer;
}

std::wstring PromptText(const std::wstring& address, uint32_t error = 0) {
  const std::wstring errorLines = error != 0 ? FormatErrorMessage(error, {}) : L"";
  return errorLines + kPrompt + address + L"\n\nOpen?";
}

// The dialog of an update that runs on another thread.
HWND FindUpdateDialog(HWND owner) {
  for (HWND window = nullptr; (window = FindWindowExW(nullptr, window, L"#32770", nullptr)) != nullptr;) {
    if (GetWindow(window, GW_OWNER) == owner && GetDlgItem(window, UPDATE_PROGRESS)) return window;
  }
  return nullptr;
}

bool Answers(HWND window) {
  DWORD_PTR result = 0;
  return SendMessageTimeoutW(window, WM_NULL, 0, 0, SMTO_ABORTIFHUNG, 5000, &result) != 0;
}

// A program in a folder of its own plays the running one.
class SelfUpdate : public testing::Test {
 protected:
  SelfUpdate() {
    app.exePath = folder_ / L"program\\setup.exe";
    app.backupPath = app.exePath + L".backup";
    app.tmpPath.Set(folder_ / L"temporary");
    app.manifestPath = folder_ / L"temporary\\manifest.xml";
    app.commandLine = L"install:old source:old";
    app.updateInProgress = true;
    WriteTestFile(app.exePath, "the old program");
    WriteTestFile(app.manifestPath, "an old manifest");
    pauses = 0;
  }
  ~SelfUpdate() override {
    app.exePath.clear();
    app.backupPath.clear();
    app.tmpPath.Set({});
    app.manifestPath.clear();
    app.commandLine.clear();
  }

  static UpdaterInfo Announce(std::deque<std::string> urls, const std::string& helpURL = {}) {
    return {.md5 = kNewMd5, .helpURL = helpURL, .filesize = 43, .urls = std::move(urls)};
  }
  // Runs an update with the boxes that it shows answered. Its thread ends with it, and so does the dialog.
  static std::vector<RecordedBox> Update(const UpdaterInfo& announced, std::initializer_list<int> answers = {}) {
    const BoxRecorder boxes(answers);
    std::thread([&announced] { RunSelfUpdate(announced); }).join();
    return boxes.Boxes();
  }

  void ExpectReplaced() {
    EXPECT_EQ(ReadTestFile(app.exePath), kNewProgram);
    EXPECT_EQ(ReadTestFile(app.backupPath), "the old program");
    EXPECT_EQ(ReadTestFile(UpdateFilePath()), kNewProgram) << "serves a later update";
    EXPECT_FALSE(PathExists(app.manifestPath));
    EXPECT_TRUE(window_.WaitUntilClosed());
    EXPECT_TRUE(app.commandLine.empty());
    ASSERT_EQ(shell_.Starts().size(), 1u);
    EXPECT_EQ(shell_.Starts()[0].verb, L"open");
    EXPECT_EQ(shell_.Starts()[0].file, app.exePath);
    EXPECT_EQ(shell_.Starts()[0].parameters, L"updated");
  }
  // The program is as it was, ends without a relaunch, and its user was told where to get the new one.
  void ExpectGivenUp(const std::vector<RecordedBox>& boxes, const std::wstring& promptText) {
    ASSERT_FALSE(boxes.empty());
    EXPECT_EQ(boxes.back().caption, L"Update");
    EXPECT_EQ(boxes.back().text, promptText);
    EXPECT_EQ(boxes.back().buttons, (std::vector<int>{IDYES, IDNO}));
    EXPECT_EQ(boxes.back().owner, window_.Window());
    EXPECT_TRUE(window_.WaitUntilClosed());
    EXPECT_EQ(ReadTestFile(app.exePath), "the old program");
    EXPECT_FALSE(PathExists(app.backupPath));
    EXPECT_FALSE(PathExists(app.manifestPath));
    EXPECT_FALSE(app.restartRequested);
  }
  size_t RequestsOf(const char* path) const { return server_.RequestsOf(path).size(); }

  TempFolder folder_;
  ScriptedServer server_;
  ShellRecorder shell_;
  Exchanged<void (*)(HWND)> pause_{pauseBeforeUpdateRetry, [](HWND) { ++pauses; }};
  TestWindow window_{CreateProgramWindow};
};

TEST_F(SelfUpdate, DownloadsChecksReplacesAndRelaunches) {
  WriteTestFile(app.backupPath, "an even older program");
  server_.Answer("/first", Body(kNewProgram));
  EXPECT_TRUE(Update(Announce({kFirst, kSecond})).empty());
  ExpectReplaced();
  EXPECT_EQ(RequestsOf("/first"), 1u);
  EXPECT_EQ(RequestsOf("/second"), 0u);
}

TEST_F(SelfUpdate, UsesWhatAnEarlierAttemptHasBrought) {
  WriteTestFile(UpdateFilePath(), kNewProgram);
  Update(Announce({kFirst}));
  ExpectReplaced();
  EXPECT_TRUE(server_.Requests().empty());
}

TEST_F(SelfUpdate, TriesOneAddressAfterTheOther) {
  WriteTestFile(UpdateFilePath(), "what an earlier attempt left");
  server_.Answer("/another-file", Body("The quick brown fox jumps over the lazy cat"));
  server_.Answer("/nothing", Body(""));
  server_.Answer("/missing", Missing());
  server_.Answer("/cut-short", CutShort());
  server_.Answer("/second", Body(kNewProgram));
  std::deque<std::string> urls;
  for (const char* path : {"another-file", "nothing", "missing", "cut-short", "second", "first"}) {
    urls.push_back(std::string("http://zendora.example/") + path);
  }
  EXPECT_TRUE(Update(Announce(urls)).empty());
  ExpectReplaced();
  std::vector<std::string> asked;
  for (const RecordedRequest& request : server_.Requests()) {
    asked.push_back(request.target);
    EXPECT_EQ(request.headers.count("range"), 0u) << "what lies there may belong to another version";
  }
  EXPECT_EQ(asked, (std::vector<std::string>{"/another-file", "/nothing", "/missing", "/cut-short", "/second"}));
}

class SelfUpdateFailure : public SelfUpdate, public testing::WithParamInterface<int> {};

struct HelpCase {
  const char *helpURL, *md5;
  std::deque<std::string> urls;
  std::wstring address;
  size_t requests;
};

std::vector<HelpCase> HelpCases() {
  return {{"", kNewMd5, {kFirst, kSecond}, L"http://zendora.example/first", 2},
          {"http://help.example/", kNewMd5, {kFirst, kSecond}, L"http://help.example/", 2},
          {"http://help.example/", kNewMd5, {}, L"http://help.example/", 0},
          {"", kNewMd5, {}, DownloadPageAddress(), 0},
          // Hashes are compared letter by letter.
          {"", "9E107D9D372BB6826BD81D3542A419D6", {kSecond}, L"http://zendora.example/second", 1}};
}

TEST_P(SelfUpdateFailure, TellsWhereToGetTheProgram) {
  const HelpCase test = HelpCases()[static_cast<size_t>(GetParam())];
  server_.Answer("/first", Body("not the program"));
  server_.Answer("/second", Body(std::string(test.md5) == kNewMd5 ? "neither" : kNewProgram));
  UpdaterInfo announced = Announce(test.urls, test.helpURL);
  announced.md5 = test.md5;
  ExpectGivenUp(Update(announced, {IDNO}), PromptText(test.address));
  EXPECT_EQ(server_.Requests().size(), test.requests);
  EXPECT_TRUE(shell_.Starts().empty());
}
INSTANTIATE_TEST_SUITE_P(Each, SelfUpdateFailure, testing::Range(0, 5));

TEST_F(SelfUpdate, GivesAnAddressUpAfterSixtyRetries) {
  server_.Answer("/second", Body(kNewProgram));
  const SendFaults outage(std::deque<DWORD>(61, kErrorCannotConnect));
  Update(Announce({kFirst, kSecond}));
  ExpectReplaced();
  EXPECT_EQ(pauses, 60);
  EXPECT_EQ(RequestsOf("/first"), 0u);
  EXPECT_EQ(RequestsOf("/second"), 1u);
}

constexpr wchar_t kPermissionQuestion[] = L"Fix permissions?";

// A folder in the file's place denies every access to it, even to an administrator.
void DenyUpdateFile() { EXPECT_EQ(CreateDirectories(UpdateFilePath()), 0u); }

HWND dialogDuringRepair;

BOOL WINAPI RepairByRemoving(SHELLEXECUTEINFOW* info) {
  dialogDuringRepair = FindUpdateDialog(app.mainWindow);
  RemoveDirectoryW(UpdateFilePath().c_str());
  info->hProcess = CreateEventW(nullptr, TRUE, TRUE, nullptr);
  return TRUE;
}

TEST_F(SelfUpdate, RepairsPermissionsOnRequest) {
  DenyUpdateFile();
  server_.Answer("/first", Body(kNewProgram));
  const ReplacedImport repair(importedShellExecuteEx, RepairByRemoving);
  const auto boxes = Update(Announce({kFirst}), {IDYES});
  ASSERT_EQ(boxes.size(), 1u);
  EXPECT_EQ(boxes[0].caption, L"Update");
  EXPECT_EQ(boxes[0].text, FormatErrorMessage(ERROR_ACCESS_DENIED, kPermissionQuestion));
  EXPECT_EQ(boxes[0].buttons, (std::vector<int>{IDYES, IDNO}));
  EXPECT_TRUE(boxes[0].owner);
  EXPECT_EQ(boxes[0].owner, dialogDuringRepair);
  ExpectReplaced();
}

// The copy fails on a full disk, halfway.
BOOL WINAPI FailToCopy(const wchar_t*, const wchar_t* target, BOOL) {
  EXPECT_EQ(ReadTestFile(app.backupPath), "the old program");
  WriteTestFile(target, "The quick bro");
  SetLastError(ERROR_DISK_FULL);
  return FALSE;
}

TEST_F(SelfUpdate, MovesTheProgramBackWhenTheNewOneCannotBeCopied) {
  server_.Answer("/first", Body(kNewProgram));
  const ReplacedImport copy(importedCopyFile, FailToCopy);
  ExpectGivenUp(Update(Announce({kFirst}), {IDNO}), PromptText(L"http://zendora.example/first", ERROR_DISK_FULL));
}

// Between the two steps the program's place is empty, and a process that ended there would leave it so.
bool closingPageShown;
decltype(&CopyFileW) realCopyFile;

BOOL WINAPI CloseBeforeCopy(const wchar_t* source, const wchar_t* target, BOOL failIfExists) {
  EXPECT_FALSE(PathExists(target));
  PostMessageW(app.mainWindow, WM_CLOSE, 0, 0);
  const ULONGLONG end = GetTickCount64() + 10'000;
  while (app.currentPage != ClosingPage && GetTickCount64() < end) Sleep(5);
  closingPageShown = app.currentPage == ClosingPage && IsWindow(app.mainWindow);
  return realCopyFile(source, target, failIfExists);
}

TEST_F(SelfUpdate, AClosedWindowWaitsForTheNewProgramAndStaysClosed) {
  server_.Answer("/first", Body(kNewProgram));
  realCopyFile = importedCopyFile;
  closingPageShown = false;
  const ReplacedImport copy(importedCopyFile, CloseBeforeCopy);
  Update(Announce({kFirst}));
  EXPECT_TRUE(closingPageShown);
  EXPECT_TRUE(window_.WaitUntilClosed());
  EXPECT_EQ(ReadTestFile(app.exePath), kNewProgram);
  EXPECT_TRUE(shell_.Starts().empty()) << "who has closed the program doesn't want it back";
}

class StalledUpdate : public SelfUpdate {
 protected:
  StalledUpdate() {
    ScriptedAnswer stalling = Body(newProgram_);
    stalling.stallAfter = kHalf;
    server_.Answer("/first", stalling);
    update_ = std::async(std::launch::async, [] {
      UpdaterInfo announced = Announce({kFirst});
      announced.md5 = "30e9e575a359468ae617b763840d347f";  // of newProgram_
      EXPECT_TRUE(Update(announced).empty());
    });
    EXPECT_TRUE(server_.WaitForStall());
    dialog_ = FindUpdateDialog(window_.Window());
  }
  ~StalledUpdate() override { Finish(); }

  void Finish() {
    server_.Resume();
    update_.wait();
  }

  static constexpr size_t kHalf = 12 * 4096;  // what was sent before the stall is then handed on in full
  const std::string newProgram_ = std::string(2 * kHalf, 'x');
  std::future<void> update_;
  HWND dialog_ = nullptr;
};

TEST_F(StalledUpdate, ShowsHowFarItIsAndAnswers) {
  ASSERT_TRUE(dialog_);
  ASSERT_TRUE(Answers(dialog_));
  ASSERT_TRUE(Answers(window_.Window()));
  EXPECT_TRUE(IsWindowVisible(dialog_));
  EXPECT_FALSE(IsWindowEnabled(window_.Window()));
  EXPECT_EQ(TextOf(GetDlgItem(dialog_, UPDATE_STATUS)), L"Downloading update");
  // The server is ahead of the program.
  const std::wstring received = FormatByteSize(kHalf);
  const ULONGLONG end = GetTickCount64() + 10'000;
  while (TextOf(GetDlgItem(dialog_, UPDATE_RECEIVED)) != received && GetTickCount64() < end) Sleep(5);
  EXPECT_EQ(TextOf(GetDlgItem(dialog_, UPDATE_RECEIVED)), received);
  EXPECT_EQ(TextOf(GetDlgItem(dialog_, UPDATE_TOTAL)), FormatByteSize(2 * kHalf));
  EXPECT_EQ(SendDlgItemMessageW(dialog_, UPDATE_PROGRESS, PBM_GETPOS, 0, 0), 50);

  Finish();
  EXPECT_TRUE(window_.WaitUntilClosed());
  EXPECT_EQ(ReadTestFile(app.exePath), newProgram_);
  EXPECT_FALSE(IsWindow(dialog_)) << "it ends with its thread";
}

}  // namespace
