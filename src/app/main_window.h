// The program's one top-level window. UI thread.
#pragma once

#include <windows.h>

// Before CreateMainWindow.
void RegisterMainWindowClass(HINSTANCE instance);

// Creates and shows the window with its components page and starts the manifest thread; false when it can't be created.
bool CreateMainWindow(HINSTANCE instance, int showCommand);
