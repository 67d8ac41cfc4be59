// Messages that other threads send to the main window to have done what Windows allows on its own thread only. They are
// sent, not posted: the sender goes on when it is done. That thread never waits for another one.
#pragma once

#include <windows.h>

inline constexpr UINT kFillComponentListMessage = WM_APP + 1;  // the manifest has been loaded
inline constexpr UINT kSpeedTimerMessage = WM_APP + 2;         // wParam TRUE arms the speed timer, FALSE stops it
inline constexpr UINT kTaskbarMessage = WM_APP + 4;            // ui/taskbar.h; the one that is posted
