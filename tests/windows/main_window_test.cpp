#include "app/main_window.h"

#include <commctrl.h>
#include <gtest/gtest.h>

#include "app/main_menu.h"
#include "app/pages.h"
#include "app/single_instance.h"
#include "manifest/component_list.h"
#include "support/box_recorder.h"
#include "support/shell_recorder.h"
#include "support/test_manifest.h"
#include "support/test_window.h"

namespace {

class MainWindow : public testing::Test {
 protected:
  MainWindow() {
    app.upward.buildMainMenu = BuildMainMenu;
    LoadTestManifest(R"(<downloader>
      <sources default="us"><source key="us" title="America"/><source key="eu" title="Europe"/></sources>
      <packages><package><filename value="gta"/><default value="true"/><size value="1"/><tooltip>Hover text</tooltip></package>
        <package><filename value="extra"/></package>
        <package><filename value="mta.exe"/><default value="true"/></package></packages></downloader>)");
    PopulateComponentList();
  }

  LRESULT Send(UINT message, WPARAM wParam, LPARAM lParam) const {
    return SendMessageW(window_.Window(), message, wParam, lParam);
  }

  const TestWindow window_{CreateProgramWindow};
};

TEST_F(MainWindow, LanguageChangesEverythingButTheWorkersTexts) {
  Send(WM_COMMAND, LANG_GERMAN, 0);
  EXPECT_EQ(TextOf(window_.Components().componentsLabel), L"Komponenten:");
  EXPECT_TRUE(TextOf(window_.Components().totalSizeLabel).starts_with(L"Gesamtgr\u00F6\u00DFe: "));
  window_.Run(ShowInstallPage);
  window_.Installation().packageLabel.SetText(L"worker's text");
  Send(WM_COMMAND, LANG_ENGLISH, 0);
  EXPECT_EQ(TextOf(window_.Installation().packageLabel), L"worker's text");
  EXPECT_TRUE(TextOf(window_.Installation().deleteTmpCheckbox).starts_with(L"Delete created"));
}

TEST_F(MainWindow, ForwardedCommandLineIsReadOnlyAsFarAsItGoes) {
  using Names = std::vector<std::string>;
  std::pair<std::wstring, Names> cases[] = {{L"install:unterminated", {"unterminated"}},
                                            {std::wstring(L"install:a,b source:eu\0install:x", 31), {"a", "b"}}};
  for (auto& [sent, expected] : cases) {
    COPYDATASTRUCT data{9999, static_cast<DWORD>(sent.size() * sizeof(wchar_t)), sent.data()};
    Send(WM_COPYDATA, kCopyDataCommandLine, reinterpret_cast<LPARAM>(&data));
    EXPECT_EQ(*app.installList.Get(), expected);
  }
  EXPECT_EQ(*app.selectedSource.Get(), "eu");
}

TEST_F(MainWindow, HoverTextFitsItsBuffer) {
  const std::pair<int, const wchar_t*> cases[] = {{11, L"Hover text"}, {10, L"Hover tex"}, {0, L"before"}};
  for (const auto& [capacity, expected] : cases) {
    wchar_t text[32] = L"before";
    NMLVGETINFOTIPW request{};
    request.hdr.code = LVN_GETINFOTIPW;
    request.pszText = text;
    request.cchTextMax = capacity;
    Send(WM_NOTIFY, 0, reinterpret_cast<LPARAM>(&request));
    EXPECT_STREQ(text, expected);
  }
}

TEST_F(MainWindow, InstallWithoutRightsRelaunchesElevatedWithTheSelection) {
  const ShellRecorder shell;
  app.commandLine = L"install:old source:old";
  Send(WM_COMMAND, kFirstSourceCommand, 0);
  SendMessageW(window_.Components().installButton.Window(), BM_CLICK, 0, 0);
  ASSERT_TRUE(window_.WaitUntilClosed());
  EXPECT_EQ(shell.Starts().at(0).verb, L"runas");
  EXPECT_EQ(shell.Starts().at(0).parameters, L"install:gta,mta.exe source:eu");
}

TEST_F(MainWindow, ClickDuringAnUpdateOffersTheDownloadPageAndCloses) {
  app.updateInProgress = true;
  const BoxRecorder boxes({IDNO});
  window_.Run([this] {
    SetLastError(ERROR_ACCESS_DENIED);  // of something else, long ago
    SendMessageW(window_.Components().installButton.Window(), BM_CLICK, 0, 0);
  });
  EXPECT_TRUE(window_.WaitUntilClosed());
  EXPECT_TRUE(boxes.Boxes().at(0).text.starts_with(L"Please download the latest version of this app from:\n"));
}

}  // namespace
