#include "ui/theme/theme.h"

#include <commctrl.h>

#include <cwchar>

#include "core/context.h"
#include "core/environment.h"
#include "ui/theme/dark_scroll_bars.h"
#include "ui/theme/theme_api.h"

namespace {

ThemeBrushes& brushes = *new ThemeBrushes;

constexpr DWORD kDarkColorsAttribute = 26;
constexpr wchar_t kDarkColorsProperty[] = L"UseImmersiveDarkModeColors";

bool HighContrastActive() {
  HIGHCONTRASTW contrast{};
  contrast.cbSize = sizeof(contrast);
  return SystemParametersInfoW(SPI_GETHIGHCONTRAST, sizeof(contrast), &contrast, 0) &&
         (contrast.dwFlags & HCF_HIGHCONTRASTON);
}

bool UserWantsDark() { return Theme().ShouldAppsUseDarkMode() && !HighContrastActive(); }

struct Colors {
  COLORREF text, background;
};

// Of the window's contents. Who needs high contrast has chosen the system's colours, and what the system draws in them
// must not stand on ours.
Colors ContentColors() {
  if (IsDark()) return {kDarkText, kBlack};
  if (HighContrastActive()) return {GetSysColor(COLOR_WINDOWTEXT), GetSysColor(COLOR_WINDOW)};
  return {kBlack, kWhite};
}

HBRUSH LightBackground() {
  return HighContrastActive() ? GetSysColorBrush(COLOR_WINDOW) : Brushes().lightBackground.Get();
}

// A window that was not allowed to be dark when it was created keeps its light title bar.
void UpdateTitleBarDarkness(HWND window) {
  const ThemeApi& api = Theme();
  BOOL dark =
      api.IsDarkModeAllowedForWindow(window) && (api.ShouldAppsUseDarkMode() || app.darkMode) && !HighContrastActive();
  if (api.build < kPreferredModeBuild) {
    SetPropW(window, kDarkColorsProperty, reinterpret_cast<HANDLE>(static_cast<INT_PTR>(dark)));
  } else if (api.SetWindowCompositionAttribute) {
    const CompositionAttribute attribute{kDarkColorsAttribute, &dark, sizeof(dark)};
    api.SetWindowCompositionAttribute(window, &attribute);
  }
}

void SetStyle(HWND control, const wchar_t* style) {
  Theme().AllowDarkModeForWindow(control, app.darkMode);
  Theme().SetWindowTheme(control, style, nullptr);
}

void ThemeListView(HWND list) {
  const wchar_t* const style = app.darkMode ? L"ItemsView" : L"Explorer";
  SetStyle(reinterpret_cast<HWND>(SendMessageW(list, LVM_GETHEADER, 0, 0)), style);
  SetStyle(list, style);
  const Colors colors = ContentColors();
  SendMessageW(list, LVM_SETTEXTCOLOR, 0, static_cast<LPARAM>(colors.text));
  SendMessageW(list, LVM_SETTEXTBKCOLOR, 0, static_cast<LPARAM>(colors.background));
  SendMessageW(list, LVM_SETBKCOLOR, 0, static_cast<LPARAM>(colors.background));
  SendMessageW(list, WM_THEMECHANGED, 0, 0);
}

BOOL CALLBACK ThemeChildWindow(HWND child, LPARAM) {
  wchar_t name[260];
  if (!GetClassNameW(child, name, ARRAYSIZE(name))) return TRUE;
  if (wcscmp(name, L"SysListView32") == 0) {
    ThemeListView(child);
  } else if (wcscmp(name, L"Button") == 0 || wcscmp(name, L"Edit") == 0) {
    SetStyle(child, L"Explorer");
    SendMessageW(child, WM_THEMECHANGED, 0, 0);
  }
  return TRUE;
}

BOOL CALLBACK TellColorsChanged(HWND child, LPARAM) {
  SendMessageW(child, WM_SYSCOLORCHANGE, 0, 0);
  return TRUE;
}

// Gives a window that is shown the other appearance. Its frame holds the menu bar, and its labels would not be painted
// anew with a parent that leaves out its children when it paints.
void ChangeAppearance(HWND window) {
  UpdateTitleBarDarkness(window);
  EnumChildWindows(window, ThemeChildWindow, 0);
  RedrawWindow(window, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_FRAME | RDW_ALLCHILDREN);
}

// WM_SETTINGCHANGE tells with this text, or as a change of the contrast, that the user may have chosen other colours.
bool IsColorSetChange(WPARAM wParam, LPARAM lParam) {
  const auto changed = reinterpret_cast<const wchar_t*>(lParam);
  const bool isColorSet = changed && CompareStringOrdinal(changed, -1, L"ImmersiveColorSet", -1, TRUE) == CSTR_EQUAL;
  if (isColorSet) Theme().RefreshColorPolicy();
  if (Theme().RefreshHighContrast) Theme().RefreshHighContrast(1);
  return isColorSet || wParam == SPI_SETHIGHCONTRAST;
}

}  // namespace

const ThemeBrushes& Brushes() { return brushes; }

void CreateThemeBrushes() {
  brushes.darkBackground.Reset(CreateSolidBrush(kBlack));
  brushes.lightBackground.Reset(CreateSolidBrush(kWhite));
  brushes.controlBackground.Reset(CreateSolidBrush(kBlack));
  brushes.menuItemHot.Reset(CreateSolidBrush(RGB(0x41, 0x41, 0x41)));
  brushes.menuItemSelected.Reset(CreateSolidBrush(RGB(0x45, 0x45, 0x45)));
}

void DeleteThemeBrushes() { brushes = ThemeBrushes(); }

void SetupDarkMode() {
  ThemeApi& api = Theme();
  if (api.build != 0) return;
  ProbeSystemVersion();
  api.build = app.osBuild;
  if (app.osMajor < 10 || api.build < kFirstDarkModeBuild || !LoadThemeApi()) return;
  app.darkModeSupported = true;
  api.SetAppMode(kAllowDark);
  api.RefreshColorPolicy();
  app.darkMode = UserWantsDark();
  // The version of the common controls that the program's manifest names, which is loaded with the program.
  DarkenScrollBars(GetModuleHandleW(L"comctl32.dll"), api.OpenNcThemeData);
}

bool IsDark() { return app.darkModeSupported && app.darkMode; }

void AllowDarkMode(HWND window) {
  if (!IsDark()) return;
  Theme().AllowDarkModeForWindow(window, true);
  UpdateTitleBarDarkness(window);
  ThemeChildren(window);
}

void ThemeChildren(HWND window) {
  if (IsDark()) EnumChildWindows(window, ThemeChildWindow, 0);
}

void ThemeUnstyledControl(HWND control) {
  if (!app.darkModeSupported) return;
  const wchar_t* const style = app.darkMode ? L"" : nullptr;
  Theme().SetWindowTheme(control, style, style);
}

void EraseBackground(HWND window, HDC dc) {
  RECT client;
  GetClientRect(window, &client);
  FillRect(dc, &client, IsDark() ? Brushes().darkBackground.Get() : LightBackground());
}

HBRUSH LightStaticColors(HDC dc) {
  SetTextColor(dc, ContentColors().text);
  return LightBackground();
}

HBRUSH DarkStaticColors(HDC dc) {
  if (!IsDark()) return nullptr;
  SetTextColor(dc, kDarkText);
  SetBkColor(dc, kBlack);
  return Brushes().controlBackground.Get();
}

HBRUSH DarkButtonColors(HDC dc) {
  if (!IsDark()) return nullptr;
  SetTextColor(dc, kDarkText);
  return Brushes().controlBackground.Get();
}

void PassColorChange(HWND window) { EnumChildWindows(window, TellColorsChanged, 0); }

bool OnMainWindowSettingChange(WPARAM wParam, LPARAM lParam) {
  if (!app.darkModeSupported || !IsColorSetChange(wParam, lParam)) return false;
  app.darkMode = UserWantsDark();
  ChangeAppearance(app.mainWindow);
  return true;
}

void DialogDarkInit(HWND dialog) {
  if (IsDark()) SendMessageW(dialog, WM_THEMECHANGED, 0, 0);
}

bool DialogThemeChanged(HWND dialog) {
  if (!app.darkModeSupported) return false;
  Theme().AllowDarkModeForWindow(dialog, app.darkMode);
  ChangeAppearance(dialog);
  return app.darkMode;
}

void DialogSettingChange(HWND dialog, WPARAM wParam, LPARAM lParam) {
  if (!app.darkModeSupported || !IsColorSetChange(wParam, lParam)) return;
  app.darkMode = UserWantsDark();
  SendMessageW(dialog, WM_THEMECHANGED, 0, 0);
}
