// Fixed texts must fit their controls in every language, measured with the fonts that the window uses. Texts that a
// user or a manifest fills in (paths, titles of packages) may be cut; a typical one must fit.
#include <gtest/gtest.h>
#include <windows.h>

#include <string>
#include <utility>
#include <vector>

#include "app/context.h"
#include "app/localization.h"
#include "system/handles.h"
#include "system/text.h"

namespace {

constexpr int kStockFont = 0;
constexpr int kButtonPadding = 12;  // border and focus rectangle, both sides
constexpr int kShieldWidth = 22;    // the shield of an elevated command and the gap behind it
constexpr int kCheckMarkWidth = 20;

std::wstring Text(unsigned id) { return LoadLocalizedString(id); }

void ExpectFit(const std::wstring& text, HFONT font, LONG width, LONG height) {
  const HDC screen = GetDC(nullptr);
  const HGDIOBJ previous = SelectObject(screen, font);
  SIZE size{};
  EXPECT_TRUE(GetTextExtentPoint32W(screen, text.c_str(), static_cast<int>(text.size()), &size));
  EXPECT_LE(size.cx, width) << WideToUtf8(text);
  EXPECT_LE(size.cy, height) << WideToUtf8(text);
  SelectObject(screen, previous);
  ReleaseDC(nullptr, screen);
}

struct FixedText {
  int width, height;  // of the room for it, in pixels
  int fontHeight;
  std::wstring text;
};

std::vector<FixedText> MainWindowTexts() {
  constexpr int kButton = 100 - kButtonPadding, kLine = 565;
  const std::wstring size = L"1023 MB", package = L": Zendora client resources (99 / 99)";
  return {
      {kButton, 23, kStockFont, Text(STR_OPEN)},
      {kButton - kShieldWidth, 24, kStockFont, Text(STR_INSTALL)},
      {kButton, 24, kStockFont, Text(STR_CANCEL)},
      {kButton, 24, kStockFont, Text(STR_EXIT)},
      {kLine, 16, 16, Text(STR_INSTALL_IN) + L": [" + Text(STR_FOLDERS_AUTOMATIC) + L"]"},
      {kLine, 16, 16, Text(STR_TOTAL_SIZE) + L": " + size + L" [" + Text(STR_AFTER_INSTALLATION) + L": " + size + L"]"},
      {kLine, 16, 16, Text(STR_DOWNLOADING_PACKAGE) + package},
      {kLine, 16, 16, Text(STR_INSTALLING_PACKAGE) + package},
      {kLine, 16, 15, Text(STR_SPEED) + L": " + size + L"/s (" + size + L" / " + size + L")"},
      {kLine, 16, 15, Text(STR_EXTRACTING) + L": resources\\textures\\vehicles.txd (100%)"},
      {kLine - kCheckMarkWidth, 16, 16, Text(STR_DELETE_TEMP_FILES)},
  };
}

INT_PTR CALLBACK IdleDialogProc(HWND, UINT, WPARAM, LPARAM) { return FALSE; }

// Measures texts in controls of a dialog as it is created from its template.
void ExpectFitInDialog(int dialogId, const std::vector<std::pair<int, std::wstring>>& texts) {
  const HWND dialog = CreateDialogParamW(app.instance, MAKEINTRESOURCEW(dialogId), nullptr, IdleDialogProc, 0);
  for (const auto& [id, text] : texts) {
    const HWND control = GetDlgItem(dialog, id);
    RECT room{};
    EXPECT_TRUE(GetClientRect(control, &room)) << "control " << id;
    const bool isButton = SendMessageW(control, WM_GETDLGCODE, 0, 0) & DLGC_BUTTON;
    ExpectFit(text, reinterpret_cast<HFONT>(SendMessageW(control, WM_GETFONT, 0, 0)),
              room.right - (isButton ? kButtonPadding : 0), room.bottom);
  }
  DestroyWindow(dialog);
}

TEST(TextFit, EveryLanguageFitsTheControls) {
  for (const auto& [language, name] : UiLanguages()) {
    SCOPED_TRACE(WideToUtf8(name));
    SetThreadLanguage(language);
    for (const auto& [width, height, fontHeight, text] : MainWindowTexts()) {
      LOGFONTW font;
      GetObjectW(GetStockObject(DEFAULT_GUI_FONT), sizeof font, &font);
      if (fontHeight != kStockFont) font.lfHeight = fontHeight;
      ExpectFit(text, FontHandle(CreateFontIndirectW(&font)).Get(), width, height);
    }
    ExpectFitInDialog(DIALOG_SPEED_LIMIT,
                      {{IDOK, Text(STR_OK)}, {SPEED_RESET, Text(STR_RESET)}, {IDCANCEL, Text(STR_CANCEL)}});
    ExpectFitInDialog(DIALOG_UPDATE,
                      {{UPDATE_STATUS, Text(STR_DOWNLOADING_UPDATE)}, {UPDATE_STATUS, Text(STR_INSTALLING_UPDATE)}});
  }
  SetThreadLanguage(LANG_ENGLISH);
}

}  // namespace
