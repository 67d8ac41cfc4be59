#include "ui/taskbar.h"

#include <shobjidl.h>

#include <optional>

#include "core/context.h"
#include "core/window_messages.h"
#include "system/com.h"
#include "ui/controls.h"

namespace {

enum What : WPARAM { Progress, Retrying, End, BoxOpened, BoxClosed };

// The taskbar as the shell offers it to programs; where it doesn't, nothing is shown.
class Taskbar {
 public:
  Taskbar() {
    const HRESULT made = CoCreateInstance(CLSID_TaskbarList, nullptr, CLSCTX_INPROC_SERVER, IID_ITaskbarList3,
                                          reinterpret_cast<void**>(list_.Receive()));
    usable_ = SUCCEEDED(made) && SUCCEEDED(list_->HrInit());
  }
  void Show(HWND window, TBPFLAG flag, int position) const {
    if (!usable_) return;
    list_->SetProgressState(window, flag);
    if (flag != TBPF_NOPROGRESS) list_->SetProgressValue(window, static_cast<ULONGLONG>(position), kProgressRange);
  }

 private:
  const ComSession session_;
  ComPointer<ITaskbarList3> list_;
  bool usable_ = false;
};

// What the window was told. UI thread.
struct TaskbarState {
  std::optional<Taskbar> run;  // while there is one
  int position = 0;
  bool retrying = false;
  int boxes = 0;  // that wait for the user
};
TaskbarState& state = *new TaskbarState;

void ShowProgress(HWND window) {
  if (!state.run) return;
  const TBPFLAG flag = state.boxes > 0 ? TBPF_ERROR : state.retrying ? TBPF_PAUSED : TBPF_NORMAL;
  state.run->Show(window, flag, state.position);
}

void EndProgress(HWND window) {
  if (state.run) state.run->Show(window, TBPF_NOPROGRESS, 0);
  state.run.reset();
  state.retrying = false;
}

// The program's windows never come to the front by themselves.
void CallUser(HWND window) {
  DWORD process = 0;
  GetWindowThreadProcessId(GetForegroundWindow(), &process);
  if (process == GetCurrentProcessId()) return;
  FLASHWINFO flash = {sizeof flash, window, FLASHW_TRAY | FLASHW_TIMERNOFG, 0, 0};
  FlashWindowEx(&flash);
}

void Tell(What what, LPARAM value = 0) {
  if (const HWND window = app.mainWindow) PostMessageW(window, kTaskbarMessage, what, value);
}

}  // namespace

void TellTaskbarProgress(int position) { Tell(Progress, position); }
void TellTaskbarRetrying(bool retrying) { Tell(Retrying, retrying); }

TaskbarRun::TaskbarRun() { Tell(Progress, 0); }
TaskbarRun::~TaskbarRun() { Tell(End); }

TaskbarCall::TaskbarCall() { Tell(BoxOpened); }
TaskbarCall::~TaskbarCall() { Tell(BoxClosed); }

void OnTaskbarMessage(HWND window, WPARAM what, LPARAM value) {
  switch (what) {
    case Progress:
      if (!state.run) state.run.emplace();
      state.position = static_cast<int>(value);
      break;
    case Retrying:
      state.retrying = value != 0;
      break;
    case End:
      EndProgress(window);
      CallUser(window);
      break;
    case BoxOpened:
      ++state.boxes;
      CallUser(window);
      break;
    case BoxClosed:
      --state.boxes;
      break;
  }
  ShowProgress(window);
}
