#include "system/window_thread.h"

#include <mutex>
#include <utility>

namespace {

// One caller at a time.
std::mutex& turn = *new std::mutex;
HWND calledWindow;
const std::function<void()>* calledWork;

LRESULT CALLBACK OnSentMessage(int code, WPARAM wParam, LPARAM lParam) {
  const auto& message = *reinterpret_cast<const CWPSTRUCT*>(lParam);
  if (code == HC_ACTION && message.message == WM_NULL && message.hwnd == calledWindow && calledWork) {
    (*std::exchange(calledWork, nullptr))();
  }
  return CallNextHookEx(nullptr, code, wParam, lParam);
}

}  // namespace

// A hook on that thread takes the call there: it runs when the thread receives WM_NULL, which means nothing to the
// window itself.
void RunOnThreadOf(HWND window, const std::function<void()>& work) {
  const DWORD thread = GetWindowThreadProcessId(window, nullptr);
  if (thread == GetCurrentThreadId()) return work();
  if (thread == 0) return;
  const std::lock_guard lock(turn);
  calledWindow = window;
  calledWork = &work;
  if (const HHOOK hook = SetWindowsHookExW(WH_CALLWNDPROC, OnSentMessage, nullptr, thread)) {
    SendMessageW(window, WM_NULL, 0, 0);
    UnhookWindowsHookEx(hook);
  }
  calledWork = nullptr;
}
