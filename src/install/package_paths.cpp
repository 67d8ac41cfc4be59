#include "install/package_paths.h"

#include <windows.h>

#include <cstdlib>

#include "core/context.h"
#include "install/browse_for_path.h"
#include "install/game_paths.h"
#include "install/manifest_paths.h"
#include "system/files.h"
#include "system/path_names.h"
#include "system/text.h"

namespace {

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

}  // namespace

std::wstring PackageFilePath(const RunState& run, const std::string& filename) {
  return JoinPath(run.tmpPath, WidenBytes(filename));
}

std::wstring StatRecordPath(const std::wstring& packageFilePath) { return packageFilePath + L".stat"; }

std::wstring ResolveTargetFolder(const RunState& run, const Package& package) {
  if (!package.folder.empty()) return ResolveFolderPlaceholder(package.folder);
  if (package.name.empty()) return {};
  const auto existing = run.existingFolders.find(package.filename);
  if (existing != run.existingFolders.end() && IsDirectory(existing->second)) return existing->second;
  const std::wstring target = PathInTarget(run.installPath, package.name);
  if (StaysInside(package.name)) CreateDirectories(target);
  return target;
}
