#include "system/message_pump.h"

#include "system/handles.h"

namespace {

void ServeMessages(HWND dialog) {
  MSG message;
  while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
    if (IsDialogMessageW(dialog, &message)) continue;
    TranslateMessage(&message);
    DispatchMessageW(&message);
  }
}

DWORD WINAPI RunWork(void* work) {
  (*static_cast<const std::function<void()>*>(work))();
  return 0;
}

}  // namespace

void RunWhileServing(HWND dialog, const std::function<void()>& work) {
  const KernelHandle thread(CreateThread(nullptr, 0, RunWork, const_cast<std::function<void()>*>(&work), 0, nullptr));
  if (!thread) return work();
  const HANDLE handle = thread.Get();
  while (MsgWaitForMultipleObjects(1, &handle, FALSE, INFINITE, QS_ALLINPUT) == WAIT_OBJECT_0 + 1)
    ServeMessages(dialog);
  WaitForSingleObject(handle, INFINITE);  // `work` must not outlive this call, even if the first wait failed
}

void WaitWhileServing(HWND dialog, DWORD milliseconds) {
  const ULONGLONG end = GetTickCount64() + milliseconds;
  for (ULONGLONG now = GetTickCount64(); now < end; now = GetTickCount64()) {
    MsgWaitForMultipleObjects(0, nullptr, FALSE, static_cast<DWORD>(end - now), QS_ALLINPUT);
    ServeMessages(dialog);
  }
}
