// The shipping program's window, seen and operated from another process as a person would. Handles belong to that
// process; every function copes with a window that is gone, and none waits longer than a few seconds for an answer.
#pragma once

#include <windows.h>

#include <chrono>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "core/context.h"

// Asks again every few milliseconds until the condition holds; false when it doesn't within the limit.
bool WaitUntil(const std::function<bool()>& condition, std::chrono::milliseconds limit = std::chrono::seconds(20));

// The main window of a process, or of any with 0; null when there is none (yet).
HWND FindInstallerWindow(DWORD process = 0);

// Which page it shows; NoPage when it is gone.
Page PageOf(HWND window);

// The visible child of a class at a place in the client area; null when there is none.
HWND ChildAt(HWND window, const wchar_t* windowClass, int x, int y);
// The only button at the bottom of the components and the installation page: Install, Cancel or Exit.
HWND BottomButton(HWND window);

// Whether a visible label of the page has this part in its text.
bool LabelsShow(HWND window, std::wstring_view part);

// What a window or control shows, without the sign of the letter that presses a button. Empty when it doesn't answer.
std::wstring ShownText(HWND window);
// The log of the installation page, without line ends.
std::vector<std::wstring> LogLines(HWND window);
bool LogHas(HWND window, const std::wstring& line);

// Presses a button or a key, or chooses a menu command. They don't wait until the program has acted.
void Press(HWND button);
void PressKey(HWND control, WPARAM key);
void ChooseCommand(HWND window, int command);

// The window of its thread that has the focus.
HWND FocusOf(HWND window);

// The list of components.
HWND ComponentList(HWND window);

// A message box or dialog of a process.
struct InstallerBox {
  HWND window = nullptr;  // null: there is none
  std::wstring caption, text;
};
InstallerBox FindBox(DWORD process);
// Presses one of its buttons: IDOK, IDYES, ...
void AnswerBox(const InstallerBox& box, int button);
