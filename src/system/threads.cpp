#include "system/threads.h"

namespace {

void ServeMessages(HWND dialog) {
  MSG message;
  while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
    if (dialog && IsDialogMessageW(dialog, &message)) continue;
    TranslateMessage(&message);
    DispatchMessageW(&message);
  }
}

DWORD WINAPI RunWork(void* work) {
  (*static_cast<const std::function<void()>*>(work))();
  return 0;
}

}  // namespace

bool IsThreadActive(const KernelHandle& thread) {
  DWORD exitCode = 0;
  return thread && GetExitCodeThread(thread.Get(), &exitCode) && exitCode == STILL_ACTIVE;
}

void StartThreadOnce(KernelHandle& thread, LPTHREAD_START_ROUTINE procedure) {
  if (IsThreadActive(thread)) return;
  thread.Reset(CreateThread(nullptr, 0, procedure, nullptr, 0, nullptr));
}

bool SleepUnlessStopped(uint32_t milliseconds, const std::stop_token& stop) {
  const KernelHandle stopped(CreateEventW(nullptr, TRUE, FALSE, nullptr));
  const std::stop_callback tell(stop, [&stopped] { SetEvent(stopped.Get()); });
  return WaitForSingleObject(stopped.Get(), milliseconds) == WAIT_TIMEOUT;
}

void WaitServing(HANDLE object, HWND dialog) {
  while (MsgWaitForMultipleObjects(1, &object, FALSE, INFINITE, QS_ALLINPUT) == WAIT_OBJECT_0 + 1) {
    ServeMessages(dialog);
  }
  WaitForSingleObject(object, INFINITE);  // even if the first wait failed
}

void RunWhileServing(HWND dialog, const std::function<void()>& work) {
  const KernelHandle thread(CreateThread(nullptr, 0, RunWork, const_cast<std::function<void()>*>(&work), 0, nullptr));
  if (!thread) return work();
  WaitServing(thread.Get(), dialog);
}
