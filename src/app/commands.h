// What the buttons and the menu commands of the main window do. UI thread.
#pragma once

#include <cstdint>

// Install: starts the worker, or without administrator rights asks for a relaunch that does.
void StartInstallation();

// Cancel, which a second time (and after a run) means Exit.
void CancelOrExit();

// The download source in this place of the manifest's key order becomes the selected one; nothing if there is none.
void SelectSource(int position);

// Makes `language` (a key of UiLanguages()) the UI language, rewrites the title, the menu and the texts of the page
// that is shown, and saves the choice when it differs from the current one.
void SetUiLanguage(uint32_t language);
