#include "ui/theme/dark_menu_bar.h"

#include <uxtheme.h>
#include <vsstyle.h>

#include "ui/theme/theme.h"
#include "ui/theme/theme_api.h"

namespace {

// What the two messages point to.
struct MenuBarRecord {
  HMENU menu;
  HDC dc;  // of the whole window
  DWORD flags;
};

struct MenuBarItemRecord {
  DRAWITEMSTRUCT item;
  MenuBarRecord bar;
  int position;  // more follows, which drawing doesn't need
};

struct MenuThemeTraits {
  using Type = HTHEME;
  static Type Invalid() { return nullptr; }
  static void Close(Type theme) { Theme().CloseThemeData(theme); }
};
UniqueHandle<MenuThemeTraits>& menuTheme = *new UniqueHandle<MenuThemeTraits>;

HTHEME MenuTheme(HWND window) {
  if (!menuTheme) menuTheme.Reset(Theme().OpenThemeData(window, L"Menu"));
  return menuTheme.Get();
}

POINT TopLeft(HWND window) {
  RECT bounds{};
  GetWindowRect(window, &bounds);
  return {bounds.left, bounds.top};
}

bool DrawBar(HWND window, const MenuBarRecord& record) {
  MENUBARINFO info{};
  info.cbSize = sizeof(info);
  if (!GetMenuBarInfo(window, OBJID_MENU, 0, &info)) return false;
  RECT bar = info.rcBar;
  const POINT corner = TopLeft(window);
  OffsetRect(&bar, -corner.x, -corner.y);
  bar.top -= 1;  // the row between the title bar and the menu bar
  FillRect(record.dc, &bar, Brushes().darkBackground.Get());
  return true;
}

HBRUSH ItemBackground(UINT state) {
  if (state & ODS_SELECTED) return Brushes().menuItemSelected.Get();
  if (state & ODS_HOTLIGHT) return Brushes().menuItemHot.Get();
  return Brushes().darkBackground.Get();
}

bool DrawBarItem(HWND window, const MenuBarItemRecord& record) {
  const HTHEME theme = MenuTheme(window);
  if (!theme) return false;
  wchar_t text[256] = {};
  MENUITEMINFOW info{};
  info.cbSize = sizeof(info);
  info.fMask = MIIM_STRING;
  info.dwTypeData = text;
  info.cch = ARRAYSIZE(text);
  GetMenuItemInfoW(record.bar.menu, static_cast<UINT>(record.position), TRUE, &info);

  const UINT state = record.item.itemState;
  RECT bounds = record.item.rcItem;
  FillRect(record.bar.dc, &bounds, ItemBackground(state));
  DTTOPTS options{};
  options.dwSize = sizeof(options);
  options.dwFlags = DTT_TEXTCOLOR;
  options.crText = state & (ODS_GRAYED | ODS_DISABLED) ? kDarkDisabledText : kDarkText;
  const DWORD noUnderline = state & ODS_NOACCEL ? DT_HIDEPREFIX : 0;
  Theme().DrawThemeTextEx(theme, record.bar.dc, MENU_BARITEM, MBI_NORMAL, text, lstrlenW(text),
                          DT_CENTER | DT_VCENTER | DT_SINGLELINE | noUnderline, &bounds, &options);
  return true;
}

}  // namespace

bool DrawMenuBarPart(HWND window, UINT message, LPARAM lParam) {
  if (!IsDark() || !lParam) return false;
  if (message == kDrawMenuBarMessage) return DrawBar(window, *reinterpret_cast<const MenuBarRecord*>(lParam));
  return DrawBarItem(window, *reinterpret_cast<const MenuBarItemRecord*>(lParam));
}

void PaintLineUnderMenuBar(HWND window) {
  MENUBARINFO info{};
  info.cbSize = sizeof(info);
  if (!IsDark() || !GetMenuBarInfo(window, OBJID_MENU, 0, &info)) return;
  RECT line{};
  GetClientRect(window, &line);
  MapWindowPoints(window, nullptr, reinterpret_cast<POINT*>(&line), 2);
  const POINT corner = TopLeft(window);
  OffsetRect(&line, -corner.x, -corner.y);
  line.bottom = line.top;
  line.top -= 1;
  const HDC dc = GetWindowDC(window);
  FillRect(dc, &line, Brushes().darkBackground.Get());
  ReleaseDC(window, dc);
}

void ForgetMenuTheme() { menuTheme.Reset(); }
