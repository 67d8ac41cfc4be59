// The program replaces itself. It lies in a folder of its own; the new program is the same one with a few bytes more.
#include "core/site.h"
#include "program/installer_test.h"
#include "resource.h"
#include "system/files.h"
#include "system/text.h"

namespace {

constexpr wchar_t kProgramName[] = L"ZendoraSelfUpdateTest.exe";
constexpr char kNew[] = "http://zendora.example/new.exe", kOther[] = "http://zendora.example/other.exe";
constexpr char kMissing[] = "http://zendora.example/missing.exe", kHelpPage[] = "http://zendora.example/help";
constexpr char kNobodyListens[] = "http://127.0.0.2/";
constexpr size_t kStall = 400 * 1024;

class SelfUpdate : public InstallerTest {
 protected:
  void SetUp() override {
    InstallerTest::SetUp();
    PlaceProgramIn(folder_.Path());
    WriteTestFile(program_, old_);
    Offer({package_});
    server_.Answer("/new.exe", {.body = new_});
    server_.Answer("/other.exe", {.body = "something else"});
  }
  void PlaceProgramIn(const std::wstring& folder) {
    program_ = folder + L"\\" + kProgramName;
    backup_ = program_ + L".backup";
  }

  // Starts the program, whose manifest announces the new one. Later manifests don't: the new program asks for them.
  void StartUpdate(const std::vector<std::string>& addresses = {kNew}, const std::string& helpPage = kHelpPage,
                   const std::wstring& commandLine = L"") {
    std::string sources;
    for (const std::string& address : addresses) sources += "<source url=\"" + address + "\"/>";
    server_.AnswerNext("/play/files/repository.php",
                       {.body = "<downloader><updater md5=\"" + Md5Of(new_) + "\" filesize=\"" +
                                std::to_string(new_.size()) + "\" helpURL=\"" + helpPage + "\">" + sources +
                                "</updater><packages><package><title>A</title><filename value=\"a.dat\"/></package>"
                                "</packages></downloader>"});
    DeleteFileW(TempPath(L"manifest.xml").c_str());
    Start(commandLine, program_);
  }
  // Returns while a part of the new program is there and the server holds back the rest.
  void StartAndStall(const std::wstring& commandLine = L"") {
    server_.AnswerNext("/new.exe", {.body = new_, .stallAfter = kStall});
    StartUpdate({kNew}, kHelpPage, commandLine);
    ASSERT_TRUE(server_.WaitForStall());
    ASSERT_TRUE(WaitUntil([this] { return FileSize(UpdateFile()) >= kStall; }));
  }
  // A folder in its place denies every access to the file, even to an administrator.
  InstallerBox StartWithoutAccess() {
    CreateDirectoryW(UpdateFile().c_str(), nullptr);
    StartUpdate();
    return ExpectBox(L"Fix permissions?");
  }

  std::wstring UpdateFile() const { return TempPath(L"launcher.update"); }
  void ExpectReplaced() {
    FollowRelaunch();
    AwaitList();
    ExpectContent(program_, new_);
    EXPECT_TRUE(WaitUntil([this] { return !PathExists(backup_); }));
  }
  // Nothing of it is left, on the screen or in the temporary folder.
  void ExpectEndWithoutUpdate() {
    ExpectExit();
    EXPECT_EQ(FindInstallerWindow(), nullptr);
    EXPECT_FALSE(FindBox(Process().Id()).window);
    EXPECT_TRUE(!PathExists(UpdateFile()) || IsDirectory(UpdateFile()) || DeleteFileW(UpdateFile().c_str()))
        << "still in use: " << GetLastError();
    ExpectContent(program_, old_);
    EXPECT_FALSE(PathExists(backup_));
  }
  void ExpectPromptAndEnd(const std::wstring& errorLine, const std::string& page) {
    const InstallerBox box = ExpectBox(L"Please download the latest version of this app from:\n" +
                                       std::wstring(page.begin(), page.end()) + L"\n\nOpen?");
    EXPECT_EQ(box.caption, L"Update");
    EXPECT_EQ(box.text.substr(0, box.text.find(errorLine.empty() ? L'P' : L'\n')), errorLine);
    AnswerBox(box, IDNO);
    ExpectEndWithoutUpdate();
  }

  const TempFolder folder_;
  std::wstring program_, backup_;
  const std::string old_ = ReadTestFile(InstallerProcess::ProgramPath());
  const std::string new_ = old_ + "newer";
  const TestPackage package_{.filename = "a.dat", .content = "a", .name = "A"};
};

TEST_F(SelfUpdate, ReplacesItselfAndStartsAnew) {
  StartAndStall(L"install:a.dat source:main");
  const HWND dialog = ExpectBox().window;
  EXPECT_EQ(ShownText(GetDlgItem(dialog, UPDATE_STATUS)), L"Downloading update");
  EXPECT_TRUE(WaitUntil([&] { return ShownText(GetDlgItem(dialog, UPDATE_RECEIVED)) == FormatByteSize(kStall); }));
  EXPECT_EQ(ShownText(Window()), L"Zendora Installer") << "the main window doesn't answer";
  EXPECT_FALSE(IsWindowEnabled(Window()));
  server_.Resume();
  ExpectReplaced();  // with its list: the new program does not install what the old one was started for
  EXPECT_TRUE(IsWindowEnabled(Window()));
  EXPECT_EQ(server_.RequestsOf("/new.exe").size(), 1u);
}

TEST_F(SelfUpdate, TriesOneAddressAfterTheOther) {
  WriteTestFile(UpdateFile(), "what an earlier attempt left");
  StartUpdate({kOther, kMissing, kNew, kOther});
  ExpectReplaced();
  EXPECT_EQ(server_.RequestsOf("/other.exe").size(), 1u);
  EXPECT_EQ(server_.RequestsOf("/missing.exe").size(), 1u);
  EXPECT_EQ(server_.RequestsOf("/new.exe").front().headers.count("Range"), 0u) << "what lies there isn't its beginning";
}

// Nor does it install what the command line asked for.
TEST_F(SelfUpdate, TellsWhereToGetTheProgram) {
  const struct {
    std::vector<std::string> addresses;
    std::string helpPage, shown;
  } cases[] = {{{kOther, kMissing}, kHelpPage, kHelpPage},
               {{kOther, kMissing}, "", kOther},
               {{}, "", WideToUtf8(DownloadPageAddress())}};
  for (const auto& test : cases) {
    SCOPED_TRACE(test.shown);
    StartUpdate(test.addresses, test.helpPage, L"install:a.dat source:main");
    ExpectPromptAndEnd(L"", test.shown);
  }
  EXPECT_TRUE(server_.RequestsOf(FilePath(package_)).empty());
}

TEST_F(SelfUpdate, AClickMeanwhileTellsWhereToGetTheProgram) {
  StartAndStall();
  PostMessageW(Window(), WM_COMMAND, BN_CLICKED << 16, reinterpret_cast<LPARAM>(BottomButton(Window())));
  ExpectPromptAndEnd(L"", WideToUtf8(DownloadPageAddress()));
}

// Sixty pauses, with the little patience of tests.
TEST_F(SelfUpdate, GivesAnAddressUpThatIsGoneForAMinute) {
  WriteTestFile(program_, ReadTestFile(InstallerProcess::ImpatientProgramPath()));
  StartUpdate({kNobodyListens, kNew});
  const ULONGLONG start = GetTickCount64();
  EXPECT_TRUE(WaitUntil([this] { return !Process().Runs(); }, std::chrono::seconds(60)));
  EXPECT_GE(GetTickCount64() - start, 3000u);
  ExpectReplaced();
}

TEST_F(SelfUpdate, RepairsPermissionsOnRequest) {
  const InstallerBox question = StartWithoutAccess();
  EXPECT_EQ(question.caption, L"Update");
  EXPECT_TRUE(question.text.starts_with(L"Error: 5\n"));
  RemoveDirectoryW(UpdateFile().c_str());
  AnswerBox(question, IDYES);
  ExpectReplaced();
}

TEST_F(SelfUpdate, LeavesPermissionsAloneOtherwise) {
  AnswerBox(StartWithoutAccess(), IDNO);
  ExpectPromptAndEnd(L"Error: 5", kHelpPage);
}

TEST_F(SelfUpdate, KeepsAProgramThatCannotBeReplaced) {
  for (const auto& [folder, error] : {std::pair(L"C:\\locked", L"Error: 5"), {L"C:\\full", L"Error: 112"}}) {
    if (!IsDirectory(folder)) GTEST_SKIP() << "no such disks here";
    SCOPED_TRACE(testing::PrintToString(folder));
    PlaceProgramIn(folder);
    CopyFileW(InstallerProcess::ProgramPath().c_str(), program_.c_str(), FALSE);
    StartUpdate();
    ExpectPromptAndEnd(error, kHelpPage);
    DeleteFileW(program_.c_str());
  }
}

TEST_F(SelfUpdate, ClosingEndsItAtAnyMoment) {
  const std::function<void()> moments[] = {
      [this] { StartAndStall(); },
      [this] {
        StartUpdate({kNobodyListens});
        ExpectBox();
      },
      [this] {
        StartUpdate({kOther});
        ExpectBox(L"Please download");
      },
      [this] { StartWithoutAccess(); },
  };
  for (const auto& reachMoment : moments) {
    SCOPED_TRACE(&reachMoment - moments);
    reachMoment();
    Close();
    ExpectEndWithoutUpdate();
  }
}

}  // namespace
