#include "system/message_pump.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <atomic>
#include <thread>

#include "app/context.h"
#include "resource.h"
#include "support/test_window.h"

namespace {

INT_PTR CALLBACK CountCommands(HWND dialog, UINT message, WPARAM wParam, LPARAM) {
  if (message == WM_COMMAND && LOWORD(wParam) == IDCANCEL) SetWindowLongPtrW(dialog, DWLP_USER, 1);
  return FALSE;
}

// A dialog of the test's own thread.
class MessagePump : public testing::Test {
 protected:
  ~MessagePump() override { DestroyWindow(dialog_); }

  bool Answers() const {
    DWORD_PTR result = 0;
    return SendMessageTimeoutW(dialog_, WM_NULL, 0, 0, SMTO_NORMAL, 5000, &result) != 0;
  }

  const HWND dialog_ = CreateDialogParamW(app.instance, MAKEINTRESOURCEW(DIALOG_ABOUT), nullptr, CountCommands, 0);
};

TEST_F(MessagePump, ServesTheThreadsWindowsWhileItWorks) {
  const DWORD caller = GetCurrentThreadId();
  DWORD worker = 0;
  bool answered = false;
  std::wstring text;
  RunWhileServing(dialog_, [&] {
    worker = GetCurrentThreadId();
    answered = Answers();
    SetDlgItemTextW(dialog_, ABOUT_TITLE, L"from the worker");
    text = TextOf(GetDlgItem(dialog_, ABOUT_TITLE));
  });
  EXPECT_NE(worker, caller);
  EXPECT_TRUE(answered);
  EXPECT_EQ(text, L"from the worker");
}

TEST_F(MessagePump, HandsTheDialogItsKeys) {
  RunWhileServing(dialog_, [this] {
    PostMessageW(dialog_, WM_KEYDOWN, VK_ESCAPE, 1);
    const ULONGLONG end = GetTickCount64() + 10'000;
    while (GetWindowLongPtrW(dialog_, DWLP_USER) == 0 && GetTickCount64() < end) Sleep(5);
  });
  EXPECT_EQ(GetWindowLongPtrW(dialog_, DWLP_USER), 1);
}

}  // namespace
