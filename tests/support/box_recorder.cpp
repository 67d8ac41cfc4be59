#include "support/box_recorder.h"

#include <gtest/gtest.h>

#include <algorithm>

extern "C" decltype(&MessageBoxW) importedMessageBox __asm__("__imp__MessageBoxW@16");

BoxRecorder::BoxRecorder(std::deque<int> answers)
    : answers_(std::move(answers)), messageBox_(importedMessageBox, Answer) {
  current_ = this;
}

BoxRecorder::~BoxRecorder() {
  EXPECT_TRUE(answers_.empty()) << answers_.size() << " expected message boxes did not appear";
}

std::vector<RecordedBox> BoxRecorder::Boxes() const {
  const std::lock_guard lock(mutex_);
  return boxes_;
}

int WINAPI BoxRecorder::Answer(HWND owner, const wchar_t* text, const wchar_t* caption, UINT type) {
  const std::lock_guard lock(current_->mutex_);
  const std::vector<int> buttons =
      (type & MB_TYPEMASK) == MB_YESNO ? std::vector<int>{IDYES, IDNO} : std::vector<int>{IDOK};
  current_->boxes_.push_back({caption, text, buttons, owner});
  if (current_->answers_.empty()) {
    ADD_FAILURE() << "unexpected message box: " << testing::PrintToString(text);
    return buttons.back();
  }
  const int answer = current_->answers_.front();
  current_->answers_.pop_front();
  EXPECT_NE(std::ranges::find(buttons, answer), buttons.end()) << "no button for it: " << testing::PrintToString(text);
  return answer;
}
