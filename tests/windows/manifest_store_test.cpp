#include "manifest/manifest_store.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "app/context.h"
#include "app/site.h"
#include "manifest/manifest_retrieval.h"
#include "support/scripted_server.h"
#include "support/temp_folder.h"
#include "system/files.h"

namespace {

int updatesRun;

std::string DocumentWith(const std::string& updater) {
  return "\xEF\xBB\xBF<downloader>" + updater +
         "<text>&lt;a&amp;b</text><sources><source key='eu'/></sources>"
         "<packages><package><title>\xD0\x96</title><filename value='a'/></package></packages></downloader>";
}

class ManifestStore : public testing::Test {
 protected:
  ManifestStore() {
    app.manifestPath = folder_ / L"manifest.xml";
    app.upward.runSelfUpdate = [](const UpdaterInfo&) { ++updatesRun; };
    updatesRun = 0;
    Fetch("<downloader><updater md5=''/><packages/></downloader>");  // forgets what earlier tests loaded
  }
  ~ManifestStore() override { manifestBuffer.clear(); }

  static int Fetch(const std::string& document, bool suppressSelfUpdate = false) {
    manifestBuffer = document;
    return LoadManifest(suppressSelfUpdate);
  }

  const TempFolder folder_;
};

TEST_F(ManifestStore, FetchedDocumentIsCachedWithoutItsUpdaterAndABrokenOneIsNot) {
  ASSERT_EQ(Fetch(DocumentWith("<updater md5='m'/>")), 1);
  EXPECT_EQ(*app.selectedSource.Get(), "eu");
  const std::string cache = ReadTestFile(app.manifestPath);
  EXPECT_EQ(cache.find("updater"), std::string::npos);
  EXPECT_NE(cache.find("&lt;a&amp;b"), std::string::npos);
  const auto before = CurrentManifest();
  EXPECT_EQ(Fetch("<downloader><packages>"), -1);
  EXPECT_EQ(Fetch("<other/>"), 0);
  EXPECT_EQ(CurrentManifest(), before);
  EXPECT_EQ(ReadTestFile(app.manifestPath), cache);
  manifestBuffer.clear();
  EXPECT_EQ(LoadManifest(false), 1);
  EXPECT_EQ(CurrentManifest()->packages.at("a").title, L"\u0416");
}

TEST_F(ManifestStore, AnnouncedUpdateIsRunWhenItIsFetched) {
  Fetch(DocumentWith("<updater/>"));
  Fetch(DocumentWith("<updater md5='m'/>"), true);
  Fetch(DocumentWith(""));
  EXPECT_EQ(updatesRun, 0) << "nothing was announced, then it was suppressed, then it was not in the document";
  Fetch(DocumentWith("<updater/>"));
  EXPECT_EQ(updatesRun, 1) << "an earlier document announced it";
  EXPECT_TRUE(app.updateInProgress);
  WriteTestFile(app.manifestPath, DocumentWith("<updater md5='m'/>"));
  LoadManifest(false);
  EXPECT_EQ(updatesRun, 1) << "it stood in the cache";
  EXPECT_FALSE(PathExists(app.manifestPath));
}

TEST_F(ManifestStore, ACacheOfTheLastHourSparesTheNetwork) {
  ScriptedServer server;
  ScriptedAnswer answer;
  answer.body = DocumentWith("");
  server.Answer("/play/files/repository.php", answer);
  app.tmpPath.Set(folder_.Path());
  for (const auto& [ageSeconds, requests] : {std::pair(3590, 0u), {3610, 1u}, {0, 1u}}) {
    using namespace std::filesystem;
    last_write_time(app.manifestPath, file_time_type::clock::now() - std::chrono::seconds(ageSeconds));
    ManifestThreadProc(nullptr);
    EXPECT_EQ(server.Requests().size(), requests) << ageSeconds;
  }
}

TEST_F(ManifestStore, UrlTellsTheRepositoryOnlyWhatApplies) {
  EXPECT_EQ(BuildManifestUrl(), RepositoryAddress() + L"?l=9");
  app.uuid = "0aB";
  app.darkMode = true;
  app.startupWaitMs = 4294967295u;
  EXPECT_EQ(BuildManifestUrl(), RepositoryAddress() + L"?l=9&u=0aB&dt=1&sd=4294967295");
}

}  // namespace
