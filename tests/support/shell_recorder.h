// Keeps what the program asks the shell to open or start, and starts nothing.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

struct ShellStart {
  std::wstring verb, file, parameters;  // empty where none was given
  int showCommand = 0;
  ULONG mask = 0;  // of ShellExecuteExW
};

class ShellRecorder {
 public:
  // With an `error` every start fails with it. Otherwise it succeeds, and ShellExecuteExW gives a handle to a process
  // that has ended already.
  explicit ShellRecorder(DWORD error = ERROR_SUCCESS);
  ~ShellRecorder();
  ShellRecorder(const ShellRecorder&) = delete;
  ShellRecorder& operator=(const ShellRecorder&) = delete;

  const std::vector<ShellStart>& Starts() const;
};
