#include "ui/dialogs.h"

#include "core/context.h"
#include "ui/theme/theme.h"

void CenterOverOwner(HWND dialog) {
  HWND owner = GetWindow(dialog, GW_OWNER);
  if (!owner) owner = app.mainWindow;
  RECT over, own;
  if (!GetWindowRect(owner, &over) || !GetWindowRect(dialog, &own)) return;
  // A minimised window stands far outside the screen.
  WINDOWPLACEMENT placement = {};
  placement.length = sizeof placement;
  if (IsIconic(owner) && GetWindowPlacement(owner, &placement)) over = placement.rcNormalPosition;
  const int x = over.left + ((over.right - over.left) - (own.right - own.left)) / 2;
  const int y = over.top + ((over.bottom - over.top) - (own.bottom - own.top)) / 2;
  SetWindowPos(dialog, HWND_TOP, x, y, 0, 0, SWP_NOSIZE);
}

void ShowModalDialog(int resource, DLGPROC procedure) {
  DialogBoxParamW(app.instance, MAKEINTRESOURCEW(resource), app.mainWindow, procedure, 0);
}

std::optional<INT_PTR> AnswerThemeMessage(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
  const auto dc = reinterpret_cast<HDC>(wParam);
  switch (message) {
    case WM_CTLCOLORBTN:
      return reinterpret_cast<INT_PTR>(DarkButtonColors(dc));
    case WM_CTLCOLORDLG:
    case WM_CTLCOLOREDIT:
    case WM_CTLCOLORSTATIC:
      return reinterpret_cast<INT_PTR>(DarkStaticColors(dc));
    case WM_SETTINGCHANGE:
      DialogSettingChange(dialog, wParam, lParam);
      return TRUE;
    case WM_THEMECHANGED:
      DialogThemeChanged(dialog);
      return TRUE;
    default:
      return std::nullopt;
  }
}
