// Answers the system's picker for files: while it lives, none is shown. At most one lives at a time.
#pragma once

#include <gtest/gtest.h>
#include <windows.h>
// Needs windows.h before it.
#include <commdlg.h>

#include <deque>
#include <string>

#include "support/replaced_import.h"

extern "C" decltype(&GetOpenFileNameW) importedGetOpenFileName __asm__("__imp__GetOpenFileNameW@4");

class PickerDriver {
 public:
  // What is picked, in order; an empty text cancels.
  explicit PickerDriver(std::deque<std::wstring> choices) { choices_ = std::move(choices); }
  // Fails the test when a choice was not asked for.
  ~PickerDriver() { EXPECT_TRUE(choices_.empty()) << choices_.size() << " expected pickers did not appear"; }

 private:
  static std::wstring NextChoice() {
    const std::wstring choice = choices_.at(0);
    choices_.pop_front();
    return choice;
  }
  static BOOL WINAPI PickFile(OPENFILENAMEW* dialog) {
    const size_t length = NextChoice().copy(dialog->lpstrFile, dialog->nMaxFile - 1);
    dialog->lpstrFile[length] = L'\0';
    return length != 0;
  }

  static inline std::deque<std::wstring> choices_;
  const ReplacedImport<decltype(&GetOpenFileNameW)> getOpenFileName_{importedGetOpenFileName, PickFile};
};
