// Keeps what the program asks the shell to open or start, and starts nothing. At most one lives at a time.
#pragma once

#include <windows.h>
// Needs windows.h before it.
#include <shellapi.h>

#include <string>
#include <vector>

#include "support/replaced_import.h"

extern "C" decltype(&ShellExecuteExW) importedShellExecute __asm__("__imp__ShellExecuteExW@4");

struct RecordedStart {
  std::wstring verb, file, parameters, folder;  // empty where none was given
  bool ownerLives = false;                      // the window that a question would stand before is shown
  DWORD flags = 0;
};

class ShellRecorder {
 public:
  // With an `error` every start fails with it.
  explicit ShellRecorder(DWORD error = ERROR_SUCCESS) : error_(error) { current_ = this; }

  // To be read when nothing is being started.
  const std::vector<RecordedStart>& Starts() const { return starts_; }

 private:
  static BOOL WINAPI Start(SHELLEXECUTEINFOW* info) {
    const auto given = [](const wchar_t* text) { return std::wstring(text ? text : L""); };
    current_->starts_.push_back({given(info->lpVerb), given(info->lpFile), given(info->lpParameters),
                                 given(info->lpDirectory), IsWindowVisible(info->hwnd) != FALSE, info->fMask});
    SetLastError(current_->error_);
    return current_->error_ == ERROR_SUCCESS;
  }

  static inline ShellRecorder* current_ = nullptr;
  const DWORD error_;
  std::vector<RecordedStart> starts_;
  const ReplacedImport<decltype(&ShellExecuteExW)> shellExecute_{importedShellExecute, Start};
};
