// The colours of both appearances, and the brushes that fill with them.
#pragma once

#include <windows.h>

#include "system/handles.h"

inline constexpr COLORREF kBlack = RGB(0, 0, 0), kWhite = RGB(255, 255, 255);
inline constexpr COLORREF kDarkText = kWhite, kDarkDisabledText = RGB(0x40, 0x40, 0x40);

struct ThemeBrushes {
  BrushHandle darkBackground;     // of the main window, its menu bar and the line under that
  BrushHandle lightBackground;    // of the main window
  BrushHandle controlBackground;  // behind the controls in dark mode
  BrushHandle menuItemHot;        // an item of the menu bar under the mouse
  BrushHandle menuItemSelected;   // an item of the menu bar whose popup is open
};

// Empty handles before the main window is created and after it is destroyed.
const ThemeBrushes& Brushes();

// When the main window is created and destroyed. UI thread.
void CreateThemeBrushes();
void DeleteThemeBrushes();
