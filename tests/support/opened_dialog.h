// A dialog that a menu command of the program's main window opens, operated as by its user.
#pragma once

#include "support/test_window.h"

class OpenedDialog {
 public:
  // Chooses the command and waits for the dialog; fails the test when none opens.
  OpenedDialog(const TestWindow& owner, int command) {
    PostMessageW(owner.Window(), WM_COMMAND, static_cast<WPARAM>(command), 0);
    EXPECT_TRUE(WaitUntil([&] {
      window_ = GetLastActivePopup(owner.Window());
      return window_ != owner.Window() && IsWindowVisible(window_);
    }));
  }
  // Closes it if it is still open.
  ~OpenedDialog() {
    PostMessageW(window_, WM_COMMAND, IDCANCEL, 0);
    EXPECT_TRUE(WaitUntilClosed());
  }

  HWND Window() const { return window_; }
  HWND Item(int id) const { return GetDlgItem(window_, id); }
  std::wstring Text(int id) const { return TextOf(Item(id)); }
  void Click(int id) const { SendMessageW(Item(id), BM_CLICK, 0, 0); }
  bool WaitUntilClosed() const {
    return WaitUntil([this] { return !IsWindow(window_); });
  }

 private:
  HWND window_ = nullptr;
};
