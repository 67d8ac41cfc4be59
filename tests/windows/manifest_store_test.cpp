#include "manifest/manifest_store.h"

#include <filesystem>

#include "app/manifest_thread.h"
#include "core/site.h"
#include "manifest/manifest_retrieval.h"
#include "support/box_recorder.h"
#include "support/install_scenario.h"
#include "support/wininet_faults.h"

using ManifestStore = InstallScenario;

static const std::string kPackage = "<packages><package><title>\xD0\x96&lt;</title></package></packages>";

static int Fetch(const std::string& content) {
  manifestBuffer = "\xEF\xBB\xBF<downloader>" + content + "</downloader>";
  return LoadManifest();
}

TEST_F(ManifestStore, WhatWasFetchedIsCachedWithoutItsUpdater) {
  EXPECT_EQ(Fetch("<updater md5='m'/>" + kPackage), 1);
  const auto before = CurrentManifest();
  const std::string cache = ReadTestFile(app.manifestPath);
  EXPECT_EQ(cache.find("updater"), std::string::npos);
  EXPECT_EQ(Fetch("<packages>"), -1);
  EXPECT_EQ(CurrentManifest(), before);
  EXPECT_EQ(ReadTestFile(app.manifestPath), cache);
  manifestBuffer.clear();
  EXPECT_EQ(LoadManifest(), 1);
  EXPECT_EQ(CurrentManifest()->packages.at("").title, L"\u0416<");

  // It may be deleted, but not written to.
  FileHandle held(CreateFileW(app.manifestPath.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_DELETE, nullptr,
                              OPEN_EXISTING, 0, nullptr));
  EXPECT_EQ(Fetch("<packages/>"), 0);
  EXPECT_EQ(LastCacheSave(), CacheSave::NotWritable);
  held.Reset();
  EXPECT_EQ(ReadTestFile(app.manifestPath), cache) << "an older cache stays";
}

TEST_F(ManifestStore, ACacheOfTheLastHourSparesTheNetwork) {
  const BoxRecorder none({});
  Fetch(kPackage);
  server_.Answer("/play/files/repository.php", Serving("<downloader>" + kPackage + "</downloader>"));
  for (const auto& [ageSeconds, requests] : {std::pair(3590, 0u), {3610, 1u}, {0, 1u}, {-100, 2u}}) {
    using namespace std::filesystem;
    last_write_time(app.manifestPath, file_time_type::clock::now() - std::chrono::seconds(ageSeconds));
    ManifestThreadProc(nullptr);
    EXPECT_EQ(server_.Requests().size(), requests) << ageSeconds;
  }
}

TEST_F(ManifestStore, AnOutageIsToldOnceAndThenTheListComesByItself) {
  const BoxRecorder boxes({IDOK});
  const SendFaults faults({ERROR_INTERNET_CANNOT_CONNECT, ERROR_INTERNET_CANNOT_CONNECT});
  server_.Answer("/play/files/repository.php", Serving("<downloader>" + kPackage + "</downloader>"));
  ManifestThreadProc(nullptr);
  EXPECT_TRUE(boxes.Boxes().at(0).text.starts_with(L"Error: 12029\n"));
  EXPECT_EQ(CurrentManifest()->packageOrder.size(), 1u);
}

TEST_F(ManifestStore, UrlTellsTheRepositoryWhatApplies) {
  app.uuid = "0aB";
  app.darkMode = true;
  app.startupWaitMs = 4294967295u;
  EXPECT_EQ(BuildManifestUrl(), RepositoryAddress() + L"?l=9&u=0aB&dt=1&sd=4294967295");
}

TEST_F(ManifestStore, AnAnswerThatIsNoManifestIsTold) {
  ScriptedAnswer cutOff = Serving("<downloader><packages></packages></downloader>");
  cutOff.closeAfter = 20;
  const std::pair<ScriptedAnswer, const wchar_t*> cases[] = {{Serving("<html><body>Sign in</body></html>"), L"13"},
                                                             {Serving("<downloader><packages>"), L"13"},
                                                             {Serving("no XML"), L"13"},
                                                             {cutOff, L"12030"}};
  for (const auto& [answer, error] : cases) {
    const BoxRecorder boxes({IDOK});
    server_.Answer("/play/files/repository.php", answer);
    ManifestThreadProc(nullptr);
    ASSERT_EQ(boxes.Boxes().size(), 1u) << answer.body;
    EXPECT_TRUE(boxes.Boxes()[0].text.starts_with(std::wstring(L"Error: ") + error + L"\n")) << answer.body;
    EXPECT_NE(boxes.Boxes()[0].text.find(L"Unable to download packages list"), std::wstring::npos);
  }
}
