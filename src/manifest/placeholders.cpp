#include "manifest/placeholders.h"

#include <cstdlib>

#include "app/context.h"
#include "manifest/browse_for_path.h"
#include "manifest/game_paths.h"
#include "system/files.h"
#include "system/text.h"

namespace {

// The known path, or what the user picks for it; empty when there is neither.
std::wstring KnownOrPicked(const std::wstring& known, BrowseMode mode) {
  if (known.empty() && !BrowseForPath(app.mainWindow, mode)) return {};
  return known;
}

}  // namespace

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

std::string ExpandInstallPath(std::string text, const std::string& targetFolder) {
  ReplaceFirst(text, "{install_path}", targetFolder);
  return text;
}
