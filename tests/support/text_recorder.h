// Keeps every text that a control of the test window is given, while it lives.
#pragma once

#include <windows.h>
// Needs windows.h before it.
#include <commctrl.h>

#include "support/test_window.h"

class TextRecorder {
 public:
  // `onText` is called on the UI thread with each text, before the one who sets it goes on.
  TextRecorder(
      const TestWindow& window, const Control& control,
      std::function<void(const std::wstring&)> onText = [](const std::wstring&) {})
      : window_(window), control_(control.Window()), onText_(std::move(onText)) {
    window_.Run([this] { SetWindowSubclass(control_, Record, 1, reinterpret_cast<DWORD_PTR>(this)); });
  }
  ~TextRecorder() {
    window_.Run([this] { RemoveWindowSubclass(control_, Record, 1); });
  }

  // To be read by the thread that sets the texts.
  const std::vector<std::wstring>& Texts() const { return texts_; }

 private:
  static LRESULT CALLBACK Record(HWND control, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR, DWORD_PTR self) {
    auto& recorder = *reinterpret_cast<TextRecorder*>(self);
    if (message == WM_SETTEXT) {
      recorder.onText_(recorder.texts_.emplace_back(reinterpret_cast<const wchar_t*>(lParam)));
    }
    return DefSubclassProc(control, message, wParam, lParam);
  }

  const TestWindow& window_;
  const HWND control_;
  const std::function<void(const std::wstring&)> onText_;
  std::vector<std::wstring> texts_;
};
