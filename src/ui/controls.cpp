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

std::wstring WindowText(HWND window) {
  std::wstring text(static_cast<size_t>(GetWindowTextLengthW(window)) + 1, L'\0');
  text.resize(static_cast<size_t>(GetWindowTextW(window, text.data(), static_cast<int>(text.size()))));
  return text;
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
    : Control(parent, L"static", text, SS_NOPREFIX | staticStyle, 0, true) {}

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

namespace {

// A locked text has no caret to move: the keys scroll.
void OnLockedKey(HWND edit, WPARAM key) {
  constexpr struct {
    WPARAM key;
    WPARAM scroll;
  } kScrollKeys[] = {{VK_UP, SB_LINEUP},     {VK_DOWN, SB_LINEDOWN}, {VK_PRIOR, SB_PAGEUP},
                     {VK_NEXT, SB_PAGEDOWN}, {VK_HOME, SB_TOP},      {VK_END, SB_BOTTOM}};
  for (const auto& [scrollKey, scroll] : kScrollKeys) {
    if (key == scrollKey) SendMessageW(edit, WM_VSCROLL, scroll, 0);
  }
  if (GetKeyState(VK_CONTROL) >= 0) return;
  if (key == L'A') SendMessageW(edit, EM_SETSEL, 0, -1);
  if (key == L'C' || key == VK_INSERT) SendMessageW(edit, WM_COPY, 0, 0);
}

}  // namespace

// The menu leaves out what would change a text that is read-only.
LRESULT TextEdit::ShowContextMenu(WPARAM wParam, LPARAM lParam) const {
  CallWindowProcW(previousProc_, Window(), EM_SETREADONLY, TRUE, 0);
  const LRESULT result = CallWindowProcW(previousProc_, Window(), WM_CONTEXTMENU, wParam, lParam);
  CallWindowProcW(previousProc_, Window(), EM_SETREADONLY, FALSE, 0);
  return result;
}

LRESULT CALLBACK TextEdit::LockedProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  const auto edit = reinterpret_cast<const TextEdit*>(GetWindowLongPtrW(window, GWLP_USERDATA));
  switch (message) {
    case WM_DESTROY:
      SetWindowLongPtrW(window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(edit->previousProc_));
      return 0;
    case WM_KEYDOWN:
      if (!edit->locked_) break;
      OnLockedKey(window, wParam);
      return 0;
    case WM_CHAR:
    case WM_CUT:
    case WM_CLEAR:
    case WM_UNDO:
    case EM_UNDO:
      if (edit->locked_) return 0;
      break;
    case WM_PASTE:
      return 0;
    case WM_GETDLGCODE:
      return DLGC_WANTARROWS;  // Tab leads on, and coming here selects nothing
    case WM_CONTEXTMENU:
      return edit->ShowContextMenu(wParam, lParam);
    default:
      break;
  }
  return CallWindowProcW(edit->previousProc_, window, message, wParam, lParam);
}

ProgressBar::ProgressBar(HWND parent) : Control(parent, PROGRESS_CLASSW, {}, 0, 0, false) {
  SendMessageW(Window(), PBM_SETRANGE, 0, MAKELPARAM(0, kProgressRange));
}

void ProgressBar::PlaceAt(int y) const { SetPlace({10, y, 565, 18}); }

bool ProgressBar::SetPosition(int position) {
  if (position == lastPosition_) return false;
  lastPosition_ = position;
  pageNotes.LeavePosition(Window(), position);
  return true;
}

int ProgressPosition(uint64_t done, uint64_t total) {
  if (total == 0) return 0;
  if (done >= total) return kProgressRange;
  // Beyond any real size the product would not fit; there the divisor's last digits don't matter.
  if (done > UINT64_MAX / kProgressRange) return static_cast<int>(done / (total / kProgressRange + 1));
  return static_cast<int>(done * kProgressRange / total);
}
