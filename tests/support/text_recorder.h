// Keeps every text that a control of the test window is given, while it lives.
#pragma once

#include <windows.h>

#include <functional>
#include <string>
#include <vector>

#include "support/test_window.h"

class TextRecorder {
 public:
  // `onText` is called on the UI thread with each text, before the one who sets it goes on.
  TextRecorder(const TestWindow& window, const Control& control,
               std::function<void(const std::wstring& text)> onText = {});
  ~TextRecorder();
  TextRecorder(const TextRecorder&) = delete;
  TextRecorder& operator=(const TextRecorder&) = delete;

  // To be read by the thread that sets the texts.
  const std::vector<std::wstring>& Texts() const { return texts_; }

 private:
  static LRESULT CALLBACK Procedure(HWND control, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR id,
                                    DWORD_PTR self);

  const TestWindow& window_;
  const HWND control_;
  const std::function<void(const std::wstring&)> onText_;
  std::vector<std::wstring> texts_;
};
