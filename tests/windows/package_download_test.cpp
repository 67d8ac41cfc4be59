#include "install/package_download.h"

#include <gtest/gtest.h>

#include <deque>
#include <functional>
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
using Texts = std::vector<std::string>;

constexpr char kMissingUrl[] = "http://zendora.example/files/missing";

// What the next sends of requests fail with; 0: they don't.
std::deque<DWORD> sendErrors;
decltype(WinInetApi::HttpSendRequest) realSend;

BOOL WINAPI FailingSend(HINTERNET request, LPCWSTR headers, DWORD headersLength, LPVOID body, DWORD bodyLength) {
  const DWORD error = sendErrors.empty() ? 0 : sendErrors.front();
  if (!sendErrors.empty()) sendErrors.pop_front();
  if (error == 0) return realSend(request, headers, headersLength, body, bodyLength);
  SetLastError(error);
  return FALSE;
}

int pauses = 0;
bool cancelAtPause = false;

void CountPause() {
  ++pauses;
  if (cancelAtPause) app.cancelRequested = true;
}

class PackageDownloadTest : public testing::Test {
 protected:
  PackageDownloadTest() {
    realSend = std::exchange(WinInet().HttpSendRequest, FailingSend);
    realPause_ = std::exchange(pauseBeforeRetry, CountPause);
    scenario_.server.Answer(kFoxPath, Serving(kFoxBody));
    run_.tmpPath = scenario_.folder / L"temporary";
    run_.selectedSource = "main";
    run_.downloads.SetGzipEnabled(false);
    package_.filename = "fox";
    package_.title = L"The Fox";
    package_.size = sizeof kFoxBody - 1;
    package_.md5 = kFoxMd5;
    package_.sources = {{"main", kFoxUrl}};
  }
  ~PackageDownloadTest() override {
    WinInet().HttpSendRequest = realSend;
    pauseBeforeRetry = realPause_;
    sendErrors.clear();
    pauses = 0;
    cancelAtPause = false;
  }

  // Downloads the package as if for the first time in a run, but with what is in the folder.
  DownloadOutcome Download() {
    run_.errorRecords.clear();
    run_.packageStats.clear();
    scenario_.window.Installation().logEdit.SetText(L"");
    requestsBefore_ = scenario_.server.RequestsOf(kFoxPath).size();
    return DownloadPackage(run_, package_, 0, 2);
  }
  Lines Log() const { return scenario_.LogAfter(L"Processing package: fox"); }
  // The range header of each request for the package in the last download, empty where there was none.
  Texts Ranges() const {
    Texts ranges;
    const auto requests = scenario_.server.RequestsOf(kFoxPath);
    for (size_t i = requestsBefore_; i < requests.size(); ++i) {
      const auto found = requests[i].headers.find("range");
      ranges.push_back(found == requests[i].headers.end() ? "" : found->second);
    }
    return ranges;
  }
  std::wstring File() const { return scenario_.Temporary(L"fox"); }
  std::wstring Stat() const { return scenario_.Temporary(L"fox.stat"); }
  void LeaveFromEarlierRun(const std::string& file, const std::string& record) const {
    WriteTestFile(File(), file);
    DeleteFileW(Stat().c_str());  // it is hidden, and such a file can't be overwritten
    WriteTestFile(Stat(), record);
  }

  InstallScenario scenario_;
  Installation run_;
  Package package_;
  size_t requestsBefore_ = 0;
  void (*realPause_)() = nullptr;
};

const std::string kHalf(kFoxBody, 20);
const std::string kRecord = std::string("43|") + kFoxMd5;
const Lines kGoodTransfer = {L"Trying source: main", L"Downloaoded: 43 / 43",
                             L"Hash is ok (9e107d9d372bb6826bd81d3542a419d6)"};

Lines operator+(Lines lines, const Lines& more) {
  lines.insert(lines.end(), more.begin(), more.end());
  return lines;
}

}  // namespace

TEST_F(PackageDownloadTest, KeepsResumesOrReplacesWhatIsThere) {
  struct Case {
    std::string name, file, record;
    Lines log;
    Texts ranges;
  };
  const Case cases[] = {
      {"nothing", "", "", kGoodTransfer, {""}},
      {"complete", kFoxBody, kRecord, {L"File exists. Hash is ok (9e107d9d372bb6826bd81d3542a419d6)"}, {}},
      {"partial", kHalf, kRecord, Lines{L"Resuming download process from: 20"} + kGoodTransfer, {"bytes=20-"}},
      {"wrong",
       kOtherBody,
       kRecord,
       Lines{L"File exists. Hash mismatch (71bd588d5ad9b6abe87b831b45f8fa95)"} + kGoodTransfer,
       {""}},
      {"too long", std::string(kFoxBody) + "!", kRecord, kGoodTransfer, {""}},
      {"of another size", kHalf, std::string("44|") + kFoxMd5, kGoodTransfer, {""}},
      {"record with a line end", kFoxBody, kRecord + "\n", kGoodTransfer, {""}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    LeaveFromEarlierRun(c.file, c.record);
    EXPECT_EQ(Download(), DownloadOutcome::Done);
    EXPECT_EQ(Log(), c.log);
    EXPECT_EQ(Ranges(), c.ranges);
    EXPECT_EQ(ReadTestFile(File()), kFoxBody);
    EXPECT_EQ(ReadTestFile(Stat()), kRecord);
    EXPECT_EQ(BuildStatsField(run_.packageStats) == "%7b%7d", c.ranges.empty());
  }
}

// What becomes of a source, and what the user is told when it was the last one.
TEST_F(PackageDownloadTest, SourcesThatFail) {
  struct Case {
    std::string name;
    std::map<std::string, std::string> sources;
    std::deque<DWORD> sendErrors;
    Lines log;
    std::string records;
    std::wstring code;  // in the box; empty where a source succeeds
    int pauses = 0;
  };
  const std::string https = "https://zendora.example/files/fox";
  const Lines toHttp = {L"Trying source: main", L"Error code: 12157 (switching to http protocol)",
                        L"New URL: http://zendora.example/files/fox"};
  const Case cases[] = {
      {"no source", {}, {}, {}, "", L"1168"},
      {"another is right",
       {{"a", kMissingUrl}, {"main", kMissingUrl}, {"b", kFoxUrl}},
       {},
       {L"Trying source: main", L"Http code: 404", L"Trying source: a", L"Http code: 404", L"Trying source: b",
        L"Downloaoded: 43 / 43", L"Hash is ok (9e107d9d372bb6826bd81d3542a419d6)"},
       "\r\npackage=fox&source=main&code=404&size=0\r\npackage=fox&source=a&code=404&size=0",
       L""},
      {"answers without data",
       {{"main", kMissingUrl}},
       {},
       {L"Trying source: main", L"Http code: 404"},
       "\r\npackage=fox&source=main&code=404&size=0",
       L"12152"},
      {"secure channel, then http",
       {{"main", https}},
       {kErrorSecureChannel},
       toHttp + Lines(kGoodTransfer.begin() + 1, kGoodTransfer.end()),
       "",
       L""},
      {"one attempt over http",
       {{"main", https}},
       {kErrorSecureChannel, kErrorCannotConnect},
       toHttp + Lines{L"Error code: 12029"},
       "\r\npackage=fox&source=main&code=0&error=12029&size=0",
       L"12029"},
      {"http has no fallback",
       {{"main", kFoxUrl}},
       {kErrorSecureChannel},
       {L"Trying source: main", L"Error code: 12157"},
       "\r\npackage=fox&source=main&code=0&error=12157&size=0",
       L"12157"},
      {"an outage of a minute",
       {{"main", kFoxUrl}},
       std::deque<DWORD>(61, kErrorCannotConnect),
       {L"Trying source: main", L"Network error (12029). Retrying again..", L"Error code: 12029"},
       "\r\npackage=fox&source=main&code=0&error=12029&size=0",
       L"12029",
       60},
      {"an outage that another error ends",
       {{"main", kFoxUrl}},
       {kErrorTimeout, 12018},
       {L"Trying source: main", L"Network error (12002). Retrying again..", L"Error code: 12018"},
       "\r\npackage=fox&source=main&code=0&error=12018&size=0",
       L"12018",
       1},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    BoxRecorder boxes = c.code.empty() ? BoxRecorder({}) : BoxRecorder({IDYES});
    DeleteFileW(File().c_str());
    package_.sources = c.sources;
    sendErrors = c.sendErrors;
    pauses = 0;
    EXPECT_EQ(Download(), c.code.empty() ? DownloadOutcome::Done : DownloadOutcome::FailedRetry);
    EXPECT_EQ(Log(), c.log);
    EXPECT_EQ(run_.errorRecords, c.records);
    EXPECT_EQ(pauses, c.pauses);
    EXPECT_TRUE(sendErrors.empty());
    if (c.code.empty()) continue;
    ASSERT_EQ(boxes.Boxes().size(), 1u);
    EXPECT_TRUE(boxes.Boxes()[0].text.starts_with(
        L"There was an error during download\n\nPackage: The Fox\n\nError code: " + c.code + L"\n"));
  }
}

TEST_F(PackageDownloadTest, AnOutageIsBridgedFromWhereTheFileEnds) {
  ScriptedAnswer broken = Serving(kFoxBody);
  broken.closeAfter = 20;
  scenario_.server.AnswerNext(kFoxPath, broken);
  sendErrors = {0, kErrorCannotConnect, kErrorTimeout, kErrorNameNotResolved};
  // A file that no record vouches for must not be continued by a retry.
  WriteTestFile(File(), "half of an older fox");
  EXPECT_EQ(Download(), DownloadOutcome::Done);
  EXPECT_EQ(Ranges(), (Texts{"", "bytes=20-"}));
  EXPECT_EQ(pauses, 4);
  EXPECT_EQ(ReadTestFile(File()), kFoxBody);
  EXPECT_EQ(run_.errorRecords, "");
}

TEST_F(PackageDownloadTest, ACorruptFileIsRemovedAndFetchedAnew) {
  BoxRecorder boxes({IDOK});
  LeaveFromEarlierRun(kHalf, kRecord);
  package_.sources["second"] = kFoxUrl;
  sendErrors = {ERROR_FILE_CORRUPT};
  EXPECT_EQ(Download(), DownloadOutcome::Done);
  EXPECT_EQ(Ranges(), Texts{""});
  ASSERT_EQ(boxes.Boxes().size(), 1u);
  EXPECT_TRUE(boxes.Boxes()[0].text.starts_with(L"It looks like the file or disk is corrupt."));
}

TEST_F(PackageDownloadTest, AMismatchRefreshesTheManifestOnceThenTriesTheNextSource) {
  scenario_.server.Answer(kRepositoryPath, Serving(ManifestXml(PackageXml("fox", kOtherMd5, ""))));
  scenario_.server.AnswerNext(kFoxPath, Serving(kOtherBody));
  package_.sources["second"] = kFoxUrl;
  EXPECT_EQ(Download(), DownloadOutcome::Redo);
  EXPECT_EQ(Log(),
            (Lines{L"Trying source: main", L"Downloaoded: 43 / 43", L"Hash mismatch (71bd588d5ad9b6abe87b831b45f8fa95)",
                   L"Downloading packages manifest", L"Packages manifest updated successfully"}));
  const std::string record = "\r\npackage=fox&source=main&code=200&error=mismatch&size=";
  EXPECT_EQ(run_.errorRecords, record + "43&hash=71bd588d5ad9b6abe87b831b45f8fa95&manifest=0");
  EXPECT_EQ(CurrentManifest()->packages.at("fox").md5, kOtherMd5);

  scenario_.server.AnswerNext(kFoxPath, Serving(kHalf));
  DeleteFileW(File().c_str());
  EXPECT_EQ(Download(), DownloadOutcome::Done);
  EXPECT_EQ(Log().at(2), L"Size mismatch (20)");
  EXPECT_EQ(run_.errorRecords, record + "20&manifest=1");
  EXPECT_EQ(Ranges(), (Texts{"", "bytes=20-"}));
}

TEST_F(PackageDownloadTest, UnsafeNamesAreRefused) {
  for (const char* const name : {"..\\fox", "a/b", "fox:stream", ""}) {
    SCOPED_TRACE(name);
    const BoxRecorder boxes({IDNO});
    package_.filename = name;
    EXPECT_EQ(Download(), DownloadOutcome::FailedStop);
  }
  EXPECT_TRUE(scenario_.server.Requests().empty());
  EXPECT_FALSE(PathExists(scenario_.folder / L"fox.stat"));
}

TEST_F(PackageDownloadTest, CancelStopsRetriesAndTransfersAndKeepsWhatArrived) {
  sendErrors = {kErrorCannotConnect};
  cancelAtPause = true;
  EXPECT_EQ(Download(), DownloadOutcome::Cancelled);
  EXPECT_TRUE(scenario_.server.Requests().empty());

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
  EXPECT_GT(FileSize(File()), 0u);
  EXPECT_LT(FileSize(File()), 9000u);
  EXPECT_EQ(run_.errorRecords, "");
}
