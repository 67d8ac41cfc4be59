// The dark appearance of windows. While app.darkModeSupported is false everything stays as the system draws it.
// UI thread.
#pragma once

#include <windows.h>

// Finds the system's entry points and settles app.darkModeSupported and app.darkMode. Before any window exists.
void SetupDarkMode();

// Allows dark mode for the main window and darkens its title bar; called when it is created in dark mode.
void AllowDarkMode(HWND window);

// Gives a newly built page or dialog the current appearance; nothing in light mode.
void ThemeChildren(HWND window);

// The check box draws its text in its own colour only without a visual style.
void ThemeCheckBox(HWND checkBox);

// WM_ERASEBKGND: fills the client area.
void EraseBackground(HWND window, HDC dc);

// WM_CTLCOLOR...: sets the colours of `dc` and gives the background brush; null in light mode.
HBRUSH DarkStaticColors(HDC dc);
HBRUSH DarkButtonColors(HDC dc);

// WM_SETTINGCHANGE of the main window.
void OnMainWindowSettingChange(LPARAM lParam);

// The system's messages for drawing a menu bar and its items. True when they were drawn.
inline constexpr UINT kDrawMenuBarMessage = 0x0091;
inline constexpr UINT kDrawMenuBarItemMessage = 0x0092;
bool DrawMenuBarPart(HWND window, UINT message, LPARAM lParam);

// After DefWindowProcW has painted the frame: the line under the menu bar.
void PaintLineUnderMenuBar(HWND window);

// WM_THEMECHANGED of the main window.
void ForgetMenuTheme();

// When the main window is destroyed.
void DeleteThemeBrushes();
