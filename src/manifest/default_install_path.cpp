#include "manifest/default_install_path.h"

#include <windows.h>

#include <optional>

#include "app/context.h"
#include "system/files.h"
#include "system/path_names.h"

namespace {

constexpr wchar_t kGamesFolder[] = L"Games";

std::optional<std::wstring> GamesOnVolumeOf(const std::wstring& path) {
  wchar_t volume[MAX_PATH];
  if (!GetVolumePathNameW(path.c_str(), volume, ARRAYSIZE(volume))) return std::nullopt;
  return JoinPath(volume, kGamesFolder);
}

std::optional<std::wstring> ExistingGamesFolder() {
  // The roots one after the other, each with its terminator, and one terminator more.
  wchar_t roots[MAX_PATH] = {};
  const DWORD length = GetLogicalDriveStringsW(ARRAYSIZE(roots), roots);
  if (length >= ARRAYSIZE(roots)) return std::nullopt;
  for (const wchar_t* root = roots; *root; root += wcslen(root) + 1) {
    std::wstring folder = JoinPath(root, kGamesFolder);
    if (IsDirectory(folder)) return folder;
  }
  return std::nullopt;
}

}  // namespace

void DefaultInstallPath() {
  auto folder = ExistingGamesFolder();
  if (!folder) folder = GamesOnVolumeOf(app.appDataPath);
  if (folder && folder->size() <= kMaxPathLength) app.installPath.Set(*folder);
}
