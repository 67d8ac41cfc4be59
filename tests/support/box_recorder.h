// Answers message boxes and keeps what they said: while it lives, none is shown. At most one lives at a time.
#pragma once

#include <gtest/gtest.h>
#include <windows.h>

#include <algorithm>
#include <deque>
#include <string>
#include <vector>

#include "support/replaced_import.h"

extern "C" decltype(&MessageBoxW) importedMessageBox __asm__("__imp__MessageBoxW@16");

struct RecordedBox {
  std::wstring caption, text;
  HWND owner = nullptr;
  UINT type = MB_OK;  // its buttons and icon
};

class BoxRecorder {
 public:
  // The answers to give, in order. A box beyond them fails the test and is answered with its last button.
  explicit BoxRecorder(std::deque<int> answers) : answers_(std::move(answers)) { current_ = this; }
  // Fails the test when an answer was not asked for.
  ~BoxRecorder() { EXPECT_TRUE(answers_.empty()) << answers_.size() << " expected message boxes did not appear"; }

  // To be read when no box can appear.
  const std::vector<RecordedBox>& Boxes() const { return boxes_; }

 private:
  static int WINAPI Answer(HWND owner, const wchar_t* text, const wchar_t* caption, UINT type) {
    const bool isQuestion = (type & MB_TYPEMASK) == MB_YESNO;
    const std::vector<int> buttons = isQuestion ? std::vector<int>{IDYES, IDNO} : std::vector<int>{IDOK};
    current_->boxes_.push_back({caption, text, owner, type});
    std::deque<int>& answers = current_->answers_;
    EXPECT_FALSE(answers.empty()) << "unexpected message box: " << testing::PrintToString(text);
    if (answers.empty()) return buttons.back();
    const int answer = answers.front();
    answers.pop_front();
    EXPECT_TRUE(std::ranges::count(buttons, answer)) << "no button for it: " << testing::PrintToString(text);
    return answer;
  }

  static inline BoxRecorder* current_ = nullptr;
  std::deque<int> answers_;
  std::vector<RecordedBox> boxes_;
  const ReplacedImport<decltype(&MessageBoxW)> messageBox_{importedMessageBox, Answer};
};
