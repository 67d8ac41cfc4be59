#include "support/dark_windows.h"

#include "app/context.h"
#include "app/theme_api.h"
#include "app/theme_brushes.h"

extern "C" {
extern decltype(&GetProcAddress) importedGetProcAddress __asm__("__imp__GetProcAddress@8");
extern decltype(&SystemParametersInfoW) importedSystemParametersInfo __asm__("__imp__SystemParametersInfoW@16");
}

namespace {

DarkWindows* current;
const auto kTheme = reinterpret_cast<HTHEME>(0x7E3E);

void WINAPI RefreshColorPolicy() {}
bool WINAPI RefreshHighContrast(int) { return false; }
bool WINAPI ShouldAppsUseDarkMode() { return current->userWantsDark; }
bool WINAPI AllowDarkModeForWindow(HWND window, bool allow) { return std::exchange(current->allowed[window], allow); }
int WINAPI SetAppMode(int) { return 0; }
bool WINAPI IsDarkModeAllowedForWindow(HWND window) { return current->allowed[window]; }
HTHEME WINAPI OpenTheme(HWND, const wchar_t* name) { return std::wstring(name) == L"Menu" ? kTheme : nullptr; }
HRESULT WINAPI CloseTheme(HTHEME) { return S_OK; }

HRESULT WINAPI RecordStyle(HWND window, const wchar_t* name, const wchar_t* idList) {
  DarkWindows::Style& style = current->styles[window] = {};
  if (name) style.name = name;
  if (idList) style.idList = idList;
  return S_OK;
}

HRESULT WINAPI RecordText(HTHEME, HDC dc, int, int, const wchar_t* text, int, DWORD, RECT*, const DTTOPTS* options) {
  current->themedText = text;
  SetTextColor(dc, options->crText);
  return S_OK;
}

BOOL WINAPI SetCompositionAttribute(HWND window, const CompositionAttribute* attribute) {
  if (attribute->attribute == 26) current->darkTitleBars[window] = *static_cast<const BOOL*>(attribute->value);
  return TRUE;
}

template <typename Entry>
FARPROC Address(Entry entry) {
  return reinterpret_cast<FARPROC>(reinterpret_cast<void*>(entry));
}

}  // namespace

DarkWindows::DarkWindows(uint32_t build, uint32_t major)
    : major_(app.osMajor, major),
      build_(app.osBuild, build),
      getProcAddress_(importedGetProcAddress, FindEntry),
      systemParameters_(importedSystemParametersInfo, AnswerHighContrast) {
  current = this;
}

DarkWindows::~DarkWindows() {
  app.darkModeSupported = false;
  app.darkMode = false;
  Theme() = {};
  DeleteThemeBrushes();
}

FARPROC WINAPI DarkWindows::FindEntry(HMODULE module, const char* name) {
  static const auto& entries = *new std::map<std::string, FARPROC>{
      {"#49", Address(OpenTheme)},
      {"#104", Address(RefreshColorPolicy)},
      {"#106", Address(RefreshHighContrast)},
      {"#132", Address(ShouldAppsUseDarkMode)},
      {"#133", Address(AllowDarkModeForWindow)},
      {"#135", Address(SetAppMode)},
      {"#137", Address(IsDarkModeAllowedForWindow)},
      {"SetWindowTheme", Address(RecordStyle)},
      {"OpenThemeData", Address(OpenTheme)},
      {"CloseThemeData", Address(CloseTheme)},
      {"DrawThemeTextEx", Address(RecordText)},
      {"SetWindowCompositionAttribute", Address(SetCompositionAttribute)},
  };
  const auto ordinal = reinterpret_cast<ULONG_PTR>(name);
  const std::string key = IS_INTRESOURCE(name) ? "#" + std::to_string(ordinal) : name;
  if (key == current->missing) return nullptr;
  const auto entry = entries.find(key);
  return entry != entries.end() ? entry->second : current->getProcAddress_.Original()(module, name);
}

BOOL WINAPI DarkWindows::AnswerHighContrast(UINT action, UINT size, void* value, UINT flags) {
  if (action != SPI_GETHIGHCONTRAST) return current->systemParameters_.Original()(action, size, value, flags);
  static_cast<HIGHCONTRASTW*>(value)->dwFlags = current->highContrast ? HCF_HIGHCONTRASTON : 0;
  return TRUE;
}

void DarkWindows::TellColorSetChange(HWND window) {
  SendMessageW(window, WM_SETTINGCHANGE, 0, reinterpret_cast<LPARAM>(L"ImmersiveColorSet"));
}
