#include "app/single_instance.h"

#include <utility>

#include "app/command_line.h"
#include "core/context.h"
#include "core/localization.h"
#include "system/files.h"
#include "system/path_names.h"
#include "system/process.h"
#include "system/text.h"
#include "update/replaced_program.h"

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
  constexpr UINT kLimitMs = 5000;  // a window that hangs must not keep this process, too
  SendMessageTimeoutW(window, WM_COPYDATA, kCopyDataCommandLine, reinterpret_cast<LPARAM>(&data), SMTO_ABORTIFHUNG,
                      kLimitMs, nullptr);
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
  SetThreadLanguage(ResolveUiLanguage(0));
  MessageBoxW(nullptr, LoadLocalizedString(STR_ANOTHER_INSTANCE).c_str(), LoadLocalizedString(STR_ERROR).c_str(),
              MB_ICONERROR);
  StartThroughShell({nullptr, SystemFilePath(L"taskmgr.exe"), L" /7", {}, nullptr, SW_SHOWDEFAULT});
}

// What fits a command line that is kept, never half of a surrogate pair.
std::wstring_view FittingStart(std::wstring_view commandLine) {
  if (commandLine.size() <= kMaxPathLength) return commandLine;
  const wchar_t last = commandLine[kMaxPathLength - 1];
  return commandLine.substr(0, IS_HIGH_SURROGATE(last) ? kMaxPathLength - 1 : kMaxPathLength);
}

}  // namespace

bool ClaimSingleInstance(const std::wstring& commandLine) {
  if (TakeMutex()) return true;
  if (const HWND window = FindWindowW(kWindowClassName, nullptr)) {
    ForwardCommandLine(window, commandLine);
    ShowWindowAsync(window, SW_RESTORE);  // a window that hangs must not keep this process, too
    SetForegroundWindow(window);
    return false;
  }
  // Without a window the other instance is starting up or shutting down, as after a relaunch.
  if (WaitForMutex()) return true;
  TellOtherInstanceStays();
  return false;
}

void ParseCommandLine(std::wstring_view commandLine) {
  app.commandLine = FittingStart(commandLine);
  CommandLineRequest request = ReadCommandLine(WideToUtf8(commandLine));
  if (request.updated) RemoveReplacedProgram();
  if (request.installList) app.installList.Set(std::move(*request.installList));
  if (request.source) app.selectedSource.Set(std::move(*request.source));
}

void OnForwardedCommandLine(WPARAM kind, const COPYDATASTRUCT& data) {
  if (kind != kCopyDataCommandLine || data.dwData == 0 || !data.lpData) return;
  const std::wstring_view buffer(static_cast<const wchar_t*>(data.lpData), data.cbData / sizeof(wchar_t));
  ParseCommandLine(buffer.substr(0, buffer.find(L'\0')));
}
