#include "manifest/manifest_retrieval.h"

#include <gtest/gtest.h>

#include <atomic>

#include "app/context.h"
#include "app/localization.h"
#include "app/site.h"
#include "manifest/manifest_store.h"
#include "net/network_errors.h"
#include "support/box_recorder.h"
#include "support/scripted_server.h"
#include "support/temp_folder.h"
#include "support/test_window.h"

namespace {

constexpr char kRepository[] = "/play/files/repository.php";
constexpr char kOnePackage[] =
    R"(<downloader><packages><package><filename value="cached"/></package></packages></downloader>)";
constexpr char kTwoPackages[] =
    R"(<downloader><packages><package><filename value="a"/></package><package><filename value="b"/></package></packages></downloader>)";

ScriptedAnswer Body(const std::string& body) {
  ScriptedAnswer answer;
  answer.body = body;
  return answer;
}

// Leads the client to a port where nobody listens.
ScriptedAnswer Outage() {
  ScriptedAnswer answer;
  answer.status = 302;
  answer.headers = {{"Location", "http://127.0.0.1:1/"}};
  return answer;
}

ScriptedAnswer Missing() {
  ScriptedAnswer answer;
  answer.status = 404;
  return answer;
}

void SetAge(const std::wstring& path, int64_t seconds) {
  FILETIME time;
  GetSystemTimeAsFileTime(&time);
  ULARGE_INTEGER ticks;
  ticks.LowPart = time.dwLowDateTime;
  ticks.HighPart = time.dwHighDateTime;
  ticks.QuadPart -= static_cast<uint64_t>(seconds * 10'000'000);
  time = {ticks.LowPart, ticks.HighPart};
  const FileHandle file(CreateFileW(path.c_str(), FILE_WRITE_ATTRIBUTES, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                    OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
  ASSERT_TRUE(file);
  ASSERT_TRUE(SetFileTime(file.Get(), nullptr, nullptr, &time));
}

class ManifestRetrieval : public testing::Test {
 protected:
  void SetUp() override {
    // Forgets what earlier tests loaded and could not save.
    app.manifestPath = folder_ / L"reset.xml";
    manifestBuffer = "<downloader><packages/></downloader>";
    LoadManifest(true);
    app.tmpPath.Set(folder_ / L"tmp");
    app.manifestPath = folder_ / L"tmp\\manifest.xml";
    app.upward.buildMainMenu = [] { ++listsFilled; };
    app.installList.Set({});
    listsFilled = 0;
  }
  void TearDown() override {
    app.tmpPath.Set({});
    app.manifestPath.clear();
    app.upward.buildMainMenu = nullptr;
    app.installList.Set({});
    manifestBuffer.clear();
  }

  // The thread's work on the test's thread, which the window's thread serves as it serves the manifest thread.
  void Retrieve() { ManifestThreadProc(nullptr); }
  size_t RequestCount() const { return server_.RequestsOf(kRepository).size(); }

  static std::wstring ManifestErrorText(const std::wstring& errorLines) {
    return errorLines + LoadLocalizedString(STR_CANNOT_DOWNLOAD_LIST) + L"\n\n" +
           LoadLocalizedString(STR_CHECK_CONNECTION) + L"\n\n" + LoadLocalizedString(STR_ANTIVIRUS_HINT);
  }

  TempFolder folder_;
  ScriptedServer server_;
  TestWindow window_{ComponentsPage, [this](UINT message, WPARAM wParam, LPARAM) -> std::optional<LRESULT> {
                       if (message == WM_COMMAND && HIWORD(wParam) == BN_CLICKED) ++clicks_;
                       return std::nullopt;
                     }};
  std::atomic<int> clicks_ = 0;
  static inline std::atomic<int> listsFilled;
};

}  // namespace

TEST(ManifestUrl, TellsTheRepositoryOnlyWhatApplies) {
  struct Case {
    uint32_t language;
    std::string uuid;
    bool dark;
    uint32_t wait;
    const wchar_t* query;
  };
  const Case cases[] = {
      {LANG_ENGLISH, "", false, 0, L"?l=9"},
      {LANG_RUSSIAN, "", false, 250, L"?l=25&sd=250"},
      {LANG_ENGLISH, "0aB-\xE9", true, 4294967295u, L"?l=9&u=0aB-\u00E9&dt=1&sd=4294967295"},
      {LANG_GERMAN, "", true, 0, L"?l=7&dt=1"},
  };
  for (const Case& c : cases) {
    app.uiLanguage = c.language;
    app.uuid = c.uuid;
    app.darkMode = c.dark;
    app.startupWaitMs = c.wait;
    EXPECT_EQ(BuildManifestUrl(), RepositoryAddress() + c.query);
  }
  app.uiLanguage = LANG_ENGLISH;
  app.uuid.clear();
  app.darkMode = false;
  app.startupWaitMs = 0;
}

TEST_F(ManifestRetrieval, FetchReplacesTheBuffer) {
  server_.Answer(kRepository, Body("fetched"));
  manifestBuffer = "old";
  EXPECT_TRUE(FetchManifest());
  EXPECT_EQ(manifestBuffer, "fetched");
  const auto requests = server_.RequestsOf(kRepository);
  ASSERT_EQ(requests.size(), 1u);
  EXPECT_EQ(requests[0].target, std::string(kRepository) + "?l=9");
  EXPECT_EQ(requests[0].headers.at("user-agent"), "Zendora tests");
  EXPECT_EQ(requests[0].headers.at("accept-encoding"), "gzip");
}

TEST_F(ManifestRetrieval, FetchFailsWithoutABody) {
  struct Case {
    ScriptedAnswer answer;
    DWORD error;
  };
  for (const Case& c : {Case{Missing(), 0}, Case{Body(""), 0}, Case{Outage(), kErrorCannotConnect}}) {
    server_.Answer(kRepository, c.answer);
    manifestBuffer = "old";
    SetLastError(ERROR_INVALID_HANDLE);
    EXPECT_FALSE(FetchManifest());
    EXPECT_EQ(GetLastError(), c.error) << "status " << c.answer.status;
    EXPECT_EQ(manifestBuffer, "");
  }
}

TEST_F(ManifestRetrieval, FreshCacheSparesTheNetwork) {
  BoxRecorder noBoxes({});
  struct Case {
    const char* cache;
    int64_t ageSeconds;
    bool used;
  };
  const Case cases[] = {
      {kOnePackage, 0, true},     {kOnePackage, 3595, true},   {kOnePackage, 3600, true},
      {kOnePackage, 3601, false}, {kOnePackage, 90000, false}, {"", 0, false},
  };
  server_.Answer(kRepository, Body(kTwoPackages));
  for (const Case& c : cases) {
    SCOPED_TRACE(c.ageSeconds);
    WriteTestFile(app.manifestPath, c.cache);
    SetAge(app.manifestPath, c.ageSeconds);
    const size_t requestsBefore = RequestCount();
    Retrieve();
    EXPECT_EQ(RequestCount() - requestsBefore, c.used ? 0u : 1u);
    EXPECT_EQ(CurrentManifest()->packageOrder.size(), c.used ? 1u : 2u);
  }
  EXPECT_EQ(listsFilled, static_cast<int>(std::size(cases)));
  EXPECT_EQ(clicks_, 0);
}

TEST_F(ManifestRetrieval, FetchesIntoANewTemporaryFolder) {
  BoxRecorder noBoxes({});
  server_.Answer(kRepository, Body(kTwoPackages));
  Retrieve();
  EXPECT_EQ(CurrentManifest()->packageOrder.size(), 2u);
  Retrieve();
  EXPECT_EQ(RequestCount(), 1u) << "the cache was just written";
  EXPECT_TRUE(IsWindowEnabled(window_.Components().installButton.Window()));
}

TEST_F(ManifestRetrieval, RefusalIsToldOnceAndNotRetried) {
  server_.Answer(kRepository, Missing());
  BoxRecorder boxes({IDOK});
  app.installList.Set({"a"});
  Retrieve();
  ASSERT_EQ(boxes.Boxes().size(), 1u);
  EXPECT_EQ(boxes.Boxes()[0].caption, L"Manifest");
  EXPECT_EQ(boxes.Boxes()[0].text, ManifestErrorText(L""));
  EXPECT_EQ(boxes.Boxes()[0].owner, window_.Window());
  EXPECT_EQ(RequestCount(), 1u);
  EXPECT_EQ(listsFilled, 0);
  EXPECT_EQ(clicks_, 0);
}

TEST_F(ManifestRetrieval, OutageIsRetriedUntilTheNetworkReturns) {
  server_.AnswerNext(kRepository, Outage());
  server_.AnswerNext(kRepository, Outage());
  server_.Answer(kRepository, Body(kTwoPackages));
  BoxRecorder boxes({IDOK});
  Retrieve();
  ASSERT_EQ(boxes.Boxes().size(), 1u);
  EXPECT_EQ(boxes.Boxes()[0].text, ManifestErrorText(L"Error: 12029\n"));
  EXPECT_EQ(RequestCount(), 3u);
  EXPECT_EQ(listsFilled, 1);
}

TEST_F(ManifestRetrieval, RetriesThatEndInARefusalAreToldAgain) {
  server_.AnswerNext(kRepository, Outage());
  server_.Answer(kRepository, Missing());
  BoxRecorder boxes({IDOK, IDOK});
  Retrieve();
  EXPECT_EQ(boxes.Boxes().size(), 2u);
  EXPECT_EQ(boxes.Boxes().back().text, ManifestErrorText(L""));
  EXPECT_EQ(RequestCount(), 2u);
  EXPECT_EQ(listsFilled, 0);
}

TEST_F(ManifestRetrieval, CancelEndsTheRetries) {
  server_.Answer(kRepository, Outage());
  BoxRecorder boxes({IDOK});
  app.cancelRequested = true;
  Retrieve();
  EXPECT_EQ(RequestCount(), 1u);
}

TEST_F(ManifestRetrieval, StartsTheInstallationThatWasAskedFor) {
  BoxRecorder noBoxes({});
  struct Case {
    const char* document;
    bool restart;
    int clicks, fills;
  };
  const Case cases[] = {
      {kTwoPackages, false, 1, 1},
      {"<broken", false, 1, 0},
      {"<broken", true, 0, 0},
      {kTwoPackages, true, 1, 1},
  };
  app.installList.Set({"a"});
  for (const Case& c : cases) {
    SCOPED_TRACE(c.document);
    DeleteFileW(app.manifestPath.c_str());
    server_.Answer(kRepository, Body(c.document));
    app.restartRequested = c.restart;
    clicks_ = 0;
    listsFilled = 0;
    Retrieve();
    EXPECT_EQ(clicks_, c.clicks);
    EXPECT_EQ(listsFilled, c.fills);
  }
}

TEST_F(ManifestRetrieval, SelectionMadeMeanwhileIsNotStartedASecondTime) {
  BoxRecorder noBoxes({});
  server_.Answer(kRepository, Body(kTwoPackages));
  // What pressing Install does while the list is being filled.
  app.upward.buildMainMenu = [] { app.installList.Set({"b"}); };
  Retrieve();
  EXPECT_EQ(clicks_, 0);
}

TEST_F(ManifestRetrieval, RepairIsOfferedForACacheThatCannotBeSaved) {
  const std::wstring unwritable = folder_ / L"not there";
  app.manifestPath = unwritable + L"\\manifest.xml";
  server_.Answer(kRepository, Body(kTwoPackages));
  {
    BoxRecorder boxes({IDNO});
    Retrieve();
    ASSERT_EQ(boxes.Boxes().size(), 1u);
    EXPECT_EQ(boxes.Boxes()[0].caption, L"Manifest");
    EXPECT_EQ(boxes.Boxes()[0].text, LoadLocalizedString(STR_CANNOT_SAVE_FILE) + L"\n\nFix permissions?");
    EXPECT_EQ(boxes.Boxes()[0].buttons, (std::vector<int>{IDYES, IDNO}));
    EXPECT_EQ(listsFilled, 1);
  }
  // A repair whose command line does what lets the next attempt succeed.
  app.appDataPath = L"none\" & mkdir \"" + unwritable + L"\" & rem \"";
  {
    BoxRecorder boxes({IDYES});
    Retrieve();
  }
  app.appDataPath.clear();
  EXPECT_EQ(LoadManifest(false), 2) << "saved after the repair";
}
