// The program's own threads.
#pragma once

#include <windows.h>

#include "system/handles.h"

// Whether the thread, if there is one, has not ended yet.
bool IsThreadActive(const KernelHandle& thread);

// Starts a thread and keeps its handle in `thread`, unless the one that is kept there is still active.
void StartThreadOnce(KernelHandle& thread, LPTHREAD_START_ROUTINE procedure);
