#include "net/http_client.h"

#include <winsock2.h>

#include <mutex>
#include <stop_token>
#include <thread>

#include "net/http_post_client.h"
#include "net/http_result.h"
#include "support/exchanged.h"
#include "support/install_scenario.h"
#include "support/wininet_faults.h"
#include "support/zip_builder.h"

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

// What kinds of handle were closed, in order, when the threads of requests are in no hurry to.
struct LateClosings {
  static inline decltype(&::InternetCloseHandle) close;
  static inline DWORD hurriedThread;
  static inline std::mutex mutex;
  static inline std::vector<DWORD> kinds;

  static BOOL WINAPI Close(HINTERNET handle) {
    if (GetCurrentThreadId() != hurriedThread) Sleep(100);
    DWORD kind = 0, size = sizeof kind;
    WinInet().InternetQueryOption(handle, INTERNET_OPTION_HANDLE_TYPE, &kind, &size);
    const std::lock_guard lock(mutex);
    kinds.push_back(kind);
    return close(handle);
  }
  static std::vector<DWORD> Kinds() {
    const std::lock_guard lock(mutex);
    return kinds;
  }
};

}  // namespace

TEST_F(Http, DownloadGoesOnWhereItBrokeOff) {
  EXPECT_EQ(Download(0, {.body = content_, .closeAfter = 6000}), "200: 6000 of 10000, error 12030, cut short");
  EXPECT_EQ(Download(6000, Serving("no such range", 416)), "416: 0 of 0, error 0");
  EXPECT_EQ(ReadTestFile(file_), content_.substr(0, 6000));
  EXPECT_EQ(Download(6000, Serving(content_)), "206: 4000 of 4000, error 0");
  EXPECT_EQ(ReadTestFile(file_), content_);
  const RecordedRequest request = server_.Requests().back();
  EXPECT_EQ(request.headers.at("range"), "bytes=6000-");
  EXPECT_FALSE(request.headers.contains("accept-encoding")) << "the range would be one of the packed bytes";

  WriteTestFile(file_, std::string(12000, 'o'));
  EXPECT_EQ(Download(6000, {.body = content_, .honourRange = false}), "200: 10000 of 10000, error 0");
  EXPECT_EQ(ReadTestFile(file_), content_);
  EXPECT_EQ(Download(5'000'000'000, Serving("tail", 206)), "206: 4 of 4, error 0");
  EXPECT_EQ(server_.Requests().back().headers.at("range"), "bytes=5000000000-");
  EXPECT_EQ(FileSize(file_), 5'000'000'004u);
}

TEST_F(Http, FetchesAnUndecodableBodyAgainWithoutGzip) {
  const ReadFaults faults({0, 0, kErrorDecodingFailed});
  server_.Answer("/a", Serving("plain"));
  EXPECT_EQ(Download(0, Serving(content_)), "200: 8197 of 5, error 0");
  EXPECT_EQ(ReadTestFile(file_), "plain");
  EXPECT_TRUE(server_.Requests().at(0).headers.contains("accept-encoding"));
  EXPECT_FALSE(server_.Requests().at(1).headers.contains("accept-encoding"));
}

TEST_F(Http, APackedBodyIsUnpacked) {
  // A tiny body grows by being packed.
  for (const std::string& content : {content_, std::string("a")}) {
    const std::string summary = Download(0, {.body = content, .gzip = true});
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
  EXPECT_EQ(Download(6000, {.body = content_, .rangeFrom = 5000}), "206: 0 of 5000, error 12152");
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
  LateClosings::close = WinInet().InternetCloseHandle;
  LateClosings::hurriedThread = GetCurrentThreadId();
  LateClosings::kinds.clear();
  const Exchanged late(WinInet().InternetCloseHandle, &LateClosings::Close);
  server_.Answer("/a", Serving(TestBytes(400'000)));
  const DownloadProgressCallback cancelOnceTheThreadIsFarAhead = [](DownloadProgress* progress) {
    if (progress->downloaded == 0) return;
    Sleep(300);
    progress->cancel = true;
  };
  EXPECT_TRUE(HttpClient(app.userAgent).DownloadToFile(kUrl, file_, 0, cancelOnceTheThreadIsFarAhead).cancelled);
  EXPECT_TRUE(WaitUntil([] { return LateClosings::Kinds().size() >= 3; }));
  EXPECT_GT(FileSize(file_), 200'000u) << "what the thread was ahead is kept";
  EXPECT_EQ(LateClosings::Kinds(),
            (std::vector<DWORD>{INTERNET_HANDLE_TYPE_HTTP_REQUEST, INTERNET_HANDLE_TYPE_CONNECT_HTTP,
                                INTERNET_HANDLE_TYPE_INTERNET}));
}

TEST_F(Http, TheSocketsOwnCodesCountAsTheClients) {
  for (const auto& [socketCode, error] : {std::pair(DWORD{WSAECONNRESET}, "12031"), {WSAETIMEDOUT, "12002"}}) {
    const ReadFaults faults({0, socketCode});
    EXPECT_EQ(Download(0, Serving(content_)), std::string("200: 4096 of 10000, error ") + error + ", cut short");
  }
}

TEST_F(Http, ASilenceIsATimeOut) {
  for (const bool inBody : {false, true}) {
    server_.AnswerNext("/a", inBody ? ScriptedAnswer{.body = content_, .stallAfter = 5000}
                                    : ScriptedAnswer{.stallBeforeAnswer = true});
    HttpRequest request;
    request.target = CrackUrl(kUrl);
    // Long enough for what comes before, also on a busy machine.
    HttpLine line(OpenSession(app.userAgent), std::move(request), {}, {.silenceMs = inBody ? 4000u : 300u});
    std::vector<int> kinds;
    HttpEvent event;
    do {
      event = line.Next();
      kinds.push_back(event.kind);
    } while (event.kind != HttpEvent::End);
    EXPECT_EQ(event.error, DWORD{ERROR_INTERNET_TIMEOUT});
    EXPECT_EQ(kinds, inBody ? (std::vector<int>{HttpEvent::Head, HttpEvent::Bytes, HttpEvent::End})
                            : std::vector<int>{HttpEvent::End});
  }
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
