// Texts in all languages.
#include "app/localization.h"
#include "app/ui_language.h"
#include "support/test_window.h"
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
  // Letters that get lost when a file is read in a wrong code page.
  EXPECT_EQ(TextIn(LANG_RUSSIAN, STR_FILE), L"\u0424\u0430\u0439\u043B");
  EXPECT_EQ(TextIn(LANG_TURKISH, STR_EXIT), L"\u00C7\u0131k\u0131\u015F");
}

// Whether the text of a label or button fits it, measured with its font.
BOOL CALLBACK ExpectTextFits(HWND control, LPARAM) {
  constexpr LONG kButtonPadding = 12, kShieldWidth = 22;
  const LRESULT kind = SendMessageW(control, WM_GETDLGCODE, 0, 0);
  if (!(kind & (DLGC_BUTTON | DLGC_STATIC))) return TRUE;
  const std::wstring text = TextOf(control);
  RECT room{};
  GetClientRect(control, &room);
  if (kind & DLGC_BUTTON) room.right -= kButtonPadding;
  if (text == LoadLocalizedString(STR_INSTALL)) room.right -= kShieldWidth;
  const HDC dc = GetDC(control);
  const auto font = reinterpret_cast<HGDIOBJ>(SendMessageW(control, WM_GETFONT, 0, 0));
  const HGDIOBJ previous = SelectObject(dc, font);
  SIZE size{};
  GetTextExtentPoint32W(dc, text.c_str(), static_cast<int>(text.size()), &size);
  EXPECT_LE(size.cx, room.right) << WideToUtf8(text);
  EXPECT_LE(size.cy, room.bottom) << WideToUtf8(text);
  SelectObject(dc, previous);
  ReleaseDC(control, dc);
  return TRUE;
}

TEST(Resources, TextsFitTheirControlsInEveryLanguage) {
  const TestWindow window(CreateProgramWindow);
  const auto text = LoadLocalizedString;
  for (const auto& [language, name] : UiLanguages()) {
    SCOPED_TRACE(WideToUtf8(name));
    window.Run([&, language = language] {
      SetUiLanguage(language);
      ShowComponentsPage();
      window.Components().totalSizeLabel.SetText(text(STR_TOTAL_SIZE) + L": 1023 MB [" + text(STR_AFTER_INSTALLATION) +
                                                 L": 1023 MB]");
      EnumChildWindows(window.Window(), ExpectTextFits, 0);
      ShowInstallPage();
      const InstallPageControls& page = window.Installation();
      page.packageLabel.SetText(text(STR_DOWNLOADING_PACKAGE) + L": Zendora client resources (99 / 99)");
      page.totalLabel.SetText(text(STR_INSTALLING_PACKAGE) + L": Zendora client resources (99 / 99)");
      page.totalDetailLabel.SetText(text(STR_EXTRACTING) + L": resources\\textures\\vehicles.txd (100%)");
      EnumChildWindows(window.Window(), ExpectTextFits, 0);
      const HWND dialog = CreateDialogParamW(app.instance, MAKEINTRESOURCEW(DIALOG_SPEED_LIMIT), nullptr, nullptr, 0);
      SetDlgItemTextW(dialog, SPEED_RESET, text(STR_RESET).c_str());
      SetDlgItemTextW(dialog, IDCANCEL, text(STR_CANCEL).c_str());
      EnumChildWindows(dialog, ExpectTextFits, 0);
      DestroyWindow(dialog);
    });
  }
}

}  // namespace
