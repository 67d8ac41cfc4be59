// What the Options menu does while the program runs.
#include <shlobj.h>

#include "program/installer_test.h"
#include "resource.h"
#include "system/files.h"
#include "system/handles.h"

namespace {

class Options : public InstallerTest {};

TEST_F(Options, ASpeedLimitChangesARunningDownload) {
  constexpr size_t kSize = 3'000'000;
  const TestPackage package{.filename = "big.dat", .content = TestBytes(kSize), .name = "Big"};
  Offer({package});
  SetNumber(L"MaxDownloadSpeed", 16);  // KB/s: three minutes in all
  Start(L"install:big.dat source:main");
  ASSERT_TRUE(WaitUntil([this] { return FileSize(TempPath(L"big.dat")) >= uint64_t{16} * 1024; }));
  EXPECT_LT(FileSize(TempPath(L"big.dat")), kSize / 2);
  ChooseCommand(Window(), COMMAND_SPEED_LIMIT);
  const InstallerBox dialog = ExpectBox();
  EXPECT_EQ(dialog.caption, L"Speed Limit");
  SendMessageW(GetDlgItem(dialog.window, SPEED_EDIT), WM_SETTEXT, 0, reinterpret_cast<LPARAM>(L""));
  AnswerBox(dialog, IDOK);
  ExpectEnd();
  ExpectContent(TargetPath(L"Big\\big.dat"), package.content);
}

// The program goes on, and saves nothing at its end.
TEST_F(Options, DeletedApplicationDataIsGone) {
  Offer({{.filename = "a.dat", .content = "a", .name = "A"}});
  SetNumber(L"MaxDownloadSpeed", 16);
  const std::wstring dataFolder = SpecialFolder(CSIDL_APPDATA) + L"\\Zendora\\Installer";
  WriteTestFile(dataFolder + L"\\left.zip", "left");
  Start();
  AwaitList();
  ChooseCommand(Window(), COMMAND_DELETE_APP_DATA);
  const std::wstring question = L"Following data will be deleted:\n- Application registry items\n- Folder: " +
                                dataFolder + L"\n- Folder: " + downloads_.Path();
  AnswerBox(ExpectBox(question), IDNO);
  ASSERT_TRUE(WaitUntil([this] { return !FindBox(Process().Id()).window; }));
  EXPECT_TRUE(PathExists(dataFolder + L"\\left.zip") && HasSetting(L"MaxDownloadSpeed"));
  WriteTestFile(TempPath(L"used"), "used");
  {
    const FileHandle user(
        CreateFileW(TempPath(L"used").c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr));
    ChooseCommand(Window(), COMMAND_DELETE_APP_DATA);
    AnswerBox(ExpectBox(question), IDYES);
    const InstallerBox remains = ExpectBox(L"- Folder: " + downloads_.Path());
    EXPECT_TRUE(remains.text.starts_with(L"Error: 32\n")) << testing::PrintToString(remains.text);
    EXPECT_EQ(remains.text.find(L"registry"), std::wstring::npos) << testing::PrintToString(remains.text);
    AnswerBox(remains, IDOK);
  }
  ChooseCommand(Window(), COMMAND_DELETE_APP_DATA);
  AnswerBox(ExpectBox(question), IDYES);
  AnswerBox(ExpectBox(L"Application data is deleted"), IDOK);
  Close();
  ExpectExit();
  EXPECT_FALSE(PathExists(dataFolder));
  EXPECT_FALSE(PathExists(downloads_.Path()));
  for (const wchar_t* setting : {L"MaxDownloadSpeed", L"LastTmpPath", L"UUID"}) EXPECT_FALSE(HasSetting(setting));
}

}  // namespace
