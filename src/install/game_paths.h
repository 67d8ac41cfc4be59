// The games that may already be on the computer.
#pragma once

#include <string>

// Identifiers of the packages that install the two games themselves.
inline constexpr char kGtaPackage[] = "gtasa";
inline constexpr char kMtaPackage[] = "mtasa.exe";

// Empty while unknown; filled by detection and by the user's picks, never cleared. Written by the worker only.
struct GamePaths {
  std::wstring mtaFolder, mtaExePath, mtaCacheFolder;
  std::wstring gtaFolder, gtaExePath;
};
extern GamePaths& gamePaths;

// Fills gamePaths from the games' registry entries; without `force` a game whose program file is known and present is
// not looked up again. True when at least one of the two registry keys could be opened. Worker.
bool DetectGameInstallations(bool force);
