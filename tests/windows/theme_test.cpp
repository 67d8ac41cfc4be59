#include "ui/theme/theme.h"

#include <map>

#include "resource.h"
#include "support/opened_dialog.h"
#include "support/replaced_import.h"
#include "ui/theme/dark_menu_bar.h"
#include "ui/theme/theme_api.h"

extern "C" decltype(&SystemParametersInfoW) importedSystemParametersInfo __asm__("__imp__SystemParametersInfoW@16");
extern "C" decltype(&GetSysColor) importedSysColor __asm__("__imp__GetSysColor@4");
extern "C" decltype(&GetSysColorBrush) importedSysColorBrush __asm__("__imp__GetSysColorBrush@4");

namespace {

// The entry points of a Windows that knows dark mode. They record what they are asked and change nothing.
bool userWantsDark;
std::map<HWND, std::wstring> styles;
std::map<HWND, bool> allowed, darkTitleBars;

void WINAPI RefreshColorPolicy() {}
bool WINAPI ShouldAppsUseDarkMode() { return userWantsDark; }
bool WINAPI AllowDarkModeForWindow(HWND window, bool allow) { return std::exchange(allowed[window], allow); }
bool WINAPI IsDarkModeAllowedForWindow(HWND window) { return allowed[window]; }
HRESULT WINAPI RecordStyle(HWND window, const wchar_t* name, const wchar_t*) {
  styles[window] = name ? name : L"the system's own";
  return S_OK;
}
BOOL WINAPI SetCompositionAttribute(HWND window, const CompositionAttribute* attribute) {
  darkTitleBars[window] = *static_cast<const BOOL*>(attribute->value);
  return TRUE;
}

HTHEME WINAPI OpenThemeData(HWND, const wchar_t*) { return reinterpret_cast<HTHEME>(1); }
HRESULT WINAPI CloseThemeData(HTHEME) { return S_OK; }
// The text that was drawn last.
std::wstring drawnText;
COLORREF drawnColor;
HRESULT WINAPI RecordText(HTHEME, HDC, int, int, const wchar_t* text, int length, DWORD, RECT*,
                          const DTTOPTS* options) {
  drawnText.assign(text, static_cast<size_t>(length));
  drawnColor = options->crText;
  return S_OK;
}

void CreateDarkWindow() {
  app.darkModeSupported = true;
  app.darkMode = true;
  ThemeApi& api = Theme();
  api.build = kPreferredModeBuild;
  api.RefreshColorPolicy = RefreshColorPolicy;
  api.ShouldAppsUseDarkMode = ShouldAppsUseDarkMode;
  api.AllowDarkModeForWindow = AllowDarkModeForWindow;
  api.IsDarkModeAllowedForWindow = IsDarkModeAllowedForWindow;
  api.SetWindowTheme = RecordStyle;
  api.SetWindowCompositionAttribute = SetCompositionAttribute;
  api.OpenThemeData = OpenThemeData;
  api.CloseThemeData = CloseThemeData;
  api.DrawThemeTextEx = RecordText;
  CreateProgramWindow();
}

class DarkMode : public testing::Test {
 protected:
  // The user chooses an appearance, and the system tells a window so.
  static void Choose(bool dark, HWND window) {
    userWantsDark = dark;
    SendMessageW(window, WM_SETTINGCHANGE, 0, reinterpret_cast<LPARAM>(L"ImmersiveColorSet"));
  }
  // What a window shows at a point of its client area.
  COLORREF PixelOf(HWND window, int x, int y) const {
    COLORREF pixel = 0;
    window_.Run([&] {
      RedrawWindow(window, nullptr, nullptr, RDW_UPDATENOW | RDW_ALLCHILDREN);
      const HDC dc = GetDC(window);
      pixel = GetPixel(dc, x, y);
      ReleaseDC(window, dc);
    });
    return pixel;
  }

  const TestWindow window_{CreateDarkWindow};
};

TEST_F(DarkMode, ComponentsPageFollowsTheUser) {
  const HWND list = window_.Components().itemsView, button = window_.Components().installButton.Window();
  for (const bool dark : {true, false, true}) {
    Choose(dark, window_.Window());
    EXPECT_EQ(app.darkMode, dark);
    EXPECT_EQ(darkTitleBars[window_.Window()], dark);
    EXPECT_EQ(styles[list], dark ? L"ItemsView" : L"Explorer");
    EXPECT_EQ(styles[button], L"Explorer");
    EXPECT_EQ(allowed[button], dark);
    EXPECT_EQ(static_cast<COLORREF>(SendMessageW(list, LVM_GETTEXTCOLOR, 0, 0)), dark ? kWhite : kBlack);
    EXPECT_EQ(static_cast<COLORREF>(SendMessageW(list, LVM_GETBKCOLOR, 0, 0)), dark ? kBlack : kWhite);
  }
}

TEST_F(DarkMode, InstallationPageFollowsTheUser) {
  window_.Run(ShowInstallPage);
  const HWND checkBox = window_.Installation().deleteTmpCheckbox.Window();
  for (const bool dark : {true, false, true}) {
    Choose(dark, window_.Window());
    EXPECT_EQ(styles[checkBox], dark ? L"" : L"the system's own");
    EXPECT_EQ(styles[window_.Installation().logEdit.Window()], L"Explorer");
    for (const HWND control : {checkBox, window_.Installation().totalLabel.Window(),
                               window_.Installation().logEdit.Window(), window_.Window()}) {
      EXPECT_EQ(PixelOf(control, 300, 5), dark ? kBlack : kWhite);
    }
  }
}

constexpr COLORREF kContrastWindow = RGB(0, 0, 80), kContrastText = RGB(255, 255, 0);
bool highContrast;
decltype(&SystemParametersInfoW) realSystemParametersInfo;
BOOL WINAPI GiveHighContrast(UINT action, UINT size, void* value, UINT flags) {
  const BOOL result = realSystemParametersInfo(action, size, value, flags);
  if (action != SPI_GETHIGHCONTRAST) return result;
  static_cast<HIGHCONTRASTW*>(value)->dwFlags = highContrast ? HCF_HIGHCONTRASTON : 0;
  return TRUE;
}

COLORREF WINAPI GiveContrastColor(int index) {
  return index == COLOR_WINDOW ? kContrastWindow : index == COLOR_WINDOWTEXT ? kContrastText : 0;
}
HBRUSH WINAPI GiveContrastBrush(int index) {
  static const HBRUSH brush = CreateSolidBrush(kContrastWindow);
  return index == COLOR_WINDOW ? brush : nullptr;
}

TEST_F(DarkMode, HighContrastWinsWithTheSystemsColors) {
  realSystemParametersInfo = importedSystemParametersInfo;
  const ReplacedImport parameters(importedSystemParametersInfo, GiveHighContrast);
  const ReplacedImport color(importedSysColor, GiveContrastColor);
  const ReplacedImport brush(importedSysColorBrush, GiveContrastBrush);
  const HWND list = window_.Components().itemsView;
  userWantsDark = true;
  for (const bool contrast : {true, false}) {
    highContrast = contrast;
    SendMessageW(window_.Window(), WM_SETTINGCHANGE, SPI_SETHIGHCONTRAST, 0);
    EXPECT_EQ(app.darkMode, !contrast);
    EXPECT_EQ(darkTitleBars[window_.Window()], !contrast);
    const COLORREF background = contrast ? kContrastWindow : kBlack, text = contrast ? kContrastText : kWhite;
    EXPECT_EQ(PixelOf(window_.Window(), 2, 2), background);
    EXPECT_EQ(static_cast<COLORREF>(SendMessageW(list, LVM_GETBKCOLOR, 0, 0)), background);
    EXPECT_EQ(static_cast<COLORREF>(SendMessageW(list, LVM_GETTEXTCOLOR, 0, 0)), text);
    const HWND label = window_.Components().componentsLabel.Window();
    EXPECT_EQ(PixelOf(label, 300, 5), background);
    const HDC dc = GetDC(label);
    SendMessageW(window_.Window(), WM_CTLCOLORSTATIC, reinterpret_cast<WPARAM>(dc), reinterpret_cast<LPARAM>(label));
    EXPECT_EQ(GetTextColor(dc), text);
    ReleaseDC(label, dc);
  }
}

// What Windows sends to have an item of the menu bar drawn.
struct MenuBarItem {
  DRAWITEMSTRUCT item;
  HMENU menu;
  HDC dc;
  DWORD flags;
  int position;
};

TEST_F(DarkMode, MenuBarShowsTheStateOfItsItems) {
  MenuBarItem item{};
  item.menu = GetMenu(window_.Window());
  item.position = 2;
  for (const auto& [state, color] : {std::pair(UINT{0}, kWhite), {UINT{ODS_DISABLED}, RGB(0x40, 0x40, 0x40)}}) {
    item.item.itemState = state;
    Choose(true, window_.Window());
    EXPECT_EQ(SendMessageW(window_.Window(), kDrawMenuBarItemMessage, 0, reinterpret_cast<LPARAM>(&item)), TRUE);
    EXPECT_EQ(drawnColor, color);
    EXPECT_EQ(drawnText, L"&Options");
    Choose(false, window_.Window());
    EXPECT_EQ(SendMessageW(window_.Window(), kDrawMenuBarItemMessage, 0, reinterpret_cast<LPARAM>(&item)), 0)
        << "in light mode the system draws it";
  }
}

TEST_F(DarkMode, DialogsFollowTheUser) {
  Choose(true, window_.Window());
  const OpenedDialog dialog(window_, COMMAND_SPEED_LIMIT);
  for (const bool dark : {true, false}) {
    if (!dark) Choose(dark, dialog.Window());
    EXPECT_EQ(styles[dialog.Item(SPEED_EDIT)], dark ? L"" : L"the system's own");
    EXPECT_EQ(PixelOf(dialog.Window(), 2, 2), dark ? kBlack : GetSysColor(COLOR_BTNFACE));
    EXPECT_EQ(PixelOf(dialog.Item(SPEED_TRACKBAR), 1, 1), dark ? kBlack : GetSysColor(COLOR_BTNFACE));
    EXPECT_EQ(PixelOf(dialog.Item(SPEED_EDIT), 20, 5), dark ? kBlack : kWhite);
  }
}

}  // namespace
