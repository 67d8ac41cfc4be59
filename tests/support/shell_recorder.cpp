#include "support/shell_recorder.h"

#include <shellapi.h>

#include <mutex>
#include <optional>

#include "support/replaced_import.h"

extern "C" {
extern decltype(&ShellExecuteW) importedShellExecute __asm__("__imp__ShellExecuteW@24");
extern decltype(&ShellExecuteExW) importedShellExecuteEx __asm__("__imp__ShellExecuteExW@4");
}

namespace {

std::mutex mutex;
std::vector<ShellStart> starts;
DWORD errorOfStarts;
std::optional<ReplacedImport<decltype(&ShellExecuteW)>> shellExecute;
std::optional<ReplacedImport<decltype(&ShellExecuteExW)>> shellExecuteEx;

std::wstring TextOrEmpty(const wchar_t* text) { return text ? text : L""; }

void Record(ShellStart start) {
  const std::lock_guard lock(mutex);
  starts.push_back(std::move(start));
}

HINSTANCE WINAPI RecordStart(HWND, const wchar_t* verb, const wchar_t* file, const wchar_t* parameters, const wchar_t*,
                             int showCommand) {
  Record({TextOrEmpty(verb), TextOrEmpty(file), TextOrEmpty(parameters), showCommand, 0});
  SetLastError(errorOfStarts);
  const INT_PTR result = errorOfStarts == ERROR_SUCCESS ? 33 : SE_ERR_ACCESSDENIED;
  return reinterpret_cast<HINSTANCE>(result);
}

BOOL WINAPI RecordStartEx(SHELLEXECUTEINFOW* info) {
  Record({TextOrEmpty(info->lpVerb), TextOrEmpty(info->lpFile), TextOrEmpty(info->lpParameters), info->nShow,
          info->fMask});
  // A set event can be waited for like a process that has ended.
  info->hProcess = errorOfStarts == ERROR_SUCCESS ? CreateEventW(nullptr, TRUE, TRUE, nullptr) : nullptr;
  SetLastError(errorOfStarts);
  return errorOfStarts == ERROR_SUCCESS;
}

}  // namespace

ShellRecorder::ShellRecorder(DWORD error) {
  errorOfStarts = error;
  starts.clear();
  shellExecute.emplace(importedShellExecute, RecordStart);
  shellExecuteEx.emplace(importedShellExecuteEx, RecordStartEx);
}

ShellRecorder::~ShellRecorder() {
  shellExecute.reset();
  shellExecuteEx.reset();
}

const std::vector<ShellStart>& ShellRecorder::Starts() const { return starts; }
