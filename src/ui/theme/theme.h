// The dark appearance of windows, which follows the user's choice while the program runs. Where the system lacks what
// it takes, app.darkModeSupported is false, nothing here has any effect and everything stays as the system draws it.
// UI thread; a dialog's functions on the thread of that dialog.
#pragma once

#include <windows.h>

#include "system/handles.h"

// The colours of both appearances, and the brushes that fill with them.
inline constexpr COLORREF kBlack = RGB(0, 0, 0), kWhite = RGB(255, 255, 255);
inline constexpr COLORREF kDarkText = kWhite, kDarkDisabledText = RGB(0x40, 0x40, 0x40);

struct ThemeBrushes {
  BrushHandle darkBackground;     // of the main window, its menu bar and the line under that
  BrushHandle lightBackground;    // of the main window, but with high contrast
  BrushHandle controlBackground;  // behind the controls in dark mode
  BrushHandle menuItemHot;        // an item of the menu bar under the mouse
  BrushHandle menuItemSelected;   // an item of the menu bar whose popup is open
};

// Empty handles before the main window is created and after it is destroyed.
const ThemeBrushes& Brushes();

// When the main window is created and destroyed. UI thread.
void CreateThemeBrushes();
void DeleteThemeBrushes();

// Finds the system's entry points and settles app.darkModeSupported and app.darkMode. Start-up calls it once, before
// any window exists.
void SetupDarkMode();

// Dark mode is supported and in effect.
bool IsDark();

// The main window, when it is created in dark mode: allows it to be dark and darkens its title bar.
void AllowDarkMode(HWND window);

// Gives the children of a newly built page the dark appearance; nothing in light mode.
void ThemeChildren(HWND window);

// A control that draws its text in its own colour only without a visual style (a check box, an edit): dark mode takes
// the style away, light mode gives it back. After the other controls of its window were themed.
void ThemeUnstyledControl(HWND control);

// WM_ERASEBKGND of the main window: fills the client area.
void EraseBackground(HWND window, HDC dc);

// WM_CTLCOLOR...: sets the colours of `dc` and gives the background brush, which is not the caller's; null in light
// mode. Buttons have their own; all others are static.
HBRUSH DarkStaticColors(HDC dc);
HBRUSH DarkButtonColors(HDC dc);

// The same for what stands on the main window's background in light mode.
HBRUSH LightStaticColors(HDC dc);

// WM_SYSCOLORCHANGE of the main window, which the system doesn't send to its controls.
void PassColorChange(HWND window);

// WM_SETTINGCHANGE of the main window. True when the user may have chosen other colours, which it has then.
bool OnMainWindowSettingChange(WPARAM wParam, LPARAM lParam);

// The same for dialogs. WM_INITDIALOG calls DialogDarkInit last. WM_THEMECHANGED calls DialogThemeChanged, which gives
// the dialog and its controls the current appearance and tells whether that is dark. WM_SETTINGCHANGE calls
// DialogSettingChange, which sends WM_THEMECHANGED when the user has chosen other colours.
void DialogDarkInit(HWND dialog);
bool DialogThemeChanged(HWND dialog);
void DialogSettingChange(HWND dialog, WPARAM wParam, LPARAM lParam);
