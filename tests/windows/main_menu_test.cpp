#include "app/main_menu.h"

#include <gtest/gtest.h>

#include <thread>

#include "app/localization.h"
#include "support/test_manifest.h"
#include "support/test_window.h"

namespace {

using Texts = std::vector<std::wstring>;

// The texts of the items, with "*" behind those that are checked.
Texts ItemsOf(HMENU menu) {
  Texts texts;
  for (int i = 0; i < GetMenuItemCount(menu); ++i) {
    wchar_t text[256] = L"";
    GetMenuStringW(menu, static_cast<UINT>(i), text, 256, MF_BYPOSITION);
    const bool checked = GetMenuState(menu, static_cast<UINT>(i), MF_BYPOSITION) & MF_CHECKED;
    texts.push_back(text + std::wstring(checked ? L"*" : L""));
  }
  return texts;
}

HMENU Popup(int place) { return GetSubMenu(GetMenu(app.mainWindow), place); }

TEST(MainMenu, SpeaksTheUiLanguageAndListsTheSourcesInTheOrderOfTheirKeys) {
  const TestWindow window(NoPage);
  BuildMainMenu();
  const HMENU previous = Popup(1);
  LoadTestManifest(R"(<downloader><sources default="b">
    <source key="c" title="Salt &amp; Pepper"/><source key="a" title="First"/><source key="b" title="Second"/>
    </sources><packages><package><filename value="x"/></package></packages></downloader>)");
  app.uiLanguage = LANG_GERMAN;
  BuildMainMenu();
  EXPECT_EQ(ItemsOf(Popup(0)), (Texts{L"Deutsch", L"", L"Hilfe", L"Beenden"}));
  EXPECT_EQ(ItemsOf(GetSubMenu(Popup(0), 0)).front(), L"Deutsch*");
  EXPECT_EQ(ItemsOf(Popup(1)), (Texts{L"First", L"Second*", L"Salt && Pepper"}));
  EXPECT_EQ(GetMenuItemID(Popup(1), 2), static_cast<UINT>(kFirstSourceCommand + 2));
  EXPECT_FALSE(IsMenu(previous)) << "it would never be freed";
  EXPECT_EQ(ThreadLanguage(), static_cast<uint32_t>(LANG_ENGLISH)) << "of the thread that built it";
}

TEST(MainMenu, FollowsTheLatestLanguageWhenTwoThreadsBuildIt) {
  const TestWindow window(NoPage);
  for (int round = 0; round < 20; ++round) {
    app.uiLanguage = LANG_ENGLISH;
    std::thread manifestThread(BuildMainMenu);
    window.Run([] {
      app.uiLanguage = LANG_GERMAN;
      BuildMainMenu();
    });
    manifestThread.join();
    ASSERT_EQ(ItemsOf(Popup(0)).front(), L"Deutsch") << "in round " << round;
  }
}

}  // namespace
