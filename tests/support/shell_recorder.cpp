#include "support/shell_recorder.h"

extern "C" {
extern decltype(&ShellExecuteW) importedShellExecute __asm__("__imp__ShellExecuteW@24");
extern decltype(&ShellExecuteExW) importedShellExecuteEx __asm__("__imp__ShellExecuteExW@4");
}

ShellRecorder::ShellRecorder(DWORD error)
    : error_(error), shellExecute_(importedShellExecute, Start), shellExecuteEx_(importedShellExecuteEx, StartEx) {
  current_ = this;
}

bool ShellRecorder::Record(const wchar_t* verb, const wchar_t* file, const wchar_t* parameters, int showCommand) {
  const auto given = [](const wchar_t* text) { return std::wstring(text ? text : L""); };
  current_->starts_.push_back({given(verb), given(file), given(parameters), showCommand});
  SetLastError(current_->error_);
  return current_->error_ == ERROR_SUCCESS;
}

HINSTANCE WINAPI ShellRecorder::Start(HWND, const wchar_t* verb, const wchar_t* file, const wchar_t* parameters,
                                      const wchar_t*, int showCommand) {
  const INT_PTR result = Record(verb, file, parameters, showCommand) ? 33 : SE_ERR_ACCESSDENIED;
  return reinterpret_cast<HINSTANCE>(result);
}

BOOL WINAPI ShellRecorder::StartEx(SHELLEXECUTEINFOW* info) {
  const bool started = Record(info->lpVerb, info->lpFile, info->lpParameters, info->nShow);
  // A set event can be waited for like a process that has ended.
  info->hProcess = started ? CreateEventW(nullptr, TRUE, TRUE, nullptr) : nullptr;
  return started;
}
