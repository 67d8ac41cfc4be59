// How the main window closes: it stays until a running installation has stopped, and relaunches the program where
// that was asked for. UI thread.
#pragma once

#include <windows.h>

// WM_CLOSE. True when the window is to be destroyed now, false when it stays until the worker has stopped.
bool OnCloseRequest();

// WM_ENDSESSION with a true wParam.
void OnEndSession(LPARAM flags);

// WM_DESTROY.
void OnDestroy();
