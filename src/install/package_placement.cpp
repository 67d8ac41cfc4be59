#include "install/package_placement.h"

#include <windows.h>

#include <optional>

#include "app/context.h"
#include "app/page_controls.h"
#include "install/install_task.h"
#include "install/package_download.h"
#include "install/run_display.h"
#include "install/task_text.h"
#include "install/verify_list.h"
#include "install/zip_extraction.h"
#include "manifest/placeholders.h"
#include "system/files.h"
#include "system/path_names.h"
#include "system/text.h"

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
