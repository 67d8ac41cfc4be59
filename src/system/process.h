// Starting other programs, and opening web addresses.
#pragma once

#include <windows.h>

#include <cstdint>
#include <string>

// Programs inherit the error mode of the one that starts them, and with ours would hide that a library of theirs is
// missing. While one of these lives, they get the system's. The mode belongs to the whole process, and two threads may
// start something at once: the last one brings ours back.
class DefaultErrorMode {
 public:
  DefaultErrorMode();
  ~DefaultErrorMode();
  DefaultErrorMode(const DefaultErrorMode&) = delete;
  DefaultErrorMode& operator=(const DefaultErrorMode&) = delete;
};

// What the shell is to open or start. Without a folder a program starts in ours.
struct ShellStart {
  const wchar_t* verb = L"open";  // null: the default of its kind
  std::wstring file, parameters = {}, folder = {};
  HWND owner = nullptr;  // of what the shell asks the user
  int show = SW_SHOWNORMAL;
};

// Returns 0 or the system error. All that the shell has to do is done then: this process may end at once.
uint32_t StartThroughShell(const ShellStart& start);

// Starts a program in its own folder without waiting for it, normally or elevated through the consent prompt, which
// `owner` brings to the front. Returns 0, or the system error; a start whose elevation was refused is not tried
// without.
uint32_t StartProgram(bool elevated, const std::wstring& file, const std::wstring& parameters, HWND owner);

// Starts a program elevated in its own folder, where it looks for what it starts by a bare name, and waits for its end,
// whatever that is, serving the windows of the calling thread. False when it could not be started.
bool RunElevated(const std::wstring& file, const std::wstring& parameters, HWND owner);

// Opens a web address in the user's browser; where that fails, nothing happens.
void OpenAddress(const std::wstring& address);
