#include "manifest/manifest_store.h"

#include <gtest/gtest.h>
#include <windows.h>

#include "app/context.h"
#include "support/temp_folder.h"
#include "system/files.h"

namespace {

constexpr char kTwoPackages[] = R"(<downloader>
  <sources><source key="us" title="America"/><source key="eu" title="Europe"/></sources>
  <packages>
    <package><title>)"
                                "\xD0\x96"
                                R"(</title><filename value="a"/><size value="6000000000"/></package>
    <package><filename value="b"/><size value="0x200000000"/></package>
  </packages></downloader>)";
constexpr char kUpdater[] = R"(<updater md5="m" filesize="7"><source url="u"/></updater>)";
constexpr char kNoUpdate[] = R"(<downloader><updater md5=""/><packages/></downloader>)";

std::string WithRootChild(const std::string& child) { return "<downloader>" + child + (kTwoPackages + 12); }

class ManifestStore : public testing::Test {
 protected:
  void SetUp() override {
    app.manifestPath = folder_ / L"manifest.xml";
    app.selectedSource.Set("");
    app.upward.runSelfUpdate = [](const UpdaterInfo& update) {
      ++updatesRun;
      lastUpdate = update;
      orderDuringUpdate = CurrentManifest()->packageOrder;
    };
    Fetch(kNoUpdate, true);  // forgets the packages and the update that earlier tests loaded
    DeleteFileW(app.manifestPath.c_str());
    app.updateInProgress = false;
    updatesRun = 0;
  }
  void TearDown() override {
    manifestBuffer.clear();
    app.manifestPath.clear();
    app.updateInProgress = false;
    app.upward.runSelfUpdate = nullptr;
  }

  static int Fetch(const std::string& document, bool suppressSelfUpdate) {
    manifestBuffer = document;
    return LoadManifest(suppressSelfUpdate);
  }

  TempFolder folder_;
  static inline int updatesRun;
  static inline UpdaterInfo lastUpdate;
  static inline std::vector<std::string> orderDuringUpdate;
};

}  // namespace

TEST_F(ManifestStore, FetchedDocumentIsCachedWithoutItsUpdaterAndReadBack) {
  ASSERT_EQ(Fetch(WithRootChild(kUpdater), true), 2);
  EXPECT_EQ(manifestBuffer, "");
  EXPECT_FALSE(ManifestCacheSaveFailed());
  EXPECT_EQ(ReadTestFile(app.manifestPath).find("updater"), std::string::npos);
  EXPECT_FALSE(PathExists(folder_ / L"manifest.new"));

  ASSERT_EQ(Fetch("<downloader><packages/></downloader>", true), 0);
  WriteTestFile(app.manifestPath, WithRootChild(""));
  ASSERT_EQ(LoadManifest(false), 2);
  const auto manifest = CurrentManifest();
  EXPECT_EQ(manifest->packages.at("a").title, L"\u0416");
  EXPECT_EQ(manifest->packages.at("a").size, 6000000000);
  EXPECT_EQ(manifest->packages.at("b").size, 0x200000000);
  EXPECT_TRUE(PathExists(app.manifestPath));
  EXPECT_EQ(updatesRun, 0);
}

TEST_F(ManifestStore, CacheHoldsWhatWasFetched) {
  ASSERT_EQ(Fetch("\xEF\xBB\xBF" + WithRootChild("<text>&lt;a&amp;b\n</text>"), true), 2);
  const auto fetched = CurrentManifest();
  ASSERT_EQ(LoadManifest(false), 2);
  const auto cached = CurrentManifest();
  EXPECT_NE(fetched, cached);
  EXPECT_EQ(cached->packageOrder, fetched->packageOrder);
  EXPECT_EQ(cached->packages.at("a").title, L"\u0416");
  EXPECT_NE(ReadTestFile(app.manifestPath).find("&lt;a&amp;b"), std::string::npos);
}

TEST_F(ManifestStore, UnusableDocuments) {
  struct Case {
    const char* document;
    int result;
  };
  const Case cases[] = {
      {"", -1}, {"<downloader><packages>", -1}, {"no xml", -1}, {"<downloader a='1' <", -1}, {"<other/>", 0},
  };
  ASSERT_EQ(Fetch(kTwoPackages, true), 2);
  const auto before = CurrentManifest();
  const std::string cache = ReadTestFile(app.manifestPath);
  for (const Case& c : cases) {
    if (*c.document) {
      EXPECT_EQ(Fetch(c.document, false), c.result) << c.document;
      EXPECT_EQ(manifestBuffer, c.result == -1 ? c.document : "");
      EXPECT_EQ(ReadTestFile(app.manifestPath), cache) << c.document;
    }
    EXPECT_EQ(CurrentManifest(), before) << c.document;

    manifestBuffer.clear();
    WriteTestFile(app.manifestPath, c.document);
    EXPECT_EQ(LoadManifest(false), c.result) << "cached: " << c.document;
    EXPECT_EQ(PathExists(app.manifestPath), c.result == 0) << c.document;
    EXPECT_EQ(CurrentManifest(), before) << c.document;
    WriteTestFile(app.manifestPath, cache);
  }
  DeleteFileW(app.manifestPath.c_str());
  EXPECT_EQ(LoadManifest(false), -1);
}

TEST_F(ManifestStore, AnnouncedUpdate) {
  struct Case {
    const char* what;
    std::string rootChild;
    bool known;  // an earlier document announced an update
    bool fromCache, suppress;
    bool runs, deletesCache;
  };
  const Case cases[] = {
      {"fetched", kUpdater, false, false, false, true, false},
      {"fetched again during a run", kUpdater, false, false, true, false, false},
      {"fetched, no updater", "", true, false, false, false, false},
      {"fetched, updater without md5", "<updater/>", false, false, false, false, false},
      {"fetched, updater without md5 after one with it", "<updater/>", true, false, false, true, false},
      {"fetched, updater with empty md5", R"(<updater md5=""/>)", true, false, false, false, false},
      {"cached", kUpdater, false, true, false, false, true},
      {"cached, no updater", "", true, true, false, false, false},
      {"cached, updater without md5 after one with it", "<updater/>", true, true, false, false, true},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    SetUp();
    if (c.known) Fetch("<downloader>" + std::string(kUpdater) + "</downloader>", true);
    if (c.fromCache) {
      WriteTestFile(app.manifestPath, WithRootChild(c.rootChild));
      EXPECT_EQ(LoadManifest(c.suppress), 2);
    } else {
      EXPECT_EQ(Fetch(WithRootChild(c.rootChild), c.suppress), 2);
    }
    EXPECT_EQ(updatesRun, c.runs ? 1 : 0);
    EXPECT_EQ(app.updateInProgress, c.runs);
    EXPECT_EQ(PathExists(app.manifestPath), !c.deletesCache);
    EXPECT_EQ(CurrentManifest()->packageOrder.size(), 2u);
    if (c.runs) {
      EXPECT_EQ(lastUpdate.md5, "m");
      EXPECT_EQ(lastUpdate.urls, std::deque<std::string>{"u"});
      EXPECT_TRUE(orderDuringUpdate.empty()) << "the packages are read after the update was tried";
    }
  }
}

TEST_F(ManifestStore, LoadingLeavesEarlierSnapshotsAlone) {
  ASSERT_EQ(Fetch(kTwoPackages, true), 2);
  const auto before = CurrentManifest();
  ASSERT_EQ(Fetch(R"(<downloader><sources/><packages><package><filename value="b"/></package></packages></downloader>)",
                  true),
            1);
  EXPECT_EQ(before->packageOrder.size(), 2u);
  EXPECT_EQ(before->packages.at("b").size, 0x200000000);
  EXPECT_EQ(before->sources.size(), 2u);
  EXPECT_EQ(CurrentManifest()->packages.at("b").size, 0);
  EXPECT_EQ(CurrentManifest()->packages.at("a").size, 6000000000);
  EXPECT_TRUE(CurrentManifest()->sources.empty());
}

TEST_F(ManifestStore, SelectedSourceFollowsTheCatalogue) {
  app.selectedSource.Set("us");
  Fetch(kTwoPackages, true);
  EXPECT_EQ(*app.selectedSource.Get(), "us");
  app.selectedSource.Set("gone");
  Fetch(kTwoPackages, true);
  EXPECT_EQ(*app.selectedSource.Get(), "eu");
  app.selectedSource.Set("gone");
  Fetch("<downloader/>", true);
  EXPECT_EQ(*app.selectedSource.Get(), "gone");
}

TEST_F(ManifestStore, CacheThatCannotBeOpenedIsToldAndCanBeSavedLater) {
  app.manifestPath = folder_ / L"missing \u0416\u65E5\\manifest.xml";
  ASSERT_EQ(Fetch(kTwoPackages, true), 2);
  EXPECT_TRUE(ManifestCacheSaveFailed());
  EXPECT_EQ(CurrentManifest()->packageOrder.size(), 2u);
  EXPECT_FALSE(SaveManifestCache());

  ASSERT_EQ(CreateDirectories(folder_ / L"missing \u0416\u65E5"), 0u);
  EXPECT_TRUE(SaveManifestCache());
  EXPECT_EQ(LoadManifest(false), 2);
  ASSERT_EQ(Fetch(kTwoPackages, true), 2);
  EXPECT_FALSE(ManifestCacheSaveFailed());
}

TEST_F(ManifestStore, CacheThatCannotBeReplacedStaysWhole) {
  WriteTestFile(app.manifestPath, "old");
  const HANDLE reader = CreateFileW(app.manifestPath.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                                    FILE_ATTRIBUTE_NORMAL, nullptr);
  ASSERT_NE(reader, INVALID_HANDLE_VALUE);
  EXPECT_EQ(Fetch(kTwoPackages, true), 2);
  EXPECT_TRUE(ManifestCacheSaveFailed());
  CloseHandle(reader);
  EXPECT_EQ(ReadTestFile(app.manifestPath), "old");
  EXPECT_FALSE(PathExists(folder_ / L"manifest.new"));
}
