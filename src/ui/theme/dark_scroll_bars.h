// Dark scroll bars for the component list.
#pragma once

#include <windows.h>

#include "ui/theme/theme_api.h"

// Lets the common controls open the dark style for their scroll bars. `commonControls` is a loaded module, and the
// second the system's entry point that it uses for that. False when the module doesn't import it in the way that is
// known; then nothing is changed. Called once, before any other thread exists.
bool DarkenScrollBars(HMODULE commonControls, decltype(ThemeApi::OpenNcThemeData) openNcThemeData);
