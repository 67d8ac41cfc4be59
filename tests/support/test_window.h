// A main window on a thread of its own with a message loop, as the program has it. Text is read and controls are
// written from the test's thread exactly as the program's workers do it.
#pragma once

#include <windows.h>

#include <functional>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "app/context.h"
#include "app/page_controls.h"

class TestWindow {
 public:
  // Looks at a message of the bare window, on the UI thread, and may answer it.
  using Handler = std::function<std::optional<LRESULT>(UINT message, WPARAM wParam, LPARAM lParam)>;

  // A bare window with this page: the program's pages, but nobody who handles their commands. It closes on WM_CLOSE.
  explicit TestWindow(Page page = InstallPage, Handler handler = {});
  // The window that `create` makes on the UI thread and stores in app.mainWindow.
  explicit TestWindow(const std::function<void()>& create);
  // Destroys the window without a relaunch, ends the thread and forgets the window and its pages.
  ~TestWindow();
  TestWindow(const TestWindow&) = delete;
  TestWindow& operator=(const TestWindow&) = delete;

  HWND Window() const { return window_; }
  DWORD ThreadId() const { return GetWindowThreadProcessId(steps_, nullptr); }
  // The controls of the page; the page must exist.
  ComponentsPageControls& Components() const { return *static_cast<ComponentsPageControls*>(app.componentsPage); }
  InstallPageControls& Installation() const { return *static_cast<InstallPageControls*>(app.installPage); }

  // Runs a step on the UI thread and returns when it is done. Works while that thread shows a message box.
  void Run(const std::function<void()>& step) const;
  // Returns when the UI thread has handled all messages posted before.
  void Settle() const;
  bool IsOpen() const { return IsWindow(window_); }
  // True when the window is destroyed within ten seconds.
  bool WaitUntilClosed() const;

  // The lines of the log of the installation page, without line ends.
  std::vector<std::wstring> LogLines() const;

 private:
  void Start(const std::function<void()>& create);
  void Loop(const std::function<void()>& create);

  const Handler handler_;
  HWND window_ = nullptr;
  HWND steps_ = nullptr;  // a message-only window that runs steps
  const KernelHandle ready_{CreateEventW(nullptr, TRUE, FALSE, nullptr)};
  const KernelHandle closed_{CreateEventW(nullptr, TRUE, FALSE, nullptr)};
  std::thread thread_;
};

// Creates the program's own main window, with the manifest thread left out: TestWindow window(CreateProgramWindow).
void CreateProgramWindow();

// A handle to a thread that is active while the test runs. In app.manifestThread or app.workerThread it keeps the
// program from starting that thread.
KernelHandle ActiveThread();

std::wstring TextOf(HWND window);
inline std::wstring TextOf(const Control& control) { return TextOf(control.Window()); }

// The position of a progress bar.
int PositionOf(const ProgressBar& bar);
