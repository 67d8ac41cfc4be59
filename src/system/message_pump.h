// Waiting without letting the windows of the waiting thread freeze.
#pragma once

#include <windows.h>

#include <functional>

// Runs `work` on a thread of its own and returns when it is done; meanwhile the calling thread serves its windows,
// `dialog` with its keys.
void RunWhileServing(HWND dialog, const std::function<void()>& work);

// Waits so many milliseconds, serving the windows likewise.
void WaitWhileServing(HWND dialog, DWORD milliseconds);
