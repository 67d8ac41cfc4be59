#include "app/window_scale.h"

#include <commctrl.h>

#include <algorithm>
#include <utility>

#include "app/pages.h"
#include "core/context.h"
#include "resource.h"
#include "system/handles.h"
#include "system/modules.h"
#include "ui/scale.h"
#include "ui/theme/dark_menu_bar.h"

namespace {

constexpr SIZE kUnscaledSize{600, 480};

// What lies between the sizes in the file is made from the next larger one. The import library doesn't know the
// function, which all versions of the common controls that the program's manifest admits have.
IconHandle LoadIconOfSize(int width, int height) {
  static const auto load =
      FindFunction<decltype(&LoadIconWithScaleDown)>(GetModuleHandleW(L"comctl32.dll"), "LoadIconWithScaleDown");
  IconHandle icon;
  if (load) load(app.instance, MAKEINTRESOURCEW(ICON_APPLICATION), width, height, icon.Receive());
  return icon;
}

void SetIcon(HWND window, WPARAM kind, IconHandle next, IconHandle& shown) {
  if (!next) return;
  SendMessageW(window, WM_SETICON, kind, reinterpret_cast<LPARAM>(next.Get()));
  shown = std::move(next);
}

void SetIcons(HWND window, int dpi) {
  // The system may draw the window until the process ends.
  static IconHandle& small = *new IconHandle;
  static IconHandle& large = *new IconHandle;
  SetIcon(window, ICON_SMALL, LoadIconOfSize(MetricAt(SM_CXSMICON, dpi), MetricAt(SM_CYSMICON, dpi)), small);
  SetIcon(window, ICON_BIG, LoadIconOfSize(MetricAt(SM_CXICON, dpi), MetricAt(SM_CYICON, dpi)), large);
}

}  // namespace

SIZE MainWindowSizeAt(int dpi) { return ScaledWindowSize(kUnscaledSize, kMainWindowStyle, dpi); }

void MeasureDesktop() {
  RECT desktop{};
  GetClientRect(GetDesktopWindow(), &desktop);
  app.desktopWidth = desktop.right;
  app.desktopHeight = desktop.bottom;
}

void PlaceInMiddle(HWND window) {
  const int dpi = DpiOf(window);
  const SIZE size = MainWindowSizeAt(dpi);
  // The title bar stays on a screen that is smaller than the window.
  const int x = std::max((app.desktopWidth - static_cast<int>(size.cx)) / 2, 0);
  const int y = std::max((app.desktopHeight - static_cast<int>(size.cy)) / 2, 0);
  SetWindowPos(window, nullptr, x, y, size.cx, size.cy, SWP_NOZORDER | SWP_NOACTIVATE);
  SetIcons(window, dpi);
}

void OnScaleChanged(HWND window, int dpi, const RECT& proposed) {
  SetScale(dpi);
  ForgetMenuTheme();
  SetIcons(window, dpi);
  const SIZE size = MainWindowSizeAt(dpi);
  SetWindowPos(window, nullptr, proposed.left, proposed.top, size.cx, size.cy, SWP_NOZORDER | SWP_NOACTIVATE);
  ArrangePage();
  RedrawWindow(window, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_FRAME | RDW_ALLCHILDREN);
}
