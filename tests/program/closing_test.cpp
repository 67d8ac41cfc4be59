// Ways to end the program while an installation is under way. None may hang, crash or lose what was downloaded.
#include "program/installer_test.h"
#include "system/files.h"

namespace {

constexpr size_t kSize = 600'000;
constexpr size_t kStall = 200 * 1024;

class Closing : public InstallerTest {
 protected:
  // Starts a download and returns while its transfer waits for the server, with some bytes received.
  void StartAndStall() {
    Offer({package_});
    server_.AnswerNext(FilePath(package_), {.body = package_.content, .stallAfter = kStall});
    Start(L"install:big.dat source:main");
    ASSERT_TRUE(server_.WaitForStall());
    ASSERT_TRUE(WaitUntil([this] { return FileSize(TempPath(L"big.dat")) >= kStall; }));
  }

  const TestPackage package_{.filename = "big.dat", .content = TestBytes(kSize), .name = "Big"};
};

TEST_F(Closing, CancelStopsTheTransferAndKeepsTheFile) {
  StartAndStall();
  EXPECT_EQ(ShownText(BottomButton(Window())), L"Cancel");
  Press(BottomButton(Window()));
  ASSERT_TRUE(WaitUntil([this] { return ShownText(BottomButton(Window())) == L"Exit"; }));
  // The server still holds the transfer.
  ASSERT_TRUE(
      WaitUntil([this] { return ShownText(ChildAt(Window(), L"Static", 10, 10)) == L"Installation cancelled"; }));
  EXPECT_EQ(ReportTypes(), (std::vector<std::string>{"install_start", "download_cancel"}));
  EXPECT_GE(FileSize(TempPath(L"big.dat")), kStall);
  EXPECT_LT(FileSize(TempPath(L"big.dat")), kSize);
  EXPECT_TRUE(PathExists(TempPath(L"big.dat.stat")));
  EXPECT_FALSE(PathExists(TargetPath(L"Big")));
  Press(BottomButton(Window()));
  ExpectExit();
}

TEST_F(Closing, TheEndOfTheSessionWaitsForTheWorkerAndItsReport) {
  StartAndStall();
  SendMessageW(Window(), WM_ENDSESSION, FALSE, 0);  // another program has refused
  DWORD_PTR result = 0;
  EXPECT_TRUE(SendMessageTimeoutW(Window(), WM_ENDSESSION, TRUE, static_cast<LPARAM>(ENDSESSION_LOGOFF), SMTO_NORMAL,
                                  10'000, &result));
  // Now Windows may end the process at any moment.
  EXPECT_EQ(ReportTypes(), (std::vector<std::string>{"install_start", "download_cancel"}));
  const std::string report = server_.RequestsOf("/play/files/telemetry.php").back().body;
  EXPECT_NE(report.find("&endsession4"), std::string::npos) << report;
  EXPECT_GE(FileSize(TempPath(L"big.dat")), kStall);
}

TEST_F(Closing, TheFifthCloseEndsBehindABox) {
  Offer({package_});
  server_.Answer(FilePath(package_), {.status = 404});
  Start(L"install:big.dat source:main");
  ExpectBox();  // whether to try again
  for (int i = 0; i < 4; ++i) SendMessageW(Window(), WM_CLOSE, 0, 0);
  EXPECT_TRUE(WaitUntil([this] { return PageOf(Window()) == ClosingPage; }));
  EXPECT_TRUE(Process().Runs());
  Close();
  ExpectExit();
}

}  // namespace
