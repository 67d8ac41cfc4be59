#include "system/process.h"

// Needs windows.h before it.
#include <shellapi.h>

#include <mutex>

#include "system/com.h"
#include "system/files.h"
#include "system/handles.h"
#include "system/path_names.h"
#include "system/threads.h"

namespace {

// Of DefaultErrorMode.
std::mutex errorModeLock;
int startsUnderWay = 0;
UINT ownErrorMode = 0;

uint32_t StartWithoutShell(const std::wstring& file, const std::wstring& parameters, const std::wstring& folder) {
  std::wstring commandLine = L" " + parameters;
  STARTUPINFOW startup = {};
  startup.cb = sizeof startup;
  PROCESS_INFORMATION started;
  if (!CreateProcessW(file.c_str(), commandLine.data(), nullptr, nullptr, FALSE, 0, nullptr,
                      folder.empty() ? nullptr : folder.c_str(), &startup, &started)) {
    return GetLastError();
  }
  const KernelHandle process(started.hProcess), thread(started.hThread);
  return ERROR_SUCCESS;
}

// Errors are told by the caller, not by the shell.
SHELLEXECUTEINFOW Describe(const ShellStart& start) {
  SHELLEXECUTEINFOW info = {};
  info.cbSize = sizeof info;
  info.fMask = SEE_MASK_NOASYNC | SEE_MASK_FLAG_NO_UI;
  info.hwnd = start.owner;
  info.lpVerb = start.verb;
  info.lpFile = start.file.c_str();
  info.lpParameters = start.parameters.empty() ? nullptr : start.parameters.c_str();
  info.lpDirectory = start.folder.empty() ? nullptr : start.folder.c_str();
  info.nShow = start.show;
  return info;
}

}  // namespace

DefaultErrorMode::DefaultErrorMode() {
  const std::lock_guard guard(errorModeLock);
  if (startsUnderWay++ == 0) ownErrorMode = SetErrorMode(0);
}

DefaultErrorMode::~DefaultErrorMode() {
  const std::lock_guard guard(errorModeLock);
  if (--startsUnderWay == 0) SetErrorMode(ownErrorMode);
}

uint32_t StartThroughShell(const ShellStart& start) {
  const ComSession session;  // the shell may hand the start on to an extension
  const DefaultErrorMode errorMode;
  SHELLEXECUTEINFOW info = Describe(start);
  return ShellExecuteExW(&info) ? ERROR_SUCCESS : GetLastError();
}

uint32_t StartProgram(bool elevated, const std::wstring& file, const std::wstring& parameters, HWND owner) {
  const std::wstring folder = ParentFolder(file);
  const uint32_t error = StartThroughShell({elevated ? L"runas" : L"open", file, parameters, folder, owner});
  if (error == ERROR_SUCCESS || elevated) return error;
  const DefaultErrorMode errorMode;
  return StartWithoutShell(file, parameters, folder);
}

bool RunElevated(const std::wstring& file, const std::wstring& parameters, HWND owner) {
  const ComSession session;
  const ShellStart start{L"runas", file, parameters, ParentFolder(file), owner, SW_SHOW};
  SHELLEXECUTEINFOW info = Describe(start);
  info.fMask |= SEE_MASK_NOCLOSEPROCESS;
  ShellExecuteExW(&info);
  const KernelHandle process(info.hProcess);
  if (!process) return false;
  WaitServing(process.Get(), nullptr);
  return true;
}

void OpenAddress(const std::wstring& address) { StartThroughShell({.file = address}); }
