#include "app/dark_menu_bar.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "app/context.h"
#include "app/theme.h"
#include "app/theme_brushes.h"
#include "support/dark_windows.h"
#include "support/test_window.h"

namespace {

constexpr COLORREF kUnpainted = RGB(200, 100, 50);

// What the system's messages for drawing a menu bar point to.
struct MenuBarRecord {
  HMENU menu;
  HDC dc;
  DWORD flags;
};

struct MenuItemRecord {
  DRAWITEMSTRUCT item;
  MenuBarRecord bar;
  int position;
  DWORD metrics[13];
};

// A picture in memory, as large as the main window, filled with one colour. Its font has no intermediate colours.
class Picture {
 public:
  Picture() : dc_(CreateCompatibleDC(nullptr)) {
    const HDC screen = GetDC(nullptr);
    bitmap_ = CreateCompatibleBitmap(screen, 600, 480);
    ReleaseDC(nullptr, screen);
    LOGFONTW description{};
    description.lfHeight = -12;
    description.lfQuality = NONANTIALIASED_QUALITY;
    font_ = CreateFontIndirectW(&description);
    SelectObject(dc_, bitmap_);
    SelectObject(dc_, font_);
    const RECT all{0, 0, 600, 480};
    const HBRUSH brush = CreateSolidBrush(kUnpainted);
    FillRect(dc_, &all, brush);
    DeleteObject(brush);
  }
  ~Picture() {
    DeleteDC(dc_);
    DeleteObject(bitmap_);
    DeleteObject(font_);
  }
  Picture(const Picture&) = delete;
  Picture& operator=(const Picture&) = delete;

  HDC Dc() const { return dc_; }

  // How often a colour occurs in a part of it.
  int Count(COLORREF color, const RECT& part) const {
    int count = 0;
    for (LONG y = part.top; y < part.bottom; ++y) {
      for (LONG x = part.left; x < part.right; ++x) count += GetPixel(dc_, x, y) == color;
    }
    return count;
  }

 private:
  HDC dc_;
  HBITMAP bitmap_;
  HFONT font_;
};

int Area(const RECT& bounds) { return (bounds.right - bounds.left) * (bounds.bottom - bounds.top); }

RECT InWindow(HWND window, RECT screen) {
  RECT bounds;
  GetWindowRect(window, &bounds);
  OffsetRect(&screen, -bounds.left, -bounds.top);
  return screen;
}

RECT MenuBarOf(HWND window) {
  MENUBARINFO info{};
  info.cbSize = sizeof(info);
  EXPECT_TRUE(GetMenuBarInfo(window, OBJID_MENU, 0, &info));
  return InWindow(window, info.rcBar);
}

class DarkMenuBar : public testing::Test {
 protected:
  DarkMenuBar() {
    SetupDarkMode();
    window = OpenMainWindow();
  }

  LRESULT DrawBar(const Picture& picture) const {
    MenuBarRecord record{GetMenu(window->Window()), picture.Dc(), 0};
    return SendMessageW(window->Window(), 0x0091, 0, reinterpret_cast<LPARAM>(&record));
  }

  LRESULT DrawItem(const Picture& picture, const RECT& bounds, UINT state, HMENU menu, int position = 0) const {
    MenuItemRecord record{};
    record.item.CtlType = ODT_MENU;
    record.item.itemState = state;
    record.item.rcItem = bounds;
    record.bar = {menu, picture.Dc(), 0};
    record.position = position;
    return SendMessageW(window->Window(), 0x0092, 0, reinterpret_cast<LPARAM>(&record));
  }
  LRESULT DrawItem(const Picture& picture, const RECT& bounds, UINT state) const {
    return DrawItem(picture, bounds, state, GetMenu(window->Window()));
  }

  void Switch(bool dark) {
    windows.userWantsDark = dark;
    DarkWindows::TellColorSetChange(window->Window());
  }

  DarkWindows windows;
  std::unique_ptr<TestWindow> window;
};

TEST_F(DarkMenuBar, IsFilledWithTheRowAboveIt) {
  Picture picture;
  EXPECT_EQ(DrawBar(picture), TRUE);
  RECT bar = MenuBarOf(window->Window());
  ASSERT_GT(Area(bar), 0);
  bar.top -= 1;
  EXPECT_EQ(picture.Count(0x000000, bar), Area(bar));
  EXPECT_EQ(picture.Count(kUnpainted, {0, 0, 600, 480}), 600 * 480 - Area(bar));
}

TEST_F(DarkMenuBar, ItemsShowTheirState) {
  const RECT bounds{40, 30, 140, 50};
  const struct {
    UINT state;
    COLORREF background, text;
  } cases[] = {
      {0, 0x000000, 0xFFFFFF},
      {ODS_DEFAULT, 0x000000, 0xFFFFFF},
      {ODS_HOTLIGHT, 0x414141, 0xFFFFFF},
      {ODS_SELECTED, 0x454545, 0xFFFFFF},
      {ODS_SELECTED | ODS_HOTLIGHT, 0x454545, 0xFFFFFF},
      {ODS_GRAYED, 0x000000, 0x404040},
      {ODS_DISABLED, 0x000000, 0x404040},
      {ODS_GRAYED | ODS_HOTLIGHT, 0x414141, 0x404040},
      {ODS_DISABLED | ODS_SELECTED, 0x454545, 0x404040},
      {ODS_INACTIVE, 0x000000, 0xFFFFFF},
  };
  for (const auto& test : cases) {
    SCOPED_TRACE(test.state);
    Picture picture;
    EXPECT_EQ(DrawItem(picture, bounds, test.state), TRUE);
    const int text = picture.Count(test.text, bounds);
    EXPECT_GT(text, 10);
    EXPECT_EQ(picture.Count(test.background, bounds), Area(bounds) - text);
    EXPECT_EQ(picture.Count(kUnpainted, {0, 0, 600, 480}), 600 * 480 - Area(bounds));
    EXPECT_EQ(windows.drawnText.text, L"File");
    EXPECT_EQ(windows.drawnText.part, 8);
    EXPECT_EQ(windows.drawnText.state, 1);
    EXPECT_EQ(windows.drawnText.flags, static_cast<DWORD>(DT_CENTER | DT_VCENTER | DT_SINGLELINE));
  }
}

TEST_F(DarkMenuBar, ItemsHaveTheirOwnTextAndUnderlineItOnRequest) {
  const HMENU menu = CreateMenu();
  AppendMenuW(menu, MF_STRING, 1, L"&First");
  AppendMenuW(menu, MF_STRING, 2, std::wstring(300, L'x').c_str());
  const RECT bounds{0, 0, 200, 20};
  Picture picture;
  DrawItem(picture, bounds, 0, menu);
  EXPECT_EQ(windows.drawnText.text, L"&First");
  EXPECT_EQ(windows.drawnText.flags & DT_HIDEPREFIX, 0u);
  DrawItem(picture, bounds, ODS_NOACCEL, menu);
  EXPECT_NE(windows.drawnText.flags & DT_HIDEPREFIX, 0u);
  DrawItem(picture, bounds, 0, menu, 1);
  EXPECT_EQ(windows.drawnText.text, std::wstring(255, L'x'));
  DrawItem(picture, bounds, 0, menu, 7);
  EXPECT_EQ(windows.drawnText.text, L"");
  DestroyMenu(menu);
}

TEST_F(DarkMenuBar, OpensItsThemeOnceAndClosesItWithTheTheme) {
  Picture picture;
  const RECT bounds{0, 0, 50, 20};
  for (int i = 0; i < 3; ++i) DrawItem(picture, bounds, 0);
  EXPECT_EQ(windows.themesOpened, 1);
  SendMessageW(window->Window(), WM_THEMECHANGED, 0, 0);
  SendMessageW(window->Window(), WM_THEMECHANGED, 0, 0);
  EXPECT_EQ(windows.openThemes, 0);
  DrawItem(picture, bounds, 0);
  EXPECT_EQ(windows.themesOpened, 2);
  window.reset();
  EXPECT_EQ(windows.openThemes, 0);
}

TEST_F(DarkMenuBar, IsLeftToTheSystemInLightMode) {
  Switch(false);
  Picture picture;
  EXPECT_EQ(DrawBar(picture), 0);
  EXPECT_EQ(DrawItem(picture, {0, 0, 50, 20}, 0), 0);
  EXPECT_EQ(picture.Count(kUnpainted, {0, 0, 600, 480}), 600 * 480);
}

// The row of pixels right above the client area.
RECT LineOf(HWND window) {
  RECT client;
  GetClientRect(window, &client);
  MapWindowPoints(window, nullptr, reinterpret_cast<POINT*>(&client), 2);
  client = InWindow(window, client);
  return {client.left, client.top - 1, client.right, client.top};
}

// Paints the line in another colour, lets the window paint its frame, and counts what is black then.
int BlackOfLineAfter(HWND window, UINT message, WPARAM wParam) {
  const RECT line = LineOf(window);
  const HDC dc = GetWindowDC(window);
  const HBRUSH brush = CreateSolidBrush(kUnpainted);
  RECT strip = line;
  InflateRect(&strip, 1, 1);
  FillRect(dc, &strip, brush);
  DeleteObject(brush);
  SendMessageW(window, message, wParam, 0);
  int black = 0;
  for (LONG x = line.left; x < line.right; ++x) black += GetPixel(dc, x, line.top) == 0x000000;
  ReleaseDC(window, dc);
  return black;
}

TEST_F(DarkMenuBar, LineUnderItIsDarkWheneverTheFrameWasPainted) {
  const struct {
    UINT message;
    WPARAM wParam;
  } cases[] = {{WM_NCPAINT, 1}, {WM_NCACTIVATE, TRUE}, {WM_NCACTIVATE, FALSE}};
  for (const bool dark : {true, false}) {
    Switch(dark);
    const RECT line = LineOf(window->Window());
    for (const auto& test : cases) {
      int black = -1;
      window->Run([&] { black = BlackOfLineAfter(window->Window(), test.message, test.wParam); });
      EXPECT_EQ(black, dark ? line.right - line.left : 0) << test.message << dark;
    }
  }
}

TEST_F(DarkMenuBar, FramePaintingAnswersAsTheSystemDoes) {
  EXPECT_EQ(SendMessageW(window->Window(), WM_NCACTIVATE, FALSE, 0), TRUE);
  EXPECT_EQ(SendMessageW(window->Window(), WM_NCPAINT, 1, 0), 0);
}

}  // namespace
