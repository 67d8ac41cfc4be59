// The dark appearance of windows, which follows the user's choice while the program runs. Where the system lacks what
// it takes, app.darkModeSupported is false, nothing here has any effect and everything stays as the system draws it.
// UI thread; a dialog's functions on the thread of that dialog.
#pragma once

#include <windows.h>

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

// WM_SETTINGCHANGE of the main window.
void OnMainWindowSettingChange(LPARAM lParam);

// The same for dialogs. WM_INITDIALOG calls DialogDarkInit last. WM_THEMECHANGED calls DialogThemeChanged, which gives
// the dialog and its controls the current appearance and tells whether that is dark. WM_SETTINGCHANGE calls
// DialogSettingChange, which sends WM_THEMECHANGED when the user has chosen other colours.
void DialogDarkInit(HWND dialog);
bool DialogThemeChanged(HWND dialog);
void DialogSettingChange(HWND dialog, LPARAM lParam);
