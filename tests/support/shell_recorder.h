// Keeps what the program asks the shell to open or start, and starts nothing. At most one lives at a time.
#pragma once

#include <windows.h>
// Needs windows.h before it.
#include <shellapi.h>

#include <string>
#include <vector>

#include "support/replaced_import.h"

struct ShellStart {
  std::wstring verb, file, parameters;  // empty where none was given
};

class ShellRecorder {
 public:
  // With an `error` every start fails with it. Otherwise it succeeds, and ShellExecuteExW gives a handle to a process
  // that has ended already.
  explicit ShellRecorder(DWORD error = ERROR_SUCCESS);

  // To be read when nothing is being started.
  const std::vector<ShellStart>& Starts() const { return starts_; }

 private:
  static HINSTANCE WINAPI Start(HWND, const wchar_t* verb, const wchar_t* file, const wchar_t* parameters,
                                const wchar_t* folder, int showCommand);
  static BOOL WINAPI StartEx(SHELLEXECUTEINFOW* info);

  static inline ShellRecorder* current_ = nullptr;
  const DWORD error_;
  std::vector<ShellStart> starts_;
  ReplacedImport<decltype(&ShellExecuteW)> shellExecute_;
  ReplacedImport<decltype(&ShellExecuteExW)> shellExecuteEx_;
};
