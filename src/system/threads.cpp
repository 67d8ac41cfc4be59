#include "system/threads.h"

bool IsThreadActive(const KernelHandle& thread) {
  DWORD exitCode = 0;
  return thread && GetExitCodeThread(thread.Get(), &exitCode) && exitCode == STILL_ACTIVE;
}

void StartThreadOnce(KernelHandle& thread, LPTHREAD_START_ROUTINE procedure) {
  if (IsThreadActive(thread)) return;
  thread.Reset(CreateThread(nullptr, 0, procedure, nullptr, 0, nullptr));
}
