#include "app/localization.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <thread>

#include "app/context.h"
#include "support/replaced_import.h"

extern "C" decltype(&GetUserDefaultUILanguage) importedUserLanguage __asm__("__imp__GetUserDefaultUILanguage@0");

namespace {

LANGID windowsLanguage;
LANGID WINAPI GiveWindowsLanguage() { return windowsLanguage; }

}  // namespace

TEST(Localization, EveryLanguageHasEveryText) {
  for (const auto& [language, name] : UiLanguages()) {
    SetThreadLanguage(language);
    for (unsigned id = STR_PRODUCT_TITLE; id <= STR_BAD_CONNECTION; ++id) {
      EXPECT_FALSE(LoadLocalizedString(id).empty()) << "text " << id << " of language " << language;
    }
  }
  SetThreadLanguage(LANG_ENGLISH);
  EXPECT_EQ(LoadLocalizedString(STR_BAD_CONNECTION), L"Bad Internet connection. Retrying..");
  EXPECT_EQ(LoadLocalizedString(102), L"");
}

TEST(Localization, StoredLanguageCountsOnlyWhenItIsOffered) {
  app.uiLanguage = LANG_ENGLISH;
  EXPECT_FALSE(ResolveUiLanguage(LANG_FRENCH));
  EXPECT_EQ(app.uiLanguage, LANG_ENGLISH);
  EXPECT_FALSE(ResolveUiLanguage(LANG_UKRAINIAN));  // a stored language is not mapped
  EXPECT_EQ(app.uiLanguage, LANG_ENGLISH);
  EXPECT_TRUE(ResolveUiLanguage(LANG_TURKISH));
  EXPECT_EQ(app.uiLanguage, LANG_TURKISH);
  app.uiLanguage = LANG_ENGLISH;
}

TEST(Localization, WindowsLanguageOfTheUserIsTheDefault) {
  const ReplacedImport windows(importedUserLanguage, GiveWindowsLanguage);
  struct Case {
    LANGID windowsLanguage;
    uint32_t uiLanguage;  // 0: not offered
  };
  const Case cases[] = {
      {MAKELANGID(LANG_ENGLISH, SUBLANG_ENGLISH_UK), LANG_ENGLISH},
      {MAKELANGID(LANG_GERMAN, SUBLANG_GERMAN_AUSTRIAN), LANG_GERMAN},
      {MAKELANGID(LANG_PORTUGUESE, SUBLANG_PORTUGUESE_BRAZILIAN), LANG_PORTUGUESE},
      {MAKELANGID(LANG_FRENCH, SUBLANG_FRENCH), 0},
      {0x0422, LANG_RUSSIAN},  // Ukrainian
      {0x0423, LANG_RUSSIAN},  // Belarusian
      {0x043F, LANG_RUSSIAN},  // Kazakh
      {0x0443, LANG_RUSSIAN},  // Uzbek
      {0x0428, LANG_RUSSIAN},  // Tajik
      {0x0442, LANG_RUSSIAN},  // Turkmen
      {0x0440, LANG_RUSSIAN},  // Kyrgyz
      {0x042B, LANG_RUSSIAN},  // Armenian
      {0x042C, 0},             // Azerbaijani
  };
  for (const Case& c : cases) {
    windowsLanguage = c.windowsLanguage;
    app.uiLanguage = LANG_SPANISH;
    EXPECT_EQ(ResolveUiLanguage(0), c.uiLanguage != 0) << c.windowsLanguage;
    EXPECT_EQ(app.uiLanguage, c.uiLanguage != 0 ? c.uiLanguage : LANG_SPANISH) << c.windowsLanguage;
  }
  app.uiLanguage = LANG_ENGLISH;
}

TEST(Localization, LanguageBelongsToTheThread) {
  SetThreadLanguage(LANG_ENGLISH);
  std::wstring german;
  std::thread([&] {
    SetThreadLanguage(LANG_GERMAN);
    german = LoadLocalizedString(STR_EXIT);
  }).join();
  EXPECT_EQ(LoadLocalizedString(STR_EXIT), L"Exit");
  EXPECT_EQ(german, L"Beenden");
}

TEST(Localization, TextMissingInALanguageIsEnglish) {
  SetThreadLanguage(LANG_FRENCH);  // has no text at all
  EXPECT_EQ(LoadLocalizedString(STR_EXIT), L"Exit");
  SetThreadLanguage(LANG_ENGLISH);
}
