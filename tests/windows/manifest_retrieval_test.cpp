#include "manifest/manifest_retrieval.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "app/site.h"
#include "manifest/manifest_store.h"
#include "support/box_recorder.h"
#include "support/install_scenario.h"
#include "support/test_manifest.h"

namespace {

const std::string kDocument = ManifestXml(PackageXml("a", "", ""));

class ManifestRetrieval : public testing::Test {
 protected:
  ManifestRetrieval() {
    LoadTestManifest(kDocument);  // one whose cache could be saved
    app.tmpPath.Set(folder_ / L"tmp");
    app.manifestPath = folder_ / L"tmp\\manifest.xml";
    app.upward.buildMainMenu = [] { ++listsFilled; };
    listsFilled = 0;
    server_.Answer(kRepositoryPath, Serving(kDocument));
  }
  ~ManifestRetrieval() override {
    app.tmpPath.Set({});
    app.manifestPath.clear();
    app.upward.buildMainMenu = nullptr;
    manifestBuffer.clear();
  }

  // Leads the next request to a port where nobody listens.
  void BreakDownOnce() {
    ScriptedAnswer answer;
    answer.status = 302;
    answer.headers = {{"Location", "http://127.0.0.1:1/"}};
    server_.AnswerNext(kRepositoryPath, answer);
  }
  size_t RequestCount() const { return server_.RequestsOf(kRepositoryPath).size(); }

  TempFolder folder_;
  ScriptedServer server_;
  TestWindow window_{ComponentsPage};
  static inline int listsFilled;
};

TEST_F(ManifestRetrieval, UrlTellsTheRepositoryOnlyWhatApplies) {
  EXPECT_EQ(BuildManifestUrl(), RepositoryAddress() + L"?l=9");
  app.uuid = "0aB";
  app.darkMode = true;
  app.startupWaitMs = 4294967295u;
  EXPECT_EQ(BuildManifestUrl(), RepositoryAddress() + L"?l=9&u=0aB&dt=1&sd=4294967295");
  app.uuid.clear();
  app.darkMode = false;
  app.startupWaitMs = 0;
}

TEST_F(ManifestRetrieval, ACacheOfTheLastHourSparesTheNetwork) {
  ManifestThreadProc(nullptr);
  for (const auto& [ageSeconds, requests] : {std::pair(0, 1u), {3590, 1u}, {3610, 2u}, {0, 2u}}) {
    using namespace std::filesystem;
    last_write_time(app.manifestPath, file_time_type::clock::now() - std::chrono::seconds(ageSeconds));
    ManifestThreadProc(nullptr);
    EXPECT_EQ(RequestCount(), requests) << ageSeconds;
  }
  EXPECT_EQ(listsFilled, 5);
}

TEST_F(ManifestRetrieval, OutageIsToldAndRetriedUntilTheNetworkReturns) {
  BreakDownOnce();
  BreakDownOnce();
  const BoxRecorder boxes({IDOK});
  ManifestThreadProc(nullptr);
  EXPECT_TRUE(boxes.Boxes().at(0).text.starts_with(L"Error: 12029\n"));
  EXPECT_EQ(RequestCount(), 3u);
  EXPECT_EQ(listsFilled, 1);
}

TEST_F(ManifestRetrieval, RefusalIsToldAndEndsTheRetries) {
  BreakDownOnce();
  server_.Answer(kRepositoryPath, {});
  const BoxRecorder boxes({IDOK, IDOK});
  ManifestThreadProc(nullptr);
  EXPECT_EQ(boxes.Boxes().size(), 2u);
  EXPECT_EQ(RequestCount(), 2u);
  EXPECT_EQ(listsFilled, 0);
}

TEST_F(ManifestRetrieval, RepairIsOfferedForACacheThatCannotBeSaved) {
  const std::wstring unwritable = folder_ / L"not there";
  app.manifestPath = unwritable + L"\\manifest.xml";
  // Makes the command of the repair do what lets the next attempt succeed.
  app.appDataPath = L"none\" & mkdir \"" + unwritable + L"\" & rem \"";
  const BoxRecorder boxes({IDYES});
  ManifestThreadProc(nullptr);
  app.appDataPath.clear();
  EXPECT_TRUE(boxes.Boxes().at(0).text.ends_with(L"\n\nFix permissions?"));
  EXPECT_EQ(LoadManifest(false), 1) << "saved after the repair";
}

}  // namespace
