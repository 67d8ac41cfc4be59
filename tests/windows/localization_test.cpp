#include "app/localization.h"

#include <gtest/gtest.h>
#include <windows.h>

#include "app/context.h"

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
