// Answers message boxes and keeps what they said: while it lives, none is shown. At most one lives at a time.
#pragma once

#include <windows.h>

#include <deque>
#include <mutex>
#include <string>
#include <vector>

#include "support/replaced_import.h"

struct RecordedBox {
  std::wstring caption, text;
  std::vector<int> buttons;  // their identifiers: IDOK, or IDYES and IDNO
  HWND owner = nullptr;
};

class BoxRecorder {
 public:
  // The answers to give, in order. A box beyond them fails the test and is answered with its last button.
  explicit BoxRecorder(std::deque<int> answers);
  // Fails the test when an answer was not asked for.
  ~BoxRecorder();

  std::vector<RecordedBox> Boxes() const;

 private:
  static int WINAPI Answer(HWND owner, const wchar_t* text, const wchar_t* caption, UINT type);

  static inline BoxRecorder* current_ = nullptr;
  mutable std::mutex mutex_;
  std::deque<int> answers_;
  std::vector<RecordedBox> boxes_;
  ReplacedImport<decltype(&MessageBoxW)> messageBox_;
};
