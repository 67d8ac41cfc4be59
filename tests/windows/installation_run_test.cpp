#include "install/installation_run.h"

#include <regex>

#include "manifest/game_paths.h"
#include "net/form_encoding.h"
#include "support/box_recorder.h"
#include "support/install_scenario.h"
#include "support/own_machine_key.h"
#include "support/test_manifest.h"
#include "support/text_recorder.h"

namespace {

using Texts = std::vector<std::string>;

constexpr char kRepository[] = "/play/files/repository.php";

// A package that consists of the fox and goes to a folder of its own. `more` may say otherwise.
std::string FoxXml(const std::string& filename, const std::string& more = {}) {
  return "<package><title>Title of " + filename + "</title><filename value='" + filename + "'/><md5 value='" + kFoxMd5 +
         "'/><size value='43'/><upsize value='43'/><name value='" + filename +
         " folder'/><sources><source key='main' url='http://zendora.example/fox'/></sources>" + more + "</package>";
}

std::string ManifestXml(const std::string& packages) {
  return "<downloader><packages>" + packages + "</packages></downloader>";
}

class InstallationRunTest : public InstallScenario {
 protected:
  static void Install(const Texts& filenames, const std::string& packagesXml) {
    LoadTestManifest(ManifestXml(packagesXml));
    app.installList.Set(filenames);
    RunInstallation();
  }

  // The reports without what differs from run to run: the identifier at the start, times and speeds.
  Texts Reports() const {
    static const std::regex varying("^u=[^&]*|&time=\\d+|(%2c)?%22(time|speed)%22%3a\\d+");
    Texts reports;
    for (const RecordedRequest& request : server_.RequestsOf("/play/files/telemetry.php")) {
      reports.push_back(std::regex_replace(request.body, varying, ""));
    }
    return reports;
  }
  std::string StartReport(const std::string& packages, const std::string& more) const {
    return "&type=install_start&packages=" + packages + "&path=" + FormEncodeUtf8(run_.installPath) + "&source=main" +
           more;
  }

  const InstallPageControls& page_ = window_.Installation();
};

}  // namespace

// One source fails at first, one package can't be copied, one has no folder and one is unknown.
TEST_F(InstallationRunTest, DownloadsEverythingThenInstallsEverything) {
  app.maxDownloadSpeedKB = 512;
  app.selectionFromUser = true;
  app.deleteTmpFiles = true;
  const TextRecorder downloading(window_, page_.packageLabel, [](const std::wstring&) { app.maxDownloadSpeedKB = 0; });
  server_.AnswerNext("/fox", {});
  EXPECT_EQ(CreateDirectories(folder_ / L"games\\two folder\\two"), 0u);  // where the file should go
  WriteTestFile(folder_ / L"tmp\\unknown", "kept");
  const std::string key = "name='HKEY_CURRENT_USER\\SOFTWARE\\Zendora Installer Tests\\run'";
  const BoxRecorder boxes({IDYES, IDYES, IDNO});
  Install(
      {"unknown", "one", "two", "three"},
      FoxXml("one", "<tasks><addon name='unknown'/><reg " + key + " order='before'><key name='a' value='1'/></reg>" +
                        "<reg " + key + "><key name='b' value='2'/><key name='c' value='3'/></reg></tasks>") +
          FoxXml("two") + FoxXml("three", "<name value=''/>"));
  const std::wstring source = L"Trying source: main", done = L"Downloaoded: 43 / 43";
  const std::wstring right = L"Hash is ok (9e107d9d372bb6826bd81d3542a419d6)";
  const std::wstring two = L"Extracting package: Title of two", target = L"Target location: " + run_.installPath;
  EXPECT_EQ(window_.LogLines(), (Lines{L"Installation directory: " + run_.installPath,
                                       L"Temporary directory: " + run_.tmpPath,
                                       L"Speed limit: 512 KB/s",
                                       L"Processing package: one",
                                       source,
                                       L"Http code: 200",
                                       L"Processing package: one",
                                       source,
                                       done,
                                       right,
                                       L"Processing package: two",
                                       source,
                                       done,
                                       right,
                                       L"Processing package: three",
                                       source,
                                       done,
                                       right,
                                       L"Extracting package: Title of one",
                                       target + L"\\one folder",
                                       L"Registry items processed (pre): 1 / 1",
                                       L"Registry items processed (post): 2 / 2",
                                       L"Processing installation addon: unknown",
                                       two,
                                       target + L"\\two folder",
                                       two,
                                       target + L"\\two folder",
                                       L"Extraction path not found (three)",
                                       L"Installation finished"}));
  EXPECT_TRUE(boxes.Boxes().at(1).text.starts_with(
      L"There was an error during installation\n\nPackage: Title of two\n\nError code: 5\n"));
  const std::string stats =
      "&limit=0&deltemp=1&stats=%7b%22one%22%3a%7b%22downloaded%22%3a100%7d%2c%22three%22%3a%7b%22downloaded%22%3a100"
      "%7d%2c%22two%22%3a%7b%22downloaded%22%3a100%7d%7d";
  EXPECT_EQ(Reports(), (Texts{StartReport("one%2ctwo%2cthree&size=129", "&limit=512&wae=1"),
                              "&type=download_finish" + stats + "\r\npackage=one&source=main&code=200&size=0",
                              "&type=install_finish&packages=one" + stats +
                                  "\r\npackage=three&type=extract&error=path_not_found"}));
  EXPECT_EQ(ReadTestFile(folder_ / L"games\\one folder\\one"), kFox);
  EXPECT_TRUE(PathExists(folder_ / L"tmp\\unknown"));
  EXPECT_FALSE(PathExists(folder_ / L"tmp\\one"));
  EXPECT_EQ(PositionOf(page_.totalProgress), kProgressRange);
  EXPECT_EQ(TextOf(page_.cancelButton), L"Exit");
  EXPECT_TRUE(app.cancelRequested) << "the button closes the program from now on";
}

TEST_F(InstallationRunTest, TheFirstMismatchRefreshesTheManifestLaterOnesTryTheNextSource) {
  const std::string second = "<sources><source key='second' url='http://zendora.example/second'/></sources>";
  server_.AnswerNext("/fox", Serving(kOther));
  server_.AnswerNext("/fox", Serving(kOther.substr(0, 20)));
  server_.Answer("/second", Serving(kOther));
  server_.Answer(kRepository, Serving(ManifestXml(FoxXml("one", "<md5 value='" + kOtherMd5 + "'/>" + second))));
  Install({"one"}, FoxXml("one"));
  EXPECT_EQ(ReadTestFile(folder_ / L"games\\one folder\\one"), kOther);
  const std::string record = "\r\npackage=one&source=main&code=200&error=mismatch&size=";
  EXPECT_TRUE(Reports().at(1).ends_with(record + "43&hash=" + kOtherMd5 + "&manifest=0" + record + "20&manifest=1"));
  EXPECT_EQ(server_.RequestsOf(kRepository).size(), 1u);
  EXPECT_EQ(server_.RequestsOf("/second").at(0).headers.at("range"), "bytes=20-");
}

TEST_F(InstallationRunTest, CancellingOrClosingStopsTheInstallPhaseAtTheNextPackage) {
  for (const bool closing : {false, true}) {
    app.cancelRequested = false;
    app.deleteTmpFiles = true;
    const TextRecorder totals(window_, page_.totalLabel, [&](const std::wstring& text) {
      if (text != L"Installing package: Title of two (2 / 2)") return;
      EXPECT_EQ(PositionOf(page_.totalProgress), 500);
      app.closeAttempts = closing ? 1 : 0;
      app.closeReason = closing ? LogOff : NotEnding;
      app.cancelRequested = true;
    });
    Install({"one", "two"}, FoxXml("one") + FoxXml("two"));
    EXPECT_TRUE(Reports().back().starts_with(std::string("&type=install_cancel&packages=one") +
                                             (closing ? "&endsession4" : "") + "&deltemp=1"));
    EXPECT_FALSE(PathExists(folder_ / L"games\\two folder\\two"));
    EXPECT_EQ(PathExists(folder_ / L"tmp\\two"), closing) << "a program that closes deletes nothing";
  }
  EXPECT_TRUE(window_.WaitUntilClosed());
}

TEST_F(InstallationRunTest, GamesThatAreThereAreReinstalledInPlaceWhenTheUserAgrees) {
  const std::wstring game = folder_ / L"game";
  WriteTestFile(game + L"\\gta_sa.exe", "the game");
  const OwnMachineKey machine;
  machine.SetText(L"SOFTWARE\\Rockstar Games\\GTA San Andreas\\Installation", L"ExePath", game + L"\\gta_sa.exe");
  for (const bool agrees : {false, true}) {
    app.cancelRequested = false;
    gamePaths = {};
    const BoxRecorder boxes({agrees ? IDYES : IDNO});
    Install({"gtasa", "mtasa.exe"}, FoxXml("gtasa", "<md5 value=''/>") + FoxXml("mtasa.exe", "<md5 value=''/>"));
    EXPECT_EQ(boxes.Boxes().at(0).text, L"Some components were found on your Computer:\n\nTitle of gtasa\n> " + game +
                                            L"\n\nDo you want to reinstall these components using existing folders?");
    EXPECT_EQ(PathExists(game + L"\\gtasa"), agrees);
    EXPECT_TRUE(PathExists(folder_ / L"games\\mtasa.exe folder\\mtasa.exe"));
    EXPECT_EQ(Reports().end()[-2], StartReport("gtasa%2cmtasa.exe&size=86", agrees ? "&reinstall=1" : ""));
  }
}
