#include "support/shell_recorder.h"

extern "C" {
extern decltype(&ShellExecuteW) importedShellExecute __asm__("__imp__ShellExecuteW@24");
extern decltype(&ShellExecuteExW) importedShellExecuteEx __asm__("__imp__ShellExecuteExW@4");
}

ShellRecorder::ShellRecorder(DWORD error)
    : error_(error), shellExecute_(importedShellExecute, Start), shellExecuteEx_(importedShellExecuteEx, StartEx) {
  current_ = this;
}

HINSTANCE WINAPI ShellRecorder::Start(HWND, const wchar_t* verb, const wchar_t* file, const wchar_t* parameters,
                                      const wchar_t*, int) {
  const auto given = [](const wchar_t* text) { return std::wstring(text ? text : L""); };
  current_->starts_.push_back({given(verb), given(file), given(parameters)});
  SetLastError(current_->error_);
  return reinterpret_cast<HINSTANCE>(INT_PTR{current_->error_ == ERROR_SUCCESS ? 33 : SE_ERR_ACCESSDENIED});
}

BOOL WINAPI ShellRecorder::StartEx(SHELLEXECUTEINFOW* info) {
  Start(nullptr, info->lpVerb, info->lpFile, info->lpParameters, nullptr, 0);
  const bool started = current_->error_ == ERROR_SUCCESS;
  // A set event can be waited for like a process that has ended.
  info->hProcess = started ? CreateEventW(nullptr, TRUE, TRUE, nullptr) : nullptr;
  return started;
}
