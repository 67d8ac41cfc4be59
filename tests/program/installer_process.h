// The shipping program as a process of its own.
#pragma once

#include <windows.h>

#include <chrono>
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
  // Its program file.
  std::wstring File() const;
  bool Runs() const;
  // Ends it by force, as a power cut would.
  void Kill();
  // Its exit code; nothing when it still runs after the limit.
  std::optional<DWORD> WaitForExit(std::chrono::milliseconds limit = std::chrono::seconds(20)) const;

 private:
  KernelHandle process_;
  DWORD id_ = 0;
};
