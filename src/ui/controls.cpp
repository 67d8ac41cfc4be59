#include "ui/controls.h"

#include <commctrl.h>

#include <algorithm>

#include "ui/mailbox.h"
#include "ui/scale.h"

FontHandle ChangeFontHeight(HWND window, int height) {
  auto current = reinterpret_cast<HFONT>(SendMessageW(window, WM_GETFONT, 0, 0));
  if (!current) current = static_cast<HFONT>(GetStockObject(DEFAULT_GUI_FONT));
  LOGFONTW description{};
  GetObjectW(current, sizeof(description), &description);
  description.lfHeight = Scaled(height);
  FontHandle font(CreateFontIndirectW(&description));
  SendMessageW(window, WM_SETFONT, reinterpret_cast<WPARAM>(font.Get()), TRUE);
  return font;
}

void PlaceWindow(HWND window, const Place& place) {
  SetWindowPos(window, nullptr, Scaled(place.x), Scaled(place.y), Scaled(place.width), Scaled(place.height),
               SWP_NOZORDER | SWP_NOACTIVATE);
}

Control::Control(HWND parent, const wchar_t* windowClass, const std::wstring& text, DWORD style, int id, bool stockFont)
    : window_(CreateWindowExW(0, windowClass, text.c_str(), WS_CHILD | WS_VISIBLE | style, 0, 0, 0, 0, parent,
                              reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), nullptr, nullptr)) {
  if (stockFont) SendMessageW(window_, WM_SETFONT, reinterpret_cast<WPARAM>(GetStockObject(DEFAULT_GUI_FONT)), FALSE);
}

void Control::SetPlace(const Place& place) const { PlaceWindow(window_, place); }

void Control::SetText(const std::wstring& text) const { pageNotes.LeaveText(window_, text); }

void Control::SetFontHeight(int height) { font_ = ChangeFontHeight(window_, height); }

Label::Label(HWND parent, const std::wstring& text, DWORD staticStyle)
    : Control(parent, L"static", text, staticStyle, 0, true) {}

PushButton::PushButton(HWND parent, const std::wstring& text) : Control(parent, L"Button", text, WS_TABSTOP, 0, true) {}

void PushButton::PlaceAt(int x, int y, int height) {
  constexpr int kStockFontHeight = -11;  // of DEFAULT_GUI_FONT
  SetPlace({x, y, 100, height});
  SetFontHeight(kStockFontHeight);
}

CheckBox::CheckBox(HWND parent, const std::wstring& text, bool checked)
    : Control(parent, L"Button", text, WS_TABSTOP | BS_AUTOCHECKBOX, 0, true) {
  if (checked) SendMessageW(Window(), BM_SETCHECK, BST_CHECKED, 0);
}

bool CheckBox::IsChecked() const { return SendMessageW(Window(), BM_GETCHECK, 0, 0) == BST_CHECKED; }

TextEdit::TextEdit(HWND parent, int id, const std::wstring& text, DWORD editStyle)
    : Control(parent, L"Edit", text, WS_BORDER | WS_TABSTOP | editStyle, id, true) {}

void TextEdit::Lock() {
  locked_ = true;
  SetWindowLongPtrW(Window(), GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
  previousProc_ =
      reinterpret_cast<WNDPROC>(SetWindowLongPtrW(Window(), GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(LockedProc)));
}

LRESULT CALLBACK TextEdit::LockedProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  const auto edit = reinterpret_cast<const TextEdit*>(GetWindowLongPtrW(window, GWLP_USERDATA));
  switch (message) {
    case WM_DESTROY:
      SetWindowLongPtrW(window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(edit->previousProc_));
      return 0;
    case WM_KEYDOWN:
    case WM_CHAR:
      if (edit->locked_) return 0;
      break;
    case WM_PASTE:
      return 0;
    default:
      break;
  }
  return CallWindowProcW(edit->previousProc_, window, message, wParam, lParam);
}

ProgressBar::ProgressBar(HWND parent) : Control(parent, PROGRESS_CLASSW, {}, WS_TABSTOP, 0, false) {
  SendMessageW(Window(), PBM_SETRANGE, 0, MAKELPARAM(0, kProgressRange));
}

void ProgressBar::PlaceAt(int y) const { SetPlace({10, y, 565, 18}); }

void ProgressBar::SetPosition(int position) {
  if (position == lastPosition_) return;
  lastPosition_ = position;
  pageNotes.LeavePosition(Window(), position);
}

int ProgressPosition(uint64_t done, uint64_t total) {
  if (total == 0) return 0;
  if (done >= total) return kProgressRange;
  // Beyond any real size the product would not fit; there the divisor's last digits don't matter.
  if (done > UINT64_MAX / kProgressRange) return static_cast<int>(done / (total / kProgressRange + 1));
  return static_cast<int>(done * kProgressRange / total);
}
