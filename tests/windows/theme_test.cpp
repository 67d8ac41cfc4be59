#include "app/theme.h"

#include <commctrl.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "app/context.h"
#include "app/pages.h"
#include "app/theme_brushes.h"
#include "resource.h"
#include "support/dark_windows.h"
#include "support/replaced_import.h"
#include "support/test_window.h"

extern "C" {
extern decltype(&CreateSolidBrush) importedCreateSolidBrush __asm__("__imp__CreateSolidBrush@4");
extern decltype(&DeleteObject) importedDeleteObject __asm__("__imp__DeleteObject@4");
}

namespace {

using Style = DarkWindows::Style;
const Style kExplorer{L"Explorer", {}}, kItemsView{L"ItemsView", {}};
const Style kNoStyle{L"", L""}, kSystemStyle{};

constexpr wchar_t kDarkColorsProperty[] = L"UseImmersiveDarkModeColors";

TEST(ThemeSetup, NeedsAWindowsThatHasAllOfIt) {
  const struct {
    uint32_t major, build;
    std::set<int> missing;
    bool supported;
  } cases[] = {
      {10, 17763, {}, true},     {10, 18361, {}, true},     {10, 18362, {}, true},     {10, 26100, {}, true},
      {10, 17762, {}, false},    {6, 20000, {}, false},     {10, 22631, {49}, false},  {10, 22631, {104}, false},
      {10, 22631, {132}, false}, {10, 22631, {133}, false}, {10, 17763, {135}, false}, {10, 22631, {135}, false},
      {10, 22631, {137}, false}, {10, 22631, {106}, true},
  };
  for (const auto& test : cases) {
    SCOPED_TRACE(testing::Message() << test.major << " build " << test.build << " without "
                                    << testing::PrintToString(test.missing));
    DarkWindows windows(test.build, test.major);
    windows.missingOrdinals = test.missing;
    SetupDarkMode();
    EXPECT_EQ(app.darkModeSupported, test.supported);
    EXPECT_EQ(app.darkMode, test.supported);
    const auto calls = test.supported ? std::vector<std::string>{"135(1)", "104"} : std::vector<std::string>{};
    EXPECT_EQ(windows.calls, calls);
    if (test.major < 10 || test.build < 17763) {
      EXPECT_TRUE(windows.lookedUp.empty());
    }
    SetupDarkMode();
    EXPECT_EQ(windows.calls, calls) << "set up twice";
  }
}

TEST(ThemeSetup, AsksWindowsForItsBuildWhenNobodyHas) {
  DarkWindows windows(0, 0);
  SetupDarkMode();
  EXPECT_NE(app.osBuild, 0u);
  EXPECT_EQ(app.darkModeSupported, app.osMajor >= 10 && app.osBuild >= 17763);
}

TEST(ThemeSetup, FollowsTheUser) {
  const struct {
    bool wantsDark, highContrast, dark;
  } cases[] = {{true, false, true}, {false, false, false}, {true, true, false}, {false, true, false}};
  for (const auto& test : cases) {
    DarkWindows windows;
    windows.userWantsDark = test.wantsDark;
    windows.highContrast = test.highContrast;
    SetupDarkMode();
    EXPECT_TRUE(app.darkModeSupported);
    EXPECT_EQ(app.darkMode, test.dark) << test.wantsDark << test.highContrast;
  }
}

enum class TitleBar { Untouched, Light, Dark };

// GetPropW can't tell a property that holds 0 from a missing one.
BOOL CALLBACK FindDarkColors(HWND, wchar_t* name, HANDLE value, ULONG_PTR result) {
  if (!IS_INTRESOURCE(name) && wcscmp(name, kDarkColorsProperty) == 0) {
    *reinterpret_cast<TitleBar*>(result) = value ? TitleBar::Dark : TitleBar::Light;
  }
  return TRUE;
}

TitleBar ByProperty(HWND window) {
  TitleBar result = TitleBar::Untouched;
  EnumPropsExW(window, FindDarkColors, reinterpret_cast<LPARAM>(&result));
  return result;
}

TitleBar ByComposition(const DarkWindows& windows, HWND window) {
  TitleBar result = TitleBar::Untouched;
  for (const auto& [changed, dark] : windows.compositionColors) {
    if (changed == window) result = dark ? TitleBar::Dark : TitleBar::Light;
  }
  return result;
}

TEST(ThemeTitleBar, IsDarkenedTheWayOfTheBuild) {
  const struct {
    uint32_t build;
    bool lacksComposition;
    TitleBar property, composition;
  } cases[] = {
      {17763, false, TitleBar::Dark, TitleBar::Untouched}, {18361, false, TitleBar::Dark, TitleBar::Untouched},
      {18361, true, TitleBar::Dark, TitleBar::Untouched},  {18362, false, TitleBar::Untouched, TitleBar::Dark},
      {22631, false, TitleBar::Untouched, TitleBar::Dark}, {22631, true, TitleBar::Untouched, TitleBar::Untouched},
  };
  for (const auto& test : cases) {
    SCOPED_TRACE(test.build);
    DarkWindows windows(test.build);
    windows.lacksComposition = test.lacksComposition;
    SetupDarkMode();
    const auto window = OpenMainWindow();
    EXPECT_EQ(ByProperty(window->Window()), test.property);
    EXPECT_EQ(ByComposition(windows, window->Window()), test.composition);
    EXPECT_EQ(windows.styles[window->Components().itemsView], kItemsView);
  }
}

TEST(ThemeTitleBar, FollowsASwitchOnlyOfAWindowThatWasCreatedDark) {
  for (const uint32_t build : {17763u, 22631u}) {
    for (const bool createdDark : {true, false}) {
      SCOPED_TRACE(testing::Message() << build << (createdDark ? " dark" : " light"));
      DarkWindows windows(build);
      windows.userWantsDark = createdDark;
      SetupDarkMode();
      const auto window = OpenMainWindow();
      const auto titleBar = [&] {
        return build < 18362 ? ByProperty(window->Window()) : ByComposition(windows, window->Window());
      };
      EXPECT_EQ(titleBar(), createdDark ? TitleBar::Dark : TitleBar::Untouched);
      windows.userWantsDark = !createdDark;
      DarkWindows::TellColorSetChange(window->Window());
      EXPECT_EQ(titleBar(), TitleBar::Light);
      EXPECT_EQ(app.darkMode, !createdDark);
      windows.userWantsDark = createdDark;
      DarkWindows::TellColorSetChange(window->Window());
      EXPECT_EQ(titleBar(), createdDark ? TitleBar::Dark : TitleBar::Light);
    }
  }
}

// Counts the WM_THEMECHANGED that a control receives.
class ThemeChanges {
 public:
  ThemeChanges(const TestWindow& owner, HWND control) : owner_(owner), control_(control) {
    owner_.Run([this] { SetWindowSubclass(control_, Count, 0, reinterpret_cast<DWORD_PTR>(this)); });
  }
  ~ThemeChanges() {
    owner_.Run([this] { RemoveWindowSubclass(control_, Count, 0); });
  }
  ThemeChanges(const ThemeChanges&) = delete;
  ThemeChanges& operator=(const ThemeChanges&) = delete;
  int count = 0;

 private:
  static LRESULT CALLBACK Count(HWND window, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR, DWORD_PTR self) {
    if (message == WM_THEMECHANGED) ++reinterpret_cast<ThemeChanges*>(self)->count;
    return DefSubclassProc(window, message, wParam, lParam);
  }

  const TestWindow& owner_;
  HWND control_;
};

void ExpectListColors(HWND list, COLORREF text, COLORREF background) {
  EXPECT_EQ(static_cast<COLORREF>(SendMessageW(list, LVM_GETTEXTCOLOR, 0, 0)), text);
  EXPECT_EQ(static_cast<COLORREF>(SendMessageW(list, LVM_GETTEXTBKCOLOR, 0, 0)), background);
  EXPECT_EQ(static_cast<COLORREF>(SendMessageW(list, LVM_GETBKCOLOR, 0, 0)), background);
}

TEST(ThemeControls, OfTheComponentsPageFollowTheUser) {
  DarkWindows windows;
  SetupDarkMode();
  const auto window = OpenMainWindow();
  const ComponentsPageControls& page = window->Components();
  const auto header = reinterpret_cast<HWND>(SendMessageW(page.itemsView, LVM_GETHEADER, 0, 0));
  const std::map<HWND, Style> dark{{page.itemsView, kItemsView},
                                   {header, kItemsView},
                                   {page.selectFolderButton.Window(), kExplorer},
                                   {page.installButton.Window(), kExplorer},
                                   {page.installPathEdit.Window(), kExplorer}};
  EXPECT_EQ(windows.styles, dark);
  for (const auto& [control, style] : dark) EXPECT_TRUE(windows.allowed[control]);
  ExpectListColors(page.itemsView, 0xFFFFFF, 0x000000);

  ThemeChanges listChanges(*window, page.itemsView), buttonChanges(*window, page.installButton.Window()),
      editChanges(*window, page.installPathEdit.Window()), labelChanges(*window, page.componentsLabel.Window());
  windows.userWantsDark = false;
  DarkWindows::TellColorSetChange(window->Window());
  auto light = dark;
  light[page.itemsView] = light[header] = kExplorer;
  EXPECT_EQ(windows.styles, light);
  for (const auto& [control, style] : light) EXPECT_FALSE(windows.allowed[control]);
  ExpectListColors(page.itemsView, 0x000000, 0xFFFFFF);
  EXPECT_EQ(listChanges.count, 1);
  EXPECT_EQ(buttonChanges.count, 1);
  EXPECT_EQ(editChanges.count, 1);
  EXPECT_EQ(labelChanges.count, 0);
}

TEST(ThemeControls, OfTheInstallationPageFollowTheUser) {
  DarkWindows windows;
  SetupDarkMode();
  const auto window = OpenMainWindow();
  windows.styles.clear();
  window->Run(ShowInstallPage);
  const InstallPageControls& page = window->Installation();
  const HWND checkBox = page.deleteTmpCheckbox.Window();
  std::map<HWND, Style> expected{
      {page.logEdit.Window(), kExplorer}, {page.cancelButton.Window(), kExplorer}, {checkBox, kNoStyle}};
  EXPECT_EQ(windows.styles, expected);

  windows.userWantsDark = false;
  DarkWindows::TellColorSetChange(window->Window());
  expected[checkBox] = kSystemStyle;
  EXPECT_EQ(windows.styles, expected);

  windows.userWantsDark = true;
  DarkWindows::TellColorSetChange(window->Window());
  expected[checkBox] = kNoStyle;
  EXPECT_EQ(windows.styles, expected);
  EXPECT_TRUE(windows.allowed[checkBox]);
}

TEST(ThemeControls, StayAsTheyAreInLightMode) {
  DarkWindows windows;
  windows.userWantsDark = false;
  SetupDarkMode();
  const auto window = OpenMainWindow();
  window->Run(ShowInstallPage);
  EXPECT_TRUE(windows.styles.empty());
  EXPECT_TRUE(windows.allowed.empty());
  EXPECT_TRUE(windows.compositionColors.empty());
}

TEST(ThemeControls, StayAsTheyAreWithoutSupport) {
  DarkWindows windows;
  windows.missingOrdinals = {137};
  SetupDarkMode();
  const auto window = OpenMainWindow();
  app.darkMode = true;  // not even then
  window->Run(ShowInstallPage);
  DarkWindows::TellColorSetChange(window->Window());
  SendMessageW(window->Window(), WM_THEMECHANGED, 0, 0);
  EXPECT_TRUE(windows.styles.empty());
  EXPECT_TRUE(windows.allowed.empty());
  EXPECT_TRUE(windows.calls.empty());
}

TEST(ThemeSettingChange, OnlyTheColorSetCounts) {
  DarkWindows windows;
  SetupDarkMode();
  const auto window = OpenMainWindow();
  const struct {
    const wchar_t* changed;
    bool isColorSet;
  } cases[] = {{L"ImmersiveColorSet", true},
               {L"IMMERSIVEcolorset", true},
               {L"ImmersiveColorSets", false},
               {L"ImmersiveColor", false},
               {L"WindowMetrics", false},
               {L"", false},
               {nullptr, false}};
  for (const auto& test : cases) {
    SCOPED_TRACE(testing::PrintToString(test.changed));
    windows.calls.clear();
    windows.userWantsDark = !app.darkMode;
    SendMessageW(window->Window(), WM_SETTINGCHANGE, 0, reinterpret_cast<LPARAM>(test.changed));
    EXPECT_EQ(app.darkMode == windows.userWantsDark, test.isColorSet);
    EXPECT_EQ(windows.calls,
              test.isColorSet ? (std::vector<std::string>{"104", "106(1)"}) : std::vector<std::string>{"106(1)"});
  }
}

TEST(ThemeSettingChange, DoesWithoutTheHighContrastRefresh) {
  DarkWindows windows;
  windows.missingOrdinals = {106};
  SetupDarkMode();
  const auto window = OpenMainWindow();
  windows.calls.clear();
  windows.highContrast = true;
  DarkWindows::TellColorSetChange(window->Window());
  EXPECT_FALSE(app.darkMode);
  EXPECT_EQ(ByComposition(windows, window->Window()), TitleBar::Light);
  EXPECT_EQ(windows.calls, std::vector<std::string>{"104"});
}

// What the window shows at a point of its client area.
COLORREF PixelAt(const TestWindow& window, int x, int y) {
  COLORREF color = CLR_INVALID;
  window.Run([&] {
    RedrawWindow(window.Window(), nullptr, nullptr, RDW_UPDATENOW | RDW_ALLCHILDREN);
    const HDC dc = GetDC(window.Window());
    color = GetPixel(dc, x, y);
    ReleaseDC(window.Window(), dc);
  });
  return color;
}

TEST(ThemePixels, NothingOfTheOtherAppearanceStays) {
  DarkWindows windows;
  SetupDarkMode();
  const auto window = OpenMainWindow();
  window->Run(ShowInstallPage);
  const struct {
    const char* name;
    int x, y;
    COLORREF light;
  } points[] = {{"background", 2, 2, kWhite},
                {"label", 300, 17, kWhite},
                {"log", 100, 250, kWhite},
                {"check box", 500, 368, kWhite}};
  for (const bool dark : {true, false, true}) {
    windows.userWantsDark = dark;
    DarkWindows::TellColorSetChange(window->Window());
    for (const auto& point : points) {
      EXPECT_EQ(PixelAt(*window, point.x, point.y), dark ? kBlack : point.light)
          << point.name << (dark ? " dark" : " light");
    }
  }
}

TEST(ThemeColors, AreAnsweredInDarkModeOnly) {
  DarkWindows windows;
  SetupDarkMode();
  CreateThemeBrushes();
  const struct {
    HBRUSH (*answer)(HDC);
    COLORREF background;  // of text
  } cases[] = {{DarkStaticColors, kBlack}, {DarkButtonColors, RGB(1, 2, 3)}};
  for (const auto& test : cases) {
    const HDC dc = CreateCompatibleDC(nullptr);
    SetBkColor(dc, RGB(1, 2, 3));
    SetTextColor(dc, RGB(4, 5, 6));
    app.darkMode = false;
    EXPECT_EQ(test.answer(dc), nullptr);
    app.darkMode = true;
    app.darkModeSupported = false;
    EXPECT_EQ(test.answer(dc), nullptr);
    EXPECT_EQ(GetTextColor(dc), RGB(4, 5, 6));
    app.darkModeSupported = true;
    LOGBRUSH brush{};
    GetObjectW(test.answer(dc), sizeof(brush), &brush);
    EXPECT_EQ(brush.lbStyle, static_cast<UINT>(BS_SOLID));
    EXPECT_EQ(brush.lbColor, kBlack);
    EXPECT_EQ(GetTextColor(dc), kWhite);
    EXPECT_EQ(GetBkColor(dc), test.background);
    DeleteDC(dc);
  }
}

TEST(ThemeColors, OfTheMainWindowLetTheBackgroundThroughText) {
  DarkWindows windows;
  SetupDarkMode();
  const auto window = OpenMainWindow();
  const struct {
    UINT message;
    int mode;
  } cases[] = {{WM_CTLCOLORSTATIC, TRANSPARENT},
               {WM_CTLCOLORDLG, TRANSPARENT},
               {WM_CTLCOLOREDIT, OPAQUE},
               {WM_CTLCOLORBTN, OPAQUE}};
  for (const auto& test : cases) {
    window->Run([&] {
      const HDC dc = CreateCompatibleDC(nullptr);
      EXPECT_NE(SendMessageW(window->Window(), test.message, reinterpret_cast<WPARAM>(dc), 0), 0);
      EXPECT_EQ(GetBkMode(dc), test.mode) << test.message;
      EXPECT_EQ(GetTextColor(dc), kWhite) << test.message;
      DeleteDC(dc);
    });
  }
}

// A dialog as the program's dialogs are: it hands the theme's messages on.
INT_PTR CALLBACK DialogProc(HWND dialog, UINT message, WPARAM, LPARAM lParam) {
  switch (message) {
    case WM_INITDIALOG:
      DialogDarkInit(dialog);
      return TRUE;
    case WM_THEMECHANGED:
      SetWindowLongPtrW(dialog, DWLP_USER, DialogThemeChanged(dialog) ? 2 : 1);
      ThemeUnstyledControl(GetDlgItem(dialog, SPEED_EDIT));
      return TRUE;
    case WM_SETTINGCHANGE:
      DialogSettingChange(dialog, lParam);
      return TRUE;
    default:
      return FALSE;
  }
}

enum DialogTheme : LONG_PTR { NotAsked = 0, ToldLight = 1, ToldDark = 2 };

struct ThemedDialog {
  explicit ThemedDialog(const TestWindow& owner) : owner_(owner) {
    owner_.Run([this] {
      window = CreateDialogParamW(app.instance, MAKEINTRESOURCEW(DIALOG_SPEED_LIMIT), owner_.Window(), DialogProc, 0);
    });
  }
  ~ThemedDialog() {
    owner_.Run([this] { DestroyWindow(window); });
  }
  LONG_PTR Told() const { return GetWindowLongPtrW(window, DWLP_USER); }
  HWND Item(int id) const { return GetDlgItem(window, id); }

  HWND window = nullptr;

 private:
  const TestWindow& owner_;
};

TEST(ThemeDialogs, OpenDarkAndFollowTheUser) {
  DarkWindows windows;
  SetupDarkMode();
  TestWindow owner(NoPage);
  const ThemedDialog dialog(owner);
  EXPECT_EQ(dialog.Told(), ToldDark);
  EXPECT_TRUE(windows.allowed[dialog.window]);
  EXPECT_EQ(ByComposition(windows, dialog.window), TitleBar::Dark);
  EXPECT_EQ(windows.styles[dialog.Item(IDOK)], kExplorer);
  EXPECT_EQ(windows.styles[dialog.Item(SPEED_EDIT)], kNoStyle);
  EXPECT_FALSE(windows.styles.contains(dialog.Item(SPEED_TRACKBAR)));

  SendMessageW(dialog.window, WM_SETTINGCHANGE, 0, reinterpret_cast<LPARAM>(L"Environment"));
  windows.userWantsDark = false;
  DarkWindows::TellColorSetChange(dialog.window);
  EXPECT_EQ(dialog.Told(), ToldLight);
  EXPECT_FALSE(app.darkMode);
  EXPECT_FALSE(windows.allowed[dialog.window]);
  EXPECT_EQ(ByComposition(windows, dialog.window), TitleBar::Light);
  EXPECT_EQ(windows.styles[dialog.Item(SPEED_EDIT)], kSystemStyle);
}

TEST(ThemeDialogs, StayLightInLightModeAndWithoutSupport) {
  for (const bool supported : {true, false}) {
    DarkWindows windows;
    windows.userWantsDark = !supported;
    if (!supported) windows.missingOrdinals = {133};
    SetupDarkMode();
    TestWindow owner(NoPage);
    const ThemedDialog dialog(owner);
    EXPECT_EQ(dialog.Told(), NotAsked);
    EXPECT_TRUE(windows.styles.empty());
    if (supported) continue;
    DarkWindows::TellColorSetChange(dialog.window);
    EXPECT_EQ(dialog.Told(), NotAsked);
    SendMessageW(dialog.window, WM_THEMECHANGED, 0, 0);
    EXPECT_EQ(dialog.Told(), ToldLight);
    EXPECT_TRUE(windows.styles.empty());
    EXPECT_TRUE(windows.calls.empty());
  }
}

std::set<HGDIOBJ> livingBrushes;
decltype(&CreateSolidBrush) realCreateSolidBrush;
decltype(&DeleteObject) realDeleteObject;

HBRUSH WINAPI RememberBrush(COLORREF color) {
  const HBRUSH brush = realCreateSolidBrush(color);
  livingBrushes.insert(brush);
  return brush;
}

BOOL WINAPI ForgetObject(HGDIOBJ object) {
  livingBrushes.erase(object);
  return realDeleteObject(object);
}

TEST(ThemeObjects, AHundredSwitchesLeaveNothingBehind) {
  realCreateSolidBrush = importedCreateSolidBrush;
  realDeleteObject = importedDeleteObject;
  const ReplacedImport createBrush(importedCreateSolidBrush, &RememberBrush);
  const ReplacedImport deleteObject(importedDeleteObject, &ForgetObject);
  DarkWindows windows;
  SetupDarkMode();
  {
    const auto window = OpenMainWindow();
    EXPECT_EQ(livingBrushes.size(), 5u);
    window->Run(ShowInstallPage);
    const auto switchAppearance = [&] {
      windows.userWantsDark = !app.darkMode;
      DarkWindows::TellColorSetChange(window->Window());
      PixelAt(*window, 0, 0);  // paints everything
    };
    switchAppearance();
    switchAppearance();
    const DWORD objects = GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS);
    for (int i = 0; i < 100; ++i) switchAppearance();
    EXPECT_LE(GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS), objects);
    EXPECT_EQ(livingBrushes.size(), 5u);
  }
  EXPECT_TRUE(livingBrushes.empty());
}

}  // namespace
