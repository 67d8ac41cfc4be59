// A program that does nothing but show a window with as many controls as the installer's first page, and twenty rows in
// its list: how soon that can be there at all.
#include <windows.h>
// commctrl.h needs windows.h before it.
#include <commctrl.h>

namespace {

constexpr wchar_t kClassName[] = L"Zendora_Installer";  // as bench looks for it
constexpr int kRows = 20;

LRESULT CALLBACK WindowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_DESTROY) PostQuitMessage(0);
  return DefWindowProcW(window, message, wParam, lParam);
}

HWND AddControl(HWND parent, const wchar_t* windowClass, DWORD style, int x, int y, int width, int height) {
  return CreateWindowExW(0, windowClass, L"Text", WS_CHILD | WS_VISIBLE | style, x, y, width, height, parent, nullptr,
                         nullptr, nullptr);
}

void AddControls(HWND window) {
  AddControl(window, WC_STATICW, 0, 10, 10, 565, 16);
  AddControl(window, WC_EDITW, WS_BORDER, 10, 31, 460, 21);
  AddControl(window, WC_BUTTONW, WS_TABSTOP, 475, 30, 100, 23);
  AddControl(window, WC_STATICW, 0, 10, 59, 565, 16);
  const HWND list = AddControl(window, WC_LISTVIEWW, WS_BORDER | LVS_REPORT | LVS_NOCOLUMNHEADER, 10, 80, 565, 275);
  AddControl(window, WC_STATICW, 0, 10, 360, 565, 16);
  AddControl(window, WC_BUTTONW, WS_TABSTOP, 242, 386, 100, 24);
  LVCOLUMNW column = {};
  column.mask = LVCF_WIDTH;
  column.cx = 550;
  SendMessageW(list, LVM_INSERTCOLUMNW, 0, reinterpret_cast<LPARAM>(&column));
  wchar_t text[] = L"Package";
  LVITEMW row = {};
  row.mask = LVIF_TEXT;
  row.pszText = text;
  for (; row.iItem < kRows; ++row.iItem) SendMessageW(list, LVM_INSERTITEMW, 0, reinterpret_cast<LPARAM>(&row));
}

}  // namespace

int WINAPI wWinMain(HINSTANCE instance, HINSTANCE, wchar_t*, int showCommand) {
  InitCommonControls();
  WNDCLASSW description = {};
  description.lpfnWndProc = WindowProc;
  description.hInstance = instance;
  description.hbrBackground = reinterpret_cast<HBRUSH>(COLOR_WINDOW + 1);
  description.lpszClassName = kClassName;
  RegisterClassW(&description);
  const HWND window = CreateWindowExW(0, kClassName, L"Empty", WS_CAPTION | WS_SYSMENU | WS_MINIMIZEBOX, 100, 100, 600,
                                      480, nullptr, nullptr, instance, nullptr);
  AddControls(window);
  ShowWindow(window, showCommand);
  UpdateWindow(window);
  for (MSG message; GetMessageW(&message, nullptr, 0, 0) > 0;) {
    TranslateMessage(&message);
    DispatchMessageW(&message);
  }
  return 0;
}
