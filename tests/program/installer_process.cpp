#include "program/installer_process.h"

#include <gtest/gtest.h>

#include "system/path_names.h"

namespace {

std::wstring Beside(std::wstring_view name) {
  wchar_t own[MAX_PATH] = L"";
  GetModuleFileNameW(nullptr, own, MAX_PATH);
  return JoinPath(ParentFolder(own), name);
}

}  // namespace

std::wstring InstallerProcess::ProgramPath() { return Beside(L"ZendoraInstaller.exe"); }

std::wstring InstallerProcess::ImpatientProgramPath() { return Beside(L"ImpatientInstaller.exe"); }

InstallerProcess::InstallerProcess(const std::wstring& commandLine, const std::wstring& program) {
  std::wstring whole = L"\"" + program + L"\" " + commandLine;
  STARTUPINFOW startup = {};
  startup.cb = sizeof startup;
  PROCESS_INFORMATION started = {};
  if (!CreateProcessW(program.c_str(), whole.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup,
                      &started)) {
    ADD_FAILURE() << "the program could not be started: " << GetLastError();
    return;
  }
  CloseHandle(started.hThread);
  process_ = KernelHandle(started.hProcess);
  id_ = started.dwProcessId;
}

InstallerProcess::InstallerProcess(DWORD id) : process_(OpenProcess(PROCESS_ALL_ACCESS, FALSE, id)), id_(id) {
  EXPECT_TRUE(process_);
}

InstallerProcess::~InstallerProcess() {
  if (!Runs()) return;
  TerminateProcess(process_.Get(), 77);
  WaitForSingleObject(process_.Get(), 10'000);
}

bool InstallerProcess::Runs() const { return process_ && WaitForSingleObject(process_.Get(), 0) == WAIT_TIMEOUT; }

std::optional<DWORD> InstallerProcess::WaitForExit() const {
  DWORD code = 0;
  if (!process_ || WaitForSingleObject(process_.Get(), 20'000) != WAIT_OBJECT_0) return {};
  if (!GetExitCodeProcess(process_.Get(), &code)) return {};
  return code;
}
