// Starting other programs, opening web addresses, and repairing the permissions of the application-data folders.
#pragma once

#include <windows.h>

#include <string>

// Programs inherit the error mode of the one that starts them, and with ours would hide that a library of theirs is
// missing. While this lives, they get the system's.
class DefaultErrorMode {
 public:
  DefaultErrorMode() : own_(SetErrorMode(0)) {}
  ~DefaultErrorMode() { SetErrorMode(own_); }
  DefaultErrorMode(const DefaultErrorMode&) = delete;
  DefaultErrorMode& operator=(const DefaultErrorMode&) = delete;

 private:
  const UINT own_;
};

// Starts a program without waiting for it, elevated through the consent prompt or normally. True when it was started;
// otherwise, with `reportFailure`, a message box without owner has told why.
bool RunProcess(bool elevated, bool reportFailure, const std::wstring& file, const std::wstring& parameters);

// Opens a web address in the user's browser; where that fails, nothing happens.
void OpenAddress(const std::wstring& address);

// Grants the user and the built-in Users group full control of the application-data folders, with an elevated icacls,
// and waits for its end. False only when it could not be started.
bool RepairPermissions();

// The command line that RepairPermissions gives to the command interpreter.
std::wstring BuildRepairParameters(const std::wstring& appDataPath, const std::wstring& userName);
