#include "ui/kept_view.h"

namespace {

// The line behind the last line's end is empty and need not be seen.
bool IsEndShown(HWND edit) {
  SCROLLINFO scroll = {};
  scroll.cbSize = sizeof scroll;
  scroll.fMask = SIF_RANGE | SIF_PAGE | SIF_POS;
  return !GetScrollInfo(edit, SB_VERT, &scroll) || scroll.nPos + static_cast<int>(scroll.nPage) >= scroll.nMax;
}

LRESULT FirstLine(HWND edit) { return SendMessageW(edit, EM_GETFIRSTVISIBLELINE, 0, 0); }

}  // namespace

KeptView::KeptView(HWND edit) : edit_(edit), endShown_(IsEndShown(edit)), firstLine_(FirstLine(edit)) {
  SendMessageW(edit, EM_GETSEL, reinterpret_cast<WPARAM>(&selectionStart_), reinterpret_cast<LPARAM>(&selectionEnd_));
}

KeptView::~KeptView() {
  SendMessageW(edit_, EM_SETSEL, selectionStart_, static_cast<LPARAM>(selectionEnd_));
  if (endShown_) {
    SendMessageW(edit_, WM_VSCROLL, SB_BOTTOM, 0);
  } else {
    SendMessageW(edit_, EM_LINESCROLL, 0, firstLine_ - FirstLine(edit_));
  }
}
