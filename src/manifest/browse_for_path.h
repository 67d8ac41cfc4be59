// Letting the user pick a folder or a game's program file.
#pragma once

#include <windows.h>

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
