#include "install/package_download.h"

#include "install/source_attempt.h"
#include "net/network_errors.h"
#include "support/box_recorder.h"
#include "support/install_scenario.h"
#include "support/wininet_faults.h"

namespace {

int pauses;
void CountPause() { ++pauses; }

class PackageDownloadTest : public InstallScenario {
 protected:
  // Downloads the package as if for the first time in a run, but with what is in the folder.
  DownloadOutcome Download() {
    run_.errorRecords.clear();
    requestsBefore_ = server_.Requests().size();
    pauses = 0;
    return DownloadPackage(run_, package_, 0, 1);
  }
  // What the last request of that asked for.
  std::string Requested() const {
    const auto requests = server_.Requests();
    if (requests.size() == requestsBefore_) return "nothing";
    const auto range = requests.back().headers.find("range");
    return range == requests.back().headers.end() ? "all" : range->second;
  }

  size_t requestsBefore_ = 0;
  const Exchanged<void (*)()> pause_{pauseBeforeRetry, CountPause};
};

}  // namespace

TEST_F(PackageDownloadTest, KeepsResumesOrReplacesWhatIsThere) {
  const std::wstring stat = file_ + L".stat";
  const std::string right = "43|" + kFoxMd5, half = kFox.substr(0, 20);
  const struct {
    const char* what;
    std::string file, record, requested;
  } cases[] = {{"complete", kFox, right, "nothing"},
               {"partial", half, right, "bytes=20-"},
               {"wrong", kOther, right, "all"},
               {"too long", kFox + "!", right, "all"},
               {"of another size", half, "44|" + kFoxMd5, "all"},
               {"without a record", kFox, "", "all"}};
  for (const auto& [what, file, record, requested] : cases) {
    WriteTestFile(file_, file);
    DeleteFileW(stat.c_str());  // it is hidden, and such a file can't be overwritten
    WriteTestFile(stat, record);
    EXPECT_EQ(Download(), DownloadOutcome::Done) << what;
    EXPECT_EQ(Requested(), requested) << what;
    EXPECT_EQ(ReadTestFile(file_), kFox) << what;
    EXPECT_EQ(ReadTestFile(stat), right) << what;
  }
}

// What becomes of a source, and what the user is told when it was the last one.
TEST_F(PackageDownloadTest, SourcesThatFail) {
  using Sources = std::map<std::string, std::string>;
  const std::string record = "\r\npackage=fox&source=main&code=", url = "http://zendora.example/fox";
  const Sources http = {{"main", url}}, https = {{"main", "https://zendora.example/fox"}};
  const Sources several = {{"a", url + "es"}, {"main", url + "es"}, {"b", url}};
  const struct {
    Sources sources;
    std::deque<DWORD> sendErrors;
    std::string records;
    std::wstring error;  // told to the user; empty where a source succeeds
    int pauses = 0;
  } cases[] = {
      {several, {}, record + "404&size=0\r\npackage=fox&source=a&code=404&size=0", L""},
      {https, {kErrorSecureChannel}, "", L""},  // over http
      {https, {kErrorSecureChannel, kErrorCannotConnect}, record + "0&error=12029&size=0", L"12029"},
      {http, {kErrorSecureChannel}, record + "0&error=12157&size=0", L"12157"},
      {http, std::deque<DWORD>(61, kErrorCannotConnect), record + "0&error=12029&size=0", L"12029", 60},
      {http, {kErrorTimeout, 12018}, record + "0&error=12018&size=0", L"12018", 1},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.records);
    const BoxRecorder boxes(c.error.empty() ? std::deque<int>{} : std::deque<int>{IDYES});
    const SendFaults faults(c.sendErrors);
    DeleteFileW(file_.c_str());
    package_.sources = c.sources;
    EXPECT_EQ(Download(), c.error.empty() ? DownloadOutcome::Done : DownloadOutcome::FailedRetry);
    EXPECT_EQ(run_.errorRecords, c.records);
    EXPECT_EQ(pauses, c.pauses);
    if (c.error.empty()) continue;
    EXPECT_EQ(boxes.Boxes().at(0).text, L"There was an error during download\n\nPackage: The Fox\n\nError code: " +
                                            c.error + L"\n\nWould you like to try again?");
  }
}

TEST_F(PackageDownloadTest, AnOutageIsBridgedFromWhereTheFileEnds) {
  ScriptedAnswer broken = Serving(kFox);
  broken.closeAfter = 20;
  server_.AnswerNext("/fox", broken);
  const SendFaults faults({0, kErrorCannotConnect, kErrorTimeout, kErrorNameNotResolved});
  // A file that no record vouches for must not be continued by a retry.
  WriteTestFile(file_, "half of an older fox");
  EXPECT_EQ(Download(), DownloadOutcome::Done);
  EXPECT_EQ(Requested(), "bytes=20-");
  EXPECT_EQ(pauses, 4);
  EXPECT_EQ(ReadTestFile(file_), kFox);
  EXPECT_EQ(run_.errorRecords, "");
}

TEST_F(PackageDownloadTest, UnsafeNamesAreRefused) {
  for (const char* const name : {"..\\fox", "fox:stream", ""}) {
    const BoxRecorder boxes({IDNO});
    package_.filename = name;
    EXPECT_EQ(Download(), DownloadOutcome::FailedStop) << name;
    EXPECT_EQ(Requested(), "nothing");
  }
}
