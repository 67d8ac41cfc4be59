#include "app/theme.h"

#include "app/context.h"

void SetupDarkMode() {}
void AllowDarkMode(HWND) {}
void ThemeChildren(HWND) {}
void ThemeCheckBox(HWND) {}

void EraseBackground(HWND window, HDC dc) {
  RECT client;
  GetClientRect(window, &client);
  FillRect(dc, &client, static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH)));
}

HBRUSH DarkStaticColors(HDC) { return nullptr; }
HBRUSH DarkButtonColors(HDC) { return nullptr; }
void OnMainWindowSettingChange(LPARAM) {}
bool DrawMenuBarPart(HWND, UINT, LPARAM) { return false; }
void PaintLineUnderMenuBar(HWND) {}
void ForgetMenuTheme() {}
void DeleteThemeBrushes() {}
