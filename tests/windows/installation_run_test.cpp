#include "install/installation_run.h"

#include <gtest/gtest.h>

#include <functional>
#include <regex>
#include <thread>

#include "app/context.h"
#include "app/localization.h"
#include "install/transfer_status.h"
#include "manifest/game_paths.h"
#include "net/form_encoding.h"
#include "support/box_recorder.h"
#include "support/install_scenario.h"
#include "support/own_machine_key.h"
#include "support/text_recorder.h"
#include "system/files.h"

namespace {

using Lines = std::vector<std::wstring>;
using Texts = std::vector<std::string>;

const std::string kMissingUrl = "http://zendora.example/files/missing";
const std::string kMainSource = SourceXml("main", kFoxUrl);
std::string FoxXml(const std::string& filename, const std::string& sources = kMainSource) {
  return PackageXml(filename, kFoxMd5, sources, "<name value=\"" + filename + " folder\"/>");
}

class InstallationRunTest : public testing::Test {
 protected:
  InstallationRunTest() {
    gamePaths = {};
    scenario_.server.Answer(kFoxPath, Serving(kFoxBody));
    app.installList.Set({"one", "two"});
  }
  ~InstallationRunTest() override { gamePaths = {}; }

  // The reports so far, without what differs from run to run: the identifier at the start, times and speeds.
  Texts Reports() const {
    static const std::regex time("&time=\\d+"), times("(%2c)?%22(time|speed)%22%3a\\d+"), empty("%22\\w+%22%3a%7b%7d");
    Texts reports;
    for (const RecordedRequest& request : scenario_.server.RequestsOf(kTelemetryPath)) {
      const std::string start = "u=" + app.uuid;
      EXPECT_EQ(request.body.substr(0, start.size()), start);
      std::string report = std::regex_replace(request.body.substr(start.size()), time, "&time=T");
      report = std::regex_replace(report, times, "");
      reports.push_back(std::regex_replace(report, empty, ""));
    }
    return reports;
  }
  std::string StartReport(const std::string& packages, int count, const std::string& more = {}) const {
    return "&type=install_start&packages=" + packages + "&size=" + std::to_string(43 * count) +
           "&path=" + FormEncodeUtf8(*app.installPath.Get()) + "&source=main" + more;
  }

  // Runs the step when the server has begun to send a file and stalls, then lets it go on.
  std::thread WhenStalled(std::function<void()> step) {
    ScriptedAnswer stalling = Serving(kFoxBody);
    stalling.stallAfter = 20;
    scenario_.server.AnswerNext(kFoxPath, stalling);
    return std::thread([this, step = std::move(step)] {
      EXPECT_TRUE(scenario_.server.WaitForStall());
      step();
      scenario_.server.Resume();
    });
  }

  const InstallPageControls& Page() const { return scenario_.window.Installation(); }

  InstallScenario scenario_;
};

// "one" downloaded in full, as the statistics of a report tell it.
std::string Downloaded(const std::string& filename) { return "%22" + filename + "%22%3a%7b%22downloaded%22%3a100%7d"; }

}  // namespace

TEST_F(InstallationRunTest, DownloadsEverythingThenInstallsEverything) {
  InstallScenario::UseManifest(FoxXml("one") + FoxXml("two"));
  app.deleteTmpFiles = true;
  RemoveDirectoryW(app.tmpPath.Get()->c_str());
  RunInstallation();

  EXPECT_EQ(scenario_.window.LogLines(),
            (Lines{L"Installation directory: " + *app.installPath.Get(), L"Temporary directory: " + *app.tmpPath.Get(),
                   L"Processing package: one", L"Trying source: main", L"Downloaoded: 43 / 43",
                   L"Hash is ok (9e107d9d372bb6826bd81d3542a419d6)", L"Processing package: two", L"Trying source: main",
                   L"Downloaoded: 43 / 43", L"Hash is ok (9e107d9d372bb6826bd81d3542a419d6)",
                   L"Extracting package: Title of one", L"Target location: " + scenario_.Installed(L"one folder"),
                   L"Extracting package: Title of two", L"Target location: " + scenario_.Installed(L"two folder"),
                   L"Installation finished"}));
  EXPECT_EQ(Reports(),
            (Texts{StartReport("one%2ctwo", 2), "&type=install_finish&packages=one%2ctwo&time=T&deltemp=1&stats=%7b" +
                                                    Downloaded("one") + "%2c" + Downloaded("two") + "%7d"}));
  EXPECT_EQ(ReadTestFile(scenario_.Installed(L"one folder\\one")), kFoxBody);
  EXPECT_EQ(ReadTestFile(scenario_.Installed(L"two folder\\two")), kFoxBody);
  for (const wchar_t* const name : {L"one", L"one.stat", L"two", L"two.stat"}) {
    EXPECT_FALSE(PathExists(scenario_.Temporary(name))) << testing::PrintToString(name);
  }
  EXPECT_EQ(TextOf(Page().packageLabel), L"Download completed");
  EXPECT_EQ(TextOf(Page().packageDetailLabel), L"-");
  EXPECT_EQ(PositionOf(Page().packageProgress), 1000);
  EXPECT_EQ(TextOf(Page().totalLabel), L"Installation finished");
  EXPECT_EQ(TextOf(Page().totalDetailLabel), L"-");
  EXPECT_EQ(PositionOf(Page().totalProgress), 1000);
  EXPECT_EQ(TextOf(Page().cancelButton), L"Exit");
  EXPECT_TRUE(app.cancelRequested) << "the button closes the program from now on";
  EXPECT_FALSE(app.installRunning);
  EXPECT_FALSE(transferStatus.timerArmed);
}

TEST_F(InstallationRunTest, UnknownPackagesAreSkipped) {
  app.installList.Set({"never heard of", "nor of this"});
  app.deleteTmpFiles = true;
  WriteTestFile(scenario_.Temporary(L"never heard of"), "kept");
  RunInstallation();
  EXPECT_EQ(Reports(), (Texts{StartReport("", 0), "&type=install_finish&packages=&time=T&deltemp=1&stats=%7b%7d"}));
  EXPECT_EQ(scenario_.window.LogLines().back(), L"Installation finished");
  EXPECT_TRUE(PathExists(scenario_.Temporary(L"never heard of")));
}

TEST_F(InstallationRunTest, OvercomeDownloadErrorsAreReported) {
  InstallScenario::UseManifest(FoxXml("one", SourceXml("main", kMissingUrl) + SourceXml("other", kFoxUrl)) +
                               FoxXml("two"));
  RunInstallation();
  const std::string stats =
      "&stats=%7b%22one%22%3a%7b%22source%22%3a%22other%22%2c%22downloaded%22%3a100%7d%2c" + Downloaded("two") + "%7d";
  EXPECT_EQ(Reports(), (Texts{StartReport("one%2ctwo", 2),
                              "&type=download_finish&time=T" + stats + "\r\npackage=one&source=main&code=404&size=0",
                              "&type=install_finish&packages=one%2ctwo&time=T" + stats}));
  EXPECT_TRUE(PathExists(scenario_.Temporary(L"one"))) << "nobody asked for its deletion";
}

TEST_F(InstallationRunTest, FailedDownloadIsRepeatedOnYesAndEndsTheRunOnNo) {
  InstallScenario::UseManifest(FoxXml("one", SourceXml("main", kMissingUrl)) + FoxXml("two"));
  const BoxRecorder boxes({IDYES, IDNO});
  RunInstallation();
  const std::string record = "\r\npackage=one&source=main&code=404&size=0";
  EXPECT_EQ(Reports(),
            (Texts{StartReport("one%2ctwo", 2), "&type=download_cancel&time=T&stats=%7b%7d" + record + record}));
  EXPECT_EQ(TextOf(Page().packageLabel), L"Installation cancelled");
  EXPECT_EQ(TextOf(Page().totalLabel), L"Waiting for download to complete");
  EXPECT_EQ(TextOf(Page().cancelButton), L"Exit");
  EXPECT_TRUE(scenario_.server.RequestsOf(kFoxPath).empty()) << "the second package was not to be downloaded";
}

TEST_F(InstallationRunTest, CancelDuringDownloadsKeepsWhatArrived) {
  InstallScenario::UseManifest(FoxXml("one") + FoxXml("two"));
  app.deleteTmpFiles = true;
  std::thread canceller = WhenStalled([] { app.cancelRequested = true; });
  RunInstallation();
  canceller.join();
  const Texts reports = Reports();
  ASSERT_EQ(reports.size(), 2u);
  EXPECT_EQ(reports[1].substr(0, reports[1].find("&stats")), "&type=download_cancel&time=T&deltemp=1");
  EXPECT_EQ(reports[1].find("\r\n"), std::string::npos);
  EXPECT_EQ(TextOf(Page().packageLabel), L"Installation cancelled");
  EXPECT_EQ(TextOf(Page().packageDetailLabel), L"-");
  EXPECT_EQ(PositionOf(Page().packageProgress), 0);
  EXPECT_EQ(TextOf(Page().cancelButton), L"Cancel");
  EXPECT_TRUE(PathExists(scenario_.Temporary(L"one.stat")));
  EXPECT_FALSE(app.installRunning);
  EXPECT_FALSE(transferStatus.timerArmed);
}

TEST_F(InstallationRunTest, AMismatchDownloadsTheRefreshedPackage) {
  InstallScenario::UseManifest(FoxXml("one") + FoxXml("two"));
  scenario_.server.Answer(kFoxPath, Serving(kOtherBody));
  scenario_.server.Answer(kRepositoryPath,
                          Serving(ManifestXml(PackageXml("one", kOtherMd5, kMainSource, "<name value=\"renewed\"/>") +
                                              PackageXml("two", kOtherMd5, kMainSource))));
  RunInstallation();
  const std::string finish = Reports().at(1);
  EXPECT_EQ(finish.substr(finish.find("\r\n")),
            "\r\npackage=one&source=main&code=200&error=mismatch&size=43&hash=71bd588d5ad9b6abe87b831b45f8fa95"
            "&manifest=0");
  EXPECT_EQ(ReadTestFile(scenario_.Installed(L"renewed\\one")), kOtherBody);
  EXPECT_EQ(scenario_.server.RequestsOf(kRepositoryPath).size(), 1u);
}

TEST_F(InstallationRunTest, ReportsTellHowTheRunWasSetUp) {
  InstallScenario::UseManifest(FoxXml("one"));
  app.installList.Set({"one"});
  app.maxDownloadSpeedKB = 512;
  app.speedLimitBytes = 512 * 1024;
  app.selectionFromUser = true;
  std::thread changer = WhenStalled([] { app.maxDownloadSpeedKB = 0; });
  RunInstallation();
  changer.join();
  EXPECT_EQ(Reports(),
            (Texts{StartReport("one", 1, "&limit=512&wae=1"),
                   "&type=install_finish&packages=one&time=T&limit=0&stats=%7b" + Downloaded("one") + "%7d"}));
  EXPECT_EQ(scenario_.window.LogLines().at(2), L"Speed limit: 512 KB/s");
}

TEST_F(InstallationRunTest, ClosingDuringDownloadsIsReportedAndThenHappens) {
  InstallScenario::UseManifest(FoxXml("one"));
  app.installList.Set({"one"});
  std::thread closer = WhenStalled([] {
    app.closeAttempts = 1;
    app.closeReason = ClosedByMessage;
    app.cancelRequested = true;
  });
  RunInstallation();
  closer.join();
  EXPECT_EQ(Reports().at(1).substr(0, 43), "&type=download_cancel&endsession5&time=T&st");
  EXPECT_TRUE(scenario_.window.WaitUntilClosed());
}

// As after the fifth request to close.
TEST_F(InstallationRunTest, ARunOutlivesItsWindow) {
  InstallScenario::UseManifest(FoxXml("one"));
  app.installList.Set({"one"});
  app.deleteTmpFiles = true;
  std::thread closer = WhenStalled([this] {
    scenario_.window.Run([this] { DestroyWindow(scenario_.window.Window()); });
    app.closeAttempts = 5;
  });
  RunInstallation();
  closer.join();
  EXPECT_EQ(Reports().back().substr(0, 33), "&type=install_finish&packages=one");
  EXPECT_EQ(ReadTestFile(scenario_.Installed(L"one folder\\one")), kFoxBody);
  EXPECT_TRUE(PathExists(scenario_.Temporary(L"one"))) << "a program that closes deletes nothing";
  EXPECT_FALSE(app.installRunning);
}

TEST_F(InstallationRunTest, PackageWithoutAPlaceIsPassedOver) {
  InstallScenario::UseManifest(PackageXml("one", kFoxMd5, kMainSource) + FoxXml("two"));
  RunInstallation();
  EXPECT_EQ(scenario_.LogAfter(L"Extraction path not found (one)").front(), L"Extracting package: Title of two");
  const std::string finish = Reports().back();
  EXPECT_EQ(finish.substr(0, 33), "&type=install_finish&packages=two");
  EXPECT_EQ(finish.substr(finish.find("\r\n")), "\r\npackage=one&type=extract&error=path_not_found");
}

TEST_F(InstallationRunTest, FailedInstallationIsRepeatedOnYesAndLeftOutOnNo) {
  InstallScenario::UseManifest(
      PackageXml("one", kFoxMd5, kMainSource,
                 "<name value=\"one folder\"/><filetype value=\"application/x-msdownload\"/>") +
      FoxXml("two"));
  BoxRecorder boxes({IDYES, IDNO});
  RunInstallation();
  for (const RecordedBox& box : boxes.Boxes()) {
    EXPECT_EQ(box.caption, L"Error");
    EXPECT_EQ(box.text,
              L"There was an error during installation\n\nPackage: Title of one\n\n"
              L"Would you like to try again?");
    EXPECT_EQ(box.buttons, (std::vector<int>{IDYES, IDNO}));
    EXPECT_EQ(box.owner, scenario_.window.Window());
  }
  const Lines log = scenario_.window.LogLines();
  EXPECT_EQ(std::count(log.begin(), log.end(), L"Extracting package: Title of one"), 2);
  EXPECT_EQ(scenario_.server.RequestsOf(kFoxPath).size(), 2u) << "one for each package";
  EXPECT_EQ(Reports().back().substr(0, 33), "&type=install_finish&packages=two");
  EXPECT_EQ(PositionOf(Page().totalProgress), 1000);
}

TEST_F(InstallationRunTest, FailureBoxShowsTheErrorOfThePlacement) {
  InstallScenario::UseManifest(FoxXml("one"));
  app.installList.Set({"one"});
  EXPECT_EQ(CreateDirectories(scenario_.Installed(L"one folder\\one")), 0u);  // where the file should go
  BoxRecorder boxes({IDNO});
  RunInstallation();
  ASSERT_EQ(boxes.Boxes().size(), 1u);
  EXPECT_NE(boxes.Boxes()[0].text.find(L"\n\nError code: 5\n"), std::wstring::npos)
      << testing::PrintToString(boxes.Boxes()[0].text);
}

TEST_F(InstallationRunTest, CancelDuringTheInstallPhaseStopsAtTheNextPackage) {
  InstallScenario::UseManifest(FoxXml("one") + FoxXml("two"));
  app.deleteTmpFiles = true;
  const TextRecorder totals(scenario_.window, Page().totalLabel, [](const std::wstring& text) {
    if (text == L"Installing package: Title of two (2 / 2)") app.cancelRequested = true;
  });
  RunInstallation();
  EXPECT_EQ(totals.Texts(), (Lines{L"Waiting for download to complete", L"Installing package: Title of one (1 / 2)",
                                   L"Installing package: Title of two (2 / 2)", L"Installation cancelled"}));
  EXPECT_EQ(Reports().back(), "&type=install_cancel&packages=one&time=T&deltemp=1&stats=%7b" + Downloaded("one") +
                                  "%2c" + Downloaded("two") + "%7d");
  EXPECT_EQ(scenario_.window.LogLines().back(), L"Installation cancelled");
  EXPECT_EQ(PositionOf(Page().totalProgress), 0);
  EXPECT_EQ(TextOf(Page().cancelButton), L"Exit");
  EXPECT_FALSE(PathExists(scenario_.Installed(L"two folder\\two")));
  EXPECT_FALSE(PathExists(scenario_.Temporary(L"two"))) << "the install phase was reached, so they are deleted";
}

TEST_F(InstallationRunTest, CancelBeforeAPlacementLeavesThePackageOut) {
  InstallScenario::UseManifest(FoxXml("one"));
  app.installList.Set({"one"});
  const TextRecorder log(scenario_.window, Page().totalDetailLabel, [this](const std::wstring&) {
    if (TextOf(Page().totalLabel).starts_with(L"Installing")) app.cancelRequested = true;
  });
  RunInstallation();
  EXPECT_EQ(Reports().back().substr(0, 42), "&type=install_cancel&packages=&time=T&stat");
  EXPECT_FALSE(PathExists(scenario_.Installed(L"one folder\\one")));
}

// The bar stands where the packages that are done have brought it, by their size after installation.
TEST_F(InstallationRunTest, TotalBarCountsHandledPackages) {
  InstallScenario::UseManifest(FoxXml("one") + FoxXml("two") + FoxXml("three"));
  app.installList.Set({"one", "two", "three"});
  std::vector<int> positions;
  const TextRecorder totals(scenario_.window, Page().totalLabel, [&](const std::wstring& text) {
    if (text.starts_with(L"Installing")) positions.push_back(PositionOf(Page().totalProgress));
  });
  RunInstallation();
  EXPECT_EQ(positions, (std::vector<int>{0, 333, 666}));
}

TEST_F(InstallationRunTest, GamesThatAreThereAreReinstalledInPlaceWhenTheUserAgrees) {
  const std::wstring game = scenario_.folder / L"game";
  const OwnMachineKey machine;
  machine.SetText(L"SOFTWARE\\Rockstar Games\\GTA San Andreas\\Installation", L"ExePath", game + L"\\gta_sa.exe");
  WriteTestFile(game + L"\\gta_sa.exe", "the game");
  InstallScenario::UseManifest(PackageXml("gtasa", "", kMainSource, "<name value=\"GTA\"/>") +
                               PackageXml("mtasa.exe", "", kMainSource, "<name value=\"MTA\"/>"));
  app.installList.Set({"gtasa", "unknown", "mtasa.exe"});
  for (const bool agrees : {true, false}) {
    SCOPED_TRACE(agrees);
    gamePaths = {};
    app.cancelRequested = false;
    BoxRecorder boxes({agrees ? IDYES : IDNO});
    RunInstallation();
    ASSERT_EQ(boxes.Boxes().size(), 1u);
    EXPECT_EQ(boxes.Boxes()[0].caption, L"Components");
    EXPECT_EQ(boxes.Boxes()[0].text, L"Some components were found on your Computer:\n\nTitle of gtasa\n> " + game +
                                         L"\n\nDo you want to reinstall these components using existing folders?");
    EXPECT_EQ(PathExists(game + L"\\gtasa"), agrees);
    EXPECT_EQ(PathExists(scenario_.Installed(L"GTA\\gtasa")), !agrees);
    EXPECT_TRUE(PathExists(scenario_.Installed(L"MTA\\mtasa.exe")));
    EXPECT_EQ(Reports().at(Reports().size() - 2), StartReport("gtasa%2cmtasa.exe", 2, agrees ? "&reinstall=1" : ""));
    DeleteFileW((game + L"\\gtasa").c_str());
  }
}

TEST_F(InstallationRunTest, RegistryItemsAreCountedBeforeAndAfter) {
  const std::string key = "HKEY_CURRENT_USER\\SOFTWARE\\Zendora Installer Tests\\run";
  InstallScenario::UseManifest(
      PackageXml("one", kFoxMd5, kMainSource,
                 "<name value=\"one folder\"/><tasks><addon name=\"unknown\"/><reg name=\"" + key +
                     "\" order=\"before\"><key name=\"a\" value=\"1\"/></reg><reg name=\"" + key +
                     "\"><key name=\"b\" value=\"2\"/><key name=\"c\" value=\"3\"/></reg></tasks>"));
  app.installList.Set({"one"});
  RunInstallation();
  EXPECT_EQ(scenario_.LogAfter(L"Target location: " + scenario_.Installed(L"one folder")),
            (Lines{L"Registry items processed (pre): 1 / 1", L"Registry items processed (post): 2 / 2",
                   L"Processing installation addon: unknown", L"Installation finished"}));
}

TEST_F(InstallationRunTest, TheWorkerSpeaksTheUsersLanguage) {
  InstallScenario::UseManifest("");
  app.uiLanguage = LANG_RUSSIAN;
  std::thread([] { EXPECT_EQ(InstallThreadProc(nullptr), 0u); }).join();
  SetThreadLanguage(LANG_RUSSIAN);
  EXPECT_EQ(TextOf(Page().packageLabel), LoadLocalizedString(STR_DOWNLOAD_COMPLETED));
  SetThreadLanguage(LANG_ENGLISH);
  app.uiLanguage = LANG_ENGLISH;
  EXPECT_NE(TextOf(Page().packageLabel), LoadLocalizedString(STR_DOWNLOAD_COMPLETED));
}
