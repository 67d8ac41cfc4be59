#include <gtest/gtest.h>
#include <windows.h>

#include <string>
#include <string_view>

#include "app/context.h"
#include "app/localization.h"
#include "system/text.h"

namespace {

// The bytes of a resource that is stored in exactly this language; empty when there is none.
std::string_view Resource(const wchar_t* type, unsigned id, unsigned language) {
  const HRSRC found = FindResourceExW(app.instance, type, MAKEINTRESOURCEW(id), static_cast<WORD>(language));
  if (!found) return {};
  return {static_cast<const char*>(LockResource(LoadResource(app.instance, found))),
          SizeofResource(app.instance, found)};
}

// A text as one language's own string table has it, without falling back to English.
std::wstring TextIn(unsigned language, unsigned id) {
  const std::string_view bytes = Resource(RT_STRING, id / 16 + 1, language);
  if (bytes.empty()) return {};
  auto text = reinterpret_cast<const wchar_t*>(bytes.data());
  for (unsigned i = 0; i < id % 16; ++i) text += 1 + *text;
  return std::wstring(text + 1, *text);
}

// The program joins texts with ": ", " (", line breaks and question marks; a translation must end as the English does.
TEST(Resources, TranslationsFitTheJointsOfTheEnglishTexts) {
  for (const auto& [language, name] : UiLanguages()) {
    for (unsigned id = STR_PRODUCT_TITLE; id <= STR_BAD_CONNECTION; ++id) {
      const std::wstring english = TextIn(LANG_ENGLISH, id), text = TextIn(language, id);
      SCOPED_TRACE(WideToUtf8(name) + " text " + std::to_string(id) + ": " + WideToUtf8(text));
      const auto ending = [](const std::wstring& of) { return of.substr(of.find_last_not_of(L".:?! ") + 1); };
      ASSERT_FALSE(text.empty());
      EXPECT_NE(text.front(), L' ');
      EXPECT_EQ(ending(text), ending(english));
      EXPECT_EQ(text.find_first_of(L"&\t\r\n\"\uFFFD"), std::wstring::npos);
    }
  }
}

// Characters that each language can't be written without; they get lost when a file is read in a wrong code page.
TEST(Resources, TranslationsKeepTheirLetters) {
  EXPECT_EQ(TextIn(LANG_GERMAN, STR_OPEN), L"\u00D6ffnen");
  EXPECT_EQ(TextIn(LANG_SPANISH, STR_TOTAL_SIZE), L"Tama\u00F1o total");
  EXPECT_EQ(TextIn(LANG_POLISH, STR_ERROR), L"B\u0142\u0105d");
  EXPECT_EQ(TextIn(LANG_PORTUGUESE, STR_OPTIONS), L"Op\u00E7\u00F5es");
  EXPECT_EQ(TextIn(LANG_RUSSIAN, STR_FILE), L"\u0424\u0430\u0439\u043B");
  EXPECT_EQ(TextIn(LANG_TURKISH, STR_EXIT), L"\u00C7\u0131k\u0131\u015F");
}

TEST(Resources, QuestionMarkOpensTheAboutDialog) {
  ACCEL entries[3] = {};
  const HACCEL table = LoadAcceleratorsW(app.instance, MAKEINTRESOURCEW(ACCELERATORS_MAIN));
  ASSERT_EQ(CopyAcceleratorTableW(table, entries, 3), 2);
  for (int i = 0; i < 2; ++i) {
    EXPECT_EQ(entries[i].fVirt & 0x7F, FALT);  // a character, not a virtual key
    EXPECT_EQ(entries[i].key, L"?/"[i]);
    EXPECT_EQ(entries[i].cmd, COMMAND_ABOUT);
  }
}

}  // namespace
