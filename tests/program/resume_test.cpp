// Downloads that break off: not a byte that arrived is fetched again, and the result is the same.
#include "program/installer_test.h"
#include "system/files.h"

namespace {

constexpr size_t kStall = 700 * 1024;

// The machine that runs the tests takes its network away while a file is there, and tells so by another.
constexpr wchar_t kCableSwitch[] = L"C:\\link\\down";
constexpr wchar_t kCableIsOut[] = L"C:\\link\\is-down";

bool CanPullCable() { return IsDirectory(L"C:\\link"); }

void PullCable() {
  WriteTestFile(kCableSwitch, "");
  EXPECT_TRUE(WaitUntil([] { return PathExists(kCableIsOut); }));
}

void PlugCableIn() {
  DeleteFileW(kCableSwitch);
  EXPECT_TRUE(WaitUntil([] { return !PathExists(kCableIsOut); }));
}

class Resume : public InstallerTest {
 protected:
  void TearDown() override {
    if (CanPullCable()) PlugCableIn();
    InstallerTest::TearDown();
  }

  const TestPackage package_{.filename = "big.dat", .content = TestBytes(2'000'000), .name = "Big"};
};

TEST_F(Resume, AfterManyAttemptsWithoutServer) {
  Offer({package_});
  server_->AnswerNext(FilePath(package_), {.body = package_.content, .closeAfter = kStall, .stallAfter = kStall});
  Start(L"install:big.dat source:main", InstallerProcess::ImpatientProgramPath());
  ASSERT_TRUE(server_->WaitForStall());
  ASSERT_TRUE(WaitUntil([this] { return FileSize(TempPath(L"big.dat")) >= kStall; }));
  const uint64_t length = FileSize(TempPath(L"big.dat"));
  server_->StopListening();
  server_->Resume();
  const std::wstring retrying = L"Bad Internet connection. Retrying.. (";
  std::wstring shown;
  const auto showsManyRetries = [&] {
    shown = ShownText(ChildAt(Window(), L"Static", 10, 54));
    return shown.starts_with(retrying) && std::stoi(shown.substr(retrying.size())) >= 28;
  };
  EXPECT_TRUE(WaitUntil(showsManyRetries)) << testing::PrintToString(shown);
  server_->ListenAgain();
  ExpectEnd();
  ExpectContent(TargetPath(L"Big\\big.dat"), package_.content);
  const auto requests = server_->RequestsOf(FilePath(package_));
  ASSERT_EQ(requests.size(), 2u);
  EXPECT_EQ(requests[0].headers.count("range"), 0u);
  EXPECT_EQ(requests[1].headers.at("range"), "bytes=" + std::to_string(length) + "-");
}

// The error is told at once, and once; the list then comes by itself.
TEST_F(Resume, StartsWithoutNetwork) {
  if (!CanPullCable()) GTEST_SKIP() << "nothing here can pull the cable";
  Offer({package_});
  PullCable();
  Start();
  const InstallerBox box = ExpectBox();
  EXPECT_EQ(box.caption, L"Manifest");
  EXPECT_TRUE(box.text.starts_with(L"Error: 12029\n")) << testing::PrintToString(box.text);
  AnswerBox(box, IDOK);
  ASSERT_TRUE(WaitUntil([this] { return !FindBox(Process().Id()).window; }));
  EXPECT_FALSE(WaitUntil([this] { return FindBox(Process().Id()).window; }, std::chrono::milliseconds(2500)));
  PlugCableIn();
  PressInstall();
  ExpectEnd();
  ExpectContent(TargetPath(L"Big\\big.dat"), package_.content);
}

}  // namespace
