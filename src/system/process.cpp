#include "system/process.h"

#include <windows.h>
// Both need windows.h before them.
#include <lmcons.h>
#include <shellapi.h>

#include "app/context.h"
#include "app/localization.h"
#include "system/com.h"
#include "system/error_message.h"
#include "system/files.h"
#include "system/handles.h"

namespace {

// ShellExecuteW tells success by a value above this one.
constexpr INT_PTR kLastShellError = 32;

// Returns 0 or the error.
DWORD StartWithoutShell(const std::wstring& file, const std::wstring& parameters) {
  std::wstring commandLine = L" " + parameters;
  STARTUPINFOW startup = {};
  startup.cb = sizeof startup;
  PROCESS_INFORMATION started;
  if (!CreateProcessW(file.c_str(), commandLine.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup,
                      &started)) {
    return GetLastError();
  }
  const KernelHandle process(started.hProcess), thread(started.hThread);
  return ERROR_SUCCESS;
}

void TellStartFailed(uint32_t error, bool elevated, const std::wstring& file) {
  std::wstring text = LoadLocalizedString(STR_FILE) + L": " + file;
  if (elevated && !app.isAdmin) text += L"\n\n" + LoadLocalizedString(STR_START_AS_ADMINISTRATOR);
  const std::wstring caption = LoadLocalizedString(STR_ACTION_REQUIRED);
  SetLastError(error);
  MessageBoxW(nullptr, FormatErrorMessage(0, text).c_str(), caption.c_str(), MB_ICONEXCLAMATION);
}

}  // namespace

bool RunProcess(bool elevated, bool reportFailure, const std::wstring& file, const std::wstring& parameters) {
  const ComSession session;  // the shell may hand the start on to an extension
  const DefaultErrorMode errorMode;
  const HINSTANCE result =
      ShellExecuteW(nullptr, elevated ? L"runas" : L"open", file.c_str(), parameters.c_str(), nullptr, SW_SHOWNORMAL);
  DWORD error = GetLastError();
  if (reinterpret_cast<INT_PTR>(result) > kLastShellError) return true;
  if (!elevated) {
    error = StartWithoutShell(file, parameters);
    if (error == ERROR_SUCCESS) return true;
  }
  if (reportFailure) TellStartFailed(error, elevated, file);
  return false;
}

void OpenAddress(const std::wstring& address) {
  const ComSession session;
  ShellExecuteW(nullptr, L"open", address.c_str(), nullptr, nullptr, SW_SHOWNORMAL);
}

// The Users group goes by its SID, because its name differs between languages.
std::wstring BuildRepairParameters(const std::wstring& appDataPath, const std::wstring& userName) {
  return L"/c icacls \"" + appDataPath + L"\" /grant:r " + userName + L":(F) & icacls \"" + appDataPath +
         L"\\Zendora\" /grant:r *S-1-5-32-545:(OI)(CI)(F) /T /grant:r " + userName + L":(OI)(CI)(F) /T";
}

bool RepairPermissions() {
  // Static: when the name can't be had this time, an earlier one still serves.
  static wchar_t userNameBuffer[UNLEN + 1];
  DWORD capacity = UNLEN + 1;
  GetUserNameW(userNameBuffer, &capacity);
  const std::wstring parameters = BuildRepairParameters(app.appDataPath, userNameBuffer);

  // By its full path: of a bare name the shell looks into the current folder first, and this runs elevated.
  const std::wstring interpreter = SystemFilePath(L"cmd.exe");
  const ComSession session;
  SHELLEXECUTEINFOW start = {};
  start.cbSize = sizeof start;
  start.fMask = SEE_MASK_NOCLOSEPROCESS;
  start.lpVerb = L"runas";
  start.lpFile = interpreter.c_str();
  start.lpParameters = parameters.c_str();
  start.nShow = SW_SHOW;
  ShellExecuteExW(&start);
  const KernelHandle process(start.hProcess);
  if (!process) return false;
  WaitForSingleObject(process.Get(), INFINITE);
  return true;
}
