#include "install/package_download.h"

#include "install/transfer_status.h"
#include "support/box_recorder.h"
#include "support/install_scenario.h"
#include "support/wininet_faults.h"
#include "system/text.h"

class PackageDownloadTest : public InstallScenario {
 protected:
  PackageDownloadTest() { run_.retryRules.pauseMs = 0; }

  // Downloads the package as if for the first time in a run, but with what is in the folder.
  DownloadOutcome Download() {
    run_.errorRecords.clear();
    run_.proven.clear();
    requestsBefore_ = server_.Requests().size();
    transferStatus.retryCount = 0;
    return DownloadPackage(run_, package_, 0, 1);
  }
  // What the last request of that asked for.
  std::string Requested() const {
    const auto requests = server_.Requests();
    if (requests.size() == requestsBefore_) return "nothing";
    const auto range = requests.back().headers.find("Range");
    return range == requests.back().headers.end() ? "all" : range->second;
  }

  size_t requestsBefore_ = 0;
};

TEST_F(PackageDownloadTest, KeepsResumesOrReplacesWhatIsThere) {
  const std::wstring stat = file_ + L".stat";
  const std::string right = "43|" + kFoxMd5, half = kFox.substr(0, 20);
  const std::tuple<const char*, std::string, std::string, std::string> cases[] = {
      {"complete", kFox, right, "nothing"},    {"partial", half, right, "bytes=20-"},
      {"wrong", kOther, right, "all"},         {"too long", kFox + "!", right, "all"},
      {"other", half, "44|" + kFoxMd5, "all"}, {"without a record", kFox, "", "all"}};
  for (const auto& [what, file, record, requested] : cases) {
    run_.proven.clear();
    WriteTestFile(file_, file);
    DeleteFileW(stat.c_str());  // it is hidden, and such a file can't be overwritten
    WriteTestFile(stat, record);
    EXPECT_EQ(Download(), DownloadOutcome::Done) << what;
    EXPECT_EQ(Requested(), requested) << what;
    EXPECT_EQ(ReadTestFile(file_), kFox) << what;
    EXPECT_EQ(ReadTestFile(stat), right) << what;
  }
}

// A scanner or a backup: nothing of what is there may be lost for that.
TEST_F(PackageDownloadTest, WhatAnotherProgramHoldsIsAskedFor) {
  const std::wstring stat = file_ + L".stat";
  for (const auto& [held, content] : {std::pair(file_, kFox), {stat, kFox.substr(0, 20)}}) {
    WriteTestFile(file_, content);
    DeleteFileW(stat.c_str());
    WriteTestFile(stat, "43|" + kFoxMd5);
    const FileHandle other(CreateFileW(held.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                       OPEN_EXISTING, 0, nullptr));
    const BoxRecorder boxes({IDYES});
    EXPECT_EQ(Download(), DownloadOutcome::FailedRetry);
    EXPECT_NE(boxes.Boxes().at(0).text.find(L"Error code: 32"), std::wstring::npos);
    EXPECT_EQ(Requested(), "nothing");
    EXPECT_EQ(ReadTestFile(file_), content);
  }
}

// The mirrors have a new version already, and what is there is longer than that.
TEST_F(PackageDownloadTest, ARefusedRestIsLookedForInANewerManifest) {
  server_.Answer("/fox", Serving("", 416));
  for (const bool newer : {false, true}) {
    run_.manifestRefreshed = false;
    WriteTestFile(file_, std::string(60, 'x'));
    const std::string size = newer ? "43" : "100";
    server_.Answer("/play/files/repository.php",
                   Serving("<downloader><packages><package><filename value='fox'/><size value='" + size +
                           "'/><md5 value='" + kFoxMd5 + "'/></package></packages></downloader>"));
    package_.size = 100;
    WriteTestFile(file_ + L".stat", "100|" + kFoxMd5);
    const BoxRecorder boxes(newer ? std::deque<int>{} : std::deque{IDYES});
    EXPECT_EQ(Download(), newer ? DownloadOutcome::Redo : DownloadOutcome::FailedRetry);
  }
}

// The last one has no secure channel, so it is asked over http.
TEST_F(PackageDownloadTest, TheSelectedSourceIsTriedFirstThenTheOthersInOrder) {
  const std::string missing = "http://zendora.example/missing";
  package_.sources = {{"a", missing}, {"main", missing}, {"b", "https://zendora.example/fox"}};
  const SendFaults faults({0, 0, ERROR_INTERNET_SECURITY_CHANNEL_ERROR});
  EXPECT_EQ(Download(), DownloadOutcome::Done);
  EXPECT_EQ(run_.errorRecords, "\r\npackage=fox&source=main&code=404&size=0\r\npackage=fox&source=a&code=404&size=0");
}

TEST_F(PackageDownloadTest, TheUserIsToldWhyTheLastSourceFailed) {
  const DWORD authority = ERROR_INTERNET_INVALID_CA;  // asked once more, with other options
  const std::tuple<const char*, std::deque<DWORD>, std::string, uint32_t> cases[] = {
      {"https", {ERROR_INTERNET_SECURITY_CHANNEL_ERROR, ERROR_INTERNET_CANNOT_CONNECT}, "12029", 0},
      {"http", {ERROR_INTERNET_SECURITY_CHANNEL_ERROR}, "12157", 0},
      {"http", {authority, authority}, "12045", 0},
      {"http", std::deque<DWORD>(61, ERROR_INTERNET_CANNOT_CONNECT), "12029", 60},
      {"http", {ERROR_INTERNET_TIMEOUT, 12018}, "12018", 1},
  };
  for (const auto& [scheme, sendErrors, error, retries] : cases) {
    const BoxRecorder boxes({IDYES});
    const SendFaults faults(sendErrors);
    package_.sources["main"] = scheme + std::string("://zendora.example/fox");
    EXPECT_EQ(Download(), DownloadOutcome::FailedRetry);
    EXPECT_EQ(run_.errorRecords, "\r\npackage=fox&source=main&code=0&error=" + error + "&size=0");
    EXPECT_EQ(transferStatus.retryCount, retries) << error;
    EXPECT_EQ(boxes.Boxes().at(0).text, L"There was an error during download\n\nPackage: The Fox\n\nError code: " +
                                            WidenBytes(error) + L"\n\nWould you like to try again?");
  }
}

TEST_F(PackageDownloadTest, RetriesAreToldWhereTheSpeedStood) {
  transferStatus.currentFileBytes = 20;
  transferStatus.lastTickBytes = 20;
  transferStatus.retryCount = 28;
  OnSpeedTimer(nullptr, 0, 0, 0);
  EXPECT_EQ(TextOf(window_.Installation().packageDetailLabel), L"Bad Internet connection. Retrying.. (28)");
}

TEST_F(PackageDownloadTest, UnsafeNamesAreRefused) {
  const BoxRecorder boxes({IDNO});
  package_.filename = "..\\fox";
  EXPECT_EQ(Download(), DownloadOutcome::FailedStop);
  EXPECT_EQ(Requested(), "nothing");
}

// A proxy that ends each answer early, as if it were over.
TEST_F(PackageDownloadTest, AnswersThatAreCutShortAreGoneOnWith) {
  ScriptedAnswer cut = Serving(kFox);
  cut.closeAfter = 10;
  server_.Answer("/fox", cut);
  for (const auto& [there, requests] : {std::pair(std::string(), 5u), {kOther, 10u}}) {
    run_.proven.clear();
    WriteTestFile(file_, there);
    EXPECT_EQ(Download(), DownloadOutcome::Done);
    EXPECT_EQ(ReadTestFile(file_), kFox);
    EXPECT_EQ(server_.Requests().size(), requests);
    EXPECT_EQ(run_.errorRecords, "");
  }

  cut.honourRange = false;  // each retry brings the same
  server_.Answer("/fox", cut);
  server_.Answer("/right", Serving(kFox));
  package_.sources["other"] = "http://zendora.example/right";
  run_.proven.clear();
  WriteTestFile(file_, "");
  EXPECT_EQ(Download(), DownloadOutcome::Done);
  EXPECT_EQ(server_.RequestsOf("/fox").size(), 10u + 4u);
}

TEST_F(PackageDownloadTest, WhatWasProvenCantBeChanged) {
  EXPECT_EQ(Download(), DownloadOutcome::Done);
  EXPECT_TRUE(IsProven(run_, package_));
  EXPECT_FALSE(DeleteFileW(file_.c_str()));
  const FileHandle writable(CreateFileW(file_.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                        OPEN_EXISTING, 0, nullptr));
  EXPECT_FALSE(writable);
  package_.md5 = kOtherMd5;
  EXPECT_FALSE(IsProven(run_, package_)) << "another version of the package";
}
