#include "install/game_paths.h"

#include <windows.h>

#include "system/files.h"
#include "system/path_names.h"
#include "system/registry.h"

GamePaths& gamePaths = *new GamePaths;

namespace {

constexpr wchar_t kMtaKey[] = L"SOFTWARE\\Multi Theft Auto: San Andreas All";
constexpr wchar_t kGtaKey[] = L"SOFTWARE\\Rockstar Games\\GTA San Andreas";

// Leaves the path as it was when the value is missing, is no text or is longer than a path.
void ReadPath(const RegKey& key, const wchar_t* subkey, const wchar_t* value, std::wstring& path) {
  if (auto text = ReadRegistryText(key.Get(), subkey, value)) path = std::move(*text);
}

bool DetectMta() {
  const RegKey key = OpenMachineKey32(kMtaKey);
  if (!key) return false;
  ReadPath(key, L"1.6", L"Last Run Location", gamePaths.mtaFolder);
  ReadPath(key, L"1.6", L"Last Run Path", gamePaths.mtaExePath);
  ReadPath(key, L"Common", L"File Cache Path", gamePaths.mtaCacheFolder);
  ReadPath(key, L"Common", L"GTA:SA Path", gamePaths.gtaFolder);
  return true;
}

bool DetectGta() {
  const RegKey key = OpenMachineKey32(kGtaKey);
  if (!key) return false;
  ReadPath(key, L"Installation", L"ExePath", gamePaths.gtaExePath);
  if (FileExistsNonEmpty(gamePaths.gtaExePath)) gamePaths.gtaFolder = ParentFolder(gamePaths.gtaExePath);
  return true;
}

}  // namespace

bool DetectGameInstallations(bool force) {
  bool found = false;
  if (force || !FileExistsNonEmpty(gamePaths.mtaExePath)) found = DetectMta();
  if (force || !FileExistsNonEmpty(gamePaths.gtaExePath)) found = DetectGta() || found;
  return found;
}
