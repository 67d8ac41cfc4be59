// The program's own threads, and waiting on them.
#pragma once

#include <windows.h>

#include <cstdint>
#include <functional>
#include <stop_token>

#include "system/handles.h"

// Whether the thread, if there is one, has not ended yet.
bool IsThreadActive(const KernelHandle& thread);

// Starts a thread and keeps its handle in `thread`, unless the one that is kept there is still active.
void StartThreadOnce(KernelHandle& thread, LPTHREAD_START_ROUTINE procedure);

// Waits so long. False when the stop came first, or had come already.
bool SleepUnlessStopped(uint32_t milliseconds, const std::stop_token& stop);

// Waits until an object is signalled (a process has ended), serving the windows of the calling thread; `dialog`, which
// may be null, with its keys. In a single-threaded apartment of COM no wait may be without that.
void WaitServing(HANDLE object, HWND dialog);

// Runs `work` on a thread of its own and returns when it is done; meanwhile the calling thread serves its windows,
// `dialog` with its keys.
void RunWhileServing(HWND dialog, const std::function<void()>& work);
