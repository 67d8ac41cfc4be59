// Letting the user pick a folder or a game's program file.
#pragma once

#include <windows.h>

#include <optional>
#include <string>

enum class BrowseMode : int {
  InstallFolder = 0,
  TempFolder = 1,
  MtaExecutable = 2,
  GtaExecutable = 3,
  MtaCacheFolder = 4
};

// Shows the system's picker, checks the choice (telling the user what is wrong with it) and stores it where the mode
// says: app.installPath and app.tmpPath with their settings, or gamePaths. True when a usable path was stored. The
// first two modes run on the UI thread, the others on the worker.
bool BrowseForPath(HWND owner, BrowseMode mode);

// The cache that a picked folder is, or that holds it as its "resources"; nothing when it is none.
std::optional<std::wstring> CacheFolderOf(std::wstring picked);
