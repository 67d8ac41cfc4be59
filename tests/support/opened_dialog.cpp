#include "support/opened_dialog.h"

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <thread>

namespace {

bool WaitFor(const std::function<bool()>& condition) {
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
  while (!condition()) {
    if (std::chrono::steady_clock::now() > end) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  return true;
}

HWND VisiblePopup(HWND owner) {
  const HWND popup = GetLastActivePopup(owner);
  return popup != owner && IsWindowVisible(popup) ? popup : nullptr;
}

HWND FocusOf(DWORD thread) {
  GUITHREADINFO info{};
  info.cbSize = sizeof info;
  return GetGUIThreadInfo(thread, &info) ? info.hwndFocus : nullptr;
}

}  // namespace

OpenedDialog::OpenedDialog(const TestWindow& owner, int command) : owner_(owner) {
  PostMessageW(owner.Window(), WM_COMMAND, static_cast<WPARAM>(command), 0);
  EXPECT_TRUE(WaitFor([this] { return (window_ = VisiblePopup(owner_.Window())) != nullptr; })) << "no dialog opened";
  // The dialog takes its first messages, and with them the focus.
  Settle();
}

OpenedDialog::~OpenedDialog() {
  if (!IsWindow(window_)) return;
  PostMessageW(window_, WM_COMMAND, IDCANCEL, 0);
  EXPECT_TRUE(WaitUntilClosed());
}

void OpenedDialog::Type(int id, const std::wstring& text) const {
  SendMessageW(Item(id), EM_SETSEL, 0, -1);
  SendMessageW(Item(id), EM_REPLACESEL, FALSE, reinterpret_cast<LPARAM>(text.c_str()));
}

void OpenedDialog::Click(int id) const { SendMessageW(Item(id), BM_CLICK, 0, 0); }

void OpenedDialog::PressKey(WPARAM key) const {
  const HWND focus = FocusOf(owner_.ThreadId());
  ASSERT_TRUE(focus);
  PostMessageW(focus, WM_KEYDOWN, key, 1);
  PostMessageW(focus, WM_KEYUP, key, static_cast<LPARAM>(0xC0000001));
  Settle();
}

int OpenedDialog::Focus() const {
  Settle();
  return GetDlgCtrlID(FocusOf(owner_.ThreadId()));
}

bool OpenedDialog::WaitUntilClosed() const {
  return WaitFor([this] { return !IsWindow(window_); });
}
