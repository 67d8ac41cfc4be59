#include "install/installation_run.h"

#include <regex>

#include "support/box_recorder.h"
#include "support/install_scenario.h"
#include "support/replaced_import.h"
#include "support/test_manifest.h"

extern "C" decltype(&SetThreadExecutionState) importedSetExecutionState __asm__("__imp__SetThreadExecutionState@4");

namespace {

using Texts = std::vector<std::string>;

// A manifest with packages that consist of the fox and go to folders of their own. `more` may say otherwise.
std::string ManifestOf(const std::vector<std::pair<std::string, std::string>>& packages) {
  std::string xml = "<downloader><packages>";
  for (const auto& [name, more] : packages) {
    xml += "<package><title>Title of " + name + "</title><filename value='" + name +
           "'/><size value='43'/><md5 value='" + kFoxMd5 + "'/><name value='" + name +
           "'/><sources><source key='main' url='http://zendora.example/fox'/></sources>" + more + "</package>";
  }
  return xml + "</packages></downloader>";
}

class InstallationRunTest : public InstallScenario {
 protected:
  static void Install(const Texts& filenames, const std::string& manifest) {
    LoadTestManifest(manifest);
    app.installList.Set(filenames);
    app.cancelRequested = StopWish();
    RunInstallation();
  }

  // The reports without times and speeds, which differ from run to run.
  Texts Reports() const {
    static const std::regex varying("&time=\\d+|(%2c)?%22(time|speed)%22%3a\\d+");
    Texts reports;
    for (const RecordedRequest& request : server_.RequestsOf("/play/files/telemetry.php")) {
      reports.push_back(std::regex_replace(request.body, varying, ""));
    }
    return reports;
  }

  const std::wstring games_ = run_.installPath;
};

// What the system was asked for, and how many reports had gone out by then. A request holds for its thread.
std::vector<std::pair<EXECUTION_STATE, size_t>> wakefulness;
const ScriptedServer* reportServer;
EXECUTION_STATE WINAPI RecordExecutionState(EXECUTION_STATE state) {
  wakefulness.emplace_back(state, reportServer->RequestsOf("/play/files/telemetry.php").size());
  return ES_CONTINUOUS;
}

}  // namespace

// A source fails at first, "two" can't be copied, "three" has no folder and "unknown" is not in the manifest.
TEST_F(InstallationRunTest, ReportsTellWhatWentWrong) {
  app.uuid = "0aB";
  app.maxDownloadSpeedKB = 512;
  app.selectionFromUser = true;
  app.deleteTmpFiles = true;
  server_.AnswerNext("/fox", {});
  CreateDirectories(games_ + L"\\two\\two");  // where the file should go
  const BoxRecorder boxes({IDYES, IDYES, IDNO});
  Install({"unknown", "one", "two", "three"}, ManifestOf({{"one", ""}, {"two", ""}, {"three", "<name/>"}}));
  EXPECT_TRUE(boxes.Boxes().at(1).text.starts_with(
      L"There was an error during installation\n\nPackage: Title of two\n\nError code: 5\n"));
  const std::string stats =
      "&deltemp=1&stats=%7b%22one%22%3a%7b%22downloaded%22%3a100%7d%2c%22three%22%3a%7b%22downloaded%22%3a100"
      "%7d%2c%22two%22%3a%7b%22downloaded%22%3a100%7d%7d\r\npackage=";
  EXPECT_EQ(Reports(),
            (Texts{"u=0aB&type=install_start&packages=one%2ctwo%2cthree&size=129&path=" + FormEncodeUtf8(games_) +
                       "&source=main&limit=512&wae=1",
                   "u=0aB&type=download_finish" + stats + "one&source=main&code=200&size=0",
                   "u=0aB&type=install_finish&packages=one" + stats + "three&type=extract&error=path_not_found"}));
  EXPECT_EQ(ReadTestFile(games_ + L"\\one\\one"), kFox);
  EXPECT_FALSE(PathExists(folder_ / L"tmp\\one"));
}

TEST_F(InstallationRunTest, TheFirstMismatchRefreshesTheManifestLaterOnesTryTheNextSource) {
  const std::string second = "<sources><source key='second' url='http://zendora.example/2'/></sources>";
  const BoxRecorder none({});
  server_.AnswerNext("/fox", Serving(kOther));
  server_.AnswerNext("/fox", Serving(kOther.substr(0, 20)));
  server_.Answer("/2", Serving(kOther));
  server_.Answer("/play/files/repository.php",
                 Serving(ManifestOf({{"one", "<md5 value='" + kOtherMd5 + "'/>" + second}})));
  Install({"one"}, ManifestOf({{"one", ""}}));
  EXPECT_EQ(ReadTestFile(games_ + L"\\one\\one"), kOther);
  const std::string record = "\r\npackage=one&source=main&code=200&error=mismatch&size=";
  EXPECT_TRUE(Reports().at(1).ends_with(record + "43&hash=" + kOtherMd5 + "&manifest=0" + record + "20&manifest=1"));
  EXPECT_EQ(server_.RequestsOf("/play/files/repository.php").size(), 1u);
  EXPECT_EQ(server_.RequestsOf("/2").at(0).headers.at("Range"), "bytes=20-");
}

// "two" is newer than the manifest, which is fetched anew: it has another version of "one", proven by then, and
// "three", for which somebody has laid a file of his own.
TEST_F(InstallationRunTest, OnlyWhatTheNewestManifestDescribesIsPlaced) {
  const std::string otherIsRight = "<md5 value='" + kOtherMd5 + "'/>";
  const std::string other = otherIsRight + "<sources><source key='main' url='http://zendora.example/2'/></sources>";
  const BoxRecorder none({});
  server_.AnswerNext("/fox", Serving(kFox));
  server_.AnswerNext("/fox", Serving(kOther));
  server_.Answer("/2", Serving(kOther));
  server_.Answer("/play/files/repository.php",
                 Serving(ManifestOf({{"one", other}, {"two", otherIsRight}, {"three", other}})));
  WriteTestFile(folder_ / L"tmp\\three", "somebody's own file");
  server_.Answer("/fox", Serving(kOther));
  Install({"one", "two", "three"}, ManifestOf({{"one", ""}, {"two", ""}}));
  for (const wchar_t* name : {L"one", L"two", L"three"}) {
    EXPECT_EQ(ReadTestFile(games_ + L"\\" + name + L"\\" + name), kOther) << name;
  }
}

TEST_F(InstallationRunTest, KeepsTheComputerAwakeFromItsFirstReportToItsLast) {
  const ReplacedImport setState(importedSetExecutionState, RecordExecutionState);
  reportServer = &server_;
  for (const bool givenUp : {false, true}) {
    const std::string package = givenUp ? "gone" : "there";
    if (givenUp) server_.Answer("/fox", Serving("", 404));
    const BoxRecorder boxes(std::deque<int>(givenUp ? 1 : 0, IDNO));
    const size_t before = Reports().size();
    wakefulness.clear();
    Install({package}, ManifestOf({{package, ""}}));
    const std::vector<std::pair<EXECUTION_STATE, size_t>> expected = {{ES_CONTINUOUS | ES_SYSTEM_REQUIRED, before},
                                                                      {ES_CONTINUOUS, before + 2}};
    EXPECT_EQ(wakefulness, expected) << package;
  }
}
