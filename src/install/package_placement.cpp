#include "install/package_placement.h"

#include <windows.h>

#include "core/context.h"
#include "core/localization.h"
#include "install/install_task.h"
#include "install/package_paths.h"
#include "install/package_texts.h"
#include "install/run_display.h"
#include "install/zip_extraction.h"
#include "net/telemetry_reports.h"
#include "system/files.h"
#include "system/path_names.h"
#include "ui/message_boxes.h"
#include "ui/page_controls.h"

namespace {

constexpr char kZipType[] = "application/x-zip-compressed";
constexpr char kInstallerType[] = "application/x-msdownload";

PlacementResult CopyToTarget(const RunState& run, const Package& package, const std::wstring& target) {
  if (const uint32_t error = CreateDirectories(target)) {
    AppendLog(L"[ERROR] Unable to create folder (" + std::to_wstring(error) + L") (" + target + L")");
    return {.error = error};
  }
  const std::wstring source = PackageFilePath(run, package.filename);
  const std::wstring copy = JoinPath(target, LastComponent(source));
  if (CopyFileW(source.c_str(), copy.c_str(), FALSE)) return {.ok = true};
  const DWORD error = GetLastError();
  // What an older installation left may be protected.
  if (error != ERROR_ACCESS_DENIED || !RemoveProtection(copy)) return {.error = error};
  if (CopyFileW(source.c_str(), copy.c_str(), FALSE)) return {.ok = true};
  return {.error = GetLastError()};
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
    const std::wstring path = PathInTarget(target, piece);
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
    if (error == ERROR_SUCCESS) {
      result = {.ok = true};
    } else {
      result.error = error;
    }
  }
  return result.ok ? CheckVerifyList(run, package, target) : result;
}
