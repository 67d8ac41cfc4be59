#include "app/dark_menu_bar.h"

#include <gtest/gtest.h>

#include "app/theme.h"
#include "support/dark_windows.h"
#include "support/test_window.h"

namespace {

// What the system's messages for drawing an item of a menu bar point to.
struct MenuItemRecord {
  DRAWITEMSTRUCT item;
  struct {
    HMENU menu;
    HDC dc;
    DWORD flags;
  } bar;
  int position;
};

TEST(DarkMenuBar, ItemsShowTheirState) {
  DarkWindows windows;
  SetupDarkMode();
  const TestWindow window(CreateProgramWindow);
  const struct {
    UINT state;
    COLORREF background, text;
  } cases[] = {
      {ODS_HOTLIGHT, 0x414141, 0xFFFFFF},
      {ODS_SELECTED | ODS_HOTLIGHT, 0x454545, 0xFFFFFF},
      {ODS_GRAYED, 0x000000, 0x404040},
  };
  window.Run([&] {
    const HDC dc = GetDC(window.Window());
    for (const auto& test : cases) {
      MenuItemRecord record{};
      record.item.itemState = test.state;
      record.item.rcItem = {40, 30, 140, 50};
      record.bar = {GetMenu(window.Window()), dc, 0};
      EXPECT_EQ(SendMessageW(window.Window(), 0x0092, 0, reinterpret_cast<LPARAM>(&record)), TRUE);
      EXPECT_EQ(GetPixel(dc, 40, 30), test.background) << test.state;
      EXPECT_EQ(GetTextColor(dc), test.text) << test.state;
      EXPECT_EQ(windows.themedText, L"File");
    }
    ReleaseDC(window.Window(), dc);
  });
}

// Lets the window paint its frame, and gives the colour between the menu bar and the client area.
COLORREF LineUnderMenuBarAfter(HWND window, UINT message) {
  RECT bounds{};
  POINT client{};
  GetWindowRect(window, &bounds);
  ClientToScreen(window, &client);
  const int x = client.x - bounds.left + 100, y = client.y - bounds.top - 1;
  const HDC dc = GetWindowDC(window);
  SetPixel(dc, x, y, RGB(200, 100, 50));
  SendMessageW(window, message, 1, 0);
  const COLORREF color = GetPixel(dc, x, y);
  ReleaseDC(window, dc);
  return color;
}

TEST(DarkMenuBar, LineUnderItIsDarkWheneverTheFrameWasPainted) {
  DarkWindows windows;
  SetupDarkMode();
  const TestWindow window(CreateProgramWindow);
  window.Run([&] {
    for (const UINT message : {WM_NCPAINT, WM_NCACTIVATE}) {
      EXPECT_EQ(LineUnderMenuBarAfter(window.Window(), message), RGB(0, 0, 0)) << message;
    }
  });
}

}  // namespace
