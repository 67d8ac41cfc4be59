// Downloads that break off: not a byte that arrived is fetched again, and the result is the same.
#include "program/installer_test.h"
#include "system/files.h"
#include "system/text.h"

namespace {

constexpr wchar_t kLinkDown[] = L"C:\\link\\down";
constexpr wchar_t kLinkIsDown[] = L"C:\\link\\is-down";
constexpr size_t kSize = 2'000'000;
constexpr size_t kStall = 700 * 1024;

class Resume : public InstallerTest {
 protected:
  void StartAndStall() {
    Offer({package_});
    ScriptedAnswer stalling;
    stalling.body = package_.content;
    stalling.stallAfter = kStall;
    server_->AnswerNext(FilePath(package_), stalling);
    Start(L"install:big.zip source:main");
    ASSERT_TRUE(server_->WaitForStall());
    ASSERT_TRUE(WaitUntil([this] { return FileSize(TempPath(L"big.zip")) >= kStall; }));
  }

  // The last request for the package went on where the file ended, and the installed file is right.
  void ExpectResumedFrom(uint64_t offset) {
    const auto requests = server_->RequestsOf(FilePath(package_));
    ASSERT_EQ(requests.size(), 2u);
    EXPECT_EQ(requests[0].headers.count("range"), 0u);
    EXPECT_EQ(requests[1].headers.at("range"), "bytes=" + std::to_string(offset) + "-");
    EXPECT_EQ(ReadTestFile(TempPath(L"big.zip")), package_.content);
    EXPECT_EQ(ReadTestFile(TargetPath(L"Big\\data.bin")), content_);
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

TEST_F(Resume, AfterThirtySecondsWithoutNetwork) {
  if (!IsDirectory(L"C:\\link")) GTEST_SKIP() << "nothing here can pull the cable";
  StartAndStall();
  WriteTestFile(kLinkDown, "");
  ASSERT_TRUE(WaitUntil([] { return PathExists(kLinkIsDown); }));
  const uint64_t length = FileSize(TempPath(L"big.zip"));
  const auto detail = [this] { return ShownText(ChildAt(Window(), L"Static", 10, 54)); };
  const auto shows = [&](int count) {
    return WaitUntil(
        [&] { return detail() == L"Bad Internet connection. Retrying.. (" + std::to_wstring(count) + L")"; },
        std::chrono::seconds(40));
  };
  EXPECT_TRUE(shows(5)) << "it shows " << testing::PrintToString(detail());
  EXPECT_TRUE(shows(27)) << "it shows " << testing::PrintToString(detail());
  DeleteFileW(kLinkDown);
  ExpectEnd();
  ExpectResumedFrom(length);
}

TEST_F(Resume, StartsOverWhenTheRecordIsOfAnotherVersion) {
  StartAndStall();
  Process().Kill();
  server_->Resume();
  SetFileAttributesW(TempPath(L"big.zip.stat").c_str(), FILE_ATTRIBUTE_NORMAL);
  WriteTestFile(TempPath(L"big.zip.stat"), "1|of another version");
  Start(L"install:big.zip source:main");
  ExpectEnd();
  const auto requests = server_->RequestsOf(FilePath(package_));
  ASSERT_EQ(requests.size(), 2u);
  EXPECT_EQ(requests[1].headers.count("range"), 0u);
  EXPECT_EQ(ReadTestFile(TargetPath(L"Big\\data.bin")), content_);
}

TEST_F(Resume, AWholeFileIsNotFetchedAgain) {
  Offer({package_});
  Start(L"install:big.zip source:main");
  ExpectEnd();
  Close();
  ExpectExit();
  Start(L"install:big.zip source:main");
  ExpectLog(L"File exists. Hash is ok (" + WidenBytes(Md5Of(package_.content)) + L")");
  ExpectEnd();
  EXPECT_EQ(server_->RequestsOf(FilePath(package_)).size(), 1u);
}

}  // namespace
