// Texts in all languages.
#include <gtest/gtest.h>

#include "core/context.h"
#include "core/localization.h"
#include "system/text.h"

namespace {

// A text as one language's own string table has it, without falling back to English.
std::wstring TextIn(unsigned language, unsigned id) {
  const HRSRC block =
      FindResourceExW(app.instance, RT_STRING, MAKEINTRESOURCEW(id / 16 + 1), static_cast<WORD>(language));
  if (!block) return {};
  auto text = static_cast<const wchar_t*>(LockResource(LoadResource(app.instance, block)));
  for (unsigned i = 0; i < id % 16; ++i) text += 1 + *text;
  return std::wstring(text + 1, *text);
}

// The program joins texts with ": ", " (", line breaks and question marks; a translation must end as the English does.
TEST(Resources, TranslationsFitTheJointsOfTheEnglishTexts) {
  for (const auto& [language, name] : UiLanguages()) {
    for (unsigned id = STR_PRODUCT_TITLE; id <= STR_OPEN_QUESTION; ++id) {
      const std::wstring english = TextIn(LANG_ENGLISH, id), text = TextIn(language, id);
      SCOPED_TRACE(WideToUtf8(name) + " text " + std::to_string(id) + ": " + WideToUtf8(text));
      const auto ending = [](const std::wstring& of) { return of.substr(of.find_last_not_of(L".:?! ") + 1); };
      ASSERT_FALSE(text.empty());
      EXPECT_NE(text.front(), L' ');
      EXPECT_EQ(ending(text), ending(english));
      EXPECT_EQ(text.find_first_of(L"&\t\r\n\"\uFFFD"), std::wstring::npos);
    }
  }
  // Letters that get lost when a file is read in a wrong code page.
  EXPECT_EQ(TextIn(LANG_RUSSIAN, STR_FILE), L"\u0424\u0430\u0439\u043B");
  EXPECT_EQ(TextIn(LANG_TURKISH, STR_EXIT), L"\u00C7\u0131k\u0131\u015F");
}

}  // namespace
