// Every fixed text must fit its control in every language, measured with the fonts that the window uses. Texts that a
// user or a manifest fills in (paths, titles of packages) may be cut; a typical one must fit.
#include <gtest/gtest.h>
#include <windows.h>

#include <functional>
#include <string>
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

std::wstring Text(unsigned id) {
  return LoadLocalizedString(id);
}

// The font that the main window's controls make: the stock font, or that font with another height.
FontHandle MainWindowFont(int height) {
  LOGFONTW font;
  GetObjectW(GetStockObject(DEFAULT_GUI_FONT), sizeof font, &font);
  if (height != kStockFont) font.lfHeight = height;
  return FontHandle(CreateFontIndirectW(&font));
}

SIZE Measure(HFONT font, const std::wstring& text) {
  const HDC screen = GetDC(nullptr);
  const HGDIOBJ previous = SelectObject(screen, font);
  SIZE size{};
  EXPECT_TRUE(GetTextExtentPoint32W(screen, text.c_str(), static_cast<int>(text.size()), &size));
  SelectObject(screen, previous);
  ReleaseDC(nullptr, screen);
  return size;
}

void ForEachLanguage(const std::function<void()>& check) {
  for (const auto& [language, name] : UiLanguages()) {
    SCOPED_TRACE(WideToUtf8(name));
    SetThreadLanguage(language);
    check();
  }
  SetThreadLanguage(LANG_ENGLISH);
}

struct FixedText {
  int width, height;  // of the room for it, in pixels
  int fontHeight;
  std::wstring text;
};

std::vector<FixedText> MainWindowTexts() {
  constexpr int kButton = 100 - kButtonPadding;
  constexpr int kLine = 565;
  const std::wstring size = L"1023 MB", package = L": Zendora client resources (99 / 99)";
  return {
      {kButton, 23, kStockFont, Text(STR_OPEN)},
      {kButton - kShieldWidth, 24, kStockFont, Text(STR_INSTALL)},
      {kButton, 24, kStockFont, Text(STR_CANCEL)},
      {kButton, 24, kStockFont, Text(STR_EXIT)},
      {kLine, 16, 16, Text(STR_INSTALL_IN) + L": [" + Text(STR_FOLDERS_AUTOMATIC) + L"]"},
      {kLine, 16, 16, Text(STR_COMPONENTS) + L":"},
      {kLine, 16, 16, Text(STR_LOADING) + L".."},
      {kLine, 16, 16, Text(STR_TOTAL_SIZE) + L": " + size + L" [" + Text(STR_AFTER_INSTALLATION) + L": " + size + L"]"},
      {kLine, 16, 16, Text(STR_DOWNLOADING_PACKAGE) + package},
      {kLine, 16, 16, Text(STR_DOWNLOAD_COMPLETED)},
      {kLine, 16, 16, Text(STR_WAITING_FOR_DOWNLOAD)},
      {kLine, 16, 16, Text(STR_INSTALLING_PACKAGE) + package},
      {kLine, 16, 16, Text(STR_INSTALLATION_FINISHED)},
      {kLine, 16, 16, Text(STR_INSTALLATION_CANCELLED)},
      {kLine, 16, 15, Text(STR_STARTING_DOWNLOAD)},
      {kLine, 16, 15, Text(STR_SPEED) + L": " + size + L"/s (" + size + L" / " + size + L")"},
      {kLine, 16, 15, Text(STR_CHECKING_FILE) + L" (100%)"},
      {kLine, 16, 15, Text(STR_BAD_CONNECTION) + L" (9999)"},
      {kLine, 16, 15, Text(STR_EXTRACTING) + L": resources\\textures\\vehicles.txd (100%)"},
      {kLine, 16, 15, Text(STR_INSTALLER_RUNNING) + L"..."},
      {kLine, 16, 15, Text(STR_FINISHING_PACKAGE)},
      {kLine - kCheckMarkWidth, 16, 16, Text(STR_DELETE_TEMP_FILES)},
      {600, 400, 22, Text(STR_CLOSING) + L".."},
  };
}

INT_PTR CALLBACK IdleDialogProc(HWND, UINT, WPARAM, LPARAM) {
  return FALSE;
}

struct DialogText {
  int control;
  int padding;
  std::wstring text;
};

// Measures texts in the controls of a dialog as it is created from its template.
void ExpectFitInDialog(int dialogId, const std::vector<DialogText>& texts) {
  const HWND dialog = CreateDialogParamW(app.instance, MAKEINTRESOURCEW(dialogId), nullptr, IdleDialogProc, 0);
  ASSERT_TRUE(dialog) << "dialog " << dialogId;
  for (const auto& [id, padding, text] : texts) {
    const HWND control = GetDlgItem(dialog, id);
    RECT room{};
    EXPECT_TRUE(GetClientRect(control, &room)) << "control " << id;
    const SIZE size = Measure(reinterpret_cast<HFONT>(SendMessageW(control, WM_GETFONT, 0, 0)), text);
    EXPECT_LE(size.cx, room.right - padding) << "control " << id << ": " << WideToUtf8(text);
    EXPECT_LE(size.cy, room.bottom) << "control " << id << ": " << WideToUtf8(text);
  }
  DestroyWindow(dialog);
}

}  // namespace

TEST(TextFit, MainWindowTextsFitTheirControls) {
  ForEachLanguage([] {
    for (const auto& [width, height, fontHeight, text] : MainWindowTexts()) {
      const FontHandle font = MainWindowFont(fontHeight);
      const SIZE size = Measure(font.Get(), text);
      EXPECT_LE(size.cx, width) << WideToUtf8(text);
      EXPECT_LE(size.cy, height) << WideToUtf8(text);
    }
  });
}

// A menu bar that is too wide wraps, and the second line would push the controls out of the window.
TEST(TextFit, MenuBarFitsOneLine) {
  NONCLIENTMETRICSW metrics{};
  metrics.cbSize = sizeof metrics;
  ASSERT_TRUE(SystemParametersInfoW(SPI_GETNONCLIENTMETRICS, metrics.cbSize, &metrics, 0));
  const FontHandle font(CreateFontIndirectW(&metrics.lfMenuFont));
  ForEachLanguage([&] {
    constexpr int kItemPadding = 20;
    long width = 0;
    for (const unsigned id : {STR_FILE, STR_DOWNLOAD_SOURCE, STR_OPTIONS}) {
      width += Measure(font.Get(), Text(id)).cx + kItemPadding;
    }
    EXPECT_LE(width, 580);
  });
}

TEST(TextFit, DialogTextsFitTheirControls) {
  ForEachLanguage([] {
    ExpectFitInDialog(DIALOG_ABOUT,
                      {{ABOUT_TITLE, 0, Text(STR_PRODUCT_TITLE)},
                       {ABOUT_VERSION, 0, Text(STR_VERSION) + L": 4.0.8"},
                       {ABOUT_LIBRARIES, 0, L"Third-party software:"}});
    ExpectFitInDialog(DIALOG_SPEED_LIMIT, {{IDOK, kButtonPadding, Text(STR_OK)},
                                           {SPEED_RESET, kButtonPadding, Text(STR_RESET)},
                                           {IDCANCEL, kButtonPadding, Text(STR_CANCEL)}});
    ExpectFitInDialog(DIALOG_UPDATE, {{UPDATE_STATUS, 0, Text(STR_DOWNLOADING_UPDATE)},
                                      {UPDATE_STATUS, 0, Text(STR_INSTALLING_UPDATE)},
                                      {UPDATE_RECEIVED, 0, L"1023 MB"},
                                      {UPDATE_TOTAL, 0, L"1023 MB"}});
  });
}
