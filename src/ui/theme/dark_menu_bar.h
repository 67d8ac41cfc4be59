// The menu bar of the main window in dark mode, which the system itself only draws light. UI thread.
#pragma once

#include <windows.h>

// The system's messages for drawing a menu bar and its items. True when they were drawn; false leaves them to the
// system.
inline constexpr UINT kDrawMenuBarMessage = 0x0091;
inline constexpr UINT kDrawMenuBarItemMessage = 0x0092;
bool DrawMenuBarPart(HWND window, UINT message, LPARAM lParam);

// After DefWindowProcW has painted the frame: the line under the menu bar, which belongs to no item.
void PaintLineUnderMenuBar(HWND window);

// WM_THEMECHANGED and the end of the main window: what was opened to draw items is closed.
void ForgetMenuTheme();
