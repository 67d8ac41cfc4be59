// Keeps what the program asks the shell to open or start, and starts nothing. At most one lives at a time.
#pragma once

#include <windows.h>
// Needs windows.h before it.
#include <shellapi.h>

#include <string>
#include <vector>

#include "support/replaced_import.h"

extern "C" decltype(&ShellExecuteW) importedShellExecute __asm__("__imp__ShellExecuteW@24");

struct ShellStart {
  std::wstring verb, parameters;  // empty where none was given
};

class ShellRecorder {
 public:
  // With an `error` every start fails with it.
  explicit ShellRecorder(DWORD error = ERROR_SUCCESS) : error_(error) { current_ = this; }

  // To be read when nothing is being started.
  const std::vector<ShellStart>& Starts() const { return starts_; }

 private:
  static HINSTANCE WINAPI Start(HWND, const wchar_t* verb, const wchar_t*, const wchar_t* parameters, const wchar_t*,
                                int) {
    const auto given = [](const wchar_t* text) { return std::wstring(text ? text : L""); };
    current_->starts_.push_back({given(verb), given(parameters)});
    SetLastError(current_->error_);
    return reinterpret_cast<HINSTANCE>(INT_PTR{current_->error_ == ERROR_SUCCESS ? 33 : SE_ERR_ACCESSDENIED});
  }

  static inline ShellRecorder* current_ = nullptr;
  const DWORD error_;
  std::vector<ShellStart> starts_;
  const ReplacedImport<decltype(&ShellExecuteW)> shellExecute_{importedShellExecute, Start};
};
