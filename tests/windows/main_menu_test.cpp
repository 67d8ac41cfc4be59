#include "app/main_menu.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <string>
#include <thread>
#include <vector>

#include "app/context.h"
#include "app/localization.h"
#include "support/test_manifest.h"
#include "support/test_window.h"

namespace {

struct Item {
  UINT id;
  std::wstring text;
  bool checked = false, separator = false;
  bool operator==(const Item&) const = default;
};

Item ItemAt(HMENU menu, int position) {
  wchar_t text[256] = L"";
  MENUITEMINFOW info{};
  info.cbSize = sizeof(info);
  info.fMask = MIIM_ID | MIIM_STATE | MIIM_FTYPE | MIIM_STRING;
  info.dwTypeData = text;
  info.cch = 256;
  EXPECT_TRUE(GetMenuItemInfoW(menu, static_cast<UINT>(position), TRUE, &info));
  return {info.wID, text, (info.fState & MFS_CHECKED) != 0, (info.fType & MFT_SEPARATOR) != 0};
}

std::vector<Item> ItemsOf(HMENU menu) {
  std::vector<Item> items;
  for (int i = 0; i < GetMenuItemCount(menu); ++i) items.push_back(ItemAt(menu, i));
  return items;
}

std::vector<std::wstring> TextsOf(HMENU menu) {
  std::vector<std::wstring> texts;
  for (const Item& item : ItemsOf(menu)) texts.push_back(item.text);
  return texts;
}

void PrintTo(const Item& item, std::ostream* out) {
  *out << item.id << " " << testing::PrintToString(item.text) << (item.checked ? " checked" : "");
}

class MainMenu : public testing::Test {
 protected:
  ~MainMenu() override {
    app.uiLanguage = LANG_ENGLISH;
    app.selectedSource.Set({});
    SetThreadLanguage(LANG_ENGLISH);
  }

  HMENU Menu() const { return GetMenu(window_.Window()); }
  HMENU File() const { return GetSubMenu(Menu(), 0); }
  HMENU Languages() const { return GetSubMenu(File(), 0); }
  HMENU Sources() const { return GetSubMenu(Menu(), 1); }
  HMENU Options() const { return GetSubMenu(Menu(), 2); }

  TestWindow window_{NoPage};
};

}  // namespace

TEST_F(MainMenu, SpeaksTheUiLanguage) {
  for (const auto& [language, ownName] : UiLanguages()) {
    SCOPED_TRACE(language);
    app.uiLanguage = language;
    BuildMainMenu();
    EXPECT_EQ(ThreadLanguage(), static_cast<uint32_t>(LANG_ENGLISH));
    SetThreadLanguage(language);
    const auto text = LoadLocalizedString;
    EXPECT_EQ(TextsOf(Menu()), (std::vector{text(STR_FILE), text(STR_DOWNLOAD_SOURCE), text(STR_OPTIONS)}));
    const std::vector<Item> file = ItemsOf(File());
    ASSERT_EQ(file.size(), 4u);
    EXPECT_EQ(file[0].text, ownName);
    EXPECT_TRUE(file[1].separator);
    EXPECT_EQ(file[2], (Item{104, text(STR_HELP)}));
    EXPECT_EQ(file[3], (Item{105, text(STR_EXIT)}));
    EXPECT_EQ(ItemsOf(Options()), (std::vector<Item>{{32778, text(STR_SET_SPEED_LIMIT)},
                                                     {32773, text(STR_CHANGE_TEMP_FOLDER)},
                                                     {32781, text(STR_DELETE_APP_DATA)}}));
    std::vector<Item> languages;
    for (const auto& [id, name] : UiLanguages()) languages.push_back({id, name, id == language});
    EXPECT_EQ(ItemsOf(Languages()), languages);
    SetThreadLanguage(LANG_ENGLISH);
  }
}

TEST_F(MainMenu, ListsTheSourcesInTheOrderOfTheirKeys) {
  LoadTestManifest(R"(<downloader><sources default="b">
    <source key="c" title="Salt &amp; Pepper"/><source key="a" title="First"/><source key="b" title=")"
                   "\xC3\xA9"
                   R"("/></sources><packages><package><filename value="x"/></package></packages></downloader>)");
  BuildMainMenu();
  const std::vector<Item> expected{
      {1001, L"First"}, {1002, L"\u00C3\u00A9", true}, {1003, L"Salt && Pepper"}};  // bytes, one by one
  EXPECT_EQ(ItemsOf(Sources()), expected);
  app.selectedSource.Set("nowhere");
  BuildMainMenu();
  for (const Item& item : ItemsOf(Sources())) EXPECT_FALSE(item.checked);
}

TEST_F(MainMenu, TakesThePlaceOfTheOneBefore) {
  BuildMainMenu();
  const HMENU previous = Menu(), previousSources = Sources();
  BuildMainMenu();
  EXPECT_NE(Menu(), previous);
  EXPECT_FALSE(IsMenu(previous));
  EXPECT_FALSE(IsMenu(previousSources));
}

TEST_F(MainMenu, FollowsTheLatestLanguageWhenTwoThreadsBuildIt) {
  for (int round = 0; round < 20; ++round) {
    app.uiLanguage = LANG_ENGLISH;
    std::thread manifestThread(BuildMainMenu);
    window_.Run([] {
      app.uiLanguage = LANG_GERMAN;
      BuildMainMenu();
    });
    manifestThread.join();
    ASSERT_EQ(TextsOf(File()).front(), L"Deutsch") << "in round " << round;
  }
}
