// The program replaces itself. It lies in a folder of its own; the new program is the same one with a few bytes more.
#include <windows.h>
// These need windows.h before them.
#include <commctrl.h>
#include <tlhelp32.h>

#include "program/installer_test.h"
#include "resource.h"
#include "system/files.h"

namespace {

constexpr wchar_t kProgramName[] = L"ZendoraSelfUpdateTest.exe";

// Ends what a killed or failed program has left running.
void KillProgramsOfThisTest() {
  const FileHandle snapshot(CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0));
  PROCESSENTRY32W entry{};
  entry.dwSize = sizeof entry;
  for (BOOL found = Process32FirstW(snapshot.Get(), &entry); found; found = Process32NextW(snapshot.Get(), &entry)) {
    if (std::wstring(entry.szExeFile).starts_with(kProgramName)) InstallerProcess(entry.th32ProcessID).Kill();
  }
}

class SelfUpdate : public InstallerTest {
 protected:
  void SetUp() override {
    InstallerTest::SetUp();
    WriteTestFile(program_, old_);
    Offer({package_});
    OfferNewProgram(new_);
  }
  void TearDown() override {
    InstallerTest::TearDown();
    KillProgramsOfThisTest();
  }

  // The next manifest announces the new program. Those that follow do not: they are asked for by the new program.
  void Announce() {
    ScriptedAnswer manifest;
    manifest.body = "<downloader><updater md5=\"" + Md5Of(new_) + "\" filesize=\"" + std::to_string(new_.size()) +
                    "\" helpURL=\"http://zendora.example/help\"><source url=\"http://zendora.example/new.exe\"/>"
                    "</updater><packages><package><title>A</title><filename value=\"a.dat\"/></package></packages>"
                    "</downloader>";
    server_->AnswerNext("/play/files/repository.php", manifest);
  }
  void OfferNewProgram(const std::string& content, std::optional<size_t> stallAfter = {}) {
    ScriptedAnswer answer;
    answer.body = content;
    answer.stallAfter = stallAfter;
    server_->Answer("/new.exe", answer);
  }
  // Returns while a part of the new program is there and the server holds back the rest.
  void StartAndStall(const std::wstring& commandLine = L"") {
    Announce();
    OfferNewProgram(new_, kStall);
    Start(commandLine, program_);
    ASSERT_TRUE(server_->WaitForStall());
    ASSERT_TRUE(WaitUntil([this] { return FileSize(TempPath(L"launcher.update")) >= kStall; }));
  }
  // Starts an update that comes to nothing, and returns its prompt.
  InstallerBox StartAndFail(const std::wstring& commandLine = L"") {
    Announce();
    OfferNewProgram("something else");
    Start(commandLine, program_);
    EXPECT_TRUE(WaitUntil([this] { return FindBox(Process().Id()).text.starts_with(L"Please download"); }));
    return FindBox(Process().Id());
  }

  void ExpectNoBackup() {
    EXPECT_TRUE(WaitUntil([this] { return !PathExists(backup_); }));
  }
  void CloseAndExpectExit() {
    Close();
    ExpectExit();
    EXPECT_EQ(FindInstallerWindow(), nullptr);
  }

  static constexpr size_t kStall = 400 * 1024;
  const TempFolder folder_;
  const std::wstring program_ = folder_ / kProgramName, backup_ = program_ + L".backup";
  const std::string old_ = ReadTestFile(InstallerProcess::ProgramPath()), new_ = old_ + "newer";
  const TestPackage package_{.filename = "a.dat", .content = "a", .name = "A"};
};

TEST_F(SelfUpdate, ReplacesItselfAndStartsAnew) {
  StartAndStall(L"source:other");
  const HWND dialog = ExpectBox().window;
  EXPECT_EQ(ShownText(GetDlgItem(dialog, UPDATE_STATUS)), L"Downloading update");
  EXPECT_EQ(ShownText(GetDlgItem(dialog, UPDATE_TOTAL)), FormatByteSize(static_cast<int64_t>(new_.size())));
  EXPECT_TRUE(WaitUntil([&] { return ShownText(GetDlgItem(dialog, UPDATE_RECEIVED)) == FormatByteSize(kStall); }));
  EXPECT_EQ(SendDlgItemMessageW(dialog, UPDATE_PROGRESS, PBM_GETPOS, 0, 0),
            static_cast<LRESULT>(kStall * 100 / new_.size()));
  EXPECT_EQ(ShownText(Window()), L"Zendora Installer") << "the main window doesn't answer";
  EXPECT_FALSE(IsWindowEnabled(Window()));
  server_->Resume();

  FollowRelaunch();
  EXPECT_EQ(Process().File(), program_);
  ExpectContent(program_, new_);
  ExpectNoBackup();
  AwaitList();
  EXPECT_TRUE(IsWindowEnabled(Window()));
  EXPECT_EQ(server_->RequestsOf("/new.exe").size(), 1u);
  CloseAndExpectExit();
}

TEST_F(SelfUpdate, ClosingEndsTheDownload) {
  StartAndStall();
  CloseAndExpectExit();
  EXPECT_TRUE(DeleteFileW(TempPath(L"launcher.update").c_str())) << "still in use: " << GetLastError();
  ExpectContent(program_, old_);
  EXPECT_FALSE(PathExists(backup_));
}

// Nor does it install what the command line asked for.
TEST_F(SelfUpdate, AnsweringThePromptEndsTheProgram) {
  const InstallerBox box = StartAndFail(L"install:a.dat source:main");
  EXPECT_EQ(box.caption, L"Update");
  EXPECT_EQ(box.text, L"Please download the latest version of this app from:\nhttp://zendora.example/help\n\nOpen?");
  AnswerBox(box, IDNO);
  ExpectExit();
  EXPECT_EQ(FindInstallerWindow(), nullptr);
  ExpectContent(program_, old_);
  EXPECT_TRUE(server_->RequestsOf(FilePath(package_)).empty());
}

TEST_F(SelfUpdate, AKillDuringTheDownloadHarmsNothing) {
  StartAndStall();
  Process().Kill();
  ExpectContent(program_, old_);
  Start(L"", program_);
  AwaitList();
}

// Whatever the moment, a whole program is there; and once it was started, it is the only one.
TEST_F(SelfUpdate, AKillWhileItIsReplacedLeavesAWholeProgram) {
  Announce();
  Start(L"", program_);
  EXPECT_TRUE(WaitUntil([this] { return PathExists(backup_); }));
  KillProgramsOfThisTest();
  const bool replaced = ReadWholeFile(program_) == new_;
  if (!replaced) ExpectContent(backup_, old_);
  Start(L"", replaced ? program_ : backup_);
  AwaitList();
  ExpectNoBackup();
  ExpectContent(program_, replaced ? new_ : old_);
}

TEST_F(SelfUpdate, AForgottenCopyIsRemoved) {
  WriteTestFile(program_, new_);
  WriteTestFile(TempPath(L"launcher.update"), new_);
  WriteTestFile(backup_, old_);
  Start(L"", program_);
  AwaitList();
  EXPECT_FALSE(PathExists(backup_));
}

}  // namespace
