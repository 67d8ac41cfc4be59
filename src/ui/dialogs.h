// What the dialogs have in common.
#pragma once

#include <windows.h>

#include <optional>

// Puts the dialog's centre over its owner, or over the main window when it has none; its size stays.
void CenterOverOwner(HWND dialog);

// Answers the messages that concern the appearance of a dialog; nothing for all others. The result is the dialog
// procedure's.
std::optional<INT_PTR> AnswerThemeMessage(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam);
