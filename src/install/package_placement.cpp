#include "install/package_placement.h"

#include <windows.h>

#include "core/context.h"
#include "core/localization.h"
#include "install/install_task.h"
#include "install/manifest_paths.h"
#include "install/package_paths.h"
#include "install/package_texts.h"
#include "install/run_display.h"
#include "install/zip_extraction.h"
#include "net/telemetry_reports.h"
#include "system/files.h"
#include "system/path_names.h"
#include "system/text.h"
#include "ui/message_boxes.h"
#include "ui/page_controls.h"

namespace {

DWORD CALLBACK OnCopyProgress(LARGE_INTEGER, LARGE_INTEGER, LARGE_INTEGER, LARGE_INTEGER, DWORD, DWORD, HANDLE, HANDLE,
                              void*) {
  return app.cancelRequested ? PROGRESS_CANCEL : PROGRESS_CONTINUE;
}

// Returns 0 or the system error. A copy that is cancelled leaves nothing.
uint32_t CopyUnlessCancelled(const std::wstring& source, const std::wstring& copy) {
  const BOOL copied = CopyFileExW(source.c_str(), copy.c_str(), OnCopyProgress, nullptr, nullptr, 0);
  return copied ? DWORD{ERROR_SUCCESS} : GetLastError();
}

PlacementResult CopyToTarget(const RunState& run, const Package& package, const std::wstring& target) {
  if (const uint32_t error = CreateDirectories(target)) {
    AppendLog(L"[ERROR] Unable to create folder (" + std::to_wstring(error) + L") (" + target + L")");
    return {.error = error};
  }
  const std::wstring source = PackageFilePath(run, package.filename);
  const std::wstring copy = JoinPath(target, LastComponent(source));
  uint32_t error = CopyUnlessCancelled(source, copy);
  // What an older installation left may be protected.
  if (error == ERROR_ACCESS_DENIED && RemoveProtection(copy)) error = CopyUnlessCancelled(source, copy);
  return {.ok = error == ERROR_SUCCESS, .error = error};
}

PlacementResult PlaceFiles(RunState& run, const Package& package, const std::wstring& target) {
  if (package.filetype == kInstallerType) return {};
  return package.filetype == kZipType ? ExtractZip(run, package, target) : CopyToTarget(run, package, target);
}

void TellWhatIsMissing(const std::wstring& path) {
  const std::wstring text = LoadLocalizedString(STR_COMPONENT_FAILED) + L"\n\n" +
                            LoadLocalizedString(STR_REQUIRED_FILE_MISSING) + L":\n" + path + L"\n\n" +
                            LoadLocalizedString(STR_OTHER_PROGRAM_HINT);
  ShowBox(text, LoadLocalizedString(STR_ERROR), MB_ICONERROR);
}

// Whether everything that the package's `verify` names exists below `target`. At the first thing missing it tells the
// user and the run's error records.
PlacementResult CheckVerifyList(RunState& run, const Package& package, const std::wstring& target) {
  for (const std::string& piece : SplitTaskText(package.verify)) {
    const std::wstring path = PathInTarget(target, WidenBytes(piece));
    const uint32_t error = FindPath(path);
    if (error == ERROR_SUCCESS) continue;
    run.errorRecords += VerifyFailedRecord(package.filename, error, path);
    TellWhatIsMissing(path);
    return {.error = error};
  }
  return {.ok = true};
}

}  // namespace

PlacementResult PlacePackage(RunState& run, const Package& package, const std::wstring& target) {
  PlacementResult result = PlaceFiles(run, package, target);
  if (app.cancelRequested) return {};
  ShowTotalDetail(L"-");

  if (!package.install.empty()) {
    const uint32_t error = RunInstallTask(run, package, target);
    if (error == ERROR_CANCELLED && app.cancelRequested) return {};
    if (error == ERROR_SUCCESS) {
      result = {.ok = true};
    } else {
      result.error = error;
    }
  }
  return result.ok ? CheckVerifyList(run, package, target) : result;
}
