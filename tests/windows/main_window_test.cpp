// The main window with its menu and its pages.
#include "app/main_window.h"

#include "app/component_list.h"
#include "app/main_menu.h"
#include "app/window_scale.h"
#include "core/localization.h"
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

TEST_F(MainWindow, ShowsTitlesHintsAndCommands) {
  LoadTestManifest(
      "<downloader><packages><package><filename value='q'/><title>\xD0\x96</title>"
      "<tooltip>Hint</tooltip></package></packages></downloader>");
  Populate();
  const HWND list = window_.Components().itemsView;
  wchar_t text[64] = L"";
  ListView_GetItemText(list, 0, 0, text, 64);
  EXPECT_STREQ(text, L"\u0416");
  NMLVGETINFOTIPW tip{{list, 0, static_cast<UINT>(LVN_GETINFOTIPW)}, 0, text, 64, 0, 0, 0};
  Send(WM_NOTIFY, 0, reinterpret_cast<LPARAM>(&tip));
  EXPECT_STREQ(text, L"Hint");
  GetMenuStringW(GetMenu(window_.Window()), COMMAND_SPEED_LIMIT, text, 64, MF_BYCOMMAND);
  EXPECT_STREQ(text, L"&Set download speed limit");
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
  Send(WM_COMMAND, LANG_ENGLISH, 0);
  EXPECT_EQ(TextOf(window_.Installation().packageLabel), L"worker's text");
  EXPECT_TRUE(TextOf(window_.Installation().deleteTmpCheckbox).starts_with(L"Delete created"));
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

TEST_F(MainWindow, InstallWithoutRightsRelaunchesElevatedWithTheSelection) {
  const ShellRecorder shell;
  app.commandLine = L"install:old source:old";
  Send(WM_COMMAND, kFirstSourceCommand, 0);
  SendMessageW(window_.Components().installButton.Window(), BM_CLICK, 0, 0);
  ASSERT_TRUE(window_.WaitUntilClosed());
  EXPECT_EQ(shell.Starts().at(0).verb, L"runas");
  EXPECT_EQ(shell.Starts().at(0).parameters, L"install:z,t source:eu");
}

}  // namespace
