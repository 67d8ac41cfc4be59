// A dialog that a menu command of the program's main window opens, operated as by its user.
#pragma once

#include <windows.h>

#include <string>

#include "support/test_window.h"

class OpenedDialog {
 public:
  // Chooses the command and waits for the dialog; fails the test when none opens.
  OpenedDialog(const TestWindow& owner, int command);
  // Closes it if it is still open.
  ~OpenedDialog();
  OpenedDialog(const OpenedDialog&) = delete;
  OpenedDialog& operator=(const OpenedDialog&) = delete;

  HWND Window() const { return window_; }
  HWND Item(int id) const { return GetDlgItem(window_, id); }
  std::wstring Text(int id) const { return TextOf(Item(id)); }
  // Replaces the text of an edit.
  void Type(int id, const std::wstring& text) const;
  void Click(int id) const;

  // Presses and releases a key in the control that has the focus.
  void PressKey(WPARAM key) const;
  // The identifier of that control.
  int Focus() const;

  // Returns when all that was pressed so far has been handled.
  void Settle() const { owner_.Settle(); }
  bool WaitUntilClosed() const;

 private:
  const TestWindow& owner_;
  HWND window_ = nullptr;
};
