// The keyboard in the main window. UI thread.
#pragma once

#include <windows.h>

// Takes a message that the program's message loop got. True when it was a key that goes to no control: an accelerator,
// Tab, Enter on a button, a letter with Alt; it has then been carried out.
bool TakeKey(HACCEL accelerators, MSG& message);

// Nothing is underlined or framed for the keyboard until a key is used, unless the user wants that always.
void HideKeyboardCues(HWND window);

// A page has been built: it shows as much of the keyboard as the window, and gets its focus.
void BeginKeyboardPage();

// WM_SETFOCUS: gives the focus to the control of the page that had it last, else to the one that a page begins with.
void FocusPage();

// WM_ACTIVATE: keeps in mind which control has the focus when the window loses it.
void OnActivate(WORD state);

// The list got the focus: shows where it is, if the keyboard is used.
void OnListFocus(HWND list);
