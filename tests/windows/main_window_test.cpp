#include "app/main_window.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <commctrl.h>
#include <optional>
#include <string>
#include <vector>

#include "app/context.h"
#include "app/localization.h"
#include "app/main_menu.h"
#include "app/pages.h"
#include "app/single_instance.h"
#include "manifest/component_list.h"
#include "support/box_recorder.h"
#include "support/test_manifest.h"
#include "support/test_window.h"

namespace {

constexpr char kManifest[] = R"(<downloader>
  <sources default="us"><source key="us" title="America"/><source key="eu" title="Europe"/></sources>
  <packages>
    <package><title>One</title><filename value="one"/><default value="true"/><size value="1024"/>
      <upsize value="2048"/><tooltip>Hover text</tooltip></package>
    <package><title>Two</title><filename value="two"/><size value="1024"/></package>
  </packages></downloader>)";

// A stored setting of the tests' own key; nothing when it is not there.
std::optional<DWORD> StoredNumber(const wchar_t* name) {
  DWORD number = 0, size = sizeof(number);
  const LSTATUS status =
      RegGetValueW(HKEY_CURRENT_USER, app.registryKeyPath.c_str(), name, RRF_RT_REG_DWORD, nullptr, &number, &size);
  return status == ERROR_SUCCESS ? std::optional(number) : std::nullopt;
}

class MainWindow : public testing::Test {
 protected:
  MainWindow() {
    RegDeleteTreeW(HKEY_CURRENT_USER, app.registryKeyPath.c_str());
    app.upward.buildMainMenu = BuildMainMenu;
    app.selectedSource.Set({});
    LoadTestManifest(kManifest);
  }
  ~MainWindow() override {
    app.upward.buildMainMenu = nullptr;
    app.uiLanguage = LANG_ENGLISH;
    app.deleteTmpFiles = false;
    app.commandLine.clear();
    app.installList.Set({});
    app.selectedSource.Set({});
  }

  LRESULT Send(UINT message, WPARAM wParam, LPARAM lParam) const {
    return SendMessageW(window_.Window(), message, wParam, lParam);
  }
  template <typename Notification>
  LRESULT Notify(Notification& notification, UINT code) const {
    auto& header = reinterpret_cast<NMHDR&>(notification);
    header.hwndFrom = window_.Components().itemsView;
    header.code = code;
    return Send(WM_NOTIFY, 0, reinterpret_cast<LPARAM>(&notification));
  }
  void Click(const Control& control) const { SendMessageW(control.Window(), BM_CLICK, 0, 0); }
  std::wstring TotalSize() const { return TextOf(window_.Components().totalSizeLabel); }
  std::wstring BarText(int place) const {
    wchar_t text[64] = L"";
    GetMenuStringW(GetMenu(window_.Window()), static_cast<UINT>(place), text, 64, MF_BYPOSITION);
    return text;
  }

  TestWindow window_{CreateProgramWindow};
};

TEST_F(MainWindow, AppearsInTheMiddleInTheUiLanguage) {
  RECT bounds, desktop;
  GetWindowRect(window_.Window(), &bounds);
  GetClientRect(GetDesktopWindow(), &desktop);
  EXPECT_EQ(bounds.right - bounds.left, 600);
  EXPECT_EQ(bounds.bottom - bounds.top, 480);
  EXPECT_EQ(bounds.left, (desktop.right - 600) / 2);
  EXPECT_EQ(bounds.top, (desktop.bottom - 480) / 2);
  EXPECT_EQ(app.desktopWidth, desktop.right);
  EXPECT_EQ(app.desktopHeight, desktop.bottom);
  const DWORD changeable = WS_CAPTION | WS_SYSMENU | WS_MINIMIZEBOX | WS_MAXIMIZEBOX | WS_THICKFRAME | WS_CLIPCHILDREN;
  EXPECT_EQ(static_cast<DWORD>(GetWindowLongPtrW(window_.Window(), GWL_STYLE)) & changeable,
            WS_CAPTION | WS_SYSMENU | WS_MINIMIZEBOX | WS_CLIPCHILDREN);
  EXPECT_TRUE(IsWindowVisible(window_.Window()));
  EXPECT_EQ(FindWindowW(L"Zendora_Installer", nullptr), window_.Window());

  EXPECT_EQ(TextOf(window_.Window()), L"Zendora Installer");
  EXPECT_EQ(BarText(0), L"File");
  EXPECT_EQ(app.currentPage, ComponentsPage);
  EXPECT_EQ(TextOf(window_.Components().installPathLabel),
            L"Install in: [folders for components will be created automatically]");
  EXPECT_EQ(TextOf(window_.Components().selectFolderButton), L"Open");
  EXPECT_FALSE(StoredNumber(L"Language"));
}

TEST_F(MainWindow, LanguageCommandChangesEverythingAndIsKept) {
  PopulateComponentList();
  Send(WM_COMMAND, LANG_ENGLISH, 0);
  EXPECT_FALSE(StoredNumber(L"Language"));  // already the language
  const std::wstring englishTotal = TotalSize();

  Send(WM_COMMAND, LANG_GERMAN, 0);
  EXPECT_EQ(app.uiLanguage, static_cast<uint32_t>(LANG_GERMAN));
  EXPECT_EQ(StoredNumber(L"Language"), static_cast<DWORD>(LANG_GERMAN));
  SetThreadLanguage(LANG_GERMAN);
  const std::wstring file = LoadLocalizedString(STR_FILE), open = LoadLocalizedString(STR_OPEN),
                     install = LoadLocalizedString(STR_INSTALL), components = LoadLocalizedString(STR_COMPONENTS),
                     total = LoadLocalizedString(STR_TOTAL_SIZE);
  SetThreadLanguage(LANG_ENGLISH);
  EXPECT_EQ(BarText(0), file);
  EXPECT_EQ(TextOf(window_.Components().selectFolderButton), open);
  EXPECT_EQ(TextOf(window_.Components().installButton), install);
  EXPECT_EQ(TextOf(window_.Components().componentsLabel), components + L":");
  EXPECT_TRUE(TotalSize().starts_with(total + L": "));
  EXPECT_NE(TotalSize(), L"");
  EXPECT_NE(englishTotal, L"");

  Send(WM_COMMAND, LANG_FRENCH, 0);  // not offered
  EXPECT_EQ(app.uiLanguage, static_cast<uint32_t>(LANG_GERMAN));
}

TEST_F(MainWindow, LanguageCommandLeavesTheWorkersTextsAlone) {
  window_.Run(ShowInstallPage);
  window_.Installation().packageLabel.SetText(L"worker's text");
  Send(WM_COMMAND, LANG_POLISH, 0);
  EXPECT_EQ(TextOf(window_.Installation().packageLabel), L"worker's text");
  EXPECT_EQ(TextOf(window_.Installation().cancelButton), L"Cancel");
  SetThreadLanguage(LANG_POLISH);
  const std::wstring deleteFiles = LoadLocalizedString(STR_DELETE_TEMP_FILES);
  SetThreadLanguage(LANG_ENGLISH);
  EXPECT_EQ(TextOf(window_.Installation().deleteTmpCheckbox), deleteFiles);
}

TEST_F(MainWindow, ForwardedCommandLineIsReadOnlyAsFarAsItGoes) {
  const struct {
    WPARAM kind;
    ULONG_PTR length;
    std::wstring buffer;  // all of it is sent
    std::vector<std::string> installList;
    std::string source;
  } cases[] = {
      {kCopyDataCommandLine, 5, std::wstring(L"install:a,b source:eu\0install:x", 31), {"a", "b"}, "eu"},
      {kCopyDataCommandLine, 9999, L"install:unterminated", {"unterminated"}, "us"},
      {kCopyDataCommandLine, 0, L"install:a", {}, "us"},
      {kCopyDataCommandLine + 1, 9, L"install:a", {}, "us"},
      {kCopyDataCommandLine, 1, {}, {}, "us"},
  };
  for (const auto& test : cases) {
    SCOPED_TRACE(testing::PrintToString(test.buffer));
    app.installList.Set({});
    app.selectedSource.Set("us");
    std::wstring buffer = test.buffer;
    COPYDATASTRUCT data{test.length, static_cast<DWORD>(buffer.size() * sizeof(wchar_t)),
                        buffer.empty() ? nullptr : buffer.data()};
    EXPECT_EQ(Send(WM_COPYDATA, test.kind, reinterpret_cast<LPARAM>(&data)), 0);
    EXPECT_EQ(*app.installList.Get(), test.installList);
    EXPECT_EQ(*app.selectedSource.Get(), test.source);
    EXPECT_EQ(app.currentPage, ComponentsPage);
  }
}

TEST_F(MainWindow, HoverTextFitsItsBuffer) {
  PopulateComponentList();
  const struct {
    int row, capacity;
    const wchar_t* expected;
  } cases[] = {{0, 32, L"Hover text"}, {0, 11, L"Hover text"}, {0, 10, L"Hover tex"}, {0, 1, L""},
               {0, 0, L"before"},      {1, 32, L"before"},     {2, 32, L"before"},    {-1, 32, L"before"}};
  for (const auto& test : cases) {
    wchar_t text[32] = L"before";
    NMLVGETINFOTIPW request{};
    request.pszText = text;
    request.cchTextMax = test.capacity;
    request.iItem = test.row;
    EXPECT_EQ(Notify(request, LVN_GETINFOTIPW), 0);
    EXPECT_STREQ(text, test.expected) << "row " << test.row << ", " << test.capacity << " characters";
  }
}

TEST_F(MainWindow, CheckBoxesOfTheListChangeTheTotal) {
  PopulateComponentList();
  const std::wstring one = TotalSize();
  const HWND list = window_.Components().itemsView;
  LVITEMW check{};
  check.stateMask = LVIS_STATEIMAGEMASK;
  check.state = INDEXTOSTATEIMAGEMASK(2);
  SendMessageW(list, LVM_SETITEMSTATE, 1, reinterpret_cast<LPARAM>(&check));
  const std::wstring both = TotalSize();
  EXPECT_NE(both, one);

  NMITEMACTIVATE click{};
  click.iItem = 0;
  EXPECT_EQ(Notify(click, static_cast<UINT>(NM_DBLCLK)), 0);
  EXPECT_EQ(TotalSize(), one);
  click.iItem = -1;
  Notify(click, static_cast<UINT>(NM_DBLCLK));
  EXPECT_EQ(TotalSize(), L"");
}

TEST_F(MainWindow, ColumnKeepsItsWidth) {
  NMHEADERW drag{};
  EXPECT_EQ(Notify(drag, HDN_BEGINTRACKW), TRUE);
}

TEST_F(MainWindow, SourceCommandMovesTheCheckMark) {
  PopulateComponentList();
  Send(WM_COMMAND, kFirstSourceCommand, 0);
  EXPECT_EQ(*app.selectedSource.Get(), "eu");
  EXPECT_TRUE(GetMenuState(GetMenu(window_.Window()), kFirstSourceCommand, MF_BYCOMMAND) & MF_CHECKED);
  Send(WM_COMMAND, MAKEWPARAM(kFirstSourceCommand + 1, EN_CHANGE), 0);  // an edit's number, not a command
  EXPECT_EQ(*app.selectedSource.Get(), "eu");
}

TEST_F(MainWindow, DeleteFilesBoxIsKept) {
  window_.Run(ShowInstallPage);
  Click(window_.Installation().deleteTmpCheckbox);
  EXPECT_TRUE(app.deleteTmpFiles);
  EXPECT_EQ(StoredNumber(L"DeleteTmpFiles"), 1u);
  Click(window_.Installation().deleteTmpCheckbox);
  EXPECT_FALSE(app.deleteTmpFiles);
  EXPECT_EQ(StoredNumber(L"DeleteTmpFiles"), 0u);
}

TEST_F(MainWindow, ClickDuringAnUpdateOffersTheDownloadPageAndCloses) {
  app.updateInProgress = true;
  BoxRecorder recorder({IDNO});
  window_.Run([this] {
    SetLastError(ERROR_ACCESS_DENIED);  // of something else, long ago
    Send(WM_COMMAND, 0, reinterpret_cast<LPARAM>(window_.Components().selectFolderButton.Window()));
  });
  EXPECT_TRUE(window_.WaitUntilClosed());
  ASSERT_EQ(recorder.Boxes().size(), 1u);
  EXPECT_TRUE(recorder.Boxes()[0].text.starts_with(L"Please download the latest version of this app from:\n"));
}

TEST_F(MainWindow, ExitEndsItWhateverRuns) {
  app.installRunning = true;
  EXPECT_EQ(Send(WM_COMMAND, MAKEWPARAM(105, 0), 0), 0);
  EXPECT_TRUE(window_.WaitUntilClosed());
}

}  // namespace
