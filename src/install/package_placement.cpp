#include "install/package_placement.h"

#include <windows.h>

#include <cstdlib>
#include <optional>

#include "core/context.h"
#include "core/localization.h"
#include "install/browse_for_path.h"
#include "install/game_paths.h"
#include "install/install_task.h"
#include "install/package_download.h"
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

constexpr char kZipType[] = "application/x-zip-compressed";
constexpr char kInstallerType[] = "application/x-msdownload";

void LogUnsafePath(const std::wstring& path) { AppendLog(L"[ERROR] Unsafe path (" + path + L")"); }

// The first path that would lead out of the folder it belongs to. An empty piece stands for that folder itself.
std::optional<std::wstring> FindUnsafePath(const Package& package) {
  const std::wstring file = WidenBytes(package.filename);
  if (!IsSafeFileName(file)) return file;
  std::vector<std::string> pieces = SplitTaskText(package.verify);
  for (const std::string& task : {package.install, package.link, package.execute}) {
    if (!task.empty()) pieces.push_back(SplitTaskText(task)[0]);
  }
  for (const std::string& piece : pieces) {
    const std::wstring path = WidenBytes(piece);
    if (!path.empty() && !IsSafeRelativePath(path)) return path;
  }
  return std::nullopt;
}

// The known path, or what the user picks for it; empty when there is neither.
std::wstring KnownOrPicked(const std::wstring& known, BrowseMode mode) {
  if (known.empty() && !BrowseForPath(app.mainWindow, mode)) return {};
  return known;
}

// The folder that a package's `folder` stands for: a known game's folder, which the user may be asked for, or a special
// folder of Windows; empty when it can't be resolved.
std::wstring ResolveFolderPlaceholder(const std::string& folder) {
  DetectGameInstallations(true);
  if (folder == "{mtasa_folder}") return KnownOrPicked(gamePaths.mtaFolder, BrowseMode::MtaExecutable);
  if (folder == "{mtasa_cache_folder}") return KnownOrPicked(gamePaths.mtaCacheFolder, BrowseMode::MtaCacheFolder);
  if (folder == "{gtasa_folder}") return KnownOrPicked(gamePaths.gtaFolder, BrowseMode::GtaExecutable);
  if (folder.starts_with('{') && folder.ends_with('}')) {
    const long csidl = std::strtol(folder.c_str() + 1, nullptr, 10);
    if (csidl != 0) return SpecialFolder(static_cast<int>(csidl));
  }
  return {};
}

PlacementResult CopyToTarget(const Installation& run, const Package& package, const std::wstring& target) {
  if (const uint32_t error = CreateDirectories(target)) {
    AppendLog(L"[ERROR] Unable to create folder (" + std::to_wstring(error) + L") (" + target + L")");
    return {.error = error};
  }
  const std::wstring source = PackageFilePath(run, package.filename);
  const std::wstring copy = JoinPath(target, LastComponent(source));
  if (CopyFileW(source.c_str(), copy.c_str(), FALSE)) return {.ok = true};
  return {.error = GetLastError()};
}

PlacementResult PlaceFiles(Installation& run, const Package& package, const std::wstring& target) {
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
PlacementResult CheckVerifyList(Installation& run, const Package& package, const std::wstring& target) {
  for (const std::string& piece : SplitTaskText(package.verify)) {
    const std::wstring path = JoinPath(target, WidenBytes(piece));
    if (IsDirectory(path) || PathExists(path)) continue;
    const DWORD error = GetLastError();
    run.errorRecords += VerifyFailedRecord(package.filename, error, path);
    TellWhatIsMissing(path);
    return {.error = error};
  }
  return {.ok = true};
}

}  // namespace

std::wstring ResolveTargetFolder(const Installation& run, const Package& package) {
  if (!package.folder.empty()) return ResolveFolderPlaceholder(package.folder);
  if (package.name.empty()) return {};
  const auto existing = run.existingFolders.find(package.filename);
  if (existing != run.existingFolders.end() && IsDirectory(existing->second)) return existing->second;
  if (!IsSafeRelativePath(package.name)) {
    LogUnsafePath(package.name);
    return {};
  }
  const std::wstring target = JoinPath(run.installPath, package.name);
  CreateDirectories(target);
  return target;
}

bool PathsStayInside(const Package& package) {
  const auto unsafe = FindUnsafePath(package);
  if (unsafe) LogUnsafePath(*unsafe);
  return !unsafe;
}

PlacementResult PlacePackage(Installation& run, const Package& package, const std::wstring& target) {
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
