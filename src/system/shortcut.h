// Shortcuts, written by the shell.
#pragma once

#include <windows.h>

#include <string>

// Writes a shortcut to the program `target`, which starts in that program's folder. ".lnk" is appended to `linkPath`
// where it is missing; missing folders are made; an existing shortcut is overwritten. `description` may be empty.
HRESULT CreateShortcut(std::wstring target, std::wstring linkPath, const std::wstring& description);
