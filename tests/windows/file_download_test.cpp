#include <gtest/gtest.h>
#include <windows.h>
#include <winioctl.h>

#include <vector>

#include "net/http_client.h"
#include "net/network_errors.h"
#include "support/exchanged.h"
#include "support/scripted_server.h"
#include "support/temp_folder.h"
#include "support/wininet_faults.h"
#include "system/files.h"
#include "system/handles.h"

namespace {

constexpr wchar_t kUrl[] = L"http://zendora.example/a.zip";

// 10000 bytes of which no two chunks are alike.
std::string Content() {
  std::string content;
  for (int i = 0; content.size() < 10000; ++i) content += std::to_string(i) + ",";
  content.resize(10000);
  return content;
}

ScriptedAnswer ContentAnswer() {
  ScriptedAnswer answer;
  answer.body = Content();
  return answer;
}

// What the callback saw, and what it does: it cancels in the call of this number (counted from 0).
std::vector<DownloadProgress> seen;
std::vector<bool> fileSeen;
std::wstring watchedFile;
size_t cancelInCall;

void Watch(DownloadProgress* progress) {
  progress->cancel = seen.size() == cancelInCall;
  seen.push_back(*progress);
  fileSeen.push_back(PathExists(watchedFile));
}

// A folder with the file of one download, the server that has its content, and a client without gzip.
class FileDownload : public testing::Test {
 protected:
  FileDownload() {
    client.SetGzipEnabled(false);
    server.Answer("/a.zip", ContentAnswer());
    seen.clear();
    fileSeen.clear();
    watchedFile = file;
    cancelInCall = SIZE_MAX;
  }

  // With an error from before, which no result may show.
  HttpResult Download(uint64_t offset, DownloadProgressCallback callback = &Watch) {
    SetLastError(ERROR_CRC);
    return client.DownloadToFile(kUrl, file, offset, callback);
  }

  TempFolder folder;
  const std::wstring file = folder / L"a.zip";
  ScriptedServer server;
  HttpClient client;
};

std::vector<uint64_t> SeenDownloaded() {
  std::vector<uint64_t> downloaded;
  for (const DownloadProgress& progress : seen) downloaded.push_back(progress.downloaded);
  return downloaded;
}

void ExpectResult(const HttpResult& result, uint32_t error, bool cancelled, uint64_t total, uint32_t status,
                  uint64_t received) {
  EXPECT_EQ(result.error, error);
  EXPECT_EQ(result.cancelled, cancelled);
  EXPECT_EQ(result.total, total);
  EXPECT_EQ(result.statusCode, status);
  EXPECT_EQ(result.received, received);
}

}  // namespace

TEST_F(FileDownload, StoresTheBodyAndReportsEachChunk) {
  ExpectResult(Download(0), 0, false, 10000, 200, 10000);
  EXPECT_TRUE(ReadTestFile(file) == Content());
  EXPECT_EQ(SeenDownloaded(), (std::vector<uint64_t>{0, 4096, 8192, 10000}));
  EXPECT_EQ(fileSeen, (std::vector<bool>{false, true, true, true}));
  for (const DownloadProgress& progress : seen) {
    EXPECT_EQ(progress.total, 10000u);
    EXPECT_EQ(progress.transferStartTick == 0, progress.downloaded == 0);
  }
}

TEST_F(FileDownload, ResumesAtTheOffset) {
  WriteTestFile(file, Content().substr(0, 5000));
  client.SetGzipEnabled(true);
  ExpectResult(Download(5000), 0, false, 5000, 206, 5000);
  EXPECT_TRUE(ReadTestFile(file) == Content());
  EXPECT_EQ(SeenDownloaded(), (std::vector<uint64_t>{0, 9096, 10000}));
  const RecordedRequest request = server.Requests().at(0);
  EXPECT_NE(request.raw.find("\r\nRange: bytes=5000-\r\n"), std::string::npos) << request.raw;
  EXPECT_EQ(request.headers.count("accept-encoding"), 0u);
}

TEST_F(FileDownload, StartsOverWhenTheServerIgnoresTheRange) {
  ScriptedAnswer answer = ContentAnswer();
  answer.honourRange = false;
  server.Answer("/a.zip", answer);
  WriteTestFile(file, std::string(12000, 'o'));
  ExpectResult(Download(5000), 0, false, 10000, 200, 10000);
  EXPECT_TRUE(ReadTestFile(file) == Content());
  EXPECT_EQ(SeenDownloaded(), (std::vector<uint64_t>{0, 4096, 8192, 10000}));
}

TEST_F(FileDownload, ResumesBeyondFourGigabytes) {
  const uint64_t offset = 5'000'000'000;
  ScriptedAnswer answer;
  answer.status = 206;
  answer.body = "tail";
  server.Answer("/a.zip", answer);
  WriteTestFile(file, "");
  {  // without taking all that space where the file system allows it
    const FileHandle sparse(CreateFileW(file.c_str(), GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr));
    DWORD ignored;
    DeviceIoControl(sparse.Get(), FSCTL_SET_SPARSE, nullptr, 0, nullptr, 0, &ignored, nullptr);
  }
  ExpectResult(Download(offset), 0, false, 4, 206, 4);
  EXPECT_EQ(server.Requests().at(0).headers.at("range"), "bytes=5000000000-");
  EXPECT_EQ(FileSize(file), offset + 4);
  EXPECT_EQ(SeenDownloaded(), (std::vector<uint64_t>{0, offset + 4}));
}

TEST_F(FileDownload, TellsWhyTheFileCannotBeOpened) {
  SetLastError(ERROR_CRC);
  const auto download = [this](const std::wstring& path) { return client.DownloadToFile(kUrl, path, 0, nullptr); };
  ExpectResult(download(folder / L"missing\\a.zip"), ERROR_PATH_NOT_FOUND, false, 10000, 200, 0);
  ExpectResult(download(folder.Path()), ERROR_ACCESS_DENIED, false, 10000, 200, 0);
}

TEST_F(FileDownload, FullDiskEndsTheTransfer) {
  const std::wstring full = L"Z:\\dev\\full";
  if (!FileHandle(CreateFileW(full.c_str(), GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr))) {
    GTEST_SKIP() << "this system has no device that is always full";
  }
  ExpectResult(client.DownloadToFile(kUrl, full, 0, &Watch), ERROR_DISK_FULL, false, 10000, 200, 0);
  EXPECT_EQ(SeenDownloaded(), std::vector<uint64_t>{0});
}

TEST_F(FileDownload, BodyThatBreaksOffIsToldAndCanBeResumed) {
  ScriptedAnswer answer = ContentAnswer();
  answer.closeAfter = 6000;
  server.AnswerNext("/a.zip", answer);
  ExpectResult(Download(0), kErrorConnectionAborted, false, 10000, 200, 6000);
  EXPECT_TRUE(ReadTestFile(file) == Content().substr(0, 6000));
  ExpectResult(Download(6000), 0, false, 4000, 206, 4000);
  EXPECT_TRUE(ReadTestFile(file) == Content());
}

TEST_F(FileDownload, FetchesAnUndecodableBodyAgainWithoutGzip) {
  client.SetGzipEnabled(true);
  ScriptedAnswer shorter;
  shorter.body = "plain";
  server.AnswerNext("/a.zip", ContentAnswer());
  server.AnswerNext("/a.zip", shorter);
  const ReadFault fault(2, FALSE, kErrorDecodingFailed);
  ExpectResult(Download(0), 0, false, 5, 200, 8197);
  EXPECT_EQ(ReadTestFile(file), "plain");
  EXPECT_EQ(server.Requests().at(0).headers.count("accept-encoding"), 1u);
  EXPECT_EQ(server.Requests().at(1).headers.count("accept-encoding"), 0u);
}

TEST_F(FileDownload, CallbackChangesTheLimitFromItsSecondCallOn) {
  client.SetSpeedLimit(1'000'000);
  static std::vector<uint32_t> limits;
  limits.clear();
  const auto change_limit = [](DownloadProgress* progress) {
    limits.push_back(progress->speedLimit);
    if (progress->downloaded == 0) progress->speedLimit = 1;        // would pause after every chunk
    if (progress->downloaded == 4096) progress->speedLimit = 4096;  // passes once more, then pauses
    if (progress->downloaded == 8192) progress->speedLimit = 0;     // too late for the chunk before
    if (progress->downloaded == 10000) progress->speedLimit = 7777;
  };
  ExpectResult(Download(0, change_limit), 0, false, 10000, 200, 10000);
  Download(0, change_limit);
  EXPECT_EQ(limits, (std::vector<uint32_t>{1'000'000, 1'000'000, 4096, 0, 7777, 7777, 4096, 0}));
}
