#include "install/installation_run.h"

#include <gtest/gtest.h>

#include <regex>
#include <thread>

#include "app/context.h"
#include "manifest/game_paths.h"
#include "net/form_encoding.h"
#include "support/box_recorder.h"
#include "support/install_scenario.h"
#include "support/own_machine_key.h"
#include "support/test_manifest.h"
#include "support/text_recorder.h"
#include "system/files.h"

namespace {

using Lines = std::vector<std::wstring>;
using Texts = std::vector<std::string>;

const std::string kMain = "<source key='main' url='http://zendora.example/files/fox'/>";
const std::string kMissing = "<source key='main' url='http://zendora.example/files/missing'/>";
const std::string kMissingRecord = "\r\npackage=one&source=main&code=404&size=0";

// A package that goes to a folder of its own.
std::string FoxXml(const std::string& filename, const std::string& sources = kMain, const std::string& more = {}) {
  return PackageXml(filename, kFoxMd5, sources, "<name value='" + filename + " folder'/>" + more);
}

const std::string kBothDownloaded =
    "&stats=%7b%22one%22%3a%7b%22downloaded%22%3a100%7d%2c%22two%22%3a%7b%22downloaded%22%3a100%7d%7d";

class InstallationRunTest : public testing::Test {
 protected:
  InstallationRunTest() { scenario_.server.Answer(kFoxPath, Serving(kFoxBody)); }

  static void Install(const Texts& filenames, const std::string& packagesXml) {
    LoadTestManifest(ManifestXml(packagesXml));
    app.installList.Set(filenames);
    RunInstallation();
  }

  // The reports without what differs from run to run: the identifier at the start, times and speeds.
  Texts Reports() const {
    static const std::regex varying("^u=[^&]+|&time=\\d+|(%2c)?%22(time|speed)%22%3a\\d+");
    Texts reports;
    for (const RecordedRequest& request : scenario_.server.RequestsOf(kTelemetryPath)) {
      reports.push_back(std::regex_replace(request.body, varying, ""));
    }
    return reports;
  }
  static std::string StartReport(const std::string& packages, int size, const std::string& more = {}) {
    return "&type=install_start&packages=" + packages + "&size=" + std::to_string(size) +
           "&path=" + FormEncodeUtf8(*app.installPath.Get()) + "&source=main" + more;
  }

  const InstallPageControls& Page() const { return scenario_.window.Installation(); }

  InstallScenario scenario_;
};

}  // namespace

TEST_F(InstallationRunTest, DownloadsEverythingThenInstallsEverything) {
  app.deleteTmpFiles = true;
  WriteTestFile(scenario_.Temporary(L"unknown"), "kept");
  const std::string key = "name='HKEY_CURRENT_USER\\SOFTWARE\\Zendora Installer Tests\\run'";
  Install({"unknown", "one", "two"},
          FoxXml("one", kMain,
                 "<tasks><addon name='unknown'/><reg " + key + " order='before'><key name='a' value='1'/></reg><reg " +
                     key + "><key name='b' value='2'/><key name='c' value='3'/></reg></tasks>") +
              FoxXml("two"));
  EXPECT_EQ(scenario_.window.LogLines(),
            (Lines{L"Installation directory: " + *app.installPath.Get(), L"Temporary directory: " + *app.tmpPath.Get(),
                   L"Processing package: one", L"Trying source: main", L"Downloaoded: 43 / 43",
                   L"Hash is ok (9e107d9d372bb6826bd81d3542a419d6)", L"Processing package: two", L"Trying source: main",
                   L"Downloaoded: 43 / 43", L"Hash is ok (9e107d9d372bb6826bd81d3542a419d6)",
                   L"Extracting package: Title of one", L"Target location: " + scenario_.Installed(L"one folder"),
                   L"Registry items processed (pre): 1 / 1", L"Registry items processed (post): 2 / 2",
                   L"Processing installation addon: unknown", L"Extracting package: Title of two",
                   L"Target location: " + scenario_.Installed(L"two folder"), L"Installation finished"}));
  EXPECT_EQ(Reports(), (Texts{StartReport("one%2ctwo", 86),
                              "&type=install_finish&packages=one%2ctwo&deltemp=1" + kBothDownloaded}));
  EXPECT_EQ(ReadTestFile(scenario_.Installed(L"two folder\\two")), kFoxBody);
  EXPECT_TRUE(PathExists(scenario_.Temporary(L"unknown")));
  EXPECT_EQ(PositionOf(Page().totalProgress), 1000);
  EXPECT_EQ(TextOf(Page().cancelButton), L"Exit");
  EXPECT_TRUE(app.cancelRequested) << "the button closes the program from now on";
  EXPECT_FALSE(app.installRunning);
}

TEST_F(InstallationRunTest, ReportsTellOfErrorsThatWereOvercomeAndOfChangedLimits) {
  app.maxDownloadSpeedKB = 512;
  app.selectionFromUser = true;
  const TextRecorder downloading(scenario_.window, Page().packageLabel,
                                 [](const std::wstring&) { app.maxDownloadSpeedKB = 0; });
  Install({"one"}, FoxXml("one", kMissing + "<source key='other' url='http://zendora.example/files/fox'/>"));
  const std::string stats =
      "&limit=0&stats=%7b%22one%22%3a%7b%22source%22%3a%22other%22%2c%22downloaded%22%3a100%7d%7d";
  EXPECT_EQ(Reports(),
            (Texts{StartReport("one", 43, "&limit=512&wae=1"), "&type=download_finish" + stats + kMissingRecord,
                   "&type=install_finish&packages=one" + stats}));
  EXPECT_EQ(scenario_.window.LogLines().at(2), L"Speed limit: 512 KB/s");
}

TEST_F(InstallationRunTest, FailedDownloadIsRepeatedOnYesAndEndsTheRunOnNo) {
  const BoxRecorder boxes({IDYES, IDNO});
  Install({"one", "two"}, FoxXml("one", kMissing) + FoxXml("two"));
  EXPECT_TRUE(Reports().back().starts_with("&type=download_cancel&"));
  EXPECT_TRUE(Reports().back().ends_with(kMissingRecord + kMissingRecord));
  EXPECT_TRUE(scenario_.server.RequestsOf(kFoxPath).empty()) << "the second package was not to be downloaded";
  EXPECT_EQ(TextOf(Page().packageLabel), L"Installation cancelled");
}

TEST_F(InstallationRunTest, AMismatchDownloadsTheRefreshedPackage) {
  scenario_.server.Answer(kFoxPath, Serving(kOtherBody));
  scenario_.server.Answer(kRepositoryPath,
                          Serving(ManifestXml(PackageXml("one", kOtherMd5, kMain, "<name value='renewed folder'/>"))));
  Install({"one"}, FoxXml("one"));
  EXPECT_EQ(ReadTestFile(scenario_.Installed(L"renewed folder\\one")), kOtherBody);
  EXPECT_EQ(scenario_.LogAfter(L"Packages manifest updated successfully").at(0), L"Processing package: one");
}

TEST_F(InstallationRunTest, PackagesThatCannotBeInstalledAreLeftOut) {
  EXPECT_EQ(CreateDirectories(scenario_.Installed(L"two folder\\two")), 0u);  // where the file should go
  BoxRecorder boxes({IDYES, IDNO});
  Install({"one", "two", "three"}, PackageXml("one", kFoxMd5, kMain) + FoxXml("two") + FoxXml("three"));
  EXPECT_TRUE(boxes.Boxes().at(1).text.starts_with(
      L"There was an error during installation\n\nPackage: Title of two\n\nError code: 5\n"));
  EXPECT_TRUE(Reports().back().starts_with("&type=install_finish&packages=three&"));
  EXPECT_TRUE(Reports().back().ends_with("\r\npackage=one&type=extract&error=path_not_found"));
}

TEST_F(InstallationRunTest, CancellingOrClosingStopsTheInstallPhaseAtTheNextPackage) {
  for (const bool closing : {false, true}) {
    app.cancelRequested = false;
    app.deleteTmpFiles = true;
    const TextRecorder totals(scenario_.window, Page().totalLabel, [&](const std::wstring& text) {
      if (text != L"Installing package: Title of two (2 / 2)") return;
      EXPECT_EQ(PositionOf(Page().totalProgress), 500);
      app.closeAttempts = closing ? 1 : 0;
      app.closeReason = closing ? LogOff : NotEnding;
      app.cancelRequested = true;
    });
    Install({"one", "two"}, FoxXml("one") + FoxXml("two"));
    EXPECT_EQ(Reports().back(), std::string("&type=install_cancel&packages=one") + (closing ? "&endsession4" : "") +
                                    "&deltemp=1" + kBothDownloaded);
    EXPECT_FALSE(PathExists(scenario_.Installed(L"two folder\\two")));
    EXPECT_EQ(PathExists(scenario_.Temporary(L"two")), closing) << "a program that closes deletes nothing";
  }
  EXPECT_TRUE(scenario_.window.WaitUntilClosed());
}

TEST_F(InstallationRunTest, GamesThatAreThereAreReinstalledInPlaceWhenTheUserAgrees) {
  const std::wstring game = scenario_.folder / L"game";
  WriteTestFile(game + L"\\gta_sa.exe", "the game");
  const OwnMachineKey machine;
  machine.SetText(L"SOFTWARE\\Rockstar Games\\GTA San Andreas\\Installation", L"ExePath", game + L"\\gta_sa.exe");
  for (const bool agrees : {false, true}) {
    app.cancelRequested = false;
    gamePaths = {};
    BoxRecorder boxes({agrees ? IDYES : IDNO});
    Install({"gtasa", "mtasa.exe"}, PackageXml("gtasa", "", kMain, "<name value='GTA'/>") +
                                        PackageXml("mtasa.exe", "", kMain, "<name value='MTA'/>"));
    EXPECT_EQ(boxes.Boxes().at(0).text, L"Some components were found on your Computer:\n\nTitle of gtasa\n> " + game +
                                            L"\n\nDo you want to reinstall these components using existing folders?");
    EXPECT_EQ(PathExists(game + L"\\gtasa"), agrees);
    EXPECT_TRUE(PathExists(scenario_.Installed(L"MTA\\mtasa.exe")));
    EXPECT_EQ(Reports().end()[-2], StartReport("gtasa%2cmtasa.exe", 86, agrees ? "&reinstall=1" : ""));
  }
}

TEST_F(InstallationRunTest, TheWorkerSpeaksTheUsersLanguage) {
  app.uiLanguage = LANG_GERMAN;
  std::thread([] { InstallThreadProc(nullptr); }).join();
  EXPECT_EQ(TextOf(Page().totalLabel), L"Installation abgeschlossen");
}
