// The scale of the window. Places, sizes and font heights are told for a screen of 96 dots per inch everywhere in the
// program; here they become pixels of the screen that the main window is on. UI thread. Dialogs are measured in units
// of their font, and the system scales them.
#pragma once

#include <windows.h>

// The dots per inch of the screen that a window is on.
int DpiOf(HWND window);

// From now on lengths are scaled to so many dots per inch; 96 before the first call.
void SetScale(int dpi);

// A length of a 96 dots per inch screen, in pixels.
int Scaled(int length);

// The outer size of a top-level window with a menu, in pixels of a screen with `dpi`: its client area is as large as
// that of a window of this outer size at 96 dots per inch, scaled.
SIZE ScaledWindowSize(SIZE size, DWORD style, int dpi);

// A system metric (SM_...) as it is on a screen with these dots per inch.
int MetricAt(int metric, int dpi);
