// Answers the system's pickers for files and folders: while it lives, none is shown. At most one lives at a time.
#pragma once

#include <gtest/gtest.h>
#include <windows.h>
// Both need windows.h before them.
#include <commdlg.h>
#include <objbase.h>

#include <deque>
#include <string>

#include "support/replaced_import.h"

extern "C" decltype(&GetOpenFileNameW) importedGetOpenFileName __asm__("__imp__GetOpenFileNameW@4");
extern "C" decltype(&CoCreateInstance) importedCoCreateInstance __asm__("__imp__CoCreateInstance@20");

class PickerDriver {
 public:
  // What is picked, in order; an empty text cancels. Folders can't be picked: their picker can't even be created.
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
    return NextChoice().copy(dialog->lpstrFile, dialog->nMaxFile) != 0;
  }
  static HRESULT WINAPI PickNoFolder(REFCLSID, IUnknown*, DWORD, REFIID, void**) {
    EXPECT_EQ(NextChoice(), L"");
    return E_FAIL;
  }

  static inline std::deque<std::wstring> choices_;
  const ReplacedImport<decltype(&GetOpenFileNameW)> getOpenFileName_{importedGetOpenFileName, PickFile};
  const ReplacedImport<decltype(&CoCreateInstance)> createInstance_{importedCoCreateInstance, PickNoFolder};
};
