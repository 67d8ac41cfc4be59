// The size of the main window on screens of any scale. UI thread.
#pragma once

#include <windows.h>

inline constexpr DWORD kMainWindowStyle = WS_CAPTION | WS_SYSMENU | WS_MINIMIZEBOX | WS_CLIPCHILDREN;

// Windows sends the first when a window has come to a screen of another scale (wParam holds its dots per inch twice,
// lParam the place proposed), and asks by the second which size the window will then want.
inline constexpr UINT kScaleChangedMessage = 0x02E0, kScaledSizeMessage = 0x02E4;

// The outer size on a screen with these dots per inch.
SIZE MainWindowSizeAt(int dpi);

// app.desktopWidth and desktopHeight.
void MeasureDesktop();

// Gives a new window its size and its icons, and the place in the middle of the primary screen.
void PlaceInMiddle(HWND window);

// Fits the window, its page and its icons to another scale.
void OnScaleChanged(HWND window, int dpi, const RECT& proposed);
