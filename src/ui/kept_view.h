// What the user sees of a log stays before his eyes while the log grows.
#pragma once

#include <windows.h>

// While it lives, text that is appended to a multi-line edit moves neither the user's selection nor what is shown; only
// a log whose end was to be seen is moved on to its new end. The edit's own thread, or one that may wait for it.
class KeptView {
 public:
  explicit KeptView(HWND edit);
  ~KeptView();
  KeptView(const KeptView&) = delete;
  KeptView& operator=(const KeptView&) = delete;

 private:
  HWND edit_;
  DWORD selectionStart_ = 0, selectionEnd_ = 0;
  bool endShown_;
  LRESULT firstLine_;
};
