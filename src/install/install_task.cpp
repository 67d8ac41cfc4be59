#include "install/install_task.h"

#include <windows.h>

#include <algorithm>
#include <vector>

#include "core/context.h"
#include "core/localization.h"
#include "install/manifest_paths.h"
#include "install/package_paths.h"
#include "install/package_texts.h"
#include "install/run_display.h"
#include "install/zip_archive.h"
#include "net/telemetry_reports.h"
#include "system/files.h"
#include "system/handles.h"
#include "system/path_names.h"
#include "system/process.h"
#include "system/text.h"
#include "ui/message_boxes.h"

namespace {

constexpr DWORD kPollMs = 100;
// The label goes through its dots in so many polls, a new dot every kPollsPerDot.
constexpr int kPollsPerCycle = 16;
constexpr int kPollsPerDot = 5;
constexpr int kDots = 3;

// A program by path, with its command line: a blank and the arguments, or nothing.
struct InstallerCommand {
  std::wstring program, arguments;
};

// Whether the archive holds an entry that unpacks to this path below its target.
bool ArchiveHolds(const std::wstring& archivePath, const std::wstring& path) {
  ZipArchive archive;
  if (archive.Open(archivePath) != ERROR_SUCCESS) return false;
  for (int32_t position = archive.GoToFirstEntry(); position == 0; position = archive.GoToNextEntry()) {
    ZipEntry entry;
    if (archive.GetEntryInfo(entry) != 0) continue;
    if (CompareStringOrdinal(EntryPath(entry.name).c_str(), -1, path.c_str(), -1, TRUE) == CSTR_EQUAL) return true;
  }
  return false;
}

// Whether the file at this path is the package's own. What lay there before has been proven by nobody.
bool IsFromPackage(const RunState& run, const Package& package, std::wstring path) {
  std::replace(path.begin(), path.end(), L'/', L'\\');
  if (package.filetype == kInstallerType) return false;
  if (package.filetype == kZipType) return ArchiveHolds(PackageFilePath(run, package.filename), path);
  return path == WidenBytes(package.filename);
}

InstallerCommand CommandOf(const RunState& run, const Package& package, const std::wstring& target) {
  const std::vector<std::string> pieces = SplitTaskText(package.install);
  InstallerCommand command;
  command.program = PathInTarget(target, WidenBytes(pieces[0]));
  const bool own =
      FileExistsNonEmpty(command.program) &&
      IsFromPackage(run, package,
                    command.program.substr(std::min(command.program.size(), JoinPath(target, L"").size())));
  if (!own) command.program = PackageFilePath(run, package.filename);
  if (pieces.size() > 1) command.arguments = L" " + WidenBytes(pieces[1]);
  return command;
}

// Returns 0 and the process, or the system error.
DWORD Start(InstallerCommand command, KernelHandle& process) {
  STARTUPINFOW startup = {};
  startup.cb = sizeof startup;
  PROCESS_INFORMATION info;
  const DefaultErrorMode errorMode;
  // The system may write into the command line.
  if (!CreateProcessW(command.program.c_str(), command.arguments.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                      &startup, &info)) {
    return GetLastError();
  }
  CloseHandle(info.hThread);
  process.Reset(info.hProcess);
  return ERROR_SUCCESS;
}

void WaitForEnd(HANDLE process) {
  const std::wstring text = LoadLocalizedString(STR_INSTALLER_RUNNING);
  ShowTotalDetail(text);

  bool running = WaitForSingleObject(process, 0) != WAIT_OBJECT_0;
  for (int poll = 0; running && !app.cancelRequested; poll = (poll + 1) % kPollsPerCycle) {
    const int dots = poll / kPollsPerDot + 1;
    if (poll % kPollsPerDot == 0 && dots <= kDots)
      ShowTotalDetail(text + std::wstring(static_cast<size_t>(dots), L'.'));
    running = WaitForSingleObject(process, kPollMs) != WAIT_OBJECT_0;
  }
  if (running) TerminateProcess(process, 0);
}

// By its full path: of a bare name the shell looks into the current folder first, and this program runs elevated.
std::wstring ExplorerPath() {
  wchar_t folder[MAX_PATH] = {};
  GetSystemWindowsDirectoryW(folder, MAX_PATH);
  return JoinPath(folder, L"explorer.exe");
}

// Asks whether the user wants to see the program's file, to start it by hand.
void OfferManualStart(const std::wstring& program) {
  const std::wstring text = LoadLocalizedString(STR_CANNOT_START_PROCESS) + L"\n\n" +
                            LoadLocalizedString(STR_START_MANUALLY) + L":\n" + program + L"\n\n" +
                            LoadLocalizedString(STR_OPEN_QUESTION);
  if (ShowBox(text, LoadLocalizedString(STR_ERROR), MB_YESNO | MB_ICONERROR) != IDYES) return;
  StartThroughShell({nullptr, ExplorerPath(), L"/select, " + program, {}, nullptr, SW_SHOWDEFAULT});
}

}  // namespace

uint32_t RunInstallTask(RunState& run, const Package& package, const std::wstring& target) {
  const InstallerCommand command = CommandOf(run, package, target);
  KernelHandle process;
  if (const DWORD error = Start(command, process)) {
    run.errorRecords += InstallerNotStartedRecord(package.filename, error);
    OfferManualStart(command.program);
    return error;
  }
  WaitForEnd(process.Get());
  return ERROR_SUCCESS;
}
