// The menu of the main window.
#pragma once

// Builds the menu in the calling thread's language, with the languages and the download sources of the current
// manifest in it, and gives it to the main window. Any thread.
void BuildMainMenu();

// Menu commands of download sources count upwards from here; those of languages are language identifiers.
inline constexpr int kFirstSourceCommand = 1001;
