#include "app/single_instance.h"

#include <shellapi.h>

#include <utility>

#include "app/context.h"
#include "app/localization.h"
#include "system/files.h"

namespace {

constexpr int kTries = 20;
constexpr uint32_t kPauseMs = 50;

// False also when the mutex can't be opened at all: it then belongs to an instance with other rights.
bool TakeMutex() {
  KernelHandle mutex(CreateMutexW(nullptr, FALSE, kApplicationId));
  const DWORD error = GetLastError();
  if (!mutex || error == ERROR_ALREADY_EXISTS) return false;
  app.instanceMutex = std::move(mutex);
  return true;
}

// A command line that doesn't fit the buffer is not forwarded: part of it could name other packages than it does.
void ForwardCommandLine(HWND window, const std::wstring& commandLine) {
  if (commandLine.size() >= kForwardBufferLength) return;
  wchar_t buffer[kForwardBufferLength] = {};
  commandLine.copy(buffer, kForwardBufferLength - 1);
  COPYDATASTRUCT data = {commandLine.size(), sizeof buffer, buffer};
  SendMessageW(window, WM_COPYDATA, kCopyDataCommandLine, reinterpret_cast<LPARAM>(&data));
}

bool WaitForMutex() {
  for (int i = 0; i < kTries; ++i) {
    if (TakeMutex()) return true;
    app.startupWaitMs += kPauseMs;
    Sleep(kPauseMs);
  }
  return false;
}

// The settings are not read: they belong to the instance that runs.
void TellOtherInstanceStays() {
  ResolveUiLanguage(0);
  SetThreadLanguage(app.uiLanguage);
  MessageBoxW(nullptr, LoadLocalizedString(STR_ANOTHER_INSTANCE).c_str(), LoadLocalizedString(STR_ERROR).c_str(),
              MB_ICONERROR);
  ShellExecuteW(nullptr, nullptr, SystemFilePath(L"taskmgr.exe").c_str(), L" /7", nullptr, SW_SHOWDEFAULT);
}

}  // namespace

bool ClaimSingleInstance(const std::wstring& commandLine) {
  if (TakeMutex()) return true;
  if (const HWND window = FindWindowW(kWindowClassName, nullptr)) {
    ForwardCommandLine(window, commandLine);
    ShowWindow(window, SW_RESTORE);
    SetForegroundWindow(window);
    return false;
  }
  // Without a window the other instance is starting up or shutting down, as after a relaunch.
  if (WaitForMutex()) return true;
  TellOtherInstanceStays();
  return false;
}
