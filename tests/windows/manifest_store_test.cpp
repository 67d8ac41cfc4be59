#include "manifest/manifest_store.h"

#include <gtest/gtest.h>

#include "app/context.h"
#include "support/temp_folder.h"
#include "system/files.h"
#include "system/handles.h"

namespace {

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
  ~ManifestStore() override {
    manifestBuffer.clear();
    app.manifestPath.clear();
    app.selectedSource.Set("");
    app.updateInProgress = false;
    app.upward.runSelfUpdate = nullptr;
  }

  static int Fetch(const std::string& document, bool suppressSelfUpdate = false) {
    manifestBuffer = document;
    return LoadManifest(suppressSelfUpdate);
  }

  TempFolder folder_;
  static inline int updatesRun;
};

TEST_F(ManifestStore, FetchedDocumentIsCachedWithoutItsUpdaterAndABrokenOneIsNot) {
  ASSERT_EQ(Fetch(DocumentWith("<updater md5='m'/>")), 1);
  EXPECT_EQ(*app.selectedSource.Get(), "eu");
  const std::string cache = ReadTestFile(app.manifestPath);
  EXPECT_EQ(cache.find("updater"), std::string::npos);
  EXPECT_NE(cache.find("&lt;a&amp;b"), std::string::npos);
  Fetch("<downloader><packages/></downloader>");
  WriteTestFile(app.manifestPath, cache);
  ASSERT_EQ(LoadManifest(false), 1);
  EXPECT_EQ(CurrentManifest()->packages.at("a").title, L"\u0416");

  const auto before = CurrentManifest();
  EXPECT_EQ(Fetch("<downloader><packages>"), -1);
  EXPECT_EQ(Fetch("<other/>"), 0);
  EXPECT_EQ(CurrentManifest(), before);
  EXPECT_EQ(ReadTestFile(app.manifestPath), cache);
}

TEST_F(ManifestStore, AnnouncedUpdateIsRunWhenItIsFetched) {
  Fetch(DocumentWith("<updater/>"));
  Fetch(DocumentWith("<updater md5='m'/>"), true);
  EXPECT_EQ(updatesRun, 0) << "nothing was announced, then it was suppressed";
  Fetch(DocumentWith(""));
  EXPECT_EQ(updatesRun, 0) << "this document has no updater";
  EXPECT_FALSE(app.updateInProgress);
  Fetch(DocumentWith("<updater/>"));
  EXPECT_EQ(updatesRun, 1) << "an earlier document announced it";
  EXPECT_TRUE(app.updateInProgress);
  WriteTestFile(app.manifestPath, DocumentWith("<updater md5='m'/>"));
  LoadManifest(false);
  EXPECT_EQ(updatesRun, 1) << "it stood in the cache";
  EXPECT_FALSE(PathExists(app.manifestPath));
}

TEST_F(ManifestStore, CacheThatCannotBeReplacedStaysWhole) {
  WriteTestFile(app.manifestPath, "old");
  FileHandle reader(CreateFileW(app.manifestPath.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                                FILE_ATTRIBUTE_NORMAL, nullptr));
  EXPECT_EQ(Fetch(DocumentWith("")), 1);
  EXPECT_TRUE(ManifestCacheSaveFailed());
  EXPECT_EQ(ReadTestFile(app.manifestPath), "old");
  EXPECT_FALSE(PathExists(folder_ / L"manifest.new"));
}

}  // namespace
