// Answers the system's pickers for files and folders: while it lives, a thread of its own waits for them, types a path
// into each and presses its button.
#pragma once

#include <gtest/gtest.h>
#include <windows.h>

#include <atomic>
#include <deque>
#include <string>
#include <thread>

class PickerDriver {
 public:
  // What to type, in order. An empty text cancels, and so does a picker beyond them, which fails the test.
  explicit PickerDriver(std::deque<std::wstring> choices) : choices_(std::move(choices)) {}
  // Fails the test when a choice was not asked for.
  ~PickerDriver() {
    stop_ = true;
    thread_.join();
    EXPECT_TRUE(choices_.empty()) << choices_.size() << " expected pickers did not appear";
  }

 private:
  static BOOL CALLBACK FindNameField(HWND child, LPARAM found) {
    wchar_t name[8] = L"";
    GetClassNameW(child, name, ARRAYSIZE(name));
    if (IsWindowVisible(child) && lstrcmpiW(name, L"Edit") == 0) *reinterpret_cast<HWND*>(found) = child;
    return TRUE;
  }

  void AnswerPickers() {
    for (; !stop_; Sleep(10)) {
      const HWND picker = FindWindowW(L"#32770", nullptr);
      HWND name = nullptr;
      if (picker) EnumChildWindows(picker, FindNameField, reinterpret_cast<LPARAM>(&name));
      if (!name) continue;
      EXPECT_FALSE(choices_.empty()) << "unexpected picker";
      const std::wstring choice = choices_.empty() ? L"" : choices_.front();
      if (!choices_.empty()) choices_.pop_front();
      SendMessageW(name, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(choice.c_str()));
      PostMessageW(picker, WM_COMMAND, choice.empty() ? IDCANCEL : IDOK, 0);
      while (IsWindow(picker) && !stop_) Sleep(10);
    }
  }

  std::deque<std::wstring> choices_;
  std::atomic<bool> stop_ = false;
  std::thread thread_{&PickerDriver::AnswerPickers, this};
};
