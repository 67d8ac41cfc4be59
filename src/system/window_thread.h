// Calls from other threads to the thread of a window.
#pragma once

#include <windows.h>

#include <functional>

// Carries `work` out on the thread that owns the window, also from that thread itself, and returns when it is done.
// Does nothing when the window is gone or the system refuses. That thread must not wait for the caller.
void RunOnThreadOf(HWND window, const std::function<void()>& work);
