// The menu of the main window. UI thread.
#pragma once

#include <windows.h>

// Builds the menu in the UI language, with the languages and the download sources of the current manifest in it, and
// gives it to the main window in the place of the one before.
void BuildMainMenu();

// WM_INITMENUPOPUP: greys what can't be done while packages are installed or the program is replaced.
void OnMenuOpens(HMENU popup);
// Whether it can be done now.
bool CanDeleteAppData();

// Menu commands of download sources count upwards from here; those of languages are language identifiers.
inline constexpr int kFirstSourceCommand = 1001;
