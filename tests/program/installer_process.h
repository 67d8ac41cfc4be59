// The shipping program as a process of its own.
#pragma once

#include <windows.h>

#include <optional>
#include <string>

#include "system/handles.h"

class InstallerProcess {
 public:
  // Starts a program file, by default the one that lies beside the test program; fails the test when it can't be
  // started.
  explicit InstallerProcess(const std::wstring& commandLine = L"", const std::wstring& program = ProgramPath());
  // Takes over a process that somebody else has started.
  explicit InstallerProcess(DWORD id);
  // Ends it by force if it still runs.
  ~InstallerProcess();
  InstallerProcess(const InstallerProcess&) = delete;
  InstallerProcess& operator=(const InstallerProcess&) = delete;

  // The program files that lie beside the test program: the shipping one, and the one that waits for a server no longer
  // than a test may (tests/impatient).
  static std::wstring ProgramPath();
  static std::wstring ImpatientProgramPath();

  DWORD Id() const { return id_; }
  bool Runs() const;
  // Its exit code; nothing when it still runs after twenty seconds.
  std::optional<DWORD> WaitForExit() const;

 private:
  KernelHandle process_;
  DWORD id_ = 0;
};
