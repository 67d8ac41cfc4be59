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
#include "net/file_hash.h"
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
  FileHandle held;  // of a program that was unpacked: nobody may exchange it before it runs
};

// Whether the file has the bytes of the archive's current entry.
bool HasBytesOfEntry(HANDLE file, ZipArchive& archive, const std::string& password) {
  constexpr uint32_t kChunkSize = 65'536;
  std::vector<char> packed(kChunkSize), present(kChunkSize);
  if (archive.OpenEntry(password) != 0 || !SetFilePointerEx(file, {}, nullptr, FILE_BEGIN)) return false;
  bool same = true;
  for (int32_t count = 1; same && count > 0 && !app.cancelRequested;) {
    count = archive.ReadEntry(packed.data(), kChunkSize);
    DWORD read = 0;
    // Behind the entry's last byte the file has none either.
    same = count >= 0 &&
           ReadFile(file, present.data(), std::max<DWORD>(static_cast<DWORD>(count), 1), &read, nullptr) &&
           read == static_cast<DWORD>(count) && std::equal(present.begin(), present.begin() + count, packed.begin());
  }
  return archive.CloseEntry() == 0 && same && !app.cancelRequested;
}

// Whether the archive holds an entry of this path below its target, with the bytes of the file.
bool ArchiveHolds(const RunState& run, const Package& package, const std::wstring& path, HANDLE file) {
  ZipArchive archive;
  if (archive.Open(PackageFilePath(run, package.filename)) != ERROR_SUCCESS) return false;
  for (int32_t position = archive.GoToFirstEntry(); position == 0; position = archive.GoToNextEntry()) {
    ZipEntry entry;
    if (archive.GetEntryInfo(entry) != 0) continue;
    const bool found = CompareStringOrdinal(EntryPath(entry.name).c_str(), -1, path.c_str(), -1, TRUE) == CSTR_EQUAL;
    if (found && HasBytesOfEntry(file, archive, package.password)) return true;
  }
  return false;
}

// Whether the command's held program, at this path below the target, is the package's own. What lay there before has
// been proven by nobody, and what couldn't be overwritten lies there still.
bool IsFromPackage(const RunState& run, const Package& package, const InstallerCommand& command, std::wstring path) {
  std::replace(path.begin(), path.end(), L'/', L'\\');
  if (package.filetype == kInstallerType) return false;
  if (package.filetype == kZipType) return ArchiveHolds(run, package, path, command.held.Get());
  if (path != WidenBytes(package.filename)) return false;
  const HashProgressCallback endWhenCancelled = [](HashProgress* progress) { progress->cancel = app.cancelRequested; };
  const std::string hash = ComputeFileMd5(command.program, endWhenCancelled);
  return !hash.empty() && hash == ComputeFileMd5(PackageFilePath(run, package.filename), endWhenCancelled);
}

InstallerCommand CommandOf(const RunState& run, const Package& package, const std::wstring& target) {
  const std::vector<std::string> pieces = SplitTaskText(package.install);
  InstallerCommand command;
  command.program = PathInTarget(target, WidenBytes(pieces[0]));
  const std::wstring path = command.program.substr(std::min(command.program.size(), JoinPath(target, L"").size()));
  const bool own = FileExistsNonEmpty(command.program) &&
                   HoldFile(command.program, command.held, app.cancelRequested.Token()) == ERROR_SUCCESS &&
                   IsFromPackage(run, package, command, path);
  if (!own) {
    command.held.Reset();
    command.program = PackageFilePath(run, package.filename);
  }
  if (pieces.size() > 1) command.arguments = L" " + WidenBytes(pieces[1]);
  return command;
}

// Returns 0 and the process, or the system error.
DWORD Start(InstallerCommand& command, KernelHandle& process) {
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
  InstallerCommand command = CommandOf(run, package, target);
  if (app.cancelRequested) return ERROR_CANCELLED;
  KernelHandle process;
  if (const DWORD error = Start(command, process)) {
    run.errorRecords += InstallerNotStartedRecord(package.filename, error);
    OfferManualStart(command.program);
    return error;
  }
  command.held.Reset();  // the program may be one that replaces or removes its own file
  WaitForEnd(process.Get());
  return ERROR_SUCCESS;
}
