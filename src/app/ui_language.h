// Switching the language of the running program.
#pragma once

#include <cstdint>

// Makes `language` (a key of UiLanguages()) the UI language, rewrites the title, the menu and the texts of the page
// that is shown, and saves the choice when it differs from the current one. UI thread.
void SetUiLanguage(uint32_t language);
