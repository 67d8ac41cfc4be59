#include "system/process.h"

// Needs windows.h before it.
#include <shellapi.h>

#include "system/com.h"
#include "system/handles.h"
#include "system/threads.h"

namespace {

// ShellExecuteW tells success by a value above this one.
constexpr INT_PTR kLastShellError = 32;

uint32_t StartWithoutShell(const std::wstring& file, const std::wstring& parameters) {
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

}  // namespace

uint32_t StartProgram(bool elevated, const std::wstring& file, const std::wstring& parameters) {
  const ComSession session;  // the shell may hand the start on to an extension
  const DefaultErrorMode errorMode;
  const HINSTANCE result =
      ShellExecuteW(nullptr, elevated ? L"runas" : L"open", file.c_str(), parameters.c_str(), nullptr, SW_SHOWNORMAL);
  const DWORD error = GetLastError();
  if (reinterpret_cast<INT_PTR>(result) > kLastShellError) return ERROR_SUCCESS;
  return elevated ? error : StartWithoutShell(file, parameters);
}

bool RunElevated(const std::wstring& file, const std::wstring& parameters, const std::wstring& folder) {
  const ComSession session;
  SHELLEXECUTEINFOW start = {};
  start.cbSize = sizeof start;
  start.fMask = SEE_MASK_NOCLOSEPROCESS;
  start.lpVerb = L"runas";
  start.lpFile = file.c_str();
  start.lpParameters = parameters.c_str();
  start.lpDirectory = folder.c_str();
  start.nShow = SW_SHOW;
  ShellExecuteExW(&start);
  const KernelHandle process(start.hProcess);
  if (!process) return false;
  WaitServing(process.Get(), nullptr);
  return true;
}

void OpenAddress(const std::wstring& address) {
  const ComSession session;
  ShellExecuteW(nullptr, L"open", address.c_str(), nullptr, nullptr, SW_SHOWNORMAL);
}
