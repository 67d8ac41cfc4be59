// How the main window closes: it stays until a running installation has stopped, and relaunches the program where
// that was asked for. UI thread.
#pragma once

#include <windows.h>

// WM_CLOSE. True when the window is to be destroyed now, false when it stays until the worker has stopped. A relaunch
// has been carried out then, and the user has answered what it asks.
bool OnCloseRequest();

// WM_ENDSESSION with a true wParam: stops what is under way, and gives it the time that there is.
void OnEndSession(LPARAM flags);

// WM_DESTROY.
void OnDestroy();
