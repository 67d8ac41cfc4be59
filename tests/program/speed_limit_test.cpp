// A speed limit that is changed while a package is being downloaded.
#include "program/installer_test.h"
#include "resource.h"
#include "system/files.h"

namespace {

class SpeedLimit : public InstallerTest {
 protected:
  // Through the dialog, as a user would.
  void SetLimit(const wchar_t* limit) {
    ChooseCommand(Window(), COMMAND_SPEED_LIMIT);
    const InstallerBox dialog = ExpectBox();
    EXPECT_EQ(dialog.caption, L"Speed Limit");
    SendMessageW(GetDlgItem(dialog.window, SPEED_EDIT), WM_SETTEXT, 0, reinterpret_cast<LPARAM>(limit));
    AnswerBox(dialog, IDOK);
    EXPECT_TRUE(WaitUntil([&] { return !IsWindow(dialog.window); }));
  }
};

TEST_F(SpeedLimit, ChangesARunningDownload) {
  constexpr size_t kSize = 3'000'000;
  const TestPackage package{.filename = "big.dat", .content = TestBytes(kSize), .name = "Big"};
  Offer({package});
  SetNumber(L"MaxDownloadSpeed", 16);  // KB/s: three minutes in all
  Start(L"install:big.dat source:main");
  ASSERT_TRUE(WaitUntil([this] { return FileSize(TempPath(L"big.dat")) >= uint64_t{16} * 1024; }));
  EXPECT_LT(FileSize(TempPath(L"big.dat")), kSize / 2);
  SetLimit(L"");
  ExpectEnd();
  ExpectContent(TargetPath(L"Big\\big.dat"), package.content);
}

}  // namespace
