#include "install/package_download.h"

#include <gtest/gtest.h>

#include <deque>
#include <thread>

#include "app/context.h"
#include "install/source_attempt.h"
#include "install/transfer_status.h"
#include "manifest/manifest_store.h"
#include "net/network_errors.h"
#include "support/box_recorder.h"
#include "support/install_scenario.h"
#include "system/files.h"

namespace {

using Lines = std::vector<std::wstring>;

// What the next sends of requests fail with (0: they don't), and what happens at each.
std::deque<DWORD> sendErrors;
void (*onSend)() = nullptr;
decltype(WinInetApi::HttpSendRequest) realSend;

BOOL WINAPI FailingSend(HINTERNET request, LPCWSTR headers, DWORD headersLength, LPVOID body, DWORD bodyLength) {
  if (onSend) onSend();
  const DWORD error = sendErrors.empty() ? 0 : sendErrors.front();
  if (!sendErrors.empty()) sendErrors.pop_front();
  if (error == 0) return realSend(request, headers, headersLength, body, bodyLength);
  SetLastError(error);
  return FALSE;
}

int pauses = 0;
void (*onPause)() = nullptr;

void CountPause() {
  ++pauses;
  if (onPause) onPause();
}

class PackageDownloadTest : public testing::Test {
 protected:
  PackageDownloadTest() {
    realSend = std::exchange(WinInet().HttpSendRequest, FailingSend);
    realPause_ = std::exchange(pauseBeforeRetry, CountPause);
    pauses = 0;
    scenario_.server.Answer(kFoxPath, Serving(kFoxBody));
    run_.tmpPath = scenario_.folder / L"temporary";
    run_.selectedSource = "main";
    run_.downloads.SetGzipEnabled(false);
    package_.filename = "fox";
    package_.title = L"The Fox";
    package_.size = sizeof kFoxBody - 1;
    package_.md5 = kFoxMd5;
    package_.sources = {{"main", kFoxUrl}};
    transferStatus.downloadTotal = 430;
  }
  ~PackageDownloadTest() override {
    WinInet().HttpSendRequest = realSend;
    pauseBeforeRetry = realPause_;
    sendErrors.clear();
    onSend = onPause = nullptr;
  }

  DownloadOutcome Download() { return DownloadPackage(run_, package_, 0, 2); }
  Lines Log() const { return scenario_.LogAfter(L"Processing package: fox"); }
  // The range header of every request for the package, empty where there was none.
  std::vector<std::string> Ranges() const {
    std::vector<std::string> ranges;
    for (const auto& request : scenario_.server.RequestsOf(kFoxPath)) {
      const auto found = request.headers.find("range");
      ranges.push_back(found == request.headers.end() ? "" : found->second);
    }
    return ranges;
  }
  const StatsRecord& Stats() { return run_.packageStats["fox"]; }
  std::wstring File() const { return scenario_.Temporary(L"fox"); }
  std::wstring Stat() const { return scenario_.Temporary(L"fox.stat"); }
  void LeaveFromEarlierRun(const std::string& file) {
    WriteTestFile(File(), file);
    WriteTestFile(Stat(), std::string("43|") + kFoxMd5);
  }

  InstallScenario scenario_;
  Installation run_;
  Package package_;
  void (*realPause_)() = nullptr;
};

using Ranges = std::vector<std::string>;

}  // namespace

TEST_F(PackageDownloadTest, BringsTheFileAndItsRecord) {
  EXPECT_EQ(Download(), DownloadOutcome::Done);
  EXPECT_EQ(Log(),
            (Lines{L"Trying source: main", L"Downloaoded: 43 / 43", L"Hash is ok (9e107d9d372bb6826bd81d3542a419d6)"}));
  EXPECT_EQ(TextOf(scenario_.window.Installation().packageLabel), L"Downloading package: The Fox (1 / 2)");
  EXPECT_EQ(ReadTestFile(File()), kFoxBody);
  EXPECT_EQ(ReadTestFile(Stat()), "43|9e107d9d372bb6826bd81d3542a419d6");
  EXPECT_TRUE(GetFileAttributesW(Stat().c_str()) & FILE_ATTRIBUTE_HIDDEN);
  EXPECT_EQ(transferStatus.downloadedBefore, 43u);
  EXPECT_EQ(PositionOf(scenario_.window.Installation().packageProgress), 100);
  EXPECT_EQ(Stats().downloaded, 100u);
  EXPECT_EQ(Stats().source, "");
  EXPECT_EQ(run_.errorRecords, "");
  EXPECT_EQ(Ranges(), (::Ranges{""}));
}

// What an earlier run has left, and what is made of it.
TEST_F(PackageDownloadTest, KeepsResumesOrReplacesWhatIsThere) {
  const std::string half(kFoxBody, 20), fox = kFoxBody, record = std::string("43|") + kFoxMd5;
  struct Case {
    const char* name;
    std::string file, stat;
    Lines log;  // before the first source
    ::Ranges ranges;
  };
  const Case cases[] = {
      {"complete", fox, record, {L"File exists. Hash is ok (9e107d9d372bb6826bd81d3542a419d6)"}, {}},
      {"partial", half, record, {L"Resuming download process from: 20"}, {"bytes=20-"}},
      {"wrong", kOtherBody, record, {L"File exists. Hash mismatch (71bd588d5ad9b6abe87b831b45f8fa95)"}, {""}},
      {"too long", fox + "!", record, {}, {""}},
      {"empty", "", record, {}, {""}},
      {"of another size", half, "44|" + std::string(kFoxMd5), {}, {""}},
      {"of another hash", half, "43|" + std::string(kOtherMd5), {}, {""}},
      {"complete, record with a line end", fox, record + "\n", {}, {""}},
      {"complete, record with two bars", fox, record + "|", {}, {""}},
      {"complete, empty record", fox, "", {}, {""}},
  };
  size_t requestsBefore = 0;
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    WriteTestFile(File(), c.file);
    DeleteFileW(Stat().c_str());
    WriteTestFile(Stat(), c.stat);
    run_.packageStats.clear();
    scenario_.window.Installation().logEdit.SetText(L"");

    EXPECT_EQ(Download(), DownloadOutcome::Done);
    Lines log = c.log;
    if (!c.ranges.empty()) {
      log.insert(log.end(),
                 {L"Trying source: main", L"Downloaoded: 43 / 43", L"Hash is ok (9e107d9d372bb6826bd81d3542a419d6)"});
    }
    EXPECT_EQ(Log(), log);
    const ::Ranges all = Ranges();
    EXPECT_EQ(::Ranges(all.begin() + static_cast<ptrdiff_t>(requestsBefore), all.end()), c.ranges);
    requestsBefore = all.size();
    EXPECT_EQ(ReadTestFile(File()), kFoxBody);
    EXPECT_EQ(ReadTestFile(Stat()), record);
    if (c.ranges.empty()) {
      EXPECT_EQ(BuildStatsField(run_.packageStats), "%7b%7d") << "a package that was there has no statistics";
    }
  }
}

TEST_F(PackageDownloadTest, WithoutAHashAnyDataIsTakenAndNothingResumed) {
  LeaveFromEarlierRun("half");
  WriteTestFile(Stat(), "43|");
  package_.md5.clear();
  scenario_.server.Answer(kFoxPath, Serving("anything"));
  EXPECT_EQ(Download(), DownloadOutcome::Done);
  EXPECT_EQ(Log(), (Lines{L"Trying source: main"}));
  EXPECT_EQ(Ranges(), (::Ranges{""}));
  EXPECT_EQ(ReadTestFile(File()), "anything");
  EXPECT_EQ(Stats().downloaded, 18u);
  EXPECT_EQ(transferStatus.downloadedBefore, 43u);
}

TEST_F(PackageDownloadTest, TriesTheSelectedSourceFirstThenTheOthersInOrder) {
  struct Case {
    const char* selected;
    Lines order;
    const char* statsSource;
  };
  const Case cases[] = {
      {"b", {L"b", L"a", L"c"}, "c"},
      {"z", {L"a", L"b", L"c"}, "c"},
      {"", {L"a", L"b", L"c"}, "c"},
  };
  const std::string missing = "http://zendora.example/files/missing";
  package_.sources = {{"c", missing}, {"a", missing}, {"b", missing}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.selected);
    const BoxRecorder boxes({IDYES});
    run_.selectedSource = c.selected;
    scenario_.window.Installation().logEdit.SetText(L"");
    EXPECT_EQ(Download(), DownloadOutcome::FailedRetry);
    Lines log;
    for (const auto& key : c.order) log.insert(log.end(), {L"Trying source: " + key, L"Http code: 404"});
    EXPECT_EQ(Log(), log);
    EXPECT_EQ(Stats().source, c.statsSource);
    EXPECT_FALSE(app.cancelRequested);
  }
}

TEST_F(PackageDownloadTest, AsksWhenEverySourceFailed) {
  struct Case {
    const char* name;
    DWORD sendError;    // 0: the server answers without data
    std::wstring code;  // and its description
  };
  wchar_t description[256];
  FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, ERROR_ACCESS_DENIED, 0,
                 description, ARRAYSIZE(description), nullptr);
  const Case cases[] = {
      {"transfer error", ERROR_ACCESS_DENIED, L"5\n" + std::wstring(description)},
      {"without text", 12018, L"12018"},
      {"no data", 0, L"12152"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    BoxRecorder boxes({IDNO});
    ScriptedAnswer unavailable;
    unavailable.status = 503;
    scenario_.server.Answer(kFoxPath, unavailable);
    sendErrors = {c.sendError};
    app.cancelRequested = false;
    EXPECT_EQ(Download(), DownloadOutcome::FailedStop);
    EXPECT_TRUE(app.cancelRequested);
    EXPECT_EQ(TextOf(scenario_.window.Installation().cancelButton), L"Exit");
    const auto shown = boxes.Boxes();
    ASSERT_EQ(shown.size(), 1u);
    EXPECT_EQ(shown[0].caption, L"Error");
    EXPECT_EQ(shown[0].text, L"There was an error during download\n\nPackage: The Fox\n\nError code: " + c.code +
                                 L"\n\nWould you like to try again?");
    EXPECT_EQ(shown[0].buttons, (std::vector<int>{IDYES, IDNO}));
    EXPECT_EQ(shown[0].owner, scenario_.window.Window());
  }
}

TEST_F(PackageDownloadTest, PackagesThatCanNotBeDownloadedAskAtOnce) {
  struct Case {
    std::string filename;
    std::map<std::string, std::string> sources;
    Lines log;
    std::wstring code;
  };
  const std::map<std::string, std::string> main = {{"main", kFoxUrl}};
  const Case cases[] = {
      {"fox", {}, {L"Processing package: fox"}, L"1168"},
      {"..\\fox", main, {L"Processing package: ..\\fox", L"[ERROR] Unsafe file name (..\\fox)"}, L"123"},
      {"a/b", main, {L"Processing package: a/b", L"[ERROR] Unsafe file name (a/b)"}, L"123"},
      {"fox:stream", main, {L"Processing package: fox:stream", L"[ERROR] Unsafe file name (fox:stream)"}, L"123"},
      {"", main, {L"Processing package: ", L"[ERROR] Unsafe file name ()"}, L"123"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.filename);
    BoxRecorder boxes({IDYES});
    scenario_.window.Installation().logEdit.SetText(L"");
    package_.filename = c.filename;
    package_.sources = c.sources;
    package_.md5 = c.sources.empty() ? "" : kFoxMd5;
    EXPECT_EQ(Download(), DownloadOutcome::FailedRetry);
    EXPECT_EQ(scenario_.window.LogLines(), c.log);
    ASSERT_EQ(boxes.Boxes().size(), 1u);
    EXPECT_NE(boxes.Boxes()[0].text.find(L"\n\nError code: " + c.code + L"\n"), std::wstring::npos);
  }
  EXPECT_TRUE(scenario_.server.Requests().empty());
  EXPECT_FALSE(PathExists(scenario_.folder / L"fox"));
  EXPECT_FALSE(PathExists(scenario_.folder / L"fox.stat"));
}

TEST_F(PackageDownloadTest, SwitchesToHttpWhenTheSecureChannelFails) {
  package_.sources = {{"main", "https://zendora.example/files/fox"}};
  sendErrors = {kErrorSecureChannel};
  LeaveFromEarlierRun(std::string(kFoxBody, 20));
  EXPECT_EQ(Download(), DownloadOutcome::Done);
  EXPECT_EQ(Log(),
            (Lines{L"Resuming download process from: 20", L"Trying source: main",
                   L"Error code: 12157 (switching to http protocol)", L"New URL: http://zendora.example/files/fox",
                   L"Downloaoded: 43 / 43", L"Hash is ok (9e107d9d372bb6826bd81d3542a419d6)"}));
  EXPECT_EQ(Ranges(), (::Ranges{"bytes=20-"}));
}

TEST_F(PackageDownloadTest, FallbackIsTriedOnceAndOnlyFromHttps) {
  struct Case {
    const char* url;
    std::deque<DWORD> errors;
    Lines log;
  };
  const Case cases[] = {
      {"https://zendora.example/files/fox",
       {kErrorSecureChannel, kErrorCannotConnect},
       {L"Error code: 12157 (switching to http protocol)", L"New URL: http://zendora.example/files/fox",
        L"Error code: 12029"}},
      {kFoxUrl, {kErrorSecureChannel}, {L"Error code: 12157"}},
      {"HTTPS://zendora.example/files/fox", {kErrorSecureChannel}, {L"Error code: 12157"}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.url);
    const BoxRecorder boxes({IDYES});
    scenario_.window.Installation().logEdit.SetText(L"");
    package_.sources = {{"main", c.url}};
    sendErrors = c.errors;
    EXPECT_EQ(Download(), DownloadOutcome::FailedRetry);
    Lines log = {L"Trying source: main"};
    log.insert(log.end(), c.log.begin(), c.log.end());
    EXPECT_EQ(Log(), log);
    EXPECT_TRUE(sendErrors.empty());
  }
  EXPECT_EQ(pauses, 0);
}

TEST_F(PackageDownloadTest, BridgesAnOutage) {
  // The connection breaks after 20 bytes, stays away for three attempts, and the rest comes.
  ScriptedAnswer broken = Serving(kFoxBody);
  broken.closeAfter = 20;
  scenario_.server.AnswerNext(kFoxPath, broken);
  sendErrors = {0, kErrorCannotConnect, kErrorTimeout, kErrorNameNotResolved};
  EXPECT_EQ(Download(), DownloadOutcome::Done);
  const Lines log = Log();
  ASSERT_EQ(log.size(), 4u) << testing::PrintToString(log);
  EXPECT_TRUE(log[1] == L"Network error (12030). Retrying again.." ||
              log[1] == L"Network error (12031). Retrying again..")
      << testing::PrintToString(log[1]);
  EXPECT_EQ(log[3], L"Hash is ok (9e107d9d372bb6826bd81d3542a419d6)");
  EXPECT_EQ(Ranges(), (::Ranges{"", "bytes=20-"}));
  EXPECT_EQ(pauses, 4);
  EXPECT_EQ(transferStatus.retryCount, 0u) << "the display would tell of a bad connection while hashing";
  EXPECT_EQ(run_.errorRecords, "");
}

TEST_F(PackageDownloadTest, GivesUpAfterSixtyRetriesWithoutData) {
  package_.sources["second"] = kFoxUrl;
  sendErrors.assign(61, kErrorCannotConnect);
  EXPECT_EQ(Download(), DownloadOutcome::Done);
  EXPECT_EQ(pauses, 60);
  EXPECT_EQ(Log(), (Lines{L"Trying source: main", L"Network error (12029). Retrying again..", L"Error code: 12029",
                          L"Trying source: second", L"Downloaoded: 43 / 43",
                          L"Hash is ok (9e107d9d372bb6826bd81d3542a419d6)"}));
  EXPECT_EQ(run_.errorRecords, "\r\npackage=fox&source=main&code=0&error=12029&size=0");
  EXPECT_EQ(Stats().source, "second");
  EXPECT_EQ(transferStatus.retryCount, 0u) << "every source counts anew";
}

TEST_F(PackageDownloadTest, DataBeginsTheCountOfRetriesAnew) {
  const BoxRecorder boxes({IDYES});
  sendErrors.assign(1 + 59 + 59, kErrorCannotConnect);
  sendErrors.push_back(ERROR_ACCESS_DENIED);
  // As the speed timer does when it sees data during the 59th retry.
  onSend = [] {
    if (pauses == 59) transferStatus.retryCount = 0;
  };
  EXPECT_EQ(Download(), DownloadOutcome::FailedRetry);
  EXPECT_EQ(pauses, 59 + 59);
  EXPECT_EQ(sendErrors.size(), 1u) << "an attempt too many";
}

TEST_F(PackageDownloadTest, ARetryThatFailsOtherwiseEndsTheSource) {
  const BoxRecorder boxes({IDYES});
  sendErrors = {kErrorTimeout, ERROR_ACCESS_DENIED};
  EXPECT_EQ(Download(), DownloadOutcome::FailedRetry);
  EXPECT_EQ(pauses, 1);
  EXPECT_EQ(run_.errorRecords, "\r\npackage=fox&source=main&code=0&error=5&size=0");
}

// A file that the record doesn't vouch for must not be continued by a retry either.
TEST_F(PackageDownloadTest, RetriesDoNotContinueAnotherFile) {
  for (const char* const md5 : {kFoxMd5, ""}) {
    SCOPED_TRACE(md5);
    package_.md5 = md5;
    WriteTestFile(File(), "half of an older fox");
    sendErrors = {kErrorTimeout};
    EXPECT_EQ(Download(), DownloadOutcome::Done);
    EXPECT_EQ(ReadTestFile(File()), kFoxBody);
    DeleteFileW(Stat().c_str());
  }
}

TEST_F(PackageDownloadTest, AFileThatCanNotGrowRightIsNotContinued) {
  package_.sources["second"] = "http://zendora.example/files/missing";
  run_.selectedSource = "second";
  LeaveFromEarlierRun(kOtherBody);
  EXPECT_EQ(Download(), DownloadOutcome::Done);
  EXPECT_EQ(Ranges(), (::Ranges{""}));
  EXPECT_EQ(ReadTestFile(File()), kFoxBody);
}

TEST_F(PackageDownloadTest, TellsAboutConnectionsAndDisks) {
  struct Case {
    DWORD error;
    size_t sends;
    std::wstring box;  // beginning of its text
    ::Ranges nextSource;
  };
  const Case cases[] = {
      {kErrorNameNotResolved, 61, L"Please check your Internet connection\n\n", {"bytes=20-"}},
      {ERROR_FILE_CORRUPT, 1, L"It looks like the file or disk is corrupt.", {""}},
      {ERROR_DISK_CORRUPT, 1, L"It looks like the file or disk is corrupt.", {""}},
  };
  package_.sources["second"] = kFoxUrl;
  size_t requestsBefore = 0;
  for (const Case& c : cases) {
    SCOPED_TRACE(c.error);
    BoxRecorder boxes({IDOK});
    LeaveFromEarlierRun(std::string(kFoxBody, 20));
    run_.errorRecords.clear();
    sendErrors.assign(c.sends, c.error);
    EXPECT_EQ(Download(), DownloadOutcome::Done);
    ASSERT_EQ(boxes.Boxes().size(), 1u);
    EXPECT_EQ(boxes.Boxes()[0].text.substr(0, c.box.size()), c.box);
    EXPECT_EQ(run_.errorRecords, "\r\npackage=fox&source=main&code=0&error=" + std::to_string(c.error) + "&size=20");
    const ::Ranges all = Ranges();
    EXPECT_EQ(::Ranges(all.begin() + static_cast<ptrdiff_t>(requestsBefore), all.end()), c.nextSource);
    requestsBefore = all.size();
  }
}

TEST_F(PackageDownloadTest, FirstMismatchFetchesTheManifestAndStartsAgain) {
  scenario_.server.Answer(kFoxPath, Serving(kOtherBody));
  EXPECT_EQ(Download(), DownloadOutcome::Redo);
  EXPECT_EQ(Log(), (Lines{L"Trying source: main", L"Downloaoded: 43 / 43",
                          L"Hash mismatch (71bd588d5ad9b6abe87b831b45f8fa95)", L"Downloading packages manifest"}));
  EXPECT_EQ(run_.errorRecords,
            "\r\npackage=fox&source=main&code=200&error=mismatch&size=43&hash=71bd588d5ad9b6abe87b831b45f8fa95"
            "&manifest=0");
  EXPECT_TRUE(run_.manifestRefreshed);
  EXPECT_EQ(transferStatus.downloadedBefore, 0u);
  EXPECT_EQ(scenario_.server.RequestsOf(kRepositoryPath).size(), 1u);
}

TEST_F(PackageDownloadTest, RefreshedManifestIsLoaded) {
  scenario_.server.Answer(kFoxPath, Serving(kOtherBody));
  scenario_.server.Answer(kRepositoryPath, Serving(ManifestXml(PackageXml("fox", kOtherMd5, ""))));
  package_.sources["second"] = kFoxUrl;
  EXPECT_EQ(Download(), DownloadOutcome::Redo);
  EXPECT_EQ(Log().back(), L"Packages manifest updated successfully");
  EXPECT_EQ(CurrentManifest()->packages.at("fox").md5, kOtherMd5);
  EXPECT_EQ(Ranges().size(), 1u) << "the second source waits for the new manifest";
}

TEST_F(PackageDownloadTest, LaterMismatchesGoOnWithTheNextSource) {
  struct Case {
    std::string body;
    Lines log;
    std::string record;
    const char* nextRange;
  };
  const Case cases[] = {
      {kOtherBody,
       {L"Downloaoded: 43 / 43", L"Hash mismatch (71bd588d5ad9b6abe87b831b45f8fa95)"},
       "&size=43&hash=71bd588d5ad9b6abe87b831b45f8fa95",
       ""},
      {std::string(kFoxBody, 20), {L"Downloaoded: 20 / 43", L"Size mismatch (20)"}, "&size=20", "bytes=20-"},
      {std::string(kFoxBody) + "!", {L"Downloaoded: 44 / 43", L"Size mismatch (44)"}, "&size=44", ""},
  };
  run_.manifestRefreshed = true;
  package_.sources["second"] = kFoxUrl;
  for (const Case& c : cases) {
    SCOPED_TRACE(c.body);
    DeleteFileW(File().c_str());
    run_.errorRecords.clear();
    scenario_.window.Installation().logEdit.SetText(L"");
    scenario_.server.AnswerNext(kFoxPath, Serving(c.body));
    EXPECT_EQ(Download(), DownloadOutcome::Done);
    Lines log = {L"Trying source: main"};
    log.insert(log.end(), c.log.begin(), c.log.end());
    log.insert(log.end(),
               {L"Trying source: second", L"Downloaoded: 43 / 43", L"Hash is ok (9e107d9d372bb6826bd81d3542a419d6)"});
    EXPECT_EQ(Log(), log);
    EXPECT_EQ(run_.errorRecords, "\r\npackage=fox&source=main&code=200&error=mismatch" + c.record + "&manifest=1");
    EXPECT_EQ(Ranges().back(), c.nextRange);
    EXPECT_EQ(ReadTestFile(File()), kFoxBody);
  }
}

TEST_F(PackageDownloadTest, AMismatchEverywhereAsksWithInvalidData) {
  BoxRecorder boxes({IDYES});
  run_.manifestRefreshed = true;
  package_.md5 = "9E107D9D372BB6826BD81D3542A419D6";  // computed hashes are lower-case
  EXPECT_EQ(Download(), DownloadOutcome::FailedRetry);
  ASSERT_EQ(boxes.Boxes().size(), 1u);
  EXPECT_NE(boxes.Boxes()[0].text.find(L"\n\nError code: 13\n"), std::wstring::npos);
}

TEST_F(PackageDownloadTest, RecordsAnswersWithoutData) {
  package_.sources = {{"main", "http://zendora.example/files/missing"}, {"second", kFoxUrl}};
  LeaveFromEarlierRun(std::string(kFoxBody, 20));
  EXPECT_EQ(Download(), DownloadOutcome::Done);
  EXPECT_EQ(run_.errorRecords, "\r\npackage=fox&source=main&code=404&size=20");
  EXPECT_EQ(Ranges(), (::Ranges{"bytes=20-"}));
}

TEST_F(PackageDownloadTest, StopsWhereverItIsCancelled) {
  {
    SCOPED_TRACE("while hashing what is there");
    LeaveFromEarlierRun(kFoxBody);
    app.cancelRequested = true;
    EXPECT_EQ(Download(), DownloadOutcome::Cancelled);
    EXPECT_TRUE(Log().empty());
  }
  {
    SCOPED_TRACE("while waiting for a retry");
    DeleteFileW(File().c_str());
    app.cancelRequested = false;
    sendErrors = {kErrorCannotConnect};
    onPause = [] { app.cancelRequested = true; };
    EXPECT_EQ(Download(), DownloadOutcome::Cancelled);
    EXPECT_EQ(Log().back(), L"Network error (12029). Retrying again..");
  }
  EXPECT_TRUE(scenario_.server.Requests().empty());
  {
    SCOPED_TRACE("in the middle of a transfer");
    app.cancelRequested = false;
    ScriptedAnswer stalling = Serving(std::string(9000, 'x'));
    stalling.stallAfter = 5000;
    scenario_.server.Answer(kFoxPath, stalling);
    package_.size = 9000;
    std::thread canceller([&] {
      EXPECT_TRUE(scenario_.server.WaitForStall());
      while (transferStatus.currentFileBytes == 0) Sleep(1);
      app.cancelRequested = true;
      scenario_.server.Resume();
    });
    EXPECT_EQ(Download(), DownloadOutcome::Cancelled);
    canceller.join();
    EXPECT_GT(FileSize(File()), 0u) << "what arrived is kept for a later run";
    EXPECT_LT(FileSize(File()), 9000u);
    EXPECT_EQ(ReadTestFile(Stat()), std::string("9000|") + kFoxMd5);
  }
  EXPECT_EQ(run_.errorRecords, "");
}

TEST_F(PackageDownloadTest, APausedRunNoticesCancelSoon) {
  app.cancelRequested = true;
  const ULONGLONG start = GetTickCount64();
  realPause_();
  EXPECT_LT(GetTickCount64() - start, 900u);
}

TEST(PackageDownload, PercentagesAreTruncatedAndNeverOverflow) {
  struct Case {
    uint64_t part, whole;
    uint32_t percent;
  };
  const Case cases[] = {
      {0, 0, 0},     {5, 0, 0},
      {1, 3, 33},    {2, 3, 66},
      {3, 3, 100},   {1ull << 40, 1ull << 41, 50},
      {44, 43, 102}, {UINT64_MAX, 1, UINT32_MAX},
      {0, 43, 0},    {5'000'000'000, 10'000'000'000, 50},
  };
  for (const Case& c : cases) EXPECT_EQ(PercentOf(c.part, c.whole), c.percent) << c.part << " of " << c.whole;
}
