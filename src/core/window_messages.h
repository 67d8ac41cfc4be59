// Messages by which other threads have done in a window what Windows allows on its own thread only, which never waits
// for another one. The first two are sent to the main window, because their senders go on when that is done.
#pragma once

#include <windows.h>

inline constexpr UINT kFillComponentListMessage = WM_APP + 1;  // the manifest has been loaded
inline constexpr UINT kSpeedTimerMessage = WM_APP + 2;         // wParam TRUE arms the speed timer, FALSE stops it
// Something lies in the window's mailbox (ui/mailbox.h). Posted; sent with wParam TRUE to have it shown at once.
inline constexpr UINT kShowNotesMessage = WM_APP + 3;
// What the taskbar button is to tell (ui/taskbar.h). Posted.
inline constexpr UINT kTaskbarMessage = WM_APP + 4;
