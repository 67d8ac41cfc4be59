// The main window with its menu and its pages.
#include "app/main_window.h"

#include <map>

#include "app/component_list.h"
#include "app/main_menu.h"
#include "app/window_scale.h"
#include "core/localization.h"
#include "core/settings.h"
#include "support/shell_recorder.h"
#include "support/test_manifest.h"
#include "support/test_window.h"

namespace {

using Names = std::vector<std::string>;

class MainWindow : public testing::Test {
 protected:
  MainWindow() {
    LoadTestManifest(R"(<downloader>
      <sources default="us"><source key="us" title="Salt &amp; Pepper"/><source key="eu" title="Europe"/></sources><packages>
      <package><filename value="z"/><default value="true"/><size value="3000"/><upsize value="7000"/></package>
      <package><filename value="b"/><size value="5000000000"/><upsize value="9000000000"/></package>
      <package><filename value="n"/><upsize value="77"/></package>
      <package><filename value="t"/><default value="true"/><size value="500"/><upsize value="1000"/></package>
      </packages></downloader>)");
    Populate();
  }

  void Populate() const { window_.Run(PopulateComponentList); }

  LRESULT Send(UINT message, WPARAM wParam, LPARAM lParam) const {
    return SendMessageW(window_.Window(), message, wParam, lParam);
  }
  std::wstring Total() const { return TextOf(window_.Components().totalSizeLabel); }

  const TestWindow window_{CreateProgramWindow};
};

TEST_F(MainWindow, TotalFollowsTheCheckBoxes) {
  EXPECT_EQ(CheckedComponents(), (Names{"z", "t"}));
  EXPECT_EQ(Total(), L"Total size: 3.41 KB [after installation: 7.81 KB]");
  ListView_SetCheckState(window_.Components().itemsView, 1, TRUE);
  EXPECT_EQ(Total(), L"Total size: 4.65 GB [after installation: 8.38 GB]");
  window_.Run([] { CheckOnlyComponent(3); });
  EXPECT_EQ(CheckedComponents(), Names{"t"});
  EXPECT_EQ(Total(), L"Total size: 500 bytes [after installation: 1000 bytes]");
  window_.Run([] { CheckOnlyComponent(2); });
  EXPECT_EQ(Total(), L"") << "nothing to download, though something to install";
  app.installList.Set({"b", "unknown", "n"});
  Populate();
  EXPECT_EQ(CheckedComponents(), (Names{"b", "n"})) << "the command line overrides the defaults";
}

TEST_F(MainWindow, HintsAreShownAsTheyAre) {
  LoadTestManifest("<downloader><packages><package><tooltip>Hint</tooltip></package></packages></downloader>");
  Populate();
  const HWND list = window_.Components().itemsView;
  wchar_t text[64] = L"";
  NMLVGETINFOTIPW tip{{list, 0, static_cast<UINT>(LVN_GETINFOTIPW)}, 0, text, 64, 0, 0, 0};
  Send(WM_NOTIFY, 0, reinterpret_cast<LPARAM>(&tip));
  EXPECT_STREQ(text, L"Hint");
  const auto hints = reinterpret_cast<HWND>(SendMessageW(list, LVM_GETTOOLTIPS, 0, 0));
  EXPECT_TRUE(GetWindowLongW(hints, GWL_STYLE) & TTS_NOPREFIX) << "a \"&\" in it is shown";
}

TEST_F(MainWindow, LanguageChangesEverythingButTheWorkersTexts) {
  Send(WM_COMMAND, LANG_GERMAN, 0);
  EXPECT_EQ(TextOf(window_.Components().componentsLabel), L"Komponenten:");
  EXPECT_TRUE(Total().starts_with(L"Gesamtgr\u00F6\u00DFe: "));
  wchar_t source[64] = L"";
  GetMenuStringW(GetMenu(window_.Window()), kFirstSourceCommand + 1, source, 64, MF_BYCOMMAND);
  EXPECT_STREQ(source, L"Salt && Pepper");
  window_.Run(ShowInstallPage);
  window_.Installation().packageLabel.SetText(L"worker's text");
  SendMessageW(window_.Installation().deleteTmpCheckbox.Window(), BM_CLICK, 0, 0);
  Send(WM_COMMAND, LANG_ENGLISH, 0);
  EXPECT_EQ(TextOf(window_.Installation().packageLabel), L"worker's text");
  EXPECT_TRUE(TextOf(window_.Installation().deleteTmpCheckbox).starts_with(L"Delete created"));
  Send(WM_COMMAND, LANG_TURKISH, 0);
  app.uiLanguage = LANG_ENGLISH;
  app.deleteTmpFiles = false;
  LoadSettings();
  EXPECT_EQ(app.uiLanguage, uint32_t{LANG_TURKISH}) << "saved";
  EXPECT_TRUE(app.deleteTmpFiles) << "saved";
}

TEST_F(MainWindow, DataInUseCantBeDeleted) {
  const auto isGrey = [this] {
    const HMENU options = GetSubMenu(GetMenu(window_.Window()), 2);
    Send(WM_INITMENUPOPUP, reinterpret_cast<WPARAM>(options), 2);
    return (GetMenuState(options, COMMAND_DELETE_APP_DATA, MF_BYCOMMAND) & MF_GRAYED) != 0;
  };
  EXPECT_FALSE(isGrey());
  app.workerThread = ActiveThread();
  EXPECT_TRUE(isGrey());
  Send(WM_COMMAND, COMMAND_DELETE_APP_DATA, 0);  // would show a box
  app.workerThread.Reset();
  EXPECT_FALSE(isGrey());
  app.updateInProgress = true;
  EXPECT_TRUE(isGrey());
}

// Stands in for a list that knows groups, or refuses them.
struct GroupRecorder {
  bool refuses = false;
  bool inGroupView = false;
  std::map<int, std::wstring> groups = {};
  std::vector<int> groupsOfRows = {};
};

LRESULT CALLBACK RecordGroups(HWND list, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR, DWORD_PTR data) {
  auto& recorder = *reinterpret_cast<GroupRecorder*>(data);
  if (message == LVM_ENABLEGROUPVIEW) {
    recorder.inGroupView = wParam != FALSE;
    return 1;
  }
  if (message == LVM_INSERTGROUP) {
    if (recorder.refuses) return -1;
    const auto& group = *reinterpret_cast<const LVGROUP*>(lParam);
    recorder.groups[group.iGroupId] = group.pszHeader;
    return 0;
  }
  if (message == LVM_INSERTITEMW) {
    recorder.groupsOfRows.push_back(reinterpret_cast<const LVITEMW*>(lParam)->iGroupId);
  }
  return DefSubclassProc(list, message, wParam, lParam);
}

// A row in no group is not shown.
TEST_F(MainWindow, EveryRowIsInAGroupOrThereAreNone) {
  LoadTestManifest(R"(<downloader><packages>
      <package><filename value="a"/><group>Games</group></package><package><filename value="b"/></package>
      <package><filename value="c"/><group>Maps</group></package><package><filename value="d"/></package>
      <package><filename value="e"/><group>Games</group></package></packages></downloader>)");
  for (const bool refuses : {false, true}) {
    GroupRecorder recorder{.refuses = refuses};
    const HWND list = window_.Components().itemsView;
    window_.Run([&] { SetWindowSubclass(list, RecordGroups, 1, reinterpret_cast<DWORD_PTR>(&recorder)); });
    Populate();
    window_.Run([&] { RemoveWindowSubclass(list, RecordGroups, 1); });
    EXPECT_EQ(recorder.inGroupView, !refuses);
    if (refuses) continue;
    EXPECT_EQ(recorder.groups, (std::map<int, std::wstring>{{0, L""}, {1, L"Games"}, {2, L"Maps"}}));
    EXPECT_EQ(recorder.groupsOfRows, (std::vector<int>{1, 0, 2, 0, 1}));
  }
}

// Where each control stands in the window, and how high its text is.
std::vector<std::vector<int>> Layout(HWND window) {
  std::vector<std::vector<int>> layout;
  for (HWND child = GetWindow(window, GW_CHILD); child; child = GetWindow(child, GW_HWNDNEXT)) {
    RECT place{};
    GetWindowRect(child, &place);
    MapWindowPoints(nullptr, window, reinterpret_cast<POINT*>(&place), 2);
    if (IsRectEmpty(&place)) continue;  // is there for screen readers only
    LOGFONTW font{};
    GetObjectW(reinterpret_cast<HFONT>(SendMessageW(child, WM_GETFONT, 0, 0)), sizeof font, &font);
    layout.push_back({place.left, place.top, place.right - place.left, place.bottom - place.top, font.lfHeight});
  }
  return layout;
}

TEST_F(MainWindow, FollowsTheScaleOfTheScreenThatItComesTo) {
  const std::function<void()> pages[] = {[] {}, ShowInstallPage, ShowClosingPage};
  for (const auto& show : pages) {
    window_.Run(show);
    const auto unscaled = Layout(window_.Window());
    for (const int dpi : {144, 192, 96}) {
      auto expected = unscaled;
      for (auto& control : expected) {
        for (int& length : control) length = MulDiv(length, dpi, 96);
      }
      const RECT proposed{30, 40, 50, 60};
      Send(kScaleChangedMessage, MAKEWPARAM(dpi, dpi), reinterpret_cast<LPARAM>(&proposed));
      EXPECT_EQ(Layout(window_.Window()), expected) << "page " << app.currentPage << " at " << dpi;
      RECT place{};
      GetWindowRect(window_.Window(), &place);
      EXPECT_EQ(place.left, proposed.left);
      EXPECT_EQ(place.top, proposed.top);
      EXPECT_EQ(CheckedComponents(), app.currentPage == ComponentsPage ? (Names{"z", "t"}) : Names{});
    }
  }
}

TEST_F(MainWindow, TheEndOfTheSessionHasItsReason) {
  const std::pair<DWORD, CloseReason> cases[] = {{0, SystemShutdown},
                                                 {ENDSESSION_LOGOFF, LogOff},
                                                 {ENDSESSION_CRITICAL | ENDSESSION_LOGOFF, CriticalShutdown},
                                                 {ENDSESSION_CLOSEAPP, ClosedByApplication}};
  for (const auto& [flags, reason] : cases) {
    Send(WM_ENDSESSION, TRUE, static_cast<LPARAM>(flags));
    EXPECT_EQ(app.closeReason, reason);
  }
}

TEST_F(MainWindow, InstallWithoutRightsRelaunchesElevatedWithTheSelection) {
  const ShellRecorder shell;
  app.commandLine = L"install:old source:old";
  Send(WM_COMMAND, kFirstSourceCommand, 0);
  SendMessageW(window_.Components().installButton.Window(), BM_CLICK, 0, 0);
  ASSERT_TRUE(window_.WaitUntilClosed());
  EXPECT_EQ(shell.Starts().at(0).verb, L"runas");
  EXPECT_TRUE(shell.Starts().at(0).ownerLives) << "the question of consent stands before the window";
  EXPECT_EQ(shell.Starts().at(0).parameters, L"install:z,t source:eu");
}

}  // namespace
