#include "support/dark_windows.h"

#include "app/context.h"
#include "app/main_window.h"
#include "app/theme_brushes.h"
#include "support/replaced_import.h"

extern "C" {
extern decltype(&GetProcAddress) importedGetProcAddress __asm__("__imp__GetProcAddress@8");
extern decltype(&SystemParametersInfoW) importedSystemParametersInfo __asm__("__imp__SystemParametersInfoW@16");
}

namespace {

DarkWindows* current = nullptr;
const auto kTheme = reinterpret_cast<HTHEME>(0x7E3E);

HTHEME WINAPI OpenNcThemeData(HWND, const wchar_t*) { return nullptr; }
void WINAPI RefreshColorPolicy() { current->calls.push_back("104"); }
bool WINAPI ShouldAppsUseDarkMode() { return current->userWantsDark; }
bool WINAPI IsDarkModeAllowedForWindow(HWND window) { return current->allowed[window]; }

bool WINAPI RefreshHighContrast(int mode) {
  current->calls.push_back("106(" + std::to_string(mode) + ")");
  return false;
}

bool WINAPI AllowDarkModeForWindow(HWND window, bool allow) { return std::exchange(current->allowed[window], allow); }

int WINAPI SetAppMode(int mode) {
  current->calls.push_back("135(" + std::to_string(mode) + ")");
  return 0;
}

HRESULT WINAPI RecordStyle(HWND window, const wchar_t* name, const wchar_t* idList) {
  const auto text = [](const wchar_t* value) {
    return value ? std::optional<std::wstring>(value) : std::optional<std::wstring>();
  };
  current->styles[window] = {text(name), text(idList)};
  return S_OK;
}

HTHEME WINAPI OpenTheme(HWND, const wchar_t* classList) {
  if (std::wstring(classList) != L"Menu") return nullptr;
  ++current->openThemes;
  ++current->themesOpened;
  return kTheme;
}

HRESULT WINAPI CloseTheme(HTHEME theme) {
  if (theme == kTheme) --current->openThemes;
  return S_OK;
}

HRESULT WINAPI DrawText(HTHEME theme, HDC dc, int part, int state, const wchar_t* text, int length, DWORD flags,
                        RECT* bounds, const DTTOPTS* options) {
  current->drawnText = {std::wstring(text, static_cast<size_t>(length)), part, state, flags};
  if (theme != kTheme || options->dwSize != sizeof(DTTOPTS) || options->dwFlags != DTT_TEXTCOLOR) return E_INVALIDARG;
  SetBkMode(dc, TRANSPARENT);
  SetTextColor(dc, options->crText);
  DrawTextW(dc, text, length, bounds, flags);
  return S_OK;
}

BOOL WINAPI SetCompositionAttribute(HWND window, const CompositionAttribute* attribute) {
  if (attribute->attribute == 26 && attribute->size == 4) {
    current->compositionColors.emplace_back(window, *static_cast<const BOOL*>(attribute->value) != FALSE);
  }
  return TRUE;
}

template <typename Entry>
FARPROC AddressOf(Entry entry) {
  return reinterpret_cast<FARPROC>(reinterpret_cast<void*>(entry));
}

FARPROC EntryByOrdinal(int ordinal) {
  current->lookedUp.insert(ordinal);
  if (current->missingOrdinals.contains(ordinal)) return nullptr;
  switch (ordinal) {
    case 49:
      return AddressOf(&OpenNcThemeData);
    case 104:
      return AddressOf(&RefreshColorPolicy);
    case 106:
      return AddressOf(&RefreshHighContrast);
    case 132:
      return AddressOf(&ShouldAppsUseDarkMode);
    case 133:
      return AddressOf(&AllowDarkModeForWindow);
    case 135:
      return AddressOf(&SetAppMode);
    case 137:
      return AddressOf(&IsDarkModeAllowedForWindow);
    default:
      return nullptr;
  }
}

decltype(&GetProcAddress) realGetProcAddress;

FARPROC WINAPI FindEntry(HMODULE module, const char* name) {
  const HMODULE uxtheme = GetModuleHandleW(L"uxtheme.dll");
  if (module == uxtheme && IS_INTRESOURCE(name)) return EntryByOrdinal(LOWORD(reinterpret_cast<ULONG_PTR>(name)));
  if (IS_INTRESOURCE(name)) return realGetProcAddress(module, name);
  const std::string entry = name;
  if (module == uxtheme && entry == "SetWindowTheme") return AddressOf(&RecordStyle);
  if (module == uxtheme && entry == "OpenThemeData") return AddressOf(&OpenTheme);
  if (module == uxtheme && entry == "CloseThemeData") return AddressOf(&CloseTheme);
  if (module == uxtheme && entry == "DrawThemeTextEx") return AddressOf(&DrawText);
  if (module == GetModuleHandleW(L"user32.dll") && entry == "SetWindowCompositionAttribute") {
    return current->lacksComposition ? nullptr : AddressOf(&SetCompositionAttribute);
  }
  return realGetProcAddress(module, name);
}

decltype(&SystemParametersInfoW) realSystemParametersInfo;

BOOL WINAPI AnswerHighContrast(UINT action, UINT size, void* value, UINT flags) {
  if (action != SPI_GETHIGHCONTRAST) return realSystemParametersInfo(action, size, value, flags);
  const auto contrast = static_cast<HIGHCONTRASTW*>(value);
  if (contrast->cbSize != 12) return FALSE;
  contrast->dwFlags = current->highContrast ? HCF_HIGHCONTRASTON : 0;
  return TRUE;
}

std::unique_ptr<ReplacedImport<decltype(&GetProcAddress)>> lookUp;
std::unique_ptr<ReplacedImport<decltype(&SystemParametersInfoW)>> settings;

}  // namespace

DarkWindows::DarkWindows(uint32_t build, uint32_t major) : oldMajor_(app.osMajor), oldBuild_(app.osBuild) {
  current = this;
  app.osMajor = major;
  app.osBuild = build;
  realGetProcAddress = importedGetProcAddress;
  realSystemParametersInfo = importedSystemParametersInfo;
  lookUp = std::make_unique<ReplacedImport<decltype(&GetProcAddress)>>(importedGetProcAddress, &FindEntry);
  settings = std::make_unique<ReplacedImport<decltype(&SystemParametersInfoW)>>(importedSystemParametersInfo,
                                                                                &AnswerHighContrast);
}

DarkWindows::~DarkWindows() {
  lookUp.reset();
  settings.reset();
  app.darkModeSupported = false;
  app.darkMode = false;
  app.osMajor = oldMajor_;
  app.osBuild = oldBuild_;
  Theme() = {};
  DeleteThemeBrushes();
  current = nullptr;
}

void DarkWindows::TellColorSetChange(HWND window) {
  SendMessageW(window, WM_SETTINGCHANGE, 0, reinterpret_cast<LPARAM>(L"ImmersiveColorSet"));
}

std::unique_ptr<TestWindow> OpenMainWindow() {
  // As long as this thread counts as the one that reads the manifest, none is started.
  HANDLE self = nullptr;
  DuplicateHandle(GetCurrentProcess(), GetCurrentThread(), GetCurrentProcess(), &self, 0, FALSE, DUPLICATE_SAME_ACCESS);
  app.manifestThread.Reset(self);
  return std::make_unique<TestWindow>([] {
    RegisterMainWindowClass(app.instance);
    CreateMainWindow(app.instance, SW_SHOWNORMAL);
  });
}
