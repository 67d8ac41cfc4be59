#include "app/theme.h"

#include <commctrl.h>
#include <gtest/gtest.h>

#include "app/context.h"
#include "app/pages.h"
#include "app/theme_brushes.h"
#include "support/dark_windows.h"
#include "support/test_window.h"

namespace {

TEST(Theme, NeedsAWindowsThatHasAllOfIt) {
  const struct {
    uint32_t major, build;
    std::string missing;
    bool supported;
  } cases[] = {
      {10, 17763, "", true},      {10, 17762, "", false},    {6, 20000, "", false},
      {10, 22631, "#135", false}, {10, 22631, "#106", true},
  };
  for (const auto& test : cases) {
    DarkWindows windows(test.build, test.major);
    windows.missing = test.missing;
    SetupDarkMode();
    EXPECT_EQ(app.darkModeSupported, test.supported) << test.build << test.missing;
    EXPECT_EQ(app.darkMode, test.supported) << test.build << test.missing;
  }
}

TEST(Theme, TitleBarIsDarkenedTheWayOfTheBuild) {
  for (const uint32_t build : {18361u, 18362u}) {
    DarkWindows windows(build);
    SetupDarkMode();
    const TestWindow window(CreateProgramWindow);
    EXPECT_EQ(GetPropW(window.Window(), L"UseImmersiveDarkModeColors") != nullptr, build == 18361);
    EXPECT_EQ(windows.darkTitleBars[window.Window()], build == 18362);
  }
}

TEST(Theme, WithoutSupportEverythingStaysAsItIs) {
  DarkWindows windows;
  windows.missing = "#137";
  SetupDarkMode();
  const TestWindow window(CreateProgramWindow);
  window.Run(ShowInstallPage);
  DarkWindows::TellColorSetChange(window.Window());
  EXPECT_TRUE(windows.styles.empty());
  EXPECT_TRUE(windows.allowed.empty());
}

TEST(Theme, ComponentsPageFollowsTheUser) {
  DarkWindows windows;
  SetupDarkMode();
  const TestWindow window(CreateProgramWindow);
  const HWND list = window.Components().itemsView;
  for (const bool dark : {true, false, true}) {
    windows.userWantsDark = dark;
    SendMessageW(window.Window(), WM_SETTINGCHANGE, 0, 0);  // of something else
    DarkWindows::TellColorSetChange(window.Window());
    EXPECT_EQ(app.darkMode, dark);
    EXPECT_EQ(windows.darkTitleBars[window.Window()], dark);
    EXPECT_EQ(windows.styles[list].name, dark ? L"ItemsView" : L"Explorer");
    EXPECT_EQ(windows.styles[window.Components().installButton.Window()].name, L"Explorer");
    EXPECT_EQ(windows.allowed[window.Components().installButton.Window()], dark);
    EXPECT_EQ(static_cast<COLORREF>(SendMessageW(list, LVM_GETTEXTCOLOR, 0, 0)), dark ? kWhite : kBlack);
    EXPECT_EQ(static_cast<COLORREF>(SendMessageW(list, LVM_GETBKCOLOR, 0, 0)), dark ? kBlack : kWhite);
  }
  windows.highContrast = true;
  DarkWindows::TellColorSetChange(window.Window());
  EXPECT_FALSE(app.darkMode);
}

TEST(Theme, NothingOfTheOtherAppearanceStaysOnTheInstallationPage) {
  DarkWindows windows;
  SetupDarkMode();
  const TestWindow window(CreateProgramWindow);
  window.Run(ShowInstallPage);
  const HWND checkBox = window.Installation().deleteTmpCheckbox.Window();
  const std::pair<POINT, COLORREF> background{{2, 2}, kWhite}, log{{100, 250}, kWhite}, label{{300, 17}, kWhite},
      besideCheckMark{{500, 368}, kWhite};
  for (const bool dark : {true, false, true}) {
    windows.userWantsDark = dark;
    DarkWindows::TellColorSetChange(window.Window());
    EXPECT_EQ(windows.styles[checkBox].name, dark ? std::optional<std::wstring>(L"") : std::nullopt);
    window.Run([&] {
      RedrawWindow(window.Window(), nullptr, nullptr, RDW_UPDATENOW | RDW_ALLCHILDREN);
      const HDC dc = GetDC(window.Window());
      for (const auto& [at, light] : {background, log, label, besideCheckMark}) {
        EXPECT_EQ(GetPixel(dc, at.x, at.y), dark ? kBlack : light) << at.x << ", " << at.y;
      }
      ReleaseDC(window.Window(), dc);
    });
  }
}

TEST(Theme, AHundredSwitchesLeaveNoObjectsBehind) {
  DarkWindows windows;
  SetupDarkMode();
  const TestWindow window(CreateProgramWindow);
  window.Run(ShowInstallPage);
  if (GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS) == 0) GTEST_SKIP() << "this system doesn't count objects";
  DWORD objects = 0;
  for (int i = 0; i < 102; ++i) {
    windows.userWantsDark = !app.darkMode;
    DarkWindows::TellColorSetChange(window.Window());
    window.Run([&] { UpdateWindow(window.Window()); });
    if (i == 1) objects = GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS);  // both appearances were shown
  }
  EXPECT_LE(GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS), objects);
}

}  // namespace
