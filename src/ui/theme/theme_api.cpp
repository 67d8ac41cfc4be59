#include "ui/theme/theme_api.h"

#include "system/modules.h"

namespace {

template <typename Entry>
void LookUp(HMODULE module, const char* name, Entry& entry) {
  entry = FindFunction<Entry>(module, name);
}

template <typename Entry>
void LookUp(HMODULE module, WORD ordinal, Entry& entry) {
  LookUp(module, MAKEINTRESOURCEA(ordinal), entry);
}

}  // namespace

ThemeApi& Theme() {
  static ThemeApi api{};
  return api;
}

bool LoadThemeApi() {
  // Not imported: Windows would look for this library beside the program first.
  const HMODULE uxtheme = LoadSystemModule(L"uxtheme.dll");
  if (!uxtheme) return false;
  ThemeApi& api = Theme();
  LookUp(uxtheme, 49, api.OpenNcThemeData);
  LookUp(uxtheme, 104, api.RefreshColorPolicy);
  LookUp(uxtheme, 106, api.RefreshHighContrast);
  LookUp(uxtheme, 132, api.ShouldAppsUseDarkMode);
  LookUp(uxtheme, 133, api.AllowDarkModeForWindow);
  LookUp(uxtheme, 135, api.SetAppMode);
  LookUp(uxtheme, 137, api.IsDarkModeAllowedForWindow);
  LookUp(uxtheme, "SetWindowTheme", api.SetWindowTheme);
  LookUp(uxtheme, "OpenThemeData", api.OpenThemeData);
  LookUp(uxtheme, "CloseThemeData", api.CloseThemeData);
  LookUp(uxtheme, "DrawThemeTextEx", api.DrawThemeTextEx);
  LookUp(GetModuleHandleW(L"user32.dll"), "SetWindowCompositionAttribute", api.SetWindowCompositionAttribute);
  return api.OpenNcThemeData && api.RefreshColorPolicy && api.ShouldAppsUseDarkMode && api.AllowDarkModeForWindow &&
         api.SetAppMode && api.IsDarkModeAllowedForWindow && api.SetWindowTheme && api.OpenThemeData &&
         api.CloseThemeData && api.DrawThemeTextEx;
}
