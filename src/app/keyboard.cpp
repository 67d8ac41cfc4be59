#include "app/keyboard.h"

#include <commctrl.h>

#include "core/context.h"
#include "ui/page_controls.h"

namespace {

// The control that had the focus when the window lost it.
HWND lastFocus = nullptr;

HWND FirstControl() {
  if (app.currentPage == ComponentsPage) return static_cast<ComponentsPageControls*>(app.componentsPage)->itemsView;
  if (app.currentPage == InstallPage) {
    return static_cast<InstallPageControls*>(app.installPage)->cancelButton.Window();
  }
  return nullptr;
}

bool IsPushButton(HWND control) {
  constexpr LRESULT kPushButton = DLGC_DEFPUSHBUTTON | DLGC_UNDEFPUSHBUTTON;
  return (SendMessageW(control, WM_GETDLGCODE, 0, 0) & kPushButton) != 0;
}

// For the system Enter would press a default button, and this window has none. A key that is held down presses once:
// behind the next page's button, too, lies the end of the program.
bool TakeEnter(const MSG& message) {
  if (message.message != WM_KEYDOWN || message.wParam != VK_RETURN || !IsPushButton(message.hwnd)) return false;
  const bool isRepeated = HIWORD(message.lParam) & KF_REPEAT;
  if (!isRepeated) PostMessageW(message.hwnd, BM_CLICK, 0, 0);
  return true;
}

BOOL CALLBACK PassCues(HWND child, LPARAM hidden) {
  SendMessageW(child, WM_UPDATEUISTATE, MAKEWPARAM(UIS_SET, hidden), 0);
  return TRUE;
}

}  // namespace

bool TakeKey(HACCEL accelerators, MSG& message) {
  const HWND window = app.mainWindow;
  if (message.hwnd != window && !IsChild(window, message.hwnd)) return false;
  // For the window whichever control has the focus: controls know nothing of our commands.
  if (TranslateAcceleratorW(window, accelerators, &message)) return true;
  return TakeEnter(message) || IsDialogMessageW(window, &message);
}

void HideKeyboardCues(HWND window) {
  BOOL always = FALSE;
  SystemParametersInfoW(SPI_GETKEYBOARDCUES, 0, &always, 0);
  if (!always) SendMessageW(window, WM_CHANGEUISTATE, MAKEWPARAM(UIS_SET, UISF_HIDEACCEL | UISF_HIDEFOCUS), 0);
}

void BeginKeyboardPage() {
  const HWND window = app.mainWindow;
  if (const LRESULT hidden = SendMessageW(window, WM_QUERYUISTATE, 0, 0)) EnumChildWindows(window, PassCues, hidden);
  if (GetActiveWindow() == window) FocusPage();
}

void FocusPage() {
  const bool isUsable = IsChild(app.mainWindow, lastFocus) && IsWindowVisible(lastFocus) && IsWindowEnabled(lastFocus);
  const HWND control = isUsable ? lastFocus : FirstControl();
  SetFocus(control ? control : app.mainWindow);
}

void OnActivate(WORD state) {
  const HWND focus = GetFocus();
  if (state == WA_INACTIVE && IsChild(app.mainWindow, focus)) lastFocus = focus;
}

void OnListFocus(HWND list) {
  const bool hidden = SendMessageW(list, WM_QUERYUISTATE, 0, 0) & UISF_HIDEFOCUS;
  constexpr WPARAM kBeforeFirst = static_cast<WPARAM>(-1);
  if (hidden || SendMessageW(list, LVM_GETNEXTITEM, kBeforeFirst, LVNI_FOCUSED) >= 0) return;
  LVITEMW row = {};
  row.stateMask = row.state = LVIS_FOCUSED;
  SendMessageW(list, LVM_SETITEMSTATE, 0, reinterpret_cast<LPARAM>(&row));
}
