// The system's entry points for dark windows. Most have neither a name nor a documentation; what their numbers mean
// holds from Windows 10 version 1809 on.
#pragma once

#include <windows.h>

#include <uxtheme.h>

#include <cstdint>

// The argument of SetWindowCompositionAttribute.
struct CompositionAttribute {
  DWORD attribute;
  void* value;
  SIZE_T size;  // of the value, in bytes
};

// A missing entry point is null. Those of uxtheme.dll without a name have their ordinal here.
struct ThemeApi {
  uint32_t build;  // of Windows; 0 until start-up has looked at it

  HTHEME(WINAPI* OpenNcThemeData)(HWND window, const wchar_t* classList);  // 49: for the non-client parts of a window
  void(WINAPI* RefreshColorPolicy)();                                      // 104: reads the user's choice anew
  bool(WINAPI* RefreshHighContrast)(int mode);                             // 106: 1 = reads that setting anew
  bool(WINAPI* ShouldAppsUseDarkMode)();                                   // 132: the user's choice
  bool(WINAPI* AllowDarkModeForWindow)(HWND window, bool allow);           // 133
  // 135: takes a bool before kPreferredModeBuild and a mode since then. kAllowDark means the same to both.
  int(WINAPI* SetAppMode)(int mode);
  bool(WINAPI* IsDarkModeAllowedForWindow)(HWND window);  // 137

  decltype(&::SetWindowTheme) SetWindowTheme;
  decltype(&::OpenThemeData) OpenThemeData;
  decltype(&::CloseThemeData) CloseThemeData;
  decltype(&::DrawThemeTextEx) DrawThemeTextEx;

  BOOL(WINAPI* SetWindowCompositionAttribute)(HWND window, const CompositionAttribute* attribute);  // of user32.dll
};

inline constexpr uint32_t kFirstDarkModeBuild = 17763, kPreferredModeBuild = 18362;
inline constexpr int kAllowDark = 1;

// The table: empty until start-up fills it, before any other thread exists, and only read afterwards.
ThemeApi& Theme();

// Looks all entry points up. True when everything is there that dark mode can't do without.
bool LoadThemeApi();
