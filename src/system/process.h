// Starting other programs, and opening web addresses.
#pragma once

#include <windows.h>

#include <cstdint>
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

// Starts a program without waiting for it, elevated through the consent prompt or normally. Returns 0, or the system
// error; a start whose elevation was refused is not tried without.
uint32_t StartProgram(bool elevated, const std::wstring& file, const std::wstring& parameters);

// Starts a program elevated in this folder, where it looks for what it starts by a bare name, and waits for its end,
// whatever that is, serving the windows of the calling thread. False when it could not be started.
bool RunElevated(const std::wstring& file, const std::wstring& parameters, const std::wstring& folder);

// Opens a web address in the user's browser; where that fails, nothing happens.
void OpenAddress(const std::wstring& address);
