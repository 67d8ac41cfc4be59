#include "net/http_client.h"

#include <winsock2.h>

#include <mutex>
#include <stop_token>
#include <thread>

#include "net/http_post_client.h"
#include "net/http_result.h"
#include "support/exchanged.h"
#include "support/install_scenario.h"
#include "support/replaced_import.h"
#include "support/wininet_faults.h"
#include "support/zip_builder.h"

extern "C" decltype(&WriteFile) importedWriteFile __asm__("__imp__WriteFile@20");

namespace {

constexpr wchar_t kUrl[] = L"http://zendora.example/a";

// Every transfer begins with an error from before, which no result may show.
class Http : public InstallScenario {
 protected:
  Http() { server_.Answer("/a", Serving(content_)); }

  static std::string Summary(const HttpResult& result) {
    return std::to_string(result.statusCode) + ": " + std::to_string(result.received) + " of " +
           std::to_string(result.total) + ", error " + std::to_string(result.error) +
           (result.cutShort ? ", cut short" : "") + (result.cancelled ? ", cancelled" : "");
  }
  std::string Download(uint64_t offset, const ScriptedAnswer& answer) {
    server_.AnswerNext("/a", answer);
    SetLastError(ERROR_CRC);
    return Summary(client_.DownloadToFile(kUrl, file_, offset, nullptr));
  }

  const std::string content_ = TestBytes(10000);
  HttpClient client_{app.userAgent};
};

BOOL WINAPI RefuseToWrite(HANDLE, const void*, DWORD, DWORD* written, OVERLAPPED*) {
  *written = 0;
  SetLastError(ERROR_DISK_FULL);
  return FALSE;
}

// What kinds of handle were closed, in order, when the threads of requests are in no hurry to.
std::mutex closedLock;
std::vector<DWORD> closedKinds;
DWORD hurriedThread;
decltype(&::InternetCloseHandle) closeHandle;

BOOL WINAPI CloseLate(HINTERNET handle) {
  if (GetCurrentThreadId() != hurriedThread) Sleep(100);
  DWORD kind = 0, size = sizeof kind;
  WinInet().InternetQueryOption(handle, INTERNET_OPTION_HANDLE_TYPE, &kind, &size);
  const std::lock_guard guard(closedLock);
  closedKinds.push_back(kind);
  return closeHandle(handle);
}

}  // namespace

TEST_F(Http, DownloadGoesOnWhereItBrokeOff) {
  EXPECT_EQ(Download(0, {.body = content_, .closeAfter = 6000}), "200: 6000 of 10000, error 12030, cut short");
  EXPECT_EQ(Download(6000, Serving("no such range", 416)), "416: 0 of 0, error 0");
  EXPECT_EQ(ReadTestFile(file_), content_.substr(0, 6000));
  EXPECT_EQ(Download(6000, Serving(content_)), "206: 4000 of 4000, error 0");
  EXPECT_EQ(ReadTestFile(file_), content_);
  const RecordedRequest request = server_.Requests().back();
  EXPECT_EQ(request.headers.at("Range"), "bytes=6000-");
  EXPECT_FALSE(request.headers.contains("Accept-Encoding")) << "the range would be one of the packed bytes";

  WriteTestFile(file_, std::string(12000, 'o'));
  EXPECT_EQ(Download(6000, {.body = content_, .honourRange = false}), "200: 10000 of 10000, error 0");
  EXPECT_EQ(ReadTestFile(file_), content_);
  EXPECT_EQ(Download(5'000'000'000, Serving("tail", 206)), "206: 4 of 4, error 0");
  EXPECT_EQ(server_.Requests().back().headers.at("Range"), "bytes=5000000000-");
  EXPECT_EQ(FileSize(file_), 5'000'000'004u);
}

TEST_F(Http, FetchesAnUndecodableBodyAgainWithoutGzip) {
  const ReadFaults faults({0, 0, kErrorDecodingFailed});
  server_.Answer("/a", Serving("plain"));
  EXPECT_EQ(Download(0, Serving(content_)), "200: 8197 of 5, error 0");
  EXPECT_EQ(ReadTestFile(file_), "plain");
  EXPECT_TRUE(server_.Requests().at(0).headers.contains("Accept-Encoding"));
  EXPECT_FALSE(server_.Requests().at(1).headers.contains("Accept-Encoding"));
}

TEST_F(Http, APackedBodyIsUnpacked) {
  using namespace std::string_literals;
  const std::string head = "\x1F\x8B\x08\0\0\0\0\0\x02\x03"s;
  const std::pair<std::string, std::string> cases[] = {
      {head +
           "\xED\xC1\x01\x0D\0\0\0\xC2\xA0\xDA\x8F\x6F\x0E\x37\xA0\0\0\0\0\0\0\0\0\0\xE0\xDF\0\xA3\xA4\x55\x0D\x10\x27\0\0"s,
       std::string(10'000, 'x')},
      {head + "\x4B\x04\0\x43\xBE\xB7\xE8\x01\0\0\0"s, "a"},  // a tiny body grows by being packed
  };
  for (const auto& [packed, content] : cases) {
    const std::string summary = Download(0, {.body = packed, .gzip = true});
    EXPECT_TRUE(summary.ends_with(", error 0")) << summary;
    EXPECT_EQ(ReadTestFile(file_), content);
  }
}

TEST_F(Http, AnAnswerThatCantBeTheRestLeavesWhatIsThere) {
  const std::string there = content_.substr(0, 6000);
  WriteTestFile(file_, there);
  const ScriptedAnswer endless{
      .body = "<html>Sign in</html>", .honourRange = false, .announceLength = false, .page = true};
  EXPECT_EQ(Download(6000, {.body = "<html>Sign in</html>", .honourRange = false}), "200: 0 of 20, error 12152");
  EXPECT_EQ(Download(6000, endless), "200: 0 of 0, error 12152");
  EXPECT_EQ(Download(6000, {.closeWithoutAnswer = true}), "0: 0 of 0, error 12030");
  EXPECT_EQ(ReadTestFile(file_), there);
  // Together with what was there more than the rest that is announced.
  EXPECT_EQ(Download(6000, {.body = content_, .closeAfter = 1000}), "206: 1000 of 4000, error 0, cut short");
  EXPECT_EQ(ReadTestFile(file_), content_.substr(0, 7000));
  EXPECT_EQ(Download(0, endless), "200: 20 of 0, error 0") << "where nothing is there, it may be what was asked for";
}

// Closing a session closes what was opened in it. The next session's handles may have the same numbers: a request that
// closed its own only now would end another one.
TEST_F(Http, ASessionIsClosedAfterItsRequests) {
  hurriedThread = GetCurrentThreadId();
  closeHandle = WinInet().InternetCloseHandle;
  const Exchanged late(WinInet().InternetCloseHandle, &CloseLate);
  server_.Answer("/a", Serving(TestBytes(400'000)));
  const DownloadProgressCallback cancelOnceTheThreadIsFarAhead = [](DownloadProgress* progress) {
    if (progress->downloaded == 0) return;
    Sleep(300);
    progress->cancel = true;
  };
  EXPECT_TRUE(HttpClient(app.userAgent).DownloadToFile(kUrl, file_, 0, cancelOnceTheThreadIsFarAhead).cancelled);
  EXPECT_GT(FileSize(file_), 200'000u) << "what the thread was ahead is kept";
  const std::vector<DWORD> kinds{INTERNET_HANDLE_TYPE_HTTP_REQUEST, INTERNET_HANDLE_TYPE_CONNECT_HTTP,
                                 INTERNET_HANDLE_TYPE_INTERNET};
  const auto areAllClosed = [&] {
    const std::lock_guard guard(closedLock);
    return closedKinds.size() >= kinds.size();
  };
  EXPECT_TRUE(WaitUntil(areAllClosed));
  EXPECT_EQ(closedKinds, kinds);
}

TEST_F(Http, TheSocketsOwnCodesCountAsTheClients) {
  for (const auto& [socketCode, error] : {std::pair(DWORD{WSAECONNRESET}, "12031"), {WSAETIMEDOUT, "12002"}}) {
    const ReadFaults faults({0, socketCode});
    EXPECT_EQ(Download(0, Serving(content_)), std::string("200: 4096 of 10000, error ") + error + ", cut short");
  }
}

// The system would notice it later.
TEST_F(Http, ASilenceIsATimeOut) {
  server_.AnswerNext("/a", {.stallBeforeAnswer = true});
  HttpRequest request;
  request.target = CrackUrl(kUrl);
  HttpLine line(OpenSession(app.userAgent), std::move(request), {}, {.silenceMs = 300});
  const HttpEvent event = line.Next();
  EXPECT_EQ(event.kind, HttpEvent::End);
  EXPECT_EQ(event.error, DWORD{ERROR_INTERNET_TIMEOUT});
}

TEST_F(Http, AFullDiskIsToldAsItsError) {
  const ReplacedImport disk(importedWriteFile, RefuseToWrite);
  EXPECT_EQ(Download(0, Serving(content_)), "200: 0 of 10000, error 112");
}

// Not even its head has come.
TEST_F(Http, AStopEndsTheWaitForAnAnswer) {
  server_.AnswerNext("/a", {.stallBeforeAnswer = true});
  std::stop_source stop;
  HttpClient stoppable(app.userAgent, stop.get_token());
  ULONGLONG stopped = 0;
  std::thread stopper([&] {
    EXPECT_TRUE(server_.WaitForStall());
    stopped = GetTickCount64();
    stop.request_stop();
  });
  EXPECT_TRUE(stoppable.DownloadToFile(kUrl, file_, 0, nullptr).cancelled);
  const ULONGLONG ended = GetTickCount64();
  stopper.join();
  EXPECT_LT(ended - stopped, 2000u);
}

TEST_F(Http, AReportToASilentAddressIsGivenUp) {
  server_.Answer("/report", {.stallBeforeAnswer = true});
  std::stop_source stop;
  HttpPostClient reports(app.userAgent, stop.get_token());
  reports.SetUrl(L"http://zendora.example/report");
  for (const auto& [stopped, limitMs] : {std::pair(false, 12'000u), {true, 5'000u}, {true, 1'000u}}) {
    if (stopped) stop.request_stop();
    const ULONGLONG start = GetTickCount64();
    reports.PostForm("a=b");
    EXPECT_LT(GetTickCount64() - start, limitMs);
  }
  EXPECT_EQ(server_.RequestsOf("/report").size(), 2u) << "the last report of a cancelled run must get through";
}
