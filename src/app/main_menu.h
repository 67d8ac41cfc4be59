// The menu of the main window. UI thread.
#pragma once

// Builds the menu in the UI language, with the languages and the download sources of the current manifest in it, and
// gives it to the main window in the place of the one before.
void BuildMainMenu();

// Menu commands of download sources count upwards from here; those of languages are language identifiers.
inline constexpr int kFirstSourceCommand = 1001;
