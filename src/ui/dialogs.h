// What the dialogs have in common.
#pragma once

#include <windows.h>

#include <optional>

// Puts the dialog's centre over its owner, or over the main window when it has none; its size stays.
void CenterOverOwner(HWND dialog);

// Shows a modal dialog of the resources, owned by the main window. UI thread.
void ShowModalDialog(int resource, DLGPROC procedure);

// Answers the messages that concern the appearance of a dialog; nothing for all others. The result is the dialog
// procedure's.
std::optional<INT_PTR> AnswerThemeMessage(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam);
