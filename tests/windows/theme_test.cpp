#include "ui/theme/theme.h"

#include <map>

#include "resource.h"
#include "support/opened_dialog.h"
#include "ui/theme/theme.h"
#include "ui/theme/theme_api.h"

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
