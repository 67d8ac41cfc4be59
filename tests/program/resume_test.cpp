// Downloads that break off: not a byte that arrived is fetched again, and the result is the same.
#include "program/installer_test.h"
#include "system/files.h"

namespace {

constexpr size_t kSize = 2'000'000;
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

  // Starts a download and returns while its transfer waits for the server.
  void StartAndStall(std::optional<size_t> closeAfter = {},
                     const std::wstring& program = InstallerProcess::ProgramPath()) {
    Offer({package_});
    server_->AnswerNext(FilePath(package_), {.body = package_.content, .closeAfter = closeAfter, .stallAfter = kStall});
    Start(L"install:big.zip source:main", program);
    ASSERT_TRUE(server_->WaitForStall());
    ASSERT_TRUE(WaitUntil([this] { return FileSize(TempPath(L"big.zip")) >= kStall; }));
  }

  std::wstring Detail() { return ShownText(ChildAt(Window(), L"Static", 10, 54)); }

  void ExpectInstalled() {
    ExpectContent(TempPath(L"big.zip"), package_.content);
    ExpectContent(TargetPath(L"Big\\data.bin"), content_);
  }

  // The second request for the package asked for the rest only.
  void ExpectResumedFrom(uint64_t offset) {
    const auto requests = server_->RequestsOf(FilePath(package_));
    ASSERT_EQ(requests.size(), 2u);
    EXPECT_EQ(requests[0].headers.count("range"), 0u);
    EXPECT_EQ(requests[1].headers.at("range"), "bytes=" + std::to_string(offset) + "-");
    ExpectInstalled();
  }

  const std::string content_ = TestBytes(kSize);
  const TestPackage package_{.filename = "big.zip",
                             .content = ZipOf({{"data.bin", content_}}),
                             .name = "Big",
                             .filetype = kZipType,
                             .upsize = kSize};
};

TEST_F(Resume, AfterTheProgramWasKilled) {
  StartAndStall();
  Process().Kill();
  const uint64_t length = FileSize(TempPath(L"big.zip"));
  server_->Resume();
  Start(L"install:big.zip source:main");
  ExpectLog(L"Resuming download process from: " + std::to_wstring(length));
  ExpectEnd();
  ExpectResumedFrom(length);
}

TEST_F(Resume, AfterManyAttemptsWithoutServer) {
  StartAndStall(kStall, InstallerProcess::ImpatientProgramPath());
  const uint64_t length = FileSize(TempPath(L"big.zip"));
  server_->StopListening();
  server_->Resume();
  const std::wstring retrying = L"Bad Internet connection. Retrying.. (";
  const auto showsManyRetries = [&] {
    const std::wstring detail = Detail();
    return detail.starts_with(retrying) && std::stoi(detail.substr(retrying.size())) >= 28;
  };
  EXPECT_TRUE(WaitUntil(showsManyRetries)) << testing::PrintToString(Detail());
  server_->ListenAgain();
  ExpectEnd();
  ExpectResumedFrom(length);
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
  ExpectInstalled();
}

}  // namespace
